// What a line of remote.def becomes: parameters and arguments, of the operation and of its remote entry.
//
// ODX_EACH(ODX_PARAMETER, function, arguments...) and its kin expand to comma-separated lists:
//
//   ODX_PARAMETER          the operation's parameters, with the types of `function`
//   ODX_ARGUMENT           their names
//   ODX_DEFAULT            expressions that give strides of 0 their packed value
//   ODX_FITS               for each argument, whether it can travel
//   ODX_WRITTEN            for each argument, the memory that comes back into it
//   ODX_REMOTE_PARAMETER   the remote entry's parameters: a buffer brings its length along
//   ODX_REMOTE_ARGUMENT    what the operation passes for them
#ifndef ODX_DSP_REMOTE_LINE_H
#define ODX_DSP_REMOTE_LINE_H

#include "frame/entry.h"

#include <limits.h>
#include <tuple>

namespace odx::dsp
{

// How a buffer travels. A read buffer reaches the remote processor, a written one comes back.
enum Direction { kIn = 1, kOut = 2, kInOut = kIn | kOut };
// What its length counts.
enum Unit { kElements, kBytes };

template <class Function>
struct Signature;
template <class R, class... Parameters>
struct Signature<R(Parameters...)> {
    using Result = R;
    template <size_t i>
    using Parameter = std::tuple_element_t<i, std::tuple<Parameters...>>;
};

template <class Function>
using ResultOf = typename Signature<Function>::Result;

template <class Function, size_t i>
struct CheckedValue {
    using Type = typename Signature<Function>::template Parameter<i>;
    static_assert(!std::is_pointer_v<Type>, "a pointer is no VALUE: it needs a length");
};
template <class Function, size_t i, Direction direction>
struct CheckedBuffer {
    using Type = typename Signature<Function>::template Parameter<i>;
    static_assert(std::is_pointer_v<Type>, "only a pointer is a buffer");
    static_assert(std::is_const_v<std::remove_pointer_t<Type>> == (direction == kIn),
                  "IN is for pointers to const, OUT and INOUT are for the others");
};
template <class Function, size_t i>
using ValueParameter = typename CheckedValue<Function, i>::Type;
template <class Function, size_t i, Direction direction>
using BufferParameter = typename CheckedBuffer<Function, i, direction>::Type;

// Remote calls count with 31 bits.
template <class Count>
bool lengthFits(const void* buffer, Count count)
{
    return buffer == nullptr || static_cast<uint64_t>(count) <= INT_MAX;
}
template <class Count>
uint32_t lengthOf(const void* buffer, Count count)
{
    return buffer == nullptr ? 0 : static_cast<uint32_t>(count);
}

// Buffers come back whole. So where two of them interleave, as planes do whose rows lie side by side, the second
// one would bring the old content of the first one along: such calls cannot be sent.
struct Range {
    uintptr_t begin;
    uint64_t size;
};
constexpr Range kNotWritten = {0, 0};

template <class T, class Count>
Range writtenRange(const T* buffer, Count count, Direction direction, Unit unit)
{
    if ((direction & kOut) == 0 || buffer == nullptr) return kNotWritten;
    return {reinterpret_cast<uintptr_t>(buffer), static_cast<uint64_t>(count) * (unit == kBytes ? 1 : sizeof(T))};
}

template <size_t n>
bool disjoint(const Range (&ranges)[n])
{
    for (size_t i = 0; i < n; ++i) {
        for (size_t j = i + 1; j < n && ranges[i].size != 0; ++j) {
            const Range &a = ranges[i], &b = ranges[j];
            if (b.size != 0 && (a.begin < b.begin ? b.begin - a.begin < a.size : a.begin - b.begin < b.size))
                return false;
        }
    }
    return true;
}

// ---- what the lengths of the lines are made of ----

// A product that stays at the largest number instead of overflowing: no such length fits.
inline uint64_t product(uint64_t a, uint64_t b, uint64_t c = 1)
{
    uint64_t ab, abc;
    return __builtin_mul_overflow(a, b, &ab) || __builtin_mul_overflow(ab, c, &abc) ? UINT64_MAX : abc;
}
// Samples that cover two pixels each, and the pixels that they cover.
constexpr uint32_t half(uint32_t pixels)
{
    return pixels / 2 + pixels % 2;
}
constexpr uint32_t even(uint32_t pixels)
{
    return pixels + pixels % 2;
}
constexpr uint32_t atLeastOne(uint32_t capacity)
{
    return capacity == 0 ? 1 : capacity;
}
// Bytes of an image of bits, in rows of whole bytes.
inline uint64_t bitMask(uint32_t width, uint32_t height)
{
    return product(uint64_t{width} / 8 + (width % 8 != 0 ? 1 : 0), height);
}
// Bytes of an image as coded units, in which a chroma block covers `across` x `down` luma blocks of 8x8. Rows of
// units follow each other, except that those without subsampling move on by whole blocks of pixels only.
inline uint64_t codedUnits(uint32_t width, uint32_t height, uint32_t across, uint32_t down)
{
    const auto units = [](uint32_t pixels, uint32_t size) { return pixels / size + (pixels % size != 0 ? 1 : 0); };
    const uint32_t wide = units(width, 8 * across), high = units(height, 8 * down);
    const uint32_t step = across * down == 1 ? width / 8 : wide;
    return product(64 * (across * down + 2), product(step, high - 1) + wide);
}

template <class... Flags>
bool allOf(Flags... flags)
{
    return (flags && ...);
}

} // namespace odx::dsp

// ---- lists ----

#define ODX_EACH(make, function, ...) ODX_EACH_OF(ODX_COUNT(__VA_ARGS__), make, function, __VA_ARGS__)
#define ODX_EACH_OF(count, ...) ODX_EACH_OF_(count, __VA_ARGS__)
#define ODX_EACH_OF_(count, make, function, ...) ODX_EACH_##count(make, function, 0, __VA_ARGS__)
// clang-format off
#define ODX_COUNT(...) ODX_COUNT_(__VA_ARGS__, 24, 23, 22, 21, 20, 19, 18, 17, 16, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0)
#define ODX_COUNT_(a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, a12, a13, a14, a15, a16, a17, a18, a19, a20, a21, a22, a23, a24, count, ...) count
#define ODX_EACH_1(make, f, i, item) make(f, i, item)
#define ODX_EACH_2(make, f, i, item, ...) make(f, i, item), ODX_EACH_1(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_3(make, f, i, item, ...) make(f, i, item), ODX_EACH_2(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_4(make, f, i, item, ...) make(f, i, item), ODX_EACH_3(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_5(make, f, i, item, ...) make(f, i, item), ODX_EACH_4(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_6(make, f, i, item, ...) make(f, i, item), ODX_EACH_5(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_7(make, f, i, item, ...) make(f, i, item), ODX_EACH_6(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_8(make, f, i, item, ...) make(f, i, item), ODX_EACH_7(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_9(make, f, i, item, ...) make(f, i, item), ODX_EACH_8(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_10(make, f, i, item, ...) make(f, i, item), ODX_EACH_9(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_11(make, f, i, item, ...) make(f, i, item), ODX_EACH_10(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_12(make, f, i, item, ...) make(f, i, item), ODX_EACH_11(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_13(make, f, i, item, ...) make(f, i, item), ODX_EACH_12(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_14(make, f, i, item, ...) make(f, i, item), ODX_EACH_13(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_15(make, f, i, item, ...) make(f, i, item), ODX_EACH_14(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_16(make, f, i, item, ...) make(f, i, item), ODX_EACH_15(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_17(make, f, i, item, ...) make(f, i, item), ODX_EACH_16(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_18(make, f, i, item, ...) make(f, i, item), ODX_EACH_17(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_19(make, f, i, item, ...) make(f, i, item), ODX_EACH_18(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_20(make, f, i, item, ...) make(f, i, item), ODX_EACH_19(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_21(make, f, i, item, ...) make(f, i, item), ODX_EACH_20(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_22(make, f, i, item, ...) make(f, i, item), ODX_EACH_21(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_23(make, f, i, item, ...) make(f, i, item), ODX_EACH_22(make, f, i + 1, __VA_ARGS__)
#define ODX_EACH_24(make, f, i, item, ...) make(f, i, item), ODX_EACH_23(make, f, i + 1, __VA_ARGS__)
// clang-format on

// ---- items: each is a BUFFER, a STRIDE or a VALUE ----

#define ODX_ITEM_VALUE(name) VALUE, name
#define ODX_ITEM_STRIDE(name, packed) STRIDE, name, packed
#define ODX_ITEM_IN(name, count) BUFFER, name, count, odx::dsp::kIn, odx::dsp::kElements
#define ODX_ITEM_OUT(name, count) BUFFER, name, count, odx::dsp::kOut, odx::dsp::kElements
#define ODX_ITEM_INOUT(name, count) BUFFER, name, count, odx::dsp::kInOut, odx::dsp::kElements
#define ODX_ITEM_IN_ROWS(name, stride, height) \
    BUFFER, name, odx::dsp::product(stride, height), odx::dsp::kIn, odx::dsp::kBytes
#define ODX_ITEM_INOUT_ROWS(name, stride, height) \
    BUFFER, name, odx::dsp::product(stride, height), odx::dsp::kInOut, odx::dsp::kBytes

#define ODX_MAKE(make, f, i, ...) ODX_MAKE_(make, f, i, __VA_ARGS__)
#define ODX_MAKE_(make, f, i, kind, ...) make##_##kind(f, i, __VA_ARGS__)

#define ODX_PARAMETER(f, i, item) ODX_MAKE(ODX_PARAMETER, f, i, ODX_ITEM_##item)
#define ODX_PARAMETER_VALUE(f, i, name) odx::dsp::ValueParameter<f, i> name
#define ODX_PARAMETER_STRIDE(f, i, name, packed) odx::dsp::ValueParameter<f, i> name
#define ODX_PARAMETER_BUFFER(f, i, name, count, direction, unit) odx::dsp::BufferParameter<f, i, direction> name

#define ODX_ARGUMENT(f, i, item) ODX_MAKE(ODX_ARGUMENT, f, i, ODX_ITEM_##item)
#define ODX_ARGUMENT_VALUE(f, i, name) name
#define ODX_ARGUMENT_STRIDE(f, i, name, packed) name
#define ODX_ARGUMENT_BUFFER(f, i, name, count, direction, unit) name

#define ODX_DEFAULT(f, i, item) ODX_MAKE(ODX_DEFAULT, f, i, ODX_ITEM_##item)
#define ODX_DEFAULT_VALUE(f, i, name) static_cast<void>(0)
#define ODX_DEFAULT_STRIDE(f, i, name, packed) name = odx::packedIfZero(name, packed)
#define ODX_DEFAULT_BUFFER(f, i, name, count, direction, unit) static_cast<void>(0)

#define ODX_FITS(f, i, item) ODX_MAKE(ODX_FITS, f, i, ODX_ITEM_##item)
#define ODX_FITS_VALUE(f, i, name) true
#define ODX_FITS_STRIDE(f, i, name, packed) (name) >= (packed) // else the last row ends behind the buffer
#define ODX_FITS_BUFFER(f, i, name, count, direction, unit) odx::dsp::lengthFits(name, count)

#define ODX_WRITTEN(f, i, item) ODX_MAKE(ODX_WRITTEN, f, i, ODX_ITEM_##item)
#define ODX_WRITTEN_VALUE(f, i, name) odx::dsp::kNotWritten
#define ODX_WRITTEN_STRIDE(f, i, name, packed) odx::dsp::kNotWritten
#define ODX_WRITTEN_BUFFER(f, i, name, count, direction, unit) odx::dsp::writtenRange(name, count, direction, unit)

#define ODX_REMOTE_PARAMETER(f, i, item) ODX_MAKE(ODX_REMOTE_PARAMETER, f, i, ODX_ITEM_##item)
#define ODX_REMOTE_PARAMETER_VALUE(f, i, name) odx::dsp::ValueParameter<f, i> name
#define ODX_REMOTE_PARAMETER_STRIDE(f, i, name, packed) odx::dsp::ValueParameter<f, i> name
#define ODX_REMOTE_PARAMETER_BUFFER(f, i, name, count, direction, unit) \
    odx::dsp::BufferParameter<f, i, direction> name, uint32_t name##Length

#define ODX_REMOTE_ARGUMENT(f, i, item) ODX_MAKE(ODX_REMOTE_ARGUMENT, f, i, ODX_ITEM_##item)
#define ODX_REMOTE_ARGUMENT_VALUE(f, i, name) name
#define ODX_REMOTE_ARGUMENT_STRIDE(f, i, name, packed) name
#define ODX_REMOTE_ARGUMENT_BUFFER(f, i, name, count, direction, unit) name, odx::dsp::lengthOf(name, count)

#endif
