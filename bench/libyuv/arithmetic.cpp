#include "libyuv/images.h"

namespace odx::bench
{

namespace
{

Call merge2(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        libyuv::MergeUVPlane(i->y, i->width, i->second, i->width, i->packed.data(), 2 * i->width, i->width,
                             i->height);
    };
}
Call merge3(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        libyuv::MergeRGBPlane(i->y, i->width, i->second, i->width, i->third, i->width, i->packed.data(),
                              3 * i->width, i->width, i->height);
    };
}
Call split3(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        libyuv::SplitRGBPlane(i->packed.data(), 3 * i->width, i->y, i->width, i->second, i->width, i->third,
                              i->width, i->width, i->height);
    };
}

const LibyuvPeers arithmetic = {
    {"odxChannelCombine2Planesu8", merge2},
    {"odxChannelCombine3Planesu8", merge3},
    {"odxInterleaveu8", merge3},
    {"odxDeinterleaveu8", split3},
};

} // namespace

} // namespace odx::bench
