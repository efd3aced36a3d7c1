// The remote column as the frame sees it.
#ifndef ODX_DSP_REMOTE_H
#define ODX_DSP_REMOTE_H

#include "frame/tables.h"
#include "ondrix/memory.h"

extern "C" {
// Opens, queries and closes the session with the remote processor.
int ODXAZ9_init(int mode, const char* version); // 0, or -1 on failure
void ODXAZ9_deinit();
int ODXAZ9_is_ready(); // 1 when a session is open
int ODXAZ9_get_current_mode();

void odxUpdateZ9ConstraintCheckFlag(unsigned flag);
void odxCleanUpHW();
int64_t odxZ9GetClkX();

// Remote variants into one column of the manager's tables.
unsigned uXTable(ODX_FUNC_MANAGER* manager, unsigned column);
}

namespace odx
{

// The remote variant of an operation, named by its number in the operation list, or null when it has none.
void* remoteVariant(uint32_t operation);

} // namespace odx

#endif
