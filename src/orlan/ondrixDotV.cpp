#include "cpu/ondrixDotC.h"
#include "orlan/simd/simd.h"

#define ODX_FAMILY_LIST "frame/operations/descriptors.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;

// Adds three bits in each place: the sum goes to the first, the carry is returned.
[[maybe_unused]] ODX_INLINE u8v carry(u8v& sum, u8v a, u8v b)
{
    const u8v difference = sum ^ a, both = sum & a;
    sum = difference ^ b;
    return both | (difference & b);
}

// Where the processor does not count the bits of a vector, eight vectors are added bit by bit first, and only
// their carries are counted.
struct Adder {
    u8v ones, twos, fours;

    template <class Source>
    ODX_MEMBER u8v add(Source source, size_t begin)
    {
        const auto at = [=](uint32_t i) { return source.at(begin + kBytes * i); };
        const u8v a = carry(ones, at(0), at(1)), b = carry(ones, at(2), at(3)), first = carry(twos, a, b);
        const u8v c = carry(ones, at(4), at(5)), d = carry(ones, at(6), at(7)), second = carry(twos, c, d);
        return carry(fours, first, second);
    }
    ODX_MEMBER uint32_t rest() const
    {
        return sumOfBytes(popCount(ones)) + 2 * sumOfBytes(popCount(twos)) + 4 * sumOfBytes(popCount(fours));
    }
};

// What bits are counted of: a vector, or where two differ.
struct Bits {
    const uint8_t* a;

    ODX_MEMBER u8v at(size_t i) const { return load<u8v>(a + i); }
    ODX_MEMBER uint32_t byte(size_t i) const { return a[i]; }
    template <uint32_t n>
    ODX_MEMBER u8v part(size_t i) const
    {
        return loadPart<n>(a + i);
    }
};
struct Differences {
    Bits a, b;

    ODX_MEMBER u8v at(size_t i) const { return a.at(i) ^ b.at(i); }
    ODX_MEMBER uint32_t byte(size_t i) const { return a.byte(i) ^ b.byte(i); }
    template <uint32_t n>
    ODX_MEMBER u8v part(size_t i) const
    {
        return a.template part<n>(i) ^ b.template part<n>(i);
    }
};

// The sum of counts(i), bytes up to `most`, for every `step` bytes from `begin` on.
template <size_t step, size_t most, class Counts>
ODX_INLINE uint32_t sumOfCounts(size_t begin, size_t end, Counts counts)
{
    constexpr size_t atOnce = 255 / most * step;
    uint32_t total = 0;
    for (size_t i = begin; i < end;) {
        const size_t stop = end - i > atOnce ? i + atOnce : end;
        u8v sums = {};
        for (; i < stop; i += step)
            sums += counts(i);
        total += sumOfBytes(sums);
    }
    return total;
}

template <class Source>
ODX_INLINE uint32_t countBits(Source source, size_t count)
{
    uint32_t total = 0;
    size_t i = 0;
    if constexpr (!kCountsBits) {
        Adder adder = {};
        i = count / (8 * kBytes) * (8 * kBytes);
        total = 8 * sumOfCounts<8 * kBytes, 8>(0, i, [&](size_t at) { return popCount(adder.add(source, at)); }) +
                adder.rest();
    } else {
        const auto at = [=](size_t begin, size_t n) { return popCount(source.at(begin + kBytes * n)); };
        i = count / (4 * kBytes) * (4 * kBytes);
        total = sumOfCounts<4 * kBytes, 32>(
            0, i, [at](size_t begin) { return (at(begin, 0) + at(begin, 1)) + (at(begin, 2) + at(begin, 3)); });
    }
    const size_t whole = count / kBytes * kBytes;
    total += sumOfCounts<kBytes, 8>(i, whole, [=](size_t at) { return popCount(source.at(at)); });
    for (i = whole; i < count; ++i)
        total += (uint32_t)__builtin_popcount(source.byte(i));
    return total;
}

static uint32_t bits(const uint8_t* a, size_t length)
{
    return countBits(Bits{a}, length);
}
static uint32_t differing(const uint8_t* a, const uint8_t* b, size_t length)
{
    return countBits(Differences{{a}, {b}}, length);
}

// Lanes whose sum is the number of bits of n bytes, which are few enough for sums of bytes.
template <uint32_t n, class Source>
ODX_INLINE u8v addCounts(u8v counts, Source source, uint32_t from)
{
    if constexpr (n == 0) {
        return counts;
    } else if constexpr (n < kBytes) {
        return counts + popCount(source.template part<n>(from));
    } else {
        return addCounts<n - kBytes>(counts + popCount(source.at(from)), source, from + kBytes);
    }
}
template <uint32_t n, class Source>
ODX_INLINE u32v bitSums(Source source)
{
    static_assert(n / kBytes * 8 + 8 <= 255);
    return addBytes(u32v{}, addCounts<n>(u8v{}, source, 0));
}

template <uint32_t n>
ODX_INLINE uint32_t bits(const uint8_t* a)
{
    return sumOfLanes(bitSums<n>(Bits{a}));
}
template <uint32_t n>
ODX_INLINE uint32_t differing(const uint8_t* a, const uint8_t* b)
{
    return sumOfLanes(bitSums<n>(Differences{{a}, {b}}));
}
template <uint32_t n>
ODX_INLINE void bits4(const uint8_t* const* a, uint32_t* counts)
{
    const auto of = [=](int k) { return bitSums<n>(Bits{a[k]}); };
    storeSums(counts, of(0), of(1), of(2), of(3));
}
template <uint32_t n>
ODX_INLINE void differing4(const uint8_t* a, const uint8_t* const* b, uint32_t* counts)
{
    const auto of = [=](int k) { return bitSums<n>(Differences{{a}, {b[k]}}); };
    storeSums(counts, of(0), of(1), of(2), of(3));
}

// ---- dot products ----

ODX_INLINE u32v addProductsAt(u32v sum, const uint8_t* a, const uint8_t* b)
{
    return addProducts(sum, load<u8v>(a), load<u8v>(b));
}
ODX_INLINE u32v addProductsAt(u32v sum, const int8_t* a, const int8_t* b)
{
    return addProducts(sum, load<s8v>(a), load<s8v>(b));
}
// The last vector again, without the lanes that were added before.
ODX_INLINE u32v addLastAt(u32v sum, const uint8_t* a, const uint8_t* b, u8v mask)
{
    return addProducts(sum, load<u8v>(a) & mask, load<u8v>(b));
}
ODX_INLINE u32v addLastAt(u32v sum, const int8_t* a, const int8_t* b, u8v mask)
{
    return addProducts(sum, load<s8v>(a) & (s8v)mask, load<s8v>(b));
}

// All bits of the last n bytes of a vector.
struct LastBytes {
    uint8_t bytes[2 * kBytes];

    constexpr LastBytes() : bytes()
    {
        for (uint32_t i = kBytes; i < 2 * kBytes; ++i)
            bytes[i] = 255;
    }
};
static constexpr LastBytes kLastBytes;

// Loops of a few vectors would stay loops.
template <uint32_t n, class T>
ODX_INLINE u32v addDots(u32v sum, const T* a, const T* b)
{
    if constexpr (n == 0) {
        return sum;
    } else if constexpr (n < kBytes) {
        return addPartProducts<n>(sum, a, b);
    } else {
        return addDots<n - kBytes>(addProductsAt(sum, a, b), a + kBytes, b + kBytes);
    }
}
template <uint32_t n, class T>
ODX_INLINE u32v dotSums(const T* a, const T* b)
{
    return addDots<n>(u32v{}, a, b);
}

template <uint32_t n, class T>
ODX_INLINE uint32_t dot(const T* a, const T* b)
{
    return sumOfLanes(dotSums<n>(a, b));
}
template <uint32_t n, class T>
ODX_INLINE void dots4(const T* a, const T* const* b, uint32_t* sums)
{
    storeSums(sums, dotSums<n>(a, b[0]), dotSums<n>(a, b[1]), dotSums<n>(a, b[2]), dotSums<n>(a, b[3]));
}

template <class T>
ODX_INLINE uint32_t dot(const T* a, const T* b, size_t length)
{
    if (length < kBytes) {
        uint32_t sum = 0;
        for (size_t i = 0; i < length; ++i)
            sum += (uint32_t)(a[i] * b[i]);
        return sum;
    }
    u32v sum = {}, second = {}, third = {}, fourth = {}; // what adds products may take four cycles
    const auto addNext = [&](u32v & to) __attribute__((always_inline))
    {
        to = addProductsAt(to, a, b);
        a += kBytes;
        b += kBytes;
    };
    for (; length >= 4 * kBytes; length -= 4 * kBytes) {
        addNext(sum);
        addNext(second);
        addNext(third);
        addNext(fourth);
    }
    if (length >= 2 * kBytes) {
        addNext(sum);
        addNext(second);
        length -= 2 * kBytes;
    }
    if (length >= kBytes) {
        addNext(third);
        length -= kBytes;
    }
    const T *const p = a + length - kBytes, *const q = b + length - kBytes;
    if (length != 0) fourth = addLastAt(fourth, p, q, load<u8v>(kLastBytes.bytes + length));
    return sumOfLanes((sum + second) + (third + fourth));
}

#define ODX_COLUMN(name) name##V
#include "cpu/ondrixDotOperations.inc"

} // namespace odx::ODX_TARGET
