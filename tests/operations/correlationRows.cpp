#include "ondrix/correlation.h"

#include "operations/shapes.h"

namespace odx::test::correlation
{

// Weights of a smoothing kernel, whose sums fit few bits, and any others.
const int8_t* integerKernel(Draw& draw, uint32_t n)
{
    const uint32_t count = n * n;
    auto* const kernel = const_cast<int8_t*>(draw.sourceArray<int8_t>("kernel", count));
    const int range = draw.pick("range", {2, 10, 40, 128, 2});
    for (uint32_t i = 0; i < count && range != 128; ++i)
        kernel[i] = static_cast<int8_t>(kernel[i] % (range + 1));
    return kernel;
}

template <auto* operation>
void corr3x3(Draw& draw)
{
    constexpr bool packed = arity(operation) < 7;
    const Extent extent = draw.extent();
    const int8_t* const kernel = integerKernel(draw, 3);
    const auto src = draw.source<uint8_t>("src", extent, packed);
    draw.call(operation, kernel, sized(src), draw.destination<uint8_t>("dst", extent, packed));
}

uint32_t size(Draw& draw)
{
    return draw.pick("N", {7u, 1u, 2u, 3u, 4u, 5u, 6u, 9u, 31u, 32u});
}

// operation(arguments..., src, width, height, srcStride, dst, dstStride) of an image that is larger than n.
template <class T, auto* operation, class... Arguments>
void larger(Draw& draw, uint32_t n, Arguments... arguments)
{
    const auto src = draw.source<uint8_t>("src", draw.extent(n + 1, n + 1, 2 * (n / 2)));
    draw.call(operation, arguments..., sized(src), draw.destination<T>("dst", src.extent()));
}

template <class T, auto* operation>
void shifted(Draw& draw)
{
    const uint32_t n = size(draw);
    const int8_t* const kernel = integerKernel(draw, n);
    const int32_t shift = draw.pick("anyhow", {0, 0, 0, 1}) == 0
                              ? draw.number("shift", -4, 12, 5)
                              : draw.pick("shift", {-31, -32, 31, 32, INT32_MIN});
    larger<T, operation>(draw, n, kernel, n, shift);
}

void real(Draw& draw)
{
    const uint32_t n = size(draw);
    auto* const kernel = const_cast<float*>(draw.sourceArray<float>("kernel", n * n));
    const float scale = draw.pick("scale", {0, 0, 1, 2}) == 1 ? 1e-38F : 0.1F;
    for (uint32_t i = 0; i < n * n; ++i)
        kernel[i] = static_cast<float>(draw.measures() ? 1 : static_cast<int>(i * 7 % 11) - 5) * scale;
    larger<float, odxFilterCorrNxNu8f32>(draw, n, kernel, n);
}

std::vector<Row> rows()
{
    return {
        {"odxFilterCorr3x3s8", corr3x3<odxFilterCorr3x3s8>},
        {"odxFilterCorr3x3s8_v2", corr3x3<odxFilterCorr3x3s8_v2>},
        {"odxFilterCorrNxNu8", shifted<uint8_t, odxFilterCorrNxNu8>},
        {"odxFilterCorrNxNu8s16", shifted<int16_t, odxFilterCorrNxNu8s16>},
        {"odxFilterCorrNxNu8f32", real},
    };
}

} // namespace odx::test::correlation
