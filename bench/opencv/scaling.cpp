#include "opencv/opencv.h"

#include <opencv2/imgproc.hpp>

namespace odx::bench
{

namespace
{

using test::Measurement;

// Resizing by a factor.
template <int interpolation, int up, int down, int type = CV_8U>
Call resize(const Measurement& measurement)
{
    return [src = matrix(measurement, type), dst = cv::Mat()]() mutable {
        cv::resize(src, dst, {src.cols / down * up, src.rows / down * up}, 0, 0, interpolation);
    };
}

template <int type>
Call pyramidDown(const Measurement& measurement)
{
    return [src = matrix(measurement, type), dst = cv::Mat()]() mutable { cv::pyrDown(src, dst); };
}

Call pyramidUp(const Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), dst = cv::Mat()]() mutable { cv::pyrUp(src, dst); };
}

const OpencvPeers scaling = {
    {"odxScaleDownBy2u8", resize<cv::INTER_AREA, 1, 2>},
    {"odxScaleDownBy2u8_v2", resize<cv::INTER_AREA, 1, 2>},
    {"odxScaleDownBy4u8", resize<cv::INTER_AREA, 1, 4>},
    {"odxScaleDownBy4u8_v2", resize<cv::INTER_AREA, 1, 4>},
    {"odxScaleDown3To2u8", resize<cv::INTER_AREA, 2, 3>},
    {"odxScaleDownu8", resize<cv::INTER_AREA, 1, 3>},
    {"odxScaleDownu8_v2", resize<cv::INTER_AREA, 1, 3>},
    {"odxScaleDownMNu8", resize<cv::INTER_AREA, 2, 3>},
    {"odxScaleDownMNInterleaveu8", resize<cv::INTER_AREA, 2, 3, CV_8UC2>},
    {"odxScaleDownBy2Gaussian5x5u8", pyramidDown<CV_8U>},
    {"odxScaleDownBy2Gaussian5x5u8_v2", pyramidDown<CV_8U>},
    {"odxScaleDownBy2Gaussian5x5f32", pyramidDown<CV_32F>},
    {"odxScaleDownBy2Gaussian5x5f32_v2", pyramidDown<CV_32F>},
    {"odxScaleUpBy2Gaussian5x5u8", pyramidUp},
    {"odxScaleUpBy2Gaussian5x5u8_v2", pyramidUp},
    {"odxUpsample2Du8", resize<cv::INTER_LINEAR, 2, 1>},
    {"odxUpsample2DInterleavedu8", resize<cv::INTER_LINEAR, 2, 1, CV_8UC2>},
    {"odxScaleDownNNu8", resize<cv::INTER_NEAREST, 2, 3>},
    {"odxScaleDownBLu8", resize<cv::INTER_LINEAR, 2, 3>},
    {"odxScaleUpPolyu8", resize<cv::INTER_CUBIC, 2, 3>},
    {"odxScaleUpPolyInterleaveu8", resize<cv::INTER_CUBIC, 2, 3, CV_8UC2>},
    {"odxScaleu8", resize<cv::INTER_LINEAR, 2, 3>},
    {"odxScaleu8_v2", resize<cv::INTER_AREA, 2, 3>},
};

} // namespace

} // namespace odx::bench
