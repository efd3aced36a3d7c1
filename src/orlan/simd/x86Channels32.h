// Interleaved channels in vectors of 32 bytes.
#ifndef ODX_ORLAN_SIMD_X86_CHANNELS32_H
#define ODX_ORLAN_SIMD_X86_CHANNELS32_H

namespace odx::ODX_TARGET::simd
{

// Shuffles work inside lanes of 16 bytes. So a lane gets its own run of 16 pixels: the i-th vector of n holds the
// i-th 16 bytes of each run of 16 * n.

template <int n>
ODX_INLINE __m256i loadRuns(const uint8_t* p)
{
    const auto lane = [p](int i) { return _mm_loadu_si128((const __m128i*)(p + 16 * n * i)); };
    return _mm256_inserti128_si256(_mm256_castsi128_si256(lane(0)), lane(1), 1);
}

template <int n>
ODX_INLINE void storeRuns(uint8_t* p, __m256i v)
{
    const auto lane = [p](int i) { return (__m128i*)(p + 16 * n * i); };
    _mm_storeu_si128(lane(0), _mm256_castsi256_si128(v));
    _mm_storeu_si128(lane(1), _mm256_extracti128_si256(v, 1));
}

// The even bytes of (v, w), lane by lane, then the odd ones.
ODX_INLINE __m256i evenBytes(__m256i v, __m256i w)
{
    const __m256i low = _mm256_set1_epi16(0xFF);
    return (__m256i)_mm256_packus_epi16((__m256i)((u16v)v & (u16v)low), (__m256i)((u16v)w & (u16v)low));
}
ODX_INLINE __m256i oddBytes(__m256i v, __m256i w)
{
    return _mm256_packus_epi16(_mm256_srli_epi16(v, 8), _mm256_srli_epi16(w, 8));
}

// Byte i of a lane from a, b or c, for i % 3 = 0, 1 or 2.
ODX_INLINE __m256i everyThird(__m256i a, __m256i b, __m256i c)
{
    const auto mask = [](int third) {
        const auto at = [third](int i) { return (char)(i % 3 == third ? -1 : 0); };
        return inEachLane(_mm_setr_epi8(at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7), at(8), at(9),
                                        at(10), at(11), at(12), at(13), at(14), at(15)));
    };
    return _mm256_blendv_epi8(_mm256_blendv_epi8(a, b, mask(1)), c, mask(2));
}

// Byte i of a lane from byte (step * i + first) % 16 of it.
template <int step, int first>
ODX_INLINE __m256i everyNth(__m256i v)
{
    const auto at = [](int i) { return (char)((step * i + first) % 16); };
    return _mm256_shuffle_epi8(
        v, inEachLane(_mm_setr_epi8(at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7), at(8), at(9), at(10),
                                    at(11), at(12), at(13), at(14), at(15))));
}

ODX_INLINE u8x2 load2(const uint8_t* p)
{
    const __m256i v = loadRuns<2>(p), w = loadRuns<2>(p + 16);
    return {(u8v)evenBytes(v, w), (u8v)oddBytes(v, w)};
}

// Channel c of pixel i is byte (3 * i + c) % 16 of a lane; each channel has all its bytes in different places.
ODX_INLINE u8x3 load3(const uint8_t* p)
{
    const __m256i u = loadRuns<3>(p), v = loadRuns<3>(p + 16), w = loadRuns<3>(p + 32);
    return {(u8v)everyNth<3, 0>(everyThird(u, w, v)), (u8v)everyNth<3, 1>(everyThird(v, u, w)),
            (u8v)everyNth<3, 2>(everyThird(w, v, u))};
}

ODX_INLINE u8x4 load4(const uint8_t* p)
{
    const __m256i channels = inEachLane(_mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
    const auto fours = [=](int i) { return _mm256_shuffle_epi8(loadRuns<4>(p + 16 * i), channels); };
    const __m256i t = fours(0), u = fours(1), v = fours(2), w = fours(3);
    const __m256i ab0 = _mm256_unpacklo_epi32(t, u), ab1 = _mm256_unpacklo_epi32(v, w),
                  cd0 = _mm256_unpackhi_epi32(t, u), cd1 = _mm256_unpackhi_epi32(v, w);
    return {(u8v)_mm256_unpacklo_epi64(ab0, ab1), (u8v)_mm256_unpackhi_epi64(ab0, ab1),
            (u8v)_mm256_unpacklo_epi64(cd0, cd1), (u8v)_mm256_unpackhi_epi64(cd0, cd1)};
}

ODX_INLINE void store2(uint8_t* p, u8v a, u8v b)
{
    storeRuns<2>(p, _mm256_unpacklo_epi8((__m256i)a, (__m256i)b));
    storeRuns<2>(p + 16, _mm256_unpackhi_epi8((__m256i)a, (__m256i)b));
}

// 11 is the inverse of 3 modulo 16.
ODX_INLINE void store3(uint8_t* p, u8v a, u8v b, u8v c)
{
    const __m256i u = everyNth<11, 0>((__m256i)a), v = everyNth<11, 5>((__m256i)b),
                  w = everyNth<11, 10>((__m256i)c);
    storeRuns<3>(p, everyThird(u, v, w));
    storeRuns<3>(p + 16, everyThird(v, w, u));
    storeRuns<3>(p + 32, everyThird(w, u, v));
}

ODX_INLINE void store4(uint8_t* p, u8v a, u8v b, u8v c, u8v d)
{
    const __m256i ab0 = _mm256_unpacklo_epi8((__m256i)a, (__m256i)b),
                  ab1 = _mm256_unpackhi_epi8((__m256i)a, (__m256i)b),
                  cd0 = _mm256_unpacklo_epi8((__m256i)c, (__m256i)d),
                  cd1 = _mm256_unpackhi_epi8((__m256i)c, (__m256i)d);
    storeRuns<4>(p, _mm256_unpacklo_epi16(ab0, cd0));
    storeRuns<4>(p + 16, _mm256_unpackhi_epi16(ab0, cd0));
    storeRuns<4>(p + 32, _mm256_unpacklo_epi16(ab1, cd1));
    storeRuns<4>(p + 48, _mm256_unpackhi_epi16(ab1, cd1));
}

// Shuffles each 16 bytes: byte i of a pixel of `to` bytes comes from byte i of one of `from`, for i up to 2.
template <int from, int to, bool mirrored, int first = 0>
ODX_INLINE __m128i repacking()
{
    const auto at = [](int i) {
        const int channel = i % to, place = mirrored ? 2 - channel : channel, pixel = i / to;
        return (char)(channel > 2 || pixel > 3 ? -1 : from * pixel + place + first);
    };
    return _mm_setr_epi8(at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7), at(8), at(9), at(10), at(11),
                         at(12), at(13), at(14), at(15));
}

// A quarter of the pixels at a time. The last 16 bytes of a load end with its last pixel.
template <bool mirrored>
ODX_INLINE void widen3(uint8_t* q, const uint8_t* p)
{
    const auto lane = [](const uint8_t* from) { return _mm_loadu_si128((const __m128i*)from); };
    const __m128i table = repacking<3, 4, mirrored>(), last = repacking<3, 4, mirrored, 4>();
    for (int i = 0; i < 4; ++i, p += kBytes / 4 * 3, q += kBytes) {
        const __m256i tables = _mm256_set_m128i(last, table), v = _mm256_set_m128i(lane(p + 8), lane(p));
        store(q, (u32v)_mm256_shuffle_epi8(v, tables) | 0xFF000000);
    }
}

// Stores overlap, but for the last one of the group.
template <bool mirrored>
ODX_INLINE void narrow4(uint8_t* q, const uint8_t* p)
{
    const __m256i table = inEachLane(repacking<4, 3, mirrored>());
    const auto packed = [=](int i) {
        const __m256i v = _mm256_shuffle_epi8(load<__m256i>(p + kBytes * i), table);
        return _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 3));
    };
    const __m256i v[] = {packed(0), packed(1), packed(2), packed(3)};
    for (int i = 0; i < 3; ++i)
        store(q + kBytes / 4 * 3 * i, v[i]);
    q += kBytes / 4 * 9;
    _mm_storeu_si128((__m128i*)q, _mm256_castsi256_si128(v[3]));
    _mm_storel_epi64((__m128i*)(q + 16), _mm256_extracti128_si256(v[3], 1));
}

} // namespace odx::ODX_TARGET::simd

#endif
