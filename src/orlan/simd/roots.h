// Exact roots and quotients of whole numbers: floats find them but for the last digits, and what is left over,
// which integers hold modulo 2^32, tells these.
//
//   floorRoot(near, low)         the square root, rounded down and at most 2^23, of whole numbers: `near`, of f32v, is
//                                as near as 2^-23 of them, and low, a u32v, has their lowest 32 bits
//   quotient(v, w)               v / w, rounded down, of s32v that are not negative, where it is below 512 and
//                                v + 2 * w fits
#ifndef ODX_ORLAN_SIMD_ROOTS_H
#define ODX_ORLAN_SIMD_ROOTS_H

#include "orlan/simd/simd.h"

namespace odx::ODX_TARGET::simd
{

#if defined(__arm__)

// The estimate of 1 / root becomes good to 2^-16, so that the root is off by at most 130, and what is left over
// fits 32 bits. That puts the root right: it is then the exact one, or one more.
ODX_INLINE s32v floorRoot(f32v near, u32v low)
{
    const float32x4_t n = (float32x4_t)near, one = vmaxq_f32(n, vdupq_n_f32(1));
    float32x4_t r = vrsqrteq_f32(one);
    r = vmulq_f32(r, vrsqrtsq_f32(vmulq_f32(one, r), r));
    const int32x4_t all = (int32x4_t)low;
    int32x4_t root = vcvtq_s32_f32(vmlaq_f32(vdupq_n_f32(0.5f), n, r));
    const float32x4_t over = vmulq_f32(vcvtq_n_f32_s32(vmlsq_s32(all, root, root), 1), r);
    root = vrsraq_n_s32(root, vcvtq_n_s32_f32(over, 8), 8);
    return (s32v)vsraq_n_s32(root, vmlsq_s32(all, root, root), 31);
}

#else

// The root in floats is off by less than one, so that the exact one is this, or one beside it.
ODX_INLINE s32v floorRoot(f32v near, u32v low)
{
    const s32v root = __builtin_convertvector(rootNear(near), s32v), over = (s32v)(low - (u32v)root * (u32v)root);
    return root + (over >> 31) - (over > root + root);
}

#endif

ODX_INLINE s32v quotient(s32v v, s32v w)
{
    const f32v near = ratioNear(__builtin_convertvector(v, f32v), __builtin_convertvector(w, f32v));
    // It is off by less than 1/8, so that this is the quotient, or one more.
    const s32v most = __builtin_convertvector(near + 0.15f, s32v);
    return most + ((v - most * w) >> 31);
}

} // namespace odx::ODX_TARGET::simd

#endif
