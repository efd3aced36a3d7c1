#include "ondrix/bilateral.h"

#include "operations/shapes.h"

#include <limits>

namespace odx::test::bilateral
{

// Deviations that leave weights at all differences, up to some, at none but 0, and at all alike.
float color(Draw& draw)
{
    const float any = draw.real("any", 0.3F, 100, 25);
    const float sigmas[] = {25, 16, 18.9F, 19.2F, any, 70, 1e-40F, std::numeric_limits<float>::infinity()};
    return sigmas[draw.pick("sigmaColor", {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u})];
}

float space(Draw& draw)
{
    const float sigmas[] = {2, 0.1F, 1, 7, 64};
    return sigmas[draw.pick("sigmaSpace", {0u, 1u, 2u, 3u, 4u})];
}

template <auto* operation, uint32_t K, auto... rest>
constexpr auto filtered = imageToImage<uint8_t, uint8_t, operation, Size<1, 1, K - 1>, rest...>;
template <auto* operation, uint32_t K>
constexpr auto bordered = filtered<operation, K, color, space, borderType, borderValue>;

std::vector<Row> rows()
{
    return {
        {"odxBilateralFilter5x5u8", filtered<odxBilateralFilter5x5u8, 5>},
        {"odxBilateralFilter7x7u8", filtered<odxBilateralFilter7x7u8, 7>},
        {"odxBilateralFilter9x9u8", filtered<odxBilateralFilter9x9u8, 9>},
        {"odxBilateralFilter5x5u8_v2", bordered<odxBilateralFilter5x5u8_v2, 5>},
        {"odxBilateralFilter7x7u8_v2", bordered<odxBilateralFilter7x7u8_v2, 7>},
        {"odxBilateralFilter9x9u8_v2", bordered<odxBilateralFilter9x9u8_v2, 9>},
        {"odxBilateralFilterRecursiveu8", filtered<odxBilateralFilterRecursiveu8, 1, color, space>},
    };
}

} // namespace odx::test::bilateral
