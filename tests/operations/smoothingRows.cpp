#include "operations/shapes.h"

#include "ondrix/smoothing.h"

namespace odx::test::smoothing
{

// 1 for borders, else none.
constexpr auto border = oneOf<1, 0, 2>;

template <class T, class Size, auto* operation>
constexpr auto gaussian = imageToImage<T, T, operation, Size, border>;
template <auto* operation>
constexpr auto withBorderType = imageToImage<uint8_t, uint8_t, operation, Size<1>, borderType, borderValue>;

void boxNxN(Draw& draw)
{
    const uint32_t n = draw.number<uint32_t>("N", 2, 30, 5);
    const auto src = draw.source<float>("src", draw.extent(5, 5));
    draw.call(odxBoxFilterNxNf32, sized(src), n, draw.destinationOr(src));
}

// Of strides of which 0 stands for nothing.
template <class T, auto* operation, uint32_t least, auto... sizes>
void explicitly(Draw& draw)
{
    auto src = draw.source<T>("src", draw.extent(least, least)), dst = draw.destination<T>("dst", src.extent());
    src.defaulted = dst.defaulted = false;
    draw.call(operation, sized(src), sizes..., dst);
}
template <auto* operation, uint32_t K>
constexpr auto box = explicitly<uint8_t, operation, K>;

std::vector<Row> rows()
{
    return {
        {"odxFilterGaussian3x3u8", gaussian<uint8_t, Size<7, 1>, odxFilterGaussian3x3u8>},
        {"odxFilterGaussian3x3u8_v2", gaussian<uint8_t, Size<7, 2>, odxFilterGaussian3x3u8_v2>},
        {"odxFilterGaussian3x3u8_v3", withBorderType<odxFilterGaussian3x3u8_v3>},
        VERSIONS(odxFilterGaussian5x5u8, gaussian, uint8_t, Size<5, 5>),
        VERSIONS(odxFilterGaussian11x11u8, gaussian, uint8_t, Size<11, 11>),
        VERSIONS(odxFilterGaussian5x5s16, gaussian, int16_t, Size<1, 2>),
        VERSIONS(odxFilterGaussian5x5s32, gaussian, int32_t, Size<5, 5>),
        {"odxBoxFilter3x3u8", box<odxBoxFilter3x3u8, 3>},
        {"odxBoxFilter3x3u8_v2", withBorderType<odxBoxFilter3x3u8_v2>},
        {"odxBoxFilter5x5u8", box<odxBoxFilter5x5u8, 5>},
        {"odxBoxFilter11x11u8", box<odxBoxFilter11x11u8, 11>},
        {"odxBoxFilterNxNf32", boxNxN},
        VERSIONS(odxFilterMedian3x3u8, imageToImage, uint8_t, uint8_t),
        {"odxFilterMedian3x3u8_v3", withBorderType<odxFilterMedian3x3u8_v3>},
        {"odxFilterMedianMxNs16",
         explicitly<int16_t, odxFilterMedianMxNs16, 1, oneOf<3u, 5u, 7u, 21u>, oneOf<3u, 5u, 9u>>},
    };
}

} // namespace odx::test::smoothing
