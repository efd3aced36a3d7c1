/// \file ondrix.h
/// Ondrix: image processing and computer vision on raw buffers, behind a flat C interface.
///
/// Select an operation mode once (odxSetOperationMode), then call the operations from any number of threads.
/// Images are described by a pointer to the first pixel, a width and height in pixels, and a stride: the
/// distance in bytes between the starts of two rows. Buffers always belong to the caller.
///
/// Everywhere
/// - Pointers to bytes may have any alignment. Those to wider elements must be aligned as C demands (2 bytes for
///   int16_t, 4 for int32_t, uint32_t and float), and so must the strides between their rows. That is not checked:
///   a misaligned pointer may work on one processor and end the process on another.
/// - A call whose arguments are refused writes nothing at all: destinations, lists and counts keep what they held.
///   Set counts to 0 before a call that may be refused.
/// - Floating-point operations are rounded one by one, in the order given, and none is fused.
/// - The log goes to stderr, or to Android's log; a program that defines `__android_log_print` gets it instead.
#ifndef ONDRIX_H
#define ONDRIX_H

#include "ondrix/arithmetic.h"
#include "ondrix/bilateral.h"
#include "ondrix/colorFromRgb.h"
#include "ondrix/colorToRgb.h"
#include "ondrix/convolution.h"
#include "ondrix/correlation.h"
#include "ondrix/descriptors.h"
#include "ondrix/fastCorners.h"
#include "ondrix/gradients.h"
#include "ondrix/harrisCorners.h"
#include "ondrix/integrals.h"
#include "ondrix/memory.h"
#include "ondrix/modes.h"
#include "ondrix/morphology.h"
#include "ondrix/mser.h"
#include "ondrix/opticalFlow.h"
#include "ondrix/pyramids.h"
#include "ondrix/reordering.h"
#include "ondrix/scaling.h"
#include "ondrix/smoothing.h"
#include "ondrix/solvers.h"
#include "ondrix/statistics.h"
#include "ondrix/thresholding.h"
#include "ondrix/tracking.h"
#include "ondrix/types.h"
#include "ondrix/version.h"
#include "ondrix/warps.h"

#endif
