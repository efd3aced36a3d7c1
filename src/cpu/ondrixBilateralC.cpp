#include "cpu/ondrixBilateral.h"

#include "cpu/border.h"
#include "cpu/ondrixReorderC.h"
#include "frame/scratch.h"

#include <string.h>

using namespace odx;
using namespace odx::bilateral;

namespace
{

// ---- weights ----

// exp(-t) in operations that every processor rounds alike; 0 where no table has a weight left.
double negatedExp(double t)
{
    if (!(t < 32)) return 0;
    const int n = static_cast<int>(t * 1.4426950408889634);
    const double r = t - n * 0.6931471805599453;
    double p = 1;
    for (int i = 18; i > 0; --i)
        p = 1 - p * r / i;
    return p / static_cast<double>(uint64_t{1} << n);
}

double gauss(int32_t squaredDistance, float deviation)
{
    const auto sigma = static_cast<double>(deviation);
    return negatedExp(squaredDistance / (2 * sigma * sigma));
}

// floor(weightOf(d) + 0.5) for all differences; the number of those before the last that are not 0 is the result.
template <class Weight, class Store>
uint32_t tabulate(Weight weightOf, Store store)
{
    uint32_t reach = 0;
    for (int32_t d = 0; d < 256; ++d) {
        const auto weight = static_cast<uint32_t>(weightOf(d * d) + 0.5);
        store(d, weight);
        if (weight != 0) reach = static_cast<uint32_t>(d) + 1;
    }
    return reach;
}

Weights weightsOf(uint32_t K, float sigmaColor, float sigmaSpace)
{
    Weights weights;
    weights.size = K;
    weights.reach = tabulate([=](int32_t square) { return 128 * gauss(square, sigmaColor); },
                             [&](int32_t d, uint32_t weight) { weights.range[d] = static_cast<uint8_t>(weight); });
    for (int32_t i = 0; i < static_cast<int32_t>(sizeof weights.space); ++i)
        weights.space[i] = static_cast<uint8_t>(255 * gauss(i, sigmaSpace) + 0.5);
    return weights;
}

Steps stepsOf(float sigmaColor, float sigmaSpace)
{
    const double step = 4096 * negatedExp(1.4142135623730951 / static_cast<double>(sigmaSpace));
    Steps steps;
    steps.reach = tabulate([=](int32_t square) { return step * gauss(square, sigmaColor); },
                           [&](int32_t d, uint32_t weight) {
                               steps.low[d] = static_cast<uint8_t>(weight);
                               steps.high[d] = static_cast<uint8_t>(weight >> 8);
                           });
    return steps;
}

// ---- windows ----

template <uint32_t K>
void filterLine(const uint8_t* const* lines, uint8_t* out, uint32_t count, const Weights& weights)
{
    constexpr int32_t r = K / 2;
    for (uint32_t x = 0; x < count; ++x) {
        const int32_t centre = lines[r][x + r];
        uint32_t sum = 0, total = 0;
        for (int32_t i = -r; i <= r; ++i) {
            const uint8_t* const pixels = lines[r + i] + x + r;
            for (int32_t j = -r; j <= r; ++j) {
                const int32_t pixel = pixels[j], difference = pixel - centre;
                const uint32_t weight = uint32_t{weights.range[difference < 0 ? -difference : difference]} *
                                        weights.space[i * i + j * j];
                sum += weight * static_cast<uint32_t>(pixel);
                total += weight;
            }
        }
        out[x] = static_cast<uint8_t>((sum + total / 2) / total);
    }
}

void filterInterior(FilterLine* filterLine, const Plane<uint8_t>& plane, const Weights& weights)
{
    const uint32_t K = weights.size, width = plane.interiorWidth(K), height = plane.interiorHeight(K);
    for (uint32_t y = 0; width != 0 && y < height; ++y) {
        const uint8_t* lines[kMostSize];
        for (uint32_t i = 0; i < K; ++i)
            lines[i] = rowOf(plane.src, plane.srcStride, size_t{y} + i);
        filterLine(lines, rowOf(plane.dst, plane.dstStride, y + K / 2) + K / 2, width, weights);
    }
}

// Windows are symmetric.
template <uint32_t size>
struct Window {
    static constexpr uint32_t K = size;
    FilterLine* filterLine;
    const Weights& weights;

    void row(const uint8_t* const* lines, uint8_t* out, uint32_t count) const
    {
        filterLine(lines, out, count, weights);
    }
    void column(const uint8_t* const* lines, uint8_t* out, uint32_t count) const { row(lines, out, count); }
};

// ---- lines ----

constexpr uint32_t kLines = 64; // of a bundle

// The sums of one side, which go on with each step.
struct Side {
    int32_t weight[kLines], sum[kLines];
    uint8_t last[kLines];

    explicit Side(const uint8_t* values)
    {
        for (uint32_t k = 0; k < kLines; ++k) {
            weight[k] = kOwnWeight;
            sum[k] = 0;
            last[k] = values[k];
        }
    }
    void step(const uint16_t* __restrict steps, const uint8_t* __restrict values)
    {
        for (uint32_t k = 0; k < kLines; ++k) {
            const int32_t t = steps[k];
            sum[k] = (t * (sum[k] + (last[k] - values[k]) * weight[k]) + 2048) >> 12;
            weight[k] = kOwnWeight + ((t * weight[k] + 2048) >> 12);
            last[k] = values[k];
        }
    }
};

uint16_t stepOver(const Steps& steps, int32_t difference)
{
    return static_cast<uint16_t>(steps.low[difference] | steps.high[difference] << 8);
}

void smooth(const Lines& lines, const Steps& steps)
{
    Side left(lines.values);
    for (size_t i = 0; i < lines.length; ++i) {
        uint16_t* const taken = lines.taken + kLines * i;
        if (i != 0) {
            const uint8_t *const last = lines.guides + lines.guideStride * (i - 1), *const guide =
                                                                                        last + lines.guideStride;
            for (uint32_t k = 0; k < kLines; ++k) {
                const int32_t difference = guide[k] - last[k];
                taken[k] = stepOver(steps, difference < 0 ? -difference : difference);
            }
            left.step(taken, lines.values + lines.valueStride * i);
        }
        int32_t* const sums = lines.sums + kLines * i;
        for (uint32_t k = 0; k < kLines; ++k)
            sums[k] = left.sum[k] * kSumUnit + left.weight[k];
    }
    Side right(lines.values + lines.valueStride * (lines.length - 1));
    for (size_t i = lines.length; i-- > 0;) {
        const uint8_t* const values = lines.values + lines.valueStride * i;
        if (i + 1 != lines.length) right.step(lines.taken + kLines * (i + 1), values);
        uint8_t* const out = lines.out + lines.outStride * i;
        const int32_t* const sums = lines.sums + kLines * i;
        for (uint32_t k = 0; k < kLines; ++k) {
            const int32_t weight = (sums[k] & (kSumUnit - 1)) + right.weight[k] - kOwnWeight;
            const int32_t sum = (sums[k] >> kSumBits) + right.sum[k];
            // Numerators are made positive, for quotients that are rounded down: averages are in 0..255, but for
            // what is lost by rounding.
            const int32_t value = (2 * sum + weight + 2 * weight * (right.last[k] + 1)) / (2 * weight) - 1;
            out[k] = static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
        }
    }
}

constexpr LineKernel kLineKernel = {kLines, odxTransposeu8C, smooth};

} // namespace

namespace odx::bilateral
{

void filter(uint32_t K, FilterLine* filterLine, const Plane<uint8_t>& plane)
{
    filterInterior(filterLine, plane, weightsOf(K, 16, static_cast<float>(K) / 4));
}

odxStatus filter(uint32_t K, FilterLine* filterLine, const Plane<uint8_t>& plane, float sigmaColor,
                 float sigmaSpace, odxBorderType type, uint32_t value)
{
    const Weights weights = weightsOf(K, sigmaColor, sigmaSpace);
    filterInterior(filterLine, plane, weights);
    const border::Outside<uint8_t> outside = {type == ONDRIX_BORDER_REPLICATE, static_cast<uint8_t>(value)};
    if (type == ONDRIX_BORDER_UNDEFINED) return ONDRIX_SUCCESS;
    if (K == 5) border::filterFrame(plane, outside, Window<5>{filterLine, weights});
    if (K == 7) border::filterFrame(plane, outside, Window<7>{filterLine, weights});
    if (K == 9) border::filterFrame(plane, outside, Window<9>{filterLine, weights});
    return ONDRIX_SUCCESS;
}

// Rows, turned into columns a bundle at a time, then columns.
odxStatus filterRecursively(const LineKernel& kernel, const Plane<uint8_t>& plane, float sigmaColor,
                            float sigmaSpace)
{
    const uint32_t width = plane.width, height = plane.height, n = kernel.lines;
    const uint64_t pixels = uint64_t{n} * (width > height ? width : height);
    const Scratch<uint8_t> scratch(8 * pixels);
    if (!scratch) return ONDRIX_NO_MEMORY;
    int32_t* const sums = reinterpret_cast<int32_t*>(scratch.get());
    uint16_t* const taken = reinterpret_cast<uint16_t*>(scratch.get() + 4 * pixels);
    uint8_t *const values = scratch.get() + 6 * pixels, *const guides = values + pixels;
    const Steps steps = stepsOf(sigmaColor, sigmaSpace);

    for (uint32_t y = 0, rows; y < height; y += rows) {
        rows = height - y < n ? height - y : n;
        kernel.transpose(rowOf(plane.src, plane.srcStride, y), width, rows, plane.srcStride, values, n);
        kernel.smooth({values, values, values, n, n, n, width, sums, taken}, steps);
        kernel.transpose(values, rows, width, n, rowOf(plane.dst, plane.dstStride, y), plane.dstStride);
    }
    for (uint32_t x = 0, columns; x < width; x += columns) {
        columns = width - x < n ? width - x : n;
        const uint8_t* const guide = plane.src + x;
        uint8_t* const value = plane.dst + x;
        if (columns == n) {
            const size_t from = plane.srcStride, to = plane.dstStride;
            kernel.smooth({value, guide, value, to, from, to, height, sums, taken}, steps);
            continue;
        }
        // What is left is copied to where a bundle has room.
        for (size_t y = 0; y < height; ++y) {
            memcpy(values + n * y, rowOf(value, plane.dstStride, y), columns);
            memcpy(guides + n * y, rowOf(guide, plane.srcStride, y), columns);
        }
        kernel.smooth({values, guides, values, n, n, n, height, sums, taken}, steps);
        for (size_t y = 0; y < height; ++y)
            memcpy(rowOf(value, plane.dstStride, y), values + n * y, columns);
    }
    return ONDRIX_SUCCESS;
}

} // namespace odx::bilateral

extern "C" {

void bilateralLineC(const uint8_t* const* lines, uint8_t* out, uint32_t count, const Weights& weights)
{
    if (weights.size == 5) filterLine<5>(lines, out, count, weights);
    if (weights.size == 7) filterLine<7>(lines, out, count, weights);
    if (weights.size == 9) filterLine<9>(lines, out, count, weights);
}

// clang-format off
#define ODX_BILATERAL(K, line) \
    void odxBilateralFilter##K##x##K##u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, \
                                          unsigned int srcStride, uint8_t* dst, unsigned int dstStride) \
    { \
        filter(K, bilateralLineC, {src, srcWidth, srcHeight, srcStride, dst, dstStride}); \
    } \
    odxStatus odxBilateralFilter##K##x##K##u8_v2C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, \
                                                  unsigned int srcStride, uint8_t* dst, unsigned int dstStride, \
                                                  float sigmaColor, float sigmaSpace, odxBorderType borderType, \
                                                  uint32_t borderValue) \
    { \
        return filter(K, line, {src, srcWidth, srcHeight, srcStride, dst, dstStride}, sigmaColor, sigmaSpace, \
                         borderType, borderValue); \
    }

ODX_BILATERAL(5, bilateralLineC)
ODX_BILATERAL(7, bilateralLine_)
ODX_BILATERAL(9, bilateralLine_)
// clang-format on

odxStatus odxBilateralFilterRecursiveu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                         float sigmaColor, float sigmaSpace)
{
    return filterRecursively(kLineKernel, {src, srcWidth, srcHeight, srcStride, dst, dstStride}, sigmaColor,
                             sigmaSpace);
}
}
