#include "opencv/opencv.h"

#include <opencv2/imgproc.hpp>

namespace odx::bench
{

namespace
{

// cv::function(src1, src2, dst, ...) of images of a type, and of one image.
#define OF_TWO(type, ...) matrices({type, type}, [](Matrices& m) { __VA_ARGS__; })
#define OF_ONE(type, ...) matrices({type}, [](Matrices& m) { __VA_ARGS__; })
#define A m.src[0]
#define B m.src[1]

const cv::Scalar kNumbers(100, 50, 25, 12);

template <int type>
Call setOf(const test::Measurement& measurement)
{
    return [dst = matrix(measurement, type), mask = matrix(measurement, CV_8U)]() mutable {
        dst.setTo(kNumbers, mask);
    };
}
template <int type>
Call meanOf(const test::Measurement& measurement)
{
    return [src = matrix(measurement, type)] { benchmarkUses(cv::mean(src)); };
}
template <int planes>
Call merge(const test::Measurement& measurement)
{
    std::vector<cv::Mat> src;
    src.reserve(planes);
    for (int i = 0; i < planes; ++i)
        src.push_back(matrix(measurement, CV_8U));
    return [src, dst = cv::Mat()]() mutable { cv::merge(src, dst); };
}

const OpencvPeers arithmetic = {
    {"odxAddu8", OF_TWO(CV_8U, cv::add(A, B, m.dst))},
    {"odxAdds16", OF_TWO(CV_16S, cv::add(A, B, m.dst))},
    {"odxAdds16_v2", OF_TWO(CV_16S, cv::add(A, B, m.dst))},
    {"odxAddf32", OF_TWO(CV_32F, cv::add(A, B, m.dst))},
    {"odxAddu8u16", OF_TWO(CV_8U, cv::add(A, B, m.dst, cv::noArray(), CV_16U))},
    {"odxAddu16u8u16",
     matrices({CV_16U, CV_8U}, [](Matrices& m) { cv::add(A, B, m.dst, cv::noArray(), CV_16U); })},
    {"odxAddSquaredu8u16", matrices({CV_8U, CV_32F}, [](Matrices& m) { cv::accumulateSquare(A, B); })},
    {"odxSubtractu8", OF_TWO(CV_8U, cv::subtract(A, B, m.dst))},
    {"odxSubtracts16", OF_TWO(CV_16S, cv::subtract(A, B, m.dst))},
    {"odxSubtractu8s16", OF_TWO(CV_8U, cv::subtract(A, B, m.dst, cv::noArray(), CV_16S))},
    {"odxAbsDiffu8", OF_TWO(CV_8U, cv::absdiff(A, B, m.dst))},
    {"odxAbsDiffs32", OF_TWO(CV_32S, cv::absdiff(A, B, m.dst))},
    {"odxAbsDifff32", OF_TWO(CV_32F, cv::absdiff(A, B, m.dst))},
    {"odxImageDiffu8s8", OF_TWO(CV_8U, cv::subtract(A, B, m.dst, cv::noArray(), CV_8S))},
    {"odxImageDiffu8f32", OF_TWO(CV_8U, cv::subtract(A, B, m.dst, cv::noArray(), CV_32F))},
    {"odxImageDiffs16", OF_TWO(CV_16S, cv::subtract(A, B, m.dst))},
    {"odxImageDifff32", OF_TWO(CV_32F, cv::subtract(A, B, m.dst))},
    {"odxElementMultiplyu8", OF_TWO(CV_8U, cv::multiply(A, B, m.dst, 1.0 / 128))},
    {"odxElementMultiplys16", OF_TWO(CV_16S, cv::multiply(A, B, m.dst, 1.0 / 128))},
    {"odxElementMultiplyu8u16", OF_TWO(CV_8U, cv::multiply(A, B, m.dst, 1, CV_16U))},
    {"odxElementMultiplyu8s16", OF_TWO(CV_8U, cv::multiply(A, B, m.dst, 1, CV_16S))},
    {"odxElementMultiplyf32", OF_TWO(CV_32F, cv::multiply(A, B, m.dst))},
    {"odxBitwiseAndu8", OF_TWO(CV_8U, cv::bitwise_and(A, B, m.dst))},
    {"odxBitwiseOru8", OF_TWO(CV_8U, cv::bitwise_or(A, B, m.dst))},
    {"odxBitwiseXoru8", OF_TWO(CV_8U, cv::bitwise_xor(A, B, m.dst))},
    {"odxBitwiseOrs32", OF_TWO(CV_32S, cv::bitwise_or(A, B, m.dst))},
    {"odxAddWeightedu8", OF_TWO(CV_8U, cv::addWeighted(A, 0.5, B, 0.5, 0, m.dst))},
    {"odxAbsDiffVu8", OF_ONE(CV_8U, cv::absdiff(A, 100.0, m.dst))},
    {"odxAbsDiffVs32", OF_ONE(CV_32S, cv::absdiff(A, 100.0, m.dst))},
    {"odxAbsDiffVf32", OF_ONE(CV_32F, cv::absdiff(A, 100.0, m.dst))},
    {"odxAbsDiffVc3u8", OF_ONE(CV_8UC3, cv::absdiff(A, kNumbers, m.dst))},
    {"odxAbsDiffVc3s32", OF_ONE(CV_32SC3, cv::absdiff(A, kNumbers, m.dst))},
    {"odxAbsDiffVc3f32", OF_ONE(CV_32FC3, cv::absdiff(A, kNumbers, m.dst))},
    {"odxAbsDiffVc4u8", OF_ONE(CV_8UC4, cv::absdiff(A, kNumbers, m.dst))},
    {"odxAbsDiffVc4s32", OF_ONE(CV_32SC4, cv::absdiff(A, kNumbers, m.dst))},
    {"odxAbsDiffVc4f32", OF_ONE(CV_32FC4, cv::absdiff(A, kNumbers, m.dst))},
    {"odxAddScalars16", OF_ONE(CV_16S, cv::add(A, 100.0, m.dst))},
    {"odxAddScalarf32", OF_ONE(CV_32F, cv::add(A, 1.5, m.dst))},
    {"odxMultiplyScalars16", OF_ONE(CV_16S, cv::multiply(A, 100.0 / 128, m.dst))},
    {"odxMultiplyScalarf32", OF_ONE(CV_32F, cv::multiply(A, 1.5, m.dst))},
    {"odxBitwiseNotu8", OF_ONE(CV_8U, cv::bitwise_not(A, m.dst))},
    {"odxTableLookupu8", matrices({CV_8U},
                                  [](Matrices& m) {
                                      static const cv::Mat table(1, 256, CV_8U, cv::Scalar(7));
                                      cv::LUT(A, table, m.dst);
                                  })},
    {"odxConvertDepthu8s16", OF_ONE(CV_8U, A.convertTo(m.dst, CV_16S, 4))},
    {"odxConvertDepths16u8", OF_ONE(CV_16S, A.convertTo(m.dst, CV_8U, 0.25))},
    {"odxSetElementsu8", setOf<CV_8U>},
    {"odxSetElementss32", setOf<CV_32S>},
    {"odxSetElementsf32", setOf<CV_32F>},
    {"odxSetElementsc3u8", setOf<CV_8UC3>},
    {"odxSetElementsc3s32", setOf<CV_32SC3>},
    {"odxSetElementsc3f32", setOf<CV_32FC3>},
    {"odxSetElementsc4u8", setOf<CV_8UC4>},
    {"odxSetElementsc4s32", setOf<CV_32SC4>},
    {"odxSetElementsc4f32", setOf<CV_32FC4>},
    {"odxChannelCombine2Planesu8", merge<2>},
    {"odxChannelCombine3Planesu8", merge<3>},
    {"odxChannelCombine4Planesu8", merge<4>},
    {"odxInterleaveu8", merge<3>},
    {"odxDeinterleaveu8", matrices({CV_8UC3},
                                   [](Matrices& m) {
                                       static std::vector<cv::Mat> planes;
                                       cv::split(A, planes);
                                   })},
    {"odxChannelExtractu8", OF_ONE(CV_8UC3, cv::extractChannel(A, m.dst, 1))},
    {"odxAverageu8", meanOf<CV_8U>},
    {"odxAverages32", meanOf<CV_32S>},
};

} // namespace

} // namespace odx::bench
