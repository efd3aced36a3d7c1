// SIMD bilateral filters. Lines that are narrower than a vector are the reference's.
#include "cpu/ondrixBilateral.h"
#include "cpu/ondrixReorderC.h"
#include "orlan/simd/roots.h"
#include "orlan/simd/weighing.h"

#define ODX_FAMILY_LIST "frame/operations/bilateral.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;
using namespace bilateral;

decltype(odxTransposeu8C) odxTransposeu8V;

namespace
{

// Entries of a table at distances; none behind the first `size` differs from the last one.
template <uint32_t size>
struct Distances {
    ByteTable<size> table;

    ODX_MEMBER explicit Distances(const uint8_t* entries) : table(entries) {}
    ODX_MEMBER static u8v within(u8v d) { return size < 256 ? min(d, u8v{} + (uint8_t)(size - 1)) : d; }
    ODX_MEMBER u8v operator()(u8v d) const { return table(within(d)); }
    ODX_MEMBER u8x4 operator()(const u8x4& d) const
    {
        return lookUpFour(table, {within(d.a), within(d.b), within(d.c), within(d.d)});
    }
};

// ---- windows ----

// The offsets of a window, but for its centre, in groups of equal distance, two and two.
struct Plan {
    static constexpr uint32_t kGroups = 14, kPairs = (kMostSize * kMostSize - 1) / 2;
    struct Pair {
        const uint8_t *first, *second; // their pixels for the first output
    };
    struct Group {
        uint32_t end; // of its pairs
        int16_t weight;
    };
    Pair pairs[kPairs];
    Group groups[kGroups + 1];
    uint32_t count = 0;

    ODX_MEMBER Plan(const uint8_t* const* lines, const Weights& weights)
    {
        const int32_t r = (int32_t)weights.size / 2;
        uint32_t n = 0;
        const auto add = [&](int32_t i, int32_t j) { pairs[n++] = {lines[r - i] + r + j, lines[r + i] + r - j}; };
        for (int32_t a = 1; a <= r; ++a) {
            for (int32_t b = 0; b <= a; ++b) {
                add(a, b);
                add(b, -a);
                if (b != 0 && b != a) {
                    add(a, -b);
                    add(b, a);
                }
                groups[count++] = {n, weights.space[a * a + b * b]};
            }
        }
        groups[count] = {n, 0};
    }
};

// Weights of differences below 64 alone: differences from the centre fit signed bytes, and the sums of groups 16
// bits, for the products of a Gaussian's weight and its difference are below 1500.
// Others: pixels less 128, of which two products fit 16 bits.
template <uint32_t size>
struct Sums {
    static constexpr bool kNear = size == 64;
    static constexpr int32_t kOrigin = kNear ? 64 : 128; // less than any value
    s32x4 weights = {}, values = {};

    ODX_MEMBER static u8v valuesOf(u8v pixels, u8v centre) { return kNear ? pixels - centre : pixels ^ 0x80; }

    ODX_MEMBER Sums(u8v centre, int16_t weight)
    {
        const u8v half = u8v{} + weightByte(64);
        const u8x2 both = {half, half}, value = pairUp(valuesOf(centre, centre), valuesOf(centre, centre));
        const s16p none = {};
        weights = addDots(weights, addWeights(none, both), none, weight, 0);
        if (!kNear) values = addDots(values, addWeighted(none, both, value), none, weight, 0);
    }

    // Two groups.
    ODX_MEMBER void add(const Plan& plan, uint32_t& pair, const Plan::Group* groups, uint32_t x, u8v centre,
                        const Distances<size>& range)
    {
        s16p weight[2] = {}, value[2] = {};
        const u8x2 centres = pairUp(centre, centre);
        const auto next = [&]() {
            const Plan::Pair& p = plan.pairs[pair++];
            return pairUp(load<u8v>(p.first + x), load<u8v>(p.second + x));
        };
        const auto valuesOfPair = [&](const u8x2& pixels) -> u8x2 {
            return {valuesOf(pixels.a, centres.a), valuesOf(pixels.b, centres.b)};
        };
        for (uint32_t g = 0; g < 2; ++g) {
            while (pair < groups[g].end) {
                const u8x2 p = next(), q = next();
                const u8x4 found = range(u8x4{distance(p.a, centres.a), distance(p.b, centres.b),
                                              distance(q.a, centres.a), distance(q.b, centres.b)});
                const u8x2 v = {found.a, found.b}, w = {found.c, found.d};
                weight[g] = addWeights(addWeights(weight[g], v), w);
                if constexpr (kNear) {
                    value[g] = addWeighted(addWeighted(value[g], v, valuesOfPair(p)), w, valuesOfPair(q));
                } else {
                    values = addDots(values, addWeighted(s16p{}, v, valuesOfPair(p)),
                                     addWeighted(s16p{}, w, valuesOfPair(q)), groups[g].weight, groups[g].weight);
                }
            }
        }
        weights = addDots(weights, weight[0], weight[1], groups[0].weight, groups[1].weight);
        if (kNear) values = addDots(values, value[0], value[1], groups[0].weight, groups[1].weight);
    }

    ODX_MEMBER u8v result(u8v centre) const
    {
        const auto each = [](s32v value, s32v weight) {
            return quotient(value + weight * kOrigin + (weight >> 1), weight);
        };
        const u8v bytes = joinBytes({each(values.a, weights.a), each(values.b, weights.b),
                                     each(values.c, weights.c), each(values.d, weights.d)});
        return kNear ? bytes + centre - (uint8_t)kOrigin : bytes;
    }
};

template <uint32_t size>
ODX_INLINE void filterLine(const uint8_t* const* lines, uint8_t* out, uint32_t count, const Weights& weights)
{
    const Plan plan(lines, weights);
    uint8_t table[256];
    for (uint32_t d = 0; d < 256; ++d)
        table[d] = weightByte(weights.range[d]);
    const Distances<size> range(table);
    const uint8_t* const centres = lines[weights.size / 2] + weights.size / 2;
    for (uint32_t x = 0; x < count; x += kBytes) {
        if (count - x < kBytes) x = count - kBytes;
        const u8v centre = load<u8v>(centres + x);
        Sums<size> sums(centre, weights.space[0]);
        uint32_t pair = 0;
        for (uint32_t g = 0; g < plan.count; g += 2)
            sums.add(plan, pair, plan.groups + g, x, centre, range);
        store(out + x, sums.result(centre));
    }
}

} // namespace

void bilateralLineV(const uint8_t* const* lines, uint8_t* out, uint32_t count, const Weights& weights)
{
    if (count < kBytes) return bilateralLineC(lines, out, count, weights);
    if (weights.reach < 64) return filterLine<64>(lines, out, count, weights);
    if (weights.reach < 128) return filterLine<128>(lines, out, count, weights);
    filterLine<256>(lines, out, count, weights);
}

// ---- lines ----

namespace
{

// The sums of one side, of kBytes / 2 lines.
struct Side {
    s32p weight = {s32v{} + kOwnWeight, s32v{} + kOwnWeight}, sum = {}, last;

    ODX_MEMBER explicit Side(const uint8_t* values) : last(loadNumbers(values)) {}
    ODX_MEMBER void step(const uint16_t* taken, const s32p& value)
    {
        const s32p t = widenInOrder(load<s16v>(taken));
        sum.a = (t.a * (sum.a + (last.a - value.a) * weight.a) + 2048) >> 12;
        sum.b = (t.b * (sum.b + (last.b - value.b) * weight.b) + 2048) >> 12;
        weight.a = ((t.a * weight.a + 2048) >> 12) + kOwnWeight;
        weight.b = ((t.b * weight.b + 2048) >> 12) + kOwnWeight;
        last = value;
    }
};

constexpr uint32_t kLines = kBytes, kHalf = kLines / 2; // of a bundle

template <uint32_t size>
ODX_INLINE void lookUp(const Lines& lines, const Steps& steps)
{
    const Distances<size> low(steps.low), high(steps.high);
    u8v last = load<u8v>(lines.guides);
    for (size_t i = 1; i < lines.length; ++i) {
        const u8v guide = load<u8v>(lines.guides + lines.guideStride * i), d = distance(guide, last);
        store2((uint8_t*)(lines.taken + kLines * i), low(d), high(d));
        last = guide;
    }
}

ODX_INLINE s32v value(s32v sums, s32v weight, s32v sum, s32v last)
{
    weight += (sums & (kSumUnit - 1)) - kOwnWeight;
    sum += sums >> kSumBits;
    return quotient(2 * sum + weight + 2 * weight * (last + 1), 2 * weight) - 1;
}

static void smooth(const Lines& lines, const Steps& steps)
{
    if (steps.reach < 64) {
        lookUp<64>(lines, steps);
    } else if (steps.reach < 128) {
        lookUp<128>(lines, steps);
    } else {
        lookUp<256>(lines, steps);
    }
    Side left[2] = {Side(lines.values), Side(lines.values + kHalf)};
    for (size_t i = 0; i < lines.length; ++i) {
        for (uint32_t k = 0; k < 2; ++k) {
            if (i != 0) {
                left[k].step(lines.taken + kLines * i + kHalf * k,
                             loadNumbers(lines.values + lines.valueStride * i + kHalf * k));
            }
            int32_t* const sums = lines.sums + kLines * i + kHalf * k;
            store(sums, left[k].sum.a * kSumUnit + left[k].weight.a);
            store(sums + kHalf / 2, left[k].sum.b * kSumUnit + left[k].weight.b);
        }
    }
    const uint8_t* const end = lines.values + lines.valueStride * (lines.length - 1);
    Side right[2] = {Side(end), Side(end + kHalf)};
    for (size_t i = lines.length; i-- > 0;) {
        for (uint32_t k = 0; k < 2; ++k) {
            Side& side = right[k];
            if (i + 1 != lines.length) {
                side.step(lines.taken + kLines * (i + 1) + kHalf * k,
                          loadNumbers(lines.values + lines.valueStride * i + kHalf * k));
            }
            const int32_t* const sums = lines.sums + kLines * i + kHalf * k;
            const s32v a = value(load<s32v>(sums), side.weight.a, side.sum.a, side.last.a),
                       b = value(load<s32v>(sums + kHalf / 2), side.weight.b, side.sum.b, side.last.b);
            const s16v values = min(max((s16v)narrowMask({a, b}), s16v{}), s16v{} + 255);
            storeNarrow(lines.out + lines.outStride * i + kHalf * k, (u16v)values);
        }
    }
}

constexpr LineKernel kLineKernel = {kLines, odxTransposeu8V, smooth};

} // namespace

odxStatus odxBilateralFilterRecursiveu8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                         float sigmaColor, float sigmaSpace)
{
    return filterRecursively(kLineKernel, {src, srcWidth, srcHeight, srcStride, dst, dstStride}, sigmaColor,
                             sigmaSpace);
}

// ---- operations ----

void odxBilateralFilter5x5u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    filter(5, bilateralLineV, {src, srcWidth, srcHeight, srcStride, dst, dstStride});
}

void odxBilateralFilter7x7u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    filter(7, bilateralLineV, {src, srcWidth, srcHeight, srcStride, dst, dstStride});
}

void odxBilateralFilter9x9u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    filter(9, bilateralLineV, {src, srcWidth, srcHeight, srcStride, dst, dstStride});
}

odxStatus odxBilateralFilter5x5u8_v2V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                      unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                      float sigmaColor, float sigmaSpace, odxBorderType borderType,
                                      uint32_t borderValue)
{
    return filter(5, bilateralLineV, {src, srcWidth, srcHeight, srcStride, dst, dstStride}, sigmaColor, sigmaSpace,
                  borderType, borderValue);
}

} // namespace odx::ODX_TARGET
