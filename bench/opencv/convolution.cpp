#include "opencv/opencv.h"

#include <opencv2/imgproc.hpp>

namespace odx::bench
{

namespace
{

using test::Measurement;

template <int size, int srcType, int dstType>
Call separable(const Measurement& measurement)
{
    return
        [src = matrix(measurement, srcType), dst = cv::Mat(), kernel = cv::getGaussianKernel(size, 0)]() mutable {
            cv::sepFilter2D(src, dst, dstType, kernel, kernel);
        };
}

template <int size, int srcType, int dstType>
Call general(const Measurement& measurement)
{
    cv::Mat kernel(size, size, CV_32F);
    cv::randu(kernel, -1, 1);
    return [src = matrix(measurement, srcType), dst = cv::Mat(), kernel]() mutable {
        cv::filter2D(src, dst, dstType, kernel);
    };
}

const OpencvPeers convolution = {
    {"odxFilterCorrSep9x9s16", separable<9, CV_16S, CV_16S>},
    {"odxFilterCorrSep9x9s16_v2", separable<9, CV_16S, CV_16S>},
    {"odxFilterCorrSep11x11s16", separable<11, CV_16S, CV_16S>},
    {"odxFilterCorrSep11x11s16_v2", separable<11, CV_16S, CV_16S>},
    {"odxFilterCorrSep13x13s16", separable<13, CV_16S, CV_16S>},
    {"odxFilterCorrSep13x13s16_v2", separable<13, CV_16S, CV_16S>},
    {"odxFilterCorrSep15x15s16", separable<15, CV_16S, CV_16S>},
    {"odxFilterCorrSep15x15s16_v2", separable<15, CV_16S, CV_16S>},
    {"odxFilterCorrSep17x17s16", separable<17, CV_16S, CV_16S>},
    {"odxFilterCorrSep17x17s16_v2", separable<17, CV_16S, CV_16S>},
    {"odxFilterCorrSepNxNs16", separable<21, CV_16S, CV_16S>},
    {"odxFilterCorrSepMxNu8", separable<7, CV_8U, CV_8U>},
    {"odxFilterConvSepMxNs16", separable<7, CV_16S, CV_16S>},
    {"odxFilterConvolveMxNu8", general<7, CV_8U, CV_8U>},
    {"odxFilterConvolveMxNu8s16", general<7, CV_8U, CV_16S>},
    {"odxConvValids16", general<7, CV_16S, CV_16S>},
};

} // namespace

} // namespace odx::bench
