#include "opencv/opencv.h"

#include <opencv2/imgproc.hpp>

namespace odx::bench
{

namespace
{

using test::Measurement;

// Both derivatives; kernels of size 1 are central differences.
template <int type, int size, int channels = 1>
Call derivatives(const Measurement& measurement)
{
    constexpr int source = type == CV_32F && channels == 0 ? CV_32F : CV_8U;
    return [src = matrix(measurement, source), dx = cv::Mat(), dy = cv::Mat(), pairs = cv::Mat()]() mutable {
        cv::Sobel(src, dx, type, 1, 0, size);
        cv::Sobel(src, dy, type, 0, 1, size);
        if (channels == 2) cv::merge(std::vector{dx, dy}, pairs);
    };
}

Call both(const Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), dx = cv::Mat(), dy = cv::Mat()]() mutable {
        cv::spatialGradient(src, dx, dy);
    };
}

Call magnitude(const Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), dx = cv::Mat(), dy = cv::Mat(), dst = cv::Mat()]() mutable {
        cv::spatialGradient(src, dx, dy);
        cv::convertScaleAbs(dx, dx);
        cv::convertScaleAbs(dy, dy);
        cv::add(dx, dy, dst);
    };
}

template <int low, int high, bool squares>
Call canny(const Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), dst = cv::Mat()]() mutable {
        cv::Canny(src, dst, low, high, 3, squares);
    };
}

const OpencvPeers gradients = {
    {"odxImageGradientPlanars16_v2", derivatives<CV_16S, 1>},
    {"odxImageGradientInterleaveds16_v2", derivatives<CV_16S, 1, 2>},
    {"odxImageGradientSobelPlanars16_v2", both},
    {"odxImageGradientSobelPlanars16_v3", derivatives<CV_16S, 3>},
    {"odxImageGradientSobelInterleaveds16_v2", derivatives<CV_16S, 3, 2>},
    {"odxImageGradientSobelPlanarf32_v2", derivatives<CV_32F, 3>},
    {"odxImageGradientSobelPlanarf32f32_v2", derivatives<CV_32F, 3, 0>},
    {"odxImageGradientScharrInterleaveds16", derivatives<CV_16S, cv::FILTER_SCHARR, 2>},
    {"odxFilterSobel3x3u8_v2", magnitude},
    {"odxFilterSobel3x3u8s16", both},
    {"odxFilterSobel5x5u8s16", derivatives<CV_16S, 5>},
    {"odxFilterSobel7x7u8s16", derivatives<CV_16S, 7>},
    {"odxFilterCannyu8", canny<80, 200, false>},
    // Sobel sums are about four times the differences.
    {"odxFilterCanny3x3u8_v2", canny<80, 240, true>},
};

} // namespace

} // namespace odx::bench
