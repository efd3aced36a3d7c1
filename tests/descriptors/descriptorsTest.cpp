// The reference operations on vectors against their definitions, coded the slow way, and numbers worked by hand.
#include "ondrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <random>
#include <vector>

namespace
{

class Descriptors : public testing::Test
{
protected:
    Descriptors() { EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE)); }

    template <class T>
    std::vector<T> draw(size_t count)
    {
        std::vector<T> values(count);
        for (T& value : values)
            value = static_cast<T>(random_() >> 8);
        return values;
    }
    std::mt19937 random_{7};
};

template <class T>
int64_t sumOfProducts(const T* a, const T* b, size_t n)
{
    int64_t sum = 0;
    for (size_t i = 0; i < n; ++i)
        sum += int64_t{a[i]} * b[i];
    return sum;
}

uint32_t bitsOf(const uint8_t* a, const uint8_t* b, size_t n)
{
    uint32_t count = 0;
    for (size_t i = 0; i < 8 * n; ++i)
        count += static_cast<uint32_t>(((a[i / 8] ^ b[i / 8]) >> i % 8) & 1);
    return count;
}

float distanceOf(float la, float lb, float dot)
{
    volatile float scale = 2.0f * la; // rounded here, by every compiler
    scale = scale * lb;
    scale = scale * dot;
    return std::fabs(2.0f - scale);
}

template <class T, class Sum, class One, class Four, class Cosines>
void expectDots(const std::vector<T>& v, size_t n, One one, Four four, Cosines cosines)
{
    const T *const a = v.data(), *const b[4] = {a + n, a + 2 * n, a + 3 * n, a + 4 * n};
    const float lengths[4] = {0.01f, 0.02f, 3, -1};
    Sum sums[4];
    float results[4];
    four(a, b[0], b[1], b[2], b[3], sums);
    cosines(a, 0.007f, b[0], b[1], b[2], b[3], lengths, results);
    for (int k = 0; k < 4; ++k) {
        const int64_t expected = sumOfProducts(a, b[k], n);
        EXPECT_EQ(expected, one(a, b[k]));
        EXPECT_EQ(expected, sums[k]);
        volatile float cosine = static_cast<float>(expected) * 0.007f;
        EXPECT_EQ(lengths[k] * cosine, results[k]);
    }
}

} // namespace

TEST_F(Descriptors, DotProductsAreSumsOfProducts)
{
    const auto s = draw<int8_t>(640);
    const auto u = draw<uint8_t>(640);
    expectDots<int8_t, int32_t>(s, 36, odxDotProduct36x1s8, odxDotProduct36x4s8, odxDotProductNorm36x4s8);
    expectDots<int8_t, int32_t>(s, 64, odxDotProduct64x1s8, odxDotProduct64x4s8, odxDotProductNorm64x4s8);
    expectDots<int8_t, int32_t>(s, 128, odxDotProduct128x1s8, odxDotProduct128x4s8, odxDotProductNorm128x4s8);
    expectDots<uint8_t, uint32_t>(u, 36, odxDotProduct36x1u8, odxDotProduct36x4u8, odxDotProductNorm36x4u8);
    expectDots<uint8_t, uint32_t>(u, 64, odxDotProduct64x1u8, odxDotProduct64x4u8, odxDotProductNorm64x4u8);
    expectDots<uint8_t, uint32_t>(u, 128, odxDotProduct128x1u8, odxDotProduct128x4u8, odxDotProductNorm128x4u8);
    EXPECT_EQ(sumOfProducts(&s[0], &s[320], 77), odxDotProducts8(&s[0], &s[320], 77));
    EXPECT_EQ(sumOfProducts(&u[0], &u[320], 77), odxDotProductu8(&u[0], &u[320], 77));
    EXPECT_EQ(sumOfProducts(&u[0], &u[320], 7) + sumOfProducts(&u[20], &u[340], 7),
              odxBlockDotProductu8(&u[0], 7, 2, 20, &u[320], 20));
    EXPECT_EQ(0u, odxBlockDotProductu8(&u[0], 0, 5, 7, &u[0], 7));
    // 70,000 products of 255 * 255 are more than 32 bits hold.
    const std::vector<uint8_t> high(70000, 255);
    EXPECT_EQ(static_cast<uint32_t>(int64_t{70000} * 65025), odxDotProductu8(high.data(), high.data(), 70000));
}

TEST_F(Descriptors, FloatsAreAddedInOrder)
{
    // In any other order the small one would survive.
    const float a[] = {1e8f, 1, -1e8f, 3}, ones[] = {1, 1, 1, 1};
    EXPECT_EQ(3, odxDotProductf32(a, ones, 4));
    EXPECT_EQ(3, odxBlockDotProductf32(a, 2, 2, 0, ones, 0));
    EXPECT_EQ(1e8f + 3, odxBlockDotProductf32(a, 1, 2, 3 * sizeof *a + 3, ones, 4)); // the stride is rounded down
    EXPECT_EQ(0, odxDotProductf32(a, ones, 0));
}

TEST_F(Descriptors, HammingDistancesCountBits)
{
    const auto v = draw<uint8_t>(320);
    const std::vector<uint8_t> none(64, 0);
    const uint8_t* const a = v.data();
    uint32_t n[4], d32[4], d64[4], d64a[4], b32[4], b64[4];
    odxHammingDistance32x4u8a4(a, a + 64, a + 128, a + 192, a + 256, d32);
    odxHammingDistance64x4u8(a, a + 64, a + 128, a + 192, a + 256, d64);
    odxHammingDistance64x4u8a4(a, a + 64, a + 128, a + 192, a + 256, d64a);
    odxBitCount32x4u8(a + 64, a + 128, a + 192, a + 256, b32);
    odxBitCount64x4u8(a + 64, a + 128, a + 192, a + 256, b64);
    for (int k = 0; k < 4; ++k) {
        const uint8_t* const b = a + 64 * (k + 1);
        for (const uint32_t d : {d32[k], odxHammingDistance32x1u8(a, b), odxHammingDistance32x1u8a4(a, b)})
            EXPECT_EQ(bitsOf(a, b, 32), d);
        for (const uint32_t d :
             {d64[k], d64a[k], odxHammingDistance64x1u8(a, b), odxHammingDistance64x1u8a4(a, b)})
            EXPECT_EQ(bitsOf(a, b, 64), d);
        for (const uint32_t d : {b32[k], odxBitCount32x1u8(b)})
            EXPECT_EQ(bitsOf(none.data(), b, 32), d);
        for (const uint32_t d : {b64[k], odxBitCount64x1u8(b)})
            EXPECT_EQ(bitsOf(none.data(), b, 64), d);
    }
    n[0] = odxHammingDistanceu8(a, a + 101, 99);
    EXPECT_EQ(bitsOf(a, a + 101, 99), n[0]);
}

TEST_F(Descriptors, NormalisedDistances)
{
    const auto s = draw<int8_t>(36 * 8);
    const auto u = draw<uint8_t>(36 * 8);
    std::vector<float> f(36 * 8), lengths(7), d4(4), d(7), ds(7), du(7), df(7), none(7);
    const int8_t* sList[7];
    const uint8_t* uList[7];
    const float* fList[7];
    for (size_t i = 0; i < f.size(); ++i)
        f[i] = static_cast<float>(u[i]) / 7;
    for (size_t i = 0; i < 7; ++i) {
        sList[i] = &s[36 * (i + 1)];
        uList[i] = &u[36 * (i + 1)];
        fList[i] = &f[36 * (i + 1)];
        lengths[i] = 1 / std::sqrt(static_cast<float>(sumOfProducts(sList[i], sList[i], 36)));
    }
    const float la = 1 / std::sqrt(static_cast<float>(sumOfProducts(&s[0], &s[0], 36)));
    odxSumOfSquaredDiffs36x4s8(&s[0], la, sList[0], sList[1], sList[2], sList[3], lengths.data(), d4.data());
    odxSumOfSquaredDiffs36xNs8(&s[0], la, sList, lengths.data(), 7, d.data());
    odxSumOfSquaredDiffss8(&s[0], la, 36, sList, lengths.data(), 7, ds.data());
    odxSumOfSquaredDiffsu8(&u[0], la, 36, uList, lengths.data(), 7, du.data());
    odxSumOfSquaredDiffsf32(&f[0], la, 36, fList, lengths.data(), 7, df.data());
    odxSumOfSquaredDiffsu8(&u[0], la, 0, uList, lengths.data(), 7, none.data());
    for (size_t i = 0; i < 7; ++i) {
        const float expected = distanceOf(la, lengths[i], static_cast<float>(sumOfProducts(&s[0], sList[i], 36)));
        EXPECT_EQ(expected, d[i]);
        EXPECT_EQ(expected, ds[i]);
        if (i < 4) EXPECT_EQ(expected, d4[i]);
        EXPECT_EQ(distanceOf(la, lengths[i], static_cast<float>(sumOfProducts(&u[0], uList[i], 36))), du[i]);
        EXPECT_EQ(distanceOf(la, lengths[i], odxDotProductf32(&f[0], fList[i], 36)), df[i]);
        EXPECT_EQ(2, none[i]);
    }
    // The same direction, and the opposite one.
    const std::vector<int8_t> one(36, 10), other(36, -10);
    const int8_t* list[2] = {one.data(), other.data()};
    const float inverse[2] = {1 / 60.0f, 1 / 60.0f};
    odxSumOfSquaredDiffs36xNs8(one.data(), inverse[0], list, inverse, 2, d.data());
    EXPECT_NEAR(0, d[0], 1e-6);
    EXPECT_NEAR(4, d[1], 1e-6);
}
