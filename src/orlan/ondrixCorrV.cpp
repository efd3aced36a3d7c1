// SIMD correlation. Images that are narrower than a vector are the reference's, as are kernels of more weights
// than a plan holds.
#include "cpu/ondrixCorr.h"
#include "cpu/ondrixCorrC.h"
#include "orlan/neighbourhood.h"
#include "orlan/simd/products.h"

#define ODX_FAMILY_LIST "frame/operations/correlation.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace corr;

namespace
{

// ---- 3x3, of weights that fit ----

// Three outputs are under way in each column: a row is the last one of the first, and so on.
struct Corr3x3 : Window<3, 3, kBytes> {
    Weights2 pair[3], single[3];
    s16p begun[2] = {};

    ODX_MEMBER s16p products(const uint8_t* row, uint32_t i) const
    {
        return dot2(row, pair[i]) + dot2(row + 1, single[i]);
    }
    ODX_MEMBER s16p push(const uint8_t* row)
    {
        const s16p sum = begun[1] + products(row, 2);
        begun[1] = begun[0] + products(row, 1);
        begun[0] = products(row, 0);
        return sum;
    }
    ODX_MEMBER static void write(const s16p& sum, uint8_t* out)
    {
        store(out, joinClamped({sum.a >> 4, sum.b >> 4}));
    }
};

// ---- NxN ----

constexpr uint32_t kMostSize = 31;

// Sums of kBytes windows: pairs of the 32-bit lanes of pairs.
struct Sums {
    s32p a, b;
};

ODX_INLINE s16v shifted(const s32p& sums, const Shift& shift)
{
    const auto each = [&](s32v sum) { return (s32v)((u32v)sum << shift.left & shift.keep) >> shift.right; };
    return joinSat({each(sums.a), each(sums.b)});
}

ODX_INLINE void write(const Sums& sums, const Shift& shift, uint8_t* out)
{
    store(out, joinClamped({shifted(sums.a, shift), shifted(sums.b, shift)}));
}
ODX_INLINE void write(const Sums& sums, const Shift& shift, int16_t* out)
{
    storeInOrder(out, s16p{shifted(sums.a, shift), shifted(sums.b, shift)});
}

#ifdef ODX_SIMD_BYTE_PAIRS

// Blocks of pixels less 128, each with the one behind it, so that a pair of weights meets pairs of signed bytes:
// for kBlockRows rows of outputs, which are as wide as kBlock and less than a vector more at the most.
constexpr uint32_t kBlockRows = 32, kBlock = 160, kLine = 2 * (kBlock + kBytes + kMostSize);

// The pairs of neighbouring weights, in groups whose sums fit 16 bits: magnitudes are 255 in all at the most, and
// 255 * 128 is 32640. Pairs of zeros are left out.
struct Plan {
    struct Pair {
        uint32_t offset; // of its first pixel, from the window's first, in a block
        int8_t weights[2];
    };
    Pair pairs[kMostSize * (kMostSize + 1) / 2];
    uint32_t ends[kMostSize * (kMostSize + 1) / 2]; // of the groups
    uint32_t groups = 0;
    int32_t start = 0; // of the sums: what pixels are less in blocks

    ODX_MEMBER Plan(const int8_t* kernel, uint32_t N)
    {
        uint32_t count = 0;
        int first = 0, second = 0;
        for (uint32_t i = 0; i < N; ++i) {
            for (uint32_t j = 0; j < N; j += 2) {
                const int8_t a = kernel[N * i + j], b = j + 1 < N ? kernel[N * i + j + 1] : (int8_t)0;
                if (a == 0 && b == 0) continue;
                start += 128 * (a + b);
                first += a < 0 ? -a : a;
                second += b < 0 ? -b : b;
                if (first > 255 || second > 255) {
                    ends[groups++] = count;
                    first = a < 0 ? -a : a;
                    second = b < 0 ? -b : b;
                }
                pairs[count++] = {kLine * i + 2 * j, {a, b}};
            }
        }
        if (count != 0) ends[groups++] = count;
    }
};

// The sums of n vectors side by side, which share the weights. (Of arrays of them not every compiler makes
// registers.)
template <uint32_t n>
struct Windows {
    Sums sums;
    s16x4 group;
    Windows<n - 1> others;

    ODX_MEMBER explicit Windows(s32v start) : sums{{start, start}, {start, start}}, others(start) {}
    ODX_MEMBER void begin(const int8_t* p, s8v weights)
    {
        group = mulBytePairs(p, weights);
        others.begin(p + 2 * kBytes, weights);
    }
    ODX_MEMBER void add(const int8_t* p, s8v weights)
    {
        group = addBytePairs(group, p, weights);
        others.add(p + 2 * kBytes, weights);
    }
    ODX_MEMBER void end()
    {
        sums.a = {addNeighbours(sums.a.a, group.a), addNeighbours(sums.a.b, group.b)};
        sums.b = {addNeighbours(sums.b.a, group.c), addNeighbours(sums.b.b, group.d)};
        others.end();
    }
    template <class D>
    ODX_MEMBER void write(const Shift& shift, D* out) const
    {
        ODX_TARGET::write(sums, shift, out);
        others.write(shift, out + kBytes);
    }
};
template <>
struct Windows<0> {
    ODX_MEMBER explicit Windows(s32v) {}
    ODX_MEMBER void begin(const int8_t*, s8v) {}
    ODX_MEMBER void add(const int8_t*, s8v) {}
    ODX_MEMBER void end() {}
    template <class D>
    ODX_MEMBER void write(const Shift&, D*) const
    {
    }
};

template <uint32_t n, class D>
ODX_INLINE void writeVectors(const Plan& plan, const Shift& shift, const int8_t* in, D* out)
{
    Windows<n> windows(s32v{} + plan.start);
    const Plan::Pair* pair = plan.pairs;
    for (uint32_t g = 0; g < plan.groups; ++g) {
        const Plan::Pair* const end = plan.pairs + plan.ends[g];
        windows.begin(in + pair->offset, repeatBytes(pair->weights));
        while (++pair != end)
            windows.add(in + pair->offset, repeatBytes(pair->weights));
        windows.end();
    }
    windows.write(shift, out);
}

// More pixels than a vector. What stands beside the last one meets no weight.
ODX_INLINE void pairUp(const uint8_t* pixels, uint32_t count, int8_t* line)
{
    for (uint32_t x = 0; x < count - 1; x += kBytes) {
        if (count - 1 - x < kBytes) x = count - 1 - kBytes;
        const u8x2 pairs = zip<1>(load<u8v>(pixels + x) ^ 0x80, load<u8v>(pixels + x + 1) ^ 0x80);
        store(line + 2 * x, pairs.a);
        store(line + 2 * x + kBytes, pairs.b);
    }
    line[2 * (count - 1)] = (int8_t)(pixels[count - 1] ^ 0x80);
    line[2 * (count - 1) + 1] = 0;
}

template <class D>
ODX_INLINE bool correlate(const int8_t* kernel, uint32_t N, int32_t shift, const Interior<D>& interior)
{
    if (interior.width < kBytes || N < 2 || N > kMostSize) return false;
    const Plan plan(kernel, N);
    const Shift by(shift);
    int8_t block[(kBlockRows + kMostSize - 1) * kLine];
    for (uint32_t x0 = 0, columns; x0 < interior.width; x0 += columns) {
        const uint32_t left = interior.width - x0;
        columns = left < kBlock + kBytes ? left : kBlock;
        for (uint32_t y0 = 0; y0 < interior.height; y0 += kBlockRows) {
            const uint32_t below = interior.height - y0, rows = below < kBlockRows ? below : kBlockRows;
            for (uint32_t i = 0; i < rows + N - 1; ++i)
                pairUp(rowOf(interior.src, interior.srcStride, size_t{y0} + i) + x0, columns + N - 1,
                       block + kLine * i);
            for (uint32_t i = 0; i < rows; ++i) {
                const int8_t* const in = block + kLine * i;
                D* const out = interior.dst.at(x0, y0 + i).pixels;
                uint32_t x = 0;
                for (; columns - x >= 2 * kBytes; x += 2 * kBytes)
                    writeVectors<2>(plan, by, in + 2 * x, out + x);
                for (; x < columns; x += kBytes) {
                    if (columns - x < kBytes) x = columns - kBytes;
                    writeVectors<1>(plan, by, in + 2 * x, out + x);
                }
            }
        }
    }
    return true;
}

#else

// The pairs of neighbouring weights, in groups whose sums fit 16 bits.
struct Plan {
    struct Pair {
        size_t offset; // of its first pixel, from the window's first
        int8_t weights[2];
    };
    Pair pairs[kMostSize * kMostSize];
    uint32_t ends[kMostSize * kMostSize]; // of the groups
    uint32_t groups = 0;

    ODX_MEMBER Plan(const int8_t* kernel, uint32_t N, size_t stride)
    {
        uint32_t count = 0;
        Room room;
        const auto add = [&](size_t offset, int8_t a, int8_t b) {
            if (!room.take(a, b)) {
                if (count != 0) ends[groups++] = count;
                room = Room();
                room.take(a, b);
            }
            pairs[count++] = {offset, {a, b}};
        };
        for (uint32_t i = 0; i < N; ++i) {
            for (uint32_t j = 0; j < N; j += 2) {
                const int8_t a = kernel[N * i + j], b = j + 1 < N ? kernel[N * i + j + 1] : (int8_t)0;
                const size_t offset = stride * i + j;
                // A single weight always fits; the second pixel of a pair must be inside the row.
                if (j + 1 == N) {
                    add(offset - 1, 0, a);
                } else if (Room().take(a, b)) {
                    add(offset, a, b);
                } else {
                    add(offset, a, 0);
                    add(offset, 0, b);
                }
            }
        }
        ends[groups++] = count;
    }
};

ODX_INLINE void addGroup(Sums& sums, const s16p& group)
{
    sums.a = sums.a + split(group.a);
    sums.b = sums.b + split(group.b);
}

// Two vectors at once, which share the weights.
template <uint32_t n>
ODX_INLINE void addProducts(const Plan& plan, const uint8_t* in, Sums (&sums)[n])
{
    uint32_t k = 0;
    for (uint32_t g = 0; g < plan.groups; ++g) {
        s16p group[n] = {};
        for (; k < plan.ends[g]; ++k) {
            const Weights2 weights = weights2(plan.pairs[k].weights);
            const uint8_t* const p = in + plan.pairs[k].offset;
            for (uint32_t i = 0; i < n; ++i)
                group[i] = group[i] + dot2(p + i * kBytes, weights);
        }
        for (uint32_t i = 0; i < n; ++i)
            addGroup(sums[i], group[i]);
    }
}

template <class D>
ODX_INLINE bool correlate(const int8_t* kernel, uint32_t N, int32_t shift, const Interior<D>& interior)
{
    if (interior.width < kBytes || N < 2 || N > kMostSize) return false;
    const Plan plan(kernel, N, interior.srcStride);
    const Shift by(shift);
    const uint32_t width = interior.width;
    for (uint32_t y = 0; y < interior.height; ++y) {
        const uint8_t* const in = rowOf(interior.src, interior.srcStride, y);
        D* const out = interior.dst.at(0, y).pixels;
        for (uint32_t x = 0; x < width;) {
            if (width - x >= 2 * kBytes) {
                Sums sums[2] = {};
                addProducts(plan, in + x, sums);
                write(sums[0], by, out + x);
                write(sums[1], by, out + x + kBytes);
                x += 2 * kBytes;
            } else {
                if (width - x < kBytes) x = width - kBytes;
                Sums sums[1] = {};
                addProducts(plan, in + x, sums);
                write(sums[0], by, out + x);
                x += kBytes;
            }
        }
    }
    return true;
}

#endif

} // namespace

void odxFilterCorr3x3s8V(const int8_t* kernel, const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                         unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    if (tooNarrow<Corr3x3>(plane)) {
        return odxFilterCorr3x3s8C(kernel, src, srcWidth, srcHeight, srcStride, dst, dstStride);
    }
    Room room;
    bool fits = true;
    Corr3x3 filter;
    for (uint32_t i = 0; i < 3; ++i) {
        const int8_t* const k = kernel + 3 * i;
        fits = fits && room.take(k[0], k[1]) && room.take(k[2], 0);
        // The third weight goes with the pixel before it, so that no pixel behind the window is read.
        const int8_t third[2] = {0, k[2]};
        filter.pair[i] = weights2(k);
        filter.single[i] = weights2(third);
    }
    if (fits) return filterInterior(filter, plane);
    correlate(kernel, 3, 4, Interior<uint8_t>(3, src, srcWidth, srcHeight, srcStride, dst, dstStride));
}

odxStatus odxFilterCorrNxNu8V(const int8_t* kernel, unsigned int N, int shift, const uint8_t* src,
                              unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, uint8_t* dst,
                              unsigned int dstStride)
{
    if (correlate(kernel, N, shift, Interior<uint8_t>(N, src, srcWidth, srcHeight, srcStride, dst, dstStride)))
        return ONDRIX_SUCCESS;
    return odxFilterCorrNxNu8C(kernel, N, shift, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

odxStatus odxFilterCorrNxNu8s16V(const int8_t* kernel, unsigned int N, int shift, const uint8_t* src,
                                 unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                 int16_t* dst, unsigned int dstStride)
{
    if (correlate(kernel, N, shift, Interior<int16_t>(N, src, srcWidth, srcHeight, srcStride, dst, dstStride)))
        return ONDRIX_SUCCESS;
    return odxFilterCorrNxNu8s16C(kernel, N, shift, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

// ---- floats ----

// Whether no product and no sum can be a denormal: weights are 0 or at least 2^-100, so that all sums are
// multiples of 2^-123.
ODX_INLINE bool staysNormal(const float* kernel, uint32_t weights)
{
    for (uint32_t i = 0; i < weights; ++i) {
        uint32_t bits;
        memcpy(&bits, kernel + i, sizeof bits);
        bits &= 0x7FFFFFFF;
        if (bits != 0 && bits < (127u - 100u) << 23) return false;
    }
    return true;
}

odxStatus odxFilterCorrNxNu8f32V(const float* kernel, unsigned int N, const uint8_t* src, unsigned int srcWidth,
                                 unsigned int srcHeight, unsigned int srcStride, float* dst,
                                 unsigned int dstStride)
{
    constexpr uint32_t lanes = kBytes / 4, columns = 8 * lanes;
    const Interior<float> interior(N, src, srcWidth, srcHeight, srcStride, dst, dstStride);
    if (interior.width < columns || N > kMostSize || (kFlushesDenormals && !staysNormal(kernel, N * N))) {
        return odxFilterCorrNxNu8f32C(kernel, N, src, srcWidth, srcHeight, srcStride, dst, dstStride);
    }
    for (uint32_t y = 0; y < interior.height; ++y) {
        float* const out = interior.dst.at(0, y).pixels;
        for (uint32_t x = 0; x < interior.width; x += columns) {
            if (interior.width - x < columns) x = interior.width - columns;
            f32v sums[8] = {};
            for (uint32_t i = 0; i < N; ++i) {
                // A row of pixels becomes floats once for its N weights.
                const uint8_t* const row = rowOf(interior.src, interior.srcStride, size_t{y} + i) + x;
                float pixels[columns + kMostSize];
                for (uint32_t k = 0; k < columns + N - 1; ++k)
                    pixels[k] = row[k];
                for (uint32_t j = 0; j < N; ++j) {
                    const f32v weight = f32v{} + kernel[N * i + j];
                    for (uint32_t v = 0; v < 8; ++v)
                        sums[v] += weight * load<f32v>(pixels + j + v * lanes);
                }
            }
            for (uint32_t v = 0; v < 8; ++v)
                store(out + x + v * lanes, sums[v]);
        }
    }
    return ONDRIX_SUCCESS;
}

} // namespace odx::ODX_TARGET
