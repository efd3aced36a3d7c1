/// \file control.h
/// How the loopback stub is told to misbehave, and asked what it did. The functions are exported by the stub
/// library itself: look them up in a handle of your own, which also keeps the library, and what it was told, in
/// the process while the stub is reloaded.
#ifndef ONDRIX_STUB_CONTROL_H
#define ONDRIX_STUB_CONTROL_H

#include <stdint.h>

#if defined(__cplusplus)
extern "C" {
#endif

/// What the processor behind the stub does; all zeros is a healthy one. Each field has an environment variable
/// that sets it when the stub is loaded.
struct odxStubBehaviour {
    /// Every n-th call of an operation, the processor restarts in the middle of it: that call and all others under
    /// way return 104, and so does everything until the next session or recovery initialises the processor again.
    /// 0: never. ONDRIX_STUB_RESTART_EVERY
    uint32_t restartEvery;
    /// After a restart, as many initialisations fail to bring it back. ONDRIX_STUB_FAILED_RETURNS
    uint32_t failedReturns;
    /// What every operation returns instead of running; 0: it runs. ONDRIX_STUB_FAILURE
    int32_t failure;
    /// How long every operation takes on top of its work. ONDRIX_STUB_DELAY
    uint32_t delayMicroseconds;
    /// What it gives as its version; empty: the version of the library it was built with. ONDRIX_STUB_VERSION
    char version[10];
};

/// What it did since it was loaded.
struct odxStubCounts {
    uint32_t calls;           ///< calls of operations, those that failed included
    uint32_t completed;       ///< those that ran to their end
    uint32_t restarts;        ///< of the processor
    uint32_t initialisations; ///< of the processor, by sessions and recoveries
    int32_t powerMode;        ///< of the last initialisation; -1 when it named none
};

/// Sets the behaviour, and starts to count calls towards `restartEvery` anew.
void odxStubBehave(const struct odxStubBehaviour* newBehaviour);
void odxStubCount(struct odxStubCounts* newCounts);

#if defined(__cplusplus)
}
#endif

#endif
