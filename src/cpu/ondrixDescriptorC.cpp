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

// ---- linear search ----

namespace
{

// A database whose arrays move together.
struct Database {
    int8_t* descriptors;
    uint32_t* inverseLengths;
    uint16_t* targets;
    uint32_t* oldIndices;

    void exchange(size_t i, size_t j) const
    {
        int8_t descriptor[36];
        memcpy(descriptor, descriptors + 36 * i, sizeof descriptor);
        memmove(descriptors + 36 * i, descriptors + 36 * j, sizeof descriptor);
        memcpy(descriptors + 36 * j, descriptor, sizeof descriptor);
        const auto both = [=](auto* array) {
            const auto value = array[i];
            array[i] = array[j];
            array[j] = value;
        };
        both(inverseLengths);
        both(targets);
        both(oldIndices);
    }
};

// A heap, so that no order of the ids costs more than another.
void sortByTarget(const Database& all, size_t first, size_t count)
{
    const uint16_t* const target = all.targets + first;
    const auto sink = [&](size_t i, size_t end) {
        for (size_t child = 2 * i + 1; child < end; child = 2 * i + 1) {
            if (child + 1 < end && target[child] < target[child + 1]) ++child;
            if (target[i] >= target[child]) return;
            all.exchange(first + i, first + child);
            i = child;
        }
    };
    for (size_t i = count / 2; i > 0; --i)
        sink(i - 1, count);
    for (size_t end = count; end > 1; --end) {
        all.exchange(first, first + end - 1);
        sink(0, end - 1);
    }
}

// The best of one source descriptor, ascending.
struct Matches {
    static constexpr uint32_t kMost = 8;
    struct Match {
        uint32_t index, distance;
    } best[kMost];
    uint32_t count;

    void add(Match match)
    {
        if (count == kMost && match.distance >= best[kMost - 1].distance) return;
        uint32_t place = count < kMost ? count++ : kMost - 1;
        for (; place > 0 && match.distance < best[place - 1].distance; --place)
            best[place] = best[place - 1];
        best[place] = match;
    }
};

} // namespace

int odxLinearSearchPrepare8x36s8C(uint32_t* dbLUT, unsigned int numDBLUT, int8_t* descDB,
                                  uint32_t* descDBInvLenQ38, uint16_t* descDBTargetId, uint32_t* descDBOldIdx,
                                  unsigned int numDBDesc)
{
    const Database all = {descDB, descDBInvLenQ38, descDBTargetId, descDBOldIdx};
    for (size_t t = 0; t < numDBLUT; ++t) {
        const uint32_t first = dbLUT[2 * t], count = dbLUT[2 * t + 1];
        if (uint64_t{first} + count > numDBDesc) return -1;
        sortByTarget(all, first, count);
    }
    return 0;
}

void odxLinearSearch8x36s8C(const uint32_t* dbLUT, unsigned int numDBLUT, const int8_t* descDB,
                            const uint32_t* descDBInvLenQ38, const uint16_t* descDBTargetId,
                            unsigned int numDescDB, const int8_t* srcDesc, const uint32_t* srcDescInvLenQ38,
                            const uint32_t* srcDescIdx, unsigned int numSrcDesc, const uint16_t* targetsToIgnore,
                            unsigned int numTargetsToIgnore, uint32_t maxDistanceQ31,
                            uint32_t* correspondenceDBIdx, uint32_t* correspondencSrcDescIdx,
                            uint32_t* correspondenceDistanceQ31, unsigned int maxNumCorrespondences,
                            uint32_t* numCorrespondences)
{
    constexpr uint64_t kAtOnce = 64;
    int32_t products36[kAtOnce];
    uint32_t written = 0;
    // Neighbours in the database often have the same target.
    uint32_t lastTarget = UINT32_MAX;
    bool lastIgnored = false;
    const auto isIgnored = [&](uint16_t target) {
        if (target == lastTarget) return lastIgnored;
        lastTarget = target;
        lastIgnored = false;
        for (size_t i = 0; i < numTargetsToIgnore && !lastIgnored; ++i)
            lastIgnored = targetsToIgnore[i] == target;
        return lastIgnored;
    };
    for (uint32_t i = 0; i < numSrcDesc; ++i) {
        const size_t t = srcDescIdx[i];
        if (t >= numDBLUT) continue;
        const uint64_t first = dbLUT[2 * t], wanted = first + dbLUT[2 * t + 1],
                       end = wanted < numDescDB ? wanted : numDescDB;
        Matches matches = {};
        for (uint64_t begin = first; begin < end; begin += kAtOnce) {
            const uint64_t count = end - begin < kAtOnce ? end - begin : kAtOnce;
            dotProducts36s8_(srcDesc + size_t{36} * i, descDB + 36 * static_cast<size_t>(begin),
                             static_cast<uint32_t>(count), products36);
            for (uint64_t k = 0; k < count; ++k) {
                const size_t j = static_cast<size_t>(begin + k);
                const int32_t dot = products36[k];
                if (dot < 1 || isIgnored(descDBTargetId[j])) continue;
                // Below 2^52: the inverse lengths have 32 bits each, the dot product 20.
                const int64_t cosine =
                    static_cast<int64_t>((uint64_t{descDBInvLenQ38[j]} * srcDescInvLenQ38[i]) >> 32) * dot;
                const int64_t whole = int64_t{1} << 44;
                const int64_t distance = cosine < whole ? (whole - cosine) >> 12 : 0;
                if (distance > int64_t{maxDistanceQ31}) continue;
                matches.add({static_cast<uint32_t>(j), static_cast<uint32_t>(distance)});
            }
        }
        for (uint32_t k = 0; k < matches.count; ++k) {
            correspondenceDBIdx[written] = matches.best[k].index;
            correspondencSrcDescIdx[written] = i;
            correspondenceDistanceQ31[written] = matches.best[k].distance;
            if (++written >= maxNumCorrespondences) {
                *numCorrespondences = written;
                return;
            }
        }
    }
    *numCorrespondences = written;
}

// ---- k-means tree ----

uint32_t odxKMeansTreeSearch36x10s8C(const int8_t* nodeChildrenCenter, const uint32_t* nodeChildrenInvLenQ32,
                                     const int32_t* nodeChildrenIndex, const uint8_t* nodeNumChildren,
                                     unsigned int numNodes, const int8_t* key)
{
    constexpr uint32_t kMostChildren = 10;
    int64_t node = 0;
    // A tree is left after as many steps as it has nodes.
    for (uint32_t steps = 0; node < int64_t{numNodes} && steps < numNodes; ++steps) {
        const size_t first = kMostChildren * static_cast<size_t>(node);
        const int8_t* const centers = nodeChildrenCenter + 36 * first;
        const uint32_t listed = nodeNumChildren[node], count = listed < kMostChildren ? listed : kMostChildren;
        if (count == 0) return 0;
        int32_t dots[kMostChildren];
        uint32_t k = 0;
        for (; count - k >= 4; k += 4) {
            const int8_t* const four = centers + 36 * k;
            odxDotProduct36x4s8(key, four, four + 36, four + 72, four + 108, dots + k);
        }
        for (; k < count; ++k)
            dots[k] = odxDotProduct36x1s8(key, centers + 36 * k);
        uint32_t best = 0;
        int64_t bestScore = INT64_MIN;
        for (k = 0; k < count; ++k) {
            const int64_t score = int64_t{dots[k]} * int64_t{nodeChildrenInvLenQ32[first + k]};
            if (score > bestScore) {
                bestScore = score;
                best = k;
            }
        }
        node = nodeChildrenIndex[first + best];
        if (node < 0) return static_cast<uint32_t>(node) & 0x7FFFFFFF;
    }
    return 0;
}
