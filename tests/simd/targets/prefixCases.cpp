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
const PrimitiveCase kCases[] = {
    {"SumsBefore, in two steps along bytes with nothing in front", kBytes,
     [](In in, Out out, Out expected) {
         uint8_t bytes[SumsBefore::kBefore + kBytes] = {};
         memcpy(bytes + SumsBefore::kBefore, in, kBytes);
         uint32_t sum = 4294967290;
         SumsBefore sums(sum);
         const u32p first = sums.next(bytes + SumsBefore::kBefore),
                    second = sums.next(bytes + SumsBefore::kBefore + kBytes / 2);
         storeAll(out, first.a, first.b, second.a, second.b);
         EACH(uint32_t, kBytes, sum += i == 0 ? 0 : in[i - 1]);
     }},
    {"runningSums", kBytes,
     [](In in, Out out, Out expected) {
         store(out, runningSums(load<u32v>(in)));
         uint32_t sum = 0;
         EACH(uint32_t, kBytes / 4, sum += at<uint32_t>(in, i));
     }},
    {"storeAdded of 32 bits", 2 * kBytes, added<uint32_t>},
    {"storeAdded of 64 bits", 3 * kBytes, added<uint64_t>},
    CASE("lastLane", kBytes, uint32_t, kBytes / 4, at<uint32_t>(in, kBytes / 4 - 1),
         store(out, lastLane(load<u32v>(in)))),
    CASE("widenInOrder of u16v", kBytes, uint32_t, kBytes / 2, at<uint16_t>(in, i),
         put<u32p>(out, 0, widenInOrder(load<u16v>(in)))),
};

} // namespace

extern const test::PrimitiveCases prefixCases;
const test::PrimitiveCases prefixCases = {kCases, sizeof kCases / sizeof *kCases};

} // namespace odx::ODX_TARGET
