// Reference implementations: bit counts.
#ifndef ODX_CPU_ONDRIX_DOT_C_H
#define ODX_CPU_ONDRIX_DOT_C_H

#include "ondrix/descriptors.h"

extern "C" {
decltype(odxBitCountu8) odxBitCountu8C;
decltype(odxBitCountu32) odxBitCountu32C;
}

#endif
