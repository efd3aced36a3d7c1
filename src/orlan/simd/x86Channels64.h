// Interleaved channels in vectors of 64 bytes, which VBMI shuffles as a whole.
#ifndef ODX_ORLAN_SIMD_X86_CHANNELS64_H
#define ODX_ORLAN_SIMD_X86_CHANNELS64_H

namespace odx::ODX_TARGET::simd
{

struct alignas(64) ShuffleTable {
    uint8_t from[64];
};
template <class From>
static constexpr ShuffleTable shuffleTable(From from)
{
    ShuffleTable table = {};
    for (int i = 0; i < 64; ++i)
        table.from[i] = (uint8_t)from(i);
    return table;
}

// Byte i from byte table.from[i]: of v, or of v and w side by side.
ODX_INLINE u8v shuffle(u8v v, const ShuffleTable& table)
{
    return (u8v)_mm512_permutexvar_epi8(load<__m512i>(table.from), (__m512i)v);
}
ODX_INLINE u8v shuffle(u8v v, u8v w, const ShuffleTable& table)
{
    return (u8v)_mm512_permutex2var_epi8((__m512i)v, load<__m512i>(table.from), (__m512i)w);
}

// Byte i from a, b or c, for i % 3 = 0, 1 or 2.
ODX_INLINE u8v everyThird(u8v a, u8v b, u8v c)
{
    const __m512i ab = _mm512_mask_blend_epi8(0x2492492492492492, (__m512i)a, (__m512i)b);
    return (u8v)_mm512_mask_blend_epi8(0x4924924924924924, ab, (__m512i)c);
}

// Byte i from byte (step * i + first) % 64.
template <int step, int first>
ODX_INLINE u8v everyNth(u8v v)
{
    static constexpr ShuffleTable table = shuffleTable([](int i) { return (step * i + first) % 64; });
    return shuffle(v, table);
}

ODX_INLINE u8x2 load2(const uint8_t* p)
{
    static constexpr ShuffleTable even = shuffleTable([](int i) { return 2 * i; }),
                                  odd = shuffleTable([](int i) { return 2 * i + 1; });
    const u8v v = load<u8v>(p), w = load<u8v>(p + 64);
    return {shuffle(v, w, even), shuffle(v, w, odd)};
}

// Channel c of pixel i is byte (3 * i + c) % 64 of a vector; each channel has all its bytes in different places.
ODX_INLINE u8x3 load3(const uint8_t* p)
{
    const u8v u = load<u8v>(p), v = load<u8v>(p + 64), w = load<u8v>(p + 128);
    return {everyNth<3, 0>(everyThird(u, w, v)), everyNth<3, 1>(everyThird(v, u, w)),
            everyNth<3, 2>(everyThird(w, v, u))};
}

ODX_INLINE u8x4 load4(const uint8_t* p)
{
    static constexpr ShuffleTable first = shuffleTable([](int i) { return 4 * (i % 32) + i / 32; }),
                                  last = shuffleTable([](int i) { return 4 * (i % 32) + i / 32 + 2; });
    const u8v t = load<u8v>(p), u = load<u8v>(p + 64), v = load<u8v>(p + 128), w = load<u8v>(p + 192);
    const auto low = [](u8v a, u8v b) { return (u8v)_mm512_shuffle_i32x4((__m512i)a, (__m512i)b, 0x44); };
    const auto high = [](u8v a, u8v b) { return (u8v)_mm512_shuffle_i32x4((__m512i)a, (__m512i)b, 0xEE); };
    const u8v ab0 = shuffle(t, u, first), ab1 = shuffle(v, w, first), cd0 = shuffle(t, u, last),
              cd1 = shuffle(v, w, last);
    return {low(ab0, ab1), high(ab0, ab1), low(cd0, cd1), high(cd0, cd1)};
}

ODX_INLINE void store2(uint8_t* p, u8v a, u8v b)
{
    static constexpr ShuffleTable low = shuffleTable([](int i) { return 64 * (i % 2) + i / 2; }),
                                  high = shuffleTable([](int i) { return 64 * (i % 2) + i / 2 + 32; });
    store(p, shuffle(a, b, low));
    store(p + 64, shuffle(a, b, high));
}

// 43 is the inverse of 3 modulo 64.
ODX_INLINE void store3(uint8_t* p, u8v a, u8v b, u8v c)
{
    const u8v u = everyNth<43, 0>(a), v = everyNth<43, 21>(b), w = everyNth<43, 42>(c);
    store(p, everyThird(u, v, w));
    store(p + 64, everyThird(v, w, u));
    store(p + 128, everyThird(w, u, v));
}

// Pairs of channels are made so that zips inside lanes of 16 bytes put four pixels into each lane.
ODX_INLINE void store4(uint8_t* p, u8v a, u8v b, u8v c, u8v d)
{
    constexpr auto pixel = [](int i) { return 16 * (i / 8 % 2) + 4 * (i / 16) + i % 8 / 2; };
    static constexpr ShuffleTable low = shuffleTable([=](int i) { return 64 * (i % 2) + pixel(i); }),
                                  high = shuffleTable([=](int i) { return 64 * (i % 2) + pixel(i) + 32; });
    const __m512i ab0 = (__m512i)shuffle(a, b, low), ab1 = (__m512i)shuffle(a, b, high),
                  cd0 = (__m512i)shuffle(c, d, low), cd1 = (__m512i)shuffle(c, d, high);
    store(p, _mm512_unpacklo_epi16(ab0, cd0));
    store(p + 64, _mm512_unpackhi_epi16(ab0, cd0));
    store(p + 128, _mm512_unpacklo_epi16(ab1, cd1));
    store(p + 192, _mm512_unpackhi_epi16(ab1, cd1));
}

// Where channel c of a pixel comes from.
template <bool mirrored>
static constexpr int channelFrom(int c)
{
    return mirrored ? 2 - c : c;
}

// A quarter of the pixels at a time; the last load ends with the last pixel. Fourth bytes are overwritten.
template <bool mirrored>
ODX_INLINE void widen3(uint8_t* q, const uint8_t* p)
{
    constexpr auto from = [](int i) { return (i / 4 * 3 + channelFrom<mirrored>(i % 4)) & 63; };
    static constexpr ShuffleTable table = shuffleTable(from),
                                  last = shuffleTable([=](int i) { return (from(i) + 16) & 63; });
    const u8v v[] = {load<u8v>(p), load<u8v>(p + 48), load<u8v>(p + 96), load<u8v>(p + 128)};
    for (int i = 0; i < 4; ++i)
        store(q + 64 * i, (u32v)shuffle(v[i], i < 3 ? table : last) | 0xFF000000);
}

template <bool mirrored>
ODX_INLINE void narrow4(uint8_t* q, const uint8_t* p)
{
    // From the two of the four vectors in which byte 64 * n of the pixels begins.
    constexpr auto from = [](int i, int n) {
        return (i + 64 * n) / 3 * 4 + channelFrom<mirrored>((i + 64 * n) % 3) - 64 * n;
    };
    static constexpr ShuffleTable first = shuffleTable([=](int i) { return from(i, 0); }),
                                  second = shuffleTable([=](int i) { return from(i, 1); }),
                                  third = shuffleTable([=](int i) { return from(i, 2); });
    const u8v t = load<u8v>(p), u = load<u8v>(p + 64), v = load<u8v>(p + 128), w = load<u8v>(p + 192);
    store(q, shuffle(t, u, first));
    store(q + 64, shuffle(u, v, second));
    store(q + 128, shuffle(v, w, third));
}

// All 192 bytes are shuffled from the 128 around each vector.
ODX_INLINE void mirror3(uint8_t* q, const uint8_t* p)
{
    constexpr auto from = [](int i) { return i / 3 * 3 + 2 - i % 3; };
    static constexpr ShuffleTable first = shuffleTable([=](int i) { return from(i); }),
                                  second = shuffleTable([=](int i) { return from(i + 64) - 1; }),
                                  third = shuffleTable([=](int i) { return from(i + 128) - 64; });
    const u8v t = load<u8v>(p), u = load<u8v>(p + 64), v = load<u8v>(p + 128);
    const u8v around = shuffle(load<u8v>(p + 1), load<u8v>(p + 65), second);
    store(q, shuffle(t, u, first));
    store(q + 64, around);
    store(q + 128, shuffle(u, v, third));
}

// ---- sums of channels ----

typedef u8x3 u8q;

ODX_INLINE u8q loadQuads(const uint8_t* p)
{
    const u8x4 v = load4(p);
    return {v.a, v.b, v.c};
}
ODX_INLINE u8q loadTriples(const uint8_t* p)
{
    return load3(p);
}

template <int a, int b, int c>
ODX_INLINE u8v fineSums(const uint8_t* p)
{
    static_assert(a <= 32767 && c <= 32767 && b <= 65534);
    // Words of the first, second, third and second byte of a pixel, from four loads, the last of which ends with
    // the last pixel.
    constexpr auto from = [](int i) { return i / 4 * 3 + (i % 4 == 3 ? 1 : i % 4); };
    static constexpr ShuffleTable table = shuffleTable(from),
                                  last = shuffleTable([=](int i) { return from(i) + 16; });
    const auto sums = [](u8v words) {
        const __m512i ac = (__m512i)((u16v)words & 0xFF), bb = (__m512i)((u16v)words >> 8);
        return (u8v)((s32v)_mm512_madd_epi16(ac, _mm512_set1_epi32(a | c << 16)) +
                     (s32v)_mm512_madd_epi16(bb, _mm512_set1_epi32(b / 2 | (b - b / 2) << 16)) + 32768);
    };
    static constexpr ShuffleTable third = shuffleTable([](int i) { return 4 * (i % 32) + 2; });
    const u8v low = shuffle(sums(shuffle(load<u8v>(p), table)), sums(shuffle(load<u8v>(p + 48), table)), third),
              high =
                  shuffle(sums(shuffle(load<u8v>(p + 96), table)), sums(shuffle(load<u8v>(p + 128), last)), third);
    return (u8v)_mm512_shuffle_i32x4((__m512i)low, (__m512i)high, 0x44);
}

// ---- words of 5, 6 and 5 bits ----

template <bool mirrored>
ODX_INLINE void widen565(uint8_t* q, const uint8_t* p)
{
    static constexpr ShuffleTable low = shuffleTable([](int i) { return i % 4 / 2 * 64 + i / 4 * 2 + i % 2; }),
                                  high =
                                      shuffleTable([](int i) { return i % 4 / 2 * 64 + i / 4 * 2 + i % 2 + 32; });
    for (int half = 0; half < 2; ++half, p += 64, q += 128) {
        // Products with 2^a + 2^b copy the high bits of a channel below the others.
        const u16v w = load<u16v>(p), first = mulHigh(w << 11, 0x0108), third = mulHigh(w & 0xF800, 0x0108),
                   middle = mulHigh(w & 0x07E0, 0x2080) << 8;
        const u8v ab = (u8v)((mirrored ? third : first) | middle), cd = (u8v)((mirrored ? first : third) | 0xFF00);
        store(q, shuffle(ab, cd, low));
        store(q + 64, shuffle(ab, cd, high));
    }
}

} // namespace odx::ODX_TARGET::simd

#endif
