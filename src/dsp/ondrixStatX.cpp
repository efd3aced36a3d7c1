// Remote variants of image statistics.
#include "dsp/ondrixStatX.h"

#include "cpu/ondrixStatC.h"

#define ODX_FAMILY_LIST "frame/operations/statistics.def"
#include "dsp/variants.h"
