#include "operations/shapes.h"

#include "ondrix/opticalFlow.h"

#include <cmath>
#include <limits>

namespace odx::test::opticalFlow
{

// Two images, of which the second one may be the first one moved, and levels above them.
struct Flow {
    static constexpr int kMostLevels = 4;

    Image<uint8_t> src1, src2;
    odxPyrLevelStrided strided[2][kMostLevels] = {};
    odxPyrLevel packed[2][kMostLevels] = {};
    int levels, window[2], limit, count;
    float *features, *out;
    int32_t* status;

    Flow(Draw& draw, bool isPacked) : src1(), src2()
    {
        const Extent extent = draw.extent(1, 1, 10);
        src1 = draw.source<uint8_t>("src1", extent, isPacked);
        src2 = src1;
        src2.pixels = draw.source<uint8_t>("src2", {src1.stride, extent.height}, true).pixels;
        levels = draw.number("levels", 0, kMostLevels, 3);
        if (draw.pick("related", {1, 0}) != 0) move();
        std::vector<Image<uint8_t>> images = {src1, src2};
        for (int l = 1; l < levels; ++l) {
            for (int i : {0, 1}) {
                const Image<uint8_t> finer = images[images.size() - 2];
                images.push_back(draw.source<uint8_t>(
                    "level", {std::max(finer.width / 2, 1u), std::max(finer.height / 2, 1u)}, isPacked));
                reduce(finer, images.back());
                const Image<uint8_t>& level = images.back();
                strided[i][l] = {level.pixels, level.width, level.height, level.stride};
                packed[i][l] = {level.pixels, level.width, level.height};
            }
        }
        for (int& side : window)
            side = draw.pick("window", {7, 5, 9, 15, 21, 33, 3});
        limit = draw.pick("limit", {20, 0, 1, 2, 30});
        count = draw.number("count", 0, 20, draw.measures() ? 500 : 3);
        features = draw.sourceArray<float>("features", 2 * pairs());
        placeFeatures(draw, extent);
        out = draw.destinationArray<float>("out", 2 * pairs());
        status = draw.destinationArray<int32_t>("status", pairs());
    }

    uint32_t pairs() const { return static_cast<uint32_t>(std::max(count, 1)); }
    auto images() const { return std::tuple(src1.pixels, src2.pixels, src1.extent()); }
    auto rest() const { return std::tuple(features, out, status, count, window[0], window[1], limit, levels); }
    uint32_t width() const { return src1.width; }
    uint32_t height() const { return src1.height; }

private:
    void move() const
    {
        for (uint32_t y = 0; y < height(); ++y) {
            for (uint32_t x = 0; x < width(); ++x)
                src2.at(x, y) = src1.at(std::min(x + 1, width() - 1), y);
        }
    }
    static void reduce(const Image<uint8_t>& from, const Image<uint8_t>& to)
    {
        const auto at = [&](uint32_t x, uint32_t y) {
            return from.at(std::min(x, from.width - 1), std::min(y, from.height - 1));
        };
        for (uint32_t y = 0; y < to.height; ++y) {
            for (uint32_t x = 0; x < to.width; ++x)
                to.at(x, y) = static_cast<uint8_t>((at(2 * x, 2 * y) + at(2 * x + 1, 2 * y) +
                                                    at(2 * x, 2 * y + 1) + at(2 * x + 1, 2 * y + 1) + 2) /
                                                   4);
        }
    }
    // Anywhere, at whole numbers, very near to them, and nowhere; on a grid where they are measured.
    void placeFeatures(Draw& draw, Extent extent) const
    {
        constexpr float kOdd[] = {0,  1e-30F, -1e-9F, 3e9F, 1e38F, -1e38F, std::numeric_limits<float>::infinity(),
                                  NAN};
        for (uint32_t i = 0; i < 2 * pairs(); ++i) {
            const auto size = static_cast<float>(i % 2 == 0 ? extent.width : extent.height);
            if (draw.measures()) {
                constexpr uint32_t kColumns = 25;
                const uint32_t place = i % 2 == 0 ? i / 2 % kColumns : i / 2 / kColumns;
                features[i] = size * (0.1F + 0.03F * static_cast<float>(place)) + 0.3F;
                continue;
            }
            const int kind = draw.pick("kind", {0, 0, 0, 0, 0, 1, 2});
            const float any = draw.real("at", -5, size + 5, size / 2);
            features[i] = kind == 0 ? any : kind == 1 ? std::floor(any) : kOdd[draw.number("odd", 0, 7, 0)];
        }
    }
};

template <auto* operation>
void withGradients(Draw& draw)
{
    const Flow f(draw, true);
    draw.call(operation, f.images(), f.packed[0], f.packed[1], nullptr, nullptr, f.rest(), 1, 2, 3.0F, 4);
}

void strided(Draw& draw)
{
    const Flow f(draw, true);
    draw.call(odxTrackLKOpticalFlowu8_v2, f.images(), f.src1.strideArgument(), f.packed[0], f.packed[1], f.rest());
}

void estimated(Draw& draw)
{
    const Flow f(draw, false);
    const uint32_t size = 2 * f.pairs();
    float* const estimates = draw.sourceArray<float>("estimates", size);
    for (uint32_t i = 0; i < size; ++i)
        estimates[i] = f.features[i] + draw.real("by", -3, 3, 0);
    const int use = draw.pick("use", {0, 1}), mode = draw.pick("mode", {0, 1, 2, -1});
    const float epsilon = draw.real("epsilon", -0.1F, 0.1F, 0.0009F);
    draw.call(odxTrackLKOpticalFlowu8_v3, f.images(), f.src1.strideArgument(), f.strided[0], f.strided[1],
              f.rest(), estimates, use, epsilon, mode);
}

std::vector<Row> rows()
{
    constexpr bool contentMatters = true;
    return {
        {"odxTrackLKOpticalFlowu8", withGradients<odxTrackLKOpticalFlowu8>, contentMatters},
        {"odxTrackLKOpticalFlowf32", withGradients<odxTrackLKOpticalFlowf32>, contentMatters},
        {"odxTrackLKOpticalFlowu8_v2", strided, contentMatters},
        {"odxTrackLKOpticalFlowu8_v3", estimated, contentMatters},
    };
}

} // namespace odx::test::opticalFlow
