/// \file solvers.h
/// Matrix products, solvers of linear systems and the singular value decomposition, in single precision.
///
/// Conventions of this page
/// - Matrices lie in rows. Those of the products have strides in bytes; 0 means rows without padding. All others
///   have no padding: element (i, j) of an n x n matrix A is A[i * n + j].
/// - Each product, sum and quotient of floats is rounded by itself, in the order given. NaN and infinity take part
///   like other numbers; which NaN comes out (its sign and payload) is open. Nothing loops on them.
/// - Buffers must not overlap, except where a function says so.
/// - The solvers overwrite their matrix with its factors. A solver that fails leaves the matrix as far as it was
///   factored, and `x` unwritten.
/// - "Refused" calls log the line "Assertion failed @<operation>: <condition>" and write nothing.
#ifndef ONDRIX_SOLVERS_H
#define ONDRIX_SOLVERS_H

#include "ondrix/types.h"

/// Product of two matrices of floats.
/// dst(i, j) = src1(i, 0) * src2(0, j) + src1(i, 1) * src2(1, j) + ..., summed up from 0.0f on in this order.
/// Strides that are no multiple of 4 are rounded down to one. Refused are null pointers, sizes of 0, and strides
/// below the bytes of a row: "src1 && src2 && dst && src1Width && src1Height && src2Width && (src1Stride >=
/// src1Width*sizeof(float32_t)) && (src2Stride >= src2Width*sizeof(float32_t)) && (dstStride >=
/// src2Width*sizeof(float32_t))", on one line.
///
/// \param src1  `src1Height` rows of `src1Width` elements
/// \param src2  `src1Width` rows of `src2Width` elements
/// \param dst   `src1Height` rows of `src2Width` elements
ODX_API void odxMatrixMultiplyf32(const float* src1, unsigned int src1Width, unsigned int src1Height,
                                  unsigned int src1Stride, const float* src2, unsigned int src2Width,
                                  unsigned int src2Stride, float* dst, unsigned int dstStride);

/// Product of two matrices of signed bytes, with 32-bit sums.
/// As odxMatrixMultiplyf32. `src1Width` is at most 131072, more is refused; the only sum beyond 32 bits, 131072
/// times -128 * -128, becomes -2^31. The stride of `dst` is rounded down to a multiple of 4. The condition has no
/// "*sizeof(float32_t)" for `src1` and `src2`, "int32_t" for `dst`, and ends with " && src1Width <= 131072".
ODX_API void odxMatrixMultiplys8s32(const int8_t* src1, unsigned int src1Width, unsigned int src1Height,
                                    unsigned int src1Stride, const int8_t* src2, unsigned int src2Width,
                                    unsigned int src2Stride, int32_t* dst, unsigned int dstStride);

/// Solves A x = b for a symmetric positive definite A by Cholesky factors.
/// Only the diagonal of A and what lies above it are read and written. n = 0 succeeds.
/// 1. For each i, upward: fails if A(i, i) <= 0; else diag[i] = (float)(1.0 / sqrt((double)A(i, i))).
/// 2. Fails if diag[j] > 10000 * diag[i] for any two i and j: the square roots of the diagonal differ too much.
/// 3. For each i, upward: fails if A(i, i) <= 0; else diag[i] as in step 1, A(i, j) *= diag[i] for j > i, then
///    A(k, j) -= A(i, j) * A(i, k) for k > i and j >= k. A(i, i) keeps its value.
/// 4. For each i, upward: t = b[i]; t -= A(j, i) * y[j] for j = 0 .. i - 1; y[i] = t * diag[i].
/// 5. For each i, downward: t = y[i]; t -= A(i, j) * x[j] for j = i + 1 .. n - 1; x[i] = t * diag[i].
///
/// \param A     n x n, overwritten above the diagonal and on it
/// \param b     n elements; unchanged
/// \param diag  n elements of working memory
/// \param x     receives the n elements of the solution
/// \return 1 for success; 0 for failure, and (in silence) for null pointers
ODX_API uint32_t odxSolveCholeskyf32(float* A, const float* b, float* diag, unsigned int n, float* x);

/// Solves A x = b for a symmetric A, also an indefinite one, by the factors L D L^T.
/// Only the diagonal of A and what lies below it are read and written. n = 0 succeeds. There is no pivoting.
/// 1. For each i, upward: diag[j] = A(j, j) * A(i, j) for j < i; d = A(i, i) - (A(i, 0) * diag[0] + A(i, 1) *
///    diag[1] + ... up to i - 1), the sum from 0.0f on in this order; diag[i] = d. Fails if d is 0. A(i, i) = d,
///    and with r = 1.0f / d, for k > i: A(k, i) = r * (A(k, i) - (A(k, 0) * diag[0] + ... up to i - 1)), the same
///    way.
/// 2. For each i, upward: t = b[i]; t -= A(i, j) * y[j] for j = 0 .. i - 1; y[i] = t.
/// 3. y[i] /= A(i, i) for each i.
/// 4. For each i, downward: t = y[i]; t -= A(j, i) * x[j] for j = i + 1 .. n - 1; x[i] = t.
///
/// \param A     n x n, overwritten below the diagonal and on it
/// \param b     n elements; unchanged
/// \param diag  n elements of working memory
/// \param x     receives the n elements of the solution
/// \return 1 for success; 0 for failure, and (in silence) for null pointers
ODX_API uint32_t odxSolveLDLf32(float* A, const float* b, float* diag, unsigned int n, float* x);

/// Solves A x = b by LU factors with row exchanges.
/// The factor U has ones on its diagonal. `n` below 1 succeeds without doing anything.
/// 1. For each column c, upward: pivot[c] = c, and best = |A(c, c)|; for r = c + 1 .. n - 1, if |A(r, c)| > best,
///    then best = |A(r, c)| and pivot[c] = r. If in no column so far there was such a row, the call ends with
///    ONDRIX_BAD_PARAMETER. So a matrix whose first element has the largest magnitude of its column is refused,
///    the identity and n = 1 among them: exchange two rows (and their elements of b) before.
/// 2. Rows c and pivot[c] change places where these differ. Ends with ONDRIX_FAILURE if A(c, c) is 0. For j > c:
///    A(c, j) /= A(c, c); then for k > c and j > c: A(k, j) -= A(k, c) * A(c, j).
/// 3. For each i, upward: b[i] and b[pivot[i]] change places; t = b[i]; t -= A(i, j) * x[j] for j = 0 .. i - 1;
///    x[i] = t / A(i, i).
/// 4. For each i, downward: b[i] and b[pivot[i]] change places back; x[i] -= A(i, j) * x[j] for j = i + 1 up to
///    n - 1.
///
/// Rows are kept as bytes: with n above 256 a row index r becomes r % 256, also in steps 1 and 2 (where `c` is
/// compared with the byte), and the solution is not one. `b` is as it was after the call.
///
/// \param A      n x n, overwritten
/// \param b      n elements; changed meanwhile
/// \param pivot  n bytes of working memory
/// \param x      receives the n elements of the solution
/// \return ONDRIX_SUCCESS; ONDRIX_FAILURE for a pivot of 0; ONDRIX_BAD_PARAMETER as said above, and (in silence) for
///         null pointers
ODX_API odxStatus odxSolveLUf32(float* A, float* b, int n, uint8_t* pivot, float* x);

/// Least squares: the shortest x with the least |A x - b|.
/// By the decomposition of odxSVDf32, which is called for it (the trace shows that call, too). With its U, w and
/// Vt:
/// 1. tolerance = (double)1.2e-6f * (w[0] + w[1] + ...), the sum in double precision.
/// 2. x = 0; for each i, upward, with |w[i]| > tolerance, in double precision: c = (0.0 + U(0, i) * b[0] + U(1, i)
///    * b[1] + ...) / w[i]; x[j] = (float)(x[j] + c * Vt(i, j)) for each j.
/// So x has no part in the directions that A makes 0; for a matrix of zeros it is 0. Temporary memory: numRows x
/// numCols floats twice, numCols x numCols floats twice, and numCols floats; without it x is not written. Refused
/// are null pointers, sizes of 0, and fewer rows than columns: "A && b && x && numRows && numCols && numRows >=
/// numCols", on one line.
///
/// \param A  `numRows` rows of `numCols` elements; unchanged
/// \param b  `numRows` elements; unchanged
/// \param x  receives `numCols` elements
ODX_API void odxSolvef32(const float* A, unsigned int numCols, unsigned int numRows, const float* b, float* x);

/// Singular value decomposition: A = U diag(w) Vt.
/// One-sided Jacobi rotations. Refused are null pointers and sizes of 0: "(A != NULL) && (m > 0) && (n > 0) && (w
/// != NULL) && (U != NULL) && (Vt != NULL) && (tmpU != NULL) && (tmpV != NULL)", on one line. With "dot(p, q)" for
/// the sum of products of doubles in eight parts (part k adds up elements k, k + 8, k + 16 ... from 0.0 on), which
/// are added as
/// ((s0 + s4) + (s2 + s6)) + ((s1 + s5) + (s3 + s7)):
/// 1. The columns of A are copied to the rows of tmpU (n rows of m elements), tmpV becomes the identity.
/// 2. A sweep takes all pairs p < q of rows, p upward, for each p q upward. With a = dot(p, p), b = dot(q, q) and
///    g = dot(p, q) of tmpU, in double precision, a pair is turned if g * g > 2^-44 * (a * b): z = (b - a) / (2 *
///    g); t = 1 / (z + sqrt(1 + z * z)) if z >= 0, else 1 / (z - sqrt(1 + z * z)); c = 1 / sqrt(1 + t * t); s = c
///    * t. Then in both tmpU and tmpV, for each element of both rows: p' = (float)(c * p - s * q), q' = (float)(s
///    * p + c * q).
/// 3. Sweeps end after one without a turn, and after 30.
/// 4. w[j] = (float)sqrt(dot(j, j)). The largest of the remaining w (the first of equals) changes places with the
///    one at j, as do the rows of tmpU and tmpV, for j = 0 .. n - 2.
/// 5. U(i, j) = (float)(tmpU(j, i) / sqrt(dot(j, j))), or 0 where that root is 0; Vt = tmpV. From j = m on, w and
///    the columns of U are 0.
/// So singular values come in descending order and are not negative.
///
/// \param A     m rows of n elements; unchanged
/// \param m,n   rows and columns, in any proportion
/// \param w     receives n singular values
/// \param U     receives m rows of n elements: a left singular vector in each column
/// \param Vt    receives n rows of n elements: a right singular vector in each row
/// \param tmpU  m * n elements of working memory
/// \param tmpV  n * n elements of working memory
ODX_API void odxSVDf32(const float* A, unsigned int m, unsigned int n, float* w, float* U, float* Vt, float* tmpU,
                       float* tmpV);

#endif
