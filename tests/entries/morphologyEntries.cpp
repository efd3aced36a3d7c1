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
    return {
        ENTRY(odxFilterErode3x3u8, packedCheck, packed),  ENTRY(odxFilterErode3x3u8_v2, stridedCheck, strided),
        ENTRY(odxFilterErode3x3u8_v3, "", bordered),      ENTRY(odxFilterErodeNxNu8, "", sized),
        ENTRY(odxFilterDilate3x3u8, packedCheck, packed), ENTRY(odxFilterDilate3x3u8_v2, stridedCheck, strided),
        ENTRY(odxFilterDilate3x3u8_v3, "", bordered),     ENTRY(odxFilterDilateNxNu8, "", sized),
    };
}

} // namespace odx::test::morphology
