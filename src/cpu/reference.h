// Every reference implementation, by family.
#ifndef ODX_CPU_REFERENCE_H
#define ODX_CPU_REFERENCE_H

#include "cpu/ondrixArithmC.h"
#include "cpu/ondrixBilateralC.h"
#include "cpu/ondrixBlurC.h"
#include "cpu/ondrixChannelC.h"
#include "cpu/ondrixColorC.h"
#include "cpu/ondrixColorFromRgbC.h"
#include "cpu/ondrixConvC.h"
#include "cpu/ondrixCorrC.h"
#include "cpu/ondrixDotC.h"
#include "cpu/ondrixEdgeC.h"
#include "cpu/ondrixFastC.h"
#include "cpu/ondrixHarrisC.h"
#include "cpu/ondrixIntegralC.h"
#include "cpu/ondrixMorphC.h"
#include "cpu/ondrixMserFxpC.h"
#include "cpu/ondrixNCCPatchC.h"
#include "cpu/ondrixOpticalFlowC.h"
#include "cpu/ondrixPyramidC.h"
#include "cpu/ondrixRegisterC.h"
#include "cpu/ondrixReorderC.h"
#include "cpu/ondrixSVDC.h"
#include "cpu/ondrixScaleC.h"
#include "cpu/ondrixStatC.h"
#include "cpu/ondrixThresholdC.h"
#include "cpu/ondrixTrackC.h"
#include "cpu/ondrixWarpC.h"

#endif
