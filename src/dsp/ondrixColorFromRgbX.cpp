// Remote variants of the conversions from RGB and between layouts.
#include "dsp/ondrixColorX.h"

#include "cpu/ondrixColorFromRgbC.h"

#define ODX_FAMILY_LIST "frame/operations/colorFromRgb.def"
#include "dsp/variants.h"
