// What every entry point refuses, what it says then, and which calls may leave for another target: one line an
// operation.
//
//     ENTRY(odxFilterXxxu8_v2, "src && dst && width && height", {buffer(8, 16), width(1, 8), height(),
//     ...})
//
// The arguments are described in the order of the call. Each brings a value that is accepted, the values that are
// refused, and what the remote targets and the GPU ask it to be a multiple of. The calls are made before any mode
// is selected: they end where the implementation would begin, so that no pointer is ever followed.
#ifndef ODX_TESTS_ENTRIES_ENTRIES_H
#define ODX_TESTS_ENTRIES_ENTRIES_H

#include <algorithm>
#include <functional>
#include <stdint.h>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace odx::test
{

constexpr uint32_t kWidth = 192, kHeight = 144;
const std::string kImages = "src && dst && srcWidth && srcHeight"; // how most texts begin
// How they go on, of rows of that length.
inline std::string strides(const std::string& srcRow = "srcWidth", const std::string& dstRow = "")
{
    return " && (srcStride >= " + srcRow + ") && (dstStride >= " + (dstRow.empty() ? srcRow : dstRow) + ")";
}
constexpr uint32_t kNever = ~0u; // in place of a size of pixels: never worth the way to a remote target

// A packed row, as texts have it.
template <class T>
std::string row(const std::string& width, uint32_t channels = 1)
{
    std::string type = "float";
    if (std::is_integral_v<T>) {
        if (sizeof(T) == 1 && channels == 1) return width;
        type = (std::is_signed_v<T> ? "int" : "uint") + std::to_string(8 * sizeof(T)) + "_t";
    }
    return width + "*sizeof(" + type + ")" + (channels == 1 ? "" : "*" + std::to_string(channels));
}

using Values = std::vector<double>;
struct Argument {
    enum Kind { kPointer, kColumns, kRows, kStride, kOther };
    Kind kind;
    double good;                  // holds addresses, sizes and numbers alike
    Values refused;               // by the argument check
    uint32_t remote = 1, gpu = 1; // what it must be a multiple of to leave
    Values accepted = {};

    // Values that fail the test that comes before everything else.
    Argument errors(Values values) &&
    {
        failing = std::move(values);
        return std::move(*this);
    }
    // A stride of 0 stands for nothing.
    Argument explicitly() const
    {
        Argument changed = with(refused, {});
        changed.refused.push_back(0);
        return changed;
    }
    // The same of other values.
    Argument with(Values nowRefused, Values nowAccepted) const
    {
        Argument changed = *this;
        changed.refused = std::move(nowRefused);
        changed.accepted = std::move(nowAccepted);
        return changed;
    }
    bool fails(double v) const { return std::count(failing.begin(), failing.end(), v) != 0; }
    Values failing = {};
};

// A buffer; every one has an address of its own, which all targets take.
inline Argument buffer(uint32_t remote = 1, uint32_t gpu = 1)
{
    return {Argument::kPointer, 0, {0}, remote, gpu};
}
// One that need not be given.
inline Argument optional(uint32_t remote = 1, uint32_t gpu = 1)
{
    return {Argument::kPointer, 0, {}, remote, gpu};
}
inline Argument width(uint32_t least = 1, uint32_t remote = 1, uint32_t gpu = 1)
{
    return {Argument::kColumns, kWidth, {least - 1.0}, remote, gpu, {double(least)}};
}
inline Argument height(uint32_t least = 1)
{
    return {Argument::kRows, kHeight, {least - 1.0}, 1, 1, {double(least)}};
}
// A size that must be a multiple of k.
inline Argument multiple(const Argument& size, uint32_t k)
{
    return size.with({0, size.good + 1, size.good + k - 1}, {double(k)});
}
// A stride that is compared with its row, of so many bytes.
inline Argument stride(uint32_t row = kWidth, uint32_t remote = 1, uint32_t gpu = 1)
{
    return {Argument::kStride, 4096, {row - 1.0}, remote, gpu, {double(row), 0}};
}
// One that is not.
inline Argument looseStride(uint32_t remote = 1, uint32_t gpu = 1)
{
    return {Argument::kStride, 4096, {}, remote, gpu, {0}};
}
inline Argument value(double good = 1, Values refused = {}, Values accepted = {})
{
    return {Argument::kOther, good, std::move(refused), 1, 1, std::move(accepted)};
}

using Combinations = std::vector<std::vector<std::pair<size_t, double>>>; // of arguments and values

// The arguments of an operation, and what it is worth.
struct Arguments : std::vector<Argument> {
    using std::vector<Argument>::vector;
    Arguments(const std::vector<Argument>& all) : std::vector<Argument>(all) {}

    uint32_t leastHeight = 1; // for a remote target
    uint32_t pixelSize = 1;   // what the least amount of work counts a pixel as; 0: there is none
    Combinations alsoRefused = {};

    template <auto member, class T>
    Arguments with(const T& value) const
    {
        Arguments changed = *this;
        changed.*member = value;
        return changed;
    }
    Arguments fromRows(uint32_t least) const { return with<&Arguments::leastHeight>(least); }
    Arguments pixels(uint32_t size) const { return with<&Arguments::pixelSize>(size); }
    Arguments never() const { return pixels(kNever); } // worth the way
    Arguments refusing(const Combinations& values) const { return with<&Arguments::alsoRefused>(values); }
};
inline Arguments operator+(Arguments a, const std::vector<Argument>& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
inline Arguments operator+(Arguments a, const Argument& b)
{
    a.push_back(b);
    return a;
}

// Texts of filters whose windows ask for more than `most` columns and rows.
inline std::string gaussianText(int most)
{
    const std::string least = std::to_string(most);
    return kImages + " && (srcStride >= srcWidth) && dstStride && srcHeight > " + least + " && srcWidth > " +
           least;
}
inline std::string boxText(const std::string& stride, int most)
{
    const std::string least = std::to_string(most);
    return kImages + " && srcStride && dstStride && (" + stride + ") && srcWidth > " + least + " && srcHeight > " +
           least;
}

// An image of rows of so many bytes, in places that suit all targets.
inline Arguments imageOf(uint32_t row = kWidth)
{
    return {buffer(8, 16), width(), height(), stride(row, 8)};
}

// What a call returned, where it returns something.
using Outcome = double;
constexpr Outcome kNothing = -1000;

template <class T>
T as(double number)
{
    if constexpr (std::is_pointer_v<T>) {
        return reinterpret_cast<T>(static_cast<uintptr_t>(number));
    } else if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(number);
    } else {
        return static_cast<T>(static_cast<int64_t>(number));
    }
}

template <class R, class... P, size_t... i>
auto callWith(R (*operation)(P...), std::index_sequence<i...>)
{
    return [operation](const Values& v) -> Outcome {
        if (v.size() != sizeof...(P)) return kNothing - 1; // no outcome is like it
        if constexpr (std::is_void_v<R>) {
            operation(as<P>(v[i])...);
            return kNothing;
        } else {
            return static_cast<Outcome>(operation(as<P>(v[i])...));
        }
    };
}
template <class R, class... P>
auto callWith(R (*operation)(P...))
{
    return callWith(operation, std::index_sequence_for<P...>());
}

// Status operations fail with 3, signed results with -1, unsigned ones with 0.
template <class R, class... P>
constexpr Outcome failureOf(R (*)(P...))
{
    if constexpr (std::is_void_v<R>) {
        return kNothing;
    } else if constexpr (std::is_enum_v<R>) {
        return 3;
    } else {
        return std::is_signed_v<R> ? -1 : 0;
    }
}

struct Operation {
    const char* name;
    std::function<Outcome(const Values&)> call;
    Outcome failure;

    template <class R, class... P>
    Operation(const char* n, R (*pointer)(P...)) : name(n), call(callWith(pointer)), failure(failureOf(pointer))
    {
    }
};
struct Entry : Operation {
    std::string condition; // the text of the check; empty where it is silent
    Arguments arguments;
    bool forGpu = true; // else it is for the GPU only where it is refused
};

#define OP(operation) odx::test::Operation(#operation, operation)
#define ENTRY(operation, ...)      \
    odx::test::Entry               \
    {                              \
        OP(operation), __VA_ARGS__ \
    }

// Each file <family>Entries.cpp returns its own from entries(), in a namespace of its name.
using Entries = std::vector<Entry>;

template <class T>
std::vector<T> operator+(std::vector<T> a, const std::vector<T>& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// The entries of operations that refuse the same: alike("src && dst", {buffer(), buffer()}, {OP(odxXxx),
// OP(odxYyy)}).
inline Entries alike(const std::string& condition, const Arguments& arguments,
                     const std::vector<Operation>& operations)
{
    Entries entries;
    for (const Operation& operation : operations)
        entries.push_back({operation, condition, arguments});
    return entries;
}

} // namespace odx::test

#endif
