#include "opencv/opencv.h"

#include <opencv2/features2d.hpp>

namespace odx::bench
{

namespace
{

// With the rows' parameters.
Call regions(const test::Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), mser = cv::MSER::create(5, 20, 14400, 0.5, 0.2),
            points = std::vector<std::vector<cv::Point>>(),
            boxes = std::vector<cv::Rect>()]() mutable { mser->detectRegions(src, points, boxes); };
}

const OpencvPeers mser = {
    {"odxMseru8", regions},
    {"odxMserSplitExtu8ST", regions},
};

} // namespace

} // namespace odx::bench
