// Canny edges: what reference and SIMD code have in common, which is everything but loops over rows.
//
// The image goes through a band of a few rows that stays in the cache: source rows with replicated margins, their
// gradients, their magnitudes. Pixels that stay after thinning are marked in an image of bytes; strong ones are
// put on a stack, from which weak neighbours are reached. Each pixel comes to the stack once at most.
//
// A detector says what kind of edges: the types below. Kernels are a column's loops, with static functions
//
//   gradients<Detector>(src, stride, gx, gy, pitch, width, rows)
//                       rows of both gradients; `src` is the uppermost leftmost tap of the first, the pitch in
//                       elements
//   magnitudes<Detector>(gx, gy, m, count)
//   thin<Detector>(row, count, limits, marks, place, stack)
//                       marks of `count` pixels; stores the places of strong ones, of which the first pixel's is
//                       `place`, and returns the end of the stack
//   finish(marks, dst, count)
//                       255 where a mark is strong, else 0
//
// All rows but those of dst are followed by kSlack elements, which kernels may read, and write.
#ifndef ODX_CPU_ONDRIX_EDGE_CANNY_H
#define ODX_CPU_ONDRIX_EDGE_CANNY_H

#include "cpu/border.h"
#include "cpu/ondrixEdge.h"
#include "frame/scratch.h"

#include <stdlib.h>
#include <string.h>

namespace odx::edge
{

constexpr uint32_t kSlack = 64;
constexpr uint8_t kWeak = 128, kStrong = 255;

// Tangents of 22.5 and 67.5 degrees in 1/32768 divide the directions; kTangent, and kTangent + 2 * 32768.
constexpr uint32_t kTangent = 13573;
struct Tangents {
    static bool horizontal(uint32_t x, uint32_t y) { return x * kTangent > y * 32768; }
    static bool diagonal(uint32_t x, uint32_t y) { return x * (kTangent + 65536) >= y * 32768; }
};
struct FactorTwo {
    static bool horizontal(uint32_t x, uint32_t y) { return x > 2 * y; }
    static bool diagonal(uint32_t x, uint32_t y) { return y <= 2 * x; }
};

// Magnitudes are |gx| + |gy|, or squares; M holds them all but 2^31, which counts as 2^31 - 1: no other square sum
// is there.
template <uint32_t K, class M, bool squares>
struct SobelEdges {
    using Magnitude = M;
    using Sectors = Tangents;
    static constexpr uint32_t kKernel = K, kMargin = 1; // pixels at the border that are none
    static constexpr bool kSquares = squares, kCentral = false;
    static constexpr bool kStrictDiagonals = true; // above both diagonal neighbours, not only above the first
};
struct DifferenceEdges {
    using Magnitude = int32_t;
    using Sectors = FactorTwo;
    static constexpr uint32_t kKernel = 3, kMargin = 2;
    static constexpr bool kSquares = true, kCentral = true, kStrictDiagonals = false;
};

// A magnitude above `low` is weak, one above `high` strong.
struct Limits {
    int32_t low, high;
};

// A row of a band; magnitudes of the rows around it are `pitch` elements away.
template <class M>
struct BandRow {
    const int16_t *gx, *gy;
    const M* m;
    ptrdiff_t pitch;
};

struct EdgeImage {
    Plane<uint8_t> plane;
    int16_t *gx, *gy; // or null
    uint32_t gradStride;
};

// Whether any byte of a word is a weak mark: its highest bit is set, its lowest is not.
static inline uint32_t weakBytes(const uint8_t* p)
{
    uint32_t word;
    memcpy(&word, p, sizeof word);
    return (word >> 7) & ~word & 0x01010101;
}

// Makes weak marks strong that touch a strong one, from those on the stack on.
static inline void trace(uint8_t* marks, size_t pitch, uint32_t* stack, uint32_t* top)
{
    while (top != stack) {
        const uint32_t place = *--top;
        uint8_t* const at = marks + place;
        if ((weakBytes(at - pitch - 1) | weakBytes(at - 1) | weakBytes(at + pitch - 1)) == 0) continue;
        for (uint8_t* row = at - pitch; row <= at + pitch; row += pitch) {
            for (int x = -1; x <= 1; ++x) {
                if (row[x] != kWeak) continue;
                row[x] = kStrong;
                *top++ = static_cast<uint32_t>(row + x - marks);
            }
        }
    }
}

// Rows that a band takes at a time: as many as the nearest caches hold.
static constexpr uint32_t bandRows(uint32_t width)
{
    const uint32_t rows = 8192 / (width / 4 + 1);
    return rows < 4 ? 4 : rows > 32 ? 32 : rows;
}

template <class Kernels, class Detector>
odxStatus detectEdges(const EdgeImage& image, Limits limits)
{
    using M = typename Detector::Magnitude;
    constexpr uint32_t r = Detector::kKernel / 2, margin = Detector::kMargin;
    const Plane<uint8_t>& plane = image.plane;
    const uint32_t width = plane.width, height = plane.height;
    const bool inside = width > 2 * margin && height > 2 * margin;
    const uint64_t pitch = (uint64_t{width} + 2 * r + kSlack + 63) & ~uint64_t{63};
    const uint32_t bandHeight = bandRows(width);

    // The first two rows of a band are the last two of the one before it.
    const uint64_t rows = uint64_t{bandHeight} + 2,
                   area = inside ? uint64_t{width - 2 * margin} * (height - 2 * margin) : 1;
    const Scratch<uint8_t> source(pitch * (rows + 2 * r)), marks(inside ? pitch * height + kSlack : 1);
    const Scratch<int16_t> gradients(2 * pitch * rows);
    const Scratch<M> magnitudes(pitch * rows);
    const Scratch<uint32_t> stack(area);
    if (!source || !marks || !gradients || !magnitudes || !stack) return ONDRIX_NO_MEMORY;
    int16_t *const gx = gradients.get(), *const gy = gx + pitch * rows;
    M* const m = magnitudes.get();
    uint32_t* top = stack.get();

    const auto marksOf = [&](uint32_t y) { return marks.get() + pitch * y; };
    const auto thinRow = [&](uint32_t y, size_t row) { // which is that of the band
        uint8_t* const out = marksOf(y);
        const BandRow<M> at = {gx + pitch * row + margin, gy + pitch * row + margin, m + pitch * row + margin,
                               static_cast<ptrdiff_t>(pitch)};
        const uint32_t count = width - 2 * margin;
        top = Kernels::template thin<Detector>(at, count, limits, out + margin,
                                               static_cast<uint32_t>(out + margin - marks.get()), top);
        memset(out, 0, margin);
        memset(out + width - margin, 0, margin + 2);
    };
    if (inside) {
        for (uint32_t y = 0; y < margin; ++y) {
            memset(marksOf(y), 0, pitch);
            memset(marksOf(height - 1 - y), 0, pitch);
        }
    }

    uint32_t kept = 0; // rows of the band before
    for (uint32_t y0 = 0, count; y0 < height; y0 += count) {
        count = height - y0 < bandHeight ? height - y0 : bandHeight;
        for (uint32_t i = 0; i < count + 2 * r; ++i) {
            border::copyLine(plane, border::Outside<uint8_t>{true, 0}, -int64_t{r}, int64_t{y0} + i - r,
                             width + 2 * r, source.get() + pitch * i);
        }
        int16_t *const newX = gx + pitch * kept, *const newY = gy + pitch * kept;
        Kernels::template gradients<Detector>(source.get(), pitch, newX, newY, pitch, width, count);
        for (uint32_t i = 0; i < count; ++i) {
            const size_t row = pitch * i, bytes = sizeof(int16_t) * size_t{width};
            if (image.gx != nullptr) memcpy(rowOf(image.gx, image.gradStride, y0 + i), newX + row, bytes);
            if (image.gy != nullptr) memcpy(rowOf(image.gy, image.gradStride, y0 + i), newY + row, bytes);
            if (inside)
                Kernels::template magnitudes<Detector>(newX + row, newY + row, m + pitch * kept + row, width);
        }
        const uint32_t filled = kept + count; // of the band, which begins with row y0 - kept of the image
        for (uint32_t i = 1; inside && i + 1 < filled; ++i) {
            const uint32_t y = y0 - kept + i;
            if (y >= margin && y < height - margin) thinRow(y, i);
        }
        kept = filled < 2 ? filled : 2;
        const size_t last = pitch * (filled - kept);
        if (last != 0) {
            memmove(gx, gx + last, sizeof *gx * pitch * kept);
            memmove(gy, gy + last, sizeof *gy * pitch * kept);
            memmove(m, m + last, sizeof *m * pitch * kept);
        }
    }

    if (inside) trace(marks.get(), pitch, stack.get(), top);
    for (uint32_t y = 0; y < height; ++y) {
        uint8_t* const out = rowOf(plane.dst, plane.dstStride, y);
        if (inside) {
            Kernels::finish(marksOf(y), out, width);
        } else {
            memset(out, 0, width);
        }
    }
    return ONDRIX_SUCCESS;
}

// ---- the operations ----

static inline int32_t limitOf(int threshold)
{
    const uint32_t magnitude =
        threshold < 0 ? 0u - static_cast<uint32_t>(threshold) : static_cast<uint32_t>(threshold);
    return magnitude < INT16_MAX ? static_cast<int32_t>(magnitude) : INT16_MAX;
}

// Squares of differences of bytes are below 2^18, and at least, not above, the limits.
static inline int32_t limitOfSquares(int threshold)
{
    const int32_t limit = threshold < 0 ? 0 : threshold < 512 ? threshold : 512;
    return limit * limit - 1;
}

template <class Kernels>
odxStatus sobelEdges(const EdgeImage& image, uint32_t kernelSize, int lowThresh, int highThresh, bool squares)
{
    const int32_t low = limitOf(lowThresh), high = limitOf(highThresh);
    if (squares) {
        const Limits limits = {low * low, high * high};
        switch (kernelSize) {
        case 3:
            return detectEdges<Kernels, SobelEdges<3, int32_t, true>>(image, limits);
        case 5:
            return detectEdges<Kernels, SobelEdges<5, int32_t, true>>(image, limits);
        case 7:
            return detectEdges<Kernels, SobelEdges<7, int32_t, true>>(image, limits);
        default:
            return ONDRIX_BAD_PARAMETER;
        }
    }
    switch (kernelSize) {
    case 3:
        return detectEdges<Kernels, SobelEdges<3, int16_t, false>>(image, {low, high});
    case 5:
        return detectEdges<Kernels, SobelEdges<5, int16_t, false>>(image, {low, high});
    case 7:
        return detectEdges<Kernels, SobelEdges<7, int32_t, false>>(image, {low, high}); // up to 2^16
    default:
        return ONDRIX_BAD_PARAMETER;
    }
}

template <class Kernels>
odxStatus differenceEdges(const EdgeImage& image, int low, int high)
{
    return detectEdges<Kernels, DifferenceEdges>(image, {limitOfSquares(low), limitOfSquares(high)});
}

} // namespace odx::edge

#endif
