// Remote variants of the operations on descriptors.
#include "dsp/ondrixDotX.h"

#include "cpu/ondrixDotC.h"

#define ODX_FAMILY_LIST "frame/operations/descriptors.def"
#include "dsp/variants.h"
