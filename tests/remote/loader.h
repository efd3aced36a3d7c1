// The dynamic loader as the library sees it in these tests: the real one, with the accidents that a test asks for.
#ifndef ODX_TESTS_REMOTE_LOADER_H
#define ODX_TESTS_REMOTE_LOADER_H

#include "stub/control.h"

#include <map>
#include <string>

namespace odx::test
{

struct Loader {
    std::string stub;                   // the file that is loaded in place of the stub's name
    int failingOpens = 0;               // so many loads to come fail
    std::map<std::string, int> missing; // symbols, and how many lookups to come do not find them
    void* provided = nullptr;           // what the process has under the name remote_register_buf

    int opened = 0, closed = 0;
    void* handle = nullptr; // of the last load
    int sleeps = 0;         // seconds that the library slept, which took no time
};
extern Loader loader;

constexpr int kAlways = 1 << 30;

// Whether something keeps the stub from being replaced, as every call of its entries must.
bool stubIsHeld();

// The stub that keeps what it was told, and a handle of its own on it.
class Stub
{
public:
    Stub();
    void behaves(const odxStubBehaviour& behaviour) const;
    odxStubCounts counts() const;

private:
    void* handle_;
};

} // namespace odx::test

#endif
