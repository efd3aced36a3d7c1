// Squares of elements, transposed in registers.
#ifndef ODX_ORLAN_SQUARES_H
#define ODX_ORLAN_SQUARES_H

#include "orlan/simd/simd.h"

namespace odx::ODX_TARGET
{
using namespace simd;

// Zips the first half of n vectors with the second until element i of row r is element r of row i, in each 16
// bytes.
template <size_t size, size_t n>
ODX_INLINE void transposeSquares(u8v (&v)[n])
{
    static_assert(n * size == 16);
    for (size_t done = 1; done < n; done *= 2) {
        u8v next[n];
        for (size_t i = 0; i < n / 2; ++i) {
            const u8x2 zipped = zip<size>(v[i], v[i + n / 2]);
            next[2 * i] = zipped.a;
            next[2 * i + 1] = zipped.b;
        }
        for (size_t i = 0; i < n; ++i)
            v[i] = next[i];
    }
}

} // namespace odx::ODX_TARGET

#endif
