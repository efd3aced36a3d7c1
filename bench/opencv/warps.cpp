#include "opencv/opencv.h"

#include <opencv2/imgproc.hpp>

namespace odx::bench
{

namespace
{

using test::Measurement;

// The matrix and the maps of the rows, when they are measured.
cv::Mat matrixFor(const Measurement& measurement, bool perspective)
{
    const double w = measurement.extent.width, h = measurement.extent.height, c = 0.9 * cos(0.1),
                 s = 0.9 * sin(0.1);
    const double tilt = perspective ? 0.0001 : 0;
    const cv::Mat m = (cv::Mat_<double>(3, 3) << c, -s, w / 2 - c * w / 2 + s * h / 2 + 0.3, s, c,
                       h / 2 - s * w / 2 - c * h / 2 + 0.7, tilt, -tilt / 2, 1);
    return perspective ? m : m.rowRange(0, 2).clone();
}

template <int type, int interpolation = cv::INTER_LINEAR>
Call perspective(const Measurement& measurement)
{
    return [src = matrix(measurement, type), dst = cv::Mat(), m = matrixFor(measurement, true)]() mutable {
        cv::warpPerspective(src, dst, m, src.size(), interpolation | cv::WARP_INVERSE_MAP);
    };
}

Call planes(const Measurement& measurement)
{
    return [one = perspective<CV_8U>(measurement), other = perspective<CV_8U>(measurement)] {
        one();
        other();
    };
}

template <int type, int interpolation = cv::INTER_LINEAR>
Call affine(const Measurement& measurement)
{
    return [src = matrix(measurement, type), dst = cv::Mat(), m = matrixFor(measurement, false)]() mutable {
        cv::warpAffine(src, dst, m, src.size(), interpolation | cv::WARP_INVERSE_MAP, cv::BORDER_TRANSPARENT);
    };
}

template <int type, int interpolation = cv::INTER_LINEAR>
Call remap(const Measurement& measurement)
{
    const cv::Mat src = matrix(measurement, type);
    cv::Mat mapX(src.size(), CV_32F), mapY(src.size(), CV_32F);
    for (int y = 0; y < src.rows; ++y) {
        for (int x = 0; x < src.cols; ++x) {
            mapX.at<float>(y, x) = static_cast<float>(x) + 0.3f + 0.001f * static_cast<float>(y);
            mapY.at<float>(y, x) = static_cast<float>(y) - 0.15f + 0.001f * static_cast<float>(x);
        }
    }
    return [=, dst = cv::Mat()]() mutable { cv::remap(src, dst, mapX, mapY, interpolation); };
}

const OpencvPeers warps = {
    {"odxWarpPerspectiveu8", perspective<CV_8U>},
    {"odxWarpPerspectiveu8_v2", perspective<CV_8U>},
    {"odxWarpPerspectiveu8_v3", perspective<CV_8U>},
    {"odxWarpPerspectiveu8_v4", perspective<CV_8U>},
    {"odx3ChannelWarpPerspectiveu8", perspective<CV_8UC3>},
    {"odx3ChannelWarpPerspectiveu8_v2", perspective<CV_8UC3>},
    {"odx2PlaneWarpPerspectiveu8", planes},
    {"odxTransformAffineClippedu8", affine<CV_8U>},
    {"odxTransformAffineClippedu8_v2", affine<CV_8U>},
    {"odxTransformAffineClippedu8_v3", affine<CV_8U>},
    {"odx3ChannelTransformAffineClippedBCu8", affine<CV_8UC3, cv::INTER_CUBIC>},
    {"odxRemapRGBA8888NNu8", remap<CV_8UC4, cv::INTER_NEAREST>},
    {"odxRemapRGBA8888BLu8", remap<CV_8UC4>},
    {"odxRemapu8", remap<CV_8U>},
    {"odxRemapu8_v2", remap<CV_8U>},
};

} // namespace

} // namespace odx::bench
