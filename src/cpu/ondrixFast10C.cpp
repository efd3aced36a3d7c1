#include "cpu/ondrixFastC.h"
#include "cpu/ondrixFastReference.h"

using namespace odx;
using namespace odx::fast;

extern "C" {

int32_t fast10_corner_scoreC(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier)
{
    return score<10>(pixel, offsets, barrier);
}

void odxCornerFast10u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                        int barrier, unsigned int border, uint32_t* xy, unsigned int nCornersMax,
                        uint32_t* nCorners)
{
    *nCorners = detect<10>(src, srcStride, areaInside(srcWidth, srcHeight, border), barrier,
                           CornerList{xy, nCornersMax, 0}, NoMask());
}

void odxCornerFast10InMasku8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                              unsigned int nCornersMax, uint32_t* nCorners, const uint8_t* mask,
                              unsigned int maskWidth, unsigned int maskHeight)
{
    *nCorners = 0;
    Mask row;
    if (!fitMask(row, mask, srcWidth, srcHeight, maskWidth, maskHeight)) return;
    *nCorners = detect<10>(src, srcStride, areaInside(srcWidth, srcHeight, border), barrier,
                           CornerList{xy, nCornersMax, 0}, row);
}

void odxCornerFast10Scoreu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                             uint32_t* scores, unsigned int nCornersMax, uint32_t* nCorners,
                             unsigned int nmsEnabled, uint32_t* tempBuf)
{
    const auto detectAndScore = [&](uint32_t* listXy, uint32_t* listScores, uint32_t* count) {
        odxCornerFast10u8(src, srcWidth, srcHeight, srcStride, barrier, border, listXy, nCornersMax, count);
        scoreCorners(fast10_corner_score_, src, srcStride, barrier, *count, listXy, listScores);
    };
    if (nmsEnabled == 0) return detectAndScore(xy, scores, nCorners);
    ODX_FATAL_ASSERT("ondrixFast10C", __LINE__, tempBuf);
    suppress(detectAndScore, tempBuf, nCornersMax, xy, scores, nCorners);
}

void odxCornerFast10InMaskScoreu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                                   uint32_t* scores, unsigned int nCornersMax, uint32_t* nCorners,
                                   const uint8_t* mask, unsigned int maskWidth, unsigned int maskHeight,
                                   unsigned int nmsEnabled, uint32_t* tempBuf)
{
    const auto detectAndScore = [&](uint32_t* listXy, uint32_t* listScores, uint32_t* count) {
        odxCornerFast10InMasku8(src, srcWidth, srcHeight, srcStride, barrier, border, listXy, nCornersMax, count,
                                mask, maskWidth, maskHeight);
        scoreCorners(fast10_corner_score_, src, srcStride, barrier, *count, listXy, listScores);
    };
    if (nmsEnabled == 0) return detectAndScore(xy, scores, nCorners);
    ODX_FATAL_ASSERT("ondrixFast10C", __LINE__, tempBuf);
    suppress(detectAndScore, tempBuf, nCornersMax, xy, scores, nCorners);
}
}
