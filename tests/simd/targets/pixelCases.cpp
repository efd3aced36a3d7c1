#include "simd/targets/loops.h"

#include "orlan/simd/marking.h"

namespace odx::ODX_TARGET
{
using namespace loops;

namespace
{

// Pixels of `from` bytes at `in` become such of `to` bytes: byte c of each is byteOf(pixel, c).
template <size_t from, size_t to, class ByteOf>
void pixels(In in, Out expected, ByteOf byteOf)
{
    for (size_t i = 0; i < kBytes; ++i) {
        for (size_t c = 0; c < to; ++c)
            put<uint8_t>(expected, to * i + c, byteOf(in + from * i, c));
    }
}
template <size_t count, bool mirrored>
void repacked(In in, Out expected)
{
    pixels<count, 7 - count>(in, expected, [](In p, size_t c) { return c == 3 ? 255 : p[mirrored ? 2 - c : c]; });
}
template <bool mirrored>
void widened565(In in, Out out, Out expected)
{
    widen565<mirrored>(out, in);
    pixels<2, 4>(in, expected, [](In p, size_t c) {
        const int w = at<uint16_t>(p, 0), low = w & 31, middle = w >> 5 & 63, high = w >> 11;
        if (c == 3) return 255;
        if (c == 1) return middle << 2 | middle >> 4;
        const int five = (c == 0) != mirrored ? low : high;
        return five << 3 | five >> 2;
    });
}

// The mask stands before the value and the pixels.
template <class T, uint32_t channels>
void marked(In in, Out out, Out expected)
{
    T value[channels], pixels[kBytes * channels], set[kBytes * channels];
    memcpy(value, in + kBytes, sizeof value);
    memcpy(pixels, in + kBytes + sizeof value, sizeof pixels);
    MarkedPixels<T, channels>(value).set(set, pixels, (u8v)(load<u8v>(in) != 0));
    memcpy(out, set, sizeof set);
    memcpy(expected, pixels, sizeof pixels);
    for (size_t i = 0; i < kBytes * channels; ++i) {
        if (in[i / channels] != 0) memcpy(expected + sizeof(T) * i, value + i % channels, sizeof(T));
    }
}

template <int a, int b, int c>
int weighed(In p)
{
    return (a * p[0] + b * p[1] + c * p[2] + 128) >> 8;
}
template <auto load, size_t size, int a, int b, int c>
void luma(In in, Out out, Out expected)
{
    store(out, lumaSums<a, b, c>(load(in)));
    EACH(uint8_t, kBytes, (weighed<a, b, c>(in + size * i)));
}
template <auto load, size_t size, int a, int b, int c>
void chroma(In in, Out out, Out expected)
{
    store(out, chromaSums<a, b, c>(load(in)));
    EACH(uint8_t, kBytes, clamped(128 + weighed<a, b, c>(in + size * i), 0, 255));
}
template <auto load, size_t size, int a, int b, int c>
void chromaOfPairs(In in, Out out, Out expected)
{
    store(out, chromaSumsOfPairs<a, b, c>(load(in)));
    EACH(uint16_t, kBytes / 2, clamped(128 + weighed<a, b, c>(in + 2 * size * i), 0, 255));
}

const PrimitiveCase kCases[] = {
    CASE("loadWiden", kBytes / 2, uint16_t, kBytes / 2, in[i], store(out, loadWiden(in))),
    CASE("storeNarrow", kBytes, uint8_t, kBytes / 2, in[2 * i], storeNarrow(out, load<u16v>(in) & 0xFF)),
    CASE("load2", 2 * kBytes, uint8_t, 2 * kBytes, in[i % kBytes * 2 + i / kBytes], put<u8x2>(out, 0, load2(in))),
    CASE("load3", 3 * kBytes, uint8_t, 3 * kBytes, in[i % kBytes * 3 + i / kBytes], put<u8x3>(out, 0, load3(in))),
    CASE("load4", 4 * kBytes, uint8_t, 4 * kBytes, in[i % kBytes * 4 + i / kBytes], put<u8x4>(out, 0, load4(in))),
    CASE("store2", 2 * kBytes, uint8_t, 2 * kBytes, in[i % 2 * kBytes + i / 2],
         store2(out, load<u8v>(in), load<u8v>(in + kBytes))),
    CASE("store3", 3 * kBytes, uint8_t, 3 * kBytes, in[i % 3 * kBytes + i / 3],
         store3(out, load<u8v>(in), load<u8v>(in + kBytes), load<u8v>(in + 2 * kBytes))),
    CASE("store4", 4 * kBytes, uint8_t, 4 * kBytes, in[i % 4 * kBytes + i / 4],
         store4(out, load<u8v>(in), load<u8v>(in + kBytes), load<u8v>(in + 2 * kBytes),
                load<u8v>(in + 3 * kBytes))),
    {"widen3", 3 * kBytes,
     [](In in, Out out, Out expected) { widen3<false>(out, in), repacked<3, false>(in, expected); }},
    {"widen3 mirrored", 3 * kBytes,
     [](In in, Out out, Out expected) { widen3<true>(out, in), repacked<3, true>(in, expected); }},
    {"narrow4", 4 * kBytes,
     [](In in, Out out, Out expected) { narrow4<false>(out, in), repacked<4, false>(in, expected); }},
    {"narrow4 mirrored", 4 * kBytes,
     [](In in, Out out, Out expected) { narrow4<true>(out, in), repacked<4, true>(in, expected); }},
    CASE("mirror3", 3 * kBytes, uint8_t, 3 * kBytes, in[i / 3 * 3 + 2 - i % 3], mirror3(out, in)),
    CASE("mirror3 in place", 3 * kBytes, uint8_t, 3 * kBytes, in[i / 3 * 3 + 2 - i % 3],
         memcpy(out, in, 3 * kBytes), mirror3(out, out)),
    CASE("mirror4", 4 * kBytes, uint8_t, 4 * kBytes, in[i % 2 == 0 ? i ^ 2 : i], mirror4(out, in)),
    {"MarkedPixels of 3 bytes", 4 * kBytes + 3, marked<uint8_t, 3>},
    {"MarkedPixels of 4 bytes", 5 * kBytes + 4, marked<uint8_t, 4>},
    {"MarkedPixels of a word", 5 * kBytes + 4, marked<int32_t, 1>},
    {"MarkedPixels of 3 words", 13 * kBytes + 12, marked<float, 3>},
    {"MarkedPixels of 4 words", 17 * kBytes + 16, marked<int32_t, 4>},
    {"widen565", 2 * kBytes, widened565<false>},
    {"widen565 mirrored", 2 * kBytes, widened565<true>},
    {"lumaSums of triples", 3 * kBytes, luma<loadTriples, 3, 77, 150, 29>},
    {"lumaSums of quads", 4 * kBytes, luma<loadQuads, 4, 1, 254, 1>},
    {"lumaSums of channels", 3 * kBytes, luma<load3, 3, 29, 150, 77>},
    {"chromaSums of triples", 3 * kBytes, chroma<loadTriples, 3, -43, -85, 128>},
    {"chromaSums of quads", 4 * kBytes, chroma<loadQuads, 4, 128, -107, -21>},
    {"chromaSums of channels", 3 * kBytes, chroma<load3, 3, -21, -107, 128>},
    {"chromaSumsOfPairs of triples", 3 * kBytes, chromaOfPairs<loadTriples, 3, 128, -107, -21>},
    {"chromaSumsOfPairs of quads", 4 * kBytes, chromaOfPairs<loadQuads, 4, -43, -85, 128>},
    {"chromaSumsOfPairs of channels", 3 * kBytes, chromaOfPairs<load3, 3, -43, -85, 128>},
    CASE("fineSums", 3 * kBytes, uint8_t, kBytes,
         (19595 * in[3 * i] + 38469 * in[3 * i + 1] + 7471 * in[3 * i + 2] + 32768) >> 16,
         store(out, fineSums<19595, 38469, 7471>(in))),
};

} // namespace

extern const test::PrimitiveCases pixelCases;
const test::PrimitiveCases pixelCases = {kCases, sizeof kCases / sizeof *kCases};

} // namespace odx::ODX_TARGET
