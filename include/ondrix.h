/// \file ondrix.h
/// Ondrix: image processing and computer vision on raw buffers, behind a flat C interface.
///
/// Select an operation mode once (odxSetOperationMode), then call the operations from any number of threads.
/// Images are described by a pointer to the first pixel, a width and height in pixels, and a stride: the
/// distance in bytes between the starts of two rows. Buffers always belong to the caller.
#ifndef ONDRIX_H
#define ONDRIX_H

#include "ondrix/colorFromRgb.h"
#include "ondrix/colorToRgb.h"
#include "ondrix/descriptors.h"
#include "ondrix/fastCorners.h"
#include "ondrix/harrisCorners.h"
#include "ondrix/memory.h"
#include "ondrix/modes.h"
#include "ondrix/smoothing.h"
#include "ondrix/types.h"

#endif
