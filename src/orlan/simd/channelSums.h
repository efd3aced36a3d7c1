// Sums of the channels of pixels, for targets that have each channel as a vector, and for channels that are
// computed.
#ifndef ODX_ORLAN_SIMD_CHANNEL_SUMS_H
#define ODX_ORLAN_SIMD_CHANNEL_SUMS_H

namespace odx::ODX_TARGET::simd
{

template <int a, int b, int c, int offset>
ODX_INLINE u8v highSums(const u8x3& v)
{
    constexpr uint16_t first = (uint16_t)offset;
    return joinShifted<8>(mulAdd<c>(mulAdd<b>(mulAdd<a>(u16p{u16v{} + first, u16v{} + first}, v.a), v.b), v.c));
}

template <int a, int b, int c, int offset>
ODX_INLINE u16v highSumsOfPairs(const u8x3& v)
{
    const auto even = [](u8v bytes) { return (u16v)bytes & 0xFF; };
    return (even(v.a) * (uint16_t)a + even(v.b) * (uint16_t)b + even(v.c) * (uint16_t)c + (uint16_t)offset) >> 8;
}

} // namespace odx::ODX_TARGET::simd

#endif
