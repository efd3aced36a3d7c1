#include "ondrix/solvers.h"

#include "frame/entry.h"

using namespace odx;

namespace
{

// A row of so many elements, in bytes.
template <class T>
constexpr uint64_t bytesOf(const T*, uint32_t count)
{
    return sizeof(T) * uint64_t{count};
}

// What the remote targets ask of a system of n unknowns.
template <class... Buffers>
Limit unknowns(uint32_t n, Buffers... buffers)
{
    return pixels(n, n) & aligned(buffers...);
}

} // namespace

// Both products; `element` is how the text of the check names the type of the sums, `terms` what it ends with.
#define ODX_MATRIX_PRODUCT(name, Source, Result, row, element, terms)                                          \
    void name(const Source* src1, unsigned int src1Width, unsigned int src1Height, unsigned int src1Stride,    \
              const Source* src2, unsigned int src2Width, unsigned int src2Stride, Result* dst,                \
              unsigned int dstStride)                                                                          \
    {                                                                                                          \
        src1Stride = packedIfZero(src1Stride, bytesOf(src1, src1Width));                                       \
        src2Stride = packedIfZero(src2Stride, bytesOf(src2, src2Width));                                       \
        dstStride = packedIfZero(dstStride, bytesOf(dst, src2Width));                                          \
        const Call<name##C> call(__func__,                                                                     \
                                 ODX_LIMITS(pixels(src1Width, src1Height) &                                    \
                                            aligned(src1, src1Stride, src2, src2Stride, dst, dstStride)));     \
        ODX_CHECK_AS(                                                                                          \
            "src1 && src2 && dst && src1Width && src1Height && src2Width && (src1Stride >= src1Width" row      \
            ") && (src2Stride >= src2Width" row ") && (dstStride >= src2Width*sizeof(" element "))" terms,     \
            src1&& src2&& dst&& src1Width&& src1Height&& src2Width&& src1Stride >= bytesOf(src1, src1Width) && \
                src2Stride >= bytesOf(src2, src2Width) && dstStride >= bytesOf(dst, src2Width) &&              \
                (sizeof *src1 > 1 || src1Width <= 131072));                                                    \
        call(src1, src1Width, src1Height, src1Stride, src2, src2Width, src2Stride, dst, dstStride);            \
    }

extern "C" {

ODX_MATRIX_PRODUCT(odxMatrixMultiplyf32, float, float, "*sizeof(float32_t)", "float32_t", "")
ODX_MATRIX_PRODUCT(odxMatrixMultiplys8s32, int8_t, int32_t, "", "int32_t", " && src1Width <= 131072")

uint32_t odxSolveCholeskyf32(float* A, const float* b, float* diag, unsigned int n, float* x)
{
    const Call<odxSolveCholeskyf32C> call(__func__, ODX_LIMITS(unknowns(n, A, b, diag, x)));
    if (!(A && b && diag && x)) return call.failure();
    return call(A, b, diag, n, x);
}

uint32_t odxSolveLDLf32(float* A, const float* b, float* diag, unsigned int n, float* x)
{
    const Call<odxSolveLDLf32C> call(__func__, ODX_LIMITS(unknowns(n, A, b, diag, x)));
    if (!(A && b && diag && x)) return call.failure();
    return call(A, b, diag, n, x);
}

odxStatus odxSolveLUf32(float* A, float* b, int n, uint8_t* pivot, float* x)
{
    const Call<odxSolveLUf32C> call(__func__, ODX_LIMITS(unknowns(static_cast<uint32_t>(n), A, b, x)));
    if (!(A && b && pivot && x)) return call.failure();
    return call(A, b, n, pivot, x);
}

void odxSolvef32(const float* A, unsigned int numCols, unsigned int numRows, const float* b, float* x)
{
    const Call<odxSolvef32C> call(__func__, ODX_LIMITS(pixels(numCols, numRows) & aligned(A, b, x)));
    ODX_CHECK(A && b && x && numRows && numCols && numRows >= numCols);
    call(A, numCols, numRows, b, x);
}

void odxSVDf32(const float* A, unsigned int m, unsigned int n, float* w, float* U, float* Vt, float* tmpU,
               float* tmpV)
{
    const Call<odxSVDf32C> call(__func__, ODX_LIMITS(pixels(n, m) & aligned(A, w, U, Vt, tmpU, tmpV)));
    ODX_CHECK_AS("(A != NULL) && (m > 0) && (n > 0) && (w != NULL) && (U != NULL) && (Vt != NULL) && (tmpU != "
                 "NULL) && (tmpV != NULL)",
                 A && m && n && w && U && Vt && tmpU && tmpV);
    call(A, m, n, w, U, Vt, tmpU, tmpV);
}
}
