#include "remote/loader.h"

#include "dsp/stub.h"
#include "platform/platform.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

namespace odx::test
{

Loader loader;

Stub::Stub() : handle_(dlopen(ODX_TEST_STUB, RTLD_NOW))
{
    if (handle_ == nullptr) {
        fprintf(stderr, "%s\n", dlerror());
        abort();
    }
    loader.stub = ODX_TEST_STUB;
}

void Stub::behaves(const odxStubBehaviour& behaviour) const
{
    reinterpret_cast<decltype(&odxStubBehave)>(dlsym(handle_, "odxStubBehave"))(&behaviour);
}

bool stubIsHeld()
{
    const bool held = pthread_rwlock_trywrlock(&remoting::stubLock) != 0;
    if (!held) pthread_rwlock_unlock(&remoting::stubLock);
    return held;
}

odxStubCounts Stub::counts() const
{
    odxStubCounts counts;
    reinterpret_cast<decltype(&odxStubCount)>(dlsym(handle_, "odxStubCount"))(&counts);
    return counts;
}

} // namespace odx::test

using odx::test::loader;

namespace odx::platform
{

void* openLibrary(const char* path)
{
    const bool stub = strcmp(path, ODX_STUB_LIBRARY) == 0;
    if (stub && (loader.stub.empty() || loader.failingOpens > 0)) {
        if (loader.failingOpens > 0) --loader.failingOpens;
        return nullptr;
    }
    loader.handle = dlopen(stub ? loader.stub.c_str() : path, RTLD_LAZY);
    if (loader.handle != nullptr) ++loader.opened;
    return loader.handle;
}

void closeLibrary(void* handle)
{
    ++loader.closed;
    const bool callsMayEnter = pthread_rwlock_tryrdlock(&odx::remoting::stubLock) == 0;
    if (callsMayEnter) pthread_rwlock_unlock(&odx::remoting::stubLock);
    EXPECT_FALSE(callsMayEnter);
    dlclose(handle);
}

void* findSymbol(void* handle, const char* symbol)
{
    const auto found = loader.missing.find(symbol);
    if (found != loader.missing.end() && found->second-- > 0) return nullptr;
    return dlsym(handle, symbol);
}

void* findSymbolInProcess(const char*)
{
    return loader.provided;
}

const char* loaderError()
{
    return "no such library";
}

} // namespace odx::platform

extern "C" unsigned sleep(unsigned seconds)
{
    loader.sleeps += static_cast<int>(seconds);
    return 0;
}
