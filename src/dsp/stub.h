// The stub library: loading, symbols, and who may use it when.
#ifndef ODX_DSP_STUB_H
#define ODX_DSP_STUB_H

#include "dsp/remoteEntries.h"
#include "frame/operations/words.h"

#include <pthread.h>

extern "C" {
// The remote entries; null while the stub is not loaded, or has no such symbol.
#define ODX_ROUTINE(number, name, index, columns, ...) ODX_IF_##columns##_X(extern void* pFnX_##name##X;)
#define ODX_SERVICE(name) extern void* pFnX_##name##X;
#include "frame/operations/families.def"

// One more user of the stub, and one less; the first and the last one load and unload it. Loading gives 0 or -1.
int dlopen_stub();
void dlclose_stub();
void* dlsym_get(const char* symbol);
// Looks all entries up, in the order of the lists. Returns -1 at the first one that is missing; those before it
// stay set.
int load_stub_symbols();
}

namespace odx::remoting
{

// What is looked up in the stub, in the order of the lists: the entries of operations and of services.
struct Symbol {
    void** pointer;
    const char* name;
    uint32_t operation; // its number in the operation list
};
enum SymbolNumber : uint32_t {
#define ODX_ROUTINE(number, name, index, columns, ...) ODX_IF_##columns##_X(symbol_##name, )
#define ODX_SERVICE(name) symbol_##name,
#include "frame/operations/families.def"
    kSymbolNumbers
};
extern const Symbol kSymbols[kSymbolNumbers];
constexpr char kSymbolPrefix[] = "ondrixadsp_"; // before the name of a variant

constexpr int kRestarted = 104;  // what an entry returns after a restart of the processor
constexpr int kUnreachable = -1; // instead of a call to an entry that is not there

template <class Entry, class... Arguments>
int callEntry(void* const& pointer, Arguments... arguments)
{
    auto* const entry = reinterpret_cast<Entry*>(pointer);
    return entry != nullptr ? entry(arguments...) : kUnreachable;
}

// Remote calls hold the stub while they are inside it; it is replaced only when none is.
extern pthread_rwlock_t stubLock;

class StubInUse
{
public:
    StubInUse() : held_(pthread_rwlock_rdlock(&stubLock) == 0) {}
    ~StubInUse()
    {
        if (held_) pthread_rwlock_unlock(&stubLock);
    }
    StubInUse(const StubInUse&) = delete;
    StubInUse& operator=(const StubInUse&) = delete;

private:
    bool held_;
};

class StubReplaced
{
public:
    StubReplaced() { pthread_rwlock_wrlock(&stubLock); }
    ~StubReplaced() { pthread_rwlock_unlock(&stubLock); }
    StubReplaced(const StubReplaced&) = delete;
    StubReplaced& operator=(const StubReplaced&) = delete;
};

} // namespace odx::remoting

#endif
