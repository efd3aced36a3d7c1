// Rows of gradients, from rows of the source that point at the leftmost tap of the first output. Plain loops that
// compilers vectorise.
#ifndef ODX_CPU_ONDRIX_EDGE_ROWS_H
#define ODX_CPU_ONDRIX_EDGE_ROWS_H

#include "cpu/ondrixEdge.h"

#include <stdlib.h>
#include <type_traits>

namespace odx::edge
{

constexpr uint32_t kChunk = 256; // columns worked on at a time; their sums live on the stack

// Calls store(x, dx, dy) for each output.
template <class Kernel, class Store>
static inline void gradientRow(const uint8_t* above, const uint8_t* here, const uint8_t* below, uint32_t count,
                               Store store)
{
    constexpr int corner = Kernel::kCorner, middle = Kernel::kMiddle;
    for (uint32_t x0 = 0, n; x0 < count; x0 += n) {
        n = count - x0 < kChunk ? count - x0 : kChunk;
        int16_t sums[kChunk + 2], differences[kChunk + 2]; // of columns, up to 16 x 255
        for (size_t x = 0; x < n + 2; ++x) {
            sums[x] = static_cast<int16_t>(corner * (above[x0 + x] + below[x0 + x]) + middle * here[x0 + x]);
            differences[x] = static_cast<int16_t>(below[x0 + x] - above[x0 + x]);
        }
        for (size_t x = 0; x < n; ++x) {
            store(x0 + x, static_cast<int16_t>(sums[x + 2] - sums[x]),
                  static_cast<int16_t>(corner * (differences[x] + differences[x + 2]) +
                                       middle * differences[x + 1]));
        }
    }
}

// Sums of floats are added in this order.
template <class Kernel, class Store>
static inline void gradientRow(const float* above, const float* here, const float* below, uint32_t count,
                               Store store)
{
    constexpr float corner = Kernel::kCorner, middle = Kernel::kMiddle;
    for (size_t x = 0; x < count; ++x) {
        store(x,
              corner * (above[x + 2] - above[x]) + middle * (here[x + 2] - here[x]) +
                  corner * (below[x + 2] - below[x]),
              corner * (below[x] - above[x]) + middle * (below[x + 1] - above[x + 1]) +
                  corner * (below[x + 2] - above[x + 2]));
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

    // Sums of columns fit 16 bits: 64 x 255. So do all but those of 7x7.
    using Sum = std::conditional_t<K == 7, int, int16_t>;

    static void row(const uint8_t* const* lines, int16_t* out, uint32_t count)
    {
        for (uint32_t x0 = 0, n; x0 < count; x0 += n) {
            n = count - x0 < kChunk ? count - x0 : kChunk;
            int16_t columns[kChunk + K - 1];
            for (size_t x = 0; x < n + K - 1; ++x) {
                int sum = 0;
                for (size_t k = 0; k < K; ++k)
                    sum += kDown[k] * lines[k][x0 + x];
                columns[x] = static_cast<int16_t>(sum);
            }
            for (size_t x = 0; x < n; ++x) {
                Sum sum = 0;
                for (size_t k = 0; k < K; ++k)
                    sum = static_cast<Sum>(sum + kAlong[k] * columns[x + k]);
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
