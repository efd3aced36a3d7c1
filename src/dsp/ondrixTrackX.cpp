// Remote variants of the trackers.
#include "dsp/ondrixTrackX.h"

#include "cpu/ondrixNCCPatchC.h"
#include "cpu/ondrixTrackC.h"

#define ODX_FAMILY_LIST "frame/operations/tracking.def"
#include "dsp/variants.h"
