#include "opencv/opencv.h"

#include <opencv2/imgproc.hpp>

namespace odx::bench
{

namespace
{

template <int type>
const auto transposed = matrices({type}, [](Matrices& m) { cv::transpose(m.src[0], m.dst); });
template <int type>
const auto mirrored = matrices({type}, [](Matrices& m) { cv::flip(m.src[0], m.dst, 1); });
template <int type>
const auto rotated = matrices({type}, [](Matrices& m) { cv::rotate(m.src[0], m.dst, cv::ROTATE_90_CLOCKWISE); });

const OpencvPeers reordering = {
    {"odxTransposeu8", transposed<CV_8U>},
    {"odxTransposeu16", transposed<CV_16U>},
    {"odxTransposef32", transposed<CV_32F>},
    {"odxTransposeRGB888u8", transposed<CV_8UC3>},
    {"odxFlipu8", mirrored<CV_8U>},
    {"odxFlipu16", mirrored<CV_16U>},
    {"odxFlipRGB888u8", mirrored<CV_8UC3>},
    {"odxRotateImageu8", rotated<CV_8U>},
    {"odxRotateImageInterleavedu8", rotated<CV_8UC2>},
};

} // namespace

} // namespace odx::bench
