// SIMD matrix products and solvers. Sums have the reference's order: each lane is one element of the result.
#include "cpu/ondrixSVD.h"
#include "cpu/ondrixSVDC.h"
#include "frame/scratch.h"
#include "orlan/simd/simd.h"

#define ODX_FAMILY_LIST "frame/operations/solvers.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;

namespace
{

constexpr size_t kLanes = kBytes / sizeof(float);

// ---- products ----
//
// Blocks of up to kRows x 2 vectors of the result stay in registers while they run down a panel of src2: kDepth of
// its rows, as far as the block is wide, in the order that the arithmetic wants and filled up with zeros. Where
// there are more rows, the sums wait in the destination.

constexpr size_t kRows = 4, kDepth = 256;

// An arithmetic has the types of elements, sums and units; a step takes a unit of src1, kDeep elements, and as
// many rows of src2. Where it takes four, sums begin with what stands for a panel.
struct Floats {
    typedef float Source, Result, Unit;
    typedef f32v Vector, Sums;
    static constexpr size_t kDeep = 1;

    ODX_MEMBER static Vector across(const float* const* rows, size_t j) { return load<f32v>(rows[0] + j); }
    ODX_MEMBER static void fill(Unit* units, const float* src, size_t depth)
    {
        memcpy(units, src, depth * sizeof *src);
    }
    ODX_MEMBER static Vector repeated(const Unit* unit) { return f32v{} + *unit; }
    ODX_MEMBER static Sums step(Sums sum, Vector v, Vector factor) { return sum + v * factor; }
};

#ifdef ODX_SIMD_QUADS
// Elements of src1 are 128 greater, so that they have no sign; sums begin with what that is too much.
struct Bytes {
    typedef int8_t Source;
    typedef int32_t Result;
    typedef struct {
        uint8_t at[4];
    } Unit;
    typedef u8v Vector;
    typedef s32v Sums;
    static constexpr size_t kDeep = 4;

    ODX_MEMBER static Vector across(const int8_t* const* rows, size_t j) { return widenQuads(rows, j); }
    ODX_MEMBER static void fill(Unit* units, const int8_t* src, size_t depth)
    {
        uint8_t* const bytes = units->at;
        for (size_t k = 0; k < depth; ++k)
            bytes[k] = static_cast<uint8_t>(src[k] ^ 0x80);
        for (size_t k = depth; k % kDeep != 0; ++k)
            bytes[k] = 0;
    }
    ODX_MEMBER static Sums beginning(const Vector* panel, size_t steps, size_t vectors)
    {
        const Unit excess = {{128, 128, 128, 128}};
        Sums sum = {};
        for (size_t k = 0; k < steps; ++k)
            sum = step(sum, panel[k * vectors], repeated(&excess));
        return -sum;
    }
    ODX_MEMBER static Vector repeated(const Unit* unit) { return repeatQuad(unit->at); }
    ODX_MEMBER static Sums step(Sums sum, Vector v, Vector factor) { return addQuadProducts(sum, v, factor); }
};
#else
struct Bytes {
    typedef int8_t Source;
    typedef int32_t Result;
    typedef struct {
        int16_t first, second;
    } Unit;
    typedef s16v Vector;
    typedef s32v Sums;
    static constexpr size_t kDeep = 2;

    ODX_MEMBER static Vector across(const int8_t* const* rows, size_t j)
    {
        return widenPairs(rows[0] + j, rows[1] + j);
    }
    ODX_MEMBER static void fill(Unit* units, const int8_t* src, size_t depth)
    {
        for (size_t k = 0; k + 1 < depth; k += 2)
            units[k / 2] = {src[k], src[k + 1]};
        if (depth % 2 != 0) units[depth / 2] = {src[depth - 1], 0};
    }
    ODX_MEMBER static Vector repeated(const Unit* unit) { return repeatPair(&unit->first); }
    ODX_MEMBER static Sums step(Sums sum, Vector v, Vector factor) { return addPairProducts(sum, v, factor); }
};
#endif

template <class T>
struct Matrix {
    T* data;
    size_t stride; // in elements

    ODX_MEMBER T* row(size_t i) const { return data + i * stride; }
};

template <class Arithmetic>
struct Product {
    typedef typename Arithmetic::Source Source;
    typedef typename Arithmetic::Result Result;
    typedef typename Arithmetic::Vector Vector;
    typedef typename Arithmetic::Sums Sums;
    typedef typename Arithmetic::Unit Unit;
    static constexpr size_t kDeep = Arithmetic::kDeep;

    Vector panel[kDepth / kDeep * 2];
    Sums beginnings[2];
    Unit units[kRows][kDepth / kDeep];

    // `count` columns of `depth` rows. A step beyond the last row finds zeros.
    template <size_t vectors>
    ODX_MEMBER void fillPanel(Matrix<const Source> src, size_t depth, size_t count)
    {
        constexpr size_t most = vectors * kLanes;
        Source rows[kDeep][most] = {};
        for (size_t k = 0; k < depth; k += kDeep) {
            const Source* row[kDeep];
            for (size_t d = 0; d < kDeep; ++d) {
                row[d] = k + d < depth ? src.row(k + d) : rows[d];
                if (k + d < depth && count < most) {
                    memcpy(rows[d], src.row(k + d), count * sizeof(Source));
                    row[d] = rows[d];
                } else if (k + d >= depth) {
                    memset(rows[d], 0, sizeof rows[d]);
                }
            }
            for (size_t v = 0; v < vectors; ++v)
                panel[k / kDeep * vectors + v] = Arithmetic::across(row, v * kLanes);
        }
        if constexpr (kDeep == 4) {
            for (size_t v = 0; v < vectors; ++v)
                beginnings[v] = Arithmetic::beginning(panel + v, (depth + kDeep - 1) / kDeep, vectors);
        }
    }

    template <size_t rows, size_t vectors>
    ODX_MEMBER void block(size_t steps, Matrix<Result> dst, size_t count, bool first) const
    {
        Sums sums[rows][vectors] = {};
        const auto whole = [=](size_t v) __attribute__((always_inline))
        {
            return (v + 1) * kLanes <= count;
        };
        const size_t rest = count % kLanes * sizeof(Result);
        for (size_t r = 0; r < rows && !first; ++r) {
            for (size_t v = 0; v < vectors; ++v)
                memcpy(&sums[r][v], dst.row(r) + v * kLanes, whole(v) ? sizeof(Sums) : rest);
        }
        for (size_t r = 0; r < rows && kDeep == 4; ++r) {
            for (size_t v = 0; v < vectors; ++v)
                sums[r][v] += beginnings[v];
        }
        for (size_t k = 0; k < steps; ++k) {
            for (size_t r = 0; r < rows; ++r) {
                const Vector factor = Arithmetic::repeated(&units[r][k]);
                for (size_t v = 0; v < vectors; ++v)
                    sums[r][v] = Arithmetic::step(sums[r][v], panel[k * vectors + v], factor);
            }
        }
        for (size_t r = 0; r < rows; ++r) {
            for (size_t v = 0; v < vectors; ++v) {
                Result* const to = dst.row(r) + v * kLanes;
                if (whole(v)) {
                    store(to, sums[r][v]);
                } else {
                    memcpy(to, &sums[r][v], rest);
                }
            }
        }
    }

    template <size_t vectors>
    ODX_MEMBER void columns(Matrix<const Source> src1, size_t depth, size_t height, Matrix<const Source> src2,
                            Matrix<Result> dst, size_t count)
    {
        for (size_t k = 0; k < depth; k += kDepth) {
            const size_t now = depth - k < kDepth ? depth - k : kDepth, steps = (now + kDeep - 1) / kDeep;
            fillPanel<vectors>({src2.row(k), src2.stride}, now, count);
            size_t i = 0;
            for (; height - i >= kRows; i += kRows) {
                for (size_t r = 0; r < kRows; ++r)
                    Arithmetic::fill(units[r], src1.row(i + r) + k, now);
                block<kRows, vectors>(steps, {dst.row(i), dst.stride}, count, k == 0);
            }
            for (; i < height; ++i) {
                Arithmetic::fill(units[0], src1.row(i) + k, now);
                block<1, vectors>(steps, {dst.row(i), dst.stride}, count, k == 0);
            }
        }
    }

    ODX_MEMBER void run(Matrix<const Source> src1, size_t depth, size_t height, Matrix<const Source> src2,
                        size_t width, Matrix<Result> dst)
    {
        for (size_t j = 0; j < width; j += 2 * kLanes) {
            const size_t count = width - j < 2 * kLanes ? width - j : 2 * kLanes;
            const Matrix<const Source> part = {src2.data + j, src2.stride};
            if (count > kLanes) {
                columns<2>(src1, depth, height, part, {dst.data + j, dst.stride}, count);
            } else {
                columns<1>(src1, depth, height, part, {dst.data + j, dst.stride}, count);
            }
        }
    }
};

// ---- factors ----

// A triangle of a matrix, in rows of whole vectors, zeros outside.
struct Triangle {
    float* data;
    size_t n, stride;

    ODX_MEMBER float& at(size_t i, size_t j) const { return data[i * stride + j]; }
    ODX_MEMBER f32v vector(size_t i, size_t j) const { return load<f32v>(data + i * stride + j); }
    ODX_MEMBER void set(size_t i, size_t j, f32v v) const { store(data + i * stride + j, v); }

    ODX_MEMBER static size_t strideOf(size_t n) { return (n + kLanes - 1) / kLanes * kLanes; }

    // f(element of the triangle, element (i, j) of A), from the diagonal to the right.
    template <bool transposed, class A, class F>
    ODX_MEMBER void each(A* a, F f) const
    {
        for (size_t i = 0; i < n; ++i) {
            for (size_t j = i; j < n; ++j)
                f(at(i, j), transposed ? a[j * n + i] : a[i * n + j]);
        }
    }
    template <bool transposed>
    ODX_MEMBER void read(const float* A) const
    {
        memset(data, 0, n * stride * sizeof(float));
        each<transposed>(
            A, [](float& mine, const float& other) __attribute__((always_inline)) { mine = other; });
    }
    template <bool transposed>
    ODX_MEMBER void write(float* A) const
    {
        each<transposed>(
            A, [](const float& mine, float& other) __attribute__((always_inline)) { other = mine; });
    }
};

// row k -= row i * A(i, k), for `rows` rows from k on and the rows i above `end`. What comes out left of the
// diagonal is never looked at.
template <size_t rows, size_t vectors>
ODX_INLINE void subtractAbove(const Triangle& t, size_t k, size_t j, size_t end)
{
    f32v sums[rows][vectors];
    for (size_t r = 0; r < rows; ++r) {
        for (size_t v = 0; v < vectors; ++v)
            sums[r][v] = t.vector(k + r, j + v * kLanes);
    }
    for (size_t i = 0; i < end; ++i) {
        for (size_t r = 0; r < rows; ++r) {
            for (size_t v = 0; v < vectors; ++v)
                sums[r][v] = sums[r][v] - t.vector(i, j + v * kLanes) * t.at(i, k + r);
        }
    }
    for (size_t r = 0; r < rows; ++r) {
        for (size_t v = 0; v < vectors; ++v)
            t.set(k + r, j + v * kLanes, sums[r][v]);
    }
}
template <size_t rows>
ODX_INLINE void subtractAbove(const Triangle& t, size_t k, size_t end)
{
    size_t j = k / kLanes * kLanes;
    for (; t.stride - j >= 2 * kLanes; j += 2 * kLanes)
        subtractAbove<rows, 2>(t, k, j, end);
    if (j < t.stride) subtractAbove<rows, 1>(t, k, j, end);
}

// Four rows at a time take what the rows above them subtract, then what they do among themselves. A row that fails
// still takes part in nothing; the rows below have had what the rows above it subtract.
template <size_t rows>
ODX_INLINE size_t factorRows(const Triangle& t, size_t k, float* diag)
{
    subtractAbove<rows>(t, k, k);
    for (size_t i = k; i < k + rows; ++i) {
        const float d = t.at(i, i);
        if (d <= 0) return i;
        diag[i] = svd::inverseRoot(d);
        const size_t start = i / kLanes * kLanes;
        for (size_t j = start; j < t.stride; j += kLanes)
            t.set(i, j, t.vector(i, j) * diag[i]);
        t.at(i, i) = d;
        for (size_t below = i + 1; below < k + rows; ++below) {
            const float factor = t.at(i, below);
            for (size_t j = start; j < t.stride; j += kLanes)
                t.set(below, j, t.vector(below, j) - t.vector(i, j) * factor);
        }
    }
    return t.n;
}

ODX_INLINE bool factorCholesky(const Triangle& t, float* diag)
{
    for (size_t k = 0; k < t.n;) {
        const bool four = t.n - k >= kRows;
        const size_t failed = four ? factorRows<kRows>(t, k, diag) : factorRows<1>(t, k, diag);
        k += four ? kRows : 1;
        if (failed == t.n) continue;
        for (; k < t.n; ++k)
            subtractAbove<1>(t, k, failed);
        return false;
    }
    return true;
}

// Column i of the factors, which is row i here: what the dot products leave of it.
template <size_t vectors>
ODX_INLINE void subtractDots(const Triangle& t, size_t i, size_t j, const float* v)
{
    f32v sums[vectors] = {};
    for (size_t k = 0; k < i; ++k) {
        for (size_t n = 0; n < vectors; ++n)
            sums[n] = sums[n] + t.vector(k, j + n * kLanes) * v[k];
    }
    for (size_t n = 0; n < vectors; ++n)
        t.set(i, j + n * kLanes, t.vector(i, j + n * kLanes) - sums[n]);
}

ODX_INLINE bool factorLDL(const Triangle& t, float* diag)
{
    for (size_t i = 0; i < t.n; ++i) {
        for (size_t k = 0; k < i; ++k)
            diag[k] = t.at(k, k) * t.at(k, i);
        const size_t start = i / kLanes * kLanes;
        // The pivot first: where it is 0, the column keeps its values.
        float dot = 0;
        for (size_t k = 0; k < i; ++k)
            dot += t.at(k, i) * diag[k];
        const float d = diag[i] = t.at(i, i) - dot;
        if (d == 0) return false;
        size_t j = start;
        for (; t.stride - j >= 4 * kLanes; j += 4 * kLanes)
            subtractDots<4>(t, i, j, diag);
        for (; j < t.stride; j += kLanes)
            subtractDots<1>(t, i, j, diag);
        const float inverse = 1.0f / d;
        for (j = start; j < t.stride; j += kLanes)
            t.set(i, j, t.vector(i, j) * inverse);
        t.at(i, i) = d;
    }
    return true;
}

// Small matrices gain nothing from a copy.
constexpr size_t kLeastSize = 8;

ODX_INLINE uint64_t copySize(size_t n)
{
    return uint64_t{n} * Triangle::strideOf(n);
}
ODX_INLINE bool leftToReference(size_t n)
{
    return kFlushesDenormals || n < kLeastSize;
}

} // namespace

void odxMatrixMultiplyf32V(const float* src1, unsigned int src1Width, unsigned int src1Height,
                           unsigned int src1Stride, const float* src2, unsigned int src2Width,
                           unsigned int src2Stride, float* dst, unsigned int dstStride)
{
    if (kFlushesDenormals) {
        return odxMatrixMultiplyf32C(src1, src1Width, src1Height, src1Stride, src2, src2Width, src2Stride, dst,
                                     dstStride);
    }
    Product<Floats> product;
    product.run({src1, src1Stride / sizeof *src1}, src1Width, src1Height, {src2, src2Stride / sizeof *src2},
                src2Width, {dst, dstStride / sizeof *dst});
}

void odxMatrixMultiplys8s32V(const int8_t* src1, unsigned int src1Width, unsigned int src1Height,
                             unsigned int src1Stride, const int8_t* src2, unsigned int src2Width,
                             unsigned int src2Stride, int32_t* dst, unsigned int dstStride)
{
    Product<Bytes> product;
    product.run({src1, src1Stride}, src1Width, src1Height, {src2, src2Stride}, src2Width,
                {dst, dstStride / sizeof *dst});
}

uint32_t odxSolveCholeskyf32V(float* A, const float* b, float* diag, unsigned int n, float* x)
{
    if (leftToReference(n)) return odxSolveCholeskyf32C(A, b, diag, n, x);
    const Scratch<float> copy(copySize(n));
    if (!copy) return odxSolveCholeskyf32C(A, b, diag, n, x);
    if (!svd::isConditioned(A, diag, n)) return 0;
    const Triangle t = {copy.get(), n, Triangle::strideOf(n)};
    t.read<false>(A);
    const bool done = factorCholesky(t, diag);
    t.write<false>(A);
    if (!done) return 0;
    svd::solveCholesky(
        n, b, diag, x, [=](size_t i, size_t j) __attribute__((always_inline)) { return t.at(i, j); });
    return 1;
}

uint32_t odxSolveLDLf32V(float* A, const float* b, float* diag, unsigned int n, float* x)
{
    if (leftToReference(n)) return odxSolveLDLf32C(A, b, diag, n, x);
    const Scratch<float> copy(copySize(n));
    if (!copy) return odxSolveLDLf32C(A, b, diag, n, x);
    const Triangle t = {copy.get(), n, Triangle::strideOf(n)};
    t.read<true>(A);
    const bool done = factorLDL(t, diag);
    t.write<true>(A);
    if (!done) return 0;
    svd::solveLDL(
        n, b, x, [=](size_t i, size_t j) __attribute__((always_inline)) { return t.at(i, j); });
    return 1;
}

void odxSVDf32V(const float* A, unsigned int m, unsigned int n, float* w, float* U, float* Vt, float* tmpU,
                float* tmpV)
{
    // Two doubles a vector are what compilers make of the reference. Without any, the target's scalar code is
    // better.
    if (kBytes == 16 && !kFlushesDenormals) return odxSVDf32C(A, m, n, w, U, Vt, tmpU, tmpV);
    svd::decompose(A, m, n, w, U, Vt, tmpU, tmpV);
}

} // namespace odx::ODX_TARGET
