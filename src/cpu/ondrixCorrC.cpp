#include "cpu/ondrixCorrC.h"

#include "cpu/ondrixCorr.h"

#include <limits>

using namespace odx;
using namespace odx::corr;

namespace
{

constexpr uint32_t kChunk = 256; // columns worked on at a time; their sums live on the stack

// Sums of products, each of its own type. Those of bytes are added in 16 bits as long as they fit; their sums are
// modulo 2^32.
class IntegerSums
{
public:
    void add(int16_t weight, const uint8_t* __restrict pixels, size_t count)
    {
        if (!room_.take(weight)) {
            flush();
            room_ = Room();
            room_.take(weight);
        }
        for (size_t x = 0; x < count; ++x)
            few_[x] = static_cast<int16_t>(few_[x] + weight * pixels[x]);
    }
    void flush()
    {
        for (size_t x = 0; x < kChunk; ++x) {
            all_[x] += static_cast<uint32_t>(int32_t{few_[x]});
            few_[x] = 0;
        }
    }
    int32_t operator[](size_t x) const { return static_cast<int32_t>(all_[x]); }

private:
    Room room_;
    int16_t few_[kChunk] = {};
    uint32_t all_[kChunk] = {};
};

class FloatSums
{
public:
    void add(float weight, const uint8_t* __restrict pixels, size_t count)
    {
        for (size_t x = 0; x < count; ++x)
            sums_[x] += weight * static_cast<float>(pixels[x]);
    }
    void flush() {}
    float operator[](size_t x) const { return sums_[x]; }

private:
    float sums_[kChunk] = {};
};

// Sums of the products of each window, in the order of the kernel: an output is resultOf(sum).
template <class Sums, class Weight, class D, class Result>
void correlate(const Weight* kernel, uint32_t N, const Interior<D>& interior, Result resultOf)
{
    for (uint32_t y = 0; y < interior.height; ++y) {
        D* const out = interior.dst.at(0, y).pixels;
        for (uint32_t x0 = 0, count; x0 < interior.width; x0 += count) {
            count = interior.width - x0 < kChunk ? interior.width - x0 : kChunk;
            Sums sums;
            for (uint32_t i = 0; i < N; ++i) {
                const uint8_t* const row = rowOf(interior.src, interior.srcStride, size_t{y} + i) + x0;
                for (uint32_t j = 0; j < N; ++j)
                    sums.add(kernel[size_t{N} * i + j], row + j, count);
            }
            sums.flush();
            for (size_t x = 0; x < count; ++x)
                out[x0 + x] = resultOf(sums[x]);
        }
    }
}

// Sums that are shifted, then clamped to the destination's range.
template <class D>
void correlateAndShift(const int8_t* kernel, uint32_t N, int32_t shift, const Interior<D>& interior)
{
    const Shift shifted(shift);
    correlate<IntegerSums>(kernel, N, interior, [=](int32_t sum) {
        constexpr int32_t least = std::numeric_limits<D>::min(), most = std::numeric_limits<D>::max();
        const int32_t value = shifted.of(sum);
        return static_cast<D>(value < least ? least : value > most ? most : value);
    });
}

} // namespace

extern "C" {

void odxFilterCorr3x3s8C(const int8_t* kernel, const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                         unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    correlateAndShift(kernel, 3, 4, Interior<uint8_t>(3, src, srcWidth, srcHeight, srcStride, dst, dstStride));
}

odxStatus odxFilterCorrNxNu8C(const int8_t* kernel, unsigned int N, int shift, const uint8_t* src,
                              unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, uint8_t* dst,
                              unsigned int dstStride)
{
    correlateAndShift(kernel, N, shift, Interior<uint8_t>(N, src, srcWidth, srcHeight, srcStride, dst, dstStride));
    return ONDRIX_SUCCESS;
}

odxStatus odxFilterCorrNxNu8s16C(const int8_t* kernel, unsigned int N, int shift, const uint8_t* src,
                                 unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                 int16_t* dst, unsigned int dstStride)
{
    correlateAndShift(kernel, N, shift, Interior<int16_t>(N, src, srcWidth, srcHeight, srcStride, dst, dstStride));
    return ONDRIX_SUCCESS;
}

odxStatus odxFilterCorrNxNu8f32C(const float* kernel, unsigned int N, const uint8_t* src, unsigned int srcWidth,
                                 unsigned int srcHeight, unsigned int srcStride, float* dst,
                                 unsigned int dstStride)
{
    const Interior<float> interior(N, src, srcWidth, srcHeight, srcStride, dst, dstStride);
    correlate<FloatSums>(kernel, N, interior, [](float sum) { return sum; });
    return ONDRIX_SUCCESS;
}
}
