// Remote calls that belong to no operation, and buffers shared with the remote processor.
#ifndef ODX_DSP_SERVICES_H
#define ODX_DSP_SERVICES_H

#include "dsp/remote.h"

#include <stddef.h>

extern "C" {

// Thin forwards to their remote entries. The clocks are 0 when the processor cannot be asked; the others return
// what the entry returned, -1 when there is none.
int64_t probeZ9TimeX();
decltype(odxRegisterBuf) odxRegisterBufX;
int odx_cache_flush_invalidateX(void* buffer, unsigned size);
unsigned odxUpdateDSPMsgFlagX(unsigned flag); // the remote result; 1 when there is none

// Page-aligned buffers that both processors see. Null on failure, with a log line.
void* odxSharedMemAllocX(size_t nBytes, size_t alignment);
int odxSharedMemFreeX(void* ptr); // 0; -1 when it is no such buffer

int odxInitSharedMem_Xdsp();
void odxDeInitSharedMem_Xdsp();
}

#endif
