// What a remote call costs on this processor: the way from the public operation to the stub's entry and back. The
// entries do nothing here; they are called directly and through the library by turns, and the least times count.
#include "dsp/stub.h"
#include "ondrix.h"

#include <algorithm>
#include <chrono>
#include <stdio.h>
#include <stdlib.h>

namespace
{

int bitCount(const uint32_t*, uint32_t, unsigned, uint32_t* result)
{
    *result = 1;
    return 0;
}

int median(const uint8_t*, uint32_t, unsigned, unsigned, unsigned, uint8_t*, uint32_t, unsigned)
{
    return 0;
}

int medianWithStatus(const uint8_t*, uint32_t, unsigned, unsigned, unsigned, uint8_t*, uint32_t, unsigned,
                     odxBorderType, uint32_t, odxStatus* result)
{
    *result = ONDRIX_SUCCESS;
    return 0;
}

// Nanoseconds of a call, on average of many.
template <class Call>
double timeOf(const Call& call)
{
    constexpr int kCalls = 20000;
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    for (int i = 0; i < kCalls; ++i)
        call();
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count() / kCalls;
}

template <class Direct, class Through>
void measure(const char* operation, const Direct& direct, const Through& through)
{
    double leastDirect = 1e9, leastThrough = 1e9;
    for (int i = 0; i < 200; ++i) {
        leastDirect = std::min(leastDirect, timeOf(direct));
        leastThrough = std::min(leastThrough, timeOf(through));
    }
    printf("%-28s %6.1f ns direct %8.1f ns through the library %8.1f ns local cost\n", operation, leastDirect,
           leastThrough, leastThrough - leastDirect);
}

} // namespace

int main()
{
    setenv("RO_BOARD_PLATFORM", "vka", 1);
    odxSetOperationMode(ONDRIX_OP_EXT_XDSP);
    if (pFnX_odxBitCountu32X == nullptr) {
        fprintf(stderr, "no session with the loopback\n");
        return 1;
    }
    odxSetHWFlag(1); // the limits cost, too
    pFnX_odxBitCountu32X = reinterpret_cast<void*>(bitCount);
    pFnX_odxFilterMedian3x3u8X = reinterpret_cast<void*>(median);
    pFnX_odxFilterMedian3x3u8_v3X = reinterpret_cast<void*>(medianWithStatus);

    auto* volatile directBitCount = bitCount;
    auto* volatile directMedian = median;
    auto* volatile directMedianWithStatus = medianWithStatus;

    constexpr unsigned kWidth = 160, kHeight = 160;
    alignas(16) static uint32_t words[kWidth * kHeight];
    alignas(16) static uint8_t src[kWidth * kHeight], dst[kWidth * kHeight];
    uint32_t bits;
    odxStatus status;
    measure(
        "odxBitCountu32", [&] { directBitCount(words, kWidth * kHeight, kWidth * kHeight, &bits); },
        [&] { odxBitCountu32(words, kWidth * kHeight); });
    measure(
        "odxFilterMedian3x3u8_v2",
        [&] { directMedian(src, sizeof src, kWidth, kHeight, kWidth, dst, sizeof dst, kWidth); },
        [&] { odxFilterMedian3x3u8_v2(src, kWidth, kHeight, 0, dst, 0); });
    measure(
        "odxFilterMedian3x3u8_v3",
        [&] {
            directMedianWithStatus(src, sizeof src, kWidth, kHeight, kWidth, dst, sizeof dst, kWidth,
                                   ONDRIX_BORDER_REPLICATE, 0, &status);
        },
        [&] { odxFilterMedian3x3u8_v3(src, kWidth, kHeight, 0, dst, 0, ONDRIX_BORDER_REPLICATE, 0); });
    odxCleanUp();
    return 0;
}
