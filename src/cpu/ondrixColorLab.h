// What the conversion to L*a*b* shares between its reference and its SIMD rows.
#ifndef ODX_CPU_ONDRIX_COLOR_LAB_H
#define ODX_CPU_ONDRIX_COLOR_LAB_H

#include <stdint.h>

namespace odx::color
{

// Light relative to white. 1 is 2^30. It fills 16 bytes, which vectors load.
constexpr int kLightBits = 30;
struct alignas(16) Light {
    uint32_t x, y, z, none;
};

// A curve over light of 0..1, linear within each of its segments. 1 is 2^15. Rises are below 128.
constexpr int kCurveBits = 15, kSegmentBits = 19, kPartBits = 10;
constexpr uint32_t kSegments = 1 << (kLightBits - kSegmentBits);
struct Segment {
    uint16_t start, rise;
};

struct LabTables {
    Light red[256], green[256], blue[256]; // by value of the channel
    Segment curve[kSegments + 1];          // the sums for white round up to a little more than 1
};
extern const LabTables kLab;

// L = (116 * f(Y) - 16) * 255 / 100, with 7 more bits; a = 500 * (f(X) - f(Y)), b = 200 * (f(Y) - f(Z)).
constexpr int32_t kLScale = 37862, kLOffset = 5222, kAScale = 500, kBScale = 200;

} // namespace odx::color

#endif
