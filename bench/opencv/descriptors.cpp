#include "opencv/opencv.h"

namespace odx::bench
{

namespace
{

using test::Measurement;

// The rows take as many bytes as an image has pixels, or a fixed number.
Call dot(const Measurement& measurement)
{
    return [a = matrix(measurement, CV_8U), b = matrix(measurement, CV_8U)] { benchmarkUses(a.dot(b)); };
}
Call dotOfFloats(const Measurement& measurement)
{
    const auto quarter = [&] {
        return matrix(measurement, CV_8U)
            .reshape(1, 1)
            .colRange(0, static_cast<int>(measurement.extent.width * measurement.extent.height / 4));
    };
    cv::Mat a, b;
    quarter().convertTo(a, CV_32F);
    quarter().convertTo(b, CV_32F);
    return [a, b] { benchmarkUses(a.dot(b)); };
}
Call hamming(const Measurement& measurement)
{
    return [a = matrix(measurement, CV_8U), b = matrix(measurement, CV_8U)] {
        benchmarkUses(cv::norm(a, b, cv::NORM_HAMMING));
    };
}

template <int bytes>
Call hammingOfFour(const Measurement&)
{
    cv::Mat a(1, bytes, CV_8U), b(4, bytes, CV_8U);
    cv::randu(a, 0, 256);
    cv::randu(b, 0, 256);
    return [a, b, distances = cv::Mat()]() mutable {
        cv::batchDistance(a, b, distances, CV_32S, cv::noArray(), cv::NORM_HAMMING);
    };
}

const OpencvPeers descriptors = {
    {"odxDotProductu8", dot},
    {"odxDotProductf32", dotOfFloats},
    {"odxHammingDistanceu8", hamming},
    {"odxHammingDistance32x4u8a4", hammingOfFour<32>},
    {"odxHammingDistance64x4u8", hammingOfFour<64>},
    {"odxHammingDistance64x4u8a4", hammingOfFour<64>},
};

} // namespace

} // namespace odx::bench
