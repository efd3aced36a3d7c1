#include "ondrix/pyramids.h"

#include "frame/entry.h"

using namespace odx;

namespace
{

// Whether all levels but the last have even sizes.
bool halves(uint32_t width, uint32_t height, uint32_t levels)
{
    if (levels == 0 || levels > 32) return false;
    const uint32_t mask = (uint32_t{1} << (levels - 1)) - 1;
    return ((width | height) & mask) == 0;
}

bool pyramidFits(const void* base, uint32_t width, uint32_t height, uint32_t levels, const void* pyr)
{
    return base && width && height && pyr && halves(width, height, levels);
}

Limit creation(const void* base, uint32_t width, uint32_t height)
{
    return pixels(width, height) & remote(4, base, width) & atLeast(5, height);
}

} // namespace

extern "C" {

int odxPyramidAllocate(odxPyrLevel* pyr, unsigned int baseWidth, unsigned int baseHeight,
                       unsigned int bytesPerPixel, unsigned int numLevels, unsigned int ownBase)
{
    const Call<odxPyramidAllocateC> call(__func__);
    if (!pyr || !numLevels) return call.failure();
    return call(pyr, baseWidth, baseHeight, bytesPerPixel, numLevels, ownBase);
}

int odxPyramidAllocate_v2(odxPyrLevelStrided* pyr, unsigned int baseWidth, unsigned int baseHeight,
                          unsigned int baseStride, unsigned int bytesPerPixel, unsigned int numLevels,
                          unsigned int ownBase)
{
    baseStride = packedIfZero(baseStride, baseWidth * bytesPerPixel);
    const Call<odxPyramidAllocate_v2C> call(__func__);
    if (!pyr || !numLevels) return call.failure();
    return call(pyr, baseWidth, baseHeight, baseStride, bytesPerPixel, numLevels, ownBase);
}

odxStatus odxPyramidAllocate_v3(odxPyrLevelStrided* pyr, unsigned int baseWidth, unsigned int baseHeight,
                                unsigned int baseStride, unsigned int bytesPerPixel, unsigned int alignment,
                                unsigned int numLevels, unsigned int scaleFlag, unsigned int ownBase)
{
    const uint64_t row = uint64_t{bytesPerPixel} * baseWidth;
    baseStride = packedIfZero(baseStride, row);
    const Call<odxPyramidAllocate_v3C> call(__func__);
    if (!pyr || !baseWidth || !baseHeight || alignment % 8 != 0 || !alignment || baseStride < row || !numLevels) {
        return call.failure();
    }
    return call(pyr, baseWidth, baseHeight, baseStride, bytesPerPixel, alignment, numLevels, scaleFlag, ownBase);
}

void odxPyramidDelete(odxPyrLevel* pyr, unsigned int numLevels, unsigned int startLevel)
{
    const Call<odxPyramidDeleteC> call(__func__);
    ODX_CHECK(pyr && ((signed)startLevel >= 0) && (startLevel <= numLevels));
    call(pyr, numLevels, startLevel);
}

void odxPyramidDelete_v2(odxPyrLevelStrided* pyr, unsigned int numLevels, unsigned int startLevel)
{
    const Call<odxPyramidDelete_v2C> call(__func__);
    ODX_CHECK(pyr && ((signed)startLevel >= 0) && (startLevel <= numLevels));
    call(pyr, numLevels, startLevel);
}

int odxPyramidCreateu8(const uint8_t* base, unsigned int baseWidth, unsigned int baseHeight,
                       unsigned int numLevels, odxPyrLevel* pyr)
{
    // The GPU is kept for sizes that are refused.
    const Call<odxPyramidCreateu8C> call(__func__, ODX_LIMITS(creation(base, baseWidth, baseHeight) &
                                                              gpuIf(!halves(baseWidth, baseHeight, numLevels))));
    if (!pyramidFits(base, baseWidth, baseHeight, numLevels, pyr)) return call.failure();
    return call(base, baseWidth, baseHeight, numLevels, pyr);
}

int odxPyramidCreatef32(const float* base, unsigned int baseWidth, unsigned int baseHeight, unsigned int numLevels,
                        odxPyrLevel* pyr)
{
    const Call<odxPyramidCreatef32C> call(__func__, ODX_LIMITS(creation(base, baseWidth, baseHeight)));
    if (!pyramidFits(base, baseWidth, baseHeight, numLevels, pyr)) return call.failure();
    return call(base, baseWidth, baseHeight, numLevels, pyr);
}

int odxPyramidCreateu8_v2(const uint8_t* base, unsigned int baseWidth, unsigned int baseHeight,
                          unsigned int baseStride, unsigned int numLevels, odxPyrLevelStrided* pyr)
{
    baseStride = packedIfZero(baseStride, baseWidth);
    const Call<odxPyramidCreateu8_v2C> call(__func__, ODX_LIMITS(creation(base, baseWidth, baseHeight)));
    if (!pyramidFits(base, baseWidth, baseHeight, numLevels, pyr) || baseStride < baseWidth) return call.failure();
    return call(base, baseWidth, baseHeight, baseStride, numLevels, pyr);
}

int odxPyramidCreatef32_v2(const float* base, unsigned int baseWidth, unsigned int baseHeight,
                           unsigned int baseStride, unsigned int numLevels, odxPyrLevelStrided* pyr)
{
    const uint64_t row = sizeof *base * uint64_t{baseWidth};
    baseStride = packedIfZero(baseStride, row);
    const Call<odxPyramidCreatef32_v2C> call(__func__, ODX_LIMITS(creation(base, baseWidth, baseHeight)));
    if (!pyramidFits(base, baseWidth, baseHeight, numLevels, pyr) || baseStride < row) return call.failure();
    return call(base, baseWidth, baseHeight, baseStride, numLevels, pyr);
}

odxStatus odxPyramidCreateu8_v3(const uint8_t* base, unsigned int baseWidth, unsigned int baseHeight,
                                unsigned int baseStride, unsigned int numLevels, unsigned int scaleFlag,
                                odxPyrLevelStrided* pyr)
{
    baseStride = packedIfZero(baseStride, baseWidth);
    const Call<odxPyramidCreateu8_v3C> call(__func__, ODX_LIMITS(creation(base, baseWidth, baseHeight)));
    if (!base || !baseWidth || !baseHeight || !numLevels || !pyr || baseStride < baseWidth) return call.failure();
    return call(base, baseWidth, baseHeight, baseStride, numLevels, scaleFlag, pyr);
}

// Gradients of a pyramid.
#define ODX_GRADIENTS(name)                                                                             \
    int name(const odxPyrLevel* imgPyr, odxPyrLevel* dxPyr, odxPyrLevel* dyPyr, unsigned int numLevels) \
    {                                                                                                   \
        const Call<name##C> call(__func__);                                                             \
        if (!imgPyr || !dxPyr || !dyPyr) return call.failure();                                         \
        return call(imgPyr, dxPyr, dyPyr, numLevels);                                                   \
    }

ODX_GRADIENTS(odxPyramidSobelGradientCreatei16)
ODX_GRADIENTS(odxPyramidSobelGradientCreatei8)
ODX_GRADIENTS(odxPyramidSobelGradientCreatef32)
}
