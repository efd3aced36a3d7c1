#include "cpu/ondrixPyramidC.h"

#include "cpu/image.h"
#include "cpu/ondrixScale.h"
#include "frame/log.h"
#include "frame/scratch.h"
#include "ondrix/gradients.h"
#include "ondrix/memory.h"
#include "ondrix/scaling.h"
#include "ondrix/smoothing.h"

#include <math.h>
#include <string.h>

using odx::rowOf;
using odx::Scratch;

namespace
{

constexpr size_t kAlignment = 16;

// Null where the number of bytes is not one that memory can have.
void* allocateLevel(uint64_t row, uint64_t height)
{
    const bool fits = height == 0 || row <= SIZE_MAX / 2 / height;
    return fits ? odxMemAlloc(static_cast<size_t>(row * height), kAlignment) : nullptr;
}

template <class Level>
void deleteLevels(Level* pyr, uint32_t levels, uint32_t from)
{
    for (uint32_t i = from; i < levels; ++i) {
        odxMemFree(pyr[i].ptr);
        pyr[i].ptr = nullptr;
    }
}

// Fills in the levels from 1 on; next(i, width, height) makes a level's size of that of the one before,
// stride(width) its stride. Whether there was memory for all; else nothing stays.
template <class Next, class Stride>
bool allocateStrided(odxPyrLevelStrided* pyr, uint32_t width, uint32_t height, uint32_t baseStride,
                     uint32_t levels, bool ownBase, Next next, Stride stride)
{
    pyr[0] = {ownBase ? allocateLevel(baseStride, height) : nullptr, width, height, baseStride};
    if (ownBase && pyr[0].ptr == nullptr) return false;
    for (uint32_t i = 1; i < levels; ++i) {
        next(i, width, height);
        const uint64_t row = stride(width);
        pyr[i] = {row <= UINT32_MAX ? allocateLevel(row, height) : nullptr, width, height,
                  static_cast<uint32_t>(row)};
        if (pyr[i].ptr == nullptr) {
            odxPyramidDelete_v2(pyr, i, ownBase ? 0 : 1);
            return false;
        }
    }
    return true;
}

// Sizes of the levels in quarter octaves: level i of an octave, whose fourth level begins the next one.
struct QuarterOctaves {
    uint32_t octaveWidth, octaveHeight;

    void operator()(uint32_t i, uint32_t& width, uint32_t& height)
    {
        static constexpr float kFactors[4] = {0.5f, 0.8408964f, 0.7071068f, 0.5946036f};
        const float factor = kFactors[i & 3];
        width = static_cast<uint32_t>(ceilf(factor * static_cast<float>(octaveWidth)));
        height = static_cast<uint32_t>(ceilf(factor * static_cast<float>(octaveHeight)));
        if ((i & 3) == 0) {
            octaveWidth = width;
            octaveHeight = height;
        }
    }
};

uint32_t halfUp(uint32_t size)
{
    return size / 2 + size % 2;
}

// What the lines of a failed assumption say.
struct Lines {
    int arguments, sizes;
};

#define ODX_PYRAMID_SOURCE "src/cpu/ondrixPyramidC"

// Ends the process where the arguments are no pyramid.
void assertPyramid(const void* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t numLevels,
                   const void* pyramid, Lines lines, const char* sizes)
{
    ODX_FATAL_ASSERT(ODX_PYRAMID_SOURCE, lines.arguments, base && numLevels && baseHeight && baseWidth && pyramid);
    const uint32_t mask = numLevels > 32 ? UINT32_MAX : (uint32_t{1} << (numLevels - 1)) - 1;
    if (((baseWidth | baseHeight) & mask) != 0) odx::fatalAssertion(ODX_PYRAMID_SOURCE, lines.sizes, sizes);
}
constexpr const char* kSizes = "( (baseWidth & ((1 << (numLevels - 1)) - 1)) == 0 ) & "
                               "( (baseHeight & ((1 << (numLevels - 1)) - 1)) == 0 )";
constexpr const char* kSizesOfFloats = "((baseWidth & ((1 << (numLevels - 1)) - 1)) == 0) & "
                                       "((baseHeight & ((1 << (numLevels - 1)) - 1)) == 0)";

// Levels from 1 on, each made of the one before by reduce(last, level).
template <class Level, class Reduce>
int createHalves(Level* pyr, uint32_t levels, Reduce reduce)
{
    for (uint32_t i = 1; i < levels; ++i) {
        pyr[i].width = pyr[i - 1].width / 2;
        pyr[i].height = pyr[i - 1].height / 2;
        if (pyr[i].ptr == nullptr) return -1;
        reduce(pyr[i - 1], pyr[i]);
    }
    return 0;
}

const uint8_t* bytesOf(const odxPyrLevelStrided& level)
{
    return static_cast<const uint8_t*>(level.ptr);
}

// What the reduction leaves of odd sizes.
void addLastColumnAndRow(const odxPyrLevelStrided& last, const odxPyrLevelStrided& level)
{
    const odx::Plane<uint8_t> plane = {
        bytesOf(last), last.width, last.height, last.stride, static_cast<uint8_t*>(level.ptr), level.stride};
    const uint32_t written = last.width / 2;
    if (written < level.width)
        odx::scale::halve<odx::scale::Bytes5x5>(plane, written, level.width, 0, level.height);
    if (last.height / 2 < level.height)
        odx::scale::halve<odx::scale::Bytes5x5>(plane, 0, level.width, last.height / 2, level.height);
}

// The 5x5 Gaussian of an image that has no pixel without a border in its window.
void filterSmall(const odxPyrLevelStrided& level, uint8_t* dst, uint32_t dstStride)
{
    constexpr uint32_t weights[5] = {1, 4, 6, 4, 1};
    for (uint32_t y = 0; y < level.height; ++y) {
        for (uint32_t x = 0; x < level.width; ++x) {
            uint32_t sum = 0, weight = 0;
            for (uint32_t v = y < 2 ? 2 - y : 0; v < 5 && y + v - 2 < level.height; ++v) {
                const uint8_t* const row = rowOf(bytesOf(level), level.stride, y + v - 2);
                for (uint32_t u = x < 2 ? 2 - x : 0; u < 5 && x + u - 2 < level.width; ++u) {
                    sum += weights[u] * weights[v] * row[x + u - 2];
                    weight += weights[u] * weights[v];
                }
            }
            rowOf(dst, dstStride, y)[x] = static_cast<uint8_t>(sum / weight);
        }
    }
}

odxStatus createQuarterOctaves(odxPyrLevelStrided* pyr, uint32_t levels)
{
    const uint32_t width = pyr[0].width;
    const Scratch<uint8_t> smooth(uint64_t{width} * pyr[0].height);
    if (!smooth) return ONDRIX_NO_MEMORY;
    QuarterOctaves next = {width, pyr[0].height};
    for (uint32_t i = 1; i < levels; ++i) {
        const odxPyrLevelStrided& last = pyr[i - 1];
        next(i, pyr[i].width, pyr[i].height);
        if (pyr[i].ptr == nullptr) return ONDRIX_NO_MEMORY;
        if (last.width < 5 || last.height < 5) {
            filterSmall(last, smooth.get(), width);
        } else {
            odxFilterGaussian5x5u8_v2(bytesOf(last), last.width, last.height, last.stride, smooth.get(), width, 1);
        }
        const odxStatus status =
            odxScaleu8(smooth.get(), last.width, last.height, width, static_cast<uint8_t*>(pyr[i].ptr),
                       pyr[i].width, pyr[i].height, pyr[i].stride, ONDRIX_INTERPOLATION_NEAREST);
        if (status != ONDRIX_SUCCESS) return status;
    }
    return ONDRIX_SUCCESS;
}

// Gradients of each level by sobel(src, width, height, 0, dx, dy).
template <class T, class Sobel>
int createGradients(const odxPyrLevel* images, odxPyrLevel* dx, odxPyrLevel* dy, uint32_t levels, Sobel sobel)
{
    for (uint32_t i = 0; i < levels; ++i) {
        const uint32_t width = i < 32 ? images[0].width >> i : 0, height = i < 32 ? images[0].height >> i : 0;
        dx[i].width = dy[i].width = width;
        dx[i].height = dy[i].height = height;
        if (dx[i].ptr == nullptr || dy[i].ptr == nullptr) return -1;
        if (width < 3 || height < 3) continue;
        sobel(static_cast<const uint8_t*>(images[i].ptr), width, height, 0, static_cast<T*>(dx[i].ptr),
              static_cast<T*>(dy[i].ptr));
    }
    return 0;
}

} // namespace

extern "C" {

int odxPyramidAllocateC(odxPyrLevel* pyr, unsigned int baseWidth, unsigned int baseHeight,
                        unsigned int bytesPerPixel, unsigned int numLevels, unsigned int ownBase)
{
    uint32_t width = baseWidth, height = baseHeight;
    for (uint32_t i = ownBase != 0 ? 0 : 1; i < numLevels; ++i) {
        if (i != 0) {
            width /= 2;
            height /= 2;
        }
        pyr[i] = {allocateLevel(uint64_t{width} * bytesPerPixel, height), width, height};
        if (pyr[i].ptr == nullptr) return -1;
    }
    return 0;
}

int odxPyramidAllocate_v2C(odxPyrLevelStrided* pyr, unsigned int baseWidth, unsigned int baseHeight,
                           unsigned int baseStride, unsigned int bytesPerPixel, unsigned int numLevels,
                           unsigned int ownBase)
{
    const auto halve = [](uint32_t, uint32_t& width, uint32_t& height) {
        width /= 2;
        height /= 2;
    };
    const auto stride = [=](uint32_t width) { return uint64_t{width} * bytesPerPixel; };
    return allocateStrided(pyr, baseWidth, baseHeight, baseStride, numLevels, ownBase != 0, halve, stride) ? 0
                                                                                                           : -1;
}

odxStatus odxPyramidAllocate_v3C(odxPyrLevelStrided* pyr, unsigned int baseWidth, unsigned int baseHeight,
                                 unsigned int baseStride, unsigned int bytesPerPixel, unsigned int alignment,
                                 unsigned int numLevels, unsigned int scaleFlag, unsigned int ownBase)
{
    const auto halve = [](uint32_t, uint32_t& width, uint32_t& height) {
        width = halfUp(width);
        height = halfUp(height);
    };
    const auto stride = [=](uint32_t width) {
        return (uint64_t{width} + alignment - 1) / alignment * alignment * bytesPerPixel;
    };
    const auto allocate = [&](auto next) {
        return allocateStrided(pyr, baseWidth, baseHeight, baseStride, numLevels, ownBase != 0, next, stride);
    };
    const bool done = scaleFlag != 0 ? allocate(QuarterOctaves{baseWidth, baseHeight}) : allocate(halve);
    return done ? ONDRIX_SUCCESS : ONDRIX_NO_MEMORY;
}

void odxPyramidDeleteC(odxPyrLevel* pyr, unsigned int numLevels, unsigned int startLevel)
{
    deleteLevels(pyr, numLevels, startLevel);
}

void odxPyramidDelete_v2C(odxPyrLevelStrided* pyr, unsigned int numLevels, unsigned int startLevel)
{
    deleteLevels(pyr, numLevels, startLevel);
}

int odxPyramidCreateu8C(const uint8_t* base, unsigned int baseWidth, unsigned int baseHeight,
                        unsigned int numLevels, odxPyrLevel* pyr)
{
    assertPyramid(base, baseWidth, baseHeight, numLevels, pyr, {137, 139}, kSizes);
    pyr[0] = {const_cast<uint8_t*>(base), baseWidth, baseHeight};
    return createHalves(pyr, numLevels, [](const odxPyrLevel& last, const odxPyrLevel& level) {
        odxScaleDownBy2Gaussian5x5u8(static_cast<const uint8_t*>(last.ptr), last.width, last.height,
                                     static_cast<uint8_t*>(level.ptr));
    });
}

int odxPyramidCreatef32C(const float* base, unsigned int baseWidth, unsigned int baseHeight,
                         unsigned int numLevels, odxPyrLevel* pyr)
{
    assertPyramid(base, baseWidth, baseHeight, numLevels, pyr, {104, 106}, kSizes);
    pyr[0] = {const_cast<float*>(base), baseWidth, baseHeight};
    return createHalves(pyr, numLevels, [](const odxPyrLevel& last, const odxPyrLevel& level) {
        odxScaleDownBy2Gaussian5x5f32(static_cast<const float*>(last.ptr), last.width, last.height,
                                      static_cast<float*>(level.ptr));
    });
}

int odxPyramidCreateu8_v2C(const uint8_t* base, unsigned int baseWidth, unsigned int baseHeight,
                           unsigned int baseStride, unsigned int numLevels, odxPyrLevelStrided* pyr)
{
    assertPyramid(base, baseWidth, baseHeight, numLevels, pyr, {391, 393}, kSizes);
    pyr[0] = {const_cast<uint8_t*>(base), baseWidth, baseHeight, baseStride};
    return createHalves(pyr, numLevels, [](const odxPyrLevelStrided& last, odxPyrLevelStrided& level) {
        level.stride = level.width;
        odxScaleDownBy2Gaussian5x5u8_v2(bytesOf(last), last.width, last.height, last.stride,
                                        static_cast<uint8_t*>(level.ptr), level.stride);
    });
}

int odxPyramidCreatef32_v2C(const float* base, unsigned int baseWidth, unsigned int baseHeight,
                            unsigned int baseStride, unsigned int numLevels, odxPyrLevelStrided* pyr)
{
    assertPyramid(base, baseWidth, baseHeight, numLevels, pyr, {351, 353}, kSizesOfFloats);
    pyr[0] = {const_cast<float*>(base), baseWidth, baseHeight, baseStride};
    return createHalves(pyr, numLevels, [](const odxPyrLevelStrided& last, odxPyrLevelStrided& level) {
        level.stride = level.width * static_cast<uint32_t>(sizeof(float));
        odxScaleDownBy2Gaussian5x5f32_v2(static_cast<const float*>(last.ptr), last.width, last.height, last.stride,
                                         static_cast<float*>(level.ptr), level.stride);
    });
}

odxStatus odxPyramidCreateu8_v3C(const uint8_t* base, unsigned int baseWidth, unsigned int baseHeight,
                                 unsigned int baseStride, unsigned int numLevels, unsigned int scaleFlag,
                                 odxPyrLevelStrided* pyr)
{
    if (pyr[0].ptr == nullptr) {
        pyr[0] = {const_cast<uint8_t*>(base), baseWidth, baseHeight, baseStride};
    } else if (pyr[0].width != baseWidth || pyr[0].height != baseHeight || pyr[0].stride != baseStride) {
        return ONDRIX_FAILURE;
    } else if (pyr[0].ptr != base) {
        for (uint32_t y = 0; y < baseHeight; ++y)
            memcpy(rowOf(static_cast<uint8_t*>(pyr[0].ptr), baseStride, y), rowOf(base, baseStride, y), baseWidth);
    }
    if (scaleFlag != 0) return createQuarterOctaves(pyr, numLevels);
    for (uint32_t i = 1; i < numLevels; ++i) {
        const odxPyrLevelStrided& last = pyr[i - 1];
        pyr[i].width = halfUp(last.width);
        pyr[i].height = halfUp(last.height);
        if (pyr[i].ptr == nullptr) return ONDRIX_NO_MEMORY;
        odxScaleDownBy2Gaussian5x5u8_v2(bytesOf(last), last.width, last.height, last.stride,
                                        static_cast<uint8_t*>(pyr[i].ptr), pyr[i].stride);
        addLastColumnAndRow(last, pyr[i]);
    }
    return ONDRIX_SUCCESS;
}

int odxPyramidSobelGradientCreatei16C(const odxPyrLevel* imgPyr, odxPyrLevel* dxPyr, odxPyrLevel* dyPyr,
                                      unsigned int numLevels)
{
    return createGradients<int16_t>(imgPyr, dxPyr, dyPyr, numLevels, odxImageGradientSobelPlanars16);
}

int odxPyramidSobelGradientCreatei8C(const odxPyrLevel* imgPyr, odxPyrLevel* dxPyr, odxPyrLevel* dyPyr,
                                     unsigned int numLevels)
{
    return createGradients<int8_t>(imgPyr, dxPyr, dyPyr, numLevels, odxImageGradientSobelPlanars8);
}

int odxPyramidSobelGradientCreatef32C(const odxPyrLevel* imgPyr, odxPyrLevel* dxPyr, odxPyrLevel* dyPyr,
                                      unsigned int numLevels)
{
    return createGradients<float>(imgPyr, dxPyr, dyPyr, numLevels, odxImageGradientSobelPlanarf32);
}
}
