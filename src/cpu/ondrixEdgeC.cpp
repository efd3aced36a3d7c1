#include "cpu/ondrixEdgeC.h"

#include "cpu/border.h"
#include "cpu/ondrixEdgeRows.h"

#include <type_traits>

using odx::Plane;
using odx::rowOf;
using namespace odx::edge;

namespace odx::edge
{

template <uint32_t K>
void sobelFrame(const Plane<uint8_t, int16_t>& dx, const Plane<uint8_t, int16_t>& dy, odxBorderType type,
                uint32_t value)
{
    if (type == ONDRIX_BORDER_UNDEFINED) return;
    const border::Outside<uint8_t> outside = {type == ONDRIX_BORDER_REPLICATE, static_cast<uint8_t>(value)};
    if (dx.dst != nullptr) border::filterFrame<SobelAxis<K, false>>(dx, outside);
    if (dy.dst != nullptr) border::filterFrame<SobelAxis<K, true>>(dy, outside);
}

template void sobelFrame<3>(const Plane<uint8_t, int16_t>&, const Plane<uint8_t, int16_t>&, odxBorderType,
                            uint32_t);
template void sobelFrame<5>(const Plane<uint8_t, int16_t>&, const Plane<uint8_t, int16_t>&, odxBorderType,
                            uint32_t);
template void sobelFrame<7>(const Plane<uint8_t, int16_t>&, const Plane<uint8_t, int16_t>&, odxBorderType,
                            uint32_t);

} // namespace odx::edge

namespace
{

// ---- 3x3 gradients ----

// What is stored of a sum.
template <class D>
D whole(int16_t sum)
{
    return static_cast<D>(sum);
}
template <class D>
D eighth(int16_t sum)
{
    return static_cast<D>(sum >> 3);
}
template <>
float eighth<float>(int16_t sum)
{
    return static_cast<float>(sum) * 0.125f;
}
float eighthOfFloat(float sum)
{
    return sum * 0.125f;
}

// Calls row(above, y) for the rows of the interior, `above` pointing at the uppermost leftmost tap.
template <class T, class Row>
void forInterior(const T* src, uint32_t width, uint32_t height, uint32_t srcStride, Row row)
{
    if (width < 3 || height < 3) return;
    for (uint32_t y = 1; y < height - 1; ++y)
        row(rowOf(src, srcStride, y - 1), y);
}

template <class Kernel, auto* stored, class T, class D>
void planar(const T* src, uint32_t width, uint32_t height, uint32_t srcStride, D* dx, D* dy, uint32_t dxyStride)
{
    using Sum = std::conditional_t<std::is_integral_v<T>, int16_t, T>;
    forInterior(src, width, height, srcStride, [=](const T* above, uint32_t y) {
        D *const outX = rowOf(dx, dxyStride, y) + 1, *const outY = rowOf(dy, dxyStride, y) + 1;
        gradientRow<Kernel>(above, rowOf(above, srcStride, 1), rowOf(above, srcStride, 2), width - 2,
                            [=](size_t x, Sum sumX, Sum sumY) {
                                outX[x] = stored(sumX);
                                outY[x] = stored(sumY);
                            });
    });
}

template <class Kernel, auto* stored, class D>
void interleaved(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, D* gradients,
                 uint32_t gradStride)
{
    forInterior(src, width, height, srcStride, [=](const uint8_t* above, uint32_t y) {
        D* const out = rowOf(gradients, gradStride, y - 1);
        gradientRow<Kernel>(above, rowOf(above, srcStride, 1), rowOf(above, srcStride, 2), width - 2,
                            [=](size_t x, int16_t sumX, int16_t sumY) {
                                out[2 * x] = stored(sumX);
                                out[2 * x + 1] = stored(sumY);
                            });
    });
}

// ---- Sobel filters with a border type ----

template <uint32_t K>
odxStatus sobel(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int16_t* dx, int16_t* dy,
                uint32_t dxyStride, odxBorderType borderType, uint32_t borderValue)
{
    const Plane<uint8_t, int16_t> planeX = {src, width, height, srcStride, dx, dxyStride},
                                  planeY = {src, width, height, srcStride, dy, dxyStride};
    const uint32_t across = planeX.interiorWidth(K), down = planeX.interiorHeight(K);
    const auto first = [=](int16_t* image) { return rowOf(image, dxyStride, K / 2) + K / 2; };
    if (across != 0 && dx != nullptr)
        sobelRows<SobelAxis<K, false>>(src, srcStride, first(dx), dxyStride, across, down);
    if (across != 0 && dy != nullptr)
        sobelRows<SobelAxis<K, true>>(src, srcStride, first(dy), dxyStride, across, down);
    sobelFrame<K>(planeX, planeY, borderType, borderValue);
    return ONDRIX_SUCCESS;
}

} // namespace

extern "C" {

// clang-format off
#define ODX_INTERLEAVED(name, D, ...) \
    void name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
              D* gradients, unsigned int gradStride) \
    { \
        interleaved<__VA_ARGS__>(src, srcWidth, srcHeight, srcStride, gradients, gradStride); \
    }
#define ODX_PLANAR(name, S, D, ...) \
    void name(const S* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, D* dx, D* dy, \
              unsigned int dxyStride) \
    { \
        planar<__VA_ARGS__>(src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride); \
    }

ODX_INTERLEAVED(odxImageGradientInterleaveds16C, int16_t, Central, whole<int16_t>)
ODX_INTERLEAVED(odxImageGradientInterleavedf32C, float, Central, whole<float>)
ODX_INTERLEAVED(odxImageGradientSobelInterleaveds16C, int16_t, Sobel, eighth<int16_t>)
ODX_INTERLEAVED(odxImageGradientSobelInterleaveds16_v3C, int16_t, Sobel, eighth<int16_t>)
ODX_INTERLEAVED(odxImageGradientSobelInterleavedf32C, float, Sobel, eighth<float>)
ODX_INTERLEAVED(odxImageGradientScharrInterleaveds16C, int16_t, Scharr, whole<int16_t>)
ODX_PLANAR(odxImageGradientPlanars16C, uint8_t, int16_t, Central, whole<int16_t>)
ODX_PLANAR(odxImageGradientPlanarf32C, uint8_t, float, Central, whole<float>)
ODX_PLANAR(odxImageGradientSobelPlanars16C, uint8_t, int16_t, Sobel, eighth<int16_t>)
ODX_PLANAR(odxImageGradientSobelPlanars16_v3C, uint8_t, int16_t, Sobel, eighth<int16_t>)
ODX_PLANAR(odxImageGradientSobelPlanars8C, uint8_t, int8_t, Sobel, eighth<int8_t>)
ODX_PLANAR(odxImageGradientSobelPlanarf32C, uint8_t, float, Sobel, eighth<float>)
ODX_PLANAR(odxImageGradientSobelPlanarf32f32C, float, float, Sobel, eighthOfFloat)

#define ODX_SOBEL(K) \
    odxStatus odxFilterSobel##K##x##K##u8s16C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, \
                                              unsigned int srcStride, int16_t* dx, int16_t* dy, \
                                              unsigned int dxyStride, odxBorderType borderType, \
                                              uint32_t borderValue) \
    { \
        return sobel<K>(src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride, borderType, borderValue); \
    }

ODX_SOBEL(3)
ODX_SOBEL(5)
ODX_SOBEL(7)
// clang-format on

void odxFilterSobel3x3u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    forInterior(src, srcWidth, srcHeight, srcStride, [=](const uint8_t* above, uint32_t y) {
        uint8_t* const out = rowOf(dst, dstStride, y) + 1;
        gradientRow<Sobel>(above, rowOf(above, srcStride, 1), rowOf(above, srcStride, 2), srcWidth - 2,
                           [=](size_t x, int16_t dx, int16_t dy) {
                               const auto sum = static_cast<int16_t>(abs(dx) + abs(dy));
                               out[x] = static_cast<uint8_t>(sum < 255 ? sum : 255);
                           });
    });
}
}
