// How the arguments of the operations on vectors and patches travel.
#ifndef ODX_DSP_ONDRIX_DOT_X_H
#define ODX_DSP_ONDRIX_DOT_X_H

#include "dsp/shapes.h"

#include <algorithm>

namespace odx::remoting
{

// Rows in something larger, which may end where the last one does.
template <class T>
Buffer<T, directionOf<T>, 1> rowsWithin(T* data, Stride stride, uint64_t width, uint64_t height)
{
    const uint64_t before = height == 0 ? 0 : product(stride.value, height - 1);
    return {data, lengthOf(data, before > INT_MAX || height == 0 ? before : before + product(width, sizeof(T)))};
}

// Vectors of n elements: one, two, four with four results, one with four more and as many results.
template <uint32_t n>
inline constexpr auto oneOf = [](const auto* a) { return arguments(list(a, n)); };
template <uint32_t n>
inline constexpr auto twoOf = [](const auto* a, const auto* b) { return arguments(list(a, n), list(b, n)); };
template <uint32_t n>
inline constexpr auto fourOf = [](const auto* a, const auto* b, const auto* c, const auto* d, auto* results) {
    return arguments(list(a, n), list(b, n), list(c, n), list(d, n), written(results, 4));
};
template <uint32_t n>
inline constexpr auto fiveOf =
    [](const auto* a, const auto* b, const auto* c, const auto* d, const auto* e, auto* results) {
        return arguments(list(a, n), list(b, n), list(c, n), list(d, n), list(e, n), written(results, 4));
    };
// The same with inverse lengths.
template <uint32_t n>
inline constexpr auto normalisedOf = [](const auto* a, float length, const auto* b, const auto* c, const auto* d,
                                        const auto* e, const float* lengths, float* results) {
    return arguments(list(a, n), length, list(b, n), list(c, n), list(d, n), list(e, n), list(lengths, 4),
                     written(results, 4));
};

inline constexpr auto twoArrays = [](const auto* a, const auto* b, uint32_t length) {
    return arguments(list(a, length), list(b, length), length);
};
inline constexpr auto twoBlocks = [](const auto* a, uint32_t width, uint32_t height, uint32_t aStride,
                                     const auto* b, uint32_t bStride) {
    const Stride ofA = strideOf(a, aStride, width), ofB = strideOf(b, bStride, width);
    return arguments(rowsWithin(a, ofA, width, height), width, height, ofA, rowsWithin(b, ofB, width, height),
                     ofB);
};
template <uint32_t width, uint32_t height>
inline constexpr auto twoPatches = [](const uint8_t* a, uint32_t aStride, const uint8_t* b, uint32_t bStride) {
    const Stride ofA = stride(aStride, width), ofB = stride(bStride, width);
    return arguments(rowsWithin(a, ofA, width, height), ofA, rowsWithin(b, ofB, width, height), ofB);
};

// One vector with a list of others.
template <uint32_t n>
inline constexpr auto distancesOf = [](const auto* a, float length, const auto* const* list_, const float* lengths,
                                       uint32_t count, float* results) {
    return arguments(list(a, n), length, vectors(list_, count, n), list(lengths, count), count,
                     written(results, count));
};
inline constexpr auto distances = [](const auto* a, float length, uint32_t n, const auto* const* list_,
                                     const float* lengths, uint32_t count, float* results) {
    return arguments(list(a, n), length, n, vectors(list_, count, n), list(lengths, count), count,
                     written(results, count));
};

template <uint32_t n>
inline constexpr auto patchEverywhere = [](const uint8_t* patch, uint32_t patchStride, const uint8_t* src,
                                           uint32_t width, uint32_t height, uint32_t srcStride, uint16_t* dst,
                                           uint32_t dstStride) {
    const Stride of = stride(patchStride, n), from = stride(srcStride, width),
                 to = strideOf(dst, dstStride, width - (n - 1));
    return arguments(rowsWithin(patch, of, n, n), of, rows(src, from, height), width, height, from,
                     rows(dst, to, height - (n - 1)), to);
};

inline constexpr auto sortedScores = [](float* scores, float* sorted) {
    return arguments(list(scores, 8), written(sorted, 8));
};

template <uint32_t n>
inline constexpr auto descriptorOf = [](const uint8_t* src, uint32_t srcStride, int8_t* dst, float* length) {
    const Stride from = stride(srcStride, n);
    return arguments(rowsWithin(src, from, n, n), from, written(dst, 36), written(length, 1));
};

template <uint32_t n>
inline constexpr auto unitVectors = [](const int8_t* src, uint32_t srcStride, const float* lengths, uint32_t count,
                                       float norm, float* dst, const uint32_t* stop) {
    const Stride from = stride(srcStride, n);
    return arguments(rowsWithin(src, from, n, count), from, list(lengths, count), count, norm,
                     list(dst, product(n, count)), list(stop, 1));
};

template <uint32_t n>
inline constexpr auto sampleOf = [](const float* from, uint32_t count, uint32_t fromStride,
                                    const uint32_t* indices, uint32_t numIndices, float* mean, float* variance) {
    const Stride of = strideOf(from, fromStride, n);
    return limit(worthSending(count, n * sizeof *from) && multiplesOf(kRemoteAlignment, from, fromStride),
                 arguments(rowsWithin(from, of, n, count), count, of, list(indices, numIndices), numIndices,
                           written(mean, n), written(variance, n)));
};

// Vectors, and the centers that they belong to. What was not asked for is null.
inline constexpr auto clustersAfter = [](auto before, uint32_t length, const auto* from, uint32_t count,
                                         uint32_t fromStride, const auto* centers, uint32_t numCenters,
                                         uint32_t centersStride, uint32_t* labels, auto* nearness,
                                         uint32_t* counts, auto* sums, auto* newCenters) {
    const Stride of = strideOf(from, fromStride, length), between = strideOf(centers, centersStride, length);
    return limit(worthSending(length, uint64_t{count} * sizeof *from) &&
                     multiplesOf(kRemoteAlignment, from, fromStride, centers, centersStride),
                 arguments(rowsWithin(from, of, length, count)) + before +
                     arguments(count, of, rowsWithin(centers, between, length, numCenters), numCenters, between,
                               written(labels, count), written(nearness, count), written(counts, numCenters),
                               written(sums, product(numCenters, length)),
                               rowsWithin(newCenters, between, length, numCenters)));
};
inline constexpr auto clusters = [](const auto* from, uint32_t length, auto... others) {
    return clustersAfter(arguments(length), length, from, others...);
};
inline constexpr auto clusters36 = [](const float* from, auto... others) {
    return clustersAfter(arguments(), 36, from, others...);
};

template <uint32_t n>
inline constexpr auto database = [](uint32_t* targets, uint32_t numTargets, int8_t* from, uint32_t* lengths,
                                    uint16_t* ids, uint32_t* old, uint32_t count) {
    return arguments(list(targets, product(2, numTargets)), numTargets, list(from, product(n, count)),
                     list(lengths, count), list(ids, count), list(old, count), count);
};
// At most eight results for a vector, of which one is written without room for any.
template <uint32_t n>
inline constexpr auto linearSearch =
    [](const uint32_t* targets, uint32_t numTargets, const int8_t* from, const uint32_t* lengths,
       const uint16_t* ids, uint32_t count, const int8_t* searched, const uint32_t* searchedLengths,
       const uint32_t* searchedTargets, uint32_t numSearched, const uint16_t* ignored, uint32_t numIgnored,
       uint32_t most, uint32_t* index, uint32_t* source, uint32_t* distance, uint32_t room, uint32_t* found) {
        const uint64_t results = std::min(product(8, numSearched), std::max(uint64_t{room}, uint64_t{1}));
        return arguments(list(targets, product(2, numTargets)), numTargets, list(from, product(n, count)),
                         list(lengths, count), list(ids, count), count, list(searched, product(n, numSearched)),
                         list(searchedLengths, numSearched), list(searchedTargets, numSearched), numSearched,
                         list(ignored, numIgnored), numIgnored, most, list(index, results), list(source, results),
                         list(distance, results), room, written(found, 1));
    };

template <uint32_t n, uint32_t children>
inline constexpr auto vocabulary = [](const int8_t* centers, const uint32_t* lengths, const int32_t* indices,
                                      const uint8_t* numChildren, uint32_t count, const int8_t* key) {
    return arguments(list(centers, product(n, children, count)), list(lengths, product(children, count)),
                     list(indices, product(children, count)), list(numChildren, count), count, list(key, n));
};

} // namespace odx::remoting

#endif
