#include "entries/entries.h"

#include "ondrix/scaling.h"

namespace odx::test::scaling
{

Argument gpuMultiple(Argument argument, uint32_t n)
{
    argument.gpu = n;
    return argument;
}

// An output's size: any number but 0.
Argument output(double good)
{
    return value(good, {0}, {1});
}

Entries entries()
{
    const Argument in4 = buffer(4, 16), in16 = buffer(16, 16);
    const auto packedReduction = [&](uint32_t k) {
        return Arguments{in4, multiple(width(1, 8), k), multiple(height(), k), in4};
    };
    const auto upsampling = [&](uint32_t channels, uint32_t factor) {
        return Arguments{in16, width(), height(), stride(channels * kWidth), in16, stride(factor * kWidth)}.pixels(
            0);
    };
    const auto resizing = [&](uint32_t channels) {
        return Arguments{buffer(), width(),     height(),   stride(channels * kWidth),
                         buffer(), output(100), output(90), stride(channels * 100)};
    };
    const Combinations wraps = {{{1, 0x80000001}}};
    const Arguments status = resizing(1) + Arguments{value(1, {3, 0xFFFFFFFF}, {0, 2})},
                    status_v2 = status + Arguments{value(2, {3, 0xFFFFFFFF}, {0, 1}), value()};
    Arguments groups = resizing(1), nearest = groups;
    groups[5] = output(100).with({0, 9}, {10});
    groups[6] = output(90).with({0, 7}, {8});
    nearest[0] = nearest[4] = buffer(1, 16);
    const Argument evenWidth = multiple(width(), 2).with({0}, {2}).errors({kWidth + 1.0}),
                   evenRows = multiple(height(), 2).with({0}, {2}).errors({kHeight + 1.0});
    const std::string pairs = kImages + " && dstWidth && dstHeight && (srcStride==0 || srcStride >=srcWidth*2) && "
                                        "(dstStride == 0 || dstStride >= dstWidth*2)";
    const auto interleaved = [](const std::string& dst) {
        return "src && srcWidth && srcHeight && dst && (srcStride >= srcWidth * 2) && (dstStride " + dst;
    };
    const auto upsampled = [](const std::string& dst) {
        return "src && srcWidth && srcHeight && dst && (srcStride >= srcWidth) && (dstStride " + dst;
    };
    return {
        ENTRY(odxScaleDownBy2u8, "", packedReduction(2)),
        ENTRY(odxScaleDownBy4u8, "", packedReduction(4)),
        ENTRY(odxScaleDownBy2u8_v2, "",
              {in4, multiple(gpuMultiple(width(), 8), 2), multiple(height(), 2), stride(kWidth, 8, 8), in4,
               stride(kWidth / 2, 4, 8)}),
        ENTRY(odxScaleDownBy4u8_v2, "",
              {in4, multiple(width(1, 8), 4), multiple(height(), 4), stride(), in4, stride(kWidth / 4)}),
        ENTRY(odxScaleDown3To2u8, "",
              Arguments{buffer(8, 16), width(), height(), stride(kWidth, 8), buffer(8, 16),
                        stride(kWidth / 3 * 2, 2)}
                  .pixels(0)),
        ENTRY(odxScaleDownu8,
              "src && dst && width && height && dstWidth && dstHeight && width >= dstWidth && height >= dstHeight",
              {buffer(8, 16), gpuMultiple(width(), 8), height(), buffer(8, 16), value(1, {0}), value(1, {0})}),
        ENTRY(odxScaleDownu8_v2,
              kImages + " && (srcStride >= srcWidth) && dstWidth && dstHeight && (dstStride >= dstWidth) && "
                        "srcWidth >= dstWidth && srcHeight >= dstHeight",
              Arguments{buffer(8, 16), gpuMultiple(width(), 8), height(), stride(), buffer(8, 16),
                        value(1, {0}).errors({95}), value(1, {0}).errors({47}), value(200, {}, {0, 1})}
                  .refusing({{{5, 96}, {7, 95}}})),
        ENTRY(odxScaleDownMNu8,
              kImages + " && dstWidth && dstHeight && (srcStride==0 || srcStride >=srcWidth) && (dstStride == 0 "
                        "|| dstStride >= dstWidth) && dstWidth * 20 > srcWidth && dstHeight * 20 > srcHeight",
              groups),
        ENTRY(odxScaleDownMNInterleaveu8, pairs, resizing(2).refusing(wraps)),
        ENTRY(odxScaleDownBLu8,
              "src && srcWidth && srcHeight && (srcStride >= srcWidth) && dst && dstWidth && dstHeight && "
              "(dstStride >= dstWidth)",
              resizing(1)),
        ENTRY(odxScaleUpPolyu8,
              kImages + " && (srcStride == 0 || srcStride >= srcWidth) && dstWidth && dstHeight && (dstStride == "
                        "0 || dstStride >= dstWidth)",
              resizing(1)),
        ENTRY(odxScaleUpPolyInterleaveu8, pairs, resizing(2).refusing(wraps)),
        ENTRY(odxScaleDownNNu8, "", nearest.pixels(0)),
        ENTRY(odxScaleu8, "", status),
        ENTRY(odxScaleu8_v2, "", status_v2),
        ENTRY(odxScaleDownBy2Gaussian5x5u8,
              "src && dst && width && height && ((width & 1) == 0 ) && ((height & 1) == 0)",
              Arguments{buffer(), evenWidth, evenRows, buffer()}.pixels(
                  0)), // its other version is looked at more closely
        ENTRY(odxScaleDownBy2Gaussian5x5u8_v2, kImages + strides("srcWidth", "srcWidth/2"),
              {buffer(), width(), height(), stride(), buffer(), stride(kWidth / 2)}),
        ENTRY(odxScaleDownBy2Gaussian5x5f32,
              "srcImg && width && height && ((width & 1) == 0 ) && ((height & 1) == 0)",
              {buffer(), multiple(width(), 2), multiple(height(), 2), buffer()}),
        ENTRY(odxScaleDownBy2Gaussian5x5f32_v2,
              kImages + " && ((srcWidth & 1) == 0 ) && ((srcHeight & 1) == 0)" +
                  strides("srcWidth*4", "srcWidth*2"),
              Arguments{buffer(), multiple(width(), 2), multiple(height(), 2), stride(4 * kWidth), buffer(),
                        stride(2 * kWidth)}
                  .refusing({{{1, 0x40000002}}, {{1, 0x80000002}}})),
        ENTRY(odxScaleDownBy2Gaussian3x3u8, "",
              Arguments{buffer(), width(3), height(3), stride(), buffer(), stride(kWidth / 2)}.refusing(
                  {{{1, 193}, {5, 96}}})),
        ENTRY(odxScaleUpBy2Gaussian5x5u8, "src && dst && width && height",
              {buffer(), width(), height(), buffer()}),
        ENTRY(odxScaleUpBy2Gaussian5x5u8_v2, kImages + strides("srcWidth", "srcWidth*2"),
              Arguments{buffer(), width(), height(), stride(), buffer(), stride(2 * kWidth)}.refusing(
                  {{{1, 0x80000001}, {3, 0x80000001}, {5, 2}}})),
        ENTRY(odxUpsampleVerticalu8, upsampled(">=srcWidth)"), upsampling(1, 1)),
        ENTRY(odxUpsampleHorizontalu8, upsampled(">= (2 * srcWidth))"), upsampling(1, 2)),
        ENTRY(odxUpsample2Du8, upsampled(">=(2 * srcWidth))"), upsampling(1, 2)),
        ENTRY(odxUpsampleVerticalInterleavedu8, interleaved(">=srcWidth * 2)"), upsampling(2, 2).refusing(wraps)),
        ENTRY(odxUpsampleHorizontalInterleavedu8, interleaved(">= srcWidth * 4)"),
              upsampling(2, 4).refusing(wraps)),
        ENTRY(odxUpsample2DInterleavedu8, interleaved(">= srcWidth * 4)"), upsampling(2, 4).refusing(wraps)),
    };
}

} // namespace odx::test::scaling
