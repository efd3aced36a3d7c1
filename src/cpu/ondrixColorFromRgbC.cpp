// Conversions from RGB. A row is taken in chunks: a layout spreads the channels of a chunk into planes, which the
// arithmetic, or another layout, takes from there. So a layout is written in one place, and every loop over a
// channel is one that compilers vectorise.
#include "cpu/ondrixColorFromRgbC.h"

#include "cpu/channels.h"
#include "cpu/ondrixColor.h"
#include "cpu/ondrixColorFromRgb.h"

namespace odx::color
{

namespace
{

// ---- layouts ----

using channels::kChunk;
using channels::Pixels;

// How pixels are stored, from the first channel to the third in order of memory, or from the low bits up. What is
// stored beside them is 255.

struct Triples {
    static constexpr size_t kSize = 3;
    static constexpr auto load = channels::split3;
    static constexpr auto store = channels::join3;
};

struct Quads {
    static constexpr size_t kSize = 4;
    static constexpr auto load = channels::split4;
    static constexpr auto store = channels::join4;
};

// What the missing low bits of a channel become.
enum class LowBits { Zero, HighBits };

// 16-bit words with channels of 5, 6 and 5 bits.
template <LowBits lowBits>
struct Words565 {
    static constexpr size_t kSize = 2;

    static void load(const uint8_t* __restrict src, uint8_t* __restrict first, uint8_t* __restrict second,
                     uint8_t* __restrict third, size_t count)
    {
        constexpr uint16_t low = lowBits == LowBits::HighBits ? 0xFF : 0;
        for (size_t x = 0; x < count; ++x) {
            uint16_t w;
            memcpy(&w, src + 2 * x, sizeof w);
            first[x] = static_cast<uint8_t>((w << 3 & 0xF8) | (w >> 2 & 0x07 & low));
            second[x] = static_cast<uint8_t>((w >> 3 & 0xFC) | (w >> 9 & 0x03 & low));
            third[x] = static_cast<uint8_t>((w >> 8 & 0xF8) | (w >> 13 & 0x07 & low));
        }
    }
    static constexpr auto store = channels::join565;
};

enum class Order { RedFirst, BlueFirst };

// A layout of pixels: how they are stored, and in which order.
template <class Storage, Order order>
struct Layout {
    static constexpr size_t kSize = Storage::kSize;

    static void load(const uint8_t* src, Pixels& pixels, size_t count)
    {
        if constexpr (order == Order::RedFirst) {
            Storage::load(src, pixels.red, pixels.green, pixels.blue, count);
        } else {
            Storage::load(src, pixels.blue, pixels.green, pixels.red, count);
        }
    }
    static void store(const Pixels& pixels, uint8_t* dst, size_t count)
    {
        if constexpr (order == Order::RedFirst) {
            Storage::store(pixels.red, pixels.green, pixels.blue, dst, count);
        } else {
            Storage::store(pixels.blue, pixels.green, pixels.red, dst, count);
        }
    }
};

// The layouts of the conversions between packed images.
namespace repacked
{
using RGB565 = Layout<Words565<LowBits::HighBits>, Order::RedFirst>;
using RGB888 = Layout<Triples, Order::RedFirst>;
using RGBA8888 = Layout<Quads, Order::RedFirst>;
using BGR565 = Layout<Words565<LowBits::HighBits>, Order::BlueFirst>;
using BGR888 = Layout<Triples, Order::BlueFirst>;
using BGRA8888 = Layout<Quads, Order::BlueFirst>;
} // namespace repacked

// What the conversions to luma and chroma call by the same names: blue comes first, and the missing bits are 0.
namespace blueFirst
{
using RGB565 = Layout<Words565<LowBits::Zero>, Order::BlueFirst>;
using RGB888 = repacked::BGR888;
using RGBA8888 = repacked::BGRA8888;
} // namespace blueFirst

// Calls use(pixels, x, count) for one chunk of a row after the other.
template <class Source, class Use>
[[gnu::always_inline]] inline void inChunks(const uint8_t* src, size_t width, Use use)
{
    Pixels pixels;
    for (size_t x = 0, count; x < width; x += count) {
        count = width - x < kChunk ? width - x : kChunk;
        Source::load(src + Source::kSize * x, pixels, count);
        use(pixels, x, count);
    }
}

// ---- RGB to luma and chroma ----

// Channel i of a plane, or channel 2 * i, as the low byte of a word.
template <size_t step>
uint8_t channelAt(const uint8_t* plane, size_t i)
{
    if constexpr (step == 1) return plane[i];
    uint16_t word;
    memcpy(&word, plane + 2 * i, sizeof word);
    return static_cast<uint8_t>(word);
}

// Weighted sums of every `step`-th pixel, which must be from 0 to 65535. Sums that are stored keep compilers from
// wider arithmetic.
template <int red, int green, int blue, int offset, size_t step = 1>
void sumsOf(const Pixels& pixels, uint16_t* __restrict sums, size_t count)
{
    for (size_t i = 0; i < count / step; ++i) {
        const int r = channelAt<step>(pixels.red, i), g = channelAt<step>(pixels.green, i),
                  b = channelAt<step>(pixels.blue, i);
        sums[i] = static_cast<uint16_t>(red * r + green * g + blue * b + offset);
    }
}

void lumaOf(const Pixels& pixels, uint8_t* __restrict y, size_t count)
{
    uint16_t sums[kChunk];
    sumsOf<77, 150, 29, 128>(pixels, sums, count);
    for (size_t x = 0; x < count; ++x)
        y[x] = static_cast<uint8_t>(sums[x] >> 8);
}

// min(128 + ((sum + 128) >> 8), 255) of a chroma sum to which 32640 was added, so that it is from 0 to 65280.
// Channels of 5 and 6 bits never come near the limit: for them it is the same as ((sum + 128) >> 8) ^ 128.
uint8_t chromaOf(uint16_t sum)
{
    const uint8_t high = static_cast<uint8_t>(sum >> 8);
    return static_cast<uint8_t>((high < 254 ? high : 254) + 1);
}

// The chroma of every pixel, or of every second one, in planes or in pairs.
template <Chroma chroma, size_t step>
void chromaRow(const Pixels& pixels, uint8_t* __restrict cb, uint8_t* __restrict cr, size_t count)
{
    uint16_t u[kChunk], v[kChunk];
    sumsOf<-43, -85, 128, 32640, step>(pixels, u, count);
    sumsOf<128, -107, -21, 32640, step>(pixels, v, count);
    for (size_t i = 0; i < count / step; ++i) {
        if constexpr (chroma == Chroma::Planes) {
            cb[i] = chromaOf(u[i]);
            cr[i] = chromaOf(v[i]);
        } else {
            const uint16_t pair = static_cast<uint16_t>(chromaOf(u[i]) | chromaOf(v[i]) << 8);
            memcpy(cb + 2 * i, &pair, sizeof pair);
        }
    }
}

// A row with luma and the chroma of every `step`-th pixel. Of pairs, `cb` is the plane.
template <class Source, Chroma chroma, size_t step>
void yuvRow(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, size_t width)
{
    inChunks<Source>(src, width, [=](const Pixels& pixels, size_t x, size_t count) {
        constexpr size_t size = chroma == Chroma::CbCrPairs ? 2 : 1;
        lumaOf(pixels, y + x, count);
        chromaRow<chroma, step>(pixels, cb + size * (x / step), cr + size * (x / step), count);
    });
}

template <class Source>
void yRow(const uint8_t* src, uint8_t* y, size_t width)
{
    inChunks<Source>(src, width,
                     [=](const Pixels& pixels, size_t x, size_t count) { lumaOf(pixels, y + x, count); });
}

struct Destination {
    uint8_t *y, *cb, *cr;
    uint32_t yStride, cbStride, crStride;
};

// Rows of odd width have no whole pairs of pixels: where pairs share chroma they are left as they are, other than
// rows that only have luma.
template <uint32_t subsampling>
void convertToYuv(const HelperPointer<odxYuvRow>& convert, const HelperPointer<odxLumaRow>& convertLuma,
                  const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, const Destination& dst)
{
    constexpr size_t across = subsampling == 444 ? 1 : 2, down = subsampling == 420 ? 2 : 1;
    for (size_t row = 0; row < height; ++row) {
        const uint8_t* const in = rowOf(src, srcStride, row);
        uint8_t* const y = rowOf(dst.y, dst.yStride, row);
        if (row % down != 0) {
            convertLuma(in, y, width);
        } else if (width % across == 0) {
            convert(in, y, rowOf(dst.cb, dst.cbStride, row / down), rowOf(dst.cr, dst.crStride, row / down),
                    width);
        }
    }
}

// ---- RGB to grey, Y/Cr/Cb and HSV ----

void greyRow(const uint8_t* src, uint8_t* dst, size_t width)
{
    inChunks<repacked::RGB888>(src, width, [=](const Pixels& pixels, size_t x0, size_t count) {
        const Weights w = kGrey;
        for (size_t x = 0; x < count; ++x) {
            const int32_t sum = w.red * pixels.red[x] + w.green * pixels.green[x] + w.blue * pixels.blue[x];
            dst[x0 + x] = static_cast<uint8_t>((sum + 32768) >> 16);
        }
    });
}

uint8_t clamp(int32_t value)
{
    return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

// (weights * pixels + half) >> 15, on top of an offset.
void fineSum(const Weights& w, int32_t offset, const Pixels& pixels, uint8_t* __restrict dst, size_t count)
{
    for (size_t x = 0; x < count; ++x) {
        const int32_t sum = w.red * pixels.red[x] + w.green * pixels.green[x] + w.blue * pixels.blue[x];
        dst[x] = clamp(offset + ((sum + 16384) >> 15));
    }
}

void yCrCbRow(const uint8_t* src, uint8_t* dst, size_t width)
{
    inChunks<repacked::RGB888>(src, width, [=](const Pixels& pixels, size_t x, size_t count) {
        alignas(16) uint8_t y[kChunk], cr[kChunk], cb[kChunk];
        fineSum(kFineY, 0, pixels, y, count);
        fineSum(kFineCr, 128, pixels, cr, count);
        fineSum(kFineCb, 128, pixels, cb, count);
        channels::join3(y, cr, cb, dst + 3 * x, count);
    });
}

constexpr int32_t kOne = 65536; // 1 in 16 fractional bits

struct Reciprocals {
    uint32_t entry[256];

    constexpr Reciprocals() : entry()
    {
        for (uint32_t i = 1; i < 256; ++i)
            entry[i] = (kOne + i / 2) / i;
    }
};
constexpr Reciprocals kReciprocals;
constexpr const uint32_t (&OneByxLUT)[256] = kReciprocals.entry;

// What the hue of each pixel is computed from: a difference of two channels, and the sixths of the circle that it
// counts from.
struct Hues {
    alignas(16) uint8_t greatest[kChunk], spread[kChunk], first[kChunk], second[kChunk], sixths[kChunk];
};

void huesOf(const Pixels& pixels, Hues& hues, size_t count)
{
    for (size_t x = 0; x < count; ++x) {
        const uint8_t r = pixels.red[x], g = pixels.green[x], b = pixels.blue[x];
        const uint8_t greater = g > b ? g : b, lesser = g < b ? g : b;
        const uint8_t greatest = r > greater ? r : greater, least = r < lesser ? r : lesser;
        hues.greatest[x] = greatest;
        hues.spread[x] = static_cast<uint8_t>(greatest - least);
        const uint8_t first = g == greatest ? b : r, second = g == greatest ? r : g, turn = g == greatest ? 2 : 4;
        const uint8_t back = lesser == b ? 0 : 6; // where green is less than blue
        hues.first[x] = r == greatest ? g : first;
        hues.second[x] = r == greatest ? b : second;
        hues.sixths[x] = r == greatest ? back : turn;
    }
}

void rgb8882hsv(const uint8_t* src, uint8_t* dst, size_t width)
{
    inChunks<repacked::RGB888>(src, width, [=](const Pixels& pixels, size_t x0, size_t count) {
        Hues hues;
        huesOf(pixels, hues, count);
        uint8_t* hsv = dst + 3 * x0;
        for (size_t x = 0; x < count; ++x, hsv += 3) {
            const uint32_t value = hues.greatest[x], spread = hues.spread[x];
            const int32_t reciprocal = static_cast<int32_t>(OneByxLUT[spread]);
            const int32_t h = reciprocal * (hues.first[x] - hues.second[x]) + hues.sixths[x] * kOne;
            hsv[0] = static_cast<uint8_t>((kOne / 2 + ((h * 85) >> 1)) >> 16);
            hsv[1] = static_cast<uint8_t>((OneByxLUT[value] * spread * 255 + kOne / 2) >> 16);
            hsv[2] = static_cast<uint8_t>(value);
        }
    });
}

// ---- packed RGB to packed RGB ----

template <class Source, class Target>
struct Repacking {
    static void row(const uint8_t* src, uint8_t* dst, size_t width)
    {
        inChunks<Source>(src, width, [=](const Pixels& pixels, size_t x, size_t count) {
            Target::store(pixels, dst + Target::kSize * x, count);
        });
    }
};

// Pairs of layouts that have a shorter way.

template <>
struct Repacking<repacked::RGB888, repacked::RGBA8888> {
    static constexpr auto row = channels::widen;
};
template <>
struct Repacking<repacked::RGBA8888, repacked::RGB888> {
    static constexpr auto row = channels::narrow;
};
template <>
struct Repacking<repacked::RGB888, repacked::BGR888> {
    static constexpr auto row = channels::mirror3;
};

template <>
struct Repacking<repacked::RGB565, repacked::BGR565> {
    static void row(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t width)
    {
        for (size_t x = 0; x < width; ++x) {
            uint16_t w;
            memcpy(&w, src + 2 * x, sizeof w);
            w = static_cast<uint16_t>((w & 0x07E0) | w << 11 | w >> 11);
            memcpy(dst + 2 * x, &w, sizeof w);
        }
    }
};

// The only pair in which both have a fourth channel, which is kept.
template <>
struct Repacking<repacked::RGBA8888, repacked::BGRA8888> {
    static constexpr auto row = channels::mirror4;
};

// Reads a row backward.
void rgb888_to_rgb565_srcFromRight_dstFromLeft(const uint8_t* __restrict src, uint8_t* __restrict dst,
                                               size_t width)
{
    src += 3 * width;
    for (size_t x = 0; x < width; ++x) {
        src -= 3;
        const uint16_t w = static_cast<uint16_t>((src[2] & 0xF8) << 8 | (src[1] & 0xFC) << 3 | src[0] >> 3);
        memcpy(dst + 2 * x, &w, sizeof w);
    }
}

} // namespace

} // namespace odx::color

using namespace odx::color;

extern "C" {

#define ODX_YUV_ROW(name, pixels, chroma, step)                                                                 \
    void name(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, size_t width)                           \
    {                                                                                                           \
        yuvRow<blueFirst::pixels, Chroma::chroma, step>(src, y, cb, Chroma::chroma == Chroma::Planes ? cr : cb, \
                                                        width);                                                 \
    }
#define ODX_LUMA_ROW(name, pixels)                          \
    void name(const uint8_t* src, uint8_t* y, size_t width) \
    {                                                       \
        yRow<blueFirst::pixels>(src, y, width);             \
    }
ODX_YUV_ROW(rgb5652yuvpC, RGB565, Planes, 1)
ODX_YUV_ROW(rgb5652yyuvpC, RGB565, Planes, 2)
ODX_YUV_ROW(rgb5652yuvC, RGB565, CbCrPairs, 1)
ODX_YUV_ROW(rgb5652yyuvC, RGB565, CbCrPairs, 2)
ODX_LUMA_ROW(rgb5652yC, RGB565)
ODX_YUV_ROW(rgb8882yuvpC, RGB888, Planes, 1)
ODX_YUV_ROW(rgb8882yyuvpC, RGB888, Planes, 2)
ODX_YUV_ROW(rgb8882yuvC, RGB888, CbCrPairs, 1)
ODX_YUV_ROW(rgb8882yyuvC, RGB888, CbCrPairs, 2)
ODX_LUMA_ROW(rgb8882yC, RGB888)
ODX_YUV_ROW(rgba2yuvpC, RGBA8888, Planes, 1)
ODX_YUV_ROW(rgba2yyuvpC, RGBA8888, Planes, 2)
ODX_YUV_ROW(rgba2yuvC, RGBA8888, CbCrPairs, 1)
ODX_YUV_ROW(rgba2yyuvC, RGBA8888, CbCrPairs, 2)
ODX_LUMA_ROW(rgba2yC, RGBA8888)

#define ODX_REPACK(name, from, to)                                     \
    void name(const uint8_t* src, uint8_t* dst, size_t width)          \
    {                                                                  \
        Repacking<repacked::from, repacked::to>::row(src, dst, width); \
    }
ODX_REPACK(repackRGB565ToRGB888C, RGB565, RGB888)
ODX_REPACK(repackRGB565ToRGBA8888C, RGB565, RGBA8888)
ODX_REPACK(repackRGB565ToBGR565C, RGB565, BGR565)
ODX_REPACK(repackRGB565ToBGR888C, RGB565, BGR888)
ODX_REPACK(repackRGB565ToBGRA8888C, RGB565, BGRA8888)
ODX_REPACK(repackRGB888ToRGB565C, RGB888, RGB565)
ODX_REPACK(repackRGB888ToRGBA8888C, RGB888, RGBA8888)
ODX_REPACK(repackRGB888ToBGR565C, RGB888, BGR565)
ODX_REPACK(repackRGB888ToBGR888C, RGB888, BGR888)
ODX_REPACK(repackRGB888ToBGRA8888C, RGB888, BGRA8888)
ODX_REPACK(repackRGBA8888ToRGB565C, RGBA8888, RGB565)
ODX_REPACK(repackRGBA8888ToRGB888C, RGBA8888, RGB888)
ODX_REPACK(repackRGBA8888ToBGR565C, RGBA8888, BGR565)
ODX_REPACK(repackRGBA8888ToBGR888C, RGBA8888, BGR888)
ODX_REPACK(repackRGBA8888ToBGRA8888C, RGBA8888, BGRA8888)

#define ODX_TO_PLANAR(name, subsampling, row, lumaRow)                                         \
    void name(ODX_Packed_SOURCE, ODX_Planar_DESTINATION)                                       \
    {                                                                                          \
        convertToYuv<subsampling>(row, lumaRow, src, srcWidth, srcHeight, srcStride,           \
                                  {dstY, dstCb, dstCr, dstYStride, dstCbStride, dstCrStride}); \
    }
#define ODX_TO_PSEUDO_PLANAR(name, subsampling, row, lumaRow)                              \
    void name(ODX_Packed_SOURCE, ODX_PseudoPlanar_DESTINATION)                             \
    {                                                                                      \
        convertToYuv<subsampling>(row, lumaRow, src, srcWidth, srcHeight, srcStride,       \
                                  {dstY, dstC, dstC, dstYStride, dstCStride, dstCStride}); \
    }
ODX_TO_PLANAR(odxColorRGB565ToYCbCr444Planaru8C, 444, rgb5652yuvp_, rgb5652y_)
ODX_TO_PLANAR(odxColorRGB565ToYCbCr422Planaru8C, 422, rgb5652yyuvp_, rgb5652y_)
ODX_TO_PLANAR(odxColorRGB565ToYCbCr420Planaru8C, 420, rgb5652yyuvp_, rgb5652y_)
ODX_TO_PLANAR(odxColorRGB888ToYCbCr444Planaru8C, 444, rgb8882yuvp_, rgb8882y_)
ODX_TO_PLANAR(odxColorRGB888ToYCbCr422Planaru8C, 422, rgb8882yyuvp_, rgb8882y_)
ODX_TO_PLANAR(odxColorRGB888ToYCbCr420Planaru8C, 420, rgb8882yyuvp_, rgb8882y_)
ODX_TO_PLANAR(odxColorRGBA8888ToYCbCr444Planaru8C, 444, rgba2yuvp_, rgba2y_)
ODX_TO_PLANAR(odxColorRGBA8888ToYCbCr422Planaru8C, 422, rgba2yyuvp_, rgba2y_)
ODX_TO_PLANAR(odxColorRGBA8888ToYCbCr420Planaru8C, 420, rgba2yyuvp_, rgba2y_)
ODX_TO_PSEUDO_PLANAR(odxColorRGB565ToYCbCr444PseudoPlanaru8C, 444, rgb5652yuv_, rgb5652y_)
ODX_TO_PSEUDO_PLANAR(odxColorRGB565ToYCbCr422PseudoPlanaru8C, 422, rgb5652yyuv_, rgb5652y_)
ODX_TO_PSEUDO_PLANAR(odxColorRGB565ToYCbCr420PseudoPlanaru8C, 420, rgb5652yyuv_, rgb5652y_)
ODX_TO_PSEUDO_PLANAR(odxColorRGB888ToYCbCr444PseudoPlanaru8C, 444, rgb8882yuv_, rgb8882y_)
ODX_TO_PSEUDO_PLANAR(odxColorRGB888ToYCbCr422PseudoPlanaru8C, 422, rgb8882yyuv_, rgb8882y_)
ODX_TO_PSEUDO_PLANAR(odxColorRGB888ToYCbCr420PseudoPlanaru8C, 420, rgb8882yyuv_, rgb8882y_)
ODX_TO_PSEUDO_PLANAR(odxColorRGBA8888ToYCbCr444PseudoPlanaru8C, 444, rgba2yuv_, rgba2y_)
ODX_TO_PSEUDO_PLANAR(odxColorRGBA8888ToYCbCr422PseudoPlanaru8C, 422, rgba2yyuv_, rgba2y_)
ODX_TO_PSEUDO_PLANAR(odxColorRGBA8888ToYCbCr420PseudoPlanaru8C, 420, rgba2yyuv_, rgba2y_)

#define ODX_TO_PACKED(name, helper)                      \
    void name(ODX_Packed_SOURCE, ODX_Packed_DESTINATION) \
    {                                                    \
        odxRepackedRow* const row = helper;              \
        eachRow(ODX_Packed_ARGUMENTS, row);              \
    }
ODX_TO_PACKED(odxColorRGB565ToRGB888u8C, repackRGB565ToRGB888_)
ODX_TO_PACKED(odxColorRGB565ToRGBA8888u8C, repackRGB565ToRGBA8888_)
ODX_TO_PACKED(odxColorRGB565ToBGR565u8C, repackRGB565ToBGR565_)
ODX_TO_PACKED(odxColorRGB565ToBGR888u8C, repackRGB565ToBGR888_)
ODX_TO_PACKED(odxColorRGB565ToBGRA8888u8C, repackRGB565ToBGRA8888_)
ODX_TO_PACKED(odxColorRGB888ToRGB565u8C, repackRGB888ToRGB565_)
ODX_TO_PACKED(odxColorRGB888ToRGBA8888u8C, repackRGB888ToRGBA8888_)
ODX_TO_PACKED(odxColorRGB888ToBGR565u8C, repackRGB888ToBGR565_)
ODX_TO_PACKED(odxColorRGB888ToBGR888u8C, repackRGB888ToBGR888_)
ODX_TO_PACKED(odxColorRGB888ToBGRA8888u8C, repackRGB888ToBGRA8888_)
ODX_TO_PACKED(odxColorRGBA8888ToRGB565u8C, repackRGBA8888ToRGB565_)
ODX_TO_PACKED(odxColorRGBA8888ToRGB888u8C, repackRGBA8888ToRGB888_)
ODX_TO_PACKED(odxColorRGBA8888ToBGR565u8C, repackRGBA8888ToBGR565_)
ODX_TO_PACKED(odxColorRGBA8888ToBGR888u8C, repackRGBA8888ToBGR888_)
ODX_TO_PACKED(odxColorRGBA8888ToBGRA8888u8C, repackRGBA8888ToBGRA8888_)

void odxColorRGB888ToGrayu8C(ODX_Packed_SOURCE, ODX_Packed_DESTINATION)
{
    eachRow(ODX_Packed_ARGUMENTS, greyRow);
}

void odxColorRGB888toYCrCbu8C(ODX_Packed_SOURCE, ODX_Packed_DESTINATION)
{
    eachRow(ODX_Packed_ARGUMENTS, yCrCbRow);
}

void odxColorRGB888ToHSV888u8C(ODX_Packed_SOURCE, ODX_Packed_DESTINATION)
{
    eachRow(ODX_Packed_ARGUMENTS, rgb8882hsv);
}

void odxColorRGB888ToRGB565Rotate180u8C(ODX_Packed_SOURCE, ODX_Packed_DESTINATION)
{
    for (size_t y = 0; y < srcHeight; ++y) {
        rgb888_to_rgb565_srcFromRight_dstFromLeft(odx::rowOf(src, srcStride, y),
                                                  odx::rowOf(dst, dstStride, srcHeight - 1 - y), srcWidth);
    }
}
}
