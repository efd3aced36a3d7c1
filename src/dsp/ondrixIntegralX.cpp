// Remote variants of integral images.
#include "dsp/ondrixIntegralX.h"

#include "cpu/ondrixIntegralC.h"

#define ODX_FAMILY_LIST "frame/operations/integrals.def"
#include "dsp/variants.h"
