// What the columns share that work on vectors of floats: sums in lanes, which every processor adds in the same
// order.
#ifndef ODX_CPU_ONDRIX_DESCRIPTOR_H
#define ODX_CPU_ONDRIX_DESCRIPTOR_H

#include "cpu/image.h"

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#define ODX_DESCRIPTOR_INLINE [[gnu::always_inline]] static inline

namespace odx::descriptor
{

typedef float Lanes16 __attribute__((vector_size(64)));
typedef float Lanes4 __attribute__((vector_size(16)));

template <class Lanes>
ODX_DESCRIPTOR_INLINE Lanes lanesAt(const float* p)
{
    Lanes lanes;
    memcpy(&lanes, p, sizeof lanes);
    return lanes;
}

struct Squares {
    static constexpr bool kGreatest = false;
    template <class Lanes>
    [[gnu::always_inline]] static inline Lanes of(Lanes a, Lanes b)
    {
        return (a - b) * (a - b);
    }
};
struct Products {
    static constexpr bool kGreatest = true;
    template <class Lanes>
    [[gnu::always_inline]] static inline Lanes of(Lanes a, Lanes b)
    {
        return a * b;
    }
};

// Sixteen sums, element j in sum j mod 16, and their sum in halves. No sum is ever -0, so that zeros behind the
// last element change nothing.
template <class Term>
ODX_DESCRIPTOR_INLINE float sumOfTerms(const float* a, const float* b, size_t length)
{
    Lanes16 sums = {};
    size_t i = 0;
    for (; length - i >= 16; i += 16)
        sums += Term::of(lanesAt<Lanes16>(a + i), lanesAt<Lanes16>(b + i));
    Lanes4 t[4];
    memcpy(t, &sums, sizeof t);
    const size_t left = length - i;
    const auto addRest = [&](Lanes4 & sum, size_t k) __attribute__((always_inline))
    {
        if (left >= k + 4) {
            sum += Term::of(lanesAt<Lanes4>(a + i + k), lanesAt<Lanes4>(b + i + k));
        } else if (left > k) {
            Lanes4 restA = {}, restB = {};
            for (size_t j = 0; k + j < left; ++j) {
                restA[j] = a[i + k + j];
                restB[j] = b[i + k + j];
            }
            sum += Term::of(restA, restB);
        }
    };
    addRest(t[0], 0);
    addRest(t[1], 4);
    addRest(t[2], 8);
    addRest(t[3], 12);
    const Lanes4 four = (t[0] + t[2]) + (t[1] + t[3]);
    return (four[0] + four[2]) + (four[1] + four[3]);
}

template <class T, class Distance, class Measure>
ODX_DESCRIPTOR_INLINE uint32_t nearest(const T* centers, uint32_t count, uint32_t stride, Distance* distance,
                                       bool greatest, Measure measure)
{
    uint32_t best = 0;
    Distance bestDistance = measure(centers);
    for (uint32_t k = 1; k < count; ++k) {
        const Distance d = measure(rowOf(centers, stride, k));
        if (greatest ? d > bestDistance : d < bestDistance) {
            best = k;
            bestDistance = d;
        }
    }
    *distance = bestDistance;
    return best;
}
template <class Term>
ODX_DESCRIPTOR_INLINE uint32_t nearestBy(const float* vector, uint32_t length, const float* centers,
                                         uint32_t count, uint32_t stride, float* distance)
{
    return nearest(centers, count, stride, distance, Term::kGreatest,
                   [=](const float* center) { return sumOfTerms<Term>(vector, center, length); });
}

// The 36 elements of a descriptor.
struct Lanes36 {
    Lanes16 a, b;
    Lanes4 c;
};
ODX_DESCRIPTOR_INLINE void load(Lanes36& v, const float* p)
{
    v = Lanes36{lanesAt<Lanes16>(p), lanesAt<Lanes16>(p + 16), lanesAt<Lanes4>(p + 32)};
}
ODX_DESCRIPTOR_INLINE void storeQuotient(float* p, const Lanes36& v, float n)
{
    const Lanes36 q = {v.a / n, v.b / n, v.c / n};
    memcpy(p, &q.a, sizeof q.a);
    memcpy(p + 16, &q.b, sizeof q.b);
    memcpy(p + 32, &q.c, sizeof q.c);
}

ODX_DESCRIPTOR_INLINE void meanAndVariance(const float* vectors, uint32_t stride, const uint32_t* indices,
                                           uint32_t count, float* mean, float* variance)
{
    const auto at = [=](uint32_t i) { return rowOf(vectors, stride, indices == nullptr ? i : indices[i]); };
    const float n = static_cast<float>(count);
    Lanes36 sum = {}, middle, v;
    for (uint32_t i = 0; i < count; ++i) {
        load(v, at(i));
        sum = Lanes36{sum.a + v.a, sum.b + v.b, sum.c + v.c};
    }
    storeQuotient(mean, sum, n);
    load(middle, mean);
    sum = Lanes36{};
    for (uint32_t i = 0; i < count; ++i) {
        load(v, at(i));
        v = Lanes36{v.a - middle.a, v.b - middle.b, v.c - middle.c};
        sum = Lanes36{sum.a + v.a * v.a, sum.b + v.b * v.b, sum.c + v.c * v.c};
    }
    storeQuotient(variance, sum, n);
}

ODX_DESCRIPTOR_INLINE int normalise(const int8_t* src, uint32_t srcStride, const float* invLen, uint32_t numVecs,
                                    float reqNorm, float* dst, const uint32_t* stopBuild)
{
    for (size_t i = 0; i < numVecs; ++i) {
        if (stopBuild != nullptr && __atomic_load_n(stopBuild, __ATOMIC_RELAXED) != 0) break;
        const int8_t* const vector = src + i * srcStride;
        const float scale = invLen[i] * reqNorm;
        for (int j = 0; j < 36; ++j)
            dst[36 * i + static_cast<size_t>(j)] = scale * static_cast<float>(vector[j]);
    }
    return 0;
}

} // namespace odx::descriptor

#endif
