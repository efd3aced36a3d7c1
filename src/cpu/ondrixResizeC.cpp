// Resizing to any size: nearest, bilinear, cubic, and means of blocks and groups.
#include "cpu/ondrixScaleC.h"

#include "cpu/ondrixScale.h"

#include <string.h>

using odx::rowOf;
using namespace odx::scale;

namespace
{

template <class Axis>
void nearest(const Resize& image)
{
    takeNearest<Axis>(
        image, [](const uint32_t*, uint32_t) {},
        [](const uint8_t* row, const uint32_t* columns, uint8_t* out, uint32_t count) {
            for (size_t i = 0; i < count; ++i)
                out[i] = row[columns[i]];
        });
}

// Sums of blocks of kx pixels in ky rows, for outputs [x, x + count).
void sumBlocks(const Resize& image, uint32_t x, uint32_t y, uint32_t kx, uint32_t ky, uint64_t* sums,
               uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i)
        sums[i] = 0;
    for (uint32_t row = 0; row < ky; ++row) {
        const uint8_t* in = image.in(size_t{y} * ky + row) + size_t{x} * kx;
        for (uint32_t i = 0; i < count; ++i, in += kx) {
            uint64_t sum = 0;
            for (uint32_t k = 0; k < kx; ++k)
                sum += in[k];
            sums[i] += sum;
        }
    }
}

// The same for sums that fit 32 bits, which are divided faster.
template <class Mean>
void blockMeans(const Resize& image, uint32_t kx, uint32_t ky, uint32_t ex, uint32_t ey, Mean mean)
{
    for (uint32_t y = 0; y < image.dstHeight / ey; ++y) {
        uint8_t* const out = image.out(size_t{y} * ey);
        const uint32_t width = image.dstWidth / ex;
        for (uint32_t x = 0, count; x < width; x += count) {
            count = width - x < kChunk ? width - x : kChunk;
            uint64_t sums[kChunk];
            sumBlocks(image, x, y, kx, ky, sums, count);
            uint8_t* to = out + size_t{x} * ex;
            for (uint32_t i = 0; i < count; ++i, to += ex)
                memset(to, mean(sums[i]), ex);
        }
        for (uint32_t i = 1; i < ey; ++i)
            memcpy(rowOf(out, image.dstStride, i), out, image.dstWidth);
    }
}

bool divides(uint32_t a, uint32_t b)
{
    return a % b == 0 || b % a == 0;
}

void area(const Resize& image)
{
    const uint32_t sw = image.srcWidth, sh = image.srcHeight, dw = image.dstWidth, dh = image.dstHeight;
    if (!divides(sw, dw) || !divides(sh, dh)) {
        Weighted<AreaAxis> sampler(image, {true, 0});
        return resample(image, sampler);
    }
    const uint32_t kx = sw > dw ? sw / dw : 1, ky = sh > dh ? sh / dh : 1;
    const float share = 1.0f / static_cast<float>(uint64_t{kx} * ky);
    blockMeans(image, kx, ky, dw > sw ? dw / sw : 1, dh > sh ? dh / sh : 1,
               [share](uint64_t sum) { return static_cast<int>(byteOf(static_cast<float>(sum) * share + 0.5f)); });
}

template <class Sampler>
void resampleAll(const Resize& image)
{
    Sampler sampler(image);
    resample(image, sampler);
}

} // namespace

extern "C" {

int odxScaleDownNNu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                      uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride)
{
    const Resize image = {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride};
    if (srcWidth == dstWidth && srcHeight == dstHeight) {
        copyImage(image);
        return 0;
    }
    if ((srcWidth | srcHeight | dstWidth | dstHeight) > 65535) return 1;
    nearest<ExactNearest>(image);
    return 0;
}

void odxScaleDownu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                     uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride)
{
    const uint32_t kx = srcWidth / dstWidth, ky = srcHeight / dstHeight;
    const uint64_t n = uint64_t{kx} * ky;
    blockMeans({src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, kx, ky, 1, 1,
               [n](uint64_t sum) { return static_cast<int>(sum / n); });
}

void odxScaleDownBLu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                       uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride)
{
    resampleAll<Linear>({src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride});
}

void odxScaleUpPolyu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                       uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride)
{
    resampleAll<Cubic<1>>({src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride});
}

void odxScaleUpPolyInterleaveu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, uint8_t* dst, unsigned int dstWidth,
                                 unsigned int dstHeight, unsigned int dstStride)
{
    resampleAll<Cubic<2>>({src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride});
}

odxStatus odxScaleu8_v2C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                         uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride,
                         odxInterpolationType interpolation, odxBorderType borderType, uint8_t borderValue)
{
    const Resize image = {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride};
    const bool halves =
        srcWidth % 2 == 0 && srcWidth / 2 == dstWidth && srcHeight % 2 == 0 && srcHeight / 2 == dstHeight;
    if (interpolation == ONDRIX_INTERPOLATION_NEAREST) {
        nearest<CentreNearest>(image);
    } else if (interpolation == ONDRIX_INTERPOLATION_BILINEAR && !halves) {
        const uint8_t value = borderType == ONDRIX_BORDER_CONSTANT ? borderValue : 0;
        Weighted<CentreAxis> sampler(image, {borderType == ONDRIX_BORDER_REPLICATE, value});
        resample(image, sampler);
    } else {
        area(image);
    }
    return ONDRIX_SUCCESS;
}

odxStatus odxScaleu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                      uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride,
                      odxInterpolationType interpolation)
{
    return odxScaleu8_v2C(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, interpolation,
                          ONDRIX_BORDER_UNDEFINED, 0);
}

// ---- groups ----

// A row of groups at a time. Sums of their columns are kept while the columns of a group come along.
void groupMeansC(const Resize* image, uint32_t channels)
{
    Groups rows(image->srcHeight, image->dstHeight);
    uint64_t top = 0;
    for (uint64_t bottom = 1, y = 0; bottom <= image->srcHeight; ++bottom) {
        if (!rows.closes()) continue;
        const uint64_t height = bottom - top;
        uint8_t* out = image->out(y++);
        Groups columns(image->srcWidth, image->dstWidth);
        uint64_t left = 0, lastSize = 0, reciprocal = 0;
        for (uint64_t right = 1; right <= image->srcWidth; ++right) {
            if (!columns.closes()) continue;
            uint64_t sums[2] = {};
            for (uint64_t row = top; row < bottom; ++row) {
                const uint8_t* const in = image->in(row);
                for (uint64_t x = left * channels; x < right * channels; x += channels) {
                    for (uint32_t c = 0; c < channels; ++c)
                        sums[c] += in[x + c];
                }
            }
            const uint64_t n = (right - left) * height;
            if (n != lastSize) reciprocal = groupReciprocal(n);
            lastSize = n;
            for (uint32_t c = 0; c < channels; ++c)
                *out++ = static_cast<uint8_t>(n <= 400 ? (sums[c] * reciprocal) >> 32 : sums[c] / n);
            left = right;
        }
        top = bottom;
    }
}

void odxScaleDownMNu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                       uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride)
{
    const Resize image = {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride};
    groupMeans_(&image, 1);
}

void odxScaleDownMNInterleaveu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, uint8_t* dst, unsigned int dstWidth,
                                 unsigned int dstHeight, unsigned int dstStride)
{
    const Resize image = {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride};
    groupMeans_(&image, 2);
}
}
