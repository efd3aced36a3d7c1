#include "demo/sections.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace demo
{

namespace
{

// Pixels of three bytes.
class Pixels
{
public:
    Pixels(unsigned width, unsigned height) : width_(width), bytes_(3 * width, height) {}

    unsigned width() const { return width_; }
    unsigned height() const { return bytes_.height(); }
    unsigned stride() const { return bytes_.stride(); }
    uint8_t* data() { return bytes_.data(); }
    const uint8_t* data() const { return bytes_.data(); }
    uint8_t* at(unsigned x, unsigned y) { return &bytes_.at(3 * x, y); }
    const uint8_t* at(unsigned x, unsigned y) const { return &bytes_.at(3 * x, y); }
    std::vector<Buffer> buffers() { return {{bytes_.data(), bytes_.bytes()}}; }
    size_t count() const { return size_t{width_} * bytes_.height(); }

private:
    unsigned width_;
    Plane<uint8_t> bytes_;
};

// A frame as cameras give it: luma, and Cb and Cr in turns for each 2 x 2 pixels.
struct Frame {
    Frame(unsigned width, unsigned height) : luma(width, height), chroma(width, height / 2) {}

    std::vector<Buffer> buffers() { return {{luma.data(), luma.bytes()}, {chroma.data(), chroma.bytes()}}; }

    Plane<uint8_t> luma, chroma;
};

template <class ColourOf>
Picture pictureOf(const Pixels& pixels, ColourOf colourOf)
{
    Picture picture(static_cast<int>(pixels.width()), static_cast<int>(pixels.height()));
    for (unsigned y = 0; y < pixels.height(); ++y)
        for (unsigned x = 0; x < pixels.width(); ++x)
            picture.at(static_cast<int>(x), static_cast<int>(y)) = colourOf(pixels.at(x, y));
    return picture;
}

Rgb asRgb(const uint8_t* pixel)
{
    return {pixel[0], pixel[1], pixel[2]};
}

// Hue, saturation and value, each of 0 to 255.
Rgb rgbOfHsv(const uint8_t* pixel)
{
    const float hue = static_cast<float>(pixel[0]) * 6 / 255; // sixths of a turn
    const float value = pixel[2], least = value * (1 - static_cast<float>(pixel[1]) / 255);
    const auto channel = [&](float from) {
        const float distance = std::abs(std::remainder(hue - from, 6.0F)); // from the channel's own hue
        const float part = std::clamp(2 - distance, 0.0F, 1.0F);
        return nearestByte(least + (value - least) * part);
    };
    return {channel(0), channel(2), channel(4)};
}

Rgb falseColour(const uint8_t* chroma)
{
    return {chroma[1], static_cast<uint8_t>(255 - (chroma[0] + chroma[1]) / 2), chroma[0]};
}

int largestDifference(const Plane<uint8_t>& a, const Plane<uint8_t>& b)
{
    int largest = 0;
    for (unsigned y = 0; y < a.height(); ++y)
        for (unsigned x = 0; x < a.width(); ++x)
            largest = std::max(largest, std::abs(a.at(x, y) - b.at(x, y)));
    return largest;
}

int largestDifference(const Pixels& a, const Picture& b)
{
    int largest = 0;
    for (unsigned y = 0; y < a.height(); ++y) {
        for (unsigned x = 0; x < a.width(); ++x) {
            const Rgb there = b.at(static_cast<int>(x), static_cast<int>(y));
            const uint8_t other[] = {there.r, there.g, there.b};
            for (int i = 0; i < 3; ++i)
                largest = std::max(largest, std::abs(a.at(x, y)[i] - other[i]));
        }
    }
    return largest;
}

// The picture's pixels; a last odd column or row is left out, since chroma comes for pairs.
Pixels evenPartOf(const Picture& picture)
{
    Pixels pixels(static_cast<unsigned>(picture.width()) & ~1U, static_cast<unsigned>(picture.height()) & ~1U);
    for (unsigned y = 0; y < pixels.height(); ++y) {
        for (unsigned x = 0; x < pixels.width(); ++x) {
            const Rgb& from = picture.at(static_cast<int>(x), static_cast<int>(y));
            uint8_t* const to = pixels.at(x, y);
            to[0] = from.r;
            to[1] = from.g;
            to[2] = from.b;
        }
    }
    return pixels;
}

using Conversion = void (*)(const uint8_t* src, unsigned width, unsigned height, unsigned srcStride, uint8_t* dst,
                            unsigned dstStride);

Pixels showConverted(Stage& stage, const char* title, const char* name, Conversion conversion, const Pixels& from,
                     Rgb (*colourOf)(const uint8_t*))
{
    Pixels to(from.width(), from.height());
    const Outcome outcome = stage.run(name, to.buffers(), to.count(), [&] {
        return done(conversion, from.data(), from.width(), from.height(), from.stride(), to.data(), to.stride());
    });
    stage.show(title, outcome, pictureOf(to, colourOf));
    return to;
}

Frame showAsFrame(Stage& stage, const char* title, const Pixels& bgr)
{
    Frame frame(bgr.width(), bgr.height());
    const Outcome outcome = stage.run("odxColorRGB888ToYCbCr420PseudoPlanaru8", frame.buffers(), bgr.count(), [&] {
        return done(odxColorRGB888ToYCbCr420PseudoPlanaru8, bgr.data(), bgr.width(), bgr.height(), bgr.stride(),
                    frame.luma.data(), frame.chroma.data(), frame.luma.stride(), frame.chroma.stride());
    });
    stage.show(title, outcome, pictureOf(frame.luma));
    return frame;
}

Pixels showAsRgb(Stage& stage, const char* title, const Frame& frame)
{
    Pixels rgb(frame.luma.width(), frame.luma.height());
    const Outcome outcome = stage.run("odxColorYCbCr420PseudoPlanarToRGB888u8", rgb.buffers(), rgb.count(), [&] {
        return done(odxColorYCbCr420PseudoPlanarToRGB888u8, frame.luma.data(), frame.chroma.data(), rgb.width(),
                    rgb.height(), frame.luma.stride(), frame.chroma.stride(), rgb.data(), rgb.stride());
    });
    stage.show(title, outcome, pictureOf(rgb, asRgb));
    return rgb;
}

Picture chromaOf(const Frame& frame)
{
    const Plane<uint8_t>& chroma = frame.chroma;
    Picture picture(static_cast<int>(chroma.width()), static_cast<int>(chroma.height() * 2));
    for (unsigned y = 0; y < chroma.height() * 2; ++y)
        for (unsigned x = 0; x < chroma.width(); ++x)
            picture.at(static_cast<int>(x), static_cast<int>(y)) = falseColour(&chroma.at(x & ~1U, y / 2));
    return picture;
}

} // namespace

void showColours(Stage& stage)
{
    stage.beginSection("Colour conversion", "a camera's frame to RGB and HSV, and back");
    const Pixels rgb = evenPartOf(stage.picture());
    stage.showSource("The picture", "in colour", stage.picture());
    const Pixels bgr = showConverted(stage, "RGB to BGR", NAMED(odxColorRGB888ToBGR888u8), rgb, asRgb);
    const Frame frame = showAsFrame(stage, "A camera's frame: luma", bgr);
    stage.showSource("The frame's chroma", "one for 2 x 2 pixels", chromaOf(frame));

    const Pixels decoded = showAsRgb(stage, "The frame in RGB", frame);
    const Pixels hsv =
        showConverted(stage, "HSV, as if it were RGB", NAMED(odxColorRGB888ToHSV888u8), decoded, asRgb);
    const Picture fromHsv = pictureOf(hsv, rgbOfHsv);
    stage.showSource("HSV turned back", "by this program", fromHsv);
    Pixels decodedBgr(decoded.width(), decoded.height());
    odxColorRGB888ToBGR888u8(decoded.data(), decoded.width(), decoded.height(), decoded.stride(),
                             decodedBgr.data(), decodedBgr.stride());
    const Frame again = showAsFrame(stage, "A frame again: luma", decodedBgr);

    using std::to_string;
    stage.addFact("frame", "to RGB and back: off by at most " +
                               to_string(largestDifference(frame.luma, again.luma)) + " of 255 in luma, " +
                               to_string(largestDifference(frame.chroma, again.chroma)) + " in chroma");
    stage.addFact("HSV", "from RGB and back: off by at most " + to_string(largestDifference(decoded, fromHsv)) +
                             " of 255");
}

} // namespace demo
