#include "opencv/opencv.h"

#include <opencv2/core.hpp>

namespace odx::bench
{

namespace
{

Call product(const test::Measurement& measurement)
{
    const int depth = static_cast<int>(measurement.extent.width);
    return [a = matrix({{measurement.extent.width, measurement.extent.height}}, CV_32F),
            b = matrix({{measurement.extent.width, static_cast<uint32_t>(depth)}}, CV_32F),
            c = cv::Mat()]() mutable { cv::gemm(a, b, 1, cv::noArray(), 0, c); };
}

const OpencvPeers solvers = {{"odxMatrixMultiplyf32", product}};

} // namespace

} // namespace odx::bench
