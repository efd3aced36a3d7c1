// Remote variants of element-wise arithmetic.
#include "dsp/ondrixArithmX.h"

#include "cpu/ondrixArithmC.h"

#define ODX_FAMILY_LIST "frame/operations/arithmetic.def"
#include "dsp/variants.h"
