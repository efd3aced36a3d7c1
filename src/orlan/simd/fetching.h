// What looking up words in tables asks of the vector layer besides the rest of it. Pixels stand in the target's
// own order: vectors have, in each 16 bytes, some of sixteen neighbours.
//
//   sumsOfEntries(tables, p, sums)
//                              word by word, the sums of three entries of four words for each of 8 pixels of 4
//                              bytes from p, p + 64 ...: those at the places of the pixel's first three bytes in
//                              three tables of 256 entries, one behind the other
//   gatherWords<n>(table, p)   the words of a table at the places p >> n, of a u32p; n is 16 or more
//   halvesOfWords(p)           the lower and the upper 16 bits of the words of a u32p
//   narrowWords<n>(p, mask)    (p >> n) & mask as 16 bits; the mask is below 65536
//   narrowBytes(v, w)          the lanes of two u16v, which are below 256; they come in order
#ifndef ODX_ORLAN_SIMD_FETCHING_H
#define ODX_ORLAN_SIMD_FETCHING_H

#include "orlan/squares.h"

namespace odx::ODX_TARGET::simd
{

constexpr size_t kEntry = 16, kTable = 256 * kEntry;

// From sum(i), which has the words of pixel i in each 16 bytes.
template <class Sum>
ODX_INLINE void sumsOfEight(Sum sum, u32p (&sums)[3])
{
    u8v v[4] = {sum(0), sum(1), sum(2), sum(3)};
    transposeSquares<4>(v);
    u8v w[4] = {sum(4), sum(5), sum(6), sum(7)};
    transposeSquares<4>(w);
    for (int k = 0; k < 3; ++k)
        sums[k] = {(u32v)v[k], (u32v)w[k]};
}

#if defined(__AVX2__)

ODX_INLINE __m128i sumOfEntries(const uint8_t* tables, const uint8_t* p)
{
    const __m128i a = load<__m128i>(tables + kEntry * p[0]), b = load<__m128i>(tables + kTable + kEntry * p[1]),
                  c = load<__m128i>(tables + 2 * kTable + kEntry * p[2]);
    return _mm_add_epi32(_mm_add_epi32(a, b), c);
}

// One of each sixteen pixels.
ODX_INLINE u8v sumsOfEntries(const uint8_t* tables, const uint8_t* p)
{
    const auto two = [=](const uint8_t* q) __attribute__((always_inline))
    {
        return _mm256_inserti128_si256(_mm256_castsi128_si256(sumOfEntries(tables, q)),
                                       sumOfEntries(tables, q + 64), 1);
    };
#if ODX_VECTOR_BYTES == 64
    return (u8v)_mm512_inserti64x4(_mm512_castsi256_si512(two(p)), two(p + 128), 1);
#else
    return (u8v)two(p);
#endif
}

ODX_INLINE void sumsOfEntries(const void* tables, const uint8_t* p, u32p (&sums)[3])
{
    sumsOfEight([=](int i) { return sumsOfEntries((const uint8_t*)tables, p + 4 * i); }, sums);
}

template <int n>
ODX_INLINE u32p gatherWords(const void* table, const u32p& p)
{
#if ODX_VECTOR_BYTES == 64
    const auto words = [=](u32v v) { return (u32v)_mm512_i32gather_epi32((ODX_MI)(v >> n), table, 4); };
#else
    const auto words = [=](u32v v) {
        return (u32v)_mm256_i32gather_epi32((const int*)table, (ODX_MI)(v >> n), 4);
    };
#endif
    return {words(p.a), words(p.b)};
}

template <int n>
ODX_INLINE u16v narrowWords(const u32p& p, uint32_t mask)
{
    return (u16v)ODX_MM(packus_epi32)((ODX_MI)(p.a >> n & mask), (ODX_MI)(p.b >> n & mask));
}
ODX_INLINE u16p halvesOfWords(const u32p& p)
{
    return {narrowWords<0>(p, 65535), (u16v)ODX_MM(packus_epi32)((ODX_MI)(p.a >> 16), (ODX_MI)(p.b >> 16))};
}

ODX_INLINE u8v narrowBytes(u16v v, u16v w)
{
    return (u8v)ODX_MM(packus_epi16)((ODX_MI)v, (ODX_MI)w);
}

#elif defined(__ARM_NEON)

#if defined(__aarch64__)

ODX_INLINE void sumsOfEntries(const void* tables, const uint8_t* p, u32p (&sums)[3])
{
    const auto entry = [=](int i, int channel) {
        return load<u32v>((const uint8_t*)tables + kTable * channel + kEntry * p[4 * i + channel]);
    };
    sumsOfEight([=](int i) { return (u8v)(entry(i, 0) + entry(i, 1) + entry(i, 2)); }, sums);
}

template <int n>
ODX_INLINE u32p gatherWords(const void* table, const u32p& p)
{
    const auto words = [=](u32v v) {
        const uint32_t* const t = (const uint32_t*)table;
        return u32v{t[v[0]], t[v[1]], t[v[2]], t[v[3]]};
    };
    return {words(p.a >> n), words(p.b >> n)};
}

#else

// Vectors find the addresses, as offsets of 16 bits.
ODX_INLINE u32p addresses(const void* table, uint16x8_t offsets)
{
    const uint32x4_t base = vdupq_n_u32((uint32_t)(uintptr_t)table);
    return {(u32v)vaddw_u16(base, vget_low_u16(offsets)), (u32v)vaddw_u16(base, vget_high_u16(offsets))};
}
ODX_INLINE void sumsOfEntries(const void* tables, const uint8_t* p, u32p (&sums)[3])
{
    const uint8x8x4_t pixels = vld4_u8(p);
    u32p entries[3];
    for (uint32_t k = 0; k < 3; ++k)
        entries[k] = addresses((const uint8_t*)tables + k * kTable, vshll_n_u8(pixels.val[k], 4));
    const auto entry = [=](int i, int channel) {
        const u32v at = i < 4 ? entries[channel].a : entries[channel].b;
        return load<u32v>((const void*)(uintptr_t)at[i % 4]);
    };
    sumsOfEight([=](int i) { return (u8v)(entry(i, 0) + entry(i, 1) + entry(i, 2)); }, sums);
}

template <int n>
ODX_INLINE u32p gatherWords(const void* table, const u32p& p)
{
    const uint16x8_t upper = vcombine_u16(vshrn_n_u32((uint32x4_t)p.a, 16), vshrn_n_u32((uint32x4_t)p.b, 16));
    const u32p at = addresses(table, vshlq_n_u16(vshrq_n_u16(upper, n - 16), 2));
    const auto words = [](u32v v) {
        const auto word = [=](int i) { return *(const uint32_t*)(uintptr_t)v[i]; };
        return u32v{word(0), word(1), word(2), word(3)};
    };
    return {words(at.a), words(at.b)};
}

#endif

ODX_INLINE u16p halvesOfWords(const u32p& p)
{
    const uint16x8x2_t n = vuzpq_u16((uint16x8_t)p.a, (uint16x8_t)p.b);
    return {(u16v)n.val[0], (u16v)n.val[1]};
}

template <int n>
ODX_INLINE u16v narrowWords(const u32p& p, uint32_t mask)
{
    return (u16v)vcombine_u16(vshrn_n_u32((uint32x4_t)p.a, n), vshrn_n_u32((uint32x4_t)p.b, n)) & (uint16_t)mask;
}

ODX_INLINE u8v narrowBytes(u16v v, u16v w)
{
    return join(u16p{v, w});
}

#endif

} // namespace odx::ODX_TARGET::simd

#endif
