// The border of filters that give every pixel of an image an output: replicated or constant pixels outside it.
// Both columns leave the border to this code, and compute only the outputs whose window is inside.
//
// A filter is a struct, of constants or with parameters of its own, with
//
//   K                           rows and columns of its window, odd
//   row(lines, out, count)      `count` outputs of a row: lines[0 .. K) point at the leftmost tap of the first
//                               output, from the uppermost row down
//   column(lines, out, count)   the same of its transposed window, for the left and the right border, whose columns
//                               come as lines; that of a symmetric filter is row() itself
//
// and so needs nothing but what computes its interior. A border of zeros, as filters have that drop what is
// outside the image, is a constant one of 0.
#ifndef ODX_CPU_BORDER_H
#define ODX_CPU_BORDER_H

#include "cpu/image.h"

namespace odx::border
{

// How an image goes on beyond its edges.
template <class T>
struct Outside {
    bool replicate;
    T value; // otherwise
};

constexpr uint32_t kOutputs = 256; // computed at a time

// Pixels [x, x + count) of row y, some or all of which may be outside the image, as wide as the line's.
template <class T, class D, class L>
static inline void copyLine(const Plane<T, D>& plane, const Outside<T>& outside, int64_t x, int64_t y,
                            uint32_t count, L* line)
{
    const int64_t w = plane.width, h = plane.height, end = x + count;
    if (!outside.replicate && (y < 0 || y >= h)) {
        for (uint32_t i = 0; i < count; ++i)
            line[i] = outside.value;
        return;
    }
    const T* const row = rowOf(plane.src, plane.srcStride, static_cast<size_t>(y < 0 ? 0 : y < h ? y : h - 1));
    const T left = outside.replicate ? row[0] : outside.value,
            right = outside.replicate ? row[w - 1] : outside.value;
    for (; x < 0 && x < end; ++x)
        *line++ = left;
    const int64_t inside = (end < w ? end : w) - x;
    if (inside > 0) {
        for (int64_t i = 0; i < inside; ++i)
            line[i] = row[x + i];
        line += inside;
        x += inside;
    }
    for (; x < end; ++x)
        *line++ = right;
}

// Calls f(lines, columns, y, count) for stretches of the rows [y0, y1): n columns of the image from x on, as lines
// of count + 2 * r pixels that begin r rows above row y.
template <uint32_t n, uint32_t r, class T, class D, class F>
static inline void forColumns(const Plane<T, D>& plane, uint32_t x, uint32_t y0, uint32_t y1, F f)
{
    T lines[n][kOutputs + 2 * r];
    for (uint32_t y = y0, count; y < y1; y += count) {
        count = y1 - y < kOutputs ? y1 - y : kOutputs;
        const T* in = rowOf(plane.src, plane.srcStride, y - r) + x;
        for (uint32_t i = 0; i < count + 2 * r; ++i, in = rowOf(in, plane.srcStride, 1)) {
            for (uint32_t k = 0; k < n; ++k)
                lines[k][i] = in[k];
        }
        f(lines, y, count);
    }
}

// Writes a column of outputs.
template <class T, class D>
static inline void scatterColumn(const Plane<T, D>& plane, uint32_t x, uint32_t y, const D* values, uint32_t count)
{
    D* out = rowOf(plane.dst, plane.dstStride, y) + x;
    for (uint32_t i = 0; i < count; ++i, out = rowOf(out, plane.dstStride, 1))
        *out = values[i];
}

// All the outputs whose window is not inside the image.
template <class Filter, class T, class D>
void filterFrame(const Plane<T, D>& plane, const Outside<T>& outside, const Filter& filter = Filter())
{
    constexpr uint32_t K = Filter::K, r = K / 2;
    const uint32_t w = plane.width, h = plane.height;
    const auto rows = [&](uint32_t y0, uint32_t y1) {
        T lines[K][kOutputs + 2 * r];
        const T* tops[K];
        for (uint32_t k = 0; k < K; ++k)
            tops[k] = lines[k];
        for (uint32_t y = y0; y < y1; ++y) {
            for (uint32_t x = 0, count; x < w; x += count) {
                count = w - x < kOutputs ? w - x : kOutputs;
                for (uint32_t k = 0; k < K; ++k)
                    copyLine(plane, outside, int64_t{x} - r, int64_t{y} + k - r, count + 2 * r, lines[k]);
                filter.row(tops, rowOf(plane.dst, plane.dstStride, y) + x, count);
            }
        }
    };
    if (w < K || h < K) return rows(0, h);
    rows(0, r);
    rows(h - r, h);

    // The columns of the windows at one end of a row: r outside the image, which are all alike, then 2 * r inside.
    const auto columns = [&](bool atRight) {
        const uint32_t first = atRight ? w - 2 * r : 0;
        forColumns<2 * r, r>(plane, first, r, h - r, [&](const auto& inside, uint32_t y, uint32_t count) {
            T constant[kOutputs + 2 * r];
            if (!outside.replicate) {
                for (T& value : constant)
                    value = outside.value;
            }
            const T* const beyond = !outside.replicate ? constant : inside[atRight ? 2 * r - 1 : 0];
            const T* lines[3 * r];
            for (uint32_t k = 0; k < r; ++k)
                lines[atRight ? 2 * r + k : k] = beyond;
            for (uint32_t k = 0; k < 2 * r; ++k)
                lines[atRight ? k : r + k] = inside[k];
            for (uint32_t k = 0; k < r; ++k) {
                D values[kOutputs];
                filter.column(lines + k, values, count);
                scatterColumn(plane, (atRight ? w - r : 0) + k, y, values, count);
            }
        });
    };
    columns(false);
    columns(true);
}

} // namespace odx::border

#endif
