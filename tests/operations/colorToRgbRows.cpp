#include "operations/shapes.h"

#include "ondrix/colorToRgb.h"

namespace odx::test::colorToRgb
{

// Rows of the functions that share a signature. `across` and `down` are the pixels that a chroma pair covers.

// An odd height of 4:2:0 takes one row more of luma, and writes one more.
template <uint32_t across, uint32_t down>
Extent luma(Extent extent)
{
    return {extent.width, (extent.height + down - 1) / down * down};
}

template <uint32_t pixelSize>
Extent packed(Extent extent)
{
    return {extent.width * pixelSize, extent.height};
}

template <uint32_t across, uint32_t down, uint32_t pixelSize, auto* operation>
void planar(Draw& draw)
{
    const Extent extent = draw.extent(across), rows = luma<across, down>(extent);
    const Extent chroma = {(extent.width + across - 1) / across, rows.height / down};
    const auto y = draw.source<uint8_t>("srcY", rows);
    const auto cb = draw.source<uint8_t>("srcCb", chroma), cr = draw.source<uint8_t>("srcCr", chroma);
    const auto dst = draw.destination<uint8_t>("dst", packed<pixelSize>(rows));
    draw.call(operation, pixels(y, cb, cr), extent, strides(y, cb, cr), dst);
}

template <uint32_t across, uint32_t down, uint32_t pixelSize, auto* operation>
void pseudoPlanar(Draw& draw)
{
    const Extent extent = draw.extent(across), rows = luma<across, down>(extent);
    const auto y = draw.source<uint8_t>("srcY", rows);
    const auto c = draw.source<uint8_t>("srcC", {2 * extent.width / across, rows.height / down});
    const auto dst = draw.destination<uint8_t>("dst", packed<pixelSize>(rows));
    draw.call(operation, pixels(y, c), extent, strides(y, c), dst);
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
#define ODX_ROWS(subsampling, across, down, pixels, size)                                            \
    {"odxColorYCbCr" #subsampling "PlanarTo" #pixels "u8",                                           \
     planar<across, down, size, odxColorYCbCr##subsampling##PlanarTo##pixels##u8>},                  \
    {                                                                                                \
        "odxColorYCbCr" #subsampling "PseudoPlanarTo" #pixels "u8",                                  \
            pseudoPlanar<across, down, size, odxColorYCbCr##subsampling##PseudoPlanarTo##pixels##u8> \
    }
    return {
        ODX_ROWS(444, 1, 1, RGB565, 2),
        ODX_ROWS(444, 1, 1, RGB888, 3),
        ODX_ROWS(444, 1, 1, RGBA8888, 4),
        ODX_ROWS(422, 2, 1, RGB565, 2),
        ODX_ROWS(422, 2, 1, RGB888, 3),
        ODX_ROWS(422, 2, 1, RGBA8888, 4),
        ODX_ROWS(420, 2, 2, RGB565, 2),
        ODX_ROWS(420, 2, 2, RGB888, 3),
        ODX_ROWS(420, 2, 2, RGBA8888, 4),
        {"odxColorYUV420toRGB565u8", packedImage<2, odxColorYUV420toRGB565u8>},
        {"odxColorYUV420toRGB565u8Rotate180", packedImage<2, odxColorYUV420toRGB565u8Rotate180>},
        {"odxColorYUV420toRGB8888u8", packedImage<4, odxColorYUV420toRGB8888u8>},
        {"odxColorYCrCb420PseudoPlanarToRGB8888u8", stridedImage},
        {"odxColorYCrCbH1V1toRGB888u8", codedUnits<1, 1, odxColorYCrCbH1V1toRGB888u8>},
        {"odxColorYCrCbH2V2toRGB888u8", codedUnits<2, 2, odxColorYCrCbH2V2toRGB888u8>},
        {"odxColorYCrCbH2V1toRGB888u8", codedUnits<2, 1, odxColorYCrCbH2V1toRGB888u8>},
        {"odxColorYCrCbH1V2toRGB888u8", codedUnits<1, 2, odxColorYCrCbH1V2toRGB888u8>},
    };
#undef ODX_ROWS
}

} // namespace odx::test::colorToRgb
