// What the reference and SIMD gradients share: kernels, and the border of the Sobel filters, which both columns
// leave to the same code.
#ifndef ODX_CPU_ONDRIX_EDGE_H
#define ODX_CPU_ONDRIX_EDGE_H

#include "cpu/image.h"
#include "ondrix/types.h"

namespace odx::edge
{

// A 3x3 derivative: the difference of two columns (or rows), whose pixels have these weights.
template <int cornerWeight, int middleWeight>
struct Derivative {
    static constexpr int kCorner = cornerWeight, kMiddle = middleWeight;
};
using Central = Derivative<0, 1>;
using Sobel = Derivative<1, 2>;
using Scharr = Derivative<3, 10>;

// A pair of an interleaved image.
template <class T>
struct Both {
    T dx, dy;
};

// The pixels of the Sobel filters of size K whose window is not inside the image; either output may be null.
// Defined for 3, 5 and 7.
template <uint32_t K>
void sobelFrame(const Plane<uint8_t, int16_t>& dx, const Plane<uint8_t, int16_t>& dy, odxBorderType type,
                uint32_t value);

} // namespace odx::edge

#endif
