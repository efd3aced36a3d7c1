// Remote variants of the smoothing filters.
#include "dsp/ondrixBlurX.h"

#include "cpu/ondrixBlurC.h"

#define ODX_FAMILY_LIST "frame/operations/smoothing.def"
#include "dsp/variants.h"
