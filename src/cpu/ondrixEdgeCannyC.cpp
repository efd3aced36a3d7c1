// The reference's loops of Canny's edges.
#include "cpu/ondrixEdgeC.h"
#include "cpu/ondrixEdgeCanny.h"
#include "cpu/ondrixEdgeRows.h"
#include "frame/log.h"

#include <type_traits>

using namespace odx;
using namespace odx::edge;

namespace
{

struct Kernels {
    template <class Detector>
    static void gradients(const uint8_t* src, size_t stride, int16_t* gx, int16_t* gy, size_t pitch,
                          uint32_t width, uint32_t rows)
    {
        constexpr uint32_t K = Detector::kKernel;
        if constexpr (K == 3) {
            using Kernel = std::conditional_t<Detector::kCentral, Central, Sobel>;
            for (; rows != 0; --rows, src += stride, gx += pitch, gy += pitch) {
                gradientRow<Kernel>(src, src + stride, src + 2 * stride, width,
                                    [=](size_t x, int16_t dx, int16_t dy) {
                                        gx[x] = dx;
                                        gy[x] = dy;
                                    });
            }
        } else {
            sobelRows<SobelAxis<K, false>>(src, stride, gx, sizeof *gx * pitch, width, rows);
            sobelRows<SobelAxis<K, true>>(src, stride, gy, sizeof *gy * pitch, width, rows);
        }
    }

    template <class Detector>
    static void magnitudes(const int16_t* gx, const int16_t* gy, typename Detector::Magnitude* m, uint32_t count)
    {
        using M = typename Detector::Magnitude;
        for (size_t x = 0; x < count; ++x) {
            if constexpr (Detector::kSquares) {
                const uint32_t sum = static_cast<uint32_t>(gx[x] * gx[x]) + static_cast<uint32_t>(gy[x] * gy[x]);
                m[x] = static_cast<M>(sum - (sum >> 31));
            } else {
                m[x] = static_cast<M>(abs(gx[x]) + abs(gy[x]));
            }
        }
    }

    template <class Detector>
    static uint32_t* thin(const BandRow<typename Detector::Magnitude>& row, uint32_t count, Limits limits,
                          uint8_t* marks, uint32_t place, uint32_t* stack)
    {
        for (uint32_t x = 0; x < count; ++x) {
            marks[x] = 0;
            const auto* const m = row.m + x;
            if (*m <= limits.low) continue;
            const int gx = row.gx[x], gy = row.gy[x];
            const auto across = static_cast<uint32_t>(abs(gx)), down = static_cast<uint32_t>(abs(gy));
            ptrdiff_t next = row.pitch;
            bool strict = false;
            if (Detector::Sectors::horizontal(across, down)) {
                next = 1;
            } else if (Detector::Sectors::diagonal(across, down)) {
                next += (gx ^ gy) < 0 ? -1 : 1;
                strict = Detector::kStrictDiagonals;
            }
            if (*m <= m[-next] || *m < m[next] || (strict && *m == m[next])) continue;
            const bool strong = *m > limits.high;
            marks[x] = strong ? kStrong : kWeak;
            if (strong) *stack++ = place + x;
        }
        return stack;
    }

    static void finish(const uint8_t* __restrict marks, uint8_t* __restrict dst, uint32_t count)
    {
        for (size_t x = 0; x < count; ++x)
            dst[x] = marks[x] == kStrong ? 255 : 0;
    }
};

} // namespace

extern "C" {

odxStatus odxFilterCannyu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcStride, unsigned int kernelSize, int lowThresh, int highThresh,
                            odxNormType normType, uint8_t* dst, unsigned int dstStride, int16_t* gx, int16_t* gy,
                            unsigned int gradStride)
{
    return sobelEdges<Kernels>({{src, srcWidth, srcHeight, srcStride, dst, dstStride}, gx, gy, gradStride},
                               kernelSize, lowThresh, highThresh, normType == ONDRIX_NORM_L2);
}

void odxFilterCanny3x3u8_v3C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int low, int high,
                             int16_t* gx, int16_t* gy, unsigned int gradStride)
{
    const EdgeImage image = {{src, srcWidth, srcHeight, srcStride, dst, dstStride}, gx, gy, gradStride};
    if (differenceEdges<Kernels>(image, low, high) != ONDRIX_SUCCESS) {
        ODX_LOG(Error, "Error - can not allocate scratch buffer for %s", __func__);
    }
}

void odxFilterCanny3x3u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int low, int high)
{
    odxFilterCanny3x3u8_v3C(src, srcWidth, srcHeight, srcStride, dst, dstStride, low, high, nullptr, nullptr, 0);
}
}
