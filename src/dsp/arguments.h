// How the arguments of an operation travel to the remote processor. A description is a function of the operation's
// arguments, in their order; it returns arguments(...) with an item for each of them:
//
//   a number           travels as it is
//   stride(...)        the same, but 0 stands for the packed row
//   rows(...)          rows of an image; what lies between them comes back as it went
//   list(...)          a number of elements; behind a pointer to const they are read, else read and written
//   written(...)       elements that are written completely, and not read
//   vectors(...)       a list of pointers to vectors of one length, which are read
//
// So a buffer becomes two arguments of the remote entry, its address and its length: elements, for rows bytes. A
// null buffer has the length 0. Vectors travel as one buffer, one behind the other, with their number as a third
// argument. Behind the last argument comes the address of the result, where there is one.
//
// A call stays on this processor when a length exceeds 31 bits, when a stride is shorter than its row, and when
// written buffers overlap. The description of an operation with a status says, too, under which limits it is sent
// while the constraint checks are on: limit(..., arguments(...)).
#ifndef ODX_DSP_ARGUMENTS_H
#define ODX_DSP_ARGUMENTS_H

#include <limits.h>
#include <stddef.h>
#include <stdint.h>
#include <tuple>
#include <type_traits>

namespace odx::remoting
{

// A read buffer reaches the remote processor, a written one comes back.
enum Direction { kIn = 1, kOut = 2, kInOut = kIn | kOut };

template <class T, Direction bufferDirection, size_t bytesPerUnit>
struct Buffer {
    static constexpr Direction direction = bufferDirection;
    static constexpr size_t unit = bytesPerUnit; // of the length

    T* data;
    uint64_t length;
};

// Vectors that lie anywhere, and from pack() to unpack() a copy of them without gaps.
template <class T>
struct Vectors {
    const T* const* at;
    uint64_t count, length;
    T* packed;
};

struct Stride {
    uint32_t value;
    bool fits; // else the last row ends behind the buffer
};

template <bool hasLimits, class... Items>
struct Arguments {
    static constexpr bool kHasLimits = hasLimits;

    std::tuple<Items...> items;
    bool withinLimits;
};

// ---- items ----

template <class T>
constexpr Direction directionOf = std::is_const_v<T> ? kIn : kInOut;

inline Stride stride(uint32_t value, uint64_t packed)
{
    const uint32_t effective = value == 0 ? static_cast<uint32_t>(packed) : value;
    return {effective, effective >= packed};
}

// A product that stays at the largest number instead of overflowing: no such length fits.
inline uint64_t product(uint64_t a, uint64_t b, uint64_t c = 1)
{
    uint64_t ab, abc;
    return __builtin_mul_overflow(a, b, &ab) || __builtin_mul_overflow(ab, c, &abc) ? UINT64_MAX : abc;
}

template <class T>
Buffer<T, directionOf<T>, 1> rows(T* data, Stride stride, uint64_t height)
{
    return {data, product(stride.value, height)};
}

template <class T>
Buffer<T, directionOf<T>, sizeof(T)> list(T* data, uint64_t count)
{
    return {data, count};
}

template <class T>
Buffer<T, kOut, sizeof(T)> written(T* data, uint64_t count)
{
    return {data, count};
}

template <class T>
Vectors<T> vectors(const T* const* at, uint64_t count, uint64_t length)
{
    return {at, count, length, nullptr};
}

template <class... Items>
Arguments<false, Items...> arguments(Items... items)
{
    return {{items...}, true};
}

template <class... Items>
Arguments<true, Items...> limit(bool withinLimits, Arguments<false, Items...> arguments)
{
    return {arguments.items, withinLimits};
}

// One description behind the other.
template <class... A, class... B>
Arguments<false, A..., B...> operator+(Arguments<false, A...> a, Arguments<false, B...> b)
{
    return {std::tuple_cat(a.items, b.items), true};
}

// ---- what both sides make of them ----

// As the operation gets it.
template <class T>
T local(T value)
{
    static_assert(!std::is_pointer_v<T>, "a pointer needs a length");
    return value;
}
inline uint32_t local(Stride stride)
{
    return stride.value;
}
template <class T, Direction direction, size_t unit>
T* local(Buffer<T, direction, unit> buffer)
{
    return buffer.data;
}
template <class T>
const T* const* local(Vectors<T> vectors)
{
    return vectors.at;
}

// As the remote entry gets it.
template <class T>
std::tuple<T> sent(T value)
{
    return {value};
}
inline std::tuple<uint32_t> sent(Stride stride)
{
    return {stride.value};
}
template <class T, Direction direction, size_t unit>
std::tuple<T*, uint32_t> sent(Buffer<T, direction, unit> buffer)
{
    return {buffer.data, buffer.data == nullptr ? 0 : static_cast<uint32_t>(buffer.length)};
}
template <class T>
std::tuple<const T*, uint32_t, uint32_t> sent(Vectors<T> vectors)
{
    return {vectors.packed, static_cast<uint32_t>(vectors.count * vectors.length),
            static_cast<uint32_t>(vectors.count)};
}
template <class Item>
using Sent = decltype(sent(std::declval<Item>()));

// The type of the remote entry of an operation.
template <class Result, class Sent>
struct EntryType;
template <class Result, class... Sent>
struct EntryType<Result, std::tuple<Sent...>> {
    using Type = int(Sent..., Result* result);
};
template <class... Sent>
struct EntryType<void, std::tuple<Sent...>> {
    using Type = int(Sent...);
};

template <const auto& description, class Operation>
struct Described;
template <const auto& description, class R, class... A>
struct Described<description, R(A...)> {
    using Result = R;
    using Arguments = decltype(description(std::declval<A>()...));

    template <class... Items>
    static constexpr bool inOrder(std::tuple<Items...>*)
    {
        return std::is_same_v<std::tuple<decltype(local(std::declval<Items>()))...>, std::tuple<A...>>;
    }
    using Items = decltype(Arguments::items);
    static constexpr bool kHasLimits = Arguments::kHasLimits;
    static_assert(inOrder(static_cast<Items*>(nullptr)),
                  "the items are not the operation's arguments in their order");

    template <class... Items>
    static auto allSent(std::tuple<Items...>*) -> decltype(std::tuple_cat(std::declval<Sent<Items>>()...));
    using Entry = typename EntryType<R, decltype(allSent(static_cast<Items*>(nullptr)))>::Type;
};

template <const auto& description, class Operation>
using EntryOf = typename Described<description, Operation>::Entry;

} // namespace odx::remoting

#endif
