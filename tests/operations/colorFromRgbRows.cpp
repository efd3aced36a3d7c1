#include "operations/shapes.h"

#include "cpu/ondrixColorFromRgbC.h"

namespace odx::test::colorFromRgb
{

// Rows of the functions that share a signature. Sizes of pixels are in bytes; `across` and `down` are the pixels
// that a chroma sample covers.

enum PixelSize : uint32_t { RGB565 = 2, RGB888 = 3, RGBA8888 = 4, BGR565 = 2, BGR888 = 3, BGRA8888 = 4 };

template <uint32_t subsampling>
constexpr Extent kCovers = {subsampling == 444 ? 1 : 2, subsampling == 420 ? 2 : 1};

Image<uint8_t> sourcePixels(Draw& draw, Extent extent, uint32_t size)
{
    return draw.source<uint8_t>("src", {extent.width * size, extent.height});
}

Image<uint8_t> destinationPixels(Draw& draw, Extent extent, uint32_t size)
{
    return draw.destination<uint8_t>("dst", {extent.width * size, extent.height});
}

template <uint32_t sourceSize, uint32_t destinationSize, auto* operation>
void packed(Draw& draw)
{
    const Extent extent = draw.extent();
    const auto src = sourcePixels(draw, extent, sourceSize);
    draw.call(operation, sized(src, extent), destinationPixels(draw, extent, destinationSize));
}

template <uint32_t size, auto* operation>
void packedOrInPlace(Draw& draw)
{
    const Extent extent = draw.extent();
    const auto src = sourcePixels(draw, extent, size);
    draw.call(operation, sized(src, extent), draw.destinationOr(src));
}

void yCrCb(Draw& draw)
{
    const Extent extent = draw.extent();
    const uint32_t bytes = 3 * extent.width * extent.height;
    draw.call(odxColorRGB888toYCrCbu8, from<uint8_t>("src", bytes), extent, to<uint8_t>("dst", bytes));
}

// Even widths for the most part, where odd ones are left unwritten.
template <uint32_t subsampling>
Extent mostlyWhole(Draw& draw)
{
    Extent extent = draw.extent();
    const uint32_t across = kCovers<subsampling>.width;
    if (draw.pick("odd", {0, 0, 0, 1}) == 0) extent.width = (extent.width + across - 1) / across * across;
    return extent;
}

template <uint32_t subsampling>
Extent chroma(Extent extent)
{
    const Extent covers = kCovers<subsampling>;
    return {(extent.width + covers.width - 1) / covers.width, (extent.height + covers.height - 1) / covers.height};
}

// The planes of a luma and chroma image, drawn by `plane(name, extent, packed)`; of interleaved chroma cr is not
// used.
struct Planes {
    Image<uint8_t> y, cb, cr;
};

template <uint32_t subsampling, bool interleaved, class Plane>
Planes planes(Draw& draw, Extent extent, Plane plane, bool wholePairs = false)
{
    const Extent samples = chroma<subsampling>(extent);
    Planes all = {};
    all.y = plane("Y", extent, false);
    if (!interleaved) {
        all.cb = plane("Cb", samples, false);
        all.cr = plane("Cr", samples, false);
    } else if (wholePairs || subsampling == 444 || extent.width % 2 == 0) {
        all.cb = plane("C", Extent{2 * samples.width, samples.height}, false);
    } else if (draw.pick("packed pairs", {0, 1}) == 1) { // a pair less
        all.cb = plane("C", Extent{extent.width, samples.height}, true);
    } else { // which 0 does not stand for
        all.cb = plane("C", Extent{extent.width + 1, samples.height}, false);
        all.cb.defaulted = false;
    }
    return all;
}

template <bool interleaved>
auto pointers(const Planes& p)
{
    return std::tuple(pixels(p.y, p.cb), when<!interleaved>(p.cr.pixels));
}
template <bool interleaved>
auto strides(const Planes& p)
{
    return std::tuple(test::strides(p.y, p.cb), when<!interleaved>(p.cr.strideArgument()));
}

template <uint32_t size, uint32_t subsampling, bool pairs, auto* operation>
void rgbToYCbCr(Draw& draw)
{
    const Extent extent = mostlyWhole<subsampling>(draw);
    const auto src = sourcePixels(draw, extent, size);
    const Planes d = planes<subsampling, pairs>(
        draw, extent, [&](auto... plane) { return draw.destination<uint8_t>(plane...); }, true);
    draw.call(operation, sized(src, extent), pointers<pairs>(d), strides<pairs>(d));
}

template <uint32_t fromSubsampling, bool fromPairs, uint32_t toSubsampling, bool toPairs, auto* operation>
void yCbCr(Draw& draw)
{
    const Extent extent = draw.extent();
    const Planes s = planes<fromSubsampling, fromPairs>(
        draw, extent, [&](auto... plane) { return draw.source<uint8_t>(plane...); });
    const Planes d = planes<toSubsampling, toPairs>(
        draw, extent, [&](auto... plane) { return draw.destination<uint8_t>(plane...); });
    draw.call(operation, pointers<fromPairs>(s), extent, strides<fromPairs>(s), pointers<toPairs>(d),
              strides<toPairs>(d));
}

constexpr bool Planar = false, PseudoPlanar = true;

std::vector<Row> rows()
{
    return {
#define ODX_ROW(pixels, subsampling)                                                            \
    {"odxColor" #pixels "ToYCbCr" #subsampling "Planaru8",                                      \
     rgbToYCbCr<pixels, subsampling, false, odxColor##pixels##ToYCbCr##subsampling##Planaru8>}, \
        {"odxColor" #pixels "ToYCbCr" #subsampling "PseudoPlanaru8",                            \
         rgbToYCbCr<pixels, subsampling, true, odxColor##pixels##ToYCbCr##subsampling##PseudoPlanaru8>},
        ODX_RGB_TO_YCBCR(ODX_ROW)
#undef ODX_ROW
#define ODX_ROW(from, to) {"odxColor" #from "To" #to "u8", packed<from, to, odxColor##from##To##to##u8>},
            ODX_RGB_TO_RGB(ODX_ROW)
#undef ODX_ROW
#define ODX_ROW(from, fromSubsampling, to, toSubsampling)                      \
    {"odxColorYCbCr" #fromSubsampling #from "ToYCbCr" #toSubsampling #to "u8", \
     yCbCr<fromSubsampling, from, toSubsampling, to,                           \
           odxColorYCbCr##fromSubsampling##from##ToYCbCr##toSubsampling##to##u8>},
                ODX_YCBCR_TO_YCBCR(ODX_ROW)
#undef ODX_ROW
                    {"odxColorRGB888ToRGB565Rotate180u8", packed<3, 2, odxColorRGB888ToRGB565Rotate180u8>},
        {"odxColorRGB888ToGrayu8", packed<3, 1, odxColorRGB888ToGrayu8>},
        {"odxColorRGB888toYCrCbu8", yCrCb},
        {"odxColorRGB888toYCrCbu8_v2", packedOrInPlace<3, odxColorRGB888toYCrCbu8_v2>},
        {"odxColorRGB888ToHSV888u8", packedOrInPlace<3, odxColorRGB888ToHSV888u8>},
        {"odxColorRGBA8888ToLABu8", packed<4, 3, odxColorRGBA8888ToLABu8>},
        {"odxColorCbCrSwapu8", packedOrInPlace<2, odxColorCbCrSwapu8>},
    };
}

} // namespace odx::test::colorFromRgb
