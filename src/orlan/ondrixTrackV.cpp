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
// vectors behind it. What is left of a row are the last lanes of a vector that ends there.
ODX_INLINE odxPartMoments<uint32_t> momentsOfVectors(const uint8_t* row, uint32_t vectors, u8v rest,
                                                     uint32_t restAt)
{
    u16p columns = {};
    u32v before = {};
    for (uint32_t i = 0; i < vectors; ++i) {
        before = addWords(addWords(before, columns.a), columns.b);
        columns = columns + split(load<u8v>(row + kBytes * i));
    }
    columns = columns + split(rest);
    const u16p places = split(load<u8v>(kPlaces.bytes));
    const u32v sum = addWords(addWords(u32v{}, columns.a), columns.b);
    const s32v inside =
        addProducts(addProducts(s32v{}, (s16v)columns.a, (s16v)places.a), (s16v)columns.b, (s16v)places.b);
    uint32_t sums[4]; // of all, before, inside, rest
    storeSums(sums, sum, before, (u32v)inside, addBytes(u32v{}, rest));
    return {sums[0], ((sums[0] - sums[3]) * (vectors - 1) - sums[1]) * kBytes + sums[2] + sums[3] * restAt};
}

void momentsOfPartu8V(const uint8_t* row, uint32_t count, odxPartMoments<uint32_t>* moments)
{
    constexpr uint32_t kMost = INT16_MAX / UINT8_MAX - 1; // that lanes can add, with the rest
    uint8_t padded[kBytes];
    if (count < kBytes) {
        memset(padded, 0, sizeof padded);
        memcpy(padded, row, count);
        row = padded;
        count = kBytes;
    }
    const uint32_t restAt = count - kBytes;
    const u8v places = load<u8v>(kPlaces.bytes);
    u8v rest = load<u8v>(row + restAt) & (u8v)(places >= (uint8_t)(kBytes - count % kBytes));
    *moments = {0, 0};
    for (uint32_t x = 0, vectors = count / kBytes, n; vectors != 0; vectors -= n, x += n * kBytes) {
        n = vectors < kMost ? vectors : kMost;
        const odxPartMoments<uint32_t> part = momentsOfVectors(row + x, n, rest, restAt - x);
        moments->sum += part.sum;
        moments->atColumns += part.atColumns + part.sum * x;
        rest = u8v{};
    }
}

} // namespace odx::ODX_TARGET
