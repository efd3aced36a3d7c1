// The vector layer: what SIMD kernels are written in. It is compiled once per target, each time in the target's
// own namespace, and everything in it is forced inline, so that the linker can never mix the code of two targets.
//
// Vectors are the compiler's own (+ - * & | ^ << >> and comparisons work lane by lane, modulo 2^n for integers);
// the backend adds what compilers do not find by themselves:
//
//   load<V>(p), store(p, v)      whole vectors, any alignment
//   loadWiden(p)                 kBytes / 2 bytes as a u16v, in order
//   storeNarrow(p, v)            the low bytes of a u16v whose lanes are below 256, in order
//   load2(p), load3(p), load4(p) kBytes pixels of 2, 3 or 4 interleaved bytes as one vector a channel, in order
//   store2(p, a, b), store3(p, a, b, c), store4(p, a, b, c, d)
//                                the reverse
//   widen3<mirrored>(q, p)       kBytes pixels of 3 bytes at p as pixels of 4 at q, of which the last is 255
//   narrow4<mirrored>(q, p)      the first 3 bytes of kBytes pixels of 4; mirrored: the first and the third
//                                change places
//   mirror3(q, p)                kBytes pixels of 3 bytes with the first and the third in each other's place
//   mirrorQuads(v)               the same of pixels of 4 bytes
//   mirror565(v)                 the same of words of 5, 6 and 5 bits
//   widen565<mirrored>(q, p)     kBytes words of 5, 6 and 5 bits, from the low ones up, as pixels of 4 bytes: each
//                                with copies of its high bits below, and 255; mirrored: first and third change
//                                places
//   loadTriples(p), loadQuads(p) kBytes pixels of 3 or 4 bytes, as a u8q: for sums of the first three bytes, which
//                                stand in the target's own order
//   lumaSums<a, b, c>(q)         (a * first + b * second + c * third + 128) >> 8 for each pixel of a u8q or u8x3;
//                                weights are not negative, a + b is below 256, and their sum is at most 256
//   chromaSums<a, b, c>(q)       128 + ((a * first + b * second + c * third + 128) >> 8), at most 255; positive
//                                weights are 128 in all, negative ones -128, and none is -128
//   chromaSumsOfPairs<a, b, c>(q)
//                                of every second pixel, as 16-bit lanes
//   fineSums<a, b, c>(p)         (a * first + b * second + c * third + 32768) >> 16 of kBytes pixels of 3 bytes;
//                                weights are positive, a and c below 32768, and their sum is 65535
//   min, max                     of u8v and s16v; max of s32v
//   split(v), join(pair)         bytes to 16 bits (or signed 16 to 32) and back, as a pair in the target's own
//                                lane order: even and odd lanes on x86, halves on ARM. join takes values that fit.
//   joinShifted<n>(pair)         join(pair >> n)
//   storeInOrder(p, pair)        the 32-bit lanes of a pair
//   joinClamped(pair)            join of signed values, clamped to 0..255
//   joinCentred<n>(pair)         128 + (pair >> n) of signed values, clamped to 0..255; n from 1 to 8
//   mulCentred<k>(v)             (v - 128) * k of a u8v as signed values; k up to 255
//   eachTwice(v)                 each 16-bit lane for two neighbouring bytes, as a pair in the same order
//   dot2<a, b>(p)                p[i] * a + p[i + 1] * b of s16 for each lane i, as a pair in the same order
//   dots<w...>(p)                p[i] * w0 + p[i + 1] * w1 + ... of bytes for each lane i, as a pair in the same
//                                order; an odd number of weights up to 127, the outer ones 1
//   dotsFor<n, w...>(p)          the same, with the second of the pair times 2^(8 - n) where that helps
//   joinDots<n>(pair)            joinShifted<n> of these sums; they are below 2^(8 + n)
//   mulHigh(v, k)                the upper halves of 16-bit products
//   mulRound(v, k)               (v * k + 16384) >> 15 for v and k up to 32767, of u16v and s16v
//   dotShift<n>(v, w, k, l, c)   (v * k + w * l + c) >> n of s16v, with 32-bit sums; for results that fit 16 bits
//   dotShift<n>(u, v, w, j, k, l, c)
//                                the same with three products; c is even
//   reciprocal16(v)              65536 / v, rounded, of s32v from 1 to 255
//   reverse(v)                   the last byte first
//   popCount(v)                  set bits of each byte; kCountsBits: by one instruction
//   sumOfBytes(v)                of all of them
//   addSat(v, w)                 v + w of u16v and s16v, at most and at least what 16 bits hold
//   subSat(v, w)                 v - w of u8v and u16v, at least 0
//   any(v)                       whether any byte is not 0
//   highest(v)                   the greatest byte
//   loadOnce(p)                  load<u8v>(p) for values with several uses: it stays one load with every compiler
//   loadHalves(p, q)             kBytes / 2 bytes from p, then as many from q
//   repeat(low, high)            the 16 bytes of two words, least significant first, repeated
//   rotate<n>(v)                 byte (i + n) % 16 to place i, in each 16 bytes
//   laneBits(mask)               one bit for each byte of a comparison that holds
//   anyAbove(a, b, c, d, limit)  16 bits for each vector, not all 0 where any of its bytes is above those of
//                                `limit`, which are equal; where kGroupsVectors is true, it is well faster than
//                                one vector after the other
//   storePoints(p, bytes, x, y)  the pairs (x + bytes[i], y) of 32 bits, for eight bytes
#ifndef ODX_ORLAN_SIMD_SIMD_H
#define ODX_ORLAN_SIMD_SIMD_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#define ODX_INLINE [[gnu::always_inline]] static inline
#define ODX_MEMBER [[gnu::always_inline]] inline

#if defined(__AVX512BW__) || defined(ODX_EMULATE_AVX512)
#define ODX_VECTOR_BYTES 64
#elif defined(__AVX2__)
#define ODX_VECTOR_BYTES 32
#else
#define ODX_VECTOR_BYTES 16
#endif

namespace odx::ODX_TARGET::simd
{

constexpr uint32_t kBytes = ODX_VECTOR_BYTES;

// 32-bit NEON rounds denormal floats to zero, which the scalar unit, and so the reference, does not.
#if defined(__arm__)
constexpr bool kFlushesDenormals = true;
#else
constexpr bool kFlushesDenormals = false;
#endif

#define ODX_VECTOR __attribute__((vector_size(ODX_VECTOR_BYTES)))
typedef uint8_t u8v ODX_VECTOR;
typedef int8_t s8v ODX_VECTOR;
typedef uint16_t u16v ODX_VECTOR;
typedef int16_t s16v ODX_VECTOR;
typedef uint32_t u32v ODX_VECTOR;
typedef int32_t s32v ODX_VECTOR;
typedef float f32v ODX_VECTOR;

template <class V>
ODX_INLINE V load(const void* p)
{
    V v;
    memcpy(&v, p, sizeof v);
    return v;
}

template <class V>
ODX_INLINE void store(void* p, V v)
{
    memcpy(p, &v, sizeof v);
}

// Two vectors that hold the widened lanes of one.
template <class V>
struct Pair {
    V a, b;
};
typedef Pair<u16v> u16p;
typedef Pair<s16v> s16p;
typedef Pair<s32v> s32p;
typedef Pair<u32v> u32p;

// One vector a channel.
struct u8x2 {
    u8v a, b;
};
struct u8x3 {
    u8v a, b, c;
};
struct u8x4 {
    u8v a, b, c, d;
};

template <class V>
ODX_INLINE Pair<V> operator+(const Pair<V>& p, const Pair<V>& q)
{
    return {p.a + q.a, p.b + q.b};
}
template <class V>
ODX_INLINE Pair<V> operator-(const Pair<V>& p, const Pair<V>& q)
{
    return {p.a - q.a, p.b - q.b};
}
template <class V>
ODX_INLINE Pair<V> operator<<(const Pair<V>& p, int n)
{
    return {p.a << n, p.b << n};
}

} // namespace odx::ODX_TARGET::simd

#if defined(__AVX2__)
#include "orlan/simd/x86.h"
#elif defined(__ARM_NEON)
#include "orlan/simd/neon.h"
#endif

#endif
