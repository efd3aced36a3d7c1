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

// ---- k-d tree ----

/// A k-d tree over 36s8 descriptors.
typedef struct odxKDTree36s8f32 odxKDTree36s8f32;

/// Builds a k-d tree over descriptors.
///
/// The tree is a binary one of single vectors. Its dimensions are compared as invLength * value, in single
/// precision. The order of the vectors is 1, 2, ..., n - 1, 0 at first. A range of it [lo, hi] is split at the
/// mean, over its entries lo to min(lo + 100, hi), of the dimension whose variance over them is the greatest, the
/// lowest of equal ones (sums in order from 0.0, divided by the number). While a <= b, with a from lo up and b
/// from hi down, an entry below the mean advances a, else entries a and b are exchanged and b goes down. The right
/// range begins at the first entry that is not below, or at (lo + hi + 1) / 2 where one side would be empty. The
/// vectors are not copied and must outlive the tree; the inverse lengths are. Without vectors the tree is empty.
/// When memory is short: 1, or -1 with the log line "NULL storage pointer", or 0 and an empty tree, or (for the
/// few bytes that hold the pool) the line "ondrixKDTree36s8f32C@<line>: KDTrees36s8f32_tree->pool Assertion
/// failed" and the end of the process with status 1.
/// \param vectors    numVectors x 36 bytes
/// \param invLengths numVectors
/// \param kdtrees    receives the tree where the result is 0, and is untouched otherwise
/// \return 0; -1 in silence for null pointers or a negative number; else see above
ODX_API int odxKDTreeCreate36s8f32(const int8_t* vectors, const float* invLengths, int numVectors,
                                   odxKDTree36s8f32** kdtrees);

/// Searches a k-d tree for the nearest neighbours of a descriptor by their normalised distances, best bin first.
///
/// A descent begins at a node with a bound, the root with 0. At a split, diff = query[dimension] * queryInvLen -
/// mean; it goes left where diff < 0, and the other side is kept with the bound + diff * diff, unless there are
/// maxNNs results and the bound is not below the worst of them, or n + 1 sides are kept already. It ends where
/// there are maxNNs results and the worst is below the bound. At a leaf the distance is computed and the vector
/// becomes a result if there are fewer than maxNNs or if it is better than the worst: nearer, or as near with a
/// lower index. Then the side with the least bound is next, until none is left, or until there are maxNNs results
/// and maxChecks leaves were looked at; so maxChecks 0 still finds maxNNs. Of sides with equal
/// bounds the one is next that comes first in the tree in depth-first order, left before right.
///
/// The search works in memory of the tree: a tree serves one query at a time. Several trees are independent.
/// \param kdtree      from `odxKDTreeCreate36s8f32`
/// \param queryInvLen inverse length of the query, at least 0
/// \param maxNNs      room for results; may exceed the number of vectors
/// \param maxDist     at least 0, may be infinite; only nearer results are written
/// \param maxChecks   leaves to look at
/// \param unused      anything
/// \param numNNsFound receives the number of results
/// \param NNInds      their vectors, the nearest first, equal ones by index; the rest stays untouched
/// \param NNDists     their distances
/// \return 0; -1 in silence where an argument is null, NaN or negative, and when there is no memory for more than 64
///         results
ODX_API int odxKDTreeQuery36s8f32(odxKDTree36s8f32* kdtree, const int8_t* query, float queryInvLen, int maxNNs,
                                  float maxDist, int maxChecks, int unused, uint32_t* numNNsFound, int32_t* NNInds,
                                  float* NNDists);

/// Releases a k-d tree.
/// \return 0; -1 for null, in silence
ODX_API int odxKDTreeDestroy36s8f32(odxKDTree36s8f32* kdtree);

// ---- linear search ----
//
// The database: dbLUT has two words for each of numDBLUT targets, its first descriptor and the number of its
// descriptors. The descriptors (36 signed bytes each), their inverse lengths (with 38 fraction bits) and their
// target ids are arrays that run in step.

/// Sorts the descriptors of each target of a database by their target ids, in place.
///
/// Descriptors, inverse lengths, ids and descDBOldIdx move together. Equal ids have the order that a heap sort
/// leaves: with places counted from 0, sink(i, end) exchanges i with the greater of its children 2i + 1 and 2i + 2
/// below end, the first of equal ones, and goes on there, while it is below that child. From i = count / 2 - 1
/// down to 0, sink(i, count); then for end = count - 1 down to 1, places 0 and end are exchanged, and
/// sink(0, end).
/// \return 0; -1 in silence for null pointers, and at the first target whose first + count exceeds numDBDesc (it
///         and the targets behind it are not sorted)
ODX_API int odxLinearSearchPrepare8x36s8(uint32_t* dbLUT, unsigned int numDBLUT, int8_t* descDB,
                                         uint32_t* descDBInvLenQ38, uint16_t* descDBTargetId,
                                         uint32_t* descDBOldIdx, unsigned int numDBDesc);

/// Finds, for each source descriptor, the 8 nearest descriptors of its target in a database.
///
/// Source descriptor i looks at the range of target srcDescIdx[i], as far as it is below numDescDB; at none where
/// the target is not below numDBLUT. A database descriptor is left out when its id is one of targetsToIgnore, when
/// the dot product is below 1, and when the distance max(0, 2^44 - ((dbInvLen * srcInvLen) >> 32) * dot) >> 12, in
/// 64 bits, exceeds maxDistanceQ31. The 8 nearest are written in ascending order, the earlier of equal ones first,
/// one source descriptor after the other. The search ends when maxNumCorrespondences are written, at the earliest
/// after one: also a capacity of 0 needs room for one.
///
/// Condition: "dbLUT && descDB && descDBInvLenQ38 && descDBTargetId && srcDesc && srcDescInvLenQ38 && srcDescIdx
/// && (numTargetsToIgnore==0 || targetsToIgnore) && correspondenceDBIdx && correspondencSrcDescIdx &&
/// correspondenceDistanceQ31 && numCorrespondences", on one line.
/// \param correspondenceDBIdx       index in the database
/// \param correspondencSrcDescIdx   i, the place among the source descriptors
/// \param correspondenceDistanceQ31 distance
/// \param numCorrespondences        number written; entries beyond it stay untouched
ODX_API void odxLinearSearch8x36s8(const uint32_t* dbLUT, unsigned int numDBLUT, const int8_t* descDB,
                                   const uint32_t* descDBInvLenQ38, const uint16_t* descDBTargetId,
                                   unsigned int numDescDB, const int8_t* srcDesc, const uint32_t* srcDescInvLenQ38,
                                   const uint32_t* srcDescIdx, unsigned int numSrcDesc,
                                   const uint16_t* targetsToIgnore, unsigned int numTargetsToIgnore,
                                   uint32_t maxDistanceQ31, uint32_t* correspondenceDBIdx,
                                   uint32_t* correspondencSrcDescIdx, uint32_t* correspondenceDistanceQ31,
                                   unsigned int maxNumCorrespondences, uint32_t* numCorrespondences);

// ---- k-means tree ----

/// Finds the leaf of a vocabulary tree for a 36s8 descriptor.
///
/// Every node has room for 10 children. From node 0 on, the child with the greatest score is next, the first of
/// equal ones: dot(key, center) * nodeChildrenInvLenQ32, as a signed 64-bit number. The search ends at a negative
/// index.
/// \param nodeChildrenCenter    10 x 36 signed bytes a node
/// \param nodeChildrenInvLenQ32 10 a node, unsigned with 32 fraction bits
/// \param nodeChildrenIndex     10 a node: the child's node, or a negative number, a leaf
/// \param nodeNumChildren       one a node; more than 10 count as 10
/// \return the leaf with its sign bit cleared; 0 in silence for null pointers, for a node that is not below numNodes
///         or has no children, and after numNodes steps without a leaf
ODX_API uint32_t odxKMeansTreeSearch36x10s8(const int8_t* nodeChildrenCenter,
                                            const uint32_t* nodeChildrenInvLenQ32,
                                            const int32_t* nodeChildrenIndex, const uint8_t* nodeNumChildren,
                                            unsigned int numNodes, const int8_t* key);

#endif
