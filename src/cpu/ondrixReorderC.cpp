#include "cpu/ondrixReorderC.h"

#include "cpu/ondrixReorder.h"
#include "frame/log.h"

using namespace odx;

namespace
{

template <size_t size>
struct Mirror {
    static constexpr size_t kSize = size;

    static void copy(const uint8_t* src, uint8_t* dst, size_t width)
    {
        for (size_t x = 0; x < width; ++x)
            reorder::setPixel(dst, x, reorder::pixelAt<size>(src, width - 1 - x));
    }
    static void exchange(uint8_t* a, uint8_t* b, size_t width)
    {
        reorder::exchangeMirrored<size>(a, b, width, 0, width);
    }
    static void inPlace(uint8_t* row, size_t width)
    {
        reorder::exchangeMirrored<size>(row, row, width, 0, width / 2);
    }
};

} // namespace

extern "C" {

void odxTransposeu8C(const uint8_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride, uint8_t* dst,
                     unsigned dstStride)
{
    reorder::transposeBlocks<1>(reorder::transposition(src, srcWidth, srcHeight, srcStride, dst, dstStride));
}

void odxTransposeu16C(const uint16_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride,
                      uint16_t* dst, unsigned dstStride)
{
    reorder::transposeBlocks<2>(reorder::transposition(src, srcWidth, srcHeight, srcStride, dst, dstStride));
}

void odxTransposef32C(const float* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride, float* dst,
                      unsigned dstStride)
{
    reorder::transposeBlocks<4>(reorder::transposition(src, srcWidth, srcHeight, srcStride, dst, dstStride));
}

void odxTransposeRGB888u8C(const uint8_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride,
                           uint8_t* dst, unsigned dstStride)
{
    // The line number is part of the log's text. In 64 bits no product wraps.
    if (const uint64_t width = srcWidth, height = srcHeight;
        !(src && dst && width && height && srcStride >= width * 3 && dstStride >= height * 3)) {
        fatalAssertion("src/cpu/ondrixArithmC", 1213,
                       "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*3) && (dstStride >= "
                       "srcHeight*3)");
    }
    reorder::transposeBlocks<3>(reorder::transposition(src, srcWidth, srcHeight, srcStride, dst, dstStride));
}

void odxFlipu8C(const uint8_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride, uint8_t* dst,
                unsigned dstStride, int dir)
{
    reorder::flip<Mirror<1>>(src, srcWidth, srcHeight, srcStride, dst, dstStride, dir);
}

void odxFlipu16C(const uint16_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride, uint16_t* dst,
                 unsigned dstStride, int dir)
{
    reorder::flip<Mirror<2>>(reinterpret_cast<const uint8_t*>(src), srcWidth, srcHeight, srcStride,
                             reinterpret_cast<uint8_t*>(dst), dstStride, dir);
}

odxStatus odxFlipRGB888u8C(const uint8_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride,
                           uint8_t* dst, unsigned dstStride, int dir)
{
    reorder::flip<Mirror<3>>(src, srcWidth, srcHeight, srcStride, dst, dstStride, dir);
    return ONDRIX_SUCCESS;
}

odxStatus odxRotateImageu8C(const uint8_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride,
                            uint8_t* dst, unsigned dstStride, int degree)
{
    if (degree == 2) {
        odxFlipu8(src, srcWidth, srcHeight, srcStride, dst, dstStride, 3);
    } else {
        reorder::transposeBlocks<1>(
            reorder::quarterTurn(src, srcWidth, srcHeight, srcStride, dst, dstStride, degree == 1));
    }
    return ONDRIX_SUCCESS;
}

odxStatus odxRotateImageInterleavedu8C(const uint8_t* src, unsigned srcWidth, unsigned srcHeight,
                                       unsigned srcStride, uint8_t* dst, unsigned dstStride, int degree)
{
    if (degree == 2) {
        odxFlipu16(reinterpret_cast<const uint16_t*>(src), srcWidth, srcHeight, srcStride,
                   reinterpret_cast<uint16_t*>(dst), dstStride, 3);
    } else {
        reorder::transposeBlocks<2>(
            reorder::quarterTurn(src, srcWidth, srcHeight, srcStride, dst, dstStride, degree == 1));
    }
    return ONDRIX_SUCCESS;
}

int odxCopyC(void* dst, const void* src, size_t byteCount)
{
    memcpy(dst, src, byteCount);
    return 0;
}
}
