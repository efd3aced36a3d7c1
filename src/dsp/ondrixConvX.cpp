// Remote variants of convolution.
#include "dsp/ondrixConvX.h"

#include "cpu/ondrixConvC.h"

#define ODX_FAMILY_LIST "frame/operations/convolution.def"
#include "dsp/variants.h"
