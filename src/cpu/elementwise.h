// Operations that make their outputs from what their sources have at the same place, for the reference column:
// arithmetic, comparisons, conversions, sums and differences of images.
//
//   forElements([=](uint8_t a, uint8_t b, uint16_t& sum) { sum = ...; }, width, height, Rows{src1, stride1},
//               Rows{src2, stride2}, Rows{dst, dstStride});
//
// The operation is called with an element of each image, in the order of the call, and writes the destinations
// through references. It is a plain function without branches that would keep compilers from vectorising the loop.
// Sources are rows of const elements (src of type const uint8_t*). A destination may be one of the sources: the
// same address and stride, and elements of the same size. Other overlaps are not allowed.
//
// The SIMD column has forVectors() in orlan/elementwise.h.
#ifndef ODX_CPU_ELEMENTWISE_H
#define ODX_CPU_ELEMENTWISE_H

#include "cpu/image.h"

#include <type_traits>

// Before a loop whose steps touch elements of their own alone: compilers need not ask whether images overlap. Some
// operations, with tables, stay scalar on some processors.
#if defined(__clang__)
#pragma clang diagnostic ignored "-Wpass-failed"
#define ODX_INDEPENDENT_STEPS _Pragma("clang loop vectorize(assume_safety)")
#else
#define ODX_INDEPENDENT_STEPS _Pragma("GCC ivdep")
#endif

namespace odx
{

// Whether vectors would round denormal numbers to zero, which compilers avoid of their own accord, but not where
// they are told to vectorise.
#if defined(__arm__)
template <class... T>
constexpr bool kKeepsScalar = ((std::is_const_v<T> && !std::is_integral_v<T>) || ...);
#else
template <class... T>
constexpr bool kKeepsScalar = false;
#endif

template <class Operation, class... T>
static inline void forElementsOfRow(const Operation& operation, size_t n, T*... row)
{
    if constexpr (kKeepsScalar<T...>) {
        for (size_t i = 0; i < n; ++i)
            operation(row[i]...);
    } else {
        ODX_INDEPENDENT_STEPS
        for (size_t i = 0; i < n; ++i)
            operation(row[i]...);
    }
}

// Calls the operation for all elements of images of width x height. Packed images are one long row.
template <class Operation, class... T>
static inline void forElements(const Operation& operation, uint32_t width, uint32_t height, Rows<T>... rows)
{
    size_t n = width;
    if ((rows.packed(width) && ...)) {
        n *= height;
        height = height != 0 ? 1 : 0;
    }
    for (; height != 0; --height) {
        forElementsOfRow(operation, n, rows.pixels...);
        ((rows = rows.next()), ...);
    }
}

} // namespace odx

#endif
