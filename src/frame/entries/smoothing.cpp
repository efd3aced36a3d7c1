#include "ondrix/smoothing.h"

#include "frame/entry.h"

using namespace odx;

namespace
{

// A pixel count above 25344, written as this family's limits put it.
bool worthSendingImage(uint32_t width, uint32_t height)
{
    return worthSending(uint64_t{width} * height);
}

// The 3x3 Gaussian's rows come in groups of six and at least one more pixel. In unsigned arithmetic this refuses
// the widths 2 to 6.
bool gaussianRowsFit(uint32_t width)
{
    return (width - 2) / 6 * 6 >= width - 7;
}

// What the functions with a border type ask of their arguments, in silence.
bool usable(const void* src, uint32_t width, uint32_t height, uint32_t srcStride, const void* dst,
            uint32_t dstStride, odxBorderType borderType)
{
    return borderType <= ONDRIX_BORDER_REPLICATE && src && dst && width && height && srcStride && dstStride;
}

// Operations without limits of their own go to any target that was selected.
bool anything()
{
    return true;
}

} // namespace

extern "C" {

void odxFilterGaussian3x3u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst, int border)
{
    if (!gaussianRowsFit(width)) return logError(__func__);
    const Call<odxFilterGaussian3x3u8C> call(
        __func__,
        [&] {
            return worthSendingImage(width, height) && height >= 3 && width >= 4 &&
                   multiplesOf(4, src, width, dst);
        },
        [&] { return multiplesOf(2, width, height); });
    ODX_CHECK(src && dst && width && height);
    call(src, width, height, width, dst, width, border);
}

void odxFilterGaussian3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border)
{
    if (!gaussianRowsFit(srcWidth)) return logError(__func__);
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterGaussian3x3u8C> call(
        __func__,
        [&] {
            return worthSendingImage(srcWidth, srcHeight) && srcHeight >= 3 && srcWidth >= 4 &&
                   multiplesOf(4, src, srcWidth, srcStride, dst, dstStride);
        },
        [&] { return multiplesOf(2, srcWidth, srcHeight); });
    ODX_CHECK(src && dst && (srcWidth > 1) && (srcHeight > 1) && (srcStride >= srcWidth) && (dstStride >= srcWidth));
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride, border);
}

odxStatus odxFilterGaussian3x3u8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                    odxBorderType borderType, uint32_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterGaussian3x3u8_v3C> call(
        __func__,
        [&] {
            return worthSendingImage(srcWidth, srcHeight) && srcHeight >= 3 && srcWidth >= 4 &&
                   multiplesOf(4, src, srcWidth, srcStride, dst, dstStride);
        },
        [&] { return multiplesOf(2, srcWidth, srcHeight); });
    if (!usable(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType)) return call.failure();
    return call(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType, borderValue);
}

void odxFilterGaussian5x5u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst, int border)
{
    const Call<odxFilterGaussian5x5u8C> call(
        __func__, [&] { return worthSendingImage(width, height); }, anything);
    ODX_CHECK(src && dst && width && height && height > 4 && width > 4);
    call(src, width, height, width, dst, width, border);
}

void odxFilterGaussian5x5u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterGaussian5x5u8C> call(
        __func__, [&] { return worthSendingImage(srcWidth, srcHeight); }, anything);
    ODX_CHECK(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride && srcHeight > 4 && srcWidth > 4);
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride, border);
}

void odxFilterGaussian11x11u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst,
                              int border)
{
    const Call<odxFilterGaussian11x11u8C> call(
        __func__, [&] { return worthSendingImage(width, height); }, anything);
    ODX_CHECK(src && dst && width && height && height > 10 && width > 10);
    call(src, width, height, width, dst, width, border);
}

void odxFilterGaussian11x11u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterGaussian11x11u8C> call(
        __func__, [&] { return worthSendingImage(srcWidth, srcHeight); }, anything);
    ODX_CHECK(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride && srcHeight > 10 && srcWidth > 10);
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride, border);
}

void odxFilterGaussian5x5s16(const int16_t* src, unsigned int width, unsigned int height, int16_t* dst, int border)
{
    const Call<odxFilterGaussian5x5s16C> call(
        __func__, [&] { return worthSendingImage(width, height); }, anything);
    ODX_CHECK(src && dst && width && height && height > 1);
    const uint32_t stride = width * static_cast<uint32_t>(sizeof *src);
    call(src, width, height, stride, dst, stride, border);
}

void odxFilterGaussian5x5s16_v2(const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, int16_t* dst, unsigned int dstStride, int border)
{
    srcStride = packedIfZero(srcStride, srcWidth * sizeof *src);
    dstStride = packedIfZero(dstStride, srcWidth * sizeof *dst);
    const Call<odxFilterGaussian5x5s16C> call(
        __func__, [&] { return worthSendingImage(srcWidth, srcHeight); }, anything);
    ODX_CHECK(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*sizeof(int16_t)) && (dstStride >= srcWidth*sizeof(int16_t)) && srcHeight > 1);
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride, border);
}

void odxFilterGaussian5x5s32(const int32_t* src, unsigned int width, unsigned int height, int32_t* dst, int border)
{
    const Call<odxFilterGaussian5x5s32C> call(
        __func__, [&] { return worthSendingImage(width, height); }, anything);
    ODX_CHECK(src && dst && width && height && width > 4 && height > 4);
    const uint32_t stride = width * static_cast<uint32_t>(sizeof *src);
    call(src, width, height, stride, dst, stride, border);
}

void odxFilterGaussian5x5s32_v2(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, int32_t* dst, unsigned int dstStride, int border)
{
    srcStride = packedIfZero(srcStride, srcWidth * sizeof *src);
    dstStride = packedIfZero(dstStride, srcWidth * sizeof *dst);
    const Call<odxFilterGaussian5x5s32C> call(
        __func__, [&] { return worthSendingImage(srcWidth, srcHeight); }, anything);
    ODX_CHECK(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*sizeof(int32_t)) && (dstStride >= srcWidth*sizeof(int32_t)) && srcWidth > 4 && srcHeight > 4);
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride, border);
}

void odxBoxFilter3x3u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                       uint8_t* dst, unsigned int dstStride)
{
    const Call<odxBoxFilter3x3u8C> call(
        __func__, [&] { return worthSendingImage(srcWidth, srcHeight); }, anything);
    ODX_CHECK(src && dst && srcWidth && srcHeight && srcStride && dstStride && ( srcStride >=srcWidth ) && srcWidth > 2 && srcHeight > 2);
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

odxStatus odxBoxFilter3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                               odxBorderType borderType, uint32_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxBoxFilter3x3u8_v2C> call(
        __func__, [&] { return worthSendingImage(srcWidth, srcHeight); }, anything);
    if (!usable(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType)) return call.failure();
    return call(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType, borderValue);
}

void odxBoxFilter5x5u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                       uint8_t* dst, unsigned int dstStride)
{
    const Call<odxBoxFilter5x5u8C> call(
        __func__, [&] { return worthSendingImage(srcWidth, srcHeight); }, anything);
    ODX_CHECK(src && dst && srcWidth && srcHeight && srcStride && dstStride && (srcStride >=srcWidth) && srcWidth > 4 && srcHeight > 4);
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void odxBoxFilter11x11u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                         uint8_t* dst, unsigned int dstStride)
{
    const Call<odxBoxFilter11x11u8C> call(
        __func__, [&] { return worthSendingImage(srcWidth, srcHeight); }, anything);
    ODX_CHECK(src && dst && srcWidth && srcHeight && srcStride && dstStride && ( srcStride >=srcWidth) && srcWidth > 10 && srcHeight > 10);
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void odxBoxFilterNxNf32(const float* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                        unsigned int N, float* dst, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth * sizeof *src);
    dstStride = packedIfZero(dstStride, srcWidth * sizeof *dst);
    const Call<odxBoxFilterNxNf32C> call(
        __func__,
        [&] {
            return worthSending(uint64_t{srcWidth} * srcHeight, sizeof *src) && multiplesOf(8, src, srcStride);
        },
        anything);
    ODX_CHECK(src && dst && srcWidth && srcHeight && (N > 1) && ((src == dst && srcStride == dstStride) || (src != dst)) && (srcStride >=srcWidth*4) && (dstStride >=srcWidth*4) && srcWidth > 4 && srcHeight > 4);
    call(src, srcWidth, srcHeight, srcStride, N, dst, dstStride);
}

void odxFilterMedian3x3u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst)
{
    const Call<odxFilterMedian3x3u8C> call(
        __func__,
        [&] { return height >= 4 && worthSendingImage(width, height) && multiplesOf(8, src, width, dst); },
        [&] { return multiplesOf(16, src, dst) && multiplesOf(8, width); });
    ODX_CHECK(src && dst && width && height);
    call(src, width, height, width, dst, width);
}

void odxFilterMedian3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterMedian3x3u8C> call(
        __func__,
        [&] {
            return srcHeight >= 4 && worthSendingImage(srcWidth, srcHeight) &&
                   multiplesOf(8, src, srcWidth, srcStride, dst, dstStride);
        },
        [&] { return multiplesOf(16, src, dst) && multiplesOf(8, srcWidth); });
    ODX_CHECK(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride);
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

odxStatus odxFilterMedian3x3u8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                  odxBorderType borderType, uint32_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterMedian3x3u8_v3C> call(
        __func__,
        [&] {
            return srcHeight >= 4 && worthSendingImage(srcWidth, srcHeight) &&
                   multiplesOf(8, src, srcWidth, srcStride, dst, dstStride);
        },
        [&] { return multiplesOf(16, src, dst) && multiplesOf(8, srcWidth); });
    if (!usable(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType)) return call.failure();
    return call(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType, borderValue);
}

odxStatus odxFilterMedianMxNs16(const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, unsigned int M, unsigned int N, int16_t* dst,
                                unsigned int dstStride)
{
    const Call<odxFilterMedianMxNs16C> call(
        __func__, [&] { return worthSendingImage(srcWidth, srcHeight); }, anything);
    const uint64_t packed = sizeof *src * uint64_t{srcWidth};
    const bool windowFits = M >= 3 && N >= 3 && M % 2 == 1 && N % 2 == 1;
    if (!src || !dst || !srcWidth || !srcHeight || srcStride < packed || dstStride < packed || !windowFits) {
        return call.failure();
    }
    return call(src, srcWidth, srcHeight, srcStride, M, N, dst, dstStride);
}
}
