// Integral images against their definition.
#include "ondrix.h"
#include "support/pictures.h"
#include "support/referenceTest.h"

#include <gtest/gtest.h>

#include <limits>

using namespace odx::test;

namespace
{

using Integrals = odx::test::ReferenceTest;

using Image = Grid<uint8_t>;

// The table of what pixelAt(x, y) gives, or of its squares, with entries of more columns than it has.
template <class T, class PixelAt>
Grid<T> tableOf(int width, int height, bool squared, PixelAt pixelAt, int columns = 0)
{
    Grid<T> table(std::max(width + 1, columns), height + 1, 77);
    for (int Y = 0; Y <= height; ++Y) {
        for (int X = 0; X <= width; ++X) {
            T sum = X == 0 ? 0 : table.at(X - 1, Y);
            for (int y = 0; X > 0 && y < Y; ++y) {
                const auto pixel = static_cast<T>(pixelAt(X - 1, y));
                sum += squared ? pixel * pixel : pixel;
            }
            table.at(X, Y) = sum;
        }
    }
    return table;
}
template <class T>
Grid<T> tableOf(const Image& src, bool squared, int columns = 0)
{
    return tableOf<T>(
        src.width, src.height, squared, [&](int x, int y) { return src.at(x, y); }, columns);
}

const std::pair<int, int> kSizes[] = {{1, 1}, {1, 5}, {6, 1}, {2, 2}, {37, 9}, {2100, 1}};

} // namespace

TEST_F(Integrals, ImagesAreSumsOfAllAboveAndToTheLeft)
{
    for (const auto& [width, height] : kSizes) {
        const Image src = noise<uint8_t>(width, height, 0, 255), pairs = noise<uint8_t>(2 * width, height, 0, 255);
        const auto columns = static_cast<unsigned>(width + 3);
        Grid<uint32_t> packed(width + 1, height + 1), dst(width + 3, height + 1, 77);
        odxIntegrateImageu8(src.data(), src.w(), src.h(), packed.data());
        EXPECT_EQ(tableOf<uint32_t>(src, false), packed);
        odxIntegrateImageu8_v2(src.data(), src.w(), src.h(), 0, dst.data(), columns * 4);
        EXPECT_EQ(tableOf<uint32_t>(src, false, width + 3), dst);

        for (const int tables : {1, 2, 3}) {
            const Grid<uint64_t> untouched(width + 3, height + 1, 77);
            Grid<uint64_t> sums = untouched, squares = untouched;
            odxIntegrateImageu8u64(src.data(), src.w(), src.h(), 0, tables & 1 ? sums.data() : nullptr,
                                   tables & 2 ? squares.data() : nullptr, columns * 8);
            EXPECT_EQ(tables & 1 ? tableOf<uint64_t>(src, false, width + 3) : untouched, sums);
            EXPECT_EQ(tables & 2 ? tableOf<uint64_t>(src, true, width + 3) : untouched, squares);
        }

        const Image luma = noise<uint8_t>(2 * width, 2 * height, 0, 255);
        Grid<uint32_t> y(2 * width + 1, 2 * height + 1), cb(width + 1, height + 1), cr = cb;
        odxIntegrateImageYCbCr420PseudoPlanaru8(luma.data(), pairs.data(), luma.w(), luma.h(), 0, 0, y.data(),
                                                cb.data(), cr.data(), 0, 0, 0);
        EXPECT_EQ(tableOf<uint32_t>(luma, false), y);
        const auto chroma = [&, w = width, h = height](int first) {
            return tableOf<uint32_t>(w, h, false, [&](int u, int v) { return pairs.at(2 * u + first, v); });
        };
        EXPECT_EQ(chroma(0), cb);
        EXPECT_EQ(chroma(1), cr);
    }
}

TEST_F(Integrals, LinesGoOnFromTheRowAbove)
{
    const Image src = noise<uint8_t>(64, 1, 0, 255);
    Grid<uint32_t> above(65, 1), expected(65, 1), start(65, 1);
    uint32_t sum = 0;
    for (int i = 0; i <= 64; ++i) {
        above.at(i, 0) = 0xFFFFFFFF - static_cast<uint32_t>(i * i); // entries wrap
        expected.at(i, 0) = above.at(i, 0) + sum;
        start.at(i, 0) = sum;
        if (i < 64) sum += src.at(i, 0);
    }
    Grid<uint32_t> dst(65, 1, 77), dst64 = dst;
    odxIntegrateImageLineu8(src.data(), 64, above.data(), dst.data());
    odxIntegrateImageLine64u8(src.data(), above.data(), dst64.data());
    EXPECT_EQ(expected, dst);
    EXPECT_EQ(expected, dst64);
    odxIntegrateImageLineu8(src.data(), 64, nullptr, dst.data());
    odxIntegrateImageLine64u8(src.data(), above.data(), above.data());
    EXPECT_EQ(start, dst);
    EXPECT_EQ(expected, above);
}

TEST_F(Integrals, TiltedOnesAreSumsOfTriangles)
{
    for (const auto& [width, height] : kSizes) {
        const Image src = noise<uint8_t>(width, height, 0, 255);
        Grid<int32_t> expected(width + 1, height + 1), dst(width + 1, height + 1, 77);
        for (int Y = 0; Y <= height; ++Y) {
            for (int X = 0; X <= width; ++X) {
                for (int y = 0; y < Y; ++y) {
                    for (int x = 0; x < width; ++x)
                        expected.at(X, Y) += std::abs(x - X + 1) <= Y - y - 1 ? src.at(x, y) : 0;
                }
            }
        }
        EXPECT_EQ(0, odxTiltedIntegralu8s32(src.data(), src.w(), src.h(), 0, dst.data(), 0));
        EXPECT_EQ(expected, dst);
    }
}

TEST_F(Integrals, PatchesAreImagesOfTheirOwn)
{
    const Image src = noise<uint8_t>(23, 21, 0, 255);
    const auto expect = [&](int x, int y, int width, int height, auto operation) {
        const auto pixelAt = [&](int u, int v) { return src.at(x + u, y + v); };
        Grid<uint32_t> sums(width + 1, height + 1), squares = sums, alone = sums;
        operation(sums.data(), squares.data());
        operation(alone.data(), static_cast<uint32_t*>(nullptr));
        EXPECT_EQ(tableOf<uint32_t>(width, height, false, pixelAt), sums);
        EXPECT_EQ(tableOf<uint32_t>(width, height, true, pixelAt), squares);
        EXPECT_EQ(sums, alone);
    };
    const uint8_t* const p = src.data();
    expect(11, 9, 12, 12, [&](auto*... t) { odxIntegratePatch12x12u8(p, 23, 21, 11, 9, t...); });
    expect(0, 2, 12, 12, [&](auto*... t) { odxIntegratePatch12x12u8_v2(p, 14, 21, 23, 0, 2, t...); });
    expect(5, 3, 18, 18, [&](auto*... t) { odxIntegratePatch18x18u8(p, 23, 21, 5, 3, t...); });
    expect(0, 1, 18, 18, [&](auto*... t) { odxIntegratePatch18x18u8_v2(p, 18, 21, 23, 0, 1, t...); });
    expect(20, 1, 3, 20, [&](auto*... t) { odxIntegratePatchu8(p, 23, 21, 20, 1, 3, 20, t...); });
    expect(1, 4, 9, 1, [&](auto*... t) { odxIntegratePatchu8_v2(p, 10, 21, 23, 1, 4, 9, 1, t...); });
}

TEST_F(Integrals, PatchesReachBeyondTheImage)
{
    const Image src = noise<uint8_t>(11, 7, 0, 255);
    constexpr int kLeast = std::numeric_limits<int>::min(), kMost = std::numeric_limits<int>::max();
    constexpr int kHeight = 6;
    for (const int x : {kLeast, -9, -4, 0, 2, 3, 11, kMost}) {
        for (const int y : {kLeast, -kHeight, -1, 0, 1, 2, 7, kMost}) {
            for (const uint32_t type : {0u, 1u, 2u}) {
                const int width = y == -1 ? 2061 : 9;
                const bool inside = x >= 0 && y >= 0 && x <= 2 && y <= 1;
                const unsigned stride = static_cast<unsigned>(width + 3) * 4;
                Grid<uint32_t> sums(width + 3, kHeight + 1, 77), squares = sums;
                const odxStatus status = odxIntegratePatchu8_v3(
                    src.data(), 11, 7, 0, x, y, static_cast<unsigned>(width), kHeight, sums.data(), stride,
                    squares.data(), stride, static_cast<odxBorderType>(type), 0x1FE);
                EXPECT_EQ(type == 0 && !inside ? 3 : 0, status);
                const auto pixelAt = [&, x = int64_t{x}, y = int64_t{y}](int u, int v) {
                    return sample(src, x + u, y + v, {type != 1, 0xFE});
                };
                const Grid<uint32_t> untouched(width + 3, kHeight + 1, 77);
                const auto expected = [&](bool squared) {
                    return status == 0 ? tableOf<uint32_t>(width, kHeight, squared, pixelAt, width + 3)
                                       : untouched;
                };
                ASSERT_EQ(expected(false), sums) << x << "," << y << ", border type " << type;
                ASSERT_EQ(expected(true), squares) << x << "," << y << ", border type " << type;
            }
        }
    }
}

// Of white pixels, 66051 squares fit 32 bits, and no row and no patch has to stop there.
TEST_F(Integrals, LargeSumsWrapOrFit64Bits)
{
    constexpr unsigned kWide = 140000;
    const std::vector<uint8_t> white(kWide, 255);
    const Image square(258, 258, 255);
    for (const odxOperationMode mode : {ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU}) {
        EXPECT_EQ(0, odxSetOperationMode(mode));
        std::vector<uint64_t> sums(2 * kWide + 2), squares = sums;
        odxIntegrateImageu8u64(white.data(), kWide, 1, 0, sums.data(), squares.data(), 0);
        for (const unsigned X : {1u, 65536u, 65537u, 66052u, 131072u, 131073u, kWide}) {
            EXPECT_EQ(uint64_t{255} * X, sums[kWide + 1 + X]);
            EXPECT_EQ(uint64_t{65025} * X, squares[kWide + 1 + X]);
        }
        Grid<uint32_t> small(259, 259), wrapped = small;
        odxIntegratePatchu8(square.data(), 258, 258, 0, 0, 258, 258, small.data(), wrapped.data());
        EXPECT_EQ(255u * 258 * 258, small.at(258, 258));
        EXPECT_EQ(65025u * 258 * 257, wrapped.at(258, 257));
        EXPECT_EQ(65025u * 258 * 258, wrapped.at(258, 258)); // modulo 2^32
        EXPECT_EQ(65025u * 100,
                  wrapped.at(258, 258) - wrapped.at(248, 258) - wrapped.at(258, 248) + wrapped.at(248, 248));
    }
}
