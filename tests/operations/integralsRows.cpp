#include "operations/shapes.h"

#include "ondrix/integrals.h"

namespace odx::test::integrals
{

Extent tableOf(Extent extent)
{
    return {extent.width + 1, extent.height + 1};
}

template <class T, auto* operation>
void image(Draw& draw)
{
    constexpr bool packed = arity(operation) < 6;
    const auto src = draw.source<uint8_t>("src", draw.extent(), packed);
    draw.call(operation, sized(src), draw.destination<T>("dst", tableOf(src.extent()), packed));
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
    draw.call(odxIntegrateImageu8u64, sized(src), tables & 1 ? sums.pixels : nullptr,
              tables & 2 ? squares.pixels : nullptr, beside == 0 ? sums.strideArgument() : sums.stride);
}

void planes(Draw& draw)
{
    const Extent drawn = draw.extent(2, 2);
    const Extent half = draw.measures() ? Extent{drawn.width / 2, drawn.height / 2} : drawn,
                 extent = {2 * half.width, 2 * half.height};
    const auto srcY = draw.source<uint8_t>("srcY", extent),
               srcC = draw.source<uint8_t>("srcC", {extent.width, half.height});
    const auto dstY = draw.destination<uint32_t>("dstY", tableOf(extent)),
               dstCb = draw.destination<uint32_t>("dstCb", tableOf(half)),
               dstCr = draw.destination<uint32_t>("dstCr", tableOf(half));
    draw.call(odxIntegrateImageYCbCr420PseudoPlanaru8, pixels(srcY, srcC), extent, strides(srcY, srcC),
              pixels(dstY, dstCb, dstCr), strides(dstY, dstCb, dstCr));
}

// Below another row, below nothing, and in its place; of any length, or of a fixed one.
template <auto* operation, uint32_t fixed>
void line(Draw& draw)
{
    const uint32_t length = fixed != 0 ? fixed : draw.length(1);
    const uint8_t* const src = draw.sourceArray<uint8_t>("src", length);
    const auto above = draw.source<uint32_t>("above", {length + 1, 1}, true);
    const int place = draw.pick("place", {0, 1, 2});
    if (place == 1) draw.writesInPlace(above);
    uint32_t* const dst = place == 1 ? above.pixels : draw.destinationArray<uint32_t>("dst", length + 1);
    draw.call(operation, src, when<fixed == 0>(length), place == 2 ? nullptr : above.pixels, dst);
}

// operation(src, width, height, srcStride, x, y, patchWidth, patchHeight, sums, squareSums): packed images have no
// stride, and fixed patches no size.
template <uint32_t fixed, auto* operation>
void patch(Draw& draw)
{
    constexpr bool packed = arity(operation) % 2 == 1;
    const Extent side = fixed != 0 ? Extent{fixed, fixed} : draw.extent();
    const uint32_t moreX = draw.number("more", 0U, 40U, 4U), moreY = draw.number("more", 0U, 40U, 4U),
                   x = draw.number("x", 0U, moreX, 1U), y = draw.number("y", 0U, moreY, 0U);
    const auto src = draw.source<uint8_t>("src", {side.width + moreX, side.height + moreY}, packed);
    const auto table = to<uint32_t>("sums", (side.width + 1) * (side.height + 1));
    draw.call(operation, sized(src), x, y, when<fixed == 0>(side), table, maybe(table));
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
    draw.call(odxIntegratePatchu8_v3, sized(src), x, y, side, sums, squared ? squares.pixels : nullptr,
              squares.strideArgument(),
              inside ? borderType : oneOf<ONDRIX_BORDER_REPLICATE, ONDRIX_BORDER_CONSTANT>, borderValue);
}

std::vector<Row> rows()
{
    return {
        VERSIONS(odxIntegrateImageu8, image, uint32_t),
        {"odxIntegrateImageu8u64", sumsAndSquares},
        {"odxIntegrateImageYCbCr420PseudoPlanaru8", planes},
        {"odxIntegrateImageLineu8", line<odxIntegrateImageLineu8, 0>},
        {"odxIntegrateImageLine64u8", line<odxIntegrateImageLine64u8, 64>},
        {"odxTiltedIntegralu8s32", image<int32_t, odxTiltedIntegralu8s32>},
        VERSIONS(odxIntegratePatch12x12u8, patch, 12),
        VERSIONS(odxIntegratePatch18x18u8, patch, 18),
        VERSIONS(odxIntegratePatchu8, patch, 0),
        {"odxIntegratePatchu8_v3", borderedPatch},
    };
}

} // namespace odx::test::integrals
