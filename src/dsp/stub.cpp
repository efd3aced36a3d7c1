#include "dsp/stub.h"

#include "frame/log.h"

using namespace odx;

extern "C" {
#define ODX_REMOTE_ENTRY(name) decltype(&ondrixadsp_##name##X) pFnX_##name##X = nullptr;
#include "dsp/remote.def"
}

pthread_rwlock_t dsp::stubLock = PTHREAD_RWLOCK_INITIALIZER;

namespace
{

void* adspstubHandle = nullptr;
uint32_t adspstubReferences = 0;

template <class Entry>
bool load(Entry*& pointer, const char* symbol)
{
    pointer = reinterpret_cast<Entry*>(dlsym_get(symbol));
    if (pointer == nullptr) ODX_LOG(Error, "Cannot load: %s \n", symbol);
    return pointer != nullptr;
}

// What an unloaded stub leaves behind must not be called.
void forgetSymbols()
{
#define ODX_REMOTE_ENTRY(name) pFnX_##name##X = nullptr;
#include "dsp/remote.def"
}

} // namespace

extern "C" {

int dlopen_stub()
{
    if (adspstubReferences == 0 && adspstubHandle == nullptr) {
        adspstubHandle = platform::openLibrary(ODX_STUB_LIBRARY);
    }
    if (adspstubHandle == nullptr) {
        ODX_LOG(Error, "Failed to open libondrixadsp_stub.so!!! adspstubHandle is NULL, %s \n",
                platform::loaderError());
        return -1;
    }
    ++adspstubReferences;
    ODX_LOG(Debug, "dlopen_stub completed. adspstubHandle=%p \n", adspstubHandle);
    return 0;
}

void dlclose_stub()
{
    if (adspstubReferences == 1) {
        forgetSymbols();
        platform::closeLibrary(adspstubHandle);
        adspstubHandle = nullptr;
    }
    if (adspstubReferences > 0) --adspstubReferences;
    ODX_LOG(Debug, "Enter dlclose_stub completed \n");
}

void* dlsym_get(const char* symbol)
{
    return adspstubHandle != nullptr ? platform::findSymbol(adspstubHandle, symbol) : nullptr;
}

int load_stub_symbols()
{
#define ODX_REMOTE_ENTRY(name) \
    if (!load(pFnX_##name##X, "ondrixadsp_" #name "X")) return -1;
#include "dsp/remote.def"
    return 0;
}
}
