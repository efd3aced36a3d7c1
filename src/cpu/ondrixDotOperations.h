// The operations that compare vectors, for the column that includes this. No guard: each column reads it once, and
// brings ODX_COLUMN(name), the name of its function, and the kernels
//
//     dot<n>(a, b), dot(a, b, length)             sums of products, modulo 2^32, of signed or unsigned bytes
//     dots4<n>(a, b, sums)                        of one vector with each of four
//     bits<n>(a), bits(a, length)                 numbers of set bits
//     differing<n>(a, b), differing(a, b, length)
//     bits4<n>(a, counts), differing4<n>(a, b, counts)

namespace
{

// Four vectors.
template <class T>
struct Four {
    const T* at[4];
};

// A sum of products of signed bytes is a signed number.
inline float sumOf(const int8_t*, uint32_t sum)
{
    return static_cast<float>(static_cast<int32_t>(sum));
}
inline float sumOf(const uint8_t*, uint32_t sum)
{
    return static_cast<float>(sum);
}

[[gnu::always_inline]] inline float normalisedDistance(float invLengthA, float invLengthB, float product)
{
    return __builtin_fabsf(2.0f - 2.0f * invLengthA * invLengthB * product);
}

template <uint32_t n, class T>
[[gnu::always_inline]] inline void cosines(const T* a, float invLengthA, Four<T> b, const float* invLengths,
                                           float* results)
{
    uint32_t sums[4];
    dots4<n>(a, b.at, sums);
    for (int i = 0; i < 4; ++i)
        results[i] = invLengths[i] * (sumOf(a, sums[i]) * invLengthA);
}

template <uint32_t n, class T>
[[gnu::always_inline]] inline void distances4(const T* a, float invLengthA, Four<T> b, const float* invLengths,
                                              float* results)
{
    uint32_t sums[4];
    dots4<n>(a, b.at, sums);
    for (int i = 0; i < 4; ++i)
        results[i] = normalisedDistance(invLengthA, invLengths[i], sumOf(a, sums[i]));
}

template <class T>
[[gnu::always_inline]] inline void distances(const T* a, float invLengthA, uint32_t length, const T* const* b,
                                             const float* invLengths, uint32_t count, float* results)
{
    for (uint32_t i = 0; i < count; ++i)
        results[i] = normalisedDistance(invLengthA, invLengths[i], sumOf(a, dot(a, b[i], length)));
}

} // namespace

#define ODX_DOT(name, n, T, Sum)                 \
    Sum ODX_COLUMN(name)(const T* a, const T* b) \
    {                                            \
        return static_cast<Sum>(dot<n>(a, b));   \
    }
ODX_DOT(odxDotProduct36x1s8, 36, int8_t, int32_t)
ODX_DOT(odxDotProduct36x1u8, 36, uint8_t, uint32_t)
ODX_DOT(odxDotProduct64x1s8, 64, int8_t, int32_t)
ODX_DOT(odxDotProduct64x1u8, 64, uint8_t, uint32_t)
ODX_DOT(odxDotProduct128x1s8, 128, int8_t, int32_t)
ODX_DOT(odxDotProduct128x1u8, 128, uint8_t, uint32_t)
#undef ODX_DOT

#define ODX_DOTS(name, n, T, Sum)                                                                \
    void ODX_COLUMN(name)(const T* a, const T* b, const T* c, const T* d, const T* e, Sum* sums) \
    {                                                                                            \
        const Four<T> four = {{b, c, d, e}};                                                     \
        dots4<n>(a, four.at, reinterpret_cast<uint32_t*>(sums));                                 \
    }
ODX_DOTS(odxDotProduct36x4s8, 36, int8_t, int32_t)
ODX_DOTS(odxDotProduct36x4u8, 36, uint8_t, uint32_t)
ODX_DOTS(odxDotProduct64x4s8, 64, int8_t, int32_t)
ODX_DOTS(odxDotProduct64x4u8, 64, uint8_t, uint32_t)
ODX_DOTS(odxDotProduct128x4s8, 128, int8_t, int32_t)
ODX_DOTS(odxDotProduct128x4u8, 128, uint8_t, uint32_t)
#undef ODX_DOTS

#define ODX_COSINES(name, n, T)                                                                         \
    void ODX_COLUMN(name)(const T* a, float invLengthA, const T* b, const T* c, const T* d, const T* e, \
                          const float* invLengths, float* results)                                      \
    {                                                                                                   \
        cosines<n>(a, invLengthA, Four<T>{{b, c, d, e}}, invLengths, results);                          \
    }
ODX_COSINES(odxDotProductNorm36x4s8, 36, int8_t)
ODX_COSINES(odxDotProductNorm36x4u8, 36, uint8_t)
ODX_COSINES(odxDotProductNorm64x4s8, 64, int8_t)
ODX_COSINES(odxDotProductNorm64x4u8, 64, uint8_t)
ODX_COSINES(odxDotProductNorm128x4s8, 128, int8_t)
ODX_COSINES(odxDotProductNorm128x4u8, 128, uint8_t)
#undef ODX_COSINES

int32_t ODX_COLUMN(odxDotProducts8)(const int8_t* a, const int8_t* b, unsigned int length)
{
    return static_cast<int32_t>(dot(a, b, length));
}
uint32_t ODX_COLUMN(odxDotProductu8)(const uint8_t* a, const uint8_t* b, unsigned int length)
{
    return dot(a, b, length);
}

uint32_t ODX_COLUMN(odxBlockDotProductu8)(const uint8_t* a, unsigned int width, unsigned int height,
                                          unsigned int aStride, const uint8_t* b, unsigned int bStride)
{
    uint32_t sum = 0;
    for (size_t y = 0; y < height && width != 0; ++y)
        sum += dot(a + y * aStride, b + y * bStride, width);
    return sum;
}

#define ODX_BITS(name, n)                         \
    uint32_t ODX_COLUMN(name)(const uint8_t* src) \
    {                                             \
        return bits<n>(src);                      \
    }
ODX_BITS(odxBitCount32x1u8, 32)
ODX_BITS(odxBitCount64x1u8, 64)
#undef ODX_BITS

#define ODX_BITS4(name, n)                                                                        \
    void ODX_COLUMN(name)(const uint8_t* a, const uint8_t* b, const uint8_t* c, const uint8_t* d, \
                          uint32_t* counts)                                                       \
    {                                                                                             \
        const Four<uint8_t> four = {{a, b, c, d}};                                                \
        bits4<n>(four.at, counts);                                                                \
    }
ODX_BITS4(odxBitCount32x4u8, 32)
ODX_BITS4(odxBitCount64x4u8, 64)
#undef ODX_BITS4

uint32_t ODX_COLUMN(odxBitCountu8)(const uint8_t* src, unsigned int length)
{
    return bits(src, length);
}
uint32_t ODX_COLUMN(odxBitCountu32)(const uint32_t* src, unsigned int length)
{
    return bits(reinterpret_cast<const uint8_t*>(src), sizeof *src * size_t{length});
}
uint32_t ODX_COLUMN(odxHammingDistanceu8)(const uint8_t* a, const uint8_t* b, unsigned int length)
{
    return differing(a, b, length);
}

#define ODX_HAMMING(name, n)                                      \
    uint32_t ODX_COLUMN(name)(const uint8_t* a, const uint8_t* b) \
    {                                                             \
        return differing<n>(a, b);                                \
    }
ODX_HAMMING(odxHammingDistance32x1u8, 32)
ODX_HAMMING(odxHammingDistance32x1u8a4, 32)
ODX_HAMMING(odxHammingDistance64x1u8, 64)
ODX_HAMMING(odxHammingDistance64x1u8a4, 64)
#undef ODX_HAMMING

#define ODX_HAMMING4(name, n)                                                                     \
    void ODX_COLUMN(name)(const uint8_t* a, const uint8_t* b, const uint8_t* c, const uint8_t* d, \
                          const uint8_t* e, uint32_t* distances)                                  \
    {                                                                                             \
        const Four<uint8_t> four = {{b, c, d, e}};                                                \
        differing4<n>(a, four.at, distances);                                                     \
    }
ODX_HAMMING4(odxHammingDistance32x4u8a4, 32)
ODX_HAMMING4(odxHammingDistance64x4u8, 64)
ODX_HAMMING4(odxHammingDistance64x4u8a4, 64)
#undef ODX_HAMMING4

void ODX_COLUMN(odxSumOfSquaredDiffs36x4s8)(const int8_t* a, float invLengthA, const int8_t* b, const int8_t* c,
                                            const int8_t* d, const int8_t* e, const float* invLengths,
                                            float* results)
{
    distances4<36>(a, invLengthA, Four<int8_t>{{b, c, d, e}}, invLengths, results);
}

void ODX_COLUMN(odxSumOfSquaredDiffs36xNs8)(const int8_t* a, float invLengthA, const int8_t* const* b,
                                            const float* invLengths, unsigned int count, float* results)
{
    unsigned int i = 0;
    for (; count - i >= 4; i += 4)
        distances4<36>(a, invLengthA, Four<int8_t>{{b[i], b[i + 1], b[i + 2], b[i + 3]}}, invLengths + i,
                       results + i);
    for (; i < count; ++i)
        results[i] = normalisedDistance(invLengthA, invLengths[i], sumOf(a, dot<36>(a, b[i])));
}

#define ODX_DISTANCES(name, T)                                                                  \
    void ODX_COLUMN(name)(const T* a, float invLengthA, unsigned int length, const T* const* b, \
                          const float* invLengths, unsigned int count, float* results)          \
    {                                                                                           \
        distances(a, invLengthA, length, b, invLengths, count, results);                        \
    }
ODX_DISTANCES(odxSumOfSquaredDiffss8, int8_t)
ODX_DISTANCES(odxSumOfSquaredDiffsu8, uint8_t)
#undef ODX_DISTANCES
