// Remote variants of scaling.
#include "dsp/ondrixScaleX.h"

#include "cpu/ondrixScaleC.h"

#define ODX_FAMILY_LIST "frame/operations/scaling.def"
#include "dsp/variants.h"
