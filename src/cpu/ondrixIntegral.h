// What the references and the SIMD code of integral images share: the walk over images and patches. A column
// brings what computes a line, and takes pairs of chroma apart:
//
//   sum = Lines::next<Term>(src, count, sum, above, dst)
//                               count + 1 entries of a row, from those above: each is the one above and the sum,
//                               to which the term of a pixel is added after each
//   Lines::separate(pairs, count, first, second)
#ifndef ODX_CPU_ONDRIX_INTEGRAL_H
#define ODX_CPU_ONDRIX_INTEGRAL_H

#include "cpu/border.h"
#include "ondrix/types.h"

#include <string.h>

namespace odx::integral
{

// What of a pixel is summed.
struct Pixel {
    static constexpr uint32_t of(uint32_t v) { return v; }
};
struct Square {
    static constexpr uint32_t of(uint32_t v) { return v * v; }
};

// Lines, pixel by pixel.
template <class Term, class Sum, class T>
[[gnu::always_inline]] static inline Sum entries(const uint8_t* src, uint32_t count, Sum sum, const T* above,
                                                 T* dst)
{
    *dst++ = *above++ + sum;
    for (uint32_t i = 0; i < count; ++i) {
        sum += Term::of(src[i]);
        dst[i] = above[i] + sum;
    }
    return sum;
}
[[gnu::always_inline]] static inline void takeApart(const uint8_t* pairs, uint32_t count, uint8_t* first,
                                                    uint8_t* second)
{
    for (uint32_t i = 0; i < count; ++i) {
        first[i] = pairs[2 * i];
        second[i] = pairs[2 * i + 1];
    }
}

constexpr uint32_t kPiece = 2048; // pixels that are taken apart, or get their border, at a time

// A table that is written from its first row down, each row in pieces, which have the entry between
// them in common; null, it takes them to no effect.
template <class Lines, class Term, class T>
class Table
{
public:
    Table(T* table, uint32_t width, size_t stride) : stride_(stride), row_(table)
    {
        if (row_ != nullptr) memset(row_, 0, sizeof(T) * (size_t{width} + 1));
    }

    void beginRow()
    {
        if (row_ == nullptr) return;
        above_ = row_;
        next_ = row_ = rowOf(row_, stride_, 1);
        sum_ = 0;
    }
    void append(const uint8_t* src, uint32_t count)
    {
        if (row_ == nullptr) return;
        sum_ = Lines::template next<Term>(src, count, sum_, above_, next_);
        above_ += count;
        next_ += count;
    }

private:
    size_t stride_;
    T* row_;
    const T* above_ = nullptr;
    T* next_ = nullptr;
    T sum_ = 0;
};

template <class Lines>
static inline void line(const uint8_t* src, uint32_t length, const uint32_t* above, uint32_t* dst)
{
    if (above == nullptr) {
        memset(dst, 0, sizeof *dst * (size_t{length} + 1));
        above = dst;
    }
    Lines::template next<Pixel>(src, length, uint32_t{0}, above, dst);
}

// Both tables of an image, or of a part of one, either of which may be null.
template <class Lines, class T>
static inline void image(Rows<const uint8_t> src, uint32_t width, uint32_t height, Rows<T> sums,
                         Rows<T> squareSums)
{
    Table<Lines, Pixel, T> pixels(sums.pixels, width, sums.stride);
    Table<Lines, Square, T> squares(squareSums.pixels, width, squareSums.stride);
    for (uint32_t y = 0; y < height; ++y) {
        const uint8_t* const row = src.at(0, y).pixels;
        pixels.beginRow(), pixels.append(row, width);
        squares.beginRow(), squares.append(row, width);
    }
}

// Those of luma and of chroma in pairs. Two rows of luma go between a row of pairs and its planes, so that what
// was stored of these has reached the cache before it is read in other parts.
template <class Lines>
static inline void planes(Rows<const uint8_t> srcY, Rows<const uint8_t> srcC, uint32_t width, uint32_t height,
                          Rows<uint32_t> dstY, Rows<uint32_t> dstCb, Rows<uint32_t> dstCr)
{
    const uint32_t half = width / 2;
    Table<Lines, Pixel, uint32_t> luma(dstY.pixels, width, dstY.stride), cb(dstCb.pixels, half, dstCb.stride),
        cr(dstCr.pixels, half, dstCr.stride);
    uint8_t first[kPiece], second[kPiece];
    for (uint32_t y = 0; y < height; y += 2) {
        const uint8_t* pairs = srcC.at(0, y / 2).pixels;
        cb.beginRow(), cr.beginRow();
        for (uint32_t x = 0, count; x < half; x += count, pairs += 2 * size_t{count}) {
            count = half - x < kPiece ? half - x : kPiece;
            Lines::separate(pairs, count, first, second);
            for (uint32_t k = 0; x == 0 && k < 2; ++k)
                luma.beginRow(), luma.append(srcY.at(0, y + k).pixels, width);
            cb.append(first, count), cr.append(second, count);
        }
    }
}

// Both tables of a patch of an image, packed.
template <class Lines>
static inline void patch(Rows<const uint8_t> src, uint32_t width, uint32_t height, uint32_t* sums,
                         uint32_t* squareSums)
{
    const size_t stride = sizeof *sums * (size_t{width} + 1);
    image<Lines, uint32_t>(src, width, height, {sums, stride}, {squareSums, stride});
}

static inline bool isInside(int32_t x, int32_t y, uint32_t width, uint32_t height, uint32_t srcWidth,
                            uint32_t srcHeight)
{
    return x >= 0 && y >= 0 && int64_t{x} + width <= srcWidth && int64_t{y} + height <= srcHeight;
}

// Those of a patch that reaches beyond the image.
template <class Lines>
static inline void borderedPatch(const Plane<uint8_t>& plane, const border::Outside<uint8_t>& outside, int32_t x,
                                 int32_t y, uint32_t width, uint32_t height, Rows<uint32_t> sums,
                                 Rows<uint32_t> squareSums)
{
    Table<Lines, Pixel, uint32_t> pixels(sums.pixels, width, sums.stride);
    Table<Lines, Square, uint32_t> squares(squareSums.pixels, width, squareSums.stride);
    uint8_t piece[kPiece];
    for (uint32_t v = 0; v < height; ++v) {
        pixels.beginRow(), squares.beginRow();
        for (uint32_t u = 0, count; u < width; u += count) {
            count = width - u < kPiece ? width - u : kPiece;
            border::copyLine(plane, outside, int64_t{x} + u, int64_t{y} + v, count, piece);
            pixels.append(piece, count), squares.append(piece, count);
        }
    }
}

} // namespace odx::integral

#endif
