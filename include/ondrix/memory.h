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

/// Allocates an image buffer, from memory shared with the DSP while a session is open, else (and when that fails)
/// as odxMemAlign.
/// \return the block, to be freed with odxMemFree; null when memory is short
ODX_API void* odxMemAlloc(size_t nBytes, size_t alignment);

/// Frees a block of odxMemAlloc, shared or not; null is ignored.
ODX_API void odxMemFree(void* ptr);

/// Creates the scratch pool for the first user and counts one user more. With the pool, repeated calls on frames
/// of one size allocate nothing; without it, operations that need temporary memory take it from the system and
/// give it back on every call. \return 1
ODX_API int odxMemInit(void);

/// As odxMemInit, and one block of the pool already holds min(preAllocBytes, 33177600) bytes.
/// \return 1, or 0 when the memory could not be had (the user is counted all the same)
ODX_API int odxMemInitPreAlloc(unsigned int preAllocBytes);

/// Counts one user less and destroys the pool with the last one; without users it does nothing. An operation that
/// is running meanwhile keeps the blocks that it has until it returns. \return 0
ODX_API int odxMemDeInit(void);

#endif
