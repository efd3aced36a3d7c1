#include "cpu/ondrixBlurC.h"

#include "cpu/image.h"
#include "cpu/ondrixBlurRows.h"
#include "frame/log.h"
#include "frame/scratch.h"

#include <string.h>
#include <type_traits>

using odx::Plane;
using odx::rowOf;
using odx::Scratch;
using namespace odx::blur;

namespace
{

// ---- 3x3 filters ----

template <class T>
using Row3x3 = void(const T*, const T*, const T*, T*, uint32_t);

template <class T>
void interior3x3(const Plane<T>& plane, Row3x3<T>* filter)
{
    const uint32_t width = plane.interiorWidth(3), height = plane.interiorHeight(3);
    if (width == 0) return;
    for (uint32_t y = 0; y < height; ++y) {
        const T* const above = rowOf(plane.src, plane.srcStride, y) + 1;
        filter(above, rowOf(above, plane.srcStride, 1), rowOf(above, plane.srcStride, 2),
               rowOf(plane.dst, plane.dstStride, y + 1) + 1, width);
    }
}

// ---- 5x5 and 11x11 Gaussians: vertical sums of a chunk of columns, then horizontal sums of those ----

template <class T>
void gaussian5x5Interior(const Plane<T>& plane)
{
    const uint32_t width = plane.interiorWidth(5), height = plane.interiorHeight(5);
    if (width == 0) return;
    for (uint32_t y = 0; y < height; ++y) {
        T* const out = rowOf(plane.dst, plane.dstStride, y + 2) + 2;
        for (uint32_t x0 = 0, count; x0 < width; x0 += count) {
            count = chunkOf(width - x0);
            // Sums of bytes fit 16 bits: 256 x 255. Sums of wider pixels are modulo 2^32.
            using Sum = std::conditional_t<sizeof(T) == 1, uint16_t, uint32_t>;
            Sum column[kChunk + 4];
            const T* const r0 = rowOf(plane.src, plane.srcStride, y) + x0;
            const T* const r1 = rowOf(r0, plane.srcStride, 1);
            const T* const r2 = rowOf(r0, plane.srcStride, 2);
            const T* const r3 = rowOf(r0, plane.srcStride, 3);
            const T* const r4 = rowOf(r0, plane.srcStride, 4);
            for (size_t x = 0; x < count + 4; ++x) {
                column[x] = static_cast<Sum>(static_cast<Sum>(r0[x]) + static_cast<Sum>(r4[x]) +
                                             4u * (static_cast<Sum>(r1[x]) + static_cast<Sum>(r3[x])) +
                                             6u * static_cast<Sum>(r2[x]));
            }
            for (size_t x = 0; x < count; ++x) {
                const Sum sum = static_cast<Sum>(column[x] + column[x + 4] + 4u * (column[x + 1] + column[x + 3]) +
                                                 6u * column[x + 2]);
                using Signed = std::conditional_t<sizeof(T) == 1, uint16_t, int32_t>;
                out[x0 + x] = static_cast<T>(static_cast<Signed>(sum) >> 8);
            }
        }
    }
}

// The weights 1 10 45 120 210 252 210 ... in 16-bit products as far as they fit: 56 x 510, 120 x 510, 105 x 510
// (whose sum counts twice) and 252 x 255.
void gaussian11Column(const uint8_t* src, size_t stride, uint32_t* __restrict column, uint32_t count)
{
    const uint8_t* row[11];
    for (uint32_t k = 0; k < 11; ++k)
        row[k] = rowOf(src, stride, k);
    for (size_t x = 0; x < count; ++x) {
        const uint16_t outer = static_cast<uint16_t>(row[0][x] + row[10][x] + 10 * (row[1][x] + row[9][x]) +
                                                     45 * (row[2][x] + row[8][x]));
        const uint16_t middle = static_cast<uint16_t>(120 * (row[3][x] + row[7][x]));
        const uint16_t inner = static_cast<uint16_t>(105 * (row[4][x] + row[6][x]));
        const uint16_t centre = static_cast<uint16_t>(252 * row[5][x]);
        column[x] = uint32_t{outer} + middle + 2 * uint32_t{inner} + centre;
    }
}

void gaussian11x11Interior(const Plane<uint8_t>& plane)
{
    const uint32_t width = plane.interiorWidth(11), height = plane.interiorHeight(11);
    if (width == 0) return;
    for (uint32_t y = 0; y < height; ++y) {
        uint8_t* const out = rowOf(plane.dst, plane.dstStride, y + 5) + 5;
        for (uint32_t x0 = 0, count; x0 < width; x0 += count) {
            count = chunkOf(width - x0);
            uint32_t sums[kChunk + 10];
            gaussian11Column(rowOf(plane.src, plane.srcStride, y) + x0, plane.srcStride, sums, count + 10);
            // The binomial kernel of order 10 is (1 2 1) five times over.
            for (uint32_t rest = 8; rest > 0; rest -= 2) {
                for (size_t x = 0; x < count + rest; ++x)
                    sums[x] += 2 * sums[x + 1] + sums[x + 2];
            }
            for (size_t x = 0; x < count; ++x) {
                out[x0 + x] = static_cast<uint8_t>((sums[x] + 2 * sums[x + 1] + sums[x + 2]) >> 20);
            }
        }
    }
}

// ---- 5x5 and 11x11 means ----

// Walks down a strip of columns with the sums of the K rows around the output row: each step adds the row that
// enters and subtracts the one that leaves. Rows and columns outside the image count as 0. Sums fit 16 bits: 121 x
// 255.
template <uint32_t K>
void boxStrip(const Plane<uint8_t>& plane, uint32_t x0, uint32_t count, uint16_t reciprocal)
{
    constexpr uint32_t r = K / 2;
    const uint32_t left = x0 < r ? 0 : x0 - r;
    const uint32_t right = x0 + count + r < plane.width ? x0 + count + r : plane.width;
    uint16_t columns[kChunk + K - 1] = {};
    uint16_t* const inside = columns + (left + r - x0);

    const auto enter = [&](uint32_t y) {
        const uint8_t* const row = rowOf(plane.src, plane.srcStride, y) + left;
        for (size_t x = 0; x < right - left; ++x)
            inside[x] = static_cast<uint16_t>(inside[x] + row[x]);
    };
    const auto leave = [&](uint32_t y) {
        const uint8_t* const row = rowOf(plane.src, plane.srcStride, y) + left;
        for (size_t x = 0; x < right - left; ++x)
            inside[x] = static_cast<uint16_t>(inside[x] - row[x]);
    };
    for (uint32_t y = 0; y < r && y < plane.height; ++y)
        enter(y);
    for (uint32_t y = 0; y < plane.height; ++y) {
        if (plane.height - y > r) enter(y + r);
        if (y > r) leave(y - r - 1);
        uint8_t* const out = rowOf(plane.dst, plane.dstStride, y) + x0;
        for (size_t x = 0; x < count; ++x) {
            uint16_t sum = 0;
            for (size_t k = 0; k < K; ++k)
                sum = static_cast<uint16_t>(sum + columns[x + k]);
            out[x] = boxMean(sum, reciprocal);
        }
    }
}

template <uint32_t K>
void boxFilter(const Plane<uint8_t>& plane, uint16_t reciprocal)
{
    for (uint32_t x = 0, count; x < plane.width; x += count) {
        count = chunkOf(plane.width - x);
        boxStrip<K>(plane, x, count, reciprocal);
    }
}

// ---- median of any size ----

// Copies the border of a filter M wide and N high from the source.
void copyFrame(const Plane<int16_t>& plane, uint32_t M, uint32_t N)
{
    const uint32_t left = M / 2, top = N / 2;
    for (uint32_t y = 0; y < plane.height; ++y) {
        const int16_t* const row = rowOf(plane.src, plane.srcStride, y);
        int16_t* const out = rowOf(plane.dst, plane.dstStride, y);
        if (y < top || plane.height - y <= top || plane.width < M) {
            memcpy(out, row, sizeof(int16_t) * plane.width);
        } else {
            const uint32_t right = plane.width - left;
            memcpy(out, row, sizeof(int16_t) * left);
            memcpy(out + right, row + right, sizeof(int16_t) * left);
        }
    }
}

void swap(int16_t& a, int16_t& b)
{
    const int16_t t = a;
    a = b;
    b = t;
}

// Moves the element of rank `rank` of values[0 .. count) into its place and returns it.
int16_t selectRank(int16_t* values, uint32_t count, uint32_t rank)
{
    uint32_t l = 0, r = count - 1;
    while (r > l + 1) {
        // The middle one of three becomes the pivot at l + 1, between a smaller and a larger value.
        swap(values[l + (r - l) / 2], values[l + 1]);
        if (values[l] > values[r]) swap(values[l], values[r]);
        if (values[l + 1] > values[r]) swap(values[l + 1], values[r]);
        if (values[l] > values[l + 1]) swap(values[l], values[l + 1]);
        const int16_t pivot = values[l + 1];
        uint32_t i = l + 1, j = r;
        for (;;) {
            do
                ++i;
            while (values[i] < pivot);
            do
                --j;
            while (values[j] > pivot);
            if (j < i) break;
            swap(values[i], values[j]);
        }
        values[l + 1] = values[j];
        values[j] = pivot;
        if (j >= rank) r = j - 1;
        if (j <= rank) l = i;
    }
    if (r == l + 1 && values[r] < values[l]) swap(values[l], values[r]);
    return values[rank];
}

// The medians of kMedians windows side by side, of which the first begins at `src`: the bits of each are found
// from the highest down, by counting what lies below it.
constexpr size_t kMedians = 32;

void findMedians(const int16_t* src, size_t srcStride, uint32_t M, uint32_t N, int16_t* dst)
{
    const auto rank = static_cast<uint16_t>((M * N - 1) / 2);
    int16_t found[kMedians];
    for (int16_t& value : found)
        value = INT16_MIN;
    for (int bit = 15; bit >= 0; --bit) {
        int16_t candidate[kMedians];
        uint16_t below[kMedians] = {};
        for (size_t x = 0; x < kMedians; ++x)
            candidate[x] = static_cast<int16_t>(found[x] ^ 1 << bit);
        for (size_t i = 0; i < N; ++i) {
            const int16_t* const row = rowOf(src, srcStride, i);
            for (size_t j = 0; j < M; ++j) {
                for (size_t x = 0; x < kMedians; ++x)
                    below[x] = static_cast<uint16_t>(below[x] + (row[j + x] < candidate[x] ? 1 : 0));
            }
        }
        for (size_t x = 0; x < kMedians; ++x)
            found[x] = below[x] <= rank ? candidate[x] : found[x];
    }
    memcpy(dst, found, sizeof found);
}

} // namespace

extern "C" {

void odxFilterGaussian3x3u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border)
{
    // Rows are made of groups of six outputs and a rest. The entry points refuse the widths that break this.
    const uint32_t w_2 = srcWidth - 2;
    const uint32_t w6 = w_2 / 6 * 6;
    constexpr int kLoggedLine = 79; // part of the log's text, wherever the assertion stands
    ODX_FATAL_ASSERT("ondrixBlurC", kLoggedLine, w6<=w_2 && w6>=w_2-5);

    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    interior3x3(plane, gaussian3x3Row);
    if (border == 1) binomialBorder<3>(plane);
}

odxStatus odxFilterGaussian3x3u8_v3C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                     odxBorderType borderType, uint32_t borderValue)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    interior3x3(plane, gaussian3x3Row);
    if (borderType == ONDRIX_BORDER_UNDEFINED) {
        binomialBorder<3>(plane);
    } else {
        gaussian3x3Border(plane, borderType, borderValue);
    }
    return ONDRIX_SUCCESS;
}

void odxFilterGaussian5x5u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    gaussian5x5Interior(plane);
    if (border == 1) binomialBorder<5>(plane);
}

void odxFilterGaussian11x11u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    gaussian11x11Interior(plane);
    if (border == 1) binomialBorder<11>(plane);
}

void odxFilterGaussian5x5s16C(const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, int16_t* dst, unsigned int dstStride, int border)
{
    const Plane<int16_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    gaussian5x5Interior(plane);
    if (border == 1) binomialBorder<5>(plane);
}

void odxFilterGaussian5x5s32C(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, int32_t* dst, unsigned int dstStride, int border)
{
    const Plane<int32_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    gaussian5x5Interior(plane);
    if (border == 1) binomialBorder<5>(plane);
}

odxStatus odxBoxFilter3x3u8_v2C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                odxBorderType borderType, uint32_t borderValue)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    interior3x3(plane, box3x3Row);
    box3x3Border(plane, borderType, borderValue);
    return ONDRIX_SUCCESS;
}

void odxBoxFilter3x3u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                        uint8_t* dst, unsigned int dstStride)
{
    odxBoxFilter3x3u8_v2C(src, srcWidth, srcHeight, srcStride, dst, dstStride, ONDRIX_BORDER_UNDEFINED, 0);
}

void odxBoxFilter5x5u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                        uint8_t* dst, unsigned int dstStride)
{
    boxFilter<5>({src, srcWidth, srcHeight, srcStride, dst, dstStride}, kBox5Reciprocal);
}

void odxBoxFilter11x11u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    boxFilter<11>({src, srcWidth, srcHeight, srcStride, dst, dstStride}, kBox11Reciprocal);
}

void odxBoxFilterNxNf32C(const float* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                         unsigned int N, float* dst, unsigned int dstStride)
{
    const Scratch<float> rows(static_cast<uint64_t>(srcWidth) * srcHeight, 16);
    if (!rows) {
        ODX_LOG(Error, "Error - can not allocate scratch buffer for %s", __func__);
        return;
    }
    // The window of output i covers [i - before, i + after], clipped to the image.
    const uint32_t before = N / 2, after = N - N / 2 - 1;

    for (uint32_t y = 0; y < srcHeight; y += kBoxRows) {
        const uint32_t last = srcHeight - y < kBoxRows ? srcHeight - 1 : y + kBoxRows - 1;
        const float* in[kBoxRows];
        float* out[kBoxRows];
        for (uint32_t i = 0; i < kBoxRows; ++i) {
            const uint32_t row = y + i < last ? y + i : last; // the last row may come more than once
            in[i] = rowOf(src, srcStride, row);
            out[i] = rows.get() + size_t{srcWidth} * row;
        }
        boxRowSums(in, out, srcWidth, before, after);
    }

    const float reciprocal = 1.0f / (static_cast<float>(N) * static_cast<float>(N));
    float sums[kChunk];
    for (uint32_t x0 = 0, count; x0 < srcWidth; x0 += count) {
        count = chunkOf(srcWidth - x0);
        const auto sourceRow = [&](uint32_t y) { return rows.get() + static_cast<size_t>(srcWidth) * y + x0; };
        memset(sums, 0, sizeof sums);
        const auto enter = [&](const float* row) {
            for (size_t x = 0; x < count; ++x)
                sums[x] += row[x];
        };
        const auto leave = [&](const float* row) {
            for (size_t x = 0; x < count; ++x)
                sums[x] -= row[x];
        };
        for (uint32_t y = 0; y < after && y < srcHeight; ++y)
            enter(sourceRow(y));
        for (uint32_t y = 0; y < srcHeight; ++y) {
            if (srcHeight - y > after) enter(sourceRow(y + after));
            if (y > before) leave(sourceRow(y - before - 1));
            float* const out = rowOf(dst, dstStride, y) + x0;
            for (size_t x = 0; x < count; ++x)
                out[x] = sums[x] * reciprocal;
        }
    }
}

void odxFilterMedian3x3u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    interior3x3<uint8_t>({src, srcWidth, srcHeight, srcStride, dst, dstStride}, median3x3Row<uint8_t>);
}

odxStatus odxFilterMedian3x3u8_v3C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                   odxBorderType borderType, uint32_t borderValue)
{
    const Plane<uint8_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    interior3x3(plane, median3x3Row<uint8_t>);
    if (borderType != ONDRIX_BORDER_UNDEFINED) median3x3Border(plane, borderType, borderValue);
    return ONDRIX_SUCCESS;
}

void medianInteriorC(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int16_t* dst,
                     uint32_t dstStride)
{
    interior3x3({src, width, height, srcStride, dst, dstStride}, median3x3Row<int16_t>);
}

odxStatus odxFilterMedianMxNs16C(const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, unsigned int M, unsigned int N, int16_t* dst,
                                 unsigned int dstStride)
{
    const uint64_t area = static_cast<uint64_t>(M) * N;
    const Scratch<int16_t> window(area, 16);
    if (!window) return ONDRIX_NO_MEMORY;

    const Plane<int16_t> plane = {src, srcWidth, srcHeight, srcStride, dst, dstStride};
    copyFrame(plane, M, N);
    if (M == 3 && N == 3) {
        medianInterior_(src, srcWidth, srcHeight, srcStride, dst, dstStride);
        return ONDRIX_SUCCESS;
    }
    const uint32_t count = static_cast<uint32_t>(area);
    const uint32_t width = plane.interiorWidth(M), height = plane.interiorHeight(N);
    const bool sideBySide = width >= kMedians && area <= UINT16_MAX;
    for (uint32_t y = 0; y < height; ++y) {
        int16_t* const out = rowOf(dst, dstStride, y + N / 2) + M / 2;
        if (sideBySide) {
            const int16_t* const row = rowOf(src, srcStride, y);
            for (size_t x = 0; x < width; x += kMedians) {
                if (width - x < kMedians) x = width - kMedians;
                findMedians(row + x, srcStride, M, N, out + x);
            }
            continue;
        }
        for (size_t x = 0; x < width; ++x) {
            for (uint32_t i = 0; i < N; ++i) {
                memcpy(window.get() + size_t{M} * i, rowOf(src, srcStride, y + i) + x, sizeof(int16_t) * M);
            }
            out[x] = selectRank(window.get(), count, (count - 1) / 2);
        }
    }
    return ONDRIX_SUCCESS;
}
}
