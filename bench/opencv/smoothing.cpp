#include "opencv/opencv.h"

#include <opencv2/imgproc.hpp>

namespace odx::bench
{

namespace
{

using test::Measurement;

template <int type, int size>
Call gaussian(const Measurement& measurement)
{
    return [src = matrix(measurement, type), dst = cv::Mat()]() mutable {
        cv::GaussianBlur(src, dst, {size, size}, 0);
    };
}

template <int type, int size>
Call box(const Measurement& measurement)
{
    return [src = matrix(measurement, type), dst = cv::Mat()]() mutable { cv::blur(src, dst, {size, size}); };
}

template <int type>
Call median(const Measurement& measurement)
{
    return [src = matrix(measurement, type), dst = cv::Mat()]() mutable { cv::medianBlur(src, dst, 3); };
}

template <int size>
Call bilateral(const Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), dst = cv::Mat()]() mutable {
        cv::bilateralFilter(src, dst, size, 16, size / 4.0);
    };
}

Call bitCount(const Measurement& measurement)
{
    // The rows count the bits of as many bytes as an image has pixels.
    return [src = matrix(measurement, CV_8U)] { benchmarkUses(cv::norm(src, cv::NORM_HAMMING)); };
}

const OpencvPeers smoothing = {
    {"odxBilateralFilter5x5u8", bilateral<5>},
    {"odxBilateralFilter7x7u8", bilateral<7>},
    {"odxBilateralFilter9x9u8", bilateral<9>},
    {"odxBilateralFilter5x5u8_v2", bilateral<5>},
    {"odxBilateralFilter7x7u8_v2", bilateral<7>},
    {"odxBilateralFilter9x9u8_v2", bilateral<9>},
    {"odxBitCountu8", bitCount},
    {"odxBitCountu32", bitCount},
    {"odxFilterGaussian3x3u8", gaussian<CV_8U, 3>},
    {"odxFilterGaussian3x3u8_v2", gaussian<CV_8U, 3>},
    {"odxFilterGaussian3x3u8_v3", gaussian<CV_8U, 3>},
    {"odxFilterGaussian5x5u8", gaussian<CV_8U, 5>},
    {"odxFilterGaussian5x5u8_v2", gaussian<CV_8U, 5>},
    {"odxFilterGaussian11x11u8", gaussian<CV_8U, 11>},
    {"odxFilterGaussian11x11u8_v2", gaussian<CV_8U, 11>},
    {"odxFilterGaussian5x5s16", gaussian<CV_16S, 5>},
    {"odxFilterGaussian5x5s16_v2", gaussian<CV_16S, 5>},
    {"odxBoxFilter3x3u8", box<CV_8U, 3>},
    {"odxBoxFilter3x3u8_v2", box<CV_8U, 3>},
    {"odxBoxFilter5x5u8", box<CV_8U, 5>},
    {"odxBoxFilter11x11u8", box<CV_8U, 11>},
    {"odxBoxFilterNxNf32", box<CV_32F, 5>},
    {"odxFilterMedian3x3u8", median<CV_8U>},
    {"odxFilterMedian3x3u8_v2", median<CV_8U>},
    {"odxFilterMedian3x3u8_v3", median<CV_8U>},
    {"odxFilterMedianMxNs16", median<CV_16S>},
};

} // namespace

} // namespace odx::bench
