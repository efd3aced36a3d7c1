#include "ondrix/convolution.h"

#include "operations/shapes.h"

namespace odx::test::convolution
{

// Weights whose sums fit 16 bits, others, and any.
const int16_t* kernel(Draw& draw, const char* name, uint32_t count)
{
    auto* const weights = const_cast<int16_t*>(draw.sourceArray<int16_t>(name, std::max(count, 1u)));
    const int range = draw.pick("range", {12, 1, 300, 4000, 32767, 32768});
    for (uint32_t i = 0; i < count && range != 32768; ++i)
        weights[i] = static_cast<int16_t>(weights[i] % (range + 1));
    return weights;
}

uint32_t oddSize(Draw& draw, uint32_t most)
{
    return std::min(draw.pick("size", {7u, 9u, 1u, 3u, 5u, 15u, 29u, 31u}), most);
}

// The borders' windows need no place inside an image.
Extent extentFor(Draw& draw, uint32_t M, uint32_t N)
{
    return draw.extent(1, 1, std::max(M, N) - 1);
}

// Of a size that is fixed, or else drawn and given.
template <uint32_t fixed, auto* operation>
void rounded(Draw& draw)
{
    constexpr bool packed = arity(operation) < 8;
    const uint32_t n = fixed != 0 ? fixed : draw.pick("N", {21u, 3u, 5u, 7u, 17u, 31u});
    const auto weights = [=](Draw& d) { return kernel(d, "kernel", n); };
    const auto src = draw.source<int16_t>("src", draw.extent(n, n), packed),
               dst = draw.destination<int16_t>("dst", src.extent(), packed);
    draw.call(operation, weights, weights, when<fixed == 0>(n), sized(src), dst);
}

constexpr auto shift = between<0u, 31u, 7u>;

template <class T, auto* operation>
void anyKernel(Draw& draw)
{
    const uint32_t m = oddSize(draw, 15), n = oddSize(draw, 15);
    const auto src = draw.source<uint8_t>("src", extentFor(draw, m, n));
    const auto dst = draw.destination<T>("dst", src.extent());
    draw.call(operation, kernel(draw, "kernel", m * n), m, n, between<0u, 15u, 7u>, sized(src), dst, borderType,
              borderValue);
}

void separableBytes(Draw& draw)
{
    const uint32_t m = oddSize(draw, 31), n = oddSize(draw, 31);
    const auto src = draw.source<uint8_t>("src", extentFor(draw, m, n)),
               dst = draw.destination<uint8_t>("dst", src.extent());
    const int16_t *const x = kernel(draw, "kernelX", m), *const y = kernel(draw, "kernelY", n);
    draw.call(odxFilterCorrSepMxNu8, x, m, y, n, shift, sized(src), dst, borderType, borderValue);
}

void separableWords(Draw& draw)
{
    const auto symmetry = oneOf<ONDRIX_KERNEL_GENERAL, ONDRIX_KERNEL_SYMMETRIC, ONDRIX_KERNEL_ANTISYMMETRIC>;
    const auto given = [](odxKernelSymmetry symmetric, uint32_t size) {
        return symmetric == 0 ? size : size / 2 + 2 - symmetric;
    };
    const uint32_t m = oddSize(draw, 31), n = oddSize(draw, 31);
    const odxFilterRegion region = oneOf<ONDRIX_FILTER_SAME, ONDRIX_FILTER_VALID>(draw);
    const bool same = region == ONDRIX_FILTER_SAME;
    const Extent extent = same ? extentFor(draw, m, n) : draw.extent(m, n);
    const odxKernelSymmetry symmetryX = symmetry(draw), symmetryY = symmetry(draw);
    const int16_t* const x = kernel(draw, "kernelX", given(symmetryX, m));
    const int16_t* const y = kernel(draw, "kernelY", given(symmetryY, n));
    const auto src = draw.source<int16_t>("src", extent);
    const auto dst =
        draw.destination<int16_t>("dst", same ? extent : Extent{extent.width - m + 1, extent.height - n + 1});
    draw.call(odxFilterConvSepMxNs16, x, m, symmetryX, y, n, symmetryY, shift, sized(src), dst, region, borderType,
              between<0u, 70000u, 0u>);
}

void inside(Draw& draw)
{
    // One that is wide, and one of more weights than kernels are made ready for.
    const uint32_t m = draw.pick("M", {7u, 1u, 2u, 3u, 4u, 15u, 64u, 200u}),
                   n = draw.pick("N", {7u, 1u, 2u, 3u, 6u, 33u});
    const auto src = draw.source<int16_t>("src", draw.extent(m, n, std::max(m, n) - 1));
    const auto dst = draw.destination<int16_t>("dst", {src.width - m + 1, src.height - n + 1});
    draw.call(odxConvValids16, kernel(draw, "kernel", m * n), m, n, shift, sized(src), dst);
}

std::vector<Row> rows()
{
    return {
        VERSIONS(odxFilterCorrSep9x9s16, rounded, 9),
        VERSIONS(odxFilterCorrSep11x11s16, rounded, 11),
        VERSIONS(odxFilterCorrSep13x13s16, rounded, 13),
        VERSIONS(odxFilterCorrSep15x15s16, rounded, 15),
        VERSIONS(odxFilterCorrSep17x17s16, rounded, 17),
        {"odxFilterCorrSepNxNs16", rounded<0, odxFilterCorrSepNxNs16>},
        {"odxFilterConvolveMxNu8", anyKernel<uint8_t, odxFilterConvolveMxNu8>},
        {"odxFilterConvolveMxNu8s16", anyKernel<int16_t, odxFilterConvolveMxNu8s16>},
        {"odxFilterCorrSepMxNu8", separableBytes},
        {"odxFilterConvSepMxNs16", separableWords},
        {"odxConvValids16", inside},
    };
}

} // namespace odx::test::convolution
