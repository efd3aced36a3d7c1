// What the FAST corner tests share: images, and the operations written down as their definitions.
#ifndef ODX_TESTS_CORNERS_FAST_MODELS_H
#define ODX_TESTS_CORNERS_FAST_MODELS_H

#include "cpu/ondrixFastC.h"
#include "ondrix/fastCorners.h"
#include "ondrix/modes.h"

#include <algorithm>
#include <functional>
#include <ostream>
#include <random>
#include <stdint.h>
#include <vector>

namespace odx::test::fast
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
inline std::ostream& operator<<(std::ostream& stream, const Corner& corner)
{
    return stream << '(' << corner.x << ", " << corner.y << ')';
}
using Corners = std::vector<Corner>;
using Scores = std::vector<uint32_t>;

// The circle, clockwise from the pixel below the centre as the image is seen.
constexpr int kCircleX[16] = {0, 1, 2, 3, 3, 3, 2, 1, 0, -1, -2, -3, -3, -3, -2, -1};
constexpr int kCircleY[16] = {3, 3, 2, 1, 0, -1, -2, -3, -3, -3, -2, -1, 0, 1, 2, 3};

inline uint8_t& onCircle(Image& image, uint32_t x, uint32_t y, int k)
{
    return image.at(x + static_cast<uint32_t>(kCircleX[k]), y + static_cast<uint32_t>(kCircleY[k]));
}

// Whether N neighbours on a circle of flags are all set.
inline bool hasArc(const bool (&flags)[16], int N)
{
    for (int start = 0; start < 16; ++start) {
        int length = 0;
        while (length < N && flags[(start + length) % 16])
            ++length;
        if (length == N) return true;
    }
    return false;
}

inline bool isCorner(const Image& image, uint32_t x, uint32_t y, int64_t barrier, int N)
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
    void set(uint32_t x, uint32_t y) { bits[(width + 7) / 8 * y + x / 8] |= static_cast<uint8_t>(128 >> x % 8); }
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

inline Corners detectModel(const Image& image, int N, const Options& options = {})
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
inline int scoreModel(const Image& image, const Corner& corner, int barrier, int N)
{
    for (int b = 254; b > barrier; --b) {
        if (isCorner(image, corner.x, corner.y, b, N)) return b;
    }
    return barrier;
}

inline Scores scoresModel(const Image& image, const Corners& corners, int barrier, int N)
{
    Scores scores;
    for (const Corner& corner : corners)
        scores.push_back(static_cast<uint32_t>(scoreModel(image, corner, barrier, N)));
    return scores;
}

// Each candidate against each other one.
inline void suppressModel(Corners& corners, Scores& scores)
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
inline std::ostream& operator<<(std::ostream& stream, const Found& found)
{
    stream << found.corners.size() << " corners:";
    for (size_t i = 0; i < found.corners.size() && i < 20; ++i) {
        stream << ' ' << found.corners[i];
        if (i < found.scores.size()) stream << ':' << found.scores[i];
    }
    return stream;
}

// An operation in any of its forms; what it lacks of the arguments is not passed.
struct Operation {
    const char* name;
    int N;
    bool masked, scored, suppresses; // suppresses: with nmsEnabled and tempBuf
    std::function<void(const Image&, const Options&, uint32_t* xy, uint32_t* scores, uint32_t* count, uint32_t nms,
                       uint32_t* tempBuf)>
        run;

    Found find(const Image& image, const Options& options, uint32_t nms = 0) const
    {
        // Exactly as long as they must be, so that a sanitizer sees what is too long.
        const size_t room = std::max(options.capacity, 1u);
        std::vector<uint32_t> xy(2 * room, 0xABCDEF), scores(room, 0xABCDEF);
        std::vector<uint32_t> tempBuf(3 * size_t{options.capacity} + image.height, 0x1234567);
        uint32_t count = 0xFFFF;
        run(image, options, xy.data(), scores.data(), &count, nms, tempBuf.data());
        Found found;
        for (uint32_t i = 0; i < count && i < room; ++i) {
            found.corners.push_back({xy[2 * i], xy[2 * i + 1]});
            if (scored) found.scores.push_back(scores[i]);
        }
        // Nothing is written beyond the corners.
        for (size_t i = 2 * size_t{count}; i < xy.size(); ++i) {
            if (xy[i] != 0xABCDEF) found.corners.push_back({0xBAD, xy[i]});
        }
        return found;
    }
};

inline const std::vector<Operation>& operations()
{
#define FAST_COMMON image.data(), image.width, image.height, image.stride, o.barrier, o.border, xy
#define FAST_MASK o.mask->bits.data(), o.mask->width, o.mask->height
#define FAST_OPERATION(name, N, masked, scored, suppresses, ...)                                  \
    {                                                                                             \
#name, N, masked, scored, suppresses,                                                     \
            []([[maybe_unused]] const Image& image, const Options& o, uint32_t* xy,               \
               [[maybe_unused]] uint32_t* scores, uint32_t* count, [[maybe_unused]] uint32_t nms, \
               [[maybe_unused]] uint32_t* tempBuf) { name(__VA_ARGS__); }                         \
    }
    static const std::vector<Operation> all = {
        FAST_OPERATION(odxCornerFast9u8, 9, false, false, false, FAST_COMMON, o.capacity, count),
        FAST_OPERATION(odxCornerFast10u8, 10, false, false, false, FAST_COMMON, o.capacity, count),
        FAST_OPERATION(odxCornerFast9InMasku8, 9, true, false, false, FAST_COMMON, o.capacity, count, FAST_MASK),
        FAST_OPERATION(odxCornerFast10InMasku8, 10, true, false, false, FAST_COMMON, o.capacity, count, FAST_MASK),
        FAST_OPERATION(odxCornerFast9Scoreu8, 9, false, true, false, FAST_COMMON, scores, o.capacity, count),
        FAST_OPERATION(odxCornerFast9InMaskScoreu8, 9, true, true, false, FAST_COMMON, scores, o.capacity, count,
                       FAST_MASK),
        FAST_OPERATION(odxCornerFast9Scoreu8_v2, 9, false, true, true, FAST_COMMON, scores, o.capacity, count, nms,
                       tempBuf),
        FAST_OPERATION(odxCornerFast9InMaskScoreu8_v2, 9, true, true, true, FAST_COMMON, scores, o.capacity, count,
                       FAST_MASK, nms, tempBuf),
        FAST_OPERATION(odxCornerFast10Scoreu8, 10, false, true, true, FAST_COMMON, scores, o.capacity, count, nms,
                       tempBuf),
        FAST_OPERATION(odxCornerFast10InMaskScoreu8, 10, true, true, true, FAST_COMMON, scores, o.capacity, count,
                       FAST_MASK, nms, tempBuf),
    };
#undef FAST_OPERATION
#undef FAST_MASK
#undef FAST_COMMON
    return all;
}

inline Found findModel(const Operation& operation, const Image& image, Options options, bool nms = false)
{
    if (!operation.masked) options.mask = nullptr;
    Found found;
    // The corner that fills the list is written before the list's length is tested.
    options.capacity = std::max(options.capacity, 1u);
    found.corners = detectModel(image, operation.N, options);
    if (operation.scored) found.scores = scoresModel(image, found.corners, options.barrier, operation.N);
    if (operation.suppresses && nms) suppressModel(found.corners, found.scores);
    return found;
}

// ---- images ----

inline Image noise(uint32_t width, uint32_t height, uint32_t seed, int range = 256, uint32_t padding = 0)
{
    std::mt19937 random(seed);
    Image image(width, height, 0, padding);
    for (uint8_t& pixel : image.pixels)
        pixel = static_cast<uint8_t>(100 + static_cast<int>(random() % static_cast<unsigned>(range)) - range / 2);
    return image;
}

// Squares of changing size and level on a slope: edges, corners and flat parts.
inline Image squares(uint32_t width, uint32_t height, uint32_t padding = 0)
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

} // namespace odx::test::fast

#endif
