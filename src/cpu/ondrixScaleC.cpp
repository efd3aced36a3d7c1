// Reductions and enlargements by fixed factors; those of any size are in ondrixResizeC.cpp.
#include "cpu/ondrixScaleC.h"

#include "cpu/image.h"
#include "cpu/ondrixScale.h"

#include <string.h>

using odx::rowOf;
using namespace odx::scale;

namespace
{

// ---- means of blocks ----

// Sums of the blocks of a chunk of outputs.
template <uint32_t k>
void addBlocks(uint16_t* __restrict sums, const uint8_t* __restrict row, size_t count)
{
    for (size_t x = 0; x < count; ++x) {
        uint16_t sum = sums[x];
        for (size_t i = 0; i < k; ++i)
            sum = static_cast<uint16_t>(sum + row[k * x + i]);
        sums[x] = sum;
    }
}

// Blocks of k x k pixels, whose sums are shifted.
template <uint32_t k, uint32_t shift>
int reduce(const uint8_t* src, uint32_t width, uint32_t height, size_t srcStride, uint8_t* dst, size_t dstStride)
{
    for (uint32_t y = 0; y < height / k; ++y) {
        uint8_t* const out = rowOf(dst, dstStride, y);
        for (uint32_t x = 0, count; x < width / k; x += count) {
            count = width / k - x < kChunk ? width / k - x : kChunk;
            uint16_t sums[kChunk] = {};
            for (uint32_t i = 0; i < k; ++i)
                addBlocks<k>(sums, rowOf(src, srcStride, size_t{y} * k + i) + size_t{x} * k, count);
            for (size_t i = 0; i < count; ++i)
                out[x + i] = static_cast<uint8_t>(sums[i] >> shift);
        }
    }
    return 0;
}

// ---- upsampling with the weights 3:1 ----

template <size_t channels>
void upsampleRow(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t pixels)
{
    for (size_t c = 0; c < channels; ++c) {
        dst[c] = src[c];
        dst[(2 * pixels - 1) * channels + c] = src[(pixels - 1) * channels + c];
    }
    for (size_t x = 0; x + 1 < pixels; ++x) {
        for (size_t c = 0; c < channels; ++c) {
            const uint32_t a = src[x * channels + c], b = src[(x + 1) * channels + c];
            dst[(2 * x + 1) * channels + c] = static_cast<uint8_t>((3 * a + b + 2) >> 2);
            dst[(2 * x + 2) * channels + c] = static_cast<uint8_t>((a + 3 * b + 2) >> 2);
        }
    }
}

// One of two rows: three parts of `near` and one of `far`.
template <size_t channels>
void upsampleSquares(const uint8_t* __restrict near, const uint8_t* __restrict far, uint8_t* __restrict dst,
                     size_t pixels)
{
    for (size_t c = 0; c < channels; ++c) {
        const size_t last = (pixels - 1) * channels + c;
        dst[c] = static_cast<uint8_t>((3 * near[c] + far[c] + 2) >> 2);
        dst[pixels * channels + last] = static_cast<uint8_t>((3 * near[last] + far[last] + 2) >> 2);
    }
    for (size_t x = 0; x + 1 < pixels; ++x) {
        for (size_t c = 0; c < channels; ++c) {
            const size_t i = x * channels + c, j = i + channels;
            const uint32_t a = 3u * near[i] + far[i], b = 3u * near[j] + far[j];
            dst[(2 * x + 1) * channels + c] = static_cast<uint8_t>((3 * a + b + 8) >> 4);
            dst[(2 * x + 2) * channels + c] = static_cast<uint8_t>((a + 3 * b + 8) >> 4);
        }
    }
}

void upsampleVertical(const uint8_t* src, uint32_t rowBytes, uint32_t height, size_t srcStride, uint8_t* dst,
                      size_t dstStride)
{
    memcpy(dst, src, rowBytes);
    for (uint32_t y = 0; y + 1 < height; ++y) {
        uint8_t* const upper = rowOf(dst, dstStride, 2 * size_t{y} + 1);
        upsampleBetween_(rowOf(src, srcStride, y), rowOf(src, srcStride, size_t{y} + 1), upper,
                         rowOf(upper, dstStride, 1), rowBytes & ~1u);
    }
    memcpy(rowOf(dst, dstStride, 2 * size_t{height} - 1), rowOf(src, srcStride, height - 1), rowBytes);
}

void upsampleHorizontal(const uint8_t* src, uint32_t width, uint32_t height, size_t srcStride, uint8_t* dst,
                        size_t dstStride, uint32_t channels)
{
    for (uint32_t y = 0; y < height; ++y)
        upsampleRow_(rowOf(src, srcStride, y), rowOf(dst, dstStride, y), width, channels);
}

void upsample2D(const uint8_t* src, uint32_t width, uint32_t height, size_t srcStride, uint8_t* dst,
                size_t dstStride, uint32_t channels)
{
    upsampleRow_(src, dst, width, channels);
    for (uint32_t y = 0; y + 1 < height; ++y) {
        uint8_t* const upper = rowOf(dst, dstStride, 2 * size_t{y} + 1);
        upsampleSquares_(rowOf(src, srcStride, y), rowOf(src, srcStride, size_t{y} + 1), upper,
                         rowOf(upper, dstStride, 1), width, channels);
    }
    upsampleRow_(rowOf(src, srcStride, height - 1), rowOf(dst, dstStride, 2 * size_t{height} - 1), width,
                 channels);
}

// ---- Gaussians ----

template <class Filter, class T>
void halveImage(const T* src, uint32_t width, uint32_t height, uint32_t srcStride, T* dst, uint32_t dstStride,
                uint32_t outputs, uint32_t rows)
{
    halve<Filter>({src, width, height, srcStride, dst, dstStride}, 0, outputs, 0, rows);
}

} // namespace

extern "C" {

int odxScaleDownBy2u8C(const uint8_t* src, unsigned int width, unsigned int height, unsigned int srcStride,
                       uint8_t* dst, unsigned int dstStride)
{
    return reduce<2, 2>(src, width, height, srcStride, dst, dstStride);
}

int odxScaleDownBy4u8C(const uint8_t* src, unsigned int width, unsigned int height, unsigned int srcStride,
                       uint8_t* dst, unsigned int dstStride)
{
    return reduce<4, 4>(src, width, height, srcStride, dst, dstStride);
}

int odxScaleDown3To2u8C(const uint8_t* src, unsigned int width, unsigned int height, unsigned int srcStride,
                        uint8_t* dst, unsigned int dstStride)
{
    if (width < 3 || height < 3) return 1;
    for (uint32_t y = 0; y < height / 3; ++y) {
        const uint8_t* const top = rowOf(src, srcStride, 3 * size_t{y});
        const uint8_t* const middle = rowOf(top, srcStride, 1);
        const uint8_t* const bottom = rowOf(top, srcStride, 2);
        uint8_t* const upper = rowOf(dst, dstStride, 2 * size_t{y});
        uint8_t* const lower = rowOf(upper, dstStride, 1);
        for (size_t x = 0; x < width / 3; ++x) {
            const auto corner = [x](const uint8_t* outer, const uint8_t* inner, size_t side) {
                return static_cast<uint8_t>((9 * outer[3 * x + side] + 3 * outer[3 * x + 1] +
                                             3 * inner[3 * x + side] + inner[3 * x + 1]) >>
                                            4);
            };
            upper[2 * x] = corner(top, middle, 0);
            upper[2 * x + 1] = corner(top, middle, 2);
            lower[2 * x] = corner(bottom, middle, 0);
            lower[2 * x + 1] = corner(bottom, middle, 2);
        }
    }
    return 0;
}

void odxScaleDownBy2Gaussian5x5u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    halveImage<Bytes5x5>(src, srcWidth, srcHeight, srcStride, dst, dstStride, srcWidth / 2, srcHeight / 2);
}

void odxScaleDownBy2Gaussian5x5f32_v2C(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, float* dst, unsigned int dstStride)
{
    halveImage<Floats5x5>(src, srcWidth, srcHeight, srcStride, dst, dstStride, srcWidth / 2, srcHeight / 2);
}

void odxScaleDownBy2Gaussian5x5f32C(const float* src, unsigned int width, unsigned int height, float* dst)
{
    odxScaleDownBy2Gaussian5x5f32_v2C(src, width, height, width * 4, dst, width * 2);
}

odxStatus odxScaleDownBy2Gaussian3x3u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    halveImage<Bytes3x3>(src, srcWidth, srcHeight, srcStride, dst, dstStride, srcWidth / 2 + srcWidth % 2,
                         srcHeight / 2 + srcHeight % 2);
    return ONDRIX_SUCCESS;
}

// Sums of the columns, between which and beyond which lies what the rows' ends repeat; then sums of the rows.
void odxScaleUpBy2Gaussian5x5u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    for (uint32_t y = 0; y < srcHeight; ++y) {
        const uint8_t* const here = rowOf(src, srcStride, y);
        const uint8_t* const above = y != 0           ? rowOf(src, srcStride, y - 1)
                                     : srcHeight == 1 ? here
                                                      : rowOf(src, srcStride, 1);
        const uint8_t* const below = y + 1 < srcHeight ? rowOf(src, srcStride, size_t{y} + 1) : here;
        uint8_t* const upper = rowOf(dst, dstStride, 2 * size_t{y});
        uint8_t* const lower = rowOf(upper, dstStride, 1);
        for (uint32_t x = 0, count; x < srcWidth; x += count) {
            count = srcWidth - x < kChunk ? srcWidth - x : kChunk;
            uint16_t even[kChunk + 2], odd[kChunk + 2]; // of columns x - 1 to x + count
            const auto sumColumn = [&](size_t i, uint32_t column) {
                even[i] = static_cast<uint16_t>(above[column] + 6 * here[column] + below[column]);
                odd[i] = static_cast<uint16_t>(4 * (here[column] + below[column]));
            };
            for (uint32_t i = 0; i < count; ++i)
                sumColumn(i + 1, x + i);
            sumColumn(0, x != 0 ? x - 1 : srcWidth == 1 ? 0 : 1);
            sumColumn(count + 1, srcWidth - x > count ? x + count : srcWidth - 1);
            const auto outputs = [&](const uint16_t* sums, uint8_t* out) {
                for (size_t i = 0; i < count; ++i) {
                    out[2 * i] = static_cast<uint8_t>((sums[i] + 6 * sums[i + 1] + sums[i + 2] + 32) >> 6);
                    out[2 * i + 1] = static_cast<uint8_t>((4 * (sums[i + 1] + sums[i + 2]) + 32) >> 6);
                }
            };
            outputs(even, upper + 2 * size_t{x});
            outputs(odd, lower + 2 * size_t{x});
        }
    }
}

// ---- upsampling ----

void upsampleRowC(const uint8_t* src, uint8_t* dst, uint32_t pixels, uint32_t channels)
{
    if (channels == 1) return upsampleRow<1>(src, dst, pixels);
    upsampleRow<2>(src, dst, pixels);
}

void upsampleBetweenC(const uint8_t* above, const uint8_t* below, uint8_t* upper, uint8_t* lower, uint32_t bytes)
{
    for (size_t i = 0; i < bytes; ++i) {
        const uint32_t a = above[i], b = below[i];
        upper[i] = static_cast<uint8_t>((3 * a + b + 2) >> 2);
        lower[i] = static_cast<uint8_t>((a + 3 * b + 2) >> 2);
    }
}

void upsampleSquaresC(const uint8_t* above, const uint8_t* below, uint8_t* upper, uint8_t* lower, uint32_t pixels,
                      uint32_t channels)
{
    if (channels == 1) {
        upsampleSquares<1>(above, below, upper, pixels);
        upsampleSquares<1>(below, above, lower, pixels);
    } else {
        upsampleSquares<2>(above, below, upper, pixels);
        upsampleSquares<2>(below, above, lower, pixels);
    }
}

void odxUpsampleVerticalu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    upsampleVertical(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void odxUpsampleVerticalInterleavedu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    upsampleVertical(src, 2 * srcWidth, srcHeight, srcStride, dst, dstStride);
}

void odxUpsampleHorizontalu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    upsampleHorizontal(src, srcWidth, srcHeight, srcStride, dst, dstStride, 1);
}

void odxUpsampleHorizontalInterleavedu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    upsampleHorizontal(src, srcWidth, srcHeight, srcStride, dst, dstStride, 2);
}

void odxUpsample2Du8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                      uint8_t* dst, unsigned int dstStride)
{
    upsample2D(src, srcWidth, srcHeight, srcStride, dst, dstStride, 1);
}

void odxUpsample2DInterleavedu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    upsample2D(src, srcWidth, srcHeight, srcStride, dst, dstStride, 2);
}
}
