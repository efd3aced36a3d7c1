// The remote entries. Each one does what a remote call does: it takes copies of the buffers that go there, runs
// the operation on them, and copies the buffers that come back. The copies lie against an inaccessible page and
// have exactly the declared length, so that a length that is too short does not go unnoticed.
#include "processor.h"

#include "cpu/reference.h"
#include "dsp/remoteEntries.h"
#include "ondrix/modes.h"

#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

using namespace odx::dsp;
using namespace odx::stub;

namespace
{

template <class T>
constexpr size_t sizeOf()
{
    if constexpr (std::is_void_v<T>) {
        return 1;
    } else {
        return sizeof(T);
    }
}

// The processor's own copy of a buffer.
template <class Pointer, Direction direction>
class Copy
{
    using Element = std::remove_pointer_t<Pointer>;
    using Bytes = std::conditional_t<std::is_const_v<Element>, const uint8_t, uint8_t>;

public:
    Copy(Pointer original, uint32_t length, Unit unit)
        : original_(reinterpret_cast<Bytes*>(original)), size_(length * (unit == kBytes ? 1 : sizeOf<Element>()))
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
    ~Copy()
    {
        if (mapSize_ != 0) munmap(map_, mapSize_);
    }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    bool usable() const { return original_ == nullptr || mapSize_ != 0; }
    Pointer argument() const { return reinterpret_cast<Pointer>(copy_); }
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

template <class T>
class Value
{
public:
    explicit Value(T value) : value_(value) {}
    bool usable() const { return true; }
    T argument() const { return value_; }
    void comeBack() const {}

private:
    T value_;
};

// Runs an operation on its items. `result` is null where it has none.
template <class Operation, class... Items>
int serve(Operation* operation, ResultOf<Operation>* result, const Items&... items)
{
    const Call call;
    if (call.arrival() != kDone) return call.arrival();
    if (!(items.usable() && ...)) return kOutOfMemory;
    if constexpr (std::is_void_v<ResultOf<Operation>>) {
        operation(items.argument()...);
    } else {
        *result = operation(items.argument()...);
    }
    const int outcome = call.outcome();
    if (outcome == kDone) (items.comeBack(), ...);
    return outcome;
}

} // namespace

// ---- operations ----

#define ODX_SERVED(f, i, item) ODX_MAKE(ODX_SERVED, f, i, ODX_ITEM_##item)
#define ODX_SERVED_VALUE(f, i, name) Value<ValueParameter<f, i>>(name)
#define ODX_SERVED_STRIDE(f, i, name, packed) Value<ValueParameter<f, i>>(name)
#define ODX_SERVED_BUFFER(f, i, name, count, direction, unit) \
    Copy<BufferParameter<f, i, direction>, direction>(name, name##Length, unit)

extern "C" {

#define ODX_REMOTE(name, ...)                                                                 \
    int ondrixadsp_##name##X(ODX_EACH(ODX_REMOTE_PARAMETER, decltype(name##C), __VA_ARGS__))  \
    {                                                                                         \
        return serve(name##C, nullptr, ODX_EACH(ODX_SERVED, decltype(name##C), __VA_ARGS__)); \
    }
#define ODX_REMOTE_SCALAR(name, ...)                                                         \
    int ondrixadsp_##name##X(ODX_EACH(ODX_REMOTE_PARAMETER, decltype(name##C), __VA_ARGS__), \
                             ResultOf<decltype(name##C)>* result)                            \
    {                                                                                        \
        return serve(name##C, result, ODX_EACH(ODX_SERVED, decltype(name##C), __VA_ARGS__)); \
    }
#include "dsp/remote.def"

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
