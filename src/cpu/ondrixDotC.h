// Reference implementations: every operation of the family, and its helpers.
#ifndef ODX_CPU_ONDRIX_DOT_C_H
#define ODX_CPU_ONDRIX_DOT_C_H

#include "frame/operations/words.h"
#include "ondrix/descriptors.h"

extern "C" {
#define ODX_ONE_FAMILY "frame/operations/descriptors.def"
#define ODX_ROUTINE(number, name, index, columns, ...) ODX_IF_##columns##_C(decltype(name) name##C;)
#include "frame/operations/families.def"
}

#endif
