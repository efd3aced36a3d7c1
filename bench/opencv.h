// Pictures of a measurement as OpenCV takes them.
#ifndef ODX_BENCH_OPENCV_H
#define ODX_BENCH_OPENCV_H

#include "operations/draw.h"

#include <opencv2/core.hpp>

namespace odx::bench
{

// A matrix of the type and of the measurement's size and content.
inline cv::Mat matrix(const test::Measurement& measurement, int type)
{
    cv::setNumThreads(1);
    const int rows = static_cast<int>(measurement.extent.height),
              columns = static_cast<int>(measurement.extent.width);
    cv::Mat image(rows, columns, type);
    if (measurement.picture != nullptr && type == CV_8U) {
        cv::Mat(rows, columns, CV_8U, const_cast<uint8_t*>(measurement.picture)).copyTo(image);
    } else {
        const bool wide = image.depth() == CV_16S || image.depth() == CV_32S;
        cv::randu(image, wide ? -32768 : 0, wide ? 32768 : 256);
    }
    return image;
}

// Keeps a result from being optimised away.
template <class T>
void benchmarkUses(const T& value)
{
    asm volatile("" : : "r"(&value) : "memory");
}

} // namespace odx::bench

#endif
