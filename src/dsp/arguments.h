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
#include <type_traits>
#include <utility>

namespace odx::remoting
{

#define ODX_ITEMS_INLINE [[gnu::always_inline]] inline

// A read buffer reaches the remote processor, a written one comes back.
enum Direction { kIn = 1, kOut = 2, kInOut = kIn | kOut };

template <class Item>
inline constexpr bool kWritten = false;

template <class T, Direction bufferDirection, size_t bytesPerUnit>
struct Buffer {
    static constexpr Direction direction = bufferDirection;
    static constexpr size_t unit = bytesPerUnit; // of the length

    T* data;
    uint32_t length; // 0 without data, kTooLong where it does not fit
};
constexpr uint32_t kTooLong = UINT32_MAX;

template <class T, Direction direction, size_t unit>
inline constexpr bool kWritten<Buffer<T, direction, unit>> = (direction & kOut) != 0;

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

// Items in their order: a tuple that is cheap to compile, and that leaves nothing but its items.
template <size_t place, class Item>
struct Placed {
    Item item;
};
template <class Places, class... I>
struct ItemsAt;
template <size_t... places, class... I>
struct ItemsAt<std::index_sequence<places...>, I...> : Placed<places, I>... {
    template <class Function>
    ODX_ITEMS_INLINE auto into(Function function)
    {
        return function(Placed<places, I>::item...);
    }
};
template <class... I>
using Items = ItemsAt<std::index_sequence_for<I...>, I...>;

template <size_t place, class Item>
ODX_ITEMS_INLINE Item at(const Placed<place, Item>& placed)
{
    return placed.item;
}

template <bool hasLimits, class... I>
struct Arguments {
    static constexpr bool kHasLimits = hasLimits;

    Items<I...> items;
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

// Remote calls count with 31 bits.
inline uint32_t lengthOf(const void* data, uint64_t units)
{
    return data == nullptr ? 0 : units > INT_MAX ? kTooLong : static_cast<uint32_t>(units);
}

template <class T>
Buffer<T, directionOf<T>, 1> rows(T* data, Stride stride, uint64_t height)
{
    return {data, lengthOf(data, product(stride.value, height))};
}

template <class T>
Buffer<T, directionOf<T>, sizeof(T)> list(T* data, uint64_t count)
{
    return {data, lengthOf(data, count)};
}

template <class T>
Buffer<T, kOut, sizeof(T)> written(T* data, uint64_t count)
{
    return {data, lengthOf(data, count)};
}

template <class T>
Vectors<T> vectors(const T* const* at, uint64_t count, uint64_t length)
{
    return {at, count, length, nullptr};
}

template <class... I>
Arguments<false, I...> arguments(I... items)
{
    return {{{items}...}, true};
}

template <class... I>
Arguments<true, I...> limit(bool withinLimits, Arguments<false, I...> arguments)
{
    return {arguments.items, withinLimits};
}

// One description behind the other.
template <size_t... a, class... A, size_t... b, class... B>
ODX_ITEMS_INLINE Items<A..., B...> joined(const ItemsAt<std::index_sequence<a...>, A...>& first,
                                          const ItemsAt<std::index_sequence<b...>, B...>& second)
{
    return {{at<a>(first)}..., {at<b>(second)}...};
}
template <class... A, class... B>
Arguments<false, A..., B...> operator+(Arguments<false, A...> a, Arguments<false, B...> b)
{
    return {joined(a.items, b.items), true};
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

// As the remote entry gets it: an item's parts, in their order.
template <class Item>
inline constexpr size_t kParts = 1;
template <class T, Direction direction, size_t unit>
inline constexpr size_t kParts<Buffer<T, direction, unit>> = 2;
template <class T>
inline constexpr size_t kParts<Vectors<T>> = 3;

template <size_t, class T>
T part(T value)
{
    return value;
}
template <size_t>
uint32_t part(Stride stride)
{
    return stride.value;
}
template <size_t number, class T, Direction direction, size_t unit>
auto part(Buffer<T, direction, unit> buffer)
{
    if constexpr (number == 0) {
        return buffer.data;
    } else {
        return buffer.length;
    }
}
template <size_t number, class T>
auto part(Vectors<T> vectors)
{
    if constexpr (number == 0) {
        return static_cast<const T*>(vectors.packed);
    } else {
        return static_cast<uint32_t>(number == 1 ? vectors.count * vectors.length : vectors.count);
    }
}

// What is sent of a list of items: of which item, which part.
template <class Items>
struct Way;
template <size_t... places, class... I>
struct Way<ItemsAt<std::index_sequence<places...>, I...>> {
    static constexpr size_t kLength = (kParts<I> + ... + 0);
    struct Order {
        size_t item[kLength + 1], part[kLength + 1], first[sizeof...(I) + 1];
    };
    static constexpr Order order()
    {
        constexpr size_t parts[] = {kParts<I>..., 0};
        Order order = {};
        for (size_t item = 0, at = 0; item < sizeof...(I); ++item) {
            order.first[item] = at;
            for (size_t part = 0; part < parts[item]; ++part, ++at) {
                order.item[at] = item;
                order.part[at] = part;
            }
        }
        return order;
    }
    static constexpr Order kOrder = order();
};

template <class Entry, size_t... sent, class List, class... Result>
ODX_ITEMS_INLINE int send(Entry* entry, std::index_sequence<sent...>, const List& items, Result... result)
{
    return entry(part<Way<List>::kOrder.part[sent]>(at<Way<List>::kOrder.item[sent]>(items))..., result...);
}

// The type of the remote entry of an operation. Behind the arguments it gets the address of the result.
template <class List, size_t... sent, class... Result>
auto entryOf(std::index_sequence<sent...>, Result*... result) -> int (*)(
    decltype(part<Way<List>::kOrder.part[sent]>(at<Way<List>::kOrder.item[sent]>(std::declval<const List&>())))...,
    Result*...);

template <const auto& description, class Operation>
struct Described;
template <const auto& description, class R, class... A>
struct Described<description, R(A...)> {
    using Result = R;
    using Arguments = decltype(description(std::declval<A>()...));
    using Items = decltype(Arguments::items);
    using Sent = std::make_index_sequence<Way<Items>::kLength>;
    static constexpr bool kHasLimits = Arguments::kHasLimits;

    template <size_t... places, class... I>
    static constexpr bool inOrder(ItemsAt<std::index_sequence<places...>, I...>*)
    {
        return std::is_same_v<void(decltype(local(std::declval<I>()))...), void(A...)>;
    }
    static_assert(inOrder(static_cast<Items*>(nullptr)),
                  "the items are not the operation's arguments in their order");

    static auto entry()
    {
        if constexpr (std::is_void_v<R>) {
            return decltype(entryOf<Items>(Sent())){};
        } else {
            return decltype(entryOf<Items>(Sent(), static_cast<R*>(nullptr))){};
        }
    }
    using Entry = std::remove_pointer_t<decltype(entry())>;
};

template <const auto& description, class Operation>
using EntryOf = typename Described<description, Operation>::Entry;

} // namespace odx::remoting

#endif
