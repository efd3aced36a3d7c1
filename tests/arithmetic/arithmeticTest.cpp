// The operations against their definitions, which are those of tests/operations/arithmetic.def: all pairs of
// bytes, and numbers that are extreme or special. The other columns are held to the reference by the differential
// test.
#include "cpu/ondrixArithm.h"
#include "ondrix.h"
#include "support/referenceTest.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string.h>
#include <tuple>
#include <vector>

// Definitions compute in doubles what floats become.
#pragma GCC diagnostic ignored "-Wdouble-promotion"

namespace odx::test
{

namespace
{

constexpr uint32_t kSide = 256;

// ---- arithmetic without limits ----

template <class T>
using Wide = std::conditional_t<std::is_floating_point_v<T>, double, int64_t>;

template <class T>
int64_t clipped(int64_t v)
{
    return std::min<int64_t>(std::max<int64_t>(v, std::numeric_limits<T>::min()), std::numeric_limits<T>::max());
}
template <class T>
int64_t stored(int64_t v, odxOverflow policy)
{
    return policy == ONDRIX_OVERFLOW_SATURATE ? clipped<T>(v) : static_cast<T>(v);
}
int64_t scaled(int64_t v, unsigned shift)
{
    return static_cast<int64_t>(std::floor(double(v) / (1 << shift) + (shift == 0 ? 0 : 0.5)));
}
int64_t weighted(int64_t a, int64_t b, float alpha, float beta, float gamma)
{
    const float x = float(a) * alpha, y = float(b) * beta, sum = x + y, t = sum + gamma;
    return !(t > 0) ? 0 : t >= 255 ? 255 : std::lrint(t);
}

// ---- numbers ----

// All bytes; else noise, of which each third number is an extreme or a special one.
template <class T>
std::vector<T> numbers(uint32_t seed, bool alongRows)
{
    // clang-format off
    constexpr double kSpecial[] = {
        0, -0.0, 1, -1, 127, 128, 181, 32767, -32768, 65535, 2147483647, -2147483648.0, 16777217, 0.1,
        HUGE_VAL, -HUGE_VAL, __builtin_nan(""), 0x1p-149, -0x1.8p-140, 0x1p-126, -0x1.000002p-126,
        0x1.000002p-100, 0x1.fffffep127, 0x1.000002p-63, -0x1.fffffep-64, 0x1p-60};
    // clang-format on
    constexpr size_t kKinds = std::size(kSpecial);
    std::vector<T> all;
    uint32_t random = seed;
    for (uint32_t i = 0; i < kSide * kSide; ++i) {
        random = random * 1664525 + 1013904223;
        const uint32_t word = random ^ random >> 15;
        if (sizeof(T) == 1) {
            all.push_back(static_cast<T>(alongRows ? i % kSide : i / kSide));
        } else if (i % 3 == 0) {
            const double v = kSpecial[(alongRows ? i / 3 : i / 3 / kKinds) % kKinds];
            if constexpr (std::is_floating_point_v<T>) {
                all.push_back(static_cast<T>(v));
            } else {
                all.push_back(static_cast<T>(std::abs(v) < 1e10 ? int64_t(v) : 77));
            }
        } else {
            T v;
            memcpy(&v, &word, sizeof v);
            all.push_back(v);
        }
    }
    return all;
}

// What an operation takes beyond images, and its names.
std::vector<std::tuple<unsigned>> shifts(unsigned most)
{
    std::vector<std::tuple<unsigned>> all;
    for (unsigned i = 0; i <= most; ++i)
        all.push_back(i);
    return all;
}
template <class... A, class... B>
auto product(const std::vector<std::tuple<A...>>& a, const std::vector<std::tuple<B...>>& b)
{
    std::vector<std::tuple<A..., B...>> all;
    for (const auto& x : a) {
        for (const auto& y : b)
            all.push_back(std::tuple_cat(x, y));
    }
    return all;
}
const std::vector<std::tuple<odxOverflow>> kPolicies = {ONDRIX_OVERFLOW_WRAP, ONDRIX_OVERFLOW_SATURATE};
const std::vector<std::tuple<float, float, float>> kWeights = {{0.5f, 0.5f, 0},    {0.5f, 0, 0.5f},  {1, -1, 128},
                                                               {0.3f, 0.7f, 0.1f}, {-3, 2, 1e-3f},   {NAN, 1, 0},
                                                               {1, 1, INFINITY},   {1, 0x1p-149f, 0}};
template <class T>
std::vector<std::tuple<T>> scalars()
{
    return {0,           1,      T(-1), T(100), std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max(),
            T(0x1p-100), T(-0.0)};
}
uint8_t tableOf7[256];
constexpr uint16_t kBefore = 60000;

#define TAKES_nothing(T)
#define TAKES_policy(T) , odxOverflow policy
#define TAKES_shift(T) , unsigned shift
#define TAKES_depth(T) , unsigned shift
#define TAKES_depthPolicy(T) , unsigned shift, odxOverflow policy
#define TAKES_weights(T) , float alpha, float beta, float gamma
#define TAKES_value(T) , Wide<T> value
#define TAKES_valueShift(T) , Wide<T> value, unsigned shift
#define TAKES_table(T) , const uint8_t* table
#define TAKEN_nothing(T) std::vector<std::tuple<>>(1)
#define TAKEN_policy(T) kPolicies
#define TAKEN_shift(T) shifts(15)
#define TAKEN_depth(T) shifts(7)
#define TAKEN_depthPolicy(T) product(shifts(7), kPolicies)
#define TAKEN_weights(T) kWeights
#define TAKEN_value(T) scalars<T>()
#define TAKEN_valueShift(T) product(scalars<T>(), shifts(15))
#define TAKEN_table(T)                      \
    std::vector<std::tuple<const uint8_t*>> \
    {                                       \
        tableOf7                            \
    }

template <class D>
void expectPixel(Wide<D> expected, D pixel, const char* name, double a, double b)
{
    if constexpr (std::is_floating_point_v<D>) {
        const D rounded = static_cast<D>(expected);
        if (std::isnan(rounded) && std::isnan(pixel)) return;
        ASSERT_TRUE(rounded == pixel && std::signbit(rounded) == std::signbit(pixel))
            << name << " of " << a << " and " << b << ": " << pixel;
    } else {
        ASSERT_EQ(expected, pixel) << name << " of " << a << " and " << b;
    }
}

// `call` an operation with what it takes and a destination, for each set of what it takes, on these sources.
template <class D, class Sets, class Call, class Definition, class... S>
void expectPixels(const char* name, const Sets& sets, Call call, Definition definition,
                  const std::vector<S>&... src)
{
    for (const auto& taken : sets) {
        std::vector<D> dst(kSide * kSide, D(kBefore));
        std::apply([&](auto... t) { call(dst.data(), t...); }, taken);
        for (size_t i = 0; i < dst.size() && !testing::Test::HasFatalFailure(); ++i) {
            const auto expected = std::apply([&](auto... t) { return definition(src[i]..., t...); }, taken);
            const double pixels[] = {double(src[i])..., 0};
            expectPixel<D>(static_cast<Wide<D>>(expected), dst[i], name, pixels[0], pixels[1]);
        }
    }
}
template <class S1, class S2, class D, class Operation, class Sets, class Definition>
void expectTwo(const char* name, Operation operation, const Sets& sets, Definition definition)
{
    const auto a = numbers<S1>(1, true);
    const auto b = numbers<S2>(2, false);
    const auto call = [&](D* dst, auto... t) { operation(a.data(), kSide, kSide, 0, b.data(), 0, t..., dst, 0); };
    expectPixels<D>(name, sets, call, definition, a, b);
}
template <class S, class D, class Operation, class Sets, class Definition>
void expectOne(const char* name, Operation operation, const Sets& sets, Definition definition)
{
    const auto src = numbers<S>(1, true);
    const auto call = [&](D* dst, auto... t) { operation(src.data(), kSide, kSide, 0, t..., dst, 0); };
    expectPixels<D>(name, sets, call, definition, src);
}

// Each channel, and nothing beside the pixels.
template <class T, uint32_t channels, class Operation>
void expectToValues(const char* name, Operation operation)
{
    const auto src = numbers<T>(1, true);
    const T value[] = {100, T(-7), 3, T(-100)};
    constexpr uint32_t kWidth = 5, kHeight = 3, kStride = 6;
    Wide<T> largest = std::numeric_limits<T>::max();
    if constexpr (std::is_floating_point_v<T>) largest = HUGE_VAL;
    T dst[channels * kStride * kHeight] = {};
    operation(src.data(), kWidth, kHeight, channels * 7 * sizeof(T), value, dst, channels * kStride * sizeof(T));
    for (uint32_t i = 0; i < channels * kStride * kHeight; ++i) {
        const uint32_t x = i % (channels * kStride), y = i / (channels * kStride);
        const T v = src[channels * 7 * y + x];
        const Wide<T> difference = std::abs(Wide<T>(v) - Wide<T>(value[x % channels]));
        const bool inside = x < channels * kWidth;
        expectPixel<T>(!inside ? 0 : std::min<Wide<T>>(difference, largest), dst[i], name, double(v), double(x));
    }
}

template <class T>
auto valueArgument(const T* value, void (*)(T*, unsigned, unsigned, unsigned, T, const uint8_t*, unsigned))
{
    return *value;
}
template <class T>
auto valueArgument(const T* value, void (*)(T*, unsigned, unsigned, unsigned, const T*, const uint8_t*, unsigned))
{
    return value;
}
template <class T, uint32_t channels, class Operation>
void expectSet(const char* name, Operation operation)
{
    constexpr uint32_t kWidth = 5, kHeight = 3, kPixels = kWidth * kHeight;
    const T value[] = {1, 2, 3, 4};
    const uint8_t mask[kPixels] = {0, 1, 0, 255, 2, 0, 0, 0, 128};
    for (const uint8_t* given : {mask, static_cast<const uint8_t*>(nullptr)}) {
        T dst[channels * (kPixels + 1)] = {};
        operation(dst, kWidth, kHeight, 0, valueArgument<T>(value, operation), given, 0);
        for (uint32_t i = 0; i < channels * (kPixels + 1); ++i) {
            const uint32_t pixel = i / channels;
            const bool set = pixel < kPixels && (given == nullptr || mask[pixel] != 0);
            EXPECT_EQ(set ? value[i % channels] : T(0), dst[i]) << name << " at " << i;
        }
    }
}

using Arithmetic = odx::test::ReferenceTest;

} // namespace

TEST_F(Arithmetic, IsWhatIsDefined)
{
    for (uint32_t i = 0; i < 256; ++i)
        tableOf7[i] = static_cast<uint8_t>(7 * i + 3);
#define TWO(name, S1, S2, D, takes, ...)                 \
    expectTwo<S1, S2, D>(#name, name, TAKEN_##takes(S1), \
                         [](Wide<S1> a, Wide<S2> b TAKES_##takes(S1)) { return __VA_ARGS__; });
#define ONE(name, S, D, takes, ...) \
    expectOne<S, D>(#name, name, TAKEN_##takes(S), [](Wide<S> v TAKES_##takes(S)) { return __VA_ARGS__; });
#define TO_VALUES(name, T, channels) expectToValues<T, channels>(#name, name);
#define SET(name, T, channels) expectSet<T, channels>(#name, name);
#include "operations/arithmetic.def"
    const uint8_t a[] = {0, 9, 200}, b[] = {255, 5, 10};
    uint8_t difference[3];
    odxImageDiffu8(a, 3, 1, b, difference);
    EXPECT_EQ((std::vector<uint8_t>{0, 132, 255}), std::vector<uint8_t>(difference, difference + 3));
}

// Quotients next to the boundaries: the fractions themselves are below, their right neighbours among those with
// such denominators above.
TEST_F(Arithmetic, DirectionsTurnAtTheirBoundaries)
{
    std::vector<int16_t> x, y;
    for (uint32_t k = 0; k < arithm::kBoundaries; ++k) {
        const int p = arithm::kNumerators[k], q = arithm::kDenominators[k];
        for (int denominator = 1; denominator <= 32767; ++denominator) {
            const int numerator = int(int64_t{p} * denominator / q);
            if (denominator % 97 != 0 && int64_t{p} * denominator % q > 1) continue;
            for (const int n : {numerator, numerator + 1}) {
                for (const auto& [u, v] :
                     {std::pair{denominator, n}, {n, denominator}, {-denominator, -n}, {n, -denominator}}) {
                    x.push_back(static_cast<int16_t>(u));
                    y.push_back(static_cast<int16_t>(v));
                }
            }
        }
    }
    std::vector<uint8_t> direction(x.size());
    odxPhases16(x.data(), static_cast<unsigned>(x.size()), 1, 0, y.data(), 0, direction.data(), 0);
    for (size_t i = 0; i < x.size(); ++i)
        ASSERT_EQ(std::llround(std::atan2(double(y[i]), double(x[i])) * 128 / M_PI) & 255, direction[i])
            << x[i] << ", " << y[i];
}

TEST_F(Arithmetic, ChannelsChangePlaces)
{
    constexpr uint32_t kWidth = 70, kHeight = 3;
    for (const uint32_t channels : {2u, 3u, 4u, 7u, 16u}) {
        std::vector<uint8_t> pixels(channels * kWidth * kHeight), planes(pixels.size()), again(pixels.size());
        for (size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = static_cast<uint8_t>(i * 37 >> 2);
        odxDeinterleaveu8(pixels.data(), kWidth, kHeight, 0, channels, planes.data(), 0);
        for (size_t i = 0; i < pixels.size(); ++i)
            ASSERT_EQ(pixels[i], planes[i % channels * kWidth * kHeight + i / channels]) << channels << ", " << i;
        odxInterleaveu8(planes.data(), kWidth, kHeight, 0, channels, again.data(), 0);
        EXPECT_EQ(pixels, again);
        if (channels > 4) continue;
        const auto plane = [&](size_t c) { return &planes[c * kWidth * kHeight]; };
        std::fill(again.begin(), again.end(), uint8_t{0});
        if (channels == 2) odxChannelCombine2Planesu8(plane(0), kWidth, kHeight, 0, plane(1), 0, again.data(), 0);
        if (channels == 3)
            odxChannelCombine3Planesu8(plane(0), kWidth, kHeight, 0, plane(1), 0, plane(2), 0, again.data(), 0);
        if (channels == 4)
            odxChannelCombine4Planesu8(plane(0), kWidth, kHeight, 0, plane(1), 0, plane(2), 0, plane(3), 0,
                                       again.data(), 0);
        EXPECT_EQ(pixels, again);
        // The position of each channel, by the number of channels; 9 where there is none.
        static constexpr uint32_t kPlaces[][11] = {{0, 1, 2, 3, 0, 1, 2, 3, 9, 0, 1},
                                                   {0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2},
                                                   {0, 1, 2, 3, 0, 1, 2, 3, 9, 9, 9}};
        const uint32_t(&places)[11] = kPlaces[channels - 2];
        for (uint32_t channel = 0; channel < 11; ++channel) {
            if (places[channel] >= channels) continue;
            std::vector<uint8_t> one(kWidth * kHeight);
            odxChannelExtractu8(pixels.data(), kWidth, kHeight, 0, channels, static_cast<odxChannelType>(channel),
                                one.data(), 0);
            EXPECT_EQ(0, memcmp(plane(places[channel]), one.data(), one.size())) << channel << " of " << channels;
        }
    }
}

TEST_F(Arithmetic, MeansAndProductsAreExact)
{
    // Sums that neither 32 bits nor the mantissa of a float hold.
    std::vector<uint8_t> white(5000 * 4000, 255);
    white[7] = 254;
    float mean = 0;
    odxAverageu8(white.data(), 5000, 4000, 0, &mean);
    EXPECT_EQ(static_cast<float>(255 - 1 / 2e7), mean);
    std::vector<int32_t> wide(300 * 300, INT32_MIN);
    odxAverages32(wide.data(), 300, 300, 0, &mean);
    EXPECT_EQ(-2147483648.0f, mean);
    for (size_t i = 0; i < wide.size(); i += 2)
        wide[i] = INT32_MAX;
    odxAverages32(wide.data(), 299, 300, 1200, &mean);
    EXPECT_EQ(static_cast<float>((150.0 * INT32_MAX + 149.0 * INT32_MIN) / 299), mean);
    float a[] = {1, 2, 3};
    const float b[] = {4, -5, 6};
    odxCrossProduct3x1f32(a, b, a);
    EXPECT_EQ(27, a[0]);
    EXPECT_EQ(6, a[1]);
    EXPECT_EQ(-13, a[2]);
}

} // namespace odx::test
