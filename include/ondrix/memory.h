/// \file memory.h
/// Aligned allocation for image buffers, and the scratch pool that operations take temporary memory from.
#ifndef ONDRIX_MEMORY_H
#define ONDRIX_MEMORY_H

#include "ondrix/types.h"

/// Allocates an aligned block from the system.
/// \param alignment  a power of two, at most 128
/// \return the block, to be freed with odxMemAlignFree; null when memory is short or the alignment is another
ODX_API void* odxMemAlign(size_t nBytes, size_t alignment);

/// Frees a block of odxMemAlign; null is ignored.
ODX_API void odxMemAlignFree(void* ptr);

/// Allocates an image buffer.
/// It comes from memory shared with the DSP while a session is open, else (and when that fails) it is as one of
/// odxMemAlign.
/// \return the block, to be freed with odxMemFree; null when memory is short
ODX_API void* odxMemAlloc(size_t nBytes, size_t alignment);

/// Frees a block of odxMemAlloc, shared or not; null is ignored.
ODX_API void odxMemFree(void* ptr);

/// Creates the scratch pool for the first user and counts one user more.
/// With the pool, repeated calls on frames
/// of one size allocate nothing; without it, operations that need temporary memory take it from the system and
/// give it back on every call.
///
/// \return 1
ODX_API int odxMemInit(void);

/// As odxMemInit, and one block of the pool already holds min(preAllocBytes, 33177600) bytes.
/// \return 1, or 0 when the memory could not be had (the user is counted all the same)
ODX_API int odxMemInitPreAlloc(unsigned int preAllocBytes);

/// Counts one user less and destroys the pool with the last one; without users it does nothing. An operation that
/// is running meanwhile keeps the blocks that it has until it returns.
///
/// \return 0
ODX_API int odxMemDeInit(void);

/// \name Memory shared with the DSP
/// Selecting a mode that opens a session installs the allocator of shared memory, and odxCleanUp removes it; most
/// applications call none of these.
///
/// There are up to 128 shared blocks, of whole pages. They belong to the session: free them before odxCleanUp or
/// odxDeInitSharedMem. Where there is none to be had, odxMemAlloc gives ordinary memory, and remote calls copy it.
/// @{

/// Makes odxMemAlloc prefer shared memory, if the hardware mask has ONDRIX_HW_XDSP and not ONDRIX_HW_GPU.
ODX_API void odxInitSharedMem(unsigned int hwMask);

/// Ends that.
ODX_API void odxDeInitSharedMem(void);

/// Tells the DSP of shared memory that the application got on its own, so that remote calls do not copy it.
/// \param descriptor  the DMA buffer that `buffer` is a mapping of
/// \return 0, also without a DSP; -1 for a null buffer or no bytes ("Assertion failed @..."); else the failure of
///         the remote call
ODX_API int odxRegisterBuf(void* buffer, unsigned int nBytes, int descriptor);
/// @}

#endif
