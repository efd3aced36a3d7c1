// SIMD Harris corners. The smoothing of a row of products is a horizontal sum, then a cascade of four sums of
// neighbouring rows, whose state lies in memory. Rows have room for whole vectors beyond their end.
#include "cpu/ondrixHarris.h"
#include "cpu/ondrixHarrisC.h"
#include "orlan/simd/prefix.h"
#include "orlan/simd/roots.h"

#define ODX_FAMILY_LIST "frame/operations/harrisCorners.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;
using harris::Memory;
using harris::Planes;
using harris::Recent;
using harris::View;

namespace
{

class Rows
{
    static constexpr uint32_t kPlanes = 3, kStages = 4, kLanes = kBytes / sizeof(int16_t), kWords = kLanes / 2;

public:
    static constexpr uint32_t kLeastWidth = kLanes + 2;

    ODX_MEMBER static uint64_t responseBytes(uint32_t width) { return sizeof(int32_t) * padded(width); }
    ODX_MEMBER static uint64_t gradientBytes(uint32_t width)
    {
        return kPlanes * (sizeof(int16_t) + kStages * sizeof(int32_t)) * padded(width) + kBytes;
    }
    ODX_MEMBER static uint64_t smoothedBytes(uint32_t width) { return kPlanes * sizeof(int16_t) * padded(width); }

    ODX_MEMBER Rows(const View& view, const Memory& memory)
        : view_(view), products_(planesAt(memory.grads)), smoothed_(planesAt(memory.blurgrads)),
          stages_(aligned(memory.grads + kPlanes * padded(view.width)))
    {
        memset(memory.grads, 0, gradientBytes(view.width)); // what lies beyond the rows takes part in sums
        memset(memory.blurgrads, 0, smoothedBytes(view.width));
    }

    // The smoothed row is made here: it is right once five rows were pushed.
    ODX_MEMBER void push(uint32_t y)
    {
        gradients(view_.row(y - 1) + 1, view_.row(y) + 1, view_.row(y + 1) + 1, view_.width - 2);
        int32_t* stages = stages_;
        stages = smoothPlane(products_.xx, smoothed_.xx, stages);
        stages = smoothPlane(products_.yy, smoothed_.yy, stages);
        smoothPlane(products_.xy, smoothed_.xy, stages);
    }

    ODX_MEMBER const Planes& smooth() const { return smoothed_; }

    ODX_MEMBER void harrisRow(const Planes& planes, int32_t* out) const
    {
        const uint32_t end = view_.width - harris::kMargin;
        for (uint32_t x = harris::kMargin; x < end; x += kLanes) {
            const s32p xx = split(load<s16v>(planes.xx + x)), yy = split(load<s16v>(planes.yy + x)),
                       xy = split(load<s16v>(planes.xy + x));
            storeInOrder(out + x, s32p{response(xx.a, yy.a, xy.a), response(xx.b, yy.b, xy.b)});
        }
    }

    // What is under the root is below 2^31: products of gradients are at most 2^14, and their double is squared
    // modulo 2^16.
    ODX_MEMBER void eigenvalueRow(const Planes& planes, int32_t* out) const
    {
        const uint32_t end = view_.width - harris::kMargin;
        for (uint32_t x = harris::kMargin; x < end; x += kLanes) {
            const u16v xx = load<u16v>(planes.xx + x), yy = load<u16v>(planes.yy + x),
                       xy = load<u16v>(planes.xy + x);
            const s32p squares = sumOfSquares((s16v)(xx - yy), (s16v)(xy + xy));
            const u32p trace = widenInOrder(xx + yy);
            store(out + x, eigenvalue(trace.a, squares.a));
            store(out + x + kWords, eigenvalue(trace.b, squares.b));
        }
    }

    // Looks at up to two vectors beyond the last one, too.
    ODX_MEMBER static bool anyAbove(const int32_t* responses, uint32_t count, int32_t limit)
    {
        s32p above = {};
        for (uint32_t x = 0; x < count; x += 2 * kWords) {
            const s32p response = loadBoth(responses + x);
            above = {above.a | (response.a > limit), above.b | (response.b > limit)};
        }
        return any((u8v)(above.a | above.b));
    }

    // Reads up to two vectors beyond `to`, which the rows have room for.
    template <class F>
    ODX_MEMBER static void maxima(const Recent& recent, uint32_t from, uint32_t to, int32_t threshold, F f)
    {
        using harris::kSearched;
        for (uint32_t count; from < to; from += count) {
            count = to - from < kSearched ? to - from : kSearched;
            if (!anyAbove(recent.row[2] + from, count, threshold)) continue;

            harris::Neighbours n;
            for (uint32_t x = 0; x < count + 4; x += 2 * kWords) {
                const auto row = [&](uint32_t i) __attribute__((always_inline))
                {
                    return loadBoth(recent.row[i] + from - 2 + x);
                };
                const s32p around = greatest(greatest(row(0), row(1)), greatest(row(3), row(4)));
                storeBoth(n.around + x, around);
                storeBoth(n.column + x, greatest(around, row(2)));
            }
            for (uint32_t x = 0; x < count; x += 2 * kWords) {
                const auto column = [&](uint32_t i) __attribute__((always_inline))
                {
                    return loadBoth(n.column + x + i);
                };
                const s32p response = loadBoth(recent.row[2] + from + x);
                const s32p beside = greatest(greatest(column(0), column(1)), greatest(column(3), column(4)));
                const s32p limit = greatest(beside, loadBoth(n.around + x + 2));
                const auto maximum = [=](s32v v, s32v than) { return (v > than) & (v > threshold); };
                const s16v maxima = narrowBoth({maximum(response.a, limit.a), maximum(response.b, limit.b)});
                if (!any((u8v)maxima)) continue;
                // The lanes that are set, of those up to `count`, by the first of their bytes.
                uint64_t lanes = laneBits((s8v)maxima) & 0x5555555555555555;
                if (count - x < 2 * kWords) lanes &= (uint64_t{1} << (2 * (count - x))) - 1;
                for (; lanes != 0; lanes &= lanes - 1) {
                    if (!f(from + x + (uint32_t)__builtin_ctzll(lanes) / 2)) return;
                }
            }
        }
    }

private:
    ODX_MEMBER static s32p greatest(const s32p& p, const s32p& q) { return {max(p.a, q.a), max(p.b, q.b)}; }

    ODX_MEMBER static size_t padded(uint32_t width) { return size_t{width} + 2 * kLanes; }
    // Vectors that cross cache lines would make the stages slow.
    ODX_MEMBER static int32_t* aligned(int16_t* p)
    {
        return reinterpret_cast<int32_t*>(p + -reinterpret_cast<uintptr_t>(p) % kBytes / sizeof *p);
    }
    ODX_MEMBER Planes planesAt(int16_t* row) const
    {
        return {row, row + padded(view_.width), row + 2 * padded(view_.width)};
    }

    ODX_MEMBER static s32v response(s32v xx, s32v yy, s32v xy)
    {
        const s32v trace = xx + yy;
        return xx * yy - (xy * xy + (s32v)((u32v)(trace * trace) >> 4));
    }
    ODX_MEMBER static s32v eigenvalue(u32v trace, s32v square)
    {
        const s32v root = floorRoot(__builtin_convertvector(square, f32v) * 65536.0f, (u32v)square << 16);
        return ((s32v)(trace << 8) - root) >> 1;
    }

    // Products of `count` columns, at least a vector's lanes, from column 1 on.
    ODX_MEMBER void gradients(const uint8_t* above, const uint8_t* here, const uint8_t* below,
                              uint32_t count) const
    {
        for (uint32_t x = 0;; x += kLanes) {
            if (count - x < kLanes) x = count - kLanes;
            const s16v dx = ((s16v)loadWiden(here + x + 1) - (s16v)loadWiden(here + x - 1)) >> 1;
            const s16v dy = ((s16v)loadWiden(below + x) - (s16v)loadWiden(above + x)) >> 1;
            store(products_.xx + 1 + x, dx * dx);
            store(products_.yy + 1 + x, dy * dy);
            store(products_.xy + 1 + x, dx * dy);
            if (x + kLanes == count) return;
        }
    }

    // Returns where the stages of the next plane begin.
    ODX_MEMBER int32_t* smoothPlane(const int16_t* products, int16_t* out, int32_t* stages) const
    {
        const uint32_t end = view_.width - harris::kMargin;
        for (uint32_t x = harris::kMargin; x < end; x += kLanes) {
            s32p sum = binomials5(products + x - 2);
            for (uint32_t i = 0; i < kStages; ++i, stages += 2 * kBytes / sizeof(int32_t)) {
                if constexpr (!kPairsVectors) pin(stages);
                const s32p next = sum + loadBoth(stages);
                storeBoth(stages, sum);
                sum = next;
            }
            store(out + x, joinShifted<8>(sum));
        }
        return stages;
    }

    const View view_;
    const Planes products_, smoothed_;
    int32_t* const stages_; // of a plane: for each vector of columns, the four stages
};

ODX_INLINE bool tooNarrow(uint32_t width)
{
    return width < Rows::kLeastWidth;
}

} // namespace

void odxCornerHarrisu8V(const uint8_t* src, unsigned int width, unsigned int height, unsigned int stride,
                        unsigned int border, uint32_t* xy, unsigned int nCornersMax, uint32_t* numcorners,
                        int threshold)
{
    if (tooNarrow(width)) {
        return odxCornerHarrisu8C(src, width, height, stride, border, xy, nCornersMax, numcorners, threshold);
    }
    const View view = {src, width, height, stride};
    harris::corners<Rows>(view, border, threshold, {xy, nullptr, nCornersMax, numcorners}, fast::NoMask());
}

void odxCornerHarrisInMasku8V(const uint8_t* srcImg, unsigned int width, unsigned int height, unsigned int stride,
                              unsigned int border, uint32_t* xy, unsigned int nCornersMax, uint32_t* numcorners,
                              int threshold, const uint8_t* bitMask, unsigned int maskWidth,
                              unsigned int maskHeight)
{
    if (tooNarrow(width)) {
        return odxCornerHarrisInMasku8C(srcImg, width, height, stride, border, xy, nCornersMax, numcorners,
                                        threshold, bitMask, maskWidth, maskHeight);
    }
    const View view = {srcImg, width, height, stride};
    harris::cornersInMask<Rows>(view, border, threshold, {xy, nullptr, nCornersMax, numcorners}, bitMask,
                                maskWidth, maskHeight);
}

void odxCornerHarrisAdaptiveu8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, unsigned int border, uint32_t* xy,
                                unsigned int nCornersMax, uint32_t* nCorners, int threshold)
{
    if (tooNarrow(srcWidth)) {
        return odxCornerHarrisAdaptiveu8C(src, srcWidth, srcHeight, srcStride, border, xy, nCornersMax, nCorners,
                                          threshold);
    }
    const View view = {src, srcWidth, srcHeight, srcStride};
    harris::strongestCorners<Rows>(view, border, threshold, {xy, nullptr, nCornersMax, nCorners});
}

void odxCornerHarrisScoreu8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, unsigned int border, uint32_t* xy, int32_t* scores,
                             unsigned int nCornersMax, uint32_t* nCorners, int threshold)
{
    if (tooNarrow(srcWidth)) {
        return odxCornerHarrisScoreu8C(src, srcWidth, srcHeight, srcStride, border, xy, scores, nCornersMax,
                                       nCorners, threshold);
    }
    const View view = {src, srcWidth, srcHeight, srcStride};
    harris::corners<Rows>(view, border, threshold, {xy, scores, nCornersMax, nCorners}, fast::NoMask());
}

odxStatus odxLocalHarrisMaxu8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, unsigned int x, unsigned int y, unsigned int radius,
                               uint32_t* maxX, uint32_t* maxY, int32_t* maxResponse)
{
    if (tooNarrow(srcWidth)) {
        return odxLocalHarrisMaxu8C(src, srcWidth, srcHeight, srcStride, x, y, radius, maxX, maxY, maxResponse);
    }
    const View view = {src, srcWidth, srcHeight, srcStride};
    return harris::localMaximum<Rows>(view, x, y, radius, maxX, maxY, maxResponse);
}

void odxGoodFeatureToTracku8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, unsigned int border, uint32_t* xy, unsigned int nCornersMax,
                              uint32_t* nCorners, float qualityLevel, unsigned int minDistance)
{
    if (tooNarrow(srcWidth)) {
        return odxGoodFeatureToTracku8C(src, srcWidth, srcHeight, srcStride, border, xy, nCornersMax, nCorners,
                                        qualityLevel, minDistance);
    }
    const View view = {src, srcWidth, srcHeight, srcStride};
    harris::goodFeatures<Rows>(view, border, qualityLevel, minDistance, {xy, nullptr, nCornersMax, nCorners});
}

} // namespace odx::ODX_TARGET
