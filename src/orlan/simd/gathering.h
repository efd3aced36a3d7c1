// What warps ask of the vector layer besides the rest of it. The square of a pixel is the pixel, the one right of
// it, and the two below.
//
//   kBlockColumns              vectors of positions are blocks of so many columns, and kLanes / kBlockColumns rows
//   gatherSquares<C>(p, stride, offsets, squares)
//                              the squares of the pixels of C bytes that lie so far behind p: for each channel the
//                              four bytes of each lane as a word; the stride is at least 2
//   gatherEach<Word>(p, offsets)
//                              what lies there, as words
//   gatherSixteens(p, offsets, words)
//                              sixteen bytes of each lane, as four words
//   kPrefetches                prefetching is worth its cost
//   floatsOfByte<n>(v)         that byte of each word as a float
//   mulRound15(v, w)           (v * w + 16384) >> 15 of s16v, not both -32768
//   mulRound16(v, w)           (v * w + 32768) >> 16 of s16v
//   transposePairs(v, w)       the even 16-bit lanes of both in turns, then the odd ones
//   storeRows(p, pitch, a, b, c, d)
//                              (where blocks have four columns) the lanes of four blocks side by side, below 256,
//                              as rows of 16 bytes
//   Window<C>                  (there, too) squares that are all in a small part of an image
//     columns, rows            its size in pixels
//     find(p, stride, x, y, squares)
//                              the squares of the pixels at these places of the window at p, which are below
//                              columns - 1 and rows - 1
#ifndef ODX_ORLAN_SIMD_GATHERING_H
#define ODX_ORLAN_SIMD_GATHERING_H

#include "orlan/squares.h"

namespace odx::ODX_TARGET::simd
{

#if ODX_VECTOR_BYTES == 64
constexpr uint32_t kBlockColumns = 4;
#else
constexpr uint32_t kBlockColumns = 1;
#endif

// The squares of four pixels in each 16 bytes, channel after channel, become words of each channel. Two rows of
// pixels of three bytes are the first six of eight bytes and the last six of eight, so that nothing else is read.
template <uint32_t C>
ODX_INLINE constexpr size_t shiftOfSecondRow()
{
    return C == 3 ? 2 : 0;
}

#if defined(__AVX2__)

constexpr bool kPrefetches = true;

// Both rows of a square.
template <uint32_t C>
ODX_INLINE __m128i loadSquare(const uint8_t* p, size_t stride)
{
    const uint8_t* const below = p + stride - shiftOfSecondRow<C>();
    return _mm_castps_si128(
        _mm_loadh_pi(_mm_castsi128_ps(_mm_loadl_epi64((const __m128i*)p)), (const __m64*)below));
}
template <uint32_t C>
ODX_INLINE u8v loadSquares(const uint8_t* p, size_t stride, const uint32_t* offsets)
{
    const __m256i two = _mm256_inserti128_si256(_mm256_castsi128_si256(loadSquare<C>(p + offsets[0], stride)),
                                                loadSquare<C>(p + offsets[4], stride), 1);
#if ODX_VECTOR_BYTES == 64
    const __m256i others = _mm256_inserti128_si256(_mm256_castsi128_si256(loadSquare<C>(p + offsets[8], stride)),
                                                   loadSquare<C>(p + offsets[12], stride), 1);
    return (u8v)_mm512_inserti64x4(_mm512_castsi256_si512(two), others, 1);
#else
    return (u8v)two;
#endif
}

template <int i>
ODX_INLINE __m128i insertSquare(__m128i v, const uint8_t* p, size_t stride)
{
    return _mm_insert_epi16(_mm_insert_epi16(v, load<uint16_t>(p), 2 * i), load<uint16_t>(p + stride), 2 * i + 1);
}
ODX_INLINE __m128i fourSquares(const uint8_t* p, size_t stride, const uint32_t* offsets)
{
    const __m128i two =
        insertSquare<1>(insertSquare<0>(_mm_setzero_si128(), p + offsets[0], stride), p + offsets[1], stride);
    return insertSquare<3>(insertSquare<2>(two, p + offsets[2], stride), p + offsets[3], stride);
}

template <uint32_t C>
ODX_INLINE void gatherSquares(const uint8_t* p, size_t stride, u32v offsets, u32v (&squares)[C])
{
    uint32_t at[kBytes / 4];
    store(at, offsets);
    if constexpr (C == 1) {
        __m128i four[kBytes / 16];
        for (uint32_t i = 0; i < kBytes / 16; ++i)
            four[i] = fourSquares(p, stride, at + 4 * i);
        squares[0] = load<u32v>(four);
    } else {
        const ODX_MI order =
            inEachLane(C == 3 ? _mm_setr_epi8(0, 3, 10, 13, 1, 4, 11, 14, 2, 5, 12, 15, 0, 0, 0, 0)
                              : _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
        u8v v[4];
        for (uint32_t k = 0; k < 4; ++k)
            v[k] = (u8v)ODX_MM(shuffle_epi8)((ODX_MI)loadSquares<C>(p, stride, at + k), order);
        transposeSquares<4>(v);
        for (uint32_t c = 0; c < C; ++c)
            squares[c] = (u32v)v[c];
    }
}

ODX_INLINE void gatherSixteens(const uint8_t* p, u32v offsets, u32v (&words)[4])
{
    uint32_t at[kBytes / 4];
    store(at, offsets);
    u8v v[4];
    for (uint32_t k = 0; k < 4; ++k) {
        __m128i lanes[kBytes / 16];
        for (uint32_t i = 0; i < kBytes / 16; ++i)
            lanes[i] = load<__m128i>(p + at[4 * i + k]);
        v[k] = load<u8v>(lanes);
    }
    transposeSquares<4>(v);
    for (uint32_t k = 0; k < 4; ++k)
        words[k] = (u32v)v[k];
}

template <class Word>
ODX_INLINE u32v gatherEach(const uint8_t* p, u32v offsets)
{
    uint32_t at[kBytes / 4], words[kBytes / 4];
    store(at, offsets);
    for (uint32_t i = 0; i < kBytes / 4; ++i)
        words[i] = load<Word>(p + at[i]);
    return load<u32v>(words);
}

template <int n>
ODX_INLINE f32v floatsOfByte(u32v v)
{
    return __builtin_convertvector((s32v)(n == 3 ? v >> 24 : v >> 8 * n & 255), f32v);
}

ODX_INLINE s16v mulRound15(s16v v, s16v w)
{
    return (s16v)ODX_MM(mulhrs_epi16)((ODX_MI)v, (ODX_MI)w);
}
ODX_INLINE s16v mulRound16(s16v v, s16v w)
{
    return (s16v)ODX_MM(mulhi_epi16)((ODX_MI)v, (ODX_MI)w) + (s16v)((u16v)v * (u16v)w >> 15);
}

ODX_INLINE s16p transposePairs(s16v v, s16v w)
{
    const ODX_MI low = ODX_MM(slli_epi32)((ODX_MI)w, 16), high = ODX_MM(srli_epi32)((ODX_MI)v, 16);
#if ODX_VECTOR_BYTES == 64
    return {(s16v)_mm512_mask_blend_epi16(0xAAAAAAAA, (ODX_MI)v, low),
            (s16v)_mm512_mask_blend_epi16(0xAAAAAAAA, high, (ODX_MI)w)};
#else
    return {(s16v)_mm256_blend_epi16((ODX_MI)v, low, 0xAA), (s16v)_mm256_blend_epi16(high, (ODX_MI)w, 0xAA)};
#endif
}

#if ODX_VECTOR_BYTES == 64

ODX_INLINE void storeRows(uint8_t* p, size_t pitch, s32v a, s32v b, s32v c, s32v d)
{
    // Packing keeps the rows of blocks, of which each is a quarter of its vector.
    const __m512i rows = _mm512_packus_epi16(_mm512_packus_epi32((__m512i)a, (__m512i)b),
                                             _mm512_packus_epi32((__m512i)c, (__m512i)d));
    store(p, _mm512_castsi512_si128(rows));
    store(p + pitch, _mm512_extracti32x4_epi32(rows, 1));
    store(p + 2 * pitch, _mm512_extracti32x4_epi32(rows, 2));
    store(p + 3 * pitch, _mm512_extracti32x4_epi32(rows, 3));
}

// Tables of 128 bytes, one for pixels of one byte, two for others.
template <uint32_t C>
struct Window {
    static constexpr uint32_t pitch = C == 1 ? 16 : 32, columns = pitch / C, rows = 8;

    ODX_MEMBER static __m512i loadQuarters(const uint8_t* p, size_t stride)
    {
        const __m256i low = (__m256i)_mm256_inserti128_si256(_mm256_castsi128_si256(load<__m128i>(p)),
                                                             load<__m128i>(p + stride), 1),
                      high = (__m256i)_mm256_inserti128_si256(
                          _mm256_castsi128_si256(load<__m128i>(p + 2 * stride)), load<__m128i>(p + 3 * stride), 1);
        return _mm512_inserti64x4(_mm512_castsi256_si512(low), high, 1);
    }
    ODX_MEMBER static void find(const uint8_t* p, size_t stride, u32v x, u32v y, u32v (&squares)[C])
    {
        const u32v place = y * pitch + x * C;
        __m512i each = _mm512_shuffle_epi8(
            (__m512i)place, inEachLane(_mm_setr_epi8(0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12)));
        each = _mm512_add_epi8(each, _mm512_set1_epi32((int)(C << 8 | pitch << 16 | (pitch + C) << 24)));
        if constexpr (C == 1) {
            squares[0] = (u32v)_mm512_permutex2var_epi8(loadQuarters(p, stride), each,
                                                        loadQuarters(p + 4 * stride, stride));
        } else {
            const auto two = [=](uint32_t row) __attribute__((always_inline))
            {
                return (__m512i)loadHalves(p + row * stride, p + (row + 1) * stride);
            };
            const __m512i v0 = two(0), v2 = two(2), v4 = two(4), v6 = two(6);
            for (uint32_t c = 0; c < C; ++c) {
                squares[c] =
                    (u32v)_mm512_mask_blend_epi8(_mm512_movepi8_mask(each), _mm512_permutex2var_epi8(v0, each, v2),
                                                 _mm512_permutex2var_epi8(v4, each, v6));
                each = _mm512_add_epi8(each, _mm512_set1_epi8(1));
            }
        }
    }
};

// The lane of a vector, in all lanes.
ODX_INLINE s32v laneOf(s32v v, uint32_t lane)
{
    return (s32v)_mm512_permutexvar_epi32(_mm512_set1_epi32((int)lane), (__m512i)v);
}
ODX_INLINE uint32_t firstLane(s32v v)
{
    return (uint32_t)_mm_cvtsi128_si32(_mm512_castsi512_si128((__m512i)v));
}

#endif

#elif defined(__ARM_NEON)

constexpr bool kPrefetches = false;

// A word from memory, at any address, in a lane.
template <int lane>
ODX_INLINE uint16x8_t loadLane(uint16x8_t v, const uint8_t* p)
{
    return vsetq_lane_u16(load<uint16_t>(p), v, lane);
}
template <int i>
ODX_INLINE uint16x8_t loadLanes(uint16x8_t v, const uint8_t* p, size_t stride)
{
    return loadLane<2 * i + 1>(loadLane<2 * i>(v, p), p + stride);
}

// One square, its channels in order.
template <uint32_t C>
ODX_INLINE u8v loadSquare(const uint8_t* p, size_t stride)
{
    const uint8x8_t first = vld1_u8(p), second = vld1_u8(p + stride - shiftOfSecondRow<C>());
    const uint8x8_t low = C == 3 ? vcreate_u8(0x0E0B04010D0A0300) : vcreate_u8(0x0D0905010C080400),
                    high = C == 3 ? vcreate_u8(0xFFFFFFFF0F0C0502) : vcreate_u8(0x0F0B07030E0A0602);
#if defined(__aarch64__)
    return (u8v)vqtbl1q_u8(vcombine_u8(first, second), vcombine_u8(low, high));
#else
    const uint8x8x2_t both = {{first, second}};
    return (u8v)vcombine_u8(vtbl2_u8(both, low), vtbl2_u8(both, high));
#endif
}

template <uint32_t C>
ODX_INLINE void gatherSquares(const uint8_t* p, size_t stride, u32v offsets, u32v (&squares)[C])
{
    const uint8_t *const p0 = p + offsets[0], *const p1 = p + offsets[1], *const p2 = p + offsets[2],
                         *const p3 = p + offsets[3];
    if constexpr (C == 1) {
        const uint16x8_t two = loadLanes<1>(loadLanes<0>(vdupq_n_u16(0), p0, stride), p1, stride);
        squares[0] = (u32v)loadLanes<3>(loadLanes<2>(two, p2, stride), p3, stride);
    } else {
        u8v v[4] = {loadSquare<C>(p0, stride), loadSquare<C>(p1, stride), loadSquare<C>(p2, stride),
                    loadSquare<C>(p3, stride)};
        transposeSquares<4>(v);
        for (uint32_t c = 0; c < C; ++c)
            squares[c] = (u32v)v[c];
    }
}

ODX_INLINE void gatherSixteens(const uint8_t* p, u32v offsets, u32v (&words)[4])
{
    u8v v[4] = {load<u8v>(p + offsets[0]), load<u8v>(p + offsets[1]), load<u8v>(p + offsets[2]),
                load<u8v>(p + offsets[3])};
    transposeSquares<4>(v);
    for (uint32_t k = 0; k < 4; ++k)
        words[k] = (u32v)v[k];
}

template <class Word>
ODX_INLINE u32v gatherEach(const uint8_t* p, u32v offsets)
{
    return u32v{load<Word>(p + offsets[0]), load<Word>(p + offsets[1]), load<Word>(p + offsets[2]),
                load<Word>(p + offsets[3])};
}

// Conversion shifts at no cost.
template <int n>
ODX_INLINE f32v floatsOfByte(u32v v)
{
    if constexpr (n == 0) return (f32v)vcvtq_f32_u32((uint32x4_t)(v & 255));
    if constexpr (n == 3) return (f32v)vcvtq_f32_u32((uint32x4_t)(v >> 24));
    if constexpr (n == 1 || n == 2) return (f32v)vcvtq_n_f32_u32((uint32x4_t)(v & 255u << 8 * n), 8 * (n % 3));
}

ODX_INLINE s16v mulRound15(s16v v, s16v w)
{
    return (s16v)vqrdmulhq_s16((int16x8_t)v, (int16x8_t)w);
}
ODX_INLINE s16v mulRound16(s16v v, s16v w)
{
    const int16x8_t a = (int16x8_t)v, b = (int16x8_t)w;
    return (s16v)vcombine_s16(vrshrn_n_s32(vmull_s16(vget_low_s16(a), vget_low_s16(b)), 16),
                              vrshrn_n_s32(vmull_s16(vget_high_s16(a), vget_high_s16(b)), 16));
}

ODX_INLINE s16p transposePairs(s16v v, s16v w)
{
    const int16x8x2_t n = vtrnq_s16((int16x8_t)v, (int16x8_t)w);
    return {(s16v)n.val[0], (s16v)n.val[1]};
}

#endif

} // namespace odx::ODX_TARGET::simd

#endif
