// Canny's edges: the way through the image, and the reference's loops.
#include "cpu/ondrixEdgeC.h"
#include "cpu/ondrixEdgeCanny.h"
#include "cpu/ondrixEdgeRows.h"
#include "frame/log.h"
#include "frame/scratch.h"

#include <stdlib.h>
#include <string.h>
#include <type_traits>

using namespace odx;
using namespace odx::edge;

namespace
{

struct Kernels {
    static constexpr bool kReaches = false;

    template <class Loop>
    static void gradients(const uint8_t* src, size_t stride, int16_t* gx, int16_t* gy, size_t pitch,
                          uint32_t width, uint32_t rows)
    {
        constexpr uint32_t K = Loop::kKernel;
        if constexpr (K == 3) {
            using Kernel = std::conditional_t<Loop::kCentral, Central, Sobel>;
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

    template <class Loop>
    static void magnitudes(const int16_t* gx, const int16_t* gy, typename Loop::Magnitude* m, uint32_t count)
    {
        using M = typename Loop::Magnitude;
        for (size_t x = 0; x < count; ++x) {
            if constexpr (Loop::kSquares) {
                const uint32_t sum = static_cast<uint32_t>(gx[x] * gx[x]) + static_cast<uint32_t>(gy[x] * gy[x]);
                m[x] = static_cast<M>(sum - (sum >> 31));
            } else {
                m[x] = static_cast<M>(abs(gx[x]) + abs(gy[x]));
            }
        }
    }

    template <class Loop>
    static uint32_t* thin(const BandRow<typename Loop::Magnitude>& row, uint32_t count, Limits limits,
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
            if (Loop::Sectors::horizontal(across, down)) {
                next = 1;
            } else if (Loop::Sectors::diagonal(across, down)) {
                next += (gx ^ gy) < 0 ? -1 : 1;
                strict = Loop::kStrictDiagonals;
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

// Whether any byte of a word is a weak mark.
uint32_t weakBytes(const uint8_t* p)
{
    uint32_t word;
    memcpy(&word, p, sizeof word);
    return word & 0x80808080;
}

// Makes weak marks strong that touch a strong one, from those on the stack on.
void trace(uint8_t* marks, size_t pitch, uint32_t* stack, uint32_t* top)
{
    while (top != stack) {
        const uint32_t place = *--top;
        uint8_t* const at = marks + place;
        if ((weakBytes(at - pitch - 1) | weakBytes(at - 1) | weakBytes(at + pitch - 1)) == 0) continue;
        for (uint8_t* row = at - pitch; row <= at + pitch; row += pitch) {
            for (int x = -1; x <= 1; ++x) {
                if (row[x] != kWeak) continue;
                row[x] = kStrong;
                *top++ = static_cast<uint32_t>(row + x - marks);
            }
        }
    }
}

// Rows that a band takes at a time: as many as the nearest caches hold.
constexpr uint32_t bandRows(uint32_t width)
{
    const uint32_t rows = 8192 / (width / 4 + 1);
    return rows < 4 ? 4 : rows > 32 ? 32 : rows;
}

} // namespace

odxStatus edge::detectEdges(const Loops& loops, const EdgeImage& image, Limits limits)
{
    const uint32_t r = loops.kernel / 2, margin = loops.margin;
    const Plane<uint8_t>& plane = image.plane;
    const uint32_t width = plane.width, height = plane.height;
    const bool inside = width > 2 * margin && height > 2 * margin;
    const uint64_t pitch = (uint64_t{width} + 2 * r + kSlack + 63) & ~uint64_t{63};
    const uint32_t bandHeight = bandRows(width);

    // The first two rows of a band are the last two of the one before it.
    const uint64_t rows = uint64_t{bandHeight} + 2,
                   area = inside ? uint64_t{width - 2 * margin} * (height - 2 * margin) : 1;
    const Scratch<uint8_t> source(pitch * (rows + 2 * r)), marks(inside ? pitch * height + kSlack : 1);
    const Scratch<int16_t> gradients(2 * pitch * rows);
    const Scratch<uint8_t> magnitudes(pitch * rows * loops.magnitude);
    const Scratch<uint32_t> stack(area);
    if (!source || !marks || !gradients || !magnitudes || !stack) return ONDRIX_NO_MEMORY;
    int16_t *const gx = gradients.get(), *const gy = gx + pitch * rows;
    const auto magnitudesOf = [&](uint64_t row) { return magnitudes.get() + pitch * row * loops.magnitude; };
    uint32_t* top = stack.get();

    const auto marksOf = [&](uint32_t y) { return marks.get() + pitch * y; };
    const uint32_t count = inside ? width - 2 * margin : 0;
    const auto reachRow = [&](uint32_t y) { // whose neighbours have marks
        uint8_t* const row = marksOf(y) + margin;
        top =
            loops.reach(row, static_cast<ptrdiff_t>(pitch), count, static_cast<uint32_t>(row - marks.get()), top);
    };
    const auto thinRow = [&](uint32_t y, size_t row) { // which is that of the band
        uint8_t* const out = marksOf(y);
        const BandRow<void> at = {gx + pitch * row + margin, gy + pitch * row + margin,
                                  magnitudesOf(row) + margin * loops.magnitude, static_cast<ptrdiff_t>(pitch)};
        top = loops.thin(at, count, limits, out + margin, static_cast<uint32_t>(out + margin - marks.get()), top);
        memset(out, 0, margin);
        memset(out + width - margin, 0, margin + 2);
        if (loops.reach != nullptr && y > margin) reachRow(y - 1);
    };
    if (inside) {
        for (uint32_t y = 0; y < margin; ++y) {
            memset(marksOf(y), 0, pitch);
            memset(marksOf(height - 1 - y), 0, pitch);
        }
    }

    uint32_t kept = 0; // rows of the band before
    for (uint32_t y0 = 0, rowsNow; y0 < height; y0 += rowsNow) {
        rowsNow = height - y0 < bandHeight ? height - y0 : bandHeight;
        for (uint32_t i = 0; i < rowsNow + 2 * r; ++i) {
            const int64_t y = int64_t{y0} + i - r;
            const uint8_t* const row = rowOf(plane.src, plane.srcStride,
                                             y < 0        ? 0
                                             : y < height ? static_cast<size_t>(y)
                                                          : height - 1);
            uint8_t* const line = source.get() + pitch * i;
            memset(line, row[0], r);
            memcpy(line + r, row, width);
            memset(line + r + width, row[width - 1], r);
        }
        int16_t *const newX = gx + pitch * kept, *const newY = gy + pitch * kept;
        loops.gradients(source.get(), pitch, newX, newY, pitch, width, rowsNow);
        for (uint32_t i = 0; i < rowsNow; ++i) {
            const size_t row = pitch * i, bytes = sizeof(int16_t) * size_t{width};
            if (image.gx != nullptr) memcpy(rowOf(image.gx, image.gradStride, y0 + i), newX + row, bytes);
            if (image.gy != nullptr) memcpy(rowOf(image.gy, image.gradStride, y0 + i), newY + row, bytes);
            if (inside) loops.magnitudes(newX + row, newY + row, magnitudesOf(kept + i), width);
        }
        const uint32_t filled = kept + rowsNow; // of the band, which begins with row y0 - kept of the image
        for (uint32_t i = 1; inside && i + 1 < filled; ++i) {
            const uint32_t y = y0 - kept + i;
            if (y >= margin && y < height - margin) thinRow(y, i);
        }
        kept = filled < 2 ? filled : 2;
        const size_t last = pitch * (filled - kept);
        if (last != 0) {
            memmove(gx, gx + last, sizeof *gx * pitch * kept);
            memmove(gy, gy + last, sizeof *gy * pitch * kept);
            memmove(magnitudesOf(0), magnitudesOf(filled - kept), pitch * kept * loops.magnitude);
        }
    }

    if (inside) {
        if (loops.reach != nullptr) reachRow(height - margin - 1);
        trace(marks.get(), pitch, stack.get(), top);
    }
    for (uint32_t y = 0; y < height; ++y) {
        uint8_t* const out = rowOf(plane.dst, plane.dstStride, y);
        if (inside) {
            loops.finish(marksOf(y), out, width);
        } else {
            memset(out, 0, width);
        }
    }
    return ONDRIX_SUCCESS;
}

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
