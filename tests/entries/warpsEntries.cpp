#include "entries/entries.h"

#include "ondrix/warps.h"

namespace odx::test::warps
{

Entries entries()
{
    const auto unchecked = [](Argument size) {
        size.refused.clear();
        return size;
    };
    // Sources come with any size; the work is that of the destination.
    const auto checkedSize = value(kWidth, {0}, {1}), anySize = value(kWidth, {}, {0});
    const Arguments source = {buffer(), value(kWidth, {0}, {1}), checkedSize, stride()},
                    destination = {buffer(), width(), height(), stride()};
    const Arguments packed = {buffer(), checkedSize, checkedSize, buffer(), width(), height(), buffer()};
    const auto anySource = [&](uint32_t size) {
        return Arguments{buffer(), anySize, anySize, stride(size * kWidth)};
    };
    const auto anyDestination = [&](uint32_t size) {
        return Arguments{buffer(), unchecked(width()), unchecked(height()), stride(size * kWidth)};
    };
    const Arguments matrix = {buffer()}, interpolation = {value(1, {}, {0, 2})},
                    border = {value(2, {3, 0xFFFFFFFF}, {0, 1}), value()};
    const Arguments maps = {buffer(), buffer(), stride(4 * kWidth)};
    const Arguments triples = {buffer(), checkedSize, checkedSize, stride(3 * kWidth), buffer(),
                               buffer(), width(),     height(),    stride(3 * kWidth), buffer()};
    const std::string packedText = "src && dst && proj && srcWidth && srcHeight && dstWidth && dstHeight",
                      text = packedText + strides("srcWidth", "dstWidth"),
                      clippedText = "src && affineMatrix && dst && srcStride >= srcWidth && dstStride >= dstWidth";
    const std::string remapText = "src && (srcStride >= srcWidth*4) && dst && (dstStride >= dstWidth*4) && mapX "
                                  "&& mapY && (mapStride >= (dstWidth*sizeof(float32_t)))";
    const Arguments clipped = anySource(1) + matrix + anyDestination(1) + Arguments{optional()};
    const Arguments patch = {buffer(), checkedSize, checkedSize, looseStride(), buffer(),
                             buffer(), buffer(),    width(),     height(),      looseStride()};
    const Arguments patches = {buffer(), checkedSize, checkedSize, looseStride(), value(1000, {0}, {1}),
                               buffer(), buffer(),    buffer()};
    const Entries others = {
        ENTRY(odxWarpPerspectiveu8_v3, "", source + destination + matrix + interpolation),
        ENTRY(odxWarpPerspectiveu8_v4, "", source + destination + matrix + interpolation + border),
        ENTRY(odx2PlaneWarpPerspectiveu8, "",
              {buffer(), buffer(), checkedSize, checkedSize, stride(), stride(), buffer(), buffer(), width(),
               height(), stride(), stride(), buffer()}),
        ENTRY(odxTransformAffineClippedu8, clippedText, clipped),
        ENTRY(odxTransformAffineClippedu8_v2, "", clipped + interpolation),
        ENTRY(odxTransformAffineClippedu8_v3, "", clipped + interpolation + border),
        ENTRY(odx3ChannelTransformAffineClippedBCu8,
              "src && affineMatrix && dst && dstBorder && srcWidth && srcHeight && dstWidth && dstHeight && "
              "srcStride >= srcWidth*3 && dstStride >= dstWidth*3",
              triples.refusing({{{1, 0x80000000}}})),
        ENTRY(odxRemapRGBA8888NNu8, remapText, anySource(4) + anyDestination(4) + maps),
        ENTRY(odxRemapRGBA8888BLu8, remapText,
              (anySource(4) + anyDestination(4) + maps).refusing({{{1, 0x40000001}}})),
        ENTRY(odxRemapu8, "", anySource(1) + anyDestination(1) + maps + interpolation),
        ENTRY(odxRemapu8_v2, "",
              anySource(1) + anyDestination(1) + maps + Arguments{value(1, {2, 3}, {0})} + border),
        ENTRY(odxCopyRotated17x17u8, "region && patch", Arguments{buffer(), buffer(), value(0)}.pixels(0)),
        ENTRY(odxInvertAffineTransformf32, "", Arguments{buffer(), buffer()}.pixels(0)),
        ENTRY(odxGetPerspectiveTransformf32, "src1 && src2 && transformCoefficient",
              Arguments{buffer(), buffer(), buffer()}.pixels(0)),
    };
    return alike(packedText, packed, {OP(odxWarpPerspectiveu8), OP(odx3ChannelWarpPerspectiveu8)}) +
           alike(text, source + destination + matrix,
                 {OP(odxWarpPerspectiveu8_v2), OP(odx3ChannelWarpPerspectiveu8_v2)}) +
           alike("", patch, {OP(odxTransformAffineu8), OP(odxTransformAffineu8_v2)}) +
           alike("", patches.pixels(0), {OP(odxTransformAffine8x8u8), OP(odxTransformAffine8x8u8_v2)}) + others;
}

} // namespace odx::test::warps
