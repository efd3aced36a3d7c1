#include "ondrix/integrals.h"

#include "cpu/ondrixIntegral.h"
#include "frame/entry.h"

using namespace odx;

namespace
{

// Bytes of a packed row of a table.
template <class T>
uint64_t rowOf(const T*, uint32_t width)
{
    return sizeof(T) * (uint64_t{width} + 1);
}

bool inside(uint32_t x, uint32_t y, uint32_t width, uint32_t height, uint32_t srcWidth, uint32_t srcHeight)
{
    return width <= srcWidth && height <= srcHeight && x <= srcWidth - width && y <= srcHeight - height;
}

} // namespace

extern "C" {

// clang-format off
void odxIntegrateImageu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, uint32_t* dst)
{
    const Call<odxIntegrateImageu8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight) & aligned(src, dst)));
    const auto dstStride = static_cast<uint32_t>(rowOf(dst, srcWidth));
    ODX_CHECK_AS("src && dst && srcWidth && srcHeight", src && dst && srcWidth && srcHeight && dstStride == rowOf(dst, srcWidth));
    call(src, srcWidth, srcHeight, srcWidth, dst, dstStride);
}

void odxIntegrateImageu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                            uint32_t* dst, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, rowOf(dst, srcWidth));
    const Call<odxIntegrateImageu8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight) & aligned(src, srcStride, dst, dstStride)));
    ODX_CHECK_AS("src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= (srcWidth + 1)*sizeof(uint32_t))",
                 src && dst && srcWidth && srcHeight && srcStride >= srcWidth && dstStride >= rowOf(dst, srcWidth));
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void odxIntegrateImageu8u64(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                            uint64_t* sums, uint64_t* squareSums, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, rowOf(sums, srcWidth));
    const Call<odxIntegrateImageu8u64C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight) & aligned(src, srcStride, sums, squareSums, dstStride)));
    ODX_CHECK_AS("src && (sums || squareSums) && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= (srcWidth + 1)*sizeof(uint64_t))",
                 src && (sums || squareSums) && srcWidth && srcHeight && srcStride >= srcWidth && dstStride >= rowOf(sums, srcWidth));
    call(src, srcWidth, srcHeight, srcStride, sums, squareSums, dstStride);
}

void odxIntegrateImageYCbCr420PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcC, unsigned int srcWidth,
                                             unsigned int srcHeight, unsigned int srcYStride, unsigned int srcCStride,
                                             uint32_t* dstY, uint32_t* dstCb, uint32_t* dstCr, unsigned int dstYStride,
                                             unsigned int dstCbStride, unsigned int dstCrStride)
{
    srcYStride = packedIfZero(srcYStride, srcWidth);
    srcCStride = packedIfZero(srcCStride, srcWidth);
    dstYStride = packedIfZero(dstYStride, rowOf(dstY, srcWidth));
    dstCbStride = packedIfZero(dstCbStride, rowOf(dstCb, srcWidth/2));
    dstCrStride = packedIfZero(dstCrStride, rowOf(dstCr, srcWidth/2));
    const Call<odxIntegrateImageYCbCr420PseudoPlanaru8C> call(
        __func__, ODX_LIMITS(pixels(srcWidth, srcHeight) & aligned(srcY, srcC, srcYStride, srcCStride, dstY, dstCb, dstCr, dstYStride, dstCbStride, dstCrStride)));
    ODX_CHECK_AS("srcY && srcC && dstY && dstCb && dstCr && srcWidth && srcHeight && !(srcWidth & 1) && !(srcHeight & 1) && (srcYStride >= srcWidth) && (srcCStride >= srcWidth) && (dstYStride >= (srcWidth + 1)*sizeof(uint32_t)) && (dstCbStride >= (srcWidth/2 + 1)*sizeof(uint32_t)) && (dstCrStride >= (srcWidth/2 + 1)*sizeof(uint32_t))",
                 srcY && srcC && dstY && dstCb && dstCr && srcWidth && srcHeight && !(srcWidth & 1) && !(srcHeight & 1) && srcYStride >= srcWidth && srcCStride >= srcWidth && dstYStride >= rowOf(dstY, srcWidth) && dstCbStride >= rowOf(dstCb, srcWidth/2) && dstCrStride >= rowOf(dstCr, srcWidth/2));
    call(srcY, srcC, srcWidth, srcHeight, srcYStride, srcCStride, dstY, dstCb, dstCr, dstYStride, dstCbStride, dstCrStride);
}

void odxIntegrateImageLineu8(const uint8_t* src, unsigned int length, const uint32_t* above, uint32_t* dst)
{
    const Call<odxIntegrateImageLineu8C> call(__func__, ODX_LIMITS(bytes(length) & aligned(src, above, dst)));
    ODX_CHECK(src && length && dst);
    call(src, length, above, dst);
}

void odxIntegrateImageLine64u8(const uint8_t* src, const uint32_t* above, uint32_t* dst)
{
    const Call<odxIntegrateImageLine64u8C> call(__func__, ODX_LIMITS(bytes(0) & aligned(src, above, dst)));
    ODX_CHECK(src && dst);
    call(src, above, dst);
}

odxStatus odxTiltedIntegralu8s32(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, int32_t* dst, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, rowOf(dst, srcWidth));
    const Call<odxTiltedIntegralu8s32C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight) & aligned(src, srcStride, dst, dstStride)));
    ODX_CHECK_AS("src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= (srcWidth + 1)*sizeof(int32_t))",
                 src && dst && srcWidth && srcHeight && srcStride >= srcWidth && dstStride >= rowOf(dst, srcWidth));
    return call(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

// Patches of a fixed size, of packed rows and with a stride, by the slot of `name`.
#define ODX_FIXED_PATCH(name, side) \
    void name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int x, unsigned int y, \
              uint32_t* sums, uint32_t* squareSums) \
    { \
        const Call<name##C> call(__func__, ODX_LIMITS(bytes(0) & aligned(src, sums, squareSums))); \
        ODX_CHECK(src && sums && (srcWidth >= side) && (srcHeight >= side) && (x <= srcWidth - side) && (y <= srcHeight - side)); \
        call(src, srcWidth, srcHeight, srcWidth, x, y, sums, squareSums); \
    } \
    void name##_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
                   unsigned int x, unsigned int y, uint32_t* sums, uint32_t* squareSums) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth); \
        const Call<name##C> call(__func__, ODX_LIMITS(bytes(0) & aligned(src, srcStride, sums, squareSums))); \
        ODX_CHECK(src && sums && (srcWidth >= side) && (srcHeight >= side) && (x <= srcWidth - side) && (y <= srcHeight - side) && (srcStride >= srcWidth)); \
        call(src, srcWidth, srcHeight, srcStride, x, y, sums, squareSums); \
    }

ODX_FIXED_PATCH(odxIntegratePatch12x12u8, 12)
ODX_FIXED_PATCH(odxIntegratePatch18x18u8, 18)

#define ODX_PATCH_CHECK "src && sums && patchWidth && patchHeight && (patchWidth <= srcWidth) && (patchHeight <= srcHeight) && (x <= srcWidth - patchWidth) && (y <= srcHeight - patchHeight)"

void odxIntegratePatchu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int x, unsigned int y,
                         unsigned int patchWidth, unsigned int patchHeight, uint32_t* sums, uint32_t* squareSums)
{
    const Call<odxIntegratePatchu8C> call(__func__, ODX_LIMITS(pixels(patchWidth, patchHeight) & aligned(src, sums, squareSums)));
    ODX_CHECK_AS(ODX_PATCH_CHECK, src && sums && patchWidth && patchHeight && inside(x, y, patchWidth, patchHeight, srcWidth, srcHeight));
    call(src, srcWidth, srcHeight, srcWidth, x, y, patchWidth, patchHeight, sums, squareSums);
}

void odxIntegratePatchu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                            unsigned int x, unsigned int y, unsigned int patchWidth, unsigned int patchHeight,
                            uint32_t* sums, uint32_t* squareSums)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const Call<odxIntegratePatchu8C> call(__func__, ODX_LIMITS(pixels(patchWidth, patchHeight) & aligned(src, srcStride, sums, squareSums)));
    ODX_CHECK_AS(ODX_PATCH_CHECK " && (srcStride >= srcWidth)", src && sums && patchWidth && patchHeight && inside(x, y, patchWidth, patchHeight, srcWidth, srcHeight) && srcStride >= srcWidth);
    call(src, srcWidth, srcHeight, srcStride, x, y, patchWidth, patchHeight, sums, squareSums);
}

odxStatus odxIntegratePatchu8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                 int x, int y, unsigned int patchWidth, unsigned int patchHeight, uint32_t* sums,
                                 unsigned int sumsStride, uint32_t* squareSums, unsigned int squareSumsStride,
                                 odxBorderType borderType, uint32_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    sumsStride = packedIfZero(sumsStride, rowOf(sums, patchWidth));
    squareSumsStride = packedIfZero(squareSumsStride, rowOf(squareSums, patchWidth));
    const Call<odxIntegratePatchu8_v3C> call(__func__, ODX_LIMITS(pixels(patchWidth, patchHeight) & aligned(src, srcStride, sums, sumsStride, squareSums, squareSumsStride)));
    const bool inside = integral::isInside(x, y, patchWidth, patchHeight, srcWidth, srcHeight);
    ODX_CHECK_AS("src && sums && srcWidth && srcHeight && patchWidth && patchHeight && (srcStride >= srcWidth) && (sumsStride >= (patchWidth + 1)*sizeof(uint32_t)) && (squareSumsStride >= (patchWidth + 1)*sizeof(uint32_t)) && (borderType <= ONDRIX_BORDER_REPLICATE) && (borderType || inside)",
                 src && sums && srcWidth && srcHeight && patchWidth && patchHeight && srcStride >= srcWidth && sumsStride >= rowOf(sums, patchWidth) && squareSumsStride >= rowOf(squareSums, patchWidth) && borderType <= ONDRIX_BORDER_REPLICATE && (borderType || inside));
    return call(src, srcWidth, srcHeight, srcStride, x, y, patchWidth, patchHeight, sums, sumsStride, squareSums, squareSumsStride, borderType, borderValue);
}
// clang-format on
}
