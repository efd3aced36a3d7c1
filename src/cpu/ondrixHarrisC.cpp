// Harris corners: reference rows, and what all columns share.
#include "cpu/ondrixHarrisC.h"

#include "cpu/ondrixHarris.h"
#include "frame/log.h"

#include <algorithm>
#include <math.h>

namespace odx::harris
{

namespace
{

constexpr uint32_t kChunk = 256; // columns that are smoothed at a time

// Reference rows, on a ring of five rows of products.
class Rows
{
public:
    static constexpr uint32_t kLeastWidth = 1;

    static uint64_t responseBytes(uint32_t width) { return sizeof(int32_t) * uint64_t{width}; }
    static uint64_t gradientBytes(uint32_t width) { return kRing * kPlanes * sizeof(int16_t) * uint64_t{width}; }
    static uint64_t smoothedBytes(uint32_t width) { return kPlanes * sizeof(int16_t) * uint64_t{width}; }

    Rows(const View& view, const Memory& memory)
        : view_(view), products_(memory.grads), smoothed_(planesAt(memory.blurgrads))
    {
    }

    void push(uint32_t y)
    {
        const Planes out = ringRow(y - 1);
        gradients(view_.row(y - 1), view_.row(y), view_.row(y + 1), out);
        oldest_ = y >= kRing ? y - kRing : 0; // of the ring's rows, which begin with image row 1
    }

    const Planes& smooth()
    {
        const Planes ring[kRing] = {ringRow(oldest_), ringRow(oldest_ + 1), ringRow(oldest_ + 2),
                                    ringRow(oldest_ + 3), ringRow(oldest_ + 4)};
        smoothPlane(ring, &Planes::xx);
        smoothPlane(ring, &Planes::yy);
        smoothPlane(ring, &Planes::xy);
        return smoothed_;
    }

    void harrisRow(const Planes& planes, int32_t* __restrict out) const
    {
        const int16_t *const xx = planes.xx, *const yy = planes.yy, *const xy = planes.xy;
        const size_t end = view_.width - kMargin;
        for (size_t x = kMargin; x < end; ++x)
            out[x] = harrisResponse(xx[x], yy[x], xy[x]);
    }

    // The square root of a whole number below 2^52 rounds down exactly in double precision.
    void eigenvalueRow(const Planes& planes, int32_t* __restrict out) const
    {
        const int16_t *const xx = planes.xx, *const yy = planes.yy, *const xy = planes.xy;
        const size_t end = view_.width - kMargin;
        for (size_t x = kMargin; x < end; ++x) {
            const int32_t difference = xx[x] - yy[x];
            const double square = difference * difference + 4 * (xy[x] * xy[x]);
            out[x] = (256 * (xx[x] + yy[x]) - static_cast<int32_t>(__builtin_sqrt(square * 65536))) >> 1;
        }
    }

    static bool anyAbove(const int32_t* responses, uint32_t count, int32_t limit)
    {
        int32_t largest = INT32_MIN;
        for (uint32_t x = 0; x < count; ++x)
            largest = std::max(largest, responses[x]);
        return largest > limit;
    }

    template <class F>
    static void maxima(const Recent& recent, uint32_t from, uint32_t to, int32_t threshold, F f)
    {
        for (uint32_t count; from < to; from += count) {
            count = std::min(kSearched, to - from);
            int32_t limit[kSearched];
            if (!limits(recent, from, count, threshold, limit)) continue;
            const int32_t* const row = recent.row[2] + from;
            for (uint32_t x = 0; x < count; ++x) {
                if (row[x] > limit[x] && !f(from + x)) return;
            }
        }
    }

private:
    static constexpr uint32_t kPlanes = 3;

    Planes planesAt(int16_t* row) const { return {row, row + view_.width, row + 2 * size_t{view_.width}}; }
    Planes ringRow(uint32_t index) const
    {
        return planesAt(products_ + size_t{index % kRing} * kPlanes * view_.width);
    }

    // What each response must exceed to be a maximum. False when none exceeds the threshold.
    static bool limits(const Recent& recent, uint32_t from, uint32_t count, int32_t threshold,
                       int32_t* __restrict limit)
    {
        const int32_t* row[kRing];
        for (uint32_t i = 0; i < kRing; ++i)
            row[i] = recent.row[i] + from - 2;
        if (!anyAbove(row[2] + 2, count, threshold)) return false;

        Neighbours n;
        for (size_t x = 0; x < size_t{count} + 4; ++x) {
            n.around[x] = std::max(std::max(row[0][x], row[1][x]), std::max(row[3][x], row[4][x]));
            n.column[x] = std::max(n.around[x], row[2][x]);
        }
        for (size_t x = 0; x < count; ++x) {
            const int32_t beside =
                std::max(std::max(n.column[x], n.column[x + 1]), std::max(n.column[x + 3], n.column[x + 4]));
            limit[x] = std::max(std::max(beside, n.around[x + 2]), threshold);
        }
        return true;
    }

    void gradients(const uint8_t* __restrict above, const uint8_t* __restrict here,
                   const uint8_t* __restrict below, const Planes& out) const
    {
        int16_t* __restrict const xx = out.xx, * __restrict const yy = out.yy, * __restrict const xy = out.xy;
        const size_t end = view_.width - 1;
        for (size_t x = 1; x < end; ++x) {
            const auto dx = static_cast<int16_t>((here[x + 1] - here[x - 1]) >> 1);
            const auto dy = static_cast<int16_t>((below[x] - above[x]) >> 1);
            xx[x] = static_cast<int16_t>(dx * dx);
            yy[x] = static_cast<int16_t>(dy * dy);
            xy[x] = static_cast<int16_t>(dx * dy);
        }
    }

    void smoothPlane(const Planes (&ring)[kRing], int16_t* Planes::*plane)
    {
        int16_t* __restrict const out = smoothed_.*plane;
        const uint32_t end = view_.width - kMargin;
        for (uint32_t from = kMargin, count; from < end; from += count) {
            count = std::min(kChunk, end - from);
            int32_t column[kChunk + 4]; // from column `from` - 2 on
            const int16_t* row[kRing];
            for (uint32_t i = 0; i < kRing; ++i)
                row[i] = ring[i].*plane + from - 2;
            for (size_t x = 0; x < count + 4; ++x)
                column[x] = row[0][x] + row[4][x] + 4 * (row[1][x] + row[3][x]) + 6 * row[2][x];
            for (size_t x = 0; x < count; ++x) {
                const int32_t sum =
                    column[x] + column[x + 4] + 4 * (column[x + 1] + column[x + 3]) + 6 * column[x + 2];
                out[from + x] = static_cast<int16_t>(sum >> 8);
            }
        }
    }

    const View view_;
    int16_t* const products_;
    const Planes smoothed_;
    uint32_t oldest_ = 0;
};

} // namespace

Memory takeMemory(uint64_t cornerBytes, uint64_t gradsBytes, uint64_t blurgradsBytes)
{
    const auto take = [](uint64_t bytes) -> void* {
        return bytes > UINT32_MAX / 2 ? nullptr : odxGetScratchBufferUnaligned_(static_cast<uint32_t>(bytes));
    };
    auto* const corner = static_cast<int32_t*>(take(cornerBytes));
    auto* const grads = static_cast<int16_t*>(take(gradsBytes));
    auto* const blurgrads = static_cast<int16_t*>(take(blurgradsBytes));
    if (!(corner && grads && blurgrads)) releaseMemory({corner, grads, blurgrads});
    ODX_FATAL_ASSERT("ondrixHarrisC", __LINE__, corner && grads && blurgrads);
    return {corner, grads, blurgrads};
}

void releaseMemory(const Memory& memory)
{
    odxReleaseScratchBuffer_(memory.blurgrads);
    odxReleaseScratchBuffer_(memory.grads);
    odxReleaseScratchBuffer_(memory.corner);
}

void logNoCandidates(const char* operation)
{
    ODX_LOG(Error, "Error - can not allocate scratch buffer for %s", operation);
}

namespace
{

constexpr auto earlier = [](const Candidate& a, const Candidate& b) { return a.y != b.y ? a.y < b.y : a.x < b.x; };
constexpr auto stronger = [](const Candidate& a, const Candidate& b) {
    return a.response != b.response ? a.response > b.response : earlier(a, b);
};

// Kept corners in cells as large as the least distance, so that only the cells around a corner need a look.
class Cells
{
public:
    Cells(const View& view, uint32_t minDistance)
        : distance_(minDistance), columns_(view.width / minDistance + 1), rows_(view.height / minDistance + 1),
          perCell_(1.0 / minDistance), first_(uint64_t{columns_} * rows_)
    {
        if (first_) std::fill(first_.get(), first_.get() + size_t{columns_} * rows_, kNone);
    }
    explicit operator bool() const { return static_cast<bool>(first_); }

    // Adds the candidate, unless a kept one is too near. `next` links the candidates of a cell.
    bool add(const Candidate* candidates, uint32_t* next, uint32_t index)
    {
        const Candidate& candidate = candidates[index];
        const uint32_t column = cellOf(candidate.x), row = cellOf(candidate.y);
        for (uint32_t r = row - (row > 0); r <= std::min(row + 1, rows_ - 1); ++r) {
            for (uint32_t c = column - (column > 0); c <= std::min(column + 1, columns_ - 1); ++c) {
                for (uint32_t i = cell(c, r); i != kNone; i = next[i]) {
                    if (near(candidates[i], candidate)) return false;
                }
            }
        }
        next[index] = cell(column, row);
        cell(column, row) = index;
        return true;
    }

private:
    static constexpr uint32_t kNone = UINT32_MAX;

    // Rounded, quotients are off by less than 1 / distance, so that corners that are nearer are in cells side by
    // side.
    uint32_t cellOf(uint32_t place) const { return static_cast<uint32_t>(place * perCell_); }
    uint32_t& cell(uint32_t column, uint32_t row) const { return first_[size_t{row} * columns_ + column]; }
    bool near(const Candidate& a, const Candidate& b) const
    {
        const int64_t dx = int64_t{a.x} - b.x, dy = int64_t{a.y} - b.y;
        return dx * dx + dy * dy < int64_t{distance_} * distance_;
    }

    const uint32_t distance_, columns_, rows_;
    const double perCell_;
    const Scratch<uint32_t> first_;
};

} // namespace

void writeStrongest(Candidate* candidates, uint32_t candidateCount, const CornerOutput& output)
{
    const uint32_t count = std::min(candidateCount, output.capacity);
    if (count < candidateCount) {
        std::nth_element(candidates, candidates + count, candidates + candidateCount, stronger);
        std::sort(candidates, candidates + count, earlier);
    }
    for (size_t i = 0; i < count; ++i) {
        output.xy[2 * i] = candidates[i].x;
        output.xy[2 * i + 1] = candidates[i].y;
    }
    *output.count = count;
}

void writeSpread(const View& view, Candidate* candidates, uint32_t candidateCount, float qualityLevel,
                 uint32_t minDistance, const CornerOutput& output)
{
    if (candidateCount == 0) return;
    // Beyond the image's diagonal all distances do the same.
    minDistance =
        static_cast<uint32_t>(std::min<uint64_t>(std::max(minDistance, 1u), uint64_t{view.width} + view.height));
    Cells cells(view, minDistance);
    const Scratch<uint32_t> next(candidateCount);
    if (!cells || !next) return logNoCandidates("odxGoodFeatureToTracku8");

    // The strongest ones are put in order as far as they are needed, each time twice as many.
    const auto sortFrom = [=](uint32_t begin, uint64_t wanted) {
        const auto end = static_cast<uint32_t>(std::min<uint64_t>(candidateCount, wanted));
        if (end < candidateCount)
            std::nth_element(candidates + begin, candidates + end, candidates + candidateCount, stronger);
        std::sort(candidates + begin, candidates + end, stronger);
        return end;
    };
    uint32_t sorted = sortFrom(0, std::max<uint64_t>(uint64_t{4} * output.capacity, 64));
    const double least = static_cast<double>(qualityLevel) * candidates[0].response;
    uint32_t count = 0;
    for (uint32_t i = 0; i < candidateCount && count < output.capacity; ++i) {
        if (i == sorted) sorted = sortFrom(sorted, uint64_t{2} * sorted);
        if (candidates[i].response < least) break;
        if (!cells.add(candidates, next.get(), i)) continue;
        output.xy[2 * size_t{count}] = candidates[i].x;
        output.xy[2 * size_t{count} + 1] = candidates[i].y;
        ++count;
    }
    *output.count = count;
}

// ---- refinement ----

namespace
{

constexpr uint32_t kMaxHalfWindow = 15;

// A point between pixels.
struct Point {
    double x, y;
};

// The window around a point, with a pixel more on every side, sampled between pixels.
class Patch
{
public:
    // Whether all pixels that it needs are in the image.
    bool sample(const View& view, Point centre, uint32_t halfWindow)
    {
        reach_ = halfWindow + 1;
        const double left = floor(centre.x) - reach_, top = floor(centre.y) - reach_;
        const uint32_t size = 2 * reach_ + 1;
        const double fx = centre.x - floor(centre.x), fy = centre.y - floor(centre.y);
        const uint32_t toRight = fx > 0 ? 1 : 0, down = fy > 0 ? 1 : 0; // to the other pixels of each sample
        // Comparisons that NaN fails.
        if (!(left >= 0 && top >= 0 && left + size + toRight <= view.width && top + size + down <= view.height))
            return false;
        for (uint32_t y = 0; y < size; ++y) {
            const uint8_t* const upper = view.row(static_cast<size_t>(top) + y) + static_cast<size_t>(left);
            const uint8_t* const lower = upper + view.stride * down;
            for (uint32_t x = 0; x < size; ++x) {
                values_[y][x] = (1 - fy) * ((1 - fx) * upper[x] + fx * upper[x + toRight]) +
                                fy * ((1 - fx) * lower[x] + fx * lower[x + toRight]);
            }
        }
        return true;
    }

    // The offset from the centre of the point that the gradients are perpendicular to, as seen from each pixel.
    // Whether there is one.
    bool meetingPoint(Point& offset) const
    {
        double xx = 0, yy = 0, xy = 0, bx = 0, by = 0;
        const int half = static_cast<int>(reach_) - 1;
        for (int j = -half; j <= half; ++j) {
            for (int i = -half; i <= half; ++i) {
                const double weight = (half + 1 - abs(i)) * (half + 1 - abs(j));
                const double gx = at(i + 1, j) - at(i - 1, j), gy = at(i, j + 1) - at(i, j - 1);
                xx += weight * gx * gx;
                yy += weight * gy * gy;
                xy += weight * gx * gy;
                bx += weight * gx * (gx * i + gy * j);
                by += weight * gy * (gx * i + gy * j);
            }
        }
        const double determinant = xx * yy - xy * xy, trace = xx + yy;
        if (!(determinant > 1e-6 * trace * trace)) return false;
        offset = {(yy * bx - xy * by) / determinant, (xx * by - xy * bx) / determinant};
        return true;
    }

private:
    double at(int x, int y) const
    {
        return values_[static_cast<uint32_t>(y) + reach_][static_cast<uint32_t>(x) + reach_];
    }

    uint32_t reach_ = 0;
    double values_[2 * kMaxHalfWindow + 3][2 * kMaxHalfWindow + 3];
};

Point refined(const View& view, Point start, uint32_t halfWindow, uint32_t maxIterations, double epsilon)
{
    Patch patch;
    Point point = start;
    for (uint32_t i = 0; i < maxIterations; ++i) {
        Point step = {};
        if (!patch.sample(view, point, halfWindow) || !patch.meetingPoint(step)) return start;
        point = {point.x + step.x, point.y + step.y};
        if (!(fabs(point.x - start.x) <= halfWindow && fabs(point.y - start.y) <= halfWindow)) return start;
        if (step.x * step.x + step.y * step.y <= epsilon * epsilon) break;
    }
    return point;
}

// ---- maxima along a line ----

struct Line {
    float startX, startY, dirX, dirY;

    // The pixel of a sample.
    size_t x(uint32_t k) const { return static_cast<size_t>(startX + static_cast<float>(k) * dirX + 0.5f); }
    size_t y(uint32_t k) const { return static_cast<size_t>(startY + static_cast<float>(k) * dirY + 0.5f); }
};

// Whether the image's gradient at the pixel points along the line, by a Sobel kernel on rows `pitch` apart.
bool alongLine(const uint8_t* p, ptrdiff_t pitch, const Line& line, float maxAngleDiff)
{
    const int gx = (p[-pitch + 1] - p[-pitch - 1]) + 2 * (p[1] - p[-1]) + (p[pitch + 1] - p[pitch - 1]);
    const int gy = (p[pitch - 1] - p[-pitch - 1]) + (p[pitch + 1] - p[-pitch + 1]) + 2 * (p[pitch] - p[-pitch]);
    const int square = gx * gx + gy * gy;
    if (square == 0) return false;
    const float along = static_cast<float>(gx) * line.dirX + static_cast<float>(gy) * line.dirY;
    return !(along * along / static_cast<float>(square) < maxAngleDiff);
}

} // namespace

} // namespace odx::harris

using namespace odx;
using harris::View;

extern "C" {

void odxCornerHarrisu8C(const uint8_t* src, unsigned int width, unsigned int height, unsigned int stride,
                        unsigned int border, uint32_t* xy, unsigned int nCornersMax, uint32_t* numcorners,
                        int threshold)
{
    const View view = {src, width, height, stride};
    harris::corners<harris::Rows>(view, border, threshold, {xy, nullptr, nCornersMax, numcorners}, fast::NoMask());
}

void odxCornerHarrisInMasku8C(const uint8_t* srcImg, unsigned int width, unsigned int height, unsigned int stride,
                              unsigned int border, uint32_t* xy, unsigned int nCornersMax, uint32_t* numcorners,
                              int threshold, const uint8_t* bitMask, unsigned int maskWidth,
                              unsigned int maskHeight)
{
    const View view = {srcImg, width, height, stride};
    harris::cornersInMask<harris::Rows>(view, border, threshold, {xy, nullptr, nCornersMax, numcorners}, bitMask,
                                        maskWidth, maskHeight);
}

void odxCornerHarrisAdaptiveu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, unsigned int border, uint32_t* xy,
                                unsigned int nCornersMax, uint32_t* nCorners, int threshold)
{
    const View view = {src, srcWidth, srcHeight, srcStride};
    harris::strongestCorners<harris::Rows>(view, border, threshold, {xy, nullptr, nCornersMax, nCorners});
}

void odxCornerHarrisScoreu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, unsigned int border, uint32_t* xy, int32_t* scores,
                             unsigned int nCornersMax, uint32_t* nCorners, int threshold)
{
    const View view = {src, srcWidth, srcHeight, srcStride};
    harris::corners<harris::Rows>(view, border, threshold, {xy, scores, nCornersMax, nCorners}, fast::NoMask());
}

odxStatus odxLocalHarrisMaxu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, unsigned int x, unsigned int y, unsigned int radius,
                               uint32_t* maxX, uint32_t* maxY, int32_t* maxResponse)
{
    const View view = {src, srcWidth, srcHeight, srcStride};
    return harris::localMaximum<harris::Rows>(view, x, y, radius, maxX, maxY, maxResponse);
}

void odxGoodFeatureToTracku8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, unsigned int border, uint32_t* xy, unsigned int nCornersMax,
                              uint32_t* nCorners, float qualityLevel, unsigned int minDistance)
{
    const View view = {src, srcWidth, srcHeight, srcStride};
    harris::goodFeatures<harris::Rows>(view, border, qualityLevel, minDistance,
                                       {xy, nullptr, nCornersMax, nCorners});
}

void odxCornerRefineSubPixu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, float* xy, unsigned int nCorners, unsigned int halfWindow,
                              unsigned int maxIterations, float epsilon)
{
    const View view = {src, srcWidth, srcHeight, srcStride};
    for (size_t i = 0; i < nCorners; ++i, xy += 2) {
        const harris::Point point = harris::refined(view, {static_cast<double>(xy[0]), static_cast<double>(xy[1])},
                                                    halfWindow, maxIterations, static_cast<double>(epsilon));
        xy[0] = static_cast<float>(point.x);
        xy[1] = static_cast<float>(point.y);
    }
}

uint32_t odxFindMultipleMaximau8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, const float* pos, const float* dir,
                                  unsigned int maxDistance, unsigned int maxNumMaxima, int minGradient,
                                  float maxAngleDiff, float* maxima, uint32_t* numMaxima)
{
    const auto r = static_cast<float>(maxDistance);
    const harris::Line line = {pos[0] - r * dir[0], pos[1] - r * dir[1], dir[0], dir[1]};
    const auto allowed = [&](float end, uint32_t length) { // NaN is not
        return end >= r + 2 && end <= static_cast<float>(int64_t{length} - maxDistance - 2);
    };
    if (!allowed(line.startX, srcWidth) || !allowed(pos[0] + r * dir[0], srcWidth) ||
        !allowed(line.startY, srcHeight) || !allowed(pos[1] + r * dir[1], srcHeight)) {
        return 1;
    }
    *numMaxima = 0;
    const size_t count = 2 * size_t{maxDistance} + 1;
    const Scratch<int16_t> memory(2 * count, 16);
    if (!memory) return 1;
    if (maxDistance == 0 || maxNumMaxima == 0) return 0;

    // Samples are where the stride says; their vertical neighbours, and all that the direction is taken from, are
    // where rows without padding would have them.
    const ptrdiff_t pitch = srcWidth;
    const auto pixel = [&](uint32_t k, size_t rowPitch) { return src + line.y(k) * rowPitch + line.x(k); };
    int16_t *const samples = memory.get(), *const slopes = samples + count;
    for (uint32_t k = 0; k < count; ++k) {
        const uint8_t* const p = pixel(k, srcStride);
        samples[k] = static_cast<int16_t>((p[-1] + p[0] + p[1] + p[-pitch] + p[pitch]) >> 2);
    }
    for (size_t k = 1; k < count - 1; ++k)
        slopes[k] = static_cast<int16_t>(samples[k + 1] - samples[k - 1]);
    slopes[0] = slopes[1];
    slopes[count - 1] = slopes[count - 2];

    for (uint32_t k = 1; k < count - 1; ++k) {
        if (slopes[k] < minGradient || slopes[k - 1] > slopes[k] || slopes[k] <= slopes[k + 1]) continue;
        if (!harris::alongLine(pixel(k, srcWidth), pitch, line, maxAngleDiff)) continue;
        maxima[*numMaxima] = static_cast<float>(static_cast<int64_t>(k) - maxDistance);
        if (++*numMaxima == maxNumMaxima) break;
    }
    return 0;
}
}
