#include "common/canvas.h"
#include "demo/sections.h"

#include <algorithm>

namespace demo
{

namespace
{

constexpr unsigned kLevels = 256, kPlot = 240; // of a histogram, and its height

// The scene in a haze, lit from the left: a few levels of many.
Plane<uint8_t> hazed(const Plane<uint8_t>& grey)
{
    return Plane<uint8_t>::from(grey.width(), grey.height(), [&](unsigned x, unsigned y) {
        const float light = 150.0F - 60.0F * static_cast<float>(x) / static_cast<float>(grey.width());
        return nearestByte(light + 0.22F * static_cast<float>(grey.at(x, y)));
    });
}

Picture plotOf(const std::vector<uint32_t>& counts)
{
    Picture plot(static_cast<int>(kLevels) + 104, static_cast<int>(kPlot), {250, 250, 250});
    const uint32_t most = std::max(*std::max_element(counts.begin(), counts.end()), 1U);
    for (unsigned v = 0; v < kLevels; ++v) {
        const int height = static_cast<int>(uint64_t{counts[v]} * (kPlot - 20) / most);
        fill(plot, {52 + static_cast<int>(v), static_cast<int>(kPlot) - 10 - height, 1, height}, {60, 80, 140});
    }
    return plot;
}

// A picture with its histogram.
void showHistogram(Stage& stage, const std::string& title, const Plane<uint8_t>& plane)
{
    std::vector<uint32_t> counts(kLevels);
    const Outcome outcome =
        stage.run("odxImageIntensityHistogram", {{counts.data(), counts.size() * sizeof(uint32_t)}},
                  size_t{plane.width()} * plane.height(), [&] {
                      return done(odxImageIntensityHistogram, plane.data(), plane.width(), plane.height(),
                                  plane.stride(), counts.data());
                  });
    stage.show(title, outcome, plotOf(counts));
}

} // namespace

void showHistograms(Stage& stage)
{
    const Plane<uint8_t> haze = hazed(stage.grey());
    stage.beginSection("Histograms", "a picture of few levels, spread over all of them, and made even everywhere");
    stage.showSource("In haze", "few levels, a shade", pictureOf(haze));
    showHistogram(stage, "Its levels", haze);
    Plane<uint8_t> better(haze.width(), haze.height());
    stage.show("Equalised",
               stage.run("odxImageHistogramEqualizeu8", better,
                         [&] {
                             return done(odxImageHistogramEqualizeu8, haze.data(), haze.width(), haze.height(),
                                         haze.stride(), better.data(), better.stride());
                         }),
               pictureOf(better));
    showHistogram(stage, "Its levels", better);
    const Outcome outcome = stage.run("odxNormalizeLocalBoxu8", better, [&] {
        return odxNormalizeLocalBoxu8(haze.data(), haze.width(), haze.height(), haze.stride(), 31, better.data(),
                                      better.stride(), 50, 2);
    });
    stage.show("Local mean and deviation", outcome, pictureOf(better));
}

} // namespace demo
