// FAST corners by both columns against models that are the definitions written down.
#include "corners/fastModels.h"

#include "frame/helpers.h"
#include "frame/operations.h"
#include "frame/tables.h"

#include <gtest/gtest.h>

using namespace odx::test::fast;

namespace
{

// Every test runs on the reference and on the SIMD column.
class Fast : public testing::TestWithParam<odxOperationMode>
{
protected:
    Fast() { EXPECT_EQ(0, odxSetOperationMode(GetParam())); }
};

INSTANTIATE_TEST_SUITE_P(Columns, Fast, testing::Values(ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU),
                         [](const auto& mode) {
                             return mode.param == ONDRIX_OP_EXT_REFERENCE ? "Reference" : "Simd";
                         });

const Operation& detector(int N)
{
    return operations()[N == 9 ? 0 : 1];
}

void expectModel(const Operation& operation, const Image& image, const Options& options, uint32_t nms = 0)
{
    EXPECT_EQ(findModel(operation, image, options, nms != 0), operation.find(image, options, nms))
        << operation.name << " on " << image.width << 'x' << image.height << ", barrier " << options.barrier
        << ", border " << options.border << ", capacity " << options.capacity << ", nms " << nms;
}

TEST_P(Fast, DetectorsFindWhatTheArcTestFinds)
{
    const Image images[] = {noise(203, 30, 1),      noise(131, 40, 2, 60, 5), noise(64, 9, 3, 120),
                            squares(301, 90),       squares(70, 71, 3),       noise(38, 12, 4, 256, 1),
                            noise(4500, 8, 5, 140), noise(37, 200, 6, 90),    noise(39, 150, 7)};
    for (const Image& image : images) {
        for (int barrier : {0, 1, 10, 20, 55, 127, 128, 200, 254, 255, 256, 2147483647}) {
            for (int N : {9, 10})
                expectModel(detector(N), image, {barrier});
        }
    }
}

// Below 0, a pixel is its own equal's corner, and sums beyond all pixel values must not wrap.
TEST_P(Fast, NegativeBarriersMakeCornersOfEqualPixels)
{
    const Image image = noise(50, 20, 8);
    for (int barrier : {-1, -2, -100, -255, -256, -2147483647 - 1}) {
        for (int N : {9, 10})
            expectModel(detector(N), image, {barrier});
    }
    EXPECT_EQ(44u * 14u, detector(9).find(Image(50, 20, 77), {-1}).corners.size());
}

// A tile for each of the 65536 ways to set the circle, whose centre must be a corner exactly where 9 (10) of them
// are neighbours.
TEST_P(Fast, EveryPatternOfTheCircle)
{
    constexpr uint32_t kTile = 7, kTiles = 256;
    const auto flagsOf = [](uint32_t pattern) {
        std::vector<bool> flags;
        for (int k = 0; k < 16; ++k)
            flags.push_back((pattern >> k & 1) != 0);
        return flags;
    };
    for (const int sign : {1, -1}) {
        constexpr int kCentre = 120, kBarrier = 30;
        Image image(kTile * kTiles, kTile * kTiles, kCentre);
        for (uint32_t pattern = 0; pattern < 65536; ++pattern) {
            const uint32_t x = pattern % kTiles * kTile + 3, y = pattern / kTiles * kTile + 3;
            for (int k = 0; k < 16; ++k) {
                // Those that are not set are equal to the threshold, which does not count.
                const int beyond = (pattern >> k & 1) != 0 ? 1 : 0;
                onCircle(image, x, y, k) = static_cast<uint8_t>(kCentre + sign * (kBarrier + beyond));
            }
        }
        for (int N : {9, 10}) {
            std::vector<bool> found(65536);
            for (const Corner& corner : detector(N).find(image, {kBarrier, 3, 4000000}).corners) {
                if (corner.x % kTile == 3 && corner.y % kTile == 3)
                    found[corner.y / kTile * kTiles + corner.x / kTile] = true;
            }
            for (uint32_t pattern = 0; pattern < 65536; ++pattern) {
                bool flags[16];
                std::copy_n(flagsOf(pattern).begin(), 16, flags);
                ASSERT_EQ(hasArc(flags, N), found[pattern]) << std::hex << pattern << ", FAST-" << std::dec << N;
            }
        }
    }
}

TEST_P(Fast, FlatImagesAndSinglePixels)
{
    for (const Operation& operation : operations()) {
        Image image(90, 40, 50);
        const Mask nothing(image, 1, 1);
        Options options;
        options.mask = &nothing;
        EXPECT_EQ(Found{}, operation.find(image, options)) << operation.name;

        for (uint8_t value : {200, 0}) {
            image.at(61, 20) = value;
            const Corners one = {{61, 20}};
            EXPECT_EQ(one, operation.find(image, options).corners) << operation.name;
        }
        // The difference must be above the barrier.
        image.at(61, 20) = 70;
        EXPECT_EQ(Corners{}, operation.find(image, options).corners) << operation.name;
        image.at(61, 20) = 71;
        EXPECT_EQ(1u, operation.find(image, options).corners.size()) << operation.name;
    }
}

TEST_P(Fast, BordersOfLessThanThreeAreThree)
{
    const Image image = noise(100, 30, 11);
    const Found three = detector(9).find(image, {20, 3});
    EXPECT_EQ(3u, three.corners.front().y);
    for (uint32_t border : {0u, 1u, 2u})
        EXPECT_EQ(three, detector(9).find(image, {20, border}));
    for (uint32_t border : {4u, 7u, 14u})
        expectModel(detector(10), image, {20, border});

    // One column, and one row, are left.
    for (uint32_t border : {3u, 5u}) {
        expectModel(detector(9), noise(2 * border + 1, 200, 12), {5, border});
        expectModel(detector(9), noise(200, 2 * border + 1, 13), {5, border});
    }
}

TEST_P(Fast, ListsEndWithTheCornerThatFillsThem)
{
    const Image image = noise(150, 30, 14);
    const Mask half(image, 1, 2);
    for (const Operation& operation : operations()) {
        Options options;
        options.mask = &half;
        const uint32_t all = static_cast<uint32_t>(operation.find(image, options).corners.size());
        ASSERT_GT(all, 100u);
        for (uint32_t capacity : {0u, 1u, 2u, 33u, all - 1, all, all + 1}) {
            options.capacity = capacity;
            expectModel(operation, image, options);
            // The capacity limits the candidates of the suppression.
            if (operation.suppresses) expectModel(operation, image, options, 1);
        }
    }
}

// However many pixels without a corner come before.
TEST_P(Fast, ListsWithoutCapacityTakeTheFirstCorner)
{
    const Image image = noise(150, 300, 18);
    Mask mask(image, 1, 1);
    std::fill(mask.bits.begin(), mask.bits.end() - 200, 255);
    Options options;
    options.mask = &mask;
    options.capacity = 0;
    for (const Operation& operation : operations()) {
        if (operation.masked) expectModel(operation, image, options);
    }
}

TEST_P(Fast, MasksOfSevenScalesExcludeWhatTheyCover)
{
    const Image image = noise(104, 48, 15);
    const struct {
        uint32_t times, over;
    } scales[] = {{1, 1}, {2, 1}, {1, 2}, {4, 1}, {1, 4}, {8, 1}, {1, 8}};
    for (const auto& scale : scales) {
        Mask mask(image, scale.times, scale.over);
        std::mt19937 random(16);
        for (uint8_t& byte : mask.bits)
            byte = static_cast<uint8_t>(random());
        Options options;
        options.mask = &mask;
        for (const Operation& operation : operations()) {
            if (!operation.masked) continue;
            expectModel(operation, image, options, 1);
            options.capacity = 20;
            expectModel(operation, image, options);
            options.capacity = 100000;
        }
    }
}

// Rows of a mask are whole bytes, its first pixel is the most significant bit.
TEST_P(Fast, MaskBitsComeMostSignificantFirst)
{
    const Image image = noise(53, 20, 17);
    const Found all = detector(9).find(image, {});
    Mask mask(image, 1, 1);
    const Corner gone = all.corners[all.corners.size() / 2];
    mask.set(gone.x, gone.y);
    Options options;
    options.mask = &mask;
    Corners others = all.corners;
    others.erase(std::find(others.begin(), others.end(), gone));
    EXPECT_EQ(others, operations()[2].find(image, options).corners);
}

TEST_P(Fast, MasksOfOtherSizesGiveNoCorners)
{
    const Image image = noise(64, 32, 18);
    std::vector<uint8_t> bits(1000 * 1000);
    const struct {
        uint32_t width, height;
    } sizes[] = {{128, 32},
                 {64, 64},
                 {32, 32},
                 {128, 16},
                 {192, 96},
                 {1024, 512},
                 {4, 2},
                 {63, 32},
                 {128, 128},
                 {0, 0},
                 {0x80000040, 0x80000020}};
    for (const auto& size : sizes) {
        for (auto* detect : {odxCornerFast9InMasku8, odxCornerFast10InMasku8}) {
            uint32_t xy[2000], count = 77;
            detect(image.data(), 64, 32, 0, 20, 3, xy, 1000, &count, bits.data(), size.width, size.height);
            EXPECT_EQ(0u, count) << size.width << 'x' << size.height;
        }
    }
}

TEST_P(Fast, ScoresAreTheLargestBarriers)
{
    for (const Image& image : {noise(50, 30, 19), noise(50, 30, 20, 50), squares(100, 40)}) {
        const Mask nothing(image, 1, 1);
        for (int barrier : {0, 5, 20, 100, 253, 254, -3, -300}) {
            Options options = {barrier};
            options.mask = &nothing;
            for (const Operation& operation : operations()) {
                if (operation.scored) expectModel(operation, image, options);
            }
        }
    }
}

// A routine is given any pixel, and one that is no corner gets the barrier.
TEST_P(Fast, ScoreRoutinesTakeEveryPixel)
{
    const Image image = noise(60, 40, 21, 256, 9);
    ptrdiff_t offsets[16];
    make_offsets(offsets, image.stride);
    for (int barrier : {0, 10, 100, 254, 255, 1000, -1, -50}) {
        for (uint32_t y = 3; y < 37; ++y) {
            for (uint32_t x = 3; x < 57; ++x) {
                const uint8_t* const pixel = image.data() + size_t{image.stride} * y + x;
                ASSERT_EQ(scoreModel(image, {x, y}, barrier, 9), fast9_corner_score_(pixel, offsets, barrier));
                ASSERT_EQ(scoreModel(image, {x, y}, barrier, 10), fast10_corner_score_(pixel, offsets, barrier));
            }
        }
    }
}

TEST_P(Fast, SuppressionKeepsMaxima)
{
    for (const Image& image : {noise(60, 30, 22), noise(70, 30, 23, 40), squares(140, 40)}) {
        const Mask nothing(image, 1, 1);
        for (int barrier : {3, 12, 40, -30}) {
            Options options = {barrier};
            options.mask = &nothing;
            for (const Operation& operation : operations()) {
                if (!operation.suppresses) continue;
                expectModel(operation, image, options, 1);
                expectModel(operation, image, options, 256); // any value but 0 switches it on
            }
        }
    }
}

// Lists of all densities, with few scores, so that ties are frequent, and with rows without candidates; columns
// and scores up to large ones.
TEST(FastSuppression, AgreesWithEachAgainstEach)
{
    std::mt19937 random(24);
    for (uint32_t round = 0; round < 300; ++round) {
        const uint32_t width = 1 + random() % 40, height = 1 + random() % 20, density = 1 + random() % 10;
        const uint32_t levels = 1 + random() % 6, skipped = random() % 3;
        const uint32_t left = round % 3 == 1 ? 4070 : 0, least = round % 3 == 2 ? 0xFFFFFFFF - levels : 0;
        Corners corners;
        Scores scores;
        for (uint32_t y = 0; y < height; ++y) {
            if (skipped != 0 && random() % (skipped + 1) == 0) continue;
            for (uint32_t x = 0; x < width; ++x) {
                if (random() % density != 0) continue;
                corners.push_back({left + x, y});
                scores.push_back(least + random() % levels);
            }
        }
        const uint32_t count = static_cast<uint32_t>(corners.size());
        std::vector<uint32_t> xy, rowStart(count == 0 ? 0 : corners.back().y + 1), xyOut(2 * count),
            scoresOut(count);
        for (const Corner& corner : corners)
            xy.insert(xy.end(), {corner.x, corner.y});
        uint32_t kept = 99;
        nms_processing(xy.data(), scores.data(), rowStart.data(), count, xyOut.data(), scoresOut.data(), &kept);

        suppressModel(corners, scores);
        ASSERT_EQ(corners.size(), kept);
        for (uint32_t i = 0; i < kept; ++i) {
            ASSERT_EQ(corners[i], (Corner{xyOut[2 * i], xyOut[2 * i + 1]})) << "round " << round;
            ASSERT_EQ(scores[i], scoresOut[i]);
        }
    }
}

// Neighbours of equal score remove each other, so that nothing is left of a plateau.
TEST_P(Fast, PlateausVanish)
{
    Image image(60, 30, 50);
    image.at(20, 10) = image.at(21, 10) = 200; // side by side
    image.at(40, 20) = image.at(41, 21) = 200; // at an angle
    image.at(50, 10) = 200;                    // on its own
    const Operation& operation = operations()[6];
    EXPECT_EQ(5u, operation.find(image, {}).corners.size());
    EXPECT_EQ((Found{{{50, 10}}, {149}}), operation.find(image, {}, 1));
}

TEST_P(Fast, ModesSetTheScoreRoutines)
{
    const bool reference =
        GetParam() == ONDRIX_OP_EXT_REFERENCE || (odxAvailableHardware(ONDRIX_OP_EXT_CPU) & ONDRIX_HW_SIMD) == 0;
    EXPECT_EQ(reference, fast9_corner_score_ == fast9_corner_scoreC);
    EXPECT_EQ(reference, fast10_corner_score_ == fast10_corner_scoreC);
}

// Both go through what a mode selection chose, which may be replaced.
TEST_P(Fast, ScoringGoesThroughTheRoutinesAndThePublicDetectors)
{
    static int calls;
    calls = 0;
    fast9_corner_score_ = [](const uint8_t*, const ptrdiff_t*, int32_t) { return 1000 + ++calls; };
    fast10_corner_score_ = [](const uint8_t*, const ptrdiff_t*, int32_t) { return 2000 + ++calls; };
    const auto twoCorners = [](const uint8_t*, unsigned, unsigned, unsigned, int, unsigned, uint32_t* xy, unsigned,
                               uint32_t* count) {
        const uint32_t places[] = {5, 4, 9, 8};
        std::copy_n(places, 4, xy);
        *count = 2;
    };
    void (*const plain)(const uint8_t*, unsigned, unsigned, unsigned, int, unsigned, uint32_t*, unsigned,
                        uint32_t*) = twoCorners;
    std::vector<void*> saved;
    for (uint32_t slot : {odx::op_odxCornerFast9u8, odx::op_odxCornerFast10u8}) {
        void*& entry = odxFuncTable.entry[slot * kImplementations + odxImplTable[slot]];
        saved.push_back(entry);
        entry = reinterpret_cast<void*>(plain);
    }
    const Image image(30, 20);
    const Corners two = {{5, 4}, {9, 8}};
    EXPECT_EQ((Found{two, {1001, 1002}}), operations()[4].find(image, {}));
    EXPECT_EQ((Found{two, {1003, 1004}}), operations()[6].find(image, {}, 1));
    EXPECT_EQ((Found{two, {2005, 2006}}), operations()[8].find(image, {}, 1));
    const uint32_t xy[] = {7, 3};
    uint32_t score = 0;
    score_9(image.data(), 30, 20, 20, 1, xy, &score, 0);
    EXPECT_EQ(1007u, score);

    size_t next = 0;
    for (uint32_t slot : {odx::op_odxCornerFast9u8, odx::op_odxCornerFast10u8})
        odxFuncTable.entry[slot * kImplementations + odxImplTable[slot]] = saved[next++];
    odxSetOperationMode(GetParam());
}

} // namespace
