#include "entries/entries.h"

#include "ondrix/mser.h"

namespace odx::test::mser
{

Entries entries()
{
    // A handle never leaves this process, and the sizes are the reference's matter.
    const auto extraction = [](size_t extended) {
        return Arguments{buffer(), buffer(), value(kWidth), value(kHeight), value(kWidth, {}, {0}),
                         value(9), buffer(), buffer(),      value(9),       buffer()} +
               Arguments(extended, buffer());
    };
    const Arguments init = {value(kWidth), value(kHeight), value(5),   value(10),
                            value(90),     value(0.5),     value(0.2), buffer()};
    const std::string plain = "mserHandle && srcPtr && numContours && numPointsInContour && pointsArray",
                      extended =
                          plain + " && contourVariation && contourPolarity && contourNodeId && contourNodeCounter";
    return {
        ENTRY(odxMserInit, "", init.pixels(0)),
        ENTRY(odxMserNN8Init, "", init.pixels(0)),
        ENTRY(odxMserRelease, "mserHandle", Arguments{buffer()}.pixels(0)),
        ENTRY(odxMseru8, plain, extraction(0).pixels(0)),
        ENTRY(odxMseru8_v2, "", extraction(0).pixels(0)),
        ENTRY(odxMserNN8u8, "", extraction(0).pixels(0)),
        ENTRY(odxMserExtu8, extended, extraction(4).pixels(0)),
        ENTRY(odxMserExtu8_v2, "", extraction(4).pixels(0)),
        ENTRY(odxMserExtNN8u8, "", extraction(4).pixels(0)),
        ENTRY(odxMserExtu8_v3, "", extraction(5).pixels(0)),
        ENTRY(odxMserSplitExtu8, "", extraction(4).pixels(0)),
        ENTRY(odxMserSplitExtu8ST, "", extraction(4).pixels(0)),
    };
}

} // namespace odx::test::mser
