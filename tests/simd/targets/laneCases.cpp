#include "simd/targets/loops.h"

namespace odx::ODX_TARGET
{
using namespace loops;

namespace
{

// Of each lane a of a vector v, and b of the next one w.
#define LANES(V, primitive, plain)                                                                \
    lanes(#primitive " of " #V, [](In in, Out out, Out expected) {                                \
        const V v = load<V>(in);                                                                  \
        [[maybe_unused]] const V w = load<V>(in + kBytes);                                        \
        store(out, primitive);                                                                    \
        plainLanes<V>(in, expected, [](int64_t a, [[maybe_unused]] int64_t b) { return plain; }); \
    })
constexpr PrimitiveCase lanes(const char* name, void (*run)(In, Out, Out))
{
    return {name, 2 * kBytes, run};
}

template <class V, class Plain>
void plainLanes(In in, Out expected, Plain plain)
{
    using T = std::decay_t<decltype(V{}[0])>;
    EACH(T, kBytes / sizeof(T), plain(at<T>(in, i), at<T>(in + kBytes, i)));
}

const PrimitiveCase kCases[] = {
    LANES(u8v, min(v, w), a < b ? a : b),
    LANES(u8v, max(v, w), a < b ? b : a),
    LANES(s16v, min(v, w), a < b ? a : b),
    LANES(s16v, max(v, w), a < b ? b : a),
    LANES(s32v, min(v, w), a < b ? a : b),
    LANES(u16v, min(v, w), a < b ? a : b),
    LANES(u16v, max(v, w), a > b ? a : b),
    LANES(u32v, min(v, w), a < b ? a : b),
    LANES(u32v, max(v, w), a > b ? a : b),
    LANES(s32v, max(v, w), a < b ? b : a),
    LANES(s32v, distance(v, w), clamped(a < b ? b - a : a - b, 0, INT32_MAX)),
    LANES(u16v, addSat(v, w), clamped(a + b, 0, 65535)),
    LANES(s16v, addSat(v, w), clamped(a + b, -32768, 32767)),
    LANES(u8v, addSat(v, w), clamped(a + b, 0, 255)),
    LANES(s8v, subSat(v, w), clamped(a - b, -128, 127)),
    LANES(s16v, subSat(v, w), clamped(a - b, -32768, 32767)),
    LANES(s16v, joinWideSat(ofHalves<s32p>(mulWide(v, w), [](s32v half) { return half >> 5; })),
          clamped(a* b >> 5, -32768, 32767)),
    LANES(u8v, subSat(v, w), clamped(a - b, 0, 255)),
    LANES(u16v, subSat(v, w), clamped(a - b, 0, 65535)),
    LANES(u8v, join(split(v)), a),
    LANES(u8v, joinShifted<7>(ofHalves<u16p>(split(v), [](u16v half) { return half * 127 + 3; })),
          (a * 127 + 3) >> 7),
    LANES(s16v, joinShifted<9>(ofHalves<s32p>(split(v), [](s32v half) { return half * 511; })), (a * 511) >> 9),
    LANES(s16v, joinSat(ofHalves<s32p>(split(v), [](s32v half) { return half * 2; })),
          clamped(2 * a, -32768, 32767)),
    LANES(s16v, abs(v), clamped(a < 0 ? -a : a, 0, 32767)),
    LANES(u8v, joinClamped(ofHalves<s16p>(split(v), [](s16v half) { return half * 257 + INT16_MIN; })),
          clamped(a * 257 - 32768, 0, 255)),
    LANES(u8v, joinClamped(ofHalves<s16p>(split(v), [](s16v half) { return half * 2 - 130; })),
          clamped(a * 2 - 130, 0, 255)),
    LANES(u8v, joinCentred<7>(ofHalves<s16p>(split(v), [](s16v half) { return half * 257 + INT16_MIN; })),
          clamped(128 + ((a * 257 - 32768) >> 7), 0, 255)),
    LANES(u8v, joinCentred<8>(mulCentred<149>(v)), 128 + (((a - 128) * 149) >> 8)),
    LANES(u16v, mulHigh(v, 52429), (a * 52429) >> 16),
    LANES(u16v, mulRound(v & 0x7FFF, 23170), ((a & 0x7FFF) * 23170 + 16384) >> 15),
    LANES(s16v, mulRound(v, 32767), (a * 32767 + 16384) >> 15),
    LANES(s16v, dotShift<15>(v, w, 20000, -12767, 16384), (a * 20000 - b * 12767 + 16384) >> 15),
    LANES(s16v, dotShift<15>(v, w, v >> 1, 9798, 3736, -18470, 16384),
          (a * 9798 + b * 3736 - (a >> 1) * 18470 + 16384) >> 15),
    LANES(s32v, reciprocal16(max(v & 0xFF, s32v{} + 1)),
          (131072 + clamped(a & 0xFF, 1, 255)) / (2 * clamped(a & 0xFF, 1, 255))),
    LANES(u16v, mirror565(v), a << 11 | (a & 0x7E0) | a >> 11),
    LANES(u8v, popCount(v), __builtin_popcountll(a)),
};

} // namespace

extern const test::PrimitiveCases laneCases;
const test::PrimitiveCases laneCases = {kCases, sizeof kCases / sizeof *kCases};

} // namespace odx::ODX_TARGET
