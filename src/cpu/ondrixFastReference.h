// The parts of the reference corner detectors that depend on the arc's length.
#ifndef ODX_CPU_ONDRIX_FAST_REFERENCE_H
#define ODX_CPU_ONDRIX_FAST_REFERENCE_H

#include "cpu/ondrixFast.h"
#include "cpu/ondrixFastC.h"
#include "frame/log.h"

namespace odx::fast
{

struct Min {
    template <class T>
    ODX_FAST_INLINE T of(T a, T b)
    {
        return a < b ? a : b;
    }
};
struct Max {
    template <class T>
    ODX_FAST_INLINE T of(T a, T b)
    {
        return a > b ? a : b;
    }
};

// How far some arc stays above or below the centre at least, as a signed number: a pixel is a corner with every
// smaller barrier.
template <int N>
ODX_FAST_INLINE int32_t contrast(const Circle<int32_t>& circle, int32_t centre)
{
    return Max::of(overArcs<N, Min, Max>(circle) - centre, centre - overArcs<N, Max, Min>(circle));
}

template <int N>
ODX_FAST_INLINE int32_t score(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier)
{
    const auto circle =
        circleOf<int32_t>([&](size_t k) __attribute__((always_inline)) { return int32_t{pixel[offsets[k]]}; });
    return Max::of(barrier, contrast<N>(circle, *pixel) - 1);
}

// How far a level that is above or below the centre is away from it; bytes throughout, as vectors like it.
ODX_FAST_INLINE uint8_t distance(uint8_t bright, uint8_t dark, uint8_t centre)
{
    const uint8_t above = static_cast<uint8_t>(Max::of(bright, centre) - centre);
    const uint8_t below = static_cast<uint8_t>(centre - Min::of(dark, centre));
    return Max::of(above, below);
}

// Whether the four compass points leave any of the pixels a chance.
ODX_FAST_INLINE bool mayHoldCorners(const uint8_t* pixels, ptrdiff_t stride, uint32_t count, uint8_t barrier)
{
    uint8_t farthest = 0;
    for (uint32_t i = 0; i < count; ++i) {
        const uint8_t* const p = pixels + i;
        const uint8_t south = p[3 * stride], north = p[-3 * stride], east = p[3], west = p[-3];
        const uint8_t bright = overPairs<Min, Max>(south, north, east, west);
        const uint8_t dark = overPairs<Max, Min>(south, north, east, west);
        farthest = Max::of(farthest, distance(bright, dark, *p));
    }
    return farthest > barrier;
}

// Sets the flags of the pixels that are corners.
template <int N>
ODX_FAST_INLINE void flagCorners(const uint8_t* __restrict pixels, ptrdiff_t stride, uint32_t count,
                                 uint8_t barrier, uint8_t* __restrict flags)
{
    for (uint32_t i = 0; i < count; ++i) {
        const uint8_t* const p = pixels + i;
        const auto circle = circleOf<uint8_t>([&](size_t k) __attribute__((always_inline)) {
            return p[kCircle[k].dy * stride + kCircle[k].dx];
        });
        const uint8_t bright = overArcs<N, Min, Max>(circle), dark = overArcs<N, Max, Min>(circle);
        flags[i] = distance(bright, dark, *p) > barrier;
    }
}

// Barriers of 0 to 254: pixels in blocks, of which most are without a corner.
template <int N, class Excluded>
static uint32_t detectByBlocks(const uint8_t* src, uint32_t stride, const Area& area, uint8_t barrier,
                               CornerList list, Excluded excluded)
{
    constexpr uint32_t kBlock = 64;
    for (uint32_t y = area.top; y < area.bottom; ++y) {
        const uint8_t* const row = rowOf(src, stride, y);
        excluded.enter(y);
        for (uint32_t x = area.left; x < area.right; x += kBlock) {
            const uint32_t count = Min::of(kBlock, area.right - x);
            if (!mayHoldCorners(row + x, stride, count, barrier)) continue;
            uint8_t flags[kBlock] = {};
            flagCorners<N>(row + x, stride, count, barrier, flags);
            for (uint32_t i = 0; i < count; ++i) {
                if (flags[i] != 0 && !excluded.excludes(x + i) && list.add(x + i, y)) return list.count;
            }
        }
    }
    return list.count;
}

// Any barrier, pixel by pixel.
template <int N, class Excluded>
static uint32_t detectEach(const uint8_t* src, uint32_t stride, const Area& area, int32_t barrier, CornerList list,
                           Excluded excluded)
{
    ptrdiff_t offsets[kCircleSize];
    make_offsets(offsets, stride);
    for (uint32_t y = area.top; y < area.bottom; ++y) {
        const uint8_t* const row = rowOf(src, stride, y);
        excluded.enter(y);
        for (uint32_t x = area.left; x < area.right; ++x) {
            const auto circle = circleOf<int32_t>([&](size_t k) __attribute__((always_inline)) {
                return int32_t{(row + x)[offsets[k]]};
            });
            if (contrast<N>(circle, row[x]) <= barrier || excluded.excludes(x)) continue;
            if (list.add(x, y)) return list.count;
        }
    }
    return list.count;
}

template <int N, class Excluded>
static uint32_t detect(const uint8_t* src, uint32_t stride, const Area& area, int32_t barrier, CornerList list,
                       Excluded excluded)
{
    if (area.empty() || barrier >= 255) return 0;
    if (barrier < 0) return detectEach<N>(src, stride, area, barrier, list, excluded);
    return detectByBlocks<N>(src, stride, area, static_cast<uint8_t>(barrier), list, excluded);
}

// Scores a list of corners through one of the routine pointers.
static inline void scoreCorners(decltype(&fast9_corner_scoreC) scoreOf, const uint8_t* src, uint32_t stride,
                                int32_t barrier, uint32_t count, const uint32_t* xy, uint32_t* scores)
{
    ptrdiff_t offsets[kCircleSize];
    make_offsets(offsets, stride);
    for (uint32_t i = 0; i < count; ++i) {
        const uint8_t* const pixel = rowOf(src, stride, xy[2 * size_t{i} + 1]) + xy[2 * size_t{i}];
        scores[i] = static_cast<uint32_t>(scoreOf(pixel, offsets, barrier));
    }
}

// Detects and scores into the caller's working memory, whose regions are the candidates, their scores and the row
// starts, and writes the survivors of the suppression.
//
// A list always takes one corner. With a capacity of 0 the three words for it are there all the same, since no
// candidate is in the last three rows, so that the row starts don't need their words.
template <class DetectAndScore>
static void suppress(DetectAndScore detectAndScore, uint32_t* tempBuf, uint32_t capacity, uint32_t* xy,
                     uint32_t* scores, uint32_t* nCorners)
{
    if (capacity == 0) capacity = 1;
    uint32_t* const candidates = tempBuf;
    uint32_t* const candidateScores = candidates + 2 * size_t{capacity};
    uint32_t* const rowStart = candidateScores + capacity;
    uint32_t count = 0;
    detectAndScore(candidates, candidateScores, &count);
    nms_processing(candidates, candidateScores, rowStart, count, xy, scores, nCorners);
}

} // namespace odx::fast

#endif
