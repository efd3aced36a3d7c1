#include "dsp/services.h"

#include "cpu/ondrixRegisterC.h"
#include "dsp/stub.h"

using namespace odx::dsp;

namespace
{

template <class Entry, class... Arguments>
int call(Entry* const& entry, Arguments... arguments)
{
    const StubInUse stub(StubInUse::kWaits);
    return entry != nullptr ? entry(arguments...) : kUnreachable;
}

} // namespace

extern "C" {

int64_t odxZ9GetClkX()
{
    int64_t clock = 0;
    return call(pFnX_odxZ9GetClkX, &clock) == 0 ? clock : 0;
}

int64_t probeZ9TimeX()
{
    int64_t microseconds = 0;
    return call(pFnX_probeZ9TimeX, &microseconds) == 0 ? microseconds : 0;
}

int odxRegisterBufX(void* buffer, unsigned nBytes, int descriptor)
{
    const int code = call(pFnX_odxRegisterBufX, reinterpret_cast<uintptr_t>(buffer), nBytes, descriptor);
    return code != kUnreachable ? code : odxRegisterBufC(buffer, nBytes, descriptor);
}

int odx_cache_flush_invalidateX(void* buffer, unsigned size)
{
    return call(pFnX_odx_cache_flush_invalidateX, buffer, lengthOf(buffer, size), size);
}

unsigned odxUpdateDSPMsgFlagX(unsigned flag)
{
    uint32_t result = 1;
    call(pFnX_odxUpdateDSPMsgFlagX, flag, &result);
    return result;
}
}
