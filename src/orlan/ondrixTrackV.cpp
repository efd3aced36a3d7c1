// The SIMD inner loops of mean shift and block matching.
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

struct Places {
    uint8_t bytes[kBytes] = {};

    constexpr Places()
    {
        for (uint32_t i = 0; i < kBytes; ++i)
            bytes[i] = (uint8_t)i;
    }
};
static constexpr Places kPlaces;

// Lanes hold the sums of their columns. Those before each vector, added up, are each vector's sum times the
// vectors behind it.
ODX_INLINE odxPartMoments<uint32_t> momentsOfVectors(const uint8_t* row, uint32_t vectors)
{
    const s16v one = s16v{} + 1;
    u16p columns = {};
    s32v before = {};
    for (uint32_t i = 0; i < vectors; ++i) {
        before = addProducts(addProducts(before, (s16v)columns.a, one), (s16v)columns.b, one);
        columns = columns + split(load<u8v>(row + kBytes * i));
    }
    const u16p places = split(load<u8v>(kPlaces.bytes));
    const s16v a = (s16v)columns.a, b = (s16v)columns.b;
    const uint32_t sum = sumOfLanes(addProducts(addProducts(s32v{}, a, one), b, one)),
                   inside = sumOfLanes(addProducts(addProducts(s32v{}, a, (s16v)places.a), b, (s16v)places.b));
    return {sum, (sum * (vectors - 1) - sumOfLanes(before)) * kBytes + inside};
}

void momentsOfPartu8V(const uint8_t* row, uint32_t count, odxPartMoments<uint32_t>* moments)
{
    constexpr uint32_t kMost = INT16_MAX / UINT8_MAX; // that lanes can add
    *moments = {0, 0};
    const auto add = [=](const uint8_t* p, uint32_t vectors, uint32_t x) __attribute__((always_inline))
    {
        const odxPartMoments<uint32_t> part = momentsOfVectors(p, vectors);
        moments->sum += part.sum;
        moments->atColumns += part.atColumns + part.sum * x;
    };
    uint32_t x = 0;
    for (uint32_t vectors = count / kBytes, n; vectors != 0; vectors -= n, x += n * kBytes) {
        n = vectors < kMost ? vectors : kMost;
        add(row + x, n, x);
    }
    if (x == count) return;
    uint8_t last[kBytes] = {};
    memcpy(last, row + x, count - x);
    add(last, 1, x);
}

} // namespace odx::ODX_TARGET
