#include "cpu/ondrixWarpC.h"

#include "cpu/ondrixWarp.h"

#include <initializer_list>
#include <math.h>

using namespace odx;

namespace odx::warp
{

namespace
{

// One row; returns its inside columns in `span`.
template <bool clipped, class Rule, uint32_t C, class Row>
void warpRow(Row row, const Sampler<Rule>& sampler, const Inclusive& inside, uint8_t* out, uint32_t width,
             uint32_t (&span)[2])
{
    const bool leaves = sampler.border.outside == Outside::leave;
    for (uint32_t x = 0; x < width; ++x, out += C, row.step()) {
        float sx, sy;
        row.position(sx, sy);
        if constexpr (clipped) {
            if (inside.holds(sx, sy)) {
                if (span[1] == 0) span[0] = x;
                span[1] = x + 1;
            } else if (leaves) {
                continue;
            }
        }
        Sampler<Rule>::template sample<C>(sampler, sx, sy, out);
    }
}

} // namespace

template <class Path, class Rule, uint32_t C>
void warpReference(const Path& path, const Source& source, const Target& target, const Border& border,
                   bool clipped, uint32_t* dstBorder)
{
    const Sampler<Rule> sampler(source, border);
    const Inclusive inside(source);
    for (uint32_t y = 0; y < target.height; ++y) {
        uint8_t* const out = rowOf(target.pixels, target.stride, y);
        uint32_t span[2] = {0, 0};
        if (clipped) {
            warpRow<true, Rule, C>(path.row(y), sampler, inside, out, target.width, span);
        } else {
            warpRow<false, Rule, C>(path.row(y), sampler, inside, out, target.width, span);
        }
        if (dstBorder != nullptr) memcpy(dstBorder + 2 * size_t{y}, span, sizeof span);
    }
}

#define ODX_WARP_REFERENCE(Path, Rule, C)                                                                      \
    template void warpReference<Path, Rule, C>(const Path&, const Source&, const Target&, const Border&, bool, \
                                               uint32_t*);
ODX_WARP_REFERENCE(Projective, Bilinear, 1)
ODX_WARP_REFERENCE(Projective, Bilinear, 3)
ODX_WARP_REFERENCE(Projective, Nearest, 1)
ODX_WARP_REFERENCE(Affine, FixedBilinear, 1)
ODX_WARP_REFERENCE(Affine, Nearest, 1)
ODX_WARP_REFERENCE(Affine, Bicubic, 3)
ODX_WARP_REFERENCE(Maps, Bilinear, 1)
ODX_WARP_REFERENCE(Maps, Bilinear, 4)
ODX_WARP_REFERENCE(Maps, Nearest, 1)
ODX_WARP_REFERENCE(Maps, Nearest, 4)

} // namespace odx::warp

namespace
{

template <class Rule, uint32_t C, class Path>
void warpBy(const Path& path, const warp::Source& source, const warp::Target& target, const warp::Border& border)
{
    warp::warpReference<Path, Rule, C>(path, source, target, border, false, nullptr);
}

template <class Rule, uint32_t C, class Path>
void clippedBy(const Path& path, const warp::Source& source, const warp::Target& target,
               const warp::Border& border, uint32_t* dstBorder)
{
    warp::warpReference<Path, Rule, C>(path, source, target, border, true, dstBorder);
}

template <class Rule, class Path>
void warpPlanes(const Path& path, const warp::Source (&sources)[2], const warp::Target (&targets)[2],
                const warp::Border& border)
{
    for (int i : {0, 1})
        warpBy<Rule, 1>(path, sources[i], targets[i], border);
}

// A bilinear sample of a position that may be out of the image by rounding, but by less than a pixel.
uint8_t sampleNear(const warp::Source& source, float x, float y)
{
    uint8_t out;
    const warp::Beyond<1>* const nearest = nullptr;
    warp::Bilinear::at<1>(source, nearest, x > 0 ? x : 0.0f, y > 0 ? y : 0.0f, &out);
    return out;
}

// Sine and cosine in double precision by their series about the nearest multiple of a quarter turn: the same on
// every system, and far more exact than a float.
struct Turn {
    double cosine, sine;
};
Turn turnOf(float angle)
{
    constexpr double kTurn = 6.283185307179586, kQuarter = kTurn / 4;
    const double reduced = isfinite(angle) ? fmod(static_cast<double>(angle), kTurn) : 0;
    const auto quarters = static_cast<int>(reduced / kQuarter + (reduced < 0 ? -0.5 : 0.5));
    const double t = reduced - quarters * kQuarter, square = t * t;
    double cosine = 1, sine = t, term = 1;
    for (int n = 1; n <= 8; ++n) {
        term *= -square / ((2 * n - 1) * (2 * n));
        cosine += term;
        sine += term * t / (2 * n + 1);
    }
    switch (quarters & 3) {
    case 0:
        return {cosine, sine};
    case 1:
        return {-sine, cosine};
    case 2:
        return {-cosine, -sine};
    default:
        return {sine, -cosine};
    }
}

} // namespace

extern "C" {

#define ODX_WARP_COLUMN(name) name##C
#include "cpu/ondrixWarpOperations.inc"

bool cutPatchC(const warp::Source& source, const float* position, const float* affine, const warp::Target& patch)
{
    float first[2];
    if (!warp::beginPatch(source, position, affine, patch, first)) return false;
    for (uint32_t row = 0; row < patch.height; ++row, first[0] += affine[1], first[1] += affine[3]) {
        uint8_t* const out = rowOf(patch.pixels, patch.stride, row);
        float x = first[0], y = first[1];
        for (uint32_t column = 0; column < patch.width; ++column, x += affine[0], y += affine[2])
            out[column] = sampleNear(source, x, y);
    }
    return true;
}

void clippedBicubicC(const warp::Affine& path, const warp::Source& source, const warp::Target& target,
                     uint32_t* dstBorder)
{
    clippedBy<warp::Bicubic, 3>(path, source, target, warp::kLeft, dstBorder);
}

void odx3ChannelTransformAffineClippedBCu8C(const uint8_t* src, unsigned srcWidth, unsigned srcHeight,
                                            unsigned srcStride, const float* affineMatrix, uint8_t* dst,
                                            unsigned dstWidth, unsigned dstHeight, unsigned dstStride,
                                            uint32_t* dstBorder)
{
    clippedBicubic_({affineMatrix}, {src, srcWidth, srcHeight, srcStride}, {dst, dstWidth, dstHeight, dstStride},
                    dstBorder);
}

int odxTransformAffineu8C(const uint8_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride,
                          const float* position, const float* affine, uint8_t* patch, unsigned patchWidth,
                          unsigned patchHeight, unsigned patchStride)
{
    return cutPatch_({src, srcWidth, srcHeight, srcStride}, position, affine,
                     {patch, patchWidth, patchHeight, patchStride})
               ? 0
               : 1;
}

int odxTransformAffine8x8u8C(const uint8_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride,
                             uint32_t nPositions, const float* positions, const float* affines, uint8_t* patches)
{
    int result = 0;
    for (size_t i = 0; i < nPositions; ++i) {
        if (!cutPatch_({src, srcWidth, srcHeight, srcStride}, positions + 2 * i, affines + 4 * i,
                       {patches + 64 * i, 8, 8, 8}))
            result = 1;
    }
    return result;
}

void odxCopyRotated17x17u8C(const uint8_t* region, uint8_t* patch, float orientation)
{
    const Turn turn = turnOf(orientation);
    const auto c = static_cast<float>(turn.cosine), s = static_cast<float>(turn.sine);
    const warp::Source source{region, 25, 25, 25};
    for (int j = -8; j <= 8; ++j) {
        for (int i = -8; i <= 8; ++i) {
            const auto u = static_cast<float>(i), v = static_cast<float>(j);
            *patch++ = sampleNear(source, 12.0f + (c * u - s * v), 12.0f + (s * u + c * v));
        }
    }
}

odxStatus odxInvertAffineTransformf32C(const float* affine, float* inverse)
{
    const float a = affine[0], b = affine[1], tx = affine[2], c = affine[3], d = affine[4], ty = affine[5];
    const float det = a * d - b * c, r = det == 0 ? 0 : 1 / det;
    const float linear[] = {d * r, -b * r, -c * r, a * r};
    const float result[] = {linear[0], linear[1], -(linear[0] * tx) - linear[1] * ty,
                            linear[2], linear[3], -(linear[2] * tx) - linear[3] * ty,
                            0,         0,         1};
    memcpy(inverse, result, sizeof result);
    return ONDRIX_SUCCESS;
}

// Two equations a pair of points: u = (m0 x + m1 y + m2) / (m6 x + m7 y + 1), and v likewise.
void odxGetPerspectiveTransformf32C(const float* src1, const float* src2, float* transformCoefficient)
{
    constexpr int n = 8;
    double rows[n][n + 1];
    for (int i = 0; i < 4; ++i) {
        const double x = static_cast<double>(src1[2 * i]), y = static_cast<double>(src1[2 * i + 1]);
        const double u = static_cast<double>(src2[2 * i]), v = static_cast<double>(src2[2 * i + 1]);
        const double forU[] = {x, y, 1, 0, 0, 0, -u * x, -u * y, u},
                     forV[] = {0, 0, 0, x, y, 1, -v * x, -v * y, v};
        memcpy(rows[2 * i], forU, sizeof forU);
        memcpy(rows[2 * i + 1], forV, sizeof forV);
    }
    for (int k = 0; k < n; ++k) {
        int pivot = k;
        for (int i = k + 1; i < n; ++i) {
            if (fabs(rows[i][k]) > fabs(rows[pivot][k])) pivot = i;
        }
        for (int j = 0; j <= n; ++j) {
            const double other = rows[pivot][j];
            rows[pivot][j] = rows[k][j];
            rows[k][j] = other;
        }
        for (int i = 0; i < n; ++i) {
            if (i == k) continue;
            const double factor = rows[i][k] / rows[k][k];
            for (int j = k; j <= n; ++j)
                rows[i][j] -= factor * rows[k][j];
        }
    }
    for (int k = 0; k < n; ++k)
        transformCoefficient[k] = static_cast<float>(rows[k][n] / rows[k][k]);
    transformCoefficient[n] = 1;
}
}
