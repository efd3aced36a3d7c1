// The variants themselves: limits, defaults, lengths, what happens where no remote entry can be called.
#include "dsp/services.h"
#include "dsp/session.h"
#include "frame/operations.h"
#include "frame/remotePointers.h"
#include "remote/remoteCase.h"

#include <string.h>
#include <tuple>
#include <vector>

using namespace odx;
using namespace odx::test;

namespace
{

template <auto* Reference>
decltype(Reference) variantOf()
{
    return reinterpret_cast<decltype(Reference)>(remoteVariant(numberOf<Reference>));
}

constexpr uint32_t kWidth = 160, kHeight = 159; // just worth sending

struct Shape {
    uint32_t width, height, stride;
    int offset;
};
alignas(16) uint8_t src[70000], dst[70000];

template <auto* Reference>
odxStatus bordered(const Shape& s)
{
    return variantOf<Reference>()(src + s.offset, s.width, s.height, s.stride, dst, s.stride,
                                  ONDRIX_BORDER_REPLICATE, 0);
}

} // namespace

TEST(Variants, AreWhereTheTablesAndPointersSayTheyAre)
{
    onRemote([](Stub&, LogCapture&) {
        EXPECT_EQ(odxFuncTable.entry[op_odxFilterMedian3x3u8 * kImplementations + ODX_IMPL_XDSP],
                  remoteVariant(op_odxFilterMedian3x3u8));
        EXPECT_EQ(odxFilterMedian3x3u8_v2R_, remoteVariant(op_odxFilterMedian3x3u8));
        EXPECT_NE(nullptr, odxFilterMedian3x3u8_v2R_);
        EXPECT_EQ(odxInternalFuncTable.entry[(op_probeZ9Time - kPublicSlots) * kImplementations + ODX_IMPL_XDSP],
                  probeZ9TimeR_);
        EXPECT_NE(nullptr, probeZ9TimeR_);
        EXPECT_EQ(nullptr, remoteVariant(kEmptySlots[0]));
        EXPECT_EQ(1u, uXTable(nullptr, 2));
        ODX_FUNC_MANAGER manager = *odxMasterFuncManager;
        EXPECT_EQ(4u, uXTable(&manager, 7));
        manager.funcTable = nullptr;
        EXPECT_EQ(2u, uXTable(&manager, 2));
    });
}

// The limits stand in the wrapper, too; a variant can also be called through its exported pointer.
TEST(Variants, OfStatusOperationsLeaveWhatIsBeyondTheirLimitsToTheCaller)
{
    onRemote([](Stub& stub, LogCapture& log) {
        const auto median = [](uint32_t height, int offset) {
            return bordered<odxFilterMedian3x3u8_v3C>({kWidth, height, kWidth, offset});
        };
        EXPECT_EQ(ONDRIX_SUCCESS, median(1, 1)); // the checks are off
        odxSetHWFlag(1);
        EXPECT_EQ(ONDRIX_SUCCESS, median(kHeight, 0));
        EXPECT_EQ(ONDRIX_UNSUPPORTED_HERE, median(kHeight - 1, 0));
        EXPECT_EQ(ONDRIX_UNSUPPORTED_HERE, median(kHeight, 4));
        EXPECT_EQ(Lines{}, log.take());
        libLogPrintX = 1;
        EXPECT_EQ(ONDRIX_UNSUPPORTED_HERE, median(3, 0));
        EXPECT_EQ(debug("odxFilterMedian3x3u8_v3X: Warning - Unsatisfied HW limitation, will try CPU"),
                  log.take());
        EXPECT_EQ(ONDRIX_SUCCESS, median(kHeight, 0));
        EXPECT_EQ(Lines{}, log.take());
        EXPECT_EQ(3u, stub.counts().calls);
    });
}

TEST(Variants, HaveLimitsOfTheirOwn)
{
    using Run = odxStatus(const Shape&);
    constexpr Run *box = bordered<odxBoxFilter3x3u8_v2C>, *gaussian = bordered<odxFilterGaussian3x3u8_v3C>;
    constexpr Run* median = [](const Shape& s) {
        return variantOf<odxFilterMedianMxNs16C>()(reinterpret_cast<const int16_t*>(src), s.width, s.height,
                                                   s.stride, 3, 3, reinterpret_cast<int16_t*>(dst), s.stride);
    };
    constexpr Run* maximum = [](const Shape& s) {
        uint32_t x, y;
        int32_t response;
        return variantOf<odxLocalHarrisMaxu8C>()(src + s.offset, s.width, s.height, s.stride, 50, 50, 3, &x, &y,
                                                 &response);
    };
    const struct {
        Run* run;
        Shape shape;
        bool fits;
    } rows[] = {
        {box, {150, 169, 151, 1}, true},       {box, {169, 150, 169, 0}, true},
        {box, {160, 158, 160, 0}, false},      {gaussian, {164, 159, 164, 4}, true},
        {gaussian, {8452, 3, 8452, 0}, true},  {gaussian, {160, 158, 160, 0}, false},
        {gaussian, {162, 159, 164, 0}, false}, {gaussian, {160, 159, 162, 0}, false},
        {gaussian, {160, 159, 160, 2}, false}, {gaussian, {12800, 2, 12800, 0}, false},
        {median, {150, 169, 300, 0}, true},    {median, {169, 150, 338, 0}, true},
        {median, {160, 158, 320, 0}, false},   {maximum, {160, 159, 164, 4}, true},
        {maximum, {160, 158, 160, 0}, false},  {maximum, {164, 159, 164, 0}, false},
        {maximum, {160, 159, 162, 0}, false},  {maximum, {160, 159, 160, 2}, false},
    };
    onRemote([&](Stub&, LogCapture&) {
        for (const auto& row : rows) {
            for (const unsigned checks : {0u, 1u}) {
                odxSetHWFlag(checks);
                EXPECT_EQ(row.fits || checks == 0 ? ONDRIX_SUCCESS : ONDRIX_UNSUPPORTED_HERE, row.run(row.shape))
                    << "row " << &row - rows;
            }
        }
    });
}

TEST(Variants, OfStatusOperationsReturnTheRemoteStatus)
{
    onRemote([](Stub& stub, LogCapture& log) {
        // An even window is none: the wrapper refuses it, the reference does not see it.
        const int16_t nine[9] = {5, 1, 9, 3, 7, 2, 8, 6, 4};
        int16_t median[9] = {};
        EXPECT_EQ(ONDRIX_SUCCESS, odxFilterMedianMxNs16(nine, 3, 3, 6, 3, 3, median, 6));
        EXPECT_EQ(5, median[4]);
        EXPECT_EQ(ONDRIX_BAD_PARAMETER, odxFilterMedianMxNs16(nine, 3, 3, 6, 2, 3, median, 6));
        EXPECT_EQ(1u, stub.counts().calls);
        const remoting::StubReplaced replaced; // meanwhile calls stay here, in silence
        EXPECT_EQ(kBits, countBits());
        EXPECT_EQ(1u, stub.counts().calls);
        EXPECT_EQ(Lines{}, log.take());
    });
}

TEST(Variants, DefaultTheStridesOfDirectCalls)
{
    onRemote([](Stub& stub, LogCapture&) {
        const int16_t point[5 * 6] = {0, 0, 0, 0, 0, 0, 0, 0, 256};
        int16_t packed[5 * 6] = {}, given[5 * 6] = {};
        const auto gaussian = variantOf<odxFilterGaussian5x5s16C>();
        gaussian(point, 5, 6, 0, packed, 0, 1);
        gaussian(point, 5, 6, 10, given, 10, 1);
        EXPECT_EQ(0, memcmp(packed, given, sizeof packed));
        EXPECT_NE(0, packed[8]);
        EXPECT_EQ(2u, stub.counts().completed);
    });
}

TEST(Variants, KeepWhatIsTooLongForARemoteCall)
{
    static uint32_t local;
    onRemote([](Stub& stub, LogCapture&) {
        local = 0;
        using BitCount = decltype(odxBitCountu8C);
        BitCount* const here = [](const uint8_t*, uint32_t length) { return local = length; };
        odxFuncTable.entry[op_odxBitCountu8 * kImplementations + ODX_IMPL_ORLAN] = reinterpret_cast<void*>(here);
        using Box = decltype(odxBoxFilter5x5u8C);
        Box* const boxHere = [](const uint8_t*, uint32_t, uint32_t height, uint32_t, uint8_t*, uint32_t) {
            local = height;
        };
        odxFuncTable.entry[op_odxBoxFilter5x5u8 * kImplementations + ODX_IMPL_ORLAN] =
            reinterpret_cast<void*>(boxHere);
        uint8_t byte = 0;
        EXPECT_EQ(0x80000000u, odxBitCountu8(&byte, 0x80000000u));
        setEntry<decltype(ondrixadsp_odxBitCountu8X)>(
            pFnX_odxBitCountu8X, [](const uint8_t*, uint32_t srcLength, uint32_t, uint32_t* result) {
                *result = srcLength;
                return 0;
            });
        EXPECT_EQ(0x7FFFFFFFu, odxBitCountu8(&byte, 0x7FFFFFFFu));
        EXPECT_EQ(0x80000000u, local) << "the largest length stayed here";
        odxBoxFilter5x5u8(&byte, 5, 65536, 65536, &byte, 65536); // 2^32 bytes of rows
        EXPECT_EQ(65536u, local);
        EXPECT_EQ(0u, stub.counts().calls);
    });
}

// Buffers travel whole: what one brings back must not undo another, and rows must end inside theirs.
TEST(Variants, KeepWhatDoesNotTravelAsWholeBuffers)
{
    onRemote([](Stub& stub, LogCapture&) {
        constexpr uint32_t w = 16, h = 4;
        uint8_t rgb[3 * w * h];
        for (size_t i = 0; i < sizeof rgb; ++i)
            rgb[i] = static_cast<uint8_t>(37 * i);
        const auto converted = [&](decltype(odxColorRGB888ToYCbCr420Planaru8)* convert, uint32_t cb, uint32_t cr) {
            std::vector<uint8_t> yuv(w * h + w * h);
            uint8_t* const chroma = yuv.data() + w * h;
            convert(rgb, w, h, 3 * w, yuv.data(), chroma + cb, chroma + cr, w, w, w);
            return yuv;
        };
        // Side by side, one after the other; in both orders.
        for (const auto& [one, other, sent] :
             {std::tuple{0u, w / 2, 0u}, {w / 2, 0u, 0u}, {0u, w * h / 2, 1u}, {w * h / 2, 0u, 1u}}) {
            const uint32_t before = stub.counts().calls;
            EXPECT_EQ(converted(odxColorRGB888ToYCbCr420Planaru8C, one, other),
                      converted(odxColorRGB888ToYCbCr420Planaru8, one, other));
            EXPECT_EQ(sent, stub.counts().calls - before) << one;
        }
        // Rows that overlap, as far as the wrapper lets them.
        odxFilterGaussian5x5u8_v2(src, 8, 8, 8, dst, 4, 1);
        EXPECT_EQ(2u, stub.counts().calls);
        odxFilterGaussian5x5u8_v2(src, 8, 8, 8, dst, 8, 1);
        EXPECT_EQ(3u, stub.counts().calls);
    });
}

TEST(Services, PassTheirArgumentsOn)
{
    onRemote([](Stub&, LogCapture&) {
        static uint8_t buffer[8];
        setEntry<decltype(ondrixadsp_odxRegisterBufX)>(pFnX_odxRegisterBufX,
                                                       [](uint64_t address, uint32_t nBytes, int32_t descriptor) {
                                                           EXPECT_TRUE(stubIsHeld());
                                                           EXPECT_EQ(reinterpret_cast<uintptr_t>(buffer), address);
                                                           EXPECT_EQ(8u, nBytes);
                                                           EXPECT_EQ(3, descriptor);
                                                           return 17;
                                                       });
        EXPECT_EQ(17, odxRegisterBuf(buffer, 8, 3));
        setEntry<decltype(ondrixadsp_odx_cache_flush_invalidateX)>(
            pFnX_odx_cache_flush_invalidateX, [](void* address, uint32_t length, uint32_t size) {
                EXPECT_TRUE(address == buffer ? length == 8 : length == 0);
                EXPECT_EQ(8u, size);
                return 18;
            });
        EXPECT_EQ(18, odx_cache_flush_invalidateX(buffer, 8));
        EXPECT_EQ(18, odx_cache_flush_invalidateX(nullptr, 8));
        setEntry<decltype(ondrixadsp_odxUpdateDSPMsgFlagX)>(pFnX_odxUpdateDSPMsgFlagX,
                                                            [](uint32_t flag, uint32_t* result) {
                                                                *result = flag + 1;
                                                                return 0;
                                                            });
        EXPECT_EQ(78u, odxUpdateDSPMsgFlagX(77));
    });
}

TEST(Services, ForwardToTheProcessor)
{
    onRemote([](Stub& stub, LogCapture&) {
        const int64_t now = odxGetTime();
        EXPECT_NEAR(static_cast<double>(now), static_cast<double>(odxZ9GetClkX()), 1e7);
        EXPECT_NEAR(static_cast<double>(now), static_cast<double>(probeZ9TimeX()), 1e7);
        uint8_t buffer[8] = {};
        EXPECT_EQ(0, odxRegisterBuf(buffer, sizeof buffer, 3));
        EXPECT_EQ(0, odx_cache_flush_invalidateX(buffer, sizeof buffer));
        EXPECT_EQ(0u, odxUpdateDSPMsgFlagX(1));

        stub.behaves(restarting(1));
        uint32_t word = 0, count;
        EXPECT_EQ(104, countRemotely(&word, &count)); // it is down now
        EXPECT_EQ(0, odxZ9GetClkX());
        EXPECT_EQ(0, probeZ9TimeX());
        EXPECT_EQ(104, odxRegisterBuf(buffer, sizeof buffer, 3)); // the application's business
        EXPECT_EQ(1u, odxUpdateDSPMsgFlagX(1));
        odxCleanUp();
        EXPECT_EQ(0, odxZ9GetClkX());
        EXPECT_EQ(0, odxRegisterBuf(buffer, sizeof buffer, 3)); // nobody is left to tell
        ASSERT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE));
        odxInternalImplTable[11] = ODX_IMPL_CPU; // a selection leaves it as it was
        EXPECT_EQ(0, odxRegisterBuf(buffer, sizeof buffer, 3));
        EXPECT_EQ(-1, odxRegisterBuf(nullptr, sizeof buffer, 3));
        EXPECT_EQ(-1, odxRegisterBuf(buffer, 0, 3));
        EXPECT_EQ(1u, odxUpdateDSPMsgFlagX(0));
    });
}
