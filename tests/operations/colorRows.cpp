#include "operations/shapes.h"

#include "cpu/ondrixColor.h"
#include "cpu/ondrixColorFromRgbC.h"
#include "ondrix/colorToRgb.h"

namespace odx::test::color
{

// In bytes.
enum PixelSize : uint32_t { RGB565 = 2, RGB888 = 3, RGBA8888 = 4, BGR565 = 2, BGR888 = 3, BGRA8888 = 4 };

// Pixels that a chroma sample covers.
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

constexpr bool Planar = false, PseudoPlanar = true;

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

template <uint32_t subsampling, bool interleaved>
Planes planes(Draw& draw, Extent extent, Image<uint8_t> (Draw::*plane)(const char*, Extent, bool),
              bool wholePairs = false)
{
    const Extent samples = chroma<subsampling>(extent);
    Planes all = {};
    all.y = (draw.*plane)("Y", extent, false);
    if (!interleaved) {
        all.cb = (draw.*plane)("Cb", samples, false);
        all.cr = (draw.*plane)("Cr", samples, false);
    } else if (wholePairs || subsampling == 444 || extent.width % 2 == 0) {
        all.cb = (draw.*plane)("C", Extent{2 * samples.width, samples.height}, false);
    } else if (draw.pick("packed pairs", {0, 1}) == 1) { // a pair less
        all.cb = (draw.*plane)("C", Extent{extent.width, samples.height}, true);
    } else { // which 0 does not stand for
        all.cb = (draw.*plane)("C", Extent{extent.width + 1, samples.height}, false);
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
    const Planes d = planes<subsampling, pairs>(draw, extent, &Draw::destination<uint8_t>, true);
    draw.call(operation, sized(src, extent), pointers<pairs>(d), strides<pairs>(d));
}

template <uint32_t fromSubsampling, bool fromPairs, uint32_t toSubsampling, bool toPairs, auto* operation>
void yCbCr(Draw& draw)
{
    const Extent extent = draw.extent();
    const Planes s = planes<fromSubsampling, fromPairs>(draw, extent, &Draw::source<uint8_t>);
    const Planes d = planes<toSubsampling, toPairs>(draw, extent, &Draw::destination<uint8_t>);
    draw.call(operation, pointers<fromPairs>(s), extent, strides<fromPairs>(s), pointers<toPairs>(d),
              strides<toPairs>(d));
}

// An odd height of 4:2:0 takes one row more of luma, and writes one more.
template <uint32_t subsampling, bool pairs, uint32_t size, auto* operation>
void yCbCrToRgb(Draw& draw)
{
    const Extent covers = kCovers<subsampling>, extent = draw.extent(covers.width);
    const uint32_t samples = (extent.height + covers.height - 1) / covers.height,
                   across = pairs ? 2 * extent.width / covers.width : chroma<subsampling>(extent).width;
    const Extent rows = {extent.width, samples * covers.height};
    Planes s = {draw.source<uint8_t>("Y", rows), draw.source<uint8_t>("Cb", {across, samples}), {}};
    if (!pairs) s.cr = draw.source<uint8_t>("Cr", {across, samples});
    draw.call(operation, pointers<pairs>(s), extent, strides<pairs>(s), destinationPixels(draw, rows, size));
}

// A packed plane of luma and one of chroma, whose last row has a byte more when the width is odd.
template <uint32_t pixelSize, auto* operation>
void packedImage(Draw& draw)
{
    const Extent extent = draw.extent();
    const uint32_t rows = extent.height + (extent.height + 1) / 2;
    draw.call(operation, from<uint8_t>("src", extent.width * rows + extent.width % 2), extent,
              to<uint8_t>("dst", extent.width * extent.height * pixelSize));
}

void stridedImage(Draw& draw)
{
    const Extent extent = draw.extent();
    const uint32_t yStride = extent.width + draw.number<uint32_t>("luma padding", 0, 40, 0);
    const uint32_t cStride = extent.width + draw.number<uint32_t>("chroma padding", 0, 40, 0);
    const uint32_t chromaRows = (extent.height + 1) / 2;
    const auto src =
        from<uint8_t>("src", yStride * extent.height + cStride * (chromaRows - 1) + (extent.width + 1) / 2 * 2);
    // Rows may overlap, and strides that are no whole number of pixels are cut.
    const uint32_t rowPixels = draw.pick("pixels of a row", {1u, 1u, 1u, 0u}) != 0
                                   ? extent.width + draw.number<uint32_t>("padding", 0, 40, 0)
                                   : draw.number<uint32_t>("overlapping", 1, extent.width, 1);
    const uint32_t remainder = draw.number<uint32_t>("remainder", 0, 3, 0);
    draw.call(odxColorYCrCb420PseudoPlanarToRGB8888u8, src, extent, yStride, cStride,
              to<uint8_t>("dst", 4 * (rowPixels * (extent.height - 1) + extent.width)), 4 * rowPixels + remainder);
}

template <uint32_t across, uint32_t down, auto* operation>
void codedUnits(Draw& draw)
{
    constexpr uint32_t unitSize = 64 * (across * down + 2);
    const Extent extent = draw.extent();
    const uint32_t unitsWide = (extent.width + 8 * across - 1) / (8 * across),
                   unitsHigh = (extent.height + 8 * down - 1) / (8 * down);
    // Where rows move on by whole blocks only, the last cut unit is the only one more.
    const bool wholeOnly = across == 1 && down == 1;
    const uint32_t step = wholeOnly ? extent.width / 8 : unitsWide;
    draw.call(operation, from<uint8_t>("src", (step * (unitsHigh - 1) + unitsWide) * unitSize), extent,
              to<uint8_t>("dst", 3 * extent.width * extent.height));
}

std::vector<Row> rows()
{
    return {
#define ODX_COLOR_ROW(name, shape, ...) {#name, shape<__VA_ARGS__, name>},
#define ODX_ROWS(subsampling, pixels)                                                                            \
    ODX_COLOR_ROW(odxColorYCbCr##subsampling##PlanarTo##pixels##u8, yCbCrToRgb, subsampling, Planar, pixels)     \
    ODX_COLOR_ROW(odxColorYCbCr##subsampling##PseudoPlanarTo##pixels##u8, yCbCrToRgb, subsampling, PseudoPlanar, \
                  pixels)
        ODX_YCBCR_TO_RGB(ODX_ROWS)
#undef ODX_ROWS
#define ODX_ROWS(pixels, subsampling)                                                                        \
    ODX_COLOR_ROW(odxColor##pixels##ToYCbCr##subsampling##Planaru8, rgbToYCbCr, pixels, subsampling, Planar) \
    ODX_COLOR_ROW(odxColor##pixels##ToYCbCr##subsampling##PseudoPlanaru8, rgbToYCbCr, pixels, subsampling,   \
                  PseudoPlanar)
            ODX_RGB_TO_YCBCR(ODX_ROWS)
#undef ODX_ROWS
#define ODX_ROWS(from, to) ODX_COLOR_ROW(odxColor##from##To##to##u8, packed, from, to)
                ODX_RGB_TO_RGB(ODX_ROWS)
#undef ODX_ROWS
#define ODX_ROWS(from, fromSubsampling, to, toSubsampling)                                                      \
    ODX_COLOR_ROW(odxColorYCbCr##fromSubsampling##from##ToYCbCr##toSubsampling##to##u8, yCbCr, fromSubsampling, \
                  from, toSubsampling, to)
                    ODX_YCBCR_TO_YCBCR(ODX_ROWS)
#undef ODX_ROWS
#undef ODX_COLOR_ROW
                        {"odxColorRGB888ToRGB565Rotate180u8", packed<3, 2, odxColorRGB888ToRGB565Rotate180u8>},
        {"odxColorRGB888ToGrayu8", packed<3, 1, odxColorRGB888ToGrayu8>},
        {"odxColorRGB888toYCrCbu8", yCrCb},
        {"odxColorRGB888toYCrCbu8_v2", packedOrInPlace<3, odxColorRGB888toYCrCbu8_v2>},
        {"odxColorRGB888ToHSV888u8", packedOrInPlace<3, odxColorRGB888ToHSV888u8>},
        {"odxColorRGBA8888ToLABu8", packed<4, 3, odxColorRGBA8888ToLABu8>},
        {"odxColorCbCrSwapu8", packedOrInPlace<2, odxColorCbCrSwapu8>},
        {"odxColorYUV420toRGB565u8", packedImage<2, odxColorYUV420toRGB565u8>},
        {"odxColorYUV420toRGB565u8Rotate180", packedImage<2, odxColorYUV420toRGB565u8Rotate180>},
        {"odxColorYUV420toRGB8888u8", packedImage<4, odxColorYUV420toRGB8888u8>},
        {"odxColorYCrCb420PseudoPlanarToRGB8888u8", stridedImage},
        {"odxColorYCrCbH1V1toRGB888u8", codedUnits<1, 1, odxColorYCrCbH1V1toRGB888u8>},
        {"odxColorYCrCbH2V2toRGB888u8", codedUnits<2, 2, odxColorYCrCbH2V2toRGB888u8>},
        {"odxColorYCrCbH2V1toRGB888u8", codedUnits<2, 1, odxColorYCrCbH2V1toRGB888u8>},
        {"odxColorYCrCbH1V2toRGB888u8", codedUnits<1, 2, odxColorYCrCbH1V2toRGB888u8>},
    };
}

} // namespace odx::test::color
