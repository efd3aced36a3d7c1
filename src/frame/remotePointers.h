// The exported remote pointers: each holds null or the remote variant of its operation.
#ifndef ODX_FRAME_REMOTE_POINTERS_H
#define ODX_FRAME_REMOTE_POINTERS_H

#include "frame/operations/words.h"
#include "ondrix/types.h"

#define ODX_REMOTE_POINTER(name, variant, pointer) ODX_POINTER_##pointer(ODX_API void* name##R_;)
#include "frame/operations/families.def"

#endif
