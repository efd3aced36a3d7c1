/// \file descriptors.h
/// Comparing and searching feature descriptors.
#ifndef ONDRIX_DESCRIPTORS_H
#define ONDRIX_DESCRIPTORS_H

#include "ondrix/types.h"

/// Counts the set bits of `length` bytes.
/// \return the number of bits modulo 2^32; 0 for a null `src`
ODX_API uint32_t odxBitCountu8(const uint8_t* src, unsigned int length);

/// Counts the set bits of `length` 32-bit words.
/// \return the number of bits modulo 2^32; 0 for a null `src`
ODX_API uint32_t odxBitCountu32(const uint32_t* src, unsigned int length);

#endif
