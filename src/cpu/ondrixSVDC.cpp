#include "cpu/ondrixSVDC.h"

#include "cpu/ondrixSVD.h"
#include "frame/scratch.h"

using namespace odx;

namespace
{

// The sums lie in dst; strides are in elements.
template <class Source, class Sum, class Result>
void multiply(const Source* src1, uint32_t src1Width, uint32_t src1Height, size_t src1Stride, const Source* src2,
              uint32_t src2Width, size_t src2Stride, Result* dst, size_t dstStride)
{
    for (uint32_t i = 0; i < src1Height; ++i, src1 += src1Stride, dst += dstStride) {
        for (uint32_t j = 0; j < src2Width; ++j)
            dst[j] = 0;
        for (uint32_t k = 0; k < src1Width; ++k) {
            const Source factor = src1[k];
            const Source* const row = src2 + k * src2Stride;
            for (uint32_t j = 0; j < src2Width; ++j)
                dst[j] = static_cast<Result>(static_cast<Sum>(dst[j]) + static_cast<Sum>(factor * row[j]));
        }
    }
}

// Left to right.
float dot(const float* p, const float* q, size_t count)
{
    float sum = 0;
    for (size_t i = 0; i < count; ++i)
        sum += p[i] * q[i];
    return sum;
}

template <class T>
void exchange(T& a, T& b)
{
    const T value = a;
    a = b;
    b = value;
}

} // namespace

extern "C" {

void odxMatrixMultiplyf32C(const float* src1, unsigned int src1Width, unsigned int src1Height,
                           unsigned int src1Stride, const float* src2, unsigned int src2Width,
                           unsigned int src2Stride, float* dst, unsigned int dstStride)
{
    multiply<float, float>(src1, src1Width, src1Height, src1Stride / sizeof *src1, src2, src2Width,
                           src2Stride / sizeof *src2, dst, dstStride / sizeof *dst);
}

void odxMatrixMultiplys8s32C(const int8_t* src1, unsigned int src1Width, unsigned int src1Height,
                             unsigned int src1Stride, const int8_t* src2, unsigned int src2Width,
                             unsigned int src2Stride, int32_t* dst, unsigned int dstStride)
{
    multiply<int8_t, uint32_t>(src1, src1Width, src1Height, src1Stride, src2, src2Width, src2Stride, dst,
                               dstStride / sizeof *dst);
}

uint32_t odxSolveCholeskyf32C(float* A, const float* b, float* diag, unsigned int n, float* x)
{
    if (!svd::isConditioned(A, diag, n)) return 0;
    for (size_t i = 0; i < n; ++i) {
        float* const row = A + i * n;
        if (row[i] <= 0) return 0;
        diag[i] = svd::inverseRoot(row[i]);
        for (size_t j = i + 1; j < n; ++j)
            row[j] *= diag[i];
        for (size_t k = i + 1; k < n; ++k) {
            const float factor = row[k];
            for (size_t j = k; j < n; ++j)
                A[k * n + j] -= row[j] * factor;
        }
    }
    svd::solveCholesky(n, b, diag, x, [=](size_t i, size_t j) { return A[i * n + j]; });
    return 1;
}

uint32_t odxSolveLDLf32C(float* A, const float* b, float* diag, unsigned int n, float* x)
{
    for (size_t i = 0; i < n; ++i) {
        float* const row = A + i * n;
        for (size_t j = 0; j < i; ++j)
            diag[j] = A[j * n + j] * row[j];
        const float d = diag[i] = row[i] - dot(row, diag, i);
        if (d == 0) return 0;
        row[i] = d;
        const float inverse = 1.0f / d;
        for (size_t k = i + 1; k < n; ++k)
            A[k * n + i] = inverse * (A[k * n + i] - dot(A + k * n, diag, i));
    }
    svd::solveLDL(n, b, x, [=](size_t i, size_t j) { return A[j * n + i]; });
    return 1;
}

odxStatus odxSolveLUf32C(float* A, float* b, int n, uint8_t* pivot, float* x)
{
    const size_t size = n < 1 ? 0 : static_cast<size_t>(n);
    bool everFound = false;
    for (size_t c = 0; c < size; ++c) {
        pivot[c] = static_cast<uint8_t>(c);
        float best = fabsf(A[c * size + c]);
        for (size_t r = c + 1; r < size; ++r) {
            const float magnitude = fabsf(A[r * size + c]);
            if (!(magnitude > best)) continue;
            best = magnitude;
            pivot[c] = static_cast<uint8_t>(r);
            everFound = true;
        }
        if (!everFound) return ONDRIX_BAD_PARAMETER;
        float* const row = A + c * size;
        if (pivot[c] != c) svd::swapRows(row, A + pivot[c] * size, size);
        const float p = row[c];
        if (p == 0) return ONDRIX_FAILURE;
        for (size_t j = c + 1; j < size; ++j)
            row[j] /= p;
        for (size_t k = c + 1; k < size; ++k) {
            float* const other = A + k * size;
            const float factor = other[c];
            for (size_t j = c + 1; j < size; ++j)
                other[j] -= factor * row[j];
        }
    }
    for (size_t i = 0; i < size; ++i) {
        exchange(b[i], b[pivot[i]]);
        float t = b[i];
        for (size_t j = 0; j < i; ++j)
            t -= A[i * size + j] * x[j];
        x[i] = t / A[i * size + i];
    }
    svd::substituteBackward(
        size, x, [=](size_t i, size_t j) { return A[i * size + j]; },
        [=](size_t i, float t) {
            exchange(b[i], b[pivot[i]]);
            return t;
        });
    return ONDRIX_SUCCESS;
}

void odxSVDf32C(const float* A, unsigned int m, unsigned int n, float* w, float* U, float* Vt, float* tmpU,
                float* tmpV)
{
    svd::decompose(A, m, n, w, U, Vt, tmpU, tmpV);
}

void odxSolvef32C(const float* A, unsigned int numCols, unsigned int numRows, const float* b, float* x)
{
    constexpr uint32_t kAlignment = 16;
    const uint64_t all = uint64_t{numRows} * numCols, square = uint64_t{numCols} * numCols;
    const Scratch<float> U(all, kAlignment), w(numCols, kAlignment), Vt(square, kAlignment), tmpU(all, kAlignment),
        tmpV(square, kAlignment);
    if (!U || !w || !Vt || !tmpU || !tmpV) return;
    odxSVDf32(A, numRows, numCols, w.get(), U.get(), Vt.get(), tmpU.get(), tmpV.get());

    double sum = 0;
    for (size_t i = 0; i < numCols; ++i)
        sum += static_cast<double>(w[i]);
    const double tolerance = static_cast<double>(1.2e-6f) * sum;
    for (size_t j = 0; j < numCols; ++j)
        x[j] = 0;
    for (size_t i = 0; i < numCols; ++i) {
        const double value = static_cast<double>(w[i]);
        if (!(fabs(value) > tolerance)) continue;
        double projection = 0;
        for (size_t r = 0; r < numRows; ++r)
            projection += static_cast<double>(U[r * numCols + i]) * static_cast<double>(b[r]);
        const double c = projection / value;
        for (size_t j = 0; j < numCols; ++j)
            x[j] = static_cast<float>(static_cast<double>(x[j]) + c * static_cast<double>(Vt[i * numCols + j]));
    }
}
}
