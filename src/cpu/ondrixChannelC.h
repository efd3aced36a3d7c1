// Reference implementations: interleaved channels.
#ifndef ODX_CPU_ONDRIX_CHANNEL_C_H
#define ODX_CPU_ONDRIX_CHANNEL_C_H

#include "frame/helpers.h"
#include "ondrix/arithmetic.h"

namespace odx::channels
{

// Where a channel stands in pixels of so many; kNowhere if they have no such channel.
constexpr uint32_t kNowhere = 16;
constexpr uint32_t positionOf(odxChannelType channel, uint32_t channels)
{
    if (channel <= ONDRIX_CHANNEL_A) return channel % 4 < channels ? channel % 4 : kNowhere;
    if (channel > ONDRIX_CHANNEL_V || channels > 3) return kNowhere;
    if (channels == 3) return channel - ONDRIX_CHANNEL_Y;
    return channel == ONDRIX_CHANNEL_Y ? kNowhere : channel - ONDRIX_CHANNEL_U;
}

} // namespace odx::channels

extern "C" {
decltype(odxChannelCombine2Planesu8) odxChannelCombine2Planesu8C;
decltype(odxChannelCombine3Planesu8) odxChannelCombine3Planesu8C;
decltype(odxChannelCombine4Planesu8) odxChannelCombine4Planesu8C;
decltype(odxChannelExtractu8) odxChannelExtractu8C;
decltype(odxDeinterleaveu8) odxDeinterleaveu8C;
decltype(odxInterleaveu8) odxInterleaveu8C;

// What the operations that have no SIMD function of their own do, with the loops of either column.
decltype(odxChannelCombine2Planesu8) combine2PlanesC;
void extractChannelC(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint32_t channels,
                     uint32_t position, uint8_t* dst, uint32_t dstStride);
decltype(odxDeinterleaveu8) deinterleaveC;
decltype(odxInterleaveu8) interleaveC;
ODX_HELPER_POINTER(combine2Planes);
ODX_HELPER_POINTER(extractChannel);
ODX_HELPER_POINTER(deinterleave);
ODX_HELPER_POINTER(interleave);
}

#endif
