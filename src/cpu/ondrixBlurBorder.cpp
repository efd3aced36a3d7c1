// Border pixels of the smoothing filters.
#include "cpu/image.h"
#include "cpu/ondrixBlur.h"

#include <string.h>

namespace odx::blur
{

namespace
{

template <int K>
struct Binomial; // weights of order K - 1, which sum to 2^(K-1)
template <>
struct Binomial<3> {
    static constexpr uint32_t weight[3] = {1, 2, 1};
};
template <>
struct Binomial<5> {
    static constexpr uint32_t weight[5] = {1, 4, 6, 4, 1};
};
template <>
struct Binomial<11> {
    static constexpr uint32_t weight[11] = {1, 10, 45, 120, 210, 252, 210, 120, 45, 10, 1};
};

// The taps of a kernel of size K, centred on `at`, that lie inside [0, size): tap k is at `first + k - begin`.
struct Taps {
    uint32_t begin, end; // tap numbers
    uint32_t first;      // position of tap `begin`
    uint32_t weight;     // their weights together
};

template <int K>
Taps tapsInside(uint32_t at, uint32_t size)
{
    constexpr uint32_t r = K / 2;
    Taps taps;
    taps.begin = at < r ? r - at : 0;
    taps.end = at + r < size ? K : r + (size - at);
    taps.first = at + taps.begin - r;
    taps.weight = 0;
    for (uint32_t k = taps.begin; k < taps.end; ++k)
        taps.weight += Binomial<K>::weight[k];
    return taps;
}

// Quotient with the rounding of the destination's type: signed quotients round toward zero. The sums of 32-bit
// pixels are modulo 2^32 before they are divided.
uint8_t quotient(uint32_t sum, uint32_t weight, uint8_t)
{
    return static_cast<uint8_t>(sum / weight);
}
int16_t quotient(uint32_t sum, uint32_t weight, int16_t)
{
    return static_cast<int16_t>(static_cast<int32_t>(sum) / static_cast<int32_t>(weight));
}
int32_t quotient(uint32_t sum, uint32_t weight, int32_t)
{
    return static_cast<int32_t>(sum) / static_cast<int32_t>(weight);
}

// The same for outputs that have all their horizontal taps, whose weights sum to 2^(K-1).
template <int K, class T>
struct Quotient {
    uint32_t weight;

    explicit Quotient(uint32_t vertical) : weight(vertical << (K - 1)) {}
    T operator()(uint32_t sum) const { return quotient(sum, weight, T()); }
};

// Exact without a division: sums of bytes shifted by K - 1 have at most 18 bits and the vertical weight at most
// 10, so that the error of the rounded-up reciprocal stays below 2^28 / 2^32.
template <int K>
struct Quotient<K, uint8_t> {
    uint32_t reciprocal;

    explicit Quotient(uint32_t vertical) : reciprocal(static_cast<uint32_t>((uint64_t{1} << 32) / vertical + 1)) {}
    uint8_t operator()(uint32_t sum) const
    {
        return static_cast<uint8_t>((uint64_t{sum >> (K - 1)} * reciprocal) >> 32);
    }
};

// Output pixels [x0, x1) of row y: vertical sums of the columns that they need, at most kChunk + K - 1 of them,
// then horizontal sums of those.
constexpr uint32_t kChunk = 256;

template <int K, class T>
void binomialSpan(const Plane<T>& plane, uint32_t y, uint32_t x0, uint32_t x1)
{
    constexpr uint32_t r = K / 2;
    const uint32_t left = x0 < r ? 0 : x0 - r;
    const uint32_t right = x1 + r < plane.width ? x1 + r : plane.width;
    const Taps vertical = tapsInside<K>(y, plane.height);

    uint32_t column[kChunk + K - 1] = {};
    for (uint32_t k = vertical.begin; k < vertical.end; ++k) {
        const T* const row = rowOf(plane.src, plane.srcStride, vertical.first + (k - vertical.begin)) + left;
        const uint32_t weight = Binomial<K>::weight[k];
        for (uint32_t x = 0; x < right - left; ++x)
            column[x] += weight * static_cast<uint32_t>(row[x]);
    }

    // Most outputs of a span have all their horizontal taps.
    const uint32_t allFrom = x0 < r ? r : x0;
    const uint32_t allTo = x1 + r < plane.width ? x1 : plane.width - r;
    T* const out = rowOf(plane.dst, plane.dstStride, y);
    const auto some = [&](uint32_t x) {
        const Taps horizontal = tapsInside<K>(x, plane.width);
        uint32_t sum = 0;
        for (uint32_t k = horizontal.begin; k < horizontal.end; ++k) {
            sum += Binomial<K>::weight[k] * column[horizontal.first + (k - horizontal.begin) - left];
        }
        out[x] = quotient(sum, vertical.weight * horizontal.weight, T());
    };
    if (plane.width < K || allFrom >= allTo) {
        for (uint32_t x = x0; x < x1; ++x)
            some(x);
        return;
    }
    for (uint32_t x = x0; x < allFrom; ++x)
        some(x);
    const Quotient<K, T> divide(vertical.weight);
    for (uint32_t x = allFrom; x < allTo; ++x) {
        uint32_t sum = 0;
        for (uint32_t k = 0; k < K; ++k)
            sum += Binomial<K>::weight[k] * column[x - r + k - left];
        out[x] = divide(sum);
    }
    for (uint32_t x = allTo; x < x1; ++x)
        some(x);
}

template <int K, class T>
void binomialSpans(const Plane<T>& plane, uint32_t y, uint32_t x0, uint32_t x1)
{
    for (uint32_t x = x0, count; x < x1; x += count) {
        count = x1 - x < kChunk ? x1 - x : kChunk;
        binomialSpan<K>(plane, y, x, x + count);
    }
}

} // namespace

template <int K, class T>
void binomialBorder(const Plane<T>& plane)
{
    constexpr uint32_t r = K / 2;
    const bool interior = plane.width >= K && plane.height >= K;
    for (uint32_t y = 0; y < plane.height; ++y) {
        if (interior && y >= r && y < plane.height - r) {
            binomialSpan<K>(plane, y, 0, r);
            binomialSpan<K>(plane, y, plane.width - r, plane.width);
        } else {
            binomialSpans<K>(plane, y, 0, plane.width);
        }
    }
}

template void binomialBorder<3, uint8_t>(const Plane<uint8_t>&);
template void binomialBorder<5, uint8_t>(const Plane<uint8_t>&);
template void binomialBorder<11, uint8_t>(const Plane<uint8_t>&);
template void binomialBorder<5, int16_t>(const Plane<int16_t>&);
template void binomialBorder<5, int32_t>(const Plane<int32_t>&);

namespace
{

// Three neighbouring pixels on a line parallel to an edge.
struct Triple {
    uint32_t before, centre, after;
};

// The 3x3 filters of a window that is given as its line outside the image, its line on the edge, and its line
// inside. All three are symmetric, so that the same code serves rows and columns.
uint8_t gaussian(const Triple& outside, const Triple& edge, const Triple& inside)
{
    return static_cast<uint8_t>((outside.before + 2 * outside.centre + outside.after + 2 * edge.before +
                                 4 * edge.centre + 2 * edge.after + inside.before + 2 * inside.centre +
                                 inside.after) >>
                                4);
}

uint8_t box(const Triple& outside, const Triple& edge, const Triple& inside)
{
    return boxMean(outside.before + outside.centre + outside.after + edge.before + edge.centre + edge.after +
                       inside.before + inside.centre + inside.after,
                   kBox3Reciprocal);
}

uint32_t smaller(uint32_t a, uint32_t b)
{
    return a < b ? a : b;
}
uint32_t larger(uint32_t a, uint32_t b)
{
    return a < b ? b : a;
}
uint32_t middle(uint32_t a, uint32_t b, uint32_t c)
{
    return larger(smaller(a, b), smaller(larger(a, b), c));
}

Triple sorted(const Triple& t)
{
    return {smaller(smaller(t.before, t.centre), t.after), middle(t.before, t.centre, t.after),
            larger(larger(t.before, t.centre), t.after)};
}

uint8_t median(const Triple& outside, const Triple& edge, const Triple& inside)
{
    const Triple a = sorted(outside), b = sorted(edge), c = sorted(inside);
    return static_cast<uint8_t>(middle(larger(larger(a.before, b.before), c.before),
                                       middle(a.centre, b.centre, c.centre),
                                       smaller(smaller(a.after, b.after), c.after)));
}

using Filter3x3 = uint8_t(const Triple&, const Triple&, const Triple&);

// How an image goes on beyond its edges.
struct Outside {
    bool replicate;
    uint32_t value;

    uint32_t operator()(uint32_t nearest) const { return replicate ? nearest : value; }
};

// A line of pixels: `at(i)` for -1 <= i <= count, where the two ends may be outside the image.
struct Line {
    const uint8_t* first;
    ptrdiff_t step;
    uint32_t count;
    bool beginsAtEdge, endsAtEdge;

    uint32_t before(const Outside& outside) const { return beginsAtEdge ? outside(first[0]) : first[-step]; }
    uint32_t after(const Outside& outside, uint32_t i) const
    {
        return i + 1 == count && endsAtEdge ? outside(first[step * static_cast<ptrdiff_t>(i)])
                                            : first[step * (static_cast<ptrdiff_t>(i) + 1)];
    }
};

// Filters the pixels of a line along an edge. `inward` leads from it to the neighbouring line inside the image.
template <Filter3x3* filter>
void filterLine(const Line& edge, ptrdiff_t inward, const Outside& outside, uint8_t* dst, ptrdiff_t dstStep)
{
    Line inside = edge;
    inside.first += inward;
    Triple e = {0, edge.before(outside), edge.first[0]};
    Triple n = {0, inside.before(outside), inside.first[0]};
    for (uint32_t i = 0; i < edge.count; ++i, dst += dstStep) {
        e = {e.centre, e.after, edge.after(outside, i)};
        n = {n.centre, n.after, inside.after(outside, i)};
        const Triple o = {outside(e.before), outside(e.centre), outside(e.after)};
        *dst = filter(o, e, n);
    }
}

// Images that are one pixel wide or high have no inner neighbours: every window is put together pixel by pixel.
template <Filter3x3* filter>
void filterThin(const Plane<uint8_t>& plane, const Outside& outside)
{
    const auto pixel = [&](int64_t x, int64_t y) {
        const int64_t w = plane.width, h = plane.height;
        const bool in = x >= 0 && x < w && y >= 0 && y < h;
        const int64_t nx = x < 0 ? 0 : x < w ? x : w - 1, ny = y < 0 ? 0 : y < h ? y : h - 1;
        const uint32_t nearest = rowOf(plane.src, plane.srcStride, static_cast<size_t>(ny))[nx];
        return in ? nearest : outside(nearest);
    };
    const auto triple = [&](int64_t x, int64_t y) {
        return Triple{pixel(x - 1, y), pixel(x, y), pixel(x + 1, y)};
    };
    for (uint32_t y = 0; y < plane.height; ++y) {
        for (uint32_t x = 0; x < plane.width; ++x) {
            rowOf(plane.dst, plane.dstStride, y)[x] =
                filter(triple(x, int64_t{y} - 1), triple(x, y), triple(x, int64_t{y} + 1));
        }
    }
}

template <Filter3x3* filter>
void filterFrame(const Plane<uint8_t>& plane, const Outside& outside)
{
    const uint32_t w = plane.width, h = plane.height;
    if (w < 2 || h < 2) return filterThin<filter>(plane, outside);

    const ptrdiff_t stride = static_cast<ptrdiff_t>(plane.srcStride),
                    dstStride = static_cast<ptrdiff_t>(plane.dstStride);
    const uint8_t* const bottom = rowOf(plane.src, plane.srcStride, h - 1);
    filterLine<filter>({plane.src, 1, w, true, true}, stride, outside, plane.dst, 1);
    filterLine<filter>({bottom, 1, w, true, true}, -stride, outside, rowOf(plane.dst, plane.dstStride, h - 1), 1);

    // The columns between the corners.
    const uint8_t* const src = plane.src + stride;
    uint8_t* const dst = plane.dst + dstStride;
    if (h == 2) return;
    filterLine<filter>({src, stride, h - 2, false, false}, 1, outside, dst, dstStride);
    filterLine<filter>({src + w - 1, stride, h - 2, false, false}, -1, outside, dst + w - 1, dstStride);
}

} // namespace

void gaussian3x3Border(const Plane<uint8_t>& plane, odxBorderType type, uint32_t value)
{
    filterFrame<gaussian>(plane, {type == ONDRIX_BORDER_REPLICATE, value & 0xFF});
}

void box3x3Border(const Plane<uint8_t>& plane, odxBorderType type, uint32_t value)
{
    filterFrame<box>(plane, {type == ONDRIX_BORDER_REPLICATE, type == ONDRIX_BORDER_CONSTANT ? value & 0xFF : 0});
}

void median3x3Border(const Plane<uint8_t>& plane, odxBorderType type, uint32_t value)
{
    filterFrame<median>(plane, {type == ONDRIX_BORDER_REPLICATE, value & 0xFF});
}

} // namespace odx::blur
