// What the conversions from RGB, and between layouts of luma and chroma, refuse, and what they say then.
#include "cpu/ondrixColorFromRgbC.h"
#include "ondrix/modes.h"
#include "support/logCapture.h"

#include <gtest/gtest.h>

#include <functional>
#include <string.h>

using namespace odx::test;

namespace
{

constexpr uint32_t kWidth = 5, kHeight = 3;

class FromRgbChecks : public testing::Test
{
protected:
    FromRgbChecks() { EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE)); }
};

// The arguments of a call, of which one at a time is spoilt: pointers, sizes and strides, in order of the call. A
// stride comes with the length of its packed row.
struct Spoilt {
    uint8_t buffer[4096];
    size_t at = 0, spoilt = SIZE_MAX;

    bool here() { return at++ == spoilt; }
    uint8_t* pointer() { return here() ? nullptr : buffer; }
    uint32_t size(uint32_t value) { return here() ? 0 : value; }
    uint32_t stride(uint32_t packed) { return here() ? packed - 1 : packed; }
};

// Calls with every argument spoilt in turn, of which each must be refused with this condition and write nothing.
// Rows of a single byte can't be too short.
void expectRefused(const char* operation, const char* condition, size_t arguments,
                   const std::function<void(Spoilt&)>& call)
{
    const LogLine line = {6, "ondrix_lib_log",
                          std::string("Assertion failed @") + operation + ": " + condition + "\n"};
    for (size_t i = 0; i < arguments; ++i) {
        Spoilt spoilt;
        spoilt.spoilt = i;
        memset(spoilt.buffer, 0x5A, sizeof spoilt.buffer);
        LogCapture log;
        call(spoilt);
        EXPECT_EQ(std::vector<LogLine>{line}, log.take()) << operation << ", argument " << i;
        for (uint8_t value : spoilt.buffer)
            ASSERT_EQ(0x5A, value) << operation << ", argument " << i;
        EXPECT_EQ(arguments, spoilt.at);
    }
}

// Arguments are evaluated in order only when they initialise something.
struct Packed {
    uint8_t* pixels;
    uint32_t stride;
};

void expectPackedRefused(const char* operation,
                         void (*convert)(const uint8_t*, uint32_t, uint32_t, uint32_t, uint8_t*, uint32_t),
                         uint32_t srcRow, uint32_t dstRow, const char* condition)
{
    expectRefused(operation, condition, 6, [=](Spoilt& s) {
        uint8_t *const src = s.pointer(), *const dst = s.pointer();
        const uint32_t width = s.size(kWidth), height = s.size(kHeight);
        const uint32_t srcStride = s.stride(srcRow), dstStride = s.stride(dstRow);
        convert(src, width, height, srcStride, dst, dstStride);
    });
}

// An image of the call: its planes come first, and its strides after the size.
struct Yuv {
    uint8_t *y = nullptr, *cb = nullptr, *cr = nullptr;
    uint32_t yStride = 0, cbStride = 0, crStride = 0;
    bool pairs;
    uint32_t chromaRow;
    std::string chromaRowText;

    void takePointers(Spoilt& s)
    {
        y = s.pointer();
        cb = s.pointer();
        if (!pairs) cr = s.pointer();
    }
    void takeStrides(Spoilt& s)
    {
        yStride = s.stride(kWidth);
        cbStride = s.stride(chromaRow);
        if (!pairs) crStride = s.stride(chromaRow);
    }
};

constexpr bool Planar = false, PseudoPlanar = true;

// Conversions from RGB have whole pairs of pixels only.
Yuv image(uint32_t subsampling, bool pairs, bool fromRgb = false)
{
    Yuv yuv;
    yuv.pairs = pairs;
    if (subsampling == 444) {
        yuv.chromaRow = pairs ? 2 * kWidth : kWidth;
        yuv.chromaRowText = pairs ? "srcWidth*2" : "srcWidth";
    } else if (pairs) {
        yuv.chromaRow = kWidth;
        yuv.chromaRowText = "srcWidth";
    } else {
        yuv.chromaRow = fromRgb ? kWidth / 2 : (kWidth + 1) / 2;
        yuv.chromaRowText = fromRgb ? "srcWidth/2" : "(srcWidth+1)/2";
    }
    return yuv;
}

// The parts of a condition.
std::string given(const std::string& side, const Yuv& yuv)
{
    return side + "Y && " + side + (yuv.pairs ? "C" : "Cb && " + side + "Cr") + " && ";
}
std::string fits(const std::string& stride, const std::string& row)
{
    return " && ( " + stride + " == 0 || " + stride + " >= (" + row + "*sizeof(uint8_t)) )";
}
std::string fits(const std::string& side, const Yuv& yuv)
{
    const std::string luma = fits(side + "YStride", "srcWidth");
    if (yuv.pairs) return luma + fits(side + "CStride", yuv.chromaRowText);
    return luma + fits(side + "CbStride", yuv.chromaRowText) + fits(side + "CrStride", yuv.chromaRowText);
}

template <class Call>
void expectFromRgbRefused(const char* operation, uint32_t pixelSize, Yuv dst, Call convert)
{
    const std::string condition = "src && " + given("dst", dst) + "srcWidth && srcHeight" +
                                  fits("srcStride", "srcWidth*" + std::to_string(pixelSize)) + fits("dst", dst);
    expectRefused(operation, condition.c_str(), dst.pairs ? 8 : 10, [=](Spoilt& s) mutable {
        uint8_t* const src = s.pointer();
        dst.takePointers(s);
        const uint32_t width = s.size(kWidth), height = s.size(kHeight), srcStride = s.stride(pixelSize * kWidth);
        dst.takeStrides(s);
        convert(src, width, height, srcStride, dst);
    });
}

template <class Call>
void expectYuvRefused(const char* operation, Yuv src, Yuv dst, Call convert)
{
    const std::string condition =
        given("src", src) + given("dst", dst) + "srcWidth && srcHeight" + fits("src", src) + fits("dst", dst);
    const size_t arguments = 2 + (src.pairs ? 4 : 6) + (dst.pairs ? 4 : 6);
    expectRefused(operation, condition.c_str(), arguments, [=](Spoilt& s) mutable {
        src.takePointers(s);
        dst.takePointers(s);
        const uint32_t width = s.size(kWidth), height = s.size(kHeight);
        src.takeStrides(s);
        dst.takeStrides(s);
        convert(src, width, height, dst);
    });
}

#define ODX_Planar_OF(image) image.y, image.cb, image.cr
#define ODX_PseudoPlanar_OF(image) image.y, image.cb
#define ODX_Planar_STRIDES_OF(image) image.yStride, image.cbStride, image.crStride
#define ODX_PseudoPlanar_STRIDES_OF(image) image.yStride, image.cbStride

TEST_F(FromRgbChecks, PackedConversionsNameTheirConditions)
{
    const auto condition = [](const char* src, const char* dst) {
        const auto term = [](const std::string& stride, const std::string& row) {
            return " && ( " + stride + " == 0 || " + stride + " >= (srcWidth" + row + "*sizeof(uint8_t)) )";
        };
        return "src && dst && srcWidth && srcHeight" + term("srcStride", src) + term("dstStride", dst);
    };
    const auto check = [&](const char* name, auto* operation, uint32_t srcSize, uint32_t dstSize) {
        static const char* const factors[] = {"", "", "*2", "*3", "*4"};
        expectPackedRefused(name, operation, srcSize * kWidth, dstSize * kWidth,
                            condition(factors[srcSize], factors[dstSize]).c_str());
    };
    enum { RGB565 = 2, RGB888, RGBA8888, BGR565 = 2, BGR888, BGRA8888 };
#define ODX_CASE(from, to) check("odxColor" #from "To" #to "u8", odxColor##from##To##to##u8, from, to);
    ODX_RGB_TO_RGB(ODX_CASE)
#undef ODX_CASE
    check("odxColorRGB888ToRGB565Rotate180u8", odxColorRGB888ToRGB565Rotate180u8, 3, 2);
    check("odxColorRGB888ToHSV888u8", odxColorRGB888ToHSV888u8, 3, 3);
    check("odxColorRGB888toYCrCbu8_v2", odxColorRGB888toYCrCbu8_v2, 3, 3);
    check("odxColorRGBA8888ToLABu8", odxColorRGBA8888ToLABu8, 4, 3);
    check("odxColorCbCrSwapu8", odxColorCbCrSwapu8, 2, 2);
    expectPackedRefused("odxColorRGB888ToGrayu8", odxColorRGB888ToGrayu8, 3 * kWidth, kWidth,
                        "src && dst && srcWidth && srcHeight && ( srcStride == 0 || srcStride >= "
                        "(srcWidth*3*sizeof(uint8_t)) ) && ( dstStride == 0 || dstStride >= "
                        "(srcWidth*sizeof(uint8_t)) )");
    expectRefused("odxColorRGB888toYCrCbu8", "src && dst && width && height", 4, [](Spoilt& s) {
        uint8_t *const src = s.pointer(), *const dst = s.pointer();
        const uint32_t width = s.size(kWidth), height = s.size(kHeight);
        odxColorRGB888toYCrCbu8(src, width, height, dst);
    });
}

TEST_F(FromRgbChecks, ConversionsToLumaAndChromaNameTheirConditions)
{
    enum { RGB565 = 2, RGB888, RGBA8888 };
#define ODX_CASE_TO(pixels, subsampling, to)                                                                     \
    expectFromRgbRefused("odxColor" #pixels "ToYCbCr" #subsampling #to "u8", pixels,                             \
                         image(subsampling, to, true),                                                           \
                         [](const uint8_t* src, uint32_t w, uint32_t h, uint32_t stride, const Yuv& d) {         \
                             odxColor##pixels##ToYCbCr##subsampling##to##u8(src, w, h, stride, ODX_##to##_OF(d), \
                                                                            ODX_##to##_STRIDES_OF(d));           \
                         });
#define ODX_CASE(pixels, subsampling, source, rows) \
    ODX_CASE_TO(pixels, subsampling, Planar) ODX_CASE_TO(pixels, subsampling, PseudoPlanar)
    ODX_RGB_TO_YCBCR(ODX_CASE)
#undef ODX_CASE
#undef ODX_CASE_TO
}

TEST_F(FromRgbChecks, ConversionsBetweenLayoutsNameTheirConditions)
{
#define ODX_CASE(from, fromSubsampling, to, toSubsampling)                                                    \
    expectYuvRefused("odxColorYCbCr" #fromSubsampling #from "ToYCbCr" #toSubsampling #to "u8",                \
                     image(fromSubsampling, from), image(toSubsampling, to),                                  \
                     [](const Yuv& s, uint32_t width, uint32_t height, const Yuv& d) {                        \
                         odxColorYCbCr##fromSubsampling##from##ToYCbCr##toSubsampling##to##u8(                \
                             ODX_##from##_OF(s), width, height, ODX_##from##_STRIDES_OF(s), ODX_##to##_OF(d), \
                             ODX_##to##_STRIDES_OF(d));                                                       \
                     });
    ODX_YCBCR_TO_YCBCR(ODX_CASE)
#undef ODX_CASE
}

} // namespace
