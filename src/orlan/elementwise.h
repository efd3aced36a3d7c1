// The walk of operations that make their outputs from what their sources have at the same place: arithmetic,
// comparisons, conversions, sums and differences of images.
//
// The walk owns the rows: strides, alignment, ends, rows that are shorter than a vector. Packed images are one
// long row. A kernel knows nothing but vectors: it handles kLanes elements of each image, in whole vectors, and is
// a struct that derives from Lanes and has
//
//   operator()(const A* a, const B* b, ..., D* out, ...)   const, ODX_MEMBER
//
// with a pointer for each image, in the order of the call; sources are pointers to const. Images are as many, and
// of such types, as the operation has; elements of several channels are structures (struct { uint8_t channel[3];
// }). Constants are members, made once. An example, the absolute difference to a number:
//
//   struct DifferenceTo : Lanes<kBytes> {
//       u8v number;
//       ODX_MEMBER void operator()(const uint8_t* in, uint8_t* out) const
//       {
//           const u8v v = load<u8v>(in);
//           store(out, max(v, number) - min(v, number));
//       }
//   };
//
//   forVectors(DifferenceTo{{}, u8v{} + value}, width, height, Rows{src, srcStride}, Rows{dst, dstStride});
//
// with src of type const uint8_t*. Any width and height will do, 0 too; no reference is needed for narrow rows.
//
// A destination may be one of the sources: the same address and stride, and elements of the same size. A kernel
// that reads what it overwrites is given the image twice, as a source and as a destination. So no element may be
// worked on twice in turns: the vectors at the ends of a row, which overlap their neighbours, are computed before
// anything is stored, and stored last. Other overlaps are not allowed.
//
// The reference of such an operation is forElements() in cpu/elementwise.h.
#ifndef ODX_ORLAN_ELEMENTWISE_H
#define ODX_ORLAN_ELEMENTWISE_H

#include "cpu/image.h"
#include "orlan/simd/simd.h"

#include <utility>

namespace odx::ODX_TARGET
{
using namespace simd;

// How many elements of each image a kernel handles at a time.
template <uint32_t lanes>
struct Lanes {
    static constexpr uint32_t kLanes = lanes;
    static constexpr bool kIsShort = false; // a kernel of few instructions, which stores whole vectors
};

// The elements of a kernel's image in a place of their own.
template <class T, uint32_t lanes>
struct Aside {
    alignas(kBytes) T elements[lanes];
};
template <class T, uint32_t lanes>
struct Aside<const T, lanes> : Aside<T, lanes> {
};

template <class T>
struct IsConst {
    static constexpr bool value = false;
};
template <class T>
struct IsConst<const T> {
    static constexpr bool value = true;
};

template <class Kernel, class... T>
struct ElementRow {
    static constexpr uint32_t kLanes = Kernel::kLanes;
    template <class U>
    using Apart = Aside<U, kLanes>;

    // Sources are read where they are, results go aside.
    template <class U>
    ODX_MEMBER static const U* inPlaceOrAside(const U* source, Apart<const U>&)
    {
        return source;
    }
    template <class U>
    ODX_MEMBER static U* inPlaceOrAside(U*, Apart<U>& aside)
    {
        return aside.elements;
    }
    template <class U>
    ODX_MEMBER static void bring(const Apart<const U>&, const U*)
    {
    }
    template <class U>
    ODX_MEMBER static void bring(const Apart<U>& aside, U* destination)
    {
        memcpy(destination, aside.elements, sizeof aside.elements);
    }

    // So many results are made at a time, and so many of them are there before the first is stored, if the kernel
    // leaves enough registers.
    static constexpr bool kInPairs = kPairsVectors && Kernel::kIsShort;
    static constexpr bool kHasRegisters = sizeof(Kernel) <= 2 * kBytes,
                          kIsWhole = ((sizeof(T) * kLanes == kBytes) && ...);
    static constexpr uint32_t kAtOnce = kInPairs ? 8 : 4;
    static constexpr uint32_t kTogether = !kWritesLast || !Kernel::kIsShort ? 1
                                          : kPairsVectors                   ? (kHasRegisters ? 8 : 4)
                                          : kHasRegisters && kIsWhole       ? 4
                                                                            : 1;
    template <class U>
    struct AllApart {
        Apart<U> each[kTogether];
    };
    template <size_t i>
    ODX_MEMBER static void one(const Kernel& kernel, T*... p, AllApart<T>&... aside)
    {
        kernel(inPlaceOrAside(p + i * kLanes, aside.each[i])...);
    }
    template <size_t i>
    ODX_MEMBER static void bringOne(T*... p, const AllApart<T>&... aside)
    {
        (bring(aside.each[i], p + i * kLanes), ...);
    }
    template <size_t... i>
    ODX_MEMBER static void together(const Kernel& kernel, std::index_sequence<i...>, T*... p, AllApart<T>... aside)
    {
        (one<i>(kernel, p..., aside...), ...);
        (bringOne<i>(p..., aside...), ...);
    }
    template <uint32_t times>
    ODX_MEMBER static void several(const Kernel& kernel, T*... p)
    {
        if constexpr (kTogether > 1) {
            together(kernel, std::make_index_sequence<kTogether>(), p..., AllApart<T>()...);
        } else {
            kernel(p...);
        }
        if constexpr (times > kTogether) several<times - kTogether>(kernel, (p + kTogether * kLanes)...);
    }

    // A row of a vector or more, which begins `aligned` elements before a place to store vectors at.
    ODX_MEMBER static void walk(const Kernel& kernel, size_t n, size_t aligned, T*... p, Apart<T>... first,
                                Apart<T>... last)
    {
        const size_t end = n - kLanes;
        kernel(inPlaceOrAside(p, first)...);
        kernel(inPlaceOrAside(p + end, last)...);
        size_t i = aligned;
        if constexpr (kInPairs) {
            const size_t stop = n - (n - i) % (kAtOnce * kLanes);
            for (; i != stop; i += kAtOnce * kLanes)
                several<kAtOnce>(kernel, (p + i)...);
        } else {
            for (; n - i >= kAtOnce * kLanes; i += kAtOnce * kLanes)
                several<kAtOnce>(kernel, (p + i)...);
        }
        for (; n - i >= kLanes; i += kLanes)
            kernel((p + i)...);
        (bring(first, p), ...);
        (bring(last, p + end), ...);
    }

    template <class U>
    ODX_MEMBER static void copyIn(Apart<const U>& aside, const U* source, size_t n)
    {
        memset(&aside, 0, sizeof aside);
        memcpy(aside.elements, source, n * sizeof(U));
    }
    template <class U>
    ODX_MEMBER static void copyIn(Apart<U>&, U*, size_t)
    {
    }
    template <class U>
    ODX_MEMBER static void copyOut(const Apart<const U>&, const U*, size_t)
    {
    }
    template <class U>
    ODX_MEMBER static void copyOut(const Apart<U>& aside, U* destination, size_t n)
    {
        memcpy(destination, aside.elements, n * sizeof(U));
    }

    // A row that is shorter than a vector.
    ODX_MEMBER static void shortRow(const Kernel& kernel, size_t n, T*... p, Apart<T>... aside)
    {
        (copyIn(aside, p, n), ...);
        kernel(aside.elements...);
        (copyOut(aside, p, n), ...);
    }
};

// Elements from the first of the first destination to one that vectors store to at a multiple of their size.
template <class T, class... Others>
ODX_INLINE size_t elementsToAligned(const T* first, Others*... others)
{
    if constexpr (IsConst<T>::value) {
        return elementsToAligned(others...);
    } else {
        return -(uintptr_t)first % kBytes / sizeof(T);
    }
}

// Calls the kernel for all elements of images of width x height.
template <class Kernel, class... T>
ODX_INLINE void forVectors(const Kernel& kernel, uint32_t width, uint32_t height, Rows<T>... rows)
{
    using Row = ElementRow<Kernel, T...>;
    size_t n = width;
    if ((rows.packed(width) && ...)) {
        n *= height;
        height = 1;
    }
    if (n == 0) return;
    for (; height != 0; --height) {
        if (n < Kernel::kLanes) {
            Row::shortRow(kernel, n, rows.pixels..., Aside<T, Kernel::kLanes>()...);
        } else {
            const size_t aligned = elementsToAligned(rows.pixels...) % Kernel::kLanes;
            Row::walk(kernel, n, aligned, rows.pixels..., Aside<T, Kernel::kLanes>()...,
                      Aside<T, Kernel::kLanes>()...);
        }
        ((rows = rows.next()), ...);
    }
}

} // namespace odx::ODX_TARGET

#endif
