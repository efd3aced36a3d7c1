#include "entries/entries.h"

#include "ondrix/pyramids.h"

namespace odx::test::pyramids
{

Entries entries()
{
    // A number of levels that sizes of 192 and 144 allow, and 0 or more than 32.
    const Argument levels = value(3, {0, 6, 33, 0xFFFFFFFF}, {1, 5});
    const auto creation = [&](const Arguments& stride) {
        return Arguments{buffer(4), multiple(width(1, 4), 4), multiple(height(), 4)} + stride +
               Arguments{levels, buffer()};
    };
    const std::string deletion = "pyr && ((signed)startLevel >= 0) && (startLevel <= numLevels)";
    const Arguments levelsAndStart = {buffer(), value(3, {1}, {2}), value(2, {4, 0x80000000}, {0, 3})};
    const Argument any = value(1, {}, {0});
    Entry createsBytes = ENTRY(odxPyramidCreateu8, "", creation({}).fromRows(5));
    createsBytes.forGpu = false;
    const Entries others = {
        ENTRY(odxPyramidAllocate, "", Arguments{buffer(), any, any, any, value(3, {0}), any}.pixels(0)),
        ENTRY(odxPyramidAllocate_v2, "", Arguments{buffer(), any, any, any, any, value(3, {0}), any}.pixels(0)),
        ENTRY(odxPyramidAllocate_v3, "",
              Arguments{buffer(), value(50, {0}), value(40, {0}), value(100, {99}, {0}), value(2),
                        value(8, {0, 4, 12}, {24}), value(3, {0}), any, any}
                  .pixels(0)),
        createsBytes,
        ENTRY(odxPyramidCreatef32, "", creation({}).fromRows(5)),
        ENTRY(odxPyramidCreateu8_v2, "", creation({stride()}).fromRows(5)),
        ENTRY(odxPyramidCreatef32_v2, "", creation({stride(4 * kWidth)}).fromRows(5)),
        ENTRY(odxPyramidCreateu8_v3, "",
              Arguments{buffer(4), width(1, 4), height(), stride(), value(3, {0}), any, buffer()}.fromRows(5)),
    };
    return alike(deletion, levelsAndStart.pixels(0), {OP(odxPyramidDelete), OP(odxPyramidDelete_v2)}) +
           alike("", (Arguments(3, buffer()) + value(0, {}, {5})).pixels(0),
                 {OP(odxPyramidSobelGradientCreatei16), OP(odxPyramidSobelGradientCreatei8),
                  OP(odxPyramidSobelGradientCreatef32)}) +
           others;
}

} // namespace odx::test::pyramids
