// Remote variants of the conversions to RGB.
#include "dsp/ondrixColorX.h"

#include "cpu/ondrixColorC.h"

#define ODX_FAMILY_LIST "frame/operations/colorToRgb.def"
#include "dsp/variants.h"
