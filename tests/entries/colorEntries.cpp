// The conversions of colour: their arguments, and the texts of their checks, follow from the layouts of both
// images.
#include "entries/entries.h"

#include "cpu/ondrixColor.h"
#include "cpu/ondrixColorFromRgbC.h"
#include "ondrix/colorFromRgb.h"
#include "ondrix/colorToRgb.h"

namespace odx::test::color
{

struct Plane {
    std::string name;    // behind src or dst
    std::string rowText; // the length of a row, as checks have it
    uint32_t row;
};
using Layout = std::vector<Plane>;

// Packed pixels of so many bytes.
Layout packed(uint32_t size)
{
    return {{"", size == 1 ? "srcWidth" : "srcWidth*" + std::to_string(size), size * kWidth}};
}
// Luma, and chroma in two planes or in one of pairs. Conversions from RGB have whole pairs of pixels only.
Layout yuv(uint32_t subsampling, bool pairs, bool fromRgb = false)
{
    const Plane luma = {"Y", "srcWidth", kWidth};
    const bool full = subsampling == 444;
    if (pairs) return {luma, {"C", full ? "srcWidth*2" : "srcWidth", full ? 2 * kWidth : kWidth}};
    const std::string text = full ? "srcWidth" : fromRgb ? "srcWidth/2" : "(srcWidth+1)/2";
    const uint32_t row = full ? kWidth : kWidth / 2;
    return {luma, {"Cb", text, row}, {"Cr", text, row}};
}

Entry conversion(const Operation& operation, const Layout& src, const Layout& dst, const char* closing = " )")
{
    std::string given, fits;
    Arguments sources, srcStrides, destinations, dstStrides;
    const auto add = [&](const std::string& side, const Layout& layout, Arguments& pointers, Arguments& strides,
                         const char* end) {
        for (const Plane& plane : layout) {
            const std::string stride = side + plane.name + "Stride";
            given += side + plane.name + " && ";
            fits.append(" && ( ").append(stride).append(" == 0 || ").append(stride).append(" >= (");
            fits.append(plane.rowText).append("*sizeof(uint8_t))").append(end);
            pointers.push_back(buffer(8, 16));
            strides.push_back(test::stride(plane.row, 8));
        }
    };
    add("src", src, sources, srcStrides, " )");
    add("dst", dst, destinations, dstStrides, closing);
    return {operation, given + "srcWidth && srcHeight" + fits,
            sources + Arguments{width(1, 1, 8), height()} + srcStrides + destinations + dstStrides};
}

constexpr bool Planar = false, PseudoPlanar = true;
constexpr uint32_t RGB565 = 2, RGB888 = 3, RGBA8888 = 4, BGR565 = 2, BGR888 = 3, BGRA8888 = 4;

Entries entries()
{
    // Of one packed buffer to another.
    const Entries buffers =
        alike("src && dst && width && height", {buffer(8, 16), width(1, 1, 8), height(), buffer(8, 16)},
              {OP(odxColorRGB888toYCrCbu8), OP(odxColorYUV420toRGB565u8), OP(odxColorYUV420toRGB565u8Rotate180),
               OP(odxColorYUV420toRGB8888u8), OP(odxColorYCrCbH1V1toRGB888u8), OP(odxColorYCrCbH2V2toRGB888u8),
               OP(odxColorYCrCbH2V1toRGB888u8), OP(odxColorYCrCbH1V2toRGB888u8)});
    const Entries others = {
#define ODX_CASE(subsampling, pixels)                                                                          \
    conversion(OP(odxColorYCbCr##subsampling##PlanarTo##pixels##u8), yuv(subsampling, Planar), packed(pixels), \
               ")"),                                                                                           \
        conversion(OP(odxColorYCbCr##subsampling##PseudoPlanarTo##pixels##u8), yuv(subsampling, PseudoPlanar), \
                   packed(pixels), ")"),
        ODX_YCBCR_TO_RGB(ODX_CASE)
#undef ODX_CASE
#define ODX_CASE(pixels, subsampling)                                                          \
    conversion(OP(odxColor##pixels##ToYCbCr##subsampling##Planaru8), packed(pixels),           \
               yuv(subsampling, Planar, true)),                                                \
        conversion(OP(odxColor##pixels##ToYCbCr##subsampling##PseudoPlanaru8), packed(pixels), \
                   yuv(subsampling, PseudoPlanar, true)),
            ODX_RGB_TO_YCBCR(ODX_CASE)
#undef ODX_CASE
#define ODX_CASE(from, to) conversion(OP(odxColor##from##To##to##u8), packed(from), packed(to)),
                ODX_RGB_TO_RGB(ODX_CASE)
#undef ODX_CASE
#define ODX_CASE(from, fromSubsampling, to, toSubsampling)                               \
    conversion(OP(odxColorYCbCr##fromSubsampling##from##ToYCbCr##toSubsampling##to##u8), \
               yuv(fromSubsampling, from), yuv(toSubsampling, to)),
                    ODX_YCBCR_TO_YCBCR(ODX_CASE)
#undef ODX_CASE
                        conversion(OP(odxColorRGB888ToRGB565Rotate180u8), packed(3), packed(2)),
        conversion(OP(odxColorRGB888ToGrayu8), packed(3), packed(1)),
        conversion(OP(odxColorRGB888ToHSV888u8), packed(3), packed(3)),
        conversion(OP(odxColorRGB888toYCrCbu8_v2), packed(3), packed(3)),
        conversion(OP(odxColorRGBA8888ToLABu8), packed(4), packed(3)),
        conversion(OP(odxColorCbCrSwapu8), packed(2), packed(2)),
        ENTRY(odxColorYCrCb420PseudoPlanarToRGB8888u8, kImages + " && srcYStride && srcCStride && dstStride",
              {buffer(8, 16), width(1, 1, 8), height(), looseStride(8).explicitly(), looseStride(8).explicitly(),
               buffer(8, 16), looseStride(8).explicitly()}),
    };
    return buffers + others;
}

} // namespace odx::test::color
