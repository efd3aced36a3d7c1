// SIMD statistics: the search for extremes and sums; moments are the reference's loops.
#include "cpu/ondrixArithmC.h"
#include "cpu/ondrixMoments.h"
#include "cpu/ondrixNormalize.h"
#include "cpu/ondrixStat.h"
#include "cpu/ondrixStatC.h"
#include "orlan/simd/prefix.h"
#include "orlan/simd/roots.h"

#define ODX_FAMILY_LIST "frame/operations/statistics.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;
using namespace stat;

decltype(odxTableLookupu8C) odxTableLookupu8V;

// ---- smallest and largest element ----

// Elements as keys of the same order: two of each, one to look for the smallest and one for the largest. The
// search begins with what nothing is beyond, or, of floats, with what only numbers are beyond, or infinities.
template <class V>
struct Keys {
    V low, high;
};
template <class V>
struct Itself {
    typedef V Vector;

    ODX_MEMBER static Keys<V> keys(const void* p)
    {
        const V v = load<V>(p);
        return {v, v};
    }
};
struct ByInstruction {
    template <class V>
    ODX_MEMBER static V lesser(V v, V than)
    {
        return min(v, than);
    }
    template <class V>
    ODX_MEMBER static V greater(V v, V than)
    {
        return max(v, than);
    }
};

template <class T, class V, T least, T greatest>
struct WholeOrder : Itself<V>, ByInstruction {
    typedef T Number;
    static constexpr T kLow = greatest, kHigh = least;
};
template <class T>
struct Order;
template <>
struct Order<uint8_t> : WholeOrder<uint8_t, u8v, 0, UINT8_MAX> {
};
template <>
struct Order<int16_t> : WholeOrder<int16_t, s16v, INT16_MIN, INT16_MAX> {
};
template <>
struct Order<uint16_t> : WholeOrder<uint16_t, u16v, 0, UINT16_MAX> {
};
template <>
struct Order<int32_t> : WholeOrder<int32_t, s32v, INT32_MIN, INT32_MAX> {
};
template <>
struct Order<uint32_t> : WholeOrder<uint32_t, u32v, 0, UINT32_MAX> {
};
// Comparisons with a not-a-number do not hold, so that none gets in.
struct FloatOrder : Itself<f32v> {
    typedef float Number;
    static constexpr float kLow = __builtin_inff(), kHigh = -__builtin_inff();

    ODX_MEMBER static f32v lesser(f32v v, f32v than) { return v < than ? v : than; }
    ODX_MEMBER static f32v greater(f32v v, f32v than) { return v > than ? v : than; }
};
// Where vectors of floats take denormal ones for 0: the magnitude with its sign is in order, zeros are equal, and
// not-a-numbers are what is beyond the infinities at +-0x7F800000. Moved by so much that they leave the 32 bits at
// one end, they come back at the other, where they are neither small nor large.
struct FloatBitOrder : ByInstruction {
    typedef int32_t Number;
    typedef s32v Vector;
    static constexpr int32_t kLow = 0x7F000000, kHigh = -0x7F000001;

    ODX_MEMBER static Keys<s32v> keys(const void* p)
    {
        const s32v v = load<s32v>(p), sign = v >> 31;
        const u32v key = (u32v)((v & INT32_MAX) ^ sign) - (u32v)sign;
        return {(s32v)(key - 0x00800000), (s32v)(key + 0x007FFFFF)};
    }
};
template <>
struct Order<float> : std::conditional_t<kFlushesDenormals, FloatBitOrder, FloatOrder> {
};

template <class T>
struct Stretch {
    const T* p;
    size_t n, x, y;
};

// Rows of less than a vector are repeated: that adds no element, and no earlier place.
template <class T>
ODX_INLINE void pad(const T* p, size_t n, T (&padded)[kBytes / sizeof(T)])
{
    for (size_t i = 0; i < kBytes / sizeof(T); ++i)
        memcpy(padded + i, p + (i < n ? i : 0), sizeof *p);
}

// Keys are compared in stretches that take the first cache; the places of the best are looked up in theirs.
template <class T>
struct Search {
    typedef Order<T> O;
    typedef typename O::Vector V;
    typedef typename O::Number K;
    static constexpr size_t kLanes = kBytes / sizeof(T), kStretch = sizeof(T) == 4 ? 2048 : 4096 / sizeof(T);
    V low = V{} + O::kLow, high = V{} + O::kHigh;
    Stretch<T> lowest, highest;

    ODX_MEMBER explicit Search(const T* src, size_t n) : lowest{src, n, 0, 0}, highest{src, n, 0, 0} {}

    template <bool least>
    ODX_MEMBER static V best(V v)
    {
        K lanes[kLanes];
        store(lanes, v);
        K found = lanes[0];
        for (size_t i = 1; i < kLanes; ++i)
            found = (least ? lanes[i] < found : lanes[i] > found) ? lanes[i] : found;
        return V{} + found;
    }
    ODX_MEMBER void take(V low0, V high0, const Stretch<T>& stretch)
    {
        if (any((u8v)(low0 < low))) {
            low = best<true>(low0);
            lowest = stretch;
        }
        if (any((u8v)(high0 > high))) {
            high = best<false>(high0);
            highest = stretch;
        }
    }
    ODX_MEMBER void addRow(const T* p, size_t n, size_t y)
    {
        if (n < kLanes) {
            T padded[kLanes];
            pad(p, n, padded);
            const Keys<V> k = O::keys(padded);
            return take(O::lesser(k.low, low), O::greater(k.high, high), {p, n, 0, y});
        }
        for (size_t x = 0, count; x < n; x += count) {
            count = n - x < kStretch ? n - x : kStretch;
            if (count < kLanes) { // the last vector overlaps the one before it
                x -= kLanes - count;
                count = kLanes;
            }
            V lows[2] = {low, low}, highs[2] = {high, high};
            const T *q = p + x, *const end = q + count;
            for (size_t left = count / (8 * kLanes); left != 0; --left, q += 8 * kLanes)
                addVectors<8>(q, lows, highs);
            for (size_t left = count / (2 * kLanes) % 4; left != 0; --left, q += 2 * kLanes)
                addVectors<2>(q, lows, highs);
            addVectors<1>(end - q < (ptrdiff_t)kLanes ? end - kLanes : q, lows, highs);
            addVectors<1>(end - kLanes, lows, highs);
            take(O::lesser(lows[0], lows[1]), O::greater(highs[0], highs[1]), {p + x, count, x, y});
        }
    }
    template <size_t n>
    ODX_MEMBER static void addVectors(const T* p, V (&lows)[2], V (&highs)[2])
    {
        for (size_t i = 0; i < n; ++i) {
            const Keys<V> k = O::keys(p + i * kLanes);
            lows[i % 2] = O::lesser(k.low, lows[i % 2]);
            highs[i % 2] = O::greater(k.high, highs[i % 2]);
        }
    }

    template <bool least>
    ODX_MEMBER Place<T> place(const Stretch<T>& in, uint32_t width) const
    {
        for (size_t i = 0;; i += kLanes) {
            T padded[kLanes];
            const T* p = in.p + i;
            if (in.n < kLanes) {
                pad(in.p, in.n, padded);
                p = padded;
            } else if (in.n - i < kLanes) {
                i = in.n - kLanes;
                p = in.p + i;
            }
            const Keys<V> k = O::keys(p);
            const uint64_t bits = laneBits((s8v)(least ? k.low == low : k.high == high));
            if (bits == 0 && i + kLanes < in.n) continue;
            // There are bits, unless the image has changed since.
            const size_t lane = bits == 0 ? 0 : (size_t)__builtin_ctzll(bits) / sizeof(T), x = in.x + i + lane;
            return {p[lane], (uint32_t)(x % width), (uint32_t)(in.y + x / width)};
        }
    }
};

// Packed images are one long row.
template <class T>
ODX_INLINE Extremes<T> extremesOf(Search<T>& search, const T* src, uint32_t width, uint32_t height,
                                  uint32_t stride)
{
    typedef Order<T> O;
    const bool packed = stride == width * sizeof(T);
    const size_t n = packed ? (size_t)width * height : width;
    for (size_t y = 0; y < (packed ? 1 : height); ++y)
        search.addRow(rowOf(src, stride, y), n, y);
    const auto least = [&]() __attribute__((always_inline))
    {
        return search.template place<true>(search.lowest, width);
    };
    const auto greatest = [&]() __attribute__((always_inline))
    {
        return search.template place<false>(search.highest, width);
    };
    if constexpr (std::is_floating_point_v<T>) {
        // Nothing is below what is only infinite, nor above it.
        const bool nothingBelow = search.low[0] == O::kLow, nothingAbove = search.high[0] == O::kHigh;
        if (nothingBelow && nothingAbove) return noExtremes<T>();
        if (nothingBelow) return {greatest(), greatest(), true};
        if (nothingAbove) return {least(), least(), true};
    }
    return {least(), greatest(), true};
}

template <class T>
struct Lists {
    typedef Order<T> O;
    static constexpr size_t kLanes = kBytes / sizeof(T);
    static constexpr uint64_t kElements = ~uint64_t{0} / ((uint64_t{1} << sizeof(T)) - 1); // a bit for each
    const Search<T>& search;
    Places &least, &greatest;

    ODX_MEMBER static void add(Places& places, uint64_t bits, size_t x, size_t y)
    {
        bits &= kElements;
        if (places.count >= places.capacity) {
            places.count += (uint64_t)__builtin_popcountll(bits);
            return;
        }
        for (; bits != 0; bits &= bits - 1)
            places.add(x + (size_t)__builtin_ctzll(bits) / sizeof(T), y);
    }
    // Whether one of n vectors may hold an extreme.
    template <size_t n>
    ODX_MEMBER bool mayHold(const T* p) const
    {
        typename O::Vector low = typename O::Vector{} + O::kLow, high = typename O::Vector{} + O::kHigh;
        for (size_t i = 0; i < n; ++i) {
            const Keys<typename O::Vector> k = O::keys(p + i * kLanes);
            low = O::lesser(k.low, low);
            high = O::greater(k.high, high);
        }
        return any((u8v)((low == search.low) | (high == search.high)));
    }
    ODX_MEMBER void addVector(const T* p, size_t x, size_t y, uint64_t valid) const
    {
        const Keys<typename O::Vector> k = O::keys(p);
        const auto isLow = k.low == search.low, isHigh = k.high == search.high;
        if (!any((u8v)(isLow | isHigh))) return;
        add(least, laneBits((s8v)isLow) & valid, x, y);
        add(greatest, laneBits((s8v)isHigh) & valid, x, y);
    }
    ODX_MEMBER void addRow(const T* p, size_t n, size_t y) const
    {
        if (n < kLanes) {
            T padded[kLanes];
            pad(p, n, padded);
            return addVector(padded, 0, y, (uint64_t{1} << n * sizeof(T)) - 1);
        }
        size_t x = 0;
        for (; n - x >= 4 * kLanes; x += 4 * kLanes) {
            if (!mayHold<4>(p + x)) continue;
            for (size_t i = 0; i < 4 * kLanes; i += kLanes)
                addVector(p + x + i, x + i, y, ~uint64_t{0});
        }
        for (; n - x >= kLanes; x += kLanes)
            addVector(p + x, x, y, ~uint64_t{0});
        const size_t left = n - x, last = n - kLanes;
        if (left != 0) addVector(p + last, last, y, ~uint64_t{0} << (kLanes - left) * sizeof(T));
    }
};

template <class T>
ODX_INLINE void minMaxLoc(const T* src, uint32_t width, uint32_t height, uint32_t stride, T* minValue, T* maxValue,
                          uint32_t* minXY, uint32_t* maxXY)
{
    Search<T> search(src, width);
    const Extremes<T> extremes = extremesOf(search, src, width, height, stride);
    report(extremes.least, minValue, minXY);
    report(extremes.greatest, maxValue, maxXY);
}

template <class T>
ODX_INLINE odxStatus allMinMaxLoc(const T* src, uint32_t width, uint32_t height, uint32_t stride, T* minValue,
                                  T* maxValue, uint32_t* minXY, uint32_t* maxXY, uint32_t capacity,
                                  uint32_t* minCount, uint32_t* maxCount)
{
    Search<T> search(src, width);
    const Extremes<T> extremes = extremesOf(search, src, width, height, stride);
    const auto listPlaces = [&](Places & least, Places & greatest) __attribute__((always_inline))
    {
        const Lists<T> lists = {search, least, greatest};
        for (size_t y = 0; y < height; ++y)
            lists.addRow(rowOf(src, stride, y), width, y);
    };
    return reportAll(extremes, minValue, maxValue, minXY, maxXY, capacity, minCount, maxCount, listPlaces);
}

// ---- sums ----

// Loaded `n` bytes before its end, it keeps the last n bytes of a vector.
struct LastBytes {
    uint8_t bytes[2 * kBytes] = {};

    constexpr LastBytes()
    {
        for (uint32_t i = kBytes; i < 2 * kBytes; ++i)
            bytes[i] = 255;
    }
};
static constexpr LastBytes kLastBytes;

// Lanes are added up before all of them together exceed 32 bits.
ODX_INLINE Sums sumsOf(const uint8_t* src, size_t stride, uint32_t width, uint32_t height)
{
    Sums sums = {0, 0};
    u32v pixels = {}, squares0 = {}, squares1 = {};
    const auto flush = [&]() __attribute__((always_inline))
    {
        sums.pixels += sumOfLanes(pixels);
        sums.squares += sumOfLanes(squares0 + squares1);
        pixels = squares0 = squares1 = u32v{};
    };
    uint32_t taken = 0;
    for (size_t y = 0; y < height; ++y) {
        const uint8_t* p = rowOf(src, stride, y);
        for (uint32_t left = width, n; left != 0; left -= n, p += n) {
            n = left < kFitting ? left : kFitting;
            if (n > kFitting - taken) {
                flush();
                taken = 0;
            }
            taken += n;
            uint32_t x = 0;
            for (; n - x >= 2 * kBytes; x += 2 * kBytes) {
                const u8v v = load<u8v>(p + x), w = load<u8v>(p + x + kBytes);
                pixels = addBytes(addBytes(pixels, v), w);
                squares0 = addProducts(squares0, v, v);
                squares1 = addProducts(squares1, w, w);
            }
            for (; n - x >= kBytes; x += kBytes) {
                const u8v v = load<u8v>(p + x);
                pixels = addBytes(pixels, v);
                squares0 = addProducts(squares0, v, v);
            }
            if (x != n && n >= kBytes) {
                const u8v v = load<u8v>(p + n - kBytes) & load<u8v>(kLastBytes.bytes + (n - x));
                pixels = addBytes(pixels, v);
                squares1 = addProducts(squares1, v, v);
            } else {
                for (; x < n; ++x) {
                    sums.pixels += p[x];
                    sums.squares += (uint32_t)p[x] * p[x];
                }
            }
        }
    }
    flush();
    return sums;
}

odxStatus odxImageIntensityStats_v2V(const uint8_t* src, unsigned int, unsigned int, unsigned int srcStride,
                                     unsigned int x, unsigned int y, unsigned int width, unsigned int height,
                                     float* mean, float* variance, odxVarianceEstimator estimator)
{
    report(sumsOf(rowOf(src, srcStride, y) + x, srcStride, width, height), width, height, estimator, mean,
           variance);
    return ONDRIX_SUCCESS;
}
void odxImageIntensityStatsV(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, unsigned int x, unsigned int y, unsigned int width,
                             unsigned int height, float* mean, float* variance)
{
    odxImageIntensityStats_v2V(src, srcWidth, srcHeight, srcStride, x, y, width, height, mean, variance,
                               ONDRIX_VARIANCE_POPULATION);
}

void odxImageHistogramEqualizeu8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    equalize(src, srcWidth, srcHeight, srcStride, dst, dstStride, odxTableLookupu8V);
}

// ---- moments of bytes ----

// Powers of columns in a tile, as 16 bits hold them: the third in two parts.
struct ColumnPowers {
    int16_t x[moments::kColumns] = {}, xx[moments::kColumns] = {}, low[moments::kColumns] = {},
            high[moments::kColumns] = {};

    constexpr ColumnPowers()
    {
        for (int i = 0; i < (int)moments::kColumns; ++i) {
            x[i] = (int16_t)i;
            xx[i] = (int16_t)(i * i);
            low[i] = (int16_t)(i * i * i % 1024);
            high[i] = (int16_t)(i * i * i / 1024);
        }
    }
};
static constexpr ColumnPowers kPowers;

// The reference's running sums of columns fit 16 bits, only the last needs the sign bit, and so is moved by 2^15.
template <bool binary>
ODX_INLINE moments::Powers<int64_t> tileOfBytes(const uint8_t* const (&rows)[moments::kRows])
{
    constexpr uint32_t kLanes = kBytes / 2;
    const s16v one = s16v{} + 1;
    s32v a0 = {}, a1 = {}, a2 = {}, low = {}, high = {}, b0 = {}, b1 = {}, b2 = {}, c0 = {}, c1 = {}, d0 = {};
    for (uint32_t i = 0; i < moments::kColumns; i += kLanes) {
        u16v t0 = {}, t1 = {}, t2 = {}, t3 = {};
        for (uint32_t y = moments::kRows; y-- > 0;) {
            const u16v v = loadWiden(rows[y] + i);
            t0 += binary ? (u16v)(v != 0) & 1 : v;
            t1 += t0;
            t2 += t1;
            t3 += t2;
        }
        const s16v s0 = (s16v)t0, s1 = (s16v)t1, s2 = (s16v)t2, s3 = (s16v)(t3 ^ 0x8000);
        const s16v x = load<s16v>(kPowers.x + i), xx = load<s16v>(kPowers.xx + i);
        a0 = addProducts(a0, s0, one);
        a1 = addProducts(a1, s0, x);
        a2 = addProducts(a2, s0, xx);
        low = addProducts(low, s0, load<s16v>(kPowers.low + i));
        high = addProducts(high, s0, load<s16v>(kPowers.high + i));
        b0 = addProducts(b0, s1, one);
        b1 = addProducts(b1, s1, x);
        b2 = addProducts(b2, s1, xx);
        c0 = addProducts(c0, s2, one);
        c1 = addProducts(c1, s2, x);
        d0 = addProducts(d0, s3, one);
    }
    uint32_t sums[12];
    storeSums(sums, (u32v)a0, (u32v)a1, (u32v)a2, (u32v)b0);
    storeSums(sums + 4, (u32v)b1, (u32v)b2, (u32v)c0, (u32v)c1);
    storeSums(sums + 8, (u32v)d0 + 32768 * moments::kColumns / (kBytes / 4), (u32v)low, (u32v)high, u32v{});
    return moments::powers<int64_t>(sums[0], sums[1], sums[2], sums[9] + 1024 * (int64_t)sums[10], sums[3],
                                    sums[4], sums[5], sums[6], sums[7], sums[8]);
}

void momentsOfBandu8V(const uint8_t* src, uint32_t stride, uint32_t width, uint32_t height, uint32_t binary,
                      moments::Powers<double>& sums)
{
    sums = binary != 0 ? moments::band(src, stride, width, height, tileOfBytes<true>)
                       : moments::band(src, stride, width, height, tileOfBytes<false>);
}

// ---- local normalisation of bytes, in 32 bits ----

struct NormalizedBytes : normalization::Bytes {
    const int32_t pixels, factor, least;

    ODX_MEMBER NormalizedBytes(uint32_t N, uint32_t deviation, uint32_t minDeviation)
        : Bytes(N, deviation, minDeviation), pixels((int32_t)(N * N)), factor((int32_t)gain), least((int32_t)floor)
    {
    }

    // What is under the root, below 2^34, is known modulo 2^32 and, from floats, to 2^15: sums of floats with 2^55
    // are multiples of 2^32.
    ODX_MEMBER s32v rootOf(s32v sum, s32v square) const
    {
        const f32v s = __builtin_convertvector(sum, f32v), q = __builtin_convertvector(square, f32v);
        const u32v low = (u32v)square * (uint32_t)pixels - (u32v)sum * (u32v)sum;
        const f32v lower = __builtin_convertvector((s32v)low, f32v);
        const f32v upper = ((q * (float)pixels - s * s) - lower + 0x1.8p55f) - 0x1.8p55f;
        return floorRoot((upper + lower) * 256.0f, low << 8);
    }
    ODX_MEMBER s32v levels(s32v v, s32v sum, s32v square) const
    {
        const s32v divisor = max(rootOf(sum, square), s32v{} + least), a = (v * pixels - sum) * factor,
                   sign = a >> 31;
        return (quotient(2 * ((a ^ sign) - sign) + divisor, 2 * divisor) ^ sign) - sign + 128;
    }
    // From the sums of all columns before each box, and before those behind it.
    ODX_MEMBER void row(const uint8_t* v, const uint32_t* sums, const uint32_t* squares, uint32_t N, uint8_t* out,
                        uint32_t count) const
    {
        constexpr uint32_t kLanes = kBytes / 2;
        for (uint32_t x = 0;; x += kLanes) {
            if (count - x < kLanes) x = count - kLanes;
            const s32p wide = loadNumbers(v + x);
            const auto box = [=](const uint32_t* p) { return load<s32v>(p + x + N) - load<s32v>(p + x); };
            const s32v a = levels(wide.a, box(sums), box(squares)),
                       b = levels(wide.b, box(sums + kLanes / 2), box(squares + kLanes / 2));
            storeNarrow(out + x, (u16v)min(max((s16v)narrowMask({a, b}), s16v{}), s16v{} + 255));
            if (x + kLanes == count) return;
        }
    }
};

// Sums of the columns of N rows, and of what is left of each, in which the first and the last column are repeated.
class ColumnSums
{
    static constexpr uint32_t kLanes = kBytes / 2;

public:
    ODX_MEMBER static size_t words(uint32_t width, uint32_t N)
    {
        return padded(width) * 3 / 2 + 2 * (padded(width) + N);
    }

    ODX_MEMBER ColumnSums(uint32_t* memory, uint32_t width, uint32_t N)
        : width_(width), margin_(N / 2), sums_(memory), squares_(memory + padded(width) + N),
          columnSquares_(squares_ + padded(width) + N), columnSums_((uint16_t*)(columnSquares_ + padded(width)))
    {
        memset(columnSquares_, 0, padded(width) * (sizeof *columnSquares_ + sizeof *columnSums_));
    }

    ODX_MEMBER void add(const uint8_t* row)
    {
        forColumns(
            row, row, [&](const uint8_t* p, const uint8_t*, size_t x) __attribute__((always_inline)) {
                const u16v v = loadWiden(p);
                change(x, v, widenInOrder(v * v));
            });
    }
    // The row that comes, the one that goes, and then what is left of each column.
    ODX_MEMBER void move(const uint8_t* in, const uint8_t* out)
    {
        forColumns(
            in, out, [&](const uint8_t* p, const uint8_t* q, size_t x) __attribute__((always_inline)) {
                const u16v v = loadWiden(p), w = loadWiden(q);
                change(x, v - w, widenInOrder(v * v) - widenInOrder(w * w));
            });
    }
    ODX_MEMBER void sumUp() const
    {
        uint32_t sum = 0, square = 0;
        for (uint32_t i = 0; i < margin_; ++i) {
            sums_[i] = sum, sum += columnSums_[0];
            squares_[i] = square, square += columnSquares_[0];
        }
        sums_[margin_] = sum;
        squares_[margin_] = square;
        uint32_t *p = sums_ + margin_ + 1, *q = squares_ + margin_ + 1;
        const uint32_t *s = columnSquares_, *const end = s + width_;
        const uint16_t* c = columnSums_;
        u32v before = u32v{} + sum, squaresBefore = u32v{} + square;
        const auto next = [](uint32_t * &to, u32v v, u32v & sums) __attribute__((always_inline))
        {
            const u32v running = runningSums(v) + sums;
            sums = u32v{} + running[kLanes / 2 - 1];
            pin(to);
            store(to, running);
            to += kLanes / 2;
        };
        uint32_t *to = p, *squaresTo = q;
        for (; s < end; s += kLanes, c += kLanes) {
            pin(s), pin(c);
            const u32p both = widenInOrder(load<u16v>(c));
            next(to, both.a, before);
            next(to, both.b, before);
            next(squaresTo, load<u32v>(s), squaresBefore);
            next(squaresTo, load<u32v>(s + kLanes / 2), squaresBefore);
        }
        const size_t last = width_ - 1;
        for (size_t i = width_; i < width_ + margin_; ++i) {
            p[i] = p[i - 1] + columnSums_[last];
            q[i] = q[i - 1] + columnSquares_[last];
        }
    }
    ODX_MEMBER const uint32_t* sums() const { return sums_; }
    ODX_MEMBER const uint32_t* squares() const { return squares_; }

private:
    ODX_MEMBER static size_t padded(uint32_t width) { return (size_t{width} + kLanes) / kLanes * kLanes; }
    template <class Step>
    ODX_MEMBER void forColumns(const uint8_t* p, const uint8_t* q, Step step) const
    {
        size_t x = 0;
        for (; width_ - x >= kLanes; x += kLanes)
            step(p + x, q + x, x);
        if (x == width_) return;
        uint8_t lastOfP[kLanes] = {}, lastOfQ[kLanes] = {};
        memcpy(lastOfP, p + x, width_ - x);
        memcpy(lastOfQ, q + x, width_ - x);
        step(lastOfP, lastOfQ, x);
    }
    // Sums of a column are below 2^13.
    ODX_MEMBER void change(size_t x, u16v v, const u32p& square) const
    {
        store(columnSums_ + x, load<u16v>(columnSums_ + x) + v);
        storeAdded(columnSquares_ + x, columnSquares_ + x, square);
    }

    const size_t width_;
    const uint32_t margin_;
    uint32_t *const sums_, *const squares_, *const columnSquares_;
    uint16_t* const columnSums_;
};

ODX_INLINE odxStatus normalize(const NormalizedBytes& type, uint32_t N, const Plane<uint8_t>& plane)
{
    if (plane.width < kBytes / 2) {
        return normalization::normalize(static_cast<const normalization::Bytes&>(type), N, plane);
    }
    const Scratch<uint32_t> memory(ColumnSums::words(plane.width, N));
    if (!memory) return ONDRIX_NO_MEMORY;
    ColumnSums columns(memory.get(), plane.width, N);
    const auto row = [&](int64_t y) {
        const int64_t last = int64_t{plane.height} - 1;
        return rowOf(plane.src, plane.srcStride, (size_t)(y < 0 ? 0 : y < last ? y : last));
    };
    const int64_t r = N / 2;
    for (int64_t k = -r; k <= r; ++k)
        columns.add(row(k));
    for (uint32_t y = 0; y < plane.height; ++y) {
        if (y != 0) columns.move(row(y + r), row(y - r - 1));
        columns.sumUp();
        type.row(row(y), columns.sums(), columns.squares(), N, rowOf(plane.dst, plane.dstStride, y), plane.width);
    }
    return ONDRIX_SUCCESS;
}

#define ODX_COLUMN(name) name##V
#include "cpu/ondrixStatOperations.inc"

// ---- the reference's loops, in this target's vectors ----

// clang-format off
#define ODX_BAND(name, T) \
    void name##V(const T* src, uint32_t stride, uint32_t width, uint32_t height, uint32_t binary, \
                 moments::Powers<double>& sums) \
    { \
        moments::band(src, stride, width, height, binary, sums); \
    }
// clang-format on

ODX_BAND(momentsOfBands32, int32_t)
ODX_BAND(momentsOfBandf32, float)

} // namespace odx::ODX_TARGET
