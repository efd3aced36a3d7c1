#include "ondrix/mser.h"

#include "frame/entry.h"

using namespace odx;

// The handle lives in this process, so no call leaves it. The names of the arguments are the ones that the lines
// of refused calls show; the extractions with a result refuse in silence.
// clang-format off
#define ODX_MSER(name, R, Count, check, required, parameters, arguments)                                        \
    R name(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth, unsigned int srcHeight,              \
           unsigned int srcStride, unsigned int maxContours, uint32_t* numContours, Count* numPointsInContour,  \
           unsigned int pointsArraySize, uint32_t* pointsArray ODX_UNWRAPPED parameters)                        \
    {                                                                                                           \
        srcStride = packedIfZero(srcStride, srcWidth);                                                          \
        const Call<name##C> call(__func__);                                                                     \
        check(mserHandle && srcPtr && numContours && numPointsInContour && pointsArray required);               \
        return call(mserHandle, srcPtr, srcWidth, srcHeight, srcStride, maxContours, numContours,               \
                    numPointsInContour, pointsArraySize, pointsArray ODX_UNWRAPPED arguments);                  \
    }
#define ODX_SILENTLY(condition)                                                                                 \
    if (!(condition)) return call.failure()
#define ODX_UNWRAPPED(...) __VA_ARGS__

#define ODX_PLAIN(name, R, Count, check) ODX_MSER(name, R, Count, check, , (), ())
#define ODX_EXTENDED(name, R, Count, check, required, parameters, arguments)                                    \
    ODX_MSER(name, R, Count, check,                                                                             \
             && contourVariation && contourPolarity && contourNodeId && contourNodeCounter required,            \
             (, float* contourVariation, int32_t* contourPolarity, uint32_t* contourNodeId,                     \
              uint32_t* contourNodeCounter ODX_UNWRAPPED parameters),                                           \
             (, contourVariation, contourPolarity, contourNodeId, contourNodeCounter ODX_UNWRAPPED arguments))
// clang-format on

#define ODX_INIT(name)                                                                                            \
    uint32_t name(unsigned int width, unsigned int height, int delta, unsigned int minArea, unsigned int maxArea, \
                  float maxVariation, float minDiversity, void** mserHandle)                                      \
    {                                                                                                             \
        const Call<name##C> call(__func__);                                                                       \
        if (mserHandle == nullptr) return call.failure();                                                         \
        return call(width, height, delta, minArea, maxArea, maxVariation, minDiversity, mserHandle);              \
    }

extern "C" {

ODX_INIT(odxMserInit)
ODX_INIT(odxMserNN8Init)

void odxMserRelease(void* mserHandle)
{
    const Call<odxMserReleaseC> call(__func__);
    ODX_CHECK(mserHandle);
    call(mserHandle);
}

// clang-format off
ODX_PLAIN(odxMseru8, void, uint32_t, ODX_CHECK)
ODX_PLAIN(odxMseru8_v2, uint32_t, uint16_t, ODX_SILENTLY)
ODX_PLAIN(odxMserNN8u8, uint32_t, uint16_t, ODX_SILENTLY)
ODX_EXTENDED(odxMserExtu8, void, uint32_t, ODX_CHECK, , (), ())
ODX_EXTENDED(odxMserExtu8_v2, uint32_t, uint16_t, ODX_SILENTLY, , (), ())
ODX_EXTENDED(odxMserExtNN8u8, uint32_t, uint16_t, ODX_SILENTLY, , (), ())
ODX_EXTENDED(odxMserExtu8_v3, uint32_t, uint16_t, ODX_SILENTLY, && contourBoundingBox,
             (, uint32_t* contourBoundingBox), (, contourBoundingBox))
ODX_EXTENDED(odxMserSplitExtu8, uint32_t, uint16_t, ODX_SILENTLY, , (), ())
ODX_EXTENDED(odxMserSplitExtu8ST, uint32_t, uint16_t, ODX_SILENTLY, , (), ())
// clang-format on
}
