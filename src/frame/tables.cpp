#include "frame/tables.h"

#include "dsp/remote.h"
#include "frame/helpers.h"
#include "frame/log.h"
#include "frame/operations.h"
#include "frame/shared.h"
#include "orlan/targets.h"

extern "C" {
ODX_FUNC_TABLE odxFuncTable;
ODX_INTERNAL_FUNC_TABLE odxInternalFuncTable;
uint32_t odxImplTable[kPublicSlots];
uint32_t odxInternalImplTable[kInternalEntries];
const char* const odxImplChar[kImplementations] = {"CPU", "ORLAN", "XDSP", "GPU", "ADSP", "CDSP", "MDSP"};
uint32_t HW_constraint_checks_enable = 1;
ODX_FUNC_MANAGER* odxMasterFuncManager = nullptr;

#define ODX_HELPER(name, columns) odx::HelperPointer<decltype(name##C)> name##_;
#include "frame/operations/families.def"
}

namespace
{

struct Listed {
    uint32_t number;
    uint32_t simdIndex;        // the index that the SIMD modes select
    void* reference = nullptr; // null until it is written
};

constexpr uint32_t simdIndex_C = ODX_IMPL_CPU;
constexpr uint32_t simdIndex_V = ODX_IMPL_ORLAN;

const Listed kListed[] = {
#define ODX_ROUTINE(number, name, index, columns, ...) \
    {odx::op_##name, simdIndex_##index, ODX_IF_##columns##_C(reinterpret_cast<void*>(&name##C))},
#include "frame/operations/families.def"
};

void*& entryOf(ODX_FUNC_TABLE* funcTable, ODX_INTERNAL_FUNC_TABLE* internalTable, uint32_t number, unsigned column)
{
    return number < kPublicSlots ? funcTable->entry[number * kImplementations + column]
                                 : internalTable->entry[(number - kPublicSlots) * kImplementations + column];
}

// Whether the lists give each number once, but for the empty slots.
constexpr bool numbersAreComplete()
{
    uint32_t times[odx::kOperationNumbers] = {};
    for (uint32_t slot : kEmptySlots)
        ++times[slot];
#define ODX_ROUTINE(number, ...) ++times[number];
#include "frame/operations/families.def"
    for (uint32_t n : times) {
        if (n != 1) return false;
    }
    return true;
}
static_assert(numbersAreComplete(), "two operations share a slot, or one has no operation");

} // namespace

extern "C" {

unsigned odxInitializeMasterFuncManager(ODX_FUNC_MANAGER* manager)
{
    if (manager == nullptr || manager->funcTable == nullptr || manager->implTable == nullptr ||
        manager->internalFuncTable == nullptr || manager->internalImplTable == nullptr) {
        return 1;
    }
    odxMasterFuncManager = manager;
    return 0;
}

unsigned odxTableHWInit(ODX_FUNC_TABLE* funcTable, ODX_INTERNAL_FUNC_TABLE* internalTable, bool xdsp, bool gpu)
{
    if (funcTable == nullptr || internalTable == nullptr) return 1;
    unsigned code = 0;
    if (xdsp) {
        ODX_LOG(Debug, "%s", "XDSP is available");
        code += uXTable(odxMasterFuncManager, ODX_IMPL_XDSP);
    }
    if (gpu) {
        ODX_LOG(Debug, "%s", "GPU is available");
        code += uGTable(odxMasterFuncManager, ODX_IMPL_GPU);
    }
    return code;
}

void uCTable(ODX_FUNC_TABLE* funcTable, ODX_INTERNAL_FUNC_TABLE* internalTable, unsigned column)
{
    for (const Listed& listed : kListed) {
        odx::publish(entryOf(funcTable, internalTable, listed.number, column), listed.reference);
    }
}

void uVTable(ODX_FUNC_TABLE* funcTable, ODX_INTERNAL_FUNC_TABLE* internalTable, unsigned column)
{
    const odx::orlan::Target* target = odx::orlan::bestTarget();
    if (target == nullptr) return;
    target->fillColumn(funcTable->entry + column, internalTable->entry + column);
    // The one reference function that counts as SIMD code.
    for (const Listed& listed : kListed) {
        if (listed.number == odx::op_odxSolveLUf32 && listed.reference != nullptr) {
            odx::publish(entryOf(funcTable, internalTable, listed.number, column), listed.reference);
        }
    }
}

unsigned uGTable(ODX_FUNC_MANAGER* manager, unsigned column)
{
    if (manager == nullptr) return 1;
    if (manager->funcTable == nullptr) return 2;
    if (column >= manager->implementations) return 4;
    return 0;
}

void uVIndex()
{
    for (const Listed& listed : kListed) {
        if (listed.simdIndex == ODX_IMPL_CPU) continue;
        if (listed.number < kPublicSlots) {
            odx::publish(odxImplTable[listed.number], listed.simdIndex);
        } else {
            odx::publish(odxInternalImplTable[listed.number - kPublicSlots], listed.simdIndex);
        }
    }
}

unsigned uGIndex(ODX_FUNC_MANAGER* manager)
{
    return manager == nullptr ? 1 : 0;
}

void uCHelper()
{
#define ODX_HELPER(name, columns) name##_ = &name##C;
#include "frame/operations/families.def"
}

void uVHelper()
{
    if (const odx::orlan::Target* target = odx::orlan::bestTarget()) target->pointHelpers();
}
}
