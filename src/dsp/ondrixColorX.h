// How the arguments of the colour conversions travel. Subsampling is written as the operations' names do: 420,
// 422, 444.
#ifndef ODX_DSP_ONDRIX_COLOR_X_H
#define ODX_DSP_ONDRIX_COLOR_X_H

#include "dsp/shapes.h"

namespace odx::remoting
{

// ---- luma, and chroma in two planes or in one of pairs ----

// Bytes in a row of chroma, and rows of it.
template <uint32_t subsampling>
constexpr uint64_t planeRow(uint32_t width)
{
    return subsampling == 444 ? width : half(width);
}
template <uint32_t subsampling>
constexpr uint64_t pairedRow(uint32_t width)
{
    return subsampling == 444 ? uint64_t{width} * 2 : width;
}
template <uint32_t subsampling>
constexpr uint32_t chromaRows(uint32_t height)
{
    return subsampling == 420 ? half(height) : height;
}

template <uint32_t subsampling>
auto planarSource(const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr, uint32_t width, uint32_t height,
                  uint32_t yStride, uint32_t cbStride, uint32_t crStride, uint32_t lumaRows)
{
    const uint64_t row = planeRow<subsampling>(width);
    const uint32_t high = chromaRows<subsampling>(height);
    const Stride y = stride(yStride, width), cb = stride(cbStride, row), cr = stride(crStride, row);
    return arguments(rows(srcY, y, lumaRows), rows(srcCb, cb, high), rows(srcCr, cr, high), width, height, y, cb,
                     cr);
}

template <uint32_t subsampling>
auto pairedSource(const uint8_t* srcY, const uint8_t* srcC, uint32_t width, uint32_t height, uint32_t yStride,
                  uint32_t cStride, uint32_t lumaRows)
{
    const Stride y = stride(yStride, width), c = stride(cStride, pairedRow<subsampling>(width));
    return arguments(rows(srcY, y, lumaRows), rows(srcC, c, chromaRows<subsampling>(height)), width, height, y, c);
}

inline auto planarDestination(uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr, uint32_t yStride, uint32_t cbStride,
                              uint32_t crStride, uint32_t width, uint32_t height, uint64_t row, uint32_t high)
{
    const Stride y = stride(yStride, width), cb = stride(cbStride, row), cr = stride(crStride, row);
    return arguments(rows(dstY, y, height), rows(dstCb, cb, high), rows(dstCr, cr, high), y, cb, cr);
}

template <uint32_t subsampling>
auto pairedDestination(uint8_t* dstY, uint8_t* dstC, uint32_t yStride, uint32_t cStride, uint32_t width,
                       uint32_t height)
{
    const Stride y = stride(yStride, width), c = stride(cStride, pairedRow<subsampling>(width));
    return arguments(rows(dstY, y, height), rows(dstC, c, chromaRows<subsampling>(height)), y, c);
}

template <uint32_t bytes>
auto packedSource(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride)
{
    const Stride from = strideOf(src, srcStride, width, bytes);
    return arguments(rows(src, from, height), width, height, from);
}

template <uint32_t bytes>
auto packedDestination(uint8_t* dst, uint32_t dstStride, uint32_t width, uint32_t height)
{
    const Stride to = strideOf(dst, dstStride, width, bytes);
    return arguments(rows(dst, to, height), to);
}

// ---- to RGB ----

// An odd height of 4:2:0 takes, and writes, one row more.
template <uint32_t subsampling>
constexpr uint32_t rgbRows(uint32_t height)
{
    return subsampling == 420 ? even(height) : height;
}

template <uint32_t subsampling, uint32_t bytes>
inline constexpr auto planarToRgb = [](const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr,
                                       uint32_t width, uint32_t height, uint32_t yStride, uint32_t cbStride,
                                       uint32_t crStride, uint8_t* dst, uint32_t dstStride) {
    const uint32_t high = rgbRows<subsampling>(height);
    return planarSource<subsampling>(srcY, srcCb, srcCr, width, height, yStride, cbStride, crStride, high) +
           packedDestination<bytes>(dst, dstStride, width, high);
};
template <uint32_t subsampling, uint32_t bytes>
inline constexpr auto pairedToRgb = [](const uint8_t* srcY, const uint8_t* srcC, uint32_t width, uint32_t height,
                                       uint32_t yStride, uint32_t cStride, uint8_t* dst, uint32_t dstStride) {
    const uint32_t high = rgbRows<subsampling>(height);
    return pairedSource<subsampling>(srcY, srcC, width, height, yStride, cStride, high) +
           packedDestination<bytes>(dst, dstStride, width, high);
};

// Luma and chroma in one buffer. An odd width reads a byte more of the last chroma row.
template <uint32_t bytes>
inline constexpr auto buffer420 = [](const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst) {
    return arguments(list(src, product(width, height) + product(width, half(height)) + width % 2), width, height,
                     written(dst, product(bytes, width, height)));
};

// Rows may overlap here, so that the last one counts as it is.
inline constexpr auto stridedBuffer420 = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t yStride,
                                            uint32_t cStride, uint8_t* dst, uint32_t dstStride) {
    return arguments(list(src, product(yStride, height) + product(cStride, half(height) - 1) + even(width)), width,
                     height, yStride, cStride,
                     list(dst, product(dstStride / 4 * 4, height - 1) + product(4, width)), dstStride);
};

// Coded units, in which a chroma block covers `across` x `down` luma blocks of 8x8. Rows of units follow each
// other, except that those without subsampling move on by whole blocks of pixels only.
template <uint32_t across, uint32_t down>
inline constexpr auto codedUnits = [](const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst) {
    const auto units = [](uint32_t size, uint32_t n) { return size / n + (size % n != 0 ? 1 : 0); };
    const uint32_t wide = units(width, 8 * across), high = units(height, 8 * down);
    const uint32_t step = across * down == 1 ? width / 8 : wide;
    return arguments(list(src, product(64 * (across * down + 2), product(step, high - 1) + wide)), width, height,
                     written(dst, product(3, width, height)));
};

// ---- from RGB ----

// Chroma of a pixel without a right neighbour is not written to planes.
template <uint32_t bytes, uint32_t subsampling>
inline constexpr auto rgbToPlanar = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                       uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr, uint32_t yStride,
                                       uint32_t cbStride, uint32_t crStride) {
    return packedSource<bytes>(src, width, height, srcStride) +
           planarDestination(dstY, dstCb, dstCr, yStride, cbStride, crStride, width, height,
                             subsampling == 444 ? width : width / 2, chromaRows<subsampling>(height));
};
template <uint32_t bytes, uint32_t subsampling>
inline constexpr auto rgbToPaired = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                       uint8_t* dstY, uint8_t* dstC, uint32_t yStride, uint32_t cStride) {
    return packedSource<bytes>(src, width, height, srcStride) +
           pairedDestination<subsampling>(dstY, dstC, yStride, cStride, width, height);
};

// ---- between layouts ----

template <uint32_t from, uint32_t to>
inline constexpr auto planarToPlanar = [](const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr,
                                          uint32_t width, uint32_t height, uint32_t yStride, uint32_t cbStride,
                                          uint32_t crStride, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                          uint32_t dstYStride, uint32_t dstCbStride, uint32_t dstCrStride) {
    return planarSource<from>(srcY, srcCb, srcCr, width, height, yStride, cbStride, crStride, height) +
           planarDestination(dstY, dstCb, dstCr, dstYStride, dstCbStride, dstCrStride, width, height,
                             planeRow<to>(width), chromaRows<to>(height));
};
template <uint32_t from, uint32_t to>
inline constexpr auto planarToPaired = [](const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr,
                                          uint32_t width, uint32_t height, uint32_t yStride, uint32_t cbStride,
                                          uint32_t crStride, uint8_t* dstY, uint8_t* dstC, uint32_t dstYStride,
                                          uint32_t dstCStride) {
    return planarSource<from>(srcY, srcCb, srcCr, width, height, yStride, cbStride, crStride, height) +
           pairedDestination<to>(dstY, dstC, dstYStride, dstCStride, width, height);
};
template <uint32_t from, uint32_t to>
inline constexpr auto pairedToPlanar = [](const uint8_t* srcY, const uint8_t* srcC, uint32_t width,
                                          uint32_t height, uint32_t yStride, uint32_t cStride, uint8_t* dstY,
                                          uint8_t* dstCb, uint8_t* dstCr, uint32_t dstYStride,
                                          uint32_t dstCbStride, uint32_t dstCrStride) {
    return pairedSource<from>(srcY, srcC, width, height, yStride, cStride, height) +
           planarDestination(dstY, dstCb, dstCr, dstYStride, dstCbStride, dstCrStride, width, height,
                             planeRow<to>(width), chromaRows<to>(height));
};
template <uint32_t from, uint32_t to>
inline constexpr auto pairedToPaired = [](const uint8_t* srcY, const uint8_t* srcC, uint32_t width,
                                          uint32_t height, uint32_t yStride, uint32_t cStride, uint8_t* dstY,
                                          uint8_t* dstC, uint32_t dstYStride, uint32_t dstCStride) {
    return pairedSource<from>(srcY, srcC, width, height, yStride, cStride, height) +
           pairedDestination<to>(dstY, dstC, dstYStride, dstCStride, width, height);
};

} // namespace odx::remoting

#endif
