// Remote variants of the Harris detectors and of refinement.
#include "dsp/ondrixHarrisX.h"

#include "cpu/ondrixHarrisC.h"

#define ODX_FAMILY_LIST "frame/operations/harrisCorners.def"
#include "dsp/variants.h"
