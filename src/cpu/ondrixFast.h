// What the reference and SIMD corner detectors share: the circle, the arc test, masks and corner lists.
#ifndef ODX_CPU_ONDRIX_FAST_H
#define ODX_CPU_ONDRIX_FAST_H

#include "cpu/image.h"

#include <stddef.h>
#include <stdint.h>
#include <string.h>
#include <utility>

#define ODX_FAST_INLINE [[gnu::always_inline]] static inline
#define ODX_FAST_MEMBER [[gnu::always_inline]] inline

namespace odx::fast
{

struct Offset {
    int8_t dx, dy;
};

// The circle around a pixel, and its greatest coordinate.
static constexpr int kCircleSize = 16;
static constexpr uint32_t kRadius = 3;
static constexpr Offset kCircle[kCircleSize] = {{0, 3},  {1, 3},  {2, 2},  {3, 1},   {3, 0},   {3, -1},
                                                {2, -2}, {1, -3}, {0, -3}, {-1, -3}, {-2, -2}, {-3, -1},
                                                {-3, 0}, {-3, 1}, {-2, 2}, {-1, 3}};

// The pixels of a circle, which may be one value or a vector each.
template <class T>
struct Circle {
    T at[kCircleSize];
};

// The circle whose pixel k is at(k).
template <class T, class At, size_t... k>
ODX_FAST_INLINE Circle<T> circleOf(At at, std::index_sequence<k...>)
{
    return {{at(k)...}};
}
template <class T, class At>
ODX_FAST_INLINE Circle<T> circleOf(At at)
{
    return circleOf<T>(at, std::make_index_sequence<kCircleSize>());
}

// Inner over each arc of N neighbours, then Outer over the arcs. With the minimum inside and the maximum outside,
// this is the level that some arc stays above or at; the other way round, the level that some arc stays below or
// at.
//
// Two arcs that start at k and k + 1 share N - 1 values, so a pair of arcs costs one reduction of those, which
// doubles from 1 to 2, 4 and 8 values, and one choice between the two ends.
template <int N, class Inner, class Outer, class T>
ODX_FAST_INLINE T overArcs(const Circle<T>& circle)
{
    static_assert(N == 9 || N == 10);
    const auto at = [&](int k) __attribute__((always_inline))
    {
        return circle.at[k % kCircleSize];
    };
    const auto two = [&](int k) __attribute__((always_inline))
    {
        return Inner::of(at(k), at(k + 1));
    };
    const T twos[8] = {two(1), two(3), two(5), two(7), two(9), two(11), two(13), two(15)};
    const auto four = [&](int i) __attribute__((always_inline))
    {
        return Inner::of(twos[i], twos[(i + 1) % 8]);
    };
    const T fours[8] = {four(0), four(1), four(2), four(3), four(4), four(5), four(6), four(7)};
    const auto arcsFrom = [&](int k) __attribute__((always_inline))
    {
        T common = Inner::of(fours[k / 2], fours[(k / 2 + 2) % 8]);
        if constexpr (N == 10) common = Inner::of(common, at(k + 9));
        return Inner::of(common, Outer::of(at(k), at(k + N)));
    };
    return Outer::of(Outer::of(Outer::of(arcsFrom(0), arcsFrom(2)), Outer::of(arcsFrom(4), arcsFrom(6))),
                     Outer::of(Outer::of(arcsFrom(8), arcsFrom(10)), Outer::of(arcsFrom(12), arcsFrom(14))));
}

// A bound of overArcs from two opposite pairs: an arc of more than half the circle holds a pixel of each.
template <class Inner, class Outer, class T>
ODX_FAST_INLINE T overPairs(T a, T oppositeA, T b, T oppositeB)
{
    return Inner::of(Outer::of(a, oppositeA), Outer::of(b, oppositeB));
}

// The pixels that are tested: at least the radius away from every edge.
struct Area {
    uint32_t left, right, top, bottom; // right and bottom are beyond the last pixel

    ODX_FAST_MEMBER bool empty() const { return left >= right || top >= bottom; }
};

ODX_FAST_INLINE Area areaInside(uint32_t width, uint32_t height, uint32_t border)
{
    if (border < kRadius) border = kRadius;
    const auto beyond = [&](uint32_t length) { return length > border ? length - border : 0; };
    return {border, beyond(width), border, beyond(height)};
}

// What a detector excludes: nothing, or what a mask says. `enter` comes before the pixels of a row.
struct NoMask {
    ODX_FAST_MEMBER void enter(uint32_t) {}
    ODX_FAST_MEMBER bool excludes(uint32_t) const { return false; }
};

// A bit-packed mask over an image: a set bit excludes the pixels that it covers.
struct Mask {
    const uint8_t* bits;
    size_t rowBytes;
    int finer, coarser; // how often the mask's size, or the image's, is doubled
    const uint8_t* row;

    // Doubled coordinates need not fit 32 bits.
    ODX_FAST_MEMBER uint64_t scaled(uint32_t v) const { return (uint64_t{v} << finer) >> coarser; }

    ODX_FAST_MEMBER void enter(uint32_t y) { row = bits + rowBytes * static_cast<size_t>(scaled(y)); }
    ODX_FAST_MEMBER bool excludes(uint32_t x) const
    {
        const uint64_t bit = scaled(x);
        return (row[bit / 8] << (bit % 8) & 0x80) != 0;
    }
};

// Whether the sizes fit, with the same factor of 1, 2, 4 or 8 in both directions.
ODX_FAST_INLINE bool fitMask(Mask& mask, const uint8_t* bits, uint32_t width, uint32_t height, uint32_t maskWidth,
                             uint32_t maskHeight)
{
    mask.bits = bits;
    mask.rowBytes = size_t{maskWidth} / 8 + (maskWidth % 8 != 0 ? 1 : 0);
    for (int shift = 0; shift <= 3; ++shift) {
        const auto fits = [shift](uint64_t small, uint64_t large) { return small << shift == large; };
        const bool finer = fits(width, maskWidth) && fits(height, maskHeight);
        const bool coarser = fits(maskWidth, width) && fits(maskHeight, height);
        mask.finer = finer ? shift : 0;
        mask.coarser = finer ? 0 : shift;
        if (finer || coarser) return true;
    }
    return false;
}

// A list of corners. The capacity is tested after a corner is written, so the list always takes one.
struct CornerList {
    uint32_t* xy;
    uint32_t capacity;
    uint32_t count;

    // Whether the list is full now.
    ODX_FAST_MEMBER bool add(uint32_t x, uint32_t y)
    {
        xy[2 * size_t{count}] = x;
        xy[2 * size_t{count} + 1] = y;
        return ++count >= capacity;
    }
    // The same for several corners at once: those beyond the capacity are dropped.
    ODX_FAST_MEMBER bool add(const uint32_t* corners, uint32_t number)
    {
        const uint32_t room = (capacity == 0 ? 1 : capacity) - count, added = number < room ? number : room;
        memcpy(xy + 2 * size_t{count}, corners, 2 * sizeof *xy * added);
        count += added;
        return added == room;
    }
};

} // namespace odx::fast

#endif
