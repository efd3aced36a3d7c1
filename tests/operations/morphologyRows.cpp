#include "ondrix/morphology.h"

#include "operations/draw.h"

namespace odx::test
{

namespace
{

template <auto* operation>
void packed3x3(Draw& draw)
{
    const Extent extent = draw.extent();
    const auto src = draw.source<uint8_t>("src", extent, true),
               dst = draw.destination<uint8_t>("dst", extent, true);
    draw.run([&] { operation(src.pixels, extent.width, extent.height, dst.pixels); });
}

template <auto* operation, class... Border>
void strided3x3(Draw& draw, Border... border)
{
    const Extent extent = draw.extent();
    const auto src = draw.source<uint8_t>("src", extent), dst = draw.destination<uint8_t>("dst", extent);
    draw.run([&] {
        return operation(src.pixels, extent.width, extent.height, src.strideArgument(), dst.pixels,
                         dst.strideArgument(), border...);
    });
}

template <auto* operation>
void bordered3x3(Draw& draw)
{
    const auto type =
        draw.pick("type", {ONDRIX_BORDER_REPLICATE, ONDRIX_BORDER_CONSTANT, ONDRIX_BORDER_UNDEFINED});
    strided3x3<operation>(draw, type, draw.number<uint32_t>("value", 0, 300, 0));
}

template <auto* operation>
void sized(Draw& draw)
{
    // Wide images are worked on in tiles.
    const Extent extent = draw.pick("tiles", {0, 0, 0, 0, 0, 0, 1}) == 0
                              ? draw.extent()
                              : Extent{draw.number<uint32_t>("width", 1500, 5000, 1920), draw.extent().height};
    const uint32_t n = draw.pick("N", {9u, 1u, 2u, 3u, 4u, 5u, 8u, 16u, 17u, 31u, 40u, 65u, 300u, 3000000000u});
    const auto src = draw.source<uint8_t>("src", extent), dst = draw.destination<uint8_t>("dst", extent);
    draw.run([&] {
        return operation(src.pixels, extent.width, extent.height, src.strideArgument(), n, dst.pixels,
                         dst.strideArgument());
    });
}

} // namespace

std::vector<Row> morphologyRows()
{
    return {
        {"odxFilterErode3x3u8", packed3x3<odxFilterErode3x3u8>},
        {"odxFilterErode3x3u8_v2", [](Draw& draw) { strided3x3<odxFilterErode3x3u8_v2>(draw); }},
        {"odxFilterErode3x3u8_v3", bordered3x3<odxFilterErode3x3u8_v3>},
        {"odxFilterErodeNxNu8", sized<odxFilterErodeNxNu8>},
        {"odxFilterDilate3x3u8", packed3x3<odxFilterDilate3x3u8>},
        {"odxFilterDilate3x3u8_v2", [](Draw& draw) { strided3x3<odxFilterDilate3x3u8_v2>(draw); }},
        {"odxFilterDilate3x3u8_v3", bordered3x3<odxFilterDilate3x3u8_v3>},
        {"odxFilterDilateNxNu8", sized<odxFilterDilateNxNu8>},
    };
}

} // namespace odx::test
