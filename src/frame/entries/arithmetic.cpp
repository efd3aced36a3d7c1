#include "cpu/ondrixArithmC.h"
#include "cpu/ondrixChannelC.h"
#include "frame/entry.h"

using namespace odx;

// clang-format off
// What a call passes on, and its check adds, for what an operation takes beyond its images.
#define ODX_PASSED_nothing
#define ODX_PASSED_policy policy,
#define ODX_PASSED_shift shift,
#define ODX_PASSED_shiftPolicy shift, policy,
#define ODX_PASSED_weights alpha, beta, gamma,
#define ODX_PASSED_value value,
#define ODX_PASSED_values value,
#define ODX_PASSED_scalar scalar,
#define ODX_PASSED_scalarShift scalar, shift,
#define ODX_PASSED_table table,
#define ODX_GIVEN_nothing
#define ODX_GIVEN_shift
#define ODX_GIVEN_shiftPolicy
#define ODX_GIVEN_value
#define ODX_GIVEN_values && value
#define ODX_GIVEN_scalar
#define ODX_GIVEN_scalarShift
#define ODX_GIVEN_table && table

// Bytes of a packed row, as the text of a check has them.
#define ODX_ROW_uint8_t(width) width
#define ODX_ROW_int8_t(width) width
#define ODX_ROW_uint16_t(width) width*sizeof(uint16_t)
#define ODX_ROW_int16_t(width) width*sizeof(int16_t)
#define ODX_ROW_int32_t(width) width*sizeof(int32_t)
#define ODX_ROW_float(width) width*sizeof(float)
#define ODX_ROW_of(width, T, channels) width*sizeof(T)*channels

// The text is the condition with its macros replaced.
#define ODX_CHECK_REPLACED(...) ODX_CHECK_TEXT(__VA_ARGS__)
#define ODX_CHECK_TEXT(...) ODX_CHECK_AS(#__VA_ARGS__, __VA_ARGS__)

// Operations on two images by the slot of `base`. Behind what they take stands what their check adds.
#define ODX_TWO(name, S1, S2, D, takes, ...) ODX_TWO_OF(void, name, name, S1, S2, D, takes, __VA_ARGS__)
#define ODX_TWO_OF(Result, name, base, S1, S2, D, takes, ...) \
    Result name(ODX_TWO_IMAGES(S1, S2, D, takes)) \
    { \
        src1Stride = packedIfZero(src1Stride, ODX_ROW_##S1(srcWidth)); \
        src2Stride = packedIfZero(src2Stride, ODX_ROW_##S2(srcWidth)); \
        dstStride = packedIfZero(dstStride, ODX_ROW_##D(srcWidth)); \
        const Call<base##C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src1, src1Stride, src2, \
                                                      src2Stride, dst, dstStride))); \
        ODX_CHECK_REPLACED(src1 && src2 && dst && srcWidth && srcHeight && (src1Stride >= ODX_ROW_##S1(srcWidth)) && (src2Stride >= ODX_ROW_##S2(srcWidth)) && (dstStride >= ODX_ROW_##D(srcWidth)) __VA_ARGS__); \
        return call(src1, srcWidth, srcHeight, src1Stride, src2, src2Stride, ODX_PASSED_##takes dst, dstStride); \
    }

// Operations on one image, whose packed rows are `from` and `to`.
#define ODX_ONE(name, S, D, takes, ...) ODX_ONE_OF(name, S, D, takes, ODX_ROW_##S(srcWidth), ODX_ROW_##D(srcWidth), __VA_ARGS__)
#define ODX_TO_VALUES(name, T, channels) ODX_ONE_OF(name, T, T, values, ODX_ROW_of(srcWidth, T, channels), ODX_ROW_of(srcWidth, T, channels), )
#define ODX_ONE_OF(name, S, D, takes, from, to, ...) \
    void name(ODX_ONE_IMAGE(S, D, takes)) \
    { \
        srcStride = packedIfZero(srcStride, from); \
        dstStride = packedIfZero(dstStride, to); \
        const Call<name##C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & \
                                                      aligned(src, srcStride, dst, dstStride))); \
        ODX_CHECK_REPLACED(src ODX_GIVEN_##takes && dst && srcWidth && srcHeight && (srcStride >= from) && (dstStride >= to) __VA_ARGS__); \
        call(src, srcWidth, srcHeight, srcStride, ODX_PASSED_##takes dst, dstStride); \
    }

#define ODX_SET(name, T) ODX_SET_OF(name, T, value, ODX_ROW_##T(dstWidth))
#define ODX_SET_CHANNELS(name, T, channels) ODX_SET_OF(name, T, values, ODX_ROW_of(dstWidth, T, channels))
#define ODX_SET_OF(name, T, takes, row) \
    void name(ODX_MASKED_IMAGE(T, takes)) \
    { \
        dstStride = packedIfZero(dstStride, row); \
        maskStride = packedIfZero(maskStride, dstWidth); \
        const Call<name##C> call(__func__, ODX_LIMITS(image(dstWidth, dstHeight) & \
                                                      aligned(dst, dstStride, mask, mask ? maskStride : 0))); \
        ODX_CHECK_REPLACED(dst ODX_GIVEN_##takes && dstWidth && dstHeight && (dstStride >= row) && (!mask || maskStride >= dstWidth)); \
        call(dst, dstWidth, dstHeight, dstStride, value, mask, maskStride); \
    }

#define ODX_AVERAGE(name, T) \
    void name(const T* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, float* average) \
    { \
        srcStride = packedIfZero(srcStride, ODX_ROW_##T(srcWidth)); \
        const Call<name##C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, srcStride))); \
        ODX_CHECK_REPLACED(src && average && srcWidth && srcHeight && (srcStride >= ODX_ROW_##T(srcWidth))); \
        call(src, srcWidth, srcHeight, srcStride, average); \
    }

// `from` and `to` are the packed rows, as the text of the check has them.
#define ODX_LAYOUT(name, from, to) \
    void name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
              unsigned int channels, uint8_t* dst, unsigned int dstStride) \
    { \
        srcStride = packedIfZero(srcStride, from); \
        dstStride = packedIfZero(dstStride, to); \
        const Call<name##C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & \
                                                      aligned(src, srcStride, dst, dstStride))); \
        ODX_CHECK(src && dst && srcWidth && srcHeight && channels >= 2 && channels <= 16 && (srcStride >= from) && (dstStride >= to)); \
        call(src, srcWidth, srcHeight, srcStride, channels, dst, dstStride); \
    }

extern "C" {

ODX_TWO(odxAddu8, uint8_t, uint8_t, uint8_t, policy, && policy <= ONDRIX_OVERFLOW_SATURATE)
ODX_TWO(odxAdds16, int16_t, int16_t, int16_t, nothing, )
ODX_TWO_OF(odxStatus, odxAdds16_v2, odxAdds16_v2, int16_t, int16_t, int16_t, policy, && policy <= ONDRIX_OVERFLOW_SATURATE)
ODX_TWO(odxAddf32, float, float, float, nothing, )
ODX_TWO(odxAddu8u16, uint8_t, uint8_t, uint16_t, nothing, )
ODX_TWO(odxAddu16u8u16, uint16_t, uint8_t, uint16_t, nothing, )
ODX_TWO(odxSubtractu8, uint8_t, uint8_t, uint8_t, policy, && policy <= ONDRIX_OVERFLOW_SATURATE)
ODX_TWO(odxSubtracts16, int16_t, int16_t, int16_t, policy, && policy <= ONDRIX_OVERFLOW_SATURATE)
ODX_TWO(odxSubtractu8s16, uint8_t, uint8_t, int16_t, nothing, )
ODX_TWO(odxAbsDiffu8, uint8_t, uint8_t, uint8_t, nothing, )
ODX_TWO(odxAbsDiffs32, int32_t, int32_t, int32_t, nothing, )
ODX_TWO(odxAbsDifff32, float, float, float, nothing, )
ODX_TWO_OF(void, odxImageDiffu8_v2, odxImageDiffu8, uint8_t, uint8_t, uint8_t, nothing, )
ODX_TWO(odxImageDiffu8s8, uint8_t, uint8_t, int8_t, nothing, )
ODX_TWO(odxImageDiffu8f32, uint8_t, uint8_t, float, nothing, )
ODX_TWO(odxImageDiffs16, int16_t, int16_t, int16_t, nothing, )
ODX_TWO(odxImageDifff32, float, float, float, nothing, )
ODX_TWO(odxElementMultiplyu8, uint8_t, uint8_t, uint8_t, shift, && shift <= 15)
ODX_TWO(odxElementMultiplys16, int16_t, int16_t, int16_t, shift, && shift <= 15)
ODX_TWO(odxElementMultiplyu8u16, uint8_t, uint8_t, uint16_t, shift, && shift <= 15)
ODX_TWO(odxElementMultiplyu8s16, uint8_t, uint8_t, int16_t, shift, && shift <= 15)
ODX_TWO(odxElementMultiplyf32, float, float, float, nothing, )
ODX_TWO(odxBitwiseAndu8, uint8_t, uint8_t, uint8_t, nothing, )
ODX_TWO(odxBitwiseOru8, uint8_t, uint8_t, uint8_t, nothing, )
ODX_TWO(odxBitwiseXoru8, uint8_t, uint8_t, uint8_t, nothing, )
ODX_TWO(odxBitwiseOrs32, int32_t, int32_t, int32_t, nothing, )
ODX_TWO(odxAddWeightedu8, uint8_t, uint8_t, uint8_t, weights, )
ODX_TWO(odxMagnitudes16, int16_t, int16_t, int16_t, nothing, )
ODX_TWO(odxPhases16, int16_t, int16_t, uint8_t, nothing, )

ODX_ONE(odxAbsDiffVu8, uint8_t, uint8_t, value, )
ODX_ONE(odxAbsDiffVs32, int32_t, int32_t, value, )
ODX_ONE(odxAbsDiffVf32, float, float, value, )
ODX_ONE(odxAddScalars16, int16_t, int16_t, scalar, )
ODX_ONE(odxAddScalarf32, float, float, scalar, )
ODX_ONE(odxMultiplyScalars16, int16_t, int16_t, scalarShift, && shift <= 15)
ODX_ONE(odxMultiplyScalarf32, float, float, scalar, )
ODX_ONE(odxBitwiseNotu8, uint8_t, uint8_t, nothing, )
ODX_ONE(odxTableLookupu8, uint8_t, uint8_t, table, )
ODX_ONE(odxConvertDepthu8s16, uint8_t, int16_t, shift, && shift <= 7)
ODX_ONE(odxConvertDepths16u8, int16_t, uint8_t, shiftPolicy, && shift <= 7 && policy <= ONDRIX_OVERFLOW_SATURATE)
ODX_ONE(odxAddSquaredu8u16, uint8_t, uint16_t, shift, && shift <= 15)

ODX_PER_CHANNEL()

ODX_AVERAGE(odxAverageu8, uint8_t)
ODX_AVERAGE(odxAverages32, int32_t)

ODX_LAYOUT(odxDeinterleaveu8, srcWidth*sizeof(uint8_t)*channels, srcWidth)
ODX_LAYOUT(odxInterleaveu8, srcWidth, srcWidth*sizeof(uint8_t)*channels)

void odxImageDiffu8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight, const uint8_t* src2,
                    uint8_t* dst)
{
    const Call<odxImageDiffu8C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src1, src2, dst)));
    ODX_CHECK(src1 && src2 && dst && srcWidth && srcHeight);
    call(src1, srcWidth, srcHeight, srcWidth, src2, srcWidth, dst, srcWidth);
}

void odxChannelCombine2Planesu8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride,
                                uint8_t* dst, unsigned int dstStride)
{
    src1Stride = packedIfZero(src1Stride, srcWidth);
    src2Stride = packedIfZero(src2Stride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth*sizeof(uint8_t)*2);
    const Call<odxChannelCombine2Planesu8C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src1, src1Stride, src2, src2Stride, dst, dstStride)));
    ODX_CHECK(src1 && src2 && dst && srcWidth && srcHeight && (src1Stride >= srcWidth) && (src2Stride >= srcWidth) && (dstStride >= srcWidth*sizeof(uint8_t)*2));
    call(src1, srcWidth, srcHeight, src1Stride, src2, src2Stride, dst, dstStride);
}

void odxChannelCombine3Planesu8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride,
                                const uint8_t* src3, unsigned int src3Stride, uint8_t* dst, unsigned int dstStride)
{
    src1Stride = packedIfZero(src1Stride, srcWidth);
    src2Stride = packedIfZero(src2Stride, srcWidth);
    src3Stride = packedIfZero(src3Stride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth*sizeof(uint8_t)*3);
    const Call<odxChannelCombine3Planesu8C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src1, src1Stride, src2, src2Stride, src3, src3Stride, dst, dstStride)));
    ODX_CHECK(src1 && src2 && src3 && dst && srcWidth && srcHeight && (src1Stride >= srcWidth) && (src2Stride >= srcWidth) && (src3Stride >= srcWidth) && (dstStride >= srcWidth*sizeof(uint8_t)*3));
    call(src1, srcWidth, srcHeight, src1Stride, src2, src2Stride, src3, src3Stride, dst, dstStride);
}

void odxChannelCombine4Planesu8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride,
                                const uint8_t* src3, unsigned int src3Stride, const uint8_t* src4,
                                unsigned int src4Stride, uint8_t* dst, unsigned int dstStride)
{
    src1Stride = packedIfZero(src1Stride, srcWidth);
    src2Stride = packedIfZero(src2Stride, srcWidth);
    src3Stride = packedIfZero(src3Stride, srcWidth);
    src4Stride = packedIfZero(src4Stride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth*sizeof(uint8_t)*4);
    const Call<odxChannelCombine4Planesu8C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src1, src1Stride, src2, src2Stride, src3, src3Stride, src4, src4Stride, dst, dstStride)));
    ODX_CHECK(src1 && src2 && src3 && src4 && dst && srcWidth && srcHeight && (src1Stride >= srcWidth) && (src2Stride >= srcWidth) && (src3Stride >= srcWidth) && (src4Stride >= srcWidth) && (dstStride >= srcWidth*sizeof(uint8_t)*4));
    call(src1, srcWidth, srcHeight, src1Stride, src2, src2Stride, src3, src3Stride, src4, src4Stride, dst, dstStride);
}

void odxChannelExtractu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                         unsigned int channels, odxChannelType channel, uint8_t* dst, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth*sizeof(uint8_t)*channels);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxChannelExtractu8C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, srcStride, dst, dstStride)));
    const uint32_t position = channels::positionOf(channel, channels);
    ODX_CHECK(src && dst && srcWidth && srcHeight && channels >= 2 && channels <= 4 && position < channels && (srcStride >= srcWidth*sizeof(uint8_t)*channels) && (dstStride >= srcWidth));
    call(src, srcWidth, srcHeight, srcStride, channels, channel, dst, dstStride);
}

void odxCrossProduct3x1f32(const float* src1, const float* src2, float* dst)
{
    const Call<odxCrossProduct3x1f32C> call(__func__, ODX_LIMITS(bytes(0) & aligned(src1, src2, dst)));
    ODX_CHECK(src1 && src2 && dst);
    call(src1, src2, dst);
}
}
// clang-format on
