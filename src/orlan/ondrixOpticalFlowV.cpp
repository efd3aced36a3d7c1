// SIMD inner loops of optical flow: windows lie in memory as one row, so that no lane is spent on their ends.
#include "cpu/ondrixOpticalFlowC.h"
#include "orlan/simd/simd.h"

#define ODX_FAMILY_LIST "frame/operations/opticalFlow.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;

namespace
{

constexpr uint32_t kLanes = kBytes / sizeof(float), kVectors = kFlowSums / kLanes;

// Values between neighbours in a row: each pixel becomes a float once, and serves the rows above and below.
ODX_INLINE void betweenColumns(const FlowSamples& at)
{
    const uint8_t* p = at.bytes;
    float *q = at.pixels, *const end = q + at.count + at.pitch;
    const f32v right = f32v{} + at.fx, left = 1 - right;
    for (f32p v = loadFloats(p), next; q < end; q += 2 * kLanes, v = next) {
        p += 2 * kLanes;
        next = loadFloats(p);
        store(q, left * v.a + right * following(v.a, v.b));
        store(q + kLanes, left * v.b + right * following(v.b, next.a));
    }
}

ODX_INLINE f32v samplesAt(const FlowSamples& at, uint32_t i)
{
    const float* const above = at.pixels + i;
    return (1 - at.fy) * load<f32v>(above) + at.fy * load<f32v>(above + at.pitch);
}

// kFlowSums sums of floats.
struct Sums {
    f32v of[kVectors];

    ODX_MEMBER float total() const
    {
        if constexpr (kVectors == 1) return sumOfHalves(of[0]);
        if constexpr (kVectors == 2) return sumOfHalves(of[0] + of[kVectors - 1]);
        if constexpr (kVectors == 4)
            return sumOfHalves((of[0] + of[kVectors / 2]) + (of[kVectors / 4] + of[kVectors - 1]));
    }
};

} // namespace

void odxFlowSampleV(const FlowSamples* at, float* samples)
{
    betweenColumns(*at);
    for (uint32_t i = 0; i < at->count; i += kLanes)
        store(samples + i, samplesAt(*at, i));
}

void odxFlowGradientsV(const float* margin, const FlowWindow* window)
{
    constexpr float kOuter = 0.09375F, kInner = 0.3125F;
    const size_t width = window->width, from = width + 3;
    size_t end = 0;
    for (size_t y = 0; y < window->height; ++y) {
        // What is stored beyond the end of a row, the next one writes again.
        for (size_t x = 0; x < width; x += kLanes) {
            const float *const above = margin + y * from + x, *const here = above + from,
                               *const below = here + from;
            const f32v a0 = load<f32v>(above), a2 = load<f32v>(above + 2), c0 = load<f32v>(below),
                       c2 = load<f32v>(below + 2);
            store(window->samples + end + x, load<f32v>(here + 1));
            store(window->dx + end + x,
                  ((a2 - a0) + (c2 - c0)) * kOuter + (load<f32v>(here + 2) - load<f32v>(here)) * kInner);
            store(window->dy + end + x,
                  ((c0 - a0) + (c2 - a2)) * kOuter + (load<f32v>(below + 1) - load<f32v>(above + 1)) * kInner);
        }
        end += width;
        window->samples[end] = window->dx[end] = window->dy[end] = 0;
        ++end;
    }
    for (; end < window->count; end += kLanes) {
        store(window->samples + end, f32v{});
        store(window->dx + end, f32v{});
        store(window->dy + end, f32v{});
    }
}

void odxFlowMomentsV(const FlowWindow* window, float* sums)
{
    Sums xx = {}, xy = {}, yy = {};
    for (uint32_t i = 0; i < window->count; i += kFlowSums) {
        for (uint32_t k = 0; k < kVectors; ++k) {
            const f32v dx = load<f32v>(window->dx + i + k * kLanes), dy = load<f32v>(window->dy + i + k * kLanes);
            xx.of[k] += dx * dx;
            xy.of[k] += dx * dy;
            yy.of[k] += dy * dy;
        }
    }
    sums[0] = xx.total();
    sums[1] = xy.total();
    sums[2] = yy.total();
}

void odxFlowMismatchV(const FlowSamples* at, const FlowWindow* window, float* sums)
{
    betweenColumns(*at);
    Sums x = {}, y = {};
    for (uint32_t i = 0; i < window->count; i += kFlowSums) {
        for (uint32_t k = 0; k < kVectors; ++k) {
            const uint32_t n = i + k * kLanes;
            const f32v difference = load<f32v>(window->samples + n) - samplesAt(*at, n);
            x.of[k] += difference * load<f32v>(window->dx + n);
            y.of[k] += difference * load<f32v>(window->dy + n);
        }
    }
    sums[0] = x.total();
    sums[1] = y.total();
}

} // namespace odx::ODX_TARGET
