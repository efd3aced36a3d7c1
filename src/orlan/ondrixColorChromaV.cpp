// SIMD rows of chroma: samples change their layout, every second one stays, or each comes twice.
#include "cpu/ondrixColor.h"
#include "cpu/ondrixColorFromRgbC.h"
#include "orlan/simd/simd.h"

#define ODX_FAMILY_LIST "frame/operations/colorFromRgb.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;

// kBytes samples of each kind, of every `step`-th pair.
struct Planar {
    static constexpr size_t kSize = 1;
    template <size_t step>
    ODX_INLINE u8x2 load(const uint8_t* cb, const uint8_t* cr)
    {
        if constexpr (step == 2) return {load2(cb).a, load2(cr).a};
        return {simd::load<u8v>(cb), simd::load<u8v>(cr)};
    }
    template <size_t repeat>
    ODX_INLINE void store(uint8_t* cb, uint8_t* cr, const u8x2& v)
    {
        if constexpr (repeat == 2) {
            store2(cb, v.a, v.a);
            store2(cr, v.b, v.b);
        } else {
            simd::store(cb, v.a);
            simd::store(cr, v.b);
        }
    }
};

struct PseudoPlanar {
    static constexpr size_t kSize = 2;
    template <size_t step>
    ODX_INLINE u8x2 load(const uint8_t* c, const uint8_t*)
    {
        if constexpr (step == 1) return load2(c);
        const u8x4 v = load4(c);
        return {v.a, v.b};
    }
    template <size_t repeat>
    ODX_INLINE void store(uint8_t* c, uint8_t*, const u8x2& v)
    {
        if constexpr (repeat == 2) {
            store4(c, v.a, v.b, v.a, v.b);
        } else {
            store2(c, v.a, v.b);
        }
    }
};

// The last vector may cover samples of the one before it, which are then written again. False for a row that is
// shorter than a vector.
template <class From, size_t step, class To, size_t repeat>
ODX_INLINE bool chromaRow(const uint8_t* srcCb, const uint8_t* srcCr, uint8_t* dstCb, uint8_t* dstCr, size_t count)
{
    if (count < kBytes) return false;
    const auto vector = [=](const uint8_t* fromCb, const uint8_t* fromCr, uint8_t* toCb, uint8_t* toCr) {
        To::template store<repeat>(toCb, toCr, From::template load<step>(fromCb, fromCr));
    };
    constexpr size_t in = From::kSize * step, out = To::kSize * repeat;
    const size_t last = count - kBytes;
    vector(srcCb + in * last, srcCr + in * last, dstCb + out * last, dstCr + out * last);
    const auto next = [&]() __attribute__((always_inline))
    {
        vector(srcCb, srcCr, dstCb, dstCr);
        srcCb += in * kBytes;
        dstCb += out * kBytes;
        pin(srcCb), pin(dstCb);
        if constexpr (From::kSize == 1) { // interleaved samples are at cb alone
            srcCr += in * kBytes;
            pin(srcCr);
        }
        if constexpr (To::kSize == 1) {
            dstCr += out * kBytes;
            pin(dstCr);
        }
    };
    constexpr size_t together = kBytes == 16 ? 4 : 1; // of a few instructions, which a loop would double
    for (size_t i = count / (together * kBytes); i != 0; --i) {
        next();
        if constexpr (together != 1) next(), next(), next();
    }
    for (size_t i = count / kBytes % together; i != 0; --i)
        next();
    return true;
}

#define ODX_CHROMA_ROW(name, reference, from, step, to, repeat)                                         \
    void name(const uint8_t* srcCb, const uint8_t* srcCr, uint8_t* dstCb, uint8_t* dstCr, size_t count) \
    {                                                                                                   \
        if (!chromaRow<from, step, to, repeat>(srcCb, srcCr, dstCb, dstCr, count))                      \
            reference(srcCb, srcCr, dstCb, dstCr, count);                                               \
    }
ODX_CHROMA_ROW(chromaPlanarToPlanarHalfV, chromaPlanarToPlanarHalfC, Planar, 2, Planar, 1)
ODX_CHROMA_ROW(chromaPlanarToPlanarTwiceV, chromaPlanarToPlanarTwiceC, Planar, 1, Planar, 2)
ODX_CHROMA_ROW(chromaPlanarToPseudoPlanarV, chromaPlanarToPseudoPlanarC, Planar, 1, PseudoPlanar, 1)
ODX_CHROMA_ROW(chromaPlanarToPseudoPlanarHalfV, chromaPlanarToPseudoPlanarHalfC, Planar, 2, PseudoPlanar, 1)
ODX_CHROMA_ROW(chromaPlanarToPseudoPlanarTwiceV, chromaPlanarToPseudoPlanarTwiceC, Planar, 1, PseudoPlanar, 2)
ODX_CHROMA_ROW(chromaPseudoPlanarToPlanarV, chromaPseudoPlanarToPlanarC, PseudoPlanar, 1, Planar, 1)
ODX_CHROMA_ROW(chromaPseudoPlanarToPlanarHalfV, chromaPseudoPlanarToPlanarHalfC, PseudoPlanar, 2, Planar, 1)
ODX_CHROMA_ROW(chromaPseudoPlanarToPlanarTwiceV, chromaPseudoPlanarToPlanarTwiceC, PseudoPlanar, 1, Planar, 2)
ODX_CHROMA_ROW(chromaPseudoPlanarToPseudoPlanarHalfV, chromaPseudoPlanarToPseudoPlanarHalfC, PseudoPlanar, 2,
               PseudoPlanar, 1)
ODX_CHROMA_ROW(chromaPseudoPlanarToPseudoPlanarTwiceV, chromaPseudoPlanarToPseudoPlanarTwiceC, PseudoPlanar, 1,
               PseudoPlanar, 2)

} // namespace odx::ODX_TARGET
