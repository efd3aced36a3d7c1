// Erosion and dilation against their definitions.
#include "ondrix.h"
#include "support/drawings.h"
#include "support/referenceTest.h"
#include "support/scratchWatch.h"

using namespace odx::test;

namespace
{

class Morphology : public odx::test::ReferenceTest
{
};

using Image = Grid<uint8_t>;

// The window of n columns and rows, with this outside the image.
Image defined(const Image& src, int64_t n, bool erodes, int outside)
{
    return drawn<uint8_t>(src.width, src.height, [&](int x, int y) {
        int picked = erodes ? 255 : 0;
        const auto visit = [&](int value) { picked = erodes ? std::min(picked, value) : std::max(picked, value); };
        const int64_t left = x - n / 2, top = y - n / 2;
        if (left < 0 || top < 0 || left + n > src.width || top + n > src.height) visit(outside);
        for (int64_t v = std::max<int64_t>(top, 0); v < std::min<int64_t>(top + n, src.height); ++v) {
            for (int64_t u = std::max<int64_t>(left, 0); u < std::min<int64_t>(left + n, src.width); ++u)
                visit(src.at(static_cast<int>(u), static_cast<int>(v)));
        }
        return picked;
    });
}

} // namespace

TEST_F(Morphology, SmallWindowsTakeWhatIsOutsideFromTheBorderType)
{
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 5}, {6, 1}, {2, 2}, {3, 3}, {300, 4}, {9, 7}}) {
        const Image src = noise<uint8_t>(width, height, 20, 230);
        for (const bool erodes : {true, false}) {
            const int neutral = erodes ? 255 : 0;
            Image dst(width, height);
            (erodes ? odxFilterErode3x3u8 : odxFilterDilate3x3u8)(src.data(), src.w(), src.h(), dst.data());
            EXPECT_EQ(defined(src, 3, erodes, neutral), dst);
            Image strided(width, height);
            (erodes ? odxFilterErode3x3u8_v2 : odxFilterDilate3x3u8_v2)(src.data(), src.w(), src.h(), 0,
                                                                        strided.data(), 0);
            EXPECT_EQ(dst, strided);
            for (const uint32_t type : {0u, 1u, 2u}) {
                for (const int value : {0, 120, 255}) {
                    (erodes ? odxFilterErode3x3u8_v3 : odxFilterDilate3x3u8_v3)(
                        src.data(), src.w(), src.h(), 0, dst.data(), 0, static_cast<odxBorderType>(type),
                        static_cast<uint32_t>(value + 256));
                    ASSERT_EQ(defined(src, 3, erodes, type == 1 ? value : neutral), dst) << type << ", " << value;
                }
            }
        }
    }
}

TEST_F(Morphology, LargeWindowsEndWithTheImage)
{
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 9}, {40, 1}, {13, 12}, {70, 33}, {2200, 5}}) {
        const Image src = noise<uint8_t>(width, height, 0, 255);
        for (const int64_t n : {1, 2, 3, 4, 5, 6, 7, 9, 12, 13, 16, 17, 31, 64, 65, 67, 1200, 2147483647}) {
            for (const bool erodes : {true, false}) {
                Image dst(width, height);
                EXPECT_EQ(0, (erodes ? odxFilterErodeNxNu8 : odxFilterDilateNxNu8)(
                                 src.data(), src.w(), src.h(), 0, static_cast<unsigned>(n), dst.data(), 0));
                ASSERT_EQ(defined(src, n, erodes, erodes ? 255 : 0), dst) << n << " of " << width << "x" << height;
            }
        }
    }
}

TEST_F(Morphology, WithoutTemporaryMemoryNothingIsWritten)
{
    const ScratchWatch watch(ScratchWatch::kAll);
    const Image src(70, 9, 5);
    for (const odxOperationMode mode : {ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU}) {
        EXPECT_EQ(0, odxSetOperationMode(mode));
        Image dst(70, 9, 77);
        EXPECT_EQ(ONDRIX_NO_MEMORY, odxFilterErodeNxNu8(src.data(), 70, 9, 0, 3, dst.data(), 0));
        EXPECT_EQ(Image(70, 9, 77), dst);
    }
}
