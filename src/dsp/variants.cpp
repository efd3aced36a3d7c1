// The variant of every operation with a remote line, `odxXxxX`: it sends the call, and does the work on this
// processor when that fails.
#include "dsp/services.h"
#include "dsp/session.h"
#include "dsp/stub.h"
#include "frame/log.h"
#include "frame/operations.h"
#include "frame/shared.h"

using namespace odx;
using namespace odx::dsp;

namespace
{

template <class Entry, class... Arguments>
int callEntry(Entry* entry, Arguments... arguments)
{
    return entry != nullptr ? entry(arguments...) : kUnreachable;
}

// Whether the remote processor did the call that `send` makes.
template <class Send>
bool sent(Send send)
{
    int code = kUnreachable;
    if (const StubInUse stub(StubInUse::kNow); stub) code = send();
    if (__builtin_expect(code == kRestarted, 0)) {
        code = callAfterRestart([](void* context) { return (*static_cast<Send*>(context))(); }, &send);
    }
    return code == 0;
}

// The same operation in the SIMD column.
template <auto* Reference>
decltype(Reference) here()
{
    constexpr OperationNumber number = numberOf<Reference>;
    static_assert(number != kOperationNumbers, "the reference function is not in the operation list");
    void* const& entry =
        number < kPublicSlots
            ? odxFuncTable.entry[number * kImplementations + ODX_IMPL_ORLAN]
            : odxInternalFuncTable.entry[(number - kPublicSlots) * kImplementations + ODX_IMPL_ORLAN];
    return reinterpret_cast<decltype(Reference)>(current(entry));
}

odxStatus beyondLimits(const char* variant)
{
    if (current(libLogPrintX) != 0) {
        ODX_LOG(Debug, "%s: Warning - Unsatisfied HW limitation, will try CPU", variant);
    }
    return ONDRIX_UNSUPPORTED_HERE;
}

// The variant of an operation that the remote processor does not have.
template <class Name, class R, class... Arguments>
R absent(Arguments...)
{
    ODX_LOG(Error, "%s is not yet remoted.", Name::variant);
    return R();
}

} // namespace

extern "C" {

#define ODX_REMOTE(name, ...) decltype(name##C) name##X;
#define ODX_REMOTE_ABSENT(name)                      \
    struct name##Absent {                            \
        static constexpr char variant[] = #name "X"; \
    };                                               \
    constexpr decltype(&name##C) name##X = absent<name##Absent>;
#include "dsp/remote.def"

#define ODX_VARIANT(name, ...) \
    ResultOf<decltype(name##C)> name##X(ODX_EACH(ODX_PARAMETER, decltype(name##C), __VA_ARGS__))
#define ODX_HERE(name, ...) here<name##C>()(ODX_EACH(ODX_ARGUMENT, name##C, __VA_ARGS__))
#define ODX_CAN_TRAVEL(name, ...) \
    (allOf(ODX_EACH(ODX_FITS, name##C, __VA_ARGS__)) && disjoint({ODX_EACH(ODX_WRITTEN, name##C, __VA_ARGS__)}))

#define ODX_REMOTE(name, ...)                                                                      \
    ODX_VARIANT(name, __VA_ARGS__)                                                                 \
    {                                                                                              \
        ODX_EACH(ODX_DEFAULT, name##C, __VA_ARGS__);                                               \
        const auto send = [&] {                                                                    \
            return callEntry(pFnX_##name##X, ODX_EACH(ODX_REMOTE_ARGUMENT, name##C, __VA_ARGS__)); \
        };                                                                                         \
        if (!ODX_CAN_TRAVEL(name, __VA_ARGS__) || !sent(send)) ODX_HERE(name, __VA_ARGS__);        \
    }
#define ODX_SENT_WITH_RESULT(name, initial, ...)                                                        \
    ResultOf<decltype(name##C)> result = initial;                                                       \
    const auto send = [&] {                                                                             \
        return callEntry(pFnX_##name##X, ODX_EACH(ODX_REMOTE_ARGUMENT, name##C, __VA_ARGS__), &result); \
    };                                                                                                  \
    if (ODX_CAN_TRAVEL(name, __VA_ARGS__) && sent(send)) return result;                                 \
    return ODX_HERE(name, __VA_ARGS__)
#define ODX_REMOTE_SCALAR(name, ...)                                                                     \
    ODX_VARIANT(name, __VA_ARGS__)                                                                       \
    {                                                                                                    \
        static_assert(!std::is_same_v<ResultOf<decltype(name##C)>, odxStatus>, "use ODX_REMOTE_STATUS"); \
        ODX_EACH(ODX_DEFAULT, name##C, __VA_ARGS__);                                                     \
        ODX_SENT_WITH_RESULT(name, 0, __VA_ARGS__);                                                      \
    }
#define ODX_REMOTE_STATUS(name, limits, ...)                                                       \
    ODX_VARIANT(name, __VA_ARGS__)                                                                 \
    {                                                                                              \
        ODX_EACH(ODX_DEFAULT, name##C, __VA_ARGS__);                                               \
        if (current(Z9_constraint_checks_enable) != 0 && !(limits)) return beyondLimits(__func__); \
        ODX_SENT_WITH_RESULT(name, ONDRIX_FAILURE, __VA_ARGS__);                                   \
    }
#include "dsp/remote.def"

unsigned uXTable(ODX_FUNC_MANAGER* manager, unsigned column)
{
    if (manager == nullptr) return 1;
    if (manager->funcTable == nullptr || manager->internalFuncTable == nullptr) return 2;
    if (column >= manager->implementations) return 4;
    for (uint32_t number = 0; number < kOperationNumbers; ++number) {
        void* const variant = dspVariant(number);
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

void* odx::dspVariant(uint32_t operation)
{
    switch (operation) {
#define ODX_REMOTE(name, ...) \
    case op_##name:           \
        return reinterpret_cast<void*>(name##X);
#define ODX_REMOTE_ABSENT(name) ODX_REMOTE(name, )
#include "dsp/remote.def"
    case op_probeZ9Time:
        return reinterpret_cast<void*>(probeZ9TimeX);
    case op_odxRegisterBuf:
        return reinterpret_cast<void*>(odxRegisterBufX);
    default:
        return nullptr;
    }
}
