// Reference implementations: warps, remaps, affine patches and matrices.
#ifndef ODX_CPU_ONDRIX_WARP_C_H
#define ODX_CPU_ONDRIX_WARP_C_H

#include "frame/helpers.h"
#include "ondrix/warps.h"

namespace odx::warp
{

struct Affine;
struct Source;
struct Target;

// The bicubic transform of pixels of three bytes; what is outside is left.
using ClippedBicubic = void(const Affine& path, const Source& source, const Target& target, uint32_t* dstBorder);

// A patch about a position, by an affine map of four coefficients; whether it lies inside the image.
using CutPatch = bool(const Source& source, const float* position, const float* affine, const Target& patch);

} // namespace odx::warp

extern "C" {

odx::warp::ClippedBicubic clippedBicubicC;
ODX_HELPER_POINTER(clippedBicubic);
odx::warp::CutPatch cutPatchC;
ODX_HELPER_POINTER(cutPatch);

decltype(odxWarpPerspectiveu8) odxWarpPerspectiveu8C;
decltype(odxWarpPerspectiveu8_v2) odxWarpPerspectiveu8_v2C;
decltype(odxWarpPerspectiveu8_v3) odxWarpPerspectiveu8_v3C;
decltype(odxWarpPerspectiveu8_v4) odxWarpPerspectiveu8_v4C;
decltype(odx3ChannelWarpPerspectiveu8) odx3ChannelWarpPerspectiveu8C;
decltype(odx3ChannelWarpPerspectiveu8_v2) odx3ChannelWarpPerspectiveu8_v2C;
decltype(odx2PlaneWarpPerspectiveu8) odx2PlaneWarpPerspectiveu8C;
decltype(odxTransformAffineClippedu8_v2) odxTransformAffineClippedu8C;
decltype(odxTransformAffineClippedu8_v3) odxTransformAffineClippedu8_v3C;
decltype(odx3ChannelTransformAffineClippedBCu8) odx3ChannelTransformAffineClippedBCu8C;
decltype(odxTransformAffineu8) odxTransformAffineu8C;
decltype(odxTransformAffine8x8u8) odxTransformAffine8x8u8C;
decltype(odxRemapRGBA8888NNu8) odxRemapRGBA8888NNu8C;
decltype(odxRemapRGBA8888BLu8) odxRemapRGBA8888BLu8C;
decltype(odxRemapu8) odxRemapu8C;
decltype(odxRemapu8_v2) odxRemapu8_v2C;
decltype(odxCopyRotated17x17u8) odxCopyRotated17x17u8C;
decltype(odxInvertAffineTransformf32) odxInvertAffineTransformf32C;
decltype(odxGetPerspectiveTransformf32) odxGetPerspectiveTransformf32C;
}

#endif
