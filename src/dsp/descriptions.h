// How the arguments of every operation travel, by family.
#ifndef ODX_DSP_DESCRIPTIONS_H
#define ODX_DSP_DESCRIPTIONS_H

#include "dsp/ondrixArithmX.h"
#include "dsp/ondrixBlurX.h"
#include "dsp/ondrixColorX.h"
#include "dsp/ondrixConvX.h"
#include "dsp/ondrixCorrX.h"
#include "dsp/ondrixDotX.h"
#include "dsp/ondrixEdgeX.h"
#include "dsp/ondrixFastX.h"
#include "dsp/ondrixHarrisX.h"
#include "dsp/ondrixIntegralX.h"
#include "dsp/ondrixMorphX.h"
#include "dsp/ondrixOpticalFlowX.h"
#include "dsp/ondrixReorderX.h"
#include "dsp/ondrixSVDX.h"
#include "dsp/ondrixScaleX.h"
#include "dsp/ondrixStatX.h"
#include "dsp/ondrixThresholdX.h"
#include "dsp/ondrixTrackX.h"
#include "dsp/ondrixWarpX.h"

#endif
