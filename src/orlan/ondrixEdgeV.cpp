// SIMD gradients. Interiors are computed in strips (neighbourhood.h). Images that are narrower than a vector are
// the reference's, as is the frame of the Sobel filters with a border type.
#include "cpu/ondrixEdgeC.h"
#include "orlan/ondrixEdgeFilters.h"

#define ODX_FAMILY_LIST "frame/operations/gradients.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{

// Whether an image was filtered; else its width belongs to the reference, or it has no interior.
template <class Filter, class S, class... D>
ODX_INLINE bool filtered(const S* src, uint32_t width, uint32_t height, uint32_t srcStride, Rows<D>... out)
{
    if (width < Filter::kLanes + 2) return false;
    if (height >= 3) walk(Filter(), src, srcStride, width - 2, height - 2, out...);
    return true;
}

// clang-format off
#define ODX_INTERLEAVED(name, reference, D, Kernel, Stored) \
    void name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
                 D* gradients, unsigned int gradStride) \
    { \
        if (!filtered<Gradient<edge::Kernel, Stored>>(src, srcWidth, srcHeight, srcStride, \
                                                      Rows<edge::Both<D>>{(edge::Both<D>*)gradients, gradStride})) \
            reference(src, srcWidth, srcHeight, srcStride, gradients, gradStride); \
    }
#define ODX_PLANAR(name, reference, S, D, ...) \
    void name(const S* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, D* dx, D* dy, \
                 unsigned int dxyStride) \
    { \
        if (!filtered<__VA_ARGS__>(src, srcWidth, srcHeight, srcStride, Rows<D>{dx, dxyStride}.at(1, 1), \
                                   Rows<D>{dy, dxyStride}.at(1, 1))) \
            reference(src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride); \
    }

ODX_INTERLEAVED(odxImageGradientInterleaveds16V, odxImageGradientInterleaveds16C, int16_t, Central, Whole)
ODX_INTERLEAVED(odxImageGradientInterleavedf32V, odxImageGradientInterleavedf32C, float, Central, Whole)
ODX_INTERLEAVED(odxImageGradientSobelInterleaveds16V, odxImageGradientSobelInterleaveds16C, int16_t, Sobel, Eighth)
ODX_INTERLEAVED(odxImageGradientSobelInterleaveds16_v3V, odxImageGradientSobelInterleaveds16_v3C, int16_t, Sobel, Eighth)
ODX_INTERLEAVED(odxImageGradientSobelInterleavedf32V, odxImageGradientSobelInterleavedf32C, float, Sobel, Eighth)
ODX_INTERLEAVED(odxImageGradientScharrInterleaveds16V, odxImageGradientScharrInterleaveds16C, int16_t, Scharr, Whole)
ODX_PLANAR(odxImageGradientPlanars16V, odxImageGradientPlanars16C, uint8_t, int16_t, Gradient<edge::Central, Whole>)
ODX_PLANAR(odxImageGradientPlanarf32V, odxImageGradientPlanarf32C, uint8_t, float, Gradient<edge::Central, Whole>)
ODX_PLANAR(odxImageGradientSobelPlanars16V, odxImageGradientSobelPlanars16C, uint8_t, int16_t, Gradient<edge::Sobel, Eighth>)
ODX_PLANAR(odxImageGradientSobelPlanars16_v3V, odxImageGradientSobelPlanars16_v3C, uint8_t, int16_t, Gradient<edge::Sobel, Eighth>)
ODX_PLANAR(odxImageGradientSobelPlanars8V, odxImageGradientSobelPlanars8C, uint8_t, int8_t, Gradient<edge::Sobel, EighthOfByte>)
ODX_PLANAR(odxImageGradientSobelPlanarf32V, odxImageGradientSobelPlanarf32C, uint8_t, float, Gradient<edge::Sobel, Eighth>)
// clang-format on

void odxImageGradientSobelPlanarf32f32V(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcStride, float* dx, float* dy, unsigned int dxyStride)
{
    // Vectors round denormal sums to zero on some processors, which the reference does not.
    if (kFlushesDenormals ||
        !filtered<SobelOfFloat>(src, srcWidth, srcHeight, srcStride, Rows<float>{dx, dxyStride}.at(1, 1),
                                Rows<float>{dy, dxyStride}.at(1, 1)))
        odxImageGradientSobelPlanarf32f32C(src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

void odxFilterSobel3x3u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    if (!filtered<Gradient<edge::Sobel, Magnitude>>(src, srcWidth, srcHeight, srcStride,
                                                    Rows<uint8_t>{dst, dstStride}.at(1, 1)))
        odxFilterSobel3x3u8C(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

// ---- Sobel filters with a border type ----

void sobelInterior(uint32_t K, const uint8_t* src, size_t srcStride, int16_t* dx, int16_t* dy, size_t stride,
                   uint32_t width, uint32_t height)
{
    const Rows<int16_t> outX = {dx, stride}, outY = {dy, stride};
    const auto each = [&](const auto& x, const auto& y) {
        if (dx) walk(x, src, srcStride, width, height, outX);
        if (dy) walk(y, src, srcStride, width, height, outY);
    };
    if (K == 3 && dx && dy) return walk(Gradient<edge::Sobel, Whole>(), src, srcStride, width, height, outX, outY);
    if (K == 3) return each(SobelX<3>(), SobelY<3>());
    if (K == 5) return each(SobelX<5>(), SobelY<5>());
    each(SobelX<7>(), SobelY<7>());
}

template <uint32_t K, class Reference>
ODX_INLINE odxStatus sobel(Reference* reference, const uint8_t* src, uint32_t width, uint32_t height,
                           uint32_t srcStride, int16_t* dx, int16_t* dy, uint32_t dxyStride,
                           odxBorderType borderType, uint32_t borderValue)
{
    const Plane<uint8_t, int16_t> planeX = {src, width, height, srcStride, dx, dxyStride},
                                  planeY = {src, width, height, srcStride, dy, dxyStride};
    if (planeX.interiorWidth(K) < kBytes)
        return reference(src, width, height, srcStride, dx, dy, dxyStride, borderType, borderValue);
    const auto first = [=](int16_t* image) { return image ? rowOf(image, dxyStride, K / 2) + K / 2 : nullptr; };
    sobelInterior(K, src, srcStride, first(dx), first(dy), dxyStride, width - K + 1, planeX.interiorHeight(K));
    edge::sobelFrame<K>(planeX, planeY, borderType, borderValue);
    return ONDRIX_SUCCESS;
}

// clang-format off
#define ODX_SOBEL(name, reference, K) \
    odxStatus name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
                   int16_t* dx, int16_t* dy, unsigned int dxyStride, odxBorderType borderType, uint32_t borderValue) \
    { \
        return sobel<K>(reference, src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride, borderType, borderValue); \
    }

ODX_SOBEL(odxFilterSobel3x3u8s16V, odxFilterSobel3x3u8s16C, 3)
ODX_SOBEL(odxFilterSobel5x5u8s16V, odxFilterSobel5x5u8s16C, 5)
ODX_SOBEL(odxFilterSobel7x7u8s16V, odxFilterSobel7x7u8s16C, 7)
// clang-format on

} // namespace odx::ODX_TARGET
