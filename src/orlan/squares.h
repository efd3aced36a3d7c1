// Squares of elements, transposed in registers.
#ifndef ODX_ORLAN_SQUARES_H
#define ODX_ORLAN_SQUARES_H

#include "orlan/simd/simd.h"

#include <utility>

namespace odx::ODX_TARGET
{
using namespace simd;

// Zips the first half of n vectors with the second, `passes` times.
template <size_t size, size_t passes, size_t n, size_t... i>
ODX_INLINE void zipHalves(u8v (&v)[n], std::index_sequence<i...> indices)
{
    const u8x2 zipped[n / 2] = {zip<size>(v[i], v[i + n / 2])...};
    ((v[2 * i] = zipped[i].a, v[2 * i + 1] = zipped[i].b), ...);
    if constexpr (passes > 1) zipHalves<size, passes - 1>(v, indices);
}

// Zips until element i of row r is element r of row i, in each 16 bytes. Loops would stay loops, on vectors in
// memory.
template <size_t size, size_t n>
ODX_INLINE void transposeSquares(u8v (&v)[n])
{
    static_assert(n * size == 16);
    zipHalves<size, n == 16 ? 4 : n == 8 ? 3 : 2>(v, std::make_index_sequence<n / 2>());
}

} // namespace odx::ODX_TARGET

#endif
