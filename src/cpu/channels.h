// Rows of interleaved bytes. The plain loops say what is done, and compilers turn them into interleaved loads and
// stores where a processor has these; elsewhere zips.h does most of it.
#ifndef ODX_CPU_CHANNELS_H
#define ODX_CPU_CHANNELS_H

#include "cpu/ondrixColor.h"
#include "cpu/zips.h"

#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace odx::channels
{

// Rows are converted in chunks, by way of a plane for each channel. So every loop over a channel is one that
// compilers vectorise.
constexpr size_t kChunk = 256;
struct Pixels {
    alignas(16) uint8_t red[kChunk], green[kChunk], blue[kChunk];
};

#define ODX_CHANNELS_INLINE [[gnu::always_inline]] static inline

// Bytes 3 * x, 3 * x + 1 and 3 * x + 2 of the source become a[x], b[x] and c[x].
ODX_CHANNELS_INLINE void split3(const uint8_t* __restrict src, uint8_t* __restrict a, uint8_t* __restrict b,
                                uint8_t* __restrict c, size_t count)
{
    for (size_t x = zips::split3(src, a, b, c, count); x < count; ++x) {
        a[x] = src[3 * x];
        b[x] = src[3 * x + 1];
        c[x] = src[3 * x + 2];
    }
}

// The reverse.
ODX_CHANNELS_INLINE void join3(const uint8_t* __restrict a, const uint8_t* __restrict b,
                               const uint8_t* __restrict c, uint8_t* __restrict dst, size_t count)
{
    for (size_t x = zips::join3(a, b, c, dst, count); x < count; ++x) {
        dst[3 * x] = a[x];
        dst[3 * x + 1] = b[x];
        dst[3 * x + 2] = c[x];
    }
}

// The first three of four bytes; the fourth is dropped.
ODX_CHANNELS_INLINE void split4(const uint8_t* __restrict src, uint8_t* __restrict a, uint8_t* __restrict b,
                                uint8_t* __restrict c, size_t count)
{
    for (size_t x = zips::split4(src, a, b, c, count); x < count; ++x) {
        a[x] = src[4 * x];
        b[x] = src[4 * x + 1];
        c[x] = src[4 * x + 2];
    }
}

// The reverse; the fourth byte becomes 255.
ODX_CHANNELS_INLINE void join4(const uint8_t* __restrict a, const uint8_t* __restrict b,
                               const uint8_t* __restrict c, uint8_t* __restrict dst, size_t count)
{
    for (size_t x = zips::join4(a, b, c, dst, count); x < count; ++x) {
        dst[4 * x] = a[x];
        dst[4 * x + 1] = b[x];
        dst[4 * x + 2] = c[x];
        dst[4 * x + 3] = 255;
    }
}

// Pixels of four bytes from pixels of three: the fourth byte is 255.
ODX_CHANNELS_INLINE void widen(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t count)
{
    for (size_t x = zips::widen(src, dst, count); x < count; ++x) {
        dst[4 * x] = src[3 * x];
        dst[4 * x + 1] = src[3 * x + 1];
        dst[4 * x + 2] = src[3 * x + 2];
        dst[4 * x + 3] = 255;
    }
}

// Pixels of three bytes from pixels of four: the fourth byte is dropped.
ODX_CHANNELS_INLINE void narrow(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t count)
{
    for (size_t x = zips::narrow(src, dst, count); x < count; ++x) {
        dst[3 * x] = src[4 * x];
        dst[3 * x + 1] = src[4 * x + 1];
        dst[3 * x + 2] = src[4 * x + 2];
    }
}

// Exchanges the first and the third byte of each pixel of three.
ODX_CHANNELS_INLINE void mirror3(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t count)
{
    for (size_t x = zips::mirror3(src, dst, count); x < count; ++x) {
        dst[3 * x] = src[3 * x + 2];
        dst[3 * x + 1] = src[3 * x + 1];
        dst[3 * x + 2] = src[3 * x];
    }
}

// Exchanges the first and the third byte of each pixel of four.
ODX_CHANNELS_INLINE void mirror4(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t count)
{
    for (size_t x = 0; x < count; ++x) {
        uint32_t w;
        memcpy(&w, src + 4 * x, sizeof w);
        w = (w & 0xFF00FF00) | (w & 0xFF) << 16 | (w >> 16 & 0xFF);
        memcpy(dst + 4 * x, &w, sizeof w);
    }
}

// 16-bit words of 5 bits of a, 6 of b and 5 of c, from the low bits up.
ODX_CHANNELS_INLINE void join565(const uint8_t* __restrict a, const uint8_t* __restrict b,
                                 const uint8_t* __restrict c, uint8_t* __restrict dst, size_t count)
{
    for (size_t x = 0; x < count; ++x) {
        color::RGB565::pack(a[x], b[x], c[x], [=](auto low, auto high) {
            dst[2 * x] = static_cast<uint8_t>(low);
            dst[2 * x + 1] = static_cast<uint8_t>(high);
        });
    }
}

#undef ODX_CHANNELS_INLINE

} // namespace odx::channels

#endif
