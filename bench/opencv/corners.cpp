#include "opencv/opencv.h"

#include <opencv2/features2d.hpp>
#include <opencv2/imgproc.hpp>

namespace odx::bench
{

namespace
{

using test::Measurement;

// FAST with the rows' barrier.
template <int type, bool suppression>
Call fast(const Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), corners = std::vector<cv::KeyPoint>()]() mutable {
        cv::FAST(src, corners, 20, suppression, cv::FastFeatureDetector::DetectorType(type));
    };
}
constexpr int kArc9 = cv::FastFeatureDetector::TYPE_9_16;

// Only the responses: the search for maxima comes on top.
Call harrisResponses(const Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), dst = cv::Mat()]() mutable {
        cv::cornerHarris(src, dst, 5, 3, 0.0625);
    };
}

Call goodFeatures(const Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), corners = std::vector<cv::Point2f>()]() mutable {
        cv::goodFeaturesToTrack(src, corners, 20000, 0.01, 10, cv::noArray(), 5);
    };
}

Call subPixels(const Measurement& measurement)
{
    const cv::Point2f start(static_cast<float>(measurement.extent.width) / 2,
                            static_cast<float>(measurement.extent.height) / 2);
    return [src = matrix(measurement, CV_8U), start, points = std::vector<cv::Point2f>()]() mutable {
        points.assign(1000, start);
        cv::cornerSubPix(src, points, {5, 5}, {-1, -1},
                         {cv::TermCriteria::COUNT | cv::TermCriteria::EPS, 10, 0.01});
    };
}

const OpencvPeers corners = {
    {"odxCornerFast9u8", fast<kArc9, false>},       {"odxCornerFast9Scoreu8_v2", fast<kArc9, true>},
    {"odxCornerHarrisu8", harrisResponses},         {"odxCornerHarrisInMasku8", harrisResponses},
    {"odxCornerHarrisAdaptiveu8", harrisResponses}, {"odxCornerHarrisScoreu8", harrisResponses},
    {"odxGoodFeatureToTracku8", goodFeatures},      {"odxCornerRefineSubPixu8", subPixels},
};

} // namespace

} // namespace odx::bench
