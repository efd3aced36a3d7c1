// Dynamic loading.
#include "platform/platform.h"

#include <dlfcn.h>

namespace odx::platform
{

void* openLibrary(const char* path)
{
    return dlopen(path, RTLD_LAZY);
}

void closeLibrary(void* handle)
{
    dlclose(handle);
}

void* findSymbol(void* handle, const char* symbol)
{
    return dlsym(handle, symbol);
}

void* findSymbolInProcess(const char* symbol)
{
    return dlsym(RTLD_DEFAULT, symbol);
}

const char* loaderError()
{
    const char* text = dlerror();
    return text != nullptr ? text : "none";
}

} // namespace odx::platform
