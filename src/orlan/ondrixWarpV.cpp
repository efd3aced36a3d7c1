// Warps and remaps work on tiles of positions. Those of a matrix are columns of a vector of rows each: the sums
// along a row allow no other order, but rows are independent. Those of maps are vectors of a row. A tile that is
// inside the source as a whole is sampled in vectors; in others every position outside is done by itself.
#include "cpu/ondrixWarp.h"
#include "cpu/ondrixWarpC.h"
#include "orlan/squares.h"

#define ODX_FAMILY_LIST "frame/operations/warps.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{

static constexpr uint32_t kLanes = kBytes / 4;

ODX_INLINE s32v truncated(f32v v)
{
    return __builtin_convertvector(v, s32v);
}
ODX_INLINE f32v floats(s32v v)
{
    return __builtin_convertvector(v, f32v);
}

// ---- pixels around a position ----

// Four pixels of C channels, gathered into words of 32 bits, and taken out of them again.
struct FourTaps {
    s32v p00, p01, p10, p11;
};

// What holds a pixel of C bytes.
template <uint32_t C>
struct WordOf {
    typedef uint8_t Type;
};
template <>
struct WordOf<4> {
    typedef uint32_t Type;
};

template <uint32_t C>
struct Taps;
template <>
struct Taps<1> {
    static constexpr uint32_t kWords = 1;
    template <uint32_t n>
    ODX_MEMBER static void gather(const uint8_t* p, size_t stride, uint32_t (&words)[1][n], uint32_t i)
    {
        words[0][i] = load<uint16_t>(p) | uint32_t{load<uint16_t>(p + stride)} << 16;
    }
    template <uint32_t c>
    ODX_MEMBER static FourTaps of(const u32v (&w)[1])
    {
        return {(s32v)(w[0] & 255), (s32v)(w[0] >> 8 & 255), (s32v)(w[0] >> 16 & 255), (s32v)(w[0] >> 24)};
    }
};
// Two words in each row, so many bytes apart.
template <size_t apart>
struct FourWords {
    static constexpr uint32_t kWords = 4;
    template <uint32_t n>
    ODX_MEMBER static void gather(const uint8_t* p, size_t stride, uint32_t (&words)[4][n], uint32_t i)
    {
        words[0][i] = load<uint32_t>(p);
        words[1][i] = load<uint32_t>(p + apart);
        words[2][i] = load<uint32_t>(p + stride);
        words[3][i] = load<uint32_t>(p + stride + apart);
    }
};
// Two pixels are six bytes, the first four and the last four of which are words.
template <>
struct Taps<3> : FourWords<2> {
    template <uint32_t c>
    ODX_MEMBER static FourTaps of(const u32v (&w)[4])
    {
        constexpr int left = c < 2 ? 8 * c : 0, right = c == 1 ? 16 : 24;
        constexpr int first = c < 2 ? 0 : 1, second = c == 0 ? 0 : 1;
        return {(s32v)(w[first] >> left & 255), (s32v)(w[second] >> right & 255),
                (s32v)(w[2 + first] >> left & 255), (s32v)(w[2 + second] >> right & 255)};
    }
};
template <>
struct Taps<4> : FourWords<4> {
    template <uint32_t c>
    ODX_MEMBER static FourTaps of(const u32v (&w)[4])
    {
        return {(s32v)(w[0] >> (8 * c) & 255), (s32v)(w[1] >> (8 * c) & 255), (s32v)(w[2] >> (8 * c) & 255),
                (s32v)(w[3] >> (8 * c) & 255)};
    }
};

// ---- rules ----

template <class Rule>
struct Blend;
template <>
struct Blend<warp::Bilinear> {
    f32v fx, fy;
    ODX_MEMBER Blend(f32v x, f32v y) : fx(x), fy(y) {}
    ODX_MEMBER s32v operator()(const FourTaps& p) const
    {
        const f32v top = floats(p.p00) + fx * floats(p.p01 - p.p00),
                   bottom = floats(p.p10) + fx * floats(p.p11 - p.p10);
        return truncated(fy * (bottom - top) + top);
    }
};
// All three cases, of which each lane takes its own.
template <>
struct Blend<warp::FixedBilinear> {
    s32v fx, fy, onlyX, onlyY;
    ODX_MEMBER Blend(f32v x, f32v y)
        : fx(truncated(x * 65536.0f)), fy(truncated(y * 65536.0f)), onlyX(fy == 0), onlyY((fx == 0) & ~onlyX)
    {
    }
    ODX_MEMBER s32v operator()(const FourTaps& p) const
    {
        const s32v across = fx * (p.p01 - p.p00), down = fy * (p.p10 - p.p00);
        const s32v top = (p.p00 << 7) + ((across + 256) >> 9),
                   bottom = (p.p10 << 7) + ((fx * (p.p11 - p.p10) + 256) >> 9);
        const s32v both = (top + ((fy * (bottom - top) + 32768) >> 16) + 64) >> 7;
        const s32v one = p.p00 + ((((across & onlyX) | (down & onlyY)) + 32768) >> 16);
        const s32v single = onlyX | onlyY;
        return (one & single) | (both & ~single);
    }
};

// ---- tiles ----

// The sides of a source's inside, as bits: floats from +0 on are in the order of their bits as whole numbers, and
// what is negative, -0 too, or not a number comes behind all of them.
struct Inside {
    uint32_t endX, endY;
    float width, height;

    template <class Rule>
    ODX_MEMBER static Inside of(const warp::Sampler<Rule>& sampler)
    {
        Inside inside;
        memcpy(&inside.endX, &sampler.endX, 4);
        memcpy(&inside.endY, &sampler.endY, 4);
        inside.width = warp::leastFrom(sampler.source.width);
        inside.height = warp::leastFrom(sampler.source.height);
        return inside;
    }
    ODX_MEMBER s32v holds(f32v x, f32v y) const { return (s32v)(((u32v)x < endX) & ((u32v)y < endY)); }
    // Not so far outside that no border reaches there.
    ODX_MEMBER s32v isNear(f32v x, f32v y) const
    {
        return (s32v)((x >= -1.0f) & (x < width) & (y >= -1.0f) & (y < height));
    }
};

enum class Place { inside, across, outside };

// Where the positions of a tile are; `mask` tells it of each.
template <uint32_t n>
ODX_INLINE Place placeOf(const Inside& inside, const float (&x)[n], const float (&y)[n], int32_t (&mask)[n],
                         bool& anyInside)
{
    s32v all = ~s32v{}, some = {}, near = {};
    for (uint32_t i = 0; i < n; i += kLanes) {
        const f32v sx = load<f32v>(x + i), sy = load<f32v>(y + i);
        const s32v holds = inside.holds(sx, sy);
        store(mask + i, holds);
        all &= holds;
        some |= holds;
        near |= inside.isNear(sx, sy);
    }
    anyInside = any((u8v)some);
    return !any((u8v)~all) ? Place::inside : any((u8v)near) ? Place::across : Place::outside;
}

// Samples positions that are inside, four vectors at a time: emit(i, vectors of each channel).
template <class Rule, uint32_t C, uint32_t n, class Emit>
ODX_INLINE void blendInside(const warp::Source& s, const float (&x)[n], const float (&y)[n], Emit emit)
{
    using FromWords = Taps<C>;
    uint32_t offsets[n], words[FromWords::kWords][n];
    for (uint32_t i = 0; i < n; i += kLanes) {
        const u32v ix = (u32v)truncated(load<f32v>(x + i)), iy = (u32v)truncated(load<f32v>(y + i));
        store(offsets + i, iy * (uint32_t)s.stride + ix * C);
    }
    for (uint32_t i = 0; i < n; ++i)
        FromWords::gather(s.pixels + offsets[i], s.stride, words, i);
    for (uint32_t i = 0; i < n; i += 4 * kLanes) {
        s32v out[C][4];
        for (uint32_t k = 0; k < 4; ++k) {
            const uint32_t at = i + k * kLanes;
            const f32v sx = load<f32v>(x + at), sy = load<f32v>(y + at);
            const Blend<Rule> blend(sx - floats(truncated(sx)), sy - floats(truncated(sy)));
            u32v w[FromWords::kWords];
            for (uint32_t j = 0; j < FromWords::kWords; ++j)
                w[j] = load<u32v>(words[j] + at);
            out[0][k] = blend(FromWords::template of<0>(w));
            if constexpr (C > 1) out[1][k] = blend(FromWords::template of<1>(w));
            if constexpr (C > 2) out[2][k] = blend(FromWords::template of<2>(w));
            if constexpr (C > 3) out[3][k] = blend(FromWords::template of<3>(w));
        }
        emit(i, out);
    }
}

// The same of positions that are rounded.
template <uint32_t C, uint32_t n, class Emit>
ODX_INLINE void copyInside(const warp::Source& s, const float (&x)[n], const float (&y)[n], Emit emit)
{
    using Word = typename WordOf<C>::Type;
    uint32_t offsets[n], words[n];
    for (uint32_t i = 0; i < n; i += kLanes) {
        const u32v ix = (u32v)truncated(load<f32v>(x + i) + 0.5f), iy = (u32v)truncated(load<f32v>(y + i) + 0.5f);
        store(offsets + i, iy * (uint32_t)s.stride + ix * C);
    }
    for (uint32_t i = 0; i < n; ++i)
        words[i] = load<Word>(s.pixels + offsets[i]);
    for (uint32_t i = 0; i < n; i += 4 * kLanes) {
        s32v out[C][4];
        for (uint32_t k = 0; k < 4; ++k) {
            for (uint32_t c = 0; c < C; ++c)
                out[c][k] = (s32v)(load<u32v>(words + i + k * kLanes) >> (8 * c) & 255);
        }
        emit(i, out);
    }
}

// Where the pixels of a tile go, as planes of one channel each: those of maps in order,
template <uint32_t C, uint32_t n>
struct InOrder {
    uint8_t (*planes)[n];

    ODX_MEMBER uint8_t* at(uint32_t c, uint32_t i) const { return planes[c] + i; }
    ODX_MEMBER void begin() {}
    ODX_MEMBER void take(uint32_t i, const s32v (&v)[C][4])
    {
        for (uint32_t c = 0; c < C; ++c)
            storeBytes(planes[c] + i, v[c][0], v[c][1], v[c][2], v[c][3]);
    }
    ODX_MEMBER void end() {}
};

// those of a matrix, 16 columns of kLanes rows, into rows of `pitch` bytes.
static constexpr uint32_t kTile = 16 * kLanes, kPitch = kBytes;
template <uint32_t C>
struct Transposed {
    uint8_t (*planes)[kLanes * kPitch];
    uint32_t column;
    u8v quads[C][4];

    ODX_MEMBER uint8_t* at(uint32_t c, uint32_t i) const
    {
        return planes[c] + i % kLanes * kPitch + column + i / kLanes;
    }
    // Four columns are the bytes of a word of each row.
    ODX_MEMBER void take(uint32_t i, const s32v (&v)[C][4])
    {
        for (uint32_t c = 0; c < C; ++c)
            quads[c][i / (4 * kLanes)] = (u8v)(v[c][0] | v[c][1] << 8 | v[c][2] << 16 | v[c][3] << 24);
    }
    ODX_MEMBER void end()
    {
        for (uint32_t c = 0; c < C; ++c) {
            transposeSquares<4>(quads[c]);
            uint8_t rows[4][kBytes];
            for (uint32_t k = 0; k < 4; ++k)
                store(rows[k], quads[c][k]);
            for (uint32_t r = 0; r < kLanes; ++r)
                memcpy(planes[c] + r * kPitch + column, rows[r % 4] + r / 4 * 16, 16);
        }
    }
};

// One tile of one source. `used` tells which positions belong to the image: others may be left.
template <class Rule, uint32_t C, uint32_t n, class Out, class Used>
ODX_INLINE void sampleTile(const warp::Sampler<Rule>& sampler, Place place, const float (&x)[n],
                           const float (&y)[n], const int32_t (&mask)[n], bool anyInside, Out out, Used used)
{
    const warp::Source& s = sampler.source;
    const auto blend = [&](const float(&sx)[n], const float(&sy)[n]) {
        const auto emit = [&](uint32_t i, const s32v(&v)[C][4]) { out.take(i, v); };
        if constexpr (Rule::kRounds) {
            copyInside<C>(s, sx, sy, emit);
        } else {
            blendInside<Rule, C>(s, sx, sy, emit);
        }
        out.end();
    };
    if (place == Place::inside) return blend(x, y);
    const bool nothingThere = place == Place::outside && sampler.border.outside != warp::Outside::clamp;
    if (nothingThere) {
        for (uint32_t i = 0; i < n; ++i) {
            for (uint32_t c = 0; c < C; ++c)
                *out.at(c, i) = sampler.border.value;
        }
        return;
    }
    if (anyInside) {
        // Positions outside become the first pixel's.
        float cleanX[n], cleanY[n];
        for (uint32_t i = 0; i < n; i += kLanes) {
            const s32v keep = load<s32v>(mask + i);
            store(cleanX + i, load<s32v>(x + i) & keep);
            store(cleanY + i, load<s32v>(y + i) & keep);
        }
        blend(cleanX, cleanY);
    }
    for (uint32_t i = 0; i < n; ++i) {
        if (mask[i] != 0 || !used(i)) continue;
        uint8_t pixel[C];
        warp::Sampler<Rule>::template sample<C>(sampler, x[i], y[i], pixel);
        for (uint32_t c = 0; c < C; ++c)
            *out.at(c, i) = pixel[c];
    }
}

// Interleaves count pixels, at most kBytes, that are planes.
template <uint32_t C>
ODX_INLINE void join(uint8_t* to, const uint8_t* const (&p)[C], uint32_t count)
{
    if constexpr (C == 1) {
        memcpy(to, p[0], count);
    } else {
        uint8_t last[C * kBytes];
        uint8_t* const whole = count == kBytes ? to : last;
        if constexpr (C == 3) {
            store3(whole, load<u8v>(p[0]), load<u8v>(p[1]), load<u8v>(p[2]));
        } else {
            store4(whole, load<u8v>(p[0]), load<u8v>(p[1]), load<u8v>(p[2]), load<u8v>(p[3]));
        }
        if (count != kBytes) memcpy(to, last, C * count);
    }
}

// ---- matrices ----

// The sums of a vector of rows.
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
    ODX_MEMBER void position(float* x, float* y) const
    {
        const f32v w = 1.0f / den;
        store(x, numX * w);
        store(y, numY * w);
    }
    ODX_MEMBER void step(const float* m)
    {
        numX += m[0];
        numY += m[3];
        den += m[6];
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
    ODX_MEMBER void position(float* x, float* y) const
    {
        store(x, numX);
        store(y, numY);
    }
    ODX_MEMBER void step(const float* m)
    {
        numX += m[0];
        numY += m[3];
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

// nPlanes sources of C channels by one matrix.
template <bool clipped, class Rule, uint32_t C, uint32_t nPlanes, class Path>
ODX_INLINE void warpTiles(const Path& path, const warp::Source* sources, const warp::Target* targets,
                          const warp::Border& border, uint32_t* dstBorder)
{
    const uint32_t width = targets[0].width, height = targets[0].height;
    const warp::Inclusive inclusive(sources[0]);
    const Inside inside = Inside::of(warp::Sampler<Rule>(sources[0], border));
    const bool leaves = border.outside == warp::Outside::leave;
    for (uint32_t y = 0; y < height; y += kLanes) {
        const uint32_t rows = height - y < kLanes ? height - y : kLanes;
        Sums<Path> sums = {};
        for (uint32_t r = 0; r < kLanes; ++r)
            sums.start(r, path.row(y + (r < rows ? r : rows - 1)));
        uint32_t first[kLanes] = {}, end[kLanes] = {};
        for (uint32_t x = 0; x < width; x += kPitch) {
            const uint32_t columns = width - x < kPitch ? width - x : kPitch;
            uint8_t planes[nPlanes * C][kLanes * kPitch];
            for (uint32_t t = 0; t < columns; t += 16) {
                float sx[kTile], sy[kTile];
                int32_t mask[kTile];
                for (uint32_t i = 0; i < kTile; i += kLanes) {
                    sums.position(sx + i, sy + i);
                    sums.step(path.m);
                }
                bool anyInside;
                Place place;
                if constexpr (Rule::kRounds) {
                    float shiftedX[kTile], shiftedY[kTile];
                    for (uint32_t i = 0; i < kTile; i += kLanes) {
                        store(shiftedX + i, load<f32v>(sx + i) + 0.5f);
                        store(shiftedY + i, load<f32v>(sy + i) + 0.5f);
                    }
                    place = placeOf(inside, shiftedX, shiftedY, mask, anyInside);
                } else {
                    place = placeOf(inside, sx, sy, mask, anyInside);
                }
                const uint32_t used = columns - t < 16 ? columns - t : 16;
                const auto isUsed = [=](uint32_t i) { return i / kLanes < used && i % kLanes < rows; };
                for (uint32_t p = 0; p < nPlanes; ++p) {
                    const warp::Sampler<Rule> sampler(sources[p], border);
                    sampleTile<Rule, C>(
                        sampler, place, sx, sy, mask, anyInside, Transposed<C>{planes + p * C, t, {}},
                        [&](uint32_t i) { return isUsed(i) && (!leaves || inclusive.holds(sx[i], sy[i])); });
                }
                // What rounds into the source may be outside.
                const bool whole = place == Place::inside && !Rule::kRounds;
                for (uint32_t r = 0; clipped && r < rows && place != Place::outside; ++r) {
                    for (uint32_t i = whole ? used - 1 : 0; i < used; ++i) {
                        if (!whole && !inclusive.holds(sx[i * kLanes + r], sy[i * kLanes + r])) continue;
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
        uint8_t* const to = rowOf(target.pixels, target.stride, y);
        for (uint32_t x = 0; x < target.width; x += kBytes) {
            const uint32_t columns = target.width - x < kBytes ? target.width - x : kBytes;
            float sx[kBytes] = {}, sy[kBytes] = {};
            memcpy(sx, row.nextX + x, sizeof *sx * columns);
            memcpy(sy, row.nextY + x, sizeof *sy * columns);
            int32_t mask[kBytes];
            bool anyInside;
            Place place;
            if constexpr (Rule::kRounds) {
                float shiftedX[kBytes], shiftedY[kBytes];
                for (uint32_t i = 0; i < kBytes; i += kLanes) {
                    store(shiftedX + i, load<f32v>(sx + i) + 0.5f);
                    store(shiftedY + i, load<f32v>(sy + i) + 0.5f);
                }
                place = placeOf(inside, shiftedX, shiftedY, mask, anyInside);
            } else {
                place = placeOf(inside, sx, sy, mask, anyInside);
            }
            uint8_t planes[C][kBytes];
            sampleTile<Rule, C>(sampler, place, sx, sy, mask, anyInside, InOrder<C, kBytes>{planes},
                                [=](uint32_t i) { return i < columns; });
            const uint8_t* channels[C];
            for (uint32_t c = 0; c < C; ++c)
                channels[c] = planes[c];
            join<C>(to + C * size_t{x}, channels, columns);
        }
    }
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

#define ODX_WARP_COLUMN(name) name##V
#include "cpu/ondrixWarpOperations.inc"

} // namespace odx::ODX_TARGET
