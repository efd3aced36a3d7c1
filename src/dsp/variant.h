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

// A call of the remote processor, which is made again after a restart:
//
//     while (auto* entry = call.begins(pointer)) call.ends(entry(...));
class RemoteCall
{
public:
    // The entry, and the stub held; null when the call is over.
    void* begins(void* const& entry);
    void ends(int code);
    bool succeeded() const { return code_ == 0; }

private:
    int code_ = kRestarted;
    uint32_t attempts_ = 0;
    bool held_ = false;
};

// Whether the constraint checks are on. A call beyond the limits is logged, and left to the caller.
bool limitsHold();
odxStatus beyondLimits(const Symbol& symbol);

// The same operation in the SIMD column.
void* simdColumn(const Symbol& symbol);

template <class T>
ODX_ITEMS_INLINE bool fits(T)
{
    return true;
}
ODX_ITEMS_INLINE bool fits(Stride stride)
{
    return stride.fits;
}
template <class T, Direction direction, size_t unit>
ODX_ITEMS_INLINE bool fits(Buffer<T, direction, unit> buffer)
{
    return buffer.length != kTooLong;
}
template <class T>
bool fits(Vectors<T> vectors)
{
    return vectors.count <= INT_MAX && product(vectors.count, vectors.length, sizeof(T)) <= INT_MAX;
}

// What is collected for the way, and given back after it.
template <class T>
ODX_ITEMS_INLINE bool pack(T&)
{
    return true;
}
template <class T>
ODX_ITEMS_INLINE void unpack(T&)
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

// Buffers come back whole. So where two of them interleave, as planes do whose rows lie side by side, the second
// one would bring the old content of the first one along: such calls cannot be sent.
struct Range {
    const void* begin;
    uint32_t length, unit;
};
bool disjoint(const Range* ranges, size_t count);

template <class T>
ODX_ITEMS_INLINE void addWritten(Range*&, T)
{
}
template <class T, Direction direction, size_t unit>
ODX_ITEMS_INLINE void addWritten(Range*& end, Buffer<T, direction, unit> buffer)
{
    if constexpr (kWritten<decltype(buffer)>) *end++ = {buffer.data, buffer.length, unit};
}

template <class... I>
ODX_ITEMS_INLINE bool canTravel(I... items)
{
    if (!(fits(items) && ...)) return false;
    constexpr size_t kCount = (size_t{kWritten<I>} + ... + 0);
    if constexpr (kCount > 1) {
        Range ranges[kCount], *end = ranges;
        (addWritten(end, items), ...);
        return disjoint(ranges, kCount);
    } else {
        return true;
    }
}

// One function for all operations of a type that travel alike.
template <const auto& description, class Function>
struct Variant;
template <const auto& description, class R, class... A>
struct Variant<description, R(A...)> {
    using Description = Described<description, R(A...)>;
    using Items = typename Description::Items;

    // The remote entry writes its result behind the arguments.
    template <class... Result>
    ODX_ITEMS_INLINE static bool travels(Items& items, void* const& entry, Result*... result)
    {
        if (!items.into([](auto... item) { return canTravel(item...); })) return false;
        RemoteCall call;
        if (items.into([](auto&... item) { return (pack(item) && ...); })) {
            while (void* const begun = call.begins(entry))
                call.ends(send(reinterpret_cast<typename Description::Entry*>(begun), typename Description::Sent(),
                               items, result...));
        }
        items.into([](auto&... item) { (unpack(item), ...); });
        return call.succeeded();
    }

    static R run(A... a, SymbolNumber number)
    {
        const Symbol& symbol = kSymbols[number];
        auto arguments = description(a...);
        Items& items = arguments.items;
        constexpr bool hasStatus = std::is_same_v<R, odxStatus>;
        static_assert(hasStatus == Description::kHasLimits,
                      "limits are for operations with a status, and they all have them");
        if constexpr (hasStatus) {
            if (!arguments.withinLimits && limitsHold()) return beyondLimits(symbol);
        }
        if constexpr (std::is_void_v<R>) {
            if (travels(items, *symbol.pointer)) return;
        } else {
            R result = hasStatus ? static_cast<R>(ONDRIX_FAILURE) : R();
            if (travels(items, *symbol.pointer, &result)) return result;
        }
        auto* const function = reinterpret_cast<R (*)(A...)>(simdColumn(symbol));
        return items.into([&](auto... item) { return function(local(item)...); });
    }
};

} // namespace odx::remoting

#endif
