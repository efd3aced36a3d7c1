#include "ondrix/correlation.h"

#include "frame/entry.h"

using namespace odx;

namespace
{

// What the NxN correlations ask of their arguments, in silence.
bool usable(const void* kernel, uint32_t N, const void* src, uint32_t width, uint32_t height, uint32_t srcStride,
            const void* dst, uint32_t dstStride, uint64_t dstPacked)
{
    return kernel && src && dst && N && N < width && N < height && srcStride >= width && dstStride >= dstPacked;
}

} // namespace

extern "C" {

void odxFilterCorr3x3s8(const int8_t* kernel, const uint8_t* src, unsigned int w, unsigned int h, uint8_t* dst)
{
    const Call<odxFilterCorr3x3s8C> call(__func__, ODX_LIMITS(pixels(w, h)));
    ODX_CHECK(kernel && src && dst && w && h);
    call(kernel, src, w, h, w, dst, w);
}

void odxFilterCorr3x3s8_v2(const int8_t* kernel, const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterCorr3x3s8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    ODX_CHECK(kernel && src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth));
    call(kernel, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

odxStatus odxFilterCorrNxNu8f32(const float* kernel, unsigned int N, const uint8_t* src, unsigned int srcWidth,
                                unsigned int srcHeight, unsigned int srcStride, float* dst, unsigned int dstStride)
{
    const uint64_t dstPacked = sizeof *dst * uint64_t{srcWidth};
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, dstPacked);
    const Call<odxFilterCorrNxNu8f32C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    if (!usable(kernel, N, src, srcWidth, srcHeight, srcStride, dst, dstStride, dstPacked)) return call.failure();
    return call(kernel, N, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

// clang-format off
// NxN correlations with a shift.
#define ODX_SHIFTED(name, T) \
    odxStatus name(const int8_t* kernel, unsigned int N, int shift, const uint8_t* src, unsigned int srcWidth, \
                   unsigned int srcHeight, unsigned int srcStride, T* dst, unsigned int dstStride) \
    { \
        const uint64_t dstPacked = sizeof *dst * uint64_t{srcWidth}; \
        srcStride = packedIfZero(srcStride, srcWidth); \
        dstStride = packedIfZero(dstStride, dstPacked); \
        const Call<name##C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight))); \
        if (!usable(kernel, N, src, srcWidth, srcHeight, srcStride, dst, dstStride, dstPacked)) { \
            return call.failure(); \
        } \
        return call(kernel, N, shift, src, srcWidth, srcHeight, srcStride, dst, dstStride); \
    }

ODX_SHIFTED(odxFilterCorrNxNu8, uint8_t)
ODX_SHIFTED(odxFilterCorrNxNu8s16, int16_t)
// clang-format on
}
