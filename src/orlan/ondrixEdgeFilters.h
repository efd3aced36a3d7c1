// The stencils of gradients, for the walk.
#ifndef ODX_ORLAN_ONDRIX_EDGE_FILTERS_H
#define ODX_ORLAN_ONDRIX_EDGE_FILTERS_H

#include "cpu/ondrixEdge.h"
#include "orlan/neighbourhood.h"

namespace odx::ODX_TARGET
{

// Both sums of kBytes pixels, in the order of the outputs.
struct GradientSums {
    s16p dx, dy;
};

template <int k>
ODX_INLINE s16p times(const s16p& p)
{
    if constexpr (k == 1) {
        return p;
    } else if constexpr (k == 2) {
        return p + p;
    } else {
        return {p.a * (int16_t)k, p.b * (int16_t)k};
    }
}

// A 3x3 derivative. The output says in which order it takes the pixels, and what it makes of the sums.
template <class Kernel, class Output>
struct Gradient : Window<3, 3, kBytes> {
    s16p differences[2] = {}, sums[2] = {}; // of the two rows before; sums up to 16 x 255

    ODX_MEMBER GradientSums push(const uint8_t* row)
    {
        const s16p left = Output::pixels(row), middle = Output::pixels(row + 1), right = Output::pixels(row + 2);
        const s16p difference = right - left;
        s16p sum = times<Kernel::kMiddle>(middle), dx = times<Kernel::kMiddle>(differences[1]);
        if constexpr (Kernel::kCorner != 0) {
            sum = sum + times<Kernel::kCorner>(left + right);
            dx = dx + times<Kernel::kCorner>(differences[0] + difference);
        }
        const s16p dy = sum - sums[0];
        differences[0] = differences[1];
        differences[1] = difference;
        sums[0] = sums[1];
        sums[1] = sum;
        return {dx, dy};
    }
    template <class... D>
    ODX_MEMBER static void write(const GradientSums& g, D*... out)
    {
        Output::write(g, out...);
    }
};

// ---- outputs ----

// 16-bit numbers and floats: pixels in order. An eighth is rounded down, or exact.
template <bool eighth>
struct InOrder {
    ODX_MEMBER static s16p pixels(const uint8_t* p) { return loadInOrder(p); }

    ODX_MEMBER static s16v stored(s16v v) { return eighth ? v >> 3 : v; }
    ODX_MEMBER static f32v stored(s32v v)
    {
        const f32v number = __builtin_convertvector(v, f32v);
        return eighth ? number * 0.125f : number;
    }

    ODX_MEMBER static void write(const GradientSums& g, int16_t* dx, int16_t* dy)
    {
        constexpr uint32_t half = kBytes / 2;
        store(dx, stored(g.dx.a));
        store(dx + half, stored(g.dx.b));
        store(dy, stored(g.dy.a));
        store(dy + half, stored(g.dy.b));
    }
    ODX_MEMBER static void write(const GradientSums& g, edge::Both<int16_t>* out)
    {
        storePairs((int16_t*)out, stored(g.dx.a), stored(g.dy.a));
        storePairs((int16_t*)(out + kBytes / 2), stored(g.dx.b), stored(g.dy.b));
    }

    ODX_MEMBER static void writeHalf(s16v v, float* out)
    {
        const s32p wide = widenInOrder(v);
        store(out, stored(wide.a));
        store(out + kBytes / 4, stored(wide.b));
    }
    ODX_MEMBER static void write(const GradientSums& g, float* dx, float* dy)
    {
        writeHalf(g.dx.a, dx);
        writeHalf(g.dx.b, dx + kBytes / 2);
        writeHalf(g.dy.a, dy);
        writeHalf(g.dy.b, dy + kBytes / 2);
    }
    ODX_MEMBER static void writeHalf(s16v dx, s16v dy, edge::Both<float>* out)
    {
        const s32p x = widenInOrder(dx), y = widenInOrder(dy);
        storePairs((float*)out, stored(x.a), stored(y.a));
        storePairs((float*)(out + kBytes / 4), stored(x.b), stored(y.b));
    }
    ODX_MEMBER static void write(const GradientSums& g, edge::Both<float>* out)
    {
        writeHalf(g.dx.a, g.dy.a, out);
        writeHalf(g.dx.b, g.dy.b, out + kBytes / 2);
    }
};
using Whole = InOrder<false>;
using Eighth = InOrder<true>;

// Bytes: pixels in the target's own order, in which they are joined again.
struct Split {
    ODX_MEMBER static s16p pixels(const uint8_t* p)
    {
        const u16p split = simd::split(load<u8v>(p));
        return {(s16v)split.a, (s16v)split.b};
    }
};

struct EighthOfByte : Split {
    ODX_MEMBER static void write(const GradientSums& g, int8_t* dx, int8_t* dy)
    {
        store(dx, joinCentred<3>(g.dx) ^ 0x80); // from -128 to 127
        store(dy, joinCentred<3>(g.dy) ^ 0x80);
    }
};

struct Magnitude : Split {
    ODX_MEMBER static void write(const GradientSums& g, uint8_t* out)
    {
        store(out, joinClamped(s16p{abs(g.dx.a) + abs(g.dy.a), abs(g.dx.b) + abs(g.dy.b)}));
    }
};

// ---- Sobel sums of floats, in the reference's order ----

struct SobelOfFloat : Window<3, 3, kBytes / 4> {
    struct Taps {
        f32v left, middle, right, across; // the latter is right - left
    } rows[2] = {};
    struct Sums {
        f32v dx, dy;
    };

    ODX_MEMBER Sums push(const float* row)
    {
        const f32v left = load<f32v>(row), right = load<f32v>(row + 2);
        const Taps below = {left, load<f32v>(row + 1), right, right - left}, here = rows[1], above = rows[0];
        rows[0] = here;
        rows[1] = below;
        return {above.across + 2.0f * here.across + below.across,
                (below.left - above.left) + 2.0f * (below.middle - above.middle) + (below.right - above.right)};
    }
    ODX_MEMBER static void write(const Sums& sums, float* dx, float* dy)
    {
        store(dx, sums.dx * 0.125f);
        store(dy, sums.dy * 0.125f);
    }
};

// ---- Sobel sums of any size ----

// The kernels are binomial ones of order K - 1 and K - 3, the latter of differences over two pixels. Columns are
// summed in 16 bits as long as they fit, those of 7x7 then in 32.
template <uint32_t K, int narrowSteps>
struct BinomialOfK {
    BinomialColumn<s16v, narrowSteps> narrow;

    ODX_MEMBER s16v push(s16v v) { return narrow.push(v); }
};
template <uint32_t K>
struct BinomialOfK<K, 0> {
    ODX_MEMBER static s16v push(s16v v) { return v; }
};
template <int narrowSteps>
struct BinomialOfK<7, narrowSteps> {
    BinomialColumn<s16v, narrowSteps> narrow;
    BinomialColumn<s32p, 3> wide;

    ODX_MEMBER s16v push(s16v v) { return joinSat(wide.push(split(narrow.push(v)))); }
};

ODX_INLINE s16v pixelsAt(const uint8_t* p)
{
    return (s16v)loadWiden(p);
}

template <uint32_t K>
struct SobelX : Window<K, K, kBytes / 2> {
    BinomialOfK<K, K == 7 ? 3 : K - 1> column; // 7x7: 8 x 10 x 255

    ODX_MEMBER s16v push(const uint8_t* row)
    {
        const auto difference = [=](uint32_t i) { return pixelsAt(row + K - 1 - i) - pixelsAt(row + i); };
        s16v sum = difference(0);
        if constexpr (K == 5) sum += 2 * difference(1);
        if constexpr (K == 7) sum += 4 * difference(1) + 5 * difference(2);
        return column.push(sum);
    }
    ODX_MEMBER static void write(s16v sum, int16_t* out) { store(out, sum); }
};

template <uint32_t K>
struct SobelY : Window<K, K, kBytes / 2> {
    s16v previous[2] = {};                     // sums of rows, up to 64 x 255
    BinomialOfK<K, K == 7 ? 1 : K - 3> column; // 7x7: 2 x 64 x 255

    ODX_MEMBER s16v push(const uint8_t* row)
    {
        const auto ends = [=](uint32_t i) { return pixelsAt(row + K - 1 - i) + pixelsAt(row + i); };
        s16v sum = ends(0);
        if constexpr (K == 3) sum += 2 * pixelsAt(row + 1);
        if constexpr (K == 5) sum += 4 * ends(1) + 6 * pixelsAt(row + 2);
        if constexpr (K == 7) sum += 6 * ends(1) + 15 * ends(2) + 20 * pixelsAt(row + 3);
        const s16v difference = sum - previous[0];
        previous[0] = previous[1];
        previous[1] = sum;
        return column.push(difference);
    }
    ODX_MEMBER static void write(s16v sum, int16_t* out) { store(out, sum); }
};

// Outputs of the KxK Sobel sums, K one of 3, 5, 7, the first of which has its uppermost leftmost tap at `src`;
// strides in bytes, the width at least kBytes. Either output may be null. One copy serves the filters and Canny.
void sobelInterior(uint32_t K, const uint8_t* src, size_t srcStride, int16_t* dx, int16_t* dy, size_t stride,
                   uint32_t width, uint32_t height);

} // namespace odx::ODX_TARGET

#endif
