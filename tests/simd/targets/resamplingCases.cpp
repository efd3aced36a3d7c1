#include "simd/targets/loops.h"

#include "orlan/simd/resampling.h"

namespace odx::ODX_TARGET
{
using namespace loops;

namespace
{

template <int mask>
void narrowed(In in, Out out, Out expected)
{
    const auto words = [=](size_t k) { return load<s32v>(in + kBytes * k) & mask; };
    store(out, narrow(words(0), words(1), words(2), words(3)));
    EACH(uint8_t, kBytes, clamped(at<int32_t>(in, i) & mask, 0, 255));
}

const PrimitiveCase kCases[] = {
    CASE("sumPairs", kBytes, uint16_t, kBytes / 2, in[2 * i] + in[2 * i + 1], store(out, sumPairs(load<u8v>(in)))),
    CASE("dotPairs of firsts", kBytes, uint16_t, kBytes / 2, in[2 * i], store(out, dotPairs<1, 0>(load<u8v>(in)))),
    CASE("dotPairs", kBytes, uint16_t, kBytes / 2, in[2 * i] * 127 + in[2 * i + 1],
         store(out, dotPairs<127, 1>(load<u8v>(in)))),
    CASE("sumPairs of u16v", 2 * kBytes, uint16_t, kBytes / 2,
         (at<uint16_t>(in, 2 * i) >> 1) + (at<uint16_t>(in, 2 * i + 1) >> 1),
         store(out, sumPairs(load<u16v>(in) >> 1, load<u16v>(in + kBytes) >> 1))),
    CASE("narrow of u16v", 2 * kBytes, uint8_t, kBytes, in[2 * i],
         store(out, narrow(load<u16v>(in) & 255, load<u16v>(in + kBytes) & 255))),
    {"narrow of s32v", 4 * kBytes, narrowed<0x7FFF>},
    {"narrow of small s32v", 4 * kBytes, narrowed<0x1FF>},
    CASE("storePairs2", 2 * kBytes, uint16_t, kBytes, at<uint16_t>(in + i % 2 * kBytes, i / 2),
         storePairs2(out, load<u8v>(in), load<u8v>(in + kBytes))),
    {"load2 of floats", 2 * kBytes,
     [](In in, Out out, Out expected) {
         float floats[kBytes / 2];
         memcpy(floats, in, sizeof floats);
         const f32x2 v = load2(floats);
         storeAll(out, v.a, v.b);
         EACH(uint32_t, kBytes / 2, at<uint32_t>(in, i % (kBytes / 4) * 2 + i / (kBytes / 4)));
     }},
    {"wholeParts", 4 * kBytes,
     [](In in, Out out, Out expected) {
         const auto part = [=](size_t i) { return (float)(at<uint16_t>(in, i) & 0x1FF) + 0.75f; };
         float floats[kBytes];
         for (size_t i = 0; i < kBytes; ++i)
             floats[i] = part(i);
         const auto quarter = [&](size_t k) { return load<f32v>(floats + k * kBytes / 4); };
         store(out, wholeParts(quarter(0), quarter(1), quarter(2), quarter(3)));
         EACH(uint8_t, kBytes, part(i) < 255 ? (uint8_t)part(i) : 255);
     }},
    {"toFloats", kBytes,
     [](In in, Out out, Out expected) {
         f32v floats[4];
         toFloats(load<u8v>(in), floats);
         storeAll(out, floats[0], floats[1], floats[2], floats[3]);
         EACH(float, kBytes, in[i]);
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
    {"between", 2 * kBytes,
     [](In in, Out out, Out expected) {
         const u8x2 both = between(load<u8v>(in), load<u8v>(in + kBytes));
         storeAll(out, both.a, both.b);
         EACH(uint8_t, kBytes, (3 * in[i] + in[kBytes + i] + 2) >> 2);
         expected += kBytes;
         EACH(uint8_t, kBytes, (in[i] + 3 * in[kBytes + i] + 2) >> 2);
     }},
    {"threeAndOne, joinThrees, joinRoundedThrees and joinRounded", 2 * kBytes,
     [](In in, Out out, Out expected) {
         const u16p threes = threeAndOne(load<u8v>(in), load<u8v>(in + kBytes));
         storeAll(out, joinThrees<2>(threes), joinRoundedThrees<2>(threes), joinRounded<1>(split(load<u8v>(in))));
         EACH(uint8_t, kBytes, (3 * in[i] + in[kBytes + i]) >> 2);
         expected += kBytes;
         EACH(uint8_t, kBytes, (3 * in[i] + in[kBytes + i] + 2) >> 2);
         expected += kBytes;
         EACH(uint8_t, kBytes, (in[i] + 1) >> 1);
     }},
    {"between of sums", 3 * kBytes,
     [](In in, Out out, Out expected) {
         const u8v a = load<u8v>(in), b = load<u8v>(in + kBytes), c = load<u8v>(in + 2 * kBytes);
         const u8x2 both = between(threeAndOne(a, b), threeAndOne(b, c));
         storeAll(out, both.a, both.b);
         const auto sum = [](In p, size_t i) { return 3 * p[i] + p[kBytes + i]; };
         EACH(uint8_t, kBytes, (3 * sum(in, i) + sum(in + kBytes, i) + 8) >> 4);
         expected += kBytes;
         EACH(uint8_t, kBytes, (sum(in, i) + 3 * sum(in + kBytes, i) + 8) >> 4);
     }},
    {"addProducts of 16 bits and a number", 2 * kBytes + 2,
     [](In in, Out out, Out expected) {
         int16_t numbers[kBytes / 4], k;
         memcpy(numbers, in + kBytes, sizeof numbers);
         memcpy(&k, in + 2 * kBytes, sizeof k);
         store(out, addProducts(load<s32v>(in) >> 1, numbers, k));
         EACH(int32_t, kBytes / 4, (at<int32_t>(in, i) >> 1) + numbers[i] * k);
     }},
    {"storeWeighted", 6 * kBytes,
     [](In in, Out out, Out expected) {
         int16_t weights[2 * kBytes];
         memcpy(weights, in + 2 * kBytes, sizeof weights);
         numbers<int32_t, kBytes>(
             out, [=](int32_t* sums) { storeWeighted(sums, load<u8v>(in), load<u8v>(in + kBytes), weights); });
         EACH(int32_t, kBytes, in[i] * weights[2 * i] + in[kBytes + i] * weights[2 * i + 1]);
     }},
};

} // namespace

extern const test::PrimitiveCases resamplingCases;
const test::PrimitiveCases resamplingCases = {kCases, sizeof kCases / sizeof *kCases};

} // namespace odx::ODX_TARGET
