#include "simd/targets/loops.h"

#include "orlan/simd/fetching.h"
#include "orlan/simd/gathering.h"

namespace odx::ODX_TARGET
{
using namespace loops;

namespace
{

constexpr size_t kLanes = kBytes / 4, kStride = 37;

// Offsets of pixels whose squares end within the first 4 * kStride bytes.
template <uint32_t C>
uint32_t offsetOf(In in, size_t lane)
{
    return in[lane] % (kStride - 2 * C) + in[kBytes + lane] % 3 * kStride;
}

template <uint32_t C>
void squares(In in, Out out, Out expected)
{
    uint32_t offsets[kLanes];
    for (size_t i = 0; i < kLanes; ++i)
        offsets[i] = offsetOf<C>(in, i);
    u32v v[C];
    gatherSquares<C>(in, kStride, load<u32v>(offsets), v);
    for (uint32_t c = 0; c < C; ++c, out += kBytes, expected += kBytes) {
        store(out, v[c]);
        EACH(uint8_t, kBytes, in[offsets[i / 4] + i % 2 * C + i % 4 / 2 * kStride + c]);
    }
}

void sixteens(In in, Out out, Out expected)
{
    uint32_t offsets[kLanes];
    for (size_t i = 0; i < kLanes; ++i)
        offsets[i] = in[i] % 100;
    u32v v[4];
    gatherSixteens(in, load<u32v>(offsets), v);
    storeAll(out, v[0], v[1], v[2], v[3]);
    EACH(uint8_t, 4 * kBytes, in[offsets[i % kBytes / 4] + i / kBytes * 4 + i % 4]);
}

// Three tables, and pixels behind them.
void entries(In in, Out out, Out expected)
{
    const uint8_t* const pixels = in + 3 * kTable;
    u32p sums[3];
    sumsOfEntries(in, pixels, sums);
    for (size_t k = 0; k < 3; ++k, out += 2 * kBytes, expected += 2 * kBytes) {
        storeAll(out, sums[k].a, sums[k].b);
        const auto word = [=](const uint8_t* p, size_t c) { return at<uint32_t>(in + kTable * c, 4 * p[c] + k); };
        const auto sum = [=](const uint8_t* p) { return word(p, 0) + word(p, 1) + word(p, 2); };
        EACH(uint32_t, 2 * kLanes, sum(pixels + i % kLanes / 4 * 64 + i / kLanes * 16 + i % 4 * 4));
    }
}

#if ODX_VECTOR_BYTES == 64
template <uint32_t C>
void window(In in, Out out, Out expected)
{
    const auto x = [=](size_t i) { return in[i] % (Window<C>::columns - 1); };
    const auto y = [=](size_t i) { return in[kBytes + i] % (Window<C>::rows - 1); };
    uint32_t columns[kLanes], rows[kLanes];
    for (size_t i = 0; i < kLanes; ++i) {
        columns[i] = x(i);
        rows[i] = y(i);
    }
    u32v v[C];
    Window<C>::find(in, kStride, load<u32v>(columns), load<u32v>(rows), v);
    for (uint32_t c = 0; c < C; ++c, out += kBytes, expected += kBytes) {
        store(out, v[c]);
        EACH(uint8_t, kBytes, in[(y(i / 4) + i % 4 / 2) * kStride + (x(i / 4) + i % 2) * C + c]);
    }
}
#endif

const PrimitiveCase kCases[] = {
    {"gatherSquares of one byte", 5 * kStride, squares<1>},
    {"gatherSquares of three bytes", 5 * kStride, squares<3>},
    {"gatherSquares of four bytes", 5 * kStride, squares<4>},
    {"gatherSixteens", 5 * kStride, sixteens},
    {"sumsOfEntries", 3 * kTable + 4 * kBytes, entries},
    CASE("mulRound15", 2 * kBytes, int16_t, kBytes / 2,
         (at<int16_t>(in, i) / 2 * at<int16_t>(in + kBytes, i) + 16384) >> 15,
         store(out, mulRound15(load<s16v>(in) / 2, load<s16v>(in + kBytes)))),
    CASE("mulRound16", 2 * kBytes, int16_t, kBytes / 2,
         (at<int16_t>(in, i) * at<int16_t>(in + kBytes, i) + 32768) >> 16,
         store(out, mulRound16(load<s16v>(in), load<s16v>(in + kBytes)))),
    {"transposePairs", 2 * kBytes,
     [](In in, Out out, Out expected) {
         const s16p both = transposePairs(load<s16v>(in), load<s16v>(in + kBytes));
         storeAll(out, both.a, both.b);
         EACH(int16_t, kBytes, at<int16_t>(in + i % 2 * kBytes, i % (kBytes / 2) / 2 * 2 + i / (kBytes / 2)));
     }},
    CASE("floatsOfByte", kBytes, float, kLanes, in[4 * i + 2], store(out, floatsOfByte<2>(load<u32v>(in)))),
#if ODX_VECTOR_BYTES == 64
    {"Window of one byte", 9 * kStride, window<1>},
    {"Window of three bytes", 9 * kStride, window<3>},
#endif
};

} // namespace

extern const test::PrimitiveCases gatheringCases;
const test::PrimitiveCases gatheringCases = {kCases, sizeof kCases / sizeof *kCases};

} // namespace odx::ODX_TARGET
