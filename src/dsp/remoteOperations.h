// The entries of operations in the stub library: `ondrixadsp_<operation>X` for each operation that the lists call
// remote, with the arguments that its description gives.
#ifndef ODX_DSP_REMOTE_OPERATIONS_H
#define ODX_DSP_REMOTE_OPERATIONS_H

#include "cpu/reference.h"
#include "dsp/descriptions.h"
#include "dsp/remoteEntries.h"
#include "frame/operations/words.h"

extern "C" {

#define ODX_ROUTINE(number, name, index, columns, pointer, ...) \
    ODX_IF_##columns##_X(                                       \
        odx::remoting::EntryOf<odx::remoting::__VA_ARGS__, decltype(name##C)> ondrixadsp_##name##X;)
#include "frame/operations/families.def"
}

#endif
