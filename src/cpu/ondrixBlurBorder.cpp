// Border pixels of the smoothing filters.
#include "cpu/border.h"
#include "cpu/ondrixBlurRows.h"

#include <type_traits>

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

// Sums of bytes fit 16 bits for 5x5 windows: 256 x 255.
template <int K, class T>
using Sum = std::conditional_t<sizeof(T) == 1 && K <= 5, uint16_t, uint32_t>;

// Exact without a division: sums of bytes shifted by K - 1 are at most 255 times the vertical weight, of at most 4
// (or 10) bits, so that the error of the rounded-up reciprocal stays below 2^16 / 2^16 (or 2^28 / 2^32).
template <int K>
struct Quotient<K, uint8_t> {
    using Wide = std::conditional_t<K <= 5, uint32_t, uint64_t>;
    static constexpr int bits = 8 * sizeof(Sum<K, uint8_t>);
    Sum<K, uint8_t> reciprocal;

    // Weights are 2 at least, that of the centre.
    explicit Quotient(uint32_t vertical)
        : reciprocal(static_cast<Sum<K, uint8_t>>((uint64_t{1} << bits) / vertical + 1))
    {
    }
    uint8_t operator()(Sum<K, uint8_t> sum) const
    {
        const auto shifted = static_cast<Sum<K, uint8_t>>(sum >> (K - 1));
        return static_cast<uint8_t>(static_cast<Sum<K, uint8_t>>((Wide{shifted} * reciprocal) >> bits));
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

    Sum<K, T> column[kChunk + K - 1] = {};
    for (uint32_t k = vertical.begin; k < vertical.end; ++k) {
        const T* const row = rowOf(plane.src, plane.srcStride, vertical.first + (k - vertical.begin)) + left;
        const uint16_t weight = Binomial<K>::weight[k];
        for (size_t x = 0; x < right - left; ++x)
            column[x] = static_cast<Sum<K, T>>(column[x] + product(weight, row[x]));
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
        const Sum<K, T>* const centre = column + (x - left);
        uint32_t sum = uint32_t{Binomial<K>::weight[r]} * centre[0];
        for (size_t k = 1; k <= r; ++k)
            sum += Binomial<K>::weight[r - k] * (uint32_t{*(centre - k)} + centre[k]);
        out[x] = divide(static_cast<Sum<K, T>>(sum));
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

// The K/2 outputs at one end of the rows that have all their vertical taps: the kernel is symmetric, so columns
// are filtered as rows are.
template <int K, class T>
void binomialEnds(const Plane<T>& plane, bool right)
{
    constexpr uint32_t r = K / 2;
    const uint32_t first = right ? plane.width - 2 * r : 0;
    border::forColumns<2 * r, r>(
        plane, first, r, plane.height - r, [&](const auto& lines, uint32_t y, uint32_t count) {
            T values[2 * r][border::kOutputs + 2 * r];
            const Plane<T> transposed = {lines[0],        count + 2 * r, 2 * r,
                                         sizeof lines[0], values[0],     sizeof values[0]};
            for (uint32_t k = right ? r : 0; k < (right ? 2 * r : r); ++k) {
                binomialSpans<K>(transposed, k, r, r + count);
                border::scatterColumn(plane, first + k, y, values[k] + r, count);
            }
        });
}

} // namespace

template <int K, class T>
void binomialBorder(const Plane<T>& plane)
{
    constexpr uint32_t r = K / 2;
    const auto rows = [&](uint32_t y0, uint32_t y1) {
        for (uint32_t y = y0; y < y1; ++y)
            binomialSpans<K>(plane, y, 0, plane.width);
    };
    if (plane.width < K || plane.height < K) return rows(0, plane.height);
    rows(0, r);
    rows(plane.height - r, plane.height);
    binomialEnds<K>(plane, false);
    binomialEnds<K>(plane, true);
}

template void binomialBorder<3, uint8_t>(const Plane<uint8_t>&);
template void binomialBorder<5, uint8_t>(const Plane<uint8_t>&);
template void binomialBorder<11, uint8_t>(const Plane<uint8_t>&);
template void binomialBorder<5, int16_t>(const Plane<int16_t>&);
template void binomialBorder<5, int32_t>(const Plane<int32_t>&);

namespace
{

// The 3x3 filters are symmetric.
template <void (*row3x3)(const uint8_t*, const uint8_t*, const uint8_t*, uint8_t*, uint32_t)>
struct Symmetric3x3 {
    static constexpr uint32_t K = 3;
    static void row(const uint8_t* const* lines, uint8_t* out, uint32_t count)
    {
        row3x3(lines[0] + 1, lines[1] + 1, lines[2] + 1, out, count);
    }
    static constexpr auto column = row;
};

// Sums of columns, then of rows; they fit 16 bits: 121 x 255.
template <uint32_t size>
struct BoxWindow {
    static constexpr uint32_t K = size;
    static void row(const uint8_t* const* lines, uint8_t* out, uint32_t count)
    {
        uint16_t columns[border::kOutputs + K - 1] = {};
        for (uint32_t k = 0; k < K; ++k) {
            for (size_t x = 0; x < count + K - 1; ++x)
                columns[x] = static_cast<uint16_t>(columns[x] + lines[k][x]);
        }
        for (size_t x = 0; x < count; ++x) {
            uint16_t sum = 0;
            for (size_t k = 0; k < K; ++k)
                sum = static_cast<uint16_t>(sum + columns[x + k]);
            out[x] = boxMean(sum, K == 5 ? kBox5Reciprocal : kBox11Reciprocal);
        }
    }
    static constexpr auto column = row;
};

} // namespace

template <uint32_t K>
void boxBorder(const Plane<uint8_t>& plane)
{
    border::filterFrame<BoxWindow<K>>(plane, {false, 0});
}

template void boxBorder<5>(const Plane<uint8_t>&);
template void boxBorder<11>(const Plane<uint8_t>&);

void gaussian3x3Border(const Plane<uint8_t>& plane, odxBorderType type, uint32_t value)
{
    border::filterFrame<Symmetric3x3<gaussian3x3Row>>(
        plane, {type == ONDRIX_BORDER_REPLICATE, static_cast<uint8_t>(value)});
}

void box3x3Border(const Plane<uint8_t>& plane, odxBorderType type, uint32_t value)
{
    const uint8_t constant = type == ONDRIX_BORDER_CONSTANT ? static_cast<uint8_t>(value) : 0;
    border::filterFrame<Symmetric3x3<box3x3Row>>(plane, {type == ONDRIX_BORDER_REPLICATE, constant});
}

void median3x3Border(const Plane<uint8_t>& plane, odxBorderType type, uint32_t value)
{
    border::filterFrame<Symmetric3x3<median3x3Row<uint8_t>>>(
        plane, {type == ONDRIX_BORDER_REPLICATE, static_cast<uint8_t>(value)});
}

} // namespace odx::blur
