// What the reference and SIMD bilateral filters share: tables of weights, and the road through an image, which
// leads to kernels of either column.
#ifndef ODX_CPU_ONDRIX_BILATERAL_H
#define ODX_CPU_ONDRIX_BILATERAL_H

#include "cpu/image.h"
#include "cpu/ondrixBilateralC.h"
#include "ondrix/types.h"

namespace odx::bilateral
{

// ---- windows ----

constexpr uint32_t kMostSize = 9, kMostRadius = kMostSize / 2;

struct Weights {
    uint32_t size;                                    // of the window
    uint32_t reach;                                   // differences from here on have no weight; at most 256
    uint8_t range[256];                               // of differences, up to 128
    uint8_t space[2 * kMostRadius * kMostRadius + 1]; // of squared distances
};

// The filters of K x K pixels, without and with parameters of their own.
void filter(uint32_t K, FilterLine* filterLine, const Plane<uint8_t>& plane);
odxStatus filter(uint32_t K, FilterLine* filterLine, const Plane<uint8_t>& plane, float sigmaColor,
                 float sigmaSpace, odxBorderType type, uint32_t value);

// ---- lines ----

// What is left of a line's weight after a step over a difference, in 12 bits.
struct Steps {
    uint8_t low[256], high[256];
    uint32_t reach; // nothing from this difference on
};

// A bundle of lines whose pixels are next to each other: `stride` bytes from each to the next of its line. The
// results may take the place of the values, which may be the guides.
struct Lines {
    const uint8_t *values, *guides;
    uint8_t* out;
    size_t valueStride, guideStride, outStride;
    uint32_t length;
    // Temporary memory, a number for each pixel: kSumUnit times the weighted sum of differences from one side, and
    // its weight; and the step from the pixel before.
    int32_t* sums;
    uint16_t* taken;
};

// The weight of a pixel itself. With all others from one side it is below 1500, and the sum of differences below
// 255 times as much.
constexpr int32_t kOwnWeight = 32;
constexpr int32_t kSumBits = 11, kSumUnit = 1 << kSumBits;

struct LineKernel {
    uint32_t lines; // of a bundle
    void (*transpose)(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstStride);
    void (*smooth)(const Lines& lines, const Steps& steps);
};

odxStatus filterRecursively(const LineKernel& kernel, const Plane<uint8_t>& plane, float sigmaColor,
                            float sigmaSpace);

} // namespace odx::bilateral

#endif
