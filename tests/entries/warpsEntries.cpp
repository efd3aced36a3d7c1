#include "entries/entries.h"

#include "ondrix/warps.h"

namespace odx::test
{

Entries warpsEntries()
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
                      text = packedText + " && (srcStride >= srcWidth) && (dstStride >= dstWidth)",
                      clippedText = "src && affineMatrix && dst && srcStride >= srcWidth && dstStride >= dstWidth";
    const std::string remapText = "src && (srcStride >= srcWidth*4) && dst && (dstStride >= dstWidth*4) && mapX "
                                  "&& mapY && (mapStride >= (dstWidth*sizeof(float32_t)))";
    const Arguments clipped = anySource(1) + matrix + anyDestination(1) + Arguments{optional()};
    const Arguments patch = {buffer(), checkedSize, checkedSize, looseStride(), buffer(),
                             buffer(), buffer(),    width(),     height(),      looseStride()};
    const Arguments patches = {buffer(), checkedSize, checkedSize, looseStride(), value(1000, {0}, {1}),
                               buffer(), buffer(),    buffer()};
    return {
        entry(ODX_ENTRY(odxWarpPerspectiveu8), packedText, packed),
        entry(ODX_ENTRY(odx3ChannelWarpPerspectiveu8), packedText, packed),
        entry(ODX_ENTRY(odxWarpPerspectiveu8_v2), text, source + destination + matrix),
        entry(ODX_ENTRY(odx3ChannelWarpPerspectiveu8_v2), text, source + destination + matrix),
        entry(ODX_ENTRY(odxWarpPerspectiveu8_v3), "", source + destination + matrix + interpolation),
        entry(ODX_ENTRY(odxWarpPerspectiveu8_v4), "", source + destination + matrix + interpolation + border),
        entry(ODX_ENTRY(odx2PlaneWarpPerspectiveu8), "",
              {buffer(), buffer(), checkedSize, checkedSize, stride(), stride(), buffer(), buffer(), width(),
               height(), stride(), stride(), buffer()}),
        entry(ODX_ENTRY(odxTransformAffineu8), "", patch),
        entry(ODX_ENTRY(odxTransformAffineu8_v2), "", patch),
        entry(ODX_ENTRY(odxTransformAffine8x8u8), "", patches).pixels(0),
        entry(ODX_ENTRY(odxTransformAffine8x8u8_v2), "", patches).pixels(0),
        entry(ODX_ENTRY(odxTransformAffineClippedu8), clippedText, clipped),
        entry(ODX_ENTRY(odxTransformAffineClippedu8_v2), "", clipped + interpolation),
        entry(ODX_ENTRY(odxTransformAffineClippedu8_v3), "", clipped + interpolation + border),
        entry(ODX_ENTRY(odx3ChannelTransformAffineClippedBCu8),
              "src && affineMatrix && dst && dstBorder && srcWidth && srcHeight && dstWidth && dstHeight && "
              "srcStride >= srcWidth*3 && dstStride >= dstWidth*3",
              triples)
            .refusing({{{1, 0x80000000}}}),
        entry(ODX_ENTRY(odxRemapRGBA8888NNu8), remapText, anySource(4) + anyDestination(4) + maps),
        entry(ODX_ENTRY(odxRemapRGBA8888BLu8), remapText, anySource(4) + anyDestination(4) + maps)
            .refusing({{{1, 0x40000001}}}),
        entry(ODX_ENTRY(odxRemapu8), "", anySource(1) + anyDestination(1) + maps + interpolation),
        entry(ODX_ENTRY(odxRemapu8_v2), "",
              anySource(1) + anyDestination(1) + maps + Arguments{value(1, {2, 3}, {0})} + border),
        entry(ODX_ENTRY(odxCopyRotated17x17u8), "region && patch", {buffer(), buffer(), value(0)}).pixels(0),
        entry(ODX_ENTRY(odxInvertAffineTransformf32), "", {buffer(), buffer()}).pixels(0),
        entry(ODX_ENTRY(odxGetPerspectiveTransformf32), "src1 && src2 && transformCoefficient",
              {buffer(), buffer(), buffer()})
            .pixels(0),
    };
}

} // namespace odx::test
