#include "simd/targets/loops.h"

#include "orlan/simd/prefix.h"

namespace odx::ODX_TARGET
{
using namespace loops;

namespace
{

template <class T>
void added(In in, Out out, Out expected)
{
    T above[kBytes / 4];
    memcpy(above, in + kBytes, sizeof above);
    numbers<T, kBytes / 4>(out, [&above, in](T* sums) { storeAdded(sums, above, load<u32v>(in)); });
    EACH(T, kBytes / 4, above[i] + at<uint32_t>(in, i));
}
template <bool two>
void sumsBefore(In in, Out out, Out expected)
{
    uint8_t bytes[SumsBefore::kBefore + kBytes] = {};
    const uint8_t* const p = bytes + SumsBefore::kBefore;
    memcpy(bytes + SumsBefore::kBefore, in, kBytes);
    uint32_t sum = 4294967290;
    SumsBefore sums(sum);
    Pair<u32p> both;
    if (two) {
        both = sums.nextTwo(p);
    } else {
        both.a = sums.next(p);
        both.b = sums.next(p + kBytes / 2);
    }
    storeAll(out, both.a.a, both.a.b, both.b.a, both.b.b);
    EACH(uint32_t, kBytes, sum += i == 0 ? 0 : in[i - 1]);
}
const PrimitiveCase kCases[] = {
    {"SumsBefore along bytes with nothing in front", kBytes, sumsBefore<false>},
    {"SumsBefore, two at once", kBytes, sumsBefore<true>},
    {"SquareSums, in two steps", kBytes,
     [](In in, Out out, Out expected) {
         uint32_t sum = 4294900000;
         SquareSums sums(sum);
         const u32p first = sums.next(in), second = sums.next(in + kBytes / 2);
         storeAll(out, first.a, first.b, second.a, second.b);
         EACH(uint32_t, kBytes, sum += (uint32_t)in[i] * in[i]);
     }},
    {"storeAdded of 32 bits", 2 * kBytes, added<uint32_t>},
    {"storeAdded of 64 bits", 3 * kBytes, added<uint64_t>},
    CASE("widenInOrder of u16v", kBytes, uint32_t, kBytes / 2, at<uint16_t>(in, i),
         put<u32p>(out, 0, widenInOrder(load<u16v>(in)))),
};

} // namespace

extern const test::PrimitiveCases prefixCases;
const test::PrimitiveCases prefixCases = {kCases, sizeof kCases / sizeof *kCases};

} // namespace odx::ODX_TARGET
