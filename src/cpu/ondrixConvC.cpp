#include "cpu/ondrixConvC.h"

#include "cpu/ondrixConv.h"

#include <type_traits>

using namespace odx;
using namespace odx::conv;

namespace
{

constexpr uint32_t kChunk = 256; // columns worked on at a time; their sums live on the stack

// sums += weight * pixels, modulo 2^32.
template <class T>
void addProducts(uint32_t* __restrict sums, int16_t weight, const T* __restrict pixels, size_t count)
{
    using Factor = std::conditional_t<sizeof(T) == 2, int32_t, uint32_t>; // products of 16 bits fit 32
    for (size_t x = 0; x < count; ++x)
        sums[x] += static_cast<uint32_t>(static_cast<Factor>(weight) * static_cast<Factor>(pixels[x]));
}

// ---- separable kernels, columns first ----

// What is between the passes: the sums, or their rounded 32768ths.
struct Exact {
    using Value = uint32_t;
    static Value of(uint32_t sum) { return sum; }
};
struct Rounded {
    using Value = int16_t;
    static Value of(uint32_t sum) { return Scale(15).of<int16_t>(sum); }
};

template <class Between, class D>
auto separable(const Taps& across, const Taps& down, Scale scale)
{
    return [=](Rows<const int16_t> src, Rows<D> dst, uint32_t width, uint32_t height) {
        for (uint32_t y = 0; y < height; ++y) {
            for (uint32_t x0 = 0, count; x0 < width; x0 += count) {
                count = width - x0 < kChunk ? width - x0 : kChunk;
                const uint32_t columns = count + across.count - 1;
                uint32_t sums[kChunk + kMostTaps - 1] = {}, total[kChunk] = {};
                for (uint32_t i = 0; i < down.count; ++i)
                    addProducts(sums, down[i], src.at(x0, y + i).pixels, columns);
                typename Between::Value between[kChunk + kMostTaps - 1];
                for (size_t x = 0; x < columns; ++x)
                    between[x] = Between::of(sums[x]);
                for (uint32_t j = 0; j < across.count; ++j)
                    addProducts(total, across[j], between + j, count);
                D* const out = dst.at(x0, y).pixels;
                for (size_t x = 0; x < count; ++x)
                    out[x] = scale.of<D>(total[x]);
            }
        }
    };
}

void correlateRounded(const int16_t* kernelX, const int16_t* kernelY, uint32_t N, const int16_t* src,
                      uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* dst, uint32_t dstStride)
{
    const Plane<int16_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    const Taps across(kernelX, N, Taps::kStraight), down(kernelY, N, Taps::kStraight);
    filterBlocks(plane, N, N, ONDRIX_BORDER_UNDEFINED, 0, separable<Rounded, int16_t>(across, down, Scale(15)));
}

// ---- other kernels ----

// Kernels are turned: the last element meets the first pixel of a window.
template <class D>
auto direct(const int16_t* kernel, uint32_t M, uint32_t N, Scale scale)
{
    return [=](Rows<const int16_t> src, Rows<D> dst, uint32_t width, uint32_t height) {
        for (uint32_t y = 0; y < height; ++y) {
            for (uint32_t x0 = 0, count; x0 < width; x0 += count) {
                count = width - x0 < kChunk ? width - x0 : kChunk;
                uint32_t sums[kChunk] = {};
                const int16_t* weight = kernel + size_t{M} * N;
                for (uint32_t i = 0; i < N; ++i) {
                    const int16_t* const row = src.at(x0, y + i).pixels;
                    for (uint32_t j = 0; j < M; ++j)
                        addProducts(sums, *--weight, row + j, count);
                }
                D* const out = dst.at(x0, y).pixels;
                for (size_t x = 0; x < count; ++x)
                    out[x] = scale.of<D>(sums[x]);
            }
        }
    };
}

} // namespace

extern "C" {

// clang-format off
#define ODX_CORRELATION(name, K) \
    void name(const int16_t* kernelX, const int16_t* kernelY, const int16_t* src, \
              unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
              int16_t* dst, unsigned int dstStride) \
    { \
        correlateRounded(kernelX, kernelY, K, src, srcWidth, srcHeight, srcStride, dst, dstStride); \
    }

ODX_CORRELATION(odxFilterCorrSep9x9s16C, 9)
ODX_CORRELATION(odxFilterCorrSep11x11s16C, 11)
ODX_CORRELATION(odxFilterCorrSep13x13s16C, 13)
ODX_CORRELATION(odxFilterCorrSep15x15s16C, 15)
ODX_CORRELATION(odxFilterCorrSep17x17s16C, 17)

#define ODX_CONVOLUTION(name, D) \
    odxStatus name(const int16_t* kernel, unsigned int M, unsigned int N, unsigned int shift, const uint8_t* src, \
                   unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, D* dst, \
                   unsigned int dstStride, odxBorderType borderType, uint32_t borderValue) \
    { \
        const Plane<uint8_t, D> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride}; \
        filterBlocks(plane, M, N, borderType, borderValue, direct<D>(kernel, M, N, Scale(shift))); \
        return ONDRIX_SUCCESS; \
    }

ODX_CONVOLUTION(odxFilterConvolveMxNu8C, uint8_t)
ODX_CONVOLUTION(odxFilterConvolveMxNu8s16C, int16_t)
// clang-format on

void odxFilterCorrSepNxNs16C(const int16_t* kernelX, const int16_t* kernelY, unsigned int N, const int16_t* src,
                             unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, int16_t* dst,
                             unsigned int dstStride)
{
    correlateRounded(kernelX, kernelY, N, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

odxStatus odxFilterCorrSepMxNu8C(const int16_t* kernelX, unsigned int M, const int16_t* kernelY, unsigned int N,
                                 unsigned int shift, const uint8_t* src, unsigned int srcWidth,
                                 unsigned int srcHeight, unsigned int srcStride, uint8_t* dst,
                                 unsigned int dstStride, odxBorderType borderType, uint32_t borderValue)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    const Taps across(kernelX, M, Taps::kStraight), down(kernelY, N, Taps::kStraight);
    filterBlocks(plane, M, N, borderType, borderValue, separable<Exact, uint8_t>(across, down, Scale(shift)));
    return ONDRIX_SUCCESS;
}

odxStatus odxFilterConvSepMxNs16C(const int16_t* kernelX, unsigned int M, odxKernelSymmetry symmetryX,
                                  const int16_t* kernelY, unsigned int N, odxKernelSymmetry symmetryY,
                                  unsigned int shift, const int16_t* src, unsigned int srcWidth,
                                  unsigned int srcHeight, unsigned int srcStride, int16_t* dst,
                                  unsigned int dstStride, odxFilterRegion region, odxBorderType borderType,
                                  uint32_t borderValue)
{
    const Taps across(kernelX, M, Taps::kTurned, symmetryX), down(kernelY, N, Taps::kTurned, symmetryY);
    const auto filter = separable<Exact, int16_t>(across, down, Scale(shift));
    if (region == ONDRIX_FILTER_VALID) {
        filter({src, srcStride}, {dst, dstStride}, srcWidth - M + 1, srcHeight - N + 1);
    } else {
        const Plane<int16_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
        filterBlocks(plane, M, N, borderType, borderValue, filter);
    }
    return ONDRIX_SUCCESS;
}

void odxConvValids16C(const int16_t* kernel, unsigned int M, unsigned int N, unsigned int shift,
                      const int16_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                      int16_t* dst, unsigned int dstStride)
{
    direct<int16_t>(kernel, M, N, Scale(shift))({src, srcStride}, {dst, dstStride}, srcWidth - M + 1,
                                                srcHeight - N + 1);
}
}
