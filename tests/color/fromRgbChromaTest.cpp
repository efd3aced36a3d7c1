// Conversions between layouts of luma and chroma images.
#include "cpu/ondrixColorFromRgbC.h"
#include "ondrix/modes.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace
{

// A luma and chroma image of any layout. Interleaved chroma of odd widths may be a pair short.
struct Picture {
    uint32_t width, height, across, down;
    bool pairs, defaulted, shortRows;
    uint32_t yStride, cStride, crStride;
    std::vector<uint8_t> y, cb, cr; // cb also holds pairs

    Picture(uint32_t w, uint32_t h, uint32_t subsampling, bool interleaved, bool packed)
        : width(w), height(h), across(subsampling == 444 ? 1 : 2), down(subsampling == 420 ? 2 : 1),
          pairs(interleaved), defaulted(packed), shortRows(interleaved && packed && across == 2)
    {
        yStride = packed ? w : w + 3;
        cStride = shortRows ? w : columns() * (pairs ? 2 : 1) + (packed ? 0 : 5);
        crStride = packed ? cStride : cStride + 2;
        y.assign(size_t{yStride} * h, 0x5A);
        cb.assign(size_t{cStride} * rows(), 0x5A);
        cr.assign(size_t{crStride} * rows(), 0x5A);
    }
    uint32_t argument(uint32_t stride) const { return defaulted ? 0 : stride; }
    uint32_t columns() const { return (width + across - 1) / across; }
    uint32_t rows() const { return (height + down - 1) / down; }
    // The samples of a kind in a row that are stored.
    uint32_t stored() const { return shortRows ? width / 2 : columns(); }

    void fill()
    {
        static std::mt19937 random(5);
        for (auto* plane : {&y, &cb, &cr})
            for (uint8_t& value : *plane)
                value = static_cast<uint8_t>(random());
    }
    uint8_t& sample(int kind, uint32_t i, uint32_t row)
    {
        if (pairs) return cb[size_t{cStride} * row + 2 * i + static_cast<uint32_t>(kind)];
        return kind == 0 ? cb[size_t{cStride} * row + i] : cr[size_t{crStride} * row + i];
    }
    // The chroma of a pixel.
    uint8_t chroma(int kind, uint32_t x, uint32_t row)
    {
        if (stored() == 0) return 128;
        return sample(kind, std::min(x / across, stored() - 1), row / down);
    }
};

using Convert = void (*)(const Picture&, Picture&);

struct Conversion {
    const char* name;
    uint32_t from, to;
    bool fromPairs, toPairs;
    Convert convert;
};

constexpr bool Planar = false, PseudoPlanar = true;

#define ODX_Planar_ARGUMENTS(p) p.y.data(), p.cb.data(), p.cr.data()
#define ODX_Planar_STRIDES(p) p.argument(p.yStride), p.argument(p.cStride), p.argument(p.crStride)
#define ODX_PseudoPlanar_ARGUMENTS(p) p.y.data(), p.cb.data()
#define ODX_PseudoPlanar_STRIDES(p) p.argument(p.yStride), p.argument(p.cStride)
#define ODX_CASE(from, fromSubsampling, to, toSubsampling)                                                   \
    {#fromSubsampling #from " to " #toSubsampling #to,                                                       \
     fromSubsampling,                                                                                        \
     toSubsampling,                                                                                          \
     from,                                                                                                   \
     to,                                                                                                     \
     [](const Picture& s, Picture& d) {                                                                      \
         odxColorYCbCr##fromSubsampling##from##ToYCbCr##toSubsampling##to##u8(                               \
             ODX_##from##_ARGUMENTS(s), s.width, s.height, ODX_##from##_STRIDES(s), ODX_##to##_ARGUMENTS(d), \
             ODX_##to##_STRIDES(d));                                                                         \
     }},
const Conversion kConversions[] = {ODX_YCBCR_TO_YCBCR(ODX_CASE)};

TEST(ChromaLayouts, PickAndRepeatSamples)
{
    ASSERT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE));
    ASSERT_EQ(30u, std::size(kConversions));
    for (const Conversion& c : kConversions) {
        for (uint32_t width : {1, 2, 3, 4, 7, 16, 33, 66, 131}) {
            for (uint32_t height : {1, 2, 5}) {
                for (bool packed : {false, true}) {
                    Picture src(width, height, c.from, c.fromPairs, packed);
                    Picture dst(width, height, c.to, c.toPairs, packed), expected = dst;
                    src.fill();
                    for (uint32_t row = 0; row < height; ++row)
                        std::copy_n(&src.y[size_t{src.yStride} * row], width,
                                    &expected.y[size_t{dst.yStride} * row]);
                    for (uint32_t row = 0; row < dst.rows(); ++row) {
                        for (uint32_t i = 0; i < dst.stored(); ++i) {
                            for (int kind : {0, 1})
                                expected.sample(kind, i, row) = src.chroma(kind, i * dst.across, row * dst.down);
                        }
                    }
                    c.convert(src, dst);
                    EXPECT_EQ(expected.y, dst.y) << c.name << ' ' << width << 'x' << height;
                    EXPECT_EQ(expected.cb, dst.cb) << c.name << ' ' << width << 'x' << height;
                    EXPECT_EQ(expected.cr, dst.cr) << c.name << ' ' << width << 'x' << height;
                }
            }
        }
    }
}

TEST(ChromaLayouts, SwapExchangesEachPair)
{
    for (odxOperationMode mode : {ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU}) {
        ASSERT_EQ(0, odxSetOperationMode(mode));
        for (uint32_t pairs = 1; pairs < 150; ++pairs) {
            std::vector<uint8_t> src(2 * pairs), dst(2 * pairs), expected(2 * pairs);
            for (uint32_t i = 0; i < 2 * pairs; ++i)
                src[i] = expected[i ^ 1] = static_cast<uint8_t>(i * 37 + pairs);
            odxColorCbCrSwapu8(src.data(), pairs, 1, 0, dst.data(), 0);
            ASSERT_EQ(expected, dst);
        }
    }
}

} // namespace
