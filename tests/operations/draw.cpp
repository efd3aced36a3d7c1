#include "operations/draw.h"

#include <cmath>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

namespace odx::test
{

namespace
{

constexpr uint8_t kSurroundings = 0xC3;
constexpr uint32_t kMaxArea = 20000;

size_t pageSize()
{
    static const size_t size = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

} // namespace

GuardedBuffer::GuardedBuffer(size_t size, bool flushWithEnd, size_t offset, size_t tail) : size_(size)
{
    const size_t page = pageSize();
    const size_t inner = std::max<size_t>(size + offset + tail + page - 1, page) / page * page;
    mapSize_ = inner + 2 * page;
    void* const map = mmap(nullptr, mapSize_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (map == MAP_FAILED || mprotect(static_cast<uint8_t*>(map) + page, inner, PROT_READ | PROT_WRITE) != 0)
        abort();
    map_ = static_cast<uint8_t*>(map);
    memset(map_ + page, kSurroundings, inner);
    data_ = flushWithEnd ? map_ + page + inner - offset - tail - size : map_ + page + offset;
}

GuardedBuffer::~GuardedBuffer()
{
    munmap(map_, mapSize_);
}

bool GuardedBuffer::surroundingsIntact() const
{
    const auto intact = [](const uint8_t* from, const uint8_t* to) {
        return std::all_of(from, to, [](uint8_t byte) { return byte == kSurroundings; });
    };
    return intact(map_ + pageSize(), data_) && intact(data_ + size_, map_ + mapSize_ - pageSize());
}

Draw::Draw(uint64_t seed, bool wholeRows) : purpose_(Purpose::Compare), wholeRows_(wholeRows), random_(seed) {}

Draw::Draw(const Measurement& measurement, std::function<void(const std::function<void()>&)> timer)
    : purpose_(Purpose::Measure), measurement_(measurement), timer_(std::move(timer)), random_(1)
{
}

Extent Draw::extent(uint32_t minWidth, uint32_t minHeight)
{
    if (measures()) return measurement_.extent;
    const auto around = [&](uint32_t least, std::initializer_list<uint32_t> lengths) {
        return std::max(least, lengths.begin()[below(lengths.size())] + static_cast<uint32_t>(below(15)) - 7);
    };
    const auto length = [&](uint32_t least, uint32_t usual) -> uint32_t {
        switch (below(8)) {
        case 0: // the least sizes
            return least + static_cast<uint32_t>(below(4));
        case 1: // around a multiple of a vector's width
            return around(least, {8, 16, 32, 48, 64, 96, 128, 192, 256});
        case 2: // beyond the pieces into which large images are cut
            return around(least, {256, 272, 288, 544, 1040, 2200});
        default:
            return least + static_cast<uint32_t>(below(usual));
        }
    };
    Extent extent = {length(minWidth, 150), length(minHeight, 24)};
    extent.height = std::max(minHeight, std::min(extent.height, kMaxArea / extent.width));
    note("extent", std::to_string(extent.width) + "x" + std::to_string(extent.height));
    return extent;
}

float Draw::real(const char* name, float low, float high, float typical)
{
    const float value = measures() ? typical : std::uniform_real_distribution<float>(low, high)(random_);
    note(name, std::to_string(value));
    return value;
}

uint64_t Draw::pixel(uint32_t x, uint32_t y)
{
    switch (content_) {
    case 0: // noise
        return random_();
    case 1: // extremes
        return below(2) == 0 ? 0 : ~uint64_t{0};
    case 2: // constant
        return constant_;
    case 3: // sparse: mostly constant
        return below(40) == 0 ? random_() : constant_;
    case 4: // slopes
        return constant_ + 3 * x + 5 * y;
    default: // the largest and smallest signed numbers
        return below(2) == 0 ? 0x7FFFFFFF7FFF7F7Full : 0x8000000080008080ull;
    }
}

double Draw::realPixel(uint32_t x, uint32_t y)
{
    std::uniform_real_distribution<double> unit(-1, 1);
    switch (content_) {
    case 0:
        return 255 * unit(random_);
    case 1:
        return below(2) == 0 ? 0 : 1e6;
    case 2:
        return static_cast<double>(constant_ % 256);
    case 3:
        return below(40) == 0 ? unit(random_) : 0;
    case 4:
        return 0.25 * x - 0.5 * y;
    default: { // from far below one to far above, down to where differences are denormal
        const double fraction = unit(random_);
        return std::ldexp(fraction, static_cast<int>(below(250)) - 125);
    }
    }
}

uint8_t* Draw::addBuffer(size_t size, size_t elementSize, size_t padding)
{
    const bool flushWithEnd = measures() || below(4) != 0;
    const size_t offset = measures() ? 0 : elementSize * (below(3) == 0 ? below(17) : 0);
    buffers_.push_back(std::make_unique<GuardedBuffer>(size, flushWithEnd, offset, wholeRows_ ? padding : 0));
    constant_ = measures() ? 100 : random_();
    return buffers_.back()->data();
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
    std::vector<uint8_t> all = results_;
    for (const auto& buffer : buffers_)
        all.insert(all.end(), buffer->data(), buffer->data() + buffer->size());
    return all;
}

bool Draw::didSomething() const
{
    if (!results_.empty()) return true;
    for (size_t index : outputs_) {
        const GuardedBuffer& buffer = *buffers_[index];
        for (size_t i = 0; i < buffer.size(); ++i) {
            if (buffer.data()[i] != static_cast<uint8_t>(0xA5 + 7 * i)) return true;
        }
    }
    return false;
}

bool Draw::surroundingsIntact() const
{
    return std::all_of(buffers_.begin(), buffers_.end(),
                       [](const auto& buffer) { return buffer->surroundingsIntact(); });
}

size_t Draw::bufferBytes() const
{
    size_t bytes = 0;
    for (const auto& buffer : buffers_)
        bytes += buffer->size();
    return bytes;
}

} // namespace odx::test
