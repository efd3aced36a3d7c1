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

// Detection works on batches of vectors, in stages that hardly branch on pixels:
//  1. all vectors: the pixels above and below leave a group of them a chance, and all compass points some of it;
//  2. those: the diagonals leave some of their parts a chance;
//  3. those, a vector of parts at a time: the arcs;
//  4. the corners that are left, in raster order.
constexpr uint32_t kPart = kBytes > 16 ? kBytes / 2 : kBytes;
constexpr uint32_t kParts = kBytes / kPart;
constexpr uint64_t kPartMask = (uint64_t{1} << kPart) - 1;

constexpr uint32_t kGroup = 4;                    // vectors whose pixels above and below are tested together
constexpr uint32_t kBatch = 256;                  // vectors that may wait for the later stages
constexpr uint32_t kSegment = 64;                 // vectors that stage 1 takes in between
constexpr uint32_t kFull = kBatch - kSegment - 1; // beyond this there is no room for a segment and a row's ends

// Functions of their own: most are the same for all detectors, and together they have too many registers.
#define ODX_STAGE [[gnu::noinline]] static

struct Batch {
    const uint8_t* vectors[kBatch + 1];
    uint64_t chances[kParts == 1 ? 1 : kBatch + 1]; // of each, the lanes that the compass points leave one
    uint32_t count;

    const uint8_t* parts[kParts * kBatch + 1];
    uint32_t partCount;

    uint32_t corners[kParts * kBatch + 1]; // of each part that is left, a bit for each pixel
};

ODX_INLINE u8v loadParts(const uint8_t* p, const uint8_t* q)
{
    return kParts == 2 ? loadHalves(p, q) : loadOnce(p);
}

// A vector of pixels, and those above and below.
struct Column {
    u8v centre, north, south;
    ODX_MEMBER u8v contrast() const
    {
        return kParts == 1 ? max(distance(north, centre), distance(south, centre))
                           : distance(max(north, south), min(north, south), centre);
    }
    ODX_MEMBER u8v contrast(u8v east, u8v west) const
    {
        return distance(overPairs<Min, Max>(north, south, east, west),
                        overPairs<Max, Min>(north, south, east, west), centre);
    }
};

// Stage 1, of a row's vectors from p to `last`: one at its start, aligned ones, and one at its end. Returns where
// it stopped; that is beyond `last` at the end.
ODX_STAGE const uint8_t* collect(Batch& batch, const uint8_t* p, const uint8_t* last, ptrdiff_t stride,
                                 uint8_t barrierByte)
{
    const u8v barrier = u8v{} + barrierByte;
    const ptrdiff_t below = 3 * stride;
    const auto columnOf = [=](const uint8_t* at) __attribute__((always_inline))
    {
        return Column{loadOnce(at), loadOnce(at - below), loadOnce(at + below)};
    };
    uint32_t n = batch.count;
    const auto test = [&](const uint8_t* at, const Column& column) __attribute__((always_inline))
    {
        const u8v contrast = column.contrast(loadOnce(at + 3), loadOnce(at - 3));
        batch.vectors[n] = at;
        if constexpr (kParts == 1) {
            n += any(subSat(contrast, barrier)) ? 1 : 0;
        } else {
            const uint64_t chances = laneBits(contrast > barrier);
            batch.chances[n] = chances;
            n += chances != 0 ? 1 : 0;
        }
    };
    const uint8_t* const end =
        last - p > ptrdiff_t{kSegment} * ptrdiff_t{kBytes} ? p + size_t{kSegment} * kBytes : last;
    if (p < end && (uintptr_t)p % kBytes != 0) {
        test(p, columnOf(p));
        p += kBytes - (uintptr_t)p % kBytes;
    }
    for (; end - p > ptrdiff_t{(kGroup - 1) * kBytes}; p += kGroup * kBytes) {
        Column columns[kGroup];
        u8v farthest = {};
        for (uint32_t k = 0; k < kGroup; ++k) {
            columns[k] = columnOf(p + k * kBytes);
            farthest = max(farthest, columns[k].contrast());
        }
        if (!any(subSat(farthest, barrier))) continue;
        if constexpr (kGroupsVectors) {
            const auto contrast = [&](uint32_t k) __attribute__((always_inline))
            {
                const uint8_t* const at = p + k * kBytes;
                return columns[k].contrast(loadOnce(at + 3), loadOnce(at - 3));
            };
            const uint64_t some = anyAbove(contrast(0), contrast(1), contrast(2), contrast(3), barrier);
            for (uint32_t k = 0; k < kGroup; ++k) {
                batch.vectors[n] = p + k * kBytes;
                n += (some >> (16 * k) & 0xFFFF) != 0 ? 1 : 0;
            }
        } else {
            for (uint32_t k = 0; k < kGroup; ++k)
                test(p + k * kBytes, columns[k]);
        }
    }
    for (; p < end; p += kBytes)
        test(p, columnOf(p));
    if (p >= last) {
        test(last, columnOf(last));
        p = last + 1;
    }
    batch.count = n;
    return p;
}

// Stage 2. Where it hardly leaves anything out of the first vectors, it isn't worth its time for the rest.
ODX_STAGE void sift(Batch& batch, ptrdiff_t stride, uint8_t barrierByte)
{
    constexpr uint32_t kFirst = 16, kMost = kParts == 1 ? kFirst * 3 / 4 : kParts * kFirst - 1;
    const u8v barrier = u8v{} + barrierByte;
    const uint32_t count = batch.count;
    uint32_t n = 0;
    const auto keep = [&](const uint8_t* part, bool chance) __attribute__((always_inline))
    {
        batch.parts[n] = part;
        n += chance ? 1 : 0;
    };
    // Of vector i, the parts that are left chances.
    const auto keepParts = [&](uint32_t i, uint64_t chances) __attribute__((always_inline))
    {
        const uint8_t* const p = batch.vectors[i];
        if constexpr (kParts == 1) {
            keep(p, chances != 0);
        } else {
            chances &= batch.chances[i];
            keep(p, (chances & kPartMask) != 0);
            keep(p + kPart, chances >> (kBytes - kPart) != 0);
        }
    };
    for (uint32_t i = 0; i < count; ++i) {
        if (i == kFirst && n > kMost) {
            for (; i < count; ++i)
                keepParts(i, ~uint64_t{0});
            break;
        }
        const uint8_t* const p = batch.vectors[i];
        const auto at = [&](size_t k) __attribute__((always_inline))
        {
            return loadOnce(p + kCircle[k].dy * stride + kCircle[k].dx);
        };
        const u8v a = at(2), b = at(10), c = at(6), d = at(14);
        const u8v bright = overPairs<Min, Max>(a, b, c, d), dark = overPairs<Max, Min>(a, b, c, d);
        if constexpr (kParts == 1) {
            const u8v e = at(0), f = at(8), g = at(4), h = at(12);
            const u8v contrast = distance(min(overPairs<Min, Max>(e, f, g, h), bright),
                                          max(overPairs<Max, Min>(e, f, g, h), dark), loadOnce(p));
            keepParts(i, any(subSat(contrast, barrier)) ? 1 : 0);
        } else {
            keepParts(i, laneBits(distance(bright, dark, loadOnce(p)) > barrier));
        }
    }
    batch.partCount = n;
}

// Stage 3.
template <int N>
ODX_STAGE void testArcs(Batch& batch, ptrdiff_t stride, uint8_t barrierByte)
{
    const u8v barrier = u8v{} + barrierByte;
    const uint32_t count = batch.partCount;
    uint32_t n = 0;
    for (uint32_t i = 0; i < count; i += kParts) {
        const uint32_t j = i + kParts - 1 < count ? i + kParts - 1 : i; // one alone goes twice
        const uint8_t *const p = batch.parts[i], *const q = batch.parts[j];
        const u8v centre = loadParts(p, q);
        const auto circle = circleOf<u8v>([&](size_t k) __attribute__((always_inline)) {
            const ptrdiff_t offset = kCircle[k].dy * stride + kCircle[k].dx;
            return loadParts(p + offset, q + offset);
        });
        const u8v bright = overArcs<N, Min, Max>(circle), dark = overArcs<N, Max, Min>(circle);
        const uint64_t corners = laneBits(distance(bright, dark, centre) > barrier);
        const auto keep = [&](const uint8_t* part, uint64_t found) __attribute__((always_inline))
        {
            batch.parts[n] = part;
            batch.corners[n] = (uint32_t)found;
            n += found != 0 ? 1 : 0;
        };
        keep(p, corners & kPartMask);
        if (kParts == 2) keep(q, corners >> (kBytes - kPart));
    }
    batch.partCount = n;
}

// Where in the image the corners that were found last are.
struct Scan {
    const uint8_t* row;
    ptrdiff_t stride;
    uint32_t y;
    uint32_t x; // nothing before here is left in the row
};

// The places of the bits that are set in each byte, in order, and how many there are.
struct Places {
    uint8_t of[256][8], count[256];
};
constexpr Places placesOfBits()
{
    Places places = {};
    for (uint32_t byte = 0; byte < 256; ++byte) {
        for (uint32_t bit = 0, n = 0; bit < 8; ++bit) {
            if ((byte >> bit & 1) == 0) continue;
            places.of[byte][n++] = (uint8_t)bit;
            places.count[byte] = (uint8_t)n;
        }
    }
    return places;
}
constexpr Places kPlaces = placesOfBits();

// Corners on their way to a list. Those among eight neighbours are written as eight, however many there are.
class Outbox
{
public:
    ODX_MEMBER void put(uint32_t x, uint32_t y, uint32_t corners)
    {
        uint32_t count = count_;
        while (corners != 0) {
            const uint32_t first = (uint32_t)__builtin_ctz(corners), some = corners >> first & 0xFF;
            storePoints(xy_ + 2 * size_t{count}, kPlaces.of[some], x + first, y);
            count += kPlaces.count[some];
            corners &= ~(uint32_t{0xFF} << first);
        }
        count_ = count;
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
    static constexpr uint32_t kRoom = 128; // for another part, while no more are in
    uint32_t xy_[2 * (kRoom + kPart + 8)];
    uint32_t count_ = 0;
};

// The corners from x on that are not excluded.
ODX_INLINE uint32_t without(const NoMask&, uint32_t, uint32_t corners)
{
    return corners;
}
ODX_INLINE uint32_t without(const Mask& mask, uint32_t x, uint32_t corners)
{
    if (mask.finer + mask.coarser == 0) {
        // All pixels of a part are in the row, and with them the bytes of their bits.
        const uint8_t* const bytes = mask.row + x / 8;
        uint64_t bits = uint64_t{bytes[(x % 8 + kPart - 1) / 8]} << kPart;
        for (uint32_t i = 0; i < kPart / 8; ++i)
            bits |= uint64_t{bytes[i]} << (8 * i);
        return corners & ~(uint32_t)(mirrorBytes(bits) >> x % 8);
    }
    uint32_t kept = corners;
    for (; corners != 0; corners &= corners - 1) {
        if (mask.excludes(x + (uint32_t)__builtin_ctz(corners))) kept &= ~(corners & (0 - corners));
    }
    return kept;
}

// Stage 4; whether the list is full.
template <class Excluded>
ODX_STAGE bool emit(const Batch& batch, Scan& upTo, CornerList& list, Excluded& excluded)
{
    Scan scan = upTo;
    Outbox outbox;
    for (uint32_t i = 0; i < batch.partCount; ++i) {
        const uint8_t* const p = batch.parts[i];
        uint32_t corners = batch.corners[i];
        if (p - scan.row >= scan.stride) {
            do {
                scan.row += scan.stride;
                ++scan.y;
            } while (p - scan.row >= scan.stride);
            scan.x = 0;
            excluded.enter(scan.y);
        }
        const uint32_t x = (uint32_t)(p - scan.row);
        // A row's first and last vector overlap their neighbours: what was found before is not found again. All of
        // a part may have been. Parts of a row's last vector may begin before those of the one before it.
        if (__builtin_expect(x < scan.x, 0)) corners &= (uint32_t)(~uint64_t{0} << (scan.x - x));
        if (kParts == 1 || scan.x < x + kPart) scan.x = x + kPart;
        outbox.put(x, scan.y, without(excluded, x, corners));
        if (outbox.full() && outbox.moveTo(list)) return true;
    }
    upTo = scan;
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
        const uint8_t* const row = rowOf(src, srcStride, y);
        const uint8_t* const last = row + area.right - kBytes;
        for (const uint8_t* p = row + area.left; p <= last;) {
            p = collect(batch, p, last, stride, barrier);
            if (batch.count >= kFull && finish()) return list.count;
        }
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
