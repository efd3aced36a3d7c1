// What the reference and SIMD convolutions share: kernels, what becomes of sums, and blocks, which give filters of
// 16-bit rows any source and any border.
#ifndef ODX_CPU_ONDRIX_CONV_H
#define ODX_CPU_ONDRIX_CONV_H

#include "cpu/border.h"
#include "ondrix/convolution.h"

#include <type_traits>

namespace odx::conv
{

constexpr uint32_t kMostTaps = 31; // of a separable kernel, in each direction

// A separable kernel's taps in one direction, as they meet the pixels of a window, between two zeros.
struct Taps {
    uint32_t count;
    int16_t padded[kMostTaps + 2] = {};

    // Of a convolution, which turns the kernel, or of a correlation.
    enum Order { kTurned, kStraight };

    [[gnu::always_inline]] Taps(const int16_t* kernel, uint32_t n, Order order,
                                odxKernelSymmetry symmetry = ONDRIX_KERNEL_GENERAL)
        : count(n)
    {
        for (uint32_t i = 0; i < n; ++i)
            padded[1 + (order == kTurned ? n - 1 - i : i)] = element(kernel, i, n - 1 - i, symmetry);
    }
    [[gnu::always_inline]] int16_t operator[](uint32_t i) const { return padded[1 + i]; }

private:
    // Symmetric kernels are given by their first elements.
    [[gnu::always_inline]] static int16_t element(const int16_t* kernel, uint32_t i, uint32_t mirrored,
                                                  odxKernelSymmetry symmetry)
    {
        if (symmetry == ONDRIX_KERNEL_ANTISYMMETRIC && i >= mirrored)
            return static_cast<int16_t>(i == mirrored ? 0 : -kernel[mirrored]);
        return kernel[symmetry == ONDRIX_KERNEL_SYMMETRIC && i > mirrored ? mirrored : i];
    }
};

// What becomes of a sum, modulo 2^32: it is divided by a power of two, and rounded, then clamped.
struct Scale {
    uint32_t half;
    int shift;

    [[gnu::always_inline]] explicit Scale(uint32_t n)
        : half(n != 0 ? 1u << (n - 1) : 0), shift(static_cast<int>(n))
    {
    }
    template <class D>
    [[gnu::always_inline]] D of(uint32_t sum) const
    {
        constexpr int32_t least = std::is_signed_v<D> ? INT16_MIN : 0,
                          most = std::is_signed_v<D> ? INT16_MAX : 255;
        const int32_t value = static_cast<int32_t>(sum + half) >> shift;
        return static_cast<D>(value < least ? least : value > most ? most : value);
    }
};

// The outputs that a filter writes: without a border type those whose window is inside the image.
struct Outputs {
    uint32_t x, y, width, height;

    template <class S, class D>
    [[gnu::always_inline]] Outputs(const Plane<S, D>& plane, uint32_t M, uint32_t N, odxBorderType type)
        : x(0), y(0), width(plane.width), height(plane.height)
    {
        if (type != ONDRIX_BORDER_UNDEFINED) return;
        x = M / 2;
        y = N / 2;
        width = width >= M ? width - (M - 1) : 0;
        height = height >= N ? height - (N - 1) : 0;
    }
};

// Filters with a window of M columns and N rows work on 16-bit rows: filter(src, dst, width, height), where the
// first output of `dst` has its uppermost leftmost tap at `src`. An image of other pixels, or with a border, is
// given to them in blocks, which are at least kLeastColumns wide if the image is.
constexpr uint32_t kColumns = 192, kLeastColumns = 32, kRows = 32;

[[gnu::always_inline]] static inline uint32_t columnsOf(uint32_t rest, uint32_t columns)
{
    return rest < columns + kLeastColumns ? rest : columns;
}

template <class S, class D, class Filter>
static inline void filterBlocks(const Plane<S, D>& plane, uint32_t M, uint32_t N, odxBorderType type,
                                uint32_t borderValue, Filter filter)
{
    const Rows<D> dst = {plane.dst, plane.dstStride};
    const border::Outside<S> outside = {type == ONDRIX_BORDER_REPLICATE, static_cast<S>(borderValue)};
    const auto inBlocks = [&](uint32_t x0, uint32_t y0, uint32_t width, uint32_t height) {
        constexpr uint32_t stride = kColumns + kLeastColumns + kMostTaps + 1;
        int16_t block[(kRows + kMostTaps - 1) * stride];
        for (uint32_t y = y0, rest = height, rows; rest != 0; rest -= rows, y += rows) {
            rows = rest < kRows ? rest : kRows;
            for (uint32_t x = 0, columns; x < width; x += columns) {
                columns = columnsOf(width - x, kColumns);
                for (uint32_t i = 0; i < rows + N - 1; ++i)
                    border::copyLine(plane, outside, int64_t{x0} + x - M / 2, int64_t{y} + i - N / 2,
                                     columns + M - 1, block + stride * i);
                filter(Rows<const int16_t>{block, stride * sizeof(int16_t)}, dst.at(x0 + x, y), columns, rows);
            }
        }
    };
    const Outputs inside(plane, M, N, ONDRIX_BORDER_UNDEFINED);
    const bool bordered = type != ONDRIX_BORDER_UNDEFINED;
    if constexpr (std::is_same_v<S, int16_t>) {
        // What is inside needs no blocks. Those of the border overlap it, where they are too narrow.
        if (!bordered || (inside.width >= kLeastColumns && inside.height != 0)) {
            filter(Rows<const S>{plane.src, plane.srcStride}, dst.at(inside.x, inside.y), inside.width,
                   inside.height);
            if (!bordered) return;
            const uint32_t below = inside.y + inside.height;
            inBlocks(0, 0, plane.width, inside.y);
            inBlocks(0, below, plane.width, plane.height - below);
            inBlocks(0, inside.y, kLeastColumns, inside.height);
            inBlocks(plane.width - kLeastColumns, inside.y, kLeastColumns, inside.height);
            return;
        }
    }
    const Outputs outputs(plane, M, N, type);
    inBlocks(outputs.x, outputs.y, outputs.width, outputs.height);
}

} // namespace odx::conv

#endif
