#include "operations/draw.h"

#include "ondrix/fastCorners.h"

namespace odx::test
{

namespace
{

// What all detectors take.
struct Detection {
    Image<uint8_t> src;
    int32_t barrier;
    uint32_t border, capacity;
    uint32_t* xy;

    template <auto* operation, class... Rest>
    void run(Draw& draw, Rest... rest) const
    {
        uint32_t count = 0;
        draw.call(operation, sized(src), barrier, border, xy, capacity, &count, rest...);
        draw.result(count);
    }
    template <auto* operation, class... Rest>
    void runScored(Draw& draw, Rest... rest) const
    {
        uint32_t* const scores = draw.destinationArray<uint32_t>("scores", std::max(capacity, 1u));
        uint32_t count = 0;
        draw.call(operation, sized(src), barrier, border, xy, scores, capacity, &count, rest...);
        draw.result(count);
    }
};

// A mask whose size is the image's, times 2^finer, divided by 2^coarser.
struct Mask {
    uint32_t finer = 0, coarser = 0;
    uint32_t width = 0, height = 0;
    const uint8_t* bits = nullptr;
};

// The image, of which a border is not searched; at least 3 pixels.
Extent drawExtent(Draw& draw, uint32_t& border)
{
    border = draw.pick("border", {3u, 0u, 2u, 4u, 9u});
    const Extent extent = draw.extent(7, 7, 2 * std::max(border, 3u));
    border = std::min(border, (std::min(extent.width, extent.height) - 1) / 2);
    return extent;
}

Detection detection(Draw& draw, Extent extent, uint32_t border)
{
    Detection d{};
    d.src = draw.source<uint8_t>("src", extent);
    d.barrier =
        draw.pick("barrier", {20, 20, 0, 1, 5, 60, 127, 128, 200, 253, 254, 255, 256, -1, -40, -255, -1000});
    d.border = border;
    const uint32_t pixels = extent.width * extent.height;
    d.capacity = draw.pick("capacity", {pixels, pixels, pixels, pixels / 3, 40u, 7u, 1u, 0u});
    d.xy = draw.destinationArray<uint32_t>("xy", 2 * std::max(d.capacity, 1u));
    return d;
}

Detection detection(Draw& draw)
{
    uint32_t border;
    const Extent extent = drawExtent(draw, border);
    return detection(draw, extent, border);
}

Mask drawScale(Draw& draw, Extent& extent)
{
    Mask mask;
    const int scale = draw.pick("mask scale", {0, 1, 2, 3, -1, -2, -3});
    mask.finer = scale > 0 ? static_cast<uint32_t>(scale) : 0;
    mask.coarser = scale < 0 ? static_cast<uint32_t>(-scale) : 0;
    extent.width = std::max(extent.width >> mask.coarser << mask.coarser, 8u);
    extent.height = std::max(extent.height >> mask.coarser << mask.coarser, 8u);
    mask.width = (extent.width << mask.finer) >> mask.coarser;
    mask.height = (extent.height << mask.finer) >> mask.coarser;
    return mask;
}

template <class Run>
void masked(Draw& draw, Run run)
{
    uint32_t border;
    Extent extent = drawExtent(draw, border);
    Mask mask = drawScale(draw, extent);
    const Detection d = detection(draw, extent, border);
    mask.bits = draw.sourceArray<uint8_t>("mask", (mask.width + 7) / 8 * mask.height);
    if (draw.pick("misfit", {0, 0, 0, 0, 0, 0, 0, 1}) == 1) mask.width -= 1;
    run(d, mask);
}

// Room for a suppression, or nothing.
uint32_t* temporary(Draw& draw, const Detection& d, uint32_t nmsEnabled)
{
    if (nmsEnabled == 0) return nullptr;
    // Its content is nobody's business, so it is no source and no destination.
    static thread_local std::vector<uint32_t> words;
    words.assign(3 * size_t{d.capacity} + d.src.height, static_cast<uint32_t>(draw.number("seed", 0, 99, 0)));
    return words.data();
}

template <auto* operation>
void plain(Draw& draw)
{
    detection(draw).run<operation>(draw);
}

template <auto* operation>
void inMask(Draw& draw)
{
    masked(draw, [&](const Detection& d, const Mask& mask) {
        d.run<operation>(draw, mask.bits, mask.width, mask.height);
    });
}

template <auto* operation>
void scored(Draw& draw)
{
    detection(draw).runScored<operation>(draw);
}

template <auto* operation>
void scoredInMask(Draw& draw)
{
    masked(draw, [&](const Detection& d, const Mask& mask) {
        d.runScored<operation>(draw, mask.bits, mask.width, mask.height);
    });
}

template <auto* operation>
void suppressed(Draw& draw)
{
    const Detection d = detection(draw);
    const uint32_t nms = draw.pick("nms", {1u, 0u, 7u});
    d.runScored<operation>(draw, nms, temporary(draw, d, nms));
}

template <auto* operation>
void suppressedInMask(Draw& draw)
{
    masked(draw, [&](const Detection& d, const Mask& mask) {
        const uint32_t nms = draw.pick("nms", {1u, 0u, 7u});
        d.runScored<operation>(draw, mask.bits, mask.width, mask.height, nms, temporary(draw, d, nms));
    });
}

} // namespace

std::vector<Row> fastCornersRows()
{
    return {
        {"odxCornerFast9u8", plain<odxCornerFast9u8>, true},
        {"odxCornerFast10u8", plain<odxCornerFast10u8>, true},
        {"odxCornerFast9InMasku8", inMask<odxCornerFast9InMasku8>, true},
        {"odxCornerFast10InMasku8", inMask<odxCornerFast10InMasku8>, true},
        {"odxCornerFast9Scoreu8", scored<odxCornerFast9Scoreu8>, true},
        {"odxCornerFast9InMaskScoreu8", scoredInMask<odxCornerFast9InMaskScoreu8>, true},
        {"odxCornerFast9Scoreu8_v2", suppressed<odxCornerFast9Scoreu8_v2>, true},
        {"odxCornerFast9InMaskScoreu8_v2", suppressedInMask<odxCornerFast9InMaskScoreu8_v2>, true},
        {"odxCornerFast10Scoreu8", suppressed<odxCornerFast10Scoreu8>, true},
        {"odxCornerFast10InMaskScoreu8", suppressedInMask<odxCornerFast10InMaskScoreu8>, true},
    };
}

} // namespace odx::test
