#include "operations/shapes.h"

#include "ondrix/gradients.h"

namespace odx::test::gradients
{

// One or two images of results; the first versions have no stride for them, both have that of the first.
template <class S, class T, bool pairs, auto* operation>
void gradients(Draw& draw)
{
    const auto src = draw.source<S>("src", draw.extent(3, 3));
    const auto run = [&](auto... results) {
        constexpr bool strided = std::is_invocable_v<decltype(operation), S*, uint32_t, uint32_t, uint32_t,
                                                     decltype(results)..., uint32_t>;
        const Extent size = pairs ? Extent{2 * src.width - 4, src.height - 2} : Extent{src.width, 2 * src.height};
        const auto out = draw.destination<T>("gradients", size, !strided);
        uint32_t rows = 0;
        ((results = &out.at(0, rows), rows += src.height), ...);
        draw.call(operation, sized(src), results..., when<strided>(out.strideArgument()));
    };
    std::apply(run, std::tuple_cat(std::tuple<T*>(), when<!pairs>(static_cast<T*>(nullptr))));
}
template <class T, auto* operation>
constexpr auto pairs = gradients<uint8_t, T, true, operation>;
template <class S, class T, auto* operation>
constexpr auto planes = gradients<S, T, false, operation>;

// Gradients that need not be wanted, below each other in one image; a measurement of edges wants none.
auto optional(Draw& draw, Extent extent, int typical)
{
    const int wanted = draw.pick("wanted", {typical, 3 - typical, 1, 2});
    int16_t* const none = nullptr;
    if (wanted == 0) return std::tuple(none, none, 0u);
    const auto both = draw.destination<int16_t>("dx, dy", {extent.width, 2 * extent.height});
    return std::tuple(wanted & 1 ? both.pixels : none, wanted & 2 ? &both.at(0, extent.height) : none,
                      both.strideArgument());
}

template <uint32_t K, auto* operation>
void sobel(Draw& draw)
{
    const auto src = draw.source<uint8_t>("src", draw.extent(1, 1, K - 1));
    const auto out = optional(draw, src.extent(), 3);
    draw.call(operation, sized(src), out, borderType, borderValue);
}

void canny(Draw& draw)
{
    const auto src = draw.source<uint8_t>("src", draw.extent()),
               dst = draw.destination<uint8_t>("dst", src.extent());
    const auto out = optional(draw, src.extent(), 0);
    const uint32_t kernel = draw.pick("kernel", {3u, 5u, 7u});
    const int32_t scale = kernel == 3 ? 1 : kernel == 5 ? 10 : 80;
    const int low = scale * draw.number("low", -300, 900, 80), high = scale * draw.number("high", -600, 1500, 200);
    draw.call(odxFilterCannyu8, sized(src), kernel, low, high, oneOf<ONDRIX_NORM_L1, ONDRIX_NORM_L2>, dst, out);
}

constexpr auto low = between<-10, 60, 20>, high = between<60, 300, 60>;
void differenceEdges(Draw& draw)
{
    const auto src = draw.source<uint8_t>("src", draw.extent(3, 3)),
               dst = draw.destination<uint8_t>("dst", src.extent());
    const auto out = optional(draw, src.extent(), 3);
    draw.call(odxFilterCanny3x3u8_v3, sized(src), dst, low, high, out);
}

std::vector<Row> rows()
{
    using u8 = uint8_t;
    using s8 = int8_t;
    using s16 = int16_t;
    using f32 = float;
    return {
        VERSIONS(odxImageGradientInterleaveds16, pairs, s16),
        VERSIONS(odxImageGradientInterleavedf32, pairs, f32),
        VERSIONS(odxImageGradientPlanars16, planes, u8, s16),
        VERSIONS(odxImageGradientPlanarf32, planes, u8, f32),
        VERSIONS(odxImageGradientSobelInterleaveds16, pairs, s16),
        {"odxImageGradientSobelInterleaveds16_v3", pairs<s16, odxImageGradientSobelInterleaveds16_v3>},
        VERSIONS(odxImageGradientSobelInterleavedf32, pairs, f32),
        VERSIONS(odxImageGradientSobelPlanars16, planes, u8, s16),
        {"odxImageGradientSobelPlanars16_v3", planes<u8, s16, odxImageGradientSobelPlanars16_v3>},
        VERSIONS(odxImageGradientSobelPlanars8, planes, u8, s8),
        VERSIONS(odxImageGradientSobelPlanarf32, planes, u8, f32),
        VERSIONS(odxImageGradientSobelPlanarf32f32, planes, f32, f32),
        {"odxImageGradientScharrInterleaveds16", pairs<s16, odxImageGradientScharrInterleaveds16>},
        VERSIONS(odxFilterSobel3x3u8, imageToImage, u8, u8),
        {"odxFilterSobel3x3u8s16", sobel<3, odxFilterSobel3x3u8s16>},
        {"odxFilterSobel5x5u8s16", sobel<5, odxFilterSobel5x5u8s16>},
        {"odxFilterSobel7x7u8s16", sobel<7, odxFilterSobel7x7u8s16>},
        {"odxFilterCannyu8", canny, true},
        {"odxFilterCanny3x3u8", imageToImage<u8, u8, odxFilterCanny3x3u8, Size<3>, low, high>, true},
        {"odxFilterCanny3x3u8_v2", imageToImage<u8, u8, odxFilterCanny3x3u8_v2, Size<3>, low, high>, true},
        {"odxFilterCanny3x3u8_v3", differenceEdges, true},
    };
}

} // namespace odx::test::gradients
