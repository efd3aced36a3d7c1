// Remote variants of gradients and edges.
#include "dsp/ondrixEdgeX.h"

#include "cpu/ondrixEdgeC.h"

#define ODX_FAMILY_LIST "frame/operations/gradients.def"
#include "dsp/variants.h"
