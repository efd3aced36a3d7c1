#include "operations/draw.h"

#include <cmath>
#include <map>
#include <mutex>
#include <random>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

namespace odx::test
{

namespace
{

constexpr uint8_t kSurroundings = 0xC3;
constexpr uint32_t kMaxArea = 20000;
constexpr uint32_t kLongestVector = 64; // in lanes
constexpr uint32_t kMostDerived = 16;   // left out by reason of the least size

// What destinations hold before the call: 256 bytes that differ, over and over.
const std::vector<uint8_t> pattern = [] {
    std::vector<uint8_t> bytes(4096);
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<uint8_t>(0xA5 + 7 * i);
    return bytes;
}();

// Whether a part of a buffer still holds it. The part stays within 4096 bytes from a multiple of them.
bool holdsPattern(const GuardedBuffer& buffer, size_t from, size_t size)
{
    return memcmp(buffer.data() + from, pattern.data() + from % pattern.size(), size) == 0;
}

size_t pageSize()
{
    static const size_t size = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

// Maps of each size, for the next buffers: a system call for each of them takes longer than most operations.
std::mutex unusedLock;
std::map<size_t, std::vector<uint8_t*>> unusedMaps;

// The lengths from `least` to `most` at which the part of them that is worked on, all but up to `leftOut`
// elements, is nothing, one element, or a vector of any width or two, one element less or one more.
std::vector<uint32_t> turningPoints(uint32_t least, uint32_t leftOut, uint32_t most)
{
    std::vector<uint32_t> lengths;
    const auto upTo = [&](uint32_t first, uint32_t last) {
        if (!lengths.empty()) first = std::max(first, lengths.back() + 1);
        for (uint32_t length = std::max(first, least); length <= std::min(last + leftOut, most); ++length)
            lengths.push_back(length);
    };
    upTo(0, 1);
    for (uint32_t lanes = 4; lanes < most; lanes *= 2)
        upTo(lanes - 1, lanes + 1);
    return lengths;
}

} // namespace

GuardedBuffer::GuardedBuffer(size_t size, bool flushWithEnd, size_t offset, size_t tail) : size_(size)
{
    const size_t page = pageSize();
    size_t inner = page; // a power of two, so that there are few kinds
    while (inner < size + offset + tail)
        inner *= 2;
    mapSize_ = inner + 2 * page;
    const std::lock_guard lock(unusedLock);
    auto& unused = unusedMaps[mapSize_];
    if (unused.empty()) {
        void* const map = mmap(nullptr, mapSize_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (map == MAP_FAILED || mprotect(static_cast<uint8_t*>(map) + page, inner, PROT_READ | PROT_WRITE) != 0)
            abort();
        unused.push_back(static_cast<uint8_t*>(map));
    }
    map_ = unused.back();
    unused.pop_back();
    memset(map_ + page, kSurroundings, inner);
    data_ = flushWithEnd ? map_ + page + inner - offset - tail - size : map_ + page + offset;
}

GuardedBuffer::~GuardedBuffer()
{
    const std::lock_guard lock(unusedLock);
    unusedMaps[mapSize_].push_back(map_);
}

bool GuardedBuffer::surroundingsIntact() const
{
    const auto intact = [](const uint8_t* from, const uint8_t* to) {
        const size_t size = static_cast<size_t>(to - from);
        return size == 0 || (*from == kSurroundings && memcmp(from, from + 1, size - 1) == 0); // each as the next
    };
    return intact(map_ + pageSize(), data_) && intact(data_ + size_, map_ + mapSize_ - pageSize());
}

Draw::Draw(uint64_t seed, bool wholeRows)
    : purpose_(Purpose::Compare), seed_(seed), wholeRows_(wholeRows), random_{seed}
{
}

Draw::Draw(const Measurement& measurement, std::function<void(const std::function<void()>&)> timer)
    : purpose_(Purpose::Measure), measurement_(measurement), timer_(std::move(timer)), random_{1}
{
}

Extent Draw::extent(uint32_t minWidth, uint32_t minHeight, uint32_t leftOut)
{
    if (measures()) return measurement_.extent;
    const uint32_t beside = std::max(leftOut, std::min(minWidth - 1, kMostDerived)),
                   above = std::max(leftOut, std::min(minHeight - 1, kMostDerived));
    const auto widths = turningPoints(minWidth, beside, 4 * kLongestVector + beside + 1),
               heights = turningPoints(minHeight, above, 2 * kLongestVector + above + 1);
    Extent extent;
    if (sweeps()) {
        // Every width on a few rows, then every height on a vector and more.
        sizes_ = std::max(sizes_, widths.size() + heights.size());
        const size_t turn = (seed_ - 1) % (widths.size() + heights.size());
        extent = turn < widths.size() ? Extent{widths[turn], above + 2 + static_cast<uint32_t>(below(8))}
                                      : Extent{beside + kLongestVector + static_cast<uint32_t>(below(16)),
                                               heights[turn - widths.size()]};
    } else {
        const auto length = [&](uint32_t least, uint32_t usual, const std::vector<uint32_t>& points) -> uint32_t {
            constexpr uint32_t pieces[] = {256, 272, 288, 544, 1040, 2200}; // into which large images are cut
            switch (below(8)) {
            case 0: // the least sizes
                return least + static_cast<uint32_t>(below(4));
            case 1:
                return std::max(least, pieces[below(std::size(pieces))] + static_cast<uint32_t>(below(15)) - 7);
            case 2:
            case 3:
            case 4:
                return points[below(points.size())];
            default:
                return least + static_cast<uint32_t>(below(usual));
            }
        };
        extent = {length(minWidth, 150, widths), length(minHeight, 24, heights)};
        extent.height = std::max(minHeight, std::min(extent.height, kMaxArea / extent.width));
    }
    note("extent", std::to_string(extent.width) + "x" + std::to_string(extent.height));
    return extent;
}

uint32_t Draw::length(uint32_t least, uint32_t share, uint32_t leftOut)
{
    if (measures()) return measurement_.extent.width * measurement_.extent.height / share;
    const auto lengths = turningPoints(least, std::max(leftOut, 1u), 4 * kLongestVector + leftOut + 1);
    uint32_t length;
    if (sweeps()) {
        sizes_ = std::max(sizes_, lengths.size());
        length = lengths[(seed_ - 1) % lengths.size()];
    } else if (below(2) == 0) {
        length = lengths[below(lengths.size())];
    } else { // from a few to thousands
        length = least + static_cast<uint32_t>(below(uint64_t{1} << (1 + below(13))));
    }
    note("length", std::to_string(length));
    return length;
}

float Draw::real(const char* name, float low, float high, float typical)
{
    const float value =
        measures() || sweeps()
            ? typical
            : low + (high - low) * 0x1p-24F * static_cast<float>(static_cast<uint32_t>(random_() >> 40));
    note(name, std::to_string(value));
    return value;
}

void Draw::measure(void (*operation)(void*), void* captured)
{
    timer_([=] { operation(captured); });
}

void Draw::show(void* to, size_t size, Extent extent) const
{
    const auto& [shown, picture] = measurement_;
    if (picture != nullptr && extent.width == shown.width && extent.height == shown.height) {
        memcpy(to, picture, size);
        return;
    }
    static std::vector<uint64_t> noise;
    static std::mt19937_64 random(1);
    const size_t start = 8009 * buffers_.size(), end = start + size / sizeof(uint64_t) + 1;
    while (noise.size() < end)
        noise.push_back(random());
    memcpy(to, noise.data() + start, size);
}

void Draw::fillIntegers(uint8_t* row, uint32_t width, size_t elementSize, uint32_t y)
{
    const auto fillAs = [&](auto zero, auto valueAt) {
        for (uint32_t x = 0; x < width; ++x) {
            const auto value = static_cast<decltype(zero)>(valueAt(x));
            memcpy(row + sizeof value * x, &value, sizeof value);
        }
    };
    const auto fillWith = [&](auto valueAt) {
        elementSize == 1   ? fillAs(uint8_t{0}, valueAt)
        : elementSize == 2 ? fillAs(uint16_t{0}, valueAt)
        : elementSize == 4 ? fillAs(uint32_t{0}, valueAt)
                           : fillAs(uint64_t{0}, valueAt);
    };
    const auto eitherOf = [&](uint64_t one, uint64_t other) {
        uint64_t bits = 0;
        fillWith([&](uint32_t x) {
            bits = x % 64 == 0 ? random_() : bits >> 1;
            return (bits & 1) != 0 ? one : other;
        });
    };
    switch (content_) {
    case 0: // noise
    {
        const size_t size = elementSize * width, whole = size - size % sizeof(uint64_t);
        for (size_t i = 0; i < whole; i += sizeof(uint64_t)) {
            const uint64_t word = random_();
            memcpy(row + i, &word, sizeof word);
        }
        const uint64_t word = random_();
        memcpy(row + whole, &word, size - whole);
        break;
    }
    case 1: // extremes
        return eitherOf(0, ~uint64_t{0});
    case 2: // constant
        return fillWith([&](uint32_t) { return constant_; });
    case 3: // sparse: mostly constant
        return fillWith([&, next = below(80)](uint32_t x) mutable {
            if (x < next) return constant_;
            next = x + 1 + below(80);
            return random_();
        });
    case 4: // slopes
        return fillWith([&](uint32_t x) { return constant_ + 3 * x + 5 * y; });
    default: // the largest and smallest signed numbers
        return eitherOf(0x7FFFFFFF7FFF7F7F, 0x8000000080008080);
    }
}

void Draw::fillReals(float* row, uint32_t width, uint32_t y)
{
    const auto fillWith = [&](auto valueAt) {
        for (uint32_t x = 0; x < width; ++x)
            row[x] = static_cast<float>(valueAt(x));
    };
    // From -1 to below 1, two of each word that is drawn.
    auto unit = [this, word = uint64_t{0}](uint32_t x) mutable {
        word = x % 2 == 0 ? random_() : word << 32;
        return 0x1p-31 * static_cast<int32_t>(word >> 32);
    };
    switch (content_) {
    case 0:
        return fillWith([&](uint32_t x) { return 255 * unit(x); });
    case 1:
        return fillWith([&](uint32_t x) { return unit(x) < 0 ? 0 : 1e6; });
    case 2:
        return fillWith([&](uint32_t) { return static_cast<double>(constant_ % 256); });
    case 3:
        return fillWith(
            [&](uint32_t) { return below(40) == 0 ? 0x1p-31 * static_cast<int32_t>(random_() >> 32) : 0; });
    case 4:
        return fillWith([&](uint32_t x) { return 0.25 * x - 0.5 * y; });
    default: // from far below one to far above, down to where differences are denormal
        return fillWith([&](uint32_t x) {
            const double fraction = unit(x);
            return std::ldexp(fraction, static_cast<int>(below(250)) - 125);
        });
    }
}

uint8_t* Draw::addBuffer(const char* name, size_t size, size_t elementSize, size_t row, size_t padding)
{
    const bool flushWithEnd = measures() || below(4) != 0;
    const size_t offset = measures() ? 0 : elementSize * (below(3) == 0 ? below(17) : 0);
    buffers_.push_back({name, elementSize, row, row + padding,
                        std::make_unique<GuardedBuffer>(size, flushWithEnd, offset, wholeRows_ ? padding : 0)});
    constant_ = measures() ? 100 : random_();
    return buffers_.back().memory->data();
}

void Draw::setPattern()
{
    const GuardedBuffer& buffer = *buffers_.back().memory;
    for (size_t i = 0; i < buffer.size(); i += pattern.size())
        memcpy(buffer.data() + i, pattern.data(), std::min(pattern.size(), buffer.size() - i));
}

void Draw::note(const char* name, const std::string& value)
{
    if (measures()) return;
    if (!description_.empty()) description_ += ", ";
    description_ += name;
    description_ += ' ';
    description_ += value;
}

std::vector<uint8_t> Draw::outcome() const
{
    size_t size = results_.size();
    for (const Buffer& buffer : buffers_)
        size += buffer.memory->size();
    std::vector<uint8_t> all;
    all.reserve(size);
    all = results_;
    for (const auto& [name, elementSize, row, stride, memory] : buffers_)
        all.insert(all.end(), memory->data(), memory->data() + memory->size());
    return all;
}

std::string Draw::difference(const std::vector<uint8_t>& expected, const std::vector<uint8_t>& other) const
{
    if (expected == other) return "";
    if (expected.size() != other.size()) return "results of another size";
    std::string all;
    size_t begin = 0;
    const auto compare = [&](size_t size, auto place) {
        const uint8_t* const first = expected.data() + begin;
        const auto [e, o] = std::mismatch(first, first + size, other.data() + begin);
        const auto at = static_cast<size_t>(e - first);
        if (at < size)
            all +=
                (all.empty() ? "" : "; ") + place(at) + ": " + std::to_string(*o) + ", not " + std::to_string(*e);
        begin += size;
    };
    compare(results_.size(), [](size_t at) { return "result, byte " + std::to_string(at); });
    for (const Buffer& buffer : buffers_) {
        compare(buffer.memory->size(), [&](size_t at) {
            const size_t x = at % buffer.stride;
            return buffer.name + (", row " + std::to_string(at / buffer.stride)) +
                   (x < buffer.row ? ", column " + std::to_string(x / buffer.elementSize)
                                   : ", byte " + std::to_string(x - buffer.row) + " beyond its end");
        });
    }
    return all;
}

bool Draw::didSomething() const
{
    if (!results_.empty()) return true;
    for (size_t index : outputs_) {
        const GuardedBuffer& buffer = *buffers_[index].memory;
        for (size_t i = 0; i < buffer.size(); i += pattern.size()) {
            if (!holdsPattern(buffer, i, std::min(pattern.size(), buffer.size() - i))) return true;
        }
    }
    return false;
}

std::string Draw::overrun() const
{
    for (const Buffer& buffer : buffers_) {
        if (!buffer.memory->surroundingsIntact()) return buffer.name;
    }
    return "";
}

size_t Draw::bytesMoved() const
{
    constexpr size_t kLine = 64;
    size_t bytes = bytesRead_;
    for (const size_t index : outputs_) {
        const GuardedBuffer& buffer = *buffers_[index].memory;
        for (size_t start = 0; start < buffer.size(); start += kLine) {
            const size_t end = std::min(start + kLine, buffer.size());
            if (!holdsPattern(buffer, start, end - start)) bytes += end - start;
        }
    }
    return bytes;
}

uint64_t digestOf(const std::vector<uint8_t>& outcome, uint64_t before)
{
    uint64_t digest = before;
    const auto add = [&](uint32_t word) {
        // What looks like a number that is none counts as one and the same: processors choose its sign.
        if ((word & 0x7FFFFFFF) > 0x7F800000) word = 0x7FC00000;
        digest = (digest ^ word) * 1099511628211u;
    };
    uint32_t word = 0;
    const size_t size = outcome.size(), whole = size - size % sizeof word;
    for (size_t i = 0; i < whole; i += sizeof word) {
        memcpy(&word, outcome.data() + i, sizeof word);
        add(word);
    }
    word = 0;
    if (whole < size) memcpy(&word, outcome.data() + whole, size - whole);
    add(word);
    return digest;
}

} // namespace odx::test
