#include "simd/targets/loops.h"

#include "orlan/simd/prefix.h"

namespace odx::ODX_TARGET
{

namespace
{

template <class V, class T>
void summed(In in, Out out, Out expected)
{
    store(out, runningSums(load<V>(in)));
    T sum = 0;
    EACH(T, kBytes / sizeof(T), sum = (T)(sum + at<T>(in, i)));
}
template <class T>
void added(In in, Out out, Out expected)
{
    T sums[kBytes / 4], above[kBytes / 4];
    memcpy(above, in + kBytes, sizeof above);
    storeAdded(sums, above, load<u32v>(in));
    memcpy(out, sums, sizeof sums);
    EACH(T, kBytes / 4, above[i] + at<uint32_t>(in, i));
}

const PrimitiveCase kCases[] = {
    {"runningSums of u16v", kBytes, summed<u16v, uint16_t>},
    {"runningSums of u32v", kBytes, summed<u32v, uint32_t>},
    {"storeAdded of 32 bits", 2 * kBytes, added<uint32_t>},
    {"storeAdded of 64 bits", 3 * kBytes, added<uint64_t>},
    {"lastLane", kBytes,
     [](In in, Out out, Out expected) {
         store(out, lastLane(load<u32v>(in)));
         EACH(uint32_t, kBytes / 4, at<uint32_t>(in, kBytes / 4 - 1));
     }},
    {"widenInOrder of u16v", kBytes,
     [](In in, Out out, Out expected) {
         const u32p v = widenInOrder(load<u16v>(in));
         storeAll(out, v.a, v.b);
         EACH(uint32_t, kBytes / 2, at<uint16_t>(in, i));
     }},
};

} // namespace

extern const test::PrimitiveCases prefixCases;
const test::PrimitiveCases prefixCases = {kCases, sizeof kCases / sizeof *kCases};

} // namespace odx::ODX_TARGET
