// How the arguments of the operations on vectors and patches travel.
#ifndef ODX_DSP_ONDRIX_DOT_X_H
#define ODX_DSP_ONDRIX_DOT_X_H

#include "dsp/shapes.h"

namespace odx::remoting
{

// Vectors of n elements: one, two, four with four results, one with four more and as many results.
template <uint32_t n>
inline constexpr auto oneOf = [](const auto* a) { return arguments(list(a, n)); };
template <uint32_t n>
inline constexpr auto twoOf = [](const auto* a, const auto* b) { return arguments(list(a, n), list(b, n)); };
template <uint32_t n>
inline constexpr auto fourOf = [](const auto* a, const auto* b, const auto* c, const auto* d, auto* results) {
    return arguments(list(a, n), list(b, n), list(c, n), list(d, n), written(results, 4));
};
template <uint32_t n>
inline constexpr auto fiveOf =
    [](const auto* a, const auto* b, const auto* c, const auto* d, const auto* e, auto* results) {
        return arguments(list(a, n), list(b, n), list(c, n), list(d, n), list(e, n), written(results, 4));
    };
// The same with inverse lengths.
template <uint32_t n>
inline constexpr auto normalisedOf = [](const auto* a, float length, const auto* b, const auto* c, const auto* d,
                                        const auto* e, const float* lengths, float* results) {
    return arguments(list(a, n), length, list(b, n), list(c, n), list(d, n), list(e, n), list(lengths, 4),
                     written(results, 4));
};

inline constexpr auto twoArrays = [](const auto* a, const auto* b, uint32_t length) {
    return arguments(list(a, length), list(b, length), length);
};
inline constexpr auto twoBlocks = [](const auto* a, uint32_t width, uint32_t height, uint32_t aStride,
                                     const auto* b, uint32_t bStride) {
    const Stride ofA = strideOf(a, aStride, width), ofB = strideOf(b, bStride, width);
    return arguments(rows(a, ofA, height), width, height, ofA, rows(b, ofB, height), ofB);
};

template <uint32_t n>
inline constexpr auto patchEverywhere = [](const uint8_t* patch, uint32_t patchStride, const uint8_t* src,
                                           uint32_t width, uint32_t height, uint32_t srcStride, uint16_t* dst,
                                           uint32_t dstStride) {
    const Stride of = stride(patchStride, n), from = stride(srcStride, width),
                 to = strideOf(dst, dstStride, width - (n - 1));
    return arguments(rows(patch, of, n), of, rows(src, from, height), width, height, from,
                     rows(dst, to, height - (n - 1)), to);
};

inline constexpr auto sortedScores = [](float* scores, float* sorted) {
    return arguments(list(scores, 8), written(sorted, 8));
};

} // namespace odx::remoting

#endif
