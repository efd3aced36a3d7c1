// SIMD element-wise arithmetic: each operation is a line with what it makes of a vector of pixels.
#include "cpu/ondrixArithmC.h"
#include "orlan/arithm.h"

#define ODX_FAMILY_LIST "frame/operations/arithmetic.def"
#include "cpu/ondrixChannelC.h"
#include "orlan/family.h"

#include <type_traits>

namespace odx::ODX_TARGET
{
using namespace arithm;

// By its bits: a sum with 0 would change the sign of a negative 0.
ODX_INLINE f32v splat(float v)
{
    u32v bits = {};
    uint32_t word;
    memcpy(&word, &v, sizeof word);
    return (f32v)(bits + word);
}

// ---- integers ----

ODX_INLINE s8v signedDifference(u8v a, u8v b)
{
    return subSat((s8v)(a ^ 0x80), (s8v)(b ^ 0x80));
}

ODX_INLINE u16v atMost(u16v v, uint16_t limit)
{
    return v - subSat(v, u16v{} + limit);
}

// (v + half) >> shift, without a sum that 16 bits do not hold.
ODX_INLINE u16v scaled(u16v v, uint32_t shift)
{
    return shift == 0 ? v : ((v >> (uint16_t)(shift - 1)) + 1) >> 1;
}
ODX_INLINE u8v scaledProduct(u8v a, u8v b, uint32_t shift)
{
    const u16p x = split(a), y = split(b);
    return join(u16p{atMost(scaled(x.a * y.a, shift), 255), atMost(scaled(x.b * y.b, shift), 255)});
}
ODX_INLINE s16v scaledProduct(s16v a, s16v b, uint32_t shift)
{
    const s32p products = mulWide(a, b);
    const int32_t half = (1 << shift) >> 1;
    return joinWideSat({(products.a + half) >> (int32_t)shift, (products.b + half) >> (int32_t)shift});
}

ODX_INLINE u16v narrowed(s16v v, odxOverflow policy)
{
    if (policy == ONDRIX_OVERFLOW_WRAP) return (u16v)v & 0xFF;
    return (u16v)min(max(v, s16v{}), s16v{} + 255);
}

// ---- gradients ----

// Rounded up to 0.05 less than to the nearest, the root of floats is that of the integers or one less. The one sum
// that has 32 bits loses its last one, which does not matter to a result of 15 bits.
ODX_INLINE s32v magnitude(s32v a, s32v b)
{
    const u32v squares = (u32v)(a * a) + (u32v)(b * b);
    const s32v sum = (s32v)(squares - (squares >> 31));
    const s32v root = __builtin_convertvector(rootNear(__builtin_convertvector(sum, f32v)) + 0.45f, s32v);
    const u32v r = (u32v)root; // the greatest square wraps, to a negative number
    return root - (s32v)(sum > (s32v)(r * r + r));
}
ODX_INLINE s16v magnitude(s16v a, s16v b)
{
    const s32p x = split(a), y = split(b);
    const s32v low = magnitude(x.a, y.a), high = magnitude(x.b, y.b);
    const auto limited = [](s32v v) __attribute__((always_inline))
    {
        return v - (-(v >> 15) & (v - INT16_MAX));
    };
    return joinShifted<0>(s32p{limited(low), limited(high)});
}

struct Magnitudes : Lanes<kBytes / 2> {
    static constexpr bool kIsShort = kPairsVectors;

    ODX_MEMBER void operator()(const int16_t* a, const int16_t* b, int16_t* out) const
    {
        store(out, magnitude(load<s16v>(a), load<s16v>(b)));
    }
};

// The angle is near enough to say between which two values it lies; which is nearer, the boundary there decides.
struct Directions : Lanes<kBytes> {
    ByteTable<64> numeratorsLow, numeratorsHigh, denominatorsLow, denominatorsHigh;

    ODX_MEMBER explicit Directions(const uint8_t (&bytes)[4][64])
        : numeratorsLow(bytes[0]), numeratorsHigh(bytes[1]), denominatorsLow(bytes[2]), denominatorsHigh(bytes[3])
    {
    }

    // Of one quarter of the pixels, in lanes of 32 bits.
    struct Octant {
        s32v low, high, steep, left, up;

        ODX_MEMBER Octant(s32v a, s32v b)
        {
            const s32v x = max(a, -a), y = max(b, -b);
            high = max(x, y);
            low = x ^ y ^ high;
            steep = y > x;
            left = a < 0;
            up = b < 0;
        }
        // The greatest error is below a fifth.
        ODX_MEMBER s32v lowerValue() const
        {
            const f32v q = ratioNear(__builtin_convertvector(low, f32v),
                                     __builtin_convertvector(max(high, s32v{} + 1), f32v));
            return __builtin_convertvector(q * (43.12f - 11.12f * q), s32v);
        }
        ODX_MEMBER s32v angle(s32v value, s32v numerator, s32v denominator) const
        {
            value -= (s32v)(denominator * low > numerator * high);
            value = steep ? 64 - value : value;
            value = left ? 128 - value : value;
            return up ? -value : value;
        }
    };

    ODX_MEMBER void operator()(const int16_t* a, const int16_t* b, uint8_t* out) const
    {
        // Vectors of 16-bit lanes in the order that split() gives them.
        constexpr uint32_t half = kBytes / 2;
        const s32p a0 = split(load<s16v>(a)), a1 = split(load<s16v>(a + half)), b0 = split(load<s16v>(b)),
                   b1 = split(load<s16v>(b + half));
        const Octant o[4] = {{a0.a, b0.a}, {a0.b, b0.b}, {a1.a, b1.a}, {a1.b, b1.b}};
        alignas(kBytes) uint8_t values[kBytes];
        s32v lower[4];
        for (uint32_t i = 0; i < 4; ++i)
            lower[i] = o[i].lowerValue();
        storeNarrow(values, (u16v)joinShifted<0>(s32p{lower[0], lower[1]}));
        storeNarrow(values + half, (u16v)joinShifted<0>(s32p{lower[2], lower[3]}));
        const u8v index = load<u8v>(values);
        alignas(kBytes) uint8_t words[4][kBytes];
        store(words[0], numeratorsLow(index));
        store(words[1], numeratorsHigh(index));
        store(words[2], denominatorsLow(index));
        store(words[3], denominatorsHigh(index));
        const auto word = [&](uint32_t i, uint32_t from) __attribute__((always_inline))
        {
            return split((s16v)(loadWiden(words[i] + from) | loadWiden(words[i + 1] + from) << 8));
        };
        for (uint32_t i = 0; i < 2; ++i) {
            const s32p numerator = word(0, half * i), denominator = word(2, half * i);
            const s32p angles = {o[2 * i].angle(lower[2 * i], numerator.a, denominator.a),
                                 o[2 * i + 1].angle(lower[2 * i + 1], numerator.b, denominator.b)};
            storeNarrow(out + half * i, (u16v)joinShifted<0>(angles) & 0xFF);
        }
    }
};

// ---- interleaved channels, and elements that a mask marks ----

template <class T, uint32_t channels, bool plain>
struct ToValues : Lanes<Pattern<T, channels>::kPixels>, Pattern<T, channels> {
    static constexpr bool kIsShort = true;
    using Pattern<T, channels>::Pattern;

    ODX_MEMBER void operator()(const Pixel<T, channels>* in, Pixel<T, channels>* out) const
    {
        for (uint32_t i = 0; i < this->kVectors; ++i) {
            const Vector<T> v = load<Vector<T>>((const char*)in + kBytes * i), w = this->vector[i];
            store((char*)out + kBytes * i, plain ? plainDifference(v, w) : absoluteDifference(v, w));
        }
    }
};

template <class T, uint32_t channels>
ODX_INLINE void toValues(const T* value, uint32_t width, uint32_t height, Rows<const T> src, Rows<T> dst)
{
    const Rows from = {pixelsOf<T, channels>(src.pixels), src.stride};
    const Rows to = {pixelsOf<T, channels>(dst.pixels), dst.stride};
    bool plain = false;
    if constexpr (kFlushesDenormals && std::is_same_v<T, float>) plain = keepSumsNormal(value, channels);
    if (plain) return forVectors(ToValues<T, channels, true>(value), width, height, from, to);
    forVectors(ToValues<T, channels, false>(value), width, height, from, to);
}

template <class T, uint32_t channels>
struct SetAll : Lanes<Pattern<T, channels>::kPixels>, Pattern<T, channels> {
    static constexpr bool kIsShort = true;
    using Pattern<T, channels>::Pattern;

    ODX_MEMBER void operator()(Pixel<T, channels>* out) const
    {
        for (uint32_t i = 0; i < this->kVectors; ++i)
            store((char*)out + kBytes * i, this->vector[i]);
    }
};

template <class T, uint32_t channels>
struct SetMarked : Lanes<kBytes> {
    MarkedPixels<T, channels> pixels;

    ODX_MEMBER explicit SetMarked(const T* value) : pixels(value) {}
    ODX_MEMBER void operator()(const uint8_t* mask, const Pixel<T, channels>* in, Pixel<T, channels>* out) const
    {
        pixels.set(out->channel, in->channel, (u8v)(load<u8v>(mask) != 0));
    }
};
template <>
struct SetMarked<uint8_t, 1> : Lanes<kBytes> {
    static constexpr bool kIsShort = true;
    u8v value;

    ODX_MEMBER explicit SetMarked(const uint8_t* v) : value(u8v{} + *v) {}
    ODX_MEMBER void operator()(const uint8_t* mask, const Pixel<uint8_t, 1>* in, Pixel<uint8_t, 1>* out) const
    {
        store(out->channel, (u8v)(load<u8v>(mask) != 0 ? value : load<u8v>(in->channel)));
    }
};

template <class T, uint32_t channels>
ODX_INLINE void setPixels(T* dst, uint32_t width, uint32_t height, uint32_t dstStride, const T* value,
                          const uint8_t* mask, uint32_t maskStride)
{
    const Rows pixels = {pixelsOf<T, channels>(dst), dstStride};
    if (mask == nullptr) {
        forVectors(SetAll<T, channels>(value), width, height, pixels);
    } else {
        forVectors(SetMarked<T, channels>(value), width, height, Rows{mask, maskStride},
                   Rows{pixelsOf<T, channels>((const T*)dst), dstStride}, pixels);
    }
}

// ---- means ----

// The lanes of sums hold those of as many vectors.
template <class T>
struct Sums;
template <>
struct Sums<uint8_t> {
    static constexpr uint32_t kMost = 128; // of two bytes a lane
    u16v both = {};

    ODX_MEMBER void add(u8v v)
    {
        const u16p pair = split(v);
        both += pair.a + pair.b;
    }
    ODX_MEMBER int64_t total() const
    {
        uint32_t all = 0;
        for (uint32_t i = 0; i < kBytes / 2; ++i)
            all += both[i];
        return all;
    }
};
template <>
struct Sums<int32_t> {
    static constexpr uint32_t kMost = 32768;
    u32v low = {};
    s32v high = {};

    ODX_MEMBER void add(s32v v)
    {
        low += (u32v)v & 0xFFFF;
        high += v >> 16;
    }
    ODX_MEMBER int64_t total() const
    {
        int64_t all = 0;
        for (uint32_t i = 0; i < kBytes / 4; ++i)
            all += (int64_t)high[i] * 65536 + low[i];
        return all;
    }
};

template <class T>
ODX_INLINE float mean(const T* src, uint32_t width, uint32_t height, uint32_t srcStride)
{
    constexpr size_t lanes = kBytes / sizeof(T);
    const double count = (double)width * height;
    size_t n = width;
    if (Rows{src, srcStride}.packed(width)) {
        n *= height;
        height = 1;
    }
    int64_t sum = 0;
    for (uint32_t y = 0; y < height; ++y) {
        const T* p = rowOf(src, srcStride, y);
        size_t left = n;
        while (left >= lanes) {
            Sums<T> sums;
            const size_t vectors = left / lanes < sums.kMost ? left / lanes : sums.kMost;
            for (size_t i = 0; i < vectors; ++i)
                sums.add(load<Vector<T>>(p + lanes * i));
            sum += sums.total();
            p += lanes * vectors;
            left -= lanes * vectors;
        }
        for (; left != 0; --left)
            sum += *p++;
    }
    return (float)((double)sum / count);
}

// ---- weights ----

// Sums that are not rounded yet, in lanes of 32 bits.
struct Weights {
    f32v alpha, beta, gamma;

    // Denormal products do not matter to sums that are rounded to integers. The low bits of the last sum are
    // those.
    ODX_MEMBER s32v rounded(s32v a, s32v b) const
    {
        f32v t = (__builtin_convertvector(a, f32v) * alpha + __builtin_convertvector(b, f32v) * beta) + gamma;
        t = t > 0 ? t : f32v{};
        t = t < 255 ? t : f32v{} + 255;
        return (s32v)(t + 12582912);
    }
    ODX_MEMBER u16v rounded(u16v a, u16v b) const
    {
        const s32p x = split((s16v)a), y = split((s16v)b);
        return (u16v)joinShifted<0>(s32p{rounded(x.a, y.a), rounded(x.b, y.b)});
    }
    ODX_MEMBER u8v operator()(u8v a, u8v b) const
    {
        const u16p x = split(a), y = split(b);
        const u16v low = rounded(x.a, y.a), high = rounded(x.b, y.b);
        return join(u16p{low & 0xFF, high & 0xFF});
    }
};

// ---- the operations ----

// clang-format off
#define ODX_KERNEL(takes, ...) [=]takes __attribute__((always_inline)) { return __VA_ARGS__; }
#define ODX_TWO(name, S1, S2, D, takes, ...) \
    void name(ODX_TWO_IMAGES(S1, S2, D, takes)) \
    { \
        onTwo(ODX_KERNEL((auto a, auto b), __VA_ARGS__), srcWidth, srcHeight, Rows{src1, src1Stride}, \
              Rows{src2, src2Stride}, Rows{dst, dstStride}); \
    }
#define ODX_ONE(name, S, D, takes, ...) \
    void name(ODX_ONE_IMAGE(S, D, takes)) \
    { \
        onOne(ODX_KERNEL((auto v), __VA_ARGS__), srcWidth, srcHeight, Rows{src, srcStride}, Rows{dst, dstStride}); \
    }
#define ODX_TO_VALUES(name, T, channels) \
    void name(ODX_ONE_IMAGE(T, T, values)) \
    { \
        toValues<T, channels>(value, srcWidth, srcHeight, Rows{src, srcStride}, Rows{dst, dstStride}); \
    }
#define ODX_TO_VALUE(name, T) \
    void name(ODX_ONE_IMAGE(T, T, value)) \
    { \
        toValues<T, 1>(&value, srcWidth, srcHeight, Rows{src, srcStride}, Rows{dst, dstStride}); \
    }
#define ODX_SET(name, T) \
    void name(ODX_MASKED_IMAGE(T, value)) \
    { \
        setPixels<T, 1>(dst, dstWidth, dstHeight, dstStride, &value, mask, maskStride); \
    }
#define ODX_SET_CHANNELS(name, T, channels) \
    void name(ODX_MASKED_IMAGE(T, values)) \
    { \
        setPixels<T, channels>(dst, dstWidth, dstHeight, dstStride, value, mask, maskStride); \
    }

ODX_TWO(odxAddu8V, uint8_t, uint8_t, uint8_t, policy, policy == ONDRIX_OVERFLOW_WRAP ? a + b : addSat(a, b))
ODX_TWO(odxAdds16V, int16_t, int16_t, int16_t, nothing, addSat(a, b))
ODX_TWO(odxAddf32V, float, float, float, nothing, sum(a, b))
ODX_TWO(odxAddu8u16V, uint8_t, uint8_t, uint16_t, nothing, a + b)
ODX_TWO(odxAddu16u8u16V, uint16_t, uint8_t, uint16_t, nothing, addSat(a, b))
ODX_TWO(odxSubtractu8V, uint8_t, uint8_t, uint8_t, policy, policy == ONDRIX_OVERFLOW_WRAP ? a - b : subSat(a, b))
ODX_TWO(odxSubtracts16V, int16_t, int16_t, int16_t, policy, policy == ONDRIX_OVERFLOW_WRAP ? a - b : subSat(a, b))
ODX_TWO(odxSubtractu8s16V, uint8_t, uint8_t, int16_t, nothing, a - b)
ODX_TWO(odxAbsDiffu8V, uint8_t, uint8_t, uint8_t, nothing, absoluteDifference(a, b))
ODX_TWO(odxAbsDiffs32V, int32_t, int32_t, int32_t, nothing, absoluteDifference(a, b))
ODX_TWO(odxAbsDifff32V, float, float, float, nothing, absoluteDifference(a, b))
ODX_TWO(odxImageDiffu8V, uint8_t, uint8_t, uint8_t, nothing, (u8v)signedDifference(a, b) ^ 0x80)
ODX_TWO(odxImageDiffu8s8V, uint8_t, uint8_t, int8_t, nothing, signedDifference(a, b))
ODX_TWO(odxImageDiffu8f32V, uint8_t, uint8_t, float, nothing, a - b)
ODX_TWO(odxImageDiffs16V, int16_t, int16_t, int16_t, nothing, subSat(a, b))
ODX_TWO(odxImageDifff32V, float, float, float, nothing, difference(a, b))
ODX_TWO(odxElementMultiplyu8V, uint8_t, uint8_t, uint8_t, shift, scaledProduct(a, b, shift))
ODX_TWO(odxElementMultiplys16V, int16_t, int16_t, int16_t, shift, scaledProduct(a, b, shift))
ODX_TWO(odxElementMultiplyu8u16V, uint8_t, uint8_t, uint16_t, shift, scaled(a * b, shift))
ODX_TWO(odxElementMultiplyu8s16V, uint8_t, uint8_t, int16_t, shift, atMost(scaled(a * b, shift), INT16_MAX))
ODX_TWO(odxElementMultiplyf32V, float, float, float, nothing, product(a, b))
ODX_TWO(odxBitwiseAndu8V, uint8_t, uint8_t, uint8_t, nothing, a & b)
ODX_TWO(odxBitwiseOru8V, uint8_t, uint8_t, uint8_t, nothing, a | b)
ODX_TWO(odxBitwiseXoru8V, uint8_t, uint8_t, uint8_t, nothing, a ^ b)
ODX_TWO(odxBitwiseOrs32V, int32_t, int32_t, int32_t, nothing, a | b)

ODX_ONE(odxAbsDiffVu8V, uint8_t, uint8_t, value, absoluteDifference(v, u8v{} + value))
ODX_ONE(odxAbsDiffVs32V, int32_t, int32_t, value, absoluteDifference(v, s32v{} + value))
ODX_TO_VALUE(odxAbsDiffVf32V, float)
ODX_ONE(odxAddScalars16V, int16_t, int16_t, scalar, addSat(v, s16v{} + scalar))
ODX_ONE(odxAddScalarf32V, float, float, scalar, sum(v, splat(scalar)))
ODX_ONE(odxMultiplyScalars16V, int16_t, int16_t, scalarShift, scaledProduct(v, s16v{} + scalar, shift))
ODX_ONE(odxMultiplyScalarf32V, float, float, scalar, product(v, splat(scalar)))
ODX_ONE(odxBitwiseNotu8V, uint8_t, uint8_t, nothing, ~v)
ODX_ONE(odxConvertDepthu8s16V, uint8_t, int16_t, shift, v << (uint16_t)shift)
ODX_ONE(odxConvertDepths16u8V, int16_t, uint8_t, shiftPolicy, narrowed(v >> (int16_t)shift, policy))

ODX_PER_CHANNEL(V)
// clang-format on

odxStatus odxAdds16_v2V(ODX_TWO_IMAGES(int16_t, int16_t, int16_t, policy))
{
    onTwo(ODX_KERNEL((auto a, auto b), policy == ONDRIX_OVERFLOW_WRAP ? a + b : addSat(a, b)), srcWidth, srcHeight,
          Rows{src1, src1Stride}, Rows{src2, src2Stride}, Rows{dst, dstStride});
    return ONDRIX_SUCCESS;
}

struct LookUp : Lanes<kLookedUp> {
    static constexpr bool kIsShort = kLookedUp == kBytes;
    ByteTable<256> table;

    ODX_MEMBER explicit LookUp(const uint8_t* bytes) : table(bytes) {}
    ODX_MEMBER void operator()(const uint8_t* in, uint8_t* out) const { lookUp(table, in, out); }
};
void odxTableLookupu8V(ODX_ONE_IMAGE(uint8_t, uint8_t, table))
{
    forVectors(LookUp(table), srcWidth, srcHeight, Rows{src, srcStride}, Rows{dst, dstStride});
}

void odxMagnitudes16V(ODX_TWO_IMAGES(int16_t, int16_t, int16_t, nothing))
{
    forVectors(Magnitudes(), srcWidth, srcHeight, Rows{src1, src1Stride}, Rows{src2, src2Stride},
               Rows{dst, dstStride});
}

void odxPhases16V(ODX_TWO_IMAGES(int16_t, int16_t, uint8_t, nothing))
{
    uint8_t bytes[4][64] = {};
    for (uint32_t k = 0; k <= kBoundaries; ++k) {
        bytes[0][k] = (uint8_t)kNumerators[k];
        bytes[1][k] = (uint8_t)(kNumerators[k] >> 8);
        bytes[2][k] = (uint8_t)kDenominators[k];
        bytes[3][k] = (uint8_t)(kDenominators[k] >> 8);
    }
    forVectors(Directions(bytes), srcWidth, srcHeight, Rows{src1, src1Stride}, Rows{src2, src2Stride},
               Rows{dst, dstStride});
}

struct AddSquares : Lanes<kBytes / 2> {
    uint16_t shift;

    ODX_MEMBER explicit AddSquares(uint32_t s) : shift((uint16_t)s) {}
    ODX_MEMBER void operator()(const uint8_t* in, const uint16_t* old, uint16_t* out) const
    {
        const u16v v = loadWiden(in);
        store(out, addSat(load<u16v>(old), v * v >> shift));
    }
};
void addSquaredV(ODX_ONE_IMAGE(uint8_t, uint16_t, shift))
{
    forVectors(AddSquares(shift), srcWidth, srcHeight, Rows{src, srcStride}, Rows{(const uint16_t*)dst, dstStride},
               Rows{dst, dstStride});
}

void addWeightedV(ODX_TWO_IMAGES(uint8_t, uint8_t, uint8_t, weights))
{
    onTwo(Weights{splat(alpha), splat(beta), splat(gamma)}, srcWidth, srcHeight, Rows{src1, src1Stride},
          Rows{src2, src2Stride}, Rows{dst, dstStride});
}

void odxAverageu8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                   float* average)
{
    *average = mean(src, srcWidth, srcHeight, srcStride);
}
void odxAverages32V(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                    float* average)
{
    *average = mean(src, srcWidth, srcHeight, srcStride);
}

void odxCrossProduct3x1f32V(const float* src1, const float* src2, float* dst)
{
    crossProduct(src1, src2, dst);
}

} // namespace odx::ODX_TARGET
