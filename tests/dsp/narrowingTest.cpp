// When a call may leave for the target that was selected: the limits of the remote targets (columns 2, 4, 5 and
// 6), and of the GPU (column 3), as the trace of the call shows.
#include "frame/log.h"
#include "frame/operations.h"
#include "ondrix.h"
#include "support/logCapture.h"

#include <gtest/gtest.h>

#include <functional>

using namespace odx;
using namespace odx::test;

namespace
{

struct Arguments {
    uint32_t width, height, srcStride, dstStride;
    uintptr_t src, dst; // never followed: the tables are empty

    const uint8_t* from() const { return reinterpret_cast<const uint8_t*>(src); }
    uint8_t* to() const { return reinterpret_cast<uint8_t*>(dst); }
};
constexpr Arguments kFits = {192, 144, 1024, 1024, 0x10000, 0x80000};

// What must divide each of the arguments.
struct Multiples {
    uint32_t width, srcStride, dstStride, src, dst;
};
constexpr Multiples kAny = {1, 1, 1, 1, 1};

struct Limits {
    const char* operation;
    uint32_t slot;
    std::function<void(const Arguments&)> call;
    Multiples remote, gpu;
    uint32_t leastHeight = 1;
    uint32_t pixelSize = 1; // what the least amount of work counts a pixel as
};

// Runs the call with the column selected, and returns the one that it takes.
std::string taken(const Limits& limits, uint32_t column, const Arguments& arguments)
{
    LogCapture log;
    odxImplTable[limits.slot] = column;
    libLogPrint = 1;
    limits.call(arguments);
    libLogPrint = 0;
    odxImplTable[limits.slot] = 0;
    const std::vector<LogLine> lines = log.take();
    const std::string prefix = std::string(limits.operation) + "_";
    return lines.empty() || lines[0].text.rfind(prefix, 0) != 0 ? "nothing" : lines[0].text.substr(prefix.size());
}

// The arguments with one of them a little larger than fits, and whether they still do.
struct Perturbed {
    const char* what;
    Arguments arguments;
    bool fits;
};
std::vector<Perturbed> perturbed(const Multiples& multiples)
{
    std::vector<Perturbed> all;
    for (const uint32_t step : {1u, 2u, 4u, 8u, 16u}) {
        Arguments a = kFits;
        a.width += step;
        all.push_back({"width", a, step % multiples.width == 0});
        a = kFits;
        a.srcStride += step;
        all.push_back({"source stride", a, step % multiples.srcStride == 0});
        a = kFits;
        a.dstStride += step;
        all.push_back({"destination stride", a, step % multiples.dstStride == 0});
        a = kFits;
        a.src += step;
        all.push_back({"source", a, step % multiples.src == 0});
        a = kFits;
        a.dst += step;
        all.push_back({"destination", a, step % multiples.dst == 0});
    }
    return all;
}

template <class T>
T* as(uintptr_t address)
{
    return reinterpret_cast<T*>(address);
}

std::vector<Limits> allLimits()
{
    using A = const Arguments&;
    constexpr Multiples kGaussian = {4, 4, 4, 4, 4}, kPackedGaussian = {4, 1, 1, 4, 4},
                        kEvenWidth = {2, 1, 1, 1, 1};
    constexpr Multiples kMedian = {8, 8, 8, 8, 8}, kPackedMedian = {8, 1, 1, 8, 8}, kMedianGpu = {8, 1, 1, 16, 16};
    constexpr Multiples kColor = {1, 8, 8, 8, 8}, kPackedColor = {1, 1, 1, 8, 8};
    constexpr Multiples kHarris = {8, 4, 1, 4, 1}, kHarrisGpu = {1, 8, 1, 16, 16};
    constexpr Multiples kFast = {1, 8, 1, 8, 1}, kFastGpu = {1, 1, 1, 16, 16};
    constexpr auto kBorder = ONDRIX_BORDER_REPLICATE;
    // For the other planes of an image, so that one at a time does not fit.
    static const uint8_t* const fits = kFits.from();
#define ODX_LIMITS(name, slot, call, ...)                \
    Limits                                               \
    {                                                    \
#name, op_##slot, [](A a) { call; }, __VA_ARGS__ \
    }
// Operations that only ask for work.
#define ODX_ANYTHING(name, slot, T, ...)                        \
    ODX_LIMITS(                                                 \
        name, slot,                                             \
        {                                                       \
            T* const dst = as<T>(a.dst);                        \
            name(as<T>(a.src), a.width, a.height, __VA_ARGS__); \
        },                                                      \
        kAny, kAny)
    return {
        ODX_LIMITS(odxFilterGaussian3x3u8, odxFilterGaussian3x3u8,
                   odxFilterGaussian3x3u8(a.from(), a.width, a.height, a.to(), 0), kPackedGaussian, kEvenWidth, 3),
        ODX_LIMITS(odxFilterGaussian3x3u8_v2, odxFilterGaussian3x3u8,
                   odxFilterGaussian3x3u8_v2(a.from(), a.width, a.height, a.srcStride, a.to(), a.dstStride, 0),
                   kGaussian, kEvenWidth, 3),
        ODX_LIMITS(
            odxFilterGaussian3x3u8_v3, odxFilterGaussian3x3u8_v3,
            odxFilterGaussian3x3u8_v3(a.from(), a.width, a.height, a.srcStride, a.to(), a.dstStride, kBorder, 0),
            kGaussian, kEvenWidth, 3),
        ODX_LIMITS(odxFilterMedian3x3u8, odxFilterMedian3x3u8,
                   odxFilterMedian3x3u8(a.from(), a.width, a.height, a.to()), kPackedMedian, kMedianGpu, 4),
        ODX_LIMITS(odxFilterMedian3x3u8_v2, odxFilterMedian3x3u8,
                   odxFilterMedian3x3u8_v2(a.from(), a.width, a.height, a.srcStride, a.to(), a.dstStride), kMedian,
                   kMedianGpu, 4),
        ODX_LIMITS(
            odxFilterMedian3x3u8_v3, odxFilterMedian3x3u8_v3,
            odxFilterMedian3x3u8_v3(a.from(), a.width, a.height, a.srcStride, a.to(), a.dstStride, kBorder, 0),
            kMedian, kMedianGpu, 4),
        ODX_ANYTHING(odxFilterMedianMxNs16, odxFilterMedianMxNs16, int16_t, a.srcStride, 3, 3, dst, a.dstStride),
        ODX_ANYTHING(odxFilterGaussian5x5u8, odxFilterGaussian5x5u8, uint8_t, dst, 0),
        ODX_ANYTHING(odxFilterGaussian5x5u8_v2, odxFilterGaussian5x5u8, uint8_t, a.srcStride, dst, a.dstStride, 0),
        ODX_ANYTHING(odxFilterGaussian11x11u8, odxFilterGaussian11x11u8, uint8_t, dst, 0),
        ODX_ANYTHING(odxFilterGaussian11x11u8_v2, odxFilterGaussian11x11u8, uint8_t, a.srcStride, dst, a.dstStride,
                     0),
        ODX_ANYTHING(odxFilterGaussian5x5s16, odxFilterGaussian5x5s16, int16_t, dst, 0),
        ODX_ANYTHING(odxFilterGaussian5x5s16_v2, odxFilterGaussian5x5s16, int16_t, a.srcStride, dst, a.dstStride,
                     0),
        ODX_ANYTHING(odxFilterGaussian5x5s32, odxFilterGaussian5x5s32, int32_t, dst, 0),
        ODX_ANYTHING(odxFilterGaussian5x5s32_v2, odxFilterGaussian5x5s32, int32_t, a.srcStride, dst, a.dstStride,
                     0),
        ODX_ANYTHING(odxBoxFilter3x3u8, odxBoxFilter3x3u8, uint8_t, a.srcStride, dst, a.dstStride),
        ODX_ANYTHING(odxBoxFilter3x3u8_v2, odxBoxFilter3x3u8_v2, uint8_t, a.srcStride, dst, a.dstStride, kBorder,
                     0),
        ODX_ANYTHING(odxBoxFilter5x5u8, odxBoxFilter5x5u8, uint8_t, a.srcStride, dst, a.dstStride),
        ODX_ANYTHING(odxBoxFilter11x11u8, odxBoxFilter11x11u8, uint8_t, a.srcStride, dst, a.dstStride),
        ODX_LIMITS(odxBoxFilterNxNf32, odxBoxFilterNxNf32,
                   odxBoxFilterNxNf32(as<const float>(a.src), a.width, a.height, a.srcStride, 3, as<float>(a.dst),
                                      a.dstStride),
                   {1, 8, 1, 8, 1}, kAny, 1, 4),
        ODX_LIMITS(odxColorRGB888ToGrayu8, odxColorRGB888ToGrayu8,
                   odxColorRGB888ToGrayu8(a.from(), a.width, a.height, a.srcStride, a.to(), a.dstStride), kColor,
                   kMedianGpu),
        ODX_LIMITS(odxColorRGB888ToYCbCr420PseudoPlanaru8, odxColorRGB888ToYCbCr420PseudoPlanaru8,
                   odxColorRGB888ToYCbCr420PseudoPlanaru8(a.from(), a.width, a.height, a.srcStride, a.to(), a.to(),
                                                          a.dstStride, a.dstStride),
                   kColor, kMedianGpu),
        ODX_LIMITS(odxColorYCbCr420PlanarToRGB888u8, odxColorYCbCr420PlanarToRGB888u8,
                   odxColorYCbCr420PlanarToRGB888u8(a.from(), fits, fits, a.width, a.height, a.srcStride, 1024,
                                                    1024, a.to(), a.dstStride),
                   kColor, kMedianGpu),
        ODX_LIMITS(odxColorYCbCr420PlanarToRGB888u8, odxColorYCbCr420PlanarToRGB888u8,
                   odxColorYCbCr420PlanarToRGB888u8(fits, a.from(), fits, a.width, a.height, 1024, a.srcStride,
                                                    1024, a.to(), a.dstStride),
                   kColor, kMedianGpu),
        ODX_LIMITS(odxColorYCbCr420PlanarToRGB888u8, odxColorYCbCr420PlanarToRGB888u8,
                   odxColorYCbCr420PlanarToRGB888u8(fits, fits, a.from(), a.width, a.height, 1024, 1024,
                                                    a.srcStride, a.to(), a.dstStride),
                   kColor, kMedianGpu),
        ODX_LIMITS(odxColorYCbCr422PseudoPlanarToRGB565u8, odxColorYCbCr422PseudoPlanarToRGB565u8,
                   odxColorYCbCr422PseudoPlanarToRGB565u8(a.from(), fits, a.width, a.height, a.srcStride, 1024,
                                                          a.to(), a.dstStride),
                   kColor, kMedianGpu),
        ODX_LIMITS(odxColorYCbCr422PseudoPlanarToRGB565u8, odxColorYCbCr422PseudoPlanarToRGB565u8,
                   odxColorYCbCr422PseudoPlanarToRGB565u8(fits, a.from(), a.width, a.height, 1024, a.srcStride,
                                                          a.to(), a.dstStride),
                   kColor, kMedianGpu),
        ODX_LIMITS(odxColorYCrCb420PseudoPlanarToRGB8888u8, odxColorYCrCb420PseudoPlanarToRGB8888u8,
                   odxColorYCrCb420PseudoPlanarToRGB8888u8(a.from(), a.width, a.height, a.srcStride, 1024, a.to(),
                                                           a.dstStride),
                   kColor, kMedianGpu),
        ODX_LIMITS(odxColorYCrCb420PseudoPlanarToRGB8888u8, odxColorYCrCb420PseudoPlanarToRGB8888u8,
                   odxColorYCrCb420PseudoPlanarToRGB8888u8(a.from(), a.width, a.height, 1024, a.srcStride, a.to(),
                                                           a.dstStride),
                   kColor, kMedianGpu),
        ODX_LIMITS(odxColorYUV420toRGB8888u8, odxColorYUV420toRGB8888u8,
                   odxColorYUV420toRGB8888u8(a.from(), a.width, a.height, a.to()), kPackedColor, kMedianGpu),
        ODX_LIMITS(odxCornerHarrisu8, odxCornerHarrisu8,
                   odxCornerHarrisu8(a.from(), a.width, a.height, a.srcStride, 0, as<uint32_t>(a.dst), 9,
                                     as<uint32_t>(a.dst), 0),
                   kHarris, kHarrisGpu),
        ODX_LIMITS(odxCornerHarrisInMasku8, odxCornerHarrisInMasku8,
                   odxCornerHarrisInMasku8(a.from(), a.width, a.height, a.srcStride, 0, as<uint32_t>(a.dst), 9,
                                           as<uint32_t>(a.dst), 0, a.from(), a.width, a.height),
                   kHarris, kHarrisGpu),
        ODX_LIMITS(odxCornerHarrisAdaptiveu8, odxCornerHarrisAdaptiveu8,
                   odxCornerHarrisAdaptiveu8(a.from(), a.width, a.height, a.srcStride, 0, as<uint32_t>(a.dst), 9,
                                             as<uint32_t>(a.dst), 0),
                   kHarris, kHarrisGpu),
        ODX_LIMITS(odxCornerHarrisScoreu8, odxCornerHarrisScoreu8,
                   odxCornerHarrisScoreu8(a.from(), a.width, a.height, a.srcStride, 0, as<uint32_t>(kFits.dst),
                                          as<int32_t>(a.dst), 9, as<uint32_t>(a.dst), 0),
                   kHarris, kHarrisGpu),
        ODX_LIMITS(odxGoodFeatureToTracku8, odxGoodFeatureToTracku8,
                   odxGoodFeatureToTracku8(a.from(), a.width, a.height, a.srcStride, 0, as<uint32_t>(a.dst), 9,
                                           as<uint32_t>(a.dst), 0, 0),
                   kHarris, kHarrisGpu),
        ODX_LIMITS(odxLocalHarrisMaxu8, odxLocalHarrisMaxu8,
                   odxLocalHarrisMaxu8(a.from(), a.width, a.height, a.srcStride, 9, 9, 9, as<uint32_t>(a.dst),
                                       as<uint32_t>(a.dst), as<int32_t>(a.dst)),
                   kHarris, kAny),
        ODX_LIMITS(odxCornerRefineSubPixu8, odxCornerRefineSubPixu8,
                   odxCornerRefineSubPixu8(a.from(), a.width, a.height, a.srcStride, as<float>(a.dst), 9, 9, 9, 0),
                   kHarris, kAny),
        ODX_LIMITS(odxFindMultipleMaximau8, odxFindMultipleMaximau8,
                   odxFindMultipleMaximau8(a.from(), a.width, a.height, a.srcStride, as<float>(a.dst),
                                           as<float>(a.dst), 9, 9, 0, 0, as<float>(a.dst), as<uint32_t>(a.dst)),
                   kHarris, kAny),
        ODX_LIMITS(odxCornerFast9u8, odxCornerFast9u8,
                   odxCornerFast9u8(a.from(), a.width, a.height, a.srcStride, 9, 0, as<uint32_t>(a.dst), 9,
                                    as<uint32_t>(a.dst)),
                   kFast, kFastGpu),
    };
#undef ODX_ANYTHING
#undef ODX_LIMITS
}

constexpr struct {
    uint32_t column;
    const char* name;
} kRemoteColumns[] = {{2, "XDSP"}, {4, "ADSP"}, {5, "CDSP"}, {6, "MDSP"}};

} // namespace

TEST(Narrowing, RemoteTargetsAskForAlignment)
{
    for (const Limits& limits : allLimits()) {
        for (const auto& [column, name] : kRemoteColumns) {
            EXPECT_EQ(name, taken(limits, column, kFits)) << limits.operation;
            for (const Perturbed& p : perturbed(limits.remote)) {
                EXPECT_EQ(p.fits ? name : "ORLAN", taken(limits, column, p.arguments))
                    << limits.operation << ", " << p.what;
            }
        }
    }
}

TEST(Narrowing, RemoteTargetsAskForWork)
{
    for (const Limits& limits : allLimits()) {
        for (const auto& [column, name] : kRemoteColumns) {
            Arguments a = kFits;
            // The largest image of rows of 64 pixels that is not worth it, and the next one.
            a.width = 64;
            a.height = 25344 / (64 * limits.pixelSize);
            EXPECT_EQ("ORLAN", taken(limits, column, a)) << limits.operation;
            ++a.height;
            EXPECT_EQ(name, taken(limits, column, a)) << limits.operation;
            // Few rows, even if there is work enough.
            a.width = 65536;
            for (a.height = 1; a.height < 6; ++a.height) {
                const bool fits = a.height >= limits.leastHeight;
                EXPECT_EQ(fits ? name : "ORLAN", taken(limits, column, a)) << limits.operation << a.height;
            }
            // The number of pixels does not fit 32 bits.
            a.width = a.height = 65536;
            EXPECT_EQ(name, taken(limits, column, a)) << limits.operation;
        }
    }
}

TEST(Narrowing, WithoutChecksRemoteTargetsTakeAnything)
{
    odxSetHWFlag(0);
    for (const Limits& limits : allLimits()) {
        for (const auto& [column, name] : kRemoteColumns) {
            EXPECT_EQ(name, taken(limits, column, {9, 1, 9, 9, 0x10001, 0x80001})) << limits.operation;
        }
    }
    odxSetHWFlag(1);
}

TEST(Narrowing, GpuAsksForAlignmentWithAndWithoutChecks)
{
    for (const unsigned checks : {0u, 1u}) {
        odxSetHWFlag(checks);
        for (const Limits& limits : allLimits()) {
            for (const Perturbed& p : perturbed(limits.gpu)) {
                EXPECT_EQ(p.fits ? "GPU" : "ORLAN", taken(limits, ODX_IMPL_GPU, p.arguments))
                    << limits.operation << ", " << p.what;
            }
        }
    }
}
