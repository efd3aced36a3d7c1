// Tiles of positions, and how the rules sample a source at them. A tile that is inside the source as a whole is
// sampled in vectors; in others every position outside is done by itself.
#ifndef ODX_ORLAN_WARP_TILES_H
#define ODX_ORLAN_WARP_TILES_H

#include "cpu/ondrixWarp.h"
#include "orlan/simd/gathering.h"
#include "orlan/simd/resampling.h"

#include <type_traits>

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

// What holds a pixel of C bytes.
template <uint32_t C>
struct WordOf {
    typedef uint8_t Type;
};
template <>
struct WordOf<4> {
    typedef uint32_t Type;
};

// ---- rules ----

// What is added to coordinates, so that those from 0 to below Inside::of have all pixels.
template <class Rule>
constexpr float kShift = std::is_same_v<Rule, warp::Bicubic> ? -1.0f
                         : Rule::kRounds                     ? 0.5f
                                                             : 0.0f;

// Blends the squares of four vectors of positions, whose fractions are set before: channel c to `out`.
template <class Rule>
struct Blend;
template <>
struct Blend<warp::Bilinear> {
    f32v fx[4], fy[4];

    ODX_MEMBER void set(uint32_t k, f32v x, f32v y)
    {
        fx[k] = x;
        fy[k] = y;
    }
    template <uint32_t C>
    ODX_MEMBER void operator()(const u32v (&squares)[4][C], uint32_t c, s32v (&out)[4]) const
    {
        for (uint32_t k = 0; k < 4; ++k) {
            const u32v w = squares[k][c];
            const f32v p00 = floatsOfByte<0>(w), p01 = floatsOfByte<1>(w), p10 = floatsOfByte<2>(w),
                       p11 = floatsOfByte<3>(w);
            const f32v top = p00 + fx[k] * (p01 - p00), bottom = p10 + fx[k] * (p11 - p10);
            out[k] = truncated(fy[k] * (bottom - top) + top);
        }
    }
};

// In 16 bits. A factor f from 2^15 to 2^16 - 1 counts as negative there: its product lacks as much as 2^16 times
// the other factor.
template <>
struct Blend<warp::FixedBilinear> {
    s32v fx[4], fy[4];

    ODX_MEMBER void set(uint32_t k, f32v x, f32v y)
    {
        fx[k] = truncated(x * 65536.0f);
        fy[k] = truncated(y * 65536.0f);
    }
    // 128 times the left pixels, and (fx * (right - left) + 256) >> 9: of both rows.
    ODX_MEMBER static s16v across(u32v square, s32v fx)
    {
        const s16v f = (s16v)(fx | fx << 16), left = (s16v)(u16v)(square & 0xFF00FF),
                   right = (s16v)((u16v)square >> 8), step = right - left;
        return ((left + (step & f >> 15)) << 7) + mulRound15(step << 6, f);
    }
    // The same of two vectors of positions, top to bottom, as the halves of words.
    ODX_MEMBER static s16v down(s16v v, s16v w, s32v fyOfV, s32v fyOfW)
    {
        const s16v f = (s16v)(fyOfV | fyOfW << 16);
        const s16p rows = transposePairs(v, w);
        const s16v step = rows.b - rows.a;
        return (rows.a + (step & f >> 15) + mulRound16(step, f) + 64) >> 7;
    }
    // One fraction is 0.
    ODX_MEMBER static s32v alone(u32v square, s32v fx, s32v fy)
    {
        const s32v onlyX = fy == 0, p00 = (s32v)(square & 255);
        const s32v other = ((s32v)(square >> 8 & 255) & onlyX) | ((s32v)(square >> 16 & 255) & ~onlyX);
        return p00 + ((((fx & onlyX) | (fy & ~onlyX)) * (other - p00) + 32768) >> 16);
    }
    template <uint32_t C>
    ODX_MEMBER void operator()(const u32v (&squares)[4][C], uint32_t c, s32v (&out)[4]) const
    {
        s32v least = min(fx[0], fy[0]);
        for (uint32_t k = 0; k < 4; k += 2) {
            const s16v both =
                down(across(squares[k][c], fx[k]), across(squares[k + 1][c], fx[k + 1]), fy[k], fy[k + 1]);
            out[k] = (s32v)both & 0xFF;
            out[k + 1] = (s32v)((u32v)both >> 16);
            least = min(min(least, min(fx[k], fy[k])), min(fx[k + 1], fy[k + 1]));
        }
        if (!any((u8v)(least == 0))) return;
        for (uint32_t k = 0; k < 4; ++k) {
            const s32v single = (fx[k] == 0) | (fy[k] == 0);
            out[k] = (alone(squares[k][c], fx[k], fy[k]) & single) | (out[k] & ~single);
        }
    }
};

// ---- tiles ----

// The sides of a source's inside, as bits: floats from +0 on are in the order of their bits as whole numbers, and
// what is negative, -0 too, or not a number comes behind all of them.
struct Inside {
    uint32_t endX, endY;
    float width, height;

    template <class Rule>
    ODX_MEMBER static float endOf(uint32_t size)
    {
        if constexpr (kShift<Rule> < 0) return size < 4 ? 0.0f : warp::leastFrom(size - 3);
        return Rule::endOf(size);
    }
    template <class Rule>
    ODX_MEMBER static Inside of(const warp::Sampler<Rule>& sampler)
    {
        Inside inside;
        const float ends[] = {endOf<Rule>(sampler.source.width), endOf<Rule>(sampler.source.height)};
        memcpy(&inside.endX, ends, 4);
        memcpy(&inside.endY, ends + 1, 4);
        inside.width = warp::leastFrom(sampler.source.width);
        inside.height = warp::leastFrom(sampler.source.height);
        return inside;
    }
    // Where windows begin that do not reach beyond the source.
    template <uint32_t C>
    ODX_MEMBER static Inside ofWindows([[maybe_unused]] const warp::Source& source)
    {
        Inside inside = {};
#if ODX_VECTOR_BYTES == 64
        if (source.width < Window<C>::columns || source.height < Window<C>::rows) return inside;
        const float endX = (float)(source.width - Window<C>::columns + 1),
                    endY = (float)(source.height - Window<C>::rows + 1);
        memcpy(&inside.endX, &endX, 4);
        memcpy(&inside.endY, &endY, 4);
#endif
        return inside;
    }
    ODX_MEMBER s32v holds(f32v x, f32v y) const
    {
        return (s32v)(((u32v)x < endX) & ((u32v)y < endY));
    }
    // Not so far outside that no border reaches there.
    ODX_MEMBER s32v isNear(f32v x, f32v y) const
    {
        return (s32v)((x >= -1.0f) & (x < width) & (y >= -1.0f) & (y < height));
    }
};

enum class Place { inside, across, outside };

// Positions, and the greatest bits of them as Inside takes them.
template <class Rule, uint32_t n>
struct Tile {
    float x[n], y[n];
    u32v farX, farY;

    ODX_MEMBER static f32v shifted(f32v v) { return kShift<Rule> == 0 ? v : v + kShift<Rule>; }
    // Sets all vectors of positions in an order of its own: position(i, x, y).
    template <class Position>
    ODX_MEMBER void fill(uint32_t nSteps, Position position)
    {
        u32v maxX = {}, maxY = {};
        for (uint32_t step = 0; step < nSteps; ++step) {
            position(
                step, [&](uint32_t i, f32v vx, f32v vy) __attribute__((always_inline)) {
                    store(x + i, vx);
                    store(y + i, vy);
                    maxX = max(maxX, (u32v)shifted(vx));
                    maxY = max(maxY, (u32v)shifted(vy));
                });
        }
        farX = maxX;
        farY = maxY;
    }
    ODX_MEMBER bool isBelow(uint32_t endX, uint32_t endY) const
    {
        return !any((u8v)((farX >= endX) | (farY >= endY)));
    }

    // Where they are; unless all are inside, `mask` tells it of each.
    ODX_MEMBER Place place(const Inside& inside, int32_t (&mask)[n], bool& anyInside) const
    {
        anyInside = true;
        if (isBelow(inside.endX, inside.endY)) return Place::inside;
        s32v some = {}, near = {};
        for (uint32_t i = 0; i < n; i += kLanes) {
            const f32v sx = shifted(load<f32v>(x + i)), sy = shifted(load<f32v>(y + i));
            const s32v holds = inside.holds(sx, sy);
            store(mask + i, holds);
            some |= holds;
            near |= inside.isNear(sx, sy);
        }
        anyInside = any((u8v)some);
        return any((u8v)near) ? Place::across : Place::outside;
    }
};

#if ODX_VECTOR_BYTES == 64
// Looks up the squares of four blocks in windows, which begin at the corner of a block that is the least in x and
// y.
template <uint32_t C>
ODX_INLINE bool findSquares(const warp::Source& s, const float* x, const float* y, const s32v (&ix)[4],
                            const s32v (&iy)[4], u32v (&squares)[4][C])
{
    constexpr uint32_t right = kBlockColumns - 1, below = kLanes - kBlockColumns;
    const uint32_t leastX = (x[right] < x[0] ? right : 0) + (x[below] < x[0] ? below : 0),
                   leastY = (y[right] < y[0] ? right : 0) + (y[below] < y[0] ? below : 0);
    s32v firstX[4], firstY[4];
    u32v farX = {}, farY = {};
    for (uint32_t k = 0; k < 4; ++k) {
        firstX[k] = laneOf(ix[k], leastX);
        firstY[k] = laneOf(iy[k], leastY);
        farX = max(farX, (u32v)(ix[k] - firstX[k]));
        farY = max(farY, (u32v)(iy[k] - firstY[k]));
    }
    if (any((u8v)((farX > Window<C>::columns - 2) | (farY > Window<C>::rows - 2)))) return false;
    for (uint32_t k = 0; k < 4; ++k) {
        const uint8_t* const window =
            rowOf(s.pixels, s.stride, firstLane(firstY[k])) + C * size_t{firstLane(firstX[k])};
        Window<C>::find(window, s.stride, (u32v)(ix[k] - firstX[k]), (u32v)(iy[k] - firstY[k]), squares[k]);
    }
    return true;
}
#endif

// Samples positions that are inside, four vectors at a time: emit(i, vectors of each channel).
template <class Rule, uint32_t C, uint32_t n, class Emit>
ODX_INLINE void blendInside(const warp::Source& s, [[maybe_unused]] bool maySeeWindows, const float (&x)[n],
                            const float (&y)[n], Emit emit)
{
    for (uint32_t i = 0; i < n; i += 4 * kLanes) {
        s32v ix[4], iy[4];
        Blend<Rule> blend;
        for (uint32_t k = 0; k < 4; ++k) {
            const f32v sx = load<f32v>(x + i + k * kLanes), sy = load<f32v>(y + i + k * kLanes);
            ix[k] = truncated(sx);
            iy[k] = truncated(sy);
            blend.set(k, sx - floats(ix[k]), sy - floats(iy[k]));
        }
        u32v squares[4][C];
#if ODX_VECTOR_BYTES == 64
        if (!maySeeWindows || !findSquares<C>(s, x + i, y + i, ix, iy, squares))
#endif
            for (uint32_t k = 0; k < 4; ++k)
                gatherSquares<C>(s.pixels, s.stride, (u32v)iy[k] * (uint32_t)s.stride + (u32v)ix[k] * C,
                                 squares[k]);
        s32v out[C][4];
        for (uint32_t c = 0; c < C; ++c)
            blend(squares, c, out[c]);
        emit(i, out);
    }
}

// The pixels at positions that are rounded, as words: emit(i, four vectors).
template <uint32_t C, uint32_t n, class Emit>
ODX_INLINE void copyInside(const warp::Source& s, const float (&x)[n], const float (&y)[n], Emit emit)
{
    for (uint32_t i = 0; i < n; i += 4 * kLanes) {
        s32v words[4];
        for (uint32_t k = 0; k < 4; ++k) {
            const uint32_t at = i + k * kLanes;
            const u32v ix = (u32v)truncated(load<f32v>(x + at) + 0.5f),
                       iy = (u32v)truncated(load<f32v>(y + at) + 0.5f);
            words[k] = (s32v)gatherEach<typename WordOf<C>::Type>(s.pixels, iy * (uint32_t)s.stride + ix * C);
        }
        emit(i, words);
    }
}

// The weights of the four pixels around, in each direction.
struct CubicWeights {
    f32v w[4];

    ODX_MEMBER explicit CubicWeights(f32v t)
    {
        w[0] = ((-0.5f * t + 1.0f) * t - 0.5f) * t;
        w[1] = (1.5f * t - 2.5f) * t * t + 1.0f;
        w[2] = ((-1.5f * t + 2.0f) * t + 0.5f) * t;
        w[3] = 1.0f - w[0] - w[1] - w[2];
    }
};

// Channel c of a row of four pixels of three bytes, which are words.
template <uint32_t c>
ODX_INLINE f32v cubicSum(const CubicWeights& across, const u32v (&words)[4], uint32_t first)
{
    const auto pixel = [&](auto i) __attribute__((always_inline))
    {
        constexpr uint32_t place = 3 * decltype(i)::value + c;
        return floatsOfByte<place % 4>(words[first + place / 4]);
    };
    return across.w[0] * pixel(std::integral_constant<uint32_t, 0>()) +
           across.w[1] * pixel(std::integral_constant<uint32_t, 1>()) +
           across.w[2] * pixel(std::integral_constant<uint32_t, 2>()) +
           across.w[3] * pixel(std::integral_constant<uint32_t, 3>());
}

// Samples positions that have two pixels on all sides. Twelve bytes of a row are the first ones of sixteen, of the
// last row the last ones, so that nothing else is read.
template <uint32_t C, uint32_t n, class Emit>
ODX_INLINE void bicubicInside(const warp::Source& s, const float (&x)[n], const float (&y)[n], Emit emit)
{
    static_assert(C == 3);
    for (uint32_t i = 0; i < n; i += 4 * kLanes) {
        s32v out[C][4];
        for (uint32_t k = 0; k < 4; ++k) {
            const f32v sx = load<f32v>(x + i + k * kLanes), sy = load<f32v>(y + i + k * kLanes);
            const s32v ix = truncated(sx), iy = truncated(sy);
            const CubicWeights across(sx - floats(ix)), down(sy - floats(iy));
            const u32v offsets = (u32v)(iy - 1) * (uint32_t)s.stride + (u32v)(ix - 1) * C;
            f32v sums[C];
            for (uint32_t j = 0; j < 4; ++j) {
                const uint32_t skipped = j == 3 ? 1 : 0;
                u32v words[4];
                gatherSixteens(s.pixels + j * s.stride - 4 * skipped, offsets, words);
                const f32v row[C] = {cubicSum<0>(across, words, skipped), cubicSum<1>(across, words, skipped),
                                     cubicSum<2>(across, words, skipped)};
                for (uint32_t c = 0; c < C; ++c)
                    sums[c] = j == 0 ? down.w[j] * row[c] : sums[c] + down.w[j] * row[c];
            }
            for (uint32_t c = 0; c < C; ++c)
                out[c][k] = min(max(truncated(sums[c] + 0.5f), s32v{}), s32v{} + 255);
        }
        emit(i, out);
    }
}

// Where the pixels of a tile go: those of maps in order,
template <uint32_t C>
struct InOrder {
    uint8_t* pixels;

    ODX_MEMBER uint8_t* at(uint32_t c, uint32_t i) const { return pixels + C * i + c; }
    ODX_MEMBER void take(uint32_t i, const s32v (&v)[C][4])
    {
        if constexpr (C == 1) {
            storeBytes(pixels + i, v[0][0], v[0][1], v[0][2], v[0][3]);
        } else {
            const auto channel = [&](uint32_t c) __attribute__((always_inline))
            {
                return narrow(v[c][0], v[c][1], v[c][2], v[c][3]);
            };
            store4(pixels + 4 * i, channel(0), channel(1), channel(2), channel(3));
        }
    }
    ODX_MEMBER void takeWords(uint32_t i, const s32v (&v)[4])
    {
        if constexpr (C == 1) {
            storeBytes(pixels + i, v[0], v[1], v[2], v[3]);
        } else {
            for (uint32_t k = 0; k < 4; ++k)
                store(pixels + 4 * (i + k * kLanes), v[k]);
        }
    }
    ODX_MEMBER void end() {}
};

// those of a matrix as planes of one channel each, kLanes rows of 16 columns, into rows of `pitch` bytes. Where
// blocks have several columns, they are side by side in strips of rows.
static constexpr uint32_t kTile = 16 * kLanes, kPitch = kBytes, kStrips = kBlockColumns;
static constexpr uint32_t kBlockRows = kLanes / kBlockColumns, kStrip = 16 * kBlockRows;

ODX_INLINE constexpr uint32_t rowAt(uint32_t i)
{
    return i / kStrip * kBlockRows + i % kLanes / kBlockColumns;
}
ODX_INLINE constexpr uint32_t columnAt(uint32_t i)
{
    return i % kStrip / kLanes * kBlockColumns + i % kBlockColumns;
}
ODX_INLINE constexpr uint32_t placeOf(uint32_t row, uint32_t column)
{
    return row / kBlockRows * kStrip + column / kBlockColumns * kLanes + row % kBlockRows * kBlockColumns +
           column % kBlockColumns;
}

template <uint32_t C>
struct Transposed {
    uint8_t (*planes)[kLanes * kPitch];
    uint32_t column;
    u8v quads[C][4];

    ODX_MEMBER uint8_t* at(uint32_t c, uint32_t i) const
    {
        return planes[c] + rowAt(i) * kPitch + column + columnAt(i);
    }
    ODX_MEMBER void takeWords(uint32_t i, const s32v (&v)[4])
    {
        static_assert(C == 1);
        const s32v one[1][4] = {{v[0], v[1], v[2], v[3]}};
        take(i, one);
    }
#if ODX_VECTOR_BYTES == 64
    ODX_MEMBER void take(uint32_t i, const s32v (&v)[C][4])
    {
        for (uint32_t c = 0; c < C; ++c)
            storeRows(planes[c] + rowAt(i) * kPitch + column, kPitch, v[c][0], v[c][1], v[c][2], v[c][3]);
    }
    ODX_MEMBER void end() {}
#else
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
#endif
};

// One tile of one source. `used` tells which positions belong to the image: others may be left.
template <class Rule, uint32_t C, uint32_t n, class Out, class Used>
ODX_INLINE void sampleTile(const warp::Sampler<Rule>& sampler, Place place, const Tile<Rule, n>& tile,
                           const int32_t (&mask)[n], bool anyInside, bool maySeeWindows, Out out, Used used)
{
    const warp::Source& s = sampler.source;
    if (place == Place::outside && sampler.border.outside != warp::Outside::clamp) {
        for (uint32_t i = 0; i < n; ++i) {
            for (uint32_t c = 0; c < C; ++c)
                *out.at(c, i) = sampler.border.value;
        }
        return;
    }
    const float(*x)[n] = &tile.x, (*y)[n] = &tile.y;
    float cleanX[n], cleanY[n];
    if (place != Place::inside && anyInside) {
        // Positions outside become that of a pixel that has all pixels around it.
        const s32v first = (s32v)(f32v{} + (kShift<Rule> < 0 ? 1.0f : 0.0f));
        for (uint32_t i = 0; i < n; i += kLanes) {
            const s32v keep = load<s32v>(mask + i);
            store(cleanX + i, (load<s32v>(tile.x + i) & keep) | (first & ~keep));
            store(cleanY + i, (load<s32v>(tile.y + i) & keep) | (first & ~keep));
        }
        x = &cleanX;
        y = &cleanY;
    }
    if (place == Place::inside || anyInside) {
        [[maybe_unused]] const auto emit = [&](uint32_t i, const s32v(&v)[C][4]) __attribute__((always_inline))
        {
            out.take(i, v);
        };
        if constexpr (Rule::kRounds) {
            copyInside<C>(
                s, *x,
                *y, [&](uint32_t i, const s32v(&v)[4]) __attribute__((always_inline)) { out.takeWords(i, v); });
        } else if constexpr (std::is_same_v<Rule, warp::Bicubic>) {
            bicubicInside<C>(s, *x, *y, emit);
        } else {
            blendInside<Rule, C>(s, maySeeWindows && place == Place::inside, *x, *y, emit);
        }
        out.end();
    }
    if (place == Place::inside) return;
    for (uint32_t i = 0; i < n; ++i) {
        if (mask[i] != 0 || !used(i)) continue;
        uint8_t pixel[C];
        warp::Sampler<Rule>::template sample<C>(sampler, tile.x[i], tile.y[i], pixel);
        for (uint32_t c = 0; c < C; ++c)
            *out.at(c, i) = pixel[c];
    }
}

// Interleaves count pixels, at most kBytes, that are planes.
template <uint32_t C>
ODX_INLINE void join(uint8_t* to, const uint8_t* const (&p)[C], uint32_t count)
{
    if constexpr (C == 1) {
        if (count == kBytes) {
            store(to, load<u8v>(p[0]));
        } else {
            memcpy(to, p[0], count);
        }
    } else {
        static_assert(C == 3);
        uint8_t last[C * kBytes];
        uint8_t* const whole = count == kBytes ? to : last;
        store3(whole, load<u8v>(p[0]), load<u8v>(p[1]), load<u8v>(p[2]));
        if (count != kBytes) memcpy(to, last, C * count);
    }
}

} // namespace odx::ODX_TARGET

#endif
