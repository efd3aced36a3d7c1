// SIMD thresholds. Otsu's and the adaptive ones are the reference's, whose loops over the image are here.
#include "cpu/ondrixThresholdC.h"
#include "orlan/elementwise.h"

#define ODX_FAMILY_LIST "frame/operations/thresholding.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{

// Less than `low` wraps to what is beyond the span.
struct MarkRange : Lanes<kBytes> {
    static constexpr bool kIsShort = true;
    u8v low, span, inside, outside;

    ODX_MEMBER void operator()(const uint8_t* in, uint8_t* out) const
    {
        store(out, (u8v)(load<u8v>(in) - low <= span ? inside : outside));
    }
};

// From `low` on: what the comparison gives is what is stored.
struct MarkFrom : Lanes<kBytes> {
    static constexpr bool kIsShort = true;
    u8v low;

    ODX_MEMBER void operator()(const uint8_t* in, uint8_t* out) const { store(out, (u8v)(load<u8v>(in) >= low)); }
};

struct MarkDifference : Lanes<kBytes> {
    static constexpr bool kIsShort = true;
    u8v limit, within, beyond;

    ODX_MEMBER void operator()(const uint8_t* from, const uint8_t* less, uint8_t* out) const
    {
        store(out, (u8v)(subSat(load<u8v>(from), load<u8v>(less)) <= limit ? within : beyond));
    }
};

void markRangeV(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst,
                uint32_t dstStride, const threshold::Range& range)
{
    if (range.high == 255 && range.inside == 255 && range.outside == 0)
        return forVectors(MarkFrom{{}, u8v{} + range.low}, width, height, Rows{src, srcStride},
                          Rows{dst, dstStride});
    const MarkRange mark = {
        {}, u8v{} + range.low, u8v{} + range.span(), u8v{} + range.inside, u8v{} + range.outside};
    forVectors(mark, width, height, Rows{src, srcStride}, Rows{dst, dstStride});
}

void markDifferenceV(const uint8_t* from, uint32_t fromStride, const uint8_t* less, uint32_t lessStride,
                     uint32_t width, uint32_t height, uint8_t* dst, uint32_t dstStride, uint8_t limit,
                     uint8_t within, uint8_t beyond)
{
    const MarkDifference mark = {{}, u8v{} + limit, u8v{} + within, u8v{} + beyond};
    forVectors(mark, width, height, Rows{from, fromStride}, Rows{less, lessStride}, Rows{dst, dstStride});
}

void odxFilterThresholdu8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int srcStride, uint8_t* dst, unsigned int dstStride, unsigned int threshold)
{
    markRangeV(src, srcWidth, srcHeight, srcStride, dst, dstStride, threshold::binary(threshold));
}

odxStatus odxFilterThresholdu8_v3V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                   unsigned int threshold, unsigned int trueValue, unsigned int falseValue)
{
    markRangeV(src, srcWidth, srcHeight, srcStride, dst, dstStride,
               threshold::above(threshold, trueValue, falseValue));
    return ONDRIX_SUCCESS;
}

odxStatus odxFilterThresholdRangeu8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int lowThresh,
                                     int highThresh, unsigned int trueValue, unsigned int falseValue)
{
    markRangeV(src, srcWidth, srcHeight, srcStride, dst, dstStride,
               threshold::between(lowThresh, highThresh, trueValue, falseValue));
    return ONDRIX_SUCCESS;
}

} // namespace odx::ODX_TARGET
