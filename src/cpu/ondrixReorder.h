// Mirroring and transposition, as reference and SIMD code share them. Both work on bytes, so that pixels need no
// alignment.
#ifndef ODX_CPU_ONDRIX_REORDER_H
#define ODX_CPU_ONDRIX_REORDER_H

#include "cpu/image.h"

#include <string.h>

namespace odx::reorder
{

#define ODX_REORDER_INLINE [[gnu::always_inline]] static inline

template <size_t size>
struct Pixel {
    uint8_t bytes[size];
};

template <size_t size>
ODX_REORDER_INLINE Pixel<size> pixelAt(const uint8_t* row, size_t x)
{
    Pixel<size> pixel;
    memcpy(&pixel, row + size * x, size);
    return pixel;
}
template <size_t size>
ODX_REORDER_INLINE void setPixel(uint8_t* row, size_t x, Pixel<size> pixel)
{
    memcpy(row + size * x, &pixel, size);
}

// Exchanges pixels [first, last) of a row with their mirror images in another row, or in the same one, where
// `last` stays in the first half.
template <size_t size>
ODX_REORDER_INLINE void exchangeMirrored(uint8_t* a, uint8_t* b, size_t width, size_t first, size_t last)
{
    for (size_t x = first; x < last; ++x) {
        const auto left = pixelAt<size>(a, x), right = pixelAt<size>(b, width - 1 - x);
        setPixel(a, x, right);
        setPixel(b, width - 1 - x, left);
    }
}

ODX_REORDER_INLINE void exchangeRows(uint8_t* a, uint8_t* b, size_t count)
{
    uint8_t piece[256];
    for (size_t i = 0, n; i < count; i += n) {
        n = count - i < sizeof piece ? count - i : sizeof piece;
        memcpy(piece, a + i, n);
        memcpy(a + i, b + i, n);
        memcpy(b + i, piece, n);
    }
}

// Mirrors an image into another one or in place. How rows are mirrored says
//   Mirror::kSize                   bytes of a pixel
//   Mirror::copy(src, dst, width)   into another row
//   Mirror::exchange(a, b, width)   two rows, each into the other
//   Mirror::inPlace(row, width)
template <class Mirror>
ODX_REORDER_INLINE void flip(const uint8_t* src, size_t width, size_t height, size_t srcStride, uint8_t* dst,
                             size_t dstStride, int dir)
{
    const bool columns = dir != 2, rows = dir != 1;
    if (src != dst) {
        for (size_t y = 0; y < height; ++y) {
            const uint8_t* const from = rowOf(src, srcStride, rows ? height - 1 - y : y);
            uint8_t* const to = rowOf(dst, dstStride, y);
            if (columns) {
                Mirror::copy(from, to, width);
            } else {
                memcpy(to, from, Mirror::kSize * width);
            }
        }
        return;
    }
    for (size_t y = 0; rows && y < height / 2; ++y) {
        uint8_t *const upper = rowOf(dst, dstStride, y), *const lower = rowOf(dst, dstStride, height - 1 - y);
        if (columns) {
            Mirror::exchange(upper, lower, width);
        } else {
            exchangeRows(upper, lower, Mirror::kSize * width);
        }
    }
    if (!columns) return;
    for (size_t y = rows ? height / 2 : 0, end = rows ? (height + 1) / 2 : height; y < end; ++y)
        Mirror::inPlace(rowOf(dst, dstStride, y), width);
}

// Quarter turns are transpositions of the source from its last row up, or into the destination from its last row
// up: rows may follow each other at negative distances.
struct Transposition {
    const uint8_t* src;
    size_t width, height;
    ptrdiff_t srcStride;
    uint8_t* dst;
    ptrdiff_t dstStride;
};

template <class T>
ODX_REORDER_INLINE Transposition transposition(const T* src, size_t width, size_t height, size_t srcStride, T* dst,
                                               size_t dstStride)
{
    return {reinterpret_cast<const uint8_t*>(src),
            width,
            height,
            static_cast<ptrdiff_t>(srcStride),
            reinterpret_cast<uint8_t*>(dst),
            static_cast<ptrdiff_t>(dstStride)};
}
ODX_REORDER_INLINE Transposition quarterTurn(const uint8_t* src, size_t width, size_t height, size_t srcStride,
                                             uint8_t* dst, size_t dstStride, bool clockwise)
{
    const auto from = static_cast<ptrdiff_t>(srcStride), to = static_cast<ptrdiff_t>(dstStride);
    if (clockwise) return {rowOf(src, srcStride, height - 1), width, height, -from, dst, to};
    return {src, width, height, from, rowOf(dst, dstStride, width - 1), -to};
}

// The block of `width` columns and `height` rows that begins at column x and row y. Three bytes move as four where
// another pixel follows in both images: it is written next.
template <size_t size>
ODX_REORDER_INLINE void transposeBlock(const Transposition& t, size_t x, size_t y, size_t width, size_t height)
{
    for (size_t c = x; c < x + width; ++c) {
        const uint8_t* in = t.src + t.srcStride * static_cast<ptrdiff_t>(y) + size * c;
        uint8_t* out = t.dst + t.dstStride * static_cast<ptrdiff_t>(c) + size * y;
        size_t count = height;
        if (size == 3 && c + 1 < t.width) {
            for (; count > 1; --count, in += t.srcStride, out += size)
                memcpy(out, in, 4);
        }
        for (; count != 0; --count, in += t.srcStride, out += size)
            memcpy(out, in, size);
    }
}

// Blocks that fit the first cache, whose rows are whole lines of it in both images.
template <size_t size>
ODX_REORDER_INLINE void transposeBlocks(const Transposition& t)
{
    constexpr size_t kBlock = 64 / size;
    for (size_t y = 0; y < t.height; y += kBlock) {
        for (size_t x = 0; x < t.width; x += kBlock) {
            transposeBlock<size>(t, x, y, t.width - x < kBlock ? t.width - x : kBlock,
                                 t.height - y < kBlock ? t.height - y : kBlock);
        }
    }
}

#undef ODX_REORDER_INLINE

} // namespace odx::reorder

#endif
