#include "operations/shapes.h"

#include "ondrix/mser.h"

namespace odx::test::mser
{

struct Handle {
    void* handle = nullptr;
    uint32_t made;

    Handle(Draw& draw, Extent extent, bool eight = false)
    {
        const int delta = draw.pick("delta", {5, 1, 2, 100});
        const uint32_t least = draw.pick("least", {20u, 2u, 60u}), most = draw.pick("most", {14400u, 62u, 400u});
        const float variation = draw.real("variation", 0.1f, 2, 0.5f),
                    diversity = draw.real("diversity", 0, 0.5f, 0.2f);
        made = (eight ? odxMserNN8Init : odxMserInit)(extent.width, extent.height, delta, least, most, variation,
                                                      diversity, &handle);
    }
    ~Handle() { odxMserRelease(handle); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
};

Extent drawExtent(Draw& draw)
{
    return draw.extent(51, 6, 2);
}

template <bool eight>
void handles(Draw& draw)
{
    const Extent extent = drawExtent(draw);
    draw.run([&] { return Handle(draw, extent, eight).made; });
}

// extraction(handle, src, width, height, stride, maxContours, ...), of levels that are few enough for regions.
// Of the `extended` ones arrays of a number for each region follow, and a bounding box.
template <class Count, auto* operation, bool eight = false, bool extended = false, bool box = false,
          uint32_t counts = 1>
void extraction(Draw& draw)
{
    const auto src = draw.source<uint8_t>("src", drawExtent(draw));
    const Handle handle(draw, src.extent(), eight);
    const int shift = draw.measures() ? 0 : draw.pick("shift", {5, 0, 4, 6});
    for (uint32_t y = 0; y < src.height; ++y) {
        for (uint32_t x = 0; x < src.width; ++x)
            src.at(x, y) = static_cast<uint8_t>(src.at(x, y) >> shift);
    }
    const uint32_t most = draw.number("most", 0u, 2000u, 10000u),
                   mostPoints = draw.number("points", 0u, 60000u, draw.measures() ? 2000000u : 20000u);
    const auto numbers = to<uint32_t>("numbers", most);
    draw.call(operation, handle.handle, sized(src), most, results<uint32_t, counts>, to<Count>("numPoints", most),
              mostPoints, to<uint32_t>("array", 2 * mostPoints),
              when<extended>(to<float>("variation", most), to<int32_t>("polarity", most), numbers, numbers),
              when<box>(to<uint32_t>("boxes", 4 * most)));
}

std::vector<Row> rows()
{
    constexpr bool contentMatters = true;
    return {
        {"odxMserInit", handles<false>, false, true},
        {"odxMserNN8Init", handles<true>, false, true},
        {"odxMserRelease", handles<false>, false, true},
        {"odxMseru8", extraction<uint32_t, odxMseru8>, contentMatters},
        {"odxMseru8_v2", extraction<uint16_t, odxMseru8_v2>, contentMatters},
        {"odxMserNN8u8", extraction<uint16_t, odxMserNN8u8, true>, contentMatters},
        {"odxMserExtu8", extraction<uint32_t, odxMserExtu8, false, true>},
        {"odxMserExtu8_v2", extraction<uint16_t, odxMserExtu8_v2, false, true>},
        {"odxMserExtNN8u8", extraction<uint16_t, odxMserExtNN8u8, true, true>},
        {"odxMserExtu8_v3", extraction<uint16_t, odxMserExtu8_v3, false, true, true>},
        {"odxMserSplitExtu8", extraction<uint16_t, odxMserSplitExtu8, false, true, false, 2>},
        {"odxMserSplitExtu8ST", extraction<uint16_t, odxMserSplitExtu8ST, false, true, false, 2>, contentMatters},
    };
}

} // namespace odx::test::mser
