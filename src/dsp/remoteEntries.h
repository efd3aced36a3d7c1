// The entries of the stub library, as the library calls them and as a stub defines them: those of sessions and of
// the processor itself. remoteOperations.h declares those of operations. All but the three of the session's own
// return 0 when the remote processor took the call, 104 when it restarted, and anything else when the call failed;
// in all but the first case nothing that they point at counts.
#ifndef ODX_DSP_REMOTE_ENTRIES_H
#define ODX_DSP_REMOTE_ENTRIES_H

#include <stdint.h>

#define ODX_STUB_LIBRARY "libondrixadsp_stub.so"
#define ODX_STUB_INIT "dspRT_initZ9_with_attributes"
#define ODX_STUB_DEINIT "dspRT_deinitZ9"

struct ODXAZ9_ATTRIBUTE {
    int32_t identifier;
    int32_t value;
};
enum { ODXAZ9_POWER_MODE = 3 }; // identifier

extern "C" {

// A session begins and ends.
int dspRT_initZ9_with_attributes(const ODXAZ9_ATTRIBUTE* attributes, int count);
int dspRT_deinitZ9(void);

int ondrixadsp_odxGetVersionX(char* text, uint32_t textLength);
int ondrixadsp_odxZ9GetClkX(int64_t* clock);
int ondrixadsp_probeZ9TimeX(int64_t* microseconds);
int ondrixadsp_odxRegisterBufX(uint64_t address, uint32_t nBytes, int32_t descriptor);
int ondrixadsp_odx_cache_flush_invalidateX(void* buffer, uint32_t bufferLength, uint32_t size);
int ondrixadsp_odxUpdateDSPMsgFlagX(uint32_t flag, uint32_t* result);
}

#endif
