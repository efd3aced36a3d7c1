// The vector layer: what SIMD kernels are written in. It is compiled once per target, each time in the target's
// own namespace, and everything in it is forced inline, so that the linker can never mix the code of two targets.
//
// Vectors are the compiler's own (+ - * & | ^ << >> and comparisons work lane by lane, modulo 2^n for integers);
// the backend adds what compilers do not find by themselves:
//
//   load<V>(p), store(p, v)      whole vectors, any alignment
//   loadBoth(p), storeBoth(p, pair)
//                                two neighbouring vectors of 32-bit numbers, as a pair in an order of its own
//   narrowBoth(pair)             two comparisons of lanes in that order as one of 16-bit lanes, in order
//   loadWiden(p)                 kBytes / 2 bytes as a u16v, in order
//   loadNumbers(p)               the same as 32-bit lanes
//   storeNarrow(p, v)            the low bytes of a u16v whose lanes are below 256, in order
//   load2(p), load3(p), load4(p) kBytes pixels of 2, 3 or 4 interleaved bytes as one vector a channel, in order
//   store2(p, a, b), store3(p, a, b, c), store4(p, a, b, c, d)
//                                the reverse
//   widen3<mirrored>(q, p)       kBytes pixels of 3 bytes at p as pixels of 4 at q, of which the last is 255
//   narrow4<mirrored>(q, p)      the first 3 bytes of kBytes pixels of 4; mirrored: the first and the third
//                                change places
//   mirror3(q, p), mirror4(q, p) kBytes pixels of 3 or 4 bytes with the first and the third in each other's place
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
//   pin(p)                       the pointer has its value here, in a register that further steps begin from
//   min, max                     of integers of 8, 16 and 32 bits, but not s8v
//   split(v), join(pair)         bytes to 16 bits (or signed 16 to 32) and back, as a pair in the target's own
//                                lane order: even and odd lanes on x86, halves on ARM. join takes values that fit.
//   joinShifted<n>(pair)         join(pair >> n)
//   storeInOrder(p, pair)        the 32-bit lanes of a pair; the signed 16-bit ones
//   joinSat(pair)                join of 32-bit values, at most and at least what 16 bits hold
//   weights2(two), dot2(p, w)    p[i] * two[0] + p[i + 1] * two[1] of bytes for each lane i, as signed values that
//                                fit 16 bits, in split's order; two signed bytes
//   loadInOrder(p)               kBytes bytes as 16-bit lanes, in order
//   widenInOrder(v)              the lanes of a s16v as 32 bits, in order
//   storePairs(p, v, w)          the lanes of two s16v or f32v in turn
//   narrowMask(pair)             two comparisons of 32-bit lanes, in order, as one of 16-bit lanes
//   sumOfSquares(v, w)           v * v + w * w of s16v, in order, modulo 2^32
//   abs(v)                       of s16v; that of -32768 is 32767
//   joinClamped(pair)            join of signed values, clamped to 0..255
//   joinCentred<n>(pair)         128 + (pair >> n) of signed values, clamped to 0..255; n from 1 to 8
//   mulCentred<k>(v)             (v - 128) * k of a u8v as signed values; k up to 255
//   eachTwice(v)                 each 16-bit lane for two neighbouring bytes, as a pair in the same order
//   dot2<a, b>(p)                p[i] * a + p[i + 1] * b of s16 for each lane i, as a pair in the same order
//   binomials5(p)                p[i] + 4 * p[i + 1] + 6 * p[i + 2] + 4 * p[i + 3] + p[i + 4] of s16, in the same way
//   dots<w...>(p)                p[i] * w0 + p[i + 1] * w1 + ... of bytes for each lane i, as a pair in the same
//                                order; an odd number of weights up to 127, the outer ones 1
//   dotsFor<n, w...>(p)          the same, with the second of the pair times 2^(8 - n) where that helps
//   joinDots<n>(pair)            joinShifted<n> of these sums; they are below 2^(8 + n)
//   widenPairs(p, q)             kBytes / 4 signed bytes from p and as many from q as an s16v of pairs, in the
//                                target's own order
//   repeatPair(p)                two words in the place of each such pair
//   addPairProducts(sum, v, w)   sum + both products of each of these pairs, of an s32v
//   widenQuads, repeatQuad, addQuadProducts
//                                the same for fours of bytes, signed ones from four rows and unsigned factors,
//                                where ODX_SIMD_QUADS says that there are instructions for them
//   mulHigh(v, k)                the upper halves of 16-bit products
//   mulRound(v, k)               (v * k + 16384) >> 15 for v and k up to 32767, of u16v and s16v
//   dotShift<n>(v, w, k, l, c)   (v * k + w * l + c) >> n of s16v, with 32-bit sums; for results that fit 16 bits
//   dotShift<n>(u, v, w, j, k, l, c)
//                                the same with three products; c is even
//   reciprocal16(v)              65536 / v, rounded, of s32v from 1 to 255
//   reverse(v)                   the last byte first; of u16v, the last 16 bits
//   zip<size>(v, w)              elements of `size` bytes of both in turns, in each 16 bytes: their first halves as
//                                the first vector, their second halves as the second
//   loadSixteens(p, distance)    16 bytes from each of p, p + distance ...
//   storeBytes(p, a, b, c, d)    kBytes bytes from the lanes of s32v, which are below 256, in order
//   popCount(v)                  set bits of each byte; kCountsBits: by one instruction
//   sumOfBytes(v)                of all of them
//   loadFloats(p)                kBytes / 2 bytes as a pair of floats, in order
//   following(v, next)           the lanes of a f32v from the second on, and the first of the next one
//   sumOfHalves(v)               of the lanes of a f32v: the upper half is added to the lower one until one is
//                                left
//   loadRows(p, stride)          kBytes / 16 rows of 16 bytes
//   addDistances(v, a, b)        v, a u16v that began as 0, and the distances |a - b| of the bytes of two u8v, in
//                                lanes of the target's own choice
//   sumsOfDistances(a, b, c, d)  of all that were added to each of four, up to 65535, as 16-bit words from the low
//                                ones up
//   sumOfLanes(v)                of a s32v, modulo 2^32
//   addProducts(v, a, b)         v, a s32v, and the products of two s16v, two in each lane
//   addSat(v, w), subSat(v, w)   v + w of u8v, u16v and s16v, v - w of these and s8v, clipped to what lanes hold
//   mulWide(v, w)                32-bit products of s16v, as a pair in an order of its own
//   joinWideSat(pair)            a pair of that order, clipped to 16 bits
//   rootNear(v), ratioNear(v, w) of f32v, the square root to 2^-20 of itself, of 0 or of what is at least 1; and
//                                v / w to 2^-12
//   ByteTable<size>(p)           64, 128 or 256 bytes, which stay as they are; table(v) has those at the places v
//                                of u8v, below the size
//   lookUpFour(table, v)         those at the places in each vector of a u8x4
//   lookUp(table, p, q)          those of 256 at the kLookedUp places from p, to q, which may be p
//   any(v)                       whether any byte is not 0
//   highest(v)                   the greatest byte
//   loadOnce(p)                  load<u8v>(p) for values with several uses: it stays one load with every compiler
//   loadHalves(p, q)             kBytes / 2 bytes from p, then as many from q
//   repeat(low, high)            the 16 bytes of two words, least significant first, repeated
//   rotate<n>(v)                 byte (i + n) % 16 to place i, in each 16 bytes
//   laneBits(mask)               one bit for each byte of a comparison that holds
//   mirrorBytes(word)            the bits of each of eight bytes in the opposite order
//   anyAbove(a, b, c, d, limit)  16 bits for each vector, not all 0 where any of its bytes is above those of
//                                `limit`, which are equal; where kGroupsVectors is true, it is well faster than
//                                one vector after the other
//   loadPart<n>(p)               n bytes, and 0 behind them; n is a multiple of 4 below kBytes (on ARM 4 or 8)
//   addProducts(sum, v, w)       adds the products of u8v or of s8v to lanes of a u32v, in the target's own order
//   addPartProducts<n>(sum, p, q)
//                                the same with those of n bytes, as loadPart has them
//   addBytes(sum, v), addDifferences(sum, v, w)
//                                the same with bytes, and with absolute differences of bytes
//   addWords(sum, v)             the same with 16-bit numbers below 2^15
//   sumOfLanes(v)                of a u32v
//   addRowDistances<n>(sum, p, q), addRowProducts<n>(sum, p, q), sumOfLanes(sum)
//                                distances of 8 or 16 bytes in a u16v, and products of 8 or 11 in a u32v, where
//                                ODX_SIMD_ROWS says that few bytes are worth a register
//   kRowsAtOnce                  rows that offsets from the first one reach at no cost
//   distance(v, w)               |v - w| of u8v and f32v; of s32v, at most INT32_MAX
//   kPairsVectors                two neighbouring vectors are loaded or stored by one instruction
//   storeSums(p, a, b, c, d)     that of each of four
//   addDifferencesOf8(sum, p, q) adds to each of kPatchPlaces sums i of 16 bits, PlaceSums, the absolute
//   differences of
//                                p[i] to p[i + 7] and q[0] to q[7]; reads up to p[kPatchPlaces + 7]
//   storePlaces(p, sums)         these
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

// Small processors of ARM execute in order, and wait where a result is used at once; compilers move no load across
// a store that it might read. So several results are worked out there before the first is stored.
#if defined(__ARM_NEON)
constexpr bool kWritesLast = true;
#else
constexpr bool kWritesLast = false;
#endif

#define ODX_VECTOR __attribute__((vector_size(ODX_VECTOR_BYTES)))
typedef uint8_t u8v ODX_VECTOR;
typedef int8_t s8v ODX_VECTOR;
typedef uint16_t u16v ODX_VECTOR;
typedef int16_t s16v ODX_VECTOR;
typedef uint32_t u32v ODX_VECTOR;
typedef int32_t s32v ODX_VECTOR;
typedef float f32v ODX_VECTOR;

// Where stepping costs nothing, compilers would still compute the addresses of all neighbours from one pointer.
template <class T>
ODX_INLINE void pin(T*& p)
{
#if defined(__ARM_NEON)
    asm("" : "+r"(p));
#else
    (void)p;
#endif
}

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
typedef Pair<f32v> f32p;

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

ODX_INLINE uint64_t mirrorBytesBySteps(uint64_t v)
{
    const auto swap = [&](int n, uint64_t lower) { v = (v >> n & lower) | (v & lower) << n; };
    swap(1, 0x5555555555555555);
    swap(2, 0x3333333333333333);
    swap(4, 0x0F0F0F0F0F0F0F0F);
    return v;
}

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
#include "orlan/simd/x86Distances.h"
#include "orlan/simd/x86Search.h"
#elif defined(__ARM_NEON)
#include "orlan/simd/neon.h"
#include "orlan/simd/neonDistances.h"
#include "orlan/simd/neonSearch.h"
#endif

#endif
