// The helper pointers. Null before the first mode selection.
#ifndef ODX_FRAME_HELPERS_H
#define ODX_FRAME_HELPERS_H

#include "cpu/reference.h"

extern "C" {
#define ODX_HELPER(name, columns) extern decltype(&name##C) name##_;
#include "frame/helpers.def"
}

#endif
