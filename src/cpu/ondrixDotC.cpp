#include "cpu/ondrixDotC.h"

#include <string.h>

extern "C" {

uint32_t odxBitCountu8C(const uint8_t* src, unsigned int length)
{
    uint32_t count = 0;
    unsigned int i = 0;
    for (; length - i >= sizeof(uint64_t); i += sizeof(uint64_t)) {
        uint64_t word;
        memcpy(&word, src + i, sizeof word);
        count += (uint32_t)__builtin_popcountll(word);
    }
    for (; i < length; ++i)
        count += (uint32_t)__builtin_popcount(src[i]);
    return count;
}

uint32_t odxBitCountu32C(const uint32_t* src, unsigned int length)
{
    uint32_t count = 0;
    for (unsigned int i = 0; i < length; ++i)
        count += (uint32_t)__builtin_popcount(src[i]);
    return count;
}
}
