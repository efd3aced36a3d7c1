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

// ---- patches ----

#define ODX_PATCHES(name, n)                                                                      \
    uint32_t name(const uint8_t* a, unsigned int aStride, const uint8_t* b, unsigned int bStride) \
    {                                                                                             \
        aStride = packedIfZero(aStride, n);                                                       \
        bStride = packedIfZero(bStride, n);                                                       \
        const Call<name##C> call(__func__, ODX_LIMITS(bytes(0) & gpu(16, a, b)));                 \
        if (!(a != nullptr && b != nullptr && aStride >= n && bStride >= n))                      \
            return call.refused("a && b && (aStride >= " #n ") && (bStride >= " #n ")");          \
        return call(a, aStride, b, bStride);                                                      \
    }
ODX_PATCHES(odxSumOfAbsoluteDiff8x8u8, 8)
ODX_PATCHES(odxSumOfAbsoluteDiff16x16u8, 16)
ODX_PATCHES(odxDotProduct8x8u8, 8)
ODX_PATCHES(odxDotProduct11x12u8, 11)

void odxSumOfAbsoluteDiffs8x8u8(const uint8_t* patch, const uint8_t* src, unsigned int srcWidth,
                                unsigned int srcHeight, uint16_t* dst)
{
    const Call<odxSumOfAbsoluteDiffs8x8u8C> call(__func__,
                                                 ODX_LIMITS(pixels(srcWidth, srcHeight) & aligned(src, dst)));
    ODX_CHECK(patch && src && dst && (srcWidth >= 8) && (srcHeight >= 8));
    call(patch, 8u, src, srcWidth, srcHeight, srcWidth, dst,
         static_cast<unsigned int>((srcWidth - 7) * sizeof(uint16_t)));
}

void odxSumOfAbsoluteDiffs8x8u8_v2(const uint8_t* patch, unsigned int patchStride, const uint8_t* src,
                                   unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                   uint16_t* dst, unsigned int dstStride)
{
    patchStride = packedIfZero(patchStride, 8);
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, (srcWidth - 7) * sizeof(uint16_t));
    const Call<odxSumOfAbsoluteDiffs8x8u8C> call(
        __func__, ODX_LIMITS(pixels(srcWidth, srcHeight) & aligned(src, srcStride, dst)));
    ODX_CHECK(patch && src && dst && (srcWidth >= 8) && (srcHeight >= 8) && (patchStride >= 8) && (srcStride >= srcWidth) && (dstStride >= (srcWidth - 7)*sizeof(uint16_t)));
    call(patch, patchStride, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void odxSumOfAbsoluteDiffs16x16u8(const uint8_t* patch, unsigned int patchStride, const uint8_t* src,
                                  unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                  uint16_t* dst, unsigned int dstStride)
{
    patchStride = packedIfZero(patchStride, 16);
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, (srcWidth - 15) * sizeof(uint16_t));
    const Call<odxSumOfAbsoluteDiffs16x16u8C> call(__func__, ODX_LIMITS(bytes(0) & gpu(16, src, dst)));
    ODX_CHECK(patch && src && dst && (srcWidth >= 16) && (srcHeight >= 16) && (patchStride >= 16) && (srcStride >= srcWidth) && (dstStride >= (srcWidth - 15)*sizeof(uint16_t)));
    call(patch, patchStride, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

// ---- descriptors and clusters ----

void odxDescriptor17x17u8To36s8(const uint8_t* src, unsigned int srcStride, int8_t* dst, float* invLength)
{
    srcStride = packedIfZero(srcStride, 17);
    const Call<odxDescriptor17x17u8To36s8C> call(__func__, ODX_LIMITS(bytes(0) & gpu(16, src, dst, invLength)));
    ODX_CHECK(src && dst && (srcStride >= 17));
    call(src, srcStride, dst, invLength);
}

int odxVecNormalize36s8f32(const int8_t* src, unsigned int srcStride, const float* invLen, unsigned int numVecs,
                           float reqNorm, float* dst, const uint32_t* stopBuild)
{
    srcStride = packedIfZero(srcStride, 36);
    const Call<odxVecNormalize36s8f32C> call(__func__, ODX_LIMITS(bytes(numVecs, 36) & gpu(4, src)));
    if (!(src && invLen && dst)) return call.failure();
    return call(src, srcStride, invLen, numVecs, reqNorm, dst, stopBuild);
}

odxStatus odxDescriptorSampledMeanAndVar36f32(const float* vectors, unsigned int numVectors,
                                              unsigned int vectorsStride, const uint32_t* indices,
                                              unsigned int numIndices, float* mean, float* variance)
{
    vectorsStride = packedIfZero(vectorsStride, 36 * sizeof(float));
    const Call<odxDescriptorSampledMeanAndVar36f32C> call(
        __func__, ODX_LIMITS(bytes(numVectors, 144) & aligned(vectors, vectorsStride)));
    bool inRange = indices != nullptr || numIndices <= numVectors;
    for (size_t i = 0; indices != nullptr && inRange && i < numIndices; ++i)
        inRange = indices[i] < numVectors;
    ODX_CHECK(vectors && numIndices && mean && variance && (vectorsStride >= 36*sizeof(float)) && inRange);
    return call(vectors, numVectors, vectorsStride, indices, numIndices, mean, variance);
}

void odxSort8Scoresf32(float* inScores, float* outScores)
{
    const Call<odxSort8Scoresf32C> call(__func__, ODX_SMALL(inScores, outScores));
    ODX_CHECK(inScores && outScores);
    call(inScores, outScores);
}

odxStatus odxClusterEuclideanu8(const uint8_t* vectors, unsigned int length, unsigned int numVectors,
                                unsigned int vectorsStride, const uint8_t* centers, unsigned int numCenters,
                                unsigned int centersStride, uint32_t* labels, uint32_t* distances,
                                uint32_t* counts, uint32_t* sums, uint8_t* newCenters)
{
    vectorsStride = packedIfZero(vectorsStride, length);
    centersStride = packedIfZero(centersStride, length);
    const Call<odxClusterEuclideanu8C> call(
        __func__, ODX_LIMITS(bytes(length, numVectors) & aligned(vectors, vectorsStride, centers, centersStride)));
    ODX_CHECK(vectors && centers && labels && length && numVectors && numCenters && (length <= 65536) && (numVectors <= 16777216) && (vectorsStride >= length) && (centersStride >= length) && ((counts && sums) || !newCenters));
    return call(vectors, length, numVectors, vectorsStride, centers, numCenters, centersStride, labels, distances,
                counts, sums, newCenters);
}

#define ODX_CLUSTERS(name)                                                                                       \
    odxStatus name(const float* vectors, unsigned int length, unsigned int numVectors,                           \
                   unsigned int vectorsStride, const float* centers, unsigned int numCenters,                    \
                   unsigned int centersStride, uint32_t* labels, float* distances, uint32_t* counts,             \
                   double* sums, float* newCenters)                                                              \
    {                                                                                                            \
        vectorsStride = packedIfZero(vectorsStride, length * sizeof(float));                                     \
        centersStride = packedIfZero(centersStride, length * sizeof(float));                                     \
        const Call<name##C> call(__func__, ODX_LIMITS(bytes(length, uint64_t{numVectors} * sizeof(float)) &      \
                                                      aligned(vectors, vectorsStride, centers, centersStride))); \
        ODX_CHECK(vectors && centers && labels && length && numVectors && numCenters && (vectorsStride >= length*sizeof(float)) && (centersStride >= length*sizeof(float)) && ((counts && sums) || !newCenters));              \
        return call(vectors, length, numVectors, vectorsStride, centers, numCenters, centersStride, labels,      \
                    distances, counts, sums, newCenters);                                                        \
    }
ODX_CLUSTERS(odxClusterEuclideanf32)
ODX_CLUSTERS(odxClusterEuclideanNormedf32)

odxStatus odxClusterEuclideanNormed36f32(const float* vectors, unsigned int numVectors, unsigned int vectorsStride,
                                         const float* centers, unsigned int numCenters, unsigned int centersStride,
                                         uint32_t* labels, float* distances, uint32_t* counts, double* sums,
                                         float* newCenters)
{
    vectorsStride = packedIfZero(vectorsStride, 36 * sizeof(float));
    centersStride = packedIfZero(centersStride, 36 * sizeof(float));
    const Call<odxClusterEuclideanNormed36f32C> call(
        __func__, ODX_LIMITS(bytes(numVectors, 144) & aligned(vectors, vectorsStride, centers, centersStride)));
    ODX_CHECK(vectors && centers && labels && numVectors && numCenters && (vectorsStride >= 36*sizeof(float)) && (centersStride >= 36*sizeof(float)) && ((counts && sums) || !newCenters));
    return call(vectors, numVectors, vectorsStride, centers, numCenters, centersStride, labels, distances, counts,
                sums, newCenters);
}

// ---- searches ----

int odxKDTreeCreate36s8f32(const int8_t* vectors, const float* invLengths, int numVectors,
                           odxKDTree36s8f32** kdtrees)
{
    const Call<odxKDTreeCreate36s8f32C> call(__func__, ODX_SMALL(vectors, invLengths));
    if (!(vectors && invLengths && kdtrees && numVectors >= 0)) return call.failure();
    return call(vectors, invLengths, numVectors, kdtrees);
}

int odxKDTreeQuery36s8f32(odxKDTree36s8f32* kdtree, const int8_t* query, float queryInvLen, int maxNNs,
                          float maxDist, int maxChecks, int unused, uint32_t* numNNsFound, int32_t* NNInds,
                          float* NNDists)
{
    const Call<odxKDTreeQuery36s8f32C> call(__func__, ODX_SMALL(query));
    // A NaN is not at least 0.
    const bool usable = kdtree && query && queryInvLen >= 0 && maxDist >= 0 && maxNNs >= 0 && maxChecks >= 0 &&
                        numNNsFound && NNInds && NNDists;
    if (!usable) return call.failure();
    return call(kdtree, query, queryInvLen, maxNNs, maxDist, maxChecks, unused, numNNsFound, NNInds, NNDists);
}

int odxKDTreeDestroy36s8f32(odxKDTree36s8f32* kdtree)
{
    const Call<odxKDTreeDestroy36s8f32C> call(__func__, ODX_LIMITS(bytes(0)));
    if (kdtree == nullptr) return call.failure();
    return call(kdtree);
}

int odxLinearSearchPrepare8x36s8(uint32_t* dbLUT, unsigned int numDBLUT, int8_t* descDB, uint32_t* descDBInvLenQ38,
                                 uint16_t* descDBTargetId, uint32_t* descDBOldIdx, unsigned int numDBDesc)
{
    const Call<odxLinearSearchPrepare8x36s8C> call(__func__, ODX_SMALL(descDB));
    if (!(dbLUT && descDB && descDBInvLenQ38 && descDBTargetId && descDBOldIdx)) return call.failure();
    return call(dbLUT, numDBLUT, descDB, descDBInvLenQ38, descDBTargetId, descDBOldIdx, numDBDesc);
}

void odxLinearSearch8x36s8(const uint32_t* dbLUT, unsigned int numDBLUT, const int8_t* descDB,
                           const uint32_t* descDBInvLenQ38, const uint16_t* descDBTargetId, unsigned int numDescDB,
                           const int8_t* srcDesc, const uint32_t* srcDescInvLenQ38, const uint32_t* srcDescIdx,
                           unsigned int numSrcDesc, const uint16_t* targetsToIgnore,
                           unsigned int numTargetsToIgnore, uint32_t maxDistanceQ31, uint32_t* correspondenceDBIdx,
                           uint32_t* correspondencSrcDescIdx, uint32_t* correspondenceDistanceQ31,
                           unsigned int maxNumCorrespondences, uint32_t* numCorrespondences)
{
    const Call<odxLinearSearch8x36s8C> call(__func__, ODX_LIMITS(bytes(numDescDB, 36) & gpu(4, descDB, srcDesc)));
    ODX_CHECK(dbLUT && descDB && descDBInvLenQ38 && descDBTargetId && srcDesc && srcDescInvLenQ38 && srcDescIdx && (numTargetsToIgnore==0 || targetsToIgnore) && correspondenceDBIdx && correspondencSrcDescIdx && correspondenceDistanceQ31 && numCorrespondences);
    call(dbLUT, numDBLUT, descDB, descDBInvLenQ38, descDBTargetId, numDescDB, srcDesc, srcDescInvLenQ38,
         srcDescIdx, numSrcDesc, targetsToIgnore, numTargetsToIgnore, maxDistanceQ31, correspondenceDBIdx,
         correspondencSrcDescIdx, correspondenceDistanceQ31, maxNumCorrespondences, numCorrespondences);
}

uint32_t odxKMeansTreeSearch36x10s8(const int8_t* nodeChildrenCenter, const uint32_t* nodeChildrenInvLenQ32,
                                    const int32_t* nodeChildrenIndex, const uint8_t* nodeNumChildren,
                                    unsigned int numNodes, const int8_t* key)
{
    const Call<odxKMeansTreeSearch36x10s8C> call(__func__, ODX_SMALL(nodeChildrenCenter, key));
    if (!(nodeChildrenCenter && nodeChildrenInvLenQ32 && nodeChildrenIndex && nodeNumChildren && key))
        return call.failure();
    return call(nodeChildrenCenter, nodeChildrenInvLenQ32, nodeChildrenIndex, nodeNumChildren, numNodes, key);
}
}
