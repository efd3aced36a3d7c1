// Reference implementations: bilateral filters.
#ifndef ODX_CPU_ONDRIX_BILATERAL_C_H
#define ODX_CPU_ONDRIX_BILATERAL_C_H

#include "frame/helpers.h"
#include "ondrix/bilateral.h"

namespace odx::bilateral
{

struct Weights;

// `count` outputs of a row: lines[0 .. size of the window) point at the leftmost tap of the first, from the
// uppermost row down.
using FilterLine = void(const uint8_t* const* lines, uint8_t* out, uint32_t count, const Weights& weights);

} // namespace odx::bilateral

extern "C" {

// Windows of all sizes.
odx::bilateral::FilterLine bilateralLineC;
ODX_HELPER_POINTER(bilateralLine);

decltype(odxBilateralFilter5x5u8) odxBilateralFilter5x5u8C, odxBilateralFilter7x7u8C, odxBilateralFilter9x9u8C;
decltype(odxBilateralFilter5x5u8_v2) odxBilateralFilter5x5u8_v2C, odxBilateralFilter7x7u8_v2C,
    odxBilateralFilter9x9u8_v2C;
decltype(odxBilateralFilterRecursiveu8) odxBilateralFilterRecursiveu8C;
}

#endif
