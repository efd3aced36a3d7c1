// The remote variant of an operation, `odxXxxX`: it sends the call, and does the work on this processor when that
// fails. variants.h defines those of a family.
#ifndef ODX_DSP_VARIANT_H
#define ODX_DSP_VARIANT_H

#include "dsp/arguments.h"
#include "dsp/stub.h"
#include "frame/heap.h"
#include "ondrix/types.h"

#include <string.h>

namespace odx::remoting
{

// What a variant knows of its operation.
struct Operation {
    void* const* entry;
    uint32_t number;
    const char* variant;
};

// Whether the remote processor did the call that `send` makes; it is made again after a restart.
bool callRemote(int (*send)(void* context), void* context);

// Whether the constraint checks are on. A call beyond the limits is logged, and left to the caller.
bool limitsHold();
odxStatus beyondLimits(const char* variant);

// The same operation in the SIMD column.
void* simdColumn(uint32_t number);

// Remote calls count with 31 bits.
template <class T>
bool fits(T)
{
    return true;
}
inline bool fits(Stride stride)
{
    return stride.fits;
}
template <class T, Direction direction, size_t unit>
bool fits(Buffer<T, direction, unit> buffer)
{
    return buffer.data == nullptr || buffer.length <= INT_MAX;
}
template <class T>
bool fits(Vectors<T> vectors)
{
    return vectors.count <= INT_MAX && product(vectors.count, vectors.length, sizeof(T)) <= INT_MAX;
}

// What is collected for the way, and given back after it.
template <class T>
bool pack(T&)
{
    return true;
}
template <class T>
void unpack(T&)
{
}
template <class T>
bool pack(Vectors<T>& vectors)
{
    const size_t length = static_cast<size_t>(vectors.length), count = static_cast<size_t>(vectors.count);
    vectors.packed = static_cast<T*>(heapAlloc(length * count * sizeof(T) + 1)); // of none, too, there is one
    for (size_t i = 0; i < count && length != 0 && vectors.packed != nullptr; ++i)
        memcpy(vectors.packed + i * length, vectors.at[i], length * sizeof(T));
    return vectors.packed != nullptr;
}
template <class T>
void unpack(Vectors<T>& vectors)
{
    heapFree(vectors.packed);
}

template <class Items>
class Packed
{
public:
    explicit Packed(Items& items)
        : items_(items), complete_(std::apply([](auto&... item) { return (pack(item) && ...); }, items))
    {
    }
    ~Packed()
    {
        std::apply([](auto&... item) { (unpack(item), ...); }, items_);
    }
    Packed(const Packed&) = delete;
    Packed& operator=(const Packed&) = delete;
    explicit operator bool() const { return complete_; }

private:
    Items& items_;
    bool complete_;
};

// Buffers come back whole. So where two of them interleave, as planes do whose rows lie side by side, the second
// one would bring the old content of the first one along: such calls cannot be sent.
struct Range {
    uintptr_t begin;
    uint64_t size;
};

template <class T>
Range writtenRange(T)
{
    return {0, 0};
}
template <class T, Direction direction, size_t unit>
Range writtenRange(Buffer<T, direction, unit> buffer)
{
    if ((direction & kOut) == 0 || buffer.data == nullptr) return {0, 0};
    return {reinterpret_cast<uintptr_t>(buffer.data), buffer.length * unit};
}

bool disjoint(const Range* ranges, size_t count);

template <class Items>
bool canTravel(const Items& items)
{
    return std::apply(
        [](auto... item) {
            const Range ranges[] = {writtenRange(item)...};
            return (fits(item) && ...) && disjoint(ranges, sizeof...(item));
        },
        items);
}

// One function for all operations of a type that travel alike.
template <const auto& description, class Function>
struct Variant;
template <const auto& description, class R, class... A>
struct Variant<description, R(A...)> {
    using Description = Described<description, R(A...)>;
    using Items = typename Description::Items;

    // The remote entry writes its result behind the arguments.
    template <class... Sent>
    static int send(void* const* entry, const Items& items, Sent... result)
    {
        return std::apply(
            [&](auto... sent) { return callEntry<typename Description::Entry>(*entry, sent..., result...); },
            std::apply([](auto... item) { return std::tuple_cat(sent(item)...); }, items));
    }

    static R here(const Items& items, uint32_t number)
    {
        auto* const function = reinterpret_cast<R (*)(A...)>(simdColumn(number));
        return std::apply([&](auto... item) { return function(local(item)...); }, items);
    }

    [[gnu::noinline]] static R run(A... a, const Operation& operation)
    {
        auto arguments = description(a...);
        Items& items = arguments.items;
        constexpr bool hasStatus = std::is_same_v<R, odxStatus>;
        static_assert(hasStatus == Description::kHasLimits,
                      "limits are for operations with a status, and they all have them");
        if constexpr (hasStatus) {
            if (!arguments.withinLimits && limitsHold()) return beyondLimits(operation.variant);
        }
        if constexpr (std::is_void_v<R>) {
            auto call = [&] { return send(operation.entry, items); };
            if (travels(items, call)) return;
        } else {
            R result = hasStatus ? static_cast<R>(ONDRIX_FAILURE) : R();
            auto call = [&] { return send(operation.entry, items, &result); };
            if (travels(items, call)) return result;
        }
        return here(items, operation.number);
    }

private:
    template <class Call>
    static bool travels(Items& items, Call& call)
    {
        if (!canTravel(items)) return false;
        const Packed<Items> packed(items);
        return packed && callRemote(&invoke<Call>, &call);
    }

    template <class Call>
    static int invoke(void* call)
    {
        return (*static_cast<Call*>(call))();
    }
};

} // namespace odx::remoting

#endif
