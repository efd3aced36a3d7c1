#include "peers.h"

#ifdef ONDRIX_BENCH_OPENCV
#include "opencv.h"

#include <opencv2/imgproc.hpp>
#endif
#ifdef ONDRIX_BENCH_LIBYUV
#include <libyuv.h>
#endif

namespace odx::bench
{

namespace
{

using test::Measurement;

void append(std::vector<Peer>& all, std::vector<Peer> peers)
{
    all.insert(all.end(), peers.begin(), peers.end());
}

#ifdef ONDRIX_BENCH_OPENCV

// Planes one below the other: a matrix half as high again as the image.
template <int code>
std::function<void()> from420(const Measurement& measurement)
{
    Measurement planes = measurement;
    planes.picture = nullptr;
    planes.extent.height = measurement.extent.height / 2 * 3;
    return [src = matrix(planes, CV_8U), dst = cv::Mat()]() mutable { cv::cvtColor(src, dst, code); };
}

// Three interleaved channels, the nearest to 4:4:4.
std::function<void()> from444(const Measurement& measurement)
{
    return [src = matrix(measurement, CV_8UC3), dst = cv::Mat()]() mutable {
        cv::cvtColor(src, dst, cv::COLOR_YUV2RGB);
    };
}

std::vector<Peer> opencvPeers()
{
    return {
        {"odxColorYCbCr420PlanarToRGB888u8", "OpenCV", from420<cv::COLOR_YUV2RGB_I420>},
        {"odxColorYCbCr420PlanarToRGBA8888u8", "OpenCV", from420<cv::COLOR_YUV2RGBA_I420>},
        {"odxColorYCbCr420PseudoPlanarToRGB888u8", "OpenCV", from420<cv::COLOR_YUV2RGB_NV12>},
        {"odxColorYCbCr420PseudoPlanarToRGBA8888u8", "OpenCV", from420<cv::COLOR_YUV2RGBA_NV12>},
        {"odxColorYUV420toRGB8888u8", "OpenCV", from420<cv::COLOR_YUV2RGBA_NV21>},
        {"odxColorYCrCb420PseudoPlanarToRGB8888u8", "OpenCV", from420<cv::COLOR_YUV2RGBA_NV21>},
        {"odxColorYCbCr444PlanarToRGB888u8", "OpenCV", from444},
        {"odxColorYCbCr444PseudoPlanarToRGB888u8", "OpenCV", from444},
    };
}

#else

std::vector<Peer> opencvPeers()
{
    return {};
}

#endif

#ifdef ONDRIX_BENCH_LIBYUV

// An image of luma and chroma, and one of packed pixels.
struct Images {
    explicit Images(const Measurement& measurement)
        : width(static_cast<int>(measurement.extent.width)), height(static_cast<int>(measurement.extent.height))
    {
        const size_t pixels = size_t{measurement.extent.width} * measurement.extent.height;
        planes.resize(3 * pixels);
        packed.resize(4 * pixels);
        uint32_t noise = 1;
        for (uint8_t& byte : planes)
            byte = static_cast<uint8_t>((noise = noise * 1664525 + 1013904223) >> 24);
        y = planes.data();
        second = y + pixels;
        third = second + pixels;
    }
    Images(const Images&) = delete;
    Images& operator=(const Images&) = delete;

    int width, height;
    std::vector<uint8_t> planes, packed;
    const uint8_t *y, *second, *third;
};

// Chroma rows of 1/across of a plane's width.
template <auto* convert, int across, int pixelSize>
std::function<void()> planes(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        const int chroma = i->width / across;
        convert(i->y, i->width, i->second, chroma, i->third, chroma, i->packed.data(), pixelSize * i->width,
                i->width, i->height);
    };
}

template <auto* convert, int pixelSize>
std::function<void()> pairs(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        convert(i->y, i->width, i->second, i->width, i->packed.data(), pixelSize * i->width, i->width, i->height);
    };
}

std::vector<Peer> libyuvPeers()
{
    using namespace libyuv;
    return {
        {"odxColorYCbCr420PlanarToRGB565u8", "libyuv", planes<I420ToRGB565, 2, 2>},
        {"odxColorYCbCr420PlanarToRGB888u8", "libyuv", planes<I420ToRAW, 2, 3>},
        {"odxColorYCbCr420PlanarToRGBA8888u8", "libyuv", planes<I420ToABGR, 2, 4>},
        {"odxColorYCbCr420PseudoPlanarToRGB565u8", "libyuv", pairs<NV12ToRGB565, 2>},
        {"odxColorYCbCr420PseudoPlanarToRGB888u8", "libyuv", pairs<NV12ToRAW, 3>},
        {"odxColorYCbCr420PseudoPlanarToRGBA8888u8", "libyuv", pairs<NV12ToABGR, 4>},
        {"odxColorYCbCr422PlanarToRGB565u8", "libyuv", planes<I422ToRGB565, 2, 2>},
        {"odxColorYCbCr422PlanarToRGBA8888u8", "libyuv", planes<I422ToABGR, 2, 4>},
        {"odxColorYCbCr444PlanarToRGBA8888u8", "libyuv", planes<I444ToABGR, 1, 4>},
        {"odxColorYUV420toRGB565u8", "libyuv", pairs<NV12ToRGB565, 2>},
        {"odxColorYUV420toRGB8888u8", "libyuv", pairs<NV21ToABGR, 4>},
        {"odxColorYCrCb420PseudoPlanarToRGB8888u8", "libyuv", pairs<NV21ToABGR, 4>},
    };
}

#else

std::vector<Peer> libyuvPeers()
{
    return {};
}

#endif

} // namespace

std::vector<Peer> colorPeers()
{
    std::vector<Peer> all;
    append(all, opencvPeers());
    append(all, libyuvPeers());
    return all;
}

} // namespace odx::bench
