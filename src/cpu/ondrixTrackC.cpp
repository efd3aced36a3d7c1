// Tracking by moments of windows, and by blocks.
#include "cpu/ondrixTrackC.h"

#include "cpu/image.h"

#include <algorithm>
#include <math.h>
#include <string.h>

using namespace odx;

namespace
{

// What is less than this counts as no weight.
constexpr double kLeastWeight = 2.220446e-16;

template <class T>
struct Weights {
    const T* src;
    uint32_t width, height, stride;

    const T* row(uint32_t y) const { return rowOf(src, stride, y); }
};

constexpr uint32_t kSums = 8;

template <class Sum>
Sum total(Sum (&sums)[kSums])
{
    for (uint32_t n = kSums / 2; n > 0; n /= 2) {
        for (uint32_t k = 0; k < n; ++k)
            sums[k] += sums[k + n];
    }
    return sums[0];
}

// Calls add(x, k) for each column of a row with the sums that it goes to.
template <class Add>
void eachColumn(uint32_t count, Add add)
{
    const uint32_t whole = count / kSums * kSums;
    for (uint32_t x = 0; x < whole; x += kSums) {
        for (uint32_t k = 0; k < kSums; ++k)
            add(x + k, k);
    }
    for (uint32_t x = whole; x < count; ++x)
        add(x, x - whole);
}

template <class Sum, class T>
odxPartMoments<Sum> momentsOfPart(const T* row, uint32_t count)
{
    Sum sums[kSums] = {}, byColumn[kSums] = {};
    eachColumn(count, [&](uint32_t x, uint32_t k) {
        const auto weight = static_cast<Sum>(row[x]);
        sums[k] += weight;
        byColumn[k] += weight * static_cast<Sum>(static_cast<int32_t>(x)); // with a sign, conversions are short
    });
    return {total(sums), total(byColumn)};
}
odxPartMoments<uint32_t> momentsOf(const uint8_t* row, uint32_t count)
{
    odxPartMoments<uint32_t> m;
    momentsOfPartu8_(row, count, &m);
    return m;
}
odxPartMoments<int64_t> momentsOf(const int32_t* row, uint32_t count)
{
    return momentsOfPart<int64_t>(row, count);
}
odxPartMoments<double> momentsOf(const float* row, uint32_t count)
{
    return momentsOfPart<double>(row, count);
}

struct Moments {
    double m00 = 0, m10 = 0, m01 = 0;
};

// About the window's corner.
template <class T>
Moments momentsOf(const Weights<T>& weights, const odxWindow& window)
{
    Moments m;
    for (uint32_t y = 0; y < window.height; ++y) {
        const T* row = weights.row(window.y + y) + window.x;
        for (uint32_t from = 0, count; from < window.width; from += count, row += count) {
            count = std::min(window.width - from, kTrackedPart);
            const auto part = momentsOf(row, count);
            const auto sum = static_cast<double>(part.sum), atColumns = static_cast<double>(part.atColumns);
            m.m00 += sum;
            m.m10 += atColumns + sum * from;
            m.m01 += sum * y;
        }
    }
    return m;
}

struct Spread {
    double xx = 0, xy = 0, yy = 0;
};

// About a centre.
template <class T>
Spread spreadOf(const Weights<T>& weights, const odxWindow& window, double xc, double yc)
{
    Spread spread;
    for (uint32_t y = 0; y < window.height; ++y) {
        const T* const row = weights.row(window.y + y) + window.x;
        double sums[kSums] = {}, byU[kSums] = {}, byUU[kSums] = {};
        eachColumn(window.width, [&](uint32_t x, uint32_t k) {
            const double weight = static_cast<double>(row[x]), u = window.x + x - xc;
            sums[k] += weight;
            byU[k] += weight * u;
            byUU[k] += weight * u * u;
        });
        const double v = window.y + y - yc;
        spread.xx += total(byUU);
        spread.xy += total(byU) * v;
        spread.yy += total(sums) * v * v;
    }
    return spread;
}

void clampSide(uint32_t& at, uint32_t& size, uint32_t limit)
{
    at = std::min(at, limit - 1);
    size = std::max(std::min(limit - at, size), 1U);
}

template <class T>
void clampTo(const Weights<T>& weights, odxWindow& window)
{
    clampSide(window.x, window.width, weights.width);
    clampSide(window.y, window.height, weights.height);
}

// A coordinate that moved by a whole number, inside the image.
uint32_t moved(uint32_t at, double by, uint32_t limit)
{
    return static_cast<uint32_t>(std::clamp(at + by, 0.0, static_cast<double>(limit - 1)));
}

template <class T>
uint32_t meanShift(const Weights<T>& weights, odxWindow* window, uint32_t iterationLimit, float epsilon)
{
    const auto wide = static_cast<double>(epsilon), least = trunc(wide * wide + 0.5);
    odxWindow w = *window;
    uint32_t done = 0;
    while (done < iterationLimit) {
        clampTo(weights, w);
        const Moments m = momentsOf(weights, w);
        if (fabs(m.m00) < kLeastWeight) break;
        const double dx = round(m.m10 / m.m00 - w.width * 0.5), dy = round(m.m01 / m.m00 - w.height * 0.5);
        if (!(fabs(dx) < HUGE_VAL && fabs(dy) < HUGE_VAL && fabs(m.m00) < HUGE_VAL)) break;
        w.x = moved(w.x, dx, weights.width);
        w.y = moved(w.y, dy, weights.height);
        clampTo(weights, w);
        if (dx * dx + dy * dy < least) break;
        ++done;
    }
    *window = w;
    return done;
}

struct Span {
    uint32_t from, count;
};

// The pixels from `low` to `high`, inside an image of `limit`.
Span spanOf(double low, double high, uint32_t limit)
{
    const uint32_t from = moved(0, floor(low), limit), to = moved(0, ceil(high), limit);
    return {from, to - from + 1};
}

template <class T>
uint32_t adaptiveTrack(const Weights<T>& weights, odxWindow* window, uint32_t iterationLimit, float epsilon,
                       odxTrackedEllipse* ellipse)
{
    constexpr double kAround = 10;
    const uint32_t done = meanShift(weights, window, iterationLimit, epsilon);
    clampTo(weights, *window);
    if (ellipse != nullptr) *ellipse = {};

    const auto around = [](uint32_t at, uint32_t size, uint32_t limit) {
        return spanOf(at - kAround, static_cast<double>(at) + size - 1 + kAround, limit);
    };
    const Span columns = around(window->x, window->width, weights.width),
               rows = around(window->y, window->height, weights.height);
    const odxWindow region = {columns.from, rows.from, columns.count, rows.count};
    const Moments m = momentsOf(weights, region);
    const double xc = region.x + m.m10 / m.m00, yc = region.y + m.m01 / m.m00;
    if (!(m.m00 >= kLeastWeight && fabs(xc) < HUGE_VAL && fabs(yc) < HUGE_VAL)) return done;
    const Spread spread = spreadOf(weights, region, xc, yc);
    const double a = std::max(spread.xx / m.m00, 0.0), b = spread.xy / m.m00, c = std::max(spread.yy / m.m00, 0.0);
    const double s = sqrt((a - c) * (a - c) + 4 * b * b);
    if (!(a + c + s < HUGE_VAL)) return done;

    if (ellipse != nullptr) {
        const auto axis = [](double radicand) { return static_cast<float>(4 * sqrt(std::max(radicand, 0.0))); };
        *ellipse = {static_cast<float>(xc), static_cast<float>(yc), axis((a + c + s) / 2), axis((a + c - s) / 2),
                    static_cast<float>(atan2(2 * b, a - c) / 2)};
    }
    const Span newColumns = spanOf(xc - 2 * sqrt(a), xc + 2 * sqrt(a), weights.width),
               newRows = spanOf(yc - 2 * sqrt(c), yc + 2 * sqrt(c), weights.height);
    *window = {newColumns.from, newRows.from, newColumns.count, newRows.count};
    return done;
}

// ---- block matching ----

constexpr uint32_t kBlock = 16;

struct Match {
    uint32_t sum, length;
    int32_t dx, dy;

    bool betterThan(const Match& other) const
    {
        return sum < other.sum || (sum == other.sum && length < other.length);
    }
};

// Displacements that keep a block inside the image.
int32_t leastShift(uint32_t at, uint32_t radius)
{
    return -static_cast<int32_t>(std::min(at, radius));
}
int32_t greatestShift(uint32_t at, uint32_t radius, uint32_t size)
{
    return static_cast<int32_t>(std::min(size - kBlock - at, radius));
}

} // namespace

extern "C" {

void momentsOfPartu8C(const uint8_t* row, uint32_t count, odxPartMoments<uint32_t>* moments)
{
    *moments = momentsOfPart<uint32_t>(row, count);
}

unsigned int odxMeanShiftu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, odxWindow* window, unsigned int iterationLimit, float epsilon)
{
    return meanShift(Weights<uint8_t>{src, srcWidth, srcHeight, srcStride}, window, iterationLimit, epsilon);
}
unsigned int odxMeanShifts32C(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, odxWindow* window, unsigned int iterationLimit,
                              float epsilon)
{
    return meanShift(Weights<int32_t>{src, srcWidth, srcHeight, srcStride}, window, iterationLimit, epsilon);
}
unsigned int odxMeanShiftf32C(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, odxWindow* window, unsigned int iterationLimit,
                              float epsilon)
{
    return meanShift(Weights<float>{src, srcWidth, srcHeight, srcStride}, window, iterationLimit, epsilon);
}

unsigned int odxConAdaTracku8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, odxWindow* window, unsigned int iterationLimit,
                               float epsilon, odxTrackedEllipse* ellipse)
{
    return adaptiveTrack(Weights<uint8_t>{src, srcWidth, srcHeight, srcStride}, window, iterationLimit, epsilon,
                         ellipse);
}
unsigned int odxConAdaTracks32C(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, odxWindow* window, unsigned int iterationLimit,
                                float epsilon, odxTrackedEllipse* ellipse)
{
    return adaptiveTrack(Weights<int32_t>{src, srcWidth, srcHeight, srcStride}, window, iterationLimit, epsilon,
                         ellipse);
}
unsigned int odxConAdaTrackf32C(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, odxWindow* window, unsigned int iterationLimit,
                                float epsilon, odxTrackedEllipse* ellipse)
{
    return adaptiveTrack(Weights<float>{src, srcWidth, srcHeight, srcStride}, window, iterationLimit, epsilon,
                         ellipse);
}

void odxBlockDistances16x16C(const uint8_t* block, const uint8_t* src, size_t stride, uint32_t count,
                             uint16_t* sums)
{
    for (uint32_t i = 0; i < count; ++i) {
        uint32_t sum = 0;
        for (uint32_t y = 0; y < kBlock; ++y) {
            const uint8_t *const p = block + y * kBlock, *const q = src + i + y * stride;
            for (uint32_t x = 0; x < kBlock; ++x)
                sum += static_cast<uint32_t>(p[x] > q[x] ? p[x] - q[x] : q[x] - p[x]);
        }
        sums[i] = static_cast<uint16_t>(sum); // at most 256 * 255
    }
}

void odxTrackBMOpticalFlow16x16u8C(const uint8_t* src1, const uint8_t* src2, unsigned int srcWidth,
                                   unsigned int srcHeight, unsigned int srcStride, unsigned int step,
                                   unsigned int searchRadius, int16_t* flowXY, uint16_t* sad)
{
    constexpr uint32_t kMostRadius = 255;
    uint8_t block[kBlock * kBlock];
    uint16_t sums[2 * kMostRadius + 1];
    size_t n = 0;
    for (uint64_t y = 0; y <= srcHeight - kBlock; y += step) {
        const auto top = static_cast<uint32_t>(y);
        for (uint64_t x = 0; x <= srcWidth - kBlock; x += step, ++n) {
            const auto left = static_cast<uint32_t>(x);
            for (uint32_t j = 0; j < kBlock; ++j)
                memcpy(block + j * kBlock, rowOf(src1, srcStride, top + j) + left, kBlock);
            const int32_t first = leastShift(left, searchRadius),
                          last = greatestShift(left, searchRadius, srcWidth),
                          lowest = greatestShift(top, searchRadius, srcHeight);
            Match best = {UINT32_MAX, 0, 0, 0};
            for (int32_t dy = leastShift(top, searchRadius); dy <= lowest; ++dy) {
                const uint8_t* const from = rowOf(src2, srcStride, static_cast<uint32_t>(int64_t{top} + dy)) +
                                            static_cast<uint32_t>(int64_t{left} + first);
                odxBlockDistances16x16_(block, from, srcStride, static_cast<uint32_t>(last - first + 1), sums);
                for (int32_t dx = first; dx <= last; ++dx) {
                    const uint32_t sum = sums[dx - first];
                    if (sum > best.sum) continue;
                    const Match match = {sum, static_cast<uint32_t>(dx * dx + dy * dy), dx, dy};
                    if (match.betterThan(best)) best = match;
                }
            }
            flowXY[2 * n] = static_cast<int16_t>(best.dx);
            flowXY[2 * n + 1] = static_cast<int16_t>(best.dy);
            if (sad != nullptr) sad[n] = static_cast<uint16_t>(best.sum);
        }
    }
}
}
