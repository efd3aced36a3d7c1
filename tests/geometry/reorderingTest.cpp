// Transpositions, flips and rotations against where each pixel goes.
#include "cpu/ondrixReorderC.h"
#include "ondrix.h"
#include "support/childProcess.h"
#include "support/logCapture.h"
#include "support/referenceTest.h"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>

using namespace odx::test;

namespace
{

// An operation by name, the bytes of a pixel, and where the pixel at x, y goes: to y, x or to its place, counted
// from the other end of rows or of columns.
struct Case {
    const char* name;
    uint32_t size;
    bool turned, mirrored, upsideDown;
    std::function<void(const uint8_t*, uint32_t width, uint32_t height, uint32_t, uint8_t*, uint32_t)> call;
};

template <class T, class Operation, class... Code>
auto calling(Operation* operation, Code... code)
{
    return [=](const uint8_t* src, uint32_t w, uint32_t h, uint32_t from, uint8_t* dst, uint32_t to) {
        operation(reinterpret_cast<const T*>(src), w, h, from, reinterpret_cast<T*>(dst), to, code...);
    };
}

std::vector<Case> cases()
{
    return {
        {"transpose 8", 1, true, false, false, calling<uint8_t>(odxTransposeu8)},
        {"transpose 16", 2, true, false, false, calling<uint16_t>(odxTransposeu16)},
        {"transpose float", 4, true, false, false, calling<float>(odxTransposef32)},
        {"transpose RGB", 3, true, false, false, calling<uint8_t>(odxTransposeRGB888u8)},
        {"clockwise", 1, true, true, false, calling<uint8_t>(odxRotateImageu8, 1)},
        {"half turn", 1, false, true, true, calling<uint8_t>(odxRotateImageu8, 2)},
        {"counter-clockwise", 1, true, false, true, calling<uint8_t>(odxRotateImageu8, 3)},
        {"pairs clockwise", 2, true, true, false, calling<uint8_t>(odxRotateImageInterleavedu8, 1)},
        {"pairs half turn", 2, false, true, true, calling<uint8_t>(odxRotateImageInterleavedu8, 2)},
        {"pairs counter-clockwise", 2, true, false, true, calling<uint8_t>(odxRotateImageInterleavedu8, 3)},
        {"mirrored", 1, false, true, false, calling<uint8_t>(odxFlipu8, 1)},
        {"mirrored", 2, false, true, false, calling<uint16_t>(odxFlipu16, 1)},
        {"mirrored", 3, false, true, false, calling<uint8_t>(odxFlipRGB888u8, 1)},
        {"upside down", 1, false, false, true, calling<uint8_t>(odxFlipu8, 2)},
        {"upside down", 2, false, false, true, calling<uint16_t>(odxFlipu16, 2)},
        {"upside down", 3, false, false, true, calling<uint8_t>(odxFlipRGB888u8, 2)},
        {"both", 1, false, true, true, calling<uint8_t>(odxFlipu8, 3)},
        {"both", 2, false, true, true, calling<uint16_t>(odxFlipu16, 3)},
        {"both", 3, false, true, true, calling<uint8_t>(odxFlipRGB888u8, 3)},
    };
}

using Reordering = odx::test::ReferenceTest;

} // namespace

TEST_F(Reordering, EveryPixelGoesToItsPlace)
{
    for (const Case& which : cases()) {
        for (const auto& [w, h] : {std::pair{1u, 1u}, {2u, 3u}, {3u, 3u}, {70u, 67u}}) {
            SCOPED_TRACE(std::string(which.name) + " " + std::to_string(which.size));
            const uint32_t dstWidth = which.turned ? h : w, dstHeight = which.turned ? w : h, size = which.size;
            std::vector<uint8_t> src(size * w * h), dst(src.size()), expected(src.size());
            for (size_t i = 0; i < src.size(); ++i)
                src[i] = static_cast<uint8_t>(i * 7 + i / 251);
            for (uint32_t i = 0; i < w * h; ++i) {
                const uint32_t x = which.turned ? i / w : i % w, y = which.turned ? i % w : i / w,
                               toX = which.mirrored ? dstWidth - 1 - x : x,
                               toY = which.upsideDown ? dstHeight - 1 - y : y;
                for (uint32_t k = 0; k < size; ++k)
                    expected[size * (toY * dstWidth + toX) + k] = src[size * i + k];
            }
            which.call(src.data(), w, h, 0, dst.data(), 0);
            EXPECT_EQ(expected, dst);
            if (which.turned) continue;
            which.call(src.data(), w, h, size * w, src.data(), size * w);
            EXPECT_EQ(expected, src) << "in place";
        }
    }
}

TEST_F(Reordering, InPlaceTakesOneStride)
{
    std::vector<uint16_t> image(64 * 3);
    std::iota(image.begin(), image.end(), uint16_t{0});
    const std::vector<uint16_t> before = image;
    auto* const bytes = reinterpret_cast<uint8_t*>(image.data());
    const auto expectLine = [&](const std::string& name, auto call) {
        LogCapture log;
        call();
        const LogLine line = {6, "ondrix_lib_log",
                              "Error: " + name + " - Try to do in place but srcStride != dstStride\n"};
        EXPECT_EQ(std::vector<LogLine>{line}, log.take());
        EXPECT_EQ(before, image);
    };
    expectLine("odxFlipu8", [&] { odxFlipu8(bytes, 20, 3, 64, bytes, 32, 1); });
    expectLine("odxFlipu16", [&] { odxFlipu16(image.data(), 10, 3, 64, image.data(), 32, 2); });
    expectLine("odxFlipRGB888u8",
               [&] { EXPECT_EQ(ONDRIX_BAD_PARAMETER, odxFlipRGB888u8(bytes, 7, 3, 64, bytes, 32, 3)); });
    expectLine("odxFlipu8", [&] { EXPECT_EQ(ONDRIX_SUCCESS, odxRotateImageu8(bytes, 20, 3, 64, bytes, 32, 2)); });
}

TEST_F(Reordering, TriplesThatCannotBeTransposedEndTheProcess)
{
    uint8_t image[12] = {};
    for (const int wrong : {0, 1, 2, 3, 4, 5}) {
        expectEnd("src/cpu/ondrixArithmC@1213: src && dst && srcWidth && srcHeight && \\(srcStride >= "
                  "srcWidth\\*3\\) && "
                  "\\(dstStride >= srcHeight\\*3\\) Assertion failed",
                  [&] {
                      EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_CPU));
                      odxTransposeRGB888u8(wrong == 0 ? nullptr : image, wrong == 1 ? 0 : 2, wrong == 2 ? 0 : 2,
                                           wrong == 3 ? 5 : 0, wrong == 4 ? nullptr : image, wrong == 5 ? 5 : 0);
                  });
    }
}

TEST_F(Reordering, CopyCopies)
{
    uint8_t src[] = {1, 2, 3}, dst[] = {9, 9, 9};
    EXPECT_EQ(0, odxCopy(dst, src, 0));
    EXPECT_EQ(9, dst[0]);
    EXPECT_EQ(0, odxCopy(dst, src, 2));
    EXPECT_EQ(2, dst[1]);
    EXPECT_EQ(9, dst[2]);
}
