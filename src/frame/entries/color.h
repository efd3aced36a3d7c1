// The entry points of the colour conversions: one definition for every pair of layouts.
//
//     ODX_CONVERSION(odxColorXxxu8, Planar, srcWidth/2, Packed, srcWidth*3)
//
// is the entry point from a planar image to a packed one; beside each layout stands the packed length of its rows,
// which are those of the chroma where there is luma. The lengths are spelled as the text of the check shows them.
#ifndef ODX_FRAME_ENTRIES_COLOR_H
#define ODX_FRAME_ENTRIES_COLOR_H

#include "cpu/ondrixColorFromRgbC.h"
#include "frame/entry.h"

#include <utility>

namespace odx::color
{

// A plane of an image, or its only one. `row` is the length of a packed row.
template <class Byte>
struct Plane {
    Byte* data;
    uint32_t stride, row;

    bool given() const { return data != nullptr; }
    bool fits() const { return stride >= row; }
};

template <class Byte>
Plane(Byte*, uint32_t, uint32_t) -> Plane<Byte>;

template <auto* Reference, size_t... from, size_t... to>
[[gnu::always_inline]] inline void convert(const char* name, const char* condition, Plane<const uint8_t>* src,
                                           std::index_sequence<from...>, uint32_t width, uint32_t height,
                                           Plane<uint8_t>* dst, std::index_sequence<to...>)
{
    ((src[from].stride = packedIfZero(src[from].stride, src[from].row)), ...);
    ((dst[to].stride = packedIfZero(dst[to].stride, dst[to].row)), ...);
    const Call<Reference> call(name,
                               ODX_LIMITS(image(width, height) & aligned(src[from].data..., src[from].stride...) &
                                          aligned(dst[to].data..., dst[to].stride...)));
    ODX_CHECK_AS(condition, (src[from].given() && ...) && (dst[to].given() && ...) && width && height &&
                                (src[from].fits() && ...) && (dst[to].fits() && ...));
    call(src[from].data..., width, height, src[from].stride..., dst[to].data..., dst[to].stride...);
}

template <auto* Reference, size_t from, size_t to>
[[gnu::always_inline]] inline void convert(const char* name, const char* condition,
                                           Plane<const uint8_t> (&&src)[from], uint32_t width, uint32_t height,
                                           Plane<uint8_t> (&&dst)[to])
{
    convert<Reference>(name, condition, src, std::make_index_sequence<from>(), width, height, dst,
                       std::make_index_sequence<to>());
}

} // namespace odx::color

// The layouts: planes of an image, `side` being src or dst, and the terms that they add to the text of the check.
// clang-format off
#define ODX_Packed_PLANES(side, row) Plane{side, side##Stride, row}
#define ODX_Packed_GIVEN(side) #side
#define ODX_Packed_FIT(side, row) ODX_FIT(side##Stride, row)

#define ODX_Planar_PLANES(side, chroma) \
    Plane{side##Y, side##YStride, srcWidth}, Plane{side##Cb, side##CbStride, chroma}, \
    Plane{side##Cr, side##CrStride, chroma}
#define ODX_Planar_GIVEN(side) #side "Y && " #side "Cb && " #side "Cr"
#define ODX_Planar_FIT(side, chroma) \
    ODX_FIT(side##YStride, srcWidth) " && " ODX_FIT(side##CbStride, chroma) " && " ODX_FIT(side##CrStride, chroma)

#define ODX_PseudoPlanar_PLANES(side, chroma) \
    Plane{side##Y, side##YStride, srcWidth}, Plane{side##C, side##CStride, chroma}
#define ODX_PseudoPlanar_GIVEN(side) #side "Y && " #side "C"
#define ODX_PseudoPlanar_FIT(side, chroma) \
    ODX_FIT(side##YStride, srcWidth) " && " ODX_FIT(side##CStride, chroma)

#define ODX_FIT(stride, row) "( " #stride " == 0 || " #stride " >= (" #row "*sizeof(uint8_t)) )"

#define ODX_CONVERSION(name, from, fromRow, to, toRow) ODX_CONVERSION_VERSION(name, name, from, fromRow, to, toRow)
// One that goes through the slot of another operation.
#define ODX_CONVERSION_VERSION(name, base, from, fromRow, to, toRow) \
    void name(ODX_##from##_SOURCE, ODX_##to##_DESTINATION) \
    { \
        convert<base##C>(__func__, \
                         ODX_##from##_GIVEN(src) " && " ODX_##to##_GIVEN(dst) " && srcWidth && srcHeight && " \
                         ODX_##from##_FIT(src, fromRow) " && " ODX_##to##_FIT(dst, toRow), \
                         {ODX_##from##_PLANES(src, fromRow)}, srcWidth, srcHeight, {ODX_##to##_PLANES(dst, toRow)}); \
    }
// clang-format on

// The conversions of images in one packed buffer.
#define ODX_PACKED_CONVERSION(name)                                                               \
    void name(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)                  \
    {                                                                                             \
        const Call<name##C> call(__func__, ODX_LIMITS(image(width, height) & aligned(src, dst))); \
        ODX_CHECK(src && dst && width && height);                                                 \
        call(src, width, height, dst);                                                            \
    }

#endif
