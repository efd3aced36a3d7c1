// What the conversions to RGB refuse, what they say then, and which images end the process.
#include "color/toRgbModel.h"

#include "ondrix.h"
#include "support/childProcess.h"
#include "support/logCapture.h"

#include <gtest/gtest.h>

using namespace odx::test;

namespace
{

constexpr uint32_t kWidth = 21, kHeight = 2;

// Buffers that are large enough for every call that should not be made.
struct Call {
    Bytes y = Bytes(4 * kWidth * kHeight, 1), cb = y, cr = y, dst = Bytes(y.size(), 77);
};

// Each bad call must write the one line, and no pixel.
void expectRefused(const std::string& operation, const std::string& condition,
                   std::initializer_list<std::function<void(Call&)>> calls)
{
    const LogLine line = {6, "ondrix_lib_log", "Assertion failed @" + operation + ": " + condition + "\n"};
    int number = 0;
    for (const auto& make : calls) {
        Call call;
        LogCapture log;
        make(call);
        EXPECT_EQ(std::vector<LogLine>{line}, log.take()) << operation << ", call " << number;
        EXPECT_EQ(Bytes(call.dst.size(), 77), call.dst) << operation << ", call " << number;
        ++number;
    }
}

class ToRgbChecks : public testing::Test
{
protected:
    ToRgbChecks() { EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_CPU)); }
};

void expectPlanarRefused(decltype(odxColorYCbCr444PlanarToRGB888u8)* convert, const std::string& operation,
                         const std::string& chromaWidth, uint32_t chroma, uint32_t pixelSize)
{
    const std::string condition =
        "srcY && srcCb && srcCr && dst && srcWidth && srcHeight && ( srcYStride == 0 || srcYStride >= "
        "(srcWidth*sizeof(uint8_t)) ) && ( srcCbStride == 0 || srcCbStride >= (" +
        chromaWidth + "*sizeof(uint8_t)) ) && ( srcCrStride == 0 || srcCrStride >= (" + chromaWidth +
        "*sizeof(uint8_t)) ) && ( dstStride == 0 || dstStride >= (srcWidth*" + std::to_string(pixelSize) +
        "*sizeof(uint8_t)))";
    const auto with = [=](uint32_t width, uint32_t height, uint32_t y, uint32_t cb, uint32_t cr, uint32_t dst) {
        return [=](Call& c) {
            convert(c.y.data(), c.cb.data(), c.cr.data(), width, height, y, cb, cr, c.dst.data(), dst);
        };
    };
    expectRefused(
        operation, condition,
        {[=](Call& c) { convert(nullptr, c.cb.data(), c.cr.data(), kWidth, 2, 0, 0, 0, c.dst.data(), 0); },
         [=](Call& c) { convert(c.y.data(), nullptr, c.cr.data(), kWidth, 2, 0, 0, 0, c.dst.data(), 0); },
         [=](Call& c) { convert(c.y.data(), c.cb.data(), nullptr, kWidth, 2, 0, 0, 0, c.dst.data(), 0); },
         [=](Call& c) { convert(c.y.data(), c.cb.data(), c.cr.data(), kWidth, 2, 0, 0, 0, nullptr, 0); },
         with(0, kHeight, 0, 0, 0, 0), with(kWidth, 0, 0, 0, 0, 0), with(kWidth, kHeight, kWidth - 1, 0, 0, 0),
         with(kWidth, kHeight, 0, chroma - 1, 0, 0), with(kWidth, kHeight, 0, 0, chroma - 1, 0),
         with(kWidth, kHeight, 0, 0, 0, pixelSize * kWidth - 1)});
}

void expectPseudoPlanarRefused(decltype(odxColorYCbCr444PseudoPlanarToRGB888u8)* convert,
                               const std::string& operation, const std::string& chromaWidth, uint32_t chroma,
                               uint32_t pixelSize)
{
    const std::string condition =
        "srcY && srcC && dst && srcWidth && srcHeight && ( srcYStride == 0 || srcYStride >= "
        "(srcWidth*sizeof(uint8_t)) ) && ( srcCStride == 0 || srcCStride >= (" +
        chromaWidth + "*sizeof(uint8_t)) ) && ( dstStride == 0 || dstStride >= (srcWidth*" +
        std::to_string(pixelSize) + "*sizeof(uint8_t)))";
    const auto with = [=](uint32_t width, uint32_t height, uint32_t y, uint32_t c, uint32_t dst) {
        return [=](Call& b) { convert(b.y.data(), b.cb.data(), width, height, y, c, b.dst.data(), dst); };
    };
    expectRefused(operation, condition,
                  {[=](Call& c) { convert(nullptr, c.cb.data(), kWidth, 2, 0, 0, c.dst.data(), 0); },
                   [=](Call& c) { convert(c.y.data(), nullptr, kWidth, 2, 0, 0, c.dst.data(), 0); },
                   [=](Call& c) { convert(c.y.data(), c.cb.data(), kWidth, 2, 0, 0, nullptr, 0); },
                   with(0, kHeight, 0, 0, 0), with(kWidth, 0, 0, 0, 0), with(kWidth, kHeight, kWidth - 1, 0, 0),
                   with(kWidth, kHeight, 0, chroma - 1, 0), with(kWidth, kHeight, 0, 0, pixelSize * kWidth - 1)});
}

TEST_F(ToRgbChecks, PlanesAndTheirStrides)
{
#define ODX_REFUSED(subsampling, pixels, size, planarText, planar, pairsText, pairs)                        \
    expectPlanarRefused(odxColorYCbCr##subsampling##PlanarTo##pixels##u8,                                   \
                        "odxColorYCbCr" #subsampling "PlanarTo" #pixels "u8", planarText, planar, size);    \
    expectPseudoPlanarRefused(odxColorYCbCr##subsampling##PseudoPlanarTo##pixels##u8,                       \
                              "odxColorYCbCr" #subsampling "PseudoPlanarTo" #pixels "u8", pairsText, pairs, \
                              size);
#define ODX_REFUSED_ALL(subsampling, ...)            \
    ODX_REFUSED(subsampling, RGB565, 2, __VA_ARGS__) \
    ODX_REFUSED(subsampling, RGB888, 3, __VA_ARGS__) \
    ODX_REFUSED(subsampling, RGBA8888, 4, __VA_ARGS__)
    ODX_REFUSED_ALL(444, "srcWidth", kWidth, "srcWidth*2", 2 * kWidth)
    ODX_REFUSED_ALL(422, "(srcWidth+1)/2", kWidth / 2 + 1, "srcWidth", kWidth)
    ODX_REFUSED_ALL(420, "(srcWidth+1)/2", kWidth / 2 + 1, "srcWidth", kWidth)
#undef ODX_REFUSED_ALL
#undef ODX_REFUSED
}

TEST_F(ToRgbChecks, PackedImages)
{
    const auto expect = [](const char* operation, decltype(odxColorYUV420toRGB8888u8)* convert) {
        expectRefused(operation, "src && dst && width && height",
                      {[=](Call& c) { convert(nullptr, kWidth, kHeight, c.dst.data()); },
                       [=](Call& c) { convert(c.y.data(), kWidth, kHeight, nullptr); },
                       [=](Call& c) { convert(c.y.data(), 0, kHeight, c.dst.data()); },
                       [=](Call& c) { convert(c.y.data(), kWidth, 0, c.dst.data()); }});
    };
    expect("odxColorYUV420toRGB565u8", odxColorYUV420toRGB565u8);
    expect("odxColorYUV420toRGB565u8Rotate180", odxColorYUV420toRGB565u8Rotate180);
    expect("odxColorYUV420toRGB8888u8", odxColorYUV420toRGB8888u8);
    expect("odxColorYCrCbH1V1toRGB888u8", odxColorYCrCbH1V1toRGB888u8);
    expect("odxColorYCrCbH2V2toRGB888u8", odxColorYCrCbH2V2toRGB888u8);
    expect("odxColorYCrCbH2V1toRGB888u8", odxColorYCrCbH2V1toRGB888u8);
    expect("odxColorYCrCbH1V2toRGB888u8", odxColorYCrCbH1V2toRGB888u8);

    const auto strided = [](bool src, bool dst, uint32_t width, uint32_t height, uint32_t y, uint32_t c,
                            uint32_t d) {
        return [=](Call& call) {
            odxColorYCrCb420PseudoPlanarToRGB8888u8(src ? call.y.data() : nullptr, width, height, y, c,
                                                    dst ? call.dst.data() : nullptr, d);
        };
    };
    expectRefused("odxColorYCrCb420PseudoPlanarToRGB8888u8",
                  "src && dst && srcWidth && srcHeight && srcYStride && srcCStride && dstStride",
                  {strided(false, true, 2, 2, 2, 2, 8), strided(true, false, 2, 2, 2, 2, 8),
                   strided(true, true, 0, 2, 2, 2, 8), strided(true, true, 2, 0, 2, 2, 8),
                   strided(true, true, 2, 2, 0, 2, 8), strided(true, true, 2, 2, 2, 0, 8),
                   strided(true, true, 2, 2, 2, 2, 0)});
}

// A row of pairs needs a pair: the column that is selected makes no difference.
TEST_F(ToRgbChecks, OneColumnOfPairsEndsTheProcess)
{
    const Content grey = {[](uint32_t, uint32_t) { return 9; }, [](uint32_t, uint32_t) { return 128; },
                          [](uint32_t, uint32_t) { return 128; }};
    uint32_t ended = 0;
    for (const odxOperationMode mode : {ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU}) {
        for (const Conversion& conversion : toRgbConversions()) {
            if (conversion.arithmetic != fullRange || conversion.across == 1) continue;
            const auto source = conversion.make(2, 2, grey);
            source->width = 1;
            const ChildResult child = runInChild([&] {
                EXPECT_EQ(0, odxSetOperationMode(mode));
                Bytes dst(16);
                conversion.convert(*source, dst.data());
            });
            EXPECT_EQ(1, child.exitStatus) << conversion.name;
            const size_t at = child.output.find("ondrixColorC@");
            ASSERT_NE(std::string::npos, at) << conversion.name << ": " << child.output;
            const size_t colon = child.output.find(": ", at);
            EXPECT_NE(0, std::stoi(child.output.substr(at + strlen("ondrixColorC@"))));
            EXPECT_EQ(": length > 1 Assertion failed\n", child.output.substr(colon, 30)) << conversion.name;
            ++ended;
        }
    }
    EXPECT_EQ(24u, ended);
}

} // namespace
