#include "cpu/ondrixChannelC.h"

#include "cpu/elementwise.h"
#include "cpu/ondrixArithm.h"

#include <type_traits>

using namespace odx;
using namespace odx::arithm;

namespace
{

// Calls with the number of channels as a constant where it is a usual one, else with the number itself.
template <class Body>
void withChannels(uint32_t channels, Body body)
{
    switch (channels) {
    case 2:
        return body(std::integral_constant<uint32_t, 2>());
    case 3:
        return body(std::integral_constant<uint32_t, 3>());
    case 4:
        return body(std::integral_constant<uint32_t, 4>());
    default:
        return body(channels);
    }
}

} // namespace

extern "C" {

void combine2PlanesC(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight, unsigned int src1Stride,
                     const uint8_t* src2, unsigned int src2Stride, uint8_t* dst, unsigned int dstStride)
{
    forElements(
        [](uint8_t a, uint8_t b, Pixel<uint8_t, 2>& out) {
            out = {{a, b}};
        },
        srcWidth, srcHeight, Rows{src1, src1Stride}, Rows{src2, src2Stride},
        Rows{pixelsOf<uint8_t, 2>(dst), dstStride});
}
void odxChannelCombine2Planesu8C(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride,
                                 uint8_t* dst, unsigned int dstStride)
{
    combine2Planes_(src1, srcWidth, srcHeight, src1Stride, src2, src2Stride, dst, dstStride);
}

void odxChannelCombine3Planesu8C(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride,
                                 const uint8_t* src3, unsigned int src3Stride, uint8_t* dst,
                                 unsigned int dstStride)
{
    forElements(
        [](uint8_t a, uint8_t b, uint8_t c, Pixel<uint8_t, 3>& out) {
            out = {{a, b, c}};
        },
        srcWidth, srcHeight, Rows{src1, src1Stride}, Rows{src2, src2Stride}, Rows{src3, src3Stride},
        Rows{pixelsOf<uint8_t, 3>(dst), dstStride});
}

void odxChannelCombine4Planesu8C(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride,
                                 const uint8_t* src3, unsigned int src3Stride, const uint8_t* src4,
                                 unsigned int src4Stride, uint8_t* dst, unsigned int dstStride)
{
    forElements(
        [](uint8_t a, uint8_t b, uint8_t c, uint8_t d, Pixel<uint8_t, 4>& out) {
            out = {{a, b, c, d}};
        },
        srcWidth, srcHeight, Rows{src1, src1Stride}, Rows{src2, src2Stride}, Rows{src3, src3Stride},
        Rows{src4, src4Stride}, Rows{pixelsOf<uint8_t, 4>(dst), dstStride});
}

void extractChannelC(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint32_t channels,
                     uint32_t position, uint8_t* dst, uint32_t dstStride)
{
    withChannels(channels, [=](auto n) {
        for (uint32_t y = 0; y < height; ++y) {
            const uint8_t* const in = rowOf(src, srcStride, y) + position;
            uint8_t* const out = rowOf(dst, dstStride, y);
            ODX_INDEPENDENT_STEPS
            for (size_t x = 0; x < width; ++x)
                out[x] = in[n * x];
        }
    });
}
void odxChannelExtractu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcStride, unsigned int channels, odxChannelType channel, uint8_t* dst,
                          unsigned int dstStride)
{
    extractChannel_(src, srcWidth, srcHeight, srcStride, channels, channels::positionOf(channel, channels), dst,
                    dstStride);
}

void deinterleaveC(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                   unsigned int channels, uint8_t* dst, unsigned int dstStride)
{
    for (uint32_t c = 0; c < channels; ++c)
        extractChannelC(src, srcWidth, srcHeight, srcStride, channels, c,
                        rowOf(dst, dstStride, size_t{c} * srcHeight), dstStride);
}
void odxDeinterleaveu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                        unsigned int channels, uint8_t* dst, unsigned int dstStride)
{
    deinterleave_(src, srcWidth, srcHeight, srcStride, channels, dst, dstStride);
}

void interleaveC(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                 unsigned int channels, uint8_t* dst, unsigned int dstStride)
{
    withChannels(channels, [=](auto n) {
        for (uint32_t y = 0; y < srcHeight; ++y) {
            for (uint32_t c = 0; c < n; ++c) {
                const uint8_t* const in = rowOf(src, srcStride, size_t{c} * srcHeight + y);
                uint8_t* const out = rowOf(dst, dstStride, y) + c;
                ODX_INDEPENDENT_STEPS
                for (size_t x = 0; x < srcWidth; ++x)
                    out[n * x] = in[x];
            }
        }
    });
}
void odxInterleaveu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                      unsigned int channels, uint8_t* dst, unsigned int dstStride)
{
    interleave_(src, srcWidth, srcHeight, srcStride, channels, dst, dstStride);
}
}
