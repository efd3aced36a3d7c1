// SIMD morphology. Borders are the reference's own code, as are images that are narrower than a vector.
#include "cpu/ondrixMorph.h"
#include "cpu/ondrixMorphC.h"
#include "orlan/neighbourhood.h"

#define ODX_FAMILY_LIST "frame/operations/morphology.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{

namespace
{

struct Erosion : morph::Erosion {
    using Reference = morph::Erosion;
    ODX_MEMBER static u8v pick(u8v a, u8v b) { return min(a, b); }
};
struct Dilation : morph::Dilation {
    using Reference = morph::Dilation;
    ODX_MEMBER static u8v pick(u8v a, u8v b) { return max(a, b); }
};

// Picks along the rows, then of three of those; two outputs have two rows in common.
template <class Operation>
struct Pick3x3 : Window<3, 3, kBytes> {
    u8v previous[2] = {};
    struct Both {
        u8v first, second;
    };

    ODX_MEMBER static u8v ofRow(const uint8_t* row)
    {
        return Operation::pick(Operation::pick(load<u8v>(row), load<u8v>(row + 1)), load<u8v>(row + 2));
    }
    ODX_MEMBER u8v push(const uint8_t* row)
    {
        const u8v next = ofRow(row), all = Operation::pick(Operation::pick(previous[0], previous[1]), next);
        previous[0] = previous[1];
        previous[1] = next;
        return all;
    }
    ODX_MEMBER Both pushBoth(const uint8_t* row, const uint8_t* next)
    {
        const u8v third = ofRow(row), fourth = ofRow(next), middle = Operation::pick(previous[1], third);
        const Both both = {Operation::pick(previous[0], middle), Operation::pick(middle, fourth)};
        previous[0] = third;
        previous[1] = fourth;
        return both;
    }
    ODX_MEMBER static void write(u8v value, uint8_t* out) { store(out, value); }
};

// The loops over a row of NxN windows.
template <class Picks>
struct VectorLoops {
    using Operation = typename Picks::Reference;
    ODX_MEMBER static u8v pick(u8v a, u8v b) { return Picks::pick(a, b); }

    // The four runs that a step picks of. By value: stores of bytes do not change them.
    struct Runs {
        size_t b, c, d;

        ODX_MEMBER explicit Runs(const morph::Step& step) : b(step.offset[0]), c(step.offset[1]), d(step.offset[2])
        {
        }
        ODX_MEMBER u8v at(const uint8_t* in) const
        {
            return pick(pick(load<u8v>(in), load<u8v>(in + b)), pick(load<u8v>(in + c), load<u8v>(in + d)));
        }
    };

    // For n pixels, of a vector at least: the last vectors overlap. Two are made before one is kept, so that
    // compilers load and store them in pairs; where pairs are instructions, two of these share what each row's
    // place costs.
    template <class Make, class Keep>
    ODX_MEMBER static void forAll(size_t n, Make make, Keep keep)
    {
        size_t i = 0;
        for (; kPairsVectors && n - i >= 4 * kBytes; i += 4 * kBytes) {
            const auto a = make(i), b = make(i + kBytes), c = make(i + 2 * kBytes), d = make(i + 3 * kBytes);
            keep(i, a);
            keep(i + kBytes, b);
            keep(i + 2 * kBytes, c);
            keep(i + 3 * kBytes, d);
        }
        for (; n - i >= 2 * kBytes; i += 2 * kBytes) {
            const auto first = make(i), second = make(i + kBytes);
            keep(i, first);
            keep(i + kBytes, second);
        }
        if (n - i >= kBytes) keep(i, make(i));
        keep(n - kBytes, make(n - kBytes));
    }

    struct Entered {
        u8v picked, sum;
    };

    ODX_MEMBER static void widen(const uint8_t* in, const morph::Step& step, size_t n, uint8_t* out)
    {
        const Runs runs(step);
        forAll(
            n, [=](size_t i) { return runs.at(in + i); }, [=](size_t i, u8v v) { store(out + i, v); });
    }
    ODX_MEMBER static void enter(const uint8_t* in, const morph::Step& step, uint8_t* sum, uint8_t* row, size_t n)
    {
        const Runs runs(step);
        const auto make = [=](size_t i) {
            const u8v picked = runs.at(in + i);
            return Entered{picked, pick(load<u8v>(sum + i), picked)};
        };
        forAll(n, make, [=](size_t i, const Entered& e) { store(row + i, e.picked), store(sum + i, e.sum); });
    }
    ODX_MEMBER static void enter(const uint8_t* in, const morph::Step& step, uint8_t* sum, uint8_t* row,
                                 const uint8_t* with, uint8_t* out, size_t n)
    {
        struct Finished : Entered {
            u8v output;
        };
        const Runs runs(step);
        const auto make = [=](size_t i) {
            const u8v picked = runs.at(in + i), all = pick(load<u8v>(sum + i), picked);
            return Finished{{picked, all}, pick(load<u8v>(with + i), all)};
        };
        forAll(n, make, [=](size_t i, const Finished& f) {
            store(row + i, f.picked), store(sum + i, f.sum), store(out + i, f.output);
        });
    }
    ODX_MEMBER static void combine(const uint8_t* a, const uint8_t* b, uint8_t* out, size_t n)
    {
        forAll(
            n, [=](size_t i) { return pick(load<u8v>(a + i), load<u8v>(b + i)); },
            [=](size_t i, u8v v) { store(out + i, v); });
    }
    // Down to the end of the longest vectors, which the rows have room for.
    ODX_MEMBER static void complete(uint8_t* ring, size_t stride, uint32_t rows, size_t n)
    {
        constexpr uint32_t kAtOnce = kPairsVectors ? 4 : 1;
        static_assert(kAtOnce * kBytes <= morph::kVector);
        for (size_t i = 0; i < n; i += kAtOnce * kBytes) {
            uint8_t* row = ring + stride * (rows - 1) + i;
            Below<kAtOnce> picked(row);
            for (uint32_t k = rows - 1; k > 1; --k) {
                row -= stride;
                picked.add(row);
            }
        }
    }

    // The picks of the rows below, n vectors side by side.
    template <uint32_t n, class = void>
    struct Below {
        u8v first;
        Below<n - 1> others;

        ODX_MEMBER explicit Below(const uint8_t* row) : first(load<u8v>(row)), others(row + kBytes) {}
        ODX_MEMBER void add(uint8_t* row)
        {
            first = pick(first, load<u8v>(row));
            others.add(row + kBytes);
            store(row, first);
        }
    };
    template <class Nothing>
    struct Below<0, Nothing> {
        ODX_MEMBER explicit Below(const uint8_t*) {}
        ODX_MEMBER void add(uint8_t*) {}
    };
};

// False for an image that is too narrow for vectors.
template <class Operation>
ODX_INLINE bool filter3x3(const Plane<uint8_t>& plane, odxBorderType borderType, uint32_t borderValue)
{
    if (tooNarrow<Pick3x3<Operation>>(plane)) return false;
    filterInterior(Pick3x3<Operation>(), plane);
    morph::border3x3<typename Operation::Reference>(plane, morph::outside<Operation>(borderType, borderValue));
    return true;
}

} // namespace

// clang-format off
#define ODX_BORDERED(name, reference, Operation) \
    odxStatus name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
                   uint8_t* dst, unsigned int dstStride, odxBorderType borderType, uint32_t borderValue) \
    { \
        if (filter3x3<Operation>({src, srcWidth, srcHeight, srcStride, dst, dstStride}, borderType, borderValue)) \
            return ONDRIX_SUCCESS; \
        return reference(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType, borderValue); \
    }
#define ODX_UNBORDERED(name, bordered) \
    void name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
              uint8_t* dst, unsigned int dstStride) \
    { \
        bordered(src, srcWidth, srcHeight, srcStride, dst, dstStride, ONDRIX_BORDER_UNDEFINED, 0); \
    }
#define ODX_SIZED(name, reference, Operation) \
    odxStatus name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
                   unsigned int N, uint8_t* dst, unsigned int dstStride) \
    { \
        if (srcWidth < kBytes) return reference(src, srcWidth, srcHeight, srcStride, N, dst, dstStride); \
        return morph::filterNxN<VectorLoops<Operation>>({src, srcWidth, srcHeight, srcStride, dst, dstStride}, N); \
    }

ODX_BORDERED(odxFilterErode3x3u8_v3V, odxFilterErode3x3u8_v3C, Erosion)
ODX_BORDERED(odxFilterDilate3x3u8_v3V, odxFilterDilate3x3u8_v3C, Dilation)
ODX_UNBORDERED(odxFilterErode3x3u8V, odxFilterErode3x3u8_v3V)
ODX_UNBORDERED(odxFilterDilate3x3u8V, odxFilterDilate3x3u8_v3V)
ODX_SIZED(odxFilterErodeNxNu8V, odxFilterErodeNxNu8C, Erosion)
ODX_SIZED(odxFilterDilateNxNu8V, odxFilterDilateNxNu8C, Dilation)
// clang-format on

} // namespace odx::ODX_TARGET
