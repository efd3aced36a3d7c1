// What the reference and SIMD smoothing filters share: constants, and the border pixels, which both columns leave
// to the same code.
#ifndef ODX_CPU_ONDRIX_BLUR_H
#define ODX_CPU_ONDRIX_BLUR_H

#include "cpu/image.h"
#include "ondrix/types.h"

namespace odx::blur
{

// Means as fixed-point reciprocals: (sum * reciprocal + 32768) >> 16.
constexpr uint16_t kBox3Reciprocal = 7282; // 65536 / 9, rounded
constexpr uint16_t kBox5Reciprocal = 2621; // 65536 / 25, truncated
constexpr uint16_t kBox11Reciprocal = 542; // 65536 / 121, rounded

// Border of a binomial filter of size K from the pixels inside the image: weighted sum divided by the weights
// used. Defined for (3, 5, 11; u8), (5; s16), (5; s32).
template <int K, class T>
void binomialBorder(const Plane<T>& plane);

// Border pixels of the 3x3 filters with a border type other than UNDEFINED; for the box filter UNDEFINED is a
// constant of 0.
void gaussian3x3Border(const Plane<uint8_t>& plane, odxBorderType type, uint32_t value);
void box3x3Border(const Plane<uint8_t>& plane, odxBorderType type, uint32_t value);
void median3x3Border(const Plane<uint8_t>& plane, odxBorderType type, uint32_t value);

// Border pixels of the box filters of size K, 5 or 11: outside the image there are zeros.
template <uint32_t K>
void boxBorder(const Plane<uint8_t>& plane);

} // namespace odx::blur

#endif
