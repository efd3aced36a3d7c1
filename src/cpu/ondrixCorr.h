// What the reference and SIMD correlations share.
#ifndef ODX_CPU_ONDRIX_CORR_H
#define ODX_CPU_ONDRIX_CORR_H

#include "cpu/image.h"

namespace odx::corr
{

// The interior of an image for a kernel of size N; the first output has its first tap at the first pixel.
template <class D>
struct Interior {
    const uint8_t* src;
    uint32_t srcStride, width, height;
    Rows<D> dst;

    [[gnu::always_inline]] Interior(uint32_t N, const uint8_t* source, uint32_t srcWidth, uint32_t srcHeight,
                                    uint32_t stride, D* out, uint32_t dstStride)
        : src(source), srcStride(stride), width(less(srcWidth, N / 2)), height(less(srcHeight, N / 2)),
          dst(Rows<D>{out, dstStride}.at(N / 2, N / 2))
    {
    }
    [[gnu::always_inline]] static uint32_t less(uint32_t length, uint32_t border)
    {
        return length / 2 >= border ? length - 2 * border : 0;
    }
};

// Tells whether one more weight, or two, fit the 16-bit sums of those taken before, in any order: those of each
// sign are at most 128 in all, and 128 * 255 is 32640.
class Room
{
public:
    [[gnu::always_inline]] bool take(int a, int b = 0)
    {
        const int positive = positive_ + (a > 0 ? a : 0) + (b > 0 ? b : 0);
        const int negative = negative_ + (a < 0 ? a : 0) + (b < 0 ? b : 0);
        if (positive > 128 || negative < -128) return false;
        positive_ = positive;
        negative_ = negative;
        return true;
    }

private:
    int positive_ = 0, negative_ = 0;
};

// What becomes of a sum: a shift to the right, or to the left modulo 2^32. Shifts of 32 and more leave the sign,
// or nothing.
struct Shift {
    int right, left;
    uint32_t keep; // -1, or 0 where a shift to the left leaves nothing

    [[gnu::always_inline]] explicit Shift(int32_t shift)
    {
        const uint32_t magnitude = shift > 0 ? static_cast<uint32_t>(shift) : 0u - static_cast<uint32_t>(shift);
        right = shift > 0 ? static_cast<int>(magnitude < 31 ? magnitude : 31) : 0;
        left = shift > 0 ? 0 : static_cast<int>(magnitude < 31 ? magnitude : 31);
        keep = shift > 0 || magnitude < 32 ? 0xFFFFFFFF : 0;
    }
    [[gnu::always_inline]] int32_t of(int32_t sum) const
    {
        return static_cast<int32_t>(static_cast<uint32_t>(sum) << left & keep) >> right;
    }
};

} // namespace odx::corr

#endif
