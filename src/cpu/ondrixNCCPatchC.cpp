// Search of 8x8 patches by normalised cross-correlation, for all columns.
#include "cpu/ondrixNCCPatchC.h"

#include "frame/log.h"
#include "frame/scratch.h"

#include <math.h>
#include <stdlib.h>
#include <string.h>

using namespace odx;

namespace
{

constexpr const char* kSource = "src/cpu/ondrixNCCPatchC";
constexpr int32_t kSide = 8, kHalf = 4, kPixels = kSide * kSide, kShift = 6;
constexpr int32_t kMostRadius = 5, kMostCandidates = 2 * kMostRadius + 1, kMostSums = kMostCandidates + kSide;

enum Status { kFound = 0, kTooWide = 1, kOutside = 2, kNothing = 3, kFlatPatch = 4, kFlatWindow = 5 };
constexpr int32_t kFlatScore = -127;

struct Patch {
    const uint8_t* pixels;
    int32_t sum = 0, variance;

    explicit Patch(const uint8_t* bytes) : pixels(bytes)
    {
        int32_t squares = 0;
        for (int32_t i = 0; i < kPixels; ++i) {
            sum += bytes[i];
            squares += bytes[i] * bytes[i];
        }
        variance = squares - ((sum * sum) >> kShift);
    }
};

struct Place {
    int32_t dx, dy;
};

struct Candidate {
    int32_t numerator, variance; // 64 times covariance and variance
};

struct Found {
    int32_t status, score;
    Place place;
};

int32_t scoreOf(const Patch& patch, const Candidate& candidate)
{
    const float ncc = static_cast<float>(candidate.numerator) * 128.0F /
                      sqrtf(static_cast<float>(patch.variance) * static_cast<float>(candidate.variance));
    const auto iNCC = static_cast<int32_t>(ncc + (ncc < 0 ? -0.5F : 0.5F));
    ODX_FATAL_ASSERT(kSource, __LINE__, (iNCC >= -128) && (iNCC <= 128));
    return iNCC;
}

float interpolateParabolicExtremum(int16_t yL, int16_t yCtr, int16_t yR)
{
    ODX_FATAL_ASSERT(kSource, __LINE__, (yL <= yCtr && yCtr >= yR) || (yL >= yCtr && yCtr <= yR));
    const auto rise = static_cast<int16_t>(yR - yL), bend = static_cast<int16_t>(4 * yCtr - 2 * (yL + yR));
    if (bend == 0) return 0;
    const float subX = static_cast<float>(rise) / static_cast<float>(bend);
    ODX_FATAL_ASSERT(kSource, __LINE__, subX>-1 && subX<1);
    return subX;
}

// The area around a centre that candidates are compared in.
class Area
{
public:
    Area(int32_t rx, int32_t ry) : rx_(rx), ry_(ry), tables_(3 * kMostSums * kMostSums)
    {
        int32_t* const sumTbl = tables_.get();
        ODX_FATAL_ASSERT(kSource, __LINE__, sumTbl);
        sum_ = sumTbl;
        sum2_ = sum_ + kMostSums * kMostSums;
        products_ = sum2_ + kMostSums * kMostSums;
    }

    // The centre is not so near to an edge that a window would cross it.
    static bool fits(uint32_t centre, int32_t radius, uint32_t size)
    {
        const auto margin = static_cast<uint32_t>(radius + kHalf);
        return centre >= margin && uint64_t{centre} + margin < size;
    }

    void fill(const uint8_t* src, size_t stride, uint32_t xCentre, uint32_t yCentre)
    {
        const uint8_t* row = src + stride * (yCentre - static_cast<uint32_t>(ry_ + kHalf)) + xCentre -
                             static_cast<uint32_t>(rx_ + kHalf);
        const int32_t width = 2 * rx_ + kSide, height = 2 * ry_ + kSide;
        memset(sum_, 0, sizeof *sum_ * static_cast<size_t>(width + 1));
        memset(sum2_, 0, sizeof *sum2_ * static_cast<size_t>(width + 1));
        for (int32_t y = 0; y < height; ++y, row += stride) {
            int32_t *const sums = sum_ + (y + 1) * kMostSums, *const squares = sum2_ + (y + 1) * kMostSums;
            int32_t sum = 0, square = 0;
            sums[0] = squares[0] = 0;
            for (int32_t x = 0; x < width; ++x) {
                sum += row[x];
                square += row[x] * row[x];
                sums[x + 1] = sums[x + 1 - kMostSums] + sum;
                squares[x + 1] = squares[x + 1 - kMostSums] + square;
            }
            // Below each other, the rows of a window are its pixels in order.
            for (int32_t x = 0; x <= 2 * rx_; ++x)
                memcpy(strips_[x] + y * kSide, row + x, kSide);
        }
    }

    // The best place for the patch; `inside` tells which ones are candidates.
    template <class Inside>
    Found search(const Patch& patch, int32_t threshold, Inside inside)
    {
        if (threshold != 0 && patch.variance < threshold) return {kFlatPatch, kFlatScore, {-1, -1}};
        odxPatchProducts8x8_(patch.pixels, strips_[0], kMostSums, static_cast<uint32_t>(2 * rx_ + 1),
                             static_cast<uint32_t>(2 * ry_ + 1), products_);
        Found best = {kNothing, 0, {0, 0}};
        float bestN2 = 1, bestVariance = 1;
        Candidate bestCandidate = {};
        for (int32_t dy = -ry_; dy <= ry_; ++dy) {
            for (int32_t dx = -rx_; dx <= rx_; ++dx) {
                if (!inside(Place{dx, dy})) continue;
                const Candidate c = candidate(patch, {dx, dy});
                if (c.numerator < 1) continue;
                const int32_t denomImage = c.variance;
                ODX_FATAL_ASSERT(kSource, __LINE__, denomImage > 0);
                const auto n = static_cast<float>(c.numerator), variance = static_cast<float>(c.variance);
                if (best.status != kNothing && !(n * n * bestVariance > bestN2 * variance)) continue;
                best = {kFound, 0, {dx, dy}};
                bestN2 = n * n;
                bestVariance = variance;
                bestCandidate = c;
            }
        }
        if (best.status == kNothing) return best;
        best.score = scoreOf(patch, bestCandidate);
        if (threshold != 0 && bestCandidate.variance <= threshold) {
            best.status = kFlatWindow;
            best.score = kFlatScore;
        }
        return best;
    }

    // Between the neighbours of the best place in one direction.
    template <class Inside>
    float refined(const Patch& patch, const Found& best, Place step, Inside inside) const
    {
        const int32_t along = step.dx != 0 ? best.place.dx : best.place.dy, r = step.dx != 0 ? rx_ : ry_;
        if (!(-r < along && along < r - 1)) return 0;
        const Place places[] = {{best.place.dx - step.dx, best.place.dy - step.dy},
                                {best.place.dx + step.dx, best.place.dy + step.dy}};
        int16_t scores[2];
        for (int32_t i = 0; i < 2; ++i) {
            if (!inside(places[i])) return 0;
            const Candidate c = candidate(patch, places[i]);
            if (c.numerator < 1) return 0;
            scores[i] = static_cast<int16_t>(scoreOf(patch, c));
        }
        return interpolateParabolicExtremum(scores[0], static_cast<int16_t>(best.score), scores[1]);
    }

private:
    // Products were made for all places.
    Candidate candidate(const Patch& patch, Place place) const
    {
        const int32_t x = place.dx + rx_, y = place.dy + ry_;
        const auto over = [x, y](const int32_t* table) {
            const int32_t *const above = table + y * kMostSums + x, *const below = above + kSide * kMostSums;
            return below[kSide] - below[0] - above[kSide] + above[0];
        };
        const int32_t sum = over(sum_);
        return {products_[x * kMostSums + y] - ((sum * patch.sum) >> kShift),
                over(sum2_) - ((sum * sum) >> kShift)};
    }

    const int32_t rx_, ry_;
    Scratch<int32_t> tables_;
    int32_t *sum_, *sum2_, *products_; // sums of what lies above and to the left; products column by column
    uint8_t strips_[kMostCandidates][kMostSums * kSide];
};

bool everywhere(Place)
{
    return true;
}

template <class Inside>
int searchAround(const uint8_t* patchPixels, const uint8_t* src, uint32_t width, uint32_t height, uint32_t xCentre,
                 uint32_t yCentre, uint32_t searchWidth, uint16_t* bestX, uint16_t* bestY, int32_t* bestNCC,
                 bool subPixel, float* subX, float* subY, int32_t threshold, Inside inside)
{
    constexpr uint32_t kTooWideFrom = 20;
    *bestX = *bestY = 0;
    *bestNCC = 0;
    if (searchWidth >= kTooWideFrom) return kTooWide;
    const auto r = static_cast<int32_t>(searchWidth >> 1);
    if (!Area::fits(xCentre, r, width) || !Area::fits(yCentre, r, height)) return kOutside;
    const int32_t sumW = 2 * r + kSide + 1;
    ODX_FATAL_ASSERT(kSource, __LINE__, sumW <= ((2*5+1)+8));

    Area area(r, r);
    area.fill(src, width, xCentre, yCentre);
    const Patch patch(patchPixels);
    const Found best = area.search(patch, threshold, inside);
    *bestNCC = best.score;
    if (best.status != kFound && best.status != kFlatWindow) return best.status;
    *bestX = static_cast<uint16_t>(static_cast<int32_t>(xCentre) + best.place.dx);
    *bestY = static_cast<uint16_t>(static_cast<int32_t>(yCentre) + best.place.dy);
    if (best.status == kFound && subPixel) {
        *subX = area.refined(patch, best, {1, 0}, inside);
        *subY = area.refined(patch, best, {0, 1}, inside);
    }
    return best.status;
}

} // namespace

extern "C" {

void odxPatchProducts8x8C(const uint8_t* patch, const uint8_t* strips, size_t pitch, uint32_t columns,
                          uint32_t count, int32_t* sums)
{
    int16_t pixels[kPixels];
    for (int32_t i = 0; i < kPixels; ++i)
        pixels[i] = patch[i];
    for (uint32_t x = 0; x < columns; ++x, strips += kSide * pitch, sums += pitch) {
        const uint8_t* strip = strips;
        for (uint32_t n = 0; n < count; ++n, strip += kSide) {
            int32_t sum = 0;
            for (int32_t i = 0; i < kPixels; ++i)
                sum += pixels[i] * strip[i];
            sums[n] = sum;
        }
    }
}

int odxNCCPatchOnSquare8x8u8C(const uint8_t* patch, const uint8_t* src, unsigned int srcWidth,
                              unsigned int srcHeight, unsigned int xSearchCenter, unsigned int ySearchCenter,
                              unsigned int searchWidth, uint16_t* bestX, uint16_t* bestY, int32_t* bestNCC,
                              int doSubPixel, float* subX, float* subY, int32_t filterLowVariance)
{
    return searchAround(patch, src, srcWidth, srcHeight, xSearchCenter, ySearchCenter, searchWidth, bestX, bestY,
                        bestNCC, doSubPixel != 0, subX, subY, filterLowVariance, everywhere);
}

int odxNCCPatchOnCircle8x8u8C(const uint8_t* patch, const uint8_t* src, unsigned int srcWidth,
                              unsigned int srcHeight, unsigned int xSearchCenter, unsigned int ySearchCenter,
                              unsigned int searchWidth, uint16_t* bestX, uint16_t* bestY, int32_t* bestNCC,
                              int doSubPixel, float* subX, float* subY, int32_t filterLowVariance)
{
    const auto r = static_cast<int32_t>(searchWidth >> 1);
    const auto inDisc = [r](Place place) {
        return int64_t{place.dx} * place.dx + int64_t{place.dy} * place.dy <= int64_t{r} * r;
    };
    return searchAround(patch, src, srcWidth, srcHeight, xSearchCenter, ySearchCenter, searchWidth, bestX, bestY,
                        bestNCC, doSubPixel != 0, subX, subY, filterLowVariance, inDisc);
}

int odxNCCPatchesOnRectu8C(const uint8_t* patches, unsigned int numPatches, const uint8_t* src,
                           unsigned int srcWidth, unsigned int srcHeight, unsigned int xSearchCenter,
                           unsigned int ySearchCenter, unsigned int searchWidth, unsigned int searchHeight,
                           int32_t filterLowVariance, uint16_t* bestX, uint16_t* bestY, int32_t* bestNCC,
                           int32_t* status)
{
    constexpr uint32_t kTooWideFrom = 12;
    const auto write = [&](size_t i, const Found& found) {
        const bool placed = found.status == kFound || found.status == kFlatWindow;
        bestX[i] = static_cast<uint16_t>(placed ? static_cast<int32_t>(xSearchCenter) + found.place.dx : 0);
        bestY[i] = static_cast<uint16_t>(placed ? static_cast<int32_t>(ySearchCenter) + found.place.dy : 0);
        bestNCC[i] = found.score;
        if (status != nullptr) status[i] = found.status;
    };
    const auto rx = static_cast<int32_t>(searchWidth >> 1), ry = static_cast<int32_t>(searchHeight >> 1);
    const bool tooWide = searchWidth >= kTooWideFrom || searchHeight >= kTooWideFrom;
    if (tooWide || !Area::fits(xSearchCenter, rx, srcWidth) || !Area::fits(ySearchCenter, ry, srcHeight)) {
        const int32_t result = tooWide ? kTooWide : kOutside;
        for (size_t i = 0; i < numPatches; ++i)
            write(i, {result, 0, {0, 0}});
        return result;
    }
    Area area(rx, ry);
    area.fill(src, srcWidth, xSearchCenter, ySearchCenter);
    int result = kNothing;
    for (size_t i = 0; i < numPatches; ++i) {
        const Found found = area.search(Patch(patches + kPixels * i), filterLowVariance, everywhere);
        write(i, found);
        if (found.status == kFound) result = kFound;
    }
    return result;
}
}
