#include "peers.h"

#ifdef ONDRIX_BENCH_OPENCV
#include "opencv.h"

#include <opencv2/imgproc.hpp>
#endif

namespace odx::bench
{

#ifdef ONDRIX_BENCH_OPENCV

namespace
{

using test::Measurement;

template <int type>
std::function<void()> threshold(const Measurement& measurement)
{
    return
        [src = matrix(measurement, CV_8U), dst = cv::Mat()]() mutable { cv::threshold(src, dst, 100, 255, type); };
}

std::function<void()> range(const Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), dst = cv::Mat()]() mutable { cv::inRange(src, 50, 150, dst); };
}

template <int average, int size>
std::function<void()> adaptive(const Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), dst = cv::Mat()]() mutable {
        cv::adaptiveThreshold(src, dst, 255, average, cv::THRESH_BINARY, size, 5);
    };
}

template <auto* operation, int size>
std::function<void()> morphology(const Measurement& measurement)
{
    return
        [src = matrix(measurement, CV_8U), dst = cv::Mat(), window = cv::Mat::ones(size, size, CV_8U)]() mutable {
            operation(src, dst, window, {-1, -1}, 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
        };
}

} // namespace

std::vector<Peer> neighbourhoodPeers()
{
    using namespace cv;
    return {
        {"odxFilterThresholdu8", "OpenCV", threshold<THRESH_BINARY>},
        {"odxFilterThresholdu8_v2", "OpenCV", threshold<THRESH_BINARY>},
        {"odxFilterThresholdu8_v3", "OpenCV", threshold<THRESH_BINARY>},
        {"odxFilterThresholdRangeu8", "OpenCV", range},
        {"odxFilterThresholdRangeu8_v2", "OpenCV", range},
        {"odxFilterThresholdOtsuu8", "OpenCV", threshold<THRESH_BINARY | THRESH_OTSU>},
        {"odxAdaptiveThresholdGaussian3x3u8", "OpenCV", adaptive<ADAPTIVE_THRESH_GAUSSIAN_C, 3>},
        {"odxAdaptiveThresholdGaussian5x5u8", "OpenCV", adaptive<ADAPTIVE_THRESH_GAUSSIAN_C, 5>},
        {"odxAdaptiveThresholdGaussian11x11u8", "OpenCV", adaptive<ADAPTIVE_THRESH_GAUSSIAN_C, 11>},
        {"odxAdaptiveThresholdMean3x3u8", "OpenCV", adaptive<ADAPTIVE_THRESH_MEAN_C, 3>},
        {"odxAdaptiveThresholdMean5x5u8", "OpenCV", adaptive<ADAPTIVE_THRESH_MEAN_C, 5>},
        {"odxAdaptiveThresholdMean11x11u8", "OpenCV", adaptive<ADAPTIVE_THRESH_MEAN_C, 11>},
        {"odxFilterErode3x3u8", "OpenCV", morphology<erode, 3>},
        {"odxFilterErode3x3u8_v2", "OpenCV", morphology<erode, 3>},
        {"odxFilterErode3x3u8_v3", "OpenCV", morphology<erode, 3>},
        {"odxFilterErodeNxNu8", "OpenCV", morphology<erode, 9>},
        {"odxFilterDilate3x3u8", "OpenCV", morphology<dilate, 3>},
        {"odxFilterDilate3x3u8_v2", "OpenCV", morphology<dilate, 3>},
        {"odxFilterDilate3x3u8_v3", "OpenCV", morphology<dilate, 3>},
        {"odxFilterDilateNxNu8", "OpenCV", morphology<dilate, 9>},
    };
}

#else

std::vector<Peer> neighbourhoodPeers()
{
    return {};
}

#endif

} // namespace odx::bench
