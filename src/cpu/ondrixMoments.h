// Moments of a row of tiles: compiled for the reference, and again for each SIMD target. The order of the sums is
// part of the result.
#ifndef ODX_CPU_ONDRIX_MOMENTS_H
#define ODX_CPU_ONDRIX_MOMENTS_H

#include "cpu/image.h"

#include <string.h>
#include <type_traits>

#define ODX_MOMENTS_INLINE [[gnu::always_inline]] static inline

namespace odx::moments
{

constexpr uint32_t kColumns = 96, kRows = 7, kLanes = 16; // of a tile, and of its sums

// Sums of x^p * y^q * v, named by their powers.
template <class Sum>
struct Powers {
    Sum s00, s10, s20, s30, s01, s11, s21, s02, s12, s03;
};

// Of bytes, each of the sums over a column fits 16 bits: 255 * 7 * 8 * 9 * 10 / 24 = 53550; each of the 16 sums of
// them 32 bits: 255 * 7 * (15^3 + 31^3 + ... + 95^3) < 2^32. Only the sum of x^3 * v of a whole tile takes more.
template <class T>
using Column = std::conditional_t<std::is_same_v<T, uint8_t>, uint16_t, double>;
template <class T>
using Lane = std::conditional_t<std::is_same_v<T, uint8_t>, uint32_t, double>;
template <class T>
using Whole = std::conditional_t<std::is_same_v<T, uint8_t>, int64_t, double>;

template <class To, class From>
ODX_MOMENTS_INLINE To total(const From (&lanes)[kLanes])
{
    To sums[kLanes];
    for (uint32_t k = 0; k < kLanes; ++k)
        sums[k] = static_cast<To>(lanes[k]);
    for (uint32_t n = kLanes / 2; n > 0; n /= 2) {
        for (uint32_t k = 0; k < n; ++k)
            sums[k] += sums[k + n];
    }
    return sums[0];
}

// From sums of x^p * s_q, where s are the running sums of columns.
template <class Sum>
ODX_MOMENTS_INLINE Powers<Sum> powers(Sum a0, Sum a1, Sum a2, Sum a3, Sum b0, Sum b1, Sum b2, Sum c0, Sum c1,
                                      Sum d0)
{
    return {a0,
            a1,
            a2,
            a3,
            b0 - a0,
            b1 - a1,
            b2 - a2,
            2 * c0 - 3 * b0 + a0,
            2 * c1 - 3 * b1 + a1,
            6 * d0 - 12 * c0 + 7 * b0 - a0};
}

// About the tile's corner.
template <class T, bool binary>
ODX_MOMENTS_INLINE Powers<Whole<T>> tile(const T* const (&rows)[kRows])
{
    using C = Column<T>;
    using L = Lane<T>;
    // Running sums from the last row up are sums of v, (y + 1) v, (y + 1)(y + 2) / 2 v, (y + 1)(y + 2)(y + 3) / 6
    // v.
    C columns[4][kColumns];
    for (uint32_t x = 0; x < kColumns; ++x) {
        C s0 = 0, s1 = 0, s2 = 0, s3 = 0;
        for (uint32_t y = kRows; y-- > 0;) {
            const T v = rows[y][x];
            s0 = static_cast<C>(s0 + static_cast<C>(binary ? static_cast<T>(v != 0) : v));
            s1 = static_cast<C>(s1 + s0);
            s2 = static_cast<C>(s2 + s1);
            s3 = static_cast<C>(s3 + s2);
        }
        columns[0][x] = s0;
        columns[1][x] = s1;
        columns[2][x] = s2;
        columns[3][x] = s3;
    }
    L sums[10][kLanes] = {};
    for (uint32_t first = 0; first < kColumns; first += kLanes) {
        for (uint32_t k = 0; k < kLanes; ++k) {
            const L x = static_cast<L>(first + k), xx = x * x, xxx = xx * x;
            const L s0 = columns[0][first + k], s1 = columns[1][first + k], s2 = columns[2][first + k],
                    s3 = columns[3][first + k];
            sums[0][k] += s0;
            sums[1][k] += x * s0;
            sums[2][k] += xx * s0;
            sums[3][k] += xxx * s0;
            sums[4][k] += s1;
            sums[5][k] += x * s1;
            sums[6][k] += xx * s1;
            sums[7][k] += s2;
            sums[8][k] += x * s2;
            sums[9][k] += s3;
        }
    }
    using W = Whole<T>;
    return powers<W>(total<L>(sums[0]), total<L>(sums[1]), total<L>(sums[2]), total<W>(sums[3]), total<L>(sums[4]),
                     total<L>(sums[5]), total<L>(sums[6]), total<L>(sums[7]), total<L>(sums[8]),
                     total<L>(sums[9]));
}

// At most kRows rows of any width, about their left end; tileOf(rows) has the sums of a tile.
template <class T, class TileOf>
ODX_MOMENTS_INLINE Powers<double> band(const T* src, size_t stride, uint32_t width, uint32_t height, TileOf tileOf)
{
    Powers<double> sums = {};
    T padded[kRows][kColumns];
    for (size_t x0 = 0; x0 < width; x0 += kColumns) {
        const T* rows[kRows];
        const bool whole = width - x0 >= kColumns;
        for (uint32_t y = 0; y < kRows; ++y) {
            rows[y] = padded[y];
            if (whole && y < height) {
                rows[y] = rowOf(src, stride, y) + x0;
            } else {
                memset(padded[y], 0, sizeof padded[y]);
                if (y < height) memcpy(padded[y], rowOf(src, stride, y) + x0, (width - x0) * sizeof(T));
            }
        }
        const Powers<Whole<T>> t = tileOf(rows);
        const auto as = [](Whole<T> v) { return static_cast<double>(v); };
        const double u = static_cast<double>(x0), uu = u * u, uuu = uu * u;
        sums.s00 += as(t.s00);
        sums.s10 += as(t.s10) + u * as(t.s00);
        sums.s20 += as(t.s20) + 2 * u * as(t.s10) + uu * as(t.s00);
        sums.s30 += as(t.s30) + 3 * u * as(t.s20) + 3 * uu * as(t.s10) + uuu * as(t.s00);
        sums.s01 += as(t.s01);
        sums.s11 += as(t.s11) + u * as(t.s01);
        sums.s21 += as(t.s21) + 2 * u * as(t.s11) + uu * as(t.s01);
        sums.s02 += as(t.s02);
        sums.s12 += as(t.s12) + u * as(t.s02);
        sums.s03 += as(t.s03);
    }
    return sums;
}

template <class T>
ODX_MOMENTS_INLINE void band(const T* src, uint32_t stride, uint32_t width, uint32_t height, uint32_t binary,
                             Powers<double>& sums)
{
    sums = binary != 0 ? band(src, stride, width, height, tile<T, true>)
                       : band(src, stride, width, height, tile<T, false>);
}

} // namespace odx::moments

#endif
