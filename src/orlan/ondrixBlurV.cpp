// SIMD smoothing filters. Interiors are computed in strips (neighbourhood.h). Borders are the reference's own
// code, as are images that are narrower than a vector.
#include "cpu/image.h"
#include "cpu/ondrixBlurC.h"
#include "cpu/ondrixBlurRows.h"
#include "frame/log.h"
#include "frame/scratch.h"
#include "orlan/neighbourhood.h"
#include "orlan/squares.h"

#define ODX_FAMILY_LIST "frame/operations/smoothing.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{

// ---- Gaussians ----

struct Gaussian3x3 : Window<3, 3, kBytes> {
    BinomialColumn<u16p, 2> column; // sums up to 16 x 255

    ODX_MEMBER auto push(const uint8_t* row) { return column.push(dotsFor<4, 1, 2, 1>(row)); }
    ODX_MEMBER static void write(const u16p& sum, uint8_t* out) { store(out, joinDots<4>(sum)); }
};

struct Gaussian5x5 : Window<5, 5, kBytes> {
    BinomialColumn<u16p, 4> column; // sums up to 256 x 255

    ODX_MEMBER auto push(const uint8_t* row) { return column.push(dotsFor<8, 1, 4, 6, 4, 1>(row)); }
    ODX_MEMBER static void write(const u16p& sum, uint8_t* out) { store(out, joinDots<8>(sum)); }
};

struct Gaussian5x5s16 : Window<5, 5, kBytes / 2> {
    BinomialColumn<s32p, 4> column;

    ODX_MEMBER auto push(const int16_t* row) { return column.push(binomials5(row)); }
    ODX_MEMBER static void write(const s32p& sum, int16_t* out) { store(out, joinShifted<8>(sum)); }
};

struct Gaussian5x5s32 : Window<5, 5, kBytes / 4> {
    BinomialColumn<u32v, 4> column; // modulo 2^32

    ODX_MEMBER auto push(const int32_t* row)
    {
        return column.push(load<u32v>(row) + load<u32v>(row + 4) +
                           4 * (load<u32v>(row + 1) + load<u32v>(row + 3)) + 6 * load<u32v>(row + 2));
    }
    ODX_MEMBER static void write(const u32v& sum, int32_t* out) { store(out, (s32v)sum >> 8); }
};

void odxFilterGaussian3x3u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    if (tooNarrow<Gaussian3x3>(plane)) {
        return odxFilterGaussian3x3u8C(src, srcWidth, srcHeight, srcStride, dst, dstStride, border);
    }
    filterInterior(Gaussian3x3(), plane);
    if (border == 1) blur::binomialBorder<3>(plane);
}

odxStatus odxFilterGaussian3x3u8_v3V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                     odxBorderType borderType, uint32_t borderValue)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    if (tooNarrow<Gaussian3x3>(plane)) {
        return odxFilterGaussian3x3u8_v3C(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType,
                                          borderValue);
    }
    filterInterior(Gaussian3x3(), plane);
    if (borderType == ONDRIX_BORDER_UNDEFINED) {
        blur::binomialBorder<3>(plane);
    } else {
        blur::gaussian3x3Border(plane, borderType, borderValue);
    }
    return ONDRIX_SUCCESS;
}

template <class Filter, class T, class Reference>
ODX_INLINE void gaussian5x5(const Plane<T>& p, int border, Reference* reference)
{
    if (tooNarrow<Filter>(p)) return reference(p.src, p.width, p.height, p.srcStride, p.dst, p.dstStride, border);
    filterInterior(Filter(), p);
    if (border == 1) blur::binomialBorder<5>(p);
}

void odxFilterGaussian5x5u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    gaussian5x5<Gaussian5x5>(plane, border, odxFilterGaussian5x5u8C);
}

void odxFilterGaussian5x5s16V(const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, int16_t* dst, unsigned int dstStride, int border)
{
    const Plane<int16_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    gaussian5x5<Gaussian5x5s16>(plane, border, odxFilterGaussian5x5s16C);
}

void odxFilterGaussian5x5s32V(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, int32_t* dst, unsigned int dstStride, int border)
{
    const Plane<int32_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    gaussian5x5<Gaussian5x5s32>(plane, border, odxFilterGaussian5x5s32C);
}

// The 11x11 kernel, a tile at a time: first 8 of its 10 vertical steps on bytes, whose sums just fit 16 bits; then
// all horizontal steps, in 32 bits; then the last 2 vertical steps. The 16-bit sums are kept less 32768, so that
// they multiply as signed numbers; the weights turn that into 128 in the output, which is added back.
constexpr uint32_t kTileWidth = 256, kTileRows = 32; // of outputs: the sums stay in the first-level cache
constexpr size_t kSumsStride = kTileWidth + 10;

// The sums of a strip of columns.
ODX_INLINE void gaussian11Columns(const uint8_t* src, size_t stride, int16_t* sums, uint32_t rows)
{
    BinomialColumn<u16v, 8> column;
    for (uint32_t i = 0; i < 8; ++i, src += stride)
        column.push(loadWiden(src));
    for (uint32_t i = 0; i < rows; ++i, src += stride, sums += kSumsStride)
        store(sums, column.push(loadWiden(src)) ^ 0x8000);
}

ODX_INLINE s32p gaussian11Row(const int16_t* sums)
{
    return dot2<1, 10>(sums) + dot2<45, 120>(sums + 2) + dot2<210, 252>(sums + 4) + dot2<210, 120>(sums + 6) +
           dot2<45, 10>(sums + 8) + split(load<s16v>(sums + 10));
}

ODX_INLINE void gaussian11Rows(const int16_t* sums, uint8_t* dst, size_t stride, uint32_t rows)
{
    BinomialColumn<s32p, 2> column;
    for (uint32_t i = 0; i < 2; ++i, sums += kSumsStride)
        column.push(gaussian11Row(sums));
    for (uint32_t i = 0; i < rows; ++i, sums += kSumsStride, dst += stride)
        storeNarrow(dst, (u16v)(joinShifted<20>(column.push(gaussian11Row(sums))) + 128));
}

void odxFilterGaussian11x11u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    const uint32_t width = plane.interiorWidth(11), height = plane.interiorHeight(11);
    constexpr uint32_t lanes = kBytes / 2;
    if (width < lanes) {
        return odxFilterGaussian11x11u8C(src, srcWidth, srcHeight, srcStride, dst, dstStride, border);
    }
    uint8_t* const first = rowOf(dst, dstStride, 5) + 5;
    alignas(kBytes) int16_t sums[(kTileRows + 2) * kSumsStride];
    for (uint32_t y = 0, rows; y < height; y += rows) {
        rows = height - y < kTileRows ? height - y : kTileRows;
        for (uint32_t left = 0; left < width; left += kTileWidth) {
            const uint32_t rest = width - left < kTileWidth ? width - left : kTileWidth;
            // What is narrower than a vector goes with some of the tile before it.
            const uint32_t columns = rest < lanes ? lanes : rest, start = left + rest - columns;
            const uint8_t* const in = rowOf(src, srcStride, y) + start;
            uint8_t* const out = rowOf(first, dstStride, y) + start;
            forStrips<lanes, 1>(columns + 10, rows + 2, 0, rows + 2,
                                [&](auto, uint32_t x, uint32_t, uint32_t count) {
                                    gaussian11Columns(in + x, srcStride, sums + x, count);
                                });
            forStrips<lanes, 1>(columns, rows, 0, rows, [&](auto, uint32_t x, uint32_t, uint32_t count) {
                gaussian11Rows(sums + x, out + x, dstStride, count);
            });
        }
    }
    if (border == 1) blur::binomialBorder<11>(plane);
}

// ---- means ----

// Two outputs, one above the other.
template <class V>
struct Both {
    V first, second;
};

struct Box3x3 : Window<3, 3, kBytes> {
    u16p rows[2] = {}; // the row sums before

    ODX_MEMBER u16p push(const uint8_t* row)
    {
        const u16p next = dots<1, 1, 1>(row), sum = rows[0] + rows[1] + next;
        rows[0] = rows[1];
        rows[1] = next;
        return sum;
    }
    ODX_MEMBER Both<u16p> pushBoth(const uint8_t* row, const uint8_t* after)
    {
        const u16p next = dots<1, 1, 1>(row), last = dots<1, 1, 1>(after), shared = rows[1] + next;
        const Both<u16p> sums = {rows[0] + shared, shared + last};
        rows[0] = next;
        rows[1] = last;
        return sums;
    }
    ODX_MEMBER static void write(const u16p& sum, uint8_t* out)
    {
        constexpr int16_t half = blur::kBox3Reciprocal / 2; // (sum * 7282 + 32768) >> 16
        store(out, join({mulRound(sum.a, half), mulRound(sum.b, half)}));
    }
};

odxStatus odxBoxFilter3x3u8_v2V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                odxBorderType borderType, uint32_t borderValue)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    if (tooNarrow<Box3x3>(plane)) {
        return odxBoxFilter3x3u8_v2C(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType, borderValue);
    }
    filterInterior(Box3x3(), plane);
    blur::box3x3Border(plane, borderType, borderValue);
    return ONDRIX_SUCCESS;
}

void odxBoxFilter3x3u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                        uint8_t* dst, unsigned int dstStride)
{
    odxBoxFilter3x3u8_v2V(src, srcWidth, srcHeight, srcStride, dst, dstStride, ONDRIX_BORDER_UNDEFINED, 0);
}

// Sums of the bytes of K neighbours, from the leftmost on.
template <uint32_t K>
ODX_INLINE u16p rowSum(const uint8_t* row)
{
    if constexpr (K == 5) {
        return dots<1, 1, 1, 1, 1>(row);
    } else {
        return dots<1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1>(row);
    }
}

// The rounded mean of sums of K x K bytes.
template <uint32_t K>
ODX_INLINE u16v meanOf(u16v sum)
{
    if constexpr (K == 11) {
        return mulRound(sum, blur::kBox11Reciprocal / 2); // sums up to 121 x 255 stay below 2^15
    } else {
        return (mulHigh(sum, 2 * blur::kBox5Reciprocal) + 1) >> 1; // twice the quotient, then rounded
    }
}

// Every output of a strip is the sum of the last K row sums: each step adds the row that enters and subtracts the
// one that leaves. What is outside the image counts as 0. For processors whose registers do not hold the row sums.
template <uint32_t K>
ODX_INLINE void boxStripInMemory(const Plane<uint8_t>& plane, uint32_t x, uint32_t y0, uint32_t rows)
{
    constexpr uint32_t r = K / 2;
    const bool inside = x >= r && plane.width - x >= kBytes + r;
    uint8_t padded[kBytes + 2 * r] = {};
    const uint32_t from = x < r ? 0 : x - r, to = plane.width - x < kBytes + r ? plane.width : x + kBytes + r;

    u16p ring[K] = {};
    u16p sum = {};
    uint32_t oldest = 0;
    for (uint32_t i = 0; i < rows + K - 1; ++i) {
        const uint32_t y = y0 + i - r; // wraps above the image
        u16p next = {};
        if (y < plane.height) {
            const uint8_t* row = rowOf(plane.src, plane.srcStride, y);
            if (inside) {
                row += x - r;
            } else {
                memcpy(padded + (from + r - x), row + from, to - from);
                row = padded;
            }
            next = rowSum<K>(row);
        }
        sum = sum + next - ring[oldest];
        ring[oldest] = next;
        oldest = oldest + 1 == K ? 0 : oldest + 1;
        if (i >= K - 1) {
            store(rowOf(plane.dst, plane.dstStride, y0 + i - (K - 1)) + x,
                  join({meanOf<K>(sum.a), meanOf<K>(sum.b)}));
        }
    }
}

// The same in registers: one that is known to the compiler for each of the K places of the ring. All of the window
// is inside the image.
template <uint32_t K>
struct BoxColumn {
    u16p ring[K] = {};
    u16p sum = {};

    template <uint32_t place>
    ODX_MEMBER void push(const uint8_t* row)
    {
        const u16p next = rowSum<K>(row);
        sum = sum + next - ring[place];
        ring[place] = next;
    }
    // Rows 0 to K - 2.
    template <uint32_t place = 0>
    ODX_MEMBER void enter(const uint8_t* in, size_t stride)
    {
        if constexpr (place < K - 1) {
            push<place>(in);
            enter<place + 1>(in + stride, stride);
        }
    }
    // One output row for each place from `place` on, as far as there are rows; returns how many are left.
    template <uint32_t place = 0>
    ODX_MEMBER uint32_t turn(const uint8_t*& in, size_t stride, uint8_t*& out, size_t dstStride, uint32_t rows)
    {
        push<(place + K - 1) % K>(in);
        store(out, join({meanOf<K>(sum.a), meanOf<K>(sum.b)}));
        in += stride;
        out += dstStride;
        if constexpr (place + 1 < K) {
            if (rows > 1) return turn<place + 1>(in, stride, out, dstStride, rows - 1);
        }
        return rows - 1;
    }
};

template <uint32_t K>
ODX_INLINE void boxInterior(const Plane<uint8_t>& plane)
{
    const uint32_t width = plane.interiorWidth(K);
    uint8_t* const dst = rowOf(plane.dst, plane.dstStride, K / 2) + K / 2;
    forStrips<kBytes, 1>(width, plane.interiorHeight(K), columnsToAligned(dst), width <= kNearRow ? 64 : 2 * K,
                         [&](auto, uint32_t x, uint32_t y, uint32_t rows) {
                             const size_t stride = plane.srcStride, dstStride = plane.dstStride;
                             const uint8_t* in = rowOf(plane.src, stride, y) + x;
                             uint8_t* out = rowOf(dst, dstStride, y) + x;
                             BoxColumn<K> column;
                             column.enter(in, stride);
                             in += (K - 1) * stride;
                             while (rows != 0)
                                 rows = column.turn(in, stride, out, dstStride, rows);
                         });
}

// Whether it did; not for images that are too narrow.
template <uint32_t K>
ODX_INLINE bool boxFilter(const Plane<uint8_t>& plane)
{
    if constexpr (kRegisters >= 32) {
        if (plane.interiorWidth(K) < kBytes) return false;
        boxInterior<K>(plane);
        blur::boxBorder<K>(plane);
    } else {
        if (plane.width < kBytes) return false;
        forStrips<kBytes, 1>(
            plane.width, plane.height, columnsToAligned(plane.dst), plane.width <= kNearRow ? 64 : 2 * K,
            [&](auto, uint32_t x, uint32_t y, uint32_t rows) { boxStripInMemory<K>(plane, x, y, rows); });
    }
    return true;
}

void odxBoxFilter5x5u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                        uint8_t* dst, unsigned int dstStride)
{
    if (!boxFilter<5>({src, srcWidth, srcHeight, srcStride, dst, dstStride}))
        odxBoxFilter5x5u8C(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void odxBoxFilter11x11u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    if (!boxFilter<11>({src, srcWidth, srcHeight, srcStride, dst, dstStride}))
        odxBoxFilter11x11u8C(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

// One output row: sums += entering - leaving where there are such rows, out = sums * reciprocal.
template <bool enters, bool leaves>
ODX_INLINE void boxOutputRow(float* sums, const float* entering, const float* leaving, float* out, uint32_t width,
                             float reciprocal)
{
    constexpr uint32_t lanes = kBytes / sizeof(float);
    const auto sumAt = [=](uint32_t x) __attribute__((always_inline))
    {
        f32v sum = load<f32v>(sums + x);
        if (enters) sum += load<f32v>(entering + x);
        if (leaves) sum -= load<f32v>(leaving + x);
        return sum;
    };
    const auto keep = [=](uint32_t x, f32v sum) __attribute__((always_inline))
    {
        store(sums + x, sum);
        store(out + x, sum * reciprocal);
    };
    uint32_t x = 0;
    for (; kPairsVectors && width - x >= 4 * lanes; x += 4 * lanes) {
        const f32v a = sumAt(x), b = sumAt(x + lanes), c = sumAt(x + 2 * lanes), d = sumAt(x + 3 * lanes);
        keep(x, a);
        keep(x + lanes, b);
        keep(x + 2 * lanes, c);
        keep(x + 3 * lanes, d);
    }
    for (; width - x >= lanes; x += lanes)
        keep(x, sumAt(x));
    for (; x < width; ++x) {
        if (enters) sums[x] += entering[x];
        if (leaves) sums[x] -= leaving[x];
        out[x] = sums[x] * reciprocal;
    }
}

// blur::boxRowSums of kLanesOfSums rows, each of which is a lane: where windows are inside the row, squares of
// pixels are transposed, and so are their sums.
constexpr uint32_t kLanesOfSums = 4;
[[maybe_unused]] ODX_INLINE void boxRowSumsInLanes(const float* const* in, float* const* out, uint32_t width,
                                                   uint32_t before, uint32_t after)
{
    float sum[kLanesOfSums] = {};
    const auto single = [&](size_t x) {
        const bool enters = width - x > after, leaves = x > before;
        for (uint32_t i = 0; i < kLanesOfSums; ++i) {
            if (enters) sum[i] += in[i][x + after];
            if (leaves) sum[i] -= in[i][x - before - 1];
            out[i][x] = sum[i];
        }
    };
    for (uint32_t x = 0; x < after && x < width; ++x) {
        for (uint32_t i = 0; i < kLanesOfSums; ++i)
            sum[i] += in[i][x];
    }
    size_t x = 0;
    for (; x < width && x <= before; ++x)
        single(x);
    f32v sums;
    memcpy(&sums, sum, sizeof sum);
    for (; x + after + kLanesOfSums <= width; x += kLanesOfSums) {
        u8v entering[kLanesOfSums], leaving[kLanesOfSums];
        for (uint32_t i = 0; i < kLanesOfSums; ++i) {
            entering[i] = load<u8v>(in[i] + x + after);
            leaving[i] = load<u8v>(in[i] + x - before - 1);
        }
        transposeSquares<4>(entering);
        transposeSquares<4>(leaving);
        for (uint32_t i = 0; i < kLanesOfSums; ++i) {
            sums += (f32v)entering[i];
            sums -= (f32v)leaving[i];
            entering[i] = (u8v)sums;
        }
        transposeSquares<4>(entering);
        for (uint32_t i = 0; i < kLanesOfSums; ++i)
            store(out[i] + x, entering[i]);
    }
    memcpy(sum, &sums, sizeof sum);
    for (; x < width; ++x)
        single(x);
}

// The reference keeps the row sums of the whole image. Here a ring of rows does, which stays in the cache: row
// sums are needed from the time that they enter a window until they leave it.
void odxBoxFilterNxNf32V(const float* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                         unsigned int N, float* dst, unsigned int dstStride)
{
    constexpr uint32_t batch = blur::kBoxRows;
    // Vectors round denormal sums to zero on some processors, which the reference does not.
    const uint64_t ringRows = uint64_t{N} + batch;
    if (kFlushesDenormals || ringRows >= srcHeight) {
        return odxBoxFilterNxNf32C(src, srcWidth, srcHeight, srcStride, N, dst, dstStride);
    }
    const Scratch<float> memory((ringRows + 1) * srcWidth);
    if (!memory) {
        ODX_LOG(Error, "Error - can not allocate scratch buffer for %s", "odxBoxFilterNxNf32C");
        return;
    }
    float* const sums = memory.get();
    memset(sums, 0, sizeof(float) * srcWidth);
    const auto ring = [&](uint32_t y) { return sums + srcWidth * (1 + size_t{y} % ringRows); };
    const uint32_t before = N / 2, after = N - N / 2 - 1;
    const float reciprocal = 1.0f / (static_cast<float>(N) * static_cast<float>(N));

    uint32_t summed = 0; // rows whose sums are in the ring
    const auto sumRows = [&](uint32_t upTo) {
        while (summed <= upTo && summed < srcHeight) {
            const float* in[batch];
            float* out[batch];
            for (uint32_t i = 0; i < batch; ++i) {
                const uint32_t row = srcHeight - summed > i ? summed + i : srcHeight - 1;
                in[i] = rowOf(src, srcStride, row);
                out[i] = ring(row);
            }
            if constexpr (kBytes == kLanesOfSums * sizeof(float)) {
                static_assert(batch == 2 * kLanesOfSums);
                boxRowSumsInLanes(in, out, srcWidth, before, after);
                boxRowSumsInLanes(in + kLanesOfSums, out + kLanesOfSums, srcWidth, before, after);
            } else {
                blur::boxRowSums(in, out, srcWidth, before, after);
            }
            summed = srcHeight - summed > batch ? summed + batch : srcHeight;
        }
    };
    for (uint32_t y = 0; y < after; ++y) {
        sumRows(y);
        const float* const entering = ring(y);
        for (uint32_t x = 0; x < srcWidth; ++x)
            sums[x] += entering[x];
    }
    for (uint32_t y = 0; y < srcHeight; ++y) {
        const bool enters = srcHeight - y > after, leaves = y > before;
        if (enters) sumRows(y + after);
        const float* const entering = ring(y + after);
        const float* const leaving = leaves ? ring(y - before - 1) : nullptr;
        float* const out = rowOf(dst, dstStride, y);
        if (enters && leaves) {
            boxOutputRow<true, true>(sums, entering, leaving, out, srcWidth, reciprocal);
        } else if (enters) {
            boxOutputRow<true, false>(sums, entering, leaving, out, srcWidth, reciprocal);
        } else if (leaves) {
            boxOutputRow<false, true>(sums, entering, leaving, out, srcWidth, reciprocal);
        } else {
            boxOutputRow<false, false>(sums, entering, leaving, out, srcWidth, reciprocal);
        }
    }
}

// ---- medians ----

template <class V>
ODX_INLINE V middle(V a, V b, V c)
{
    return max(min(a, b), min(max(a, b), c));
}

// Three neighbours of a row, sorted.
template <class V>
struct Sorted {
    V low = {}, mid = {}, high = {};
};

template <class V, class T>
ODX_INLINE Sorted<V> sortedRow(const T* row)
{
    const V a = load<V>(row), b = load<V>(row + 1), c = load<V>(row + 2);
    const V lesser = min(a, b), greater = max(a, b);
    return {min(lesser, c), max(lesser, min(greater, c)), max(greater, c)};
}

// What two rows bring to the median of a window: the greater of the lowest, both of the middle ones, sorted, and
// the lesser of the highest.
template <class V>
struct TwoSorted {
    V low, mid, midUpper, high;
};

template <class V>
ODX_INLINE TwoSorted<V> combine(const Sorted<V>& a, const Sorted<V>& b)
{
    return {max(a.low, b.low), min(a.mid, b.mid), max(a.mid, b.mid), min(a.high, b.high)};
}

// The median of a window whose rows are sorted.
template <class V>
ODX_INLINE V medianOf(const TwoSorted<V>& two, const Sorted<V>& row)
{
    return middle(max(two.low, row.low), max(two.mid, min(two.midUpper, row.mid)), min(two.high, row.high));
}

// A row is sorted once for the three windows that hold it, and combined with the next for the two that hold both.
template <class V, class T>
struct Median3x3 : Window<3, 3, kBytes / sizeof(T)> {
    Sorted<V> rows[2];

    ODX_MEMBER V push(const T* row)
    {
        const Sorted<V> next = sortedRow<V>(row);
        const V median = medianOf(combine(rows[0], rows[1]), next);
        rows[0] = rows[1];
        rows[1] = next;
        return median;
    }
    ODX_MEMBER Both<V> pushBoth(const T* row, const T* after)
    {
        const Sorted<V> next = sortedRow<V>(row), last = sortedRow<V>(after);
        const TwoSorted<V> shared = combine(rows[1], next);
        const Both<V> medians = {medianOf(shared, rows[0]), medianOf(shared, last)};
        rows[0] = next;
        rows[1] = last;
        return medians;
    }
    ODX_MEMBER static void write(V median, T* out) { store(out, median); }
};

void odxFilterMedian3x3u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    if (tooNarrow<Median3x3<u8v, uint8_t>>(plane)) {
        return odxFilterMedian3x3u8C(src, srcWidth, srcHeight, srcStride, dst, dstStride);
    }
    filterInterior(Median3x3<u8v, uint8_t>(), plane);
}

void medianInteriorV(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int16_t* dst,
                     uint32_t dstStride)
{
    using Filter = Median3x3<s16v, int16_t>;
    const Plane<int16_t> plane = {src, width, height, srcStride, dst, dstStride};
    if (tooNarrow<Filter>(plane)) return medianInteriorC(src, width, height, srcStride, dst, dstStride);
    filterInterior(Filter(), plane);
}

odxStatus odxFilterMedian3x3u8_v3V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                   odxBorderType borderType, uint32_t borderValue)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    odxFilterMedian3x3u8V(src, srcWidth, srcHeight, srcStride, dst, dstStride);
    if (borderType != ONDRIX_BORDER_UNDEFINED) blur::median3x3Border(plane, borderType, borderValue);
    return ONDRIX_SUCCESS;
}

} // namespace odx::ODX_TARGET
