#include "operations/shapes.h"

#include "ondrix/tracking.h"

namespace odx::test::tracking
{

// ---- windows ----

// Where a window lies: anywhere, also beyond the image.
struct WindowInPlace {
    odxWindow start;
    uint32_t* words;

    WindowInPlace(Draw& draw, Extent extent) : start(), words(draw.destinationArray<uint32_t>("window", 4))
    {
        const auto place = [&](const char* name, uint32_t size) {
            return draw.pick("far", {0, 0, 0, 0, 0, 1}) != 0 ? 0xFFFFFFF0u
                                                             : draw.number<uint32_t>(name, 0, size + 4, size / 3);
        };
        start = {place("x", extent.width), place("y", extent.height), place("width", extent.width),
                 place("height", extent.height)};
    }
    odxWindow* fresh() const
    {
        memcpy(words, &start, sizeof start);
        return reinterpret_cast<odxWindow*>(words);
    }
};

template <class T, auto* operation, bool adaptive>
void windowTracker(Draw& draw)
{
    const auto src = draw.source<T>("src", draw.extent(1, 1, 0));
    const WindowInPlace window(draw, src.extent());
    const uint32_t limit = draw.pick("limit", {10u, 0u, 1u, 40u});
    const float epsilon = draw.real("epsilon", 0, 4, 0); // measured, it goes on
    const auto ellipse = [](Draw& d) {
        return reinterpret_cast<odxTrackedEllipse*>(d.destinationArray<float>("ellipse", 5));
    };
    const auto given = when<adaptive>(maybe(ellipse)(draw));
    draw.run([&] {
        return pass(operation, flatWith<true>(NoArguments(), sized(src), window.fresh(), limit, epsilon, given));
    });
}

// ---- patches ----

// An image of few grey values, so that no sum of it needs rounding: flat patches are flat indeed.
struct PatchSearch {
    Image<uint8_t> src;
    uint32_t x, y, width;
    int32_t threshold;

    explicit PatchSearch(Draw& draw) : src()
    {
        const Extent extent = draw.extent(8, 8, 18);
        src = draw.source<uint8_t>("src", extent, true);
        coarsen(src.pixels, extent.width * extent.height);
        width = draw.number<uint32_t>("search", 1, 11, 11);
        // Mostly where it fits, if it does anywhere.
        const uint32_t margin = draw.pick("inside", {1, 1, 1, 1, 0}) != 0 ? (width >> 1) + 4 : 0;
        const auto centre = [&](uint32_t size) {
            return size > 2 * margin + 1 ? draw.number<uint32_t>("centre", margin, size - margin - 1, size / 2)
                                         : size / 2;
        };
        x = centre(extent.width);
        y = centre(extent.height);
        threshold = draw.pick("threshold", {0, 0, 1, 50000, 400000});
    }

    // From near the centre, or anything.
    uint8_t* patches(Draw& draw, uint32_t count) const
    {
        uint8_t* const all = draw.sourceArray<uint8_t>("patches", 64 * count);
        coarsen(all, 64 * count);
        for (uint32_t i = 0; i < count; ++i) {
            if (draw.pick("from", {0, 0, 1}) == 1) continue;
            const uint32_t left = std::min(x + draw.number<uint32_t>("dx", 0, 4, 1), src.width - 8),
                           top = std::min(y + draw.number<uint32_t>("dy", 0, 4, 2), src.height - 8);
            for (uint32_t j = 0; j < 8; ++j)
                memcpy(all + 64 * i + 8 * j, &src.at(left, top + j), 8);
        }
        return all;
    }
    static void coarsen(uint8_t* pixels, uint32_t count)
    {
        for (uint32_t i = 0; i < count; ++i)
            pixels[i] &= 0xF0;
    }
};

template <auto* operation, bool hasThreshold>
void patchSearch(Draw& draw)
{
    const PatchSearch search(draw);
    const uint8_t* const patch = search.patches(draw, 1);
    const auto place = results<uint16_t, 1>;
    const auto sub = results<float, 1>;
    draw.call(operation, patch, search.src.pixels, search.src.extent(), search.x, search.y, search.width, place,
              place, results<int32_t, 1>, oneOf<1, 0>, sub, sub, when<hasThreshold>(search.threshold));
}

void patchesOnRect(Draw& draw)
{
    const PatchSearch search(draw);
    const uint32_t count = draw.number<uint32_t>("count", 1, 5, 10),
                   height = draw.number<uint32_t>("height", 1, 12, 11);
    const uint8_t* const patches = search.patches(draw, count);
    const auto place = to<uint16_t>("place", count);
    const auto number = to<int32_t>("score, status", count);
    draw.call(odxNCCPatchesOnRectu8, patches, count, search.src.pixels, search.src.extent(), search.x, search.y,
              search.width, height, search.threshold, place, place, number, maybe(number));
}

void blockMatching(Draw& draw)
{
    const auto src1 = draw.source<uint8_t>("src1", draw.extent(16, 16, 15));
    const auto src2 = draw.source<uint8_t>("src2", {src1.stride, src1.height}, true);
    const uint32_t step = draw.pick("step", {16u, 11u, 40u, 0xFFFFFFFFu}),
                   radius = draw.measures() ? 8 : draw.pick("radius", {3u, 0u, 1u, 2u, 20u});
    const uint32_t blocks = ((src1.width - 16) / step + 1) * ((src1.height - 16) / step + 1);
    draw.call(odxTrackBMOpticalFlow16x16u8, src1.pixels, src2.pixels, src1.extent(), src1.strideArgument(), step,
              radius, to<int16_t>("flow", 2 * blocks), maybe(to<uint16_t>("sums", blocks)));
}

std::vector<Row> rows()
{
    return {
        {"odxMeanShiftu8", windowTracker<uint8_t, odxMeanShiftu8, false>},
        {"odxMeanShifts32", windowTracker<int32_t, odxMeanShifts32, false>},
        {"odxMeanShiftf32", windowTracker<float, odxMeanShiftf32, false>},
        {"odxConAdaTracku8", windowTracker<uint8_t, odxConAdaTracku8, true>},
        {"odxConAdaTracks32", windowTracker<int32_t, odxConAdaTracks32, true>},
        {"odxConAdaTrackf32", windowTracker<float, odxConAdaTrackf32, true>},
        {"odxNCCPatchOnSquare8x8u8", patchSearch<odxNCCPatchOnSquare8x8u8, false>},
        {"odxNCCPatchOnSquare8x8u8_v2", patchSearch<odxNCCPatchOnSquare8x8u8_v2, true>},
        {"odxNCCPatchOnCircle8x8u8", patchSearch<odxNCCPatchOnCircle8x8u8, false>},
        {"odxNCCPatchOnCircle8x8u8_v2", patchSearch<odxNCCPatchOnCircle8x8u8_v2, true>},
        {"odxNCCPatchesOnRectu8", patchesOnRect},
        {"odxTrackBMOpticalFlow16x16u8", blockMatching},
    };
}

} // namespace odx::test::tracking
