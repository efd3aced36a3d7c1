// SIMD integral images.
#include "cpu/ondrixIntegral.h"
#include "cpu/ondrixIntegralC.h"
#include "orlan/simd/prefix.h"

#define ODX_FAMILY_LIST "frame/operations/integrals.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;

namespace
{

constexpr uint32_t kPixels = kBytes / 2; // at a time

// Entries up to a number of pixels that vectors have done, and the sum there; pixel i stands between i and i + 1.
struct Done {
    uint32_t pixels, sum;
};

template <class T>
ODX_INLINE Done vectors(integral::Pixel, const uint8_t* src, uint32_t count, uint32_t sum, const T* above, T* dst)
{
    uint8_t first[SumsBefore::kBefore + kPixels] = {}; // there is nothing in front of a row
    memcpy(first + SumsBefore::kBefore, src, kPixels);
    SumsBefore sums(sum);
    u32p both;
    const auto step = [&](const uint8_t* p, size_t i) __attribute__((always_inline))
    {
        both = sums.next(p);
        storeAdded(dst + i, above + i, both);
    };
    step(first + SumsBefore::kBefore, 0);
    size_t i = kPixels;
    const uint8_t* p = src + i;
    const T* q = above + i;
    T* r = dst + i;
    for (size_t left = (count - i) / (2 * kPixels); left != 0; --left, i += 2 * kPixels) {
        const Pair<u32p> four = sums.nextTwo(p);
        both = four.b;
        storeAdded(r, q, four.a);
        storeAdded(r + kPixels, q + kPixels, four.b);
        p += 2 * kPixels;
        q += 2 * kPixels;
        r += 2 * kPixels;
    }
    if (count - i >= kPixels) {
        step(src + i, i);
        i += kPixels;
    }
    return {(uint32_t)i, both.b[kPixels / 2 - 1] + src[i - 1]};
}

template <class T>
ODX_INLINE Done vectors(integral::Square, const uint8_t* src, uint32_t count, uint32_t sum, const T* above, T* dst)
{
    dst[0] = above[0] + sum;
    SquareSums sums(sum);
    u32p both;
    const T* q = above + 1;
    T* r = dst + 1;
    const auto step = [&]() __attribute__((always_inline))
    {
        pin(q);
        pin(r);
        both = sums.next(src);
        storeAdded(r, q, both);
        src += kPixels;
        q += kPixels;
        r += kPixels;
    };
    const uint32_t steps = count / kPixels;
    if (steps % 2 != 0) step();
    for (uint32_t left = steps / 2; left != 0; --left) {
        step();
        step();
    }
    return {steps * kPixels, both.b[kPixels / 2 - 1]};
}

// As Lines::next, of sums of 32 bits.
template <class Term, class T>
ODX_INLINE uint32_t nextEntries(const uint8_t* src, uint32_t count, uint32_t sum, const T* above, T* dst)
{
    Done done = {0, sum};
    if (count >= kPixels) done = vectors(Term(), src, count, sum, above, dst);
    return integral::entries<Term>(src + done.pixels, count - done.pixels, done.sum, above + done.pixels,
                                   dst + done.pixels);
}

struct Lines {
    template <class Term>
    static uint32_t next(const uint8_t* src, uint32_t count, uint32_t sum, const uint32_t* above, uint32_t* dst)
    {
        return nextEntries<Term>(src, count, sum, above, dst);
    }
    // So many squares have a sum of 32 bits; what came before is added where rows are longer.
    template <class Term>
    static uint64_t next(const uint8_t* src, uint32_t count, uint64_t sum, const uint64_t* above, uint64_t* dst)
    {
        constexpr uint32_t kMost = 65536;
        for (uint32_t n; count != 0; count -= n, src += n, above += n, dst += n) {
            n = count < kMost ? count : kMost;
            const uint32_t all = nextEntries<Term>(src, n, 0, above, dst);
            for (uint32_t i = 0; sum != 0 && i <= n; ++i)
                dst[i] += sum;
            sum += all;
        }
        return sum;
    }
    static void separate(const uint8_t* pairs, uint32_t count, uint8_t* first, uint8_t* second)
    {
        uint32_t i = 0;
        for (; count - i >= kBytes; i += kBytes) {
            const u8x2 v = load2(pairs + 2 * i);
            store(first + i, v.a);
            store(second + i, v.b);
        }
        integral::takeApart(pairs + 2 * i, count - i, first + i, second + i);
    }
};

} // namespace

#define ODX_COLUMN(name) name##V
#include "cpu/ondrixIntegralOperations.inc"

void tiltedRowV(const uint8_t* src, const uint8_t* srcAbove, uint32_t width, const uint32_t* above,
                const uint32_t* twoAbove, uint32_t* dst)
{
    const uint32_t inner = width - 1; // entries 1 to inner have neighbours on both sides
    if (inner < kPixels) return tiltedRowC(src, srcAbove, width, above, twoAbove, dst);
    dst[0] = above[1];
    const uint32_t *left = above, *right = above + 2, *up = twoAbove + 1;
    const uint8_t *p = src, *q = srcAbove;
    uint32_t* r = dst + 1;
    const auto step = [&](uint32_t by) __attribute__((always_inline))
    {
        pin(left), pin(right), pin(up), pin(r);
        const u32p pixels = widenInOrder(loadWiden(p) + loadWiden(q));
        const auto entries = [=](uint32_t i, u32v sum) __attribute__((always_inline))
        {
            return load<u32v>(left + i) + load<u32v>(right + i) - load<u32v>(up + i) + sum;
        };
        const u32v first = entries(0, pixels.a), second = entries(kPixels / 2, pixels.b);
        store(r, first);
        store(r + kPixels / 2, second);
        p += by, q += by, left += by, right += by, up += by, r += by;
    };
    const uint32_t before = inner / kPixels - 1;
    if (before % 2 != 0) step(kPixels);
    for (uint32_t i = before / 2; i != 0; --i) {
        step(kPixels);
        step(kPixels);
    }
    const uint32_t beyond = inner % kPixels;
    step(beyond != 0 ? beyond : kPixels); // the last ones may have been there before
    if (beyond != 0) step(kPixels);
    dst[width] = above[inner] + src[inner] + srcAbove[inner];
}

} // namespace odx::ODX_TARGET
