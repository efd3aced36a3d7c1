// Border pixels of the smoothing filters.
#include "cpu/image.h"
#include "cpu/ondrixBlurRows.h"

#include <string.h>

namespace odx::blur
{

namespace
{

template <int K>
struct Binomial; // weights of order K - 1, which sum to 2^(K-1)
template <>
struct Binomial<3> {
    static constexpr uint16_t weight[3] = {1, 2, 1};
};
template <>
struct Binomial<5> {
    static constexpr uint16_t weight[5] = {1, 4, 6, 4, 1};
};
template <>
struct Binomial<11> {
    static constexpr uint16_t weight[11] = {1, 10, 45, 120, 210, 252, 210, 120, 45, 10, 1};
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

// A weight times a pixel; those of bytes fit 16 bits, which processors without wide vector products are quicker
// at.
template <class T>
uint32_t product(uint16_t weight, T pixel)
{
    return weight * static_cast<uint32_t>(pixel);
}
template <>
uint32_t product(uint16_t weight, uint8_t pixel)
{
    return static_cast<uint16_t>(weight * pixel);
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
        const uint16_t weight = Binomial<K>::weight[k];
        for (size_t x = 0; x < right - left; ++x)
            column[x] += product(weight, row[x]);
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
    for (size_t x = allFrom; x < allTo; ++x) {
        const uint32_t* const centre = column + (x - left);
        uint32_t sum = Binomial<K>::weight[r] * centre[0];
        for (size_t k = 1; k <= r; ++k)
            sum += Binomial<K>::weight[r - k] * (*(centre - k) + centre[k]);
        out[x] = divide(sum);
    }
    for (uint32_t x = allTo; x < x1; ++x)
        some(x);
}

template <int K, class T>
void binomialSpans(const Plane<T>& plane, uint32_t y, uint32_t x0, uint32_t x1)
{
    for (uint32_t x = x0, count; x < x1; x += count) {
        count = chunkOf(x1 - x);
        binomialSpan<K>(plane, y, x, x + count);
    }
}

// The K/2 outputs at one end of a row that has all its vertical taps. `columns` are the K - 1 columns at that end,
// from the row of the uppermost tap on.
template <int K, bool right, class T>
void binomialEnd(const T* columns, size_t stride, T* out)
{
    constexpr int r = K / 2;
    uint32_t sums[2 * r] = {};
    for (int k = 0; k < K; ++k, columns = rowOf(columns, stride, 1)) {
        for (int x = 0; x < 2 * r; ++x)
            sums[x] += product(Binomial<K>::weight[k], columns[x]);
    }
    for (int x = 0; x < r; ++x) { // from the end of the row inward
        uint32_t sum = 0, weight = 0;
        for (int k = r - x; k < K; ++k) {
            const int tap = x - r + k;
            sum += Binomial<K>::weight[k] * sums[right ? 2 * r - 1 - tap : tap];
            weight += Binomial<K>::weight[k];
        }
        out[right ? r - 1 - x : x] = Quotient<K, T>(weight)(sum);
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
            const T* const top = rowOf(plane.src, plane.srcStride, y - r);
            T* const out = rowOf(plane.dst, plane.dstStride, y);
            binomialEnd<K, false>(top, plane.srcStride, out);
            binomialEnd<K, true>(top + plane.width - 2 * r, plane.srcStride, out + plane.width - r);
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
    uint8_t before, centre, after;
};

// A 3x3 filter: a row of outputs, and one output from the lines of its window that are outside the image, on its
// edge and inside. The filters are symmetric, so that the same code serves rows and columns.
struct Gaussian {
    static constexpr auto row = gaussian3x3Row;
    static uint8_t pixel(const Triple& a, const Triple& b, const Triple& c)
    {
        return static_cast<uint8_t>((a.before + 2 * a.centre + a.after + 2 * b.before + 4 * b.centre +
                                     2 * b.after + c.before + 2 * c.centre + c.after) >>
                                    4);
    }
};

struct Box {
    static constexpr auto row = box3x3Row;
    static uint8_t pixel(const Triple& a, const Triple& b, const Triple& c)
    {
        return boxMean(static_cast<uint16_t>(a.before + a.centre + a.after + b.before + b.centre + b.after +
                                             c.before + c.centre + c.after),
                       kBox3Reciprocal);
    }
};

struct Median {
    static constexpr auto row = median3x3Row<uint8_t>;
    static uint8_t pixel(const Triple& a, const Triple& b, const Triple& c)
    {
        uint8_t window[] = {a.before, a.centre, a.after, b.before, b.centre, b.after, c.before, c.centre, c.after};
        sortColumeWiseInWindow3x3(window, 0, 2);
        return findMedianInSortedWindow3x3(window);
    }
};

// How an image goes on beyond its edges.
struct Outside {
    bool replicate;
    uint8_t value;

    uint8_t operator()(uint8_t nearest) const { return replicate ? nearest : value; }
};

// The top or bottom row of an image that is at least two pixels wide: chunks of the three rows of its windows are
// put together, then filtered as rows of the interior are.
template <class Filter>
void filterEdgeRow(const uint8_t* edge, const uint8_t* inside, uint32_t width, const Outside& outside,
                   uint8_t* dst)
{
    uint8_t lines[3][kChunk + 2];
    for (uint32_t x0 = 0, count; x0 < width; x0 += count) {
        count = chunkOf(width - x0);
        const bool first = x0 == 0, last = x0 + count == width;
        const auto copy = [&](uint8_t* line, const uint8_t* row) {
            const uint32_t from = first ? 1 : 0, to = last ? count + 1 : count + 2;
            memcpy(line + from, row + x0 + from - 1, to - from);
            if (first) line[0] = outside(row[0]);
            if (last) line[count + 1] = outside(row[width - 1]);
        };
        copy(lines[1], edge);
        copy(lines[2], inside);
        if (outside.replicate) {
            memcpy(lines[0], lines[1], count + 2);
        } else {
            memset(lines[0], outside.value, count + 2);
        }
        Filter::row(lines[0] + 1, lines[1] + 1, lines[2] + 1, dst + x0, count);
    }
}

// `count` pixels of the left or right column, corners excluded. `inward` leads to the next column.
template <class Filter>
void filterEdgeColumn(const uint8_t* edge, ptrdiff_t stride, ptrdiff_t inward, uint32_t count,
                      const Outside& outside, uint8_t* dst, ptrdiff_t dstStride)
{
    Triple e = {0, edge[-stride], edge[0]};
    Triple n = {0, edge[inward - stride], edge[inward]};
    for (uint32_t i = 0; i < count; ++i, edge += stride, dst += dstStride) {
        e = {e.centre, e.after, edge[stride]};
        n = {n.centre, n.after, edge[stride + inward]};
        const Triple o = outside.replicate ? e : Triple{outside.value, outside.value, outside.value};
        *dst = Filter::pixel(o, e, n);
    }
}

// Images that are one pixel wide or high: every window is put together pixel by pixel.
template <class Filter>
void filterThin(const Plane<uint8_t>& plane, const Outside& outside)
{
    const auto pixel = [&](int64_t x, int64_t y) -> uint8_t {
        const int64_t w = plane.width, h = plane.height;
        const bool in = x >= 0 && x < w && y >= 0 && y < h;
        const int64_t nx = x < 0 ? 0 : x < w ? x : w - 1, ny = y < 0 ? 0 : y < h ? y : h - 1;
        const uint8_t nearest = rowOf(plane.src, plane.srcStride, static_cast<size_t>(ny))[nx];
        return in ? nearest : outside(nearest);
    };
    const auto triple = [&](int64_t x, int64_t y) {
        return Triple{pixel(x - 1, y), pixel(x, y), pixel(x + 1, y)};
    };
    for (uint32_t y = 0; y < plane.height; ++y) {
        for (uint32_t x = 0; x < plane.width; ++x) {
            rowOf(plane.dst, plane.dstStride, y)[x] =
                Filter::pixel(triple(x, int64_t{y} - 1), triple(x, y), triple(x, int64_t{y} + 1));
        }
    }
}

template <class Filter>
void filterFrame(const Plane<uint8_t>& plane, const Outside& outside)
{
    const uint32_t w = plane.width, h = plane.height;
    if (w < 2 || h < 2) return filterThin<Filter>(plane, outside);

    const auto row = [&](uint32_t y) { return rowOf(plane.src, plane.srcStride, y); };
    filterEdgeRow<Filter>(row(0), row(1), w, outside, plane.dst);
    filterEdgeRow<Filter>(row(h - 1), row(h - 2), w, outside, rowOf(plane.dst, plane.dstStride, h - 1));
    if (h == 2) return;

    const ptrdiff_t stride = static_cast<ptrdiff_t>(plane.srcStride);
    const ptrdiff_t dstStride = static_cast<ptrdiff_t>(plane.dstStride);
    uint8_t* const dst = rowOf(plane.dst, plane.dstStride, 1);
    filterEdgeColumn<Filter>(row(1), stride, 1, h - 2, outside, dst, dstStride);
    filterEdgeColumn<Filter>(row(1) + w - 1, stride, -1, h - 2, outside, dst + w - 1, dstStride);
}

} // namespace

void gaussian3x3Border(const Plane<uint8_t>& plane, odxBorderType type, uint32_t value)
{
    filterFrame<Gaussian>(plane, {type == ONDRIX_BORDER_REPLICATE, static_cast<uint8_t>(value)});
}

void box3x3Border(const Plane<uint8_t>& plane, odxBorderType type, uint32_t value)
{
    const uint8_t constant = type == ONDRIX_BORDER_CONSTANT ? static_cast<uint8_t>(value) : 0;
    filterFrame<Box>(plane, {type == ONDRIX_BORDER_REPLICATE, constant});
}

void median3x3Border(const Plane<uint8_t>& plane, odxBorderType type, uint32_t value)
{
    filterFrame<Median>(plane, {type == ONDRIX_BORDER_REPLICATE, static_cast<uint8_t>(value)});
}

} // namespace odx::blur
