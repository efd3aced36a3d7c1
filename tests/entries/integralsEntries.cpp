#include "entries/entries.h"

#include "ondrix/integrals.h"

namespace odx::test
{

namespace
{

const Argument image = buffer(8, 16), maybe = optional(8, 16);
constexpr double kNegative = -2147483648.0, kMost = 4294967295.0;

// The stride of a table of entries of so many bytes.
Argument tableStride(uint32_t size = 4, uint32_t columns = kWidth)
{
    return stride((columns + 1) * size, 8);
}

// Coordinates of a patch of `side` in an image of the usual size.
Argument place(uint32_t size, uint32_t side)
{
    return value(8, {size - side + 1.0, kMost}, {0, double(size - side)});
}
Argument atLeast(uint32_t good, uint32_t least)
{
    return value(good, {0, least - 1.0}, {double(least)});
}

std::string patchText(const std::string& side)
{
    return "src && sums && (srcWidth >= " + side + ") && (srcHeight >= " + side + ") && (x <= srcWidth - " + side +
           ") && (y <= srcHeight - " + side + ")";
}
std::vector<Argument> withStride(std::vector<Argument> arguments)
{
    arguments.insert(arguments.begin() + 3, stride(kWidth, 8));
    return arguments;
}

} // namespace

Entries integralsEntries()
{
    const std::string text = "src && dst && srcWidth && srcHeight",
                      strides = text + " && (srcStride >= srcWidth) && (dstStride >= (srcWidth + 1)*sizeof(",
                      stride_v2 = " && (srcStride >= srcWidth)";
    const std::vector<Argument> toTable = {image, width(), height(), stride(kWidth, 8), image, tableStride()};
    // Rows of entries that 32 bits do not count.
    const auto tooWide = [](size_t at) {
        return std::vector<std::vector<std::pair<size_t, double>>>{{{1, 0x3FFFFFFF}, {3, kMost}, {at, 0}},
                                                                   {{1, 0x40000000}, {3, kMost}, {at, 4096}}};
    };
    const auto fixed = [](uint32_t side) {
        return std::vector<Argument>{image,
                                     atLeast(kWidth, side + 8),
                                     atLeast(kHeight, side + 8),
                                     place(kWidth, side),
                                     place(kHeight, side),
                                     image,
                                     maybe};
    };
    const Argument size = {Argument::kOther, 1000, {0, 199}, 1, 1, {200}}, from = value(8, {809, kMost}, {0, 808}),
                   down = value(8, {857, kMost}, {0, 856});
    const std::vector<Argument> any = {image,
                                       size,
                                       {Argument::kOther, 1000, {0, 151}, 1, 1, {152}},
                                       from,
                                       down,
                                       {Argument::kColumns, kWidth, {0, 1001, kMost}, 1, 1, {1, 992}},
                                       {Argument::kRows, kHeight, {0, 1001, kMost}, 1, 1, {1, 992}},
                                       image,
                                       maybe};
    const std::string anyText = "src && sums && patchWidth && patchHeight && (patchWidth <= srcWidth) && "
                                "(patchHeight <= srcHeight) && (x <= srcWidth - patchWidth) && "
                                "(y <= srcHeight - patchHeight)";
    std::vector<Argument> anyWithStride = any;
    anyWithStride.insert(anyWithStride.begin() + 3, stride(1000, 8));
    return {
        {ODX_ENTRY(odxIntegrateImageu8),
         text,
         {image, width(), height(), image},
         1,
         1,
         {{{1, 0x3FFFFFFF}}, {{1, kMost}}}},
        {ODX_ENTRY(odxIntegrateImageu8_v2), strides + "uint32_t))", toTable, 1, 1, tooWide(5)},
        {ODX_ENTRY(odxTiltedIntegralu8s32), strides + "int32_t))", toTable, 1, 1, tooWide(5)},
        {ODX_ENTRY(odxIntegrateImageu8u64),
         "src && (sums || squareSums) && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= "
         "(srcWidth + 1)*sizeof(uint64_t))",
         {image, width(), height(), stride(kWidth, 8), maybe, maybe, tableStride(8)},
         1,
         1,
         {{{4, 0}, {5, 0}}, {{1, 0x1FFFFFFF}, {3, kMost}, {6, 0}}}},
        {ODX_ENTRY(odxIntegrateImageYCbCr420PseudoPlanaru8),
         "srcY && srcC && dstY && dstCb && dstCr && srcWidth && srcHeight && !(srcWidth & 1) && !(srcHeight & 1) "
         "&& (srcYStride >= srcWidth) && (srcCStride >= srcWidth) && (dstYStride >= (srcWidth + "
         "1)*sizeof(uint32_t)) && (dstCbStride >= (srcWidth/2 + 1)*sizeof(uint32_t)) && (dstCrStride >= "
         "(srcWidth/2 + 1)*sizeof(uint32_t))",
         {image,
          image,
          {Argument::kColumns, kWidth, {0, 1, 191}, 1, 1, {2}},
          {Argument::kRows, kHeight, {0, 1, 143}, 1, 1, {2}},
          stride(kWidth, 8),
          stride(kWidth, 8),
          image,
          image,
          image,
          tableStride(),
          tableStride(4, kWidth / 2),
          tableStride(4, kWidth / 2)}},
        {ODX_ENTRY(odxIntegrateImageLineu8),
         "src && length && dst",
         {image, {Argument::kColumns, 30000, {0}, 1, 1, {1}}, maybe, image}},
        {ODX_ENTRY(odxIntegrateImageLine64u8), "src && dst", {image, maybe, image}, 1, kNever},
        {ODX_ENTRY(odxIntegratePatch12x12u8), patchText("12"), fixed(12), 1, kNever},
        {ODX_ENTRY(odxIntegratePatch18x18u8), patchText("18"), fixed(18), 1, kNever},
        {ODX_ENTRY(odxIntegratePatch12x12u8_v2), patchText("12") + stride_v2, withStride(fixed(12)), 1, kNever},
        {ODX_ENTRY(odxIntegratePatch18x18u8_v2), patchText("18") + stride_v2, withStride(fixed(18)), 1, kNever},
        {ODX_ENTRY(odxIntegratePatchu8), anyText, any},
        {ODX_ENTRY(odxIntegratePatchu8_v2), anyText + stride_v2, anyWithStride},
        {ODX_ENTRY(odxIntegratePatchu8_v3),
         "src && sums && srcWidth && srcHeight && patchWidth && patchHeight && (srcStride >= srcWidth) && "
         "(sumsStride >= (patchWidth + 1)*sizeof(uint32_t)) && (squareSumsStride >= (patchWidth + "
         "1)*sizeof(uint32_t)) && (borderType <= ONDRIX_BORDER_REPLICATE) && (borderType || inside)",
         {image,
          value(1000, {0}, {199}),
          value(1000, {0}, {151}),
          stride(1000, 8),
          value(8, {}, {kNegative, 809, 2147483647}),
          value(8, {}, {kNegative, 857, 2147483647}),
          {Argument::kColumns, kWidth, {0, 0x40000000}, 1, 1, {1}},
          {Argument::kRows, kHeight, {0}, 1, 1, {kMost}},
          image,
          tableStride(),
          maybe,
          tableStride(),
          value(2, {3, kMost}, {0, 1}),
          value()},
         1,
         1,
         {{{12, 0}, {4, -1}},
          {{12, 0}, {5, -1}},
          {{12, 0}, {4, 809}},
          {{12, 0}, {5, 857}},
          {{12, 0}, {4, 2147483647}},
          {{12, 0}, {7, kMost}}}},
    };
}

} // namespace odx::test
