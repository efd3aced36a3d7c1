// Rows of operations that share a signature, for all families: one line for each operation.
//
//     {"odxFilterMedian3x3u8_v3", imageToImage<uint8_t, uint8_t, odxFilterMedian3x3u8_v3, Size<3>, borderType,
//     borderValue>}
//
// After the operation stands the least size, then what the operation takes beyond the images, each as a function
// that draws it: oneOf<...>, between<...>, or one of the family's own.
#ifndef ODX_TESTS_OPERATIONS_SHAPES_H
#define ODX_TESTS_OPERATIONS_SHAPES_H

#include "operations/draw.h"

#include "ondrix/types.h"

namespace odx::test
{

template <uint32_t width = 1, uint32_t height = width, uint32_t leftOut = 4>
struct Size {
    static Extent draw(Draw& draw) { return draw.extent(width, height, leftOut); }
};

// ---- arguments ----

template <auto... values> // the typical one first
auto oneOf(Draw& draw)
{
    return draw.pick("argument", {values...});
}

template <auto low, decltype(low) high, decltype(low) typical>
auto between(Draw& draw)
{
    return draw.number("argument", low, high, typical);
}

constexpr auto borderType = oneOf<ONDRIX_BORDER_REPLICATE, ONDRIX_BORDER_CONSTANT, ONDRIX_BORDER_UNDEFINED>;
constexpr auto borderValue = between<0u, 300u, 0u>;

// Arrays of n elements to read, and to write.
template <class T>
auto from(const char* name, uint32_t n)
{
    return [=](Draw& draw) -> const T* { return draw.sourceArray<T>(name, n); };
}
template <class T>
auto to(const char* name, uint32_t n)
{
    return [=](Draw& draw) { return draw.destinationArray<T>(name, n); };
}
template <class T, uint32_t n>
constexpr auto array = +[](Draw& draw) -> const T* { return draw.sourceArray<T>("array", n); };
template <class T, uint32_t n>
constexpr auto results = +[](Draw& draw) { return draw.destinationArray<T>("results", n); };
// What need not be given.
template <class Drawn>
auto maybe(Drawn drawn)
{
    return [=](Draw& draw) { return draw.pick("given", {1, 1, 0}) == 1 ? drawn(draw) : nullptr; };
}

template <class... I>
auto pixels(const I&... images)
{
    return std::tuple(images.pixels...);
}
template <class... I>
auto strides(const I&... images)
{
    return std::tuple(images.strideArgument()...);
}

// The size of a mask for an image, of sides that are 2, 4 or 8 times its own, or such shares of them.
inline Extent maskFor(Draw& draw, Extent& extent)
{
    const int shift = draw.pick("mask", {0, 1, 2, 3, -1, -2, -3}), up = std::max(shift, 0),
              down = std::max(-shift, 0);
    const uint32_t whole = 1u << down; // sizes that halve as often
    extent = {(extent.width + whole - 1) / whole * whole, (extent.height + whole - 1) / whole * whole};
    return {extent.width << up >> down, extent.height << up >> down};
}

// ---- shapes ----

// The rows of an operation and of its second version, which have the same shape<arguments..., operation>.
#define VERSIONS(operation, shape, ...)                        \
    {#operation, shape<__VA_ARGS__, operation>},               \
    {                                                          \
#operation "_v2", shape < __VA_ARGS__, operation##_v2> \
    }

// operation(arguments...).
template <auto* operation, auto... arguments>
void taking(Draw& draw)
{
    draw.call(operation, arguments...);
}

// operation(src, width, height, srcStride, dst, dstStride, rest...), where 0 stands for packed rows; packed images
// have no strides.
template <class Source, class Destination, auto* operation, class Size = Size<>, auto... rest>
void imageToImage(Draw& draw)
{
    constexpr bool packed = arity(operation) < 6 + sizeof...(rest);
    const auto src = draw.source<Source>("src", Size::draw(draw), packed);
    draw.call(operation, sized(src), draw.destination<Destination>("dst", src.extent(), packed), rest...);
}

} // namespace odx::test

#endif
