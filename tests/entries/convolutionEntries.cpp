#include "entries/entries.h"

#include "ondrix/convolution.h"

namespace odx::test::convolution
{

Entries entries()
{
    const Argument image = buffer(8, 16);
    const auto row = [](uint32_t bytes) { return stride(bytes, 8); };
    // Smaller images than the kernel fail the first test.
    const auto side = [](const Argument& argument, uint32_t least) {
        Values less;
        for (uint32_t size = 0; size < least; ++size)
            less.push_back(size);
        return argument.with({}, {double(least)}).errors(less);
    };
    const auto packed = [&](uint32_t K) {
        return Arguments{buffer(), buffer(), image, side(width(K, 4), K), side(height(K), K), image};
    };
    const auto strided = [&](uint32_t K, const Arguments& more = {}) {
        return Arguments{buffer(), buffer()} + more +
               Arguments{image, side(width(K), K), side(height(K), K), row(2 * kWidth), image, row(2 * kWidth)};
    };
    const auto size = [](uint32_t most) { return value(5, {0, 4, most + 1.0, most + 2.0}, {1, double(most)}); };
    const auto option = [](double most, double good = 0) {
        return value(good, {most + 1, 4294967295.0}, {0, most});
    };
    const auto shift = [=](double most) { return option(most, 3); };
    const auto images = [&](uint32_t pixelSize) {
        return imageOf() + Arguments{image, row(pixelSize * kWidth), option(2, 2), value(300)};
    };

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
    const Argument size3 = value(5, {}, {3, 31}).errors({0, 1, 4, 32, 33});
    // Of what is inside; 2 bytes for each of these columns are 2, in 32 bits.
    const uint32_t insideRow = 2 * (kWidth - 4);
    return {
        ENTRY(odxFilterCorrSep9x9s16, kernels, packed(9)),
        ENTRY(odxFilterCorrSep9x9s16_v2, stridedText, strided(9)),
        ENTRY(odxFilterCorrSep11x11s16, kernels, packed(11)),
        ENTRY(odxFilterCorrSep11x11s16_v2, stridedText, strided(11)),
        ENTRY(odxFilterCorrSep13x13s16, kernels, packed(13)),
        ENTRY(odxFilterCorrSep13x13s16_v2, stridedText, strided(13)),
        ENTRY(odxFilterCorrSep15x15s16, kernels, packed(15)),
        ENTRY(odxFilterCorrSep15x15s16_v2, stridedText, strided(15)),
        ENTRY(odxFilterCorrSep17x17s16, kernels, packed(17)),
        ENTRY(odxFilterCorrSep17x17s16_v2, stridedText, strided(17)),
        ENTRY(odxFilterCorrSepNxNs16, stridedText, strided(5, {size3})),
        ENTRY(odxFilterConvolveMxNu8, convolveText("srcWidth"),
              Arguments{buffer(), size(15), size(15), shift(15)} + images(1)),
        ENTRY(odxFilterConvolveMxNu8s16, convolveText(wideRow),
              Arguments{buffer(), size(15), size(15), shift(15)} + images(2)),
        ENTRY(odxFilterCorrSepMxNu8,
              kernels + sizes + large + "(srcStride >= srcWidth) && (dstStride >= srcWidth) && " + border,
              Arguments{buffer(), size(31), buffer(), size(31), shift(31)} + images(1)),
        ENTRY(odxFilterConvSepMxNs16,
              kernels + sizes + large +
                  "(symmetryX <= ONDRIX_KERNEL_ANTISYMMETRIC) && (symmetryY <= ONDRIX_KERNEL_ANTISYMMETRIC) && "
                  "(region <= ONDRIX_FILTER_VALID) && " +
                  border + " && (region == ONDRIX_FILTER_SAME || (M <= srcWidth && N <= srcHeight))" + strides +
                  "dstWidth*sizeof(int16_t))",
              // Inside, the image is at least as large as the window, and rows are shorter.
              (Arguments{buffer(), size(31), option(2), buffer(), size(31), option(2), shift(31)} +
               imageOf(2 * kWidth) + Arguments{image, row(2 * kWidth), option(1), option(2), value(70000)})
                  .refusing({{{13, 1}, {8, 4}}, {{13, 1}, {9, 4}}, {{13, 1}, {12, insideRow - 1}}})),
        ENTRY(odxConvValids16,
              "kernel && src && dst && M && N && (M <= srcWidth) && (N <= srcHeight) && (shift <= 31)" + strides +
                  "dstWidth*sizeof(int16_t))",
              Arguments{buffer(), value(5, {0, kWidth + 1}, {1}), value(5, {0}, {1, kHeight}), shift(31), image,
                        width().with({0, 4}, {5}), height().with({0, 4}, {5}), row(2 * kWidth), image,
                        row(insideRow)}
                  .refusing({{{5, 0x80000001}, {7, 2}, {9, 2}}})),
    };
}

} // namespace odx::test::convolution
