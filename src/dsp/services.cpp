#include "dsp/services.h"

#include "cpu/ondrixRegisterC.h"
#include "dsp/stub.h"

using namespace odx::remoting;

namespace
{

template <class Entry, class... Arguments>
int call(void* const& pointer, Arguments... arguments)
{
    const StubInUse stub;
    return callEntry<Entry>(pointer, arguments...);
}

} // namespace

extern "C" {

int64_t odxZ9GetClkX()
{
    int64_t clock = 0;
    return call<decltype(ondrixadsp_odxZ9GetClkX)>(pFnX_odxZ9GetClkX, &clock) == 0 ? clock : 0;
}

int64_t probeZ9TimeX()
{
    int64_t microseconds = 0;
    return call<decltype(ondrixadsp_probeZ9TimeX)>(pFnX_probeZ9TimeX, &microseconds) == 0 ? microseconds : 0;
}

int odxRegisterBufX(void* buffer, unsigned nBytes, int descriptor)
{
    const int code = call<decltype(ondrixadsp_odxRegisterBufX)>(
        pFnX_odxRegisterBufX, reinterpret_cast<uintptr_t>(buffer), nBytes, descriptor);
    return code != kUnreachable ? code : odxRegisterBufC(buffer, nBytes, descriptor);
}

int odx_cache_flush_invalidateX(void* buffer, unsigned size)
{
    return call<decltype(ondrixadsp_odx_cache_flush_invalidateX)>(pFnX_odx_cache_flush_invalidateX, buffer,
                                                                  buffer == nullptr ? 0 : size, size);
}

unsigned odxUpdateDSPMsgFlagX(unsigned flag)
{
    uint32_t result = 1;
    call<decltype(ondrixadsp_odxUpdateDSPMsgFlagX)>(pFnX_odxUpdateDSPMsgFlagX, flag, &result);
    return result;
}
}
