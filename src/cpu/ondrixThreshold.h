// What the reference and SIMD thresholds share: every fixed threshold is a closed range of levels.
#ifndef ODX_CPU_ONDRIX_THRESHOLD_H
#define ODX_CPU_ONDRIX_THRESHOLD_H

#include <stdint.h>

namespace odx::threshold
{

// The levels from `low` to `high`, not below `low`, become `inside`, the others `outside`.
struct Range {
    uint8_t low, high, inside, outside;

    constexpr uint8_t span() const { return static_cast<uint8_t>(high - low); }
};

// From the threshold on; no level is above 255, which is always kept.
static constexpr Range binary(uint32_t threshold)
{
    return {static_cast<uint8_t>(threshold > 254 ? 255 : threshold), 255, 255, 0};
}

// Bounds may lie beyond the levels, or be in the wrong order: then no level is inside.
static constexpr Range between(int32_t low, int32_t high, uint32_t inside, uint32_t outside)
{
    const bool empty = low > high || low > 255 || high < 0;
    return {static_cast<uint8_t>(empty || low < 0 ? 0 : low),
            static_cast<uint8_t>(empty || high > 255 ? 255 : high), static_cast<uint8_t>(empty ? outside : inside),
            static_cast<uint8_t>(outside)};
}

// Above the threshold, which has no sign.
static constexpr Range above(uint32_t threshold, uint32_t inside, uint32_t outside)
{
    return between(threshold > 254 ? 256 : static_cast<int32_t>(threshold) + 1, 255, inside, outside);
}

} // namespace odx::threshold

#endif
