// SIMD loops of Canny's edges. Rows are followed by slack, so that the last vector of a row may reach beyond it.
#include "cpu/ondrixEdgeC.h"
#include "cpu/ondrixEdgeCanny.h"
#include "frame/log.h"
#include "orlan/ondrixEdgeFilters.h"

#include <type_traits>

#define ODX_FAMILY_LIST "frame/operations/gradients.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{

namespace
{

constexpr uint32_t kLanes = kBytes / 2;
static_assert(kBytes <= edge::kSlack);

constexpr int16_t kOtherMark = edge::kWeak ^ edge::kStrong;

// ---- magnitudes in 16 and in 32 bits ----

ODX_INLINE void storeMagnitude(int16_t* p, const s16v& v)
{
    store(p, v);
}
ODX_INLINE void storeMagnitude(int32_t* p, const s32p& v)
{
    store(p, v.a);
    store(p + kLanes / 2, v.b);
}

// kLanes magnitudes, and comparisons of them as masks of 16 bits, in order.
struct Narrow {
    s16v v;

    ODX_MEMBER static Narrow at(const int16_t* p) { return {load<s16v>(p)}; }
    ODX_MEMBER static Narrow all(int32_t value) { return {s16v{} + (int16_t)value}; }
};
struct Wide {
    s32p v;

    ODX_MEMBER static Wide at(const int32_t* p) { return {loadBoth(p)}; }
    ODX_MEMBER static Wide all(int32_t value) { return {{s32v{} + value, s32v{} + value}}; }
};
template <class M>
using Lanes = std::conditional_t<sizeof(M) == 2, Narrow, Wide>;

ODX_INLINE s16v above(const Narrow& a, const Narrow& b)
{
    return a.v > b.v;
}
ODX_INLINE s16v above(const Wide& a, const Wide& b)
{
    return narrowBoth({a.v.a > b.v.a, a.v.b > b.v.b});
}

// Above the first neighbour, and above the other or not below it.
template <bool strict>
ODX_INLINE s16v stays(const Narrow& m, const Narrow& first, const Narrow& other)
{
    return (m.v > first.v) & (strict ? m.v > other.v : m.v >= other.v);
}
template <bool strict>
ODX_INLINE s16v stays(const Wide& m, const Wide& first, const Wide& other)
{
    return narrowBoth({(m.v.a > first.v.a) & (strict ? m.v.a > other.v.a : m.v.a >= other.v.a),
                       (m.v.b > first.v.b) & (strict ? m.v.b > other.v.b : m.v.b >= other.v.b)});
}

// ---- directions, from absolute gradients of 32767 at most ----

struct Sectors {
    s16v horizontal, diagonal; // the latter also holds for those that are horizontal
};

// q = |gx| * 13573 / 32768, rounded down, is not exact unless |gx| is 0. So |gx| * 13573 > |gy| * 32768 where |gy|
// <= q, and |gx| * 79109 >= |gy| * 32768 where |gy| <= 2 * |gx| + q. Gradients of -32768 count as -32767, for
// which the results are the same.
ODX_INLINE Sectors sectorsOf(edge::Tangents, s16v x, s16v y)
{
    const s16v q = (s16v)mulHigh((u16v)x, 2 * edge::kTangent);
    return {y <= q, y <= addSat(addSat(x, x), q)};
}
ODX_INLINE Sectors sectorsOf(edge::FactorTwo, s16v x, s16v y)
{
    return {x > addSat(y, y), y <= addSat(x, x)};
}

struct Kernels {
    static constexpr bool kReaches = true;

    template <class Loop>
    ODX_MEMBER static void gradients(const uint8_t* src, size_t stride, int16_t* gx, int16_t* gy, size_t pitch,
                                     uint32_t width, uint32_t rows)
    {
        const uint32_t columns = width < kBytes ? kBytes : width;
        if constexpr (Loop::kCentral) {
            walk(Gradient<edge::Central, Whole>(), src, stride, columns, rows,
                 Rows<int16_t>{gx, sizeof *gx * pitch}, Rows<int16_t>{gy, sizeof *gy * pitch});
        } else {
            sobelInterior(Loop::kKernel, src, stride, gx, gy, sizeof *gx * pitch, columns, rows);
        }
    }

    template <class Loop>
    ODX_MEMBER static void magnitudes(const int16_t* gx, const int16_t* gy, typename Loop::Magnitude* m,
                                      uint32_t count)
    {
        const auto magnitude = [=](size_t x) __attribute__((always_inline))
        {
            const s16v dx = load<s16v>(gx + x), dy = load<s16v>(gy + x);
            if constexpr (Loop::kSquares) {
                const s32p sum = sumOfSquares(dx, dy);
                const u32v a = (u32v)sum.a, b = (u32v)sum.b;
                storeMagnitude(m + x, {(s32v)(a - (a >> 31)), (s32v)(b - (b >> 31))});
            } else if constexpr (sizeof *m == 2) {
                storeMagnitude(m + x, abs(dx) + abs(dy));
            } else {
                const s32p wideX = widenInOrder(dx), wideY = widenInOrder(dy);
                storeMagnitude(m + x, {max(wideX.a, -wideX.a) + max(wideY.a, -wideY.a),
                                       max(wideX.b, -wideX.b) + max(wideY.b, -wideY.b)});
            }
        };
        for (size_t x = 0; x < count; x += 2 * kLanes) {
            magnitude(x);
            magnitude(x + kLanes);
        }
    }

    template <class Loop>
    ODX_MEMBER static void thin(const edge::BandRow<typename Loop::Magnitude>& row, uint32_t count,
                                edge::Limits limits, uint8_t* marks)
    {
        using V = Lanes<typename Loop::Magnitude>;
        const V low = V::all(limits.low), high = V::all(limits.high);
        const auto candidatesAt = [=](uint32_t x) __attribute__((always_inline))
        {
            return above(V::at(row.m + x), low);
        };
        const auto thinAt = [=](uint32_t x) __attribute__((always_inline))
        {
            const auto* const at = row.m + x;
            const V m = V::at(at);
            const s16v candidates = above(m, low);
            if (!any((u8v)candidates)) return storeNarrow(marks + x, u16v{});
            const s16v gx = load<s16v>(row.gx + x), gy = load<s16v>(row.gy + x);
            const Sectors sectors = sectorsOf(typename Loop::Sectors(), abs(gx), abs(gy));
            const auto across = [&](ptrdiff_t next) __attribute__((always_inline))
            {
                return stays<false>(m, V::at(at - next), V::at(at + next));
            };
            const auto diagonally = [&](ptrdiff_t next) __attribute__((always_inline))
            {
                return stays<Loop::kStrictDiagonals>(m, V::at(at - next), V::at(at + next));
            };
            const s16v rising = (gx ^ gy) < 0;
            const s16v diagonal = (diagonally(row.pitch - 1) & rising) | (diagonally(row.pitch + 1) & ~rising);
            const s16v steep = (diagonal & sectors.diagonal) | (across(row.pitch) & ~sectors.diagonal);
            const s16v kept = ((across(1) & sectors.horizontal) | (steep & ~sectors.horizontal)) & candidates;
            const s16v strong = kept & above(m, high);
            storeNarrow(marks + x, (u16v)((kept & edge::kWeak) ^ (strong & kOtherMark)));
        };
        for (uint32_t x = 0; x < count; x += 2 * kLanes) {
            if (!any((u8v)(candidatesAt(x) | candidatesAt(x + kLanes)))) {
                store(marks + x, u8v{});
                continue;
            }
            thinAt(x);
            thinAt(x + kLanes);
        }
    }

    ODX_MEMBER static uint32_t* reach(uint8_t* marks, ptrdiff_t pitch, uint32_t count, uint32_t place,
                                      uint32_t* stack)
    {
        static_assert(edge::kWeak == 128 && edge::kStrong == 1);
        const auto at = [=](uint32_t x) { return load<u8v>(marks + x); };
        for (uint32_t from = 0; from < count; from += edge::kSlack) {
            u8v all = at(from);
            for (uint32_t x = kBytes; x < edge::kSlack; x += kBytes)
                all |= at(from + x);
            if (!any(all & edge::kWeak)) continue;
            for (uint32_t x = from; x < count && x < from + edge::kSlack; x += kBytes) {
                const u8v weak = at(x) & edge::kWeak;
                if (!any(weak)) continue;
                const auto three = [](const uint8_t* p) {
                    return load<u8v>(p - 1) | load<u8v>(p) | load<u8v>(p + 1);
                };
                const u8v around = three(marks + x - pitch) | three(marks + x) | three(marks + x + pitch);
                uint64_t found = laneBits((s8v)(weak & around << 7) < 0);
                if (count - x < kBytes) found &= (uint64_t{1} << (count - x)) - 1;
                for (; found != 0; found &= found - 1) {
                    const uint32_t reached = x + (uint32_t)__builtin_ctzll(found);
                    marks[reached] = edge::kStrong;
                    *stack++ = place + reached;
                }
            }
        }
        return stack;
    }

    ODX_MEMBER static void finish(const uint8_t* marks, uint8_t* dst, uint32_t count)
    {
        const auto edges = [=](uint32_t x) { return (u8v)(load<u8v>(marks + x) == edge::kStrong); };
        uint32_t x = 0;
        for (; count - x >= kBytes; x += kBytes)
            store(dst + x, edges(x));
        for (; x < count; ++x)
            dst[x] = marks[x] == edge::kStrong ? 255 : 0;
    }
};

} // namespace

odxStatus odxFilterCannyu8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcStride, unsigned int kernelSize, int lowThresh, int highThresh,
                            odxNormType normType, uint8_t* dst, unsigned int dstStride, int16_t* gx, int16_t* gy,
                            unsigned int gradStride)
{
    return edge::sobelEdges<Kernels>({{src, srcWidth, srcHeight, srcStride, dst, dstStride}, gx, gy, gradStride},
                                     kernelSize, lowThresh, highThresh, normType == ONDRIX_NORM_L2);
}

void odxFilterCanny3x3u8_v3V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int low, int high,
                             int16_t* gx, int16_t* gy, unsigned int gradStride)
{
    const edge::EdgeImage image = {{src, srcWidth, srcHeight, srcStride, dst, dstStride}, gx, gy, gradStride};
    if (edge::differenceEdges<Kernels>(image, low, high) != ONDRIX_SUCCESS) {
        ODX_LOG(Error, "Error - can not allocate scratch buffer for %s", "odxFilterCanny3x3u8_v3C");
    }
}

void odxFilterCanny3x3u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int low, int high)
{
    odxFilterCanny3x3u8_v3V(src, srcWidth, srcHeight, srcStride, dst, dstStride, low, high, nullptr, nullptr, 0);
}

} // namespace odx::ODX_TARGET
