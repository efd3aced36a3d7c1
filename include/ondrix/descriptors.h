/// \file descriptors.h
/// Comparing and searching feature descriptors.
///
/// Words. A vector is an array of elements without padding. "36s8" is a descriptor of 36 signed bytes; its inverse
/// length is the reciprocal of its Euclidean norm, and travels beside it. The normalised distance of two vectors,
/// with inverse lengths la and lb, is
///
///     fabsf(2 - ((2 * la) * lb) * dot)
///
/// in single precision, every product and the difference rounded in this order; `dot` is their dot product,
/// converted to float. It is the squared distance of the vectors of length 1: 0 to 4 for true inverse lengths,
/// more for greater ones.
///
/// Arithmetic. Integer sums wrap: they are exact modulo 2^32. Float operations are IEEE single precision, one
/// rounding each, in the stated order, never fused. Nothing is read beyond the stated elements. Buffers need the
/// alignment of their elements, no more, and do not overlap unless it says so.
///
/// Refusals. Where an operation names a condition, arguments that do not meet it are refused: the line "Assertion
/// failed @<operation>: <condition>" is logged and nothing is written. Where it names none, a null pointer is
/// refused in silence. Refused calls return -1 where the result is signed or a float, 0 where it is unsigned, and
/// 3 where it is a status. Lengths of 0 are accepted unless it says otherwise.
#ifndef ONDRIX_DESCRIPTORS_H
#define ONDRIX_DESCRIPTORS_H

#include "ondrix/types.h"

// ---- dot products ----

/// Dot product of two vectors of 36 signed bytes.
ODX_API int32_t odxDotProduct36x1s8(const int8_t* a, const int8_t* b);
/// Dot product of two vectors of 36 bytes.
ODX_API uint32_t odxDotProduct36x1u8(const uint8_t* a, const uint8_t* b);
/// Dot product of two vectors of 64 signed bytes.
ODX_API int32_t odxDotProduct64x1s8(const int8_t* a, const int8_t* b);
/// Dot product of two vectors of 64 bytes.
ODX_API uint32_t odxDotProduct64x1u8(const uint8_t* a, const uint8_t* b);
/// Dot product of two vectors of 128 signed bytes.
ODX_API int32_t odxDotProduct128x1s8(const int8_t* a, const int8_t* b);
/// Dot product of two vectors of 128 bytes.
ODX_API uint32_t odxDotProduct128x1u8(const uint8_t* a, const uint8_t* b);

/// Dot products of one vector of 36 signed bytes with four.
///
/// Condition: "A && B && C && D && E". `dotProducts` must not be null either, but that is not checked.
/// \param dotProducts those of A with B, C, D and E
ODX_API void odxDotProduct36x4s8(const int8_t* A, const int8_t* B, const int8_t* C, const int8_t* D,
                                 const int8_t* E, int32_t* dotProducts);
/// Dot products of one vector of 36 bytes with four.
///
/// Condition: "A && B && C && D && E && dotProducts".
ODX_API void odxDotProduct36x4u8(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D,
                                 const uint8_t* E, uint32_t* dotProducts);
/// Dot products of one vector of 64 signed bytes with four; condition as above.
ODX_API void odxDotProduct64x4s8(const int8_t* A, const int8_t* B, const int8_t* C, const int8_t* D,
                                 const int8_t* E, int32_t* dotProducts);
/// Dot products of one vector of 64 bytes with four; condition as above.
ODX_API void odxDotProduct64x4u8(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D,
                                 const uint8_t* E, uint32_t* dotProducts);
/// Dot products of one vector of 128 signed bytes with four; condition as above.
ODX_API void odxDotProduct128x4s8(const int8_t* A, const int8_t* B, const int8_t* C, const int8_t* D,
                                  const int8_t* E, int32_t* dotProducts);
/// Dot products of one vector of 128 bytes with four; condition as above.
ODX_API void odxDotProduct128x4u8(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D,
                                  const uint8_t* E, uint32_t* dotProducts);

/// Cosines of the angles between a vector of 36 signed bytes and four others.
///
/// dotProducts[i] = invLengthsB[i] * ((float)dot(A, vBi) * invLengthA), rounded in this order.
/// Condition: "A && vB0 && vB1 && vB2 && vB3 && invLengthsB && dotProducts".
/// \param invLengthsB four inverse lengths
/// \param dotProducts four results
ODX_API void odxDotProductNorm36x4s8(const int8_t* A, float invLengthA, const int8_t* vB0, const int8_t* vB1,
                                     const int8_t* vB2, const int8_t* vB3, const float* invLengthsB,
                                     float* dotProducts);
/// Cosines of the angles between a vector of 36 bytes and four others; as for signed bytes.
ODX_API void odxDotProductNorm36x4u8(const uint8_t* A, float invLengthA, const uint8_t* vB0, const uint8_t* vB1,
                                     const uint8_t* vB2, const uint8_t* vB3, const float* invLengthsB,
                                     float* dotProducts);
/// Cosines of the angles between a vector of 64 signed bytes and four others; as for 36.
ODX_API void odxDotProductNorm64x4s8(const int8_t* A, float invLengthA, const int8_t* vB0, const int8_t* vB1,
                                     const int8_t* vB2, const int8_t* vB3, const float* invLengthsB,
                                     float* dotProducts);
/// Cosines of the angles between a vector of 64 bytes and four others; as for 36.
ODX_API void odxDotProductNorm64x4u8(const uint8_t* A, float invLengthA, const uint8_t* vB0, const uint8_t* vB1,
                                     const uint8_t* vB2, const uint8_t* vB3, const float* invLengthsB,
                                     float* dotProducts);
/// Cosines of the angles between a vector of 128 signed bytes and four others; as for 36.
ODX_API void odxDotProductNorm128x4s8(const int8_t* A, float invLengthA, const int8_t* vB0, const int8_t* vB1,
                                      const int8_t* vB2, const int8_t* vB3, const float* invLengthsB,
                                      float* dotProducts);
/// Cosines of the angles between a vector of 128 bytes and four others; as for 36.
ODX_API void odxDotProductNorm128x4u8(const uint8_t* A, float invLengthA, const uint8_t* vB0, const uint8_t* vB1,
                                      const uint8_t* vB2, const uint8_t* vB3, const float* invLengthsB,
                                      float* dotProducts);

/// Dot product of two vectors of signed bytes.
/// \param length in elements; 0 gives 0
ODX_API int32_t odxDotProducts8(const int8_t* a, const int8_t* b, unsigned int length);
/// Dot product of two vectors of bytes.
ODX_API uint32_t odxDotProductu8(const uint8_t* a, const uint8_t* b, unsigned int length);
/// Dot product of two vectors of floats: products are added from the first to the last, beginning with 0.0.
ODX_API float odxDotProductf32(const float* a, const float* b, unsigned int length);

/// Sum of the products of two blocks of bytes.
///
/// Strides of 0 mean packed rows; others are not checked. Without rows or columns the sum is 0.
ODX_API uint32_t odxBlockDotProductu8(const uint8_t* a, unsigned int width, unsigned int height,
                                      unsigned int aStride, const uint8_t* b, unsigned int bStride);
/// Sum of the products of two blocks of floats, row after row in one running sum that begins with 0.0.
///
/// Strides, in bytes, are rounded down to multiples of 4; 0 means packed rows.
ODX_API float odxBlockDotProductf32(const float* a, unsigned int width, unsigned int height, unsigned int aStride,
                                    const float* b, unsigned int bStride);

// ---- counts of bits ----

/// Counts the set bits of `length` bytes.
/// \return the number of bits modulo 2^32; 0 for a null `src`
ODX_API uint32_t odxBitCountu8(const uint8_t* src, unsigned int length);
/// Counts the set bits of `length` 32-bit words.
/// \return the number of bits modulo 2^32; 0 for a null `src`
ODX_API uint32_t odxBitCountu32(const uint32_t* src, unsigned int length);
/// Counts the set bits of 32 bytes.
ODX_API uint32_t odxBitCount32x1u8(const uint8_t* src);
/// Counts the set bits of 64 bytes.
ODX_API uint32_t odxBitCount64x1u8(const uint8_t* src);
/// Counts the set bits of each of four vectors of 32 bytes.
///
/// Condition: "A && B && C && D && count".
/// \param count of A, B, C and D
ODX_API void odxBitCount32x4u8(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D,
                               uint32_t* count);
/// Counts the set bits of each of four vectors of 64 bytes; condition as above.
ODX_API void odxBitCount64x4u8(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D,
                               uint32_t* count);

/// Hamming distance of two vectors of bytes: the number of bits that differ.
ODX_API uint32_t odxHammingDistanceu8(const uint8_t* a, const uint8_t* b, unsigned int numBytes);
/// Hamming distance of two vectors of 32 bytes.
ODX_API uint32_t odxHammingDistance32x1u8(const uint8_t* a, const uint8_t* b);
/// Hamming distance of two vectors of 32 bytes at addresses that are multiples of 4.
ODX_API uint32_t odxHammingDistance32x1u8a4(const uint8_t* a, const uint8_t* b);
/// Hamming distance of two vectors of 64 bytes.
ODX_API uint32_t odxHammingDistance64x1u8(const uint8_t* a, const uint8_t* b);
/// Hamming distance of two vectors of 64 bytes at addresses that are multiples of 4.
ODX_API uint32_t odxHammingDistance64x1u8a4(const uint8_t* a, const uint8_t* b);
/// Hamming distances of one vector of 32 bytes to four, all at addresses that are multiples of 4.
///
/// Condition: "A && B && C && D && E && distances".
/// \param distances of A to B, C, D and E
ODX_API void odxHammingDistance32x4u8a4(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D,
                                        const uint8_t* E, uint32_t* distances);
/// Hamming distances of one vector of 64 bytes to four; condition as above.
ODX_API void odxHammingDistance64x4u8(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D,
                                      const uint8_t* E, uint32_t* distances);
/// Hamming distances of one vector of 64 bytes to four, all at addresses that are multiples of 4; condition as
/// above.
ODX_API void odxHammingDistance64x4u8a4(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D,
                                        const uint8_t* E, uint32_t* distances);

// ---- normalised distances ----

/// Normalised distances of one 36s8 descriptor to four.
///
/// Condition: "A && B && C && D && E && invLenB && distances".
/// \param invLenB   inverse lengths of B, C, D and E
/// \param distances of A to B, C, D and E
ODX_API void odxSumOfSquaredDiffs36x4s8(const int8_t* A, float invLenA, const int8_t* B, const int8_t* C,
                                        const int8_t* D, const int8_t* E, const float* invLenB, float* distances);
/// Normalised distances of one 36s8 descriptor to any number of them.
///
/// Condition: "A && B && invLenB && distances".
/// \param B         N addresses of descriptors
/// \param invLenB   N inverse lengths
/// \param distances N results
ODX_API void odxSumOfSquaredDiffs36xNs8(const int8_t* A, float invLenA, const int8_t* const* B,
                                        const float* invLenB, unsigned int N, float* distances);
/// Normalised distances of a vector of signed bytes to any number of them.
///
/// With length 0 every distance is 2. Condition: "a && bList && invLenB && distances".
/// \param length    of each vector, in elements
/// \param bList     numB addresses of vectors
/// \param invLenB   numB inverse lengths
/// \param distances numB results
ODX_API void odxSumOfSquaredDiffss8(const int8_t* a, float invLenA, unsigned int length,
                                    const int8_t* const* bList, const float* invLenB, unsigned int numB,
                                    float* distances);
/// Normalised distances of a vector of bytes to any number of them; as for signed bytes.
ODX_API void odxSumOfSquaredDiffsu8(const uint8_t* a, float invLenA, unsigned int length,
                                    const uint8_t* const* bList, const float* invLenB, unsigned int numB,
                                    float* distances);
/// Normalised distances of a vector of floats to any number of them; the dot product is that of
/// `odxDotProductf32`, else as for signed bytes.
ODX_API void odxSumOfSquaredDiffsf32(const float* a, float invLenA, unsigned int length, const float* const* bList,
                                     const float* invLenB, unsigned int numB, float* distances);

// ---- two patches ----

/// Sum of the absolute differences of two patches of 8x8 pixels: at most 16320.
///
/// Strides in bytes, 0 for 8; the patches may overlap or be the same.
/// Condition: "a && b && (aStride >= 8) && (bStride >= 8)".
ODX_API uint32_t odxSumOfAbsoluteDiff8x8u8(const uint8_t* a, unsigned int aStride, const uint8_t* b,
                                           unsigned int bStride);
/// Sum of the absolute differences of two patches of 16x16 pixels, at most 65280; as for 8x8, with 16 for 8.
ODX_API uint32_t odxSumOfAbsoluteDiff16x16u8(const uint8_t* a, unsigned int aStride, const uint8_t* b,
                                             unsigned int bStride);
/// Dot product of two patches of 8x8 pixels; arguments as for the sum of their differences.
ODX_API uint32_t odxDotProduct8x8u8(const uint8_t* a, unsigned int aStride, const uint8_t* b,
                                    unsigned int bStride);
/// Dot product of two patches of 11 columns and 12 rows; arguments as for 8x8, with 11 for 8.
ODX_API uint32_t odxDotProduct11x12u8(const uint8_t* a, unsigned int aStride, const uint8_t* b,
                                      unsigned int bStride);

// ---- one patch at every place of an image ----

/// Sums of absolute differences of a patch of 8x8 pixels at every place of an image, all rows packed.
///
/// dst(x, y) is the sum for the patch and the pixels of `src` from (x, y) to (x + 7, y + 7); `dst` is srcWidth - 7
/// wide and srcHeight - 7 high. `odxMinMaxLocu16` finds the best place.
/// Condition: "patch && src && dst && (srcWidth >= 8) && (srcHeight >= 8)".
ODX_API void odxSumOfAbsoluteDiffs8x8u8(const uint8_t* patch, const uint8_t* src, unsigned int srcWidth,
                                        unsigned int srcHeight, uint16_t* dst);
/// Sums of absolute differences of a patch of 8x8 pixels at every place of an image, with strides.
///
/// As the first version; strides in bytes, 0 for packed rows; dstStride is even. The patch may lie inside `src`.
/// Condition: "patch && src && dst && (srcWidth >= 8) && (srcHeight >= 8) && (patchStride >= 8) && (srcStride >=
/// srcWidth) && (dstStride >= (srcWidth - 7)*sizeof(uint16_t))", on one line.
ODX_API void odxSumOfAbsoluteDiffs8x8u8_v2(const uint8_t* patch, unsigned int patchStride, const uint8_t* src,
                                           unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                           uint16_t* dst, unsigned int dstStride);
/// Sums of absolute differences of a patch of 16x16 pixels at every place of an image.
///
/// As for 8x8 with strides, with 16 for 8 and 15 for 7, also in the condition.
ODX_API void odxSumOfAbsoluteDiffs16x16u8(const uint8_t* patch, unsigned int patchStride, const uint8_t* src,
                                          unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                          uint16_t* dst, unsigned int dstStride);

// ---- descriptors ----

/// Describes a patch of 17x17 pixels by its gradients: 36 signed bytes and their inverse length.
///
/// At the 15x15 inner pixels, dx = p(x+1, y) - p(x-1, y) and dy = p(x, y+1) - p(x, y-1). They form 3x3 cells of
/// 5x5 pixels; cell c, in raster order, gives the sums s[4c] of dx, s[4c+1] of dy, s[4c+2] of abs(dx) and s[4c+3]
/// of abs(dy). With m the greatest of the 36 magnitudes, dst[i] is (127 * abs(s[i]) + m/2) / m, quotients rounded
/// down, with the sign of s[i]; all 0 when m is 0. So brightness and contrast do not matter. The layout is that of
/// SURF-36 (Bay, Tuytelaars and Van Gool, 2006).
/// Condition: "src && dst && (srcStride >= 17)"; a stride of 0 means 17.
/// \param invLength may be null; (float)(1 / sqrt(L)) in double precision, L the sum of the squares of the 36
///                  bytes; 0 when L is 0. At most 1/127.
ODX_API void odxDescriptor17x17u8To36s8(const uint8_t* src, unsigned int srcStride, int8_t* dst, float* invLength);

/// Gives 36s8 descriptors a norm: dst[36 * i + j] = (invLen[i] * reqNorm) * src[j of vector i].
///
/// Stops before a vector when *stopBuild, a word that another thread may write, is not 0; what was written stays.
/// \param srcStride in bytes; 0 means 36
/// \param dst       36 floats a vector, packed
/// \param stopBuild may be null
/// \return 0; -1 when src, invLen or dst is null, in silence
ODX_API int odxVecNormalize36s8f32(const int8_t* src, unsigned int srcStride, const float* invLen,
                                   unsigned int numVecs, float reqNorm, float* dst, const uint32_t* stopBuild);

/// Mean and variance of each of the 36 elements over a sample of vectors.
///
/// In single precision: mean = sum / n, the sum running from 0.0 in the order of the sample, n =
/// (float)numIndices; variance = sum of (v - mean) * (v - mean) in the same order, / n. A subnormal value may
/// count as 0. Condition: "vectors && numIndices && mean && variance && (vectorsStride >= 36*sizeof(float)) &&
/// inRange", where inRange means that every vector of the sample is one of the numVectors.
/// \param vectorsStride in bytes; 0 means packed
/// \param indices       of the sample, repetitions count; null means vectors 0 to numIndices - 1
ODX_API odxStatus odxDescriptorSampledMeanAndVar36f32(const float* vectors, unsigned int numVectors,
                                                      unsigned int vectorsStride, const uint32_t* indices,
                                                      unsigned int numIndices, float* mean, float* variance);

/// Sorts 8 floats into ascending order.
///
/// The first and the last four values of `inScores` are left sorted, too, each ascending. The place of NaNs is
/// open. Condition: "inScores && outScores"; they may be the same, which then has all eight sorted.
ODX_API void odxSort8Scoresf32(float* inScores, float* outScores);

// ---- clusters ----
//
// One step of k-means (Lloyd, 1982): every vector goes to its nearest center, then the centers move.
//
//     labels[i]     the number of the center nearest to vector i, the lowest of equal ones
//     distances[i]  the squared distance to it
//     counts[k]     vectors with label k
//     sums          numCenters x length, packed: the sums of the vectors with each label, added in their order
//     newCenters    the new centers, at the stride of `centers`, which it may be. A center without vectors
//     (normed:
//                   with a sum of length 0) stays as it is.
//
// `distances`, `counts`, `sums` and `newCenters` may be null and are then not computed, but newCenters needs
// counts and sums. For several batches or threads, make one call for each without newCenters and add up counts and
// sums. Strides in bytes; 0 means packed rows.
//
// Of floats, the squared distance is D of (v - c) * (v - c), and the greatest dot product, D of v * c, is the
// nearest in the normed operations. D, in single precision: 16 partial sums from 0.0, element j added to partial
// sum j mod 16 in ascending order; then t[j] += t[j+8] for j < 8, t[j] += t[j+4] for j < 4, t[j] += t[j+2] for j <
// 2, and D = t[0] + t[1]. A subnormal value may count as 0. Vectors and centers are finite; else the labels are
// below numCenters and nothing more can be said.

/// One step of k-means on vectors of bytes, exact.
///
/// A new center is (sum + count/2) / count, quotients rounded down.
/// Condition: "vectors && centers && labels && length && numVectors && numCenters && (length <= 65536) &&
/// (numVectors <= 16777216) && (vectorsStride >= length) && (centersStride >= length) && ((counts && sums) ||
/// !newCenters)", on one line.
ODX_API odxStatus odxClusterEuclideanu8(const uint8_t* vectors, unsigned int length, unsigned int numVectors,
                                        unsigned int vectorsStride, const uint8_t* centers,
                                        unsigned int numCenters, unsigned int centersStride, uint32_t* labels,
                                        uint32_t* distances, uint32_t* counts, uint32_t* sums,
                                        uint8_t* newCenters);
/// One step of k-means on vectors of floats.
///
/// A new center is (float)(sum / (double)count). Condition: "vectors && centers && labels && length && numVectors
/// && numCenters && (vectorsStride >= length*sizeof(float)) && (centersStride >= length*sizeof(float)) && ((counts
/// && sums) || !newCenters)", on one line.
ODX_API odxStatus odxClusterEuclideanf32(const float* vectors, unsigned int length, unsigned int numVectors,
                                         unsigned int vectorsStride, const float* centers, unsigned int numCenters,
                                         unsigned int centersStride, uint32_t* labels, float* distances,
                                         uint32_t* counts, double* sums, float* newCenters);
/// One step of spherical k-means (Dhillon and Modha, 2001): vectors and centers of norm 1, which is not checked.
///
/// The squared distance is fabsf(2 - 2 * dot). A new center is (float)(sum / r), r the square root of the sum of
/// the squares of the cluster's sums, in double precision from element 0 upwards. Condition as before.
ODX_API odxStatus odxClusterEuclideanNormedf32(const float* vectors, unsigned int length, unsigned int numVectors,
                                               unsigned int vectorsStride, const float* centers,
                                               unsigned int numCenters, unsigned int centersStride,
                                               uint32_t* labels, float* distances, uint32_t* counts, double* sums,
                                               float* newCenters);
/// The same with vectors of 36 elements; the condition is without " && length", and has 36*sizeof(float).
ODX_API odxStatus odxClusterEuclideanNormed36f32(const float* vectors, unsigned int numVectors,
                                                 unsigned int vectorsStride, const float* centers,
                                                 unsigned int numCenters, unsigned int centersStride,
                                                 uint32_t* labels, float* distances, uint32_t* counts,
                                                 double* sums, float* newCenters);

#endif
