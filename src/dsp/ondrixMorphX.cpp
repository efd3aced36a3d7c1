// Remote variants of morphology.
#include "dsp/ondrixMorphX.h"

#include "cpu/ondrixMorphC.h"

#define ODX_FAMILY_LIST "frame/operations/morphology.def"
#include "dsp/variants.h"
