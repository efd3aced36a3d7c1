// Rows of interleaved bytes, where a processor's vectors can zip but not load and store interleaved: compilers
// make little of the plain loops of channels.h there. In vectors of 16 bytes as every processor has them. Each
// function does the first pixels of a row, and returns how many.
#ifndef ODX_CPU_ZIPS_H
#define ODX_CPU_ZIPS_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace odx::channels::zips
{

#define ODX_ZIPS_INLINE [[gnu::always_inline]] static inline

#if defined(ODX_ZIPS)
typedef uint8_t Bytes __attribute__((vector_size(16)));
typedef uint16_t Words __attribute__((vector_size(16)));
typedef uint64_t Halves __attribute__((vector_size(16)));

ODX_ZIPS_INLINE Bytes load(const uint8_t* p)
{
    Bytes v;
    memcpy(&v, p, sizeof v);
    return v;
}
ODX_ZIPS_INLINE void store(uint8_t* p, Bytes v)
{
    memcpy(p, &v, sizeof v);
}
ODX_ZIPS_INLINE Bytes zipLow(Bytes a, Bytes b)
{
    return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}
ODX_ZIPS_INLINE Bytes zipHigh(Bytes a, Bytes b)
{
    return __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
}
ODX_ZIPS_INLINE Bytes zipLow(Words a, Words b)
{
    return (Bytes)__builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
}
ODX_ZIPS_INLINE Bytes zipHigh(Words a, Words b)
{
    return (Bytes)__builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
}

// Zips the first half of n vectors with the second, `rounds` times. One round moves byte i of all 16 * n to 2 * i,
// modulo 16 * n - 1.
template <int rounds, int n>
ODX_ZIPS_INLINE void shuffle(Bytes (&v)[n])
{
    for (int round = 0; round < rounds; ++round) {
        Bytes next[n];
        for (int i = 0; i < n / 2; ++i) {
            next[2 * i] = zipLow(v[i], v[i + n / 2]);
            next[2 * i + 1] = zipHigh(v[i], v[i + n / 2]);
        }
        for (int i = 0; i < n; ++i)
            v[i] = next[i];
    }
}

// Four pixels of three bytes, each followed by a byte that is dropped. Writes 14 bytes, of which the last 2 are no
// pixel's.
ODX_ZIPS_INLINE void storeFour(uint8_t* dst, Bytes pixels)
{
    const Halves first = Halves{} + 0xFFFFFF, second = first << 24, v = (Halves)pixels;
    const Halves packed = (v & first) | ((v >> 8) & second);
    const uint64_t low = packed[0], high = packed[1];
    memcpy(dst, &low, 8);
    memcpy(dst + 6, &high, 8);
}

ODX_ZIPS_INLINE size_t split3(const uint8_t* __restrict src, uint8_t* __restrict a, uint8_t* __restrict b,
                              uint8_t* __restrict c, size_t count)
{
    size_t x = 0;
    for (; count - x >= 32; x += 32) {
        const uint8_t* const p = src + 3 * x;
        Bytes v[6] = {load(p), load(p + 16), load(p + 32), load(p + 48), load(p + 64), load(p + 80)};
        shuffle<5>(v); // 32 * (3 * x + k) is x + 32 * k, modulo 95
        store(a + x, v[0]), store(a + x + 16, v[1]);
        store(b + x, v[2]), store(b + x + 16, v[3]);
        store(c + x, v[4]), store(c + x + 16, v[5]);
    }
    return x;
}

ODX_ZIPS_INLINE size_t join3(const uint8_t* __restrict a, const uint8_t* __restrict b, const uint8_t* __restrict c,
                             uint8_t* __restrict dst, size_t count)
{
    size_t x = 0;
    for (; count - x > 16; x += 16) {
        const Bytes va = load(a + x), vb = load(b + x), vc = load(c + x);
        const Words ab0 = (Words)zipLow(va, vb), ab1 = (Words)zipHigh(va, vb);
        const Words c0 = (Words)zipLow(vc, vc), c1 = (Words)zipHigh(vc, vc);
        uint8_t* const p = dst + 3 * x;
        storeFour(p, zipLow(ab0, c0));
        storeFour(p + 12, zipHigh(ab0, c0));
        storeFour(p + 24, zipLow(ab1, c1));
        storeFour(p + 36, zipHigh(ab1, c1));
    }
    return x;
}

ODX_ZIPS_INLINE size_t split4(const uint8_t* __restrict src, uint8_t* __restrict a, uint8_t* __restrict b,
                              uint8_t* __restrict c, size_t count)
{
    size_t x = 0;
    for (; count - x >= 16; x += 16) {
        const uint8_t* const p = src + 4 * x;
        Bytes v[4] = {load(p), load(p + 16), load(p + 32), load(p + 48)};
        shuffle<4>(v); // 16 * (4 * x + k) is x + 16 * k, modulo 63
        store(a + x, v[0]);
        store(b + x, v[1]);
        store(c + x, v[2]);
    }
    return x;
}

ODX_ZIPS_INLINE size_t join4(const uint8_t* __restrict a, const uint8_t* __restrict b, const uint8_t* __restrict c,
                             uint8_t* __restrict dst, size_t count)
{
    size_t x = 0;
    for (; count - x >= 16; x += 16) {
        Bytes v[4] = {load(a + x), load(b + x), load(c + x), Bytes{} - 1};
        shuffle<2>(v); // 4 * (x + 16 * k) is 4 * x + k, modulo 63
        for (int i = 0; i < 4; ++i)
            store(dst + 4 * x + 16 * i, v[i]);
    }
    return x;
}

ODX_ZIPS_INLINE size_t widen(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t count)
{
    const Halves first = Halves{} + 0xFFFFFF, second = first << 32, fourths = Halves{} + 0xFF000000FF000000;
    size_t x = 0;
    for (; count - x > 4; x += 4) { // reads 14 bytes, and so past the four pixels
        uint64_t low, high;
        memcpy(&low, src + 3 * x, 8);
        memcpy(&high, src + 3 * x + 6, 8);
        const Halves v = {low, high};
        store(dst + 4 * x, (Bytes)((v & first) | ((v << 8) & second) | fourths));
    }
    return x;
}

ODX_ZIPS_INLINE size_t narrow(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t count)
{
    size_t x = 0;
    for (; count - x > 4; x += 4)
        storeFour(dst + 3 * x, load(src + 4 * x));
    return x;
}

ODX_ZIPS_INLINE size_t mirror3(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t count)
{
    size_t x = 0;
    // Every byte comes from two places behind, its own, or two before, in turns. 16 pixels are three vectors, each
    // of which begins a turn later.
    if (count > 17) {
        dst[0] = src[2];
        dst[1] = src[1];
        dst[2] = src[0];
        x = 1;
        const Bytes third0 = {255, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255};
        const Bytes third1 = {0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0};
        const Bytes third2 = {0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0};
        const auto vector = [=](size_t i, Bytes behind, Bytes own, Bytes before) {
            store(dst + i, (load(src + i + 2) & behind) | (load(src + i) & own) | (load(src + i - 2) & before));
        };
        for (; count - x > 16; x += 16) {
            vector(3 * x, third0, third1, third2);
            vector(3 * x + 16, third2, third0, third1);
            vector(3 * x + 32, third1, third2, third0);
        }
    }
    return x;
}

#else

constexpr auto kNone = [](auto...) { return size_t{0}; };
constexpr auto split3 = kNone, join3 = kNone, split4 = kNone, join4 = kNone, widen = kNone, narrow = kNone,
               mirror3 = kNone;

#endif
#undef ODX_ZIPS_INLINE

} // namespace odx::channels::zips

#endif
