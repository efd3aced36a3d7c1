// Resizing to any size. The pixels that outputs take are looked up in a window of the row, a vector at a time;
// rows that are narrower than a window, and outputs too far apart for it, belong to the reference.
#include "cpu/ondrixScaleC.h"

#include "cpu/image.h"
#include "cpu/ondrixScale.h"
#include "orlan/simd/resampling.h"

#define ODX_FAMILY_LIST "frame/operations/scaling.def"
#include "orlan/family.h"

#include <type_traits>

namespace odx::ODX_TARGET
{

using namespace scale;
using namespace simd;

namespace
{

// Where a table of columns finds its pixels: a window for each kLookup outputs, and the places in it.
template <uint32_t taps>
struct Windows {
    uint32_t base[kColumns / kLookup];
    alignas(kBytes) uint8_t place[taps][kColumns];

    // Whether there are windows for all: table k gives the columns of tap k, in ascending order or nearly so.
    template <class Table>
    bool fill(Table table, uint32_t count, uint64_t rowBytes)
    {
        if (rowBytes < kLookupWindow) return false;
        for (uint32_t first = 0; first < count; first += kLookup) {
            const uint32_t n = count - first < kLookup ? count - first : kLookup;
            uint32_t low = UINT32_MAX;
            for (uint32_t k = 0; k < taps; ++k) {
                for (uint32_t i = first; i < first + n; ++i)
                    low = table(k)[i] < low ? table(k)[i] : low;
            }
            if (low > rowBytes - kLookupWindow) low = (uint32_t)(rowBytes - kLookupWindow);
            base[first / kLookup] = low;
            for (uint32_t k = 0; k < taps; ++k) {
                for (uint32_t i = first; i < first + n; ++i) {
                    if (table(k)[i] - low >= kLookupWindow) return false;
                    place[k][i] = (uint8_t)(table(k)[i] - low);
                }
            }
        }
        // Vectors are whole: what is beyond the outputs looks at the last window.
        for (uint32_t i = count; i % kBytes != 0; ++i) {
            if (i % kLookup == 0) base[i / kLookup] = base[(count - 1) / kLookup];
            for (uint32_t k = 0; k < taps; ++k)
                place[k][i] = 0;
        }
        return true;
    }
    ODX_MEMBER u8v of(uint32_t tap, const uint8_t* row, uint32_t i) const
    {
        return lookup(row, base + i / kLookup, load<u8v>(place[tap] + i));
    }
};

// Stores `count` outputs, of which only the last vector may be cut.
ODX_INLINE void storeOutputs(uint8_t* out, u8v v, uint32_t count)
{
    if (count >= kBytes) return store(out, v);
    uint8_t bytes[kBytes];
    store(bytes, v);
    memcpy(out, bytes, count);
}

// ---- nearest ----

template <class Axis>
ODX_INLINE void nearest(const Resize& image)
{
    Windows<1> windows;
    bool fits = false;
    takeNearest<Axis>(
        image,
        [&](const uint32_t* columns, uint32_t count) {
            fits = windows.fill([=](uint32_t) { return columns; }, count, image.srcWidth);
        },
        [&](const uint8_t* row, const uint32_t* columns, uint8_t* out, uint32_t count) {
            if (!fits) {
                for (uint32_t i = 0; i < count; ++i)
                    out[i] = row[columns[i]];
                return;
            }
            uint32_t i = 0;
            for (; count - i >= kBytes; i += kBytes)
                store(out + i, windows.of(0, row, i));
            if (i != count) storeOutputs(out + i, windows.of(0, row, i), count - i);
        });
}

// ---- samplers: those of the reference, in vectors ----

constexpr uint32_t kWords = kBytes / 4;

struct LinearV : Linear {
    Windows<2> windows;
    bool fits = false;
    alignas(kBytes) int16_t pairs[2 * kColumns]; // the weights of each output

    explicit LinearV(const Resize& r) : Linear(r) {}
    void columns(uint32_t count)
    {
        fits = windows.fill([this](uint32_t k) { return at[k]; }, count, image.srcWidth);
        for (uint32_t i = 0; i < kColumns; ++i) {
            pairs[2 * i] = (int16_t)(i < count ? weight[0][i] : 0);
            pairs[2 * i + 1] = (int16_t)(i < count ? weight[1][i] : 0);
        }
    }
    void across(int64_t y, int32_t* line, uint32_t count) const
    {
        if (!fits) return Linear::across(y, line, count);
        const uint8_t* const row = image.in((size_t)y);
        for (uint32_t i = 0; i < count; i += kBytes)
            storeWeighted(line + i, windows.of(0, row, i), windows.of(1, row, i), pairs + 2 * i);
    }
    ODX_MEMBER static s32v sum(const int32_t* const* lines, u32v w0, u32v w1, uint32_t i)
    {
        return (s32v)((load<u32v>(lines[0] + i) * w0 + load<u32v>(lines[1] + i) * w1 + (1u << 21)) >> 22);
    }
    static void down(const int32_t* const* lines, const Taps<int16_t, 2>& taps, uint8_t* out, uint32_t count)
    {
        const u32v w0 = u32v{} + (uint32_t)taps.weight[0], w1 = u32v{} + (uint32_t)taps.weight[1];
        for (uint32_t i = 0; i < count; i += kBytes) {
            storeOutputs(out + i,
                         narrow(sum(lines, w0, w1, i), sum(lines, w0, w1, i + kWords),
                                sum(lines, w0, w1, i + 2 * kWords), sum(lines, w0, w1, i + 3 * kWords)),
                         count - i);
        }
    }
};

template <class Axis>
struct WeightedV : Weighted<Axis> {
    using Base = Weighted<Axis>;
    using Base::image;
    using Base::weight;
    Windows<2> windows;
    bool fits = false;

    WeightedV(const Resize& r, Frame f) : Base(r, f) {}
    void columns(uint32_t count)
    {
        Base::columns(count);
        fits = windows.fill([this](uint32_t k) { return this->at[k]; }, count, image.srcWidth);
        for (uint32_t k = 0; k < 2; ++k) {
            for (uint32_t i = count; i % kBytes != 0; ++i)
                weight[k][i] = 0;
        }
    }
    void across(int64_t y, float* line, uint32_t count) const
    {
        const uint8_t* const row = this->rowAt(y);
        if (row == nullptr || !fits) return Base::across(y, line, count);
        for (uint32_t i = 0; i < count; i += kBytes) {
            f32v first[4], second[4];
            toFloats(windows.of(0, row, i), first);
            toFloats(windows.of(1, row, i), second);
            for (uint32_t k = 0; k < 4; ++k) {
                const uint32_t place = i + k * kWords;
                store(line + place,
                      load<f32v>(weight[0] + place) * first[k] + load<f32v>(weight[1] + place) * second[k]);
            }
        }
        this->mendEnds(row, line, count);
    }
    template <bool one> // of the two lines
    ODX_MEMBER static void blend(const float* const* lines, const Taps<float, 2>& taps, uint8_t* out,
                                 uint32_t count)
    {
        const f32v w0 = f32v{} + taps.weight[0], w1 = f32v{} + taps.weight[1];
        const auto sum = [=](uint32_t i) {
            const f32v a = load<f32v>(lines[0] + i);
            return one ? a : w0 * a + w1 * load<f32v>(lines[1] + i);
        };
        for (uint32_t i = 0; i < count; i += kBytes)
            storeOutputs(out + i, wholeParts(sum(i), sum(i + kWords), sum(i + 2 * kWords), sum(i + 3 * kWords)),
                         count - i);
    }
    static void down(const float* const* lines, const Taps<float, 2>& taps, uint8_t* out, uint32_t count)
    {
        if (taps.at[0] == taps.at[1]) return blend<true>(lines, taps, out, count);
        blend<false>(lines, taps, out, count);
    }
};

template <uint32_t channels>
struct CubicV : Cubic<channels> {
    using Base = Cubic<channels>;
    using Base::image;
    using Base::weight;
    Windows<4> windows;
    bool fits = false;

    explicit CubicV(const Resize& r) : Base(r) {}
    void columns(uint32_t count)
    {
        fits =
            windows.fill([this](uint32_t k) { return this->at[k]; }, count, uint64_t{image.srcWidth} * channels);
        for (uint32_t k = 0; k < 4; ++k) {
            for (uint32_t i = count; i % kBytes != 0; ++i)
                weight[k][i] = 0;
        }
    }
    // Two sums of 16 bits each, which stay below 2^15: those of the inner taps are 144 x 255 at most.
    void across(int64_t y, int16_t* line, uint32_t count) const
    {
        if (!fits) return Base::across(y, line, count);
        const uint8_t* const row = image.in((size_t)y);
        for (uint32_t i = 0; i < count; i += kBytes) {
            alignas(kBytes) uint8_t taps[4][kBytes];
            for (uint32_t k = 0; k < 4; ++k)
                store(taps[k], windows.of(k, row, i));
            for (uint32_t j = 0; j < kBytes; j += kBytes / 2) {
                // The sum is that of unsigned numbers up to 144 x 255 less numbers up to 16 x 255, modulo 2^16.
                u16v sum = {};
                for (uint32_t k = 0; k < 4; ++k)
                    sum += loadWiden(taps[k] + j) * (u16v)load<s16v>(weight[k] + i + j);
                // Offset so that the shift is one of unsigned numbers.
                store(line + i + j, (s16v)(((sum + (uint16_t)(kOffset + 1)) >> 1) - (uint16_t)(kOffset / 2)));
            }
        }
    }
    static void down(const int16_t* const* lines, const Taps<int16_t, 4>& taps, uint8_t* out, uint32_t count)
    {
        const auto sum = [&](uint32_t i) {
            s32v total = s32v{} + 4096;
            for (uint32_t k = 0; k < 4; ++k)
                total = addProducts(total, lines[k] + i, taps.weight[k]);
            return max(total, s32v{}) >> 13;
        };
        for (uint32_t i = 0; i < count; i += kBytes)
            storeOutputs(out + i, narrow(sum(i), sum(i + kWords), sum(i + 2 * kWords), sum(i + 3 * kWords)),
                         count - i);
    }
    static constexpr uint16_t kOffset = 8192; // even, above 18 x 255
};

} // namespace

int odxScaleDownNNu8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                      uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride)
{
    const bool equal = srcWidth == dstWidth && srcHeight == dstHeight;
    if (equal || (srcWidth | srcHeight | dstWidth | dstHeight) > 65535) {
        return odxScaleDownNNu8C(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride);
    }
    nearest<ExactNearest>({src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride});
    return 0;
}

void odxScaleDownBLu8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                       uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride)
{
    const Resize image = {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride};
    LinearV sampler(image);
    resample(image, sampler);
}

void odxScaleUpPolyu8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                       uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride)
{
    const Resize image = {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride};
    CubicV<1> sampler(image);
    resample(image, sampler);
}

void odxScaleUpPolyInterleaveu8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, uint8_t* dst, unsigned int dstWidth,
                                 unsigned int dstHeight, unsigned int dstStride)
{
    const Resize image = {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride};
    CubicV<2> sampler(image);
    resample(image, sampler);
}

odxStatus odxScaleu8_v2V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                         uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride,
                         odxInterpolationType interpolation, odxBorderType borderType, uint8_t borderValue)
{
    const Resize image = {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride};
    const auto divides = [](uint32_t a, uint32_t b) { return a % b == 0 || b % a == 0; };
    const bool whole = divides(srcWidth, dstWidth) && divides(srcHeight, dstHeight),
               halves = 2 * uint64_t{dstWidth} == srcWidth && 2 * uint64_t{dstHeight} == srcHeight;
    if (interpolation == ONDRIX_INTERPOLATION_NEAREST) {
        nearest<CentreNearest>(image);
    } else if (interpolation == ONDRIX_INTERPOLATION_BILINEAR && !halves) {
        const uint8_t value = borderType == ONDRIX_BORDER_CONSTANT ? borderValue : 0;
        WeightedV<CentreAxis> sampler(image, {borderType == ONDRIX_BORDER_REPLICATE, value});
        resample(image, sampler);
    } else if (!whole) {
        WeightedV<AreaAxis> sampler(image, {true, 0});
        resample(image, sampler);
    } else {
        return odxScaleu8_v2C(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride,
                              interpolation, borderType, borderValue);
    }
    return ONDRIX_SUCCESS;
}

odxStatus odxScaleu8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                      uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride,
                      odxInterpolationType interpolation)
{
    return odxScaleu8_v2V(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, interpolation,
                          ONDRIX_BORDER_UNDEFINED, 0);
}

// ---- means of blocks ----

constexpr uint32_t kSummed = 2048; // columns whose sums are kept

// Sums of so many rows, which fit 16 bits; the last vector overlaps, if only with columns before these.
ODX_INLINE void sumColumns(const uint8_t* src, size_t stride, uint32_t rows, uint32_t columns, uint16_t* sums)
{
    const auto vector = [=](ptrdiff_t i) {
        const uint8_t* p = src + i;
        s16p sum = loadInOrder(p);
        for (uint32_t k = 1; k < rows; ++k) {
            p += stride;
            sum = sum + loadInOrder(p);
        }
        store(sums + i, sum.a);
        store(sums + i + kBytes / 2, sum.b);
    };
    uint32_t i = 0;
    for (; columns - i >= kBytes; i += kBytes)
        vector(i);
    if (i != columns) vector((ptrdiff_t)columns - (ptrdiff_t)kBytes);
}

// Products with 2^-24ths, below 2^32, are means of up to 256 pixels: 255 x n x the error of the reciprocal, below
// n, stays below 2^24.
template <class Width>
ODX_INLINE void meansOf(const uint16_t* sums, Width width, uint32_t pixels, uint8_t* out, uint32_t count)
{
    const uint32_t share = ((1u << 24) + pixels - 1) / pixels;
    for (size_t i = 0; i < count; ++i) {
        uint32_t sum = 0;
        for (uint32_t k = 0; k < width; ++k)
            sum += sums[i * width + k];
        out[i] = (uint8_t)(pixels <= 256 ? sum * share >> 24 : sum / pixels);
    }
}

void odxScaleDownu8V(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                     uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride)
{
    const uint32_t kx = srcWidth / dstWidth, ky = srcHeight / dstHeight;
    if (uint64_t{dstWidth} * kx < kBytes || kx > kSummed || ky > 257)
        return odxScaleDownu8C(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride);
    alignas(kBytes) uint16_t sums[kBytes + kSummed];
    for (uint32_t y = 0; y < dstHeight; ++y) {
        const uint8_t* const rows = rowOf(src, srcStride, size_t{y} * ky);
        uint8_t* const out = rowOf(dst, dstStride, y);
        for (uint32_t x = 0, count; x < dstWidth; x += count) {
            count = dstWidth - x < kSummed / kx ? dstWidth - x : kSummed / kx;
            const auto means = [&](auto width) { meansOf(sums + kBytes, width, kx * ky, out + x, count); };
            sumColumns(rows + size_t{x} * kx, srcStride, ky, count * kx, sums + kBytes);
            switch (kx) {
            case 2:
                means(std::integral_constant<uint32_t, 2>());
                break;
            case 3:
                means(std::integral_constant<uint32_t, 3>());
                break;
            case 4:
                means(std::integral_constant<uint32_t, 4>());
                break;
            default:
                means(kx);
            }
        }
    }
}

// ---- groups ----

// Groups of one or two columns: the second pixel counts where there is one. Means of up to 16 pixels are products
// with 2^-16ths: n x 255 x the error of the reciprocal, below n, stays below 2^16.
constexpr uint32_t kMostGrouped = 16;

void groupMeansV(const Resize* image, uint32_t channels)
{
    const bool down = image->dstWidth <= image->srcWidth && 2 * uint64_t{image->dstWidth} >= image->srcWidth &&
                      image->dstHeight <= image->srcHeight &&
                      image->srcHeight / image->dstHeight + 1 <= kMostGrouped / 2;
    if (!down || uint64_t{image->srcWidth} * channels < kLookupWindow) return groupMeansC(image, channels);
    Groups columns(image->srcWidth, image->dstWidth);
    uint32_t left = 0;
    for (uint32_t x = 0, count; x < image->dstWidth; x += count) {
        count = image->dstWidth - x < kColumns / channels ? image->dstWidth - x : kColumns / channels;
        const uint32_t bytes = count * channels;
        uint32_t at[2][kColumns];
        alignas(kBytes) uint8_t second[kColumns]; // 255 where there is one
        for (uint32_t i = 0; i < bytes; i += channels) {
            uint32_t n = 1;
            while (!columns.closes())
                ++n;
            for (uint32_t c = 0; c < channels; ++c) {
                at[0][i + c] = left * channels + c;
                at[1][i + c] = (left + n - 1) * channels + c;
                second[i + c] = n == 2 ? 255 : 0;
            }
            left += n;
        }
        for (uint32_t i = bytes; i % kBytes != 0; ++i)
            second[i] = 0;
        Windows<2> windows;
        if (!windows.fill([&](uint32_t k) { return at[k]; }, bytes, uint64_t{image->srcWidth} * channels)) {
            return groupMeansC(image, channels); // the whole image
        }
        Groups rows(image->srcHeight, image->dstHeight);
        uint32_t top = 0;
        for (uint32_t y = 0; y < image->dstHeight; ++y) {
            uint32_t n = 1;
            while (!rows.closes())
                ++n;
            const auto share = [](uint32_t pixels) {
                return (uint16_t)(pixels == 1 ? 65535 : (65536 + pixels - 1) / pixels);
            };
            const uint16_t one = share(n), two = share(2 * n);
            for (uint32_t i = 0; i < bytes; i += kBytes) {
                const u8v mask = load<u8v>(second + i);
                u16p sum = {};
                for (uint32_t k = 0; k < n; ++k) {
                    const uint8_t* const row = image->in(size_t{top} + k);
                    sum = sum + split(windows.of(0, row, i)) + split(windows.of(1, row, i) & mask);
                }
                const u16p chosen = split(mask);
                const auto mean = [=](u16v sums, u16v both) {
                    const u16v wide = (u16v)(both != 0);
                    return (mulHigh(sums, one) & ~wide) | (mulHigh(sums, two) & wide);
                };
                storeOutputs(image->out(y) + size_t{x} * channels + i,
                             join(u16p{mean(sum.a, chosen.a), mean(sum.b, chosen.b)}), bytes - i);
            }
            top += n;
        }
    }
}

} // namespace odx::ODX_TARGET
