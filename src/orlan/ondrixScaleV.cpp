// Reductions and enlargements by fixed factors. Rows that are narrower than a vector belong to the reference.
#include "cpu/ondrixScaleC.h"

#include "cpu/image.h"
#include "cpu/ondrixScale.h"
#include "orlan/neighbourhood.h"
#include "orlan/simd/resampling.h"

#define ODX_FAMILY_LIST "frame/operations/scaling.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{

using namespace scale;

namespace
{

// Calls f(i) for vectors of outputs that cover `count`, which is at least `lanes`; the last one may overlap the
// one before.
template <uint32_t lanes, class F>
ODX_INLINE void forVectors(size_t count, F f)
{
    size_t i = 0;
    for (; count - i >= lanes; i += lanes)
        f(i);
    if (i < count) f(count - lanes);
}

// ---- means of blocks ----

// kBytes outputs of 2x2 pixels.
ODX_INLINE u8v halvedBytes(const uint8_t* top, const uint8_t* bottom)
{
    const u16v low = sumPairs(load<u8v>(top)) + sumPairs(load<u8v>(bottom)),
               high = sumPairs(load<u8v>(top + kBytes)) + sumPairs(load<u8v>(bottom + kBytes));
    return narrow(low >> 2, high >> 2);
}

ODX_INLINE u16v sumsOfFour(const uint8_t* p, size_t stride)
{
    u16v sum = sumPairs(load<u8v>(p));
    for (size_t i = 1; i < 4; ++i)
        sum += sumPairs(load<u8v>(p + i * stride));
    return sum;
}

// kBytes outputs of 4x4 pixels.
ODX_INLINE u8v quarteredBytes(const uint8_t* p, size_t stride)
{
    const u16v low = sumPairs(sumsOfFour(p, stride), sumsOfFour(p + kBytes, stride)),
               high = sumPairs(sumsOfFour(p + 2 * kBytes, stride), sumsOfFour(p + 3 * kBytes, stride));
    return narrow(low >> 4, high >> 4);
}

} // namespace

int odxScaleDownBy2u8V(const uint8_t* src, unsigned int width, unsigned int height, unsigned int srcStride,
                       uint8_t* dst, unsigned int dstStride)
{
    const uint32_t outputs = width / 2;
    if (outputs < kBytes) return odxScaleDownBy2u8C(src, width, height, srcStride, dst, dstStride);
    for (uint32_t y = 0; y < height / 2; ++y) {
        const uint8_t *const top = rowOf(src, srcStride, 2 * size_t{y}), *const bottom = rowOf(top, srcStride, 1);
        uint8_t* const out = rowOf(dst, dstStride, y);
        forVectors<kBytes>(outputs, [&](size_t x) { store(out + x, halvedBytes(top + 2 * x, bottom + 2 * x)); });
    }
    return 0;
}

int odxScaleDownBy4u8V(const uint8_t* src, unsigned int width, unsigned int height, unsigned int srcStride,
                       uint8_t* dst, unsigned int dstStride)
{
    const uint32_t outputs = width / 4;
    if (outputs < kBytes) return odxScaleDownBy4u8C(src, width, height, srcStride, dst, dstStride);
    for (uint32_t y = 0; y < height / 4; ++y) {
        const uint8_t* const in = rowOf(src, srcStride, 4 * size_t{y});
        uint8_t* const out = rowOf(dst, dstStride, y);
        forVectors<kBytes>(outputs, [&](size_t x) { store(out + x, quarteredBytes(in + 4 * x, srcStride)); });
    }
    return 0;
}

// ---- three to two ----

int odxScaleDown3To2u8V(const uint8_t* src, unsigned int width, unsigned int height, unsigned int srcStride,
                        uint8_t* dst, unsigned int dstStride)
{
    const uint32_t blocks = width / 3;
    if (blocks < kBytes) return odxScaleDown3To2u8C(src, width, height, srcStride, dst, dstStride);
    for (uint32_t y = 0; y < height / 3; ++y) {
        const uint8_t *const top = rowOf(src, srcStride, 3 * size_t{y}), *const middle = rowOf(top, srcStride, 1),
                             *const bottom = rowOf(top, srcStride, 2);
        uint8_t *const upper = rowOf(dst, dstStride, 2 * size_t{y}), *const lower = rowOf(upper, dstStride, 1);
        forVectors<kBytes>(blocks, [&](size_t x) {
            struct Sides {
                u16p left, right;
            };
            const auto sides = [x](const uint8_t* row) {
                const u8x3 v = load3(row + 3 * x);
                return Sides{threeAndOne(v.a, v.b), threeAndOne(v.c, v.b)};
            };
            const auto corner = [](const u16p& outer, const u16p& inner) {
                return joinThrees<4>({outer.a * 3 + inner.a, outer.b * 3 + inner.b});
            };
            const Sides a = sides(top), b = sides(middle), c = sides(bottom);
            store2(upper + 2 * x, corner(a.left, b.left), corner(a.right, b.right));
            store2(lower + 2 * x, corner(c.left, b.left), corner(c.right, b.right));
        });
    }
    return 0;
}

// ---- Gaussians that halve: the sums of rows are those of vectors of outputs, in order ----

struct Halves5x5 : Window<5, 5, kBytes, 2> {
    u16p rows[4] = {};

    ODX_MEMBER static u16v sums(const uint8_t* p)
    {
        return dotPairs<1, 4>(load<u8v>(p)) + dotPairs<6, 4>(load<u8v>(p + 2)) + dotPairs<1, 0>(load<u8v>(p + 4));
    }
    ODX_MEMBER static u16v outputs(u16v a, u16v b, u16v c, u16v d, u16v e)
    {
        return ((a + e) + ((b + d) << 2) + (c << 2) + (c << 1) + 128) >> 8; // up to 256 x 255 + 128
    }
    ODX_MEMBER u8v push(const uint8_t* row)
    {
        const u16p next = {sums(row), sums(row + kBytes)};
        const u8v value = narrow(outputs(rows[0].a, rows[1].a, rows[2].a, rows[3].a, next.a),
                                 outputs(rows[0].b, rows[1].b, rows[2].b, rows[3].b, next.b));
        rows[0] = rows[1];
        rows[1] = rows[2];
        rows[2] = rows[3];
        rows[3] = next;
        return value;
    }
    ODX_MEMBER static void write(u8v value, uint8_t* out) { store(out, value); }
};

struct Halves3x3 : Window<3, 3, kBytes, 2> {
    u16p rows[2] = {};

    ODX_MEMBER static u16v sums(const uint8_t* p)
    {
        return dotPairs<1, 2>(load<u8v>(p)) + dotPairs<1, 0>(load<u8v>(p + 2));
    }
    ODX_MEMBER u8v push(const uint8_t* row)
    {
        const u16p next = {sums(row), sums(row + kBytes)};
        const u8v value = narrow((rows[0].a + (rows[1].a << 1) + next.a + 8) >> 4,
                                 (rows[0].b + (rows[1].b << 1) + next.b + 8) >> 4);
        rows[0] = rows[1];
        rows[1] = next;
        return value;
    }
    ODX_MEMBER static void write(u8v value, uint8_t* out) { store(out, value); }
};

struct FloatHalves5x5 : Window<5, 5, kBytes / 4, 2> {
    f32v rows[4] = {};

    ODX_MEMBER static f32v sum(f32v a, f32v b, f32v c, f32v d, f32v e)
    {
        return ((a + e) + 4.0f * (b + d)) + 6.0f * c;
    }
    ODX_MEMBER f32v push(const float* row)
    {
        const f32x2 first = load2(row), second = load2(row + 2), third = load2(row + 4);
        const f32v next = sum(first.a, first.b, second.a, second.b, third.a);
        const f32v value = sum(rows[0], rows[1], rows[2], rows[3], next);
        rows[0] = rows[1];
        rows[1] = rows[2];
        rows[2] = rows[3];
        rows[3] = next;
        return value;
    }
    ODX_MEMBER static void write(f32v value, float* out) { store(out, value * 0.00390625f); }
};

// The vectors of a filter read one column more than their last output needs; it is inside for the outputs before
// `right`. Whether there was room for a vector.
template <class Filter, class Reference, class T>
ODX_INLINE bool halveInside(const Plane<T>& plane, uint32_t width, uint32_t height)
{
    constexpr uint32_t R = Reference::R;
    if (plane.width < 2 * Filter::kLanes + 8 || plane.height < 2 * R + 1) return false;
    const uint32_t right = (plane.width - R) / 2, bottom = (plane.height - R + 1) / 2;
    const T* const in = rowOf(plane.src, plane.srcStride, 2 - R) + (2 - R);
    T* const out = rowOf(plane.dst, plane.dstStride, 1) + 1;
    walk(Filter(), in, plane.srcStride, right - 1, bottom - 1, Rows<T>{out, plane.dstStride});
    halveBorder<Reference>(plane, width, height, right, bottom);
    return true;
}

void odxScaleDownBy2Gaussian5x5u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    if (!halveInside<Halves5x5, Bytes5x5>(plane, srcWidth / 2, srcHeight / 2)) {
        odxScaleDownBy2Gaussian5x5u8C(src, srcWidth, srcHeight, srcStride, dst, dstStride);
    }
}

odxStatus odxScaleDownBy2Gaussian3x3u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    if (!halveInside<Halves3x3, Bytes3x3>(plane, srcWidth / 2 + srcWidth % 2, srcHeight / 2 + srcHeight % 2)) {
        odxScaleDownBy2Gaussian3x3u8C(src, srcWidth, srcHeight, srcStride, dst, dstStride);
    }
    return ONDRIX_SUCCESS;
}

void odxScaleDownBy2Gaussian5x5f32_v2V(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, float* dst, unsigned int dstStride)
{
    const Plane<float> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    // Vectors round denormal sums to zero on some processors, which the reference does not.
    if (kFlushesDenormals || !halveInside<FloatHalves5x5, Floats5x5>(plane, srcWidth / 2, srcHeight / 2)) {
        odxScaleDownBy2Gaussian5x5f32_v2C(src, srcWidth, srcHeight, srcStride, dst, dstStride);
    }
}

void odxScaleDownBy2Gaussian5x5f32V(const float* src, unsigned int width, unsigned int height, float* dst)
{
    odxScaleDownBy2Gaussian5x5f32_v2V(src, width, height, width * 4, dst, width * 2);
}

// ---- the Gaussian that doubles ----

// Neighbouring outputs of a row, so that the walk counts them as one.
struct BytePair {
    uint8_t even, odd;
};

// Sums of a row at its pixels (with those beside them), and between them (without the factor 4).
struct Doubled {
    u16p at, between;
};

ODX_INLINE Doubled doubledRow(u16p a, u16p b, u16p c)
{
    return {a + c + (b << 2) + (b << 1), b + c};
}
// The row of outputs at a row, and the one between it and the next.
ODX_INLINE void writeDoubled(const Doubled& above, const Doubled& here, const Doubled& below, uint8_t* upper,
                             uint8_t* lower)
{
    store2(upper, joinRounded<6>(doubledRow(above.at, here.at, below.at).at),
           joinRounded<4>(doubledRow(above.between, here.between, below.between).at));
    store2(lower, joinRounded<4>(here.at + below.at), joinRounded<2>(here.between + below.between));
}

struct Doubles : Window<3, 3, kBytes> {
    Doubled rows[2] = {};
    struct Value {
        Doubled above, here, below;
    };

    ODX_MEMBER Value push(const uint8_t* row)
    {
        const Doubled next =
            doubledRow(split(load<u8v>(row)), split(load<u8v>(row + 1)), split(load<u8v>(row + 2)));
        const Value value = {rows[0], rows[1], next};
        rows[0] = rows[1];
        rows[1] = next;
        return value;
    }
    ODX_MEMBER static void write(const Value& value, BytePair* upper, BytePair* lower)
    {
        writeDoubled(value.above, value.here, value.below, &upper->even, &lower->even);
    }
};

// The frame of pixels that windows do not fit around is doubled as a small image, with its neighbours, of which
// some outputs are taken.
ODX_INLINE void doubleRow(const uint8_t* above, const uint8_t* here, const uint8_t* below, uint32_t from,
                          uint32_t to, uint32_t width, uint8_t* upper, uint8_t* lower)
{
    for (uint32_t x = from; x < to; ++x) {
        const uint32_t left = x != 0 ? x - 1 : 1, right = x + 1 < width ? x + 1 : x;
        const auto at = [&](uint32_t i) { return above[i] + 6 * here[i] + below[i]; };
        const auto between = [&](uint32_t i) { return 4 * (here[i] + below[i]); };
        upper[2 * x] = (uint8_t)((at(left) + 6 * at(x) + at(right) + 32) >> 6);
        upper[2 * x + 1] = (uint8_t)((4 * (at(x) + at(right)) + 32) >> 6);
        lower[2 * x] = (uint8_t)((between(left) + 6 * between(x) + between(right) + 32) >> 6);
        lower[2 * x + 1] = (uint8_t)((4 * (between(x) + between(right)) + 32) >> 6);
    }
}

void odxScaleUpBy2Gaussian5x5u8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    if (srcWidth < kBytes + 2 || srcHeight < 2) {
        return odxScaleUpBy2Gaussian5x5u8C(src, srcWidth, srcHeight, srcStride, dst, dstStride);
    }
    const auto row = [&](uint32_t y) { return rowOf(src, srcStride, y); };
    const auto out = [&](size_t y) { return rowOf(dst, dstStride, y); };
    if (srcHeight > 2) {
        const size_t pair = 2 * size_t{dstStride};
        walk(Doubles(), src, srcStride, srcWidth - 2, srcHeight - 2, Rows<BytePair>{(BytePair*)(out(2) + 2), pair},
             Rows<BytePair>{(BytePair*)(out(3) + 2), pair});
    }
    for (uint32_t y = 0; y < srcHeight; ++y) {
        const uint8_t *const above = row(y != 0 ? y - 1 : 1), *const here = row(y),
                             *const below = row(y + 1 < srcHeight ? y + 1 : y);
        uint8_t *const upper = out(2 * size_t{y}), *const lower = out(2 * size_t{y} + 1);
        if (y == 0 || y + 1 == srcHeight) {
            forVectors<kBytes>(srcWidth - 2, [&](size_t x) {
                const auto sums = [x](const uint8_t* p) {
                    return doubledRow(split(load<u8v>(p + x)), split(load<u8v>(p + x + 1)),
                                      split(load<u8v>(p + x + 2)));
                };
                writeDoubled(sums(above), sums(here), sums(below), upper + 2 * x + 2, lower + 2 * x + 2);
            });
        }
        doubleRow(above, here, below, 0, 1, srcWidth, upper, lower);
        doubleRow(above, here, below, srcWidth - 1, srcWidth, srcWidth, upper, lower);
    }
}

// ---- upsampling with the weights 3:1 ----

// What comes between neighbouring pixels a and b.
template <uint32_t channels>
ODX_INLINE void storeBetween(uint8_t* out, u8v first, u8v second)
{
    if constexpr (channels == 1) {
        store2(out, first, second);
    } else {
        storePairs2(out, first, second);
    }
}

template <uint32_t channels>
ODX_INLINE void upsampleRowOf(const uint8_t* src, uint8_t* dst, size_t pixels)
{
    forVectors<kBytes>((pixels - 1) * channels, [&](size_t i) {
        const u8x2 two = between(load<u8v>(src + i), load<u8v>(src + i + channels));
        storeBetween<channels>(dst + channels + 2 * i, two.a, two.b);
    });
    for (size_t c = 0; c < channels; ++c) {
        dst[c] = src[c];
        dst[(2 * pixels - 1) * channels + c] = src[(pixels - 1) * channels + c];
    }
}

void upsampleRowV(const uint8_t* src, uint8_t* dst, uint32_t pixels, uint32_t channels)
{
    if ((pixels - 1) * uint64_t{channels} < kBytes) return upsampleRowC(src, dst, pixels, channels);
    if (channels == 1) return upsampleRowOf<1>(src, dst, pixels);
    upsampleRowOf<2>(src, dst, pixels);
}

void upsampleBetweenV(const uint8_t* above, const uint8_t* below, uint8_t* upper, uint8_t* lower, uint32_t bytes)
{
    if (bytes < kBytes) return upsampleBetweenC(above, below, upper, lower, bytes);
    forVectors<kBytes>(bytes, [&](size_t i) {
        const u8x2 pixels = between(load<u8v>(above + i), load<u8v>(below + i));
        store(upper + i, pixels.a);
        store(lower + i, pixels.b);
    });
}

template <uint32_t channels>
ODX_INLINE void upsampleSquaresOf(const uint8_t* above, const uint8_t* below, uint8_t* upper, uint8_t* lower,
                                  size_t pixels)
{
    const auto vector = [](const uint8_t* p, const uint8_t* q, uint8_t* first, uint8_t* second) {
        const u8v a = load<u8v>(p), b = load<u8v>(p + channels), c = load<u8v>(q), d = load<u8v>(q + channels);
        const auto outputs = [](uint8_t* out, const u16p& v, const u16p& w) {
            const u8x2 two = between(v, w);
            storeBetween<channels>(out, two.a, two.b);
        };
        outputs(first, threeAndOne(a, c), threeAndOne(b, d));
        outputs(second, threeAndOne(c, a), threeAndOne(d, b));
    };
    const size_t count = (pixels - 1) * channels;
    uint8_t *first = upper + channels, *second = lower + channels;
    if constexpr (kBytes == 16) { // where stepping costs nothing
        const size_t rest = count - kBytes;
        const uint8_t *p = above, *q = below;
        vector(p + rest, q + rest, first + 2 * rest, second + 2 * rest); // what does not fill another vector
        for (size_t i = count / kBytes; i != 0; --i) {
            vector(p, q, first, second);
            p += kBytes, q += kBytes, first += 2 * kBytes, second += 2 * kBytes;
            pin(p), pin(q), pin(first), pin(second);
        }
    } else {
        forVectors<kBytes>(count, [=](size_t i) { vector(above + i, below + i, first + 2 * i, second + 2 * i); });
    }
    for (size_t c = 0; c < channels; ++c) {
        const size_t last = (pixels - 1) * channels + c, end = pixels * channels + last;
        upper[c] = (uint8_t)((3 * above[c] + below[c] + 2) >> 2);
        lower[c] = (uint8_t)((above[c] + 3 * below[c] + 2) >> 2);
        upper[end] = (uint8_t)((3 * above[last] + below[last] + 2) >> 2);
        lower[end] = (uint8_t)((above[last] + 3 * below[last] + 2) >> 2);
    }
}

void upsampleSquaresV(const uint8_t* above, const uint8_t* below, uint8_t* upper, uint8_t* lower, uint32_t pixels,
                      uint32_t channels)
{
    if ((pixels - 1) * uint64_t{channels} < kBytes) {
        return upsampleSquaresC(above, below, upper, lower, pixels, channels);
    }
    if (channels == 1) return upsampleSquaresOf<1>(above, below, upper, lower, pixels);
    upsampleSquaresOf<2>(above, below, upper, lower, pixels);
}

} // namespace odx::ODX_TARGET
