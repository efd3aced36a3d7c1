// Pictures in memory: what is loaded and shown (RGB), and the planes that the library works on.
#ifndef ONDRIX_EXAMPLES_PICTURE_H
#define ONDRIX_EXAMPLES_PICTURE_H

#include <ondrix.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace demo
{

struct Rgb {
    uint8_t r, g, b;
};

// The nearest byte to a value of 0 to 255.
inline uint8_t nearestByte(float value)
{
    return static_cast<uint8_t>(std::lround(value));
}

struct Point {
    int x, y;
};

struct Rectangle {
    int x, y, width, height;

    int right() const { return x + width; }
    int bottom() const { return y + height; }
    bool holds(Point point) const
    {
        return point.x >= x && point.x < right() && point.y >= y && point.y < bottom();
    }
    bool meets(const Rectangle& other) const
    {
        return x < other.right() && other.x < right() && y < other.bottom() && other.y < bottom();
    }
    Rectangle grown(int by) const { return {x - by, y - by, width + 2 * by, height + 2 * by}; }
};

// A rectangle of at most this size about a point, moved to lie inside width x height.
Rectangle windowAbout(int x, int y, int windowWidth, int windowHeight, int width, int height);

class Picture
{
public:
    Picture() = default;
    Picture(int width, int height, Rgb fill = {0, 0, 0})
        : width_(width), height_(height), pixels_(static_cast<size_t>(width) * static_cast<size_t>(height), fill)
    {
    }

    int width() const { return width_; }
    int height() const { return height_; }
    bool empty() const { return pixels_.empty(); }
    Rgb& at(int x, int y) { return pixels_[static_cast<size_t>(y) * static_cast<size_t>(width_) + x]; }
    const Rgb& at(int x, int y) const { return pixels_[static_cast<size_t>(y) * static_cast<size_t>(width_) + x]; }
    const Rgb* data() const { return pixels_.data(); }
    Rgb* data() { return pixels_.data(); }

private:
    int width_ = 0, height_ = 0;
    std::vector<Rgb> pixels_;
};

// Memory for images comes from the library, which aligns it, and shares it with the DSP while a session is open.
template <class T>
struct ImageMemory {
    using value_type = T;

    ImageMemory() = default;
    template <class U>
    ImageMemory(const ImageMemory<U>&)
    {
    }
    T* allocate(size_t count)
    {
        void* const block = odxMemAlloc(count * sizeof(T), 128);
        if (block == nullptr) abort();
        return static_cast<T*>(block);
    }
    void deallocate(T* block, size_t) { odxMemFree(block); }
    bool operator==(const ImageMemory&) const { return true; }
    bool operator!=(const ImageMemory&) const { return false; }
};

// One channel. Rows start at multiples of 16 bytes.
template <class T>
class Plane
{
    static constexpr unsigned kPixelsPer16Bytes = 16 / sizeof(T);

public:
    Plane(unsigned width, unsigned height, T fill = T())
        : width_(width), height_(height),
          pitch_((width + kPixelsPer16Bytes - 1) / kPixelsPer16Bytes * kPixelsPer16Bytes),
          pixels_(static_cast<size_t>(pitch_) * height, fill)
    {
    }
    template <class PixelAt>
    static Plane from(unsigned width, unsigned height, PixelAt pixelAt)
    {
        Plane plane(width, height);
        for (unsigned y = 0; y < height; ++y)
            for (unsigned x = 0; x < width; ++x)
                plane.at(x, y) = static_cast<T>(pixelAt(x, y));
        return plane;
    }

    unsigned width() const { return width_; }
    unsigned height() const { return height_; }
    unsigned stride() const
    {
        return pitch_ * static_cast<unsigned>(sizeof(T));
    } // in bytes, as the library has it
    T* data() { return pixels_.data(); }
    const T* data() const { return pixels_.data(); }
    T& at(unsigned x, unsigned y) { return pixels_[static_cast<size_t>(y) * pitch_ + x]; }
    const T& at(unsigned x, unsigned y) const { return pixels_[static_cast<size_t>(y) * pitch_ + x]; }
    size_t bytes() const { return pixels_.size() * sizeof(T); }

private:
    unsigned width_, height_, pitch_;
    std::vector<T, ImageMemory<T>> pixels_;
};

// A picture from a plane, each pixel shown as colourOf(value).
template <class T, class ColourOf>
Picture pictureOf(const Plane<T>& plane, ColourOf colourOf)
{
    Picture picture(static_cast<int>(plane.width()), static_cast<int>(plane.height()));
    for (unsigned y = 0; y < plane.height(); ++y)
        for (unsigned x = 0; x < plane.width(); ++x)
            picture.at(static_cast<int>(x), static_cast<int>(y)) = colourOf(plane.at(x, y));
    return picture;
}

Picture pictureOf(const Plane<uint8_t>& grey);
Plane<uint8_t> greyOf(const Picture& picture);

// The part of the picture inside the rectangle, each pixel the mean of `factor` x `factor` pixels.
Picture reduced(const Picture& picture, const Rectangle& part, int factor);
// The whole picture, made to fit by averaging; smaller pictures are enlarged by a whole factor.
Picture fitted(const Picture& picture, int width, int height);
// The part of the picture inside the rectangle, each pixel repeated `factor` x `factor` times.
Picture enlarged(const Picture& picture, const Rectangle& part, int factor);

// Where the picture has the most detail: corners and texture rather than a single edge.
Rectangle mostDetailed(const Plane<uint8_t>& grey, int width, int height);

} // namespace demo

#endif
