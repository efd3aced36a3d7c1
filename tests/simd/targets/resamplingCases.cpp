#include "simd/targets/loops.h"

#include "orlan/simd/resampling.h"

namespace odx::ODX_TARGET
{
using namespace loops;

namespace
{

const PrimitiveCase kCases[] = {
    {"sumPairs and dotPairs of bytes", kBytes,
     [](In in, Out out, Out expected) {
         storeAll(out, sumPairs(load<u8v>(in)), dotPairs<1, 0>(load<u8v>(in)), dotPairs<127, 1>(load<u8v>(in)));
         EACH(uint16_t, kBytes / 2, in[2 * i] + in[2 * i + 1]);
         expected += kBytes;
         EACH(uint16_t, kBytes / 2, in[2 * i]);
         expected += kBytes;
         EACH(uint16_t, kBytes / 2, in[2 * i] * 127 + in[2 * i + 1]);
     }},
    {"sumPairs of u16v", 2 * kBytes,
     [](In in, Out out, Out expected) {
         store(out, sumPairs(load<u16v>(in) >> 1, load<u16v>(in + kBytes) >> 1));
         EACH(uint16_t, kBytes / 2, (at<uint16_t>(in, 2 * i) >> 1) + (at<uint16_t>(in, 2 * i + 1) >> 1));
     }},
    {"narrow of u16v", 2 * kBytes,
     [](In in, Out out, Out expected) {
         store(out, narrow(load<u16v>(in) & 255, load<u16v>(in + kBytes) & 255));
         EACH(uint8_t, kBytes, in[2 * i]);
     }},
    {"narrow of s32v", 4 * kBytes,
     [](In in, Out out, Out expected) {
         const auto numbers = [=](size_t k) { return load<s32v>(in + kBytes * k) & 0x7FFF; };
         store(out, narrow(numbers(0), numbers(1), numbers(2), numbers(3)));
         EACH(uint8_t, kBytes, clamped(at<int32_t>(in, i) & 0x7FFF, 0, 255));
     }},
    {"narrow of small s32v", 4 * kBytes,
     [](In in, Out out, Out expected) {
         const auto numbers = [=](size_t k) { return load<s32v>(in + kBytes * k) & 0x1FF; };
         store(out, narrow(numbers(0), numbers(1), numbers(2), numbers(3)));
         EACH(uint8_t, kBytes, clamped(at<int32_t>(in, i) & 0x1FF, 0, 255));
     }},
    {"storePairs2", 2 * kBytes,
     [](In in, Out out, Out expected) {
         storePairs2(out, load<u8v>(in), load<u8v>(in + kBytes));
         EACH(uint16_t, kBytes, at<uint16_t>(in + i % 2 * kBytes, i / 2));
     }},
    {"load2 of floats", 2 * kBytes,
     [](In in, Out out, Out expected) {
         float numbers[kBytes / 2];
         memcpy(numbers, in, sizeof numbers);
         const f32x2 v = load2(numbers);
         storeAll(out, v.a, v.b);
         EACH(uint32_t, kBytes / 2, at<uint32_t>(in, i % (kBytes / 4) * 2 + i / (kBytes / 4)));
     }},
    {"toFloats", kBytes / 4,
     [](In in, Out out, Out expected) {
         store(out, toFloats(in));
         EACH(float, kBytes / 4, in[i]);
     }},
    {"lookup", 9 + kLookupWindow + kBytes,
     [](In in, Out out, Out expected) {
         uint32_t bases[kBytes / kLookup];
         for (size_t i = 0; i < kBytes / kLookup; ++i)
             bases[i] = i % 2 == 0 ? 9 : 4;
         const In places = in + 9 + kLookupWindow;
         store(out, lookup(in, bases, load<u8v>(places) & (uint8_t)(kLookupWindow - 1)));
         EACH(uint8_t, kBytes, in[bases[i / kLookup] + places[i] % kLookupWindow]);
     }},
    {"storeWeighted", 6 * kBytes,
     [](In in, Out out, Out expected) {
         int16_t weights[2 * kBytes];
         int32_t sums[kBytes];
         memcpy(weights, in + 2 * kBytes, sizeof weights);
         storeWeighted(sums, load<u8v>(in), load<u8v>(in + kBytes), weights);
         memcpy(out, sums, sizeof sums);
         EACH(int32_t, kBytes, in[i] * weights[2 * i] + in[kBytes + i] * weights[2 * i + 1]);
     }},
};

} // namespace

extern const test::PrimitiveCases resamplingCases;
const test::PrimitiveCases resamplingCases = {kCases, sizeof kCases / sizeof *kCases};

} // namespace odx::ODX_TARGET
