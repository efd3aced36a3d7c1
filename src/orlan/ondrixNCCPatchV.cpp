// The SIMD inner loop of the search of patches.
#include "cpu/ondrixNCCPatchC.h"
#include "cpu/ondrixTrackC.h"
#include "orlan/simd/simd.h"

#define ODX_FAMILY_LIST "frame/operations/tracking.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;

void odxPatchProducts8x8V(const int16_t* patch, const uint8_t* strip, uint32_t count, int32_t* sums)
{
    constexpr uint32_t kSide = 8, kLanes = kBytes / sizeof(int16_t), kVectors = 64 / kLanes;
    s16v pixels[kVectors];
    for (uint32_t k = 0; k < kVectors; ++k)
        pixels[k] = load<s16v>(patch + kLanes * k);
    for (uint32_t n = 0; n < count; ++n) {
        s32v sum = {};
        for (uint32_t k = 0; k < kVectors; ++k)
            sum = addProducts(sum, pixels[k], (s16v)loadWiden(strip + kSide * n + kLanes * k));
        sums[n] = (int32_t)sumOfLanes(sum);
    }
}

} // namespace odx::ODX_TARGET
