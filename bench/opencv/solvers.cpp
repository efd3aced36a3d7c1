#include "opencv/opencv.h"

#include <opencv2/core.hpp>

namespace odx::bench
{

namespace
{

Call product(const test::Measurement& measurement)
{
    constexpr uint32_t depth = 64;
    return [a = matrix({{depth, measurement.extent.height}}, CV_32F),
            b = matrix({{measurement.extent.width, depth}}, CV_32F),
            c = cv::Mat()]() mutable { cv::gemm(a, b, 1, cv::noArray(), 0, c); };
}

const OpencvPeers solvers = {{"odxMatrixMultiplyf32", product}};

} // namespace

} // namespace odx::bench
