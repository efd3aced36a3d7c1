#include "common/canvas.h"

#include "common/font.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace demo
{

namespace
{

// One bit a pixel, with one empty pixel assumed all around.
class Bitmap
{
public:
    Bitmap(int width, int height) : width_(width), height_(height), bits_(index(0, height)) {}

    int width() const { return width_; }
    int height() const { return height_; }
    bool get(int x, int y) const { return x >= 0 && y >= 0 && x < width_ && y < height_ && bits_[index(x, y)]; }
    void set(int x, int y, bool value) { bits_[index(x, y)] = value; }

private:
    size_t index(int x, int y) const
    {
        return static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x);
    }

    int width_, height_;
    std::vector<bool> bits_;
};

// Twice the size. A quarter pixel joins its two outer neighbours where these agree against the others, which makes
// stairs into slopes.
Bitmap doubled(const Bitmap& bitmap)
{
    Bitmap twice(bitmap.width() * 2, bitmap.height() * 2);
    for (int y = 0; y < bitmap.height(); ++y) {
        for (int x = 0; x < bitmap.width(); ++x) {
            const bool here = bitmap.get(x, y);
            const bool up = bitmap.get(x, y - 1), down = bitmap.get(x, y + 1);
            const bool left = bitmap.get(x - 1, y), right = bitmap.get(x + 1, y);
            const bool slope = up != down && left != right;
            twice.set(2 * x, 2 * y, slope && up == left ? up : here);
            twice.set(2 * x + 1, 2 * y, slope && up == right ? up : here);
            twice.set(2 * x, 2 * y + 1, slope && down == left ? down : here);
            twice.set(2 * x + 1, 2 * y + 1, slope && down == right ? down : here);
        }
    }
    return twice;
}

constexpr int kFine = 8; // letters are drawn this much larger than the font, then averaged

Bitmap fineLetter(char letter)
{
    Bitmap bitmap(font::kWidth, font::kHeight);
    for (int y = 0; y < font::kHeight; ++y)
        for (int x = 0; x < font::kWidth; ++x)
            bitmap.set(x, y, font::isSet(letter, x, y));
    for (int size = 1; size < kFine; size *= 2)
        bitmap = doubled(bitmap);
    return bitmap;
}

uint8_t mixed(uint8_t under, uint8_t over, int part, int whole)
{
    return static_cast<uint8_t>((under * (whole - part) + over * part + whole / 2) / whole);
}

void mix(Picture& picture, int x, int y, Rgb colour, int part, int whole)
{
    if (x < 0 || y < 0 || x >= picture.width() || y >= picture.height()) return;
    Rgb& pixel = picture.at(x, y);
    pixel = {mixed(pixel.r, colour.r, part, whole), mixed(pixel.g, colour.g, part, whole),
             mixed(pixel.b, colour.b, part, whole)};
}

// Draws a fine bitmap reduced by `step`: each pixel by the part of it that is set.
void stamp(Picture& picture, int left, int top, const Bitmap& fine, int step, Rgb colour)
{
    for (int y = 0; y < fine.height() / step; ++y) {
        for (int x = 0; x < fine.width() / step; ++x) {
            int set = 0;
            for (int i = 0; i < step * step; ++i)
                set += fine.get(x * step + i % step, y * step + i / step);
            mix(picture, left + x, top + y, colour, set, step * step);
        }
    }
}

// A line of the tick and the cross, from the fine pixel (x, y) in the direction (dx, dy), both +1 or -1.
void slope(Bitmap& fine, int x, int y, int dx, int dy, int length)
{
    constexpr int kPen = 7;
    for (int i = 0; i < length; ++i)
        for (int j = 0; j < kPen * kPen; ++j)
            fine.set(x + i * dx + j % kPen, y + i * dy + j / kPen, true);
}

size_t breakBefore(const std::string& text, size_t letters)
{
    const size_t blank = text.rfind(' ', letters);
    if (blank != std::string::npos && blank > 0) return blank;
    for (size_t i = letters; i > letters / 2; --i)
        if (isupper(static_cast<unsigned char>(text[i]))) return i;
    return letters;
}

} // namespace

int textWidth(const std::string& text, TextSize size)
{
    return text.empty() ? 0 : (static_cast<int>(text.size()) * font::kPitch - 1) * static_cast<int>(size);
}

std::vector<std::string> wrapped(const std::string& text, size_t letters)
{
    std::vector<std::string> lines;
    std::string rest = text;
    while (rest.size() > letters) {
        const size_t end = breakBefore(rest, letters);
        lines.push_back(rest.substr(0, end));
        rest = rest.substr(rest[end] == ' ' ? end + 1 : end);
    }
    lines.push_back(rest);
    return lines;
}

void fill(Picture& picture, const Rectangle& area, Rgb colour)
{
    const int right = std::min(area.right(), picture.width()), bottom = std::min(area.bottom(), picture.height());
    for (int y = std::max(area.y, 0); y < bottom; ++y)
        for (int x = std::max(area.x, 0); x < right; ++x)
            picture.at(x, y) = colour;
}

void frame(Picture& picture, const Rectangle& area, int thickness, Rgb colour)
{
    fill(picture, {area.x, area.y, area.width, thickness}, colour);
    fill(picture, {area.x, area.bottom() - thickness, area.width, thickness}, colour);
    fill(picture, {area.x, area.y, thickness, area.height}, colour);
    fill(picture, {area.right() - thickness, area.y, thickness, area.height}, colour);
}

void place(Picture& picture, int left, int top, const Picture& other)
{
    for (int y = 0; y < other.height(); ++y)
        for (int x = 0; x < other.width(); ++x)
            mix(picture, left + x, top + y, other.at(x, y), 1, 1);
}

void write(Picture& picture, int x, int y, TextSize size, Rgb colour, const std::string& text)
{
    const int pixels = static_cast<int>(size);
    for (const char letter : text) {
        if (letter != ' ') stamp(picture, x, y, fineLetter(letter), kFine / pixels, colour);
        x += font::kPitch * pixels;
    }
}

void writeRight(Picture& picture, int right, int y, TextSize size, Rgb colour, const std::string& text)
{
    write(picture, right - textWidth(text, size), y, size, colour, text);
}

void drawTick(Picture& picture, int x, int y, Rgb colour)
{
    Bitmap fine(64, 56);
    slope(fine, 2, 28, 1, 1, 18);
    slope(fine, 20, 46, 1, -1, 38);
    stamp(picture, x, y, fine, 4, colour);
}

void drawCross(Picture& picture, int x, int y, Rgb colour)
{
    Bitmap fine(64, 56);
    slope(fine, 8, 4, 1, 1, 42);
    slope(fine, 8, 45, 1, -1, 42);
    stamp(picture, x, y, fine, 4, colour);
}

} // namespace demo
