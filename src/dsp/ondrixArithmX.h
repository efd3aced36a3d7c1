// How the arguments of element-wise arithmetic travel.
#ifndef ODX_DSP_ONDRIX_ARITHM_X_H
#define ODX_DSP_ONDRIX_ARITHM_X_H

#include "cpu/ondrixChannelC.h"
#include "dsp/shapes.h"

namespace odx::remoting
{

// Numbers stand between the images, none to three of them.
template <class S1, class S2, class D, class... Numbers>
auto two(const S1* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const S2* src2, uint32_t src2Stride,
         D* dst, uint32_t dstStride, Numbers... numbers)
{
    const Stride from1 = strideOf(src1, src1Stride, width), from2 = strideOf(src2, src2Stride, width),
                 to = strideOf(dst, dstStride, width);
    return arguments(rows(src1, from1, height), width, height, from1, rows(src2, from2, height), from2, numbers...,
                     rows(dst, to, height), to);
}
inline constexpr struct {
    template <class S1, class S2, class D>
    auto operator()(const S1* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const S2* src2,
                    uint32_t src2Stride, D* dst, uint32_t dstStride) const
    {
        return two(src1, width, height, src1Stride, src2, src2Stride, dst, dstStride);
    }
    template <class S1, class S2, class N, class D>
    auto operator()(const S1* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const S2* src2,
                    uint32_t src2Stride, N number, D* dst, uint32_t dstStride) const
    {
        return two(src1, width, height, src1Stride, src2, src2Stride, dst, dstStride, number);
    }
    template <class S1, class S2, class N, class D>
    auto operator()(const S1* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const S2* src2,
                    uint32_t src2Stride, N alpha, N beta, N gamma, D* dst, uint32_t dstStride) const
    {
        return two(src1, width, height, src1Stride, src2, src2Stride, dst, dstStride, alpha, beta, gamma);
    }
} twoImages;
inline constexpr auto twoImagesWithStatus = [](const int16_t* src1, uint32_t width, uint32_t height,
                                               uint32_t src1Stride, const int16_t* src2, uint32_t src2Stride,
                                               odxOverflow policy, int16_t* dst, uint32_t dstStride) {
    return limit(worthSending(width, height) && multiplesOf(8, src1, src1Stride, src2, src2Stride, dst, dstStride),
                 two(src1, width, height, src1Stride, src2, src2Stride, dst, dstStride, policy));
};

template <class S, class D, class... Items>
auto one(const S* src, uint32_t width, uint32_t height, uint32_t srcStride, D* dst, uint32_t dstStride,
         uint32_t channels, Items... items)
{
    const Stride from = strideOf(src, srcStride, width, channels), to = strideOf(dst, dstStride, width, channels);
    return arguments(rows(src, from, height), width, height, from, items..., rows(dst, to, height), to);
}
inline constexpr struct {
    template <class S, class D>
    auto operator()(const S* src, uint32_t width, uint32_t height, uint32_t srcStride, D* dst,
                    uint32_t dstStride) const
    {
        return one(src, width, height, srcStride, dst, dstStride, 1);
    }
    template <class S, class N, class D>
    auto operator()(const S* src, uint32_t width, uint32_t height, uint32_t srcStride, N number, D* dst,
                    uint32_t dstStride) const
    {
        return one(src, width, height, srcStride, dst, dstStride, 1, number);
    }
    template <class S, class N1, class N2, class D>
    auto operator()(const S* src, uint32_t width, uint32_t height, uint32_t srcStride, N1 number1, N2 number2,
                    D* dst, uint32_t dstStride) const
    {
        return one(src, width, height, srcStride, dst, dstStride, 1, number1, number2);
    }
} oneImage;
inline constexpr auto tableLookup = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                       const uint8_t* table, uint8_t* dst, uint32_t dstStride) {
    return one(src, width, height, srcStride, dst, dstStride, 1, list(table, 256));
};
template <uint32_t channels>
inline constexpr auto toValues = [](const auto* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                    const auto* value, auto* dst, uint32_t dstStride) {
    return one(src, width, height, srcStride, dst, dstStride, channels, list(value, channels));
};

// One value is a number, several are a list. Without a mask its stride does not matter.
template <class T>
auto valuesOf(const T* value, uint32_t channels)
{
    return list(value, channels);
}
template <class T>
T valuesOf(T value, uint32_t)
{
    return value;
}
template <uint32_t channels>
inline constexpr auto setElements = [](auto* dst, uint32_t width, uint32_t height, uint32_t dstStride, auto value,
                                       const uint8_t* mask, uint32_t maskStride) {
    using T = std::remove_pointer_t<decltype(dst)>;
    const Stride to = strideOf(dst, dstStride, width, channels),
                 masked = mask == nullptr ? Stride{maskStride, true} : strideOf(mask, maskStride, width);
    return arguments(rows(dst, to, height), width, height, to, valuesOf<std::remove_const_t<T>>(value, channels),
                     rows(mask, masked, height), masked);
};

// ---- channels ----

template <class... Items>
auto combineItems(uint32_t width, uint32_t height, uint32_t channels, Arguments<false, Items...> before,
                  uint8_t* dst, uint32_t dstStride)
{
    const Stride to = strideOf(dst, dstStride, width, channels);
    return before + arguments(rows(dst, to, height), to);
}
inline auto plane(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride)
{
    const Stride from = strideOf(src, stride, width);
    return arguments(rows(src, from, height), from);
}
inline auto firstPlane(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride)
{
    const Stride from = strideOf(src, stride, width);
    return arguments(rows(src, from, height), width, height, from);
}
inline constexpr struct {
    auto operator()(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t stride1, const uint8_t* src2,
                    uint32_t stride2, uint8_t* dst, uint32_t dstStride) const
    {
        return combineItems(width, height, 2,
                            firstPlane(src1, width, height, stride1) + plane(src2, width, height, stride2), dst,
                            dstStride);
    }
    auto operator()(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t stride1, const uint8_t* src2,
                    uint32_t stride2, const uint8_t* src3, uint32_t stride3, uint8_t* dst,
                    uint32_t dstStride) const
    {
        return combineItems(width, height, 3,
                            firstPlane(src1, width, height, stride1) + plane(src2, width, height, stride2) +
                                plane(src3, width, height, stride3),
                            dst, dstStride);
    }
    auto operator()(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t stride1, const uint8_t* src2,
                    uint32_t stride2, const uint8_t* src3, uint32_t stride3, const uint8_t* src4, uint32_t stride4,
                    uint8_t* dst, uint32_t dstStride) const
    {
        return combineItems(width, height, 4,
                            firstPlane(src1, width, height, stride1) + plane(src2, width, height, stride2) +
                                plane(src3, width, height, stride3) + plane(src4, width, height, stride4),
                            dst, dstStride);
    }
} combine;
inline constexpr auto extract = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                   uint32_t channels, odxChannelType channel, uint8_t* dst, uint32_t dstStride) {
    const Stride from = strideOf(src, srcStride, width, channels), to = strideOf(dst, dstStride, width);
    return arguments(rows(src, from, height), width, height, from, channels, channel, rows(dst, to, height), to);
};
inline constexpr auto deinterleave = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                        uint32_t channels, uint8_t* dst, uint32_t dstStride) {
    const Stride from = strideOf(src, srcStride, width, channels), to = strideOf(dst, dstStride, width);
    return arguments(rows(src, from, height), width, height, from, channels,
                     rows(dst, to, product(height, channels)), to);
};
inline constexpr auto interleave = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                      uint32_t channels, uint8_t* dst, uint32_t dstStride) {
    const Stride from = strideOf(src, srcStride, width), to = strideOf(dst, dstStride, width, channels);
    return arguments(rows(src, from, product(height, channels)), width, height, from, channels,
                     rows(dst, to, height), to);
};

// ---- results that are no images ----

inline constexpr auto average = [](const auto* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                   float* mean) {
    const Stride from = strideOf(src, srcStride, width);
    return arguments(rows(src, from, height), width, height, from, written(mean, 1));
};
inline constexpr auto crossProduct = [](const float* src1, const float* src2, float* dst) {
    return arguments(list(src1, 3), list(src2, 3), written(dst, 3));
};

} // namespace odx::remoting

#endif
