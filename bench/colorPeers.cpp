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

// Packed pixels, in both images or in one. Three interleaved channels are the nearest to 4:4:4.
template <int type, int code>
std::function<void()> packed(const Measurement& measurement)
{
    return [src = matrix(measurement, type), dst = cv::Mat()]() mutable { cv::cvtColor(src, dst, code); };
}

std::vector<Peer> opencvPeers()
{
    return {
        {"odxColorRGB565ToBGR888u8", "OpenCV", packed<CV_8UC2, cv::COLOR_BGR5652RGB>},
        {"odxColorRGB565ToBGRA8888u8", "OpenCV", packed<CV_8UC2, cv::COLOR_BGR5652RGBA>},
        {"odxColorRGB565ToRGB888u8", "OpenCV", packed<CV_8UC2, cv::COLOR_BGR5652BGR>},
        {"odxColorRGB565ToRGBA8888u8", "OpenCV", packed<CV_8UC2, cv::COLOR_BGR5652BGRA>},
        {"odxColorRGB888ToBGR565u8", "OpenCV", packed<CV_8UC3, cv::COLOR_RGB2BGR565>},
        {"odxColorRGB888ToBGR888u8", "OpenCV", packed<CV_8UC3, cv::COLOR_RGB2BGR>},
        {"odxColorRGB888ToBGRA8888u8", "OpenCV", packed<CV_8UC3, cv::COLOR_RGB2BGRA>},
        {"odxColorRGB888ToGrayu8", "OpenCV", packed<CV_8UC3, cv::COLOR_RGB2GRAY>},
        {"odxColorRGB888ToHSV888u8", "OpenCV", packed<CV_8UC3, cv::COLOR_RGB2HSV_FULL>},
        {"odxColorRGB888ToRGB565u8", "OpenCV", packed<CV_8UC3, cv::COLOR_BGR2BGR565>},
        {"odxColorRGB888ToRGBA8888u8", "OpenCV", packed<CV_8UC3, cv::COLOR_RGB2RGBA>},
        {"odxColorRGB888ToYCbCr420Planaru8", "OpenCV", packed<CV_8UC3, cv::COLOR_BGR2YUV_I420>},
        {"odxColorRGB888ToYCbCr444Planaru8", "OpenCV", packed<CV_8UC3, cv::COLOR_BGR2YUV>},
        {"odxColorRGB888toYCrCbu8", "OpenCV", packed<CV_8UC3, cv::COLOR_RGB2YCrCb>},
        {"odxColorRGB888toYCrCbu8_v2", "OpenCV", packed<CV_8UC3, cv::COLOR_RGB2YCrCb>},
        {"odxColorRGBA8888ToBGR565u8", "OpenCV", packed<CV_8UC4, cv::COLOR_RGBA2BGR565>},
        {"odxColorRGBA8888ToBGR888u8", "OpenCV", packed<CV_8UC4, cv::COLOR_RGBA2BGR>},
        {"odxColorRGBA8888ToBGRA8888u8", "OpenCV", packed<CV_8UC4, cv::COLOR_RGBA2BGRA>},
        {"odxColorRGBA8888ToLABu8", "OpenCV", packed<CV_8UC4, cv::COLOR_RGB2Lab>},
        {"odxColorRGBA8888ToRGB565u8", "OpenCV", packed<CV_8UC4, cv::COLOR_BGRA2BGR565>},
        {"odxColorRGBA8888ToRGB888u8", "OpenCV", packed<CV_8UC4, cv::COLOR_RGBA2RGB>},
        {"odxColorRGBA8888ToYCbCr420Planaru8", "OpenCV", packed<CV_8UC4, cv::COLOR_BGRA2YUV_I420>},
        {"odxColorYCbCr420PlanarToRGB888u8", "OpenCV", from420<cv::COLOR_YUV2RGB_I420>},
        {"odxColorYCbCr420PlanarToRGBA8888u8", "OpenCV", from420<cv::COLOR_YUV2RGBA_I420>},
        {"odxColorYCbCr420PseudoPlanarToRGB888u8", "OpenCV", from420<cv::COLOR_YUV2RGB_NV12>},
        {"odxColorYCbCr420PseudoPlanarToRGBA8888u8", "OpenCV", from420<cv::COLOR_YUV2RGBA_NV12>},
        {"odxColorYUV420toRGB8888u8", "OpenCV", from420<cv::COLOR_YUV2RGBA_NV21>},
        {"odxColorYCrCb420PseudoPlanarToRGB8888u8", "OpenCV", from420<cv::COLOR_YUV2RGBA_NV21>},
        {"odxColorYCbCr444PlanarToRGB888u8", "OpenCV", packed<CV_8UC3, cv::COLOR_YUV2RGB>},
        {"odxColorYCbCr444PseudoPlanarToRGB888u8", "OpenCV", packed<CV_8UC3, cv::COLOR_YUV2RGB>},
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
        planes.resize(4 * pixels);
        packed.resize(4 * pixels);
        uint32_t noise = 1;
        for (std::vector<uint8_t>* bytes : {&planes, &packed}) {
            for (uint8_t& byte : *bytes)
                byte = static_cast<uint8_t>((noise = noise * 1664525 + 1013904223) >> 24);
        }
        y = planes.data();
        second = y + pixels;
        third = second + pixels;
    }
    Images(const Images&) = delete;
    Images& operator=(const Images&) = delete;

    int width, height;
    std::vector<uint8_t> planes, packed;
    uint8_t *y, *second, *third;
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

// The other way: pixels to luma and chroma.
template <auto* convert, int across, int pixelSize>
std::function<void()> toPlanes(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        const int chroma = i->width / across;
        convert(i->packed.data(), pixelSize * i->width, i->y, i->width, i->second, chroma, i->third, chroma,
                i->width, i->height);
    };
}

template <auto* convert, int pixelSize>
std::function<void()> toPairs(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        convert(i->packed.data(), pixelSize * i->width, i->y, i->width, i->second, i->width, i->width, i->height);
    };
}

// One packed image to another.
template <auto* convert, int fromSize, int toSize>
std::function<void()> repack(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        convert(i->packed.data(), fromSize * i->width, i->y, toSize * i->width, i->width, i->height);
    };
}

std::function<void()> joinChroma(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        const int chroma = i->width / 2;
        libyuv::I420ToNV12(i->y, i->width, i->second, chroma, i->third, chroma, i->packed.data(), i->width,
                           i->packed.data() + i->width * i->height, i->width, i->width, i->height);
    };
}

std::function<void()> splitChroma(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        const int chroma = i->width / 2, pixels = i->width * i->height;
        libyuv::NV12ToI420(i->y, i->width, i->second, i->width, i->packed.data(), i->width,
                           i->packed.data() + pixels, chroma, i->packed.data() + 2 * pixels, chroma, i->width,
                           i->height);
    };
}

// The byte orders of libyuv's names are those of words; its "RAW" are bytes R, G, B.
std::vector<Peer> libyuvPeers()
{
    using namespace libyuv;
    return {
        {"odxColorCbCrSwapu8", "libyuv", repack<SwapUVPlane, 2, 2>},
        {"odxColorRGB565ToRGBA8888u8", "libyuv", repack<RGB565ToARGB, 2, 4>},
        {"odxColorRGB565ToYCbCr420Planaru8", "libyuv", toPlanes<RGB565ToI420, 2, 2>},
        {"odxColorRGB888ToBGR888u8", "libyuv", repack<RAWToRGB24, 3, 3>},
        {"odxColorRGB888ToBGRA8888u8", "libyuv", repack<RAWToARGB, 3, 4>},
        {"odxColorRGB888ToGrayu8", "libyuv", repack<RAWToJ400, 3, 1>},
        {"odxColorRGB888ToRGBA8888u8", "libyuv", repack<RGB24ToARGB, 3, 4>},
        {"odxColorRGB888ToYCbCr420Planaru8", "libyuv", toPlanes<RGB24ToI420, 2, 3>},
        {"odxColorRGBA8888ToBGR888u8", "libyuv", repack<ARGBToRAW, 4, 3>},
        {"odxColorRGBA8888ToBGRA8888u8", "libyuv", repack<ABGRToARGB, 4, 4>},
        {"odxColorRGBA8888ToRGB565u8", "libyuv", repack<ARGBToRGB565, 4, 2>},
        {"odxColorRGBA8888ToRGB888u8", "libyuv", repack<ARGBToRGB24, 4, 3>},
        {"odxColorRGBA8888ToYCbCr420Planaru8", "libyuv", toPlanes<ARGBToI420, 2, 4>},
        {"odxColorRGBA8888ToYCbCr420PseudoPlanaru8", "libyuv", toPairs<ARGBToNV12, 4>},
        {"odxColorRGBA8888ToYCbCr422Planaru8", "libyuv", toPlanes<ARGBToI422, 2, 4>},
        {"odxColorRGBA8888ToYCbCr444Planaru8", "libyuv", toPlanes<ARGBToI444, 1, 4>},
        {"odxColorYCbCr420PlanarToYCbCr420PseudoPlanaru8", "libyuv", joinChroma},
        {"odxColorYCbCr420PseudoPlanarToYCbCr420Planaru8", "libyuv", splitChroma},
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
