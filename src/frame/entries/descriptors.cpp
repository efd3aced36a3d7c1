#include "ondrix/descriptors.h"
#include "frame/entry.h"

using namespace odx;

extern "C" {

uint32_t odxBitCountu8(const uint8_t* src, unsigned int length)
{
    const Call<odxBitCountu8C> call(__func__, ODX_LIMITS(bytes(length) & gpu(4, src)));
    if (src == nullptr) return call.failure();
    return call(src, length);
}

uint32_t odxBitCountu32(const uint32_t* src, unsigned int length)
{
    const Call<odxBitCountu32C> call(__func__, ODX_LIMITS(bytes(length, sizeof *src) & gpu(4, src)));
    if (src == nullptr) return call.failure();
    return call(src, length);
}
}
