#include "simd/targets/loops.h"

#include "orlan/simd/products.h"

namespace odx::ODX_TARGET
{

using namespace loops;

namespace
{

const PrimitiveCase kCases[] = {
    {"interleave, addPairs and halves", 2 * kBytes + 4,
     [](In in, Out out, Out expected) {
         const s16v v = load<s16v>(in), w = load<s16v>(in + kBytes);
         const auto* const pair = reinterpret_cast<const int16_t*>(in + 2 * kBytes);
         const u32v start = u32v{} + 12345;
         const u32p sums = addPairs({start, start}, interleave(v, w), repeatPair(pair));
         const s16p both = halves(sums);
         store(out, both.a);
         store(out + kBytes, both.b);
         store(out + 2 * kBytes, joinWideSat({(s32v)sums.a >> 7, (s32v)sums.b >> 7}));
         for (size_t i = 0; i < kBytes / 2; ++i) {
             const uint32_t sum = 12345 + (uint32_t)(v[i] * pair[0]) + (uint32_t)(w[i] * pair[1]);
             put<uint16_t>(expected, i, sum);
             put<uint16_t>(expected + kBytes, i, sum >> 16);
             put<int16_t>(expected + 2 * kBytes, i, clamped((int32_t)sum >> 7, -32768, 32767));
         }
     }},
    {"neighbours, addPairs and atTop", 2 * kBytes + 6,
     [](In in, Out out, Out expected) {
         const auto* const p = reinterpret_cast<const int16_t*>(in);
         const auto* const pair = reinterpret_cast<const int16_t*>(in + 2 * kBytes + 2);
         const u32p sums = addPairs(atTop(load<s16v>(in + kBytes + 2)), neighbours(p), repeatPair(pair));
         store(out, joinSat({(s32v)sums.a >> 13, (s32v)sums.b >> 13}));
         for (size_t i = 0; i < kBytes / 2; ++i) {
             const uint32_t top = (uint32_t)at<uint16_t>(in + kBytes + 2, i) << 16;
             const uint32_t sum = top + (uint32_t)(p[i] * pair[0]) + (uint32_t)(p[i + 1] * pair[1]);
             put<int16_t>(expected, i, clamped((int32_t)sum >> 13, -32768, 32767));
         }
     }},
#ifdef ODX_SIMD_BYTE_PAIRS
    {"mulBytePairs, addBytePairs and addNeighbours", 4 * kBytes + 2,
     [](In in, Out out, Out expected) {
         const auto* const p = reinterpret_cast<const int8_t*>(in);
         const int8_t two[] = {(int8_t)(p[4 * kBytes] / 2), (int8_t)(p[4 * kBytes + 1] / 2)};
         const s16x4 sums = addBytePairs(mulBytePairs(p, repeatBytes(two)), p + 2 * kBytes, repeatBytes(two));
         const s16v each[] = {sums.a, sums.b, sums.c, sums.d};
         for (size_t i = 0; i < 4; ++i)
             store(out + i * kBytes, addNeighbours(s32v{} + 7, each[i]));
         for (size_t i = 0; i < kBytes; ++i) {
             const int first = p[2 * i] + p[2 * i + 2 * kBytes], second = p[2 * i + 1] + p[2 * i + 1 + 2 * kBytes];
             put<int32_t>(expected, i, 7 + first * two[0] + second * two[1]);
         }
     }},
#endif
};

} // namespace

extern const test::PrimitiveCases productCases;
const test::PrimitiveCases productCases = {kCases, sizeof kCases / sizeof *kCases};

} // namespace odx::ODX_TARGET
