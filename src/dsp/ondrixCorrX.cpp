// Remote variants of correlation.
#include "dsp/ondrixCorrX.h"

#include "cpu/ondrixCorrC.h"

#define ODX_FAMILY_LIST "frame/operations/correlation.def"
#include "dsp/variants.h"
