#include "cpu/ondrixDotC.h"
#include "orlan/simd/simd.h"

#define ODX_FAMILY_LIST "frame/operations/descriptors.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;

static uint32_t countBits(const uint8_t* bytes, size_t count)
{
    uint32_t total = 0;
    size_t i = 0;
    while (count - i >= kBytes) {
        // Counts of 31 vectors fit a byte: 31 x 8 = 248.
        size_t vectors = (count - i) / kBytes;
        if (vectors > 31) vectors = 31;
        u8v sums = {};
        for (size_t end = i + vectors * kBytes; i < end; i += kBytes)
            sums += popCount(load<u8v>(bytes + i));
        total += sumOfBytes(sums);
    }
    for (; i < count; ++i)
        total += (uint32_t)__builtin_popcount(bytes[i]);
    return total;
}

uint32_t odxBitCountu8V(const uint8_t* src, unsigned int length)
{
    return countBits(src, length);
}

uint32_t odxBitCountu32V(const uint32_t* src, unsigned int length)
{
    return countBits(reinterpret_cast<const uint8_t*>(src), sizeof *src * size_t{length});
}

} // namespace odx::ODX_TARGET
