// Remote variants of optical flow.
#include "dsp/ondrixOpticalFlowX.h"

#include "cpu/ondrixOpticalFlowC.h"

#define ODX_FAMILY_LIST "frame/operations/opticalFlow.def"
#include "dsp/variants.h"
