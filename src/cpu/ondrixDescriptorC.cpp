// Patches, the descriptor of a patch, statistics and clusters of descriptors, linear and vocabulary searches.
#include "cpu/ondrixDescriptor.h"
#include "cpu/ondrixDotC.h"

#include <math.h>
#include <stdlib.h>

using namespace odx;
using namespace odx::descriptor;

namespace
{

// ---- patches ----

template <uint32_t n>
uint32_t absoluteDifferences(const uint8_t* a, size_t aStride, const uint8_t* b, size_t bStride)
{
    uint32_t sum = 0;
    for (size_t y = 0; y < n; ++y) {
        for (size_t x = 0; x < n; ++x)
            sum += static_cast<uint32_t>(abs(a[y * aStride + x] - b[y * bStride + x]));
    }
    return sum;
}

template <uint32_t width, uint32_t height>
uint32_t products(const uint8_t* a, size_t aStride, const uint8_t* b, size_t bStride)
{
    uint32_t sum = 0;
    for (size_t y = 0; y < height; ++y) {
        for (size_t x = 0; x < width; ++x)
            sum += static_cast<uint32_t>(a[y * aStride + x] * b[y * bStride + x]);
    }
    return sum;
}

template <uint32_t n>
void differencesEverywhere(const uint8_t* patch, uint32_t patchStride, const uint8_t* src, uint32_t srcWidth,
                           uint32_t srcHeight, uint32_t srcStride, uint16_t* dst, uint32_t dstStride)
{
    for (size_t y = 0; y + n <= srcHeight; ++y) {
        uint16_t* const out = rowOf(dst, dstStride, y);
        for (size_t x = 0; x + n <= srcWidth; ++x)
            out[x] = static_cast<uint16_t>(
                absoluteDifferences<n>(patch, patchStride, src + y * srcStride + x, srcStride));
    }
}

} // namespace

uint32_t odxSumOfAbsoluteDiff8x8u8C(const uint8_t* a, unsigned int aStride, const uint8_t* b, unsigned int bStride)
{
    return absoluteDifferences<8>(a, aStride, b, bStride);
}
uint32_t odxSumOfAbsoluteDiff16x16u8C(const uint8_t* a, unsigned int aStride, const uint8_t* b,
                                      unsigned int bStride)
{
    return absoluteDifferences<16>(a, aStride, b, bStride);
}
uint32_t odxDotProduct8x8u8C(const uint8_t* a, unsigned int aStride, const uint8_t* b, unsigned int bStride)
{
    return products<8, 8>(a, aStride, b, bStride);
}
uint32_t odxDotProduct11x12u8C(const uint8_t* a, unsigned int aStride, const uint8_t* b, unsigned int bStride)
{
    return products<11, 12>(a, aStride, b, bStride);
}
void odxSumOfAbsoluteDiffs8x8u8C(const uint8_t* patch, unsigned int patchStride, const uint8_t* src,
                                 unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                 uint16_t* dst, unsigned int dstStride)
{
    differencesEverywhere<8>(patch, patchStride, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}
void odxSumOfAbsoluteDiffs16x16u8C(const uint8_t* patch, unsigned int patchStride, const uint8_t* src,
                                   unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                   uint16_t* dst, unsigned int dstStride)
{
    differencesEverywhere<16>(patch, patchStride, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

// ---- descriptors ----

void odxDescriptor17x17u8To36s8C(const uint8_t* src, unsigned int srcStride, int8_t* dst, float* invLength)
{
    int sums[36] = {};
    for (int y = 0; y < 15; ++y) {
        const uint8_t *const above = src + static_cast<size_t>(y) * srcStride, *const row = above + srcStride,
                             *const below = row + srcStride;
        for (int x = 0; x < 15; ++x) {
            const int dx = row[x + 2] - row[x], dy = below[x + 1] - above[x + 1];
            int* const cell = sums + 4 * (y / 5 * 3 + x / 5);
            cell[0] += dx;
            cell[1] += dy;
            cell[2] += abs(dx);
            cell[3] += abs(dy);
        }
    }
    int most = 0, square = 0;
    for (const int sum : sums)
        most = abs(sum) > most ? abs(sum) : most;
    for (int i = 0; i < 36; ++i) {
        const int magnitude = most == 0 ? 0 : (127 * abs(sums[i]) + most / 2) / most;
        dst[i] = static_cast<int8_t>(sums[i] < 0 ? -magnitude : magnitude);
        square += magnitude * magnitude;
    }
    if (invLength != nullptr)
        *invLength = square == 0 ? 0.0f : static_cast<float>(1 / sqrt(static_cast<double>(square)));
}

odxStatus odxDescriptorSampledMeanAndVar36f32C(const float* vectors, unsigned int, unsigned int vectorsStride,
                                               const uint32_t* indices, unsigned int numIndices, float* mean,
                                               float* variance)
{
    meanAndVariance(vectors, vectorsStride, indices, numIndices, mean, variance);
    return ONDRIX_SUCCESS;
}

int odxVecNormalize36s8f32C(const int8_t* src, unsigned int srcStride, const float* invLen, unsigned int numVecs,
                            float reqNorm, float* dst, const uint32_t* stopBuild)
{
    return normalise(src, srcStride, invLen, numVecs, reqNorm, dst, stopBuild);
}

namespace
{

void exchange(float& low, float& high)
{
    const float a = low, b = high;
    low = b < a ? b : a;
    high = b < a ? a : b;
}

// Two networks: of four values, and of two ascending halves.
void sort4(float* v)
{
    exchange(v[0], v[1]);
    exchange(v[2], v[3]);
    exchange(v[0], v[2]);
    exchange(v[1], v[3]);
    exchange(v[1], v[2]);
}
void mergeHalves(float* v)
{
    for (int i = 0; i < 4; ++i)
        exchange(v[i], v[i + 4]);
    exchange(v[2], v[4]);
    exchange(v[3], v[5]);
    for (int i = 1; i < 7; i += 2)
        exchange(v[i], v[i + 1]);
}

} // namespace

void odxSort8Scoresf32C(float* inScores, float* outScores)
{
    float scores[8];
    memcpy(scores, inScores, sizeof scores);
    sort4(scores);
    sort4(scores + 4);
    memcpy(inScores, scores, sizeof scores);
    mergeHalves(scores);
    memcpy(outScores, scores, sizeof scores);
}

// ---- clusters ----

void dotProducts36s8C(const int8_t* a, const int8_t* others, uint32_t count, int32_t* products36)
{
    for (size_t k = 0; k < count; ++k) {
        int32_t sum = 0;
        for (size_t j = 0; j < 36; ++j)
            sum += a[j] * others[36 * k + j];
        products36[k] = sum;
    }
}

uint32_t nearestCenteru8C(const uint8_t* vector, uint32_t length, const uint8_t* centers, uint32_t count,
                          uint32_t stride, uint32_t* distance)
{
    return nearest(centers, count, stride, distance, false, [=](const uint8_t* center) {
        uint32_t sum = 0;
        for (uint32_t j = 0; j < length; ++j)
            sum += static_cast<uint32_t>((vector[j] - center[j]) * (vector[j] - center[j]));
        return sum;
    });
}
uint32_t nearestCenterf32C(const float* vector, uint32_t length, const float* centers, uint32_t count,
                           uint32_t stride, float* distance)
{
    return nearestBy<Squares>(vector, length, centers, count, stride, distance);
}
uint32_t nearestDirectionf32C(const float* vector, uint32_t length, const float* centers, uint32_t count,
                              uint32_t stride, float* product)
{
    return nearestBy<odx::descriptor::Products>(vector, length, centers, count, stride, product);
}

namespace
{

template <class T, class Distance, class Sum>
struct Clusters {
    const T* vectors;
    uint32_t length, numVectors, vectorsStride;
    const T* centers;
    uint32_t numCenters, centersStride;
    uint32_t* labels;
    Distance* distances;
    uint32_t* counts;
    Sum* sums;
    T* newCenters;

    // Labels, distances, counts and sums; distanceOf(d) is the distance of what `nearestCenter` measures.
    template <class Nearest, class DistanceOf>
    void assign(Nearest* nearestCenter, DistanceOf distanceOf) const
    {
        if (counts != nullptr) memset(counts, 0, sizeof *counts * size_t{numCenters});
        const size_t elements = size_t{numCenters} * length;
        for (size_t i = 0; sums != nullptr && i < elements; ++i)
            sums[i] = 0;
        for (size_t i = 0; i < numVectors; ++i) {
            const T* const vector = rowOf(vectors, vectorsStride, i);
            Distance measured;
            const uint32_t label = nearestCenter(vector, length, centers, numCenters, centersStride, &measured);
            labels[i] = label;
            if (distances != nullptr) distances[i] = distanceOf(measured);
            if (counts != nullptr) ++counts[label];
            for (size_t j = 0; sums != nullptr && j < length; ++j)
                sums[size_t{label} * length + j] += static_cast<Sum>(vector[j]);
        }
    }

    // New centers: quotient(sum, divisor) of each element, where divisor(sums, k) is not 0.
    template <class Divisor, class Quotient>
    void move(Divisor divisor, Quotient quotient) const
    {
        for (size_t k = 0; newCenters != nullptr && k < numCenters; ++k) {
            const Sum* const sum = sums + k * length;
            T* const center = rowOf(newCenters, centersStride, k);
            const auto d = divisor(sum, k);
            if (!(d > 0)) {
                memmove(center, rowOf(centers, centersStride, k), sizeof(T) * size_t{length});
                continue;
            }
            for (size_t j = 0; j < length; ++j)
                center[j] = quotient(sum[j], d);
        }
    }
};
using FloatClusters = Clusters<float, float, double>;

odxStatus clusterNormed(const FloatClusters& clusters)
{
    clusters.assign(static_cast<decltype(nearestDirectionf32C)*>(nearestDirectionf32_),
                    [](float product) { return __builtin_fabsf(2.0f - 2.0f * product); });
    clusters.move(
        [&](const double* sum, size_t k) {
            double squares = 0;
            for (size_t j = 0; j < clusters.length && clusters.counts[k] != 0; ++j)
                squares += sum[j] * sum[j];
            return sqrt(squares);
        },
        [](double sum, double length) { return static_cast<float>(sum / length); });
    return ONDRIX_SUCCESS;
}

} // namespace

odxStatus odxClusterEuclideanu8C(const uint8_t* vectors, unsigned int length, unsigned int numVectors,
                                 unsigned int vectorsStride, const uint8_t* centers, unsigned int numCenters,
                                 unsigned int centersStride, uint32_t* labels, uint32_t* distances,
                                 uint32_t* counts, uint32_t* sums, uint8_t* newCenters)
{
    const Clusters<uint8_t, uint32_t, uint32_t> clusters = {vectors,   length,     numVectors,    vectorsStride,
                                                            centers,   numCenters, centersStride, labels,
                                                            distances, counts,     sums,          newCenters};
    clusters.assign(static_cast<decltype(nearestCenteru8C)*>(nearestCenteru8_), [](uint32_t d) { return d; });
    clusters.move([=](const uint32_t*, size_t k) { return counts[k]; },
                  [](uint32_t sum, uint32_t n) { return static_cast<uint8_t>((sum + n / 2) / n); });
    return ONDRIX_SUCCESS;
}

odxStatus odxClusterEuclideanf32C(const float* vectors, unsigned int length, unsigned int numVectors,
                                  unsigned int vectorsStride, const float* centers, unsigned int numCenters,
                                  unsigned int centersStride, uint32_t* labels, float* distances, uint32_t* counts,
                                  double* sums, float* newCenters)
{
    const FloatClusters clusters = {vectors,       length, numVectors, vectorsStride, centers, numCenters,
                                    centersStride, labels, distances,  counts,        sums,    newCenters};
    clusters.assign(static_cast<decltype(nearestCenterf32C)*>(nearestCenterf32_), [](float d) { return d; });
    clusters.move([=](const double*, size_t k) { return static_cast<double>(counts[k]); },
                  [](double sum, double n) { return static_cast<float>(sum / n); });
    return ONDRIX_SUCCESS;
}

odxStatus odxClusterEuclideanNormedf32C(const float* vectors, unsigned int length, unsigned int numVectors,
                                        unsigned int vectorsStride, const float* centers, unsigned int numCenters,
                                        unsigned int centersStride, uint32_t* labels, float* distances,
                                        uint32_t* counts, double* sums, float* newCenters)
{
    return clusterNormed({vectors, length, numVectors, vectorsStride, centers, numCenters, centersStride, labels,
                          distances, counts, sums, newCenters});
}

odxStatus odxClusterEuclideanNormed36f32C(const float* vectors, unsigned int numVectors,
                                          unsigned int vectorsStride, const float* centers,
                                          unsigned int numCenters, unsigned int centersStride, uint32_t* labels,
                                          float* distances, uint32_t* counts, double* sums, float* newCenters)
{
    return clusterNormed({vectors, 36, numVectors, vectorsStride, centers, numCenters, centersStride, labels,
                          distances, counts, sums, newCenters});
}
