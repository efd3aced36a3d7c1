#include "cpu/ondrixFast.h"
#include "cpu/ondrixFastC.h"
#include "orlan/simd/simd.h"

#define ODX_FAMILY_LIST "frame/operations/fastCorners.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;
using namespace fast;

namespace
{

struct Min {
    ODX_INLINE u8v of(u8v a, u8v b) { return min(a, b); }
};
struct Max {
    ODX_INLINE u8v of(u8v a, u8v b) { return max(a, b); }
};

} // namespace

// How far a level is above or below the centre; 0 when it is neither.
ODX_INLINE u8v distance(u8v bright, u8v dark, u8v centre)
{
    return max(subSat(bright, centre), subSat(centre, dark));
}

// Detection works on batches of vectors, in stages without branches that depend on pixels:
//  1. all vectors: the four compass points leave some of them a chance;
//  2. those: the diagonals leave some of their halves a chance;
//  3. those, two at a time: the arcs;
//  4. the corners that are left, in raster order.
constexpr uint32_t kHalf = kBytes / 2;
constexpr uint32_t kHalfBits = kHalf * kLaneBits;
constexpr uint64_t kHalfMask = (uint64_t{1} << kHalfBits) - 1;

constexpr uint32_t kBatch = 256;                  // vectors that may wait for the later stages
constexpr uint32_t kSegment = 64;                 // vectors that stage 1 takes in between
constexpr uint32_t kFull = kBatch - kSegment - 1; // beyond this there is no room for a segment and a row's ends

// Functions of their own: most are the same for all detectors, and together they have too many registers.
#define ODX_STAGE [[gnu::noinline]] static

struct Batch {
    const uint8_t* vectors[kBatch + 1];
    uint32_t count;

    const uint8_t* halves[2 * kBatch + 1];
    uint32_t halfCount;

    uint32_t corners[2 * kBatch + 1]; // of each half that is left, as laneBits has them
};

// Stage 1, of the vectors from p to before `end`; returns where it stopped.
ODX_STAGE const uint8_t* collect(Batch& batch, const uint8_t* p, const uint8_t* end, ptrdiff_t stride,
                                 uint8_t barrierByte)
{
    const u8v barrier = u8v{} + barrierByte;
    const ptrdiff_t below = 3 * stride;
    uint32_t n = batch.count;
    for (; p < end; p += kBytes) {
        const u8v centre = loadOnce(p), south = loadOnce(p + below), north = loadOnce(p - below),
                  east = loadOnce(p + 3), west = loadOnce(p - 3);
        const u8v bright = overPairs<Min, Max>(south, north, east, west);
        const u8v dark = overPairs<Max, Min>(south, north, east, west);
        batch.vectors[n] = p;
        n += any(subSat(distance(bright, dark, centre), barrier)) ? 1 : 0;
    }
    batch.count = n;
    return p;
}

// Stage 2.
ODX_STAGE void sift(Batch& batch, ptrdiff_t stride, uint8_t barrierByte)
{
    const u8v barrier = u8v{} + barrierByte;
    const uint32_t count = batch.count;
    uint32_t n = 0;
    for (uint32_t i = 0; i < count; ++i) {
        const uint8_t* const p = batch.vectors[i];
        const auto at = [&](size_t k) __attribute__((always_inline))
        {
            return loadOnce(p + kCircle[k].dy * stride + kCircle[k].dx);
        };
        const u8v a = at(0), b = at(8), c = at(4), d = at(12), e = at(2), f = at(10), g = at(6), h = at(14);
        const u8v bright = min(overPairs<Min, Max>(a, b, c, d), overPairs<Min, Max>(e, f, g, h));
        const u8v dark = max(overPairs<Max, Min>(a, b, c, d), overPairs<Max, Min>(e, f, g, h));
        const uint64_t chances = laneBits(distance(bright, dark, loadOnce(p)) > barrier);
        batch.halves[n] = p;
        n += (chances & kHalfMask) != 0 ? 1 : 0;
        batch.halves[n] = p + kHalf;
        n += (chances >> kHalfBits) != 0 ? 1 : 0;
    }
    batch.halfCount = n;
}

// Stage 3.
template <int N>
ODX_STAGE void testArcs(Batch& batch, ptrdiff_t stride, uint8_t barrierByte)
{
    const u8v barrier = u8v{} + barrierByte;
    const uint32_t count = batch.halfCount;
    uint32_t n = 0;
    const auto keep = [&](const uint8_t* half, uint64_t corners) __attribute__((always_inline))
    {
        batch.halves[n] = half;
        batch.corners[n] = (uint32_t)corners;
        n += corners != 0 ? 1 : 0;
    };
    for (uint32_t i = 0; i < count; i += 2) {
        const uint8_t* const p = batch.halves[i];
        const uint8_t* const q = batch.halves[i + 1 < count ? i + 1 : i]; // one alone goes twice
        const auto circle = circleOf<u8v>([&](size_t k) __attribute__((always_inline)) {
            const ptrdiff_t offset = kCircle[k].dy * stride + kCircle[k].dx;
            return loadHalves(p + offset, q + offset);
        });
        const u8v bright = overArcs<N, Min, Max>(circle), dark = overArcs<N, Max, Min>(circle);
        const uint64_t corners = laneBits(distance(bright, dark, loadHalves(p, q)) > barrier);
        keep(p, corners & kHalfMask);
        keep(q, corners >> kHalfBits);
    }
    batch.halfCount = n;
}

// Where in the image the corners that were found last are.
struct Scan {
    const uint8_t* row;
    ptrdiff_t stride;
    uint32_t y;
    uint32_t x; // nothing before here is left in the row
};

// Corners on their way to a list. Those of a half are written in fours, whether there are as many or not: how many
// there are is what a branch would guess wrong.
class Outbox
{
public:
    ODX_MEMBER void put(uint32_t x, uint32_t y, uint64_t corners)
    {
        uint32_t* out = xy_ + 2 * count_;
        count_ += (uint32_t)__builtin_popcountll(corners);
        do {
            for (int i = 0; i < 4; ++i, out += 2, corners &= corners - 1) {
                out[0] = x + (uint32_t)__builtin_ctzll(corners | uint64_t{1} << 63) / kLaneBits;
                out[1] = y;
            }
        } while (corners != 0);
    }
    ODX_MEMBER bool full() const { return count_ > kRoom; }

    // Whether the list is full now.
    ODX_MEMBER bool moveTo(CornerList& list)
    {
        const uint32_t number = count_;
        count_ = 0;
        return list.add(xy_, number);
    }

private:
    static constexpr uint32_t kRoom = 128; // for another half, while no more are in
    uint32_t xy_[2 * (kRoom + kHalf + 3)];
    uint32_t count_ = 0;
};

// The corners from x on that are not excluded.
ODX_INLINE uint64_t without(const NoMask&, uint32_t, uint64_t corners)
{
    return corners;
}
ODX_INLINE uint64_t without(const Mask& mask, uint32_t x, uint64_t corners)
{
    uint64_t kept = corners;
    for (; corners != 0; corners &= corners - 1) {
        if (mask.excludes(x + (uint32_t)__builtin_ctzll(corners) / kLaneBits)) kept &= ~(corners & (0 - corners));
    }
    return kept;
}

// Stage 4; whether the list is full.
template <class Excluded>
ODX_STAGE bool emit(const Batch& batch, Scan& scan, CornerList& list, Excluded& excluded)
{
    Outbox outbox;
    for (uint32_t i = 0; i < batch.halfCount; ++i) {
        const uint8_t* const p = batch.halves[i];
        uint64_t corners = batch.corners[i];
        if (p - scan.row >= scan.stride) {
            do {
                scan.row += scan.stride;
                ++scan.y;
            } while (p - scan.row >= scan.stride);
            scan.x = 0;
            excluded.enter(scan.y);
        }
        const uint32_t x = (uint32_t)(p - scan.row);
        // A row's first and last vector overlap their neighbours: what was found before is not found again. They
        // are never the same vector, so some of its lanes are left.
        if (x < scan.x) corners &= ~uint64_t{0} << ((scan.x - x) * kLaneBits);
        if (scan.x < x + kHalf) scan.x = x + kHalf;
        outbox.put(x, scan.y, without(excluded, x, corners));
        if (outbox.full() && outbox.moveTo(list)) return true;
    }
    return outbox.moveTo(list);
}

template <int N, class Excluded>
ODX_INLINE uint32_t detect(const uint8_t* src, uint32_t srcStride, const Area& area, int32_t barrierNumber,
                           CornerList list, Excluded excluded)
{
    const ptrdiff_t stride = (ptrdiff_t)srcStride;
    const uint8_t barrier = (uint8_t)barrierNumber;
    Scan scan = {rowOf(src, srcStride, area.top), stride, area.top, 0};
    excluded.enter(area.top);
    Batch batch;
    batch.count = 0;
    const auto finish = [&] {
        sift(batch, stride, barrier);
        testArcs<N>(batch, stride, barrier);
        const bool listIsFull = emit(batch, scan, list, excluded);
        batch.count = 0;
        return listIsFull;
    };
    for (uint32_t y = area.top; y < area.bottom; ++y) {
        // A vector at the start of the row, aligned ones, and one at the end, if that is another one.
        const uint8_t* const row = rowOf(src, srcStride, y);
        const uint8_t* const first = row + area.left;
        const uint8_t* const last = row + area.right - kBytes;
        collect(batch, first, first + 1, stride, barrier);
        for (const uint8_t* p = first + kBytes - (uintptr_t)first % kBytes; p < last;) {
            const bool more = (size_t)(last - p) > size_t{kSegment} * kBytes;
            p = collect(batch, p, more ? p + size_t{kSegment} * kBytes : last, stride, barrier);
            if (batch.count >= kFull && finish()) return list.count;
        }
        if (last != first) collect(batch, last, last + 1, stride, barrier);
        if (batch.count >= kFull && finish()) return list.count;
    }
    finish();
    return list.count;
}

// What the vectors can't do are rows without a whole vector and barriers that are no byte.
ODX_INLINE bool vectorsFit(const Area& area, int32_t barrier)
{
    return !area.empty() && area.right - area.left >= kBytes && barrier >= 0 && barrier <= 255;
}

template <int N>
ODX_INLINE int32_t score(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier)
{
    uint64_t first = 0, second = 0;
    for (int k = 0; k < 8; ++k) {
        first |= (uint64_t)pixel[offsets[k]] << (8 * k);
        second |= (uint64_t)pixel[offsets[k + 8]] << (8 * k);
    }
    // Each byte begins an arc: the runs double from 1 to 8, and reach N.
    const u8v circle = repeat(first, second), centre = u8v{} + *pixel;
    const auto arcs = [&](auto inner) __attribute__((always_inline))
    {
        const u8v two = inner.of(circle, rotate<1>(circle));
        const u8v four = inner.of(two, rotate<2>(two));
        const u8v eight = inner.of(four, rotate<4>(four));
        return inner.of(eight, N == 9 ? rotate<8>(circle) : rotate<2>(eight));
    };
    const int32_t contrast = highest(distance(arcs(Min()), arcs(Max()), centre));
    return contrast > barrier ? contrast - 1 : barrier;
}

int32_t fast9_corner_scoreV(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier)
{
    return barrier >= 0 ? score<9>(pixel, offsets, barrier) : fast9_corner_scoreC(pixel, offsets, barrier);
}

int32_t fast10_corner_scoreV(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier)
{
    return barrier >= 0 ? score<10>(pixel, offsets, barrier) : fast10_corner_scoreC(pixel, offsets, barrier);
}

void odxCornerFast9u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                       int barrier, unsigned int border, uint32_t* xy, unsigned int nCornersMax,
                       uint32_t* nCorners)
{
    const Area area = areaInside(srcWidth, srcHeight, border);
    if (!vectorsFit(area, barrier))
        return odxCornerFast9u8C(src, srcWidth, srcHeight, srcStride, barrier, border, xy, nCornersMax, nCorners);
    *nCorners = detect<9>(src, srcStride, area, barrier, CornerList{xy, nCornersMax, 0}, NoMask());
}

void odxCornerFast10u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                        int barrier, unsigned int border, uint32_t* xy, unsigned int nCornersMax,
                        uint32_t* nCorners)
{
    const Area area = areaInside(srcWidth, srcHeight, border);
    if (!vectorsFit(area, barrier))
        return odxCornerFast10u8C(src, srcWidth, srcHeight, srcStride, barrier, border, xy, nCornersMax, nCorners);
    *nCorners = detect<10>(src, srcStride, area, barrier, CornerList{xy, nCornersMax, 0}, NoMask());
}

void odxCornerFast9InMasku8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                             unsigned int nCornersMax, uint32_t* nCorners, const uint8_t* bitMask,
                             unsigned int maskWidth, unsigned int maskHeight)
{
    const Area area = areaInside(srcWidth, srcHeight, border);
    Mask mask;
    if (!vectorsFit(area, barrier) || !fitMask(mask, bitMask, srcWidth, srcHeight, maskWidth, maskHeight)) {
        return odxCornerFast9InMasku8C(src, srcWidth, srcHeight, srcStride, barrier, border, xy, nCornersMax,
                                       nCorners, bitMask, maskWidth, maskHeight);
    }
    *nCorners = detect<9>(src, srcStride, area, barrier, CornerList{xy, nCornersMax, 0}, mask);
}

void odxCornerFast10InMasku8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                              unsigned int nCornersMax, uint32_t* nCorners, const uint8_t* mask,
                              unsigned int maskWidth, unsigned int maskHeight)
{
    const Area area = areaInside(srcWidth, srcHeight, border);
    Mask bits;
    if (!vectorsFit(area, barrier) || !fitMask(bits, mask, srcWidth, srcHeight, maskWidth, maskHeight)) {
        return odxCornerFast10InMasku8C(src, srcWidth, srcHeight, srcStride, barrier, border, xy, nCornersMax,
                                        nCorners, mask, maskWidth, maskHeight);
    }
    *nCorners = detect<10>(src, srcStride, area, barrier, CornerList{xy, nCornersMax, 0}, bits);
}

} // namespace odx::ODX_TARGET
