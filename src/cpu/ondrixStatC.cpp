// Smallest and largest elements, histograms, sums, moments, local normalisation.
#include "cpu/ondrixStatC.h"

#include "cpu/image.h"
#include "cpu/ondrixArithmC.h"
#include "cpu/ondrixMoments.h"
#include "cpu/ondrixNormalize.h"
#include "cpu/ondrixStat.h"

#include <algorithm>
#include <limits>
#include <math.h>

using namespace odx;
using namespace odx::stat;

namespace
{

// ---- smallest and largest element ----

template <class T>
uint32_t firstOf(const T* row, uint32_t width, T value)
{
    return static_cast<uint32_t>(std::find(row, row + width, value) - row);
}

// Comparisons with a not-a-number do not hold, so that none gets in, and a row of them has none of its extremes.
template <class T>
Extremes<T> extremesOf(const T* src, uint32_t width, uint32_t height, uint32_t stride)
{
    using Limits = std::numeric_limits<T>;
    constexpr bool isFloat = std::is_floating_point_v<T>;
    Extremes<T> all = noExtremes<T>();
    for (uint32_t y = 0; y < height; ++y) {
        const T* const row = rowOf(src, stride, y);
        T low = isFloat ? Limits::infinity() : Limits::max(), high = isFloat ? -Limits::infinity() : Limits::min();
        for (uint32_t x = 0; x < width; ++x) {
            low = row[x] < low ? row[x] : low;
            high = row[x] > high ? row[x] : high;
        }
        const bool first = !all.found;
        if (first || low < all.least.value) {
            const uint32_t x = firstOf(row, width, low);
            if (x == width) continue;
            all.least = {row[x], x, y};
        }
        if (first || high > all.greatest.value) {
            const uint32_t x = firstOf(row, width, high);
            if (x == width) continue;
            all.greatest = {row[x], x, y};
        }
        all.found = true;
    }
    return all;
}

template <class T>
void minMaxLoc(const T* src, uint32_t width, uint32_t height, uint32_t stride, T* minValue, T* maxValue,
               uint32_t* minXY, uint32_t* maxXY)
{
    const Extremes<T> extremes = extremesOf(src, width, height, stride);
    report(extremes.least, minValue, minXY);
    report(extremes.greatest, maxValue, maxXY);
}

template <class T>
odxStatus allMinMaxLoc(const T* src, uint32_t width, uint32_t height, uint32_t stride, T* minValue, T* maxValue,
                       uint32_t* minXY, uint32_t* maxXY, uint32_t capacity, uint32_t* minCount, uint32_t* maxCount)
{
    const Extremes<T> extremes = extremesOf(src, width, height, stride);
    const auto listPlaces = [&](Places& least, Places& greatest) {
        for (uint32_t y = 0; y < height; ++y) {
            const T* const row = rowOf(src, stride, y);
            for (uint32_t x = 0; x < width; ++x) {
                if (row[x] == extremes.least.value) least.add(x, y);
                if (row[x] == extremes.greatest.value) greatest.add(x, y);
            }
        }
    };
    return reportAll(extremes, minValue, maxValue, minXY, maxXY, capacity, minCount, maxCount, listPlaces);
}

// ---- mean and variance ----

Sums sumsOf(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride)
{
    Sums sums = {0, 0};
    for (uint32_t y = 0; y < height; ++y) {
        const uint8_t* row = rowOf(src, stride, y);
        for (uint32_t left = width, count; left != 0; left -= count, row += count) {
            count = std::min(left, kFitting);
            uint32_t pixels = 0, squares = 0;
            for (uint32_t x = 0; x < count; ++x) {
                pixels += row[x];
                squares += uint32_t{row[x]} * row[x];
            }
            sums.pixels += pixels;
            sums.squares += squares;
        }
    }
    return sums;
}

// ---- histograms ----

[[gnu::always_inline]] inline void countOne(uint16_t* table, size_t level)
{
    const uint16_t count = table[level];
#if defined(__aarch64__)
    asm("" : "+r"(level)); // both addresses shift it for nothing, where compilers would shift it before
#endif
    table[level] = static_cast<uint16_t>(count + 1);
}

// Neighbours count in tables of their own: those of a flat area need not wait for each other. Addresses of tables
// that come as arguments stay in registers, so that a pixel takes its level, a load, an addition and a store.
[[gnu::noinline]] void countRow(const uint8_t* row, size_t width, uint16_t* a, uint16_t* b, uint16_t* c,
                                uint16_t* d)
{
    constexpr size_t kWords = 2, kAtOnce = kWords * sizeof(size_t);
    const uint8_t* const end = row + width / kAtOnce * kAtOnce;
    for (; row != end; row += kAtOnce) {
        size_t words[kWords];
        memcpy(words, row, sizeof words);
        for (const size_t word : words) {
            for (size_t shift = 0; shift < 8 * sizeof word; shift += 32) {
                countOne(a, word >> shift & 255);
                countOne(b, word >> shift >> 8 & 255);
                countOne(c, word >> shift >> 16 & 255);
                countOne(d, word >> shift >> 24 & 255);
            }
        }
    }
    for (size_t x = 0; x < width % kAtOnce; ++x)
        countOne(a, row[x]);
}

// The first pixel of a cell, or of what follows the last.
uint32_t firstOfCell(uint32_t cell, uint32_t cells, uint32_t size)
{
    return static_cast<uint32_t>((uint64_t{cell} * size + cells - 1) / cells);
}

// ---- moments ----

template <class T>
void imageMoments(odxMomentsOfBand<T>* momentsOfBand, const T* src, uint32_t width, uint32_t height,
                  uint32_t stride, uint32_t binary, odxMoments* result)
{
    odxMoments m = {};
    for (uint32_t y = 0; y < height;) {
        const uint32_t count = std::min(height - y, moments::kRows);
        moments::Powers<double> b;
        momentsOfBand(rowOf(src, stride, y), stride, width, count, binary, b);
        const double w = y, ww = w * w, www = ww * w;
        m.m00 += b.s00;
        m.m10 += b.s10;
        m.m20 += b.s20;
        m.m30 += b.s30;
        m.m01 += b.s01 + w * b.s00;
        m.m11 += b.s11 + w * b.s10;
        m.m21 += b.s21 + w * b.s20;
        m.m02 += b.s02 + 2 * w * b.s01 + ww * b.s00;
        m.m12 += b.s12 + 2 * w * b.s11 + ww * b.s10;
        m.m03 += b.s03 + 3 * w * b.s02 + 3 * ww * b.s01 + www * b.s00;
        y += count;
    }
    if (m.m00 != 0) {
        const double cx = m.m10 / m.m00, cy = m.m01 / m.m00;
        m.mu20 = m.m20 - cx * m.m10;
        m.mu11 = m.m11 - cy * m.m10;
        m.mu02 = m.m02 - cy * m.m01;
        m.mu30 = m.m30 - cx * (3 * m.mu20 + cx * m.m10);
        m.mu21 = m.m21 - cx * (2 * m.mu11 + cx * m.m01) - cy * m.mu20;
        m.mu12 = m.m12 - cy * (2 * m.mu11 + cy * m.m10) - cx * m.mu02;
        m.mu03 = m.m03 - cy * (3 * m.mu02 + cy * m.m01);
        const double second = m.m00 * m.m00, third = second * sqrt(fabs(m.m00));
        m.nu20 = m.mu20 / second;
        m.nu11 = m.mu11 / second;
        m.nu02 = m.mu02 / second;
        m.nu30 = m.mu30 / third;
        m.nu21 = m.mu21 / third;
        m.nu12 = m.mu12 / third;
        m.nu03 = m.mu03 / third;
    }
    *result = m;
}

} // namespace

namespace odx::stat
{

void countLevels(const uint8_t* src, uint32_t width, uint32_t height, size_t stride, uint32_t (&counts)[256])
{
    // Of 16 bits, tables take half as many cache lines. One gets a fourth of a row's pixels and the last few.
    constexpr uint32_t kMost = UINT16_MAX, kLastFew = 16;
    bool first = true;
    for (uint32_t x = 0, columns; x < width; x += columns) {
        columns = std::min(width - x, kMost);
        const uint32_t rows = kMost / (columns / 4 + kLastFew);
        for (uint32_t y = 0; y < height;) {
            uint16_t tables[4][256] = {};
            for (const uint32_t end = y + std::min(height - y, rows); y < end; ++y)
                countRow(rowOf(src, stride, y) + x, columns, tables[0], tables[1], tables[2], tables[3]);
            for (size_t i = 0; i < 256; ++i) {
                const uint32_t sum = uint32_t{tables[0][i]} + tables[1][i] + tables[2][i] + tables[3][i];
                counts[i] = first ? sum : counts[i] + sum;
            }
            first = false;
        }
    }
    if (first) memset(counts, 0, sizeof counts);
}

void equalize(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst,
              uint32_t dstStride, LookUp* lookUp)
{
    uint32_t counts[256];
    countLevels(src, width, height, srcStride, counts);
    const uint64_t n = uint64_t{width} * height,
                   c0 = *std::find_if(counts, counts + 255, [](uint32_t c) { return c != 0; });
    uint8_t table[256];
    uint64_t c = 0;
    for (uint32_t v = 0; v < 256; ++v) {
        c += counts[v];
        const uint64_t level = n == c0 ? v : c < c0 ? 0 : ((c - c0) * 255 + (n - c0) / 2) / (n - c0);
        table[v] = static_cast<uint8_t>(level);
    }
    lookUp(src, width, height, srcStride, table, dst, dstStride);
}

} // namespace odx::stat

extern "C" {

void odxImageIntensityHistogramC(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, uint32_t* histogram)
{
    uint32_t counts[256];
    countLevels(src, srcWidth, srcHeight, srcStride, counts);
    memcpy(histogram, counts, sizeof counts);
}

void odxImageSpatialHistogramu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, unsigned int cellsX, unsigned int cellsY,
                                 unsigned int bins, unsigned int range, uint32_t* histograms)
{
    constexpr size_t kFew = 1024; // pixels that count sooner in one table than tables are emptied
    uint32_t binOf[256];
    for (uint32_t v = 0; v < 256; ++v)
        binOf[v] = v < range ? v * bins / range : bins;
    for (uint32_t cellY = 0; cellY < cellsY; ++cellY) {
        const uint32_t y0 = firstOfCell(cellY, cellsY, srcHeight),
                       height = firstOfCell(cellY + 1, cellsY, srcHeight) - y0;
        for (uint32_t cellX = 0; cellX < cellsX; ++cellX, histograms += bins) {
            const uint32_t x0 = firstOfCell(cellX, cellsX, srcWidth),
                           width = firstOfCell(cellX + 1, cellsX, srcWidth) - x0;
            const uint8_t* const cell = rowOf(src, srcStride, y0) + x0;
            uint32_t counts[257] = {}; // the last for other pixels
            if (uint64_t{width} * height < kFew) {
                for (uint32_t y = 0; y < height; ++y) {
                    const uint8_t* const row = rowOf(cell, srcStride, y);
                    for (uint32_t x = 0; x < width; ++x)
                        ++counts[binOf[row[x]]];
                }
            } else {
                uint32_t levels[256];
                countLevels(cell, width, height, srcStride, levels);
                for (uint32_t v = 0; v < 256; ++v)
                    counts[binOf[v]] += levels[v];
            }
            memcpy(histograms, counts, bins * sizeof(uint32_t));
        }
    }
}

void odxImageHistogramEqualizeu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    equalize(src, srcWidth, srcHeight, srcStride, dst, dstStride, odxTableLookupu8C);
}

odxStatus odxImageIntensityStats_v2C(const uint8_t* src, unsigned int, unsigned int, unsigned int srcStride,
                                     unsigned int x, unsigned int y, unsigned int width, unsigned int height,
                                     float* mean, float* variance, odxVarianceEstimator estimator)
{
    report(sumsOf(rowOf(src, srcStride, y) + x, width, height, srcStride), width, height, estimator, mean,
           variance);
    return ONDRIX_SUCCESS;
}
void odxImageIntensityStatsC(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, unsigned int x, unsigned int y, unsigned int width,
                             unsigned int height, float* mean, float* variance)
{
    odxImageIntensityStats_v2C(src, srcWidth, srcHeight, srcStride, x, y, width, height, mean, variance,
                               ONDRIX_VARIANCE_POPULATION);
}

using NormalizedBytes = normalization::Bytes;
using normalization::normalize;
#define ODX_COLUMN(name) name##C
#include "cpu/ondrixStatOperations.inc"

// clang-format off
#define ODX_MOMENTS(name, helper, T) \
    void helper##C(const T* src, uint32_t stride, uint32_t width, uint32_t height, uint32_t binary, \
                   moments::Powers<double>& sums) \
    { \
        moments::band(src, stride, width, height, binary, sums); \
    } \
    void name##C(const T* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
                 unsigned int binary, odxMoments* moments) \
    { \
        imageMoments<T>(helper##_, src, srcWidth, srcHeight, srcStride, binary, moments); \
    }
// clang-format on

ODX_MOMENTS(odxImageMomentsu8, momentsOfBandu8, uint8_t)
ODX_MOMENTS(odxImageMomentss32, momentsOfBands32, int32_t)
ODX_MOMENTS(odxImageMomentsf32, momentsOfBandf32, float)
}
