#include "entries/entries.h"

#include "ondrix/integrals.h"

namespace odx::test::integrals
{

const Argument image = buffer(8, 16), maybe = optional(8, 16);
constexpr double kNegative = -2147483648.0, kMost = 4294967295.0;

// The stride of a table of entries of so many bytes.
Argument tableStride(uint32_t size = 4, uint32_t columns = kWidth)
{
    return stride((columns + 1) * size, 8);
}

// Patches of `width` by `height` at x and y of an image; fixed ones have no size.
Arguments patches(const Argument& srcWidth, const Argument& srcHeight, uint32_t width, uint32_t height,
                  const Arguments& size, bool strided)
{
    const auto place = [](double most) { return value(8, {most + 1, kMost}, {0, most}); };
    const Arguments strides = {stride(uint32_t(srcWidth.good), 8)};
    return Arguments{image, srcWidth, srcHeight} + (strided ? strides : Arguments()) +
           Arguments{place(srcWidth.good - width), place(srcHeight.good - height)} + size +
           Arguments{image, maybe};
}
Arguments fixed(uint32_t side, bool strided)
{
    const auto atLeast = [=](uint32_t good) { return value(good, {0, side + 7.0}, {side + 8.0}); };
    return patches(atLeast(kWidth), atLeast(kHeight), side, side, {}, strided).never();
}
Arguments any(bool strided)
{
    return patches(value(1000, {0, 199}, {200}), value(1000, {0, 151}, {152}), kWidth, kHeight,
                   {width().with({0, 1001, kMost}, {1, 992}), height().with({0, 1001, kMost}, {1, 992})}, strided);
}

std::string patchText(const std::string& begin, const std::string& columns, const std::string& rows, bool strided)
{
    return "src && sums && " + begin + " && (x <= srcWidth - " + columns + ") && (y <= srcHeight - " + rows + ")" +
           (strided ? " && (srcStride >= srcWidth)" : "");
}
std::string fixedText(const std::string& side, bool strided)
{
    return patchText("(srcWidth >= " + side + ") && (srcHeight >= " + side + ")", side, side, strided);
}
std::string anyText(bool strided)
{
    return patchText("patchWidth && patchHeight && (patchWidth <= srcWidth) && (patchHeight <= srcHeight)",
                     "patchWidth", "patchHeight", strided);
}

Entries entries()
{
    const std::string strides = kImages + " && (srcStride >= srcWidth) && (dstStride >= (srcWidth + 1)*sizeof(";
    // Rows of entries that 32 bits do not count.
    const auto toTable = (imageOf() + Arguments{image, tableStride()})
                             .refusing({{{1, 0x3FFFFFFF}, {3, kMost}, {5, 0}}, {{1, 0x40000000}, {3, kMost}}});
    return {
        ENTRY(odxIntegrateImageu8, kImages,
              Arguments{image, width(), height(), image}.refusing({{{1, 0x3FFFFFFF}}, {{1, kMost}}})),
        ENTRY(odxIntegrateImageu8_v2, strides + "uint32_t))", toTable),
        ENTRY(odxTiltedIntegralu8s32, strides + "int32_t))", toTable),
        ENTRY(odxIntegrateImageu8u64,
              "src && (sums || squareSums) && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= "
              "(srcWidth + 1)*sizeof(uint64_t))",
              (imageOf() + Arguments{maybe, maybe, tableStride(8)})
                  .refusing({{{4, 0}, {5, 0}}, {{1, 0x1FFFFFFF}, {3, kMost}, {6, 0}}})),
        ENTRY(odxIntegrateImageYCbCr420PseudoPlanaru8,
              "srcY && srcC && dstY && dstCb && dstCr && srcWidth && srcHeight && !(srcWidth & 1) && !(srcHeight "
              "& 1) && (srcYStride >= srcWidth) && (srcCStride >= srcWidth) && (dstYStride >= (srcWidth + "
              "1)*sizeof(uint32_t)) && (dstCbStride >= (srcWidth/2 + 1)*sizeof(uint32_t)) && (dstCrStride >= "
              "(srcWidth/2 + 1)*sizeof(uint32_t))",
              Arguments{image, image, width().with({0, 1, 191}, {2}), height().with({0, 1, 143}, {2})} +
                  Arguments(2, stride(kWidth, 8)) + Arguments(3, image) + tableStride() +
                  Arguments(2, tableStride(4, kWidth / 2))),
        ENTRY(odxIntegrateImageLineu8, "src && length && dst",
              {image, {Argument::kColumns, 30000, {0}, 1, 1, {1}}, maybe, image}),
        ENTRY(odxIntegrateImageLine64u8, "src && dst", Arguments{image, maybe, image}.never()),
        ENTRY(odxIntegratePatch12x12u8, fixedText("12", false), fixed(12, false)),
        ENTRY(odxIntegratePatch18x18u8, fixedText("18", false), fixed(18, false)),
        ENTRY(odxIntegratePatch12x12u8_v2, fixedText("12", true), fixed(12, true)),
        ENTRY(odxIntegratePatch18x18u8_v2, fixedText("18", true), fixed(18, true)),
        ENTRY(odxIntegratePatchu8, anyText(false), any(false)),
        ENTRY(odxIntegratePatchu8_v2, anyText(true), any(true)),
        ENTRY(odxIntegratePatchu8_v3,
              "src && sums && srcWidth && srcHeight && patchWidth && patchHeight && (srcStride >= srcWidth) && "
              "(sumsStride >= (patchWidth + 1)*sizeof(uint32_t)) && (squareSumsStride >= (patchWidth + "
              "1)*sizeof(uint32_t)) && (borderType <= ONDRIX_BORDER_REPLICATE) && (borderType || inside)",
              Arguments{image, value(1000, {0}, {199}), value(1000, {0}, {151}), stride(1000, 8),
                        value(8, {}, {kNegative, 809, 2147483647}), value(8, {}, {kNegative, 857, 2147483647}),
                        width().with({0, 0x40000000}, {1}), height().with({0}, {1, kMost}), image, tableStride(),
                        maybe, tableStride(), value(2, {3, kMost}, {0, 1}), value()}
                  .refusing({{{12, 0}, {4, -1}},
                             {{12, 0}, {5, -1}},
                             {{12, 0}, {4, 809}},
                             {{12, 0}, {5, 857}},
                             {{12, 0}, {4, 2147483647}},
                             {{12, 0}, {7, kMost}}})),
    };
}

} // namespace odx::test::integrals
