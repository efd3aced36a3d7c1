#include "demo/sections.h"

#include <algorithm>

namespace demo
{

namespace
{

struct Operation {
    const char* title;
    const char* name;
    void (*operation)(const uint8_t* src1, unsigned srcWidth, unsigned srcHeight, unsigned src1Stride,
                      const uint8_t* src2, unsigned src2Stride, uint8_t* dst, unsigned dstStride);
};

constexpr Operation kOperations[] = {
    {"Absolute difference", NAMED(odxAbsDiffu8)},
    {"Signed difference", NAMED(odxImageDiffu8_v2)},
};

// What a camera sees that has moved a little to the left and up, and a little brighter.
Plane<uint8_t> secondView(const Plane<uint8_t>& view)
{
    constexpr unsigned kRight = 3, kDown = 1, kBrighter = 6;
    return Plane<uint8_t>::from(view.width(), view.height(), [&](unsigned x, unsigned y) {
        const unsigned level = view.at(x < kRight ? 0 : x - kRight, y < kDown ? 0 : y - kDown);
        return static_cast<uint8_t>(std::min(level + kBrighter, 255U));
    });
}

} // namespace

void showDifferences(Stage& stage)
{
    const Plane<uint8_t>& first = stage.grey();
    const Plane<uint8_t> second = secondView(first);
    stage.beginSection("Differences of two views", "the picture, and what a camera sees that has moved a little");
    stage.showSource("The second view", "3 pixels to the right, 1 down, brighter by 6", pictureOf(second));
    for (const Operation& o : kOperations) {
        Plane<uint8_t> difference(first.width(), first.height());
        const Outcome outcome = stage.run(o.name, difference, [&] {
            return done(o.operation, second.data(), second.width(), second.height(), second.stride(), first.data(),
                        first.stride(), difference.data(), difference.stride());
        });
        stage.show(o.title, outcome, pictureOf(difference));
    }
    Plane<uint8_t> mean(first.width(), first.height());
    const Outcome outcome = stage.run("odxAddWeightedu8", mean, [&] {
        return done(odxAddWeightedu8, first.data(), first.width(), first.height(), first.stride(), second.data(),
                    second.stride(), 0.5F, 0.5F, 0.0F, mean.data(), mean.stride());
    });
    stage.show("Mean of both", outcome, pictureOf(mean));
}

} // namespace demo
