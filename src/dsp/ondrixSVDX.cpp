// Remote variants of matrix products, solvers and decompositions.
#include "dsp/ondrixSVDX.h"

#include "cpu/ondrixSVDC.h"

#define ODX_FAMILY_LIST "frame/operations/solvers.def"
#include "dsp/variants.h"
