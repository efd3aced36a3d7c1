#include "libyuv/images.h"

namespace odx::bench
{

namespace
{

using namespace libyuv;

Call joinChroma(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        const int chroma = i->width / 2;
        libyuv::I420ToNV12(i->y, i->width, i->second, chroma, i->third, chroma, i->packed.data(), i->width,
                           i->packed.data() + i->width * i->height, i->width, i->width, i->height);
    };
}

Call splitChroma(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        const int chroma = i->width / 2, pixels = i->width * i->height;
        libyuv::NV12ToI420(i->y, i->width, i->second, i->width, i->packed.data(), i->width,
                           i->packed.data() + pixels, chroma, i->packed.data() + 2 * pixels, chroma, i->width,
                           i->height);
    };
}

// The byte orders of libyuv's names are those of words; its "RAW" are bytes R, G, B.
const LibyuvPeers color = {
    {"odxColorCbCrSwapu8", repack<SwapUVPlane, 2, 2>},
    {"odxColorRGB565ToRGBA8888u8", repack<RGB565ToARGB, 2, 4>},
    {"odxColorRGB565ToYCbCr420Planaru8", toPlanes<RGB565ToI420, 2, 2>},
    {"odxColorRGB888ToBGR888u8", repack<RAWToRGB24, 3, 3>},
    {"odxColorRGB888ToBGRA8888u8", repack<RAWToARGB, 3, 4>},
    {"odxColorRGB888ToGrayu8", repack<RAWToJ400, 3, 1>},
    {"odxColorRGB888ToRGBA8888u8", repack<RGB24ToARGB, 3, 4>},
    {"odxColorRGB888ToYCbCr420Planaru8", toPlanes<RGB24ToI420, 2, 3>},
    {"odxColorRGBA8888ToBGR888u8", repack<ARGBToRAW, 4, 3>},
    {"odxColorRGBA8888ToBGRA8888u8", repack<ABGRToARGB, 4, 4>},
    {"odxColorRGBA8888ToRGB565u8", repack<ARGBToRGB565, 4, 2>},
    {"odxColorRGBA8888ToRGB888u8", repack<ARGBToRGB24, 4, 3>},
    {"odxColorRGBA8888ToYCbCr420Planaru8", toPlanes<ARGBToI420, 2, 4>},
    {"odxColorRGBA8888ToYCbCr420PseudoPlanaru8", toPairs<ARGBToNV12, 4>},
    {"odxColorRGBA8888ToYCbCr422Planaru8", toPlanes<ARGBToI422, 2, 4>},
    {"odxColorRGBA8888ToYCbCr444Planaru8", toPlanes<ARGBToI444, 1, 4>},
    {"odxColorYCbCr420PlanarToYCbCr420PseudoPlanaru8", joinChroma},
    {"odxColorYCbCr420PseudoPlanarToYCbCr420Planaru8", splitChroma},
    {"odxColorYCbCr420PlanarToRGB565u8", planes<I420ToRGB565, 2, 2>},
    {"odxColorYCbCr420PlanarToRGB888u8", planes<I420ToRAW, 2, 3>},
    {"odxColorYCbCr420PlanarToRGBA8888u8", planes<I420ToABGR, 2, 4>},
    {"odxColorYCbCr420PseudoPlanarToRGB565u8", pairs<NV12ToRGB565, 2>},
    {"odxColorYCbCr420PseudoPlanarToRGB888u8", pairs<NV12ToRAW, 3>},
    {"odxColorYCbCr420PseudoPlanarToRGBA8888u8", pairs<NV12ToABGR, 4>},
    {"odxColorYCbCr422PlanarToRGB565u8", planes<I422ToRGB565, 2, 2>},
    {"odxColorYCbCr422PlanarToRGBA8888u8", planes<I422ToABGR, 2, 4>},
    {"odxColorYCbCr444PlanarToRGBA8888u8", planes<I444ToABGR, 1, 4>},
    {"odxColorYUV420toRGB565u8", pairs<NV12ToRGB565, 2>},
    {"odxColorYUV420toRGB8888u8", pairs<NV21ToABGR, 4>},
    {"odxColorYCrCb420PseudoPlanarToRGB8888u8", pairs<NV21ToABGR, 4>},
};

} // namespace

} // namespace odx::bench
