// What scaling asks of the vector layer besides the rest of it:
//
//   sumPairs(v), sumPairs(v, w)  sums of neighbouring lanes, in order: of a u8v as a u16v; of two u16v, which are
//                                below 2^15, as one
//   dotPairs<a, b>(v)            the same with weights up to 127, 255 * (a + b) up to 32767
//   narrow(v, w)                 the lanes of two u16v as bytes, in order; they are below 256
//   narrow(a, b, c, d)           the lanes of four s32v as bytes, in order, at most 255; they are 0 to 32767
//   wholeParts(a, b, c, d)       those of four f32v as bytes, in order, at most 255; they are 0 to 32767
//   storePairs2(p, v, w)         pairs of bytes of both in turns
//   load2(p)                     every second of kBytes / 2 floats, and those between, as an f32x2
//   toFloats(v, floats)          the bytes of a u8v as four f32v, in order
//   lookup(row, bases, places)   kBytes bytes, in order: each at its place, below kLookupWindow, from one of the
//                                bases, of which there is one for kLookup outputs
//   between(v, w)                (3 * v + w + 2) >> 2 and (v + 3 * w + 2) >> 2 of u8v
//   threeAndOne(v, w)            3 * v + w of u8v as 16 bits, in an order of their own
//   joinThrees<n>(pair), joinRoundedThrees<n>(pair)
//                                bytes of what has that order, divided by 2^n; the second rounds
//   between(p, q)                joinRoundedThrees<4> of 3 * p + q and of p + 3 * q
//   joinRounded<n>(pair)         join((pair + 2^(n - 1)) >> n)
//   addProducts(sum, p, k)       sum + p[i] * k for each lane of a s32v, of 16 bits
//   storeWeighted(p, v, w, k)    v[i] * k[2i] + w[i] * k[2i + 1] of two u8v as kBytes words of 32 bits, in order
#ifndef ODX_ORLAN_SIMD_RESAMPLING_H
#define ODX_ORLAN_SIMD_RESAMPLING_H

#include "orlan/simd/simd.h"

namespace odx::ODX_TARGET::simd
{

struct f32x2 {
    f32v a, b;
};

#if defined(__AVX2__)

#if ODX_VECTOR_BYTES == 64
constexpr uint32_t kLookup = 64, kLookupWindow = 128;
#else
constexpr uint32_t kLookup = 16, kLookupWindow = 32;
#endif

// Packing works within each 16 bytes; this brings the quarters of its first operand before those of the second.
ODX_INLINE ODX_MI unpacked(ODX_MI v)
{
#if ODX_VECTOR_BYTES == 64
    return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), v);
#else
    return _mm256_permute4x64_epi64(v, 0xD8);
#endif
}

template <int a, int b>
ODX_INLINE u16v dotPairs(u8v v)
{
    static_assert(a >= 0 && a <= 127 && b >= 0 && b <= 127 && 255 * (a + b) <= 32767);
    return (u16v)ODX_MM(maddubs_epi16)((ODX_MI)v, ODX_MM(set1_epi16)(a | b << 8));
}
ODX_INLINE u16v sumPairs(u8v v)
{
    return dotPairs<1, 1>(v);
}
ODX_INLINE u16v sumPairs(u16v v, u16v w)
{
    const ODX_MI ones = ODX_MM(set1_epi16)(1);
    return (u16v)unpacked(
        ODX_MM(packus_epi32)(ODX_MM(madd_epi16)((ODX_MI)v, ones), ODX_MM(madd_epi16)((ODX_MI)w, ones)));
}

ODX_INLINE u8v narrow(u16v v, u16v w)
{
    return (u8v)unpacked(ODX_MM(packus_epi16)((ODX_MI)v, (ODX_MI)w));
}
ODX_INLINE u8v narrow(s32v a, s32v b, s32v c, s32v d)
{
    const ODX_MI bytes = ODX_MM(packus_epi16)(ODX_MM(packus_epi32)((ODX_MI)a, (ODX_MI)b),
                                              ODX_MM(packus_epi32)((ODX_MI)c, (ODX_MI)d));
#if ODX_VECTOR_BYTES == 64
    return (u8v)_mm512_permutexvar_epi32(_mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15),
                                         bytes);
#else
    return (u8v)_mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
#endif
}

ODX_INLINE u8v wholeParts(f32v a, f32v b, f32v c, f32v d)
{
    return narrow(__builtin_convertvector(a, s32v), __builtin_convertvector(b, s32v),
                  __builtin_convertvector(c, s32v), __builtin_convertvector(d, s32v));
}

ODX_INLINE void storePairs2(uint8_t* p, u8v v, u8v w)
{
    const Ordered pairs =
        inOrder(ODX_MM(unpacklo_epi16)((ODX_MI)v, (ODX_MI)w), ODX_MM(unpackhi_epi16)((ODX_MI)v, (ODX_MI)w));
    store(p, pairs.first);
    store(p + kBytes, pairs.second);
}

ODX_INLINE f32x2 load2(const float* p)
{
    const f32v v = load<f32v>(p), w = load<f32v>(p + kBytes / 4);
    const auto even = ODX_MM(shuffle_ps)(v, w, 0x88), odd = ODX_MM(shuffle_ps)(v, w, 0xDD);
    return {(f32v)unpacked((ODX_MI)even), (f32v)unpacked((ODX_MI)odd)};
}

ODX_INLINE void toFloats(u8v v, f32v (&floats)[4])
{
    alignas(kBytes) uint8_t bytes[kBytes];
    store(bytes, v);
    for (uint32_t k = 0; k < 4; ++k) {
        const uint8_t* const p = bytes + k * kBytes / 4;
#if ODX_VECTOR_BYTES == 64
        floats[k] = (f32v)_mm512_cvtepi32_ps(_mm512_cvtepu8_epi32(load<__m128i>(p)));
#else
        floats[k] = (f32v)_mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(_mm_loadl_epi64((const __m128i*)p)));
#endif
    }
}

ODX_INLINE u8v lookup(const uint8_t* row, const uint32_t* bases, u8v places)
{
#if ODX_VECTOR_BYTES == 64
    const uint8_t* const window = row + bases[0];
    return (u8v)_mm512_permutex2var_epi8(load<__m512i>(window), (__m512i)places, load<__m512i>(window + 64));
#else
    const uint8_t *const p = row + bases[0], *const q = row + bases[1];
    const __m256i place = (__m256i)places, low = (__m256i)loadHalves(p, q),
                  high = (__m256i)loadHalves(p + 16, q + 16);
    // The fifth bit of a place becomes the highest of its byte, which chooses.
    return (u8v)_mm256_blendv_epi8(_mm256_shuffle_epi8(low, place), _mm256_shuffle_epi8(high, place),
                                   _mm256_slli_epi16(place, 3));
#endif
}

// The products of a quarter of the vectors.
template <int n>
ODX_INLINE void storeWeightedPart(int32_t* p, ODX_MI low, ODX_MI high, const int16_t* weights)
{
#if ODX_VECTOR_BYTES == 64
    const __m256i bytes = _mm256_inserti128_si256(_mm256_castsi128_si256(_mm512_extracti32x4_epi32(low, n)),
                                                  _mm512_extracti32x4_epi32(high, n), 1);
    store(p + 16 * n, _mm512_madd_epi16(_mm512_cvtepu8_epi16(bytes), load<__m512i>(weights + 32 * n)));
#else
    const __m128i first = _mm256_extracti128_si256(low, n), second = _mm256_extracti128_si256(high, n);
    store(p + 16 * n, _mm256_madd_epi16(_mm256_cvtepu8_epi16(first), load<__m256i>(weights + 32 * n)));
    store(p + 16 * n + 8, _mm256_madd_epi16(_mm256_cvtepu8_epi16(second), load<__m256i>(weights + 32 * n + 16)));
#endif
}
ODX_INLINE void storeWeighted(int32_t* p, u8v v, u8v w, const int16_t* weights)
{
    const ODX_MI low = ODX_MM(unpacklo_epi8)((ODX_MI)v, (ODX_MI)w),
                 high = ODX_MM(unpackhi_epi8)((ODX_MI)v, (ODX_MI)w);
    storeWeightedPart<0>(p, low, high, weights);
    storeWeightedPart<1>(p, low, high, weights);
#if ODX_VECTOR_BYTES == 64
    storeWeightedPart<2>(p, low, high, weights);
    storeWeightedPart<3>(p, low, high, weights);
#endif
}

ODX_INLINE s32v addProducts(s32v sum, const int16_t* p, int16_t k)
{
    typedef int16_t s16half __attribute__((vector_size(kBytes / 2)));
    return sum + __builtin_convertvector(load<s16half>(p), s32v) * (int32_t)k;
}

// From the mean of both, rounded down; the other means are rounded up.
ODX_INLINE u8x2 between(u8v v, u8v w)
{
    const u8v mean = (u8v)ODX_MM(avg_epu8)((ODX_MI)v, (ODX_MI)w) - ((v ^ w) & 1);
    return {(u8v)ODX_MM(avg_epu8)((ODX_MI)v, (ODX_MI)mean), (u8v)ODX_MM(avg_epu8)((ODX_MI)w, (ODX_MI)mean)};
}
ODX_INLINE u16p threeAndOne(u8v v, u8v w)
{
    const u8x2 pairs = zip<1>(v, w);
    const ODX_MI weights = ODX_MM(set1_epi16)(3 | 1 << 8);
    return {(u16v)ODX_MM(maddubs_epi16)((ODX_MI)pairs.a, weights),
            (u16v)ODX_MM(maddubs_epi16)((ODX_MI)pairs.b, weights)};
}
template <int n>
ODX_INLINE u8v joinThrees(const u16p& p)
{
    return (u8v)ODX_MM(packus_epi16)((ODX_MI)(p.a >> n), (ODX_MI)(p.b >> n));
}
template <int n>
ODX_INLINE u8v joinRoundedThrees(const u16p& p)
{
    constexpr uint16_t half = 1 << (n - 1);
    return joinThrees<n>({p.a + half, p.b + half});
}
template <int n>
ODX_INLINE u8v joinRounded(const u16p& p)
{
    constexpr uint16_t half = 1 << (n - 1);
    return join(u16p{(p.a + half) >> n, (p.b + half) >> n});
}
ODX_INLINE u8x2 between(const u16p& p, const u16p& q)
{
    return {joinRoundedThrees<4>({p.a * 3 + q.a, p.b * 3 + q.b}),
            joinRoundedThrees<4>({q.a * 3 + p.a, q.b * 3 + p.b})};
}

#elif defined(__ARM_NEON)

constexpr uint32_t kLookup = 16, kLookupWindow = 32;

ODX_INLINE u16v sumPairs(u8v v)
{
    return (u16v)vpaddlq_u8((uint8x16_t)v);
}
ODX_INLINE u16v sumPairs(u16v v, u16v w)
{
#if defined(__aarch64__)
    return (u16v)vpaddq_u16((uint16x8_t)v, (uint16x8_t)w);
#else
    const auto half = [](uint16x8_t n) { return vpadd_u16(vget_low_u16(n), vget_high_u16(n)); };
    return (u16v)vcombine_u16(half((uint16x8_t)v), half((uint16x8_t)w));
#endif
}
template <int a, int b>
ODX_INLINE u16v dotPairs(u8v v)
{
    static_assert(a >= 0 && a <= 127 && b >= 0 && b <= 127 && 255 * (a + b) <= 32767);
    const u16v first = (u16v)v & 0xFF;
    if constexpr (b == 0) return a == 1 ? first : first * (uint16_t)a;
    const u16v second = ((u16v)v >> 8) * (uint16_t)b;
    return (a == 1 ? first : first * (uint16_t)a) + second;
}

ODX_INLINE u8v narrow(u16v v, u16v w)
{
    return join({v, w});
}
ODX_INLINE u8v narrow(s32v a, s32v b, s32v c, s32v d)
{
    const auto half = [](s32v v, s32v w) {
        return vqmovn_u16(vcombine_u16(vmovn_u32((uint32x4_t)v), vmovn_u32((uint32x4_t)w)));
    };
    return (u8v)vcombine_u8(half(a, b), half(c, d));
}

ODX_INLINE u8v wholeParts(f32v a, f32v b, f32v c, f32v d)
{
    const auto half = [](f32v v, f32v w) {
        const uint32x4_t low = vcvtq_u32_f32((float32x4_t)v), high = vcvtq_u32_f32((float32x4_t)w);
        return vqmovn_u16(vuzpq_u16(vreinterpretq_u16_u32(low), vreinterpretq_u16_u32(high)).val[0]);
    };
    return (u8v)vcombine_u8(half(a, b), half(c, d));
}

ODX_INLINE void storePairs2(uint8_t* p, u8v v, u8v w)
{
    const uint16x8x2_t n = {{(uint16x8_t)v, (uint16x8_t)w}};
    vst2q_u16((uint16_t*)p, n);
}

ODX_INLINE f32x2 load2(const float* p)
{
    const float32x4x2_t n = vld2q_f32(p);
    return {(f32v)n.val[0], (f32v)n.val[1]};
}

ODX_INLINE void toFloats(u8v v, f32v (&floats)[4])
{
    const u16p words = split(v);
    const s32p low = split((s16v)words.a), high = split((s16v)words.b); // below 256
    floats[0] = __builtin_convertvector(low.a, f32v);
    floats[1] = __builtin_convertvector(low.b, f32v);
    floats[2] = __builtin_convertvector(high.a, f32v);
    floats[3] = __builtin_convertvector(high.b, f32v);
}

ODX_INLINE u8v lookup(const uint8_t* row, const uint32_t* bases, u8v places)
{
    const uint8_t* const p = row + bases[0];
    const uint8x16_t n = (uint8x16_t)places;
#if defined(__aarch64__)
    const uint8x16x2_t window = {{vld1q_u8(p), vld1q_u8(p + 16)}};
    return (u8v)vqtbl2q_u8(window, n);
#else
    const uint8x16_t lower = vld1q_u8(p), upper = vld1q_u8(p + 16);
    const uint8x8x4_t window = {
        {vget_low_u8(lower), vget_high_u8(lower), vget_low_u8(upper), vget_high_u8(upper)}};
    return (u8v)vcombine_u8(vtbl4_u8(window, vget_low_u8(n)), vtbl4_u8(window, vget_high_u8(n)));
#endif
}

ODX_INLINE s32v addProducts(s32v sum, const int16_t* p, int16_t k)
{
    return (s32v)vmlal_n_s16((int32x4_t)sum, vld1_s16(p), k);
}

// From the mean of both, rounded down; the other means are rounded up.
ODX_INLINE u8x2 between(u8v v, u8v w)
{
    const uint8x16_t mean = vhaddq_u8((uint8x16_t)v, (uint8x16_t)w);
    return {(u8v)vrhaddq_u8((uint8x16_t)v, mean), (u8v)vrhaddq_u8((uint8x16_t)w, mean)};
}
ODX_INLINE u16p threeAndOne(u8v v, u8v w)
{
    const auto sum = [](uint8x8_t a, uint8x8_t b) { return (u16v)vaddw_u8(vmull_u8(a, vdup_n_u8(3)), b); };
    const uint8x16_t m = (uint8x16_t)v, n = (uint8x16_t)w;
    return {sum(vget_low_u8(m), vget_low_u8(n)), sum(vget_high_u8(m), vget_high_u8(n))};
}
template <int n>
ODX_INLINE u8v joinRounded(const u16p& p)
{
    return (u8v)vcombine_u8(vrshrn_n_u16((uint16x8_t)p.a, n), vrshrn_n_u16((uint16x8_t)p.b, n));
}
// (3 * v + w + 8) >> 4 is (v + ((v + w) >> 1) + 4) >> 3.
ODX_INLINE u8x2 between(const u16p& p, const u16p& q)
{
    const auto half = [](u16v v, u16v w) { return (u16v)vhaddq_u16((uint16x8_t)v, (uint16x8_t)w); };
    const u16p halves = {half(p.a, q.a), half(p.b, q.b)};
    return {joinRounded<3>(p + halves), joinRounded<3>(q + halves)};
}

template <int n>
ODX_INLINE u8v joinThrees(const u16p& p)
{
    return joinShifted<n>(p);
}
template <int n>
ODX_INLINE u8v joinRoundedThrees(const u16p& p)
{
    return joinRounded<n>(p);
}

ODX_INLINE void storeWeighted(int32_t* p, u8v v, u8v w, const int16_t* weights)
{
    const s16p first = {(s16v)split(v).a, (s16v)split(v).b}, second = {(s16v)split(w).a, (s16v)split(w).b};
    const auto half = [](int32_t* to, s16v a, s16v b, const int16_t* k) {
        const int16x8x2_t weight = vld2q_s16(k);
        const int16x8_t m = (int16x8_t)a, n = (int16x8_t)b;
        vst1q_s32(to, vmlal_s16(vmull_s16(vget_low_s16(m), vget_low_s16(weight.val[0])), vget_low_s16(n),
                                vget_low_s16(weight.val[1])));
        vst1q_s32(to + 4, vmlal_s16(vmull_s16(vget_high_s16(m), vget_high_s16(weight.val[0])), vget_high_s16(n),
                                    vget_high_s16(weight.val[1])));
    };
    half(p, first.a, second.a, weights);
    half(p + 8, first.b, second.b, weights + 16);
}

#endif

} // namespace odx::ODX_TARGET::simd

#endif
