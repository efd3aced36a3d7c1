// Reference implementations: comparing and searching descriptors.
#ifndef ODX_CPU_ONDRIX_DOT_C_H
#define ODX_CPU_ONDRIX_DOT_C_H

#include "frame/helpers.h"
#include "ondrix/descriptors.h"

extern "C" {
decltype(odxBitCountu8) odxBitCountu8C;
decltype(odxBitCountu32) odxBitCountu32C;
decltype(odxBitCount32x1u8) odxBitCount32x1u8C;
decltype(odxBitCount32x4u8) odxBitCount32x4u8C;
decltype(odxBitCount64x1u8) odxBitCount64x1u8C;
decltype(odxBitCount64x4u8) odxBitCount64x4u8C;
decltype(odxBlockDotProductf32) odxBlockDotProductf32C;
decltype(odxBlockDotProductu8) odxBlockDotProductu8C;
decltype(odxClusterEuclideanf32) odxClusterEuclideanf32C;
decltype(odxClusterEuclideanNormed36f32) odxClusterEuclideanNormed36f32C;
decltype(odxClusterEuclideanNormedf32) odxClusterEuclideanNormedf32C;
decltype(odxClusterEuclideanu8) odxClusterEuclideanu8C;
decltype(odxDescriptor17x17u8To36s8) odxDescriptor17x17u8To36s8C;
decltype(odxDescriptorSampledMeanAndVar36f32) odxDescriptorSampledMeanAndVar36f32C;
decltype(odxDotProduct11x12u8) odxDotProduct11x12u8C;
decltype(odxDotProduct128x1s8) odxDotProduct128x1s8C;
decltype(odxDotProduct128x1u8) odxDotProduct128x1u8C;
decltype(odxDotProduct128x4s8) odxDotProduct128x4s8C;
decltype(odxDotProduct128x4u8) odxDotProduct128x4u8C;
decltype(odxDotProduct36x1s8) odxDotProduct36x1s8C;
decltype(odxDotProduct36x1u8) odxDotProduct36x1u8C;
decltype(odxDotProduct36x4s8) odxDotProduct36x4s8C;
decltype(odxDotProduct36x4u8) odxDotProduct36x4u8C;
decltype(odxDotProduct64x1s8) odxDotProduct64x1s8C;
decltype(odxDotProduct64x1u8) odxDotProduct64x1u8C;
decltype(odxDotProduct64x4s8) odxDotProduct64x4s8C;
decltype(odxDotProduct64x4u8) odxDotProduct64x4u8C;
decltype(odxDotProduct8x8u8) odxDotProduct8x8u8C;
decltype(odxDotProductf32) odxDotProductf32C;
decltype(odxDotProductNorm128x4s8) odxDotProductNorm128x4s8C;
decltype(odxDotProductNorm128x4u8) odxDotProductNorm128x4u8C;
decltype(odxDotProductNorm36x4s8) odxDotProductNorm36x4s8C;
decltype(odxDotProductNorm36x4u8) odxDotProductNorm36x4u8C;
decltype(odxDotProductNorm64x4s8) odxDotProductNorm64x4s8C;
decltype(odxDotProductNorm64x4u8) odxDotProductNorm64x4u8C;
decltype(odxDotProducts8) odxDotProducts8C;
decltype(odxDotProductu8) odxDotProductu8C;
decltype(odxHammingDistance32x1u8) odxHammingDistance32x1u8C;
decltype(odxHammingDistance32x1u8a4) odxHammingDistance32x1u8a4C;
decltype(odxHammingDistance32x4u8a4) odxHammingDistance32x4u8a4C;
decltype(odxHammingDistance64x1u8) odxHammingDistance64x1u8C;
decltype(odxHammingDistance64x1u8a4) odxHammingDistance64x1u8a4C;
decltype(odxHammingDistance64x4u8) odxHammingDistance64x4u8C;
decltype(odxHammingDistance64x4u8a4) odxHammingDistance64x4u8a4C;
decltype(odxHammingDistanceu8) odxHammingDistanceu8C;

decltype(odxKDTreeCreate36s8f32) odxKDTreeCreate36s8f32C;
decltype(odxKDTreeDestroy36s8f32) odxKDTreeDestroy36s8f32C;
decltype(odxKDTreeQuery36s8f32) odxKDTreeQuery36s8f32C;
decltype(odxKMeansTreeSearch36x10s8) odxKMeansTreeSearch36x10s8C;
decltype(odxLinearSearch8x36s8) odxLinearSearch8x36s8C;
decltype(odxLinearSearchPrepare8x36s8) odxLinearSearchPrepare8x36s8C;
decltype(odxSort8Scoresf32) odxSort8Scoresf32C;
decltype(odxSumOfAbsoluteDiffs8x8u8_v2) odxSumOfAbsoluteDiffs8x8u8C;
decltype(odxSumOfSquaredDiffs36x4s8) odxSumOfSquaredDiffs36x4s8C;
decltype(odxSumOfSquaredDiffs36xNs8) odxSumOfSquaredDiffs36xNs8C;
decltype(odxSumOfSquaredDiffsf32) odxSumOfSquaredDiffsf32C;
decltype(odxSumOfSquaredDiffss8) odxSumOfSquaredDiffss8C;
decltype(odxSumOfSquaredDiffsu8) odxSumOfSquaredDiffsu8C;
decltype(odxVecNormalize36s8f32) odxVecNormalize36s8f32C;
decltype(odxSumOfAbsoluteDiff16x16u8) odxSumOfAbsoluteDiff16x16u8C;
decltype(odxSumOfAbsoluteDiff8x8u8) odxSumOfAbsoluteDiff8x8u8C;
decltype(odxSumOfAbsoluteDiffs16x16u8) odxSumOfAbsoluteDiffs16x16u8C;
}

// Inner loops of the searches and of clustering.
extern "C" {
// The dot products of one descriptor with `count` others, one after the other.
void dotProducts36s8C(const int8_t* a, const int8_t* others, uint32_t count, int32_t* products);
// The number of the center nearest to a vector, the lowest of equal ones, and its distance (normed: dot product).
uint32_t nearestCenteru8C(const uint8_t* vector, uint32_t length, const uint8_t* centers, uint32_t count,
                          uint32_t stride, uint32_t* distance);
uint32_t nearestCenterf32C(const float* vector, uint32_t length, const float* centers, uint32_t count,
                           uint32_t stride, float* distance);
uint32_t nearestDirectionf32C(const float* vector, uint32_t length, const float* centers, uint32_t count,
                              uint32_t stride, float* product);
ODX_HELPER_POINTER(dotProducts36s8);
ODX_HELPER_POINTER(nearestCenteru8);
ODX_HELPER_POINTER(nearestCenterf32);
ODX_HELPER_POINTER(nearestDirectionf32);
}

#endif
