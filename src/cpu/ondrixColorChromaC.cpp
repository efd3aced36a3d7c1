// Conversions between layouts of luma and chroma images: luma is copied, chroma picked or repeated.
#include "cpu/ondrixColorFromRgb.h"
#include "cpu/ondrixColorFromRgbC.h"

#include <string.h>
#include <type_traits>

namespace odx::color
{

namespace
{

// A subsampling: the pixels that a chroma sample covers.
template <uint32_t subsampling>
struct Covers {
    static constexpr size_t kAcross = subsampling == 444 ? 1 : 2, kDown = subsampling == 420 ? 2 : 1;
};

// An image's planes; of interleaved chroma, cb and cr are the first sample of each kind.
template <class Byte>
struct Image {
    Byte *y, *cb, *cr;
    uint32_t yStride, cbStride, crStride;
};

// An unsigned integer of n bytes, which lie in memory from its lowest to its highest. Neighbouring samples are
// read and written as one, so that compilers see loops over whole integers.
template <size_t n>
using Integer = std::conditional_t<n == 1, uint8_t, std::conditional_t<n == 2, uint16_t, uint32_t>>;

template <size_t n>
uint32_t integerAt(const uint8_t* p, size_t i)
{
    Integer<n> value;
    memcpy(&value, p + n * i, n);
    return value;
}
template <size_t n>
void setInteger(uint8_t* p, size_t i, uint32_t value)
{
    const Integer<n> narrow = static_cast<Integer<n>>(value);
    memcpy(p + n * i, &narrow, n);
}

struct Sample {
    uint32_t u, v;
};

// How a row of chroma is stored.
// - kBytes: of a sample in its plane
// - samples(wanted, stride): how many a row has, of those that the width asks for
// - load<n>(cb, cr, i): the first sample of the i-th group of n
// - store<n>(cb, cr, i, sample): the i-th group of n equal samples
struct Planar {
    static constexpr size_t kBytes = 1;
    static size_t samples(size_t wanted, uint32_t) { return wanted; }

    template <size_t n>
    static Sample load(const uint8_t* cb, const uint8_t* cr, size_t i)
    {
        return {integerAt<n>(cb, i) & 0xFF, integerAt<n>(cr, i) & 0xFF};
    }
    template <size_t n>
    static void store(uint8_t* cb, uint8_t* cr, size_t i, Sample s)
    {
        constexpr uint32_t repeat = n == 2 ? 0x0101 : 1;
        setInteger<n>(cb, i, s.u * repeat);
        setInteger<n>(cr, i, s.v * repeat);
    }
};

// `cb` is the plane of pairs.
struct PseudoPlanar {
    static constexpr size_t kBytes = 2;
    static size_t samples(size_t wanted, uint32_t stride) { return wanted <= stride / 2 ? wanted : stride / 2; }

    template <size_t n>
    static Sample load(const uint8_t* cb, const uint8_t*, size_t i)
    {
        const uint32_t pairs = integerAt<2 * n>(cb, i);
        return {pairs & 0xFF, pairs >> 8 & 0xFF};
    }
    template <size_t n>
    static void store(uint8_t* cb, uint8_t*, size_t i, Sample s)
    {
        constexpr uint32_t repeat = n == 2 ? 0x00010001 : 1;
        setInteger<2 * n>(cb, i, (s.u | s.v << 8) * repeat);
    }
};

constexpr uint8_t kNoChroma = 128; // of a grey pixel

// A row of chroma, as ODX_CHROMA_ROWS lists them.
template <class From, size_t step, class To, size_t repeat>
void chromaGroups(const uint8_t* __restrict srcCb, const uint8_t* __restrict srcCr, uint8_t* __restrict dstCb,
                  uint8_t* __restrict dstCr, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        To::template store<repeat>(dstCb, dstCr, i, From::template load<step>(srcCb, srcCr, i));
}

template <class From, size_t step, class To, size_t repeat>
struct ChromaGroups {
    static odxChromaRow* row() { return chromaGroups<From, step, To, repeat>; }
};
#define ODX_DEFINE(name, from, step, to, repeat)       \
    template <>                                        \
    struct ChromaGroups<from, step, to, repeat> {      \
        static odxChromaRow* row() { return name##_; } \
    };
ODX_CHROMA_ROWS(ODX_DEFINE)
#undef ODX_DEFINE

// Writes `count` samples of a row from the `available` ones of another: each as it is, every second one, or each
// twice. Where they run out, the last one is repeated.
template <class From, size_t fromAcross, class To, size_t toAcross>
void chromaRow(const uint8_t* __restrict srcCb, const uint8_t* __restrict srcCr, size_t available,
               uint8_t* __restrict dstCb, uint8_t* __restrict dstCr, size_t count)
{
    constexpr size_t step = toAcross > fromAcross ? 2 : 1, repeat = fromAcross > toAcross ? 2 : 1;
    const size_t groups = available / step < count / repeat ? available / step : count / repeat;
    ChromaGroups<From, step, To, repeat>::row()(srcCb, srcCr, dstCb, dstCr, groups);
    for (size_t i = repeat * groups; i < count; ++i) {
        Sample sample = {kNoChroma, kNoChroma};
        const size_t at = i * step / repeat;
        if (available != 0) sample = From::template load<1>(srcCb, srcCr, at < available ? at : available - 1);
        To::template store<1>(dstCb, dstCr, i, sample);
    }
}

// No gaps between rows of so many samples.
template <class Kind, class Byte>
bool packed(const Image<Byte>& image, size_t samples)
{
    return image.cbStride == Kind::kBytes * samples && image.crStride == image.cbStride;
}

template <class From, uint32_t fromSubsampling, class To, uint32_t toSubsampling>
void convert(const Image<const uint8_t>& src, size_t width, size_t height, const Image<uint8_t>& dst)
{
    using In = Covers<fromSubsampling>;
    using Out = Covers<toSubsampling>;
    // What has no gaps is one long row.
    const bool packedLuma = src.yStride == width && dst.yStride == width;
    const size_t lumaRows = packedLuma ? 1 : height, lumaBytes = packedLuma ? width * height : width;
    for (size_t y = 0; y < lumaRows; ++y)
        memcpy(rowOf(dst.y, dst.yStride, y), rowOf(src.y, src.yStride, y), lumaBytes);

    size_t available = From::samples((width + In::kAcross - 1) / In::kAcross, src.cbStride);
    size_t count = To::samples((width + Out::kAcross - 1) / Out::kAcross, dst.cbStride);
    size_t rows = (height + Out::kDown - 1) / Out::kDown;
    if (In::kDown == Out::kDown && In::kAcross * available == Out::kAcross * count &&
        packed<From>(src, available) && packed<To>(dst, count)) {
        available *= rows;
        count *= rows;
        rows = 1;
    }
    for (size_t y = 0; y < rows; ++y) {
        const size_t in = y * Out::kDown / In::kDown;
        chromaRow<From, In::kAcross, To, Out::kAcross>(
            rowOf(src.cb, src.cbStride, in), rowOf(src.cr, src.crStride, in), available,
            rowOf(dst.cb, dst.cbStride, y), rowOf(dst.cr, dst.crStride, y), count);
    }
}

void swapRow(const uint8_t* src, uint8_t* dst, size_t pairs)
{
    for (size_t i = 0; i < pairs; ++i) {
        uint16_t pair;
        memcpy(&pair, src + 2 * i, sizeof pair);
        pair = static_cast<uint16_t>(pair << 8 | pair >> 8);
        memcpy(dst + 2 * i, &pair, sizeof pair);
    }
}

} // namespace

} // namespace odx::color

using namespace odx::color;

extern "C" {

#define ODX_CHROMA_ROW(name, from, step, to, repeat)                                                    \
    void name(const uint8_t* srcCb, const uint8_t* srcCr, uint8_t* dstCb, uint8_t* dstCr, size_t count) \
    {                                                                                                   \
        chromaGroups<from, step, to, repeat>(srcCb, srcCr, dstCb, dstCr, count);                        \
    }
ODX_CHROMA_ROW(chromaPlanarToPlanarHalfC, Planar, 2, Planar, 1)
ODX_CHROMA_ROW(chromaPlanarToPlanarTwiceC, Planar, 1, Planar, 2)
ODX_CHROMA_ROW(chromaPlanarToPseudoPlanarC, Planar, 1, PseudoPlanar, 1)
ODX_CHROMA_ROW(chromaPlanarToPseudoPlanarHalfC, Planar, 2, PseudoPlanar, 1)
ODX_CHROMA_ROW(chromaPlanarToPseudoPlanarTwiceC, Planar, 1, PseudoPlanar, 2)
ODX_CHROMA_ROW(chromaPseudoPlanarToPlanarC, PseudoPlanar, 1, Planar, 1)
ODX_CHROMA_ROW(chromaPseudoPlanarToPlanarHalfC, PseudoPlanar, 2, Planar, 1)
ODX_CHROMA_ROW(chromaPseudoPlanarToPlanarTwiceC, PseudoPlanar, 1, Planar, 2)
ODX_CHROMA_ROW(chromaPseudoPlanarToPseudoPlanarHalfC, PseudoPlanar, 2, PseudoPlanar, 1)
ODX_CHROMA_ROW(chromaPseudoPlanarToPseudoPlanarTwiceC, PseudoPlanar, 1, PseudoPlanar, 2)

#define ODX_Planar_SOURCE_IMAGE                                  \
    {                                                            \
        srcY, srcCb, srcCr, srcYStride, srcCbStride, srcCrStride \
    }
#define ODX_PseudoPlanar_SOURCE_IMAGE                        \
    {                                                        \
        srcY, srcC, srcC, srcYStride, srcCStride, srcCStride \
    }
#define ODX_Planar_DESTINATION_IMAGE                             \
    {                                                            \
        dstY, dstCb, dstCr, dstYStride, dstCbStride, dstCrStride \
    }
#define ODX_PseudoPlanar_DESTINATION_IMAGE                   \
    {                                                        \
        dstY, dstC, dstC, dstYStride, dstCStride, dstCStride \
    }

#define ODX_CONVERSION(name, from, fromSubsampling, to, toSubsampling)                                    \
    void name(ODX_##from##_SOURCE, ODX_##to##_DESTINATION)                                                \
    {                                                                                                     \
        convert<from, fromSubsampling, to, toSubsampling>(ODX_##from##_SOURCE_IMAGE, srcWidth, srcHeight, \
                                                          ODX_##to##_DESTINATION_IMAGE);                  \
    }
ODX_CONVERSION(odxColorYCbCr420PlanarToYCbCr422Planaru8C, Planar, 420, Planar, 422)
ODX_CONVERSION(odxColorYCbCr420PlanarToYCbCr444Planaru8C, Planar, 420, Planar, 444)
ODX_CONVERSION(odxColorYCbCr422PlanarToYCbCr420Planaru8C, Planar, 422, Planar, 420)
ODX_CONVERSION(odxColorYCbCr422PlanarToYCbCr444Planaru8C, Planar, 422, Planar, 444)
ODX_CONVERSION(odxColorYCbCr444PlanarToYCbCr420Planaru8C, Planar, 444, Planar, 420)
ODX_CONVERSION(odxColorYCbCr444PlanarToYCbCr422Planaru8C, Planar, 444, Planar, 422)
ODX_CONVERSION(odxColorYCbCr420PlanarToYCbCr420PseudoPlanaru8C, Planar, 420, PseudoPlanar, 420)
ODX_CONVERSION(odxColorYCbCr420PlanarToYCbCr422PseudoPlanaru8C, Planar, 420, PseudoPlanar, 422)
ODX_CONVERSION(odxColorYCbCr420PlanarToYCbCr444PseudoPlanaru8C, Planar, 420, PseudoPlanar, 444)
ODX_CONVERSION(odxColorYCbCr422PlanarToYCbCr420PseudoPlanaru8C, Planar, 422, PseudoPlanar, 420)
ODX_CONVERSION(odxColorYCbCr422PlanarToYCbCr422PseudoPlanaru8C, Planar, 422, PseudoPlanar, 422)
ODX_CONVERSION(odxColorYCbCr422PlanarToYCbCr444PseudoPlanaru8C, Planar, 422, PseudoPlanar, 444)
ODX_CONVERSION(odxColorYCbCr444PlanarToYCbCr420PseudoPlanaru8C, Planar, 444, PseudoPlanar, 420)
ODX_CONVERSION(odxColorYCbCr444PlanarToYCbCr422PseudoPlanaru8C, Planar, 444, PseudoPlanar, 422)
ODX_CONVERSION(odxColorYCbCr444PlanarToYCbCr444PseudoPlanaru8C, Planar, 444, PseudoPlanar, 444)
ODX_CONVERSION(odxColorYCbCr420PseudoPlanarToYCbCr420Planaru8C, PseudoPlanar, 420, Planar, 420)
ODX_CONVERSION(odxColorYCbCr420PseudoPlanarToYCbCr422Planaru8C, PseudoPlanar, 420, Planar, 422)
ODX_CONVERSION(odxColorYCbCr420PseudoPlanarToYCbCr444Planaru8C, PseudoPlanar, 420, Planar, 444)
ODX_CONVERSION(odxColorYCbCr422PseudoPlanarToYCbCr420Planaru8C, PseudoPlanar, 422, Planar, 420)
ODX_CONVERSION(odxColorYCbCr422PseudoPlanarToYCbCr422Planaru8C, PseudoPlanar, 422, Planar, 422)
ODX_CONVERSION(odxColorYCbCr422PseudoPlanarToYCbCr444Planaru8C, PseudoPlanar, 422, Planar, 444)
ODX_CONVERSION(odxColorYCbCr444PseudoPlanarToYCbCr420Planaru8C, PseudoPlanar, 444, Planar, 420)
ODX_CONVERSION(odxColorYCbCr444PseudoPlanarToYCbCr422Planaru8C, PseudoPlanar, 444, Planar, 422)
ODX_CONVERSION(odxColorYCbCr444PseudoPlanarToYCbCr444Planaru8C, PseudoPlanar, 444, Planar, 444)
ODX_CONVERSION(odxColorYCbCr420PseudoPlanarToYCbCr422PseudoPlanaru8C, PseudoPlanar, 420, PseudoPlanar, 422)
ODX_CONVERSION(odxColorYCbCr420PseudoPlanarToYCbCr444PseudoPlanaru8C, PseudoPlanar, 420, PseudoPlanar, 444)
ODX_CONVERSION(odxColorYCbCr422PseudoPlanarToYCbCr420PseudoPlanaru8C, PseudoPlanar, 422, PseudoPlanar, 420)
ODX_CONVERSION(odxColorYCbCr422PseudoPlanarToYCbCr444PseudoPlanaru8C, PseudoPlanar, 422, PseudoPlanar, 444)
ODX_CONVERSION(odxColorYCbCr444PseudoPlanarToYCbCr420PseudoPlanaru8C, PseudoPlanar, 444, PseudoPlanar, 420)
ODX_CONVERSION(odxColorYCbCr444PseudoPlanarToYCbCr422PseudoPlanaru8C, PseudoPlanar, 444, PseudoPlanar, 422)

void odxColorCbCrSwapu8C(ODX_Packed_SOURCE, ODX_Packed_DESTINATION)
{
    eachRow(ODX_Packed_ARGUMENTS, swapRow);
}
}
