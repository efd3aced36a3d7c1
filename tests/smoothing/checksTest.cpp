// What the filters refuse, and what they say then.
#include "smoothing/models.h"

#include "cpu/ondrixBlurC.h"
#include "ondrix.h"
#include "support/childProcess.h"
#include "support/logCapture.h"

#include <gtest/gtest.h>

using namespace odx::test;

namespace
{

constexpr unsigned kSide = 12;

// Buffers that are large enough for every call that should not be made.
template <class T>
struct Buffers {
    std::vector<T> src = std::vector<T>(kSide * kSide, 9), dst = std::vector<T>(kSide * kSide, 77);

    bool untouched() const
    {
        return std::all_of(dst.begin(), dst.end(), [](T pixel) { return pixel == 77; });
    }
};

class SmoothingChecks : public testing::Test
{
protected:
    SmoothingChecks() { EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE)); }
};

using Lines = std::vector<LogLine>;

LogLine error(const std::string& text)
{
    return {6, "ondrix_lib_log", text};
}

// Each bad call must write one line, with the operation's own condition, and nothing else.
template <class T>
void expectRefused(const char* operation, const char* condition,
                   std::initializer_list<std::function<void(const T*, T*)>> calls)
{
    const LogLine line = error(std::string("Assertion failed @") + operation + ": " + condition + "\n");
    int number = 0;
    for (const auto& call : calls) {
        Buffers<T> buffers;
        LogCapture log;
        call(buffers.src.data(), buffers.dst.data());
        EXPECT_EQ(Lines{line}, log.take()) << "call " << number;
        EXPECT_TRUE(buffers.untouched()) << operation << " call " << number;
        ++number;
    }
}

// The four bad calls that every filter with packed rows refuses, of (src, width, height, dst, border).
template <class T>
void expectPackedRefused(const char* operation, void (*filter)(const T*, unsigned, unsigned, T*, int),
                         unsigned minWidth, unsigned minHeight, const char* condition)
{
    expectRefused<T>(operation, condition,
                     {[=](const T*, T* d) { filter(nullptr, kSide, kSide, d, 1); },
                      [=](const T* s, T*) { filter(s, kSide, kSide, nullptr, 1); },
                      [=](const T* s, T* d) { filter(s, minWidth - 1, kSide, d, 1); },
                      [=](const T* s, T* d) { filter(s, kSide, minHeight - 1, d, 1); }});
}

// The same with strides; `minStride` is the least source stride that is accepted, and also the least destination
// stride unless that is unchecked.
template <class T>
void expectStridedRefused(const char* operation,
                          void (*filter)(const T*, unsigned, unsigned, unsigned, T*, unsigned, int),
                          unsigned minWidth, unsigned minHeight, bool checksDestination, const char* condition)
{
    const unsigned stride = kSide * sizeof(T);
    expectRefused<T>(operation, condition,
                     {[=](const T*, T* d) { filter(nullptr, kSide, kSide, stride, d, stride, 1); },
                      [=](const T* s, T*) { filter(s, kSide, kSide, stride, nullptr, stride, 1); },
                      [=](const T* s, T* d) { filter(s, minWidth - 1, kSide, stride, d, stride, 1); },
                      [=](const T* s, T* d) { filter(s, kSide, minHeight - 1, stride, d, stride, 1); },
                      [=](const T* s, T* d) { filter(s, kSide, kSide, stride - 1, d, stride, 1); }});
    if (!checksDestination) return;
    expectRefused<T>(operation, condition,
                     {[=](const T* s, T* d) { filter(s, kSide, kSide, stride, d, stride - 1, 1); }});
}

} // namespace

TEST_F(SmoothingChecks, GaussiansNameTheirConditions)
{
    expectPackedRefused<uint8_t>("odxFilterGaussian3x3u8", odxFilterGaussian3x3u8, 1, 1,
                                 "src && dst && width && height");
    expectStridedRefused<uint8_t>("odxFilterGaussian3x3u8_v2", odxFilterGaussian3x3u8_v2, 2, 2, true,
                                  "src && dst && (srcWidth > 1) && (srcHeight > 1) && (srcStride >= srcWidth) && "
                                  "(dstStride >= srcWidth)");
    expectPackedRefused<uint8_t>("odxFilterGaussian5x5u8", odxFilterGaussian5x5u8, 5, 5,
                                 "src && dst && width && height && height > 4 && width > 4");
    expectStridedRefused<uint8_t>("odxFilterGaussian5x5u8_v2", odxFilterGaussian5x5u8_v2, 5, 5, false,
                                  "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride && "
                                  "srcHeight > 4 && srcWidth > 4");
    expectPackedRefused<uint8_t>("odxFilterGaussian11x11u8", odxFilterGaussian11x11u8, 11, 11,
                                 "src && dst && width && height && height > 10 && width > 10");
    expectStridedRefused<uint8_t>("odxFilterGaussian11x11u8_v2", odxFilterGaussian11x11u8_v2, 11, 11, false,
                                  "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride && "
                                  "srcHeight > 10 && srcWidth > 10");
    expectPackedRefused<int16_t>("odxFilterGaussian5x5s16", odxFilterGaussian5x5s16, 1, 2,
                                 "src && dst && width && height && height > 1");
    expectStridedRefused<int16_t>(
        "odxFilterGaussian5x5s16_v2", odxFilterGaussian5x5s16_v2, 1, 2, true,
        "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*sizeof(int16_t)) && "
        "(dstStride >= srcWidth*sizeof(int16_t)) && srcHeight > 1");
    expectPackedRefused<int32_t>("odxFilterGaussian5x5s32", odxFilterGaussian5x5s32, 5, 5,
                                 "src && dst && width && height && width > 4 && height > 4");
    expectStridedRefused<int32_t>(
        "odxFilterGaussian5x5s32_v2", odxFilterGaussian5x5s32_v2, 5, 5, true,
        "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*sizeof(int32_t)) && "
        "(dstStride >= srcWidth*sizeof(int32_t)) && srcWidth > 4 && srcHeight > 4");
}

TEST_F(SmoothingChecks, BoxesAndMediansNameTheirConditions)
{
    const auto expectBoxRefused = [](const char* operation, const auto& filter, unsigned least,
                                     const char* condition) {
        expectRefused<uint8_t>(operation, condition,
                               {[=](auto, auto d) { filter(nullptr, kSide, kSide, kSide, d, kSide); },
                                [=](auto s, auto) { filter(s, kSide, kSide, kSide, nullptr, kSide); },
                                [=](auto s, auto d) { filter(s, least - 1, kSide, kSide, d, kSide); },
                                [=](auto s, auto d) { filter(s, kSide, least - 1, kSide, d, kSide); },
                                [=](auto s, auto d) { filter(s, kSide, kSide, kSide - 1, d, kSide); },
                                [=](auto s, auto d) { filter(s, kSide, kSide, 0, d, kSide); },
                                [=](auto s, auto d) { filter(s, kSide, kSide, kSide, d, 0); }});
    };
    expectBoxRefused(
        "odxBoxFilter3x3u8", odxBoxFilter3x3u8, 3,
        "src && dst && srcWidth && srcHeight && srcStride && dstStride && ( srcStride >=srcWidth ) && "
        "srcWidth > 2 && srcHeight > 2");
    expectBoxRefused("odxBoxFilter5x5u8", odxBoxFilter5x5u8, 5,
                     "src && dst && srcWidth && srcHeight && srcStride && dstStride && (srcStride >=srcWidth) && "
                     "srcWidth > 4 && srcHeight > 4");
    expectBoxRefused("odxBoxFilter11x11u8", odxBoxFilter11x11u8, 11,
                     "src && dst && srcWidth && srcHeight && srcStride && dstStride && ( srcStride >=srcWidth) && "
                     "srcWidth > 10 && srcHeight > 10");

    constexpr unsigned row = 4 * kSide;
    const auto box = odxBoxFilterNxNf32;
    expectRefused<float>(
        "odxBoxFilterNxNf32",
        "src && dst && srcWidth && srcHeight && (N > 1) && ((src == dst && srcStride == dstStride) "
        "|| (src != dst)) && (srcStride >=srcWidth*4) && (dstStride >=srcWidth*4) && srcWidth > 4 "
        "&& srcHeight > 4",
        {[=](auto, auto d) { box(nullptr, kSide, kSide, row, 3, d, row); },
         [=](auto s, auto d) { box(s, 4, kSide, row, 3, d, row); },
         [=](auto s, auto d) { box(s, kSide, 4, row, 3, d, row); },
         [=](auto s, auto d) { box(s, kSide, kSide, row, 1, d, row); },
         [=](auto s, auto d) { box(s, kSide, kSide, row - 4, 3, d, row); },
         [=](auto s, auto d) { box(s, kSide, kSide, row, 3, d, row - 4); },
         [=](auto, auto d) { box(d, 8, 8, row, 3, d, row - 4); }});

    expectRefused<uint8_t>("odxFilterMedian3x3u8", "src && dst && width && height",
                           {[](auto, auto d) { odxFilterMedian3x3u8(nullptr, kSide, kSide, d); },
                            [](auto s, auto) { odxFilterMedian3x3u8(s, kSide, kSide, nullptr); },
                            [](auto s, auto d) { odxFilterMedian3x3u8(s, 0, kSide, d); },
                            [](auto s, auto d) { odxFilterMedian3x3u8(s, kSide, 0, d); }});
    expectRefused<uint8_t>("odxFilterMedian3x3u8_v2",
                           "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride",
                           {[](auto, auto d) { odxFilterMedian3x3u8_v2(nullptr, kSide, kSide, 0, d, 0); },
                            [](auto s, auto) { odxFilterMedian3x3u8_v2(s, kSide, kSide, 0, nullptr, 0); },
                            [](auto s, auto d) { odxFilterMedian3x3u8_v2(s, 0, kSide, 4, d, 4); },
                            [](auto s, auto d) { odxFilterMedian3x3u8_v2(s, kSide, 0, 0, d, 0); },
                            [](auto s, auto d) { odxFilterMedian3x3u8_v2(s, kSide, kSide, kSide - 1, d, 0); }});
}

TEST_F(SmoothingChecks, StatusOperationsRefuseInSilence)
{
    const auto expectAllRefused = [](const auto& filter) {
        Buffers<uint8_t> b;
        const uint8_t* const s = b.src.data();
        uint8_t* const d = b.dst.data();
        LogCapture log;
        EXPECT_EQ(ONDRIX_BAD_PARAMETER, filter(nullptr, kSide, kSide, 0, d, 0, ONDRIX_BORDER_REPLICATE, 0));
        EXPECT_EQ(ONDRIX_BAD_PARAMETER, filter(s, 0, kSide, 0, d, 0, ONDRIX_BORDER_REPLICATE, 0));
        EXPECT_EQ(ONDRIX_BAD_PARAMETER, filter(s, kSide, 0, 0, d, 0, ONDRIX_BORDER_REPLICATE, 0));
        EXPECT_EQ(ONDRIX_BAD_PARAMETER, filter(s, kSide, kSide, 0, nullptr, 0, ONDRIX_BORDER_REPLICATE, 0));
        EXPECT_EQ(ONDRIX_BAD_PARAMETER, filter(s, kSide, kSide, 0, d, 0, static_cast<odxBorderType>(3), 0));
        EXPECT_EQ(Lines{}, log.take());
        EXPECT_TRUE(b.untouched());
    };
    expectAllRefused(odxFilterGaussian3x3u8_v3);
    expectAllRefused(odxBoxFilter3x3u8_v2);
    expectAllRefused(odxFilterMedian3x3u8_v3);

    Buffers<int16_t> b;
    constexpr unsigned row = 2 * kSide;
    const auto median = [&](const int16_t* src, unsigned width, unsigned srcStride, unsigned m, unsigned n,
                            unsigned dstStride) {
        return odxFilterMedianMxNs16(src, width, kSide, srcStride, m, n, b.dst.data(), dstStride);
    };
    LogCapture log;
    const int16_t* const s = b.src.data();
    EXPECT_EQ(ONDRIX_BAD_PARAMETER, odxFilterMedianMxNs16(s, kSide, kSide, row, 3, 3, nullptr, row));
    EXPECT_EQ(ONDRIX_BAD_PARAMETER, odxFilterMedianMxNs16(s, kSide, 0, row, 3, 3, b.dst.data(), row));
    EXPECT_EQ(ONDRIX_BAD_PARAMETER, median(nullptr, kSide, row, 3, 3, row));
    EXPECT_EQ(ONDRIX_BAD_PARAMETER, median(s, 0, row, 3, 3, row));
    EXPECT_EQ(ONDRIX_BAD_PARAMETER, median(s, kSide, row - 2, 3, 3, row));
    EXPECT_EQ(ONDRIX_BAD_PARAMETER, median(s, kSide, row, 3, 3, row - 2));
    EXPECT_EQ(ONDRIX_BAD_PARAMETER, median(s, 0x80000001u, row, 3, 3, row)); // twice the width wraps to 2
    for (const auto& [m, n] : {std::pair{1u, 3u}, {3u, 1u}, {4u, 3u}, {3u, 4u}, {0u, 0u}})
        EXPECT_EQ(ONDRIX_BAD_PARAMETER, median(s, kSide, row, m, n, row)) << m << "x" << n;
    EXPECT_EQ(Lines{}, log.take());
    EXPECT_TRUE(b.untouched());
}

TEST_F(SmoothingChecks, NarrowImagesFailTheWidthTestOfThe3x3Gaussian)
{
    for (unsigned width = 0; width <= 8; ++width) {
        Buffers<uint8_t> b;
        LogCapture log;
        odxFilterGaussian3x3u8(b.src.data(), width, kSide, b.dst.data(), 0);
        odxFilterGaussian3x3u8_v2(b.src.data(), width, kSide, 0, b.dst.data(), 0, 0);
        const Lines lines = log.take();
        if (width >= 2 && width <= 6) {
            EXPECT_EQ(
                (Lines{error("Error at odxFilterGaussian3x3u8\n"), error("Error at odxFilterGaussian3x3u8_v2\n")}),
                lines)
                << width;
            EXPECT_TRUE(b.untouched()) << width;
        } else {
            const size_t refused = width == 0 ? 2 : width == 1 ? 1 : 0; // by their conditions
            EXPECT_EQ(refused, lines.size()) << width;
            EXPECT_EQ(width < 7, b.untouched()) << width;
        }
    }
}

TEST_F(SmoothingChecks, NarrowImagesEndTheProcessInTheReference)
{
    const ChildResult child = runInChild([] {
        Buffers<uint8_t> b;
        odxFilterGaussian3x3u8C(b.src.data(), 5, kSide, kSide, b.dst.data(), kSide, 0);
    });
    EXPECT_EQ(1, child.exitStatus);
    EXPECT_EQ("6/ondrix_lib_log: ondrixBlurC@79: w6<=w_2 && w6>=w_2-5 Assertion failed\n\n", child.output);
}
