// Remote variants of the warps and remaps.
#include "dsp/ondrixWarpX.h"

#include "cpu/ondrixWarpC.h"

#define ODX_FAMILY_LIST "frame/operations/warps.def"
#include "dsp/variants.h"
