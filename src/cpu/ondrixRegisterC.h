// Reference implementation of the registration of shared memory.
#ifndef ODX_CPU_ONDRIX_REGISTER_C_H
#define ODX_CPU_ONDRIX_REGISTER_C_H

#include "ondrix/memory.h"

extern "C" {
decltype(odxRegisterBuf) odxRegisterBufC;
}

#endif
