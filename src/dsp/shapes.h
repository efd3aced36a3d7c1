// Descriptions that operations of several families share, and what descriptions are made of.
#ifndef ODX_DSP_SHAPES_H
#define ODX_DSP_SHAPES_H

#include "dsp/arguments.h"
#include "frame/entry.h"
#include "ondrix/types.h"

namespace odx::remoting
{

// Samples that cover two pixels each, and the pixels that they cover.
constexpr uint32_t half(uint32_t pixels)
{
    return pixels / 2 + pixels % 2;
}
constexpr uint32_t even(uint32_t pixels)
{
    return pixels + pixels % 2;
}

// Bytes of an image of bits, in rows of whole bytes.
inline uint64_t bitMask(uint32_t width, uint32_t height)
{
    return product(uint64_t{width} / 8 + (width % 8 != 0 ? 1 : 0), height);
}

template <class T>
Stride strideOf(const T*, uint32_t stride, uint64_t width, uint32_t channels = 1)
{
    return remoting::stride(stride, width * sizeof(T) * channels);
}

// An image into another one, and numbers.
inline constexpr auto image = [](const auto* src, uint32_t width, uint32_t height, uint32_t srcStride, auto* dst,
                                 uint32_t dstStride, auto... numbers) {
    const Stride from = strideOf(src, srcStride, width), to = strideOf(dst, dstStride, width);
    return arguments(rows(src, from, height), width, height, from, rows(dst, to, height), to, numbers...);
};

// The same for operations with a status.
inline constexpr auto largeImage = [](const auto* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                      auto* dst, uint32_t dstStride, auto... numbers) {
    return limit(worthSending(width, height), image(src, width, height, srcStride, dst, dstStride, numbers...));
};

// The same with the numbers between the images.
template <class S, class D, class... Numbers>
auto imageAround(const S* src, uint32_t width, uint32_t height, uint32_t srcStride, D* dst, uint32_t dstStride,
                 Numbers... numbers)
{
    const Stride from = strideOf(src, srcStride, width), to = strideOf(dst, dstStride, width);
    return arguments(rows(src, from, height), width, height, from, numbers..., rows(dst, to, height), to);
}

// The same with interleaved channels of a byte.
template <uint32_t srcChannels, uint32_t dstChannels>
inline constexpr auto pixels =
    [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst, uint32_t dstStride) {
        const Stride from = strideOf(src, srcStride, width, srcChannels),
                     to = strideOf(dst, dstStride, width, dstChannels);
        return arguments(rows(src, from, height), width, height, from, rows(dst, to, height), to);
    };

// An array that is only read.
inline constexpr auto array = [](const auto* src, uint32_t length) {
    return arguments(list(src, length), length);
};

} // namespace odx::remoting

#endif
