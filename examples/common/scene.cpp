#include "common/scene.h"

#include <algorithm>
#include <cmath>

namespace demo
{

namespace
{

struct Colour {
    float r, g, b;
};

Colour operator*(Colour c, float by)
{
    return {c.r * by, c.g * by, c.b * by};
}

Colour operator+(Colour a, Colour b)
{
    return {a.r + b.r, a.g + b.g, a.b + b.b};
}

Colour blend(Colour from, Colour to, float part)
{
    return from * (1 - part) + to * part;
}

// 0 up to `from`, 1 beyond `to`, a smooth step between.
float step(float from, float to, float x)
{
    const float t = std::clamp((x - from) / (to - from), 0.0F, 1.0F);
    return t * t * (3 - 2 * t);
}

// A fixed pseudo-random value of 0 to 1 for every lattice point.
float lattice(int x, int y)
{
    uint32_t h = static_cast<uint32_t>(x) * 0x9E3779B1U ^ static_cast<uint32_t>(y) * 0x85EBCA77U;
    h = (h ^ (h >> 15)) * 0x2C1B3C6DU;
    h = (h ^ (h >> 12)) * 0x297A2D39U;
    return static_cast<float>((h ^ (h >> 15)) >> 8) / 16777216.0F;
}

float smoothNoise(float x, float y)
{
    const float fx = std::floor(x), fy = std::floor(y);
    const int ix = static_cast<int>(fx), iy = static_cast<int>(fy);
    const float tx = step(0, 1, x - fx), ty = step(0, 1, y - fy);
    const float above = lattice(ix, iy) * (1 - tx) + lattice(ix + 1, iy) * tx;
    const float below = lattice(ix, iy + 1) * (1 - tx) + lattice(ix + 1, iy + 1) * tx;
    return above * (1 - ty) + below * ty;
}

// Noise of several sizes added up, about 0.5.
float cloudy(float x, float y, int sizes)
{
    float sum = 0, weight = 0.5F;
    for (int i = 0; i < sizes; ++i, weight /= 2, x = x * 2 + 17, y = y * 2 + 31)
        sum += weight * smoothNoise(x, y);
    return sum;
}

// Coordinates: x from 0 to 1.5, y from 0 (top) to 1.
constexpr float kHorizon = 0.62F, kSunX = 1.02F, kSunY = 0.5F, kSunRadius = 0.052F;

Colour skyAt(float x, float y)
{
    constexpr Colour kHigh{0.10F, 0.17F, 0.36F}, kMiddle{0.45F, 0.33F, 0.50F}, kLow{0.98F, 0.62F, 0.34F};
    Colour sky =
        y < 0.38F ? blend(kHigh, kMiddle, step(0, 0.38F, y)) : blend(kMiddle, kLow, step(0.36F, kHorizon, y));
    const float distance = std::hypot(x - kSunX, y - kSunY);
    sky = sky + Colour{0.75F, 0.42F, 0.14F} * (std::exp(-distance * 6) * 0.75F);

    const float cloud = step(0.47F, 0.72F, cloudy(x * 2.6F + 3, y * 8.5F, 6)) * step(0.02F, 0.14F, y);
    const Colour lit = blend({0.36F, 0.30F, 0.42F}, {1.0F, 0.70F, 0.52F}, std::exp(-distance * 1.9F));
    sky = blend(sky, lit, cloud * 0.75F);
    return blend(sky, {1.0F, 0.95F, 0.78F}, step(kSunRadius + 0.002F, kSunRadius - 0.002F, distance));
}

struct Ridge {
    float base, rise, detail, seed;
    Colour colour;
};

Colour overRidge(Colour behind, const Ridge& ridge, float x, float y)
{
    const float top = ridge.base - ridge.rise * cloudy(x * ridge.detail + ridge.seed, ridge.seed, 6);
    if (y < top) return behind;
    const float light = 0.82F + 0.36F * cloudy(x * 38 + ridge.seed, (y - top) * 60 + x * 20, 4);
    const float haze = step(top, kHorizon, y) * 0.45F;
    return blend(ridge.colour * light, {0.93F, 0.62F, 0.45F}, haze);
}

Colour landAt(float x, float y)
{
    Colour land = skyAt(x, y);
    land = overRidge(land, {0.63F, 0.24F, 2.1F, 11.3F, {0.42F, 0.35F, 0.50F}}, x, y);
    return overRidge(land, {0.66F, 0.17F, 3.6F, 4.7F, {0.23F, 0.25F, 0.36F}}, x, y);
}

Colour seaAt(float x, float y)
{
    const float depth = y - kHorizon;
    const float distance = 0.03F / (depth + 0.012F); // waves grow towards the viewer
    const float wave = cloudy(x * 22 * distance + 40, 14 * distance * 4, 3) - 0.44F;
    const float ripple = smoothNoise(x * 60, depth * 420) - 0.5F;
    const float mirrored =
        std::clamp(kHorizon - depth * 0.85F + (wave * 0.5F + ripple * 0.2F) * depth, 0.0F, 0.6F);
    Colour sea = blend(landAt(x + ripple * 0.02F, mirrored), {0.06F, 0.12F, 0.22F}, 0.42F + depth * 0.5F);
    const float path = std::exp(-std::abs(x - kSunX + ripple * 0.03F) / (0.03F + depth * 0.3F));
    const float glitter = step(0.52F, 0.66F, smoothNoise(x * 46, depth * 330 + 7));
    return sea + Colour{1.0F, 0.72F, 0.42F} * (path * glitter * 0.7F);
}

// The rock that the lighthouse stands on.
float rockTop(float x)
{
    const float flank = std::abs(x - 0.36F) / 0.40F;
    return 0.735F + 0.26F * flank * flank - 0.05F * (cloudy(x * 9, 2.5F, 5) - 0.5F);
}

Colour overRock(Colour behind, float x, float y)
{
    const float top = rockTop(x);
    if (y < top) return behind;
    const float grain = cloudy(x * 26 + y * 7, y * 40 - x * 9, 5);
    const float crack = step(0.02F, 0.10F, std::abs(cloudy(x * 11, y * 15 + 9, 3) - 0.45F));
    const float lit = 0.55F + 0.7F * step(0.1F, 0.8F, x) * (1 - step(0, 0.2F, y - top));
    const Colour rock = Colour{0.36F, 0.30F, 0.29F} * ((0.45F + grain) * lit * (0.6F + 0.4F * crack));
    const Colour grass{0.27F, 0.33F, 0.15F};
    return blend(rock, grass * (0.6F + grain * 0.9F), (1 - step(0.004F, 0.03F, y - top)) * 0.85F);
}

// Where lines of mortar run between bricks of this size: 1 on brick, 0 on mortar.
float bricks(float x, float y, float width, float height)
{
    const float row = std::floor(y / height);
    const float inRow = x / width + (static_cast<int>(row) % 2 != 0 ? 0.5F : 0.0F);
    const float toSide = std::abs(inRow - std::floor(inRow) - 0.5F), toBed = std::abs(y / height - row - 0.5F);
    return toSide > 0.44F || toBed > 0.40F ? 0.0F : 1.0F;
}

// The keeper's house: a gable wall of bricks, windows and a door, under a tiled roof.
Colour overHouse(Colour behind, float x, float y)
{
    constexpr float kLeft = 0.445F, kRight = 0.605F, kEaves = 0.632F, kRidge = 0.565F, kFoot = 0.775F;
    const float overhang = 0.014F;
    const float roofEdge = (y - kRidge) / (kEaves - kRidge) * 0.03F + overhang - 0.03F;
    if (y >= kRidge && y < kEaves && x > kLeft - roofEdge - 0.0F && x < kRight + roofEdge) {
        const float tile = bricks(x, y - kRidge, 0.0125F, 0.0112F);
        const float shade = 0.75F + 0.4F * lattice(static_cast<int>(x / 0.0125F), static_cast<int>(y / 0.0112F));
        return Colour{0.60F, 0.26F, 0.20F} * (shade * (0.62F + 0.38F * tile));
    }
    if (x < kLeft || x > kRight || y < kEaves || y > std::min(kFoot, rockTop(x) + 0.02F)) return behind;
    for (const float window : {0.478F, 0.572F}) {
        const float dx = std::abs(x - window), dy = std::abs(y - 0.682F);
        if (dx < 0.0135F && dy < 0.020F) {
            const bool bar = dx < 0.0015F || dy < 0.0015F;
            return bar ? Colour{0.25F, 0.2F, 0.18F} : Colour{1.0F, 0.82F, 0.45F};
        }
        if (dx < 0.017F && dy < 0.0235F) return {0.90F, 0.87F, 0.82F};
    }
    if (std::abs(x - 0.525F) < 0.0135F && y > 0.682F) return {0.16F, 0.27F, 0.33F};
    const float brick = bricks(x, y, 0.020F, 0.0105F);
    const float tone = 0.85F + 0.3F * lattice(static_cast<int>(x / 0.02F) + 90, static_cast<int>(y / 0.0105F));
    return blend({0.74F, 0.68F, 0.62F}, Colour{0.66F, 0.40F, 0.30F} * tone, brick);
}

// A round tower with red and white bands, a gallery and a lit lantern under a dome.
Colour overTower(Colour behind, float x, float y)
{
    constexpr float kAxis = 0.33F, kFoot = 0.76F, kTop = 0.235F;
    const float from = x - kAxis, off = std::abs(from);
    if (y >= kTop && y < kFoot) {
        const float half = 0.036F + 0.027F * (y - kTop) / (kFoot - kTop);
        if (off > half) return behind;
        if (off < 0.008F && std::abs(std::fmod(y - kTop, 0.15F) - 0.1F) < 0.016F) return {0.13F, 0.12F, 0.16F};
        const float turn = from / half; // light comes from the right
        const float shade = 0.42F + 0.62F * step(-1.1F, 0.75F, turn) - 0.18F * step(0.75F, 1.0F, turn);
        const bool red = static_cast<int>((y - kTop) / 0.075F + turn * turn * 0.10F) % 2 == 0;
        const float plaster = 0.92F + 0.16F * cloudy(x * 90, y * 60, 3);
        return (red ? Colour{0.82F, 0.20F, 0.17F} : Colour{0.96F, 0.93F, 0.88F}) * (shade * plaster);
    }
    if (y >= 0.222F && y < kTop && off < 0.053F) return {0.17F, 0.17F, 0.21F}; // gallery
    if (y >= 0.196F && y < 0.222F && off < 0.053F) {                           // its railing
        const bool post = std::fmod(off + 0.002F, 0.0105F) < 0.0028F;
        if (post || y < 0.1995F) return {0.15F, 0.15F, 0.19F};
    }
    if (y >= 0.150F && y < 0.222F && off < 0.027F) { // lantern
        if (std::fmod(off + 0.0018F, 0.0125F) < 0.0030F) return {0.20F, 0.18F, 0.20F};
        return blend({1.0F, 0.95F, 0.70F}, {1.0F, 0.74F, 0.34F}, off / 0.027F);
    }
    if (std::hypot(from, (y - 0.150F) * 0.9F) < 0.034F && y < 0.150F) // dome
        return Colour{0.62F, 0.18F, 0.16F} * (0.55F + 0.6F * step(-0.035F, 0.03F, from));
    if (off < 0.0022F && y > 0.088F && y < 0.12F) return {0.15F, 0.14F, 0.18F}; // lightning rod
    return behind;
}

Colour beam(Colour behind, float x, float y)
{
    const float from = 0.33F - x;
    if (from < 0.03F) return behind;
    const float off = std::abs(y - 0.184F + from * 0.10F) / (0.010F + from * 0.14F);
    return behind +
           Colour{1.0F, 0.88F, 0.58F} * (0.26F * std::exp(-off * off * 2.2F) * (1 - step(0.05F, 0.36F, from)));
}

bool insideTriangle(float x, float y, float ax, float ay, float bx, float by, float cx, float cy)
{
    const auto side = [x, y](float fromX, float fromY, float toX, float toY) {
        return (toX - fromX) * (y - fromY) - (toY - fromY) * (x - fromX) >= 0;
    };
    const bool first = side(ax, ay, bx, by);
    return first == side(bx, by, cx, cy) && first == side(cx, cy, ax, ay);
}

Colour overBoat(Colour behind, float x, float y)
{
    constexpr float kX = 1.235F, kWater = 0.745F;
    if (insideTriangle(x, y, kX + 0.006F, 0.50F, kX + 0.006F, 0.713F, kX + 0.086F, 0.713F)) {
        const bool seam = std::fmod(y, 0.043F) < 0.0022F;
        return Colour{0.97F, 0.90F, 0.80F} * (seam ? 0.72F : 0.80F + 0.20F * step(kX + 0.09F, kX, x));
    }
    if (insideTriangle(x, y, kX - 0.004F, 0.53F, kX - 0.004F, 0.713F, kX - 0.062F, 0.713F))
        return Colour{0.88F, 0.36F, 0.25F} * (0.78F + 0.22F * step(kX - 0.06F, kX, x));
    if (std::abs(x - kX) < 0.0024F && y > 0.49F && y < 0.72F) return {0.22F, 0.15F, 0.12F};
    const float hull = (y - 0.717F) / (kWater - 0.717F);
    if (hull >= 0 && hull <= 1 && x > kX - 0.075F + hull * 0.03F && x < kX + 0.095F - hull * 0.022F)
        return hull < 0.28F ? Colour{0.93F, 0.91F, 0.88F} : Colour{0.14F, 0.24F, 0.36F};
    if (y > kWater && y < kWater + 0.006F && std::abs(x - kX - 0.01F) < 0.075F) return behind * 0.6F;
    return behind;
}

Colour sceneAt(float x, float y)
{
    Colour colour = y < kHorizon ? landAt(x, y) : seaAt(x, y);
    colour = overBoat(colour, x, y);
    colour = beam(colour, x, y);
    colour = overTower(colour, x, y);
    colour = overHouse(colour, x, y);
    return overRock(colour, x, y);
}

uint8_t level(float value, float noise)
{
    return static_cast<uint8_t>(std::clamp(value * 255 + noise + 0.5F, 0.0F, 255.0F));
}

} // namespace

Picture renderScene(int width, int height)
{
    constexpr int kSamples = 3; // in each direction of a pixel
    constexpr float kNoise = 9; // levels, from the least to the most
    Picture picture(width, height);
    const float unit = 1.0F / static_cast<float>(height * kSamples);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            Colour sum{0, 0, 0};
            for (int i = 0; i < kSamples * kSamples; ++i) {
                const int sampleX = x * kSamples + i % kSamples, sampleY = y * kSamples + i / kSamples;
                const Colour colour = sceneAt((static_cast<float>(sampleX) + 0.5F) * unit,
                                              (static_cast<float>(sampleY) + 0.5F) * unit);
                sum = sum + Colour{std::min(colour.r, 1.0F), std::min(colour.g, 1.0F), std::min(colour.b, 1.0F)};
            }
            sum = sum * (1.0F / (kSamples * kSamples));
            const auto noise = [&](int channel) { return (lattice(x, y * 4 + channel + 7777) - 0.5F) * kNoise; };
            picture.at(x, y) = {level(sum.r, noise(0)), level(sum.g, noise(1)), level(sum.b, noise(2))};
        }
    }
    return picture;
}

} // namespace demo
