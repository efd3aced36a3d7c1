#include "ondrix/fastCorners.h"

#include "frame/entry.h"

using namespace odx;

namespace
{

constexpr uint32_t kCircleRadius = 3;

// The border that a call has: at least that of the circle. 64 bits, so that twice any border is compared as it is.
uint64_t effectiveBorder(uint32_t border)
{
    return border < kCircleRadius ? kCircleRadius : border;
}

// What every target asks of the image, and of the lists that it finds.
template <class... Lists>
Limit corners(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, Lists... lists)
{
    return pixels(width, height) & remote(8, src, stride) & gpu(16, src, lists...);
}

// What the GPU asks besides for suppression. Without it any working memory will do.
template <class... Buffers>
Limit suppression(uint32_t width, uint32_t stride, uint32_t enabled, const uint32_t* tempBuf, Buffers... buffers)
{
    return gpu(16, buffers...) & gpu(8, stride) & gpuIf(((buffers != nullptr) & ...)) & gpuIf(stride >= width) &
           gpuIf((enabled == 0) | ((tempBuf != nullptr) & multiplesOf(16, tempBuf)));
}

} // namespace

// The names of the arguments are the ones that the lines of refused calls show.
extern "C" {

void odxCornerFast9u8(const uint8_t* src, unsigned int width, unsigned int height, unsigned int stride,
                      int barrier, unsigned int requestedBorder, uint32_t* xy, unsigned int nCornersMax,
                      uint32_t* numcorners)
{
    stride = packedIfZero(stride, width);
    const uint64_t border = effectiveBorder(requestedBorder);
    const Call<odxCornerFast9u8C> call(__func__, ODX_LIMITS(corners(src, width, height, stride, xy)));
    ODX_CHECK(src && xy && numcorners && stride >= width && border*2 < width && border*2 < height);
    call(src, width, height, stride, barrier, static_cast<uint32_t>(border), xy, nCornersMax, numcorners);
}

void odxCornerFast9InMasku8(const uint8_t* src, unsigned int width, unsigned int height, unsigned int stride,
                            int barrier, unsigned int requestedBorder, uint32_t* xy, unsigned int nCornersMax,
                            uint32_t* numcorners, const uint8_t* bitMask, unsigned int maskWidth,
                            unsigned int maskHeight)
{
    stride = packedIfZero(stride, width);
    const uint64_t border = effectiveBorder(requestedBorder);
    const Call<odxCornerFast9InMasku8C> call(__func__, ODX_LIMITS(corners(src, width, height, stride, xy)));
    ODX_CHECK(src && xy && numcorners && bitMask && stride >= width && border*2 < width && border*2 < height);
    call(src, width, height, stride, barrier, static_cast<uint32_t>(border), xy, nCornersMax, numcorners, bitMask,
         maskWidth, maskHeight);
}

void odxCornerFast9Scoreu8(const uint8_t* src, unsigned int width, unsigned int height, unsigned int stride,
                           int barrier, unsigned int requestedBorder, uint32_t* xy, uint32_t* scores,
                           unsigned int nCornersMax, uint32_t* numcorners)
{
    stride = packedIfZero(stride, width);
    const uint64_t border = effectiveBorder(requestedBorder);
    const Call<odxCornerFast9Scoreu8C> call(__func__, ODX_LIMITS(corners(src, width, height, stride, xy, scores)));
    ODX_CHECK(src && xy && scores && numcorners && stride >= width && border*2 < width && border*2 < height);
    call(src, width, height, stride, barrier, static_cast<uint32_t>(border), xy, scores, nCornersMax, numcorners);
}

void odxCornerFast9InMaskScoreu8(const uint8_t* src, unsigned int width, unsigned int height, unsigned int stride,
                                 int barrier, unsigned int requestedBorder, uint32_t* xy, uint32_t* scores,
                                 unsigned int nCornersMax, uint32_t* numcorners, const uint8_t* bitMask,
                                 unsigned int maskWidth, unsigned int maskHeight)
{
    stride = packedIfZero(stride, width);
    const uint64_t border = effectiveBorder(requestedBorder);
    const Call<odxCornerFast9InMaskScoreu8C> call(__func__,
                                                  ODX_LIMITS(corners(src, width, height, stride, xy, scores)));
    ODX_CHECK(src && xy && scores && numcorners && bitMask && stride >= width && border*2 < width && border*2 < height);
    call(src, width, height, stride, barrier, static_cast<uint32_t>(border), xy, scores, nCornersMax, numcorners,
         bitMask, maskWidth, maskHeight);
}

void odxCornerFast9Scoreu8_v2(const uint8_t* src, unsigned int width, unsigned int height, unsigned int stride,
                              int barrier, unsigned int requestedBorder, uint32_t* xy, uint32_t* scores,
                              unsigned int nCornersMax, uint32_t* numcorners, unsigned int nmsEnabled,
                              uint32_t* tempBuf)
{
    stride = packedIfZero(stride, width);
    const uint64_t border = effectiveBorder(requestedBorder);
    const Call<odxCornerFast9Scoreu8_v2C> call(
        __func__, ODX_LIMITS(corners(src, width, height, stride, xy, scores) &
                             suppression(width, stride, nmsEnabled, tempBuf, src, xy, scores)));
    ODX_CHECK(src && xy && scores && numcorners && stride >= width && border*2 < width && border*2 < height);
    call(src, width, height, stride, barrier, static_cast<uint32_t>(border), xy, scores, nCornersMax, numcorners,
         nmsEnabled, tempBuf);
}

void odxCornerFast9InMaskScoreu8_v2(const uint8_t* src, unsigned int width, unsigned int height,
                                    unsigned int stride, int barrier, unsigned int requestedBorder, uint32_t* xy,
                                    uint32_t* scores, unsigned int nCornersMax, uint32_t* numcorners,
                                    const uint8_t* bitMask, unsigned int maskWidth, unsigned int maskHeight,
                                    unsigned int nmsEnabled, uint32_t* tempBuf)
{
    stride = packedIfZero(stride, width);
    const uint64_t border = effectiveBorder(requestedBorder);
    const Call<odxCornerFast9InMaskScoreu8_v2C> call(
        __func__, ODX_LIMITS(corners(src, width, height, stride, xy, scores) &
                             suppression(width, stride, nmsEnabled, tempBuf, src, xy, scores, bitMask)));
    ODX_CHECK(src && xy && scores && numcorners && bitMask && stride >= width && border*2 < width && border*2 < height);
    call(src, width, height, stride, barrier, static_cast<uint32_t>(border), xy, scores, nCornersMax, numcorners,
         bitMask, maskWidth, maskHeight, nmsEnabled, tempBuf);
}

void odxCornerFast10u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                       int barrier, unsigned int requestedBorder, uint32_t* xy, unsigned int nCornersMax,
                       uint32_t* nCorners)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const uint64_t border = effectiveBorder(requestedBorder);
    const Call<odxCornerFast10u8C> call(__func__, ODX_LIMITS(corners(src, srcWidth, srcHeight, srcStride, xy)));
    ODX_CHECK(src && xy && nCorners && srcStride >= srcWidth && border*2 < srcWidth && border*2 < srcHeight);
    call(src, srcWidth, srcHeight, srcStride, barrier, static_cast<uint32_t>(border), xy, nCornersMax, nCorners);
}

void odxCornerFast10InMasku8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, int barrier, unsigned int requestedBorder, uint32_t* xy,
                             unsigned int nCornersMax, uint32_t* nCorners, const uint8_t* mask,
                             unsigned int maskWidth, unsigned int maskHeight)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const uint64_t border = effectiveBorder(requestedBorder);
    const Call<odxCornerFast10InMasku8C> call(__func__,
                                              ODX_LIMITS(corners(src, srcWidth, srcHeight, srcStride, xy)));
    ODX_CHECK(src && xy && nCorners && mask && srcStride >= srcWidth && border*2 < srcWidth && border*2 < srcHeight);
    call(src, srcWidth, srcHeight, srcStride, barrier, static_cast<uint32_t>(border), xy, nCornersMax, nCorners,
         mask, maskWidth, maskHeight);
}

void odxCornerFast10Scoreu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcStride, int barrier, unsigned int requestedBorder, uint32_t* xy,
                            uint32_t* scores, unsigned int nCornersMax, uint32_t* nCorners,
                            unsigned int nmsEnabled, uint32_t* tempBuf)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const uint64_t border = effectiveBorder(requestedBorder);
    const Call<odxCornerFast10Scoreu8C> call(
        __func__, ODX_LIMITS(corners(src, srcWidth, srcHeight, srcStride, xy, scores) &
                             suppression(srcWidth, srcStride, nmsEnabled, tempBuf, src, xy, scores)));
    ODX_CHECK(src && xy && scores && nCorners && srcStride >= srcWidth && border*2 < srcWidth && border*2 < srcHeight);
    call(src, srcWidth, srcHeight, srcStride, barrier, static_cast<uint32_t>(border), xy, scores, nCornersMax,
         nCorners, nmsEnabled, tempBuf);
}

void odxCornerFast10InMaskScoreu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, int barrier, unsigned int requestedBorder, uint32_t* xy,
                                  uint32_t* scores, unsigned int nCornersMax, uint32_t* nCorners,
                                  const uint8_t* mask, unsigned int maskWidth, unsigned int maskHeight,
                                  unsigned int nmsEnabled, uint32_t* tempBuf)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const uint64_t border = effectiveBorder(requestedBorder);
    const Call<odxCornerFast10InMaskScoreu8C> call(
        __func__, ODX_LIMITS(corners(src, srcWidth, srcHeight, srcStride, xy, scores) &
                             suppression(srcWidth, srcStride, nmsEnabled, tempBuf, src, xy, scores, mask)));
    ODX_CHECK(src && xy && scores && nCorners && mask && srcStride >= srcWidth && border*2 < srcWidth && border*2 < srcHeight);
    call(src, srcWidth, srcHeight, srcStride, barrier, static_cast<uint32_t>(border), xy, scores, nCornersMax,
         nCorners, mask, maskWidth, maskHeight, nmsEnabled, tempBuf);
}
}
