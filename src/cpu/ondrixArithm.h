// What reference and SIMD code of the element-wise arithmetic share.
#ifndef ODX_CPU_ONDRIX_ARITHM_H
#define ODX_CPU_ONDRIX_ARITHM_H

#include <stddef.h>
#include <stdint.h>

namespace odx::arithm
{

// A pixel of interleaved channels.
template <class T, uint32_t channels>
struct Pixel {
    T channel[channels];
};

template <class T, uint32_t channels>
[[gnu::always_inline]] static inline const Pixel<T, channels>* pixelsOf(const T* image)
{
    return reinterpret_cast<const Pixel<T, channels>*>(image);
}
template <class T, uint32_t channels>
[[gnu::always_inline]] static inline Pixel<T, channels>* pixelsOf(T* image)
{
    return reinterpret_cast<Pixel<T, channels>*>(image);
}

// Three numbers are no vector: all columns have this one.
[[gnu::always_inline]] static inline void crossProduct(const float* src1, const float* src2, float* dst)
{
    const float x = src1[1] * src2[2] - src1[2] * src2[1], y = src1[2] * src2[0] - src1[0] * src2[2],
                z = src1[0] * src2[1] - src1[1] * src2[0];
    dst[0] = x;
    dst[1] = y;
    dst[2] = z;
}

// The octant's boundaries between two directions, at the tangents of (2k - 1) pi / 256 for k = 1 to 32: the
// largest fractions below them whose denominators are at most 32768. Quotients of two 16-bit gradients are above a
// fraction if and only if they are above the tangent. The last one is above all quotients.
constexpr uint32_t kBoundaries = 32;
constexpr uint16_t kNumerators[kBoundaries + 1] = {
    358,   1152, 361,  1855, 2543,  3643,  4577,  5674, 3119, 2481,  5424,  6475,  7568,  6941, 11681, 7841, 10459,
    10063, 9287, 9283, 8590, 16661, 17775, 19186, 1567, 4245, 13133, 22705, 18317, 23687, 3831, 5996,  1};
constexpr uint16_t kDenominators[kBoundaries + 1] = {29171, 31277, 5876,  21541, 22931, 26823, 28446, 30475, 14733,
                                                     10447, 20579, 22328, 23889, 20176, 31425, 19607, 24399, 21970,
                                                     19028, 17892, 15607, 28587, 28847, 29491, 2284,  5873,  17261,
                                                     28369, 21769, 26788, 4124,  6145,  0};

} // namespace odx::arithm

#endif
