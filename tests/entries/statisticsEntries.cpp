#include "entries/entries.h"

#include "ondrix/statistics.h"

namespace odx::test
{

namespace
{

using Operation = std::function<Outcome(const std::vector<double>&)>;

const std::string kFits = "(srcStride >= srcWidth";

Arguments source(uint32_t bytes = 1)
{
    return {buffer(8, 16), width(), height(), stride(kWidth * bytes, 8)};
}

Entry first(const char* name, Operation call, Outcome failure, const std::string& row, uint32_t bytes)
{
    return {name, std::move(call), failure, "src && srcWidth && srcHeight && " + kFits + row + ")",
            source(bytes) + Arguments{optional(), optional(), optional(), optional()}};
}
Entry all(const char* name, Operation call, Outcome failure, const std::string& row, uint32_t bytes)
{
    return {name, std::move(call), failure,
            "src && srcWidth && srcHeight && " + kFits + row +
                ") && minValue && maxValue && minCount && maxCount && ((minXY && maxXY) || !capacity)",
            source(bytes) +
                Arguments{buffer(), buffer(), buffer(), buffer(), value(5, {}, {0}), buffer(), buffer()}};
}
Entry momentsOf(const char* name, Operation call, Outcome failure, const std::string& row, uint32_t bytes)
{
    return {name, std::move(call), failure,
            "src && srcWidth && srcHeight && " + kFits + row + ") && (binary <= 1) && moments",
            source(bytes) + Arguments{value(1, {2, 0xFFFFFFFF}, {0}), buffer()}};
}

} // namespace

Entries statisticsEntries()
{
    const std::string image = "src && srcWidth && srcHeight && (srcStride >= srcWidth)",
                      cells =
                          " && cellsX && cellsY && (cellsX <= srcWidth) && (cellsY <= srcHeight) && histograms",
                      toImage = "src && dst && srcWidth && srcHeight && ",
                      N = "(N & 1) && (N >= 3) && (N <= 31) && ";
    const Arguments cut = {value(1, {0, kWidth + 1}, {kWidth}), value(1, {0, kHeight + 1}, {kHeight})};
    // A rectangle in an image that has room for any that is tried.
    constexpr uint32_t kLarge = 131072;
    const auto rectangle = [](std::vector<double> Argument::*failure) {
        Argument x = value(100, {}, {0, kLarge - kWidth}), y = value(50, {}, {0, kLarge - kHeight});
        x.*failure = {kLarge - kWidth + 1, kLarge + 1, 0xFFFFFFFF};
        y.*failure = {kLarge - kHeight + 1, kLarge + 1, 0xFFFFFFFF};
        Argument rows = stride(kLarge, 8);
        rows.good = kLarge;
        return Arguments{buffer(8, 16), value(kLarge), value(kLarge), rows,    x, y,
                         width(),       height(),      buffer(),      buffer()};
    };
    const Argument side = value(7, {0, 1, 2, 4, 30, 32, 33}, {3, 31}), byte = value(20, {0, 128}, {1, 127});
    return {
        first(ODX_ENTRY(odxMinMaxLocu8), "", 1),
        first(ODX_ENTRY(odxMinMaxLocs16), "*sizeof(int16_t)", 2),
        first(ODX_ENTRY(odxMinMaxLocu16), "*sizeof(uint16_t)", 2),
        first(ODX_ENTRY(odxMinMaxLocs32), "*sizeof(int32_t)", 4),
        first(ODX_ENTRY(odxMinMaxLocu32), "*sizeof(uint32_t)", 4),
        first(ODX_ENTRY(odxMinMaxLocf32), "*sizeof(float)", 4),
        all(ODX_ENTRY(odxMinMaxLocu8_v2), "", 1),
        all(ODX_ENTRY(odxMinMaxLocs16_v2), "*sizeof(int16_t)", 2),
        all(ODX_ENTRY(odxMinMaxLocu16_v2), "*sizeof(uint16_t)", 2),
        all(ODX_ENTRY(odxMinMaxLocs32_v2), "*sizeof(int32_t)", 4),
        all(ODX_ENTRY(odxMinMaxLocu32_v2), "*sizeof(uint32_t)", 4),
        all(ODX_ENTRY(odxMinMaxLocf32_v2), "*sizeof(float)", 4),
        momentsOf(ODX_ENTRY(odxImageMomentsu8), "", 1),
        momentsOf(ODX_ENTRY(odxImageMomentss32), "*sizeof(int32_t)", 4),
        momentsOf(ODX_ENTRY(odxImageMomentsf32), "*sizeof(float)", 4),
        {ODX_ENTRY(odxImageIntensityHistogram), image + " && histogram", source() + Arguments{buffer()}},
        {ODX_ENTRY(odxImageSpatialHistogramu8), image + cells, source() + cut + Arguments{buffer()}},
        {ODX_ENTRY(odxImageSpatialHistogramu8_v2), image + cells + " && bins && (bins <= range) && (range <= 256)",
         source() + cut + Arguments{value(16, {0, 60}, {1, 59}), value(59, {15, 257}, {16, 256}), buffer()}},
        {ODX_ENTRY(odxImageHistogramEqualizeu8), toImage + kFits + ") && (dstStride >= srcWidth)",
         source() + Arguments{buffer(8, 16), stride(kWidth, 8)}},
        {ODX_ENTRY(odxImageIntensityStats),
         "src && width && height && (srcStride >= srcWidth) && mean && variance", rectangle(&Argument::failing)},
        {ODX_ENTRY(odxImageIntensityStats_v2),
         "src && width && height && (x <= srcWidth) && (width <= srcWidth - x) && (y <= srcHeight) && (height <= "
         "srcHeight - y) && (srcStride >= srcWidth) && mean && variance && (estimator <= ONDRIX_VARIANCE_SAMPLE)",
         rectangle(&Argument::refused) + Arguments{value(1, {2, 0xFFFFFFFF}, {0})}},
        {ODX_ENTRY(odxNormalizeLocalBoxu8),
         toImage + N + kFits +
             ") && (dstStride >= srcWidth) && deviation && (deviation <= 127) && minDeviation && (minDeviation <= "
             "127)",
         source() + Arguments{side, buffer(8, 16), stride(kWidth, 8), byte, byte}},
        {ODX_ENTRY(odxNormalizeLocalBoxf32),
         toImage + N + kFits + "*sizeof(float)) && (dstStride >= srcWidth*sizeof(float)) && (minDeviation > 0)",
         source(4) + Arguments{side, buffer(8, 16), stride(4 * kWidth, 8), value(1, {0, -1}, {1e-30})}},
    };
}

} // namespace odx::test
