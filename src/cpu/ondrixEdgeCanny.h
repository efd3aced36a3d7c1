// Canny edges: what reference and SIMD code have in common, which is everything but loops over rows.
//
// The image goes through a band of a few rows that stays in the cache: source rows with replicated margins, their
// gradients, their magnitudes. Pixels that stay after thinning are marked in an image of bytes. Strong ones, or
// weak ones that touch one of them and so become strong, are put on a stack, from which weak neighbours are
// reached. Each pixel comes to the stack once at most.
//
// A detector says what kind of edges: the types below. Kernels are a column's loops, with static functions, each
// for the part of a detector that it depends on:
//
//   gradients<Gradients>(src, stride, gx, gy, pitch, width, rows)
//                       rows of both gradients; `src` is the uppermost leftmost tap of the first, the pitch in
//                       elements
//   magnitudes<Magnitudes>(gx, gy, m, count)
//   thin<Thinning>(row, count, limits, marks, place, stack)
//                       marks of `count` pixels; unless kReaches, it stores the places of strong ones, of which
//                       the first pixel's is `place`; returns the end of the stack
//   reach(marks, pitch, count, place, stack)
//                       with kReaches alone: makes weak marks strong that touch a strong one, in their row or one
//                       beside it, and stores their places in the same way
//   finish(marks, dst, count)
//                       255 where a mark is strong, else 0
//
// All rows but those of dst are followed by kSlack elements, which kernels may read, and write. What is left, the
// way through the image, is the same for all of them: one function, which knows a detector's loops by their
// addresses.
#ifndef ODX_CPU_ONDRIX_EDGE_CANNY_H
#define ODX_CPU_ONDRIX_EDGE_CANNY_H

#include "cpu/ondrixEdge.h"

#include <stddef.h>

namespace odx::edge
{

constexpr uint32_t kSlack = 64;
constexpr uint8_t kWeak = 128, kStrong = 1; // marks

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

// What each of a detector's loops depends on, so that detectors share them.
template <uint32_t kernel, bool central>
struct Gradients {
    static constexpr uint32_t kKernel = kernel;
    static constexpr bool kCentral = central;
};
template <class M, bool squares>
struct Magnitudes {
    using Magnitude = M;
    static constexpr bool kSquares = squares;
};
template <class M, class DetectorSectors, bool strict>
struct Thinning {
    using Magnitude = M;
    using Sectors = DetectorSectors;
    static constexpr bool kStrictDiagonals = strict; // above both diagonal neighbours, not only above the first
};

// Magnitudes are |gx| + |gy|, or squares; M holds them all but 2^31, which counts as 2^31 - 1: no other square sum
// is there.
template <uint32_t K, class M, bool squares>
struct SobelEdges {
    using Magnitude = M;
    static constexpr uint32_t kMargin = 1; // pixels at the border that are none
    using GradientLoop = Gradients<K, false>;
    using MagnitudeLoop = Magnitudes<M, squares>;
    using ThinningLoop = Thinning<M, Tangents, true>;
};
struct DifferenceEdges {
    using Magnitude = int32_t;
    static constexpr uint32_t kMargin = 2;
    using GradientLoop = Gradients<3, true>;
    using MagnitudeLoop = Magnitudes<int32_t, true>;
    using ThinningLoop = Thinning<int32_t, FactorTwo, false>;
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

// The loops of a column for a detector.
struct Loops {
    uint32_t kernel, margin;
    size_t magnitude; // its size
    void (*gradients)(const uint8_t* src, size_t stride, int16_t* gx, int16_t* gy, size_t pitch, uint32_t width,
                      uint32_t rows);
    void (*magnitudes)(const int16_t* gx, const int16_t* gy, void* m, uint32_t count);
    uint32_t* (*thin)(const BandRow<void>& row, uint32_t count, Limits limits, uint8_t* marks, uint32_t place,
                      uint32_t* stack);
    uint32_t* (*reach)(uint8_t* marks, ptrdiff_t pitch, uint32_t count, uint32_t place,
                       uint32_t* stack); // or null
    void (*finish)(const uint8_t* marks, uint8_t* dst, uint32_t count);
};

odxStatus detectEdges(const Loops& loops, const EdgeImage& image, Limits limits);

template <class Kernels, class Loop>
void gradientRows(const uint8_t* src, size_t stride, int16_t* gx, int16_t* gy, size_t pitch, uint32_t width,
                  uint32_t rows)
{
    Kernels::template gradients<Loop>(src, stride, gx, gy, pitch, width, rows);
}
template <class Kernels, class Loop>
void magnitudeRow(const int16_t* gx, const int16_t* gy, void* m, uint32_t count)
{
    Kernels::template magnitudes<Loop>(gx, gy, static_cast<typename Loop::Magnitude*>(m), count);
}
template <class Kernels, class Loop>
uint32_t* thinnedRow(const BandRow<void>& row, uint32_t count, Limits limits, uint8_t* marks, uint32_t place,
                     uint32_t* stack)
{
    using M = typename Loop::Magnitude;
    const BandRow<M> typed = {row.gx, row.gy, static_cast<const M*>(row.m), row.pitch};
    if constexpr (Kernels::kReaches) {
        Kernels::template thin<Loop>(typed, count, limits, marks);
        return stack;
    } else {
        return Kernels::template thin<Loop>(typed, count, limits, marks, place, stack);
    }
}
template <class Kernels>
uint32_t* reachedRow(uint8_t* marks, ptrdiff_t pitch, uint32_t count, uint32_t place, uint32_t* stack)
{
    if constexpr (Kernels::kReaches) return Kernels::reach(marks, pitch, count, place, stack);
    return stack;
}
template <class Kernels>
void finishedRow(const uint8_t* marks, uint8_t* dst, uint32_t count)
{
    Kernels::finish(marks, dst, count);
}

template <class Kernels, class Detector>
odxStatus detectEdges(const EdgeImage& image, Limits limits)
{
    using Gradient = typename Detector::GradientLoop;
    static constexpr Loops kLoops = {Gradient::kKernel,
                                     Detector::kMargin,
                                     sizeof(typename Detector::Magnitude),
                                     gradientRows<Kernels, Gradient>,
                                     magnitudeRow<Kernels, typename Detector::MagnitudeLoop>,
                                     thinnedRow<Kernels, typename Detector::ThinningLoop>,
                                     Kernels::kReaches ? reachedRow<Kernels> : nullptr,
                                     finishedRow<Kernels>};
    return detectEdges(kLoops, image, limits);
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
