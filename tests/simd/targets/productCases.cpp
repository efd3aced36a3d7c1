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
};

} // namespace

extern const test::PrimitiveCases productCases;
const test::PrimitiveCases productCases = {kCases, sizeof kCases / sizeof *kCases};

} // namespace odx::ODX_TARGET
