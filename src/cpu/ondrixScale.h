// What the reference and the SIMD code of scaling share: the outputs at the borders of Gaussians by 2, and the
// walk of resizing, which leaves rows of pixels to samplers.
#ifndef ODX_CPU_ONDRIX_SCALE_H
#define ODX_CPU_ONDRIX_SCALE_H

#include "cpu/image.h"

#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace odx::scale
{

// An image and the place of another size that it is resized to. Strides in bytes.
struct Resize {
    const uint8_t* src;
    uint32_t srcWidth, srcHeight;
    size_t srcStride;
    uint8_t* dst;
    uint32_t dstWidth, dstHeight;
    size_t dstStride;

    const uint8_t* in(size_t y) const { return rowOf(src, srcStride, y); }
    uint8_t* out(size_t y) const { return rowOf(dst, dstStride, y); }
};

// Everything else is compiled for several targets, whose code must stay apart: each source has its own.
// NOLINTBEGIN(cert-dcl59-cpp, misc-definitions-in-headers)
namespace
{

// ---- Gaussians that halve ----

// Kernels: the sum of neighbours from the first tap on, and what becomes of sums whose weights on both axes are
// given. Taps outside the image count as 0.
struct Halving5x5 {
    static constexpr uint32_t R = 2, kWeights[5] = {1, 4, 6, 4, 1}, kWeight = 16;
    template <class Sum>
    static Sum sum(Sum a, Sum b, Sum c, Sum d, Sum e)
    {
        return static_cast<Sum>(static_cast<Sum>(static_cast<Sum>(a + e) + static_cast<Sum>(4 * (b + d))) +
                                static_cast<Sum>(6 * c));
    }
    template <class Sum, class At>
    static Sum at(At value)
    {
        return sum<Sum>(value(0), value(1), value(2), value(3), value(4));
    }
};
struct Bytes5x5 : Halving5x5 {
    using Pixel = uint8_t;
    using Sum = uint16_t; // up to 256 x 255
    static uint8_t inside(uint16_t sum) { return static_cast<uint8_t>((uint32_t{sum} + 128) >> 8); }
    static float reciprocal(uint32_t weight) { return 1.0f / static_cast<float>(weight); }
    static uint8_t atBorder(uint16_t sum, float reciprocal)
    {
        return static_cast<uint8_t>(0.5 + sum * static_cast<double>(reciprocal));
    }
};
struct Floats5x5 : Halving5x5 {
    using Pixel = float;
    using Sum = float;
    static float inside(float sum) { return sum * 0.00390625f; }
    static float reciprocal(uint32_t weight) { return 1.0f / static_cast<float>(weight); }
    static float atBorder(float sum, float reciprocal) { return sum * reciprocal; }
};
struct Bytes3x3 {
    using Pixel = uint8_t;
    using Sum = uint16_t;
    static constexpr uint32_t R = 1, kWeights[3] = {1, 2, 1}, kWeight = 4;
    template <class T, class At>
    static T at(At value)
    {
        return static_cast<T>(value(0) + 2 * value(1) + value(2));
    }
    static uint8_t inside(uint16_t sum) { return static_cast<uint8_t>((sum + 8) >> 4); }
    static float reciprocal(uint32_t weight)
    {
        return weight == 9 ? 0.1111111f : weight == 12 ? 0.0833333f : 0.0625f;
    }
    static uint8_t atBorder(uint16_t sum, float reciprocal)
    {
        return static_cast<uint8_t>(static_cast<float>(sum) * reciprocal + 0.5f);
    }
};

constexpr uint32_t kChunk = 256; // outputs of a row that are worked on at a time

// The weight of the taps around `centre` that are inside an axis.
template <class Filter>
inline uint32_t weightAt(uint32_t centre, uint32_t size)
{
    uint32_t weight = 0;
    for (uint32_t k = 0; k < 2 * Filter::R + 1; ++k)
        weight +=
            uint64_t{centre} + k >= Filter::R && uint64_t{centre} + k - Filter::R < size ? Filter::kWeights[k] : 0;
    return weight;
}

// The outputs [x0, x1) of rows [y0, y1); width and height are those of the source.
template <class Filter>
inline void halve(const Plane<typename Filter::Pixel>& plane, uint32_t x0, uint32_t x1, uint32_t y0, uint32_t y1)
{
    using Sum = typename Filter::Sum;
    constexpr uint32_t R = Filter::R;
    // Sums of the rows; that of row y in line y % 8.
    Sum lines[8][kChunk];
    static const Sum kOutside[kChunk] = {};
    for (uint32_t x = x0, count; x < x1; x += count) {
        count = x1 - x < kChunk ? x1 - x : kChunk;
        // Outputs before `first` and from `last` on have taps outside their row.
        const uint32_t first = x == 0 ? 1 : 0;
        const uint64_t whole =
            plane.width > R ? (uint64_t{plane.width} - R + 1) / 2 : 0; // outputs with 2x + R inside
        const uint32_t last = whole <= x ? 0 : whole - x < count ? static_cast<uint32_t>(whole - x) : count;
        uint64_t next = 2 * uint64_t{y0} < R ? 0 : 2 * uint64_t{y0} - R; // row to be summed
        for (uint32_t y = y0; y < y1; ++y) {
            for (; next <= 2 * uint64_t{y} + R && next < plane.height; ++next) {
                const typename Filter::Pixel* const row = rowOf(plane.src, plane.srcStride, next);
                Sum* const line = lines[next % 8];
                const auto partly = [&](uint32_t i) {
                    line[i] = Filter::template at<Sum>([&](uint32_t k) {
                        const uint64_t column = 2 * (uint64_t{x} + i) + k - R; // wraps left of the image
                        return column < plane.width ? static_cast<Sum>(row[column]) : Sum();
                    });
                };
                if (first != 0) partly(0);
                // Where the row begins here, its first output has taps outside.
                const size_t before = x == 0 ? R : 0;
                const typename Filter::Pixel* const in = row + (2 * size_t{x} + before - R);
                for (size_t i = first; i < last; ++i)
                    line[i] = Filter::template at<Sum>(
                        [&](size_t k) { return static_cast<Sum>(in[2 * i + k - before]); });
                for (uint32_t i = last > first ? last : first; i < count; ++i)
                    partly(i);
            }
            const Sum* rows[2 * R + 1];
            for (uint32_t k = 0; k < 2 * R + 1; ++k) {
                const uint64_t row = 2 * uint64_t{y} + k - R;
                rows[k] = row < plane.height ? lines[row % 8] : kOutside;
            }
            const auto sum = [&](size_t i) {
                return Filter::template at<Sum>([&](size_t k) { return rows[k][i]; });
            };
            typename Filter::Pixel* const out = rowOf(plane.dst, plane.dstStride, y) + x;
            const uint32_t wy = weightAt<Filter>(2 * y, plane.height);
            if (wy == Filter::kWeight) {
                for (size_t i = 0; i < count; ++i)
                    out[i] = Filter::inside(sum(i));
            } else {
                const float reciprocal = Filter::reciprocal(Filter::kWeight * wy);
                for (size_t i = 0; i < count; ++i)
                    out[i] = Filter::atBorder(sum(i), reciprocal);
            }
            const auto border = [&](uint32_t i) {
                const uint32_t weight = wy * weightAt<Filter>(2 * (x + i), plane.width);
                if (weight != Filter::kWeight * Filter::kWeight)
                    out[i] = Filter::atBorder(sum(i), Filter::reciprocal(weight));
            };
            if (first != 0) border(0);
            for (uint32_t i = last > first ? last : first; i < count; ++i)
                border(i);
        }
    }
}

// One column of them, in rows whose taps are all inside.
template <class Filter>
inline void halveColumn(const Plane<typename Filter::Pixel>& plane, uint32_t x, uint32_t y0, uint32_t y1)
{
    using Sum = typename Filter::Sum;
    constexpr uint32_t R = Filter::R, K = 2 * R + 1;
    uint32_t column[K];
    bool inside[K]; // other taps count as 0
    for (uint32_t k = 0; k < K; ++k) {
        const uint64_t at = 2 * uint64_t{x} + k - R;
        column[k] = at < plane.width ? static_cast<uint32_t>(at) : 2 * x;
        inside[k] = at < plane.width;
    }
    const typename Filter::Pixel* row = rowOf(plane.src, plane.srcStride, 2 * size_t{y0} - R);
    Sum sums[K] = {};
    const auto enter = [&](uint32_t place) {
        sums[place] = Filter::template at<Sum>(
            [&](uint32_t k) { return inside[k] ? static_cast<Sum>(row[column[k]]) : Sum(); });
        row = rowOf(row, plane.srcStride, 1);
    };
    for (uint32_t k = 2; k < K; ++k)
        enter(k);
    const uint32_t weight = Filter::kWeight * weightAt<Filter>(2 * x, plane.width);
    const float reciprocal = Filter::reciprocal(weight);
    for (uint32_t y = y0; y < y1; ++y) {
        for (uint32_t k = 2; k < K; ++k)
            sums[k - 2] = sums[k];
        enter(K - 2);
        enter(K - 1);
        const Sum sum = Filter::template at<Sum>([&](uint32_t k) { return sums[k]; });
        rowOf(plane.dst, plane.dstStride, y)[x] =
            weight == Filter::kWeight * Filter::kWeight ? Filter::inside(sum) : Filter::atBorder(sum, reciprocal);
    }
}

// Everything but the outputs [1, right) of the rows [1, bottom).
template <class Filter>
inline void halveBorder(const Plane<typename Filter::Pixel>& plane, uint32_t width, uint32_t height,
                        uint32_t right, uint32_t bottom)
{
    halve<Filter>(plane, 0, width, 0, 1);
    halveColumn<Filter>(plane, 0, 1, bottom);
    for (uint32_t x = right; x < width; ++x)
        halveColumn<Filter>(plane, x, 1, bottom);
    halve<Filter>(plane, 0, width, bottom, height);
}

// ---- positions ----

// Source positions of outputs, one after the other: floor((start + x * step) / unit) and the remainder, exactly.
struct Steps {
    int64_t index;
    uint64_t rest, unit;
    int64_t whole;
    uint64_t fraction;

    // Of x * from / to, or (centred) of the centres of pixels: (x + 1/2) * from / to - 1/2, in halves.
    Steps(uint32_t from, uint32_t to, bool centred)
        : unit(centred ? 2 * uint64_t{to} : to), whole(from / to),
          fraction((centred ? 2 : 1) * uint64_t{from % to})
    {
        const int64_t start = centred ? int64_t{from} - to : 0;
        index = start < 0 ? -1 : start / static_cast<int64_t>(unit); // never below -unit
        rest = static_cast<uint64_t>(start - index * static_cast<int64_t>(unit));
    }
    void next()
    {
        index += whole;
        rest += fraction;
        if (rest >= unit) {
            rest -= unit;
            ++index;
        }
    }
};

// The whole part of a position, held below `limit`. Beyond that, and for no number, it is the last.
inline int64_t wholeOf(float position, uint32_t limit)
{
    return position < static_cast<float>(limit) ? static_cast<int64_t>(position) : int64_t{limit} - 1;
}

// ---- resizing with tables ----

constexpr uint32_t kColumns = 512; // outputs of a row whose columns are in tables at a time

// The pixels and weights of one output, on one axis.
template <class Weight, uint32_t n>
struct Taps {
    int64_t at[n];
    Weight weight[n];
};

// Rows are resized horizontally, and kept as long as outputs need them; the vertical sums of those make outputs.
//
// A sampler is a struct with
//   Weight, Value, kTaps             types of weights and of what is kept; how many taps an axis has
//   columnAxis(), rowAxis()          what gives the Taps of one output after the other: next()
//   kBytesPerPixel                   outputs of a row with the same taps, at neighbouring bytes
//   columns(count)                   the tables at[] and weight[] have so many outputs
//   across(row, line, count)         the sums of a row's pixels; `row` may be -1 or the number of rows
//   down(lines, taps, out, count)    the outputs
template <class Sampler>
inline void resample(const Resize& image, Sampler& sampler)
{
    constexpr uint32_t n = Sampler::kTaps, channels = Sampler::kBytesPerPixel;
    static_assert(kColumns % channels == 0);
    using Value = typename Sampler::Value;
    alignas(64) Value lines[n][kColumns] = {}; // vectors reach beyond the outputs
    auto columnAxis = sampler.columnAxis();
    for (uint32_t x = 0, count; x < image.dstWidth; x += count) {
        count = image.dstWidth - x < kColumns / channels ? image.dstWidth - x : kColumns / channels;
        for (uint32_t i = 0; i < count; ++i) {
            const auto taps = columnAxis.next();
            for (uint32_t k = 0; k < n; ++k) {
                for (uint32_t c = 0; c < channels; ++c) {
                    sampler.at[k][i * channels + c] = static_cast<uint32_t>(taps.at[k] * channels + c);
                    sampler.weight[k][i * channels + c] = taps.weight[k];
                }
            }
        }
        const uint32_t bytes = count * channels;
        sampler.columns(bytes);
        int64_t held[n];
        for (int64_t& row : held)
            row = -2;
        auto rowAxis = sampler.rowAxis();
        for (uint32_t y = 0; y < image.dstHeight; ++y) {
            const auto taps = rowAxis.next();
            const Value* needed[n];
            for (uint32_t k = 0; k < n; ++k) {
                // Rows come in order: what is missing takes the place of the uppermost.
                uint32_t place = 0;
                for (uint32_t i = 1; i < n; ++i)
                    place = held[i] < held[place] ? i : place;
                for (uint32_t i = 0; i < n; ++i)
                    place = held[i] == taps.at[k] ? i : place;
                if (held[place] != taps.at[k]) {
                    sampler.across(taps.at[k], lines[place], bytes);
                    held[place] = taps.at[k];
                }
                needed[k] = lines[place];
            }
            sampler.down(needed, taps, image.out(y) + size_t{x} * channels, bytes);
        }
    }
}

// Tables of a sampler.
template <class W, class V, uint32_t n, uint32_t channels = 1>
struct Tables {
    using Weight = W;
    using Value = V;
    static constexpr uint32_t kTaps = n, kBytesPerPixel = channels;
    alignas(64) uint32_t at[n][kColumns];
    alignas(64) W weight[n][kColumns];
};

// ---- bilinear in whole numbers: weights in 2048ths ----

struct LinearAxis {
    uint32_t size, x = 0;
    float ratio;

    LinearAxis(uint32_t from, uint32_t to) : size(from), ratio(static_cast<float>(from) / static_cast<float>(to))
    {
    }
    Taps<int16_t, 2> next()
    {
        const float last = static_cast<float>(size - 1);
        float position = (static_cast<float>(x++) + 0.5f) * ratio - 0.5f;
        position = position < 0 ? 0 : position > last ? last : position;
        const int64_t first = wholeOf(position, size);
        const float t = position - static_cast<float>(first);
        const int64_t second = first + 1 < size ? first + 1 : first;
        const auto weight = [](float share) { return static_cast<int16_t>(share * 2048 + 0.5f); };
        return {{first, second}, {weight(1 - t), weight(t)}};
    }
};

struct Linear : Tables<int16_t, int32_t, 2> {
    const Resize& image;
    explicit Linear(const Resize& r) : image(r) {}
    LinearAxis columnAxis() const { return {image.srcWidth, image.dstWidth}; }
    LinearAxis rowAxis() const { return {image.srcHeight, image.dstHeight}; }
    void columns(uint32_t) {}
    void across(int64_t y, int32_t* line, uint32_t count) const
    {
        const uint8_t* const row = image.in(static_cast<size_t>(y));
        for (size_t i = 0; i < count; ++i)
            line[i] = weight[0][i] * row[at[0][i]] + weight[1][i] * row[at[1][i]];
    }
    // Sums are below 2^32: (2049 x 2049 x 255 + 2^21).
    static void down(const int32_t* const* lines, const Taps<int16_t, 2>& taps, uint8_t* out, uint32_t count)
    {
        const uint32_t w0 = static_cast<uint32_t>(taps.weight[0]), w1 = static_cast<uint32_t>(taps.weight[1]);
        for (size_t i = 0; i < count; ++i) {
            const uint32_t sum =
                w0 * static_cast<uint32_t>(lines[0][i]) + w1 * static_cast<uint32_t>(lines[1][i]) + (1u << 21);
            out[i] = static_cast<uint8_t>(sum >> 22);
        }
    }
};

// ---- two weighted pixels in float ----

// The positions of odxScaleu8_v2. What they accumulate is part of the result.
struct CentreAxis {
    uint32_t size;
    float step, position;

    CentreAxis(uint32_t from, uint32_t to)
        : size(from), step(static_cast<float>(from) / static_cast<float>(to)), position(0.5f * step)
    {
    }
    uint32_t nearest()
    {
        const float here = position;
        position += step;
        return static_cast<uint32_t>(wholeOf(here, size));
    }
    // From -1 to size, which are outside.
    Taps<float, 2> next()
    {
        const float here = position - 0.5f; // at least -0.5
        position += step;
        int64_t first = here < 0 ? -1 : wholeOf(here, size);
        if (first == int64_t{size} - 1 && here >= static_cast<float>(size)) first = size;
        const int64_t second = first < size ? first + 1 : first;
        const float w1 = here - static_cast<float>(first);
        return {{first, second}, {1 - w1, w1}};
    }
};

struct AreaAxis {
    uint32_t size, outputs, x = 0;
    float step, inverse, start = 0;

    AreaAxis(uint32_t from, uint32_t to)
        : size(from), outputs(to), step(static_cast<float>(from) / static_cast<float>(to)),
          inverse(static_cast<float>(to) / static_cast<float>(from))
    {
    }
    Taps<float, 2> next()
    {
        const float end = start + step;
        const int64_t first = wholeOf(start, size), last = int64_t{size} - 1;
        int64_t second = wholeOf(end, size);
        const float w0 = inverse * (static_cast<float>(first) - start + 1);
        float w1 = inverse * (end - static_cast<float>(second));
        if (++x == outputs) {
            second = last;
            w1 = inverse < 1 ? inverse : 1;
        }
        start = end;
        if (first == second) return {{first, second}, {0.5f, 0.5f}};
        return {{first, second}, {w0, w1}};
    }
};

// Pixels outside the image.
struct Frame {
    bool replicate;
    uint8_t value;
};

inline uint8_t byteOf(float value)
{
    return static_cast<uint8_t>(value < 255 ? value : 255);
}

template <class Axis>
struct Weighted : Tables<float, float, 2> {
    const Resize& image;
    Frame frame;
    uint32_t lead = 0, trail = 0; // outputs with a tap outside the rows, at both ends of the tables

    Weighted(const Resize& r, Frame f) : image(r), frame(f) {}
    Axis columnAxis() const { return {image.srcWidth, image.dstWidth}; }
    Axis rowAxis() const { return {image.srcHeight, image.dstHeight}; }

    // Indices are held inside the rows, which is what replication asks for; other frames mend those outputs.
    void columns(uint32_t count)
    {
        const uint32_t last = image.srcWidth - 1;
        for (lead = 0; lead < count && at[0][lead] == UINT32_MAX; ++lead)
            at[0][lead] = 0;
        for (trail = 0; trail < count && at[1][count - 1 - trail] > last; ++trail) {
            const uint32_t i = count - 1 - trail;
            beyond[i] = at[0][i] > last;
            at[0][i] = at[0][i] > last ? last : at[0][i];
            at[1][i] = last;
        }
    }
    // The row, or null for one of the frame.
    const uint8_t* rowAt(int64_t y) const
    {
        const int64_t last = int64_t{image.srcHeight} - 1;
        if (y >= 0 && y <= last) return image.in(static_cast<size_t>(y));
        return frame.replicate ? image.in(static_cast<size_t>(y < 0 ? 0 : last)) : nullptr;
    }
    // Whether that was all; else the outputs inside are still to be made.
    bool frameRow(const uint8_t* row, float* line, uint32_t count) const
    {
        if (row != nullptr) return false;
        const float value = frame.value;
        for (size_t i = 0; i < count; ++i)
            line[i] = weight[0][i] * value + weight[1][i] * value;
        return true;
    }
    void mendEnds(const uint8_t* row, float* line, uint32_t count) const
    {
        if (frame.replicate) return;
        const float value = frame.value;
        for (size_t i = 0; i < lead; ++i)
            line[i] = weight[0][i] * value + weight[1][i] * row[at[1][i]];
        for (size_t i = count - trail; i < count; ++i)
            line[i] = weight[0][i] * (beyond[i] ? value : row[at[0][i]]) + weight[1][i] * value;
    }
    void across(int64_t y, float* line, uint32_t count) const
    {
        const uint8_t* const row = rowAt(y);
        if (frameRow(row, line, count)) return;
        for (size_t i = 0; i < count; ++i)
            line[i] = weight[0][i] * row[at[0][i]] + weight[1][i] * row[at[1][i]];
        mendEnds(row, line, count);
    }
    static void down(const float* const* lines, const Taps<float, 2>& taps, uint8_t* out, uint32_t count)
    {
        if (taps.at[0] == taps.at[1]) {
            for (size_t i = 0; i < count; ++i)
                out[i] = byteOf(lines[0][i]);
            return;
        }
        for (size_t i = 0; i < count; ++i)
            out[i] = byteOf(taps.weight[0] * lines[0][i] + taps.weight[1] * lines[1][i]);
    }

private:
    bool beyond[kColumns]; // of the outputs at the right: both taps are outside
};

// ---- cubic, in 64 phases ----

struct CubicAxis {
    Steps steps;
    int64_t last;

    CubicAxis(uint32_t from, uint32_t to) : steps(from, to, true), last(int64_t{from} - 1) {}
    Taps<int16_t, 4> next()
    {
        // Halves up: floor(64 * rest / unit + 1/2); unit is even.
        uint64_t phase = (64 * steps.rest + steps.unit / 2) / steps.unit;
        const int64_t first = steps.index - 1 + static_cast<int64_t>(phase / 64);
        phase %= 64;
        steps.next();
        const int32_t k = static_cast<int32_t>(phase);
        const auto rounded = [](int32_t share) { return (share + 2048) >> 12; };
        const int32_t w0 = rounded(k * (-4096 + k * (128 - k))), w2 = rounded(k * (4096 + k * (256 - 3 * k))),
                      w3 = rounded(k * k * (k - 64));
        Taps<int16_t, 4> taps;
        for (int i = 0; i < 4; ++i) {
            const int64_t at = first + i;
            taps.at[i] = at < 0 ? 0 : at > last ? last : at;
        }
        const int32_t weights[4] = {w0, 128 - w0 - w2 - w3, w2, w3};
        for (int i = 0; i < 4; ++i)
            taps.weight[i] = static_cast<int16_t>(weights[i]);
        return taps;
    }
};

template <uint32_t channels>
struct Cubic : Tables<int16_t, int16_t, 4, channels> {
    using Tables<int16_t, int16_t, 4, channels>::at;
    using Tables<int16_t, int16_t, 4, channels>::weight;
    const Resize& image;

    explicit Cubic(const Resize& r) : image(r) {}
    CubicAxis columnAxis() const { return {image.srcWidth, image.dstWidth}; }
    CubicAxis rowAxis() const { return {image.srcHeight, image.dstHeight}; }
    void columns(uint32_t) {}
    void across(int64_t y, int16_t* line, uint32_t count) const
    {
        const uint8_t* const row = image.in(static_cast<size_t>(y));
        for (size_t i = 0; i < count; ++i) {
            const int32_t sum = weight[0][i] * row[at[0][i]] + weight[1][i] * row[at[1][i]] +
                                weight[2][i] * row[at[2][i]] + weight[3][i] * row[at[3][i]];
            line[i] = static_cast<int16_t>((sum + 1) >> 1);
        }
    }
    static void down(const int16_t* const* lines, const Taps<int16_t, 4>& taps, uint8_t* out, uint32_t count)
    {
        const int16_t *const a = lines[0], *const b = lines[1], *const c = lines[2], *const d = lines[3];
        for (size_t i = 0; i < count; ++i) {
            const int32_t sum = (taps.weight[0] * a[i] + taps.weight[1] * b[i] + taps.weight[2] * c[i] +
                                 taps.weight[3] * d[i] + 4096) >>
                                13;
            out[i] = static_cast<uint8_t>(sum < 0 ? 0 : sum > 255 ? 255 : sum);
        }
    }
};

// ---- nearest ----

// Calls gather(row, columns, out, count) for the rows of the source that outputs take, with tables of columns;
// ready(columns, count) comes before the first row of a table. Repeated rows are copied.
template <class Columns, class Rows, class Ready, class Gather>
inline void takeNearest(const Resize& image, Columns columnAt, const Rows& firstRow, Ready ready, Gather gather)
{
    alignas(64) uint32_t columns[kColumns];
    for (uint32_t x = 0, count; x < image.dstWidth; x += count) {
        count = image.dstWidth - x < kColumns ? image.dstWidth - x : kColumns;
        for (uint32_t i = 0; i < count; ++i)
            columns[i] = columnAt();
        ready(columns, count);
        Rows rowAt = firstRow;
        int64_t before = -1;
        for (uint32_t y = 0; y < image.dstHeight; ++y) {
            const uint32_t row = rowAt();
            uint8_t* const out = image.out(y) + x;
            if (row == before) {
                memcpy(out, image.out(y - 1) + x, count);
            } else {
                gather(image.in(row), columns, out, count);
            }
            before = row;
        }
    }
}

// The two ways to number the pixels.
struct ExactNearest {
    Steps steps;
    ExactNearest(uint32_t from, uint32_t to) : steps(from, to, false) {}
    uint32_t operator()()
    {
        const int64_t index = steps.index;
        steps.next();
        return static_cast<uint32_t>(index);
    }
};
struct CentreNearest {
    CentreAxis axis;
    CentreNearest(uint32_t from, uint32_t to) : axis(from, to) {}
    uint32_t operator()() { return axis.nearest(); }
};

template <class Axis, class Ready, class Gather>
inline void takeNearest(const Resize& image, Ready ready, Gather gather)
{
    takeNearest(image, Axis(image.srcWidth, image.dstWidth), Axis(image.srcHeight, image.dstHeight), ready,
                gather);
}

inline void copyImage(const Resize& image)
{
    for (uint32_t y = 0; y < image.dstHeight; ++y)
        memcpy(image.out(y), image.in(y), image.dstWidth);
}

// ---- groups ----

// Ends of groups of source pixels: closes() says whether the next pixel is the last of its group.
struct Groups {
    uint64_t size, outputs, sum = 0;
    Groups(uint32_t from, uint32_t to) : size(from), outputs(to) {}
    bool closes()
    {
        sum += outputs;
        if (sum < size) return false;
        sum -= size;
        return true;
    }
};

// What the sum of n pixels is multiplied with, in 2^-32ths.
inline uint32_t groupReciprocal(uint64_t n)
{
    return n == 1 ? 0xFFFFFFFF : static_cast<uint32_t>(((uint64_t{1} << 32) + n - 1) / n);
}

} // namespace
// NOLINTEND(cert-dcl59-cpp, misc-definitions-in-headers)

} // namespace odx::scale

#endif
