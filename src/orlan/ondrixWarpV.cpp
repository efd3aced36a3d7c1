// Warps and remaps work on tiles of positions. Those of a matrix are columns of a vector of rows each, or blocks:
// the sums along a row allow no other order, but rows are independent. Those of maps are vectors of a row.
#include "cpu/ondrixWarpC.h"
#include "orlan/warpTiles.h"

#define ODX_FAMILY_LIST "frame/operations/warps.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{

// ---- matrices ----

// The sums of a block: of its columns, all of which step through the columns that lie between.
struct Step {
    float x, y, w;
};
template <class Path>
struct Sums;
template <>
struct Sums<warp::Projective> {
    f32v numX, numY, den;
    ODX_MEMBER void start(uint32_t lane, const warp::Projective::Row& row)
    {
        numX[lane] = row.numX;
        numY[lane] = row.numY;
        den[lane] = row.den;
    }
    ODX_MEMBER void position(f32v& x, f32v& y) const
    {
        const f32v w = 1.0f / den;
        x = numX * w;
        y = numY * w;
    }
    ODX_MEMBER void step(const Step& by)
    {
        numX += by.x;
        numY += by.y;
        den += by.w;
    }
};
template <>
struct Sums<warp::Affine> {
    f32v numX, numY;
    ODX_MEMBER void start(uint32_t lane, const warp::Affine::Row& row)
    {
        numX[lane] = row.numX;
        numY[lane] = row.numY;
    }
    ODX_MEMBER void position(f32v& x, f32v& y) const
    {
        x = numX;
        y = numY;
    }
    ODX_MEMBER void step(const Step& by)
    {
        numX += by.x;
        numY += by.y;
    }
};

// Where denormals are rounded to zero, matrices must not lead to any: coefficients are 0, or so large that what
// sums of them leave is at least 2^-80, and the denominator is below 2^40.
ODX_INLINE bool staysNormal(const float* m, uint32_t count, const warp::Target& target)
{
    if constexpr (!kFlushesDenormals) return true;
    const float reach = (float)target.width + (float)target.height + 1.0f;
    for (uint32_t i = 0; i < count; ++i) {
        const float size = m[i] < 0 ? -m[i] : m[i];
        if (size != 0 && !(size >= 0x1p-56f && size * reach < 0x1p40f)) return false;
    }
    return true;
}

// Offsets within a source are numbers of 32 bits, and half a pixel counts as far as its sides.
ODX_INLINE bool isAddressable(const warp::Source& s)
{
    return (uint64_t)s.stride * s.height <= UINT32_MAX && s.width < 1u << 23 && s.height < 1u << 23;
}

ODX_INLINE uint32_t coefficientsOf(const warp::Projective&)
{
    return 9;
}
ODX_INLINE uint32_t coefficientsOf(const warp::Affine&)
{
    return 6;
}

// Tiles move through more rows than prefetchers follow. The part of the source that the tile after the next one
// will need, if it is where the last ones lead to,
template <uint32_t C, class Rule>
ODX_INLINE void prefetchSource(const warp::Source& s, const Tile<Rule, kTile>& tile)
{
    constexpr uint32_t corners[] = {placeOf(0, 15), placeOf(kLanes - 1, 0), placeOf(kLanes - 1, 15)};
    float least = tile.y[0], most = tile.y[0];
    for (const uint32_t i : corners) {
        least = tile.y[i] < least ? tile.y[i] : least;
        most = tile.y[i] > most ? tile.y[i] : most;
    }
    const float aheadX = 2 * (tile.x[corners[0]] - tile.x[0]), aheadY = 2 * (tile.y[corners[0]] - tile.y[0]);
    const auto within = [](float v, uint32_t size) {
        const auto place = (int32_t)v;
        return place < 0 ? 0 : (uint32_t)place < size ? (uint32_t)place : size - 1;
    };
    const uint32_t last = within(most + aheadY + 1.0f, s.height);
    const size_t across = C * size_t{within(tile.x[0] + aheadX, s.width)};
    for (uint32_t y = within(least + aheadY, s.height); y <= last; ++y)
        __builtin_prefetch(rowOf(s.pixels, s.stride, y) + across);
}
// and of the destination.
template <uint32_t C>
ODX_INLINE void prefetchTarget(const warp::Target& target, uint32_t x, uint32_t y, uint32_t rows)
{
    constexpr uint32_t kAhead = 128, kLine = 64;
    if (target.width - x < kAhead + kPitch) return;
    for (uint32_t r = 0; r < rows; ++r) {
        const uint8_t* const to = rowOf(target.pixels, target.stride, y + r) + C * size_t{x + kAhead};
        for (uint32_t line = 0; line < C * kPitch; line += kLine)
            __builtin_prefetch(to + line, 1);
    }
}

// nPlanes sources of C channels by one matrix.
template <bool clipped, class Rule, uint32_t C, uint32_t nPlanes, class Path>
ODX_INLINE void warpTiles(const Path& path, const warp::Source* sources, const warp::Target* targets,
                          const warp::Border& border, uint32_t* dstBorder)
{
    const uint32_t width = targets[0].width, height = targets[0].height;
    const warp::Inclusive inclusive(sources[0]);
    const warp::Sampler<Rule> sampler(sources[0], border), other(sources[nPlanes - 1], border);
    const Inside inside = Inside::of(sampler);
    const Inside inner = Inside::ofWindows<C>(sources[0]);
    const bool leaves = border.outside == warp::Outside::leave;
    const Step step = {path.m[0], path.m[3], coefficientsOf(path) == 9 ? path.m[6] : 0.0f};
    for (uint32_t y = 0; y < height; y += kLanes) {
        const uint32_t rows = height - y < kLanes ? height - y : kLanes;
        Sums<Path> sums[kStrips] = {};
        for (uint32_t i = 0; i < kStrips * kLanes; ++i) {
            const uint32_t r = i / kBlockColumns;
            auto row = path.row(y + (r < rows ? r : rows - 1));
            for (uint32_t k = 0; k < i % kBlockColumns; ++k)
                row.step();
            sums[i / kLanes].start(i % kLanes, row);
        }
        uint32_t first[kLanes] = {}, end[kLanes] = {};
        for (uint32_t x = 0; x < width; x += kPitch) {
            const uint32_t columns = width - x < kPitch ? width - x : kPitch;
            for (uint32_t p = 0; kPrefetches && p < nPlanes; ++p)
                prefetchTarget<C>(targets[p], x, y, rows);
            uint8_t planes[nPlanes * C + 1][kLanes * kPitch]; // one more: vectors may begin amid the last row
            for (uint32_t t = 0; t < columns; t += 16) {
                Tile<Rule, kTile> tile;
                tile.fill(
                    kStrip / kLanes, [&](uint32_t i, auto set) __attribute__((always_inline)) {
                        for (uint32_t k = 0; k < kStrips; ++k) {
                            f32v sx, sy;
                            sums[k].position(sx, sy);
                            set(k * kStrip + i * kLanes, sx, sy);
                            for (uint32_t j = 0; j < kBlockColumns; ++j)
                                sums[k].step(step);
                        }
                    });
                int32_t mask[kTile];
                bool anyInside;
                const Place place = tile.place(inside, mask, anyInside);
                const bool windows = tile.isBelow(inner.endX, inner.endY);
                for (uint32_t p = 0; kPrefetches && place == Place::inside && p < nPlanes; ++p)
                    prefetchSource<C>(sources[p], tile);
                const uint32_t used = columns - t < 16 ? columns - t : 16;
                const auto isUsed = [=](uint32_t i) { return columnAt(i) < used && rowAt(i) < rows; };
                for (uint32_t p = 0; p < nPlanes; ++p) {
                    sampleTile<Rule, C>(p == 0 ? sampler : other, place, tile, mask, anyInside, windows,
                                        Transposed<C>{planes + p * C, t, {}}, [&](uint32_t i) {
                                            return isUsed(i) && (!leaves || inclusive.holds(tile.x[i], tile.y[i]));
                                        });
                }
                // What rounds into the source may be outside.
                const bool whole = place == Place::inside && !Rule::kRounds;
                for (uint32_t r = 0; clipped && r < rows && place != Place::outside; ++r) {
                    for (uint32_t i = whole ? used - 1 : 0; i < used; ++i) {
                        const uint32_t at = placeOf(r, i);
                        if (!whole && !inclusive.holds(tile.x[at], tile.y[at])) continue;
                        if (end[r] == 0) first[r] = x + t + (whole ? 0 : i);
                        end[r] = x + t + i + 1;
                    }
                }
            }
            for (uint32_t r = 0; r < rows; ++r) {
                uint32_t from = 0, to = columns;
                if (clipped && leaves) {
                    from = first[r] > x ? first[r] - x : 0;
                    to = end[r] > x ? end[r] - x : 0;
                    if (from >= to) continue;
                }
                for (uint32_t p = 0; p < nPlanes; ++p) {
                    const uint8_t* channels[C];
                    for (uint32_t c = 0; c < C; ++c)
                        channels[c] = planes[p * C + c] + r * kPitch + from;
                    join<C>(rowOf(targets[p].pixels, targets[p].stride, y + r) + C * size_t{x + from}, channels,
                            to - from);
                }
            }
        }
        if (clipped && dstBorder != nullptr) {
            for (uint32_t r = 0; r < rows; ++r) {
                dstBorder[2 * size_t{y + r}] = first[r];
                dstBorder[2 * size_t{y + r} + 1] = end[r];
            }
        }
    }
}

// ---- maps ----

template <class Rule, uint32_t C>
ODX_INLINE void remap(const warp::Maps& path, const warp::Source& source, const warp::Target& target,
                      const warp::Border& border)
{
    const warp::Sampler<Rule> sampler(source, border);
    const Inside inside = Inside::of(sampler);
    for (uint32_t y = 0; y < target.height; ++y) {
        const warp::Maps::Row row = path.row(y);
        uint8_t* const out = rowOf(target.pixels, target.stride, y);
        for (uint32_t x = 0; x < target.width; x += kBytes) {
            const uint32_t columns = target.width - x < kBytes ? target.width - x : kBytes;
            const bool whole = columns == kBytes;
            const float *mapX = row.nextX + x, *mapY = row.nextY + x;
            float lastX[kBytes], lastY[kBytes];
            if (!whole) {
                memset(lastX, 0, sizeof lastX);
                memset(lastY, 0, sizeof lastY);
                memcpy(lastX, mapX, sizeof *mapX * columns);
                memcpy(lastY, mapY, sizeof *mapY * columns);
                mapX = lastX;
                mapY = lastY;
            }
            Tile<Rule, kBytes> tile;
            tile.fill(
                4, [&](uint32_t i, auto set) __attribute__((always_inline)) {
                    set(i * kLanes, load<f32v>(mapX + i * kLanes), load<f32v>(mapY + i * kLanes));
                });
            int32_t mask[kBytes];
            bool anyInside;
            const Place place = tile.place(inside, mask, anyInside);
            uint8_t last[C * kBytes];
            uint8_t* const to = out + C * size_t{x};
            sampleTile<Rule, C>(sampler, place, tile, mask, anyInside, false, InOrder<C>{whole ? to : last},
                                [=](uint32_t i) { return i < columns; });
            if (!whole) memcpy(to, last, C * columns);
        }
    }
}

// ---- patches ----

// Patches of at most 16 columns, in vectors of rows: whether all pixels are sampled.
template <uint32_t nColumns>
ODX_INLINE bool cutRows(const warp::Source& source, float (&first)[2], const float* affine,
                        const warp::Target& patch)
{
    constexpr uint32_t n = nColumns * kLanes, strip = n / kStrips;
    const warp::Sampler<warp::Bilinear> sampler(source, warp::kZeros);
    const Inside inside = Inside::of(sampler);
    const Step step = {affine[0], affine[2], 0};
    for (uint32_t y = 0; y < patch.height; y += kLanes) {
        const uint32_t rows = patch.height - y < kLanes ? patch.height - y : kLanes;
        Sums<warp::Affine> sums[kStrips] = {};
        for (uint32_t r = 0; r < kLanes; ++r) {
            warp::Affine::Row row{nullptr, first[0], first[1]};
            for (uint32_t k = 0; k < kBlockColumns; ++k) {
                const uint32_t lane = r * kBlockColumns + k;
                sums[lane / kLanes].start(lane % kLanes, row);
                row.numX += step.x;
                row.numY += step.y;
            }
            if (r + 1 < rows || rows == kLanes) {
                first[0] += affine[1];
                first[1] += affine[3];
            }
        }
        Tile<warp::Bilinear, n> tile;
        tile.fill(
            strip / kLanes, [&](uint32_t i, auto set) __attribute__((always_inline)) {
                for (uint32_t k = 0; k < kStrips; ++k) {
                    f32v sx, sy;
                    sums[k].position(sx, sy);
                    set(k * strip + i * kLanes, sx, sy);
                    // Columns that the patch does not have are the last one.
                    for (uint32_t j = 0; j < kBlockColumns && (i + 1) * kBlockColumns < patch.width; ++j)
                        sums[k].step(step);
                }
            });
        if (!tile.isBelow(inside.endX, inside.endY)) return false;
        uint8_t planes[1][kLanes * kPitch];
        Transposed<1> out{planes, 0, {}};
        blendInside<warp::Bilinear, 1>(
            source, false, tile.x,
            tile.y, [&](uint32_t i, const s32v(&v)[1][4]) __attribute__((always_inline)) { out.take(i, v); });
        out.end();
        for (uint32_t r = 0; r < rows; ++r) {
            uint8_t* const to = rowOf(patch.pixels, patch.stride, y + r);
            if (patch.width == 8) {
                memcpy(to, planes[0] + r * kPitch, 8);
            } else {
                memcpy(to, planes[0] + r * kPitch, patch.width);
            }
        }
    }
    return true;
}

bool cutPatchV(const warp::Source& source, const float* position, const float* affine, const warp::Target& patch)
{
    float first[2];
    if (!isAddressable(source) || patch.width > 16) return cutPatchC(source, position, affine, patch);
    if (!warp::beginPatch(source, position, affine, patch, first)) return false;
    bool done;
    if (kBlockColumns == 1 && patch.width <= 8) {
        done = cutRows < kBlockColumns == 1 ? 8 : 16 > (source, first, affine, patch);
    } else {
        done = cutRows<16>(source, first, affine, patch);
    }
    // By rounding, or in the last row or column, a pixel may have none beside it.
    return done || cutPatchC(source, position, affine, patch);
}

// ---- operations ----

template <class Rule, uint32_t C, class Path>
static void warpBy(const Path& path, const warp::Source& source, const warp::Target& target,
                   const warp::Border& border)
{
    if (!isAddressable(source) || !staysNormal(path.m, coefficientsOf(path), target))
        return warp::warpReference<Path, Rule, C>(path, source, target, border, false, nullptr);
    warpTiles<false, Rule, C, 1>(path, &source, &target, border, nullptr);
}
template <class Rule, uint32_t C>
static void warpBy(const warp::Maps& path, const warp::Source& source, const warp::Target& target,
                   const warp::Border& border)
{
    if (!isAddressable(source))
        return warp::warpReference<warp::Maps, Rule, C>(path, source, target, border, false, nullptr);
    remap<Rule, C>(path, source, target, border);
}

template <class Rule, uint32_t C, class Path>
static void clippedBy(const Path& path, const warp::Source& source, const warp::Target& target,
                      const warp::Border& border, uint32_t* dstBorder)
{
    if (!isAddressable(source) || !staysNormal(path.m, coefficientsOf(path), target))
        return warp::warpReference<Path, Rule, C>(path, source, target, border, true, dstBorder);
    warpTiles<true, Rule, C, 1>(path, &source, &target, border, dstBorder);
}

template <class Rule, class Path>
static void warpPlanes(const Path& path, const warp::Source (&sources)[2], const warp::Target (&targets)[2],
                       const warp::Border& border)
{
    if (!isAddressable(sources[0]) || !isAddressable(sources[1]) ||
        !staysNormal(path.m, coefficientsOf(path), targets[0])) {
        warpBy<Rule, 1>(path, sources[0], targets[0], border);
        return warpBy<Rule, 1>(path, sources[1], targets[1], border);
    }
    warpTiles<false, Rule, 1, 2>(path, sources, targets, border, nullptr);
}

void clippedBicubicV(const warp::Affine& path, const warp::Source& source, const warp::Target& target,
                     uint32_t* dstBorder)
{
    clippedBy<warp::Bicubic, 3>(path, source, target, warp::kLeft, dstBorder);
}

#define ODX_WARP_COLUMN(name) name##V
#include "cpu/ondrixWarpOperations.inc"

} // namespace odx::ODX_TARGET
