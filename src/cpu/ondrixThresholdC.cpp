#include "cpu/ondrixThresholdC.h"

#include "cpu/elementwise.h"
#include "cpu/ondrixStat.h"
#include "ondrix/smoothing.h"

#include <string.h>

using namespace odx;
using namespace odx::threshold;

namespace
{

// ---- Otsu ----

// The level below which, itself included, the classes differ most: the first of equally good ones.
uint32_t separatingLevel(const uint32_t (&counts)[256], uint64_t pixels)
{
    constexpr double kLeast = 1.1920928955078125e-7, kMost = 0.9999998807907104; // weight of a class
    uint64_t sum = 0;
    for (uint32_t i = 0; i < 256; ++i)
        sum += uint64_t{i} * counts[i];
    const double scale = 1.0 / static_cast<double>(pixels);
    const double mean = scale * static_cast<double>(sum);
    double mean1 = 0, weight = 0, best = 0;
    uint32_t level = 0;
    for (uint32_t t = 0; t < 256; ++t) {
        mean1 *= weight;
        const double share = counts[t] * scale;
        weight += share;
        const double rest = 1.0 - weight;
        if ((weight < rest ? weight : rest) < kLeast || (weight < rest ? rest : weight) > kMost) continue;
        mean1 = (t * share + mean1) / weight;
        const double distance = mean1 + (weight * mean1 - mean) / rest;
        const double score = weight * rest * distance * distance;
        if (score > best) {
            best = score;
            level = t;
        }
    }
    return level;
}

// ---- against the average of the neighbourhood ----

typedef void Average(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                     uint8_t* dst, unsigned int dstStride);

template <auto* gaussian>
void withBorder(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                uint8_t* dst, unsigned int dstStride)
{
    gaussian(src, srcWidth, srcHeight, srcStride, dst, dstStride, 1);
}

// The 3x3 Gaussian without a border type refuses narrow images.
void gaussian3x3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                 uint8_t* dst, unsigned int dstStride)
{
    if (srcWidth < 7) {
        odxFilterGaussian3x3u8_v3(src, srcWidth, srcHeight, srcStride, dst, dstStride, ONDRIX_BORDER_UNDEFINED, 0);
    } else {
        odxFilterGaussian3x3u8_v2(src, srcWidth, srcHeight, srcStride, dst, dstStride, 1);
    }
}

void fill(const Plane<uint8_t>& plane, uint8_t value)
{
    for (uint32_t y = 0; y < plane.height; ++y)
        memset(rowOf(plane.dst, plane.dstStride, y), value, plane.width);
}

void adaptive(const Plane<uint8_t>& plane, uint8_t maxValue, uint32_t type, int32_t value, Average* average)
{
    if (type > 1) {
        memset(plane.dst, 0, static_cast<size_t>(plane.dstStride) * plane.height);
        return;
    }
    // What is above the average less `value`, and the rest.
    const uint8_t above = type == 0 ? maxValue : 0, rest = type == 0 ? 0 : maxValue;
    if (value > 255) return fill(plane, above);
    if (value < (type == 0 ? -255 : -254)) return fill(plane, rest);

    average(plane.src, plane.width, plane.height, plane.srcStride, plane.dst, plane.dstStride);
    if (value > 0) {
        markDifference_(plane.dst, plane.dstStride, plane.src, plane.srcStride, plane.width, plane.height,
                        plane.dst, plane.dstStride, static_cast<uint8_t>(value - 1), above, rest);
    } else {
        markDifference_(plane.src, plane.srcStride, plane.dst, plane.dstStride, plane.width, plane.height,
                        plane.dst, plane.dstStride, static_cast<uint8_t>(-value), rest, above);
    }
}

} // namespace

extern "C" {

void markRangeC(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst,
                uint32_t dstStride, const Range& range)
{
    const uint8_t low = range.low, span = range.span(), inside = range.inside, outside = range.outside;
    forElements(
        [=](uint8_t level, uint8_t& out) { out = static_cast<uint8_t>(level - low) <= span ? inside : outside; },
        width, height, Rows{src, srcStride}, Rows{dst, dstStride});
}

void markDifferenceC(const uint8_t* from, uint32_t fromStride, const uint8_t* less, uint32_t lessStride,
                     uint32_t width, uint32_t height, uint8_t* dst, uint32_t dstStride, uint8_t limit,
                     uint8_t within, uint8_t beyond)
{
    forElements(
        [=](uint8_t a, uint8_t b, uint8_t& out) {
            const uint8_t difference = static_cast<uint8_t>(a > b ? a - b : 0);
            out = difference <= limit ? within : beyond;
        },
        width, height, Rows{from, fromStride}, Rows{less, lessStride}, Rows{dst, dstStride});
}

void odxFilterThresholdu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int srcStride, uint8_t* dst, unsigned int dstStride, unsigned int threshold)
{
    markRangeC(src, srcWidth, srcHeight, srcStride, dst, dstStride, binary(threshold));
}

odxStatus odxFilterThresholdu8_v3C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                   unsigned int threshold, unsigned int trueValue, unsigned int falseValue)
{
    markRangeC(src, srcWidth, srcHeight, srcStride, dst, dstStride, above(threshold, trueValue, falseValue));
    return ONDRIX_SUCCESS;
}

odxStatus odxFilterThresholdRangeu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int lowThresh,
                                     int highThresh, unsigned int trueValue, unsigned int falseValue)
{
    markRangeC(src, srcWidth, srcHeight, srcStride, dst, dstStride,
               between(lowThresh, highThresh, trueValue, falseValue));
    return ONDRIX_SUCCESS;
}

void odxFilterThresholdOtsuu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                               unsigned int thresholdType)
{
    if (srcWidth == 0 || srcHeight == 0) return;
    uint32_t counts[256];
    stat::countLevels(src, srcWidth, srcHeight, srcStride, counts);
    Range range = binary(separatingLevel(counts, uint64_t{srcWidth} * srcHeight) + 1);
    if (thresholdType == 1) range = {range.low, range.high, 0, 255};
    markRange_(src, srcWidth, srcHeight, srcStride, dst, dstStride, range);
}

// Adaptive thresholds by the function that averages.
#define ODX_ADAPTIVE(name, average)                                                                               \
    void name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,          \
              unsigned int maxValue, unsigned int thresholdType, int value, uint8_t* dst, unsigned int dstStride) \
    {                                                                                                             \
        adaptive({src, srcWidth, srcHeight, srcStride, dst, dstStride}, static_cast<uint8_t>(maxValue),           \
                 thresholdType, value, average);                                                                  \
    }
ODX_ADAPTIVE(odxAdaptiveThresholdGaussian3x3u8C, gaussian3x3)
ODX_ADAPTIVE(odxAdaptiveThresholdGaussian5x5u8C, withBorder<odxFilterGaussian5x5u8_v2>)
ODX_ADAPTIVE(odxAdaptiveThresholdGaussian11x11u8C, withBorder<odxFilterGaussian11x11u8_v2>)
ODX_ADAPTIVE(odxAdaptiveThresholdMean3x3u8C, odxBoxFilter3x3u8)
ODX_ADAPTIVE(odxAdaptiveThresholdMean5x5u8C, odxBoxFilter5x5u8)
ODX_ADAPTIVE(odxAdaptiveThresholdMean11x11u8C, odxBoxFilter11x11u8)
}
