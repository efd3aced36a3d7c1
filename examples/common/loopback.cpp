#include "common/loopback.h"

#include "stub/control.h"

#include <dlfcn.h>

namespace demo
{

long loopbackCalls()
{
    void* const stub = dlopen("libondrixadsp_stub.so", RTLD_NOW | RTLD_NOLOAD);
    if (stub == nullptr) return -1;
    const auto count = reinterpret_cast<decltype(&odxStubCount)>(dlsym(stub, "odxStubCount"));
    odxStubCounts counts{};
    if (count != nullptr) count(&counts);
    dlclose(stub);
    return count != nullptr ? static_cast<long>(counts.completed) : -1;
}

} // namespace demo
