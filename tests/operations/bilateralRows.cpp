#include "ondrix/bilateral.h"

#include "operations/shapes.h"

#include <cmath>

namespace odx::test
{

namespace
{

// Deviations that leave weights at all differences, up to some, at none but 0, and at all alike.
float sigmaColor(Draw& draw)
{
    const float sigmas[] = {25, 16, 18.9F, 19.2F, 0, 70, 1e-40F, INFINITY};
    const uint32_t i = draw.pick("sigmaColor", {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u});
    return sigmas[i] != 0 ? sigmas[i] : draw.real("sigma", 0.3F, 100, 25);
}

float sigmaSpace(Draw& draw)
{
    const float sigmas[] = {2, 0.1F, 1, 7, 64};
    return sigmas[draw.pick("sigmaSpace", {0u, 1u, 2u, 3u, 4u})];
}

template <auto* operation, uint32_t K>
Row row(const char* name)
{
    return {name, imageToImage<uint8_t, uint8_t, operation, Size<1, 1, K - 1>>};
}

template <auto* operation, uint32_t K>
Row borderRow(const char* name)
{
    return {name, imageToImage<uint8_t, uint8_t, operation, Size<1, 1, K - 1>, sigmaColor, sigmaSpace, borderType,
                               borderValue>};
}

} // namespace

std::vector<Row> bilateralRows()
{
    return {
        row<odxBilateralFilter5x5u8, 5>("odxBilateralFilter5x5u8"),
        row<odxBilateralFilter7x7u8, 7>("odxBilateralFilter7x7u8"),
        row<odxBilateralFilter9x9u8, 9>("odxBilateralFilter9x9u8"),
        borderRow<odxBilateralFilter5x5u8_v2, 5>("odxBilateralFilter5x5u8_v2"),
        borderRow<odxBilateralFilter7x7u8_v2, 7>("odxBilateralFilter7x7u8_v2"),
        borderRow<odxBilateralFilter9x9u8_v2, 9>("odxBilateralFilter9x9u8_v2"),
        {"odxBilateralFilterRecursiveu8",
         imageToImage<uint8_t, uint8_t, odxBilateralFilterRecursiveu8, Size<1, 1, 0>, sigmaColor, sigmaSpace>},
    };
}

} // namespace odx::test
