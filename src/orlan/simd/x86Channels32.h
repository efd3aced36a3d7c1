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

ODX_INLINE __m256i loadLanes(const uint8_t* low, const uint8_t* high)
{
    return _mm256_set_m128i(_mm_loadu_si128((const __m128i*)high), _mm_loadu_si128((const __m128i*)low));
}

// A quarter of the pixels at a time. The last 16 bytes of a load end with its last pixel.
template <bool mirrored>
ODX_INLINE void widen3(uint8_t* q, const uint8_t* p)
{
    const __m256i tables = _mm256_set_m128i(repacking<3, 4, mirrored, 4>(), repacking<3, 4, mirrored>());
    for (int i = 0; i < 4; ++i, p += 24, q += 32)
        store(q, (u32v)_mm256_shuffle_epi8(loadLanes(p, p + 8), tables) | 0xFF000000);
}

// The first 12 bytes of each lane, side by side. Stores overlap, but for the last one.
ODX_INLINE void storeTwelves(uint8_t* q, __m256i a, __m256i b, __m256i c, __m256i d)
{
    const auto packed = [](__m256i v) {
        return _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 3));
    };
    store(q, packed(a));
    store(q + 24, packed(b));
    store(q + 48, packed(c));
    const __m256i last = packed(d);
    _mm_storeu_si128((__m128i*)(q + 72), _mm256_castsi256_si128(last));
    _mm_storel_epi64((__m128i*)(q + 88), _mm256_extracti128_si256(last, 1));
}

template <bool mirrored>
ODX_INLINE void narrow4(uint8_t* q, const uint8_t* p)
{
    const __m256i table = inEachLane(repacking<4, 3, mirrored>());
    const auto narrowed = [=](int i) { return _mm256_shuffle_epi8(load<__m256i>(p + 32 * i), table); };
    storeTwelves(q, narrowed(0), narrowed(1), narrowed(2), narrowed(3));
}

ODX_INLINE void mirror3(uint8_t* q, const uint8_t* p)
{
    const __m256i tables = _mm256_set_m128i(repacking<3, 3, true, 4>(), repacking<3, 3, true>());
    const auto mirrored = [=](int i) {
        return _mm256_shuffle_epi8(loadLanes(p + 24 * i, p + 24 * i + 8), tables);
    };
    storeTwelves(q, mirrored(0), mirrored(1), mirrored(2), mirrored(3));
}

// ---- sums of channels ----

// The pixels as words of 32 bits; lane i of the k-th vector holds pixels 16 * i + 4 * k and the three after it. So
// packing brings them into order.
struct u8q {
    __m256i a, b, c, d;
};

ODX_INLINE u8q loadQuads(const uint8_t* p)
{
    return {loadRuns<4>(p), loadRuns<4>(p + 16), loadRuns<4>(p + 32), loadRuns<4>(p + 48)};
}

template <__m128i table(), __m128i last()>
ODX_INLINE u8q shuffledTriples(const uint8_t* p)
{
    const auto quarter = [p](int at, __m128i from) {
        return _mm256_shuffle_epi8(loadRuns<3>(p + at), inEachLane(from));
    };
    return {quarter(0, table()), quarter(12, table()), quarter(24, table()), quarter(32, last())};
}

ODX_INLINE u8q loadTriples(const uint8_t* p)
{
    return shuffledTriples<repacking<3, 4, false>, repacking<3, 4, false, 4>>(p);
}

// Sums of eight and eight pixels in 16 bits, modulo 2^16, from products of bytes with weights of other sign:
// either the pixels become signed, or the weights are negated.
template <int a, int b, int c, int offset>
ODX_INLINE u16v sumsOf(__m256i low, __m256i high)
{
    constexpr bool positive = a >= 0 && b >= 0 && c >= 0;
    constexpr int sign = positive ? 1 : -1;
    static_assert(positive ? a + b < 256 && a + b + c <= 256 : a <= 128 && b <= 128 && c <= 128);
    static_assert(positive || (a >= -127 && b >= -127 && c >= -127 && a + b >= -128 && a + b <= 128));
    const __m256i weights =
        _mm256_set1_epi32((sign * a & 0xFF) | (sign * b & 0xFF) << 8 | (sign * c & 0xFF) << 16);
    const auto sums = [=](__m256i v) {
        const __m256i products =
            positive ? _mm256_maddubs_epi16(weights, (__m256i)((u8v)v ^ 0x80)) : _mm256_maddubs_epi16(v, weights);
        return _mm256_madd_epi16(products, _mm256_set1_epi16(1));
    };
    const u16v all = (u16v)_mm256_packs_epi32(sums(low), sums(high));
    return positive ? all + (uint16_t)(128 * (a + b + c) + offset) : (uint16_t)offset - all;
}

template <int a, int b, int c, int offset>
ODX_INLINE u8v highSums(const u8q& q)
{
    const u16v low = sumsOf<a, b, c, offset>(q.a, q.b) >> 8, high = sumsOf<a, b, c, offset>(q.c, q.d) >> 8;
    return (u8v)_mm256_packus_epi16((__m256i)low, (__m256i)high);
}

template <int a, int b, int c, int offset>
ODX_INLINE u16v highSumsOfPairs(const u8q& q)
{
    const auto even = [](__m256i v, __m256i w) { return (__m256i)_mm256_shuffle_ps((__m256)v, (__m256)w, 0x88); };
    return sumsOf<a, b, c, offset>(even(q.a, q.b), even(q.c, q.d)) >> 8;
}

// First and third channel, or twice the second, with a zero byte each.
template <bool second, int first>
ODX_INLINE __m128i widening()
{
    const auto at = [](int i) { return (char)(i % 2 != 0 ? -1 : i / 4 * 3 + first + (second ? 1 : i % 4)); };
    return _mm_setr_epi8(at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7), at(8), at(9), at(10), at(11),
                         at(12), at(13), at(14), at(15));
}

template <int a, int b, int c>
ODX_INLINE u8v fineSums(const uint8_t* p)
{
    static_assert(a <= 32767 && c <= 32767 && b <= 65534);
    const u8q outer = shuffledTriples<widening<false, 0>, widening<false, 4>>(p),
              middle = shuffledTriples<widening<true, 0>, widening<true, 4>>(p);
    const auto sums = [](__m256i ac, __m256i bb) {
        const s32v all = (s32v)_mm256_madd_epi16(ac, _mm256_set1_epi32(a | c << 16)) +
                         (s32v)_mm256_madd_epi16(bb, _mm256_set1_epi32(b / 2 | (b - b / 2) << 16)) + 32768;
        return (__m256i)(all >> 16);
    };
    return (u8v)_mm256_packus_epi16(_mm256_packs_epi32(sums(outer.a, middle.a), sums(outer.b, middle.b)),
                                    _mm256_packs_epi32(sums(outer.c, middle.c), sums(outer.d, middle.d)));
}

// ---- words of 5, 6 and 5 bits ----

template <bool mirrored>
ODX_INLINE void widen565(uint8_t* q, const uint8_t* p)
{
    for (int half = 0; half < 2; ++half, p += 32, q += 64) {
        // Products with 2^a + 2^b copy the high bits of a channel below the others.
        const u16v w = load<u16v>(p), low = mulHigh(w << 11, 0x0108), high = mulHigh(w & 0xF800, 0x0108),
                   middle = mulHigh(w & 0x07E0, 0x2080) << 8;
        const __m256i ab = (__m256i)((mirrored ? high : low) | middle),
                      cd = (__m256i)((mirrored ? low : high) | 0xFF00);
        const __m256i even = _mm256_unpacklo_epi16(ab, cd), odd = _mm256_unpackhi_epi16(ab, cd);
        store(q, _mm256_permute2x128_si256(even, odd, 0x20));
        store(q + 32, _mm256_permute2x128_si256(even, odd, 0x31));
    }
}

} // namespace odx::ODX_TARGET::simd

#endif
