// Remote variants of thresholds.
#include "dsp/ondrixThresholdX.h"

#include "cpu/ondrixThresholdC.h"

#define ODX_FAMILY_LIST "frame/operations/thresholding.def"
#include "dsp/variants.h"
