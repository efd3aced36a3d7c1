// Dot products, numbers of bits, Hamming and normalised distances.
#include "cpu/ondrixDotC.h"

#include <stddef.h>
#include <string.h>

namespace
{

// Several words at a time: compilers turn the loops into vectors.
template <class T>
uint32_t dot(const T* a, const T* b, size_t length)
{
    uint32_t sum = 0;
    for (size_t i = 0; i < length; ++i)
        sum += static_cast<uint32_t>(a[i] * b[i]);
    return sum;
}
template <uint32_t n, class T>
uint32_t dot(const T* a, const T* b)
{
    return dot(a, b, n);
}
template <uint32_t n, class T>
void dots4(const T* a, const T* const* b, uint32_t* sums)
{
    uint32_t four[4]; // the results may be anywhere
    for (int k = 0; k < 4; ++k)
        four[k] = dot(a, b[k], n);
    memcpy(sums, four, sizeof four);
}

// What bits are counted of: a vector, or where two differ.
struct Bits {
    const uint8_t* a;

    template <class Word>
    Word at(size_t i) const
    {
        Word word;
        memcpy(&word, a + i, sizeof word);
        return word;
    }
};
struct Differences {
    Bits a, b;

    template <class Word>
    Word at(size_t i) const
    {
        return static_cast<Word>(a.at<Word>(i) ^ b.at<Word>(i));
    }
};

template <class Source>
uint32_t countBits(Source source, size_t length)
{
    uint32_t count = 0;
    size_t i = 0;
    for (; length - i >= sizeof(uint64_t); i += sizeof(uint64_t))
        count += static_cast<uint32_t>(__builtin_popcountll(source.template at<uint64_t>(i)));
    for (; i < length; ++i)
        count += static_cast<uint32_t>(__builtin_popcount(source.template at<uint8_t>(i)));
    return count;
}

uint32_t bits(const uint8_t* a, size_t length)
{
    return countBits(Bits{a}, length);
}
uint32_t differing(const uint8_t* a, const uint8_t* b, size_t length)
{
    return countBits(Differences{{a}, {b}}, length);
}
template <uint32_t n>
uint32_t bits(const uint8_t* a)
{
    return bits(a, n);
}
template <uint32_t n>
uint32_t differing(const uint8_t* a, const uint8_t* b)
{
    return differing(a, b, n);
}
template <uint32_t n>
void bits4(const uint8_t* const* a, uint32_t* counts)
{
    for (int k = 0; k < 4; ++k)
        counts[k] = bits(a[k], n);
}
template <uint32_t n>
void differing4(const uint8_t* a, const uint8_t* const* b, uint32_t* counts)
{
    for (int k = 0; k < 4; ++k)
        counts[k] = differing(a, b[k], n);
}

// Sums of floats have an order, so several vectors at a time are what a processor can overlap.
template <int count>
[[gnu::always_inline]] inline void dotsInOrder(const float* a, const float* const* b, size_t length, float* sums)
{
    float sum[count] = {};
    for (size_t i = 0; i < length; ++i) {
        for (int k = 0; k < count; ++k)
            sum[k] += a[i] * b[k][i];
    }
    for (int k = 0; k < count; ++k)
        sums[k] = sum[k];
}

} // namespace

#define ODX_COLUMN(name) name##C
#include "cpu/ondrixDotOperations.inc"

float odxDotProductf32C(const float* a, const float* b, unsigned int length)
{
    float sum;
    dotsInOrder<1>(a, &b, length, &sum);
    return sum;
}

float odxBlockDotProductf32C(const float* a, unsigned int width, unsigned int height, unsigned int aStride,
                             const float* b, unsigned int bStride)
{
    float sum = 0;
    for (size_t y = 0; y < height && width != 0; ++y) {
        const float* const rowA = a + y * (aStride / sizeof *a);
        const float* const rowB = b + y * (bStride / sizeof *b);
        for (size_t x = 0; x < width; ++x)
            sum += rowA[x] * rowB[x];
    }
    return sum;
}

void odxSumOfSquaredDiffsf32C(const float* a, float invLenA, unsigned int length, const float* const* bList,
                              const float* invLenB, unsigned int numB, float* distances)
{
    constexpr unsigned int kAtOnce = 8;
    float sums[kAtOnce];
    unsigned int i = 0;
    for (; numB - i >= kAtOnce; i += kAtOnce) {
        dotsInOrder<kAtOnce>(a, bList + i, length, sums);
        for (unsigned int k = 0; k < kAtOnce; ++k)
            distances[i + k] = normalisedDistance(invLenA, invLenB[i + k], sums[k]);
    }
    for (; i < numB; ++i) {
        dotsInOrder<1>(a, bList + i, length, sums);
        distances[i] = normalisedDistance(invLenA, invLenB[i], sums[0]);
    }
}
