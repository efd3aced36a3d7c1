// SIMD functions for interleaved channels.
#include "cpu/ondrixChannelC.h"
#include "orlan/arithm.h"

#include "cpu/ondrixArithmC.h"
#define ODX_FAMILY_LIST "frame/operations/arithmetic.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace arithm;

ODX_INLINE u8x2 loadPixels(const Pixel<uint8_t, 2>* p)
{
    return load2(p->channel);
}
ODX_INLINE u8x3 loadPixels(const Pixel<uint8_t, 3>* p)
{
    return load3(p->channel);
}
ODX_INLINE u8x4 loadPixels(const Pixel<uint8_t, 4>* p)
{
    return load4(p->channel);
}

// Two vectors are loaded before one is stored where that makes pairs of vectors.
constexpr uint32_t kAtOnce = kPairsVectors ? 2 : 1;

struct Combine : Lanes<kAtOnce * kBytes> {
    ODX_MEMBER static void storePixels(uint8_t* out, u8v a, u8v b) { store2(out, a, b); }
    ODX_MEMBER static void storePixels(uint8_t* out, u8v a, u8v b, u8v c) { store3(out, a, b, c); }
    ODX_MEMBER static void storePixels(uint8_t* out, u8v a, u8v b, u8v c, u8v d) { store4(out, a, b, c, d); }

    struct Loaded {
        u8v first, last;

        ODX_MEMBER explicit Loaded(const uint8_t* p)
            : first(load<u8v>(p)), last(load<u8v>(p + (kAtOnce - 1) * kBytes))
        {
        }
    };
    template <uint32_t channels, class... Planes>
    ODX_MEMBER static void storeAll(Pixel<uint8_t, channels>* out, Planes... planes)
    {
        storePixels(out->channel, planes.first...);
        if constexpr (kAtOnce == 2) storePixels(out[kBytes].channel, planes.last...);
    }
    ODX_MEMBER void operator()(const uint8_t* a, const uint8_t* b, Pixel<uint8_t, 2>* out) const
    {
        storeAll(out, Loaded(a), Loaded(b));
    }
    ODX_MEMBER void operator()(const uint8_t* a, const uint8_t* b, const uint8_t* c, Pixel<uint8_t, 3>* out) const
    {
        storeAll(out, Loaded(a), Loaded(b), Loaded(c));
    }
    ODX_MEMBER void operator()(const uint8_t* a, const uint8_t* b, const uint8_t* c, const uint8_t* d,
                               Pixel<uint8_t, 4>* out) const
    {
        storeAll(out, Loaded(a), Loaded(b), Loaded(c), Loaded(d));
    }
};

struct Separate : Lanes<kBytes> {
    ODX_MEMBER void operator()(const Pixel<uint8_t, 2>* in, uint8_t* a, uint8_t* b) const
    {
        const u8x2 v = loadPixels(in);
        store(a, v.a);
        store(b, v.b);
    }
    ODX_MEMBER void operator()(const Pixel<uint8_t, 3>* in, uint8_t* a, uint8_t* b, uint8_t* c) const
    {
        const u8x3 v = loadPixels(in);
        store(a, v.a);
        store(b, v.b);
        store(c, v.c);
    }
    ODX_MEMBER void operator()(const Pixel<uint8_t, 4>* in, uint8_t* a, uint8_t* b, uint8_t* c, uint8_t* d) const
    {
        const u8x4 v = loadPixels(in);
        store(a, v.a);
        store(b, v.b);
        store(c, v.c);
        store(d, v.d);
    }
};

template <uint32_t channels, uint32_t position>
struct Extract : Lanes<kBytes> {
    static constexpr bool kIsShort = true;

    ODX_MEMBER void operator()(const Pixel<uint8_t, channels>* in, uint8_t* out) const
    {
        const auto v = loadPixels(in);
        if constexpr (position == 0) store(out, v.a);
        if constexpr (position == 1) store(out, v.b);
        if constexpr (position == 2) store(out, v.c);
        if constexpr (position == 3) store(out, v.d);
    }
};

template <uint32_t channels, uint32_t position = 0>
ODX_INLINE void extract(uint32_t wanted, uint32_t width, uint32_t height, Rows<const uint8_t> src,
                        Rows<uint8_t> dst)
{
    if constexpr (position + 1 < channels) {
        if (wanted != position) return extract<channels, position + 1>(wanted, width, height, src, dst);
    }
    forVectors(Extract<channels, position>(), width, height,
               Rows{pixelsOf<uint8_t, channels>(src.pixels), src.stride}, dst);
}

void combine2PlanesV(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight, unsigned int src1Stride,
                     const uint8_t* src2, unsigned int src2Stride, uint8_t* dst, unsigned int dstStride)
{
    forVectors(Combine(), srcWidth, srcHeight, Rows{src1, src1Stride}, Rows{src2, src2Stride},
               Rows{pixelsOf<uint8_t, 2>(dst), dstStride});
}

void odxChannelCombine3Planesu8V(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride,
                                 const uint8_t* src3, unsigned int src3Stride, uint8_t* dst,
                                 unsigned int dstStride)
{
    forVectors(Combine(), srcWidth, srcHeight, Rows{src1, src1Stride}, Rows{src2, src2Stride},
               Rows{src3, src3Stride}, Rows{pixelsOf<uint8_t, 3>(dst), dstStride});
}

void odxChannelCombine4Planesu8V(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride,
                                 const uint8_t* src3, unsigned int src3Stride, const uint8_t* src4,
                                 unsigned int src4Stride, uint8_t* dst, unsigned int dstStride)
{
    forVectors(Combine(), srcWidth, srcHeight, Rows{src1, src1Stride}, Rows{src2, src2Stride},
               Rows{src3, src3Stride}, Rows{src4, src4Stride}, Rows{pixelsOf<uint8_t, 4>(dst), dstStride});
}

void extractChannelV(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint32_t channels,
                     uint32_t position, uint8_t* dst, uint32_t dstStride)
{
    const Rows from = {src, srcStride};
    const Rows to = {dst, dstStride};
    if (channels == 2) return extract<2>(position, width, height, from, to);
    if (channels == 3) return extract<3>(position, width, height, from, to);
    extract<4>(position, width, height, from, to);
}

// More than four channels are the reference's.
void deinterleaveV(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                   unsigned int channels, uint8_t* dst, unsigned int dstStride)
{
    const auto plane = [=](size_t c) { return Rows{rowOf(dst, dstStride, c * srcHeight), dstStride}; };
    if (channels == 2) {
        forVectors(Separate(), srcWidth, srcHeight, Rows{pixelsOf<uint8_t, 2>(src), srcStride}, plane(0),
                   plane(1));
    } else if (channels == 3) {
        forVectors(Separate(), srcWidth, srcHeight, Rows{pixelsOf<uint8_t, 3>(src), srcStride}, plane(0), plane(1),
                   plane(2));
    } else if (channels == 4) {
        forVectors(Separate(), srcWidth, srcHeight, Rows{pixelsOf<uint8_t, 4>(src), srcStride}, plane(0), plane(1),
                   plane(2), plane(3));
    } else {
        deinterleaveC(src, srcWidth, srcHeight, srcStride, channels, dst, dstStride);
    }
}

void interleaveV(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                 unsigned int channels, uint8_t* dst, unsigned int dstStride)
{
    const auto plane = [=](size_t c) { return Rows{rowOf(src, srcStride, c * srcHeight), srcStride}; };
    if (channels == 2) {
        forVectors(Combine(), srcWidth, srcHeight, plane(0), plane(1), Rows{pixelsOf<uint8_t, 2>(dst), dstStride});
    } else if (channels == 3) {
        forVectors(Combine(), srcWidth, srcHeight, plane(0), plane(1), plane(2),
                   Rows{pixelsOf<uint8_t, 3>(dst), dstStride});
    } else if (channels == 4) {
        forVectors(Combine(), srcWidth, srcHeight, plane(0), plane(1), plane(2), plane(3),
                   Rows{pixelsOf<uint8_t, 4>(dst), dstStride});
    } else {
        interleaveC(src, srcWidth, srcHeight, srcStride, channels, dst, dstStride);
    }
}

} // namespace odx::ODX_TARGET
