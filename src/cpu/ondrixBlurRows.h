// Rows of the 3x3 filters: outputs from three source rows, all pointing at the first output's column. Each source
// row has one pixel more on either side. Plain loops that compilers vectorise.
#ifndef ODX_CPU_ONDRIX_BLUR_ROWS_H
#define ODX_CPU_ONDRIX_BLUR_ROWS_H

#include "cpu/ondrixBlur.h"

namespace odx::blur
{

constexpr uint32_t kChunk = 256; // columns worked on at a time; their sums live on the stack

constexpr uint32_t chunkOf(uint32_t rest)
{
    return rest < kChunk ? rest : kChunk;
}

// (sum * reciprocal + 32768) >> 16 for sums of 16 bits, from one product's upper half, so that compilers keep to
// 16-bit lanes: twice the quotient, cut off, then rounded.
constexpr uint8_t boxMean(uint16_t sum, uint16_t reciprocal)
{
    const uint16_t doubled = static_cast<uint16_t>((uint32_t{sum} * (2u * reciprocal)) >> 16);
    return static_cast<uint8_t>((doubled + 1) >> 1);
}

static inline void gaussian3x3Row(const uint8_t* __restrict above, const uint8_t* __restrict here,
                                  const uint8_t* __restrict below, uint8_t* __restrict out, uint32_t width)
{
    for (uint32_t x0 = 0, count; x0 < width; x0 += count) {
        count = chunkOf(width - x0);
        uint16_t column[kChunk + 2];
        const uint8_t *const a = above + x0 - 1, *const h = here + x0 - 1, *const b = below + x0 - 1;
        for (size_t x = 0; x < count + 2; ++x) {
            column[x] = static_cast<uint16_t>(a[x] + 2 * h[x] + b[x]);
        }
        for (size_t x = 0; x < count; ++x) {
            const uint16_t sum = static_cast<uint16_t>(column[x] + 2 * column[x + 1] + column[x + 2]);
            out[x0 + x] = static_cast<uint8_t>(sum >> 4);
        }
    }
}

static inline void box3x3Row(const uint8_t* __restrict above, const uint8_t* __restrict here,
                             const uint8_t* __restrict below, uint8_t* __restrict out, uint32_t width)
{
    for (uint32_t x0 = 0, count; x0 < width; x0 += count) {
        count = chunkOf(width - x0);
        uint16_t column[kChunk + 2];
        const uint8_t *const a = above + x0 - 1, *const h = here + x0 - 1, *const b = below + x0 - 1;
        for (size_t x = 0; x < count + 2; ++x) {
            column[x] = static_cast<uint16_t>(a[x] + h[x] + b[x]);
        }
        for (size_t x = 0; x < count; ++x) {
            const uint16_t sum = static_cast<uint16_t>(column[x] + column[x + 1] + column[x + 2]);
            out[x0 + x] = boxMean(sum, kBox3Reciprocal);
        }
    }
}

template <class T>
static inline T smaller(T a, T b)
{
    return a < b ? a : b;
}
template <class T>
static inline T larger(T a, T b)
{
    return a < b ? b : a;
}
template <class T>
static inline T middle(T a, T b, T c)
{
    return larger(smaller(a, b), smaller(larger(a, b), c));
}

// Medians of windows whose columns are sorted: the median of the largest of the columns' minima, the median of
// their medians, and the smallest of their maxima.
template <class T>
static inline void median3x3Row(const T* __restrict above, const T* __restrict here, const T* __restrict below,
                                T* __restrict out, uint32_t width)
{
    for (size_t x = 0; x < width; ++x) {
        T low[3], mid[3], high[3];
        for (int i = 0; i < 3; ++i) {
            const ptrdiff_t c = static_cast<ptrdiff_t>(x) + i - 1;
            const T lesser = smaller(above[c], here[c]), greater = larger(above[c], here[c]);
            low[i] = smaller(lesser, below[c]);
            mid[i] = larger(lesser, smaller(greater, below[c]));
            high[i] = larger(greater, below[c]);
        }
        out[x] = middle(larger(larger(low[0], low[1]), low[2]), middle(mid[0], mid[1], mid[2]),
                        smaller(smaller(high[0], high[1]), high[2]));
    }
}

// Running sums along kBoxRows rows at once, since each addition waits for the one before it in its row: output x
// is the sum of the pixels x - before ... x + after that are inside the row.
constexpr uint32_t kBoxRows = 8;

static inline void boxRowSums(const float* const (&in)[kBoxRows], float* const (&out)[kBoxRows], uint32_t width,
                              uint32_t before, uint32_t after)
{
    float sum[kBoxRows] = {};
    for (uint32_t x = 0; x < after && x < width; ++x) {
        for (uint32_t i = 0; i < kBoxRows; ++i)
            sum[i] += in[i][x];
    }
    for (size_t x = 0; x < width; ++x) {
        const bool enters = width - x > after, leaves = x > before;
        for (uint32_t i = 0; i < kBoxRows; ++i) {
            if (enters) sum[i] += in[i][x + after];
            if (leaves) sum[i] -= in[i][x - before - 1];
            out[i][x] = sum[i];
        }
    }
}

} // namespace odx::blur

#endif
