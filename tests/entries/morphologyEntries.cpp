#include "entries/entries.h"

#include "ondrix/morphology.h"

namespace odx::test::morphology
{

Entries entries()
{
    const std::vector packed = {buffer(), width(), height(), buffer()};
    const std::vector strided = {buffer(), width(), height(), stride(), buffer(), stride()};
    const std::vector bordered = {
        buffer(), width(), height(), looseStride(), buffer(), looseStride(), value(2, {3, 0xFFFFFFFF}, {0, 1}),
        value()};
    const std::vector sized = {buffer(), width(), height(), stride(), value(3, {}, {0, 1, 1000}),
                               buffer(), stride()};
    const char* const packedCheck = "src && width && height && dst";
    const char* const stridedCheck =
        "src && srcWidth && srcHeight && (srcStride >= srcWidth) && dst && (dstStride >= srcWidth)";
    return alike(packedCheck, packed, {OP(odxFilterErode3x3u8), OP(odxFilterDilate3x3u8)}) +
           alike(stridedCheck, strided, {OP(odxFilterErode3x3u8_v2), OP(odxFilterDilate3x3u8_v2)}) +
           alike("", bordered, {OP(odxFilterErode3x3u8_v3), OP(odxFilterDilate3x3u8_v3)}) +
           alike("", sized, {OP(odxFilterErodeNxNu8), OP(odxFilterDilateNxNu8)});
}

} // namespace odx::test::morphology
