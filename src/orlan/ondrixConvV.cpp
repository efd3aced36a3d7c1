// SIMD convolution. Images with fewer outputs in a row than a vector has lanes are the reference's, as are kernels
// of more weights than a plan holds.
#include "cpu/ondrixConv.h"
#include "cpu/ondrixConvC.h"
#include "orlan/neighbourhood.h"
#include "orlan/simd/products.h"

#define ODX_FAMILY_LIST "frame/operations/convolution.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace conv;

namespace
{

constexpr uint32_t kLanes = kBytes / 2;
static_assert(kLanes <= kLeastColumns);

// Calls f(Side<n>(), x) for vectors that cover a row of outputs.
template <uint32_t n, class F>
ODX_INLINE void forVectors(uint32_t count, F f)
{
    forStrips<kLanes, n>(count, 1, 0, 1, [&](auto side, uint32_t x, uint32_t, uint32_t) { f(side, x); });
}

ODX_INLINE s16v scaled(const u32p& sums, int shift)
{
    return joinSat({(s32v)sums.a >> shift, (s32v)sums.b >> shift});
}
ODX_INLINE void write(s16v v, int16_t* out)
{
    store(out, v);
}
ODX_INLINE void write(s16v v, uint8_t* out)
{
    storeNarrow(out, (u16v)min(max(v, s16v{}), s16v{} + 255));
}

// Sums of n vectors of windows side by side. (Of arrays of them not every compiler makes registers.)
template <uint32_t n>
struct RowSums {
    u32p sums;
    RowSums<n - 1> others;

    ODX_MEMBER explicit RowSums(u32v start) : sums{start, start}, others(start) {}
    ODX_MEMBER void add(const int16_t* p, s16v weights)
    {
        sums = addPairs(sums, neighbours(p), weights);
        others.add(p + kLanes, weights);
    }
    ODX_MEMBER void addWords(const uint32_t* p, u32v weight)
    {
        sums = {sums.a + load<u32v>(p) * weight, sums.b + load<u32v>(p + kLanes / 2) * weight};
        others.addWords(p + kLanes, weight);
    }
    // The upper halves of numbers whose lower ones were added before.
    ODX_MEMBER void addTops(const int16_t* p, const Taps& taps)
    {
        u16v tops = {};
        for (uint32_t j = 0; j < taps.count; ++j)
            tops += load<u16v>(p + j) * (uint16_t)taps[j];
        sums = sums + atTop((s16v)tops);
        others.addTops(p + kLanes, taps);
    }
    template <class D>
    ODX_MEMBER void write(int shift, D* out) const
    {
        ODX_TARGET::write(scaled(sums, shift), out);
        others.write(shift, out + kLanes);
    }
};
template <>
struct RowSums<0> {
    ODX_MEMBER explicit RowSums(u32v) {}
    ODX_MEMBER void add(const int16_t*, s16v) {}
    ODX_MEMBER void addWords(const uint32_t*, u32v) {}
    ODX_MEMBER void addTops(const int16_t*, const Taps&) {}
    template <class D>
    ODX_MEMBER void write(int, D*) const
    {
    }
};

// ---- separable kernels: two rows of outputs at a time, columns first ----

constexpr uint32_t kTile = 1024; // of outputs: its rows stay in the first-level cache
constexpr uint32_t kLine = kTile + kLeastColumns + kMostTaps + 1; // what a tile has between the passes

// What is between the passes. A sum, which began as `start`, is 65536 * high + low + 32768, if `high` is kept,
// else low + 32768, or it is rounded. So low stands for the sum less `offset`. Where 32-bit lanes are multiplied,
// sums stay as they are.
struct Line {
    int16_t low[kLine], high[kLine];
};
template <bool keepsHigh>
struct Exact {
    typedef ODX_TARGET::Line Line;
    static constexpr bool kHigh = keepsHigh, kWords = false;
    uint32_t start = 0;

    ODX_MEMBER uint32_t offset() const { return 32768 - start; }
    ODX_MEMBER static void keep(const u32p& sums, Line& line, uint32_t x)
    {
        const s16p both = halves(sums);
        store(line.low + x, both.a ^ (int16_t)INT16_MIN);
        if constexpr (kHigh) store(line.high + x, both.b);
    }
};
struct Rounded {
    typedef ODX_TARGET::Line Line;
    static constexpr bool kHigh = false, kWords = false;
    static constexpr uint32_t start = 16384;

    ODX_MEMBER static uint32_t offset() { return 0; }
    ODX_MEMBER static void keep(const u32p& sums, Line& line, uint32_t x)
    {
        store(line.low + x, joinWideSat({(s32v)sums.a >> 15, (s32v)sums.b >> 15}));
    }
};
struct Whole {
    struct Line {
        uint32_t low[kLine];
    };
    [[maybe_unused]] static constexpr bool kHigh = false, kWords = true;
    [[maybe_unused]] static constexpr uint32_t start = 0;

    ODX_MEMBER static uint32_t offset() { return 0; }
    ODX_MEMBER static void keep(const u32p& sums, Line& line, uint32_t x)
    {
        store(line.low + x, sums.a);
        store(line.low + x + kLanes / 2, sums.b);
    }
};

using AnySums = std::conditional_t<kMultipliesWords, Whole, Exact<true>>;

// The sums of n vectors of columns, of two outputs one above the other.
template <uint32_t n>
struct ColumnSums {
    u32p upper, lower;
    ColumnSums<n - 1> others;

    ODX_MEMBER explicit ColumnSums(u32v start) : upper{start, start}, lower{start, start}, others(start) {}
    ODX_MEMBER void add(const int16_t* row, const int16_t* next, s16v weights, s16v below)
    {
        const s16p rows = interleave(load<s16v>(row), load<s16v>(next));
        upper = addPairs(upper, rows, weights);
        lower = addPairs(lower, rows, below);
        others.add(row + kLanes, next + kLanes, weights, below);
    }
    template <class Between>
    ODX_MEMBER void keep(const Between& between, typename Between::Line* lines, uint32_t x) const
    {
        between.keep(upper, lines[0], x);
        between.keep(lower, lines[1], x);
        others.keep(between, lines, x + kLanes);
    }
};
template <>
struct ColumnSums<0> {
    ODX_MEMBER explicit ColumnSums(u32v) {}
    ODX_MEMBER void add(const int16_t*, const int16_t*, s16v, s16v) {}
    template <class Between>
    ODX_MEMBER void keep(const Between&, typename Between::Line*, uint32_t) const
    {
    }
};

// Pairs of rows meet the taps from the first one on for the upper output, and from the zero before it on for the
// lower. A single output has no row below its window.
template <uint32_t n, class Between>
ODX_INLINE void sumColumns(const Taps& taps, const Between& between, const int16_t* in, size_t stride, bool single,
                           typename Between::Line* lines, uint32_t x)
{
    ColumnSums<n> sums(u32v{} + between.start);
    uint32_t i = 0;
    for (; i + 1 < taps.count; i += 2, in = rowOf(in, stride, 2))
        sums.add(in, rowOf(in, stride, 1), repeatPair(taps.padded + i + 1), repeatPair(taps.padded + i));
    sums.add(in, rowOf(in, stride, single ? 0 : 1), repeatPair(taps.padded + i + 1), repeatPair(taps.padded + i));
    sums.keep(between, lines, x);
}

// n vectors of outputs from what is between the passes; sums begin with `start`.
template <uint32_t n, class Between, class D>
ODX_INLINE void sumRow(const Taps& taps, const typename Between::Line& line, uint32_t x, uint32_t start, int shift,
                       D* out)
{
    RowSums<n> sums(u32v{} + start);
    if constexpr (Between::kWords) {
        for (uint32_t j = 0; j < taps.count; ++j)
            sums.addWords(line.low + x + j, u32v{} + (uint32_t)taps[j]);
    } else {
        for (uint32_t j = 0; j < taps.count; j += 2)
            sums.add(line.low + x + j, repeatPair(taps.padded + j + 1));
    }
    if constexpr (Between::kHigh) sums.addTops(line.high + x, taps);
    sums.write(shift, out);
}

template <class D, class Between>
ODX_INLINE auto separable(const Taps& across, const Taps& down, Scale scale, const Between& between)
{
    uint32_t sumOfTaps = 0;
    for (uint32_t j = 0; j < across.count; ++j)
        sumOfTaps += (uint32_t)across[j];
    const uint32_t start = scale.half + between.offset() * sumOfTaps;
    return [=, &across, &down](Rows<const int16_t> src, Rows<D> dst, uint32_t width, uint32_t height) {
        typename Between::Line lines[2];
        for (uint32_t x0 = 0, count; x0 < width; x0 += count) {
            count = columnsOf(width - x0, kTile);
            const uint32_t columns = count + across.count - 1;
            // What the zero behind the taps meets.
            lines[0].low[columns] = lines[1].low[columns] = 0;
            for (uint32_t y = 0; y < height; y += 2) {
                const bool single = height - y < 2;
                const int16_t* const in = src.at(x0, y).pixels;
                forVectors<2>(columns, [&](auto side, uint32_t x) {
                    sumColumns<decltype(side)::value>(down, between, in + x, src.stride, single, lines, x);
                });
                for (uint32_t i = 0; i < (single ? 1 : 2); ++i) {
                    D* const out = dst.at(x0, y + i).pixels;
                    forVectors<Between::kWords ? 4 : 2>(count, [&](auto side, uint32_t x) {
                        sumRow<decltype(side)::value, Between>(across, lines[i], x, start, scale.shift, out + x);
                    });
                }
            }
        }
    };
}

// Whether an image was filtered.
template <class S, class D, class Filter>
ODX_INLINE bool filtered(const Plane<S, D>& plane, uint32_t M, uint32_t N, odxBorderType type, uint32_t value,
                         Filter filter)
{
    const Outputs outputs(plane, M, N, type);
    if (outputs.width < kLanes) return false;
    filterBlocks(plane, M, N, type, value, filter);
    return true;
}

bool correlatedRounded(const int16_t* kernelX, const int16_t* kernelY, uint32_t N, const Plane<int16_t>& plane)
{
    const Taps across(kernelX, N, Taps::kStraight), down(kernelY, N, Taps::kStraight);
    return filtered(plane, N, N, ONDRIX_BORDER_UNDEFINED, 0,
                    separable<int16_t>(across, down, Scale(15), Rounded()));
}

// ---- other kernels ----

// The pairs of neighbouring weights, turned.
struct Plan {
    static constexpr uint32_t kMostPairs = 512;
    struct Pair {
        size_t offset; // of its first pixel, from the window's first, in bytes
        int16_t weights[2];
    };
    Pair pairs[kMostPairs];
    uint32_t count = 0;

    ODX_MEMBER static bool holds(uint32_t M, uint32_t N) { return uint64_t{M / 2 + M % 2} * N <= kMostPairs; }
    ODX_MEMBER Plan(const int16_t* kernel, uint32_t M, uint32_t N, size_t stride)
    {
        const int16_t* weight = kernel + size_t{M} * N;
        for (uint32_t i = 0; i < N; ++i) {
            const size_t row = stride * i;
            for (uint32_t j = 0; j + 1 < M; j += 2, weight -= 2)
                pairs[count++] = {row + j * sizeof(int16_t), {weight[-1], weight[-2]}};
            // The last weight goes with the pixel before it, so that no pixel behind the window is read.
            if (M % 2 == 0) continue;
            --weight;
            if (M > 1) pairs[count++] = {row + (M - 2) * sizeof(int16_t), {0, *weight}};
            if (M == 1) pairs[count++] = {row, {*weight, 0}};
        }
    }
};

template <class D>
ODX_INLINE auto direct(const int16_t* kernel, uint32_t M, uint32_t N, Scale scale)
{
    return [=](Rows<const int16_t> src, Rows<D> dst, uint32_t width, uint32_t height) {
        const Plan plan(kernel, M, N, src.stride);
        for (uint32_t y = 0; y < height; ++y) {
            const int16_t* const in = src.at(0, y).pixels;
            D* const out = dst.at(0, y).pixels;
            forVectors<4>(width, [&](auto side, uint32_t x) {
                RowSums<decltype(side)::value> sums(u32v{} + scale.half);
                for (uint32_t k = 0; k < plan.count; ++k) {
                    const auto* const p = (const int16_t*)((const char*)(in + x) + plan.pairs[k].offset);
                    sums.add(p, repeatPair(plan.pairs[k].weights));
                }
                sums.write(scale.shift, out + x);
            });
        }
    };
}

} // namespace

// clang-format off
#define ODX_CORRELATION(name, reference, K) \
    void name(const int16_t* kernelX, const int16_t* kernelY, const int16_t* src, \
              unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
              int16_t* dst, unsigned int dstStride) \
    { \
        if (!correlatedRounded(kernelX, kernelY, K, {src, srcWidth, srcHeight, srcStride, dst, dstStride})) \
            reference(kernelX, kernelY, src, srcWidth, srcHeight, srcStride, dst, dstStride); \
    }

ODX_CORRELATION(odxFilterCorrSep9x9s16V, odxFilterCorrSep9x9s16C, 9)
ODX_CORRELATION(odxFilterCorrSep11x11s16V, odxFilterCorrSep11x11s16C, 11)
ODX_CORRELATION(odxFilterCorrSep13x13s16V, odxFilterCorrSep13x13s16C, 13)
ODX_CORRELATION(odxFilterCorrSep15x15s16V, odxFilterCorrSep15x15s16C, 15)
ODX_CORRELATION(odxFilterCorrSep17x17s16V, odxFilterCorrSep17x17s16C, 17)

#define ODX_CONVOLUTION(name, reference, D) \
    odxStatus name(const int16_t* kernel, unsigned int M, unsigned int N, unsigned int shift, const uint8_t* src, \
                   unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, D* dst, \
                   unsigned int dstStride, odxBorderType borderType, uint32_t borderValue) \
    { \
        const Plane<uint8_t, D> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride}; \
        if (filtered(plane, M, N, borderType, borderValue, direct<D>(kernel, M, N, Scale(shift)))) \
            return ONDRIX_SUCCESS; \
        return reference(kernel, M, N, shift, src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType, \
                         borderValue); \
    }

ODX_CONVOLUTION(odxFilterConvolveMxNu8V, odxFilterConvolveMxNu8C, uint8_t)
ODX_CONVOLUTION(odxFilterConvolveMxNu8s16V, odxFilterConvolveMxNu8s16C, int16_t)
// clang-format on

void odxFilterCorrSepNxNs16V(const int16_t* kernelX, const int16_t* kernelY, unsigned int N, const int16_t* src,
                             unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, int16_t* dst,
                             unsigned int dstStride)
{
    if (!correlatedRounded(kernelX, kernelY, N, {src, srcWidth, srcHeight, srcStride, dst, dstStride}))
        odxFilterCorrSepNxNs16C(kernelX, kernelY, N, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

odxStatus odxFilterCorrSepMxNu8V(const int16_t* kernelX, unsigned int M, const int16_t* kernelY, unsigned int N,
                                 unsigned int shift, const uint8_t* src, unsigned int srcWidth,
                                 unsigned int srcHeight, unsigned int srcStride, uint8_t* dst,
                                 unsigned int dstStride, odxBorderType borderType, uint32_t borderValue)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    const Taps across(kernelX, M, Taps::kStraight), down(kernelY, N, Taps::kStraight);
    const Scale scale(shift);
    uint32_t positive = 0, negative = 0;
    for (uint32_t i = 0; i < N; ++i)
        (down[i] > 0 ? positive : negative) += (uint32_t)(down[i] > 0 ? down[i] : -down[i]);
    // Sums that fit 16 bits, from the least possible one on, have no upper half.
    const bool done =
        255 * (positive + negative) <= 65535
            ? filtered(plane, M, N, borderType, borderValue,
                       separable<uint8_t>(across, down, scale, Exact<false>{255 * negative}))
            : filtered(plane, M, N, borderType, borderValue, separable<uint8_t>(across, down, scale, AnySums()));
    if (done) return ONDRIX_SUCCESS;
    return odxFilterCorrSepMxNu8C(kernelX, M, kernelY, N, shift, src, srcWidth, srcHeight, srcStride, dst,
                                  dstStride, borderType, borderValue);
}

odxStatus odxFilterConvSepMxNs16V(const int16_t* kernelX, unsigned int M, odxKernelSymmetry symmetryX,
                                  const int16_t* kernelY, unsigned int N, odxKernelSymmetry symmetryY,
                                  unsigned int shift, const int16_t* src, unsigned int srcWidth,
                                  unsigned int srcHeight, unsigned int srcStride, int16_t* dst,
                                  unsigned int dstStride, odxFilterRegion region, odxBorderType borderType,
                                  uint32_t borderValue)
{
    const Taps across(kernelX, M, Taps::kTurned, symmetryX), down(kernelY, N, Taps::kTurned, symmetryY);
    const auto filter = separable<int16_t>(across, down, Scale(shift), AnySums());
    const uint32_t inside = srcWidth - M + 1;
    if (region == ONDRIX_FILTER_VALID && inside >= kLanes) {
        filter({src, srcStride}, {dst, dstStride}, inside, srcHeight - N + 1);
        return ONDRIX_SUCCESS;
    }
    const Plane<int16_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    if (region == ONDRIX_FILTER_SAME && filtered(plane, M, N, borderType, borderValue, filter))
        return ONDRIX_SUCCESS;
    return odxFilterConvSepMxNs16C(kernelX, M, symmetryX, kernelY, N, symmetryY, shift, src, srcWidth, srcHeight,
                                   srcStride, dst, dstStride, region, borderType, borderValue);
}

void odxConvValids16V(const int16_t* kernel, unsigned int M, unsigned int N, unsigned int shift,
                      const int16_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                      int16_t* dst, unsigned int dstStride)
{
    const uint32_t width = srcWidth - M + 1;
    // A single column has no pixel beside it that is always there.
    if (width < kLanes || M == 1 || !Plan::holds(M, N))
        return odxConvValids16C(kernel, M, N, shift, src, srcWidth, srcHeight, srcStride, dst, dstStride);
    direct<int16_t>(kernel, M, N, Scale(shift))({src, srcStride}, {dst, dstStride}, width, srcHeight - N + 1);
}

} // namespace odx::ODX_TARGET
