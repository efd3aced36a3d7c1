// The shape of every public entry point:
//
//     ODX_API void odxFilterXxxu8_v2(const uint8_t* src, unsigned srcWidth, ...)
//     {
//         // 1. default the optional arguments
//         srcStride = packedIfZero(srcStride, srcWidth);
//         // 2. choose the implementation, trace the call
//         const Call<odxFilterXxxu8C> call(
//             __func__, [&] { return worthSending(srcWidth, srcHeight) && multiplesOf(8, src, dst); },
//             [&] { return multiplesOf(16, src, dst); });
//         // 3. refuse arguments that the implementations can't take
//         ODX_CHECK(src && dst && srcWidth && srcHeight);
//         // 4. call it
//         return call(src, srcWidth, ...);
//     }
//
// The two functions say when the remote targets, and when the GPU, can take the call; otherwise the SIMD column
// does. They are evaluated only when such a target was selected. The text of a check is logged as it stands in the
// source.
#ifndef ODX_FRAME_ENTRY_H
#define ODX_FRAME_ENTRY_H

#include "frame/log.h"
#include "frame/operations.h"
#include "frame/shared.h"
#include "frame/tables.h"
#include "ondrix/types.h"

#include <type_traits>

namespace odx
{

// A line of a call's trace: name and chosen implementation.
void logDispatch(const char* name, uint32_t impl);
// The error line of refused arguments.
void logRefused(const char* name, const char* condition);
// The error line of a failed test that comes before the choice of an implementation.
void logError(const char* name);
// The error line of a call before any mode was selected.
void logUnselected(const char* name);

// Smallest amount of work, in pixels or bytes, that is worth the way to a remote target.
constexpr uint64_t kRemoteMinimum = 25345;

inline bool worthSending(uint64_t count, uint64_t size = 1)
{
    return count * size >= kRemoteMinimum;
}

template <class... Values>
bool multiplesOf(uintptr_t n, Values... values)
{
    return ((((uintptr_t)values & (n - 1)) == 0) && ...); // addresses and sizes alike
}

template <class Stride, class Packed>
Stride packedIfZero(Stride stride, Packed packed)
{
    return stride == 0 ? static_cast<Stride>(packed) : stride;
}

// An operation whose failure result is not that of its kind says so: Call<odxXxxu8C, 1u>.
template <auto* Reference, auto... ownFailure>
class Call
{
    template <class R, class... Arguments>
    static R resultOf(R (*)(Arguments...));
    using Function = std::remove_pointer_t<decltype(Reference)>;
    using Result = decltype(resultOf(Reference));

    static constexpr OperationNumber kNumber = numberOf<Reference>;
    static_assert(kNumber != kOperationNumbers, "the reference function is not in the operation list");

    static uint32_t selected()
    {
        if constexpr (kNumber < kPublicSlots) {
            return current(odxImplTable[kNumber]);
        } else {
            return current(odxInternalImplTable[kNumber - kPublicSlots]);
        }
    }

    static Function* entry(uint32_t impl)
    {
        if constexpr (kNumber < kPublicSlots) {
            return reinterpret_cast<Function*>(current(odxFuncTable.entry[kNumber * kImplementations + impl]));
        } else {
            return reinterpret_cast<Function*>(
                current(odxInternalFuncTable.entry[(kNumber - kPublicSlots) * kImplementations + impl]));
        }
    }

public:
    template <class RemoteFits, class GpuFits>
    Call(const char* name, RemoteFits remoteFits, GpuFits gpuFits) : name_(name), impl_(selected())
    {
        if (__builtin_expect(impl_ > ODX_IMPL_ORLAN, 0)) {
            const bool fits =
                impl_ == ODX_IMPL_GPU ? gpuFits() : current(HW_constraint_checks_enable) == 0 || remoteFits();
            if (!fits) impl_ = ODX_IMPL_ORLAN;
        }
        if (__builtin_expect(current(libLogPrint) != 0, 0)) logDispatch(name_, impl_);
    }

    // Calls the chosen implementation. A status operation that its implementation does not handle goes to the SIMD
    // column.
    template <class... Arguments>
    Result operator()(Arguments... arguments) const
    {
        Function* const function = entry(impl_);
        if (__builtin_expect(function == nullptr, 0)) {
            logUnselected(name_);
            return failure();
        }
        if constexpr (std::is_same_v<Result, odxStatus>) {
            const odxStatus status = function(arguments...);
            return __builtin_expect(status == ONDRIX_UNSUPPORTED_HERE, 0) ? entry(ODX_IMPL_ORLAN)(arguments...)
                                                                          : status;
        } else {
            return function(arguments...);
        }
    }

    // The failure result: the operation's own, or that of its kind, which is nothing, refused arguments, -1 or 0.
    static Result failure()
    {
        if constexpr (sizeof...(ownFailure) != 0) {
            return (ownFailure, ...);
        } else if constexpr (std::is_same_v<Result, odxStatus>) {
            return ONDRIX_BAD_PARAMETER;
        } else if constexpr (std::is_signed_v<Result>) {
            return static_cast<Result>(-1);
        } else {
            return Result();
        }
    }

    Result refused(const char* condition) const
    {
        logRefused(name_, condition);
        return failure();
    }

private:
    const char* name_;
    uint32_t impl_;
};

} // namespace odx

// Refuses the arguments of an entry point, with a log line, unless the condition holds.
#define ODX_CHECK(condition) \
    if (!(condition)) return call.refused(#condition)

#endif
