#include "common/canvas.h"
#include "demo/sections.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace demo
{

namespace
{

constexpr int kLevels = 3;

// Levels of half the size, each pixel the mean of four.
struct Levels {
    std::vector<Plane<uint8_t>> planes;
    std::vector<odxPyrLevelStrided> records;

    explicit Levels(const Plane<uint8_t>& base) : planes{base}
    {
        while (planes.size() < kLevels) {
            const Plane<uint8_t> finer = planes.back();
            planes.push_back(
                Plane<uint8_t>::from(finer.width() / 2, finer.height() / 2, [&](unsigned x, unsigned y) {
                    const unsigned sum = finer.at(2 * x, 2 * y) + finer.at(2 * x + 1, 2 * y) +
                                         finer.at(2 * x, 2 * y + 1) + finer.at(2 * x + 1, 2 * y + 1);
                    return (sum + 2) / 4;
                }));
        }
        records.reserve(planes.size());
        for (Plane<uint8_t>& plane : planes)
            records.push_back({plane.data(), plane.width(), plane.height(), plane.stride()});
    }
};

// The picture seen from a camera that turned and came nearer.
Picture moved(const Picture& picture, double angle, double scale, double dx, double dy)
{
    Picture result(picture.width(), picture.height());
    const double c = std::cos(angle) / scale, s = std::sin(angle) / scale;
    const double cx = picture.width() / 2.0, cy = picture.height() / 2.0;
    const auto inside = [](double at, int size) { return std::clamp(at, 0.0, size - 1.0); };
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x) {
            const double u = x - cx - dx, v = y - cy - dy;
            const double fromX = inside(c * u + s * v + cx, picture.width()),
                         fromY = inside(c * v - s * u + cy, picture.height());
            const int left = static_cast<int>(fromX), top = static_cast<int>(fromY);
            const int right = std::min(left + 1, picture.width() - 1),
                      bottom = std::min(top + 1, picture.height() - 1);
            const double a = fromX - left, b = fromY - top;
            const auto blend = [&](uint8_t Rgb::*channel) {
                const auto at = [&](int i, int j) { return static_cast<double>(picture.at(i, j).*channel); };
                return nearestByte(static_cast<float>((1 - b) * ((1 - a) * at(left, top) + a * at(right, top)) +
                                                      b * ((1 - a) * at(left, bottom) + a * at(right, bottom))));
            };
            result.at(x, y) = {blend(&Rgb::r), blend(&Rgb::g), blend(&Rgb::b)};
        }
    }
    return result;
}

// What was given, or the picture in motion.
std::vector<Picture> sequenceOf(const Stage& stage)
{
    if (!stage.sequence().empty()) return stage.sequence();
    constexpr int kFrames = 4;
    std::vector<Picture> frames;
    frames.reserve(kFrames);
    for (int i = 0; i < kFrames; ++i)
        frames.push_back(moved(stage.picture(), 0.012 * i, 1 + 0.012 * i, 5.5 * i, -3.2 * i));
    return frames;
}

void drawLine(Picture& picture, Point from, Point to, Rgb colour)
{
    const int steps = std::max({std::abs(to.x - from.x), std::abs(to.y - from.y), 1});
    for (int i = 0; i <= steps; ++i)
        fill(picture, {from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps, 2, 2}, colour);
}

Point nearest(const float* xy)
{
    return {static_cast<int>(std::lround(xy[0])), static_cast<int>(std::lround(xy[1]))};
}

// ---- points ----

std::vector<float> pointsToTrack(const Plane<uint8_t>& grey)
{
    constexpr unsigned kMost = 300, kBorder = 16, kApart = 10;
    std::vector<uint32_t> corners(2 * kMost);
    uint32_t count = 0;
    odxGoodFeatureToTracku8(grey.data(), grey.width(), grey.height(), grey.stride(), kBorder, corners.data(),
                            kMost, &count, 0.01F, kApart);
    return {corners.begin(), corners.begin() + static_cast<std::ptrdiff_t>(2 * size_t{count})};
}

void showTracks(Stage& stage, const std::vector<Picture>& frames)
{
    constexpr int kWindow = 15, kIterations = 30;
    std::vector<float> points = pointsToTrack(greyOf(frames[0])), next(points.size());
    std::vector<int32_t> status(points.size() / 2);
    std::vector<bool> alive(status.size(), true);
    Picture drawn = frames.back();
    Outcome outcome;
    for (size_t i = 0; i + 1 < frames.size() && !points.empty(); ++i) {
        const Levels here(greyOf(frames[i])), there(greyOf(frames[i + 1]));
        const Plane<uint8_t>& grey = here.planes[0];
        outcome = stage.run(
            "odxTrackLKOpticalFlowu8_v3",
            {{next.data(), next.size() * sizeof(float)}, {status.data(), status.size() * sizeof(int32_t)}},
            size_t{grey.width()} * grey.height(), [&] {
                return odxTrackLKOpticalFlowu8_v3(
                    grey.data(), there.planes[0].data(), grey.width(), grey.height(), grey.stride(),
                    here.records.data(), there.records.data(), points.data(), next.data(), status.data(),
                    static_cast<int>(status.size()), kWindow, kWindow, kIterations, kLevels, nullptr, 0, 0, 0);
            });
        for (size_t n = 0; n < status.size(); ++n) {
            alive[n] = alive[n] && status[n] == 1;
            if (alive[n]) drawLine(drawn, nearest(&points[2 * n]), nearest(&next[2 * n]), colours::kMarker);
        }
        points = next;
    }
    if (points.empty()) return;
    std::vector<Point> ends;
    for (size_t n = 0; n < alive.size(); ++n) {
        if (alive[n]) ends.push_back(nearest(&points[2 * n]));
    }
    for (const Point& end : ends)
        fill(drawn, {end.x - 1, end.y - 1, 4, 4}, colours::kMark);
    stage.show("Lucas-Kanade: " + std::to_string(ends.size()) + " of " + std::to_string(alive.size()), outcome,
               drawn);
}

void showBlocks(Stage& stage, const std::vector<Picture>& frames)
{
    constexpr unsigned kBlock = 16, kRadius = 12;
    const Plane<uint8_t> one = greyOf(frames[0]), two = greyOf(frames[1]);
    const unsigned columns = one.width() / kBlock, rows = one.height() / kBlock;
    std::vector<int16_t> flow(2 * size_t{columns} * rows);
    const Outcome outcome =
        stage.run("odxTrackBMOpticalFlow16x16u8", {{flow.data(), flow.size() * sizeof(int16_t)}},
                  size_t{one.width()} * one.height(), [&] {
                      odxTrackBMOpticalFlow16x16u8(one.data(), two.data(), one.width(), one.height(), one.stride(),
                                                   kBlock, kRadius, flow.data(), nullptr);
                      return ONDRIX_SUCCESS;
                  });
    Picture drawn = frames[0];
    for (unsigned i = 0; i < columns * rows; ++i) {
        const Point centre = {static_cast<int>(i % columns * kBlock + kBlock / 2),
                              static_cast<int>(i / columns * kBlock + kBlock / 2)};
        drawLine(drawn, centre, {centre.x + flow[2 * size_t{i}], centre.y + flow[2 * size_t{i} + 1]},
                 colours::kBars[1]);
    }
    stage.show("Block matching", outcome, drawn);
}

// ---- an object ----

constexpr Rgb kBall{255, 96, 16};

// How much a pixel looks like the ball.
Plane<uint8_t> likeness(const Picture& picture)
{
    return Plane<uint8_t>::from(static_cast<unsigned>(picture.width()), static_cast<unsigned>(picture.height()),
                                [&](unsigned x, unsigned y) {
                                    const Rgb p = picture.at(static_cast<int>(x), static_cast<int>(y));
                                    const int away = std::abs(p.r - kBall.r) + std::abs(p.g - kBall.g) +
                                                     std::abs(p.b - kBall.b);
                                    return std::max(255 - 4 * away, 0);
                                });
}

Rectangle frameOf(const odxWindow& window)
{
    return {static_cast<int>(window.x), static_cast<int>(window.y), static_cast<int>(window.width),
            static_cast<int>(window.height)};
}

// A ball on its way across the picture, growing; each tracker follows it with one window.
void showBall(Stage& stage, const Picture& background)
{
    constexpr int kFrames = 6, kIterations = 20;
    const int unit = std::min(background.width(), background.height()) / 16;
    Picture shifted = background, adapted = background;
    odxWindow shift = {0, 0, 0, 0}, adapt = {0, 0, 0, 0};
    odxTrackedEllipse ellipse = {};
    Outcome shiftOutcome, adaptOutcome;
    for (int i = 0; i < kFrames; ++i) {
        const int x = background.width() * (2 + i) / (kFrames + 3),
                  y = background.height() / 2 + static_cast<int>(2.5 * unit * std::sin(1.1 * i));
        const double a = unit * (0.8 + 0.18 * i), b = a * 0.6;
        Picture frame_ = background;
        for (int v = -2 * unit; v <= 2 * unit; ++v) {
            for (int u = -2 * unit; u <= 2 * unit; ++u) {
                const double along = 0.8 * u + 0.6 * v, across = 0.8 * v - 0.6 * u;
                if (std::hypot(along / a, across / b) > 1) continue;
                for (Picture* picture : {&frame_, &shifted, &adapted}) {
                    if (Rectangle{0, 0, background.width(), background.height()}.holds({x + u, y + v}))
                        picture->at(x + u, y + v) = kBall;
                }
            }
        }
        if (i == 0)
            shift = adapt = {static_cast<uint32_t>(x - unit), static_cast<uint32_t>(y - unit),
                             static_cast<uint32_t>(2 * unit), static_cast<uint32_t>(2 * unit)};
        // The ball jumps further than its window, which is enlarged to look for it.
        const Plane<uint8_t> weights = likeness(frame_);
        const auto around = [&](const odxWindow& w) {
            const auto grow = static_cast<uint32_t>(2 * unit);
            return odxWindow{w.x - std::min(w.x, grow), w.y - std::min(w.y, grow), w.width + 2 * grow,
                             w.height + 2 * grow};
        };
        const size_t pixels = size_t{weights.width()} * weights.height();
        const auto follow = [&](odxWindow& window, const char* name, std::vector<Buffer> buffers, auto operation) {
            window = around(window);
            buffers.push_back({&window, sizeof window});
            return stage.run(name, buffers, pixels, [&] {
                operation();
                return ONDRIX_SUCCESS;
            });
        };
        shiftOutcome = follow(shift, "odxMeanShiftu8", {}, [&] {
            odxMeanShiftu8(weights.data(), weights.width(), weights.height(), weights.stride(), &shift,
                           kIterations, 1);
        });
        // Mean shift keeps the size that it was given; the object is in the middle.
        const auto side = static_cast<uint32_t>(2 * unit);
        shift = {shift.x + (shift.width - side) / 2, shift.y + (shift.height - side) / 2, side, side};
        adaptOutcome = follow(adapt, "odxConAdaTracku8", {{&ellipse, sizeof ellipse}}, [&] {
            odxConAdaTracku8(weights.data(), weights.width(), weights.height(), weights.stride(), &adapt,
                             kIterations, 1, &ellipse);
        });
        frame(shifted, frameOf(shift), 2, colours::kMarker);
        frame(adapted, frameOf(adapt), 2, colours::kMarker);
        const auto c = static_cast<double>(std::cos(ellipse.angle)),
                   s = static_cast<double>(std::sin(ellipse.angle)),
                   half = static_cast<double>(ellipse.length) / 2;
        const auto centreX = static_cast<double>(ellipse.x), centreY = static_cast<double>(ellipse.y);
        const auto end = [&](double by) {
            return Point{static_cast<int>(centreX + by * c), static_cast<int>(centreY + by * s)};
        };
        drawLine(adapted, end(-half), end(half), colours::kText);
    }
    stage.show("Mean shift", shiftOutcome, shifted);
    stage.show("Adaptive window", adaptOutcome, adapted);
}

} // namespace

void showMotion(Stage& stage)
{
    const std::vector<Picture> frames = sequenceOf(stage);
    stage.beginSection("Motion", "points, blocks and an object, followed over " + std::to_string(frames.size()) +
                                     " pictures");
    showTracks(stage, frames);
    showBlocks(stage, frames);
    showBall(stage, fitted(frames[0], Sheet::kTileWidth, Sheet::kTileHeight)); // tiles show it whole
}

} // namespace demo
