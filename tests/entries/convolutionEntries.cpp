#include "entries/entries.h"

#include "ondrix/convolution.h"

namespace odx::test
{

Entries convolutionEntries()
{
    const auto image = [] { return buffer(8, 16); };
    const auto row = [](uint32_t bytes) { return stride(bytes, 8); };
    const auto with = [](std::vector<Argument> arguments, const std::vector<Argument>& more) {
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    };
    // Smaller images than the kernel fail the first test.
    const auto side = [](Argument argument, uint32_t least) {
        argument.refused = {};
        argument.accepted = {double(least)};
        std::vector<double> less;
        for (uint32_t size = 0; size < least; ++size)
            less.push_back(size);
        return std::move(argument).errors(less);
    };
    const auto packed = [&](uint32_t K) {
        return std::vector{buffer(), buffer(), image(), side(width(K, 4), K), side(height(K), K), image()};
    };
    const auto strided = [&](uint32_t K, const std::vector<Argument>& more = {}) {
        return with(with({buffer(), buffer()}, more),
                    {image(), side(width(K), K), side(height(K), K), row(2 * kWidth), image(), row(2 * kWidth)});
    };
    const auto size = [](uint32_t most) { return value(5, {0, 4, most + 1.0, most + 2.0}, {1, double(most)}); };
    const auto shift = [](uint32_t most) { return value(3, {most + 1.0, 4294967295.0}, {0, double(most)}); };
    const auto image8 = [&](uint32_t pixelSize) {
        return std::vector{image(),
                           width(),
                           height(),
                           row(kWidth),
                           image(),
                           row(pixelSize * kWidth),
                           value(2, {3, 4294967295.0}, {0, 1}),
                           value(300)};
    };
    const auto option = [](uint32_t most) { return value(0, {most + 1.0, 4294967295.0}, {double(most)}); };

    const std::string kernels = "kernelX && kernelY && src && dst", wideRow = "srcWidth*sizeof(int16_t)",
                      strides = " && (srcStride >= srcWidth*sizeof(int16_t)) && (dstStride >= ",
                      stridedText = kernels + strides + wideRow + ")",
                      small = "(M & 1) && (M <= 15) && (N & 1) && (N <= 15) && (shift <= 15) && ",
                      large = "(M & 1) && (M <= 31) && (N & 1) && (N <= 31) && (shift <= 31) && ",
                      sizes = " && srcWidth && srcHeight && ", border = "(borderType <= ONDRIX_BORDER_REPLICATE)";
    const auto convolveText = [&](const std::string& dstRow) {
        return "kernel && src && dst" + sizes + small + "(srcStride >= srcWidth) && (dstStride >= " + dstRow +
               ") && " + border;
    };
    auto size3 = value(5, {0, 1, 4, 32, 33}, {3, 31}), any = value(5, {0}, {1, kHeight});
    size3.failing = size3.refused;
    size3.refused = {};
    Argument columns = {Argument::kColumns, kWidth, {0, 4}, 1, 1, {5}},
             lines = {Argument::kRows, kHeight, {0, 4}, 1, 1, {5}};
    // Of what is inside; 2 bytes for each of these columns are 2, in 32 bits.
    const uint32_t insideRow = 2 * (kWidth - 4);
    const std::vector<std::vector<std::pair<size_t, double>>> wrapping = {{{5, 0x80000001}, {7, 2}, {9, 2}}};
    return {
        {ODX_ENTRY(odxFilterCorrSep9x9s16), kernels, packed(9)},
        {ODX_ENTRY(odxFilterCorrSep9x9s16_v2), stridedText, strided(9)},
        {ODX_ENTRY(odxFilterCorrSep11x11s16), kernels, packed(11)},
        {ODX_ENTRY(odxFilterCorrSep11x11s16_v2), stridedText, strided(11)},
        {ODX_ENTRY(odxFilterCorrSep13x13s16), kernels, packed(13)},
        {ODX_ENTRY(odxFilterCorrSep13x13s16_v2), stridedText, strided(13)},
        {ODX_ENTRY(odxFilterCorrSep15x15s16), kernels, packed(15)},
        {ODX_ENTRY(odxFilterCorrSep15x15s16_v2), stridedText, strided(15)},
        {ODX_ENTRY(odxFilterCorrSep17x17s16), kernels, packed(17)},
        {ODX_ENTRY(odxFilterCorrSep17x17s16_v2), stridedText, strided(17)},
        {ODX_ENTRY(odxFilterCorrSepNxNs16), stridedText, strided(5, {size3})},
        {ODX_ENTRY(odxFilterConvolveMxNu8), convolveText("srcWidth"),
         with({buffer(), size(15), size(15), shift(15)}, image8(1))},
        {ODX_ENTRY(odxFilterConvolveMxNu8s16), convolveText(wideRow),
         with({buffer(), size(15), size(15), shift(15)}, image8(2))},
        {ODX_ENTRY(odxFilterCorrSepMxNu8),
         kernels + sizes + large + "(srcStride >= srcWidth) && (dstStride >= srcWidth) && " + border,
         with({buffer(), size(31), buffer(), size(31), shift(31)}, image8(1))},
        {ODX_ENTRY(odxFilterConvSepMxNs16),
         kernels + sizes + large +
             "(symmetryX <= ONDRIX_KERNEL_ANTISYMMETRIC) && (symmetryY <= ONDRIX_KERNEL_ANTISYMMETRIC) && "
             "(region <= ONDRIX_FILTER_VALID) && " +
             border + " && (region == ONDRIX_FILTER_SAME || (M <= srcWidth && N <= srcHeight))" + strides +
             "dstWidth*sizeof(int16_t))",
         {buffer(), size(31), option(2), buffer(), size(31), option(2), shift(31), image(), width(), height(),
          row(2 * kWidth), image(), row(2 * kWidth), option(1), option(2), value(70000)},
         1,
         1,
         // Inside, the image is at least as large as the window, and rows are shorter.
         {{{13, 1}, {8, 4}}, {{13, 1}, {9, 4}}, {{13, 1}, {12, insideRow - 1}}}},
        {ODX_ENTRY(odxConvValids16),
         "kernel && src && dst && M && N && (M <= srcWidth) && (N <= srcHeight) && (shift <= 31)" + strides +
             "dstWidth*sizeof(int16_t))",
         {buffer(), value(5, {0, kWidth + 1}, {1}), any, shift(31), image(), columns, lines, row(2 * kWidth),
          image(), row(insideRow)},
         1,
         1,
         wrapping},
    };
}

} // namespace odx::test
