#include "opencv/opencv.h"

#include <opencv2/imgproc.hpp>

namespace odx::bench
{

namespace
{

template <int type>
Call extremesOf(const test::Measurement& measurement)
{
    return [src = matrix(measurement, type)] {
        double values[2];
        cv::Point places[2];
        cv::minMaxLoc(src, values, values + 1, places, places + 1);
        benchmarkUses(places);
    };
}
template <int type, bool binary = false>
Call momentsOf(const test::Measurement& measurement)
{
    return [src = matrix(measurement, type)] { benchmarkUses(cv::moments(src, binary)); };
}
Call statsOf(const test::Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), mean = cv::Mat(), deviation = cv::Mat()]() mutable {
        cv::meanStdDev(src, mean, deviation);
    };
}
Call histogramOf(const test::Measurement& measurement)
{
    return [src = matrix(measurement, CV_8U), counts = cv::Mat()]() mutable {
        const int levels = 256;
        const float range[] = {0, 256};
        const float* ranges = range;
        cv::calcHist(&src, 1, nullptr, cv::Mat(), counts, 1, &levels, &ranges);
    };
}

const OpencvPeers statistics = {
    {"odxMinMaxLocu8", extremesOf<CV_8U>},
    {"odxMinMaxLocs16", extremesOf<CV_16S>},
    {"odxMinMaxLocu16", extremesOf<CV_16U>},
    {"odxMinMaxLocs32", extremesOf<CV_32S>},
    {"odxMinMaxLocf32", extremesOf<CV_32F>},
    {"odxImageIntensityHistogram", histogramOf},
    {"odxImageHistogramEqualizeu8", matrices({CV_8U}, [](Matrices& m) { cv::equalizeHist(m.src[0], m.dst); })},
    {"odxImageIntensityStats", statsOf},
    {"odxImageIntensityStats_v2", statsOf},
    {"odxImageMomentsu8", momentsOf<CV_8U>},
    {"odxImageMomentsf32", momentsOf<CV_32F>},
};

} // namespace

} // namespace odx::bench
