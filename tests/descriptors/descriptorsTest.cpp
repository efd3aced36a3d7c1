// The reference operations on vectors against their definitions, coded the slow way, and numbers worked by hand.
#include "ondrix.h"
#include "support/pictures.h"
#include "support/referenceTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

namespace
{

class Descriptors : public odx::test::ReferenceTest
{
protected:
    std::mt19937 random_{7};
};

template <class T>
std::vector<T> draw(int count)
{
    return odx::test::noise<T>(count, 1, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()).pixels;
}

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
    const std::vector<uint8_t> none(320, 0);
    const uint8_t* const a = v.data();
    uint32_t d32[4], d64[4], d64a[4], b32[4], b64[4];
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
    EXPECT_EQ(bitsOf(a, a + 101, 99), odxHammingDistanceu8(a, a + 101, 99));
    for (const uint32_t n : {0u, 1u, 7u, 8u, 77u}) {
        std::vector<uint32_t> words(n);
        std::copy_n(a, 4 * n, reinterpret_cast<uint8_t*>(words.data()));
        EXPECT_EQ(bitsOf(none.data(), a, n), odxBitCountu8(a, n));
        EXPECT_EQ(bitsOf(none.data(), a, 4 * n), odxBitCountu32(words.data(), n));
    }
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
}

TEST_F(Descriptors, SumsOverPatches)
{
    constexpr unsigned kStride = 40;
    const auto image = draw<uint8_t>(kStride * 30);
    const auto sums = [&](const uint8_t* a, const uint8_t* b, size_t width, size_t height) {
        std::pair<uint32_t, uint32_t> sum; // of differences and of products
        for (size_t i = 0; i < width * height; ++i) {
            const int p = a[i / width * kStride + i % width], q = b[i / width * kStride + i % width];
            sum.first += static_cast<uint32_t>(std::abs(p - q));
            sum.second += static_cast<uint32_t>(p * q);
        }
        return sum;
    };
    const uint8_t *const a = image.data(), *const b = a + 11 * kStride + 19;
    EXPECT_EQ(sums(a, b, 8, 8).first, odxSumOfAbsoluteDiff8x8u8(a, kStride, b, kStride));
    EXPECT_EQ(sums(a, b, 16, 16).first, odxSumOfAbsoluteDiff16x16u8(a, kStride, b, kStride));
    EXPECT_EQ(sums(a, b, 8, 8).second, odxDotProduct8x8u8(a, kStride, b, kStride));
    EXPECT_EQ(sums(a, b, 11, 12).second, odxDotProduct11x12u8(a, kStride, b, kStride));
    std::vector<uint16_t> at8(33 * 23), at16(25 * 15), packed(33 * 23);
    odxSumOfAbsoluteDiffs8x8u8_v2(b, kStride, a, kStride, 30, kStride, at8.data(), 0);
    odxSumOfAbsoluteDiffs16x16u8(b, kStride, a, kStride, 30, kStride, at16.data(), 0);
    std::vector<uint8_t> patch;
    for (size_t i = 0; i < 64; ++i)
        patch.push_back(b[i / 8 * kStride + i % 8]);
    odxSumOfAbsoluteDiffs8x8u8(patch.data(), a, kStride, 30, packed.data());
    EXPECT_EQ(at8, packed);
    EXPECT_EQ(0, at8[11 * 33 + 19]); // where the patch comes from
    for (size_t i = 0; i < at8.size(); ++i)
        ASSERT_EQ(sums(a + i / 33 * kStride + i % 33, b, 8, 8).first, at8[i]) << i;
    for (size_t i = 0; i < at16.size(); ++i)
        ASSERT_EQ(sums(a + i / 25 * kStride + i % 25, b, 16, 16).first, at16[i]) << i;
}

TEST_F(Descriptors, DescriptorOfAPatch)
{
    // A ramp to the right, whose gradient is 4; and one that goes down in the last cell only.
    std::vector<uint8_t> patch(17 * 17), flat(17 * 17, 9);
    for (size_t i = 0; i < patch.size(); ++i)
        patch[i] = static_cast<uint8_t>(2 * (i % 17));
    for (size_t y = 13; y < 17; ++y)
        patch[17 * y + 13] = static_cast<uint8_t>(patch[17 * y + 13] - std::min<size_t>(2 * (y - 12), 7));
    int8_t dst[36];
    float inverse;
    odxDescriptor17x17u8To36s8(patch.data(), 0, dst, &inverse);
    // In the last cell, 2, 4, 6 and 7 are taken from rows 13 to 16 of its center's column. To the left of it dx is
    // less by as much, so that its magnitude is 2 instead of -2 once; to the right it is more. dy is -2, -4, -4,
    // -4.
    const auto scaled = [](int sum) { return (127 * sum + 104 / 2) / 104; };
    EXPECT_EQ(scaled(100), dst[0]);
    EXPECT_EQ(0, dst[1]);
    EXPECT_EQ(scaled(100), dst[2]);
    EXPECT_EQ(0, dst[3]);
    EXPECT_EQ(scaled(100), dst[32]);
    EXPECT_EQ(-scaled(13), dst[33]);
    EXPECT_EQ(127, dst[34]); // 104 is the greatest
    EXPECT_EQ(scaled(13), dst[35]);
    float square = 0;
    for (const int8_t d : dst)
        square += static_cast<float>(d * d);
    EXPECT_FLOAT_EQ(1 / std::sqrt(square), inverse);
    odxDescriptor17x17u8To36s8(flat.data(), 17, dst, &inverse);
    EXPECT_EQ(std::vector<int8_t>(36, 0), std::vector<int8_t>(dst, dst + 36));
    EXPECT_EQ(0, inverse);
    odxDescriptor17x17u8To36s8(patch.data(), 17, dst, nullptr);
}

TEST_F(Descriptors, NormsMeansAndOrder)
{
    const auto s = draw<int8_t>(3 * 40);
    const float lengths[3] = {0.1f, 0.01f, 0.003f};
    std::vector<float> f(3 * 36, -7), mean(36), variance(36);
    uint32_t stop = 0x10000;
    EXPECT_EQ(0, odxVecNormalize36s8f32(s.data(), 40, lengths, 3, 300, f.data(), &stop));
    EXPECT_EQ(std::vector<float>(3 * 36, -7), f);
    EXPECT_EQ(0, odxVecNormalize36s8f32(s.data(), 40, lengths, 3, 300, f.data(), nullptr));
    const uint32_t sample[5] = {2, 0, 1, 2, 2};
    EXPECT_EQ(0, odxDescriptorSampledMeanAndVar36f32(f.data(), 3, 0, sample, 5, mean.data(), variance.data()));
    for (size_t j = 0; j < 36; ++j) {
        volatile float sum = 0, squares = 0;
        for (size_t i = 0; i < 3; ++i) {
            volatile float scale = lengths[i] * 300;
            ASSERT_EQ(scale * static_cast<float>(s[40 * i + j]), f[36 * i + j]);
        }
        for (const uint32_t i : sample)
            sum = sum + f[36 * i + j];
        ASSERT_EQ(sum / 5, mean[j]);
        for (const uint32_t i : sample) {
            volatile float d = f[36 * i + j] - mean[j];
            volatile float square = d * d;
            squares = squares + square;
        }
        ASSERT_EQ(squares / 5, variance[j]);
    }
    // A network that sorts all sequences of zeros and ones sorts everything.
    for (int bits = 0; bits < 256; ++bits) {
        float in[8], out[8], sorted[8];
        for (int i = 0; i < 8; ++i)
            sorted[i] = in[i] = static_cast<float>(bits >> i & 1);
        std::sort(sorted, sorted + 4);
        std::sort(sorted + 4, sorted + 8);
        odxSort8Scoresf32(in, out);
        ASSERT_TRUE(std::equal(in, in + 8, sorted)) << bits;
        std::sort(sorted, sorted + 8);
        ASSERT_TRUE(std::equal(out, out + 8, sorted)) << bits;
    }
}

TEST_F(Descriptors, ClustersMoveToTheirMeans)
{
    // Bytes: 10 is as near to 0 as to 20, and goes to the lower number; the third center stays without vectors.
    const uint8_t v[] = {1, 1, 10, 0, 19, 2, 20, 1}, centers[] = {0, 0, 20, 0, 200, 200};
    uint32_t labels[4], distances[4], counts[3], sums[6];
    uint8_t moved[6];
    EXPECT_EQ(0, odxClusterEuclideanu8(v, 2, 4, 0, centers, 3, 0, labels, distances, counts, sums, moved));
    EXPECT_EQ((std::vector<uint32_t>{0, 0, 1, 1}), std::vector<uint32_t>(labels, labels + 4));
    EXPECT_EQ((std::vector<uint32_t>{2, 100, 5, 1}), std::vector<uint32_t>(distances, distances + 4));
    EXPECT_EQ((std::vector<uint32_t>{2, 2, 0}), std::vector<uint32_t>(counts, counts + 3));
    EXPECT_EQ((std::vector<uint32_t>{11, 1, 39, 3, 0, 0}), std::vector<uint32_t>(sums, sums + 6));
    EXPECT_EQ((std::vector<uint8_t>{6, 1, 20, 2, 200, 200}), std::vector<uint8_t>(moved, moved + 6));

    // Floats, in place; and directions, of which the second vector has none near.
    std::vector<float> f(2 * 36), c(2 * 36), d(2);
    std::vector<double> fsums(2 * 36);
    f[0] = 1;
    f[36] = -1;
    c[0] = 0.5f;
    c[36 + 35] = 1;
    EXPECT_EQ(0, odxClusterEuclideanf32(f.data(), 36, 2, 0, c.data(), 2, 0, labels, d.data(), counts, fsums.data(),
                                        c.data()));
    EXPECT_EQ(0.25f, d[0]);
    EXPECT_EQ(2, d[1]);
    EXPECT_EQ(1, c[0]);
    EXPECT_EQ(-1, c[36]);
    f[1] = 1;
    for (const bool fixed : {false, true}) {
        std::vector<float> directions = c;
        EXPECT_EQ(0, fixed ? odxClusterEuclideanNormed36f32(f.data(), 2, 0, directions.data(), 2, 0, labels,
                                                            d.data(), counts, fsums.data(), directions.data())
                           : odxClusterEuclideanNormedf32(f.data(), 36, 2, 0, directions.data(), 2, 0, labels,
                                                          d.data(), counts, fsums.data(), directions.data()));
        EXPECT_EQ(0, d[0]);
        EXPECT_EQ(static_cast<float>(1 / std::sqrt(2.0)), directions[1]);
        EXPECT_EQ(1u, labels[1]);
    }
}

TEST_F(Descriptors, SumsOfFloatsAreInSixteenLanes)
{
    const size_t n = 53;
    std::vector<float> v(n), c(n);
    for (size_t i = 0; i < n; ++i) {
        v[i] = static_cast<float>(random_() % 1000) / 7;
        c[i] = static_cast<float>(random_() % 1000) / 9;
    }
    float t[16] = {}, d;
    for (size_t i = 0; i < n; ++i) {
        volatile float difference = v[i] - c[i];
        volatile float square = difference * difference;
        t[i % 16] += square;
    }
    for (const int half : {8, 4, 2, 1}) {
        for (int j = 0; j < half; ++j)
            t[j] += t[j + half];
    }
    uint32_t label;
    odxClusterEuclideanf32(v.data(), n, 1, 0, c.data(), 1, 0, &label, &d, nullptr, nullptr, nullptr);
    EXPECT_EQ(t[0], d);
}
