// What reference and SIMD code share of the solvers. All of it is forced inline, so that each target has its own.
#ifndef ODX_CPU_ONDRIX_SVD_H
#define ODX_CPU_ONDRIX_SVD_H

#include <math.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

#define ODX_SVD_INLINE [[gnu::always_inline]] static inline

namespace odx::svd
{

// ---- triangular factors ----

ODX_SVD_INLINE float inverseRoot(float d)
{
    return static_cast<float>(1.0 / sqrt(static_cast<double>(d)));
}

// Whether a diagonal is positive, and its roots differ by no more than a factor of 10000. Writes their inverses.
ODX_SVD_INLINE bool isConditioned(const float* A, float* diag, size_t n)
{
    float least = INFINITY, most = 0;
    for (size_t i = 0; i < n; ++i) {
        const float d = A[i * n + i];
        if (d <= 0) return false;
        diag[i] = inverseRoot(d);
        if (diag[i] < least) least = diag[i];
        if (diag[i] > most) most = diag[i];
    }
    return !(most > 10000.0f * least);
}

// The factor above the diagonal: upper(i, j), i < j. Both passes subtract the terms one by one, upward; in the
// forward one that is done for all later elements at once.
template <class Upper, class Finish>
ODX_SVD_INLINE void substituteForward(size_t n, const float* b, float* x, Upper upper, Finish finish)
{
    memcpy(x, b, n * sizeof *x);
    for (size_t i = 0; i < n; ++i) {
        const float y = x[i] = finish(i, x[i]);
        for (size_t k = i + 1; k < n; ++k)
            x[k] -= upper(i, k) * y;
    }
}
template <class Upper, class Finish>
ODX_SVD_INLINE void substituteBackward(size_t n, float* x, Upper upper, Finish finish)
{
    for (size_t i = n; i-- > 0;) {
        float t = x[i];
        for (size_t j = i + 1; j < n; ++j)
            t -= upper(i, j) * x[j];
        x[i] = finish(i, t);
    }
}

template <class Upper>
ODX_SVD_INLINE void solveCholesky(size_t n, const float* b, const float* diag, float* x, Upper upper)
{
    const auto finish = [=](size_t i, float t) { return t * diag[i]; };
    substituteForward(n, b, x, upper, finish);
    substituteBackward(n, x, upper, finish);
}
template <class Upper>
ODX_SVD_INLINE void solveLDL(size_t n, const float* b, float* x, Upper upper)
{
    const auto asItIs = [](size_t, float t) { return t; };
    substituteForward(n, b, x, upper, asItIs);
    for (size_t i = 0; i < n; ++i)
        x[i] /= upper(i, i);
    substituteBackward(n, x, upper, asItIs);
}

// ---- singular value decomposition ----

constexpr uint32_t kSweeps = 30, kParts = 8;
constexpr double kOrthogonal = 0x1p-44; // squared cosine; rounding to floats alone leaves up to 2^-46

ODX_SVD_INLINE double total(const double (&s)[kParts])
{
    return ((s[0] + s[4]) + (s[2] + s[6])) + ((s[1] + s[5]) + (s[3] + s[7]));
}

// f(i, part) for i below m.
template <class F>
ODX_SVD_INLINE void inParts(size_t m, F f)
{
    size_t i = 0;
    for (; m - i >= kParts; i += kParts) {
        for (uint32_t k = 0; k < kParts; ++k)
            f(i + k, k);
    }
    for (uint32_t k = 0; i < m; ++i, ++k)
        f(i, k);
}

// Squares and products of floats neither overflow nor vanish in double precision.
ODX_SVD_INLINE double norm(const float* p, size_t m)
{
    double squares[kParts] = {};
    inParts(
        m, [&](size_t i, uint32_t k) __attribute__((always_inline)) {
            squares[k] += static_cast<double>(p[i]) * static_cast<double>(p[i]);
        });
    return sqrt(total(squares));
}

// Turns two rows within their plane.
ODX_SVD_INLINE void rotate(float* p, float* q, size_t count, double c, double s)
{
    for (size_t i = 0; i < count; ++i) {
        const double a = static_cast<double>(p[i]), b = static_cast<double>(q[i]);
        p[i] = static_cast<float>(c * a - s * b);
        q[i] = static_cast<float>(s * a + c * b);
    }
}

// Makes two columns orthogonal, unless they are.
ODX_SVD_INLINE bool orthogonalise(float* p, float* q, size_t m, float* vp, float* vq, size_t n)
{
    double pp[kParts] = {}, qq[kParts] = {}, pq[kParts] = {};
    inParts(
        m, [&](size_t i, uint32_t k) __attribute__((always_inline)) {
            const double a = static_cast<double>(p[i]), b = static_cast<double>(q[i]);
            pp[k] += a * a;
            qq[k] += b * b;
            pq[k] += a * b;
        });
    const double a = total(pp), b = total(qq), g = total(pq);
    if (!(g * g > kOrthogonal * (a * b))) return false; // NaN too
    const double z = (b - a) / (2 * g), root = sqrt(1 + z * z);
    const double t = z >= 0 ? 1 / (z + root) : 1 / (z - root);
    const double c = 1 / sqrt(1 + t * t), s = c * t;
    rotate(p, q, m, c, s);
    rotate(vp, vq, n, c, s);
    return true;
}

ODX_SVD_INLINE void swapRows(float* p, float* q, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        const float value = p[i];
        p[i] = q[i];
        q[i] = value;
    }
}

ODX_SVD_INLINE void decompose(const float* A, size_t m, size_t n, float* w, float* U, float* Vt, float* columns,
                              float* right)
{
    for (size_t j = 0; j < n; ++j) {
        for (size_t i = 0; i < m; ++i)
            columns[j * m + i] = A[i * n + j];
        for (size_t i = 0; i < n; ++i)
            right[j * n + i] = i == j ? 1.0f : 0.0f;
    }
    bool turned = true;
    for (uint32_t sweep = 0; sweep < kSweeps && turned; ++sweep) {
        turned = false;
        for (size_t p = 0; p < n; ++p) {
            for (size_t q = p + 1; q < n; ++q)
                turned |= orthogonalise(columns + p * m, columns + q * m, m, right + p * n, right + q * n, n);
        }
    }

    for (size_t j = 0; j < n; ++j)
        w[j] = static_cast<float>(norm(columns + j * m, m));
    for (size_t j = 0; j + 1 < n; ++j) {
        size_t largest = j;
        for (size_t k = j + 1; k < n; ++k) {
            if (w[k] > w[largest]) largest = k;
        }
        if (largest == j) continue;
        swapRows(w + j, w + largest, 1);
        swapRows(columns + j * m, columns + largest * m, m);
        swapRows(right + j * n, right + largest * n, n);
    }
    for (size_t j = 0; j < n; ++j) {
        // An image of m dimensions has no more directions.
        const double length = j < m ? norm(columns + j * m, m) : 0.0;
        if (j >= m) w[j] = 0;
        for (size_t i = 0; i < m; ++i) {
            const double value = static_cast<double>(columns[j * m + i]);
            U[i * n + j] = length == 0 ? 0.0f : static_cast<float>(value / length);
        }
    }
    memcpy(Vt, right, n * n * sizeof *Vt);
}

} // namespace odx::svd

#endif
