// Pictures of a measurement as OpenCV takes them.
#ifndef ODX_BENCH_OPENCV_OPENCV_H
#define ODX_BENCH_OPENCV_OPENCV_H

#include "peers.h"

#include <opencv2/core.hpp>

namespace odx::bench
{

struct OpencvPeers : Peers {
    OpencvPeers(std::initializer_list<Peer> peers) : Peers("OpenCV", peers) {}
};

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

struct Matrices {
    std::vector<cv::Mat> src;
    cv::Mat dst;
};

// A peer that reads images of these types and writes one.
inline std::function<Call(const test::Measurement&)> matrices(const std::vector<int>& types,
                                                              void (*call)(Matrices&))
{
    return [=](const test::Measurement& measurement) -> Call {
        Matrices made;
        for (const int type : types)
            made.src.push_back(matrix(measurement, type));
        return [=]() mutable { call(made); };
    };
}

// Keeps a result from being optimised away.
template <class T>
void benchmarkUses(const T& value)
{
    asm volatile("" : : "r"(&value) : "memory");
}

} // namespace odx::bench

#endif
