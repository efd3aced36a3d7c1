#include "content.h"

#ifdef ONDRIX_BENCH_PICTURES
#include <opencv2/imgcodecs.hpp>
#endif

#include <cmath>
#include <random>

namespace odx::bench
{

namespace
{

uint8_t clamped(double value)
{
    return static_cast<uint8_t>(std::clamp(value, 0.0, 255.0));
}

struct Shape {
    double x, y, halfWidth, halfHeight, cosine, sine, grey;

    bool covers(double px, double py) const
    {
        const double u = (px - x) * cosine + (py - y) * sine, v = (py - y) * cosine - (px - x) * sine;
        return std::abs(u) <= halfWidth && std::abs(v) <= halfHeight;
    }
};

} // namespace

std::vector<uint8_t> scene(test::Extent extent)
{
    std::mt19937 random(7);
    const auto unit = [&] { return std::uniform_real_distribution<double>(0, 1)(random); };
    std::vector<Shape> shapes;
    for (uint32_t i = 0; i < 60; ++i) {
        const double angle = 3 * unit(), x = unit() * extent.width, y = unit() * extent.height;
        shapes.push_back(
            {x, y, 10 + 100 * unit(), 10 + 60 * unit(), std::cos(angle), std::sin(angle), 255 * unit()});
    }
    std::vector<double> greys(size_t{extent.width} * extent.height);
    for (uint32_t y = 0; y < extent.height; ++y) {
        for (uint32_t x = 0; x < extent.width; ++x)
            greys[size_t{y} * extent.width + x] =
                110 + 60 * std::sin(x * 0.004) * std::cos(y * 0.006) + 12 * std::sin(x * 0.3 + y * 0.11);
    }
    for (const Shape& shape : shapes) {
        const double reach = shape.halfWidth + shape.halfHeight;
        const auto from = [&](double at) { return static_cast<uint32_t>(std::max(at - reach, 0.0)); };
        const auto to = [&](double at, uint32_t end) {
            return static_cast<uint32_t>(std::min(at + reach + 1, static_cast<double>(end)));
        };
        for (uint32_t y = from(shape.y); y < to(shape.y, extent.height); ++y) {
            for (uint32_t x = from(shape.x); x < to(shape.x, extent.width); ++x) {
                double& grey = greys[size_t{y} * extent.width + x];
                if (shape.covers(x, y)) grey = 0.7 * shape.grey + 0.3 * grey;
            }
        }
    }
    std::normal_distribution<double> grain(0, 3);
    std::vector<uint8_t> pixels(greys.size());
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = clamped(greys[i] + grain(random));
    return pixels;
}

std::vector<uint8_t> pictureFile(const std::string& path, test::Extent extent)
{
#ifdef ONDRIX_BENCH_PICTURES
    const cv::Mat picture = cv::imread(path, cv::IMREAD_GRAYSCALE);
    if (picture.empty()) return {};
    std::vector<uint8_t> pixels(size_t{extent.width} * extent.height);
    const int width = static_cast<int>(extent.width);
    for (size_t i = 0; i < pixels.size(); ++i) {
        const int x = static_cast<int>(i) % width, y = static_cast<int>(i) / width;
        pixels[i] = picture.at<uint8_t>(y % picture.rows, x % picture.cols);
    }
    return pixels;
#else
    (void)path, (void)extent;
    return {};
#endif
}

} // namespace odx::bench
