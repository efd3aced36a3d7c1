// Stands in front of the compiler's header when the AVX-512 kernels are built for a processor without AVX-512:
// SIMDe carries the 64-byte intrinsics out on smaller vectors, lane by lane as documented.
#pragma GCC system_header
#include_next <immintrin.h>

#ifndef ODX_TESTS_EMULATION_IMMINTRIN_H
#define ODX_TESTS_EMULATION_IMMINTRIN_H

#define SIMDE_ENABLE_NATIVE_ALIASES
#include <simde/x86/avx512.h>

// What SIMDe's releases lack, or define so that it cannot be used.
#include <stdint.h>
#include <string.h>

namespace odx_emulation
{

// f(i) gives the i-th lane of the result.
template <class Lane, class F>
static inline __m512i lanes(F f)
{
    Lane result[64 / sizeof(Lane)];
    for (size_t i = 0; i < 64 / sizeof(Lane); ++i)
        result[i] = static_cast<Lane>(f(i));
    __m512i v;
    memcpy(&v, result, sizeof v);
    return v;
}

template <class Lane, class V>
struct Lanes {
    Lane lane[sizeof(V) / sizeof(Lane)];
    explicit Lanes(V v) { memcpy(lane, &v, sizeof v); }
    Lane operator[](size_t i) const { return lane[i]; }
};

static inline __m512i cvtepu8_epi16(__m256i a)
{
    const Lanes<uint8_t, __m256i> v(a);
    return lanes<uint16_t>([&](size_t i) { return v[i]; });
}

static inline __m512i mulhi_epu16(__m512i a, __m512i b)
{
    const Lanes<uint16_t, __m512i> v(a), w(b);
    return lanes<uint16_t>([&](size_t i) { return (uint32_t{v[i]} * w[i]) >> 16; });
}

static inline __m512i alignr_epi8(__m512i a, __m512i b, size_t n)
{
    const Lanes<uint8_t, __m512i> upper(a), lower(b);
    return lanes<uint8_t>([&](size_t i) {
        const size_t lane = i & ~size_t{15}, from = i % 16 + n;
        return from < 16 ? lower[lane + from] : upper[lane + from - 16];
    });
}

} // namespace odx_emulation

#define _mm512_cvtepu8_epi16(a) odx_emulation::cvtepu8_epi16(a)
#define _mm512_mulhi_epu16(a, b) odx_emulation::mulhi_epu16(a, b)
#undef _mm512_alignr_epi8
#define _mm512_alignr_epi8(a, b, n) odx_emulation::alignr_epi8(a, b, n)
#undef _mm512_madd_epi16
#define _mm512_madd_epi16(a, b) simde_mm512_madd_epi16(a, b)

#endif
