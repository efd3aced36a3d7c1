// How the arguments of warps and remaps travel.
#ifndef ODX_DSP_ONDRIX_WARP_X_H
#define ODX_DSP_ONDRIX_WARP_X_H

#include "dsp/shapes.h"

namespace odx::remoting
{

// Sources come with size and stride, and so do destinations; matrices are 9 or 6 floats.
template <uint32_t channels>
inline constexpr auto packedWarp = [](const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst,
                                      uint32_t dstWidth, uint32_t dstHeight, const float* matrix) {
    return arguments(list(src, product(srcWidth, srcHeight, channels)), srcWidth, srcHeight,
                     list(dst, product(dstWidth, dstHeight, channels)), dstWidth, dstHeight, list(matrix, 9));
};

template <uint32_t channels>
inline constexpr auto warped = [](const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                  const float* matrix, auto... more) {
    const Stride from = strideOf(src, srcStride, srcWidth, channels),
                 to = strideOf(dst, dstStride, dstWidth, channels);
    return arguments(rows(src, from, srcHeight), srcWidth, srcHeight, from, rows(dst, to, dstHeight), dstWidth,
                     dstHeight, to, list(matrix, 9), more...);
};
inline constexpr auto warpedGrey = [](const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                      uint32_t srcStride, uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight,
                                      uint32_t dstStride, const float* matrix, auto... more) {
    return limit(worthSending(dstWidth, dstHeight), warped<1>(src, srcWidth, srcHeight, srcStride, dst, dstWidth,
                                                              dstHeight, dstStride, matrix, more...));
};

inline constexpr auto warpedPlanes = [](const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth,
                                        uint32_t srcHeight, uint32_t src1Stride, uint32_t src2Stride,
                                        uint8_t* dst1, uint8_t* dst2, uint32_t dstWidth, uint32_t dstHeight,
                                        uint32_t dst1Stride, uint32_t dst2Stride, const float* matrix) {
    const Stride from1 = strideOf(src1, src1Stride, srcWidth), from2 = strideOf(src2, src2Stride, srcWidth),
                 to1 = strideOf(dst1, dst1Stride, dstWidth), to2 = strideOf(dst2, dst2Stride, dstWidth);
    return limit(worthSending(dstWidth, dstHeight),
                 arguments(rows(src1, from1, srcHeight), rows(src2, from2, srcHeight), srcWidth, srcHeight, from1,
                           from2, rows(dst1, to1, dstHeight), rows(dst2, to2, dstHeight), dstWidth, dstHeight, to1,
                           to2, list(matrix, 9)));
};

template <uint32_t channels, class... More>
auto clipped(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, const float* matrix,
             uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint32_t* dstBorder,
             More... more)
{
    const Stride from = strideOf(src, srcStride, srcWidth, channels),
                 to = strideOf(dst, dstStride, dstWidth, channels);
    return arguments(rows(src, from, srcHeight), srcWidth, srcHeight, from, list(matrix, 6),
                     rows(dst, to, dstHeight), dstWidth, dstHeight, to, list(dstBorder, product(2, dstHeight)),
                     more...);
}
inline constexpr auto clippedTriples = [](auto... values) { return clipped<3>(values...); };
inline constexpr auto clippedGrey = [](const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                       uint32_t srcStride, const float* matrix, uint8_t* dst, uint32_t dstWidth,
                                       uint32_t dstHeight, uint32_t dstStride, uint32_t* dstBorder, auto... more) {
    return limit(worthSending(dstWidth, dstHeight),
                 clipped<1>(src, srcWidth, srcHeight, srcStride, matrix, dst, dstWidth, dstHeight, dstStride,
                            dstBorder, more...));
};

template <uint32_t channels>
inline constexpr auto remapped = [](const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                    const float* mapX, const float* mapY, uint32_t mapStride, auto... more) {
    const Stride from = strideOf(src, srcStride, srcWidth, channels),
                 to = strideOf(dst, dstStride, dstWidth, channels), map = strideOf(mapX, mapStride, dstWidth);
    return arguments(rows(src, from, srcHeight), srcWidth, srcHeight, from, rows(dst, to, dstHeight), dstWidth,
                     dstHeight, to, rows(mapX, map, dstHeight), rows(mapY, map, dstHeight), map, more...);
};
inline constexpr auto remappedGrey = [](const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                        uint32_t srcStride, uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight,
                                        uint32_t dstStride, const float* mapX, const float* mapY,
                                        uint32_t mapStride, auto... more) {
    return limit(worthSending(dstWidth, dstHeight),
                 remapped<1>(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, mapX, mapY,
                             mapStride, more...));
};

inline constexpr auto patchOf = [](const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   const float* position, const float* affine, uint8_t* patch, uint32_t patchWidth,
                                   uint32_t patchHeight, uint32_t patchStride) {
    const Stride from = strideOf(src, srcStride, srcWidth), to = strideOf(patch, patchStride, patchWidth);
    return arguments(rows(src, from, srcHeight), srcWidth, srcHeight, from, list(position, 2), list(affine, 4),
                     rows(patch, to, patchHeight), patchWidth, patchHeight, to);
};
inline constexpr auto patches8x8 = [](const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                      uint32_t srcStride, uint32_t nPositions, const float* positions,
                                      const float* affines, uint8_t* patches) {
    const Stride from = strideOf(src, srcStride, srcWidth);
    return arguments(rows(src, from, srcHeight), srcWidth, srcHeight, from, nPositions,
                     list(positions, product(2, nPositions)), list(affines, product(4, nPositions)),
                     list(patches, product(64, nPositions)));
};
inline constexpr auto rotatedPatch = [](const uint8_t* region, uint8_t* patch, float orientation) {
    return arguments(list(region, 25 * 25), list(patch, 17 * 17), orientation);
};

} // namespace odx::remoting

#endif
