#include "operations/shapes.h"

#include "ondrix/solvers.h"

namespace odx::test::solvers
{

template <class Source, class Result, auto* operation>
void product(Draw& draw)
{
    const Extent extent = draw.extent(); // of the result
    const uint32_t deep = draw.measures() ? 64 : draw.pick("deep", {5u, 1u, 2u, 31u, 256u, 257u, 300u});
    const auto src1 = draw.source<Source>("src1", {deep, extent.height});
    const auto src2 = draw.source<Source>("src2", {extent.width, deep});
    const auto dst = draw.destination<Result>("dst", extent);
    draw.call(operation, src1.pixels, deep, extent.height, src1.strideArgument(), src2.pixels, extent.width,
              src2.strideArgument(), dst);
}

// The buffers of a solver, with a matrix that is made anew for each call: symmetric, its diagonal strengthened so
// that it is positive definite, or as it was drawn.
struct System {
    uint32_t n;
    std::vector<float> drawn;
    float *A, *b, *diag, *x;

    System(Draw& draw, bool symmetric)
        : n(draw.measures() ? 128 : std::min(draw.length(1), 160u)), A(draw.destinationArray<float>("A", n * n)),
          b(draw.destinationArray<float>("b", n)), diag(draw.destinationArray<float>("diag", n)),
          x(draw.destinationArray<float>("x", n))
    {
        const float* const values = draw.sourceArray<float>("values", n * n);
        const float* const right = draw.sourceArray<float>("right", n);
        drawn.assign(values, values + size_t{n} * n);
        const int kind = draw.pick("kind", {0, 0, 1, 2});
        for (uint32_t i = 0; i < n && symmetric; ++i) {
            for (uint32_t j = 0; j < i; ++j)
                drawn[j * n + i] = drawn[i * n + j];
            if (kind == 0) drawn[i * n + i] = 600 * static_cast<float>(n);
        }
        if (kind == 2) drawn[draw.number("zero", 0u, n - 1, 0u) * (n + 1)] = 0;
        std::copy(right, right + n, b);
        refill();
    }
    void refill() const { std::copy(drawn.begin(), drawn.end(), A); }
};

template <auto* operation>
void symmetricSystem(Draw& draw)
{
    const System s(draw, true);
    draw.run([&] {
        s.refill();
        return operation(s.A, s.b, s.diag, s.n, s.x);
    });
}

void pivotedSystem(Draw& draw)
{
    const System s(draw, false);
    uint8_t* const pivot = draw.destinationArray<uint8_t>("pivot", s.n);
    draw.run([&] {
        s.refill();
        return odxSolveLUf32(s.A, s.b, static_cast<int>(s.n), pivot, s.x);
    });
}

// A decomposition takes the third power of the size: what is beyond two vectors wide becomes small.
Extent smallExtent(Draw& draw)
{
    const Extent extent = draw.extent();
    if (draw.measures()) return {64, 64};
    const auto side = [](uint32_t size) { return size > 40 ? 1 + size % 19 : size; };
    return {side(extent.width), side(extent.height)};
}

void decomposition(Draw& draw)
{
    const Extent extent = smallExtent(draw);
    const auto A = draw.source<float>("A", extent, true);
    const auto tall = to<float>("U", extent.width * extent.height),
               wide = to<float>("Vt", extent.width * extent.width);
    draw.call(odxSVDf32, A.pixels, extent.height, extent.width, to<float>("w", extent.width), tall, wide, tall,
              wide);
}

void leastSquares(Draw& draw)
{
    Extent extent = smallExtent(draw);
    extent.height = std::max(extent.height, extent.width);
    const auto A = draw.source<float>("A", extent, true);
    draw.call(odxSolvef32, A.pixels, extent, from<float>("b", extent.height), to<float>("x", extent.width));
}

std::vector<Row> rows()
{
    return {
        {"odxMatrixMultiplyf32", product<float, float, odxMatrixMultiplyf32>},
        {"odxMatrixMultiplys8s32", product<int8_t, int32_t, odxMatrixMultiplys8s32>},
        {"odxSolveCholeskyf32", symmetricSystem<odxSolveCholeskyf32>},
        {"odxSolvef32", leastSquares},
        {"odxSolveLDLf32", symmetricSystem<odxSolveLDLf32>},
        {"odxSolveLUf32", pivotedSystem},
        {"odxSVDf32", decomposition},
    };
}

} // namespace odx::test::solvers
