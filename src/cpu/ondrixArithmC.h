// Reference implementations: element-wise arithmetic. And the shapes of these operations: what their entry points,
// references and SIMD functions have in common.
#ifndef ODX_CPU_ONDRIX_ARITHM_C_H
#define ODX_CPU_ONDRIX_ARITHM_C_H

#include "frame/helpers.h"
#include "ondrix/arithmetic.h"

// clang-format off
// What an operation takes beyond its images, T being the source's type: declared, and passed on.
#define ODX_TAKES_nothing(T)
#define ODX_TAKES_policy(T) odxOverflow policy,
#define ODX_TAKES_shift(T) unsigned int shift,
#define ODX_TAKES_shiftPolicy(T) unsigned int shift, odxOverflow policy,
#define ODX_TAKES_weights(T) float alpha, float beta, float gamma,
#define ODX_TAKES_value(T) T value,
#define ODX_TAKES_values(T) const T* value,
#define ODX_TAKES_scalar(T) T scalar,
#define ODX_TAKES_scalarShift(T) T scalar, unsigned int shift,
#define ODX_TAKES_table(T) const uint8_t* table,

// The parameters of an operation on two images, on one, and of one that sets elements.
#define ODX_TWO_IMAGES(S1, S2, D, takes) \
    const S1* src1, unsigned int srcWidth, unsigned int srcHeight, unsigned int src1Stride, const S2* src2, \
    unsigned int src2Stride, ODX_TAKES_##takes(S1) D* dst, unsigned int dstStride
#define ODX_ONE_IMAGE(S, D, takes) \
    const S* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, ODX_TAKES_##takes(S) D* dst, \
    unsigned int dstStride
#define ODX_MASKED_IMAGE(T, takes) \
    T* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride, ODX_TAKES_##takes(T) \
    const uint8_t* mask, unsigned int maskStride

// The operations that differ in their type and number of channels alone, as both columns and the entry points have
// them; `column` is the suffix of the implementation.
#define ODX_PER_CHANNEL(column) \
    ODX_TO_VALUES(odxAbsDiffVc3u8##column, uint8_t, 3) \
    ODX_TO_VALUES(odxAbsDiffVc3s32##column, int32_t, 3) \
    ODX_TO_VALUES(odxAbsDiffVc3f32##column, float, 3) \
    ODX_TO_VALUES(odxAbsDiffVc4u8##column, uint8_t, 4) \
    ODX_TO_VALUES(odxAbsDiffVc4s32##column, int32_t, 4) \
    ODX_TO_VALUES(odxAbsDiffVc4f32##column, float, 4) \
    ODX_SET(odxSetElementsu8##column, uint8_t) \
    ODX_SET(odxSetElementss32##column, int32_t) \
    ODX_SET(odxSetElementsf32##column, float) \
    ODX_SET_CHANNELS(odxSetElementsc3u8##column, uint8_t, 3) \
    ODX_SET_CHANNELS(odxSetElementsc3s32##column, int32_t, 3) \
    ODX_SET_CHANNELS(odxSetElementsc3f32##column, float, 3) \
    ODX_SET_CHANNELS(odxSetElementsc4u8##column, uint8_t, 4) \
    ODX_SET_CHANNELS(odxSetElementsc4s32##column, int32_t, 4) \
    ODX_SET_CHANNELS(odxSetElementsc4f32##column, float, 4)
// clang-format on

extern "C" {
decltype(odxAddu8) odxAddu8C;
decltype(odxAdds16) odxAdds16C;
decltype(odxAdds16_v2) odxAdds16_v2C;
decltype(odxAddf32) odxAddf32C;
decltype(odxAddu8u16) odxAddu8u16C;
decltype(odxAddu16u8u16) odxAddu16u8u16C;
decltype(odxSubtractu8) odxSubtractu8C;
decltype(odxSubtracts16) odxSubtracts16C;
decltype(odxSubtractu8s16) odxSubtractu8s16C;
decltype(odxAbsDiffu8) odxAbsDiffu8C;
decltype(odxAbsDiffs32) odxAbsDiffs32C;
decltype(odxAbsDifff32) odxAbsDifff32C;
decltype(odxImageDiffu8_v2) odxImageDiffu8C;
decltype(odxImageDiffu8s8) odxImageDiffu8s8C;
decltype(odxImageDiffu8f32) odxImageDiffu8f32C;
decltype(odxImageDiffs16) odxImageDiffs16C;
decltype(odxImageDifff32) odxImageDifff32C;
decltype(odxElementMultiplyu8) odxElementMultiplyu8C;
decltype(odxElementMultiplys16) odxElementMultiplys16C;
decltype(odxElementMultiplyu8u16) odxElementMultiplyu8u16C;
decltype(odxElementMultiplyu8s16) odxElementMultiplyu8s16C;
decltype(odxElementMultiplyf32) odxElementMultiplyf32C;
decltype(odxBitwiseAndu8) odxBitwiseAndu8C;
decltype(odxBitwiseOru8) odxBitwiseOru8C;
decltype(odxBitwiseXoru8) odxBitwiseXoru8C;
decltype(odxBitwiseOrs32) odxBitwiseOrs32C;
decltype(odxAddWeightedu8) odxAddWeightedu8C;
decltype(odxMagnitudes16) odxMagnitudes16C;
decltype(odxPhases16) odxPhases16C;
decltype(odxAbsDiffVu8) odxAbsDiffVu8C;
decltype(odxAbsDiffVs32) odxAbsDiffVs32C;
decltype(odxAbsDiffVf32) odxAbsDiffVf32C;
decltype(odxAddScalars16) odxAddScalars16C;
decltype(odxAddScalarf32) odxAddScalarf32C;
decltype(odxMultiplyScalars16) odxMultiplyScalars16C;
decltype(odxMultiplyScalarf32) odxMultiplyScalarf32C;
decltype(odxBitwiseNotu8) odxBitwiseNotu8C;
decltype(odxTableLookupu8) odxTableLookupu8C;
decltype(odxConvertDepthu8s16) odxConvertDepthu8s16C;
decltype(odxConvertDepths16u8) odxConvertDepths16u8C;
decltype(odxAddSquaredu8u16) odxAddSquaredu8u16C;
decltype(odxAbsDiffVc3u8) odxAbsDiffVc3u8C;
decltype(odxAbsDiffVc3s32) odxAbsDiffVc3s32C;
decltype(odxAbsDiffVc3f32) odxAbsDiffVc3f32C;
decltype(odxAbsDiffVc4u8) odxAbsDiffVc4u8C;
decltype(odxAbsDiffVc4s32) odxAbsDiffVc4s32C;
decltype(odxAbsDiffVc4f32) odxAbsDiffVc4f32C;
decltype(odxSetElementsu8) odxSetElementsu8C;
decltype(odxSetElementss32) odxSetElementss32C;
decltype(odxSetElementsf32) odxSetElementsf32C;
decltype(odxSetElementsc3u8) odxSetElementsc3u8C;
decltype(odxSetElementsc3s32) odxSetElementsc3s32C;
decltype(odxSetElementsc3f32) odxSetElementsc3f32C;
decltype(odxSetElementsc4u8) odxSetElementsc4u8C;
decltype(odxSetElementsc4s32) odxSetElementsc4s32C;
decltype(odxSetElementsc4f32) odxSetElementsc4f32C;
decltype(odxAverageu8) odxAverageu8C;
decltype(odxAverages32) odxAverages32C;
decltype(odxCrossProduct3x1f32) odxCrossProduct3x1f32C;

// What the operations that have no SIMD function of their own do, with the loops of either column.
decltype(odxAddSquaredu8u16) addSquaredC;
decltype(odxAddWeightedu8) addWeightedC;
ODX_HELPER_POINTER(addSquared);
ODX_HELPER_POINTER(addWeighted);
}

#endif
