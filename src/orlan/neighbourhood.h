// The walk of filters whose outputs depend on a few neighbouring rows and columns: stencils, separable kernels,
// morphology, pyramid levels, and pointwise operations as windows of one pixel.
//
// The walk owns everything about the picture: strides, alignment, ends of rows, the order that suits the caches.
// A filter only knows whole vectors. It is a struct that derives from Window, which states its shape, and has
//
//   push(row)             takes the next source row of its vector of columns, `row` pointing at the leftmost tap of
//                         the first output; returns what write() makes outputs of. Returned values count from the
//                         kRows-th row on. What a filter carries from row to row is its state.
//   write(value, out...)  stores kLanes outputs to each destination
//
// and may have
//
//   pushBoth(row, next)   the same for two rows at once, for what neighbouring outputs share: returns {first,
//                         second}. Neither it nor push() depends on which of them took the rows before.
//
// A filter that is constructed with parameters (a threshold, weights) is copied into each strip. Both functions
// are ODX_MEMBER. An example, the sum of 3x3 bytes as 16-bit numbers:
//
//   struct Sum3x3 : Window<3, 3, kBytes> {
//       u16p last = {}, lastTwo = {};                        // sums of one row, and of two
//       ODX_MEMBER u16p push(const uint8_t* row)
//       {
//           const u16p next = dots<1, 1, 1>(row), sum = lastTwo + next;
//           lastTwo = last + next;
//           last = next;
//           return sum;
//       }
//       ODX_MEMBER static void write(const u16p& sum, uint16_t* out) { storeInOrder(out, sum); }
//   };
//
//   const Plane<uint8_t, uint16_t> plane = {src, width, height, srcStride, dst, dstStride};
//   if (tooNarrow<Sum3x3>(plane)) return reference...;
//   filterInterior(Sum3x3(), plane);
//   ... border pixels: the reference's own code (cpu/border.h)
//
// How to write others:
// - Several destinations (both gradients): walk(filter, src, srcStride, width, height, Rows{dx, dxStride},
//   Rows{dy, dyStride}) with write(value, int16_t* dx, int16_t* dy).
// - Separable kernels: sum the row inside push(), and keep the column in the state. Binomial columns are
//   BinomialColumn<Sum, n>; others keep the last kRows - 1 row sums, as named members when there are few.
// - Windows too large for registers (about 11 rows): two passes over a tile that stays in the cache, each with
//   forStrips() below, as the 11x11 Gaussian does.
// - Pyramid levels: step = 2 takes two rows and two columns of the source for each output.
// - Rows that are narrower than a vector belong to the reference.
//
// Destinations must not overlap the source, nor each other: the vectors at the ends of a row overlap their
// neighbours, so outputs are written more than once, with the same values.
#ifndef ODX_ORLAN_NEIGHBOURHOOD_H
#define ODX_ORLAN_NEIGHBOURHOOD_H

#include "cpu/image.h"
#include "orlan/simd/simd.h"

#include <type_traits>

namespace odx::ODX_TARGET
{
using namespace simd;

// The shape of a filter: the window's rows and columns, outputs a vector, and source pixels from one output to the
// next, in both directions.
template <uint32_t rows, uint32_t columns, uint32_t lanes, uint32_t step = 1>
struct Window {
    static constexpr uint32_t kRows = rows, kColumns = columns, kLanes = lanes, kStep = step;
};

// ---- the order that suits the caches ----
//
// Rows up to kNearRow bytes: a block of them stays in the nearest caches, so that blocks are high and the run-up
// of a strip weighs little. Longer rows come from far away, more of them at a time than processors follow by
// themselves, and so do those that are written: strips are as wide as registers allow, and what comes next on
// either side is fetched ahead. Then higher blocks are better, too, as long as their rows do not share lines of
// the first cache: those a multiple of 4096 bytes apart do.
constexpr size_t kNearRow = 2048, kCachePage = 4096;
constexpr uint32_t kFewRows = kBytes < 64 ? 6 : 4, kManyRows = 48; // of blocks whose rows share lines, or do not
constexpr uint32_t kLevelRows = 16; // of a level, which reads four times what it writes

constexpr uint32_t blockRows(uint32_t windowRows, uint32_t step, bool nearby, size_t srcStride)
{
    const uint32_t runUp = windowRows > 1 ? windowRows - 1 : 1;
    if (nearby) return 8 * runUp;
    if (step != 1) return kLevelRows;
    // Row i + apart is the first to share its lines with row i.
    const size_t lowestBit = srcStride & (0 - srcStride),
                 apart = lowestBit < kCachePage ? kCachePage / lowestBit : 1;
    const size_t rows = kFewRows * apart;
    return rows < kManyRows ? (uint32_t)rows : kManyRows;
}

// How many vectors a strip is wide: nearby rows a line of the cache, others two vectors, if what the filters carry
// from row to row leaves enough registers to work with.
#if defined(__AVX512F__) || defined(__aarch64__)
constexpr uint32_t kRegisters = 32;
#else
constexpr uint32_t kRegisters = 16;
#endif
template <class Filter, bool nearby>
constexpr uint32_t kAcross = (kBytes < 64 || !nearby) && 2 * sizeof(Filter) <= (kRegisters - 6) * kBytes ? 2 : 1;

// How far ahead of a strip distant rows are fetched, in bytes: about as long as memory takes, so that low blocks,
// which are done sooner, reach further to what they read. ARM's processors are left to themselves: there it has
// not been measured.
#if defined(__ARM_NEON)
constexpr bool kFetchesAhead = false;
#else
constexpr bool kFetchesAhead = true;
#endif
constexpr uint32_t fetchDistance(uint32_t rowsAtOnce)
{
    return rowsAtOnce > 2 * kFewRows ? 256 : kBytes < 64 ? 512 : 1024;
}
constexpr uint32_t kFetchOut = 256;

// Fetches elements from `ahead` bytes behind p on, to be read or written. Hints to the cache may point anywhere.
template <bool nearby, uint32_t elements, class T>
ODX_INLINE void fetchAhead(T* p, uint32_t ahead)
{
    if constexpr (!nearby && kFetchesAhead) {
        for (uint32_t i = 0; i < elements * sizeof(T); i += 64) {
            const auto* const at = (const void*)((uintptr_t)p + ahead + i); // NOLINT(performance-no-int-to-ptr)
            __builtin_prefetch(at, std::is_const<T>::value ? 0 : 1);
        }
    }
}

// ---- strips ----

// Covers width x height outputs with strips of `lanes` columns, one or several side by side:
// strip(Side<n>(), x, y, rows). The first and the last strip of a block overlap their neighbours, so that the
// others begin `aligned` columns after a multiple of their width; width must be at least `lanes`.
template <uint32_t n>
struct Side {
    static constexpr uint32_t value = n;
};

template <uint32_t lanes, uint32_t across, class Strip>
ODX_INLINE void forStrips(uint32_t width, uint32_t height, uint32_t aligned, uint32_t rowsAtOnce, Strip strip)
{
    for (uint32_t y = 0, rows; y < height; y += rows) {
        rows = height - y < rowsAtOnce ? height - y : rowsAtOnce;
        uint32_t x = 0;
        if (aligned != 0) {
            strip(Side<1>(), x, y, rows);
            x = aligned;
        }
        if constexpr (across > 1) {
            for (; x < width && width - x >= across * lanes; x += across * lanes)
                strip(Side<across>(), x, y, rows);
        }
        for (; x < width && width - x >= lanes; x += lanes)
            strip(Side<1>(), x, y, rows);
        if (x < width) strip(Side<1>(), width - lanes, y, rows);
    }
}

// Columns from a row's first to one that vectors store to at a multiple of their size.
template <class T>
ODX_INLINE uint32_t columnsToAligned(const T* row)
{
    return (uint32_t)(-(uintptr_t)row % kBytes / sizeof(T));
}

// Whether a filter has pushBoth(), which takes pointers to T.
template <class T>
T& some(); // for types alone
template <class Filter, class T, class = void>
struct TakesBoth {
    static constexpr bool value = false;
};
template <class Filter, class T>
struct TakesBoth<Filter, T, decltype((void)some<Filter>().pushBoth((const T*)nullptr, (const T*)nullptr))> {
    static constexpr bool value = true;
};

// n filters side by side: where kWritesLast, all vectors of a row are worked out before the first is written, of
// two rows where there are registers.
template <class Filter, uint32_t n>
struct Beside {
    static constexpr uint32_t kColumns = Filter::kLanes * Filter::kStep;
    Filter filter;
    Beside<Filter, n - 1> others;

    ODX_MEMBER explicit Beside(const Filter& f) : filter(f), others(f) {}
    template <class S>
    ODX_MEMBER void enter(const S* in)
    {
        filter.push(in);
        others.enter(in + kColumns);
    }
    template <class S, class... D>
    ODX_MEMBER void step(const S* in, D*... out)
    {
        const auto value = filter.push(in);
        if constexpr (!kWritesLast) filter.write(value, out...);
        others.step(in + kColumns, out + Filter::kLanes...);
        if constexpr (kWritesLast) filter.write(value, out...);
    }
    template <class S, class... D>
    ODX_MEMBER void stepBoth(const S* in, const S* next, Rows<D>... out)
    {
        const auto values = pushed(filter, in, next);
        const auto write = [&] {
            filter.write(values.first, out.pixels...);
            filter.write(values.second, out.next().pixels...);
        };
        if constexpr (!kWritesLast) write();
        others.stepBoth(in + kColumns, next + kColumns, out.at(Filter::kLanes, 0)...);
        if constexpr (kWritesLast) write();
    }

private:
    template <class S>
    ODX_MEMBER static auto pushed(Filter& filter, const S* in, const S* next)
    {
        if constexpr (TakesBoth<Filter, S>::value) {
            return filter.pushBoth(in, next);
        } else {
            struct {
                decltype(filter.push(in)) first, second;
            } values = {filter.push(in), filter.push(next)};
            return values;
        }
    }
};
template <class Filter>
struct Beside<Filter, 0> {
    ODX_MEMBER explicit Beside(const Filter&) {}
    template <class S>
    ODX_MEMBER void enter(const S*)
    {
    }
    template <class S, class... D>
    ODX_MEMBER void step(const S*, D*...)
    {
    }
    template <class S, class... D>
    ODX_MEMBER void stepBoth(const S*, const S*, Rows<D>...)
    {
    }
};

// One strip: n vectors of outputs, `rows` high. Two rows at a time: what a filter carries from row to row then
// changes places without moves.
template <uint32_t n, bool nearby, class Filter, class S, class... D>
ODX_INLINE void filterStrip(const Filter& filter, const S* in, size_t stride, uint32_t rows, uint32_t ahead,
                            Rows<D>... out)
{
    constexpr uint32_t step = Filter::kStep, columns = n * Filter::kLanes;
    constexpr bool written = nearby || step != 1; // without waiting: few stores, or to lines that are there
    Beside<Filter, n> filters(filter);
    const auto fetchOut = [](const Rows<D>&... rowOut) {
        (fetchAhead<written, columns>(rowOut.pixels, kFetchOut), ...);
    };
    for (uint32_t i = 0; i + step < Filter::kRows; ++i, in = rowOf(in, stride, 1)) {
        fetchAhead<nearby, columns * step>(in, ahead);
        filters.enter(in);
    }
    const auto row = [&] {
        for (uint32_t i = 1; i < step; ++i, in = rowOf(in, stride, 1)) {
            fetchAhead<nearby, columns * step>(in, ahead);
            filters.enter(in);
        }
        fetchAhead<nearby, columns * step>(in, ahead);
        fetchOut(out...);
        filters.step(in, out.pixels...);
        in = rowOf(in, stride, 1);
        ((out = out.next()), ...);
    };
    const auto twoRows = [&]() __attribute__((always_inline))
    {
        if constexpr (step == 1 && ((kWritesLast && kRegisters == 32) || TakesBoth<Filter, S>::value)) {
            const S* const next = rowOf(in, stride, 1);
            fetchAhead<nearby, columns * step>(in, ahead);
            fetchAhead<nearby, columns * step>(next, ahead);
            fetchOut(out...);
            fetchOut(out.next()...);
            filters.stepBoth(in, next, out...);
            in = rowOf(next, stride, 1);
            ((out = out.next().next()), ...);
        } else {
            row();
            row();
        }
    };
    if constexpr (kWritesLast && kRegisters == 32) {
        for (; rows >= 4; rows -= 4) {
            twoRows();
            pin(in);
            (pin(out.pixels), ...);
            twoRows();
        }
    }
    for (; rows >= 2; rows -= 2) {
        if constexpr (kWritesLast) {
            pin(in);
            (pin(out.pixels), ...);
        }
        twoRows();
    }
    if (rows != 0) row();
}

template <class T, class... Others>
ODX_INLINE T* firstOf(const Rows<T>& rows, const Others&...)
{
    return rows.pixels;
}

template <bool nearby, class Filter, class S, class... D>
ODX_INLINE void walkRows(const Filter& filter, const S* src, size_t srcStride, uint32_t width, uint32_t height,
                         Rows<D>... out)
{
    constexpr uint32_t lanes = Filter::kLanes;
    const uint32_t rowsAtOnce = blockRows(Filter::kRows, Filter::kStep, nearby, srcStride);
    forStrips<lanes, kAcross<Filter, nearby>>(
        width, height, columnsToAligned(firstOf(out...)) % lanes, rowsAtOnce,
        [&](auto side, uint32_t x, uint32_t y, uint32_t rows) {
            const S* const in = rowOf(src, srcStride, y * size_t{Filter::kStep}) + x * size_t{Filter::kStep};
            filterStrip<decltype(side)::value, nearby>(filter, in, srcStride, rows, fetchDistance(rowsAtOnce),
                                                       out.at(x, y)...);
        });
}

// Filters width x height outputs, the first of which has its uppermost leftmost tap at `src`; width is at least
// Filter::kLanes. Strips are aligned to the first destination.
template <class Filter, class S, class... D>
ODX_INLINE void walk(const Filter& filter, const S* src, size_t srcStride, uint32_t width, uint32_t height,
                     Rows<D>... out)
{
    if (!kFetchesAhead || width * sizeof(S) * Filter::kStep <= kNearRow) {
        walkRows<true>(filter, src, srcStride, width, height, out...);
    } else {
        walkRows<false>(filter, src, srcStride, width, height, out...);
    }
}

// The interior of an image: the outputs whose whole window is inside it.
template <class Filter, class S, class D>
ODX_INLINE void filterInterior(const Filter& filter, const Plane<S, D>& plane)
{
    static_assert(Filter::kStep == 1);
    D* const out = rowOf(plane.dst, plane.dstStride, Filter::kRows / 2) + Filter::kColumns / 2;
    walk(filter, plane.src, plane.srcStride, plane.interiorWidth(Filter::kColumns),
         plane.interiorHeight(Filter::kRows), Rows<D>{out, plane.dstStride});
}

template <class Filter, class S, class D>
ODX_INLINE bool tooNarrow(const Plane<S, D>& plane)
{
    return plane.interiorWidth(Filter::kColumns) < Filter::kLanes;
}

// A binomial kernel of order n in one direction is n sums of neighbours: stage[i] holds the previous row of each.
template <class Sum, int n>
struct BinomialColumn {
    Sum stage[n] = {};

    ODX_MEMBER Sum push(Sum sum)
    {
        for (int i = 0; i < n; ++i) {
            const Sum next = sum + stage[i];
            stage[i] = sum;
            sum = next;
        }
        return sum;
    }
};

} // namespace odx::ODX_TARGET

#endif
