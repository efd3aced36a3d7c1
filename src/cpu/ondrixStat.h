// What the reference and SIMD statistics share: how results are handed over.
#ifndef ODX_CPU_ONDRIX_STAT_H
#define ODX_CPU_ONDRIX_STAT_H

#include "ondrix/statistics.h"

#include <stddef.h>
#include <string.h>
#include <type_traits>

#define ODX_STAT_INLINE [[gnu::always_inline]] static inline

namespace odx::stat
{

// Where an extreme element was first found.
template <class T>
struct Place {
    T value;
    uint32_t x, y;
};
template <class T>
struct Extremes {
    Place<T> least, greatest;
    bool found; // not without numbers
};

// Before anything is found: floats are not-a-numbers then.
template <class T>
ODX_STAT_INLINE Extremes<T> noExtremes()
{
    T none = 0;
    if constexpr (std::is_floating_point_v<T>) {
        constexpr uint32_t kNotANumber = 0x7FC00000;
        memcpy(&none, &kNotANumber, sizeof none);
    }
    return {{none, 0, 0}, {none, 0, 0}, false};
}

template <class T>
ODX_STAT_INLINE void report(const Place<T>& place, T* value, uint32_t* xy)
{
    if (value != nullptr) memcpy(value, &place.value, sizeof *value);
    if (xy != nullptr) {
        xy[0] = place.x;
        xy[1] = place.y;
    }
}

// The places of an extreme, of which the first `capacity` are listed.
struct Places {
    uint32_t* xy;
    uint64_t capacity, count = 0;

    [[gnu::always_inline]] inline void add(size_t x, size_t y)
    {
        if (count < capacity) {
            xy[2 * static_cast<size_t>(count)] = static_cast<uint32_t>(x);
            xy[2 * static_cast<size_t>(count) + 1] = static_cast<uint32_t>(y);
        }
        ++count;
    }
};

// The steps of both columns: `extremesOf` finds the first places, listPlaces(extremes, least, greatest) all.
template <class T, class ListPlaces>
ODX_STAT_INLINE odxStatus reportAll(const Extremes<T>& extremes, T* minValue, T* maxValue, uint32_t* minXY,
                                    uint32_t* maxXY, uint32_t capacity, uint32_t* minCount, uint32_t* maxCount,
                                    ListPlaces listPlaces)
{
    Places least = {minXY, capacity}, greatest = {maxXY, capacity};
    if (extremes.found) listPlaces(least, greatest);
    report<T>(extremes.least, minValue, nullptr);
    report<T>(extremes.greatest, maxValue, nullptr);
    *minCount = static_cast<uint32_t>(least.count);
    *maxCount = static_cast<uint32_t>(greatest.count);
    return ONDRIX_SUCCESS;
}

// Sums of pixels and of their squares. So many pixels fit 32 bits.
constexpr uint32_t kFitting = 65536;
struct Sums {
    uint64_t pixels, squares;
};

ODX_STAT_INLINE void report(const Sums& sums, uint32_t width, uint32_t height, odxVarianceEstimator estimator,
                            float* mean, float* variance)
{
    const uint64_t n = uint64_t{width} * height,
                   divisor = estimator == ONDRIX_VARIANCE_SAMPLE && n > 1 ? n - 1 : n;
    const double sum = static_cast<double>(sums.pixels), m = sum / static_cast<double>(n);
    *mean = static_cast<float>(m);
    *variance = static_cast<float>((static_cast<double>(sums.squares) - sum * m) / static_cast<double>(divisor));
}

// Histogram equalisation; `lookUp` is odxTableLookupu8 of a column.
typedef void LookUp(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                    const uint8_t* table, uint8_t* dst, unsigned int dstStride);
void equalize(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst,
              uint32_t dstStride, LookUp* lookUp);

// The pixels of each level.
void countLevels(const uint8_t* src, uint32_t width, uint32_t height, size_t stride, uint32_t (&counts)[256]);

} // namespace odx::stat

#endif
