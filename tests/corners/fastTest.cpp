// FAST corners against models that are the definitions written down. The other columns are held to the reference
// by the differential test.
#include "corners/corners.h"
#include "cpu/ondrixFastC.h"
#include "frame/operations.h"
#include "frame/tables.h"
#include "ondrix/fastCorners.h"
#include "support/childProcess.h"
#include "support/referenceTest.h"

#include <random>

using namespace odx::test;

namespace
{

// The circle, clockwise from the pixel below the centre as the image is seen.
constexpr int kCircleX[16] = {0, 1, 2, 3, 3, 3, 2, 1, 0, -1, -2, -3, -3, -3, -2, -1};
constexpr int kCircleY[16] = {3, 3, 2, 1, 0, -1, -2, -3, -3, -3, -2, -1, 0, 1, 2, 3};

// Whether N neighbours on a circle are all set.
template <class Set>
bool hasArc(int N, Set set)
{
    for (int start = 0; start < 16; ++start) {
        int length = 0;
        while (length < N && set((start + length) % 16))
            ++length;
        if (length == N) return true;
    }
    return false;
}

bool isCorner(const Image& image, int x, int y, int64_t barrier, int N)
{
    const int64_t centre = image.at(x, y);
    const auto onCircle = [&](int k) { return int64_t{image.at(x + kCircleX[k], y + kCircleY[k])}; };
    return hasArc(N, [&](int k) { return onCircle(k) > centre + barrier; }) ||
           hasArc(N, [&](int k) { return onCircle(k) < centre - barrier; });
}

// The largest barrier with which the pixel is a corner, by trying them all.
int scoreModel(const Image& image, int x, int y, int barrier, int N)
{
    for (int b = 254; b > barrier; --b) {
        if (isCorner(image, x, y, b, N)) return b;
    }
    return barrier;
}

// Each candidate against each other one.
Corners suppressModel(const Corners& all)
{
    Corners kept;
    std::copy_if(all.begin(), all.end(), std::back_inserter(kept), [&](const Corner& a) {
        return std::none_of(all.begin(), all.end(), [&](const Corner& b) {
            const int64_t dx = int64_t{a.x} - b.x, dy = int64_t{a.y} - b.y;
            return &a != &b && dx * dx <= 1 && dy * dy <= 1 && b.strength >= a.strength;
        });
    });
    return kept;
}

struct Options {
    int barrier = 20;
    uint32_t border = 3, capacity = 100000, nms = 0;
    const Mask* mask = nullptr;
    int padding = 0; // columns of the image that do not belong to it
};

// The arguments of an operation in any of its forms; what it lacks is not passed.
struct Call {
    const uint8_t* src;
    uint32_t width, height, stride;
    uint32_t *xy, *scores, *count, *tempBuf;
};
struct Operation {
    const char* name;
    int N;
    bool masked, scored, suppresses; // suppresses: with nmsEnabled and tempBuf
    void (*run)(const Call&, const Options&);

    Corners find(const Image& image, const Options& options) const
    {
        // Exactly as long as they must be, so that a sanitizer sees what is too long.
        const size_t room = std::max(options.capacity, 1u);
        std::vector<uint32_t> xy(2 * room, 0xABCDEF), scores(room),
            tempBuf(3 * size_t{options.capacity} + image.h(), 0x1234567);
        uint32_t count = 0xFFFF;
        run({image.data(), image.w() - static_cast<uint32_t>(options.padding), image.h(), image.w(), xy.data(),
             scores.data(), &count, tempBuf.data()},
            options);
        Corners found;
        for (size_t i = 0; i < count && i < room; ++i)
            found.push_back({xy[2 * i], xy[2 * i + 1], scored ? scores[i] : 0});
        // Nothing is written beyond the corners.
        EXPECT_TRUE(std::all_of(xy.begin() + static_cast<ptrdiff_t>(2 * found.size()), xy.end(),
                                [](uint32_t v) { return v == 0xABCDEF; }));
        return found;
    }

    Corners model(const Image& image, const Options& o) const
    {
        Corners all;
        const int border = std::max(static_cast<int>(o.border), 3), right = image.width - o.padding - border;
        // The corner that fills the list is written before the list's length is tested.
        const size_t room = std::max(o.capacity, 1u);
        for (int y = border; y < image.height - border; ++y) {
            for (int x = border; x < right && all.size() < room; ++x) {
                const auto u = static_cast<uint32_t>(x), v = static_cast<uint32_t>(y);
                if ((masked && o.mask->excludes(u, v)) || !isCorner(image, x, y, o.barrier, N)) continue;
                const int score = scored ? scoreModel(image, x, y, o.barrier, N) : 0;
                all.push_back({u, v, static_cast<uint32_t>(score)});
            }
        }
        return suppresses && o.nms != 0 ? suppressModel(all) : all;
    }
};

#define FAST_IMAGE c.src, c.width, c.height, c.stride, o.barrier, o.border, c.xy
#define FAST_MASK o.mask->bits.data(), o.mask->width, o.mask->height
#define FAST_RUN(name, ...) [](const Call& c, const Options& o) { name(FAST_IMAGE, __VA_ARGS__); }
#define FAST_OPERATION(name, N, masked, scored, suppresses, ...)          \
    {                                                                     \
#name, N, masked, scored, suppresses, FAST_RUN(name, __VA_ARGS__) \
    }
const Operation kOperations[] = {
    FAST_OPERATION(odxCornerFast9u8, 9, false, false, false, o.capacity, c.count),
    FAST_OPERATION(odxCornerFast10u8, 10, false, false, false, o.capacity, c.count),
    FAST_OPERATION(odxCornerFast9InMasku8, 9, true, false, false, o.capacity, c.count, FAST_MASK),
    FAST_OPERATION(odxCornerFast10InMasku8, 10, true, false, false, o.capacity, c.count, FAST_MASK),
    FAST_OPERATION(odxCornerFast9Scoreu8, 9, false, true, false, c.scores, o.capacity, c.count),
    FAST_OPERATION(odxCornerFast9InMaskScoreu8, 9, true, true, false, c.scores, o.capacity, c.count, FAST_MASK),
    FAST_OPERATION(odxCornerFast9Scoreu8_v2, 9, false, true, true, c.scores, o.capacity, c.count, o.nms,
                   c.tempBuf),
    FAST_OPERATION(odxCornerFast9InMaskScoreu8_v2, 9, true, true, true, c.scores, o.capacity, c.count, FAST_MASK,
                   o.nms, c.tempBuf),
    FAST_OPERATION(odxCornerFast10Scoreu8, 10, false, true, true, c.scores, o.capacity, c.count, o.nms, c.tempBuf),
    FAST_OPERATION(odxCornerFast10InMaskScoreu8, 10, true, true, true, c.scores, o.capacity, c.count, FAST_MASK,
                   o.nms, c.tempBuf),
};

// Squares of changing size and level on a slope: edges, corners and flat parts.
Image squares(int width, int height)
{
    return drawn<uint8_t>(width, height, [](int x, int y) {
        const int side = 5 + x / 40, level = (x / side * 7 + y / side * 13) % 5;
        return level * 45 + y / 4;
    });
}

class Fast : public odx::test::ReferenceTest
{
};

void expectModel(const Operation& operation, const Image& image, const Options& options)
{
    EXPECT_EQ(operation.model(image, options), operation.find(image, options))
        << operation.name << " on " << image.width << 'x' << image.height << ", barrier " << options.barrier
        << ", border " << options.border << ", capacity " << options.capacity << ", nms " << options.nms;
}

// Below 0, a pixel is its own equal's corner, and sums beyond all pixel values must not wrap.
TEST_F(Fast, DetectorsFindWhatTheArcTestFinds)
{
    const std::pair<Image, int> images[] = {{noisy(136, 40, 60), 5},  {noisy(64, 9, 120), 0},
                                            {squares(301, 60), 0},    {noisy(39, 12), 1},
                                            {noisy(4500, 8, 140), 0}, {Image(50, 20, 77), 0}};
    for (const auto& [image, padding] : images) {
        for (int barrier : {0, 1, 20, 55, 127, 128, 254, 255, 256, INT32_MAX, -1, -2, -255, -256, INT32_MIN}) {
            for (int detector : {0, 1})
                expectModel(kOperations[detector], image, {barrier, 3, 100000, 0, nullptr, padding});
        }
    }
    for (uint32_t border : {0u, 1u, 2u, 3u, 4u, 7u, 14u}) { // one column, and one row, are left
        const int side = static_cast<int>(2 * std::max(border, 3u) + 1);
        for (const Image& image : {noisy(100, 30), noisy(side, 99), noisy(99, side)})
            expectModel(kOperations[border % 2], image, {5, border});
    }
}

// A tile for each of the 65536 ways to set the circle, whose centre must be a corner exactly where 9 (10) of them
// are neighbours.
TEST_F(Fast, EveryPatternOfTheCircle)
{
    constexpr int kTile = 7, kTiles = 256, kCentre = 120, kBarrier = 30;
    for (const int sign : {1, -1}) {
        Image image(kTile * kTiles, kTile * kTiles, kCentre);
        for (int pattern = 0; pattern < 65536; ++pattern) {
            const int x = pattern % kTiles * kTile + 3, y = pattern / kTiles * kTile + 3;
            for (int k = 0; k < 16; ++k) {
                // Those that are not set are equal to the threshold, which does not count.
                const int beyond = pattern >> k & 1;
                image.at(x + kCircleX[k], y + kCircleY[k]) =
                    static_cast<uint8_t>(kCentre + sign * (kBarrier + beyond));
            }
        }
        for (int N : {9, 10}) {
            std::vector<bool> found(65536);
            for (const Corner& corner : kOperations[N - 9].find(image, {kBarrier, 3, 4000000})) {
                if (corner.x % kTile == 3 && corner.y % kTile == 3)
                    found[corner.y / kTile * kTiles + corner.x / kTile] = true;
            }
            for (uint32_t pattern = 0; pattern < 65536; ++pattern)
                ASSERT_EQ(hasArc(N, [&](int k) { return (pattern >> k & 1) != 0; }), found[pattern])
                    << std::hex << pattern << ", FAST-" << std::dec << N;
        }
    }
}

TEST_F(Fast, ListsEndWithTheCornerThatFillsThem)
{
    const Image image = noisy(150, 30);
    const Mask half(image, 1, 2);
    Mask end(image, 1, 1); // however many pixels without a corner come before
    std::fill(end.bits.pixels.begin(), end.bits.pixels.end() - 200, 255);
    for (const Operation& operation : kOperations) {
        const auto all = static_cast<uint32_t>(operation.find(image, {20, 3, 100000, 0, &half}).size());
        ASSERT_GT(all, 50u);
        for (uint32_t capacity : {0u, 1u, 2u, 33u, all - 1, all, all + 1}) {
            // The capacity limits the candidates of the suppression.
            for (const uint32_t nms : {0u, 1u})
                expectModel(operation, image, {20, 3, capacity, nms, &half});
        }
        expectModel(operation, image, {20, 3, 0, 0, &end});
    }
}

TEST_F(Fast, MasksOfSevenScalesExcludeWhatTheyCover)
{
    const Image image = noisy(104, 48);
    for (const auto& [times, over] : kScales) {
        const Mask mask(image, times, over);
        for (const Operation& operation : kOperations) {
            for (const uint32_t capacity : {100000u, 20u})
                expectModel(operation, image, {20, 3, capacity, 1, &mask});
        }
    }
    const std::vector<uint8_t> bits(1000 * 1000);
    const uint32_t sizes[][2] = {{208, 48},
                                 {104, 96},
                                 {52, 48},
                                 {208, 24},
                                 {312, 144},
                                 {1664, 768},
                                 {6, 3},
                                 {103, 48},
                                 {208, 192},
                                 {0, 0},
                                 {0x80000068, 0x80000030}};
    for (const auto& [width, height] : sizes) {
        uint32_t xy[2000], count = 77;
        odxCornerFast9InMasku8(image.data(), 104, 48, 0, 20, 3, xy, 1000, &count, bits.data(), width, height);
        EXPECT_EQ(0u, count) << width << 'x' << height;
    }
}

TEST_F(Fast, ScoresAreTheLargestBarriersAndSuppressionKeepsMaxima)
{
    for (const Image& image : {noisy(50, 30), noisy(50, 30, 40), squares(80, 40)}) {
        const Mask mask(image, 1, 1);
        for (int barrier : {0, 12, 40, 253, 254, -3, -300}) {
            for (const Operation& operation : kOperations) {
                for (const uint32_t nms : {0u, 1u, 256u}) // any value but 0 switches it on
                    if (nms == 0 ? operation.scored : operation.suppresses)
                        expectModel(operation, image, {barrier, 3, 100000, nms, &mask});
            }
        }
    }
}

// A routine is given any pixel, and one that is no corner gets the barrier.
TEST_F(Fast, ScoreRoutinesTakeEveryPixel)
{
    const Image image = noisy(69, 40);
    ptrdiff_t offsets[16];
    make_offsets(offsets, image.w());
    for (int barrier : {0, 10, 100, 254, 255, 1000, -1, -50}) {
        for (int y = 3; y < 37; ++y) {
            for (int x = 3; x < 57; ++x) {
                const uint8_t* const pixel = &image.at(x, y);
                ASSERT_EQ(scoreModel(image, x, y, barrier, 9), fast9_corner_score_(pixel, offsets, barrier));
                ASSERT_EQ(scoreModel(image, x, y, barrier, 10), fast10_corner_score_(pixel, offsets, barrier));
            }
        }
    }
}

// Lists of all densities, with few scores, so that ties are frequent, and with rows without candidates; columns
// and scores up to large ones.
TEST_F(Fast, SuppressionAgreesWithEachAgainstEach)
{
    std::mt19937 random(24);
    for (uint32_t round = 0; round < 300; ++round) {
        const uint32_t width = 1 + random() % 40, height = 1 + random() % 20, density = 1 + random() % 10;
        const uint32_t levels = 1 + random() % 6, skipped = random() % 3;
        const uint32_t left = round % 3 == 1 ? 4070 : 0, least = round % 3 == 2 ? 0xFFFFFFFF - levels : 0;
        Corners corners, kept;
        std::vector<uint32_t> xy, scores;
        for (uint32_t y = 0; y < height; ++y) {
            if (skipped != 0 && random() % (skipped + 1) == 0) continue;
            for (uint32_t x = left; x < left + width; ++x) {
                if (random() % density != 0) continue;
                scores.push_back(least + random() % levels);
                xy.insert(xy.end(), {x, y});
                corners.push_back({x, y, scores.back()});
            }
        }
        const auto count = static_cast<uint32_t>(scores.size());
        std::vector<uint32_t> rowStart(count == 0 ? 0 : xy.back() + 1), xyOut(2 * count), scoresOut(count);
        uint32_t keptCount = 99;
        nms_processing(xy.data(), scores.data(), rowStart.data(), count, xyOut.data(), scoresOut.data(),
                       &keptCount);
        for (size_t i = 0; i < std::min(keptCount, count); ++i)
            kept.push_back({xyOut[2 * i], xyOut[2 * i + 1], scoresOut[i]});
        ASSERT_EQ(suppressModel(corners), kept) << "round " << round;
    }
}

// Both go through what a mode selection chose, which may be replaced.
TEST_F(Fast, ScoringGoesThroughTheRoutinesAndThePublicDetectors)
{
    static int calls;
    calls = 0;
    fast9_corner_score_ = [](const uint8_t*, const ptrdiff_t*, int32_t) { return 1000 + ++calls; };
    fast10_corner_score_ = [](const uint8_t*, const ptrdiff_t*, int32_t) { return 2000 + ++calls; };
    decltype(&odxCornerFast9u8) const twoCorners = [](const uint8_t*, uint32_t, uint32_t, uint32_t, int, uint32_t,
                                                      uint32_t* xy, uint32_t, uint32_t* count) {
        const uint32_t places[] = {5, 4, 9, 8};
        std::copy_n(places, 4, xy);
        *count = 2;
    };
    for (uint32_t slot : {odx::op_odxCornerFast9u8, odx::op_odxCornerFast10u8})
        odxFuncTable.entry[slot * kImplementations + odxImplTable[slot]] = reinterpret_cast<void*>(twoCorners);
    const Image image(30, 20);
    EXPECT_EQ((Corners{{5, 4, 1001}, {9, 8, 1002}}), kOperations[4].find(image, {}));
    EXPECT_EQ((Corners{{5, 4, 1003}, {9, 8, 1004}}), kOperations[6].find(image, {20, 3, 100, 1}));
    EXPECT_EQ((Corners{{5, 4, 2005}, {9, 8, 2006}}), kOperations[8].find(image, {20, 3, 100, 1}));
    const uint32_t xy[] = {7, 3};
    uint32_t score = 0;
    score_9(image.data(), 30, 20, 20, 1, xy, &score, 0);
    EXPECT_EQ(1007u, score);
    uCTable(&odxFuncTable, &odxInternalFuncTable, ODX_IMPL_CPU);
}

TEST_F(Fast, SuppressionWithoutMemoryEndsTheProcess)
{
    const Image image = noisy(40, 30);
    const Mask mask(image, 1, 1);
    for (const Operation& operation : kOperations) {
        if (!operation.suppresses) continue;
        const std::string source = operation.N == 9 ? "ondrixFastC" : "ondrixFast10C";
        expectEnd("^6/ondrix_lib_log: " + source + "@[1-9][0-9]*: tempBuf Assertion failed\n\n$", [&] {
            uint32_t xy[2], score, count;
            operation.run({image.data(), 40, 30, 40, xy, &score, &count, nullptr}, {20, 3, 1, 1, &mask});
        });
    }
}

} // namespace
