// Addressing of image rows.
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

} // namespace odx

#endif
