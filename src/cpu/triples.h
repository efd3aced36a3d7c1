// Rows of three-byte pixels. The loops say what is done, and compilers turn them into three-way loads and stores
// where a processor has these. The x86-64 baseline has no shuffle that takes bytes three apart, so that there the
// same is done in groups of vectors of 16 bytes.
#ifndef ODX_CPU_TRIPLES_H
#define ODX_CPU_TRIPLES_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace odx::triples
{

#define ODX_TRIPLES_INLINE [[gnu::always_inline]] static inline

#if defined(__SSE2__)
typedef uint8_t Bytes __attribute__((vector_size(16)));
typedef uint16_t Words __attribute__((vector_size(16)));
typedef uint64_t Halves __attribute__((vector_size(16)));

ODX_TRIPLES_INLINE Bytes load(const uint8_t* p)
{
    Bytes v;
    memcpy(&v, p, sizeof v);
    return v;
}
ODX_TRIPLES_INLINE void store(uint8_t* p, Bytes v)
{
    memcpy(p, &v, sizeof v);
}
ODX_TRIPLES_INLINE Bytes zipLow(Bytes a, Bytes b)
{
    return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}
ODX_TRIPLES_INLINE Bytes zipHigh(Bytes a, Bytes b)
{
    return __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
}
ODX_TRIPLES_INLINE Bytes zipLow(Words a, Words b)
{
    return (Bytes)__builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
}
ODX_TRIPLES_INLINE Bytes zipHigh(Words a, Words b)
{
    return (Bytes)__builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
}

// Four pixels of three bytes, each followed by a byte that is dropped. Writes 14 bytes, of which the last 2 are no
// pixel's.
ODX_TRIPLES_INLINE void storeFour(uint8_t* dst, Bytes pixels)
{
    const Halves first = Halves{} + 0xFFFFFF, second = first << 24, v = (Halves)pixels;
    const Halves packed = (v & first) | ((v >> 8) & second);
    memcpy(dst, &packed, 8);
    memcpy(dst + 6, reinterpret_cast<const char*>(&packed) + 8, 8);
}
#endif

// Bytes 3 * x, 3 * x + 1 and 3 * x + 2 of the source become a[x], b[x] and c[x].
ODX_TRIPLES_INLINE void split(const uint8_t* __restrict src, uint8_t* __restrict a, uint8_t* __restrict b,
                              uint8_t* __restrict c, size_t count)
{
    size_t x = 0;
#if defined(__SSE2__)
    // A zip of the two halves of 96 bytes moves byte i to 2 * i modulo 95. Five of them move byte 3 * x + k to
    // 32 * (3 * x + k) = x + 32 * k.
    for (; count - x >= 32; x += 32) {
        const uint8_t* const p = src + 3 * x;
        Bytes v0 = load(p), v1 = load(p + 16), v2 = load(p + 32);
        Bytes v3 = load(p + 48), v4 = load(p + 64), v5 = load(p + 80);
        for (int i = 0; i < 5; ++i) {
            const Bytes w0 = zipLow(v0, v3), w1 = zipHigh(v0, v3), w2 = zipLow(v1, v4);
            const Bytes w3 = zipHigh(v1, v4), w4 = zipLow(v2, v5), w5 = zipHigh(v2, v5);
            v0 = w0, v1 = w1, v2 = w2, v3 = w3, v4 = w4, v5 = w5;
        }
        store(a + x, v0), store(a + x + 16, v1);
        store(b + x, v2), store(b + x + 16, v3);
        store(c + x, v4), store(c + x + 16, v5);
    }
#endif
    for (; x < count; ++x) {
        a[x] = src[3 * x];
        b[x] = src[3 * x + 1];
        c[x] = src[3 * x + 2];
    }
}

// The reverse.
ODX_TRIPLES_INLINE void join(const uint8_t* __restrict a, const uint8_t* __restrict b, const uint8_t* __restrict c,
                             uint8_t* __restrict dst, size_t count)
{
    size_t x = 0;
#if defined(__SSE2__)
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
#endif
    for (; x < count; ++x) {
        dst[3 * x] = a[x];
        dst[3 * x + 1] = b[x];
        dst[3 * x + 2] = c[x];
    }
}

// Pixels of four bytes from pixels of three: the fourth byte is 255.
ODX_TRIPLES_INLINE void widen(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t count)
{
    size_t x = 0;
#if defined(__SSE2__)
    // Reads 14 bytes, and so past the four pixels.
    const Halves first = Halves{} + 0xFFFFFF, second = first << 32, fourths = Halves{} + 0xFF000000FF000000;
    for (; count - x > 4; x += 4) {
        Halves v;
        memcpy(&v, src + 3 * x, 8);
        memcpy(reinterpret_cast<char*>(&v) + 8, src + 3 * x + 6, 8);
        store(dst + 4 * x, (Bytes)((v & first) | ((v << 8) & second) | fourths));
    }
#endif
    for (; x < count; ++x) {
        dst[4 * x] = src[3 * x];
        dst[4 * x + 1] = src[3 * x + 1];
        dst[4 * x + 2] = src[3 * x + 2];
        dst[4 * x + 3] = 255;
    }
}

// Pixels of three bytes from pixels of four: the fourth byte is dropped.
ODX_TRIPLES_INLINE void narrow(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t count)
{
    size_t x = 0;
#if defined(__SSE2__)
    for (; count - x > 4; x += 4)
        storeFour(dst + 3 * x, load(src + 4 * x));
#endif
    for (; x < count; ++x) {
        dst[3 * x] = src[4 * x];
        dst[3 * x + 1] = src[4 * x + 1];
        dst[3 * x + 2] = src[4 * x + 2];
    }
}

// Exchanges the first and the third byte of each pixel.
ODX_TRIPLES_INLINE void mirror(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t count)
{
    const auto one = [=](size_t x) {
        dst[3 * x] = src[3 * x + 2];
        dst[3 * x + 1] = src[3 * x + 1];
        dst[3 * x + 2] = src[3 * x];
    };
    size_t x = 0;
#if defined(__SSE2__)
    // Every byte comes from two places before, its own, or two behind, in turns. 16 pixels are three vectors, each
    // of which begins a turn later.
    if (count > 17) {
        one(x++);
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
#endif
    for (; x < count; ++x)
        one(x);
}

#undef ODX_TRIPLES_INLINE

} // namespace odx::triples

#endif
