#include "ondrix/memory.h"

#include "frame/entry.h"

using namespace odx;

int odxRegisterBuf(void* buffer, unsigned int nBytes, int descriptor)
{
    const Call<odxRegisterBufC> call(__func__);
    ODX_CHECK(buffer && nBytes);
    return call(buffer, nBytes, descriptor);
}
