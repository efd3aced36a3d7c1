// Optical flow: the tracker, which all forms and columns share, and the reference of its inner loops.
#include "cpu/ondrixOpticalFlowC.h"

#include "frame/scratch.h"

#include <algorithm>
#include <math.h>
#include <string.h>
#include <utility>

using namespace odx;

namespace
{

struct Point {
    float x, y;
};

struct Level {
    const uint8_t* pixels;
    uint32_t width, height; // 0 where there are no pixels
    size_t stride;
};

// The part of a window that is left of it, as columns and rows of the whole window.
struct Part {
    int32_t left, top, right, bottom;

    bool empty() const { return left >= right || top >= bottom; }
    uint32_t width() const { return static_cast<uint32_t>(right - left); }
    uint32_t height() const { return static_cast<uint32_t>(bottom - top); }
    bool operator==(const Part& other) const
    {
        return left == other.left && top == other.top && right == other.right && bottom == other.bottom;
    }
};

Part common(const Part& a, const Part& b)
{
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

// Coordinates below this, with a window around them, have whole parts that fit an integer.
constexpr float kFar = 0x1p30f;

bool near(Point p)
{
    return fabsf(p.x) < kFar && fabsf(p.y) < kFar; // not so for NaN
}

int32_t floorOf(float x)
{
    const auto i = static_cast<int32_t>(x);
    return i - (x < static_cast<float>(i) ? 1 : 0);
}

template <class T>
T roundedUp(T n)
{
    return (n + kFlowSums - 1) / kFlowSums * kFlowSums;
}

// The inner loop of the mode, or its reference where the mode's cannot be taken.
template <class Kernel>
Kernel* chosen(bool any, const HelperPointer<Kernel>& pointer, Kernel* reference)
{
    return any ? pointer : reference;
}

struct Options {
    int iterations;
    float epsilon;
};

class Tracker
{
public:
    Tracker(int windowWidth, int windowHeight, const Options& options)
        : halfX_(std::min(windowWidth >> 1, kMostPixels)), halfY_(std::min(windowHeight >> 1, kMostPixels)),
          width_(2 * halfX_ + 1), height_(2 * halfY_ + 1), options_(options), memory_(floatsNeeded())
    {
        if (!memory_) return;
        memset(memory_.get(), 0, sizeof(float) * floatsNeeded());
        float* next = memory_.get();
        const auto take = [&next](uint64_t floats) { return std::exchange(next, next + floats); };
        margin_ = take(marginFloats());
        pixels_ = take(pixelCount());
        for (FlowWindow* window : {&whole_, &part_}) {
            window->samples = take(windowFloats());
            window->dx = take(windowFloats());
            window->dy = take(windowFloats());
        }
        bytes_ = reinterpret_cast<uint8_t*>(next);
    }
    explicit operator bool() const { return static_cast<bool>(memory_); }

    // Whether a window about the point has pixels.
    bool holds(const Level& level, Point point) const { return !partAt(level, point).empty(); }

    // Moves the guess to where the point of one image, which holds it, is in the other; returns the status.
    int32_t track(const Level& one, const Level& other, Point point, Point& guess)
    {
        const Part window = partAt(one, point);
        const bool plain = takeWindow(one, point, window);

        Part before = {};
        const FlowWindow* current = nullptr;
        float moments[3], determinant = 0;
        Point step = {};
        for (int i = 0; i < options_.iterations; ++i) {
            const Part part = common(window, partAt(other, guess));
            if (part.empty()) return kOutside;
            const FlowSamples samples = samplesAt(other, guess, part, 0);
            const bool allPlain = plain && isPlain(samples);
            if (current == nullptr || !(part == before)) {
                current = part == window ? &whole_ : cutOut(window, part);
                chosen(allPlain, odxFlowMoments_, odxFlowMomentsC)(current, moments);
                determinant = moments[0] * moments[2] - moments[1] * moments[1];
                before = part;
            }
            if (determinant < kSingular) return kFlat;
            float mismatch[2];
            chosen(allPlain, odxFlowMismatch_, odxFlowMismatchC)(&samples, current, mismatch);

            const Point last = step;
            step = {(moments[2] * mismatch[0] - moments[1] * mismatch[1]) / determinant,
                    (moments[0] * mismatch[1] - moments[1] * mismatch[0]) / determinant};
            guess = {guess.x + step.x, guess.y + step.y};
            if (step.x * step.x + step.y * step.y < options_.epsilon) break;
            if (i > 0 && fabsf(step.x + last.x) < kReversed && fabsf(step.y + last.y) < kReversed) {
                guess = {guess.x - step.x * 0.5F, guess.y - step.y * 0.5F};
                break;
            }
        }
        return kTracked;
    }

    static constexpr int32_t kTracked = 1, kFlat = -2, kOutside = -4;

private:
    static constexpr float kSingular = 1e-7F, kReversed = 0.01F;

    // Windows of so many pixels have no memory: counts below fit in 32 bits.
    static constexpr int32_t kMostPixels = 1 << 24;
    uint64_t area(int32_t right, int32_t below) const
    {
        return static_cast<uint64_t>(width_ + right) * static_cast<uint64_t>(height_ + below);
    }
    uint64_t windowFloats() const { return roundedUp(area(1, 0)) + kFlowSlack; }
    uint64_t marginFloats() const { return roundedUp(area(3, 3)) + kFlowSlack; }
    uint64_t pixelCount() const { return roundedUp(area(3, 3)) + static_cast<uint64_t>(width_) + 2 * kFlowSlack; }
    uint64_t floatsNeeded() const
    {
        if (area(0, 0) > kMostPixels) return UINT64_MAX;
        return marginFloats() + pixelCount() + 6 * windowFloats() + pixelCount() / sizeof(float) + 1;
    }

    Part partAt(const Level& level, Point point) const
    {
        if (!near(point)) return {};
        const int32_t left = floorOf(point.x) - halfX_, top = floorOf(point.y) - halfY_;
        const auto end = [](int32_t size, uint32_t length, int32_t first) {
            return static_cast<int32_t>(std::min<int64_t>(size, int64_t{length} - first));
        };
        return {std::max(0, -left), std::max(0, -top), end(width_, level.width, left),
                end(height_, level.height, top)};
    }

    // Fetches the pixels that samples of the part of a window about the point lie between, with a margin.
    FlowSamples samplesAt(const Level& level, Point point, const Part& part, uint32_t margin)
    {
        const auto start = [](float at, int32_t from, int32_t to, int32_t size, float samples) {
            const float centre = at + static_cast<float>(from + to - size) * 0.5F;
            return centre - (samples - 1) * 0.5F;
        };
        const uint32_t width = part.width() + 2 * margin, height = part.height() + 2 * margin;
        const float x = start(point.x, part.left, part.right, width_, static_cast<float>(width)),
                    y = start(point.y, part.top, part.bottom, height_, static_cast<float>(height));
        const int32_t wholeX = floorOf(x), wholeY = floorOf(y);
        const uint32_t pitch = width + 1;
        fetch(level, wholeX, wholeY, pitch, height + 1);
        return {bytes_,
                pitch,
                roundedUp(pitch * height),
                std::max(x - static_cast<float>(wholeX), 0.0001F),
                y - static_cast<float>(wholeY),
                pixels_};
    }

    void fetch(const Level& level, int32_t x, int32_t y, uint32_t columns, uint32_t rows)
    {
        constexpr uint32_t kAtOnce = 8;
        uint8_t* to = bytes_;
        const auto left = static_cast<uint32_t>(x), top = static_cast<uint32_t>(y);
        const uint32_t wide = (columns + kAtOnce - 1) / kAtOnce * kAtOnce;
        if (x >= 0 && y >= 0 && left + wide <= level.width && top + rows <= level.height) {
            // What is copied beyond the end of a row is written again by what comes later: the next row, or its
            // part.
            for (uint32_t i = wide; i != 0;) {
                i -= kAtOnce;
                const uint8_t* from = level.pixels + level.stride * top + left + i;
                uint8_t* part = to + i;
                for (uint32_t j = rows; j != 0; --j, part += columns, from += level.stride)
                    memcpy(part, from, kAtOnce);
            }
            return;
        }
        const auto inside = [](int32_t first, uint32_t i, uint32_t size) {
            return static_cast<size_t>(std::clamp<int64_t>(int64_t{first} + i, 0, int64_t{size} - 1));
        };
        for (uint32_t j = 0; j < rows; ++j, to += columns) {
            const uint8_t* const row = level.pixels + level.stride * inside(y, j, level.height);
            for (uint32_t i = 0; i < columns; ++i)
                to[i] = row[inside(x, i, level.width)];
        }
    }

    // Products of fractions very near to 0 and 1 may be denormal, which some vector units take for 0.
    static bool isPlain(const FlowSamples& samples)
    {
        constexpr float kLeast = 0.0001F, kMost = 0.9999F;
        return samples.fx <= kMost && samples.fy <= kMost && (samples.fy >= kLeast || samples.fy == 0);
    }

    // Samples and gradients of the window in image 1. Whether they are plain numbers.
    bool takeWindow(const Level& level, Point point, const Part& part)
    {
        const FlowSamples samples = samplesAt(level, point, part, 1);
        const bool plain = isPlain(samples);
        setSize(whole_, part);
        chosen(plain, odxFlowSample_, odxFlowSampleC)(&samples, margin_);
        chosen(plain, odxFlowGradients_, odxFlowGradientsC)(margin_, &whole_);
        return plain;
    }

    static void setSize(FlowWindow& window, const Part& part)
    {
        window.width = part.width();
        window.height = part.height();
        window.pitch = window.width + 1;
        window.count = roundedUp(window.pitch * window.height);
    }

    // The part of the window in image 1, with an end to each row.
    const FlowWindow* cutOut(const Part& window, const Part& part)
    {
        setSize(part_, part);
        const auto copy = [&](const float* from, float* to) {
            from += static_cast<uint64_t>(part.top - window.top) * whole_.pitch +
                    static_cast<uint64_t>(part.left - window.left);
            memset(to, 0, sizeof(float) * part_.count);
            for (uint32_t y = 0; y < part_.height; ++y)
                memcpy(to + size_t{y} * part_.pitch, from + size_t{y} * whole_.pitch, sizeof(float) * part_.width);
        };
        copy(whole_.samples, part_.samples);
        copy(whole_.dx, part_.dx);
        copy(whole_.dy, part_.dy);
        return &part_;
    }

    const int32_t halfX_, halfY_, width_, height_;
    const Options options_;
    Scratch<float> memory_;
    float *margin_, *pixels_;
    FlowWindow whole_, part_;
    uint8_t* bytes_;
};

// What all forms take.
struct Features {
    const float* in;
    float* out;
    int32_t* status;
    int count;
};

Level levelOf(const void* pixels, uint32_t width, uint32_t height, size_t stride)
{
    if (pixels == nullptr || width == 0 || height == 0) return {nullptr, 0, 0, 0};
    return {static_cast<const uint8_t*>(pixels), width, height, stride};
}
Level levelOf(const odxPyrLevel& level)
{
    return levelOf(level.ptr, level.width, level.height, level.width);
}
Level levelOf(const odxPyrLevelStrided& level)
{
    return levelOf(level.ptr, level.width, level.height, level.stride);
}

// With `estimates` for the places in image 2.
template <class Record>
odxStatus trackFeatures(const Level& one, const Level& other, const Record* onePyramid, const Record* otherPyramid,
                        int numLevels, const Features& features, const float* estimates, int windowWidth,
                        int windowHeight, const Options& options)
{
    constexpr int kLeastHalf = 2;
    if (features.count < 1 || windowWidth >> 1 < kLeastHalf || windowHeight >> 1 < kLeastHalf || numLevels < 0)
        return ONDRIX_SUCCESS;
    Tracker tracker(windowWidth, windowHeight, options);
    if (!tracker) return ONDRIX_NO_MEMORY;

    const auto count = static_cast<size_t>(features.count);
    memmove(features.out, estimates, 2 * count * sizeof(float));
    std::fill_n(features.status, count, Tracker::kTracked);
    for (int l = numLevels - 1; l >= 0; --l) {
        const Level here = l == 0 ? one : levelOf(onePyramid[l]),
                    there = l == 0 ? other : levelOf(otherPyramid[l]);
        const float scale = ldexpf(1, -l), toLevel = l == numLevels - 1 ? scale : 2;
        for (size_t i = 0; i < count; ++i) {
            if (features.status[i] != Tracker::kTracked) continue;
            float* const out = features.out + 2 * i;
            const Point point = {features.in[2 * i] * scale, features.in[2 * i + 1] * scale};
            Point guess = {out[0] * toLevel, out[1] * toLevel};
            if (!tracker.holds(here, point)) {
                features.status[i] = Tracker::kOutside;
                continue;
            }
            features.status[i] = tracker.track(here, there, point, guess);
            out[0] = guess.x;
            out[1] = guess.y;
        }
    }
    return ONDRIX_SUCCESS;
}

Options optionsOf(int iterationLimit, float epsilon, int32_t mode)
{
    constexpr int kMostIterations = 100, kUsualIterations = 30;
    constexpr float kMostEpsilon = 10, kUsualEpsilon = 0.0009F;
    Options options = {std::clamp(iterationLimit, 1, kMostIterations), epsilon};
    if (epsilon < 0) options.epsilon = 0;
    if (epsilon > kMostEpsilon) options.epsilon = kMostEpsilon;
    if (mode == 0) options.epsilon = kUsualEpsilon;
    if (mode == 1) options.iterations = kUsualIterations;
    return options;
}

// ---- inner loops ----

float sampleAt(const FlowSamples& at, uint32_t i)
{
    const uint8_t *const above = at.bytes + i, *const below = above + at.pitch;
    const auto between = [&](const uint8_t* p) {
        return (1 - at.fx) * static_cast<float>(p[0]) + at.fx * static_cast<float>(p[1]);
    };
    return (1 - at.fy) * between(above) + at.fy * between(below);
}

struct Sums {
    float of[kFlowSums] = {};

    float total()
    {
        for (uint32_t n = kFlowSums / 2; n > 0; n /= 2) {
            for (uint32_t k = 0; k < n; ++k)
                of[k] += of[k + n];
        }
        return of[0];
    }
};

} // namespace

extern "C" {

void odxFlowSampleC(const FlowSamples* at, float* samples)
{
    for (uint32_t i = 0; i < at->count; ++i)
        samples[i] = sampleAt(*at, i);
}

void odxFlowGradientsC(const float* margin, const FlowWindow* window)
{
    constexpr float kOuter = 0.09375F, kInner = 0.3125F;
    const size_t width = window->width, from = width + 3;
    size_t end = 0;
    for (size_t y = 0; y < window->height; ++y) {
        const float *const above = margin + y * from, *const here = above + from, *const below = here + from;
        float *const samples = window->samples + end, *const dx = window->dx + end, *const dy = window->dy + end;
        for (size_t x = 0; x < width; ++x) {
            samples[x] = here[x + 1];
            dx[x] = ((above[x + 2] - above[x]) + (below[x + 2] - below[x])) * kOuter +
                    (here[x + 2] - here[x]) * kInner;
            dy[x] = ((below[x] - above[x]) + (below[x + 2] - above[x + 2])) * kOuter +
                    (below[x + 1] - above[x + 1]) * kInner;
        }
        end += width;
        samples[width] = dx[width] = dy[width] = 0;
        ++end;
    }
    for (; end < window->count; ++end)
        window->samples[end] = window->dx[end] = window->dy[end] = 0;
}

void odxFlowMomentsC(const FlowWindow* window, float* sums)
{
    const float *const dx = window->dx, *const dy = window->dy;
    Sums xx, xy, yy;
    for (uint32_t i = 0; i < window->count; i += kFlowSums) {
        for (uint32_t k = 0; k < kFlowSums; ++k) {
            xx.of[k] += dx[i + k] * dx[i + k];
            xy.of[k] += dx[i + k] * dy[i + k];
            yy.of[k] += dy[i + k] * dy[i + k];
        }
    }
    sums[0] = xx.total();
    sums[1] = xy.total();
    sums[2] = yy.total();
}

void odxFlowMismatchC(const FlowSamples* at, const FlowWindow* window, float* sums)
{
    Sums x, y;
    for (uint32_t i = 0; i < window->count; i += kFlowSums) {
        for (uint32_t k = 0; k < kFlowSums; ++k) {
            const float difference = window->samples[i + k] - sampleAt(*at, i + k);
            x.of[k] += difference * window->dx[i + k];
            y.of[k] += difference * window->dy[i + k];
        }
    }
    sums[0] = x.total();
    sums[1] = y.total();
}

// They differ in their gradients, which nobody looks at.
void odxTrackLKOpticalFlowf32C(const uint8_t* src1, const uint8_t* src2, unsigned int width, unsigned int height,
                               const odxPyrLevel* src1Pyr, const odxPyrLevel* src2Pyr, const odxPyrLevel*,
                               const odxPyrLevel*, const float* featureXY, float* featureXY_out,
                               int32_t* featureStatus, int featureCount, int windowWidth, int windowHeight,
                               int iterationLimit, int numLevels, unsigned int, unsigned int, float, unsigned int)
{
    odxTrackLKOpticalFlowu8_v2C(src1, src2, width, height, width, src1Pyr, src2Pyr, featureXY, featureXY_out,
                                featureStatus, featureCount, windowWidth, windowHeight, iterationLimit, numLevels);
}

void odxTrackLKOpticalFlowu8C(const uint8_t* src1, const uint8_t* src2, unsigned int width, unsigned int height,
                              const odxPyrLevel* src1Pyr, const odxPyrLevel* src2Pyr, const odxPyrLevel*,
                              const odxPyrLevel*, const float* featureXY, float* featureXY_out,
                              int32_t* featureStatus, int featureCount, int windowWidth, int windowHeight,
                              int iterationLimit, int numLevels, unsigned int, unsigned int, float, unsigned int)
{
    odxTrackLKOpticalFlowu8_v2C(src1, src2, width, height, width, src1Pyr, src2Pyr, featureXY, featureXY_out,
                                featureStatus, featureCount, windowWidth, windowHeight, iterationLimit, numLevels);
}

void odxTrackLKOpticalFlowu8_v2C(const uint8_t* src1, const uint8_t* src2, unsigned int width, unsigned int height,
                                 unsigned int stride, const odxPyrLevel* src1Pyr, const odxPyrLevel* src2Pyr,
                                 const float* featureXY, float* featureXY_out, int32_t* featureStatus,
                                 int featureCount, int windowWidth, int windowHeight, int iterationLimit,
                                 int numLevels)
{
    trackFeatures(levelOf(src1, width, height, stride), levelOf(src2, width, height, stride), src1Pyr, src2Pyr,
                  numLevels, {featureXY, featureXY_out, featureStatus, featureCount}, featureXY, windowWidth,
                  windowHeight, optionsOf(iterationLimit, 0, 0));
}

odxStatus odxTrackLKOpticalFlowu8_v3C(const uint8_t* src1, const uint8_t* src2, unsigned int width,
                                      unsigned int height, unsigned int stride, const odxPyrLevelStrided* src1Pyr,
                                      const odxPyrLevelStrided* src2Pyr, const float* featureXY,
                                      float* featureXY_out, int32_t* featureStatus, int featureCount,
                                      int windowWidth, int windowHeight, int iterationLimit, int numLevels,
                                      const float* initialEstimate, int32_t useInitialEstimate, float epsilon,
                                      int32_t terminationMode)
{
    return trackFeatures(levelOf(src1, width, height, stride), levelOf(src2, width, height, stride), src1Pyr,
                         src2Pyr, numLevels, {featureXY, featureXY_out, featureStatus, featureCount},
                         useInitialEstimate != 0 ? initialEstimate : featureXY, windowWidth, windowHeight,
                         optionsOf(iterationLimit, epsilon, terminationMode));
}
}
