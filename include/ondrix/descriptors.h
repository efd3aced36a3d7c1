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

#endif
