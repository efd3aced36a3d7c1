// Matrix products, solvers and decompositions: by reconstruction in double precision, and by values worked by
// hand.
#include "cpu/ondrixSVDC.h"
#include "ondrix/memory.h"
#include "ondrix/modes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace odx::test
{

namespace
{

using Floats = std::vector<float>;

struct Solvers : testing::Test {
    static void SetUpTestSuite() { odxSetOperationMode(ONDRIX_OP_EXT_CPU); }

    std::mt19937 random{1};
    float real() { return std::uniform_real_distribution<float>(-1, 1)(random); }
    Floats reals(size_t count)
    {
        Floats values(count);
        for (float& value : values)
            value = real();
        return values;
    }

    // ||A x - b|| over ||A|| ||x|| + ||b||, of the largest elements.
    static double residual(const Floats& A, const Floats& x, const Floats& b)
    {
        const size_t n = b.size();
        double worst = 0, sizeA = 0, sizeX = 0, sizeB = 0;
        for (size_t i = 0; i < n; ++i) {
            double sum = -double(b[i]), row = 0;
            for (size_t j = 0; j < n; ++j) {
                sum += double(A[i * n + j]) * double(x[j]);
                row += std::fabs(double(A[i * n + j]));
            }
            worst = std::max(worst, std::fabs(sum));
            sizeA = std::max(sizeA, row);
            sizeX = std::max(sizeX, std::fabs(double(x[i])));
            sizeB = std::max(sizeB, std::fabs(double(b[i])));
        }
        return worst / (sizeA * sizeX + sizeB);
    }
};

TEST_F(Solvers, ProductsAreSumsOfProducts)
{
    // With a stride that is no multiple of 4, and sums whose order matters.
    const float a[] = {1e8f, 1, -1e8f, 0}, b[] = {1, 2, 1, 3, 1, 5};
    float c[2] = {};
    odxMatrixMultiplyf32(a, 3, 1, 14, b, 2, 10, c, 8);
    EXPECT_EQ(0, c[0]);     // 1e8 + 1 is 1e8
    EXPECT_EQ(-3e8f, c[1]); // 2e8 + 3 - 5e8
    const int8_t p[] = {-128, 127, 3, -4, 5, 6}, q[] = {-128, 1, 127, -1, 2, 0};
    int32_t r[4];
    odxMatrixMultiplys8s32(p, 3, 2, 0, q, 2, 0, r, 0);
    const int32_t expected[] = {16384 + 127 * 127 + 6, -128 - 127, 512 + 5 * 127 + 12, -4 - 5};
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(expected[i], r[i]);
    // The one sum that does not fit.
    const std::vector<int8_t> longest(131072, -128);
    odxMatrixMultiplys8s32(longest.data(), 131072, 1, 0, longest.data(), 1, 0, r, 0);
    EXPECT_EQ(std::numeric_limits<int32_t>::min(), r[0]);
    odxMatrixMultiplyf32C(a, 0, 1, 12, b, 2, 8, c, 8);
    EXPECT_EQ(0, c[1]);
}

TEST_F(Solvers, SolveWhatTheyAreFor)
{
    for (unsigned n = 1; n < 70; n += 3) {
        const Floats G = reals(size_t{n} * n), b = reals(n);
        Floats definite(G.size()), symmetric(G.size());
        for (unsigned i = 0; i < n; ++i) {
            for (unsigned j = 0; j < n; ++j) {
                double sum = i == j ? 0.1 * n : 0;
                for (unsigned k = 0; k < n; ++k)
                    sum += double(G[k * n + i]) * double(G[k * n + j]);
                definite[i * n + j] = static_cast<float>(sum);
                symmetric[i * n + j] = i == j ? (i % 2 ? -2.0f : 2.0f) * static_cast<float>(n)
                                              : G[std::min(i, j) * n + std::max(i, j)];
            }
        }
        Floats A = definite, x(n), diag(n);
        EXPECT_EQ(1u, odxSolveCholeskyf32(A.data(), b.data(), diag.data(), n, x.data()));
        EXPECT_LT(residual(definite, x, b), 1e-6) << n;
        for (unsigned i = 1; i < n; ++i)
            ASSERT_EQ(definite[i * n], A[i * n]) << "below the diagonal";
        A = symmetric;
        EXPECT_EQ(1u, odxSolveLDLf32(A.data(), b.data(), diag.data(), n, x.data()));
        EXPECT_LT(residual(symmetric, x, b), 1e-6) << n;
        if (n > 1) ASSERT_EQ(symmetric[n - 1], A[n - 1]) << "above the diagonal";
        // The largest element of the first column is not the first.
        A = G;
        A[0] = 0;
        const Floats general = A;
        Floats right = b;
        std::vector<uint8_t> pivot(n);
        if (n == 1) continue;
        EXPECT_EQ(ONDRIX_SUCCESS, odxSolveLUf32(A.data(), right.data(), int(n), pivot.data(), x.data()));
        EXPECT_LT(residual(general, x, b), 2e-6) << n;
        EXPECT_EQ(b, right);
    }
}

TEST_F(Solvers, PivotsAreTheLargestElements)
{
    float A[] = {1, 1, 0, -3, 1, 1, 4, 0, 2}, b[] = {3, 2, 10}, x[3];
    uint8_t pivot[3];
    EXPECT_EQ(ONDRIX_SUCCESS, odxSolveLUf32(A, b, 3, pivot, x));
    EXPECT_EQ(2, pivot[0]);
    EXPECT_EQ(4, A[0]);
    EXPECT_EQ(0.5f, A[2]); // the upper factor has ones on its diagonal
    EXPECT_FLOAT_EQ(1, x[0]);
    EXPECT_FLOAT_EQ(2, x[1]);
    EXPECT_FLOAT_EQ(3, x[2]);
}

TEST_F(Solvers, FailWithoutASolution)
{
    float b[] = {1, 2}, diag[2], x[2] = {7, 7};
    uint8_t pivot[2];
    const auto cholesky = [&](Floats A) { return odxSolveCholeskyf32(A.data(), b, diag, 2, x); };
    const auto ldl = [&](Floats A) { return odxSolveLDLf32(A.data(), b, diag, 2, x); };
    const auto lu = [&](Floats A) { return odxSolveLUf32(A.data(), b, 2, pivot, x); };
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(0u, cholesky({1, 0, 0, 0}));
    EXPECT_EQ(0u, cholesky({1, 2, 2, 1}));       // not definite
    EXPECT_EQ(0u, cholesky({1, 0, 0, 0.9e-8f})); // roots that differ too much
    EXPECT_EQ(0u, cholesky({0.9e-8f, 0, 0, 1}));
    EXPECT_EQ(0u, ldl({0, 1, 1, 0}));
    EXPECT_EQ(0u, ldl({1, 1, 1, 1}));
    EXPECT_EQ(ONDRIX_BAD_PARAMETER, lu({1, 0, 0, 1})); // nothing below the first element exceeds it
    EXPECT_EQ(ONDRIX_FAILURE, lu({1, 0, 2, 0}));
    EXPECT_EQ(ONDRIX_BAD_PARAMETER, lu({nan, nan, nan, nan}));
    EXPECT_EQ(7, x[0]);
    EXPECT_EQ(1u, cholesky({1, 0, 0, 1.1e-8f}));
    EXPECT_EQ(1u, ldl({1, 2, 2, 1})); // indefinite, without a zero pivot
    EXPECT_FLOAT_EQ(1, x[0]);
    EXPECT_FLOAT_EQ(0, x[1]);
    EXPECT_EQ(1u, cholesky({nan, nan, nan, nan})); // ends
    EXPECT_EQ(1u, odxSolveCholeskyf32(b, b, diag, 0, x));
    EXPECT_EQ(1u, odxSolveLDLf32(b, b, diag, 0, x));
    EXPECT_EQ(ONDRIX_SUCCESS, odxSolveLUf32(b, b, -1, pivot, x));
}

struct Decomposed {
    Floats w, U, Vt;
};
Decomposed decomposed(const Floats& A, unsigned m, unsigned n)
{
    Decomposed d = {Floats(n), Floats(size_t{m} * n), Floats(size_t{n} * n)};
    Floats tmpU(d.U.size()), tmpV(d.Vt.size());
    odxSVDf32(A.data(), m, n, d.w.data(), d.U.data(), d.Vt.data(), tmpU.data(), tmpV.data());
    return d;
}

TEST_F(Solvers, DecompositionsMultiplyToTheMatrix)
{
    for (const auto& [m, n] : {std::pair{1u, 1u}, {2, 2}, {3, 5}, {9, 9}, {20, 7}, {33, 31}}) {
        for (const int rank : {0, 1, 3, 40}) {
            for (const float step : {1.0f, 0.1f}) { // from one column to the next
                Floats A(size_t{m} * n);
                for (int r = 0; r < rank; ++r) {
                    const Floats p = reals(m), q = reals(n);
                    for (unsigned i = 0; i < m * n; ++i)
                        A[i] += p[i / n] * q[i % n] * std::pow(step, static_cast<float>(i % n));
                }
                const Decomposed d = decomposed(A, m, n);
                double worst = 0, skew = 0;
                for (unsigned i = 0; i < m; ++i) {
                    for (unsigned j = 0; j < n; ++j) {
                        double sum = -double(A[i * n + j]);
                        for (unsigned k = 0; k < n; ++k)
                            sum += double(d.U[i * n + k]) * double(d.w[k]) * double(d.Vt[k * n + j]);
                        worst = std::max(worst, std::fabs(sum));
                    }
                }
                for (unsigned i = 0; i < n * n; ++i) {
                    double left = 0, right = i / n == i % n ? -1 : 0;
                    const bool both = d.w[i / n] > 0 && d.w[i % n] > 0;
                    for (unsigned k = 0; k < m; ++k)
                        left += double(d.U[k * n + i / n]) * double(d.U[k * n + i % n]);
                    for (unsigned k = 0; k < n; ++k)
                        right += double(d.Vt[i / n * n + k]) * double(d.Vt[i % n * n + k]);
                    skew = std::max({skew, std::fabs(right), both ? std::fabs(left - (i / n == i % n)) : 0});
                }
                EXPECT_LE(worst, 2e-6 * double(d.w[0])) << m << "x" << n << ", rank " << rank;
                EXPECT_LE(skew, 4e-6) << m << "x" << n << ", rank " << rank;
                EXPECT_TRUE(std::is_sorted(d.w.rbegin(), d.w.rend()));
                if (m < n) EXPECT_EQ(0, d.w[m]);
            }
        }
    }
    // Values known beforehand, and values that no decomposition has.
    const Decomposed d = decomposed({3, 0, 4, 5}, 2, 2);
    EXPECT_FLOAT_EQ(std::sqrt(45.0f), d.w[0]);
    EXPECT_FLOAT_EQ(std::sqrt(5.0f), d.w[1]);
    decomposed(Floats(12, std::numeric_limits<float>::quiet_NaN()), 4, 3);
    decomposed(Floats(12, std::numeric_limits<float>::infinity()), 4, 3);
}

TEST_F(Solvers, LeastSquaresAreTheShortestSolution)
{
    // A line through (0, 1), (1, 3), (2, 5), (3, 8).
    const float line[] = {1, 0, 1, 1, 1, 2, 1, 3}, b[] = {1, 3, 5, 8};
    float x[2] = {};
    odxSolvef32(line, 2, 4, b, x);
    EXPECT_NEAR(0.8f, x[0], 1e-5f);
    EXPECT_NEAR(2.3f, x[1], 1e-5f);
    const float twice[] = {1, 2, 2, 4}, onLine[] = {5, 10}; // x + 2 y = 5: nearest to the origin at (1, 2)
    odxSolvef32(twice, 2, 2, onLine, x);
    EXPECT_NEAR(1, x[0], 1e-5f);
    EXPECT_NEAR(2, x[1], 1e-5f);
    const float zeros[4] = {};
    odxSolvef32(zeros, 2, 2, onLine, x);
    EXPECT_EQ(0, x[0]);
    // Just above and just below the tolerance.
    const float small[] = {1, 0, 0, 1.3e-6f, 0, 0, 0, 1.1e-6f}, ones[] = {1, 1};
    odxSolvef32(small, 2, 2, ones, x);
    EXPECT_NEAR(1 / 1.3e-6f, x[1], 1);
    const float smaller[] = {1, 0, 0, 1.1e-6f};
    odxSolvef32(smaller, 2, 2, ones, x);
    EXPECT_EQ(0, x[1]);
    // Without temporary memory.
    x[0] = 9;
    odxSolvef32(line, 30000, 30000, b, x);
    EXPECT_EQ(9, x[0]);
}

} // namespace

} // namespace odx::test
