// The SIMD inner loop of block matching.
#include "cpu/ondrixNCCPatchC.h"
#include "cpu/ondrixTrackC.h"
#include "orlan/simd/simd.h"

#define ODX_FAMILY_LIST "frame/operations/tracking.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;

void odxBlockDistances16x16V(const uint8_t* block, const uint8_t* src, size_t stride, uint32_t count,
                             uint16_t* sums)
{
    constexpr uint32_t kRows = kBytes / 16, kVectors = 16 / kRows;
    u8v rows[kVectors];
    for (uint32_t k = 0; k < kVectors; ++k)
        rows[k] = load<u8v>(block + kBytes * k);
    for (uint32_t i = 0; i < count; ++i) {
        // Lanes get at most 8 bytes of each row or vector: 16 * 8 * 255 = 32640.
        u16v sum = {};
        for (uint32_t k = 0; k < kVectors; ++k)
            sum = addDistances(sum, rows[k], loadRows(src + i + k * kRows * stride, stride));
        sums[i] = (uint16_t)sumOfDistances(sum);
    }
}

} // namespace odx::ODX_TARGET
