#include "entries/entries.h"

#include "ondrix/opticalFlow.h"
#include "ondrix/tracking.h"

namespace odx::test::motion
{

Entries entries()
{
    const std::string condition = "src1 && src2 && src1Pyr && src2Pyr && featureXY && featureXY_out && "
                                  "featureStatus && (windowWidth & 0x1) && (windowHeight & 0x1)";
    const Arguments images = {buffer(8, 16), buffer(8, 16), width().with({}, {0}), height().with({}, {0})},
                    oneStride = {looseStride(8, 16)}, pyramids(2, buffer()), gradients(2, optional()),
                    features = Arguments(3, buffer()) +
                               Arguments{value(5, {}, {-1, 0}), value(7, {6, 0}, {-1, 3, 5}),
                                         value(7, {8, 0}, {-1, 3, 9}), value(20, {}, {-1}), value(3, {}, {-1, 0})},
                    tuning(4, value()), estimates = {optional(), value(0), value(0.01), value(0)};

    const std::string weights = "src && window && srcWidth && srcHeight && (srcStride >= srcWidth",
                      patch = "patch && src && bestX && bestY && bestNCC && srcWidth && srcHeight && searchWidth "
                              "&& (!doSubPixel || (subX && subY))";
    const auto shift = [](uint32_t bytes) {
        Arguments arguments = imageOf(kWidth * bytes) + Arguments{buffer(), value(10, {}, {0}), value(1, {}, {0})};
        arguments[1].gpu = 8;
        return arguments;
    };
    const Arguments ellipse = {optional()}, threshold = {value(5)},
                    search = Arguments{buffer(),  buffer(8, 16), width(1, 1, 8),      height(),
                                       value(90), value(70),     value(11, {0}, {20})} +
                             Arguments(3, buffer()) + Arguments{value(0), optional(), optional()};
    // It needs both places.
    const Combinations halfRefined = {{{10, 1}, {11, 0}}, {{10, 1}, {12, 0}}};
    const Entries others = {
        ENTRY(odxTrackLKOpticalFlowu8_v2, condition, images + oneStride + pyramids + features),
        ENTRY(odxTrackLKOpticalFlowu8_v3, "",
              (images + oneStride + pyramids + features + estimates).refusing({{{15, 0}, {16, 1}}})),

        ENTRY(odxNCCPatchesOnRectu8,
              "patches && numPatches && src && srcWidth && srcHeight && searchWidth && searchHeight && bestX && "
              "bestY && bestNCC",
              {buffer(), value(3, {0}), buffer(8, 16), width(1, 1, 8), height(), value(90), value(70),
               value(11, {0}), value(11, {0}), value(5), buffer(), buffer(), buffer(), optional()}),
        ENTRY(odxTrackBMOpticalFlow16x16u8,
              "src1 && src2 && flowXY && (srcWidth >= 16) && (srcHeight >= 16) && (srcStride >= srcWidth) && step "
              "&& (searchRadius <= 255)",
              {buffer(8, 16), buffer(8, 16), width(16), height(16), stride(kWidth, 8, 16), value(16, {0}),
               value(8, {256}, {0, 255}), buffer(), optional()}),
    };
    return alike(condition, images + pyramids + gradients + features + tuning,
                 {OP(odxTrackLKOpticalFlowu8), OP(odxTrackLKOpticalFlowf32)}) +
           alike(weights + ")", shift(1), {OP(odxMeanShiftu8)}) +
           alike(weights + "*4)", shift(4), {OP(odxMeanShifts32), OP(odxMeanShiftf32)}) +
           alike(weights + ")", shift(1) + ellipse, {OP(odxConAdaTracku8)}) +
           alike(weights + "*4)", shift(4) + ellipse, {OP(odxConAdaTracks32), OP(odxConAdaTrackf32)}) +
           alike(patch, search.refusing(halfRefined),
                 {OP(odxNCCPatchOnSquare8x8u8), OP(odxNCCPatchOnCircle8x8u8)}) +
           alike(patch, (search + threshold).refusing(halfRefined),
                 {OP(odxNCCPatchOnSquare8x8u8_v2), OP(odxNCCPatchOnCircle8x8u8_v2)}) +
           others;
}

} // namespace odx::test::motion
