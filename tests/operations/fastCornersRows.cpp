#include "operations/shapes.h"

#include "ondrix/fastCorners.h"

namespace odx::test::fastCorners
{

// The image, of which a border is not searched; at least 3 pixels.
Extent drawExtent(Draw& draw, uint32_t& border)
{
    border = draw.pick("border", {3u, 0u, 2u, 4u, 9u});
    const Extent extent = draw.extent(7, 7, 2 * std::max(border, 3u));
    border = std::min(border, (std::min(extent.width, extent.height) - 1) / 2);
    return extent;
}

// Detectors that look where a mask has bits, give scores, and suppress what is not the greatest around: with room
// for that, or without.
enum Kind : unsigned { kPlain, kMasked, kScored, kSuppressing = 4 };
template <auto* operation, unsigned kind>
void corners(Draw& draw)
{
    constexpr bool masked = (kind & kMasked) != 0;
    uint32_t border;
    Extent extent = drawExtent(draw, border);
    Extent mask = {};
    if (masked) mask = maskFor(draw, extent);
    const auto src = draw.source<uint8_t>("src", extent);
    const int barrier =
        draw.pick("barrier", {20, 20, 0, 1, 5, 60, 127, 128, 200, 253, 254, 255, 256, -1, -40, -255, -1000});
    const uint32_t pixels = extent.width * extent.height,
                   capacity = draw.pick("capacity", {pixels, pixels, pixels, pixels / 3, 40u, 7u, 1u, 0u});
    uint32_t *const xy = draw.destinationArray<uint32_t>("xy", 2 * std::max(capacity, 1u)),
                    *const scores = draw.destinationArray<uint32_t>("scores", std::max(capacity, 1u));
    const uint8_t* const bits = draw.sourceArray<uint8_t>("mask", masked ? (mask.width + 7) / 8 * mask.height : 1);
    if (masked && draw.pick("misfit", {0, 0, 0, 0, 0, 0, 0, 1}) == 1) mask.width -= 1;
    // Its content is nobody's business, so the room is no source and no destination.
    const uint32_t nms = draw.pick("nms", {1u, 0u, 7u});
    std::vector<uint32_t> room(3 * size_t{capacity} + extent.height, draw.number("seed", 0u, 99u, 0u));
    uint32_t count = 0;
    draw.call(operation, sized(src), barrier, border, xy, when<(kind & kScored) != 0>(scores), capacity, &count,
              when<masked>(bits, mask.width, mask.height),
              when<(kind & kSuppressing) != 0>(nms, nms == 0 ? nullptr : room.data()));
    draw.result(count);
}

std::vector<Row> rows()
{
    return {
        {"odxCornerFast9u8", corners<odxCornerFast9u8, kPlain>, true},
        {"odxCornerFast10u8", corners<odxCornerFast10u8, kPlain>, true},
        {"odxCornerFast9InMasku8", corners<odxCornerFast9InMasku8, kMasked>, true},
        {"odxCornerFast10InMasku8", corners<odxCornerFast10InMasku8, kMasked>, true},
        {"odxCornerFast9Scoreu8", corners<odxCornerFast9Scoreu8, kScored>, true},
        {"odxCornerFast9InMaskScoreu8", corners<odxCornerFast9InMaskScoreu8, kMasked | kScored>, true},
        {"odxCornerFast9Scoreu8_v2", corners<odxCornerFast9Scoreu8_v2, kScored | kSuppressing>, true},
        {"odxCornerFast9InMaskScoreu8_v2",
         corners<odxCornerFast9InMaskScoreu8_v2, kMasked | kScored | kSuppressing>, true},
        {"odxCornerFast10Scoreu8", corners<odxCornerFast10Scoreu8, kScored | kSuppressing>, true},
        {"odxCornerFast10InMaskScoreu8", corners<odxCornerFast10InMaskScoreu8, kMasked | kScored | kSuppressing>,
         true},
    };
}

} // namespace odx::test::fastCorners
