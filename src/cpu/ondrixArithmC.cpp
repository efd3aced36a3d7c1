// Element-wise arithmetic: each operation is a line with what it makes of a pixel.
#include "cpu/ondrixArithmC.h"

#include "cpu/elementwise.h"
#include "cpu/ondrixArithm.h"

#include <limits>

using namespace odx;
using namespace odx::arithm;

namespace
{

#define ODX_PIXEL_INLINE [[gnu::always_inline]] inline

template <class T>
constexpr auto kLow =
    static_cast<int32_t>(std::numeric_limits<T>::min()); // NOLINT(bugprone-signed-char-misuse, cert-str34-c)
template <class T>
constexpr int32_t kHigh = std::numeric_limits<T>::max();

template <class T>
ODX_PIXEL_INLINE T saturated(int32_t v)
{
    v = v < kLow<T> ? kLow<T> : v;
    return static_cast<T>(v > kHigh<T> ? kHigh<T> : v);
}

// Limits that nothing reaches wrap.
template <class T>
ODX_PIXEL_INLINE T stored(int32_t v, odxOverflow policy)
{
    const int32_t low = policy == ONDRIX_OVERFLOW_WRAP ? INT32_MIN : kLow<T>,
                  high = policy == ONDRIX_OVERFLOW_WRAP ? INT32_MAX : kHigh<T>;
    v = v < low ? low : v;
    return static_cast<T>(v > high ? high : v);
}

// Products of 16-bit numbers leave room for the half.
ODX_PIXEL_INLINE int32_t scaled(int32_t v, uint32_t shift)
{
    return (v + ((1 << shift) >> 1)) >> shift;
}

ODX_PIXEL_INLINE uint8_t difference(uint8_t a, uint8_t b)
{
    return static_cast<uint8_t>(a > b ? a - b : b - a);
}
ODX_PIXEL_INLINE int32_t difference(int32_t a, int32_t b)
{
    const uint32_t d = a > b ? uint32_t(a) - uint32_t(b) : uint32_t(b) - uint32_t(a);
    return static_cast<int32_t>(d > INT32_MAX ? INT32_MAX : d);
}
ODX_PIXEL_INLINE float difference(float a, float b)
{
    return __builtin_fabsf(a - b);
}

// Squares and their sum are exact, and a root is never as close to a half as doubles may be off.
ODX_PIXEL_INLINE int16_t magnitude(int32_t a, int32_t b)
{
    const double x = a, y = b;
    return saturated<int16_t>(static_cast<int32_t>(__builtin_sqrt(x * x + y * y) + 0.5));
}

ODX_PIXEL_INLINE uint8_t direction(int32_t a, int32_t b)
{
    const uint32_t x = static_cast<uint32_t>(a < 0 ? -a : a), y = static_cast<uint32_t>(b < 0 ? -b : b);
    const uint32_t low = x < y ? x : y, high = x < y ? y : x;
    // How many boundaries the quotient is above: bit by bit, the last by itself.
    uint32_t angle = 0;
    for (uint32_t step = kBoundaries / 2; step != 0; step /= 2) {
        const uint32_t k = angle + step - 1;
        angle += kDenominators[k] * low > kNumerators[k] * high ? step : 0;
    }
    angle += kDenominators[angle] * low > kNumerators[angle] * high ? 1 : 0;
    angle = y > x ? 64 - angle : angle;
    angle = a < 0 ? 128 - angle : angle;
    return static_cast<uint8_t>(b < 0 ? 256 - angle : angle);
}

template <class T, uint32_t channels>
void differenceToValues(const T* src, uint32_t width, uint32_t height, uint32_t srcStride, const T* value, T* dst,
                        uint32_t dstStride)
{
    using P = Pixel<T, channels>;
    const P number = *pixelsOf<T, channels>(value);
    forElements(
        [=](const P& v, P& out) {
            for (uint32_t c = 0; c < channels; ++c)
                out.channel[c] = difference(v.channel[c], number.channel[c]);
        },
        width, height, Rows{pixelsOf<T, channels>(src), srcStride}, Rows{pixelsOf<T, channels>(dst), dstStride});
}

template <class T, uint32_t channels>
void setPixels(T* dst, uint32_t width, uint32_t height, uint32_t dstStride, const T* value, const uint8_t* mask,
               uint32_t maskStride)
{
    using P = Pixel<T, channels>;
    const P number = *pixelsOf<T, channels>(value);
    const Rows pixels = {pixelsOf<T, channels>(dst), dstStride};
    if (mask == nullptr) {
        forElements([=](P& out) { out = number; }, width, height, pixels);
    } else {
        const auto set = [=](uint8_t marked, P& out) {
            for (uint32_t c = 0; c < channels; ++c)
                out.channel[c] = marked != 0 ? number.channel[c] : out.channel[c];
        };
        forElements(set, width, height, Rows{mask, maskStride}, pixels);
    }
}

template <class T>
float mean(const T* src, uint32_t width, uint32_t height, uint32_t srcStride)
{
    int64_t sum = 0;
    forElements([&](T v) { sum += v; }, width, height, Rows{src, srcStride});
    return static_cast<float>(static_cast<double>(sum) / (static_cast<double>(width) * height));
}

} // namespace

// clang-format off
#define ODX_TWO(name, S1, S2, D, takes, ...) \
    void name(ODX_TWO_IMAGES(S1, S2, D, takes)) \
    { \
        forElements([=](S1 a, S2 b, D& out) { out = static_cast<D>(__VA_ARGS__); }, srcWidth, srcHeight, \
                    Rows{src1, src1Stride}, Rows{src2, src2Stride}, Rows{dst, dstStride}); \
    }
#define ODX_ONE(name, S, D, takes, ...) \
    void name(ODX_ONE_IMAGE(S, D, takes)) \
    { \
        forElements([=](S v, D& out) { out = static_cast<D>(__VA_ARGS__); }, srcWidth, srcHeight, \
                    Rows{src, srcStride}, Rows{dst, dstStride}); \
    }
#define ODX_TO_VALUES(name, T, channels) \
    void name(ODX_ONE_IMAGE(T, T, values)) \
    { \
        differenceToValues<T, channels>(src, srcWidth, srcHeight, srcStride, value, dst, dstStride); \
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

extern "C" {

ODX_TWO(odxAddu8C, uint8_t, uint8_t, uint8_t, policy, stored<uint8_t>(a + b, policy))
ODX_TWO(odxAdds16C, int16_t, int16_t, int16_t, nothing, saturated<int16_t>(a + b))
ODX_TWO(odxAddf32C, float, float, float, nothing, a + b)
ODX_TWO(odxAddu8u16C, uint8_t, uint8_t, uint16_t, nothing, a + b)
ODX_TWO(odxAddu16u8u16C, uint16_t, uint8_t, uint16_t, nothing, saturated<uint16_t>(a + b))
ODX_TWO(odxSubtractu8C, uint8_t, uint8_t, uint8_t, policy, stored<uint8_t>(a - b, policy))
ODX_TWO(odxSubtracts16C, int16_t, int16_t, int16_t, policy, stored<int16_t>(a - b, policy))
ODX_TWO(odxSubtractu8s16C, uint8_t, uint8_t, int16_t, nothing, a - b)
ODX_TWO(odxAbsDiffu8C, uint8_t, uint8_t, uint8_t, nothing, difference(a, b))
ODX_TWO(odxAbsDiffs32C, int32_t, int32_t, int32_t, nothing, difference(a, b))
ODX_TWO(odxAbsDifff32C, float, float, float, nothing, difference(a, b))
ODX_TWO(odxImageDiffu8C, uint8_t, uint8_t, uint8_t, nothing, saturated<uint8_t>(a - b + 128))
ODX_TWO(odxImageDiffu8s8C, uint8_t, uint8_t, int8_t, nothing, saturated<int8_t>(a - b))
ODX_TWO(odxImageDiffu8f32C, uint8_t, uint8_t, float, nothing, a - b)
ODX_TWO(odxImageDiffs16C, int16_t, int16_t, int16_t, nothing, saturated<int16_t>(a - b))
ODX_TWO(odxImageDifff32C, float, float, float, nothing, a - b)
ODX_TWO(odxElementMultiplyu8C, uint8_t, uint8_t, uint8_t, shift, saturated<uint8_t>(scaled(a * b, shift)))
ODX_TWO(odxElementMultiplys16C, int16_t, int16_t, int16_t, shift, saturated<int16_t>(scaled(a * b, shift)))
ODX_TWO(odxElementMultiplyu8u16C, uint8_t, uint8_t, uint16_t, shift, scaled(a * b, shift))
ODX_TWO(odxElementMultiplyu8s16C, uint8_t, uint8_t, int16_t, shift, saturated<int16_t>(scaled(a * b, shift)))
ODX_TWO(odxElementMultiplyf32C, float, float, float, nothing, a * b)
ODX_TWO(odxBitwiseAndu8C, uint8_t, uint8_t, uint8_t, nothing, a & b)
ODX_TWO(odxBitwiseOru8C, uint8_t, uint8_t, uint8_t, nothing, a | b)
ODX_TWO(odxBitwiseXoru8C, uint8_t, uint8_t, uint8_t, nothing, a ^ b)
ODX_TWO(odxBitwiseOrs32C, int32_t, int32_t, int32_t, nothing, a | b)
ODX_TWO(odxMagnitudes16C, int16_t, int16_t, int16_t, nothing, magnitude(a, b))
ODX_TWO(odxPhases16C, int16_t, int16_t, uint8_t, nothing, direction(a, b))

ODX_ONE(odxAbsDiffVu8C, uint8_t, uint8_t, value, difference(v, value))
ODX_ONE(odxAbsDiffVs32C, int32_t, int32_t, value, difference(v, value))
ODX_ONE(odxAbsDiffVf32C, float, float, value, difference(v, value))
ODX_ONE(odxAddScalars16C, int16_t, int16_t, scalar, saturated<int16_t>(v + scalar))
ODX_ONE(odxAddScalarf32C, float, float, scalar, v + scalar)
ODX_ONE(odxMultiplyScalars16C, int16_t, int16_t, scalarShift, saturated<int16_t>(scaled(v * scalar, shift)))
ODX_ONE(odxMultiplyScalarf32C, float, float, scalar, v * scalar)
ODX_ONE(odxBitwiseNotu8C, uint8_t, uint8_t, nothing, ~v)
ODX_ONE(odxConvertDepthu8s16C, uint8_t, int16_t, shift, v << shift)
ODX_ONE(odxConvertDepths16u8C, int16_t, uint8_t, shiftPolicy, stored<uint8_t>(v >> shift, policy))

ODX_PER_CHANNEL(C)
// clang-format on

odxStatus odxAdds16_v2C(ODX_TWO_IMAGES(int16_t, int16_t, int16_t, policy))
{
    forElements([=](int16_t a, int16_t b, int16_t& out) { out = stored<int16_t>(a + b, policy); }, srcWidth,
                srcHeight, Rows{src1, src1Stride}, Rows{src2, src2Stride}, Rows{dst, dstStride});
    return ONDRIX_SUCCESS;
}

void addSquaredC(ODX_ONE_IMAGE(uint8_t, uint16_t, shift))
{
    forElements([=](uint8_t v, uint16_t& sum) { sum = saturated<uint16_t>(sum + ((v * v) >> shift)); }, srcWidth,
                srcHeight, Rows{src, srcStride}, Rows{dst, dstStride});
}
void odxAddSquaredu8u16C(ODX_ONE_IMAGE(uint8_t, uint16_t, shift))
{
    addSquared_(src, srcWidth, srcHeight, srcStride, shift, dst, dstStride);
}

void addWeightedC(ODX_TWO_IMAGES(uint8_t, uint8_t, uint8_t, weights))
{
    // The sum of a number up to 255 and this one is rounded to an integer, halves to even.
    constexpr float kRounds = 12582912;
    forElements(
        [=](uint8_t a, uint8_t b, uint8_t& out) {
            float t = (static_cast<float>(a) * alpha + static_cast<float>(b) * beta) + gamma;
            t = t > 0 ? t : 0;
            t = t < 255 ? t : 255;
            out = static_cast<uint8_t>((t + kRounds) - kRounds);
        },
        srcWidth, srcHeight, Rows{src1, src1Stride}, Rows{src2, src2Stride}, Rows{dst, dstStride});
}
void odxAddWeightedu8C(ODX_TWO_IMAGES(uint8_t, uint8_t, uint8_t, weights))
{
    addWeighted_(src1, srcWidth, srcHeight, src1Stride, src2, src2Stride, alpha, beta, gamma, dst, dstStride);
}

void odxTableLookupu8C(ODX_ONE_IMAGE(uint8_t, uint8_t, table))
{
    for (uint32_t y = 0; y < srcHeight; ++y) {
        const uint8_t* const in = rowOf(src, srcStride, y);
        uint8_t* const out = rowOf(dst, dstStride, y);
        for (size_t x = 0; x < srcWidth; ++x)
            out[x] = table[in[x]];
    }
}

void odxAverageu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                   float* average)
{
    *average = mean(src, srcWidth, srcHeight, srcStride);
}
void odxAverages32C(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                    float* average)
{
    *average = mean(src, srcWidth, srcHeight, srcStride);
}

void odxCrossProduct3x1f32C(const float* src1, const float* src2, float* dst)
{
    crossProduct(src1, src2, dst);
}
}
