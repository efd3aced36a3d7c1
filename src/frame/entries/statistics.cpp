#include "ondrix/statistics.h"

#include "cpu/ondrixStatC.h"
#include "frame/entry.h"

using namespace odx;

namespace
{

// Positions, counts and other single results need no alignment, the width none for the GPU.
Limit statistics(const void* src, uint32_t width, uint32_t height, uint32_t stride)
{
    return pixels(width, height) & aligned(src, stride);
}

} // namespace

// clang-format off
// Bytes of a packed row, as the text of a check has them.
#define ODX_ROW_uint8_t srcWidth
#define ODX_ROW_int16_t srcWidth*sizeof(int16_t)
#define ODX_ROW_uint16_t srcWidth*sizeof(uint16_t)
#define ODX_ROW_int32_t srcWidth*sizeof(int32_t)
#define ODX_ROW_uint32_t srcWidth*sizeof(uint32_t)
#define ODX_ROW_float srcWidth*sizeof(float)

// The text is the condition with its macros replaced.
#define ODX_CHECK_REPLACED(...) ODX_CHECK_TEXT(__VA_ARGS__)
#define ODX_CHECK_TEXT(...) ODX_CHECK_AS(#__VA_ARGS__, __VA_ARGS__)

#define ODX_MIN_MAX(name, T) \
    void name(const T* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, T* minValue, \
              T* maxValue, uint32_t* minXY, uint32_t* maxXY) \
    { \
        srcStride = packedIfZero(srcStride, ODX_ROW_##T); \
        const Call<name##C> call(__func__, ODX_LIMITS(statistics(src, srcWidth, srcHeight, srcStride))); \
        ODX_CHECK_REPLACED(src && srcWidth && srcHeight && (srcStride >= ODX_ROW_##T)); \
        call(src, srcWidth, srcHeight, srcStride, minValue, maxValue, minXY, maxXY); \
    }
#define ODX_ALL_MIN_MAX(name, T) \
    odxStatus name(const T* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, T* minValue, \
                   T* maxValue, uint32_t* minXY, uint32_t* maxXY, unsigned int capacity, uint32_t* minCount, \
                   uint32_t* maxCount) \
    { \
        srcStride = packedIfZero(srcStride, ODX_ROW_##T); \
        const Call<name##C> call(__func__, ODX_LIMITS(statistics(src, srcWidth, srcHeight, srcStride))); \
        ODX_CHECK_REPLACED(src && srcWidth && srcHeight && (srcStride >= ODX_ROW_##T) && minValue && maxValue && minCount && maxCount && ((minXY && maxXY) || !capacity)); \
        return call(src, srcWidth, srcHeight, srcStride, minValue, maxValue, minXY, maxXY, capacity, minCount, maxCount); \
    }
#define ODX_MOMENTS(name, T) \
    void name(const T* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
              unsigned int binary, odxMoments* moments) \
    { \
        srcStride = packedIfZero(srcStride, ODX_ROW_##T); \
        const Call<name##C> call(__func__, ODX_LIMITS(statistics(src, srcWidth, srcHeight, srcStride))); \
        ODX_CHECK_REPLACED(src && srcWidth && srcHeight && (srcStride >= ODX_ROW_##T) && (binary <= 1) && moments); \
        call(src, srcWidth, srcHeight, srcStride, binary, moments); \
    }

extern "C" {

ODX_MIN_MAX(odxMinMaxLocu8, uint8_t)
ODX_MIN_MAX(odxMinMaxLocs16, int16_t)
ODX_MIN_MAX(odxMinMaxLocu16, uint16_t)
ODX_MIN_MAX(odxMinMaxLocs32, int32_t)
ODX_MIN_MAX(odxMinMaxLocu32, uint32_t)
ODX_MIN_MAX(odxMinMaxLocf32, float)
ODX_ALL_MIN_MAX(odxMinMaxLocu8_v2, uint8_t)
ODX_ALL_MIN_MAX(odxMinMaxLocs16_v2, int16_t)
ODX_ALL_MIN_MAX(odxMinMaxLocu16_v2, uint16_t)
ODX_ALL_MIN_MAX(odxMinMaxLocs32_v2, int32_t)
ODX_ALL_MIN_MAX(odxMinMaxLocu32_v2, uint32_t)
ODX_ALL_MIN_MAX(odxMinMaxLocf32_v2, float)
ODX_MOMENTS(odxImageMomentsu8, uint8_t)
ODX_MOMENTS(odxImageMomentss32, int32_t)
ODX_MOMENTS(odxImageMomentsf32, float)

void odxImageIntensityHistogram(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, uint32_t* histogram)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const Call<odxImageIntensityHistogramC> call(__func__, ODX_LIMITS(statistics(src, srcWidth, srcHeight, srcStride)));
    ODX_CHECK(src && srcWidth && srcHeight && (srcStride >= srcWidth) && histogram);
    call(src, srcWidth, srcHeight, srcStride, histogram);
}

void odxImageSpatialHistogramu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, unsigned int cellsX, unsigned int cellsY,
                                uint32_t* histograms)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const Call<odxImageSpatialHistogramu8C> call(__func__, ODX_LIMITS(statistics(src, srcWidth, srcHeight, srcStride)));
    ODX_CHECK(src && srcWidth && srcHeight && (srcStride >= srcWidth) && cellsX && cellsY && (cellsX <= srcWidth) && (cellsY <= srcHeight) && histograms);
    call(src, srcWidth, srcHeight, srcStride, cellsX, cellsY, 256u, 256u, histograms);
}

void odxImageSpatialHistogramu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int srcStride, unsigned int cellsX, unsigned int cellsY,
                                   unsigned int bins, unsigned int range, uint32_t* histograms)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const Call<odxImageSpatialHistogramu8C> call(__func__, ODX_LIMITS(statistics(src, srcWidth, srcHeight, srcStride)));
    ODX_CHECK(src && srcWidth && srcHeight && (srcStride >= srcWidth) && cellsX && cellsY && (cellsX <= srcWidth) && (cellsY <= srcHeight) && histograms && bins && (bins <= range) && (range <= 256));
    call(src, srcWidth, srcHeight, srcStride, cellsX, cellsY, bins, range, histograms);
}

void odxImageHistogramEqualizeu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxImageHistogramEqualizeu8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight) & aligned(src, srcStride, dst, dstStride)));
    ODX_CHECK(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth));
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

// The region's pixels are the work.
void odxImageIntensityStats(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcStride, unsigned int x, unsigned int y, unsigned int width,
                            unsigned int height, float* mean, float* variance)
{
    if (!((x <= srcWidth) && (width <= srcWidth - x) && (y <= srcHeight) && (height <= srcHeight - y))) return logError(__func__);
    srcStride = packedIfZero(srcStride, srcWidth);
    const Call<odxImageIntensityStatsC> call(__func__, ODX_LIMITS(statistics(src, width, height, srcStride)));
    ODX_CHECK(src && width && height && (srcStride >= srcWidth) && mean && variance);
    call(src, srcWidth, srcHeight, srcStride, x, y, width, height, mean, variance);
}

odxStatus odxImageIntensityStats_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, unsigned int x, unsigned int y, unsigned int width,
                                    unsigned int height, float* mean, float* variance,
                                    odxVarianceEstimator estimator)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const Call<odxImageIntensityStats_v2C> call(__func__, ODX_LIMITS(statistics(src, width, height, srcStride)));
    ODX_CHECK(src && width && height && (x <= srcWidth) && (width <= srcWidth - x) && (y <= srcHeight) && (height <= srcHeight - y) && (srcStride >= srcWidth) && mean && variance && (estimator <= ONDRIX_VARIANCE_SAMPLE));
    return call(src, srcWidth, srcHeight, srcStride, x, y, width, height, mean, variance, estimator);
}

odxStatus odxNormalizeLocalBoxu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, unsigned int N, uint8_t* dst, unsigned int dstStride,
                                 unsigned int deviation, unsigned int minDeviation)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxNormalizeLocalBoxu8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight) & aligned(src, srcStride, dst, dstStride)));
    ODX_CHECK(src && dst && srcWidth && srcHeight && (N & 1) && (N >= 3) && (N <= 31) && (srcStride >= srcWidth) && (dstStride >= srcWidth) && deviation && (deviation <= 127) && minDeviation && (minDeviation <= 127));
    return call(src, srcWidth, srcHeight, srcStride, N, dst, dstStride, deviation, minDeviation);
}

odxStatus odxNormalizeLocalBoxf32(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, unsigned int N, float* dst, unsigned int dstStride,
                                  float minDeviation)
{
    srcStride = packedIfZero(srcStride, srcWidth*sizeof(float));
    dstStride = packedIfZero(dstStride, srcWidth*sizeof(float));
    const Call<odxNormalizeLocalBoxf32C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight) & aligned(src, srcStride, dst, dstStride)));
    ODX_CHECK(src && dst && srcWidth && srcHeight && (N & 1) && (N >= 3) && (N <= 31) && (srcStride >= srcWidth*sizeof(float)) && (dstStride >= srcWidth*sizeof(float)) && (minDeviation > 0));
    return call(src, srcWidth, srcHeight, srcStride, N, dst, dstStride, minDeviation);
}
}
// clang-format on
