// Remote variants of the FAST detectors.
#include "dsp/ondrixFastX.h"

#include "cpu/ondrixFastC.h"

#define ODX_FAMILY_LIST "frame/operations/fastCorners.def"
#include "dsp/variants.h"
