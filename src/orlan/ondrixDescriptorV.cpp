#include "cpu/ondrixDescriptor.h"
#include "cpu/ondrixDotC.h"
#include "orlan/simd/simd.h"

#define ODX_FAMILY_LIST "frame/operations/descriptors.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;

// ---- patches ----

#ifdef ODX_SIMD_ROWS

template <uint32_t width, uint32_t height>
struct Patch {
    const uint8_t* p;
    size_t stride;

    ODX_MEMBER const uint8_t* at(uint32_t y) const { return p + y * stride; }
};
template <uint32_t n>
using Rows = Patch<n, n>;
using Rows11x12 = Patch<11, 12>;

// What `add` makes of each two rows.
template <uint32_t width, uint32_t height, class Sum, class Add>
ODX_INLINE uint32_t overRows(Patch<width, height> a, Patch<width, height> b, Sum sum, Add add)
{
    for (uint32_t y = 0; y < height; y += kRowsAtOnce, a.p = a.at(kRowsAtOnce), b.p = b.at(kRowsAtOnce)) {
        pin(a.p);
        pin(b.p);
        for (uint32_t i = 0; i < kRowsAtOnce; ++i)
            sum = add(sum, a.at(i), b.at(i));
    }
    return sumOfLanes(sum);
}
template <uint32_t n>
ODX_INLINE uint32_t absoluteDifferences(const Rows<n>& a, const Rows<n>& b)
{
    return overRows(
        a, b, u16v{}, [](u16v sum, const uint8_t* p, const uint8_t* q) __attribute__((always_inline)) {
            return addRowDistances<n>(sum, p, q);
        });
}
template <uint32_t width, uint32_t height>
ODX_INLINE uint32_t products(const Patch<width, height>& a, const Patch<width, height>& b)
{
    return overRows(
        a, b, u32v{}, [](u32v sum, const uint8_t* p, const uint8_t* q) __attribute__((always_inline)) {
            return addRowProducts<width>(sum, p, q);
        });
}

#else

typedef uint64_t u64v ODX_VECTOR;

// Patches whose pixels are words of eight; at(i) gives the address of word i. The low kCut bits of every second
// word are none of theirs.
template <uint32_t n>
struct Rows {
    const uint8_t* p;
    size_t stride;

    static constexpr uint32_t kWords = n * n / 8, kPerRow = n / 8, kCut = 0;
    ODX_MEMBER const uint8_t* at(uint32_t i) const { return p + i / (n / 8) * stride + i % (n / 8) * 8; }
};
// Twelve rows of eleven pixels: every second word holds the last three.
struct Rows11x12 {
    const uint8_t* p;
    size_t stride;

    static constexpr uint32_t kWords = 24, kPerRow = 0, kCut = 40;
    ODX_MEMBER const uint8_t* at(uint32_t i) const { return p + i / 2 * stride + i % 2 * 3; }
};

template <class Patch>
ODX_INLINE u8v wordsFrom(const Patch& patch, uint32_t first)
{
    u64v words = {};
    if constexpr (kBytes == 16 && Patch::kPerRow == 2) {
        words = load<u64v>(patch.at(first));
    } else if constexpr (kBytes == 16) {
        words = (u64v)loadHalves(patch.at(first), patch.at(first + 1));
    } else {
        for (uint32_t i = 0; i < kBytes / 8; ++i)
            words[i] = load<uint64_t>(patch.at(first + i));
    }
    if constexpr (Patch::kCut != 0) {
        u64v cut = {};
        for (uint32_t i = 1; i < kBytes / 8; i += 2)
            cut[i] = Patch::kCut;
        words >>= cut;
    }
    return (u8v)words;
}

// Adds what `add` makes of each two vectors. Loops of a few vectors would stay loops.
template <uint32_t words, class Patch, class Add>
ODX_INLINE u32v addVectors(u32v sum, const Patch& a, const Patch& b, Add add)
{
    constexpr uint32_t first = Patch::kWords - words;
    if constexpr (words == 0) {
        return sum;
    } else {
        const u32v next = add(sum, wordsFrom(a, first), wordsFrom(b, first));
        return addVectors<words - kBytes / 8>(next, a, b, add);
    }
}
template <class Patch>
ODX_INLINE uint32_t absoluteDifferences(const Patch& a, const Patch& b)
{
    const auto add = [](u32v sum, u8v v, u8v w) __attribute__((always_inline))
    {
        return addDifferences(sum, v, w);
    };
    return sumOfLanes(addVectors<Patch::kWords>(u32v{}, a, b, add));
}
template <class Patch>
ODX_INLINE uint32_t products(const Patch& a, const Patch& b)
{
    const auto add = [](u32v sum, u8v v, u8v w) __attribute__((always_inline))
    {
        return addProducts(sum, v, w);
    };
    return sumOfLanes(addVectors<Patch::kWords>(u32v{}, a, b, add));
}

#endif

uint32_t odxSumOfAbsoluteDiff8x8u8V(const uint8_t* a, unsigned int aStride, const uint8_t* b, unsigned int bStride)
{
    return absoluteDifferences(Rows<8>{a, aStride}, Rows<8>{b, bStride});
}
uint32_t odxSumOfAbsoluteDiff16x16u8V(const uint8_t* a, unsigned int aStride, const uint8_t* b,
                                      unsigned int bStride)
{
    return absoluteDifferences(Rows<16>{a, aStride}, Rows<16>{b, bStride});
}
uint32_t odxDotProduct8x8u8V(const uint8_t* a, unsigned int aStride, const uint8_t* b, unsigned int bStride)
{
    return products(Rows<8>{a, aStride}, Rows<8>{b, bStride});
}
uint32_t odxDotProduct11x12u8V(const uint8_t* a, unsigned int aStride, const uint8_t* b, unsigned int bStride)
{
    return products(Rows11x12{a, aStride}, Rows11x12{b, bStride});
}

// Sums at kPatchPlaces neighbouring places, of at most 65280.
template <uint32_t n>
ODX_INLINE PlaceSums differencesAt(const uint8_t* patch, size_t patchStride, const uint8_t* src, size_t srcStride)
{
    PlaceSums sum = {};
    for (uint32_t y = 0; y < n; ++y) {
        for (uint32_t x = 0; x < n; x += 8)
            sum = addDifferencesOf8(sum, src + y * srcStride + x, patch + y * patchStride + x);
    }
    return sum;
}

template <uint32_t n>
ODX_INLINE void differencesEverywhere(const uint8_t* patch, size_t patchStride, const uint8_t* src,
                                      uint32_t srcWidth, uint32_t srcHeight, size_t srcStride, uint16_t* dst,
                                      size_t dstStride)
{
    const size_t places = srcWidth - (n - 1);
    for (size_t y = 0; y + n <= srcHeight; ++y) {
        const uint8_t* const row = src + y * srcStride;
        uint16_t* const out = rowOf(dst, dstStride, y);
        const auto single = [&](size_t x) {
            out[x] = (uint16_t)absoluteDifferences(Rows<n>{patch, patchStride}, Rows<n>{row + x, srcStride});
        };
        // The pixels of a vector end one before those that it reads.
        const size_t last = places - 1;
        if (last < kPatchPlaces) {
            for (size_t x = 0; x < last; ++x)
                single(x);
        } else {
            const auto vector = [&](size_t x) {
                storePlaces(out + x, differencesAt<n>(patch, patchStride, row + x, srcStride));
            };
            for (size_t x = 0; x + kPatchPlaces < last; x += kPatchPlaces)
                vector(x);
            vector(last - kPatchPlaces);
        }
        single(last);
    }
}

void odxSumOfAbsoluteDiffs8x8u8V(const uint8_t* patch, unsigned int patchStride, const uint8_t* src,
                                 unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                 uint16_t* dst, unsigned int dstStride)
{
    differencesEverywhere<8>(patch, patchStride, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}
void odxSumOfAbsoluteDiffs16x16u8V(const uint8_t* patch, unsigned int patchStride, const uint8_t* src,
                                   unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                   uint16_t* dst, unsigned int dstStride)
{
    differencesEverywhere<16>(patch, patchStride, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

// ---- descriptors: the reference's lanes, in this target's vectors ----

odxStatus odxDescriptorSampledMeanAndVar36f32V(const float* vectors, unsigned int, unsigned int vectorsStride,
                                               const uint32_t* indices, unsigned int numIndices, float* mean,
                                               float* variance)
{
    descriptor::meanAndVariance(vectors, vectorsStride, indices, numIndices, mean, variance);
    return ONDRIX_SUCCESS;
}

int odxVecNormalize36s8f32V(const int8_t* src, unsigned int srcStride, const float* invLen, unsigned int numVecs,
                            float reqNorm, float* dst, const uint32_t* stopBuild)
{
    return descriptor::normalise(src, srcStride, invLen, numVecs, reqNorm, dst, stopBuild);
}

uint32_t nearestCenterf32V(const float* vector, uint32_t length, const float* centers, uint32_t count,
                           uint32_t stride, float* distance)
{
    return descriptor::nearestBy<descriptor::Squares>(vector, length, centers, count, stride, distance);
}
uint32_t nearestDirectionf32V(const float* vector, uint32_t length, const float* centers, uint32_t count,
                              uint32_t stride, float* product)
{
    return descriptor::nearestBy<descriptor::Products>(vector, length, centers, count, stride, product);
}

uint32_t nearestCenteru8V(const uint8_t* vector, uint32_t length, const uint8_t* centers, uint32_t count,
                          uint32_t stride, uint32_t* distance)
{
    const auto squared = [=](const uint8_t* center) __attribute__((always_inline))
    {
        u32v sums = {};
        uint32_t i = 0;
        for (; length - i >= kBytes; i += kBytes) {
            const u8v a = load<u8v>(vector + i), b = load<u8v>(center + i), d = max(a, b) - min(a, b);
            sums = addProducts(sums, d, d);
        }
        uint32_t sum = i == 0 ? 0 : sumOfLanes(sums);
        for (; i < length; ++i)
            sum += (uint32_t)((vector[i] - center[i]) * (vector[i] - center[i]));
        return sum;
    };
    return descriptor::nearest(centers, count, stride, distance, false, squared);
}

void dotProducts36s8V(const int8_t* a, const int8_t* others, uint32_t count, int32_t* products36)
{
    constexpr uint32_t whole = 36 / kBytes * kBytes;
    const auto sums = [=](const int8_t* other) __attribute__((always_inline))
    {
        u32v sum = {};
        for (uint32_t i = 0; i < whole; i += kBytes)
            sum = addProducts(sum, load<s8v>(a + i), load<s8v>(other + i));
        return addPartProducts<36 - whole>(sum, a + whole, other + whole);
    };
    size_t k = 0;
    for (; count - k >= 4; k += 4) {
        const int8_t* const at = others + 36 * k;
        uint32_t four[4];
        storeSums(four, sums(at), sums(at + 36), sums(at + 72), sums(at + 108));
        memcpy(products36 + k, four, sizeof four);
    }
    for (; k < count; ++k)
        products36[k] = (int32_t)sumOfLanes(sums(others + 36 * k));
}

} // namespace odx::ODX_TARGET
