// FAST corners against models that are the definitions written down. The other columns are held to the reference
// by the differential test.
#include "cpu/ondrixFastC.h"
#include "frame/operations.h"
#include "frame/tables.h"
#include "ondrix/fastCorners.h"
#include "ondrix/modes.h"
#include "support/childProcess.h"
#include "support/referenceTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

using namespace odx::test;

namespace
{

struct Image {
    uint32_t width, height, stride;
    std::vector<uint8_t> pixels;

    Image(uint32_t w, uint32_t h, uint8_t fill = 0, uint32_t padding = 0)
        : width(w), height(h), stride(w + padding), pixels(size_t{stride} * h, fill)
    {
    }
    uint8_t& at(uint32_t x, uint32_t y) { return pixels[size_t{stride} * y + x]; }
    int at(uint32_t x, uint32_t y) const { return pixels[size_t{stride} * y + x]; }
    const uint8_t* data() const { return pixels.data(); }
};

struct Corner {
    uint32_t x, y;

    bool operator==(const Corner& other) const { return x == other.x && y == other.y; }
};
using Corners = std::vector<Corner>;
using Scores = std::vector<uint32_t>;

// The circle, clockwise from the pixel below the centre as the image is seen.
constexpr int kCircleX[16] = {0, 1, 2, 3, 3, 3, 2, 1, 0, -1, -2, -3, -3, -3, -2, -1};
constexpr int kCircleY[16] = {3, 3, 2, 1, 0, -1, -2, -3, -3, -3, -2, -1, 0, 1, 2, 3};

uint8_t& onCircle(Image& image, uint32_t x, uint32_t y, int k)
{
    return image.at(x + static_cast<uint32_t>(kCircleX[k]), y + static_cast<uint32_t>(kCircleY[k]));
}

// Whether N neighbours on a circle of flags are all set.
bool hasArc(const bool (&flags)[16], int N)
{
    for (int start = 0; start < 16; ++start) {
        int length = 0;
        while (length < N && flags[(start + length) % 16])
            ++length;
        if (length == N) return true;
    }
    return false;
}

bool isCorner(const Image& image, uint32_t x, uint32_t y, int64_t barrier, int N)
{
    bool bright[16], dark[16];
    for (int k = 0; k < 16; ++k) {
        const int64_t value = onCircle(const_cast<Image&>(image), x, y, k);
        bright[k] = value > image.at(x, y) + barrier;
        dark[k] = value < image.at(x, y) - barrier;
    }
    return hasArc(bright, N) || hasArc(dark, N);
}

// A mask with a set bit for what is excluded; its size is the image's times `times` divided by `over`.
struct Mask {
    uint32_t width, height, times, over;
    std::vector<uint8_t> bits;

    Mask(const Image& image, uint32_t timesOf, uint32_t overOf)
        : width(image.width * timesOf / overOf), height(image.height * timesOf / overOf), times(timesOf),
          over(overOf), bits((size_t{width} + 7) / 8 * height)
    {
    }
    bool excludes(uint32_t x, uint32_t y) const
    {
        const uint32_t mx = x * times / over, my = y * times / over;
        return (bits[(width + 7) / 8 * my + mx / 8] >> (7 - mx % 8) & 1) != 0;
    }
};

struct Options {
    int barrier = 20;
    uint32_t border = 3;
    uint32_t capacity = 100000;
    const Mask* mask = nullptr;
};

Corners detectModel(const Image& image, int N, const Options& options = {})
{
    Corners corners;
    const uint32_t border = std::max(options.border, 3u);
    for (uint32_t y = border; y + border < image.height; ++y) {
        for (uint32_t x = border; x + border < image.width; ++x) {
            if (options.mask != nullptr && options.mask->excludes(x, y)) continue;
            if (!isCorner(image, x, y, options.barrier, N)) continue;
            corners.push_back({x, y});
            if (corners.size() >= options.capacity) return corners;
        }
    }
    return corners;
}

// The largest barrier with which the pixel is a corner, by trying them all.
int scoreModel(const Image& image, const Corner& corner, int barrier, int N)
{
    for (int b = 254; b > barrier; --b) {
        if (isCorner(image, corner.x, corner.y, b, N)) return b;
    }
    return barrier;
}

// Each candidate against each other one.
void suppressModel(Corners& corners, Scores& scores)
{
    Corners kept;
    Scores keptScores;
    for (size_t i = 0; i < corners.size(); ++i) {
        bool suppressed = false;
        for (size_t j = 0; j < corners.size() && !suppressed; ++j) {
            const int64_t dx = int64_t{corners[i].x} - corners[j].x, dy = int64_t{corners[i].y} - corners[j].y;
            suppressed = i != j && dx * dx <= 1 && dy * dy <= 1 && scores[j] >= scores[i];
        }
        if (suppressed) continue;
        kept.push_back(corners[i]);
        keptScores.push_back(scores[i]);
    }
    corners = kept;
    scores = keptScores;
}

// ---- the operations, with what they wrote as lists ----

struct Found {
    Corners corners;
    Scores scores; // empty for detectors without

    bool operator==(const Found& other) const { return corners == other.corners && scores == other.scores; }
};
std::ostream& operator<<(std::ostream& stream, const Found& found)
{
    stream << found.corners.size() << " corners:";
    for (size_t i = 0; i < found.corners.size() && i < 20; ++i)
        stream << " (" << found.corners[i].x << ", " << found.corners[i].y << ')'
               << (i < found.scores.size() ? found.scores[i] : 0);
    return stream;
}

// An operation in any of its forms; what it lacks of the arguments is not passed.
struct Call {
    uint32_t *xy, *scores, *count, nms, *tempBuf;
};
struct Operation {
    const char* name;
    int N;
    bool masked, scored, suppresses; // suppresses: with nmsEnabled and tempBuf
    void (*run)(const Image&, const Options&, const Call&);

    Found find(const Image& image, const Options& options, uint32_t nms = 0) const
    {
        // Exactly as long as they must be, so that a sanitizer sees what is too long.
        const size_t room = std::max(options.capacity, 1u);
        std::vector<uint32_t> xy(2 * room, 0xABCDEF), scores(room, 0xABCDEF);
        std::vector<uint32_t> tempBuf(3 * size_t{options.capacity} + image.height, 0x1234567);
        uint32_t count = 0xFFFF;
        run(image, options, {xy.data(), scores.data(), &count, nms, tempBuf.data()});
        Found found;
        for (uint32_t i = 0; i < count && i < room; ++i) {
            found.corners.push_back({xy[2 * i], xy[2 * i + 1]});
            if (scored) found.scores.push_back(scores[i]);
        }
        // Nothing is written beyond the corners.
        EXPECT_TRUE(std::all_of(xy.begin() + 2 * std::min<ptrdiff_t>(count, static_cast<ptrdiff_t>(room)),
                                xy.end(), [](uint32_t v) { return v == 0xABCDEF; }));
        return found;
    }
};

#define FAST_IMAGE i.data(), i.width, i.height, i.stride, o.barrier, o.border, c.xy
#define FAST_MASK o.mask->bits.data(), o.mask->width, o.mask->height
#define FAST_OPERATION(name, N, masked, scored, suppresses, ...)                                   \
    {                                                                                              \
#name, N, masked, scored, suppresses,                                                      \
            [](const Image& i, const Options& o, const Call& c) { name(FAST_IMAGE, __VA_ARGS__); } \
    }
const Operation kOperations[] = {
    FAST_OPERATION(odxCornerFast9u8, 9, false, false, false, o.capacity, c.count),
    FAST_OPERATION(odxCornerFast10u8, 10, false, false, false, o.capacity, c.count),
    FAST_OPERATION(odxCornerFast9InMasku8, 9, true, false, false, o.capacity, c.count, FAST_MASK),
    FAST_OPERATION(odxCornerFast10InMasku8, 10, true, false, false, o.capacity, c.count, FAST_MASK),
    FAST_OPERATION(odxCornerFast9Scoreu8, 9, false, true, false, c.scores, o.capacity, c.count),
    FAST_OPERATION(odxCornerFast9InMaskScoreu8, 9, true, true, false, c.scores, o.capacity, c.count, FAST_MASK),
    FAST_OPERATION(odxCornerFast9Scoreu8_v2, 9, false, true, true, c.scores, o.capacity, c.count, c.nms,
                   c.tempBuf),
    FAST_OPERATION(odxCornerFast9InMaskScoreu8_v2, 9, true, true, true, c.scores, o.capacity, c.count, FAST_MASK,
                   c.nms, c.tempBuf),
    FAST_OPERATION(odxCornerFast10Scoreu8, 10, false, true, true, c.scores, o.capacity, c.count, c.nms, c.tempBuf),
    FAST_OPERATION(odxCornerFast10InMaskScoreu8, 10, true, true, true, c.scores, o.capacity, c.count, FAST_MASK,
                   c.nms, c.tempBuf),
};

Found findModel(const Operation& operation, const Image& image, Options options, bool nms = false)
{
    if (!operation.masked) options.mask = nullptr;
    Found found;
    // The corner that fills the list is written before the list's length is tested.
    options.capacity = std::max(options.capacity, 1u);
    found.corners = detectModel(image, operation.N, options);
    for (const Corner& corner : found.corners) {
        if (operation.scored)
            found.scores.push_back(static_cast<uint32_t>(scoreModel(image, corner, options.barrier, operation.N)));
    }
    if (operation.suppresses && nms) suppressModel(found.corners, found.scores);
    return found;
}

// ---- images ----

Image noise(uint32_t width, uint32_t height, uint32_t seed, int range = 256, uint32_t padding = 0)
{
    std::mt19937 random(seed);
    Image image(width, height, 0, padding);
    for (uint8_t& pixel : image.pixels)
        pixel = static_cast<uint8_t>(100 + static_cast<int>(random() % static_cast<unsigned>(range)) - range / 2);
    return image;
}

// Squares of changing size and level on a slope: edges, corners and flat parts.
Image squares(uint32_t width, uint32_t height, uint32_t padding = 0)
{
    Image image(width, height, 0, padding);
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            const uint32_t side = 5 + x / 40;
            const uint32_t level = (x / side * 7 + y / side * 13) % 5;
            image.at(x, y) = static_cast<uint8_t>((level * 45 + y / 4) % 256);
        }
    }
    return image;
}

class Fast : public odx::test::ReferenceTest
{
};

void expectModel(const Operation& operation, const Image& image, const Options& options, uint32_t nms = 0)
{
    EXPECT_EQ(findModel(operation, image, options, nms != 0), operation.find(image, options, nms))
        << operation.name << " on " << image.width << 'x' << image.height << ", barrier " << options.barrier
        << ", border " << options.border << ", capacity " << options.capacity << ", nms " << nms;
}

// Below 0, a pixel is its own equal's corner, and sums beyond all pixel values must not wrap.
TEST_F(Fast, DetectorsFindWhatTheArcTestFinds)
{
    const Image images[] = {noise(131, 40, 2, 60, 5), noise(64, 9, 3, 120),   squares(301, 60),
                            noise(38, 12, 4, 256, 1), noise(4500, 8, 5, 140), Image(50, 20, 77)};
    for (const Image& image : images) {
        for (int barrier : {0, 1, 20, 55, 127, 128, 254, 255, 256, INT32_MAX, -1, -2, -255, -256, INT32_MIN}) {
            for (int detector : {0, 1})
                expectModel(kOperations[detector], image, {barrier});
        }
    }
    for (uint32_t border : {0u, 1u, 2u, 3u, 4u, 7u, 14u}) { // one column, and one row, are left
        const uint32_t side = 2 * std::max(border, 3u) + 1;
        for (const Image& image : {noise(100, 30, 11), noise(side, 99, 12), noise(99, side, 13)})
            expectModel(kOperations[border % 2], image, {5, border});
    }
}

// A tile for each of the 65536 ways to set the circle, whose centre must be a corner exactly where 9 (10) of them
// are neighbours.
TEST_F(Fast, EveryPatternOfTheCircle)
{
    constexpr uint32_t kTile = 7, kTiles = 256;
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
            for (const Corner& corner : kOperations[N - 9].find(image, {kBarrier, 3, 4000000}).corners) {
                if (corner.x % kTile == 3 && corner.y % kTile == 3)
                    found[corner.y / kTile * kTiles + corner.x / kTile] = true;
            }
            for (uint32_t pattern = 0; pattern < 65536; ++pattern) {
                bool flags[16];
                for (int k = 0; k < 16; ++k)
                    flags[k] = (pattern >> k & 1) != 0;
                ASSERT_EQ(hasArc(flags, N), found[pattern]) << std::hex << pattern << ", FAST-" << std::dec << N;
            }
        }
    }
}

TEST_F(Fast, ListsEndWithTheCornerThatFillsThem)
{
    const Image image = noise(150, 30, 14);
    const Mask half(image, 1, 2);
    Mask end(image, 1, 1); // however many pixels without a corner come before
    std::fill(end.bits.begin(), end.bits.end() - 200, 255);
    for (const Operation& operation : kOperations) {
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
        options.mask = &end;
        options.capacity = 0;
        if (operation.masked) expectModel(operation, image, options);
    }
}

// Rows of a mask are whole bytes, its first pixel is the most significant bit.
TEST_F(Fast, MasksOfSevenScalesExcludeWhatTheyCover)
{
    const Image image = noise(104, 48, 15);
    for (const auto& [times, over] : {std::pair{1u, 1u}, {2, 1}, {1, 2}, {4, 1}, {1, 4}, {8, 1}, {1, 8}}) {
        Mask mask(image, times, over);
        std::mt19937 random(16);
        for (uint8_t& byte : mask.bits)
            byte = static_cast<uint8_t>(random());
        for (const Operation& operation : kOperations) {
            Options options;
            options.mask = &mask;
            for (const uint32_t capacity : {100000u, 20u}) {
                options.capacity = capacity;
                if (operation.masked) expectModel(operation, image, options, 1);
            }
        }
    }
    const std::vector<uint8_t> bits(1000 * 1000);
    for (const auto& [width, height] : {std::pair{208u, 48u},
                                        {104, 96},
                                        {52, 48},
                                        {208, 24},
                                        {312, 144},
                                        {1664, 768},
                                        {6, 3},
                                        {103, 48},
                                        {208, 192},
                                        {0, 0},
                                        {0x80000068, 0x80000030}}) {
        uint32_t xy[2000], count = 77;
        odxCornerFast9InMasku8(image.data(), 104, 48, 0, 20, 3, xy, 1000, &count, bits.data(), width, height);
        EXPECT_EQ(0u, count) << width << 'x' << height;
    }
}

TEST_F(Fast, ScoresAreTheLargestBarriersAndSuppressionKeepsMaxima)
{
    for (const Image& image : {noise(50, 30, 19), noise(50, 30, 23, 40), squares(80, 40)}) {
        const Mask nothing(image, 1, 1);
        for (int barrier : {0, 12, 40, 253, 254, -3, -300}) {
            Options options = {barrier};
            options.mask = &nothing;
            for (const Operation& operation : kOperations) {
                if (operation.scored) expectModel(operation, image, options);
                if (!operation.suppresses) continue;
                expectModel(operation, image, options, 1);
                expectModel(operation, image, options, 256); // any value but 0 switches it on
            }
        }
    }
}

// A routine is given any pixel, and one that is no corner gets the barrier.
TEST_F(Fast, ScoreRoutinesTakeEveryPixel)
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

// Lists of all densities, with few scores, so that ties are frequent, and with rows without candidates; columns
// and scores up to large ones.
TEST_F(Fast, SuppressionAgreesWithEachAgainstEach)
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

// Both go through what a mode selection chose, which may be replaced.
TEST_F(Fast, ScoringGoesThroughTheRoutinesAndThePublicDetectors)
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
    EXPECT_EQ((Found{two, {1001, 1002}}), kOperations[4].find(image, {}));
    EXPECT_EQ((Found{two, {1003, 1004}}), kOperations[6].find(image, {}, 1));
    EXPECT_EQ((Found{two, {2005, 2006}}), kOperations[8].find(image, {}, 1));
    const uint32_t xy[] = {7, 3};
    uint32_t score = 0;
    score_9(image.data(), 30, 20, 20, 1, xy, &score, 0);
    EXPECT_EQ(1007u, score);

    size_t next = 0;
    for (uint32_t slot : {odx::op_odxCornerFast9u8, odx::op_odxCornerFast10u8})
        odxFuncTable.entry[slot * kImplementations + odxImplTable[slot]] = saved[next++];
    odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE);
}

TEST_F(Fast, SuppressionWithoutMemoryEndsTheProcess)
{
    for (const Operation& operation : kOperations) {
        if (!operation.suppresses) continue;
        const std::string source = operation.N == 9 ? "ondrixFastC" : "ondrixFast10C";
        expectEnd("^6/ondrix_lib_log: " + source + "@[1-9][0-9]*: tempBuf Assertion failed\n\n$", [&] {
            const Image image = noise(40, 30, 1);
            const Mask mask(image, 1, 1);
            uint32_t xy[2], score, count;
            operation.run(image, {20, 3, 1, &mask}, {xy, &score, &count, 1, nullptr});
        });
    }
}

} // namespace
