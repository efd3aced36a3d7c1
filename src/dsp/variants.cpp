// The remote column: the variants of all families, and what they share.
#include "dsp/variant.h"

#include "dsp/services.h"
#include "dsp/session.h"
#include "frame/log.h"
#include "frame/operations.h"
#include "frame/shared.h"

using namespace odx;
using namespace odx::remoting;

bool remoting::limitsHold()
{
    return current(Z9_constraint_checks_enable) != 0;
}

odxStatus remoting::beyondLimits(const Symbol& symbol)
{
    if (current(libLogPrintX) != 0) {
        ODX_LOG(Debug, "%s: Warning - Unsatisfied HW limitation, will try CPU",
                symbol.name + sizeof kSymbolPrefix - 1);
    }
    return ONDRIX_UNSUPPORTED_HERE;
}

void* remoting::simdColumn(const Symbol& symbol)
{
    const uint32_t number = symbol.operation;
    return current(number < kPublicSlots
                       ? odxFuncTable.entry[number * kImplementations + ODX_IMPL_ORLAN]
                       : odxInternalFuncTable.entry[(number - kPublicSlots) * kImplementations + ODX_IMPL_ORLAN]);
}

bool remoting::disjoint(const Range* ranges, size_t count)
{
    const auto reaches = [](const Range& range, const Range& other) {
        const uintptr_t begin = reinterpret_cast<uintptr_t>(range.begin),
                        second = reinterpret_cast<uintptr_t>(other.begin);
        return other.length != 0 && begin <= second && second - begin < uint64_t{range.length} * range.unit;
    };
    for (size_t i = 0; i < count; ++i) {
        for (size_t j = 0; j < count; ++j) {
            if (i != j && reaches(ranges[i], ranges[j])) return false;
        }
    }
    return true;
}

namespace
{

// The variant of an operation that the remote processor does not have.
template <class Name, class R, class... Arguments>
R absent(Arguments...)
{
    ODX_LOG(Error, "%s is not yet remoted.", Name::variant);
    return R();
}

} // namespace

extern "C" {

#define ODX_ROUTINE(number, name, index, columns, ...)                                             \
    ODX_IF_##columns##_X(decltype(name##C) name##X;)                                               \
        ODX_IF_##columns##_A(struct name##Absent { static constexpr char variant[] = #name "X"; }; \
                             constexpr decltype(&name##C) name##X = absent<name##Absent>;)
#include "frame/operations/families.def"

unsigned uXTable(ODX_FUNC_MANAGER* manager, unsigned column)
{
    if (manager == nullptr) return 1;
    if (manager->funcTable == nullptr || manager->internalFuncTable == nullptr) return 2;
    if (column >= manager->implementations) return 4;
    for (uint32_t number = 0; number < kOperationNumbers; ++number) {
        void* const variant = remoteVariant(number);
        if (variant == nullptr) continue;
        if (number >= kPublicSlots) {
            const uint32_t entry = number - kPublicSlots;
            if (entry >= manager->internalEntries) continue;
            publish(manager->internalFuncTable->entry[entry * kImplementations + column], variant);
        } else if (number < manager->publicSlots) {
            publish(manager->funcTable->entry[number * kImplementations + column], variant);
        }
    }
    return 0;
}
}

void* odx::remoteVariant(uint32_t operation)
{
    switch (operation) {
#define ODX_CASE(name) \
    case op_##name:    \
        return reinterpret_cast<void*>(name##X);
#define ODX_ROUTINE(number, name, index, columns, ...) \
    ODX_IF_##columns##_X(ODX_CASE(name)) ODX_IF_##columns##_A(ODX_CASE(name))
#include "frame/operations/families.def"
        ODX_CASE(probeZ9Time)
        ODX_CASE(odxRegisterBuf)
    default:
        return nullptr;
    }
}
