// Remote variants of transpositions, flips and rotations.
#include "dsp/ondrixReorderX.h"

#include "cpu/ondrixReorderC.h"

#define ODX_FAMILY_LIST "frame/operations/reordering.def"
#include "dsp/variants.h"
