#include "dsp/stub.h"

#include "frame/log.h"
#include "frame/operations.h"
#include "platform/platform.h"

using namespace odx;

extern "C" {
#define ODX_ROUTINE(number, name, index, columns, ...) ODX_IF_##columns##_X(void* pFnX_##name##X = nullptr;)
#define ODX_SERVICE(name) void* pFnX_##name##X = nullptr;
#include "frame/operations/families.def"
}

pthread_rwlock_t remoting::stubLock = PTHREAD_RWLOCK_INITIALIZER;

const remoting::Symbol remoting::kSymbols[] = {
#define ODX_ROUTINE(number, name, index, columns, ...) \
    ODX_IF_##columns##_X({&pFnX_##name##X, "ondrixadsp_" #name "X", op_##name}, )
#define ODX_SERVICE(name) {&pFnX_##name##X, "ondrixadsp_" #name "X", kOperationNumbers},
#include "frame/operations/families.def"
};

namespace
{

void* adspstubHandle = nullptr;
uint32_t adspstubReferences = 0;

// What an unloaded stub leaves behind must not be called.
void forgetSymbols()
{
    for (const remoting::Symbol& symbol : remoting::kSymbols)
        *symbol.pointer = nullptr;
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
    for (const remoting::Symbol& symbol : remoting::kSymbols) {
        *symbol.pointer = dlsym_get(symbol.name);
        if (*symbol.pointer == nullptr) {
            ODX_LOG(Error, "Cannot load: %s \n", symbol.name);
            return -1;
        }
    }
    return 0;
}
}
