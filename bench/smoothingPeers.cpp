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

template <int type, int size>
std::function<void()> gaussian(const Measurement& measurement)
{
    return [src = matrix(measurement, type), dst = cv::Mat()]() mutable {
        cv::GaussianBlur(src, dst, {size, size}, 0);
    };
}

template <int type, int size>
std::function<void()> box(const Measurement& measurement)
{
    return [src = matrix(measurement, type), dst = cv::Mat()]() mutable { cv::blur(src, dst, {size, size}); };
}

template <int type>
std::function<void()> median(const Measurement& measurement)
{
    return [src = matrix(measurement, type), dst = cv::Mat()]() mutable { cv::medianBlur(src, dst, 3); };
}

std::function<void()> bitCount(const Measurement& measurement)
{
    // The rows count the bits of as many bytes as an image has pixels.
    return [src = matrix(measurement, CV_8U)] { benchmarkUses(cv::norm(src, cv::NORM_HAMMING)); };
}

} // namespace

std::vector<Peer> smoothingPeers()
{
    return {
        {"odxBitCountu8", "OpenCV", bitCount},
        {"odxBitCountu32", "OpenCV", bitCount},
        {"odxFilterGaussian3x3u8", "OpenCV", gaussian<CV_8U, 3>},
        {"odxFilterGaussian3x3u8_v2", "OpenCV", gaussian<CV_8U, 3>},
        {"odxFilterGaussian3x3u8_v3", "OpenCV", gaussian<CV_8U, 3>},
        {"odxFilterGaussian5x5u8", "OpenCV", gaussian<CV_8U, 5>},
        {"odxFilterGaussian5x5u8_v2", "OpenCV", gaussian<CV_8U, 5>},
        {"odxFilterGaussian11x11u8", "OpenCV", gaussian<CV_8U, 11>},
        {"odxFilterGaussian11x11u8_v2", "OpenCV", gaussian<CV_8U, 11>},
        {"odxFilterGaussian5x5s16", "OpenCV", gaussian<CV_16S, 5>},
        {"odxFilterGaussian5x5s16_v2", "OpenCV", gaussian<CV_16S, 5>},
        {"odxBoxFilter3x3u8", "OpenCV", box<CV_8U, 3>},
        {"odxBoxFilter3x3u8_v2", "OpenCV", box<CV_8U, 3>},
        {"odxBoxFilter5x5u8", "OpenCV", box<CV_8U, 5>},
        {"odxBoxFilter11x11u8", "OpenCV", box<CV_8U, 11>},
        {"odxBoxFilterNxNf32", "OpenCV", box<CV_32F, 5>},
        {"odxFilterMedian3x3u8", "OpenCV", median<CV_8U>},
        {"odxFilterMedian3x3u8_v2", "OpenCV", median<CV_8U>},
        {"odxFilterMedian3x3u8_v3", "OpenCV", median<CV_8U>},
        {"odxFilterMedianMxNs16", "OpenCV", median<CV_16S>},
    };
}

#else

std::vector<Peer> smoothingPeers()
{
    return {};
}

#endif

} // namespace odx::bench
