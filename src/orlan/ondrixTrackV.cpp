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
    const auto distances = [&](uint32_t i) __attribute__((always_inline))
    {
        // Lanes get at most 8 bytes of each vector: 16 * 8 * 255 = 32640, and all lanes 256 * 255.
        u16v sum = {};
        for (uint32_t k = 0; k < kVectors; ++k)
            sum = addDistances(sum, rows[k], loadRows(src + i + k * kRows * stride, stride));
        return sum;
    };
    constexpr uint32_t kAtOnce = kVectors < 16 ? 4 : ~0u; // one by one where the block takes all registers
    // The last four may have been there before.
    for (uint32_t i = 0; count >= kAtOnce && i < count; i += kAtOnce) {
        const uint32_t at = i < count - kAtOnce ? i : count - kAtOnce;
        const uint64_t four =
            sumsOfDistances(distances(at), distances(at + 1), distances(at + 2), distances(at + 3));
        memcpy(sums + at, &four, sizeof four);
    }
    for (uint32_t i = 0; count < kAtOnce && i < count; ++i)
        sums[i] = (uint16_t)sumsOfDistances(distances(i), u16v{}, u16v{}, u16v{});
}

} // namespace odx::ODX_TARGET
