#include "cpu/ondrixMorphC.h"

#include "cpu/border.h"
#include "cpu/ondrixMorph.h"

using namespace odx;
using namespace odx::morph;

namespace
{

constexpr uint32_t kChunk = 256; // columns worked on at a time; their picks live on the stack

// Plain loops that compilers vectorise.
template <class Picks>
struct Loops {
    using Operation = Picks;
    static uint8_t pick(uint8_t a, uint8_t b) { return Picks::pick(a, b); }

    static void widen(const uint8_t* __restrict in, const Step& step, size_t n, uint8_t* __restrict out)
    {
        const uint8_t *const b = in + step.offset[0], *const c = in + step.offset[1],
                             *const d = in + step.offset[2];
        for (size_t i = 0; i < n; ++i)
            out[i] = pick(pick(in[i], b[i]), pick(c[i], d[i]));
    }
    static void merge(const uint8_t* __restrict from, uint8_t* __restrict row, size_t n)
    {
        for (size_t i = 0; i < n; ++i)
            row[i] = pick(row[i], from[i]);
    }
    static void combine(const uint8_t* __restrict a, const uint8_t* __restrict b, uint8_t* __restrict out,
                        size_t n)
    {
        for (size_t i = 0; i < n; ++i)
            out[i] = pick(a[i], b[i]);
    }
    static void enter(const uint8_t* in, const Step& step, uint8_t* sum, uint8_t* row, size_t n)
    {
        widen(in, step, n, row);
        merge(row, sum, n);
    }
    static void enter(const uint8_t* in, const Step& step, uint8_t* sum, uint8_t* row, const uint8_t* with,
                      uint8_t* out, size_t n)
    {
        enter(in, step, sum, row, n);
        combine(with, sum, out, n);
    }
    static void complete(uint8_t* ring, size_t stride, uint32_t rows, size_t n)
    {
        for (uint32_t i = rows - 1; i > 1; --i)
            merge(ring + stride * i, ring + stride * (i - 1), n);
    }
};

// Outputs of 3x3 windows, whose leftmost taps the lines begin with.
template <class Operation>
struct Filter3x3 {
    static constexpr uint32_t K = 3;
    static void row(const uint8_t* const* lines, uint8_t* __restrict out, uint32_t width)
    {
        for (uint32_t x0 = 0, count; x0 < width; x0 += count) {
            count = width - x0 < kChunk ? width - x0 : kChunk;
            const uint8_t *const a = lines[0] + x0, *const b = lines[1] + x0, *const c = lines[2] + x0;
            uint8_t picks[kChunk + 2];
            for (size_t x = 0; x < count + 2; ++x)
                picks[x] = Operation::pick(Operation::pick(a[x], b[x]), c[x]);
            for (size_t x = 0; x < count; ++x)
                out[x0 + x] = Operation::pick(Operation::pick(picks[x], picks[x + 1]), picks[x + 2]);
        }
    }
    static constexpr auto column = row;
};

template <class Operation>
void filter3x3(const Plane<uint8_t>& plane, uint8_t outside)
{
    const uint32_t width = plane.interiorWidth(3), height = plane.interiorHeight(3);
    for (uint32_t y = 0; width != 0 && y < height; ++y) {
        const uint8_t* const above = rowOf(plane.src, plane.srcStride, y);
        const uint8_t* const lines[] = {above, rowOf(above, plane.srcStride, 1), rowOf(above, plane.srcStride, 2)};
        Filter3x3<Operation>::row(lines, rowOf(plane.dst, plane.dstStride, y + 1) + 1, width);
    }
    border3x3<Operation>(plane, outside);
}

} // namespace

namespace odx::morph
{

template <class Operation>
void border3x3(const Plane<uint8_t>& plane, uint8_t outside)
{
    border::filterFrame<Filter3x3<Operation>>(plane, {false, outside});
}
template void border3x3<Erosion>(const Plane<uint8_t>&, uint8_t);
template void border3x3<Dilation>(const Plane<uint8_t>&, uint8_t);

} // namespace odx::morph

extern "C" {

#define ODX_MORPHOLOGY(name, Operation)                                                                     \
    void odxFilter##name##3x3u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,         \
                                 unsigned int srcStride, uint8_t* dst, unsigned int dstStride)              \
    {                                                                                                       \
        filter3x3<Operation>({src, srcWidth, srcHeight, srcStride, dst, dstStride}, Operation::kNeutral);   \
    }                                                                                                       \
    odxStatus odxFilter##name##3x3u8_v3C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, \
                                         unsigned int srcStride, uint8_t* dst, unsigned int dstStride,      \
                                         odxBorderType borderType, uint32_t borderValue)                    \
    {                                                                                                       \
        filter3x3<Operation>({src, srcWidth, srcHeight, srcStride, dst, dstStride},                         \
                             outside<Operation>(borderType, borderValue));                                  \
        return ONDRIX_SUCCESS;                                                                              \
    }                                                                                                       \
    odxStatus odxFilter##name##NxNu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,    \
                                      unsigned int srcStride, unsigned int N, uint8_t* dst,                 \
                                      unsigned int dstStride)                                               \
    {                                                                                                       \
        return filterNxN<Loops<Operation>>({src, srcWidth, srcHeight, srcStride, dst, dstStride}, N);       \
    }
ODX_MORPHOLOGY(Erode, Erosion)
ODX_MORPHOLOGY(Dilate, Dilation)
}
