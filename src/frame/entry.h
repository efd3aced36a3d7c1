// The road of a call, from the public function to the implementation, in the order that every entry point keeps:
//
//     ODX_API void odxFilterXxxu8_v2(const uint8_t* src, unsigned srcWidth, ...)
//     {
//         // 1. default the optional arguments
//         srcStride = packedIfZero(srcStride, srcWidth);
//         // 2. choose the implementation within the limits of the targets, trace the call
//         const Call<odxFilterXxxu8C> call(
//             __func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, srcStride, dst, dstStride)));
//         // 3. refuse arguments that the implementations can't take
//         ODX_CHECK(src && dst && srcWidth && srcHeight);
//         // 4. call it
//         call(src, srcWidth, ...);
//     }
//
// A limit says which arguments the targets take; a call beyond it goes to the SIMD column. Limits are joined by &,
// and looked at only when such a target was selected. Nearly every operation is described by the first two:
//
//     image(width, height)     remote: work enough, 25345 pixels; GPU: a width that is a multiple of 8
//     aligned(values...)       remote: all are multiples of 8; GPU: those that are addresses, of 16
//     pixels(width, height)    remote: work enough
//     bytes(count, size)       remote: work enough, in elements of `size` bytes; bytes(0) never is
//     atLeast(n, value)        remote: n or more
//     remote(n, values...)     remote: all are multiples of n (24 for rows of packed pixels, say)
//     gpu(n, values...)        GPU: the same
//     gpuIf(condition)         GPU: a condition of its own
//
// - A version that only adds strides goes through the slot of the first one: odxXxx_v2 has a Call<odxXxxC>.
// - An operation with a status returns what the call gives: `return call(...)`. One with a border type refuses its
//   arguments in silence: `if (!usable(...)) return call.failure();`.
// - A test that comes before everything else logs another line: `if (!fits) return logError(__func__);`.
// - The text of a check is logged as it stands in the source. Where the text has terms that the condition does not
//   need, ODX_CHECK_AS("text", condition) has both.
// - Operations that share a signature share one definition: a macro with the steps above, and a line for each with
//   its whole name, by which a search finds it, and what is its own. See entries/smoothing.cpp:
//       ODX_BOX_FILTER(odxBoxFilter5x5u8, src && dst && ... && srcWidth > 4 && srcHeight > 4)
//   Where signatures are made of parts, the parts are macros, and the steps a template: entries/color.h.
//
// Arguments of wrong types do not compile: a call knows the type of its reference function, and the public header
// has that of the entry point.
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

// ---- limits of the targets ----

#define ODX_ENTRY_INLINE [[gnu::always_inline]] inline

// What keeps a call from the remote targets (columns 2, 4, 5 and 6), and from the GPU: 0 where they take it. The
// functions below neither branch nor have effects, so that compilers move them to where such a target was
// selected.
struct Limit {
    uintptr_t remote, gpu;
};

ODX_ENTRY_INLINE Limit operator&(Limit a, Limit b)
{
    return {a.remote | b.remote, a.gpu | b.gpu};
}

// Smallest amount of work, in pixels or bytes, that is worth the way to a remote target.
constexpr uint64_t kRemoteMinimum = 25345;
// What divides addresses and strides, addresses, and widths, where an operation does not say otherwise.
constexpr uintptr_t kRemoteAlignment = 8, kGpuAlignment = 16, kGpuWidth = 8;

ODX_ENTRY_INLINE bool worthSending(uint64_t count, uint64_t size = 1)
{
    return count * size >= kRemoteMinimum;
}

// The remainders of the values, addresses and sizes alike: 0 if n divides all of them.
template <class... Values>
ODX_ENTRY_INLINE uintptr_t remainders(uintptr_t n, Values... values)
{
    const bool powerOfTwo = (n & (n - 1)) == 0;
    return powerOfTwo ? ((uintptr_t)values | ...) & (n - 1) : (((uintptr_t)values % n) | ...);
}

template <class... Values>
ODX_ENTRY_INLINE bool multiplesOf(uintptr_t n, Values... values)
{
    return remainders(n, values...) == 0;
}

ODX_ENTRY_INLINE Limit bytes(uint64_t count, uint64_t size = 1)
{
    return {!worthSending(count, size), 0};
}

ODX_ENTRY_INLINE Limit pixels(uint32_t width, uint32_t height)
{
    return bytes(width, height);
}

ODX_ENTRY_INLINE Limit image(uint32_t width, uint32_t height)
{
    return {pixels(width, height).remote, remainders(kGpuWidth, width)};
}

// What a value adds to the addresses among the values that are to be aligned.
ODX_ENTRY_INLINE uintptr_t addressOf(const void* address)
{
    return (uintptr_t)address;
}
ODX_ENTRY_INLINE uintptr_t addressOf(uint32_t)
{
    return 0;
}

template <class... Values>
ODX_ENTRY_INLINE Limit aligned(Values... values)
{
    return {remainders(kRemoteAlignment, values...), remainders(kGpuAlignment, addressOf(values)...)};
}

template <class... Values>
ODX_ENTRY_INLINE Limit remote(uintptr_t n, Values... values)
{
    return {remainders(n, values...), 0};
}

template <class... Values>
ODX_ENTRY_INLINE Limit gpu(uintptr_t n, Values... values)
{
    return {0, remainders(n, values...)};
}

ODX_ENTRY_INLINE Limit gpuIf(bool condition)
{
    return {0, !condition};
}

ODX_ENTRY_INLINE Limit atLeast(uint32_t n, uint32_t value)
{
    return {value < n, 0};
}

// The target that was selected, or the SIMD column where the limit keeps a call from it.
uint32_t narrowed(uint32_t impl, Limit limit);

// The limits of a call, as a function that the call inlines where it needs them.
#define ODX_LIMITS(...)                  \
    [&]() __attribute__((always_inline)) \
    {                                    \
        return __VA_ARGS__;              \
    }

// ---- the steps ----

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
    // Without a limit the call goes to any target that was selected.
    ODX_ENTRY_INLINE explicit Call(const char* name) : Call(name, [] { return Limit{0, 0}; }) {}

    template <class LimitOf>
    ODX_ENTRY_INLINE Call(const char* name, LimitOf limitOf) : name_(name), impl_(selected())
    {
        if (__builtin_expect(impl_ > ODX_IMPL_ORLAN, 0)) impl_ = narrowed(impl_, limitOf());
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

// Refuses the arguments of an entry point, with a log line, unless the condition holds. The line shows the
// condition, or the text that is given for it.
#define ODX_CHECK(condition) ODX_CHECK_AS(#condition, condition)
#define ODX_CHECK_AS(text, condition) \
    if (!(condition)) return call.refused(text)

#endif
