#include "ondrix/scaling.h"

#include "frame/entry.h"

using namespace odx;

namespace
{

// What reductions of bytes ask of the remote target: some operations of more than that.
template <class... Addresses>
Limit reduction(uint32_t width, uint32_t height, Addresses... addresses)
{
    return pixels(width, height) & remote(8, width) & remote(4, addresses...) & gpu(16, addresses...);
}

// Images that are upsampled, which are worth sending at any size.
Limit upsampling(const uint8_t* src, const uint8_t* dst)
{
    return remote(16, src, dst) & gpu(16, src, dst);
}

// Sizes of which one divides the other. Sizes of 0 are refused later.
bool divides(uint32_t dstSize, uint32_t srcSize)
{
    return dstSize == 0 || srcSize % dstSize == 0;
}

bool scalable(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, const uint8_t* dst,
              uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    return src && srcWidth && srcHeight && srcStride >= srcWidth && dst && dstWidth && dstHeight &&
           dstStride >= dstWidth;
}

} // namespace

extern "C" {

// clang-format off
// Means of k x k pixels.
#define ODX_REDUCTION(name, k) \
    int name(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst) \
    { \
        const Call<name##C> call(__func__, ODX_LIMITS(reduction(width, height, src, dst))); \
        if (!src || !dst || !width || !height || width % k != 0 || height % k != 0) return call.failure(); \
        return call(src, width, height, width, dst, width / k); \
    }
#define ODX_REDUCTION_V2(name, base, k, limits) \
    int name(const uint8_t* src, unsigned int width, unsigned int height, unsigned int srcStride, uint8_t* dst, \
             unsigned int dstStride) \
    { \
        srcStride = packedIfZero(srcStride, width); \
        dstStride = packedIfZero(dstStride, width / k); \
        const Call<base##C> call(__func__, ODX_LIMITS(limits)); \
        if (!src || !dst || !width || !height || width % k != 0 || height % k != 0) return call.failure(); \
        if (srcStride < width || dstStride < width / k) return call.failure(); \
        return call(src, width, height, srcStride, dst, dstStride); \
    }

ODX_REDUCTION(odxScaleDownBy2u8, 2)
ODX_REDUCTION(odxScaleDownBy4u8, 4)
ODX_REDUCTION_V2(odxScaleDownBy2u8_v2, odxScaleDownBy2u8, 2, pixels(width, height) & remote(4, src, dst, dstStride) & remote(8, srcStride) & gpu(16, src, dst) & gpu(8, srcStride, dstStride, width))
ODX_REDUCTION_V2(odxScaleDownBy4u8_v2, odxScaleDownBy4u8, 4, reduction(width, height, src, dst))

// Upsampling; an output row has `factor` bytes for each pixel or pair of the source, which has `channels`.
#define ODX_UPSAMPLING(name, channels, factor, condition) \
    void name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
              uint8_t* dst, unsigned int dstStride) \
    { \
        srcStride = packedIfZero(srcStride, uint64_t{channels} * srcWidth); \
        dstStride = packedIfZero(dstStride, uint64_t{factor} * srcWidth); \
        const Call<name##C> call(__func__, ODX_LIMITS(upsampling(src, dst))); \
        ODX_CHECK_AS(condition, src && dst && srcWidth && srcHeight && srcStride >= uint64_t{channels} * srcWidth && dstStride >= uint64_t{factor} * srcWidth); \
        call(src, srcWidth, srcHeight, srcStride, dst, dstStride); \
    }

ODX_UPSAMPLING(odxUpsampleVerticalu8, 1, 1, "src && srcWidth && srcHeight && dst && (srcStride >= srcWidth) && (dstStride >=srcWidth)")
ODX_UPSAMPLING(odxUpsampleHorizontalu8, 1, 2, "src && srcWidth && srcHeight && dst && (srcStride >= srcWidth) && (dstStride >= (2 * srcWidth))")
ODX_UPSAMPLING(odxUpsample2Du8, 1, 2, "src && srcWidth && srcHeight && dst && (srcStride >= srcWidth) && (dstStride >=(2 * srcWidth))")
ODX_UPSAMPLING(odxUpsampleVerticalInterleavedu8, 2, 2, "src && srcWidth && srcHeight && dst && (srcStride >= srcWidth * 2) && (dstStride >=srcWidth * 2)")
ODX_UPSAMPLING(odxUpsampleHorizontalInterleavedu8, 2, 4, "src && srcWidth && srcHeight && dst && (srcStride >= srcWidth * 2) && (dstStride >= srcWidth * 4)")
ODX_UPSAMPLING(odxUpsample2DInterleavedu8, 2, 4, "src && srcWidth && srcHeight && dst && (srcStride >= srcWidth * 2) && (dstStride >= srcWidth * 4)")

// Any sizes. A row has `channels` bytes for each pixel.
#define ODX_RESIZING(name, channels, condition, fits) \
    void name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
              uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride) \
    { \
        srcStride = packedIfZero(srcStride, uint64_t{channels} * srcWidth); \
        dstStride = packedIfZero(dstStride, uint64_t{channels} * dstWidth); \
        const Call<name##C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight))); \
        ODX_CHECK_AS(condition, src && dst && srcWidth && srcHeight && dstWidth && dstHeight && srcStride >= uint64_t{channels} * srcWidth && dstStride >= uint64_t{channels} * dstWidth && fits); \
        call(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride); \
    }

ODX_RESIZING(odxScaleDownMNu8, 1, "src && dst && srcWidth && srcHeight && dstWidth && dstHeight && (srcStride==0 || srcStride >=srcWidth) && (dstStride == 0 || dstStride >= dstWidth) && dstWidth * 20 > srcWidth && dstHeight * 20 > srcHeight", uint64_t{dstWidth} * 20 > srcWidth && uint64_t{dstHeight} * 20 > srcHeight)
ODX_RESIZING(odxScaleDownMNInterleaveu8, 2, "src && dst && srcWidth && srcHeight && dstWidth && dstHeight && (srcStride==0 || srcStride >=srcWidth*2) && (dstStride == 0 || dstStride >= dstWidth*2)", true)
ODX_RESIZING(odxScaleDownBLu8, 1, "src && srcWidth && srcHeight && (srcStride >= srcWidth) && dst && dstWidth && dstHeight && (dstStride >= dstWidth)", true)
ODX_RESIZING(odxScaleUpPolyu8, 1, "src && dst && srcWidth && srcHeight && (srcStride == 0 || srcStride >= srcWidth) && dstWidth && dstHeight && (dstStride == 0 || dstStride >= dstWidth)", true)
ODX_RESIZING(odxScaleUpPolyInterleaveu8, 2, "src && dst && srcWidth && srcHeight && dstWidth && dstHeight && (srcStride==0 || srcStride >=srcWidth*2) && (dstStride == 0 || dstStride >= dstWidth*2)", true)
// clang-format on

int odxScaleDown3To2u8(const uint8_t* src, unsigned int width, unsigned int height, unsigned int srcStride,
                       uint8_t* dst, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, width);
    dstStride = packedIfZero(dstStride, width / 3 * 2);
    const Call<odxScaleDown3To2u8C> call(__func__,
                                         ODX_LIMITS(bytes(srcStride, height) & remote(8, src, srcStride, dst) &
                                                    remote(2, dstStride) & gpu(16, src, dst)));
    if (!src || !dst || !width || !height || srcStride < width || dstStride < width / 3 * 2) return call.failure();
    return call(src, width, height, srcStride, dst, dstStride);
}

int odxScaleDownNNu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                     uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, dstWidth);
    const Call<odxScaleDownNNu8C> call(__func__, ODX_LIMITS(bytes(srcStride, srcHeight) & gpu(16, src, dst)));
    if (!scalable(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride)) return call.failure();
    return call(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride);
}

void odxScaleDownu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, uint8_t* dst,
                    unsigned int dstWidth, unsigned int dstHeight)
{
    if (!divides(dstWidth, srcWidth) || !divides(dstHeight, srcHeight)) return logError(__func__);
    const Call<odxScaleDownu8C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, dst)));
    ODX_CHECK_AS(
        "src && dst && width && height && dstWidth && dstHeight && width >= dstWidth && height >= dstHeight",
        src && dst && srcWidth && srcHeight && dstWidth && dstHeight);
    call(src, srcWidth, srcHeight, srcWidth, dst, dstWidth, dstHeight, dstWidth);
}

void odxScaleDownu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                       uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride)
{
    if (!divides(dstWidth, srcWidth) || !divides(dstHeight, srcHeight)) return logError(__func__);
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, dstWidth);
    const Call<odxScaleDownu8C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, dst)));
    // clang-format off
    ODX_CHECK(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstWidth && dstHeight && (dstStride >= dstWidth) && srcWidth >= dstWidth && srcHeight >= dstHeight);
    // clang-format on
    call(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride);
}

void odxScaleDownBy2Gaussian5x5u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst)
{
    if (width % 2 != 0 || height % 2 != 0) return logError(__func__);
    const Call<odxScaleDownBy2Gaussian5x5u8C> call(__func__, ODX_LIMITS(pixels(width, height)));
    ODX_CHECK_AS("src && dst && width && height && ((width & 1) == 0 ) && ((height & 1) == 0)",
                 src && dst && width && height);
    call(src, width, height, width, dst, width / 2);
}

void odxScaleDownBy2Gaussian5x5u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth / 2);
    const Call<odxScaleDownBy2Gaussian5x5u8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    ODX_CHECK(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth/2));
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void odxScaleDownBy2Gaussian5x5f32(const float* src, unsigned int width, unsigned int height, float* dst)
{
    const Call<odxScaleDownBy2Gaussian5x5f32C> call(__func__, ODX_LIMITS(pixels(width, height)));
    ODX_CHECK_AS("srcImg && width && height && ((width & 1) == 0 ) && ((height & 1) == 0)",
                 src && dst && width && height && width % 2 == 0 && height % 2 == 0);
    call(src, width, height, dst);
}

void odxScaleDownBy2Gaussian5x5f32_v2(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                      unsigned int srcStride, float* dst, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, uint64_t{srcWidth} * 4);
    dstStride = packedIfZero(dstStride, uint64_t{srcWidth} * 2);
    const Call<odxScaleDownBy2Gaussian5x5f32_v2C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    // clang-format off
    ODX_CHECK_AS("src && dst && srcWidth && srcHeight && ((srcWidth & 1) == 0 ) && ((srcHeight & 1) == 0) && (srcStride >= srcWidth*4) && (dstStride >= srcWidth*2)",
                 src && dst && srcWidth && srcHeight && srcWidth % 2 == 0 && srcHeight % 2 == 0 &&
                 srcStride >= uint64_t{srcWidth} * 4 && dstStride >= uint64_t{srcWidth} * 2);
    // clang-format on
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

odxStatus odxScaleDownBy2Gaussian3x3u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    const uint32_t outputs = srcWidth / 2 + srcWidth % 2;
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, outputs);
    const Call<odxScaleDownBy2Gaussian3x3u8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    if (!src || !dst || srcWidth < 3 || srcHeight < 3 || srcStride < srcWidth || dstStride < outputs) {
        return call.failure();
    }
    return call(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void odxScaleUpBy2Gaussian5x5u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst)
{
    const Call<odxScaleUpBy2Gaussian5x5u8C> call(__func__, ODX_LIMITS(pixels(width, height)));
    ODX_CHECK(src && dst && width && height);
    call(src, width, height, width, dst, width * 2);
}

void odxScaleUpBy2Gaussian5x5u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, uint64_t{srcWidth} * 2);
    const Call<odxScaleUpBy2Gaussian5x5u8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    ODX_CHECK_AS("src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth*2)",
                 src && dst && srcWidth && srcHeight && srcStride >= srcWidth &&
                     dstStride >= uint64_t{srcWidth} * 2);
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

odxStatus odxScaleu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                     uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride,
                     odxInterpolationType interpolation)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, dstWidth);
    const Call<odxScaleu8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    if (!scalable(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride) ||
        interpolation > ONDRIX_INTERPOLATION_AREA) {
        return call.failure();
    }
    return call(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, interpolation);
}

odxStatus odxScaleu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                        uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride,
                        odxInterpolationType interpolation, odxBorderType borderType, uint8_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, dstWidth);
    const Call<odxScaleu8_v2C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    if (!scalable(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride) ||
        interpolation > ONDRIX_INTERPOLATION_AREA || borderType > ONDRIX_BORDER_REPLICATE) {
        return call.failure();
    }
    return call(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, interpolation,
                borderType, borderValue);
}
}
