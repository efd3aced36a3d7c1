#include "cpu/ondrixDotC.h"
#include "orlan/simd/simd.h"

#define ODX_FAMILY_LIST "frame/operations/descriptors.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;

// Adds three bits in each place: the sum goes to the first, the carry is returned.
ODX_INLINE u8v carry(u8v& sum, u8v a, u8v b)
{
    const u8v difference = sum ^ a, both = sum & a;
    sum = difference ^ b;
    return both | (difference & b);
}

// Where the processor does not count the bits of a vector, eight vectors are added bit by bit first, and only
// their carries are counted.
struct Adder {
    u8v ones, twos, fours;

    ODX_MEMBER u8v add(const uint8_t* bytes)
    {
        const auto at = [bytes](uint32_t i) { return load<u8v>(bytes + kBytes * i); };
        const u8v a = carry(ones, at(0), at(1)), b = carry(ones, at(2), at(3)), first = carry(twos, a, b);
        const u8v c = carry(ones, at(4), at(5)), d = carry(ones, at(6), at(7)), second = carry(twos, c, d);
        return carry(fours, first, second);
    }
    ODX_MEMBER uint32_t rest() const
    {
        return sumOfBytes(popCount(ones)) + 2 * sumOfBytes(popCount(twos)) + 4 * sumOfBytes(popCount(fours));
    }
};

// The sum of counts(p), bytes up to `most`, of every `step` bytes.
template <size_t step, size_t most, class Counts>
ODX_INLINE uint32_t sumOfCounts(const uint8_t* bytes, size_t count, Counts counts)
{
    constexpr size_t atOnce = 255 / most * step;
    uint32_t total = 0;
    for (size_t i = 0; i < count;) {
        const size_t end = count - i > atOnce ? i + atOnce : count;
        u8v sums = {};
        for (; i < end; i += step)
            sums += counts(bytes + i);
        total += sumOfBytes(sums);
    }
    return total;
}

static uint32_t countBits(const uint8_t* bytes, size_t count)
{
    uint32_t total = 0;
    size_t i = 0;
    if constexpr (!kCountsBits) {
        Adder adder = {};
        i = count / (8 * kBytes) * (8 * kBytes);
        total =
            8 * sumOfCounts<8 * kBytes, 8>(bytes, i, [&](const uint8_t* p) { return popCount(adder.add(p)); }) +
            adder.rest();
    } else {
        const auto at = [](const uint8_t* p, uint32_t n) { return popCount(load<u8v>(p + kBytes * n)); };
        i = count / (4 * kBytes) * (4 * kBytes);
        total = sumOfCounts<4 * kBytes, 32>(
            bytes, i, [at](const uint8_t* p) { return (at(p, 0) + at(p, 1)) + (at(p, 2) + at(p, 3)); });
    }
    const size_t whole = count / kBytes * kBytes;
    total += sumOfCounts<kBytes, 8>(bytes + i, whole - i, [](const uint8_t* p) { return popCount(load<u8v>(p)); });
    for (i = whole; i < count; ++i)
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
