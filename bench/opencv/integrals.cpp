#include "opencv/opencv.h"

#include <opencv2/imgproc.hpp>

namespace odx::bench
{

namespace
{

// Luma, and both planes of chroma, which are taken apart first.
Call integratePlanes(const test::Measurement& measurement)
{
    const cv::Mat luma = matrix(measurement, CV_8U);
    cv::Mat pairs(luma.rows / 2, luma.cols / 2, CV_8UC2);
    cv::randu(pairs, 0, 256);
    return [luma, pairs, chroma = std::vector<cv::Mat>(2), sums = std::vector<cv::Mat>(3)]() mutable {
        cv::split(pairs, chroma);
        cv::integral(luma, sums[0], CV_32S);
        cv::integral(chroma[0], sums[1], CV_32S);
        cv::integral(chroma[1], sums[2], CV_32S);
    };
}
// Sums of 64 bits are floats there, and these are exact.
Call integrateSquares(const test::Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), sums = cv::Mat(), squares = cv::Mat()]() mutable {
        cv::integral(src, sums, squares, CV_64F, CV_64F);
    };
}
Call integrateTilted(const test::Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), sums = cv::Mat(), squares = cv::Mat(),
            tilted = cv::Mat()]() mutable { cv::integral(src, sums, squares, tilted, CV_32S); };
}
// A part of the size of the measurement.
Call integratePart(const test::Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), sums = cv::Mat(), squares = cv::Mat()]() mutable {
        cv::integral(src, sums, squares, CV_32S, CV_64F);
    };
}
template <int side>
Call integrateSmall(const test::Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), sums = cv::Mat(), squares = cv::Mat()]() mutable {
        cv::integral(src(cv::Rect(1, 0, side, side)), sums, squares, CV_32S, CV_64F);
    };
}

const auto integrate = matrices({CV_8U}, [](Matrices& m) { cv::integral(m.src[0], m.dst, CV_32S); });

const OpencvPeers integrals = {
    {"odxIntegrateImageu8", integrate},
    {"odxIntegrateImageu8_v2", integrate},
    {"odxIntegrateImageu8u64", integrateSquares},
    {"odxIntegrateImageYCbCr420PseudoPlanaru8", integratePlanes},
    {"odxTiltedIntegralu8s32", integrateTilted},
    {"odxIntegratePatch12x12u8", integrateSmall<12>},
    {"odxIntegratePatch12x12u8_v2", integrateSmall<12>},
    {"odxIntegratePatch18x18u8", integrateSmall<18>},
    {"odxIntegratePatch18x18u8_v2", integrateSmall<18>},
    {"odxIntegratePatchu8", integratePart},
    {"odxIntegratePatchu8_v2", integratePart},
    {"odxIntegratePatchu8_v3", integratePart},
};

} // namespace

} // namespace odx::bench
