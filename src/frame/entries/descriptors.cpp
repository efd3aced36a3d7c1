#include "ondrix/descriptors.h"
#include "frame/entry.h"

using namespace odx;

// Vectors of a fixed length are never worth the way to a remote target.
#define ODX_SMALL(...) ODX_LIMITS(bytes(0) & gpu(4, __VA_ARGS__))

extern "C" {

// ---- one pair of vectors: refused in silence ----

#define ODX_PAIR(name, T, Result)                            \
    Result name(const T* a, const T* b)                      \
    {                                                        \
        const Call<name##C> call(__func__, ODX_SMALL(a, b)); \
        if (!(a && b)) return call.failure();                \
        return call(a, b);                                   \
    }
ODX_PAIR(odxDotProduct36x1s8, int8_t, int32_t)
ODX_PAIR(odxDotProduct36x1u8, uint8_t, uint32_t)
ODX_PAIR(odxDotProduct64x1s8, int8_t, int32_t)
ODX_PAIR(odxDotProduct64x1u8, uint8_t, uint32_t)
ODX_PAIR(odxDotProduct128x1s8, int8_t, int32_t)
ODX_PAIR(odxDotProduct128x1u8, uint8_t, uint32_t)
ODX_PAIR(odxHammingDistance32x1u8, uint8_t, uint32_t)
ODX_PAIR(odxHammingDistance32x1u8a4, uint8_t, uint32_t)
ODX_PAIR(odxHammingDistance64x1u8, uint8_t, uint32_t)
ODX_PAIR(odxHammingDistance64x1u8a4, uint8_t, uint32_t)

#define ODX_ARRAYS(name, T, Result)                                                              \
    Result name(const T* a, const T* b, unsigned int length)                                     \
    {                                                                                            \
        const Call<name##C> call(__func__, ODX_LIMITS(bytes(length, sizeof *a) & gpu(4, a, b))); \
        if (!(a && b)) return call.failure();                                                    \
        return call(a, b, length);                                                               \
    }
ODX_ARRAYS(odxDotProducts8, int8_t, int32_t)
ODX_ARRAYS(odxDotProductu8, uint8_t, uint32_t)
ODX_ARRAYS(odxDotProductf32, float, float)
ODX_ARRAYS(odxHammingDistanceu8, uint8_t, uint32_t)

#define ODX_BLOCKS(name, T, Result)                                                                    \
    Result name(const T* a, unsigned int width, unsigned int height, unsigned int aStride, const T* b, \
                unsigned int bStride)                                                                  \
    {                                                                                                  \
        aStride = packedIfZero(aStride, width * sizeof *a);                                            \
        bStride = packedIfZero(bStride, width * sizeof *b);                                            \
        const Call<name##C> call(__func__, ODX_LIMITS(pixels(width, height) & gpu(4, a, b)));          \
        if (!(a && b)) return call.failure();                                                          \
        return call(a, width, height, aStride, b, bStride);                                            \
    }
ODX_BLOCKS(odxBlockDotProductu8, uint8_t, uint32_t)
ODX_BLOCKS(odxBlockDotProductf32, float, float)

#define ODX_COUNT(name)                                     \
    uint32_t name(const uint8_t* src)                       \
    {                                                       \
        const Call<name##C> call(__func__, ODX_SMALL(src)); \
        if (src == nullptr) return call.failure();          \
        return call(src);                                   \
    }
ODX_COUNT(odxBitCount32x1u8)
ODX_COUNT(odxBitCount64x1u8)

uint32_t odxBitCountu8(const uint8_t* src, unsigned int length)
{
    const Call<odxBitCountu8C> call(__func__, ODX_LIMITS(bytes(length) & gpu(4, src)));
    if (src == nullptr) return call.failure();
    return call(src, length);
}

uint32_t odxBitCountu32(const uint32_t* src, unsigned int length)
{
    const Call<odxBitCountu32C> call(__func__, ODX_LIMITS(bytes(length, sizeof *src) & gpu(4, src)));
    if (src == nullptr) return call.failure();
    return call(src, length);
}

// ---- one vector with four ----

void odxDotProduct36x4s8(const int8_t* A, const int8_t* B, const int8_t* C, const int8_t* D, const int8_t* E,
                         int32_t* dotProducts)
{
    const Call<odxDotProduct36x4s8C> call(__func__, ODX_SMALL(A, B, C, D, E));
    ODX_CHECK(A && B && C && D && E);
    call(A, B, C, D, E, dotProducts);
}

#define ODX_DOTS(name, T, Result)                                                              \
    void name(const T* A, const T* B, const T* C, const T* D, const T* E, Result* dotProducts) \
    {                                                                                          \
        const Call<name##C> call(__func__, ODX_SMALL(A, B, C, D, E));                          \
        ODX_CHECK(A && B && C && D && E && dotProducts);                                       \
        call(A, B, C, D, E, dotProducts);                                                      \
    }
ODX_DOTS(odxDotProduct36x4u8, uint8_t, uint32_t)
ODX_DOTS(odxDotProduct64x4s8, int8_t, int32_t)
ODX_DOTS(odxDotProduct64x4u8, uint8_t, uint32_t)
ODX_DOTS(odxDotProduct128x4s8, int8_t, int32_t)
ODX_DOTS(odxDotProduct128x4u8, uint8_t, uint32_t)

#define ODX_HAMMING(name)                                                                               \
    void name(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D, const uint8_t* E, \
              uint32_t* distances)                                                                      \
    {                                                                                                   \
        const Call<name##C> call(__func__, ODX_SMALL(A, B, C, D, E));                                   \
        ODX_CHECK(A && B && C && D && E && distances);                                                  \
        call(A, B, C, D, E, distances);                                                                 \
    }
ODX_HAMMING(odxHammingDistance32x4u8a4)
ODX_HAMMING(odxHammingDistance64x4u8)
ODX_HAMMING(odxHammingDistance64x4u8a4)

#define ODX_FOUR_COUNTS(name)                                                                          \
    void name(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D, uint32_t* count) \
    {                                                                                                  \
        const Call<name##C> call(__func__, ODX_SMALL(A, B, C, D));                                     \
        ODX_CHECK(A && B && C && D && count);                                                          \
        call(A, B, C, D, count);                                                                       \
    }
ODX_FOUR_COUNTS(odxBitCount32x4u8)
ODX_FOUR_COUNTS(odxBitCount64x4u8)

#define ODX_COSINES(name, T)                                                                        \
    void name(const T* A, float invLengthA, const T* vB0, const T* vB1, const T* vB2, const T* vB3, \
              const float* invLengthsB, float* dotProducts)                                         \
    {                                                                                               \
        const Call<name##C> call(__func__, ODX_SMALL(A, vB0, vB1, vB2, vB3));                       \
        ODX_CHECK(A && vB0 && vB1 && vB2 && vB3 && invLengthsB && dotProducts);                     \
        call(A, invLengthA, vB0, vB1, vB2, vB3, invLengthsB, dotProducts);                          \
    }
ODX_COSINES(odxDotProductNorm36x4s8, int8_t)
ODX_COSINES(odxDotProductNorm36x4u8, uint8_t)
ODX_COSINES(odxDotProductNorm64x4s8, int8_t)
ODX_COSINES(odxDotProductNorm64x4u8, uint8_t)
ODX_COSINES(odxDotProductNorm128x4s8, int8_t)
ODX_COSINES(odxDotProductNorm128x4u8, uint8_t)

// ---- normalised distances ----

void odxSumOfSquaredDiffs36x4s8(const int8_t* A, float invLenA, const int8_t* B, const int8_t* C, const int8_t* D,
                                const int8_t* E, const float* invLenB, float* distances)
{
    const Call<odxSumOfSquaredDiffs36x4s8C> call(__func__, ODX_SMALL(A, B, C, D, E));
    ODX_CHECK(A && B && C && D && E && invLenB && distances);
    call(A, invLenA, B, C, D, E, invLenB, distances);
}

void odxSumOfSquaredDiffs36xNs8(const int8_t* A, float invLenA, const int8_t* const* B, const float* invLenB,
                                unsigned int N, float* distances)
{
    const Call<odxSumOfSquaredDiffs36xNs8C> call(__func__, ODX_SMALL(A));
    ODX_CHECK(A && B && invLenB && distances);
    call(A, invLenA, B, invLenB, N, distances);
}

#define ODX_DISTANCES(name, T)                                                                             \
    void name(const T* a, float invLenA, unsigned int length, const T* const* bList, const float* invLenB, \
              unsigned int numB, float* distances)                                                         \
    {                                                                                                      \
        const Call<name##C> call(__func__, ODX_SMALL(a));                                                  \
        ODX_CHECK(a && bList && invLenB && distances);                                                     \
        call(a, invLenA, length, bList, invLenB, numB, distances);                                         \
    }
ODX_DISTANCES(odxSumOfSquaredDiffss8, int8_t)
ODX_DISTANCES(odxSumOfSquaredDiffsu8, uint8_t)
ODX_DISTANCES(odxSumOfSquaredDiffsf32, float)
}
