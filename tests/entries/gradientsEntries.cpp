#include "entries/entries.h"

#include "ondrix/gradients.h"

namespace odx::test::gradients
{

Entries entries()
{
    const std::string source = "src && srcWidth && srcHeight && (srcStride >= srcWidth) && ",
                      pairs = source + "gradients", planes = source + "dx && dy",
                      floats = "src && srcWidth && srcHeight && srcStride >= srcWidth && dx && dy";
    const auto pairTerm = [](const std::string& type) {
        return " && (gradStride >= ((srcWidth-2)*2*sizeof(" + type + ")))";
    };
    const auto planeTerm = [](const std::string& type) {
        return " && (dxyStride >= (srcWidth*sizeof(" + type + ")))";
    };
    // The image, `results` buffers, and their stride, in bytes an element, where there is one.
    const auto from = [](size_t results, Argument srcStride = stride(kWidth, 8)) {
        Arguments arguments = {buffer(8, 16), width(1, 1, 8), height(), std::move(srcStride)};
        arguments.insert(arguments.end(), results, buffer(8, 16));
        return arguments;
    };
    // Widths are compared with strides: that of 1 has no row of pairs.
    const auto strided = [&](uint32_t size) {
        auto arguments = from(1) + Arguments{stride(2 * size * (kWidth - 2), 8)};
        arguments[1] = width(2, 1, 8);
        return arguments;
    };
    // A stride of float pixels that is compared with their number.
    const auto floatStride = [] { return Argument{Argument::kStride, 4096, {kWidth - 1.0}, 8, 1, {0, kWidth}}; };
    const auto optionals = [] { return Arguments{optional(8, 16), optional(8, 16), stride(2 * kWidth, 8)}; };
    const auto sobel = from(0) + optionals() + Arguments{value(2, {3, 0xFFFFFFFF}, {0, 1}), value()};
    const auto edges = [&](uint32_t least, bool strides) {
        Arguments arguments = {buffer(8, 16), width(least, 1, 8), height(least), buffer(8, 16)};
        if (strides) arguments.insert(arguments.begin() + 3, stride(kWidth, 8));
        if (strides) arguments.push_back(stride(kWidth, 8));
        return arguments;
    };
    const Arguments thresholds = {value(20, {31}, {30, -7}), value(30, {19}, {20})};
    const std::string edgeText = source + "dst && (dstStride >= srcWidth) && ";
    const Entries results =
        alike(pairs, from(1),
              {OP(odxImageGradientInterleaveds16), OP(odxImageGradientInterleavedf32),
               OP(odxImageGradientSobelInterleaveds16), OP(odxImageGradientSobelInterleavedf32)}) +
        alike(pairs + pairTerm("int16_t"), strided(2),
              {OP(odxImageGradientInterleaveds16_v2), OP(odxImageGradientSobelInterleaveds16_v2),
               OP(odxImageGradientSobelInterleaveds16_v3)}) +
        alike(pairs + pairTerm("float"), strided(4),
              {OP(odxImageGradientInterleavedf32_v2), OP(odxImageGradientSobelInterleavedf32_v2)}) +
        alike(planes, from(2),
              {OP(odxImageGradientPlanars16), OP(odxImageGradientPlanarf32), OP(odxImageGradientSobelPlanars16),
               OP(odxImageGradientSobelPlanars8), OP(odxImageGradientSobelPlanarf32)}) +
        alike(planes + planeTerm("int16_t"), from(2) + stride(2 * kWidth, 8),
              {OP(odxImageGradientPlanars16_v2), OP(odxImageGradientSobelPlanars16_v2),
               OP(odxImageGradientSobelPlanars16_v3)}) +
        alike(planes + planeTerm("float"), from(2) + stride(4 * kWidth, 8),
              {OP(odxImageGradientPlanarf32_v2), OP(odxImageGradientSobelPlanarf32_v2)}) +
        alike("", sobel, {OP(odxFilterSobel3x3u8s16), OP(odxFilterSobel5x5u8s16), OP(odxFilterSobel7x7u8s16)});
    const Entries others = {
        ENTRY(odxImageGradientScharrInterleaveds16,
              "src && srcWidth && srcHeight && (srcStride >= srcWidth)&& gradients" + pairTerm("int16_t"),
              strided(2)),
        ENTRY(odxImageGradientSobelPlanars8_v2, planes + planeTerm("int8_t"), from(2) + stride(kWidth, 8)),
        ENTRY(odxImageGradientSobelPlanarf32f32, floats, from(2, floatStride())),
        ENTRY(odxImageGradientSobelPlanarf32f32_v2, floats, from(2, floatStride()) + looseStride(8)),
        ENTRY(odxFilterSobel3x3u8, "src && width && height && dst", edges(1, false)),
        ENTRY(odxFilterSobel3x3u8_v2, source + "dst && (dstStride >= srcWidth)", edges(1, true)),
        ENTRY(odxFilterCanny3x3u8, "src && width && height && dst && (low <= high) && width > 2 && height > 2",
              edges(3, false) + thresholds),
        ENTRY(odxFilterCanny3x3u8_v2, edgeText + "(low <= high) && srcWidth > 2 && srcHeight > 2",
              edges(3, true) + thresholds),
        ENTRY(odxFilterCanny3x3u8_v3,
              edgeText + "(gradStride >= 2*srcWidth) && low <= high && srcWidth > 2 && srcHeight > 2",
              edges(3, true) + thresholds + optionals()),
        ENTRY(odxFilterCannyu8, "",
              from(0) +
                  Arguments{value(3, {0, 1, 4, 9}, {5, 7}), value(), value(), value(), buffer(8, 16),
                            stride(kWidth, 8)} +
                  optionals()),
    };
    return results + others;
}

} // namespace odx::test::gradients
