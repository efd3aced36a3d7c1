// How the arguments of integral images travel.
#ifndef ODX_DSP_ONDRIX_INTEGRAL_X_H
#define ODX_DSP_ONDRIX_INTEGRAL_X_H

#include "dsp/shapes.h"

namespace odx::remoting
{

// The table of so many pixels, and its stride.
template <class T>
Stride tableStride(const T* table, uint32_t stride, uint32_t width)
{
    return strideOf(table, stride, uint64_t{width} + 1);
}
template <class T>
auto table(T* entries, Stride stride, uint32_t height)
{
    return rows(entries, stride, uint64_t{height} + 1);
}

inline constexpr auto integral = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                    uint32_t* dst, uint32_t dstStride) {
    const Stride from = strideOf(src, srcStride, width), to = tableStride(dst, dstStride, width);
    return arguments(rows(src, from, height), width, height, from, table(dst, to, height), to);
};
inline constexpr auto integralsOfSquares = [](const uint8_t* src, uint32_t width, uint32_t height,
                                              uint32_t srcStride, uint64_t* sums, uint64_t* squareSums,
                                              uint32_t dstStride) {
    const Stride from = strideOf(src, srcStride, width), to = tableStride(sums, dstStride, width);
    return arguments(rows(src, from, height), width, height, from, table(sums, to, height),
                     table(squareSums, to, height), to);
};
inline constexpr auto integralsOfPlanes = [](const uint8_t* srcY, const uint8_t* srcC, uint32_t width,
                                             uint32_t height, uint32_t yStride, uint32_t cStride, uint32_t* dstY,
                                             uint32_t* dstCb, uint32_t* dstCr, uint32_t dstYStride,
                                             uint32_t dstCbStride, uint32_t dstCrStride) {
    const Stride fromY = strideOf(srcY, yStride, width), fromC = strideOf(srcC, cStride, width),
                 toY = tableStride(dstY, dstYStride, width), toCb = tableStride(dstCb, dstCbStride, width / 2),
                 toCr = tableStride(dstCr, dstCrStride, width / 2);
    return arguments(rows(srcY, fromY, height), rows(srcC, fromC, height / 2), width, height, fromY, fromC,
                     table(dstY, toY, height), table(dstCb, toCb, height / 2), table(dstCr, toCr, height / 2), toY,
                     toCb, toCr);
};
inline constexpr auto integralLine = [](const uint8_t* src, uint32_t length, const uint32_t* above,
                                        uint32_t* dst) {
    const uint64_t entries = uint64_t{length} + 1;
    return arguments(list(src, length), length, list(above, entries), written(dst, entries));
};
inline constexpr auto integralLine64 = [](const uint8_t* src, const uint32_t* above, uint32_t* dst) {
    return arguments(list(src, 64), list(above, 65), written(dst, 65));
};

// A patch of the size that stands before its tables, or of a fixed one.
inline auto packedTable(uint32_t* entries, uint32_t width, uint32_t height)
{
    return written(entries, product(uint64_t{width} + 1, uint64_t{height} + 1));
}
template <uint32_t side>
inline constexpr auto patchIntegrals = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                          uint32_t x, uint32_t y, uint32_t* sums, uint32_t* squareSums) {
    const Stride from = strideOf(src, srcStride, width);
    return arguments(rows(src, from, height), width, height, from, x, y, packedTable(sums, side, side),
                     packedTable(squareSums, side, side));
};
inline constexpr auto anyPatchIntegrals = [](const uint8_t* src, uint32_t width, uint32_t height,
                                             uint32_t srcStride, uint32_t x, uint32_t y, uint32_t patchWidth,
                                             uint32_t patchHeight, uint32_t* sums, uint32_t* squareSums) {
    const Stride from = strideOf(src, srcStride, width);
    return arguments(rows(src, from, height), width, height, from, x, y, patchWidth, patchHeight,
                     packedTable(sums, patchWidth, patchHeight), packedTable(squareSums, patchWidth, patchHeight));
};
inline constexpr auto borderedPatchIntegrals =
    [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int32_t x, int32_t y,
       uint32_t patchWidth, uint32_t patchHeight, uint32_t* sums, uint32_t sumsStride, uint32_t* squareSums,
       uint32_t squareSumsStride, odxBorderType borderType, uint32_t borderValue) {
        const Stride from = strideOf(src, srcStride, width), to = tableStride(sums, sumsStride, patchWidth),
                     toSquares = tableStride(squareSums, squareSumsStride, patchWidth);
        return limit(worthSending(patchWidth, patchHeight),
                     arguments(rows(src, from, height), width, height, from, x, y, patchWidth, patchHeight,
                               table(sums, to, patchHeight), to, table(squareSums, toSquares, patchHeight),
                               toSquares, borderType, borderValue));
    };

} // namespace odx::remoting

#endif
