#include "entries/entries.h"

#include "ondrix/statistics.h"

namespace odx::test::statistics
{

// An image of T, and what an operation takes and asks beyond it.
template <class T = uint8_t>
Entry of(const Operation& operation, const std::string& more, const Arguments& rest,
         const std::string& before = "src && srcWidth && srcHeight && ")
{
    return {operation, before + "(srcStride >= " + row<T>("srcWidth") + ")" + more,
            imageOf(kWidth * sizeof(T)) + rest};
}

Entries entries()
{
    const std::string found =
                          " && minValue && maxValue && minCount && maxCount && ((minXY && maxXY) || !capacity)",
                      cells =
                          " && cellsX && cellsY && (cellsX <= srcWidth) && (cellsY <= srcHeight) && histograms",
                      sum = " && (binary <= 1) && moments", toImage = "src && dst && srcWidth && srcHeight && ",
                      box = toImage + "(N & 1) && (N >= 3) && (N <= 31) && ";
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
        of(OP(odxMinMaxLocu8), "", four),
        of<int16_t>(OP(odxMinMaxLocs16), "", four),
        of<uint16_t>(OP(odxMinMaxLocu16), "", four),
        of<int32_t>(OP(odxMinMaxLocs32), "", four),
        of<uint32_t>(OP(odxMinMaxLocu32), "", four),
        of<float>(OP(odxMinMaxLocf32), "", four),
        of(OP(odxMinMaxLocu8_v2), found, all),
        of<int16_t>(OP(odxMinMaxLocs16_v2), found, all),
        of<uint16_t>(OP(odxMinMaxLocu16_v2), found, all),
        of<int32_t>(OP(odxMinMaxLocs32_v2), found, all),
        of<uint32_t>(OP(odxMinMaxLocu32_v2), found, all),
        of<float>(OP(odxMinMaxLocf32_v2), found, all),
        of(OP(odxImageMomentsu8), sum, moments),
        of<int32_t>(OP(odxImageMomentss32), sum, moments),
        of<float>(OP(odxImageMomentsf32), sum, moments),
        of(OP(odxImageIntensityHistogram), " && histogram", {out}),
        of(OP(odxImageSpatialHistogramu8), cells, {cellsX, cellsY, out}),
        of(OP(odxImageSpatialHistogramu8_v2), cells + " && bins && (bins <= range) && (range <= 256)",
           {cellsX, cellsY, value(16, {0, 60}, {1, 59}), value(59, {15, 257}, {16, 256}), out}),
        of(OP(odxImageHistogramEqualizeu8), " && (dstStride >= srcWidth)", {dst, stride(kWidth, 8)}, toImage),
        of(OP(odxNormalizeLocalBoxu8),
           " && (dstStride >= srcWidth) && deviation && (deviation <= 127) && minDeviation && (minDeviation <= "
           "127)",
           {N, dst, stride(kWidth, 8), level, level}, box),
        of<float>(OP(odxNormalizeLocalBoxf32), " && (dstStride >= srcWidth*sizeof(float)) && (minDeviation > 0)",
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
