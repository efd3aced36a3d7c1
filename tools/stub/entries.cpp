// The remote entries. Each one does what a remote call does: it takes copies of the buffers that go there, runs
// the operation on them, and copies the buffers that come back. The copies lie against an inaccessible page and
// have exactly the declared length, so that a length that is too short does not go unnoticed.
#include "processor.h"

#include "dsp/remoteOperations.h"
#include "ondrix/modes.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

using namespace odx::remoting;
using namespace odx::stub;

namespace
{

// The processor's own view of an argument: numbers as they are.
template <class T>
class Argument
{
public:
    explicit Argument(T value) : value_(value) {}
    bool usable() const { return true; }
    T argument() const { return value_; }
    void comeBack() const {}

private:
    T value_;
};
template <>
class Argument<Stride> : public Argument<uint32_t>
{
public:
    using Argument<uint32_t>::Argument;
};

// Of a buffer, a copy.
template <class T, Direction direction, size_t unit>
class Argument<Buffer<T, direction, unit>>
{
    using Bytes = std::conditional_t<std::is_const_v<T>, const uint8_t, uint8_t>;

public:
    Argument(T* original, uint32_t length)
        : original_(reinterpret_cast<Bytes*>(original)), size_(size_t{length} * unit)
    {
        if (original == nullptr) return;
        const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t inner = (size_ + page - 1) / page * page;
        map_ = mmap(nullptr, inner + page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (map_ == MAP_FAILED) return;
        mapSize_ = inner + page;
        mprotect(map_, inner, PROT_READ | PROT_WRITE);
        copy_ = static_cast<uint8_t*>(map_) + inner - size_;
        constexpr int kUndefined = 0xEE;
        if (direction & kIn) {
            memcpy(copy_, original_, size_);
        } else {
            memset(copy_, kUndefined, size_);
        }
    }
    ~Argument()
    {
        if (mapSize_ != 0) munmap(map_, mapSize_);
    }
    Argument(const Argument&) = delete;
    Argument& operator=(const Argument&) = delete;

    bool usable() const { return original_ == nullptr || mapSize_ != 0; }
    T* argument() const { return reinterpret_cast<T*>(copy_); }
    void comeBack() const
    {
        if constexpr ((direction & kOut) != 0) {
            if (copy_ != nullptr) memcpy(original_, copy_, size_);
        }
    }

private:
    Bytes* original_;
    size_t size_;
    void* map_ = nullptr;
    size_t mapSize_ = 0;
    uint8_t* copy_ = nullptr;
};

// Of vectors, a copy of what they were packed into, and their addresses in it.
template <class T>
class Argument<Vectors<T>>
{
public:
    Argument(const T* packed, uint32_t length, uint32_t count)
        : packed_(packed, length), at_(static_cast<const T**>(malloc((size_t{count} + 1) * sizeof(const T*))))
    {
        for (size_t i = 0; i < count && at_ != nullptr; ++i)
            at_[i] = packed_.argument() + i * (length / count);
    }
    ~Argument() { free(at_); }
    Argument(const Argument&) = delete;
    Argument& operator=(const Argument&) = delete;

    bool usable() const { return packed_.usable() && at_ != nullptr; }
    const T* const* argument() const { return at_; }
    void comeBack() const {}

private:
    Argument<Buffer<const T, kIn, sizeof(T)>> packed_;
    const T** at_;
};

// Runs an operation on its items. `result` is null where it has none.
template <class Result, class... A, class... Items>
int serve(Result (*operation)(A...), Result* result, const Items&... items)
{
    const Call call;
    if (call.arrival() != kDone) return call.arrival();
    if (!(items.usable() && ...)) return kOutOfMemory;
    if constexpr (std::is_void_v<Result>) {
        operation(items.argument()...);
    } else {
        *result = operation(items.argument()...);
    }
    const int outcome = call.outcome();
    if (outcome == kDone) (items.comeBack(), ...);
    return outcome;
}

// An item of what was sent.
template <class Item, size_t first, class Sent>
Argument<Item> received(const Sent& sent)
{
    if constexpr (kParts<Item> == 3) {
        return Argument<Item>(at<first>(sent), at<first + 1>(sent), at<first + 2>(sent));
    } else if constexpr (kParts<Item> == 2) {
        return Argument<Item>(at<first>(sent), at<first + 1>(sent));
    } else {
        return Argument<Item>(at<first>(sent));
    }
}

template <class Result, class... A, class Sent, size_t... places, class... I>
int serveSent(Result (*operation)(A...), const Sent& sent, ItemsAt<std::index_sequence<places...>, I...>*)
{
    using Way = odx::remoting::Way<Items<I...>>;
    Result* result = nullptr;
    if constexpr (!std::is_void_v<Result>) result = at<Way::kLength>(sent);
    return serve(operation, result, received<I, Way::kOrder.first[places]>(sent)...);
}

template <class Description, class Operation, class... Sent>
int answer(Operation* operation, Sent... sent)
{
    return serveSent(operation, Items<Sent...>{{sent}...}, static_cast<typename Description::Items*>(nullptr));
}

} // namespace

// ---- operations ----

// A function whose parameters come from a type is a friend of a template.
#define ODX_ENTRY(name, description)                                                    \
    template <class Entry>                                                              \
    struct name##Entry;                                                                 \
    template <class... Sent>                                                            \
    struct name##Entry<int(Sent...)> {                                                  \
        [[gnu::used]] friend int ondrixadsp_##name##X(Sent... sent)                     \
        {                                                                               \
            return answer<Described<description, decltype(name##C)>>(name##C, sent...); \
        }                                                                               \
    };                                                                                  \
    template struct name##Entry<decltype(ondrixadsp_##name##X)>;                        \
    [[maybe_unused]] static constexpr auto* name##Defined = &ondrixadsp_##name##X;
#define ODX_ROUTINE(number, name, index, columns, pointer, ...) \
    ODX_IF_##columns##_X(ODX_ENTRY(name, (odx::remoting::__VA_ARGS__)))
#include "frame/operations/families.def"

extern "C" {

// ---- the processor itself ----

int ondrixadsp_odxGetVersionX(char* text, uint32_t textLength)
{
    const int code = reach();
    if (code == kDone) snprintf(text, textLength, "%s", version());
    return code;
}

int ondrixadsp_odxZ9GetClkX(int64_t* clock)
{
    const int code = reach();
    if (code == kDone) *clock = odxGetTime();
    return code;
}

int ondrixadsp_probeZ9TimeX(int64_t* microseconds)
{
    return ondrixadsp_odxZ9GetClkX(microseconds);
}

// Both processors see the same memory: there is nothing to register, and nothing to flush.
int ondrixadsp_odxRegisterBufX(uint64_t, uint32_t, int32_t)
{
    return reach();
}

int ondrixadsp_odx_cache_flush_invalidateX(void*, uint32_t, uint32_t)
{
    return reach();
}

int ondrixadsp_odxUpdateDSPMsgFlagX(uint32_t, uint32_t* result)
{
    const int code = reach();
    if (code == kDone) *result = 0;
    return code;
}
}
