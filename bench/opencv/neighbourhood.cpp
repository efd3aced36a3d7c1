#include "opencv/opencv.h"

#include <opencv2/imgproc.hpp>

namespace odx::bench
{

namespace
{

using test::Measurement;

template <int type>
Call threshold(const Measurement& measurement)
{
    return
        [src = matrix(measurement, CV_8U), dst = cv::Mat()]() mutable { cv::threshold(src, dst, 100, 255, type); };
}

Call range(const Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), dst = cv::Mat()]() mutable { cv::inRange(src, 50, 150, dst); };
}

template <int average, int size>
Call adaptive(const Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), dst = cv::Mat()]() mutable {
        cv::adaptiveThreshold(src, dst, 255, average, cv::THRESH_BINARY, size, 5);
    };
}

template <auto* operation, int size>
Call morphology(const Measurement& measurement)
{
    return
        [src = matrix(measurement, CV_8U), dst = cv::Mat(), window = cv::Mat::ones(size, size, CV_8U)]() mutable {
            operation(src, dst, window, {-1, -1}, 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
        };
}

template <int size, int type>
Call correlation(const Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), dst = cv::Mat(),
            kernel = cv::Mat(cv::Mat::ones(size, size, CV_32F) / 16)]() mutable {
        cv::filter2D(src, dst, type, kernel);
    };
}

const OpencvPeers neighbourhood = {
    {"odxFilterCorr3x3s8", correlation<3, CV_8U>},
    {"odxFilterCorr3x3s8_v2", correlation<3, CV_8U>},
    {"odxFilterCorrNxNu8", correlation<7, CV_8U>},
    {"odxFilterCorrNxNu8s16", correlation<7, CV_16S>},
    {"odxFilterCorrNxNu8f32", correlation<7, CV_32F>},
    {"odxFilterThresholdu8", threshold<cv::THRESH_BINARY>},
    {"odxFilterThresholdu8_v2", threshold<cv::THRESH_BINARY>},
    {"odxFilterThresholdu8_v3", threshold<cv::THRESH_BINARY>},
    {"odxFilterThresholdRangeu8", range},
    {"odxFilterThresholdRangeu8_v2", range},
    {"odxFilterThresholdOtsuu8", threshold<cv::THRESH_BINARY | cv::THRESH_OTSU>},
    {"odxAdaptiveThresholdGaussian3x3u8", adaptive<cv::ADAPTIVE_THRESH_GAUSSIAN_C, 3>},
    {"odxAdaptiveThresholdGaussian5x5u8", adaptive<cv::ADAPTIVE_THRESH_GAUSSIAN_C, 5>},
    {"odxAdaptiveThresholdGaussian11x11u8", adaptive<cv::ADAPTIVE_THRESH_GAUSSIAN_C, 11>},
    {"odxAdaptiveThresholdMean3x3u8", adaptive<cv::ADAPTIVE_THRESH_MEAN_C, 3>},
    {"odxAdaptiveThresholdMean5x5u8", adaptive<cv::ADAPTIVE_THRESH_MEAN_C, 5>},
    {"odxAdaptiveThresholdMean11x11u8", adaptive<cv::ADAPTIVE_THRESH_MEAN_C, 11>},
    {"odxFilterErode3x3u8", morphology<cv::erode, 3>},
    {"odxFilterErode3x3u8_v2", morphology<cv::erode, 3>},
    {"odxFilterErode3x3u8_v3", morphology<cv::erode, 3>},
    {"odxFilterErodeNxNu8", morphology<cv::erode, 9>},
    {"odxFilterDilate3x3u8", morphology<cv::dilate, 3>},
    {"odxFilterDilate3x3u8_v2", morphology<cv::dilate, 3>},
    {"odxFilterDilate3x3u8_v3", morphology<cv::dilate, 3>},
    {"odxFilterDilateNxNu8", morphology<cv::dilate, 9>},
};

} // namespace

} // namespace odx::bench
