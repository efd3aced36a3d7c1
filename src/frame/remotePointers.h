// The exported remote pointers: each holds null or the DSP variant of its operation.
#ifndef ODX_FRAME_REMOTE_POINTERS_H
#define ODX_FRAME_REMOTE_POINTERS_H

#include "ondrix/types.h"

#define ODX_REMOTE_POINTER(name, variant) ODX_API void* name##R_;
#define ODX_REMOTE_POINTER_UNLISTED(name, variant) ODX_API void* name##R_;
#include "frame/remotePointers.def"

#endif
