#include "ondrix/reordering.h"

#include "frame/entry.h"

using namespace odx;

namespace
{

// Mirrors in place have one image, and so one stride.
bool refusesTwoStrides(const char* name, const void* src, uint32_t srcStride, const void* dst, uint32_t dstStride)
{
    if (src != dst || srcStride == dstStride) return false;
    ODX_LOG(Error, "Error: %s - Try to do in place but srcStride != dstStride\n", name);
    return true;
}

template <auto* Reference>
odxStatus rotate(const char* name, uint32_t size, const uint8_t* src, uint32_t width, uint32_t height,
                 uint32_t srcStride, uint8_t* dst, uint32_t dstStride, int degree)
{
    const uint64_t srcRow = uint64_t{size} * width, dstRow = degree == 2 ? srcRow : uint64_t{size} * height;
    srcStride = packedIfZero(srcStride, srcRow);
    dstStride = packedIfZero(dstStride, dstRow);
    const Call<Reference> call(name, ODX_LIMITS(pixels(width, height)));
    if (!src || !dst || !width || !height || srcStride < srcRow || degree < 1 || degree > 3 || dstStride < dstRow)
        return call.failure();
    return call(src, width, height, srcStride, dst, dstStride, degree);
}

} // namespace

extern "C" {

// clang-format off
// The condition is the text of the check.
#define ODX_TRANSPOSE(name, T, condition) \
    void name(const T* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, T* dst, \
              unsigned int dstStride) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth * sizeof(T)); \
        dstStride = packedIfZero(dstStride, srcHeight * sizeof(T)); \
        const Call<name##C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight))); \
        ODX_CHECK_AS(#condition, fits(srcStride, sizeof(T), srcWidth) && fits(dstStride, sizeof(T), srcHeight) && condition); \
        call(src, srcWidth, srcHeight, srcStride, dst, dstStride); \
    }
#define ODX_FLIP(name, T, condition) \
    void name(const T* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, T* dst, \
              unsigned int dstStride, int dir) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth * sizeof(T)); \
        dstStride = packedIfZero(dstStride, srcWidth * sizeof(T)); \
        const Call<name##C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight))); \
        ODX_CHECK_AS(#condition, fits(srcStride, sizeof(T), srcWidth) && fits(dstStride, sizeof(T), srcWidth) && condition); \
        if (refusesTwoStrides(__func__, src, srcStride, dst, dstStride)) return; \
        call(src, srcWidth, srcHeight, srcStride, dst, dstStride, dir); \
    }

// Whether a row fits its stride, also where the products of the checks wrap.
static bool fits(uint32_t stride, uint64_t size, uint32_t count)
{
    return stride >= size * count;
}

ODX_TRANSPOSE(odxTransposeu8, uint8_t, src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcHeight))
ODX_TRANSPOSE(odxTransposeu16, uint16_t, src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*2) && (dstStride >= srcHeight*2))
ODX_TRANSPOSE(odxTransposef32, float, src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*4) && (dstStride >= srcHeight*4))
ODX_FLIP(odxFlipu8, uint8_t, src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth) && dir >= 1 && dir <= 3)
ODX_FLIP(odxFlipu16, uint16_t, src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*2) && (dstStride >= srcWidth*2) && dir >= 1 && dir <= 3)
// clang-format on

void odxTransposeRGB888u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth * 3);
    dstStride = packedIfZero(dstStride, srcHeight * 3);
    const Call<odxTransposeRGB888u8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

odxStatus odxFlipRGB888u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int dir)
{
    const uint64_t row = uint64_t{3} * srcWidth;
    srcStride = packedIfZero(srcStride, row);
    dstStride = packedIfZero(dstStride, row);
    const Call<odxFlipRGB888u8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    if (!src || !dst || !srcWidth || !srcHeight || srcStride < row || dstStride < row || dir < 1 || dir > 3)
        return call.failure();
    if (refusesTwoStrides(__func__, src, srcStride, dst, dstStride)) return call.failure();
    return call(src, srcWidth, srcHeight, srcStride, dst, dstStride, dir);
}

odxStatus odxRotateImageu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int degree)
{
    return rotate<odxRotateImageu8C>(__func__, 1, src, srcWidth, srcHeight, srcStride, dst, dstStride, degree);
}

odxStatus odxRotateImageInterleavedu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                      unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int degree)
{
    return rotate<odxRotateImageInterleavedu8C>(__func__, 2, src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                degree);
}

int odxCopy(void* dst, const void* src, size_t byteCount)
{
    const Call<odxCopyC> call(__func__);
    if (dst == nullptr || src == nullptr) return call.failure();
    return call(dst, src, byteCount);
}
}
