#include "ondrix/convolution.h"

#include "frame/entry.h"

using namespace odx;

namespace
{

template <class... Strides>
Limit limits(const void* src, uint32_t width, uint32_t height, const void* dst, Strides... strides)
{
    return pixels(width, height) & aligned(src, dst, strides...);
}

uint64_t packed16(uint32_t width)
{
    return uint64_t{width} * sizeof(int16_t);
}

bool odd(uint32_t size, uint32_t most)
{
    return size % 2 == 1 && size <= most;
}

} // namespace

extern "C" {

// clang-format off
#define ODX_STRIDES_TEXT "(srcStride >= srcWidth*sizeof(int16_t)) && (dstStride >= srcWidth*sizeof(int16_t))"

// Separable kernels of a size, of packed images.
#define ODX_CORRELATION(name, K) \
    void name(const int16_t* kernelX, const int16_t* kernelY, const int16_t* src, unsigned int srcWidth, \
              unsigned int srcHeight, int16_t* dst) \
    { \
        if (srcWidth < K || srcHeight < K) return logError(__func__); \
        const uint32_t stride = static_cast<uint32_t>(packed16(srcWidth)); \
        const Call<name##C> call(__func__, ODX_LIMITS(limits(src, srcWidth, srcHeight, dst, stride))); \
        ODX_CHECK(kernelX && kernelY && src && dst); \
        call(kernelX, kernelY, src, srcWidth, srcHeight, stride, dst, stride); \
    }
// The same with strides, by the slot of `base`; `fits` is the test that comes first. More parameters follow the kernels.
#define ODX_CORRELATION_V2(name, base, fits, parameters, arguments) \
    void name(const int16_t* kernelX, const int16_t* kernelY, ODX_UNPACK parameters const int16_t* src, \
              unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, int16_t* dst, unsigned int dstStride) \
    { \
        if (!(fits)) return logError(__func__); \
        srcStride = packedIfZero(srcStride, packed16(srcWidth)); \
        dstStride = packedIfZero(dstStride, packed16(srcWidth)); \
        const Call<base##C> call(__func__, ODX_LIMITS(limits(src, srcWidth, srcHeight, dst, srcStride, dstStride))); \
        ODX_CHECK_AS("kernelX && kernelY && src && dst && " ODX_STRIDES_TEXT, \
                     kernelX && kernelY && src && dst && srcStride >= packed16(srcWidth) && dstStride >= packed16(srcWidth)); \
        call(kernelX, kernelY, ODX_UNPACK arguments src, srcWidth, srcHeight, srcStride, dst, dstStride); \
    }
#define ODX_UNPACK(...) __VA_ARGS__

ODX_CORRELATION(odxFilterCorrSep9x9s16, 9)
ODX_CORRELATION(odxFilterCorrSep11x11s16, 11)
ODX_CORRELATION(odxFilterCorrSep13x13s16, 13)
ODX_CORRELATION(odxFilterCorrSep15x15s16, 15)
ODX_CORRELATION(odxFilterCorrSep17x17s16, 17)
ODX_CORRELATION_V2(odxFilterCorrSep9x9s16_v2, odxFilterCorrSep9x9s16, srcWidth >= 9 && srcHeight >= 9, (), ())
ODX_CORRELATION_V2(odxFilterCorrSep11x11s16_v2, odxFilterCorrSep11x11s16, srcWidth >= 11 && srcHeight >= 11, (), ())
ODX_CORRELATION_V2(odxFilterCorrSep13x13s16_v2, odxFilterCorrSep13x13s16, srcWidth >= 13 && srcHeight >= 13, (), ())
ODX_CORRELATION_V2(odxFilterCorrSep15x15s16_v2, odxFilterCorrSep15x15s16, srcWidth >= 15 && srcHeight >= 15, (), ())
ODX_CORRELATION_V2(odxFilterCorrSep17x17s16_v2, odxFilterCorrSep17x17s16, srcWidth >= 17 && srcHeight >= 17, (), ())
ODX_CORRELATION_V2(odxFilterCorrSepNxNs16, odxFilterCorrSepNxNs16, odd(N, 31) && N >= 3 && srcWidth >= N && srcHeight >= N, (unsigned int N,), (N,))

// Bytes by any kernel. `strides` compares them with the rows.
#define ODX_CONVOLUTION(name, D, strides) \
    odxStatus name(const int16_t* kernel, unsigned int M, unsigned int N, unsigned int shift, const uint8_t* src, \
                   unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, D* dst, \
                   unsigned int dstStride, odxBorderType borderType, uint32_t borderValue) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth); \
        dstStride = packedIfZero(dstStride, uint64_t{srcWidth} * sizeof(D)); \
        const Call<name##C> call(__func__, ODX_LIMITS(limits(src, srcWidth, srcHeight, dst, srcStride, dstStride))); \
        ODX_CHECK_AS("kernel && src && dst && srcWidth && srcHeight && (M & 1) && (M <= 15) && (N & 1) && (N <= 15) && (shift <= 15) && " strides " && (borderType <= ONDRIX_BORDER_REPLICATE)", \
                     kernel && src && dst && srcWidth && srcHeight && odd(M, 15) && odd(N, 15) && shift <= 15 && srcStride >= srcWidth && dstStride >= uint64_t{srcWidth} * sizeof(D) && borderType <= ONDRIX_BORDER_REPLICATE); \
        return call(kernel, M, N, shift, src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType, borderValue); \
    }

ODX_CONVOLUTION(odxFilterConvolveMxNu8, uint8_t, "(srcStride >= srcWidth) && (dstStride >= srcWidth)")
ODX_CONVOLUTION(odxFilterConvolveMxNu8s16, int16_t, "(srcStride >= srcWidth) && (dstStride >= srcWidth*sizeof(int16_t))")

odxStatus odxFilterCorrSepMxNu8(const int16_t* kernelX, unsigned int M, const int16_t* kernelY, unsigned int N,
                                unsigned int shift, const uint8_t* src, unsigned int srcWidth,
                                unsigned int srcHeight, unsigned int srcStride, uint8_t* dst,
                                unsigned int dstStride, odxBorderType borderType, uint32_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterCorrSepMxNu8C> call(
        __func__, ODX_LIMITS(limits(src, srcWidth, srcHeight, dst, srcStride, dstStride)));
    ODX_CHECK(kernelX && kernelY && src && dst && srcWidth && srcHeight && (M & 1) && (M <= 31) && (N & 1) && (N <= 31) && (shift <= 31) && (srcStride >= srcWidth) && (dstStride >= srcWidth) && (borderType <= ONDRIX_BORDER_REPLICATE));
    return call(kernelX, M, kernelY, N, shift, src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType,
                borderValue);
}

odxStatus odxFilterConvSepMxNs16(const int16_t* kernelX, unsigned int M, odxKernelSymmetry symmetryX,
                                 const int16_t* kernelY, unsigned int N, odxKernelSymmetry symmetryY,
                                 unsigned int shift, const int16_t* src, unsigned int srcWidth,
                                 unsigned int srcHeight, unsigned int srcStride, int16_t* dst,
                                 unsigned int dstStride, odxFilterRegion region, odxBorderType borderType,
                                 uint32_t borderValue)
{
    const uint32_t dstWidth = region == ONDRIX_FILTER_SAME ? srcWidth : srcWidth - M + 1;
    srcStride = packedIfZero(srcStride, packed16(srcWidth));
    dstStride = packedIfZero(dstStride, packed16(dstWidth));
    const Call<odxFilterConvSepMxNs16C> call(
        __func__, ODX_LIMITS(limits(src, srcWidth, srcHeight, dst, srcStride, dstStride)));
    ODX_CHECK_AS("kernelX && kernelY && src && dst && srcWidth && srcHeight && (M & 1) && (M <= 31) && (N & 1) && (N <= 31) && (shift <= 31) && (symmetryX <= ONDRIX_KERNEL_ANTISYMMETRIC) && (symmetryY <= ONDRIX_KERNEL_ANTISYMMETRIC) && (region <= ONDRIX_FILTER_VALID) && (borderType <= ONDRIX_BORDER_REPLICATE) && (region == ONDRIX_FILTER_SAME || (M <= srcWidth && N <= srcHeight)) && (srcStride >= srcWidth*sizeof(int16_t)) && (dstStride >= dstWidth*sizeof(int16_t))",
                 kernelX && kernelY && src && dst && srcWidth && srcHeight && odd(M, 31) && odd(N, 31) && shift <= 31 && symmetryX <= ONDRIX_KERNEL_ANTISYMMETRIC && symmetryY <= ONDRIX_KERNEL_ANTISYMMETRIC && region <= ONDRIX_FILTER_VALID && borderType <= ONDRIX_BORDER_REPLICATE && (region == ONDRIX_FILTER_SAME || (M <= srcWidth && N <= srcHeight)) && srcStride >= packed16(srcWidth) && dstStride >= packed16(dstWidth));
    return call(kernelX, M, symmetryX, kernelY, N, symmetryY, shift, src, srcWidth, srcHeight, srcStride, dst,
                dstStride, region, borderType, borderValue);
}

void odxConvValids16(const int16_t* kernel, unsigned int M, unsigned int N, unsigned int shift,
                     const int16_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                     int16_t* dst, unsigned int dstStride)
{
    const uint32_t dstWidth = srcWidth - M + 1;
    srcStride = packedIfZero(srcStride, packed16(srcWidth));
    dstStride = packedIfZero(dstStride, packed16(dstWidth));
    const Call<odxConvValids16C> call(
        __func__, ODX_LIMITS(limits(src, srcWidth, srcHeight, dst, srcStride, dstStride)));
    ODX_CHECK_AS("kernel && src && dst && M && N && (M <= srcWidth) && (N <= srcHeight) && (shift <= 31) && (srcStride >= srcWidth*sizeof(int16_t)) && (dstStride >= dstWidth*sizeof(int16_t))",
                 kernel && src && dst && M && N && M <= srcWidth && N <= srcHeight && shift <= 31 && srcStride >= packed16(srcWidth) && dstStride >= packed16(dstWidth));
    call(kernel, M, N, shift, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}
// clang-format on
}
