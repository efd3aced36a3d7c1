#include "demo/sections.h"

#include <string>

namespace demo
{

namespace
{

Plane<uint8_t> triplesOf(const Picture& picture)
{
    return Plane<uint8_t>::from(static_cast<unsigned>(3 * picture.width()),
                                static_cast<unsigned>(picture.height()), [&](unsigned x, unsigned y) {
                                    const Rgb& c = picture.at(static_cast<int>(x / 3), static_cast<int>(y));
                                    return x % 3 == 0 ? c.r : x % 3 == 1 ? c.g : c.b;
                                });
}

Picture pictureOfTriples(const Plane<uint8_t>& plane)
{
    Picture picture(static_cast<int>(plane.width() / 3), static_cast<int>(plane.height()));
    for (unsigned y = 0; y < plane.height(); ++y)
        for (unsigned x = 0; x < plane.width() / 3; ++x)
            picture.at(static_cast<int>(x), static_cast<int>(y)) = {plane.at(3 * x, y), plane.at(3 * x + 1, y),
                                                                    plane.at(3 * x + 2, y)};
    return picture;
}

// As large as fits a tile.
Picture wholeOf(const Picture& picture)
{
    return fitted(picture, Sheet::kTileWidth, Sheet::kTileHeight);
}

Outcome warp(const Stage& stage, const Plane<uint8_t>& from, Plane<uint8_t>& to, const float* matrix)
{
    return stage.run("odx3ChannelWarpPerspectiveu8_v2", to, [&] {
        return done(odx3ChannelWarpPerspectiveu8_v2, from.data(), from.width() / 3, from.height(), from.stride(),
                    to.data(), to.width() / 3, to.height(), to.stride(), matrix);
    });
}

// Maps that draw every point in toward the middle, or push it out again.
struct Lens {
    Plane<float> x, y;

    Lens(unsigned width, unsigned height, float strength) : x(width, height), y(width, height)
    {
        const float middleX = static_cast<float>(width - 1) / 2, middleY = static_cast<float>(height - 1) / 2;
        const float unit = 1 / (middleX * middleX + middleY * middleY);
        for (unsigned row = 0; row < height; ++row) {
            for (unsigned column = 0; column < width; ++column) {
                const float u = static_cast<float>(column) - middleX, v = static_cast<float>(row) - middleY;
                const float factor = 1 + strength * (u * u + v * v) * unit;
                x.at(column, row) = middleX + u * factor;
                y.at(column, row) = middleY + v * factor;
            }
        }
    }
};

Outcome remap(const Stage& stage, const Plane<uint8_t>& from, Plane<uint8_t>& to, const Lens& lens)
{
    return stage.run("odxRemapu8", to, [&] {
        return odxRemapu8(from.data(), from.width(), from.height(), from.stride(), to.data(), to.width(),
                          to.height(), to.stride(), lens.x.data(), lens.y.data(), lens.x.stride(),
                          ONDRIX_INTERPOLATION_BILINEAR);
    });
}

} // namespace

void showPage(Stage& stage)
{
    const auto width = static_cast<float>(stage.picture().width() - 1),
               height = static_cast<float>(stage.picture().height() - 1);
    // The picture as a page that lies askew, and the page's corners on the photograph.
    const float page[] = {0, 0, width, 0, width, height, 0, height};
    const float corners[] = {0.18f * width, 0.10f * height, 0.86f * width, 0.24f * height,
                             0.95f * width, 0.90f * height, 0.05f * width, 0.78f * height};
    float askew[9], straight[9];
    odxGetPerspectiveTransformf32(corners, page, askew);
    odxGetPerspectiveTransformf32(page, corners, straight);

    const Plane<uint8_t> original = triplesOf(stage.picture());
    Plane<uint8_t> photograph(original.width(), original.height()), result(original.width(), original.height());
    stage.beginSection("A page, straightened", "the matrix comes from the page's four corners");
    const Outcome laid = warp(stage, original, photograph, askew);
    const Picture photographShown = wholeOf(pictureOfTriples(photograph));
    const float scale = static_cast<float>(photographShown.width() - 1) / width;
    std::vector<Point> marks;
    marks.reserve(4);
    for (int i = 0; i < 4; ++i)
        marks.push_back({static_cast<int>(scale * corners[2 * i]), static_cast<int>(scale * corners[2 * i + 1])});
    stage.show("As a camera sees it", laid, photographShown, marks);
    const Outcome straightened = warp(stage, photograph, result, straight);
    stage.show("Straightened", straightened, wholeOf(pictureOfTriples(result)));
}

void showLens(Stage& stage)
{
    const Plane<uint8_t>& grey = stage.grey();
    constexpr float kStrength = 0.25f;
    const Lens bent(grey.width(), grey.height(), kStrength);
    // The inverse of u * (1 + k * u^2), from the other side: a few steps of a fixed point.
    Lens straight(grey.width(), grey.height(), 0);
    const float middleX = static_cast<float>(grey.width() - 1) / 2,
                middleY = static_cast<float>(grey.height() - 1) / 2;
    const float unit = 1 / (middleX * middleX + middleY * middleY);
    for (unsigned y = 0; y < grey.height(); ++y) {
        for (unsigned x = 0; x < grey.width(); ++x) {
            const float u = static_cast<float>(x) - middleX, v = static_cast<float>(y) - middleY;
            float factor = 1;
            for (int i = 0; i < 30; ++i)
                factor = 1 / (1 + kStrength * factor * factor * (u * u + v * v) * unit);
            straight.x.at(x, y) = middleX + u * factor;
            straight.y.at(x, y) = middleY + v * factor;
        }
    }
    Plane<uint8_t> distorted(grey.width(), grey.height()), result(grey.width(), grey.height());
    stage.beginSection("A lens, corrected", "maps of coordinates remove what the lens bends");
    const Outcome bending = remap(stage, grey, distorted, bent);
    stage.show("What the lens shows", bending, wholeOf(pictureOf(distorted)));
    const Outcome correcting = remap(stage, distorted, result, straight);
    stage.show("Corrected", correcting, wholeOf(pictureOf(result)));
}

void showOrientations(Stage& stage)
{
    const Plane<uint8_t>& grey = stage.grey();
    stage.beginSection("The eight orientations", "flips, quarter turns and transpositions lose nothing");
    stage.showSource("As it is", "the picture in grey", wholeOf(pictureOf(grey)));
    const auto show = [&](const std::string& title, const char* name, bool turned, auto operation, auto... code) {
        Plane<uint8_t> result(turned ? grey.height() : grey.width(), turned ? grey.width() : grey.height());
        const Outcome outcome = stage.run(name, result, [&] {
            operation(grey.data(), grey.width(), grey.height(), grey.stride(), result.data(), result.stride(),
                      code...);
            return ONDRIX_SUCCESS;
        });
        stage.show(title, outcome, wholeOf(pictureOf(result)));
        return result;
    };
    show("Mirrored", "odxFlipu8", false, odxFlipu8, 1);
    show("Upside down", "odxFlipu8", false, odxFlipu8, 2);
    show("Half a turn", "odxRotateImageu8", false, odxRotateImageu8, 2);
    show("Clockwise", "odxRotateImageu8", true, odxRotateImageu8, 1);
    show("Counter-clockwise", "odxRotateImageu8", true, odxRotateImageu8, 3);
    const Plane<uint8_t> transposed = show("Transposed", "odxTransposeu8", true, odxTransposeu8);
    Plane<uint8_t> other(transposed.width(), transposed.height());
    const Outcome outcome = stage.run("odxFlipu8", other, [&] {
        return done(odxFlipu8, transposed.data(), transposed.width(), transposed.height(), transposed.stride(),
                    other.data(), other.stride(), 3);
    });
    stage.show("Along the other diagonal", outcome, wholeOf(pictureOf(other)));
}

} // namespace demo
