#include "ondrix/harrisCorners.h"

#include "cpu/ondrixHarrisC.h"
#include "frame/entry.h"

using namespace odx;

namespace
{

// What the remote targets ask of every search, and the GPU of the detectors.
Limit search(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride)
{
    return pixels(width, height) & remote(4, src, stride) & remote(8, width);
}
template <class... Lists>
Limit detector(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, Lists... lists)
{
    return search(src, width, height, stride) & gpu(16, src, lists...) & gpu(8, stride);
}

} // namespace

// The names of the arguments are the ones that the lines of refused calls show.
extern "C" {

void odxCornerHarrisu8(const uint8_t* src, unsigned int width, unsigned int height, unsigned int stride,
                       unsigned int border, uint32_t* xy, unsigned int nCornersMax, uint32_t* numcorners,
                       int threshold)
{
    stride = packedIfZero(stride, width);
    const Call<odxCornerHarrisu8C> call(__func__, ODX_LIMITS(detector(src, width, height, stride, xy)));
    ODX_CHECK(src && xy && numcorners && width && height && (stride >= width) && width > 4 && height > 4);
    call(src, width, height, stride, border, xy, nCornersMax, numcorners, threshold);
}

void odxCornerHarrisInMasku8(const uint8_t* srcImg, unsigned int width, unsigned int height, unsigned int stride,
                             unsigned int border, uint32_t* xy, unsigned int nCornersMax, uint32_t* numcorners,
                             int threshold, const uint8_t* bitMask, unsigned int maskWidth,
                             unsigned int maskHeight)
{
    stride = packedIfZero(stride, width);
    const Call<odxCornerHarrisInMasku8C> call(__func__, ODX_LIMITS(detector(srcImg, width, height, stride, xy)));
    ODX_CHECK(srcImg && xy && numcorners && bitMask && width && height && (stride >= width) && maskHeight && maskWidth);
    call(srcImg, width, height, stride, border, xy, nCornersMax, numcorners, threshold, bitMask, maskWidth,
         maskHeight);
}

void odxCornerHarrisAdaptiveu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, unsigned int border, uint32_t* xy, unsigned int nCornersMax,
                               uint32_t* nCorners, int threshold)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const Call<odxCornerHarrisAdaptiveu8C> call(__func__,
                                                ODX_LIMITS(detector(src, srcWidth, srcHeight, srcStride, xy)));
    ODX_CHECK(src && xy && nCorners && srcWidth && srcHeight && srcStride >= srcWidth && srcWidth > 4 && srcHeight > 4);
    call(src, srcWidth, srcHeight, srcStride, border, xy, nCornersMax, nCorners, threshold);
}

void odxCornerHarrisScoreu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcStride, unsigned int border, uint32_t* xy, int32_t* scores,
                            unsigned int nCornersMax, uint32_t* nCorners, int threshold)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const Call<odxCornerHarrisScoreu8C> call(
        __func__, ODX_LIMITS(detector(src, srcWidth, srcHeight, srcStride, xy, scores)));
    ODX_CHECK(src && xy && scores && nCorners && srcWidth && srcHeight && srcStride >= srcWidth && srcWidth > 4 && srcHeight > 4);
    call(src, srcWidth, srcHeight, srcStride, border, xy, scores, nCornersMax, nCorners, threshold);
}

odxStatus odxLocalHarrisMaxu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, unsigned int x, unsigned int y, unsigned int radius,
                              uint32_t* maxX, uint32_t* maxY, int32_t* maxResponse)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const Call<odxLocalHarrisMaxu8C> call(__func__, ODX_LIMITS(search(src, srcWidth, srcHeight, srcStride)));
    ODX_CHECK(src && maxX && maxY && maxResponse && srcWidth && srcHeight && srcStride >= srcWidth);
    return call(src, srcWidth, srcHeight, srcStride, x, y, radius, maxX, maxY, maxResponse);
}

void odxGoodFeatureToTracku8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, unsigned int border, uint32_t* xy, unsigned int nCornersMax,
                             uint32_t* nCorners, float qualityLevel, unsigned int minDistance)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const Call<odxGoodFeatureToTracku8C> call(__func__,
                                              ODX_LIMITS(detector(src, srcWidth, srcHeight, srcStride, xy)));
    ODX_CHECK(src && xy && nCorners && srcWidth && srcHeight && srcStride >= srcWidth && srcWidth > 4 && srcHeight > 4 && qualityLevel >= 0 && qualityLevel <= 1);
    call(src, srcWidth, srcHeight, srcStride, border, xy, nCornersMax, nCorners, qualityLevel, minDistance);
}

void odxCornerRefineSubPixu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, float* xy, unsigned int nCorners, unsigned int halfWindow,
                             unsigned int maxIterations, float epsilon)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const Call<odxCornerRefineSubPixu8C> call(__func__, ODX_LIMITS(search(src, srcWidth, srcHeight, srcStride)));
    ODX_CHECK(src && xy && srcWidth && srcHeight && srcStride >= srcWidth && halfWindow >= 1 && halfWindow <= 15 && maxIterations >= 1 && epsilon >= 0);
    call(src, srcWidth, srcHeight, srcStride, xy, nCorners, halfWindow, maxIterations, epsilon);
}

uint32_t odxFindMultipleMaximau8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, const float* pos, const float* dir,
                                 unsigned int maxDistance, unsigned int maxNumMaxima, int minGradient,
                                 float maxAngleDiff, float* maxima, uint32_t* numMaxima)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    constexpr uint32_t kNoSearch = 1;
    const Call<odxFindMultipleMaximau8C, kNoSearch> call(__func__,
                                                         ODX_LIMITS(search(src, srcWidth, srcHeight, srcStride)));
    ODX_CHECK(src && pos && dir && maxima && numMaxima && srcWidth && srcHeight && srcStride >= srcWidth);
    return call(src, srcWidth, srcHeight, srcStride, pos, dir, maxDistance, maxNumMaxima, minGradient,
                maxAngleDiff, maxima, numMaxima);
}
}
