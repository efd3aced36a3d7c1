#include "operations/shapes.h"

#include "ondrix/integrals.h"

namespace odx::test
{

namespace
{

Extent tableOf(Extent extent)
{
    return {extent.width + 1, extent.height + 1};
}

template <class T, auto* operation>
void image(Draw& draw)
{
    const Extent extent = draw.extent();
    const auto src = draw.source<uint8_t>("src", extent);
    const auto dst = draw.destination<T>("dst", tableOf(extent));
    draw.run([&] {
        return operation(src.pixels, extent.width, extent.height, src.strideArgument(), dst.pixels,
                         dst.strideArgument());
    });
}

void packedImage(Draw& draw)
{
    const Extent extent = draw.extent();
    const auto src = draw.source<uint8_t>("src", extent, true);
    const auto dst = draw.destination<uint32_t>("dst", tableOf(extent), true);
    draw.run([&] { odxIntegrateImageu8(src.pixels, extent.width, extent.height, dst.pixels); });
}

// Both tables, or either, of one stride; now and then of rows whose squares have a sum beyond 32 bits.
void sumsAndSquares(Draw& draw)
{
    Extent extent = draw.extent();
    if (draw.number("wide", 0, 40, 0) == 40) extent = {extent.width + 65536 * (1 + extent.height % 2), 2};
    const uint32_t beside = draw.pick("beside", {0, 0, 1, 7});
    const auto src = draw.source<uint8_t>("src", extent);
    const Extent table = {extent.width + 1 + beside, extent.height + 1};
    const auto sums = draw.destination<uint64_t>("sums", table, true),
               squares = draw.destination<uint64_t>("squareSums", table, true);
    const int tables = draw.pick("tables", {3, 3, 1, 2});
    draw.run([&] {
        odxIntegrateImageu8u64(src.pixels, extent.width, extent.height, src.strideArgument(),
                               tables & 1 ? sums.pixels : nullptr, tables & 2 ? squares.pixels : nullptr,
                               beside == 0 ? sums.strideArgument() : sums.stride);
    });
}

void planes(Draw& draw)
{
    const Extent drawn = draw.extent(2, 2);
    const Extent half = draw.measures() ? Extent{drawn.width / 2, drawn.height / 2} : drawn,
                 extent = {2 * half.width, 2 * half.height};
    const auto srcY = draw.source<uint8_t>("srcY", extent);
    const auto srcC = draw.source<uint8_t>("srcC", {extent.width, half.height});
    const auto dstY = draw.destination<uint32_t>("dstY", tableOf(extent));
    const auto dstCb = draw.destination<uint32_t>("dstCb", tableOf(half)),
               dstCr = draw.destination<uint32_t>("dstCr", tableOf(half));
    draw.run([&] {
        odxIntegrateImageYCbCr420PseudoPlanaru8(srcY.pixels, srcC.pixels, extent.width, extent.height,
                                                srcY.strideArgument(), srcC.strideArgument(), dstY.pixels,
                                                dstCb.pixels, dstCr.pixels, dstY.strideArgument(),
                                                dstCb.strideArgument(), dstCr.strideArgument());
    });
}

// Below another row, below nothing, and in its place.
template <class Operation>
void line(Draw& draw, uint32_t length, Operation operation)
{
    const uint8_t* const src = draw.sourceArray<uint8_t>("src", length);
    const auto above = draw.source<uint32_t>("above", {length + 1, 1}, true);
    const int place = draw.pick("place", {0, 1, 2});
    if (place == 1) draw.writesInPlace(above);
    uint32_t* const dst = place == 1 ? above.pixels : draw.destinationArray<uint32_t>("dst", length + 1);
    draw.run([&] { operation(src, place == 2 ? nullptr : above.pixels, dst); });
}
void anyLine(Draw& draw)
{
    const uint32_t length = draw.length(1);
    line(draw, length, [=](auto* src, auto*... rows) { odxIntegrateImageLineu8(src, length, rows...); });
}
void line64(Draw& draw)
{
    line(draw, 64, odxIntegrateImageLine64u8);
}

// operation(src, width, height, ..., sums, squareSums), with what `of` gives the operation for a place between.
template <class Operation>
void patch(Draw& draw, Extent side, bool packed, Operation operation)
{
    const Extent extent = {side.width + draw.number("more", 0U, 40U, 4U),
                           side.height + draw.number("more", 0U, 40U, 4U)};
    const auto src = draw.source<uint8_t>("src", extent, packed);
    const auto x = draw.number("x", 0U, extent.width - side.width, 1U),
               y = draw.number("y", 0U, extent.height - side.height, 0U);
    const uint32_t entries = (side.width + 1) * (side.height + 1);
    uint32_t* const sums = draw.destinationArray<uint32_t>("sums", entries);
    const bool squared = draw.pick("squares", {1, 1, 0}) == 1;
    uint32_t* const squares = squared ? draw.destinationArray<uint32_t>("squareSums", entries) : nullptr;
    draw.run([&] { operation(src, x, y, sums, squares); });
}
template <uint32_t side, auto* operation>
void fixed(Draw& draw)
{
    patch(draw, {side, side}, true,
          [](const auto& src, auto... rest) { operation(src.pixels, src.width, src.height, rest...); });
}
template <uint32_t side, auto* operation>
void fixedOfStride(Draw& draw)
{
    patch(draw, {side, side}, false, [](const auto& src, auto... rest) {
        operation(src.pixels, src.width, src.height, src.strideArgument(), rest...);
    });
}
void anyPatch(Draw& draw)
{
    const Extent side = draw.extent();
    patch(draw, side, true, [=](const auto& src, uint32_t x, uint32_t y, auto... tables) {
        odxIntegratePatchu8(src.pixels, src.width, src.height, x, y, side.width, side.height, tables...);
    });
}
void anyPatchOfStride(Draw& draw)
{
    const Extent side = draw.extent();
    patch(draw, side, false, [=](const auto& src, uint32_t x, uint32_t y, auto... tables) {
        odxIntegratePatchu8_v2(src.pixels, src.width, src.height, src.strideArgument(), x, y, side.width,
                               side.height, tables...);
    });
}

// From before an image to behind it, and far away.
int32_t placeBeside(Draw& draw, uint32_t patch, uint32_t image)
{
    const auto near =
        draw.number<int32_t>("place", -static_cast<int32_t>(patch) - 2, static_cast<int32_t>(image) + 2, -1);
    return draw.pick("far", {0, 0, 0, 0, 0, 1}) == 0 ? near : draw.pick("place", {INT32_MIN, INT32_MAX});
}
void borderedPatch(Draw& draw)
{
    const Extent side = draw.extent();
    const auto src = draw.source<uint8_t>(
        "src", {draw.number("width", 1U, 400U, side.width), draw.number("height", 1U, 40U, side.height)});
    const auto sums = draw.destination<uint32_t>("sums", tableOf(side)),
               squares = draw.destination<uint32_t>("squareSums", tableOf(side));
    const bool squared = draw.pick("squares", {1, 1, 0}) == 1;
    const int32_t x = placeBeside(draw, side.width, src.width), y = placeBeside(draw, side.height, src.height);
    const bool inside =
        x >= 0 && y >= 0 && int64_t{x} + side.width <= src.width && int64_t{y} + side.height <= src.height;
    const odxBorderType border =
        inside ? borderType(draw) : oneOf<ONDRIX_BORDER_REPLICATE, ONDRIX_BORDER_CONSTANT>(draw);
    runWith<borderValue>(draw, [&](uint32_t value) {
        return odxIntegratePatchu8_v3(src.pixels, src.width, src.height, src.strideArgument(), x, y, side.width,
                                      side.height, sums.pixels, sums.strideArgument(),
                                      squared ? squares.pixels : nullptr, squares.strideArgument(), border, value);
    });
}

} // namespace

std::vector<Row> integralsRows()
{
    return {
        {"odxIntegrateImageu8", packedImage},
        {"odxIntegrateImageu8_v2", image<uint32_t, odxIntegrateImageu8_v2>},
        {"odxIntegrateImageu8u64", sumsAndSquares},
        {"odxIntegrateImageYCbCr420PseudoPlanaru8", planes},
        {"odxIntegrateImageLineu8", anyLine},
        {"odxIntegrateImageLine64u8", line64},
        {"odxTiltedIntegralu8s32", image<int32_t, odxTiltedIntegralu8s32>},
        {"odxIntegratePatch12x12u8", fixed<12, odxIntegratePatch12x12u8>},
        {"odxIntegratePatch12x12u8_v2", fixedOfStride<12, odxIntegratePatch12x12u8_v2>},
        {"odxIntegratePatch18x18u8", fixed<18, odxIntegratePatch18x18u8>},
        {"odxIntegratePatch18x18u8_v2", fixedOfStride<18, odxIntegratePatch18x18u8_v2>},
        {"odxIntegratePatchu8", anyPatch},
        {"odxIntegratePatchu8_v2", anyPatchOfStride},
        {"odxIntegratePatchu8_v3", borderedPatch},
    };
}

} // namespace odx::test
