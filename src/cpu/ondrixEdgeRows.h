// Rows of gradients, from rows of the source that point at the leftmost tap of the first output. Plain loops that
// compilers vectorise.
#ifndef ODX_CPU_ONDRIX_EDGE_ROWS_H
#define ODX_CPU_ONDRIX_EDGE_ROWS_H

#include "cpu/ondrixEdge.h"

#include <stdlib.h>

namespace odx::edge
{

// Calls store(x, dx, dy) for each output. Sums of bytes are whole numbers, those of floats are added in this
// order.
template <class Kernel, class Sum, class T, class Store>
static inline void gradientRow(const T* above, const T* here, const T* below, uint32_t count, Store store)
{
    constexpr Sum corner = Kernel::kCorner, middle = Kernel::kMiddle;
    for (size_t x = 0; x < count; ++x) {
        const Sum dx = corner * (above[x + 2] - above[x]) + middle * (here[x + 2] - here[x]) +
                       corner * (below[x + 2] - below[x]);
        const Sum dy = corner * (below[x] - above[x]) + middle * (below[x + 1] - above[x + 1]) +
                       corner * (below[x + 2] - above[x + 2]);
        store(x, dx, dy);
    }
}

// One derivative of the Sobel filters: dx, or dy where `downward`.
template <uint32_t size, bool downward>
struct SobelAxis {
    static constexpr uint32_t K = size;
    static constexpr int kSmoothing[3][7] = {{1, 2, 1}, {1, 4, 6, 4, 1}, {1, 6, 15, 20, 15, 6, 1}};
    static constexpr int kDerivative[3][7] = {{-1, 0, 1}, {-1, -2, 0, 2, 1}, {-1, -4, -5, 0, 5, 4, 1}};
    static constexpr auto& kAlong = downward ? kSmoothing[K / 2 - 1] : kDerivative[K / 2 - 1];
    static constexpr auto& kDown = downward ? kDerivative[K / 2 - 1] : kSmoothing[K / 2 - 1];

    // Sums of columns fit 16 bits: 64 x 255.
    static void row(const uint8_t* const* lines, int16_t* out, uint32_t count)
    {
        constexpr uint32_t chunk = 256;
        for (uint32_t x0 = 0, n; x0 < count; x0 += n) {
            n = count - x0 < chunk ? count - x0 : chunk;
            int16_t columns[chunk + K - 1];
            for (size_t x = 0; x < n + K - 1; ++x) {
                int sum = 0;
                for (size_t k = 0; k < K; ++k)
                    sum += kDown[k] * lines[k][x0 + x];
                columns[x] = static_cast<int16_t>(sum);
            }
            for (size_t x = 0; x < n; ++x) {
                int sum = 0;
                for (size_t k = 0; k < K; ++k)
                    sum += kAlong[k] * columns[x + k];
                out[x0 + x] = static_cast<int16_t>(sum < INT16_MIN   ? INT16_MIN
                                                   : sum > INT16_MAX ? INT16_MAX
                                                                     : sum);
            }
        }
    }
    // The transposed window is the other derivative's.
    static void column(const uint8_t* const* lines, int16_t* out, uint32_t count)
    {
        SobelAxis<size, !downward>::row(lines, out, count);
    }
};

// Rows of outputs, the first of which has its uppermost leftmost tap at `src`.
template <class Axis>
static inline void sobelRows(const uint8_t* src, size_t srcStride, int16_t* out, size_t outStride, uint32_t width,
                             uint32_t height)
{
    for (uint32_t y = 0; y < height; ++y) {
        const uint8_t* lines[Axis::K];
        for (uint32_t k = 0; k < Axis::K; ++k)
            lines[k] = rowOf(src, srcStride, size_t{y} + k);
        Axis::row(lines, rowOf(out, outStride, y), width);
    }
}

} // namespace odx::edge

#endif
