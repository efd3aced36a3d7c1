// How the arguments of an operation are drawn.
//
// Every public operation has one row: a function that draws arguments, runs the operation, and reports what it
// returned. The differential test runs a row once per column with the same seed and compares everything the
// operation could have written; the benchmark runs the same row on a given image size and times it.
//
// Sizes come from extent() for images and from length() for lists and arrays. Both take turns through every size
// at which a kernel turns from one loop to the next: n - 1, n and n + 1 elements for n lanes of a vector or of
// two, and as many more as the operation leaves out around what it works on. What is left out need not be said
// where it is at most 4 in all (two on each side) or less than the least size; otherwise the row says it:
//     draw.extent(7, 7, 2 * border)
// The first seeds go through those sizes one by one, with typical arguments on noise, so that nothing else can
// hide what a size does: a row lists the typical value of pick() first. Later seeds draw everything.
#ifndef ODX_TESTS_OPERATIONS_DRAW_H
#define ODX_TESTS_OPERATIONS_DRAW_H

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <memory>
#include <stdint.h>
#include <string.h>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace odx::test
{

struct Extent {
    uint32_t width, height;
};

// What a benchmark measures an operation on.
struct Measurement {
    Extent extent;
    const uint8_t* picture = nullptr; // a grey image of the extent, packed; without it images are noise
};

// A buffer between two inaccessible pages, flush with one of them, with a pattern in what is left of its own
// pages.
class GuardedBuffer
{
public:
    // `offset` bytes separate the buffer from the page that it is flush with, and at least `tail` bytes from the
    // page behind it.
    GuardedBuffer(size_t size, bool flushWithEnd, size_t offset, size_t tail = 0);
    ~GuardedBuffer();
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    uint8_t* data() const { return data_; }
    size_t size() const { return size_; }
    bool surroundingsIntact() const;

private:
    uint8_t* map_;
    size_t mapSize_;
    uint8_t* data_;
    size_t size_;
};

// Rows of pixels in a guarded buffer. The last row ends with its last pixel.
template <class T>
struct Image {
    T* pixels;
    uint32_t width, height; // in elements of T
    uint32_t stride;        // in bytes
    bool defaulted;         // pass 0 where the operation takes that for a packed row

    Extent extent() const { return {width, height}; }
    uint32_t strideArgument() const { return defaulted ? 0 : stride; }
    T& at(uint32_t x, uint32_t y) const
    {
        return reinterpret_cast<T*>(reinterpret_cast<char*>(pixels) + size_t{stride} * y)[x];
    }
};

// SplitMix64: small, because a new one is made for each case, and cheap under emulation.
struct Random {
    using result_type = uint64_t;
    uint64_t state;

    static constexpr uint64_t min() { return 0; }
    static constexpr uint64_t max() { return ~uint64_t{0}; }
    uint64_t operator()()
    {
        uint64_t z = state += 0x9E3779B97F4A7C15;
        z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
        z = (z ^ z >> 27) * 0x94D049BB133111EB;
        return z ^ z >> 31;
    }
};

// Arguments that only some operations take.
template <bool taken, class... T>
auto when(T... arguments)
{
    if constexpr (taken) {
        return std::tuple(arguments...);
    } else {
        return std::tuple();
    }
}
// An image with its size, in pixels, before its stride.
template <class T>
struct Sized {
    Image<T> image;
    Extent extent;
};
template <class T>
Sized<T> sized(const Image<T>& image, Extent extent)
{
    return {image, extent};
}
template <class T>
Sized<T> sized(const Image<T>& image)
{
    return {image, image.extent()};
}

// The arguments that an operation is called with. A tuple would do, but to compile those of all rows takes longer
// than everything else in them.
struct NoArguments {
};
template <class First, class Rest>
struct Arguments {
    First first;
    Rest rest;
};
template <class First, class Rest>
Arguments(First, Rest) -> Arguments<First, Rest>;

// What an argument of Draw::call stands for, in front of the rest; the strides of images, unless they are packed.
template <bool strides, class T, class Rest>
auto flat(const T& argument, const Rest& rest)
{
    return Arguments<T, Rest>{argument, rest};
}
template <bool strides, class Rest>
auto flat(Extent extent, const Rest& rest)
{
    return Arguments{extent.width, Arguments{extent.height, rest}};
}
template <bool strides, class T, class Rest>
auto flat(const Image<T>& image, const Rest& rest)
{
    if constexpr (strides) {
        return Arguments{image.pixels, Arguments{image.strideArgument(), rest}};
    } else {
        return Arguments{image.pixels, rest};
    }
}
template <bool strides, class T, class Rest>
auto flat(const Sized<T>& sized, const Rest& rest)
{
    const auto [pixels, behind] = flat<strides>(sized.image, rest);
    return Arguments{pixels, flat<strides>(sized.extent, behind)};
}
template <bool strides, class Rest>
Rest flatWith(const Rest& rest)
{
    return rest;
}
template <bool strides, class Rest, class First, class... More>
auto flatWith(const Rest& rest, const First& first, const More&... more)
{
    return flat<strides>(first, flatWith<strides>(rest, more...));
}
template <bool strides, class... T, class Rest>
auto flat(const std::tuple<T...>& arguments, const Rest& rest)
{
    return std::apply([&](const auto&... argument) { return flatWith<strides>(rest, argument...); }, arguments);
}

// How many arguments that makes, with strides.
template <class T>
constexpr size_t parts = 1;
template <>
inline constexpr size_t parts<Extent> = 2;
template <class T>
inline constexpr size_t parts<Image<T>> = 2;
template <class T>
inline constexpr size_t parts<Sized<T>> = 4;
template <class... T>
inline constexpr size_t parts<std::tuple<T...>> = (size_t{0} + ... + parts<T>);

template <class Operation, class... Done>
auto pass(Operation operation, NoArguments, Done... done)
{
    return operation(done...);
}
template <class Operation, class First, class Rest, class... Done>
auto pass(Operation operation, const Arguments<First, Rest>& arguments, Done... done)
{
    return pass(operation, arguments.rest, done..., arguments.first);
}

// How many arguments an operation takes: those on packed images have no strides.
template <class R, class... Arguments>
constexpr size_t arity(R (*)(Arguments...))
{
    return sizeof...(Arguments);
}

class Draw
{
public:
    enum class Purpose { Compare, Measure };

    // Seeds from 1 to sizes() go through the sizes; from here on they draw them.
    static constexpr uint64_t kFirstDrawn = 1000;

    // Draws for one comparison; the same seed gives the same arguments. With `wholeRows` the last row of every
    // image is followed by as many accessible bytes as the others.
    explicit Draw(uint64_t seed, bool wholeRows = false);
    // Draws the arguments of a measurement.
    Draw(const Measurement& measurement, std::function<void(const std::function<void()>&)> timer);

    bool measures() const { return purpose_ == Purpose::Measure; }

    // The size of an image of which the operation works on all but `leftOut` columns and rows.
    Extent extent(uint32_t minWidth = 1, uint32_t minHeight = 1, uint32_t leftOut = 4);
    // The number of elements of a list or an array; in a measurement as many as its image has pixels, over
    // `share`.
    uint32_t length(uint32_t least = 0, uint32_t share = 1, uint32_t leftOut = 0);

    // A number in [low, high]; `typical` in a measurement.
    template <class T>
    T number(const char* name, T low, T high, T typical)
    {
        const T value = measures() ? typical
                        : sweeps()
                            ? std::clamp(typical, low, high)
                            : static_cast<T>(static_cast<uint64_t>(low) +
                                             below(static_cast<uint64_t>(high) - static_cast<uint64_t>(low) + 1));
        note(name, std::to_string(value));
        return value;
    }
    float real(const char* name, float low, float high, float typical);

    // One of several values; the first one, the typical one, in a measurement.
    template <class T>
    T pick(const char* name, std::initializer_list<T> values)
    {
        const T value = measures() || sweeps() ? *values.begin() : values.begin()[below(values.size())];
        note(name, std::to_string(static_cast<int64_t>(value)));
        return value;
    }

    // An image with drawn content, for the operation to read.
    template <class T>
    Image<T> source(const char* name, Extent extent, bool packed = false)
    {
        Image<T> image = allocate<T>(name, extent, packed);
        fill(image);
        bytesRead_ += buffers_.back().memory->size();
        return image;
    }
    // An image with a known pattern, for the operation to write.
    template <class T>
    Image<T> destination(const char* name, Extent extent, bool packed = false)
    {
        Image<T> image = allocate<T>(name, extent, packed);
        outputs_.push_back(buffers_.size() - 1);
        setPattern();
        return image;
    }
    // An array of elements: an image of one row.
    template <class T>
    T* sourceArray(const char* name, uint32_t count)
    {
        return source<T>(name, {count, 1}, true).pixels;
    }
    template <class T>
    T* destinationArray(const char* name, uint32_t count)
    {
        return destination<T>(name, {count, 1}, true).pixels;
    }
    // Marks a source as a destination too: the operation works in place.
    template <class T>
    void writesInPlace(const Image<T>& image)
    {
        for (size_t i = 0; i < buffers_.size(); ++i) {
            if (buffers_[i].memory->data() == reinterpret_cast<uint8_t*>(image.pixels)) outputs_.push_back(i);
        }
    }

    // A destination like a source, or the source itself.
    template <class T>
    Image<T> destinationOr(const Image<T>& source, bool packed = false)
    {
        if (measures() || pick("in place", {0, 1, 0}) == 0) return destination<T>("dst", source.extent(), packed);
        writesInPlace(source);
        return source;
    }

    // Calls the operation: once to compare it, many times to measure it. The result, if any, is part of the
    // comparison.
    template <class F>
    void run(F&& operation)
    {
        if (measures()) {
            measure([](void* call) { (*static_cast<std::remove_reference_t<F>*>(call))(); }, &operation);
        } else if constexpr (std::is_void_v<std::invoke_result_t<F>>) {
            operation();
        } else {
            result(operation());
        }
    }
    // run(operation(...)) of these arguments, where an image stands for its pixels and its stride, if the
    // operation takes strides, an extent for its sides, a tuple for its elements, and a function for what it
    // draws.
    template <class Operation, class... Arguments>
    void call(Operation operation, const Arguments&... arguments)
    {
        constexpr bool strides = (parts<decltype(drawn(arguments))> + ...) == arity(Operation{});
        const auto all = drawnAll<strides>(arguments...);
        run([&] { return pass(operation, all); });
    }
    template <bool strides>
    NoArguments drawnAll()
    {
        return {};
    }
    template <bool strides, class First, class... More>
    auto drawnAll(const First& first, const More&... more)
    {
        const auto value = drawn(first); // before those behind it
        return flat<strides>(value, drawnAll<strides>(more...));
    }
    template <class... T>
    auto drawn(const std::tuple<T...>& arguments)
    {
        return std::apply([&](const auto&... a) { return std::tuple<decltype(drawn(a))...>{drawn(a)...}; },
                          arguments);
    }
    template <class T>
    auto drawn(const T& argument)
    {
        if constexpr (std::is_invocable_v<const T&, Draw&>) {
            return argument(*this);
        } else {
            return argument;
        }
    }
    // A value that the operation returned or wrote through a pointer.
    template <class T>
    void result(T value)
    {
        static_assert(std::is_trivially_copyable_v<T>);
        const auto* bytes = reinterpret_cast<const uint8_t*>(&value);
        results_.insert(results_.end(), bytes, bytes + sizeof value);
    }

    // ---- for the programs that run the rows ----

    // How many sizes the row that has run goes through.
    size_t sizes() const { return std::max<size_t>(sizes_, 1); }
    // Everything that the operation could have changed: results, then every buffer.
    std::vector<uint8_t> outcome() const;
    // Where another outcome differs from the expected one: "dst, row 3, column 64: 12, not 13", for the result and
    // for each buffer; "" where it does not.
    std::string difference(const std::vector<uint8_t>& expected, const std::vector<uint8_t>& other) const;
    // Whether it changed a destination or gave a result.
    bool didSomething() const;
    // The first buffer beside which something was written, "" if there is none.
    std::string overrun() const;
    const std::string& description() const { return description_; } // the drawn arguments, as text
    size_t bytesMoved() const; // of what an operation read, and of the lines of 64 bytes that it wrote

private:
    template <class T>
    Image<T> allocate(const char* name, Extent extent, bool packed)
    {
        Image<T> image{};
        image.width = extent.width;
        image.height = extent.height;
        const size_t row = sizeof(T) * size_t{extent.width};
        size_t padding = 0;
        if (!measures() && !packed && below(2) == 0) padding = sizeof(T) * (1 + below(70));
        image.stride = static_cast<uint32_t>(row + padding);
        image.defaulted = padding == 0 && !measures() && below(2) == 0;
        const size_t size = size_t{image.stride} * (extent.height - 1) + row;
        image.pixels = reinterpret_cast<T*>(addBuffer(name, size, sizeof(T), row, padding));
        note(name,
             std::to_string(extent.width) + "x" + std::to_string(extent.height) + "+" + std::to_string(padding));
        return image;
    }

    template <class T>
    void fill(const Image<T>& image)
    {
        if (measures() && std::is_integral_v<T>)
            return show(image.pixels, size_t{image.stride} * image.height,
                        std::is_same_v<T, uint8_t> ? image.extent() : Extent());
        static_assert(std::is_arithmetic_v<T>);
        content_ = measures() || sweeps() ? 0 : below(6);
        for (uint32_t y = 0; y < image.height; ++y) {
            if constexpr (std::is_floating_point_v<T>) {
                fillReals(&image.at(0, y), image.width, y);
            } else {
                fillIntegers(reinterpret_cast<uint8_t*>(&image.at(0, y)), image.width, sizeof(T), y);
            }
        }
    }
    struct Buffer {
        const char* name;
        size_t elementSize, row, stride; // in bytes
        std::unique_ptr<GuardedBuffer> memory;
    };

    bool sweeps() const { return !measures() && seed_ < kFirstDrawn; }
    // Fills an image of whole numbers for a measurement: with the picture, where an extent of bytes fits it, or
    // with noise of another place for each buffer.
    void show(void* to, size_t size, Extent extent) const;
    // Without a division, which 32-bit ARM has not, where the upper half of a word is enough.
    uint64_t below(uint64_t n) { return n >> 32 == 0 ? (random_() >> 32) * n >> 32 : random_() % n; }
    void fillIntegers(uint8_t* row, uint32_t width, size_t elementSize, uint32_t y);
    void measure(void (*operation)(void*), void* captured);
    void fillReals(float* row, uint32_t width, uint32_t y);
    uint8_t* addBuffer(const char* name, size_t size, size_t elementSize, size_t row, size_t padding);
    void setPattern(); // into the last buffer
    void note(const char* name, const std::string& value);

    Purpose purpose_;
    uint64_t seed_ = kFirstDrawn;
    size_t sizes_ = 0; // that this row goes through
    bool wholeRows_ = false;
    Measurement measurement_{};
    std::function<void(const std::function<void()>&)> timer_;
    Random random_;
    uint64_t content_ = 0, constant_ = 0;
    std::vector<Buffer> buffers_;
    std::vector<size_t> outputs_;
    size_t bytesRead_ = 0;
    std::vector<uint8_t> results_;
    std::string description_;
};

// The digest of a sequence of outcomes, from that of those before (FNV-1a, of words).
uint64_t digestOf(const std::vector<uint8_t>& outcome, uint64_t before);

// ---- rows and columns ----

struct Row {
    const char* operation;
    void (*run)(Draw&);
    bool contentMatters = false; // to its speed: it is measured on a scene too
    bool allocates = false;      // that is its work
};

// All rows: each file <family>Rows.cpp returns its own from rows(), in a namespace of its name.
std::vector<Row> allRows();

// The public operations that exist, from the library's own list.
std::vector<std::string> builtOperations();

// A way to run an operation: the reference, one of the SIMD targets that the processor supports, or the remote
// processor, which the loopback stub stands in for.
struct Column {
    std::string name;
    std::function<void()> select;
    bool remote = false; // runs only the remote operations, and reaches to the end of the last row
};
std::vector<Column> allColumns(); // of this processor, the reference first
Column remoteColumn();

// Whether the remote processor has an operation, and how many calls it has completed.
bool isRemote(const char* operation);
uint32_t remoteCalls();

} // namespace odx::test

#endif
