#include "ondrix/memory.h"

#include "frame/entry.h"

using namespace odx;

int odxRegisterBuf(void* buffer, unsigned int nBytes, int descriptor)
{
    const auto anything = [] { return true; };
    const Call<odxRegisterBufC> call(__func__, anything, anything);
    ODX_CHECK(buffer && nBytes);
    return call(buffer, nBytes, descriptor);
}
