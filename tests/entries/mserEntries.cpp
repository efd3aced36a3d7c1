#include "entries/entries.h"

#include "ondrix/mser.h"

namespace odx::test::mser
{

Entries entries()
{
    // A handle never leaves this process, and the sizes are the reference's matter.
    const auto extraction = [](size_t extended) {
        return Arguments{buffer(), buffer(), value(kWidth), value(kHeight), value(kWidth, {}, {0}),
                         value(9), buffer(), buffer(),      value(9),       buffer()}
                   .pixels(0) +
               Arguments(extended, buffer());
    };
    const Arguments init = {value(kWidth), value(kHeight), value(5),   value(10),
                            value(90),     value(0.5),     value(0.2), buffer()};
    const std::string plain = "mserHandle && srcPtr && numContours && numPointsInContour && pointsArray",
                      extended =
                          plain + " && contourVariation && contourPolarity && contourNodeId && contourNodeCounter";
    return alike("", init.pixels(0), {OP(odxMserInit), OP(odxMserNN8Init)}) +
           alike("mserHandle", Arguments{buffer()}.pixels(0), {OP(odxMserRelease)}) +
           alike(plain, extraction(0), {OP(odxMseru8)}) +
           alike("", extraction(0), {OP(odxMseru8_v2), OP(odxMserNN8u8)}) +
           alike(extended, extraction(4), {OP(odxMserExtu8)}) +
           alike("", extraction(4),
                 {OP(odxMserExtu8_v2), OP(odxMserExtNN8u8), OP(odxMserSplitExtu8), OP(odxMserSplitExtu8ST)}) +
           alike("", extraction(5), {OP(odxMserExtu8_v3)});
}

} // namespace odx::test::mser
