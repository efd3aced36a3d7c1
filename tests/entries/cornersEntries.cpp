#include "entries/entries.h"

#include "ondrix/fastCorners.h"
#include "ondrix/harrisCorners.h"

#include <limits>

namespace odx::test::corners
{

const double kNan = std::numeric_limits<double>::quiet_NaN();

// The detectors without suppression, then those with it; `w`, `h` and so on are the names of the arguments.
Entries fastEntries()
{
    const auto condition = [](const std::string& count, const std::string& w, bool scored,
                              const std::string& mask) {
        const std::string h = w == "width" ? "height" : "srcHeight", s = w == "width" ? "stride" : "srcStride";
        return "src && xy && " + std::string(scored ? "scores && " : "") + count + mask + " && " + s + " >= " + w +
               " && border*2 < " + w + " && border*2 < " + h;
    };
    const auto nine = [&](bool scored, const char* mask = "") {
        return condition("numcorners", "width", scored, mask);
    };
    const auto ten = [&](bool scored, const char* mask = "") {
        return condition("nCorners", "srcWidth", scored, mask);
    };
    // A border below 4 counts as 3, and twice the border is never 0.
    const auto detection = [](uint32_t gpuStride) {
        return Arguments{buffer(8, 16), width(7),
                         height(7),     stride(kWidth, 8, gpuStride),
                         value(20),     value(3, {kHeight / 2.0, 0x80000000}, {0, kHeight / 2.0 - 1}),
                         buffer(1, 16)};
    };
    const Arguments plain = detection(1), suppressing = detection(8);
    const Arguments scores = {buffer(1, 16)}, count = {value(100, {}, {0}), buffer()};
    const Arguments mask = {buffer(), value(40), value(30)}, alignedMask = {buffer(1, 16), value(40), value(30)};
    const Arguments memory = {value(1), optional(1, 16)}, unused = {value(0), optional()};
    return {
        ENTRY(odxCornerFast9u8, nine(false), plain + count),
        ENTRY(odxCornerFast9InMasku8, nine(false, " && bitMask"), plain + count + mask),
        ENTRY(odxCornerFast9Scoreu8, nine(true), plain + scores + count),
        ENTRY(odxCornerFast9InMaskScoreu8, nine(true, " && bitMask"), plain + scores + count + mask),
        ENTRY(odxCornerFast9Scoreu8_v2, nine(true), suppressing + scores + count + memory),
        ENTRY(odxCornerFast9Scoreu8_v2, nine(true), suppressing + scores + count + unused),
        ENTRY(odxCornerFast9InMaskScoreu8_v2, nine(true, " && bitMask"),
              suppressing + scores + count + alignedMask + memory),
        ENTRY(odxCornerFast10u8, ten(false), plain + count),
        ENTRY(odxCornerFast10InMasku8, ten(false, " && mask"), plain + count + mask),
        ENTRY(odxCornerFast10Scoreu8, ten(true), suppressing + scores + count + memory),
        ENTRY(odxCornerFast10Scoreu8, ten(true), suppressing + scores + count + unused),
        ENTRY(odxCornerFast10InMaskScoreu8, ten(true, " && mask"),
              suppressing + scores + count + alignedMask + memory),
    };
}

Entries harrisEntries()
{
    const std::string named = "srcWidth && srcHeight && srcStride >= srcWidth",
                      large = " && srcWidth > 4 && srcHeight > 4";
    const auto image = [](uint32_t least, uint32_t gpu, uint32_t gpuStride) {
        return Arguments{buffer(4, gpu), width(least, 8), height(least), stride(kWidth, 4, gpuStride)};
    };
    const Arguments border = {value(3)}, corners = {buffer(1, 16)}, count = {value(9), buffer()},
                    threshold = {value(0)};
    const Arguments detection = image(5, 16, 8) + border + corners;
    Entry maxima = ENTRY(
        odxFindMultipleMaximau8, "src && pos && dir && maxima && numMaxima && " + named,
        image(1, 1, 1) + Arguments{buffer(), buffer(), value(), value(), value(), value(), buffer(), buffer()});
    maxima.failure = 1;
    return {
        ENTRY(odxCornerHarrisu8,
              "src && xy && numcorners && width && height && (stride >= width) && width > 4 && height > 4",
              detection + count + threshold),
        ENTRY(odxCornerHarrisInMasku8,
              "srcImg && xy && numcorners && bitMask && width && height && (stride >= width) && maskHeight && "
              "maskWidth",
              image(1, 16, 8) + border + corners + count + threshold +
                  Arguments{buffer(), value(9, {0}), value(9, {0})}),
        ENTRY(odxCornerHarrisAdaptiveu8, "src && xy && nCorners && " + named + large,
              detection + count + threshold),
        ENTRY(odxCornerHarrisScoreu8, "src && xy && scores && nCorners && " + named + large,
              detection + corners + count + threshold),
        ENTRY(odxLocalHarrisMaxu8, "src && maxX && maxY && maxResponse && " + named,
              image(1, 1, 1) + Arguments{value(), value(), value(), buffer(), buffer(), buffer()}),
        ENTRY(odxGoodFeatureToTracku8,
              "src && xy && nCorners && " + named + large + " && qualityLevel >= 0 && qualityLevel <= 1",
              detection + count + Arguments{value(0.5, {-0.1, 1.1, kNan}, {0, 1}), value(3)}),
        ENTRY(odxCornerRefineSubPixu8,
              "src && xy && " + named +
                  " && halfWindow >= 1 && halfWindow <= 15 && maxIterations >= 1 && epsilon >= 0",
              image(1, 1, 1) + Arguments{buffer(), value(4), value(2, {0, 16}, {1, 15}), value(5, {0}),
                                         value(0.1, {-1, kNan}, {0})}),
        maxima,
    };
}

Entries entries()
{
    return fastEntries() + harrisEntries();
}

} // namespace odx::test::corners
