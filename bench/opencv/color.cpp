#include "opencv/opencv.h"

#include <opencv2/imgproc.hpp>

namespace odx::bench
{

namespace
{

using test::Measurement;

// Planes one below the other: a matrix half as high again as the image.
template <int code>
Call from420(const Measurement& measurement)
{
    Measurement planes = measurement;
    planes.picture = nullptr;
    planes.extent.height = measurement.extent.height / 2 * 3;
    return [src = matrix(planes, CV_8U), dst = cv::Mat()]() mutable { cv::cvtColor(src, dst, code); };
}

// Packed pixels, in both images or in one. Three interleaved channels are the nearest to 4:4:4.
template <int type, int code>
Call packed(const Measurement& measurement)
{
    return [src = matrix(measurement, type), dst = cv::Mat()]() mutable { cv::cvtColor(src, dst, code); };
}

const OpencvPeers color = {
    {"odxColorRGB565ToBGR888u8", packed<CV_8UC2, cv::COLOR_BGR5652RGB>},
    {"odxColorRGB565ToBGRA8888u8", packed<CV_8UC2, cv::COLOR_BGR5652RGBA>},
    {"odxColorRGB565ToRGB888u8", packed<CV_8UC2, cv::COLOR_BGR5652BGR>},
    {"odxColorRGB565ToRGBA8888u8", packed<CV_8UC2, cv::COLOR_BGR5652BGRA>},
    {"odxColorRGB888ToBGR565u8", packed<CV_8UC3, cv::COLOR_RGB2BGR565>},
    {"odxColorRGB888ToBGR888u8", packed<CV_8UC3, cv::COLOR_RGB2BGR>},
    {"odxColorRGB888ToBGRA8888u8", packed<CV_8UC3, cv::COLOR_RGB2BGRA>},
    {"odxColorRGB888ToGrayu8", packed<CV_8UC3, cv::COLOR_RGB2GRAY>},
    {"odxColorRGB888ToHSV888u8", packed<CV_8UC3, cv::COLOR_RGB2HSV_FULL>},
    {"odxColorRGB888ToRGB565u8", packed<CV_8UC3, cv::COLOR_BGR2BGR565>},
    {"odxColorRGB888ToRGBA8888u8", packed<CV_8UC3, cv::COLOR_RGB2RGBA>},
    {"odxColorRGB888ToYCbCr420Planaru8", packed<CV_8UC3, cv::COLOR_BGR2YUV_I420>},
    {"odxColorRGB888ToYCbCr444Planaru8", packed<CV_8UC3, cv::COLOR_BGR2YUV>},
    {"odxColorRGB888toYCrCbu8", packed<CV_8UC3, cv::COLOR_RGB2YCrCb>},
    {"odxColorRGB888toYCrCbu8_v2", packed<CV_8UC3, cv::COLOR_RGB2YCrCb>},
    {"odxColorRGBA8888ToBGR565u8", packed<CV_8UC4, cv::COLOR_RGBA2BGR565>},
    {"odxColorRGBA8888ToBGR888u8", packed<CV_8UC4, cv::COLOR_RGBA2BGR>},
    {"odxColorRGBA8888ToBGRA8888u8", packed<CV_8UC4, cv::COLOR_RGBA2BGRA>},
    {"odxColorRGBA8888ToLABu8", packed<CV_8UC4, cv::COLOR_RGB2Lab>},
    {"odxColorRGBA8888ToRGB565u8", packed<CV_8UC4, cv::COLOR_BGRA2BGR565>},
    {"odxColorRGBA8888ToRGB888u8", packed<CV_8UC4, cv::COLOR_RGBA2RGB>},
    {"odxColorRGBA8888ToYCbCr420Planaru8", packed<CV_8UC4, cv::COLOR_BGRA2YUV_I420>},
    {"odxColorYCbCr420PlanarToRGB888u8", from420<cv::COLOR_YUV2RGB_I420>},
    {"odxColorYCbCr420PlanarToRGBA8888u8", from420<cv::COLOR_YUV2RGBA_I420>},
    {"odxColorYCbCr420PseudoPlanarToRGB888u8", from420<cv::COLOR_YUV2RGB_NV12>},
    {"odxColorYCbCr420PseudoPlanarToRGBA8888u8", from420<cv::COLOR_YUV2RGBA_NV12>},
    {"odxColorYUV420toRGB8888u8", from420<cv::COLOR_YUV2RGBA_NV21>},
    {"odxColorYCrCb420PseudoPlanarToRGB8888u8", from420<cv::COLOR_YUV2RGBA_NV21>},
    {"odxColorYCbCr444PlanarToRGB888u8", packed<CV_8UC3, cv::COLOR_YUV2RGB>},
    {"odxColorYCbCr444PseudoPlanarToRGB888u8", packed<CV_8UC3, cv::COLOR_YUV2RGB>},
};

} // namespace

} // namespace odx::bench
