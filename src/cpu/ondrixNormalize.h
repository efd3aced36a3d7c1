// Local normalisation: compiled for the reference, and again for each SIMD target. The order of float sums is part
// of the result.
#ifndef ODX_CPU_ONDRIX_NORMALIZE_H
#define ODX_CPU_ONDRIX_NORMALIZE_H

#include "cpu/image.h"
#include "frame/scratch.h"
#include "ondrix/types.h"

#include <math.h>
#include <string.h>

#define ODX_NORMALIZE_INLINE [[gnu::always_inline]] static inline

namespace odx::normalization
{

constexpr uint32_t kOutputs = 256, kMostColumns = 31; // computed at a time; of a box

// out[x] = line[x] + ... + line[x + N - 1], from sums of 1, 2, 4 ... elements, in two lines by turns.
template <class Sum>
ODX_NORMALIZE_INLINE void boxes(Sum* line, Sum* other, uint32_t N, Sum* __restrict out, uint32_t count)
{
    memcpy(out, line, count * sizeof(Sum));
    uint32_t length = count + N - 1, summed = 1;
    for (uint32_t run = 1; 2 * run <= N; run *= 2) {
        length -= run;
        const Sum* __restrict from = line;
        Sum* __restrict to = other;
        for (uint32_t x = 0; x < length; ++x)
            to[x] = from[x] + from[x + run];
        if ((N & 2 * run) != 0) {
            for (uint32_t x = 0; x < count; ++x)
                out[x] += to[x + summed];
            summed += 2 * run;
        }
        other = line;
        line = to;
    }
}

// Outputs of a type's arithmetic:
//
//   Sum                            of pixels and of their squares
//   kFresh                         rows after which sums of columns are made anew
//   row(v, sums, squares, out, n)  a row of outputs from pixels and the sums of their boxes
template <class Type, class T>
ODX_NORMALIZE_INLINE odxStatus normalize(const Type& type, uint32_t N, const Plane<T>& plane)
{
    using Sum = typename Type::Sum;
    const uint32_t r = N / 2;
    const size_t width = plane.width, length = width + 2 * r;
    // The sums of columns, those at the ends repeated as pixels outside the image are.
    const Scratch<Sum> memory(2 * (uint64_t{plane.width} + 2 * r));
    if (!memory) return ONDRIX_NO_MEMORY;
    Sum* const sums = memory.get();
    Sum* const squares = sums + length;

    const auto row = [&](int64_t y) {
        const int64_t last = int64_t{plane.height} - 1;
        return rowOf(plane.src, plane.srcStride, static_cast<size_t>(y < 0 ? 0 : y < last ? y : last));
    };
    for (uint32_t y = 0; y < plane.height; ++y) {
        Sum* __restrict s = sums + r, * __restrict q = squares + r;
        if (y % Type::kFresh == 0) {
            memset(sums, 0, 2 * length * sizeof(Sum));
            for (uint32_t k = 0; k < N; ++k) {
                const T* __restrict in = row(int64_t{y} + k - r);
                for (size_t x = 0; x < width; ++x) {
                    const Sum v = static_cast<Sum>(in[x]);
                    s[x] += v;
                    q[x] += v * v;
                }
            }
        } else {
            const T* __restrict in = row(int64_t{y} + r), * __restrict out = row(int64_t{y} - r - 1);
            for (size_t x = 0; x < width; ++x) {
                const Sum v = static_cast<Sum>(in[x]), w = static_cast<Sum>(out[x]);
                s[x] += v - w;
                q[x] += v * v - w * w;
            }
        }
        for (uint32_t k = 0; k < r; ++k) {
            sums[k] = s[0];
            squares[k] = q[0];
            s[width + k] = s[width - 1];
            q[width + k] = q[width - 1];
        }
        const T* const pixels = row(y);
        T* const out = rowOf(plane.dst, plane.dstStride, y);
        for (size_t x = 0, count; x < width; x += count) {
            count = width - x < kOutputs ? width - x : kOutputs;
            Sum lines[2][kOutputs + kMostColumns - 1], boxSums[kOutputs], boxSquares[kOutputs];
            memcpy(lines[0], sums + x, (count + 2 * r) * sizeof(Sum));
            boxes(lines[0], lines[1], N, boxSums, static_cast<uint32_t>(count));
            memcpy(lines[0], squares + x, (count + 2 * r) * sizeof(Sum));
            boxes(lines[0], lines[1], N, boxSquares, static_cast<uint32_t>(count));
            type.row(pixels + x, boxSums, boxSquares, out + x, static_cast<uint32_t>(count));
        }
    }
    return ONDRIX_SUCCESS;
}

// Everything is exact in double: sums of boxes have 26 bits, what is under the root 44, the quotient's terms 33,
// and no quotient that is not whole is as near to a whole number as it is rounded.
struct Bytes {
    typedef uint32_t Sum;
    static constexpr uint32_t kFresh = 0x80000000;
    double n, gain, floor;

    [[gnu::always_inline]] inline Bytes(uint32_t N, uint32_t deviation, uint32_t minDeviation)
        : n(N * N), gain(16 * deviation), floor(16 * N * N * minDeviation)
    {
    }
    [[gnu::always_inline]] inline void row(const uint8_t* v, const Sum* sums, const Sum* squares, uint8_t* out,
                                           uint32_t count) const
    {
        for (uint32_t x = 0; x < count; ++x) {
            const double s = static_cast<int32_t>(sums[x]), q = static_cast<int32_t>(squares[x]);
            const double root = static_cast<int32_t>(sqrt(256 * (n * q - s * s)));
            const double divisor = root > floor ? root : floor, a = gain * (n * v[x] - s);
            const auto quotient = static_cast<int32_t>((2 * fabs(a) + divisor) / (2 * divisor));
            const int32_t level = a < 0 ? 128 - quotient : 128 + quotient;
            out[x] = static_cast<uint8_t>(level < 0 ? 0 : level > 255 ? 255 : level);
        }
    }
};

struct Floats {
    typedef double Sum;
    static constexpr uint32_t kFresh = 32; // what is rounded off does not gather
    double n, floor;

    [[gnu::always_inline]] inline Floats(uint32_t N, float minDeviation)
        : n(N * N), floor(static_cast<double>(minDeviation))
    {
    }
    [[gnu::always_inline]] inline void row(const float* v, const Sum* sums, const Sum* squares, float* out,
                                           uint32_t count) const
    {
        for (uint32_t x = 0; x < count; ++x) {
            const double mean = sums[x] / n, variance = squares[x] / n - mean * mean,
                         deviation = sqrt(variance > 0 ? variance : 0);
            out[x] =
                static_cast<float>((static_cast<double>(v[x]) - mean) / (deviation > floor ? deviation : floor));
        }
    }
};

} // namespace odx::normalization

#endif
