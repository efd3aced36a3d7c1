// How the operations on pixels become kernels of the element-wise walk: the sources' elements as vectors of lanes
// that are as wide as the destination's or the other source's, if those are wider.
#ifndef ODX_ORLAN_ARITHM_H
#define ODX_ORLAN_ARITHM_H

#include "cpu/ondrixArithm.h"
#include "orlan/elementwise.h"
#include "orlan/simd/marking.h"

namespace odx::ODX_TARGET
{

// kBytes / 2 or kBytes / sizeof(T) elements: bytes become 16 bits where others are as wide.
template <uint32_t lanes, class T>
ODX_INLINE auto loadLanes(const T* p)
{
    if constexpr (lanes * sizeof(T) == kBytes) {
        return load<Vector<T>>(p);
    } else {
        return loadWiden(p);
    }
}

// The reverse; signed 16 bits become floats.
template <uint32_t lanes, class T, class V>
ODX_INLINE void storeLanes(T* p, V v)
{
    if constexpr (lanes * sizeof(T) == kBytes) {
        store(p, v);
    } else if constexpr (sizeof(T) == 1) {
        storeNarrow(p, (u16v)v);
    } else {
        const s32p wide = split((s16v)v);
        storeInOrder((int32_t*)p,
                     {(s32v) __builtin_convertvector(wide.a, f32v), (s32v) __builtin_convertvector(wide.b, f32v)});
    }
}

constexpr uint32_t lanesFor(size_t size1, size_t size2, size_t size3)
{
    const size_t widest = size1 > size2 ? (size1 > size3 ? size1 : size3) : (size2 > size3 ? size2 : size3);
    const bool toFloats = widest == 4 && (size1 == 1 || size2 == 1);
    return kBytes / (toFloats ? 2 : (uint32_t)widest);
}

template <class S1, class S2, class D, class Operation>
struct OfTwo : Lanes<lanesFor(sizeof(S1), sizeof(S2), sizeof(D))> {
    static constexpr bool kIsShort = OfTwo::kLanes * sizeof(D) == kBytes;
    Operation operation;

    ODX_MEMBER explicit OfTwo(Operation o) : operation(o) {}
    ODX_MEMBER void operator()(const S1* a, const S2* b, D* out) const
    {
        storeLanes<OfTwo::kLanes>(out, operation(loadLanes<OfTwo::kLanes>(a), loadLanes<OfTwo::kLanes>(b)));
    }
};

template <class S, class D, class Operation>
struct OfOne : Lanes<lanesFor(sizeof(S), sizeof(S), sizeof(D))> {
    static constexpr bool kIsShort = OfOne::kLanes * sizeof(D) == kBytes;
    Operation operation;

    ODX_MEMBER explicit OfOne(Operation o) : operation(o) {}
    ODX_MEMBER void operator()(const S* v, D* out) const
    {
        storeLanes<OfOne::kLanes>(out, operation(loadLanes<OfOne::kLanes>(v)));
    }
};

// Calls an operation of vectors for all pixels of two images, or of one.
template <class Operation, class S1, class S2, class D>
ODX_INLINE void onTwo(Operation operation, uint32_t width, uint32_t height, Rows<const S1> src1,
                      Rows<const S2> src2, Rows<D> dst)
{
    forVectors(OfTwo<S1, S2, D, Operation>(operation), width, height, src1, src2, dst);
}
template <class Operation, class S, class D>
ODX_INLINE void onOne(Operation operation, uint32_t width, uint32_t height, Rows<const S> src, Rows<D> dst)
{
    forVectors(OfOne<S, D, Operation>(operation), width, height, src, dst);
}

// ---- floats ----

// Sums and products of 0 and of what is at least 2^(exponent - 127) are never denormal.
template <uint32_t exponent>
ODX_INLINE bool neverDenormal(f32v a, f32v b)
{
    const auto small = [](f32v v) { return ((u32v)v << 1) - 1 < (exponent << 24) - 1; };
    return !any((u8v)(small(a) | small(b)));
}
// Lane by lane, in the unit that keeps denormal numbers.
template <class Operation>
ODX_INLINE f32v laneByLane(f32v a, f32v b, Operation operation)
{
    for (uint32_t i = 0; i < kBytes / sizeof(float); ++i) {
        float x = a[i], y = b[i];
        asm("" : "+m"(x), "+m"(y)); // compilers would make vectors of them again
        a[i] = operation(x, y);
    }
    return a;
}

ODX_INLINE f32v sum(f32v a, f32v b)
{
    if (kFlushesDenormals && !neverDenormal<27>(a, b))
        return laneByLane(a, b, [](float x, float y) { return x + y; });
    return a + b;
}
ODX_INLINE f32v difference(f32v a, f32v b)
{
    if (kFlushesDenormals && !neverDenormal<27>(a, b))
        return laneByLane(a, b, [](float x, float y) { return x - y; });
    return a - b;
}
ODX_INLINE f32v product(f32v a, f32v b)
{
    if (kFlushesDenormals && !neverDenormal<67>(a, b))
        return laneByLane(a, b, [](float x, float y) { return x * y; });
    return a * b;
}

// Whether the difference of each number to any other is neither denormal nor hides a denormal one: it is a
// multiple of 2^-124, and the number swallows what is smaller.
ODX_INLINE bool keepSumsNormal(const void* numbers, uint32_t count)
{
    uint32_t bits[4];
    memcpy(bits, numbers, count * sizeof *bits);
    for (uint32_t i = 0; i < count; ++i) {
        if ((bits[i] & INT32_MAX) < 28u << 23) return false;
    }
    return true;
}
ODX_INLINE f32v plainDifference(f32v a, f32v b)
{
    return (f32v)((u32v)(a - b) & INT32_MAX);
}
template <class V>
ODX_INLINE V plainDifference(V a, V b)
{
    return distance(a, b);
}

ODX_INLINE f32v absoluteDifference(f32v a, f32v b)
{
    if (kFlushesDenormals) return (f32v)((u32v)difference(a, b) & INT32_MAX);
    return distance(a, b);
}
template <class V>
ODX_INLINE V absoluteDifference(V a, V b)
{
    return distance(a, b);
}

} // namespace odx::ODX_TARGET

#endif
