#include "ondrix/tracking.h"

#include "cpu/ondrixNCCPatchC.h"
#include "cpu/ondrixTrackC.h"
#include "frame/entry.h"

using namespace odx;

namespace
{

// What the targets ask of the search of patches, and the GPU of all but the rectangle.
Limit patchSearch(const uint8_t* src, uint32_t width, uint32_t height, uint32_t searchWidth, int subPixel)
{
    constexpr uint32_t kGpuSearch = 11;
    return image(width, height) & aligned(src) & gpuIf(searchWidth <= kGpuSearch && subPixel == 0);
}

} // namespace

// Mean shift and the adaptive trackers; `bytes` with its sign is what the check shows of the size of a weight.
#define ODX_WINDOW_TRACKER(name, Weight, bytes, parameters, arguments)                                          \
    unsigned int name(const Weight* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
                      odxWindow* window, unsigned int iterationLimit, float epsilon parameters)                 \
    {                                                                                                           \
        srcStride = packedIfZero(srcStride, srcWidth * sizeof(Weight));                                         \
        const Call<name##C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, srcStride)));   \
        ODX_CHECK_AS("src && window && srcWidth && srcHeight && (srcStride >= srcWidth" bytes ")",              \
                     src&& window&& srcWidth&& srcHeight&& srcStride >= uint64_t{srcWidth} * sizeof(Weight));   \
        return call(src, srcWidth, srcHeight, srcStride, window, iterationLimit, epsilon arguments);            \
    }
#define ODX_NOTHING
#define ODX_ELLIPSE_PARAMETER , odxTrackedEllipse* ellipse
#define ODX_ELLIPSE , ellipse
#define ODX_MEAN_SHIFT(name, Weight, bytes) ODX_WINDOW_TRACKER(name, Weight, bytes, ODX_NOTHING, ODX_NOTHING)
#define ODX_ADAPTIVE(name, Weight, bytes) \
    ODX_WINDOW_TRACKER(name, Weight, bytes, ODX_ELLIPSE_PARAMETER, ODX_ELLIPSE)

// A search around a centre, without and with a threshold.
#define ODX_PATCH_SEARCH(name, base, parameters, threshold)                                                     \
    int name(const uint8_t* patch, const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,           \
             unsigned int xSearchCenter, unsigned int ySearchCenter, unsigned int searchWidth, uint16_t* bestX, \
             uint16_t* bestY, int32_t* bestNCC, int doSubPixel, float* subX, float* subY parameters)            \
    {                                                                                                           \
        const Call<base##C> call(__func__,                                                                      \
                                 ODX_LIMITS(patchSearch(src, srcWidth, srcHeight, searchWidth, doSubPixel)));   \
        ODX_CHECK(patch && src && bestX && bestY && bestNCC && srcWidth && srcHeight && searchWidth && (!doSubPixel || (subX && subY)));                                                             \
        return call(patch, src, srcWidth, srcHeight, xSearchCenter, ySearchCenter, searchWidth, bestX, bestY,   \
                    bestNCC, doSubPixel, subX, subY, threshold);                                                \
    }
#define ODX_THRESHOLD_PARAMETER , int32_t filterLowVariance
#define ODX_PATCH_SEARCH_ALL(name, base) ODX_PATCH_SEARCH(name, base, ODX_NOTHING, 0)
#define ODX_PATCH_SEARCH_CONTRAST(name, base) \
    ODX_PATCH_SEARCH(name, base, ODX_THRESHOLD_PARAMETER, filterLowVariance)

// The names of the arguments are the ones that the lines of refused calls show.
extern "C" {

ODX_MEAN_SHIFT(odxMeanShiftu8, uint8_t, "")
ODX_MEAN_SHIFT(odxMeanShifts32, int32_t, "*4")
ODX_MEAN_SHIFT(odxMeanShiftf32, float, "*4")
ODX_ADAPTIVE(odxConAdaTracku8, uint8_t, "")
ODX_ADAPTIVE(odxConAdaTracks32, int32_t, "*4")
ODX_ADAPTIVE(odxConAdaTrackf32, float, "*4")

ODX_PATCH_SEARCH_ALL(odxNCCPatchOnSquare8x8u8, odxNCCPatchOnSquare8x8u8)
ODX_PATCH_SEARCH_CONTRAST(odxNCCPatchOnSquare8x8u8_v2, odxNCCPatchOnSquare8x8u8)
ODX_PATCH_SEARCH_ALL(odxNCCPatchOnCircle8x8u8, odxNCCPatchOnCircle8x8u8)
ODX_PATCH_SEARCH_CONTRAST(odxNCCPatchOnCircle8x8u8_v2, odxNCCPatchOnCircle8x8u8)

int odxNCCPatchesOnRectu8(const uint8_t* patches, unsigned int numPatches, const uint8_t* src,
                          unsigned int srcWidth, unsigned int srcHeight, unsigned int xSearchCenter,
                          unsigned int ySearchCenter, unsigned int searchWidth, unsigned int searchHeight,
                          int32_t filterLowVariance, uint16_t* bestX, uint16_t* bestY, int32_t* bestNCC,
                          int32_t* status)
{
    const Call<odxNCCPatchesOnRectu8C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src)));
    ODX_CHECK(patches && numPatches && src && srcWidth && srcHeight && searchWidth && searchHeight && bestX && bestY && bestNCC);
    return call(patches, numPatches, src, srcWidth, srcHeight, xSearchCenter, ySearchCenter, searchWidth,
                searchHeight, filterLowVariance, bestX, bestY, bestNCC, status);
}

void odxTrackBMOpticalFlow16x16u8(const uint8_t* src1, const uint8_t* src2, unsigned int srcWidth,
                                  unsigned int srcHeight, unsigned int srcStride, unsigned int step,
                                  unsigned int searchRadius, int16_t* flowXY, uint16_t* sad)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const Call<odxTrackBMOpticalFlow16x16u8C> call(
        __func__, ODX_LIMITS(pixels(srcWidth, srcHeight) & aligned(src1, src2) &
                             remote(kRemoteAlignment, srcStride) & gpu(kGpuAlignment, srcStride)));
    ODX_CHECK(src1 && src2 && flowXY && (srcWidth >= 16) && (srcHeight >= 16) && (srcStride >= srcWidth) && step && (searchRadius <= 255));
    call(src1, src2, srcWidth, srcHeight, srcStride, step, searchRadius, flowXY, sad);
}
}
