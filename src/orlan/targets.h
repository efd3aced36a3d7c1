// The SIMD column: one set of kernels for each target that the build knows.
#ifndef ODX_ORLAN_TARGETS_H
#define ODX_ORLAN_TARGETS_H

#include <stddef.h>

// The targets of the build, best first.
#if defined(__x86_64__)
#define ODX_SIMD_TARGETS(list) list(avx512) list(avx2)
#elif defined(__ARM_NEON) || defined(__arm__) || defined(__aarch64__)
#define ODX_SIMD_TARGETS(list) list(neon)
#else
#define ODX_SIMD_TARGETS(list)
#endif

namespace odx::orlan
{

struct Target {
    const char* name;
    bool (*supported)(); // by the processor that is running
    // Writes the SIMD implementations into one column of the tables: `publicColumn` and `internalColumn` point at
    // the column's first entry. Entries of operations without SIMD code keep what they held.
    void (*fillColumn)(void** publicColumn, void** internalColumn);
    void (*pointHelpers)(); // points the helper pointers at the SIMD kernels
};

// All targets of this build, best first, and their number.
extern const Target* const kTargets[];
extern const size_t kTargetCount;

// The best target that the running processor supports; null when it supports none. Chosen once.
const Target* bestTarget();

// Makes `target` the choice of bestTarget from now on, for tests and benchmarks; null restores the best one.
void useTarget(const Target* target);

} // namespace odx::orlan

#endif
