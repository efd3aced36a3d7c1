#include "entries/entries.h"

#include "ondrix/bilateral.h"

#include <cmath>

namespace odx::test::bilateral
{

Entries entries()
{
    const std::string check = kImages + strides(), sigmas = check + " && (sigmaColor > 0) && (sigmaSpace > 0)",
                      types = sigmas + " && (borderType <= ONDRIX_BORDER_REPLICATE)";
    const Arguments images = {buffer(8, 16),     width(),       height(),
                              stride(kWidth, 8), buffer(8, 16), stride(kWidth, 8)};
    const double infinite = HUGE_VAL, nan = std::nan("");
    const Argument sigma = value(16, {0, -1, nan, -infinite}, {1e-45, infinite}),
                   atMost64 = value(2, {0, nan, 64.001, infinite}, {1e-45, 64});
    const Arguments bordered = images + sigma + sigma + value(0, {3, 4294967295.0}, {1, 2}) + value();
    return alike(check, images,
                 {OP(odxBilateralFilter5x5u8), OP(odxBilateralFilter7x7u8), OP(odxBilateralFilter9x9u8)}) +
           alike(
               types, bordered,
               {OP(odxBilateralFilter5x5u8_v2), OP(odxBilateralFilter7x7u8_v2), OP(odxBilateralFilter9x9u8_v2)}) +
           alike(sigmas + " && (sigmaSpace <= 64)", images + sigma + atMost64,
                 {OP(odxBilateralFilterRecursiveu8)});
}

} // namespace odx::test::bilateral
