/// \file convolution.h
/// Correlation and convolution with large separable kernels and with kernels of any 16-bit weights.
///
/// Conventions of this page
/// - Images have one channel, row-major, of bytes or signed 16-bit numbers. Widths and heights are in pixels, all
///   strides in bytes; where a function takes strides, 0 means the packed row. Source and destination have the
///   same size where nothing else is said, and must not overlap.
/// - M is the width of a kernel, N its height; K stands for both. The window of the pixel at x, y reaches M/2
///   columns and N/2 rows to each side. Kernels are arrays of signed 16-bit weights; both of a separable kernel
///   may be the same array: kernelX has M weights, for columns, kernelY has N, for rows, and weight (i, j) of the
///   whole is kernelY[i] * kernelX[j]. Other kernels have N * M weights, row by row.
/// - Correlation takes a kernel as it is stored: weight (i, j) multiplies the pixel at x - M/2 + j, y - N/2 + i.
///   Convolution turns it by half a turn: weight (i, j) multiplies the pixel at x + M/2 - j, y + N/2 - i.
/// - Border types: with ONDRIX_BORDER_UNDEFINED pixels whose window reaches outside the image are not written;
///   with ONDRIX_BORDER_CONSTANT pixels outside are the border value (its low 8 bits for bytes; its low 16 bits as
///   a signed number for 16-bit images); with ONDRIX_BORDER_REPLICATE the nearest pixel of the edge. Functions
///   without a border type write as with ONDRIX_BORDER_UNDEFINED. An image that is smaller than the window has
///   only border.
/// - Sums are signed numbers of 32 bits: of larger ones the low 32 bits count, before and after the rounding term
///   is added. Shifts to the right round down.
/// - Refused arguments are logged and nothing is written; functions with a status return ONDRIX_BAD_PARAMETER.
///   What is refused: null pointers, images without pixels, strides that are less than the packed row, unknown
///   border types, and what each function says.
#ifndef ONDRIX_CONVOLUTION_H
#define ONDRIX_CONVOLUTION_H

#include "ondrix/types.h"

/// Which weights of a kernel are given. M stands for the length.
ODX_ENUM(uint32_t, odxKernelSymmetry){
    ONDRIX_KERNEL_GENERAL = 0,   ///< all
    ONDRIX_KERNEL_SYMMETRIC = 1, ///< the first M/2 + 1, and only these are read: weight M - 1 - i equals weight i
    ONDRIX_KERNEL_ANTISYMMETRIC = 2 ///< the first M/2, and only these are read: weight M - 1 - i is minus weight
                                    ///< i, which must not be -32768, and the middle one is 0
};

/// The outputs of a filter.
ODX_ENUM(uint32_t, odxFilterRegion){
    ONDRIX_FILTER_SAME = 0, ///< one for each pixel of the source; the border as its type says
    ONDRIX_FILTER_VALID = 1 ///< one for each place of the window inside the source
};

// ---- separable kernels in units of 1/32768, rounded to 16 bits between the passes ----

/// Separable 9x9 correlation of 16-bit images with weights in units of 1/32768.
/// Two passes, columns first. Of each sum S, of a column's products and then of a row's, remains (S + 16384) >>
/// 15, clamped to -32768..32767. Sums do not wrap if the magnitudes of each kernel's weights are at most 65535 in
/// all. Only interior pixels are written. Packed rows. An image narrower or lower than the kernel is refused
/// before all else, by an error line of its own ("Error at ...").
ODX_API void odxFilterCorrSep9x9s16(const int16_t* kernelX, const int16_t* kernelY, const int16_t* src,
                                    unsigned int srcWidth, unsigned int srcHeight, int16_t* dst);

/// As odxFilterCorrSep9x9s16, with strides.
ODX_API void odxFilterCorrSep9x9s16_v2(const int16_t* kernelX, const int16_t* kernelY, const int16_t* src,
                                       unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                       int16_t* dst, unsigned int dstStride);

/// As odxFilterCorrSep9x9s16, with a kernel of 11x11.
ODX_API void odxFilterCorrSep11x11s16(const int16_t* kernelX, const int16_t* kernelY, const int16_t* src,
                                      unsigned int srcWidth, unsigned int srcHeight, int16_t* dst);

/// As odxFilterCorrSep11x11s16, with strides.
ODX_API void odxFilterCorrSep11x11s16_v2(const int16_t* kernelX, const int16_t* kernelY, const int16_t* src,
                                         unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                         int16_t* dst, unsigned int dstStride);

/// As odxFilterCorrSep9x9s16, with a kernel of 13x13.
ODX_API void odxFilterCorrSep13x13s16(const int16_t* kernelX, const int16_t* kernelY, const int16_t* src,
                                      unsigned int srcWidth, unsigned int srcHeight, int16_t* dst);

/// As odxFilterCorrSep13x13s16, with strides.
ODX_API void odxFilterCorrSep13x13s16_v2(const int16_t* kernelX, const int16_t* kernelY, const int16_t* src,
                                         unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                         int16_t* dst, unsigned int dstStride);

/// As odxFilterCorrSep9x9s16, with a kernel of 15x15.
ODX_API void odxFilterCorrSep15x15s16(const int16_t* kernelX, const int16_t* kernelY, const int16_t* src,
                                      unsigned int srcWidth, unsigned int srcHeight, int16_t* dst);

/// As odxFilterCorrSep15x15s16, with strides.
ODX_API void odxFilterCorrSep15x15s16_v2(const int16_t* kernelX, const int16_t* kernelY, const int16_t* src,
                                         unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                         int16_t* dst, unsigned int dstStride);

/// As odxFilterCorrSep9x9s16, with a kernel of 17x17.
ODX_API void odxFilterCorrSep17x17s16(const int16_t* kernelX, const int16_t* kernelY, const int16_t* src,
                                      unsigned int srcWidth, unsigned int srcHeight, int16_t* dst);

/// As odxFilterCorrSep17x17s16, with strides.
ODX_API void odxFilterCorrSep17x17s16_v2(const int16_t* kernelX, const int16_t* kernelY, const int16_t* src,
                                         unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                         int16_t* dst, unsigned int dstStride);

/// As odxFilterCorrSep9x9s16, with strides and a kernel of any odd size N from 3 to 31.
/// Other sizes are refused as images smaller than the kernel are.
ODX_API void odxFilterCorrSepNxNs16(const int16_t* kernelX, const int16_t* kernelY, unsigned int N,
                                    const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, int16_t* dst, unsigned int dstStride);

// ---- exact sums ----

/// Convolution of bytes with any kernel of odd width and height up to 15, to bytes.
/// An output is (S + half) >> shift, clamped to 0..255: S is the sum of all products, half is 1 << (shift - 1), or
/// 0 for a shift of 0. Shifts are at most 15. Sums never wrap.
ODX_API odxStatus odxFilterConvolveMxNu8(const int16_t* kernel, unsigned int M, unsigned int N, unsigned int shift,
                                         const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                         odxBorderType borderType, uint32_t borderValue);

/// As odxFilterConvolveMxNu8, to signed 16-bit numbers, clamped to -32768..32767.
ODX_API odxStatus odxFilterConvolveMxNu8s16(const int16_t* kernel, unsigned int M, unsigned int N,
                                            unsigned int shift, const uint8_t* src, unsigned int srcWidth,
                                            unsigned int srcHeight, unsigned int srcStride, int16_t* dst,
                                            unsigned int dstStride, odxBorderType borderType,
                                            uint32_t borderValue);

/// Separable correlation of bytes, without rounding between the passes.
/// M and N are odd, from 1 to 31, shifts at most 31. S, half and the output are those of odxFilterConvolveMxNu8.
/// Sums do not wrap if the sum of kernelX's magnitudes times that of kernelY's is at most 2^22, and the shift 22.
ODX_API odxStatus odxFilterCorrSepMxNu8(const int16_t* kernelX, unsigned int M, const int16_t* kernelY,
                                        unsigned int N, unsigned int shift, const uint8_t* src,
                                        unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                        uint8_t* dst, unsigned int dstStride, odxBorderType borderType,
                                        uint32_t borderValue);

/// Separable convolution of signed 16-bit numbers, without rounding between the passes.
/// M and N are odd, from 1 to 31, shifts at most 31. S and half are those of odxFilterConvolveMxNu8, outputs are
/// clamped to -32768..32767. Sums do not wrap if the sum of kernelX's magnitudes times that of kernelY's is at
/// most 32768, and the shift 30. With ONDRIX_FILTER_VALID the destination has srcWidth - M + 1 columns, which also
/// is its packed row, and srcHeight - N + 1 rows; images smaller than the window are refused then, and border type
/// and value do not count (but an unknown type is refused).
ODX_API odxStatus odxFilterConvSepMxNs16(const int16_t* kernelX, unsigned int M, odxKernelSymmetry symmetryX,
                                         const int16_t* kernelY, unsigned int N, odxKernelSymmetry symmetryY,
                                         unsigned int shift, const int16_t* src, unsigned int srcWidth,
                                         unsigned int srcHeight, unsigned int srcStride, int16_t* dst,
                                         unsigned int dstStride, odxFilterRegion region, odxBorderType borderType,
                                         uint32_t borderValue);

/// Convolution of signed 16-bit numbers with a kernel of any size, inside the image.
/// M and N are at least 1, even or odd, and at most the size of the image, shifts at most 31. The destination has
/// srcWidth - M + 1 columns, which also is its packed row, and srcHeight - N + 1 rows; its pixel at x, y is made
/// of the sum of weight (i, j) times the pixel at x + M - 1 - j, y + N - 1 - i, as odxFilterConvolveMxNu8 makes
/// it, and clamped to -32768..32767. Sums do not wrap if the magnitudes of the weights are at most 32768 in all,
/// and the shift 30.
ODX_API void odxConvValids16(const int16_t* kernel, unsigned int M, unsigned int N, unsigned int shift,
                             const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, int16_t* dst, unsigned int dstStride);

#endif
