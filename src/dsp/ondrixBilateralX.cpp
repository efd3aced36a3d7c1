// Remote variants of the bilateral filters.
#include "dsp/shapes.h"

#include "cpu/ondrixBilateralC.h"

#define ODX_FAMILY_LIST "frame/operations/bilateral.def"
#include "dsp/variants.h"
