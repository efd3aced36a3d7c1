#include "ondrix/opticalFlow.h"

#include "cpu/ondrixOpticalFlowC.h"
#include "frame/entry.h"

using namespace odx;

namespace
{

// The remote targets, and the GPU, take large aligned images; the remote ones take one window.
template <class... Strides>
Limit tracking(uint32_t width, uint32_t height, int windowWidth, int windowHeight, const uint8_t* src1,
               const uint8_t* src2, Strides... strides)
{
    constexpr int kWindow = 7;
    const Limit work = pixels(width, height), window = {windowWidth != kWindow || windowHeight != kWindow, 0};
    return Limit{work.remote, work.remote} & window & remote(kRemoteAlignment, src1, src2, strides...) &
           gpu(kGpuAlignment, src1, src2, strides...);
}

} // namespace

#define ODX_CHECK_FLOW                                                                                   \
    ODX_CHECK_AS("src1 && src2 && src1Pyr && src2Pyr && featureXY && featureXY_out && featureStatus && " \
                 "(windowWidth & 0x1) && (windowHeight & 0x1)",                                          \
                 src1&& src2&& src1Pyr&& src2Pyr&& featureXY&& featureXY_out&& featureStatus &&          \
                     (windowWidth & 0x1) && (windowHeight & 0x1))

// The forms that take the gradients of image 1.
#define ODX_TRACK_WITH_GRADIENTS(name)                                                                            \
    void name(const uint8_t* src1, const uint8_t* src2, unsigned int width, unsigned int height,                  \
              const odxPyrLevel* src1Pyr, const odxPyrLevel* src2Pyr, const odxPyrLevel* dx1Pyr,                  \
              const odxPyrLevel* dy1Pyr, const float* featureXY, float* featureXY_out, int32_t* featureStatus,    \
              int featureCount, int windowWidth, int windowHeight, int iterationLimit, int numLevels,             \
              unsigned int tuning1, unsigned int tuning2, float tuning3, unsigned int tuning4)                    \
    {                                                                                                             \
        const Call<name##C> call(__func__,                                                                        \
                                 ODX_LIMITS(tracking(width, height, windowWidth, windowHeight, src1, src2)));     \
        ODX_CHECK_FLOW;                                                                                           \
        call(src1, src2, width, height, src1Pyr, src2Pyr, dx1Pyr, dy1Pyr, featureXY, featureXY_out,               \
             featureStatus, featureCount, windowWidth, windowHeight, iterationLimit, numLevels, tuning1, tuning2, \
             tuning3, tuning4);                                                                                   \
    }

extern "C" {

ODX_TRACK_WITH_GRADIENTS(odxTrackLKOpticalFlowu8)
ODX_TRACK_WITH_GRADIENTS(odxTrackLKOpticalFlowf32)

void odxTrackLKOpticalFlowu8_v2(const uint8_t* src1, const uint8_t* src2, unsigned int width, unsigned int height,
                                unsigned int stride, const odxPyrLevel* src1Pyr, const odxPyrLevel* src2Pyr,
                                const float* featureXY, float* featureXY_out, int32_t* featureStatus,
                                int featureCount, int windowWidth, int windowHeight, int iterationLimit,
                                int numLevels)
{
    stride = packedIfZero(stride, width);
    const Call<odxTrackLKOpticalFlowu8_v2C> call(
        __func__, ODX_LIMITS(tracking(width, height, windowWidth, windowHeight, src1, src2, stride)));
    ODX_CHECK_FLOW;
    call(src1, src2, width, height, stride, src1Pyr, src2Pyr, featureXY, featureXY_out, featureStatus,
         featureCount, windowWidth, windowHeight, iterationLimit, numLevels);
}

odxStatus odxTrackLKOpticalFlowu8_v3(const uint8_t* src1, const uint8_t* src2, unsigned int width,
                                     unsigned int height, unsigned int stride, const odxPyrLevelStrided* src1Pyr,
                                     const odxPyrLevelStrided* src2Pyr, const float* featureXY,
                                     float* featureXY_out, int32_t* featureStatus, int featureCount,
                                     int windowWidth, int windowHeight, int iterationLimit, int numLevels,
                                     const float* initialEstimate, int32_t useInitialEstimate, float epsilon,
                                     int32_t terminationMode)
{
    stride = packedIfZero(stride, width);
    const Call<odxTrackLKOpticalFlowu8_v3C> call(
        __func__, ODX_LIMITS(tracking(width, height, windowWidth, windowHeight, src1, src2, stride)));
    if (!(src1 && src2 && src1Pyr && src2Pyr && featureXY && featureXY_out && featureStatus &&
          (!useInitialEstimate || initialEstimate) && (windowWidth & 0x1) && (windowHeight & 0x1)))
        return call.failure();
    return call(src1, src2, width, height, stride, src1Pyr, src2Pyr, featureXY, featureXY_out, featureStatus,
                featureCount, windowWidth, windowHeight, iterationLimit, numLevels, initialEstimate,
                useInitialEstimate, epsilon, terminationMode);
}
}
