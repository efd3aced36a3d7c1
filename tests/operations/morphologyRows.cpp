#include "operations/shapes.h"

#include "ondrix/morphology.h"

namespace odx::test::morphology
{

template <auto* operation>
constexpr auto bordered3x3 = imageToImage<uint8_t, uint8_t, operation, Size<1>, borderType, borderValue>;

template <auto* operation>
void sized(Draw& draw)
{
    // Wide images are worked on in tiles.
    const Extent extent = draw.pick("tiles", {0, 0, 0, 0, 0, 0, 1}) == 0
                              ? draw.extent()
                              : Extent{draw.number<uint32_t>("width", 1500, 5000, 1920), draw.extent().height};
    const uint32_t n = draw.pick("N", {9u, 1u, 2u, 3u, 4u, 5u, 8u, 16u, 17u, 31u, 40u, 65u, 300u, 3000000000u});
    const auto src = draw.source<uint8_t>("src", extent), dst = draw.destination<uint8_t>("dst", extent);
    draw.call(operation, sized(src, extent), n, dst);
}

std::vector<Row> rows()
{
    return {
        VERSIONS(odxFilterErode3x3u8, imageToImage, uint8_t, uint8_t),
        {"odxFilterErode3x3u8_v3", bordered3x3<odxFilterErode3x3u8_v3>},
        {"odxFilterErodeNxNu8", sized<odxFilterErodeNxNu8>},
        VERSIONS(odxFilterDilate3x3u8, imageToImage, uint8_t, uint8_t),
        {"odxFilterDilate3x3u8_v3", bordered3x3<odxFilterDilate3x3u8_v3>},
        {"odxFilterDilateNxNu8", sized<odxFilterDilateNxNu8>},
    };
}

} // namespace odx::test::morphology
