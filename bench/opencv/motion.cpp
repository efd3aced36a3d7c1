#include "opencv/opencv.h"

#include <opencv2/imgproc.hpp>
#include <opencv2/video/tracking.hpp>

namespace odx::bench
{

namespace
{

using test::Measurement;

// On pyramids that are there, as for our row: 500 points, three levels, windows of 7x7, the image moved by a
// pixel.
Call opticalFlow(const Measurement& measurement)
{
    constexpr int kLevels = 3, kWindow = 7, kPoints = 500, kColumns = 25;
    const cv::Mat one = matrix(measurement, CV_8U);
    cv::Mat two = one.clone();
    one.colRange(1, one.cols).copyTo(two.colRange(0, one.cols - 1));
    std::vector<cv::Mat> from, to;
    cv::buildOpticalFlowPyramid(one, from, {kWindow, kWindow}, kLevels - 1);
    cv::buildOpticalFlowPyramid(two, to, {kWindow, kWindow}, kLevels - 1);
    std::vector<cv::Point2f> points;
    points.reserve(kPoints);
    for (int i = 0; i < kPoints; ++i) {
        const int column = i % kColumns, row = i / kColumns;
        points.emplace_back(static_cast<float>(one.cols) * (0.1F + 0.03F * static_cast<float>(column)) + 0.3F,
                            static_cast<float>(one.rows) * (0.1F + 0.03F * static_cast<float>(row)) + 0.3F);
    }
    return [=, out = std::vector<cv::Point2f>(), status = std::vector<uchar>()]() mutable {
        cv::calcOpticalFlowPyrLK(from, to, points, out, status, cv::noArray(), {kWindow, kWindow}, kLevels - 1,
                                 {cv::TermCriteria::COUNT | cv::TermCriteria::EPS, 20, 0.03}, 0, 1e-7);
    };
}

Call patchSearch(const Measurement& measurement)
{
    constexpr int kPatch = 8, kSearch = 18;
    const cv::Mat image = matrix(measurement, CV_8U);
    const cv::Rect area(image.cols / 2 - kSearch / 2, image.rows / 2 - kSearch / 2, kSearch, kSearch);
    return [image, area, patch = image(cv::Rect(area.x + 4, area.y + 5, kPatch, kPatch)).clone(),
            result = cv::Mat()]() mutable {
        cv::matchTemplate(image(area), patch, result, cv::TM_CCOEFF_NORMED);
        cv::Point best;
        cv::minMaxLoc(result, nullptr, nullptr, nullptr, &best);
        benchmarkUses(best);
    };
}

// Ten times over the same window, as our row: no move is too small to go on.
template <int type, bool adaptive>
Call windowTracker(const Measurement& measurement)
{
    const cv::Mat weights = matrix(measurement, type);
    const cv::Rect start(weights.cols / 3, weights.rows / 3, weights.cols / 3, weights.rows / 3);
    return [weights, start]() {
        cv::Rect window = start;
        const cv::TermCriteria criteria(cv::TermCriteria::COUNT | cv::TermCriteria::EPS, 10, 0);
        if (adaptive) {
            benchmarkUses(cv::CamShift(weights, window, criteria));
        } else {
            benchmarkUses(cv::meanShift(weights, window, criteria));
        }
    };
}

const OpencvPeers motion = {
    {"odxTrackLKOpticalFlowu8_v3", opticalFlow},       {"odxTrackLKOpticalFlowu8_v2", opticalFlow},
    {"odxNCCPatchOnSquare8x8u8", patchSearch},         {"odxMeanShiftu8", windowTracker<CV_8U, false>},
    {"odxMeanShiftf32", windowTracker<CV_32F, false>}, {"odxConAdaTracku8", windowTracker<CV_8U, true>},
};

} // namespace

} // namespace odx::bench
