// The constraints of the targets that the colour conversions share.
#ifndef ODX_FRAME_ENTRIES_COLOR_H
#define ODX_FRAME_ENTRIES_COLOR_H

#include "frame/entry.h"

namespace odx::color
{

// What the remote targets, and the GPU, ask of every conversion.
template <class... Values>
bool remoteFits(uint32_t width, uint32_t height, Values... addressesAndStrides)
{
    return worthSending(uint64_t{width} * height) && multiplesOf(8, addressesAndStrides...);
}

template <class... Addresses>
bool gpuFits(uint32_t width, Addresses... addresses)
{
    return multiplesOf(16, addresses...) && multiplesOf(8, width);
}

} // namespace odx::color

#endif
