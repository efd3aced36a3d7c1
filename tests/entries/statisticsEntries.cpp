#include "entries/entries.h"

#include "ondrix/statistics.h"

namespace odx::test::statistics
{

// An image whose packed rows the text has as `row`, and what an operation takes and asks beyond it.
Entry of(const Operation& operation, const std::string& row, uint32_t bytes, const std::string& more,
         const Arguments& rest, const std::string& before = "src && srcWidth && srcHeight && ")
{
    Arguments all = {buffer(8, 16), width(), height(), stride(kWidth * bytes, 8)};
    all.insert(all.end(), rest.begin(), rest.end());
    return {operation, before + "(srcStride >= srcWidth" + row + ")" + more, all};
}

Entries entries()
{
    const std::string found =
                          " && minValue && maxValue && minCount && maxCount && ((minXY && maxXY) || !capacity)",
                      cells =
                          " && cellsX && cellsY && (cellsX <= srcWidth) && (cellsY <= srcHeight) && histograms",
                      sum = " && (binary <= 1) && moments", toImage = "src && dst && srcWidth && srcHeight && ",
                      box = toImage + "(N & 1) && (N >= 3) && (N <= 31) && ", s16 = "*sizeof(int16_t)",
                      u16 = "*sizeof(uint16_t)", s32 = "*sizeof(int32_t)", u32 = "*sizeof(uint32_t)",
                      f32 = "*sizeof(float)";
    const Argument cellsX = value(1, {0, kWidth + 1}, {kWidth}), cellsY = value(1, {0, kHeight + 1}, {kHeight}),
                   N = value(7, {0, 1, 2, 4, 30, 32, 33}, {3, 31}), level = value(20, {0, 128}, {1, 127}),
                   out = buffer(), dst = buffer(8, 16), one = value(1, {2, 0xFFFFFFFF}, {0});
    const Arguments four(4, optional()), all = {out, out, out, out, value(5, {}, {0}), out, out},
                                         moments = {one, out};
    // A rectangle in an image that has room for any that is tried.
    constexpr uint32_t kLarge = 131072;
    const auto rectangle = [&](Values Argument::*failure) {
        Argument x = value(100, {}, {0, kLarge - kWidth}), y = value(50, {}, {0, kLarge - kHeight});
        x.*failure = {kLarge - kWidth + 1, kLarge + 1, 0xFFFFFFFF};
        y.*failure = {kLarge - kHeight + 1, kLarge + 1, 0xFFFFFFFF};
        Argument rows = stride(kLarge, 8);
        rows.good = kLarge;
        return Arguments{dst, value(kLarge), value(kLarge), rows, x, y, width(), height(), out, out};
    };
    Arguments estimated = rectangle(&Argument::refused);
    estimated.push_back(one);
    return {
        of(OP(odxMinMaxLocu8), "", 1, "", four),
        of(OP(odxMinMaxLocs16), s16, 2, "", four),
        of(OP(odxMinMaxLocu16), u16, 2, "", four),
        of(OP(odxMinMaxLocs32), s32, 4, "", four),
        of(OP(odxMinMaxLocu32), u32, 4, "", four),
        of(OP(odxMinMaxLocf32), f32, 4, "", four),
        of(OP(odxMinMaxLocu8_v2), "", 1, found, all),
        of(OP(odxMinMaxLocs16_v2), s16, 2, found, all),
        of(OP(odxMinMaxLocu16_v2), u16, 2, found, all),
        of(OP(odxMinMaxLocs32_v2), s32, 4, found, all),
        of(OP(odxMinMaxLocu32_v2), u32, 4, found, all),
        of(OP(odxMinMaxLocf32_v2), f32, 4, found, all),
        of(OP(odxImageMomentsu8), "", 1, sum, moments),
        of(OP(odxImageMomentss32), s32, 4, sum, moments),
        of(OP(odxImageMomentsf32), f32, 4, sum, moments),
        of(OP(odxImageIntensityHistogram), "", 1, " && histogram", {out}),
        of(OP(odxImageSpatialHistogramu8), "", 1, cells, {cellsX, cellsY, out}),
        of(OP(odxImageSpatialHistogramu8_v2), "", 1, cells + " && bins && (bins <= range) && (range <= 256)",
           {cellsX, cellsY, value(16, {0, 60}, {1, 59}), value(59, {15, 257}, {16, 256}), out}),
        of(OP(odxImageHistogramEqualizeu8), "", 1, " && (dstStride >= srcWidth)", {dst, stride(kWidth, 8)},
           toImage),
        of(OP(odxNormalizeLocalBoxu8), "", 1,
           " && (dstStride >= srcWidth) && deviation && (deviation <= 127) && minDeviation && (minDeviation <= "
           "127)",
           {N, dst, stride(kWidth, 8), level, level}, box),
        of(OP(odxNormalizeLocalBoxf32), f32, 4, " && (dstStride >= srcWidth*sizeof(float)) && (minDeviation > 0)",
           {N, dst, stride(4 * kWidth, 8), value(1, {0, -1}, {1e-30})}, box),
        ENTRY(odxImageIntensityStats, "src && width && height && (srcStride >= srcWidth) && mean && variance",
              rectangle(&Argument::failing)),
        ENTRY(odxImageIntensityStats_v2,
              "src && width && height && (x <= srcWidth) && (width <= srcWidth - x) && (y <= srcHeight) && "
              "(height <= "
              "srcHeight - y) && (srcStride >= srcWidth) && mean && variance && (estimator <= "
              "ONDRIX_VARIANCE_SAMPLE)",
              estimated),
    };
}

} // namespace odx::test::statistics
