// Images and their rows.
#ifndef ODX_CPU_IMAGE_H
#define ODX_CPU_IMAGE_H

#include <stddef.h>
#include <stdint.h>

namespace odx
{

// The start of row `y` in an image whose rows are `stride` bytes apart.
template <class T>
[[gnu::always_inline]] static inline const T* rowOf(const T* image, size_t stride, size_t y)
{
    return reinterpret_cast<const T*>(reinterpret_cast<const char*>(image) + stride * y);
}

template <class T>
[[gnu::always_inline]] static inline T* rowOf(T* image, size_t stride, size_t y)
{
    return reinterpret_cast<T*>(reinterpret_cast<char*>(image) + stride * y);
}

// The rows of an image, from a pixel on; the stride in bytes. Rows<const T> are only read.
template <class T>
struct Rows {
    T* pixels;
    size_t stride;

    [[gnu::always_inline]] inline Rows at(uint32_t x, uint32_t y) const
    {
        return {rowOf(pixels, stride, y) + x, stride};
    }
    [[gnu::always_inline]] inline Rows next() const { return {rowOf(pixels, stride, 1), stride}; }
    [[gnu::always_inline]] inline bool packed(uint32_t width) const { return stride == sizeof(T) * width; }
};
template <class T>
Rows(T*, size_t) -> Rows<T>;

// A single-channel image that is filtered into another of its size. Strides in bytes.
template <class S, class D = S>
struct Plane {
    const S* src;
    uint32_t width, height;
    uint32_t srcStride;
    D* dst;
    uint32_t dstStride;

    // Width or height of the interior of a filter of size K: 0 for an image that is all border.
    uint32_t interiorWidth(uint32_t K) const { return width >= K ? width - (K - 1) : 0; }
    uint32_t interiorHeight(uint32_t K) const { return height >= K ? height - (K - 1) : 0; }
};

} // namespace odx

#endif
