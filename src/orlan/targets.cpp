#include "orlan/targets.h"

#define DECLARE_TARGET(name)           \
    namespace odx::name                \
    {                                  \
    extern const orlan::Target target; \
    }
ODX_SIMD_TARGETS(DECLARE_TARGET)

namespace odx::orlan
{

#define TARGET_ADDRESS(name) &odx::name::target,
const Target* const kTargets[] = {ODX_SIMD_TARGETS(TARGET_ADDRESS) nullptr};
const size_t kTargetCount = sizeof kTargets / sizeof kTargets[0] - 1;

namespace
{
const Target* chosen = nullptr;
}

const Target* bestTarget()
{
    if (chosen != nullptr) return chosen;
    for (size_t i = 0; i < kTargetCount; ++i) {
        if (kTargets[i]->supported()) return chosen = kTargets[i];
    }
    return nullptr;
}

void useTarget(const Target* target)
{
    chosen = target;
}

} // namespace odx::orlan
