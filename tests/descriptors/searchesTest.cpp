// The searches against exhaustive ones, and what they do when memory fails.
#include "cpu/ondrixDotC.h"
#include "ondrix.h"
#include "support/childProcess.h"
#include "support/logCapture.h"
#include "support/referenceTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

using namespace odx::test;

namespace
{

class Searches : public odx::test::ReferenceTest
{
protected:
    int8_t drawElement() { return static_cast<int8_t>(random_() % 255 - 127); }
    // Vectors in groups, as descriptors of real images are.
    void drawSet(size_t count)
    {
        std::vector<int8_t> centers(36 * 40);
        for (int8_t& c : centers)
            c = static_cast<int8_t>(drawElement() / 2);
        vectors_.resize(36 * count);
        lengths_.resize(count);
        for (size_t i = 0; i < count; ++i) {
            const size_t center = random_() % 40;
            int square = 0;
            for (size_t j = 0; j < 36; ++j) {
                const int v = centers[36 * center + j] + static_cast<int>(random_() % 41) - 20;
                vectors_[36 * i + j] = static_cast<int8_t>(v);
                square += v * v;
            }
            lengths_[i] = 1 / std::sqrt(static_cast<float>(square));
        }
    }
    using Result = std::vector<std::pair<float, int32_t>>;
    Result all(const int8_t* query, float length)
    {
        Result result;
        for (size_t i = 0; i < lengths_.size(); ++i) {
            const int8_t* const v = &vectors_[36 * i];
            float d;
            odxSumOfSquaredDiffs36xNs8(query, length, &v, &lengths_[i], 1, &d);
            result.push_back({d, static_cast<int32_t>(i)});
        }
        std::sort(result.begin(), result.end());
        return result;
    }
    static Result ask(odxKDTree36s8f32* tree, const int8_t* query, float length, int room, int checks,
                      float most = 5)
    {
        std::vector<int32_t> indices(static_cast<size_t>(room) + 1, -7);
        std::vector<float> distances(static_cast<size_t>(room) + 1);
        uint32_t found = 99;
        EXPECT_EQ(0, odxKDTreeQuery36s8f32(tree, query, length, room, most, checks, 0, &found, indices.data(),
                                           distances.data()));
        EXPECT_EQ(-7, indices[found]);
        Result result;
        for (size_t i = 0; i < found; ++i)
            result.push_back({distances[i], indices[i]});
        return result;
    }
    odxKDTree36s8f32* build(size_t count)
    {
        odxKDTree36s8f32* tree = nullptr;
        EXPECT_EQ(0, odxKDTreeCreate36s8f32(vectors_.data(), lengths_.data(), static_cast<int>(count), &tree));
        return tree;
    }

    std::mt19937 random_{3};
    std::vector<int8_t> vectors_;
    std::vector<float> lengths_;
};

} // namespace

TEST_F(Searches, ATreeFindsWhatAnExhaustiveSearchFinds)
{
    drawSet(1500);
    odxKDTree36s8f32* const tree = build(1500);
    int exact[2] = {};
    for (size_t i = 0; i < 60; ++i) {
        const int8_t* const query = &vectors_[36 * i];
        const Result expected = all(query, 0.01f);
        // With every leaf looked at, which bounds of a group of dimensions do not promise: room for all.
        ASSERT_EQ(expected, ask(tree, query, 0.01f, 2000, 1500));
        Result some = expected;
        some.erase(std::find_if(some.begin(), some.end(), [](const auto& r) { return r.first >= 1.5f; }),
                   some.end());
        ASSERT_EQ(some, ask(tree, query, 0.01f, 1500, 0, 1.5f)); // no checks still fill the set
        for (const int k : {0, 1}) {
            const Result found = ask(tree, query, lengths_[i], 3, k == 0 ? 8 : 400);
            ASSERT_EQ(3u, found.size());
            ASSERT_TRUE(std::is_sorted(found.begin(), found.end()));
            const Result best = all(query, lengths_[i]);
            for (const auto& f : found)
                exact[k] += std::find(best.begin(), best.begin() + 3, f) != best.begin() + 3;
        }
    }
    EXPECT_GT(exact[1], exact[0]);
    EXPECT_GT(exact[1], 150); // of 180
    EXPECT_TRUE(ask(tree, vectors_.data(), 0.01f, 0, 10).empty());
    EXPECT_EQ(0, odxKDTreeDestroy36s8f32(tree));
}

TEST_F(Searches, TreesOfFewAndOfEqualVectors)
{
    drawSet(3);
    odxKDTree36s8f32* tree = build(0);
    EXPECT_TRUE(ask(tree, vectors_.data(), 1, 3, 9).empty());
    odxKDTreeDestroy36s8f32(tree);
    for (size_t n = 1; n <= 3; ++n) {
        tree = build(n);
        const Result found = ask(tree, vectors_.data(), lengths_[0], 5, 0);
        ASSERT_EQ(n, found.size());
        EXPECT_EQ(0, found[0].second);
        odxKDTreeDestroy36s8f32(tree);
    }
    vectors_.assign(36 * 700, 5);
    lengths_.assign(700, 1 / 30.0f);
    tree = build(700);
    const Result found = ask(tree, vectors_.data(), lengths_[0], 700, 0);
    ASSERT_EQ(700u, found.size());
    for (size_t i = 0; i < found.size(); ++i)
        ASSERT_EQ(static_cast<int32_t>(i), found[i].second); // equal distances in the order of indices
    odxKDTreeDestroy36s8f32(tree);
}

TEST_F(Searches, ATreeIsSplitAtTheMeanOfItsFirstVectors)
{
    // Vectors 1 to 101 hold their numbers, the others 120: the first split is at 51, and what is below by little
    // ends at the greatest one on its side.
    vectors_.assign(36 * 220, 0);
    lengths_.assign(220, 1);
    for (size_t i = 0; i < 220; ++i)
        vectors_[36 * i] = static_cast<int8_t>(i >= 1 && i <= 101 ? i : 120);
    odxKDTree36s8f32* const tree = build(220);
    std::vector<int8_t> query(36);
    query[0] = 127;
    EXPECT_EQ(50, ask(tree, query.data(), 50.9f / 127, 1, 0, INFINITY).at(0).second);
    odxKDTreeDestroy36s8f32(tree);
}

TEST_F(Searches, LinearSearchKeepsTheEightNearest)
{
    // One target of 20 descriptors along the same direction, which differ in their inverse lengths.
    const uint32_t lut[4] = {0, 20, 15, 10};
    std::vector<int8_t> descriptors(36 * 20, 10), src(36 * 3, 10);
    std::vector<uint32_t> lengths(20), srcLengths(3, 1u << 30);
    std::vector<uint16_t> ids(20);
    for (uint32_t i = 0; i < 20; ++i) {
        lengths[i] = (1u << 31) + (i % 10 << 24);
        ids[i] = static_cast<uint16_t>(i / 5);
    }
    descriptors[36 * 19] = -127; // still positive
    for (size_t j = 0; j < 36; ++j)
        descriptors[36 * 7 + j] = -1; // no product of 1 or more
    const uint32_t targets[3] = {0, 2, 1};
    const uint16_t ignored = 1;
    const auto distance = [&](uint32_t j, uint32_t i) {
        int64_t dot = 0;
        for (size_t k = 0; k < 36; ++k)
            dot += descriptors[36 * j + k] * src[36 * i + k];
        const auto cosine = static_cast<int64_t>(uint64_t{lengths[j]} * srcLengths[i] >> 32) * dot;
        return std::max<int64_t>(0, (int64_t{1} << 44) - cosine) >> 12;
    };
    using Match = std::tuple<uint32_t, int64_t, uint32_t>; // source, distance, index
    std::vector<Match> expected;
    for (const uint32_t i : {0u, 2u}) {
        std::vector<Match> matches;
        for (uint32_t j = i == 0 ? 0 : 15; j < 20; ++j) {
            if (ids[j] != ignored && j != 7 && distance(j, i) <= 0xFFFFFFFF)
                matches.push_back({i, distance(j, i), j});
        }
        std::sort(matches.begin(), matches.end());
        matches.resize(std::min<size_t>(matches.size(), 8));
        expected.insert(expected.end(), matches.begin(), matches.end());
    }
    for (const uint32_t room : {100u, 13u, 5u, 1u, 0u}) {
        uint32_t index[100], source[100], result[100], found = 77;
        odxLinearSearch8x36s8(lut, 2, descriptors.data(), lengths.data(), ids.data(), 20, src.data(),
                              srcLengths.data(), targets, 3, &ignored, 1, 0xFFFFFFFF, index, source, result, room,
                              &found);
        ASSERT_EQ(std::min<size_t>(expected.size(), std::max(room, 1u)), found);
        for (size_t k = 0; k < found; ++k)
            EXPECT_EQ(expected[k], Match(source[k], result[k], index[k])) << k;
    }
    ASSERT_EQ(13u, expected.size());
}

TEST_F(Searches, PreparationSortsEachTarget)
{
    constexpr uint32_t kCount = 500;
    std::vector<int8_t> descriptors(36 * kCount);
    std::vector<uint32_t> lengths(kCount), old(kCount);
    std::vector<uint16_t> ids(kCount), before;
    for (uint32_t i = 0; i < kCount; ++i) {
        std::fill_n(&descriptors[36 * i], 36, static_cast<int8_t>(i));
        lengths[i] = 7 * i;
        old[i] = i;
        ids[i] = static_cast<uint16_t>(random_() % 50);
    }
    before = ids;
    uint32_t lut[6] = {100, 300, 0, 90, 0xFFFFFFFF, 2};
    EXPECT_EQ(-1, odxLinearSearchPrepare8x36s8(lut, 3, descriptors.data(), lengths.data(), ids.data(), old.data(),
                                               kCount));
    EXPECT_TRUE(std::is_sorted(&ids[100], &ids[400]));
    EXPECT_TRUE(std::is_sorted(&ids[0], &ids[90]));
    std::vector<bool> seen(kCount);
    for (uint32_t i = 0; i < kCount; ++i) {
        if ((i >= 90 && i < 100) || i >= 400) EXPECT_EQ(i, old[i]);
        EXPECT_EQ(before[old[i]], ids[i]);
        EXPECT_EQ(7 * old[i], lengths[i]);
        EXPECT_EQ(static_cast<int8_t>(old[i]), descriptors[36 * i + 35]);
        EXPECT_FALSE(seen[old[i]]);
        seen[old[i]] = true;
    }
    EXPECT_EQ(0, odxLinearSearchPrepare8x36s8(lut, 2, descriptors.data(), lengths.data(), ids.data(), old.data(),
                                              kCount));
}

TEST_F(Searches, VocabularyTree)
{
    std::vector<int8_t> centers(3 * 360), key(36, 1);
    std::vector<uint32_t> lengths(30, 1u << 31);
    std::vector<int32_t> children(30);
    uint8_t counts[3] = {10, 6, 0};
    centers[36 * 9] = 5; // the last of ten leads to node 1
    children[9] = 1;
    centers[360 + 36 * 2] = 3; // two that differ in their lengths
    centers[360 + 36 * 5] = 1;
    lengths[15] = 0xFFFFFFFF;
    children[12] = INT32_MIN + 40;
    children[15] = -1;
    const auto leaf = [&] {
        return odxKMeansTreeSearch36x10s8(centers.data(), lengths.data(), children.data(), counts, 3, key.data());
    };
    EXPECT_EQ(40u, leaf());
    centers[360 + 36 * 5] = 2; // 2 * 0xFFFFFFFF, against 3 * 2^31
    EXPECT_EQ(0x7FFFFFFFu, leaf());
    children[15] = 2; // a node without children
    EXPECT_EQ(0u, leaf());
    children[15] = 3; // no node
    EXPECT_EQ(0u, leaf());
    children[15] = 0; // a circle
    EXPECT_EQ(0u, leaf());
}
