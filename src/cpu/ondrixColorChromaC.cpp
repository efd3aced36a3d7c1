// Conversions between layouts of luma and chroma images: luma is copied, chroma picked or repeated.
#include "cpu/ondrixColorFromRgb.h"
#include "cpu/ondrixColorFromRgbC.h"

#include <string.h>

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

// How a row of chroma is stored. `samples` is how many of each kind it has for `wanted` ones that the width asks
// for, in rows of `stride` bytes.
struct Planar {
    static size_t samples(size_t wanted, uint32_t) { return wanted; }

    template <class Byte>
    struct Row {
        Byte *cb, *cr;

        uint8_t u(size_t i) const { return cb[i]; }
        uint8_t v(size_t i) const { return cr[i]; }
        void set(size_t i, uint8_t u, uint8_t v) const
        {
            cb[i] = u;
            cr[i] = v;
        }
    };
};

struct PseudoPlanar {
    static size_t samples(size_t wanted, uint32_t stride) { return wanted <= stride / 2 ? wanted : stride / 2; }

    template <class Byte>
    struct Row {
        Byte *pairs, *unused;

        uint8_t u(size_t i) const { return pairs[2 * i]; }
        uint8_t v(size_t i) const { return pairs[2 * i + 1]; }
        void set(size_t i, uint8_t u, uint8_t v) const
        {
            pairs[2 * i] = u;
            pairs[2 * i + 1] = v;
        }
    };
};

// Writes `count` samples of a row from the `available` ones of another: each as it is, every second one, or each
// twice. Beyond the last one it repeats.
template <class From, size_t fromAcross, class To, size_t toAcross>
void chromaRow(const uint8_t* __restrict srcCb, const uint8_t* __restrict srcCr, size_t available,
               uint8_t* __restrict dstCb, uint8_t* __restrict dstCr, size_t count)
{
    const typename From::template Row<const uint8_t> in = {srcCb, srcCr};
    const typename To::template Row<uint8_t> out = {dstCb, dstCr};
    size_t done;
    if constexpr (fromAcross > toAcross) {
        done = count / 2 < available ? count / 2 : available;
        for (size_t i = 0; i < done; ++i) {
            out.set(2 * i, in.u(i), in.v(i));
            out.set(2 * i + 1, in.u(i), in.v(i));
        }
        done *= 2;
    } else {
        constexpr size_t step = toAcross / fromAcross;
        const size_t whole = (available + step - 1) / step;
        done = count < whole ? count : whole;
        for (size_t i = 0; i < done; ++i)
            out.set(i, in.u(step * i), in.v(step * i));
    }
    for (; done < count; ++done) {
        const size_t last = fromAcross > toAcross && done / 2 < available ? done / 2 : available - 1;
        out.set(done, available != 0 ? in.u(last) : 128, available != 0 ? in.v(last) : 128);
    }
}

template <class From, uint32_t fromSubsampling, class To, uint32_t toSubsampling>
void convert(const Image<const uint8_t>& src, size_t width, size_t height, const Image<uint8_t>& dst)
{
    using In = Covers<fromSubsampling>;
    using Out = Covers<toSubsampling>;
    for (size_t y = 0; y < height; ++y)
        memcpy(rowOf(dst.y, dst.yStride, y), rowOf(src.y, src.yStride, y), width);

    const size_t available = From::samples((width + In::kAcross - 1) / In::kAcross, src.cbStride);
    const size_t count = To::samples((width + Out::kAcross - 1) / Out::kAcross, dst.cbStride);
    for (size_t y = 0; y < height; y += Out::kDown) {
        const size_t in = y / In::kDown, out = y / Out::kDown;
        chromaRow<From, In::kAcross, To, Out::kAcross>(
            rowOf(src.cb, src.cbStride, in), rowOf(src.cr, src.crStride, in), available,
            rowOf(dst.cb, dst.cbStride, out), rowOf(dst.cr, dst.crStride, out), count);
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

#define ODX_DEFINE(from, fromSubsampling, to, toSubsampling)                                              \
    void odxColorYCbCr##fromSubsampling##from##ToYCbCr##toSubsampling##to##u8C(ODX_##from##_SOURCE,       \
                                                                               ODX_##to##_DESTINATION)    \
    {                                                                                                     \
        convert<from, fromSubsampling, to, toSubsampling>(ODX_##from##_SOURCE_IMAGE, srcWidth, srcHeight, \
                                                          ODX_##to##_DESTINATION_IMAGE);                  \
    }
ODX_YCBCR_TO_YCBCR(ODX_DEFINE)
#undef ODX_DEFINE

void odxColorCbCrSwapu8C(ODX_Packed_SOURCE, ODX_Packed_DESTINATION)
{
    eachRow(ODX_Packed_ARGUMENTS, swapRow);
}
}
