// Sums of the channels of pixels that are given as a vector for each channel.
#ifndef ODX_ORLAN_SIMD_X86_SUMS_H
#define ODX_ORLAN_SIMD_X86_SUMS_H

namespace odx::ODX_TARGET::simd
{

template <int a, int b, int c, int offset>
ODX_INLINE u16v weighted(u16v first, u16v second, u16v third)
{
    return first * (uint16_t)a + second * (uint16_t)b + third * (uint16_t)c + (uint16_t)offset;
}

template <int a, int b, int c, int offset>
ODX_INLINE u8v highSums(const u8x3& v)
{
    const u16p first = split(v.a), second = split(v.b), third = split(v.c);
    return joinShifted<8>(u16p{weighted<a, b, c, offset>(first.a, second.a, third.a),
                               weighted<a, b, c, offset>(first.b, second.b, third.b)});
}

template <int a, int b, int c, int offset>
ODX_INLINE u16v highSumsOfPairs(const u8x3& v)
{
    const auto even = [](u8v bytes) { return (u16v)bytes & 0xFF; };
    return weighted<a, b, c, offset>(even(v.a), even(v.b), even(v.c)) >> 8;
}

template <int a, int b, int c, class Pixels>
ODX_INLINE u8v lumaSums(const Pixels& q)
{
    return highSums<a, b, c, 128>(q);
}

// One less, so that the greatest sum fits 16 bits.
template <int a, int b, int c, class Pixels>
ODX_INLINE u8v chromaSums(const Pixels& q)
{
    return min(highSums<a, b, c, 32640>(q), u8v{} + 254) + 1;
}
template <int a, int b, int c, class Pixels>
ODX_INLINE u16v chromaSumsOfPairs(const Pixels& q)
{
    return (u16v)min((u8v)highSumsOfPairs<a, b, c, 32640>(q), u8v{} + 254) + 1;
}

} // namespace odx::ODX_TARGET::simd

#endif
