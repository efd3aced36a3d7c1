// Positions, samples and borders of warps and remaps, as reference and SIMD code share them.
//
// A warp is a path, which gives the source position of each pixel of the destination, and a rule, by which a
// source is sampled there. Paths are projective, affine, or maps. A rule has
//
//   kRounds                 positions are rounded to the nearest pixel
//   endOf(size)             positions from 0 to below this one (and half a pixel less where they are rounded) need
//   nothing beyond the source at<C>(source, beyond, x, y, out)
//                           the sample of C channels at a position between -1 and the size. Pixels beyond the
//                           source have the value `beyond`, or that of the nearest pixel where it is null
#ifndef ODX_CPU_ONDRIX_WARP_H
#define ODX_CPU_ONDRIX_WARP_H

#include "cpu/image.h"
#include "frame/log.h"
#include "ondrix/types.h"

#include <string.h>

namespace odx::warp
{

// Forced inline, because the code of several SIMD targets is made of it.
#define ODX_WARP_INLINE [[gnu::always_inline]] static inline
#define ODX_WARP_MEMBER [[gnu::always_inline]] inline

struct Source {
    const uint8_t* pixels;
    uint32_t width, height;
    size_t stride;
};

struct Target {
    uint8_t* pixels;
    uint32_t width, height;
    size_t stride;
};

enum class Outside {
    fill,  // the value
    ring,  // within a pixel of the source a sample beside pixels of that value, else the value
    clamp, // the sample at the nearest position of the source
    leave  // what the destination held
};

struct Border {
    Outside outside;
    uint8_t value;
};

// ---- bounds ----
//
// Positions are compared as floats, and below 2^31, so that their whole parts are numbers of 32 bits. Those that
// are not a number are below nothing.

constexpr float kFarthest = 2147483648.0f;

ODX_WARP_INLINE float nextAbove(float positive)
{
    uint32_t bits;
    memcpy(&bits, &positive, sizeof bits);
    ++bits;
    memcpy(&positive, &bits, sizeof bits);
    return positive;
}

// The least float that is not below n.
ODX_WARP_INLINE float leastFrom(uint32_t n)
{
    const float nearest = static_cast<float>(n);
    if (nearest >= kFarthest) return kFarthest;
    return static_cast<uint32_t>(nearest) < n ? nextAbove(nearest) : nearest;
}

// The least float above n.
ODX_WARP_INLINE float leastAbove(uint32_t n)
{
    const float least = leastFrom(n);
    return least < kFarthest && static_cast<uint32_t>(least) == n ? nextAbove(least) : least;
}

// Whether 0 <= x <= width - 1 and the same of y, which is what the clipped transforms call inside.
struct Inclusive {
    float endX, endY;

    ODX_WARP_MEMBER explicit Inclusive(const Source& s)
        : endX(s.width == 0 ? 0.0f : leastAbove(s.width - 1)),
          endY(s.height == 0 ? 0.0f : leastAbove(s.height - 1))
    {
    }
    ODX_WARP_MEMBER bool holds(float x, float y) const { return x >= 0 && x < endX && y >= 0 && y < endY; }
};

// ---- rules ----

// The whole part of a position from -1 on, rounded toward minus infinity.
ODX_WARP_INLINE int32_t floorOf(float v)
{
    const auto whole = static_cast<int32_t>(v);
    return v < static_cast<float>(whole) ? whole - 1 : whole;
}

template <uint32_t C>
struct Beyond {
    uint8_t pixel[C];
};

template <uint32_t C>
ODX_WARP_INLINE const uint8_t* pixelAt(const Source& s, const Beyond<C>* beyond, int64_t x, int64_t y)
{
    const int64_t w = s.width, h = s.height;
    if (x < 0 || x >= w || y < 0 || y >= h) {
        if (beyond != nullptr) return beyond->pixel;
        x = x < 0 ? 0 : x < w ? x : w - 1;
        y = y < 0 ? 0 : y < h ? y : h - 1;
    }
    return rowOf(s.pixels, s.stride, static_cast<size_t>(y)) + C * static_cast<size_t>(x);
}

struct Nearest {
    static constexpr bool kRounds = true;
    [[gnu::always_inline]] static inline float endOf(uint32_t size) { return leastFrom(size); }

    template <uint32_t C>
    ODX_WARP_INLINE void at(const Source& s, const Beyond<C>* beyond, float x, float y, uint8_t* out)
    {
        memcpy(out, pixelAt<C>(s, beyond, floorOf(x + 0.5f), floorOf(y + 0.5f)), C);
    }
};

// The four pixels around a position, blended by Blend(fx, fy)(p00, p01, p10, p11).
template <class Blend, uint32_t C>
ODX_WARP_INLINE void blendFour(const Source& s, const Beyond<C>* beyond, float x, float y, uint8_t* out)
{
    const int32_t ix = floorOf(x), iy = floorOf(y);
    const Blend blend(x - static_cast<float>(ix), y - static_cast<float>(iy));
    const uint8_t *p00, *p01, *p10, *p11;
    if (ix >= 0 && iy >= 0 && int64_t{ix} + 1 < s.width && int64_t{iy} + 1 < s.height) {
        p00 = rowOf(s.pixels, s.stride, static_cast<size_t>(iy)) + C * static_cast<size_t>(ix);
        p01 = p00 + C;
        p10 = p00 + s.stride;
        p11 = p10 + C;
    } else {
        const int64_t right = int64_t{ix} + 1, below = int64_t{iy} + 1;
        p00 = pixelAt(s, beyond, ix, iy);
        p01 = pixelAt(s, beyond, right, iy);
        p10 = pixelAt(s, beyond, ix, below);
        p11 = pixelAt(s, beyond, right, below);
    }
    for (uint32_t c = 0; c < C; ++c)
        out[c] = blend(p00[c], p01[c], p10[c], p11[c]);
}

// In floats. Rounding never takes a blend below -1 or to 256, so that it is a byte when the fraction is dropped.
struct FloatBlend {
    float fx, fy;

    ODX_WARP_MEMBER FloatBlend(float x, float y) : fx(x), fy(y) {}
    ODX_WARP_MEMBER uint8_t operator()(int p00, int p01, int p10, int p11) const
    {
        const float top = static_cast<float>(p00) + fx * static_cast<float>(p01 - p00);
        const float bottom = static_cast<float>(p10) + fx * static_cast<float>(p11 - p10);
        return static_cast<uint8_t>(static_cast<int>(fy * (bottom - top) + top));
    }
};

// In fixed point with 16 bits of fraction: at most 65535 * 255 * 128 + 32768, which fits 32 bits.
struct FixedBlend {
    int32_t fx, fy;

    // A position just below 0 has a fraction that rounds to 1.
    ODX_WARP_MEMBER FixedBlend(float x, float y) : fx(fraction(x)), fy(fraction(y)) {}
    [[gnu::always_inline]] static inline int32_t fraction(float v)
    {
        const auto bits = static_cast<int32_t>(v * 65536.0f);
        return bits < 65535 ? bits : 65535;
    }
    ODX_WARP_MEMBER uint8_t operator()(int p00, int p01, int p10, int p11) const
    {
        int value;
        if (fy == 0) {
            value = p00 + ((fx * (p01 - p00) + 32768) >> 16);
        } else if (fx == 0) {
            value = p00 + ((fy * (p10 - p00) + 32768) >> 16);
        } else {
            const int top = p00 * 128 + ((fx * (p01 - p00) + 256) >> 9);
            const int bottom = p10 * 128 + ((fx * (p11 - p10) + 256) >> 9);
            value = (top + ((fy * (bottom - top) + 32768) >> 16) + 64) >> 7;
        }
        ODX_FATAL_ASSERT("src/cpu/ondrixWarpC", __LINE__, value >= 0 && value <= 255);
        return static_cast<uint8_t>(value);
    }
};
template <class Blend>
struct Between {
    static constexpr bool kRounds = false;
    [[gnu::always_inline]] static inline float endOf(uint32_t size)
    {
        return size == 0 ? 0.0f : leastFrom(size - 1);
    }

    template <uint32_t C>
    ODX_WARP_INLINE void at(const Source& s, const Beyond<C>* beyond, float x, float y, uint8_t* out)
    {
        blendFour<Blend>(s, beyond, x, y, out);
    }
};
using Bilinear = Between<FloatBlend>;
using FixedBilinear = Between<FixedBlend>;

// Cubic convolution with the slope of the neighbours (a = -1/2). The last weight is what the others leave of 1.
// Pixels beyond the source are those of its edge, whatever the border.
struct Bicubic {
    static constexpr bool kRounds = false;
    [[gnu::always_inline]] static inline float endOf(uint32_t size)
    {
        return size == 0 ? 0.0f : leastFrom(size - 1);
    }

    struct Weights {
        float w[4];

        ODX_WARP_MEMBER explicit Weights(float t)
            : w{((-0.5f * t + 1.0f) * t - 0.5f) * t, (1.5f * t - 2.5f) * t * t + 1.0f,
                ((-1.5f * t + 2.0f) * t + 0.5f) * t, 0}
        {
            w[3] = 1.0f - w[0] - w[1] - w[2];
        }
        ODX_WARP_MEMBER float sum(const float* p) const
        {
            return w[0] * p[0] + w[1] * p[1] + w[2] * p[2] + w[3] * p[3];
        }
    };

    template <uint32_t C>
    ODX_WARP_INLINE void at(const Source& s, const Beyond<C>*, float x, float y, uint8_t* out)
    {
        const int32_t ix = floorOf(x), iy = floorOf(y);
        const Weights across(x - static_cast<float>(ix)), down(y - static_cast<float>(iy));
        const uint8_t *taps[4], *rows[4];
        for (int k = 0; k < 4; ++k) {
            taps[k] = pixelAt<C>(s, nullptr, int64_t{ix} + k - 1, 0);
            rows[k] = pixelAt<C>(s, nullptr, 0, int64_t{iy} + k - 1);
        }
        for (uint32_t c = 0; c < C; ++c) {
            float sums[4];
            for (int j = 0; j < 4; ++j) {
                float row[4];
                for (int i = 0; i < 4; ++i)
                    row[i] = static_cast<float>(rows[j][(taps[i] - s.pixels) + c]);
                sums[j] = across.sum(row);
            }
            const float value = down.sum(sums) + 0.5f;
            out[c] = static_cast<uint8_t>(value > 0 ? value < 255 ? value : 255 : 0);
        }
    }
};

// ---- samples ----

// A source as a rule takes it.
template <class Rule>
struct Sampler {
    Source source;
    Border border;
    float endX, endY;

    ODX_WARP_MEMBER Sampler(const Source& s, const Border& b)
        : source(s), border(b), endX(Rule::endOf(s.width)), endY(Rule::endOf(s.height))
    {
        // An empty source has no nearest pixel.
        if ((s.width == 0 || s.height == 0) && b.outside == Outside::clamp) border = {Outside::fill, 0};
    }

    ODX_WARP_MEMBER bool holds(float x, float y) const
    {
        // Nearest pixels are those of positions half a pixel further.
        constexpr float kShift = Rule::kRounds ? 0.5f : 0.0f;
        const float right = x + kShift, down = y + kShift;
        return right >= 0 && right < endX && down >= 0 && down < endY;
    }

    // The sample at any position, or what the border puts there.
    template <uint32_t C>
    ODX_WARP_INLINE void sample(const Sampler& sampler, float x, float y, uint8_t* out)
    {
        const Source& s = sampler.source;
        if (sampler.holds(x, y)) {
            const Beyond<C>* const inside = nullptr;
            return Rule::template at<C>(s, inside, x, y, out);
        }
        Beyond<C> beyond;
        memset(beyond.pixel, sampler.border.value, C);
        switch (sampler.border.outside) {
        case Outside::leave: // inside the source, if only just
        case Outside::clamp: {
            const Beyond<C>* const nearest = nullptr;
            return Rule::template at<C>(s, nearest, clamped(x, s.width), clamped(y, s.height), out);
        }
        case Outside::ring:
            if (!Rule::kRounds && x >= -1 && x < leastFrom(s.width) && y >= -1 && y < leastFrom(s.height))
                return Rule::template at<C>(s, &beyond, x, y, out);
            break;
        case Outside::fill:
            break;
        }
        memcpy(out, beyond.pixel, C);
    }

private:
    // What is not a number counts as 0.
    [[gnu::always_inline]] static inline float clamped(float v, uint32_t size)
    {
        const float last = size < 0x7FFFFF00u ? static_cast<float>(size - 1) : 2147483392.0f;
        return v > 0 ? v < last ? v : last : 0.0f;
    }
};

// ---- paths ----

// Positions of a row, from its first column on. Rows start afresh; from column to column numbers are added up.
struct Projective {
    const float* m;

    struct Row {
        const float* m;
        float numX, numY, den;

        ODX_WARP_MEMBER void position(float& x, float& y) const
        {
            const float w = 1.0f / den;
            x = numX * w;
            y = numY * w;
        }
        ODX_WARP_MEMBER void step()
        {
            numX += m[0];
            numY += m[3];
            den += m[6];
        }
    };
    ODX_WARP_MEMBER Row row(uint32_t y) const
    {
        const float v = static_cast<float>(y);
        return {m, m[2] + m[1] * v, m[5] + m[4] * v, m[8] + m[7] * v};
    }
};

struct Affine {
    const float* m;

    struct Row {
        const float* m;
        float numX, numY;

        ODX_WARP_MEMBER void position(float& x, float& y) const
        {
            x = numX;
            y = numY;
        }
        ODX_WARP_MEMBER void step()
        {
            numX += m[0];
            numY += m[3];
        }
    };
    ODX_WARP_MEMBER Row row(uint32_t y) const
    {
        const float v = static_cast<float>(y);
        return {m, m[2] + m[1] * v, m[5] + m[4] * v};
    }
};

struct Maps {
    const float *mapX, *mapY;
    size_t stride;

    struct Row {
        const float *nextX, *nextY;

        ODX_WARP_MEMBER void position(float& x, float& y) const
        {
            x = *nextX;
            y = *nextY;
        }
        ODX_WARP_MEMBER void step()
        {
            ++nextX;
            ++nextY;
        }
    };
    ODX_WARP_MEMBER Row row(uint32_t v) const { return {rowOf(mapX, stride, v), rowOf(mapY, stride, v)}; }
};

// ---- the reference ----

// Warps a source. With `clipped`, positions are inside where Inclusive holds: dstBorder, unless it is null, takes
// the inside columns of each row, and a border that leaves the destination keeps all others.
template <class Path, class Rule, uint32_t C>
void warpReference(const Path& path, const Source& source, const Target& target, const Border& border,
                   bool clipped, uint32_t* dstBorder);

// Whether a patch lies inside an image, and where its first pixel does.
ODX_WARP_INLINE bool beginPatch(const Source& source, const float* position, const float* affine,
                                const Target& patch, float (&first)[2])
{
    const float a = affine[0], b = affine[1], c = affine[2], d = affine[3];
    const float hw = static_cast<float>(patch.width) / 2, hh = static_cast<float>(patch.height) / 2;
    const float x = position[0] - (hw * a + hh * b), y = position[1] - (hw * c + hh * d);
    const float right = static_cast<float>(patch.width - 1), bottom = static_cast<float>(patch.height - 1);
    const Inclusive inside(source);
    const float columns[] = {0.0f, right}, rows[] = {0.0f, bottom};
    for (const float column : columns) {
        for (const float row : rows) {
            if (!inside.holds(x + column * a + row * b, y + column * c + row * d)) return false;
        }
    }
    first[0] = x;
    first[1] = y;
    return true;
}

// ---- arguments ----

// What the perspective warps and remaps do with a border type: the constant one has a ring in bilinear mode.
ODX_WARP_INLINE Border borderOf(odxBorderType type, uint32_t value)
{
    return {type == ONDRIX_BORDER_CONSTANT ? Outside::ring : Outside::fill,
            static_cast<uint8_t>(type == ONDRIX_BORDER_CONSTANT ? value : 0)};
}
constexpr Border kZeros = {Outside::fill, 0}, kLeft = {Outside::leave, 0};

#undef ODX_WARP_INLINE
#undef ODX_WARP_MEMBER

} // namespace odx::warp

#endif
