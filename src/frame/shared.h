// Variables that calls read without a lock, and that a selection may change meanwhile: the remote processor's
// recovery moves running calls to the processor and back. Every value of them is a valid one, so no order between
// two of them matters.
#ifndef ODX_FRAME_SHARED_H
#define ODX_FRAME_SHARED_H

namespace odx
{

template <class T>
[[gnu::always_inline]] static inline T current(const T& variable)
{
    return __atomic_load_n(&variable, __ATOMIC_RELAXED);
}

template <class T, class Value>
[[gnu::always_inline]] static inline void publish(T& variable, Value value)
{
    __atomic_store_n(&variable, static_cast<T>(value), __ATOMIC_RELAXED);
}

} // namespace odx

#endif
