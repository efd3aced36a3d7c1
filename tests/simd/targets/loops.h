// Plain loops for the cases, which are compiled once for each target. Nothing here may have an instance that the
// linker could share between targets.
#ifndef ODX_TESTS_SIMD_TARGETS_LOOPS_H
#define ODX_TESTS_SIMD_TARGETS_LOOPS_H

#include "simd/cases.h"

#include "orlan/simd/simd.h"

#include <type_traits>

namespace odx::ODX_TARGET::loops
{
using namespace simd;
using test::PrimitiveCase;

typedef const uint8_t* In;
typedef uint8_t* Out;

// The i-th number of an array of bytes.
template <class T>
T at(In p, size_t i)
{
    T value;
    memcpy(&value, p + sizeof value * i, sizeof value);
    return value;
}
template <class T, class Value>
void put(Out p, size_t i, Value value)
{
    const T narrow = (T)value;
    memcpy(p + sizeof narrow * i, &narrow, sizeof narrow);
}

inline int64_t clamped(int64_t value, int64_t least, int64_t most)
{
    return value < least ? least : value > most ? most : value;
}

inline uint32_t distanceOf(int a, int b)
{
    return (uint32_t)(a < b ? b - a : a - b);
}
// The sum of f(k), modulo 2^32.
template <class F>
uint32_t sumOf(size_t count, F f)
{
    uint32_t sum = 0;
    for (size_t k = 0; k < count; ++k)
        sum += (uint32_t)f(k);
    return sum;
}
// What f writes to an array of numbers, in its place.
template <class T, size_t count, class F>
void numbers(Out out, F f)
{
    T array[count];
    f(array);
    memcpy(out, array, sizeof array);
}

// What is expected of each element i.
#define EACH(T, count, value)            \
    for (size_t i = 0; i < (count); ++i) \
    put<T>(expected, i, value)

// A case by name: the bytes that it reads, the elements that it writes, what each element i should be, and a call.
#define CASE(name, input, T, count, value, ...)         \
    {                                                   \
        name, input, [](In in, Out out, Out expected) { \
            __VA_ARGS__;                                \
            EACH(T, count, value);                      \
        }                                               \
    }

// f of both halves of a pair.
template <class Pair, class P, class F>
Pair ofHalves(P p, F f)
{
    return {f((decltype(Pair::a))p.a), f((decltype(Pair::a))p.b)};
}

template <class... V>
void storeAll(Out out, V... v)
{
    ((store(out, v), out += kBytes), ...);
}

} // namespace odx::ODX_TARGET::loops

#endif
