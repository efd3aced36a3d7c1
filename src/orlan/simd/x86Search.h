// Tables, tests of whole vectors, and the places of what was found.
#ifndef ODX_ORLAN_SIMD_X86_SEARCH_H
#define ODX_ORLAN_SIMD_X86_SEARCH_H

namespace odx::ODX_TARGET::simd
{

#if ODX_VECTOR_BYTES == 64
template <uint32_t size>
struct ByteTable {
    __m512i part[size / 64];

    ODX_MEMBER explicit ByteTable(const uint8_t* table) { memcpy(part, table, size); }
    ODX_MEMBER u8v operator()(u8v v) const
    {
        const __m512i index = (__m512i)v;
        if constexpr (size == 64) {
            return (u8v)_mm512_permutexvar_epi8(index, part[0]);
        } else if constexpr (size == 128) {
            return (u8v)_mm512_permutex2var_epi8(part[0], index, part[1]);
        } else {
            const __m512i low = _mm512_permutex2var_epi8(part[0], index, part[1]),
                          high = _mm512_permutex2var_epi8(part[2], index, part[3]);
            return (u8v)_mm512_mask_blend_epi8(_mm512_movepi8_mask(index), low, high);
        }
    }
};
#else
// Each part of 16 entries is a difference to the one before, so that those up to a value's part sum to its entry:
// the others find a negative index, and give 0.
template <uint32_t size>
struct ByteTable {
    __m256i part[size / 16];

    ODX_MEMBER explicit ByteTable(const uint8_t* table)
    {
        for (uint32_t i = 0; i < size / 16; ++i) {
            const __m128i own = _mm_loadu_si128((const __m128i*)(table + 16 * i));
            part[i] = inEachLane(i % 8 == 0 ? own : own ^ _mm_loadu_si128((const __m128i*)(table + 16 * i - 16)));
        }
    }
    ODX_MEMBER u8v operator()(u8v v) const
    {
        u8v found = {};
        for (uint32_t half = 0; half < size; half += 128) {
            const s8v index = (s8v)(v ^ (uint8_t)half); // negative in the other half
            for (uint32_t i = 0; i < 8 && half + 16 * i < size; ++i) {
                const s8v within =
                    size <= 128 ? index - (int8_t)(16 * i) : subSat(index, s8v{} + (int8_t)(16 * i));
                found ^= (u8v)_mm256_shuffle_epi8(part[half / 16 + i], (__m256i)within);
            }
        }
        return found;
    }
};
#endif

template <uint32_t size>
ODX_INLINE u8x4 lookUpFour(const ByteTable<size>& table, const u8x4& v)
{
    return {table(v.a), table(v.b), table(v.c), table(v.d)};
}
constexpr uint32_t kLookedUp = kBytes;
ODX_INLINE void lookUp(const ByteTable<256>& table, const uint8_t* in, uint8_t* out)
{
    store(out, table(load<u8v>(in)));
}

ODX_INLINE bool any(u8v v)
{
#if ODX_VECTOR_BYTES == 64
    return _mm512_test_epi64_mask((__m512i)v, (__m512i)v) != 0;
#else
    return _mm256_testz_si256((__m256i)v, (__m256i)v) == 0;
#endif
}

// GCC repeats loads as operands of each instruction, which kernels that are bound by loads pay for.
ODX_INLINE u8v loadOnce(const uint8_t* p)
{
    u8v v = load<u8v>(p);
#if !defined(__clang__) && !defined(ODX_EMULATE_AVX512)
    asm("" : "+v"(v));
#endif
    return v;
}

ODX_INLINE u8v loadHalves(const uint8_t* p, const uint8_t* q)
{
#if ODX_VECTOR_BYTES == 64
    return (u8v)_mm512_inserti64x4(_mm512_castsi256_si512(_mm256_loadu_si256((const __m256i*)p)),
                                   _mm256_loadu_si256((const __m256i*)q), 1);
#else
    return (u8v)_mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128((const __m128i*)p)),
                                        _mm_loadu_si128((const __m128i*)q), 1);
#endif
}

ODX_INLINE u8v repeat(uint64_t low, uint64_t high)
{
    return (u8v)inEachLane(_mm_set_epi64x((long long)high, (long long)low));
}

template <int n>
ODX_INLINE u8v rotate(u8v v)
{
    return (u8v)ODX_MM(alignr_epi8)((ODX_MI)v, (ODX_MI)v, n);
}

// A test of a whole vector sets a flag.
constexpr bool kGroupsVectors = false;
ODX_INLINE uint64_t anyAbove(u8v a, u8v b, u8v c, u8v d, u8v limit)
{
    const auto flag = [=](u8v v, int place) { return uint64_t{any(subSat(v, limit))} << place; };
    return flag(a, 0) | flag(b, 16) | flag(c, 32) | flag(d, 48);
}

ODX_INLINE void storePoints(uint32_t* p, const uint8_t* bytes, uint32_t x, uint32_t y)
{
    const long long first = (long long)(uint64_t{y} << 32 | x);
    const __m128i eight = _mm_loadl_epi64((const __m128i*)bytes);
#if ODX_VECTOR_BYTES == 64
    store(p, _mm512_add_epi64(_mm512_cvtepu8_epi64(eight), _mm512_set1_epi64(first)));
#else
    store(p, _mm256_add_epi64(_mm256_cvtepu8_epi64(eight), _mm256_set1_epi64x(first)));
    store(p + 8, _mm256_add_epi64(_mm256_cvtepu8_epi64(_mm_srli_si128(eight, 4)), _mm256_set1_epi64x(first)));
#endif
}

ODX_INLINE uint64_t laneBits(s8v mask)
{
#if ODX_VECTOR_BYTES == 64
    return _mm512_movepi8_mask((__m512i)mask);
#else
    return (uint32_t)_mm256_movemask_epi8((__m256i)mask);
#endif
}

ODX_INLINE uint8_t highest(u8v v)
{
#if ODX_VECTOR_BYTES == 64
    const __m512i all64 = (__m512i)v;
    const __m256i half = _mm256_max_epu8(_mm512_castsi512_si256(all64), _mm512_extracti64x4_epi64(all64, 1));
#else
    const __m256i half = (__m256i)v;
#endif
    const __m128i all = _mm_max_epu8(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1));
    // The processor has a minimum of 16-bit lanes, so the bytes are inverted and reduced to pairs first.
    const __m128i inverted = _mm_xor_si128(all, _mm_set1_epi8(-1));
    const __m128i pairs = _mm_min_epu8(inverted, _mm_srli_epi16(inverted, 8));
    return (uint8_t)~_mm_cvtsi128_si32(_mm_minpos_epu16(pairs));
}

ODX_INLINE uint64_t mirrorBytes(uint64_t v)
{
    return mirrorBytesBySteps(v);
}

} // namespace odx::ODX_TARGET::simd

#endif
