// How the arguments of matrix products, solvers and decompositions travel.
#ifndef ODX_DSP_ONDRIX_SVD_X_H
#define ODX_DSP_ONDRIX_SVD_X_H

#include "dsp/shapes.h"

namespace odx::remoting
{

inline constexpr auto matrixProduct = [](const auto* src1, uint32_t width1, uint32_t height1, uint32_t stride1,
                                         const auto* src2, uint32_t width2, uint32_t stride2, auto* dst,
                                         uint32_t dstStride) {
    const Stride first = strideOf(src1, stride1, width1), second = strideOf(src2, stride2, width2),
                 to = strideOf(dst, dstStride, width2);
    return arguments(rows(src1, first, height1), width1, height1, first, rows(src2, second, width1), width2,
                     second, rows(dst, to, height1), to);
};
inline constexpr auto symmetricSystem = [](float* A, const float* b, float* diag, uint32_t n, float* x) {
    return arguments(list(A, product(n, n)), list(b, n), list(diag, n), n, list(x, n));
};
inline constexpr auto pivotedSystem = [](float* A, float* b, int n, uint8_t* pivot, float* x) {
    const uint32_t size = n < 0 ? 0 : static_cast<uint32_t>(n);
    return limit(worthSending(size, size) && multiplesOf(kRemoteAlignment, A, b, x),
                 arguments(list(A, product(size, size)), list(b, size), n, list(pivot, size), list(x, size)));
};
inline constexpr auto decomposition = [](const float* A, uint32_t m, uint32_t n, float* w, float* U, float* Vt,
                                         float* tmpU, float* tmpV) {
    return arguments(list(A, product(m, n)), m, n, list(w, n), list(U, product(m, n)), list(Vt, product(n, n)),
                     list(tmpU, product(m, n)), list(tmpV, product(n, n)));
};

} // namespace odx::remoting

#endif
