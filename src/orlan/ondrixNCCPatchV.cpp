// The SIMD inner loop of the search of patches.
#include "cpu/ondrixNCCPatchC.h"
#include "cpu/ondrixTrackC.h"
#include "orlan/simd/simd.h"

#define ODX_FAMILY_LIST "frame/operations/tracking.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;

constexpr uint32_t kSide = 8, kPixels = kSide * kSide;

// Loops of a few vectors would stay loops.
template <uint32_t k>
ODX_INLINE u32v addPixels(u32v sum, const u8v* pixels, const uint8_t* window)
{
    const u32v next = addProducts(sum, *pixels, load<u8v>(window));
    if constexpr (k + kBytes < kPixels) return addPixels<k + kBytes>(next, pixels + 1, window + kBytes);
    return next;
}

void odxPatchProducts8x8V(const uint8_t* patch, const uint8_t* strips, size_t pitch, uint32_t columns,
                          uint32_t count, int32_t* sums)
{
    u8v pixels[kPixels / kBytes];
    memcpy(pixels, patch, sizeof pixels);
    for (; columns != 0; --columns, strips += kSide * pitch, sums += pitch) {
        const auto at = [&](uint32_t n) { return addPixels<0>(u32v{}, pixels, strips + kSide * n); };
        uint32_t n = 0;
        for (; count - n >= 4; n += 4) {
            uint32_t four[4];
            storeSums(four, at(n), at(n + 1), at(n + 2), at(n + 3));
            memcpy(sums + n, four, sizeof four);
        }
        for (; n < count; ++n)
            sums[n] = (int32_t)sumOfLanes(at(n));
    }
}

} // namespace odx::ODX_TARGET
