// Compiled once for each target. Nothing here may have an instance that the linker could share between targets.
#include "simd/cases.h"

#include "orlan/simd/simd.h"

namespace odx::ODX_TARGET
{
using namespace simd;
using test::PrimitiveCase;

namespace
{

typedef const uint8_t* In;
typedef uint8_t* Out;

// The i-th number of an array of bytes.
template <class T>
T at(In p, size_t i)
{
    T value;
    memcpy(&value, p + sizeof value * i, sizeof value);
    return value;
}
template <class T, class Value>
void put(Out p, size_t i, Value value)
{
    const T narrow = (T)value;
    memcpy(p + sizeof narrow * i, &narrow, sizeof narrow);
}

template <uint32_t size>
void bytesOfTable(In in, Out out, Out expected)
{
    const ByteTable<size> table(in);
    store(out, table(load<u8v>(in + size) & (u8v{} + (uint8_t)(size - 1))));
    for (size_t i = 0; i < kBytes; ++i)
        expected[i] = in[in[size + i] & (size - 1)];
}

// Whether each lane of a result is as near to the exact one as a share of it.
template <class Exact>
void near(f32v v, double share, Out out, Out expected, Exact exact)
{
    for (size_t i = 0; i < kBytes / sizeof(float); ++i) {
        const double error = (double)v[i] - exact(i);
        out[i] = (error < 0 ? -error : error) <= share * exact(i);
        expected[i] = 1;
    }
}

int clamped(int value, int least, int most)
{
    return value < least ? least : value > most ? most : value;
}

// Each lane of one vector, and of two that follow each other.
template <class V, class T, class Primitive, class Plain>
void unary(In in, Out out, Out expected, Primitive primitive, Plain plain)
{
    store(out, primitive(load<V>(in)));
    for (size_t i = 0; i < kBytes / sizeof(T); ++i)
        put<T>(expected, i, plain(at<T>(in, i)));
}
template <class V, class T, class Primitive, class Plain>
void binary(In in, Out out, Out expected, Primitive primitive, Plain plain)
{
    store(out, primitive(load<V>(in), load<V>(in + kBytes)));
    for (size_t i = 0; i < kBytes / sizeof(T); ++i)
        put<T>(expected, i, plain(at<T>(in, i), at<T>(in + kBytes, i)));
}

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

template <int a, int b, int c>
void luma(In in, Out expected, size_t size)
{
    for (size_t i = 0; i < kBytes; ++i)
        put<uint8_t>(expected, i, (a * in[size * i] + b * in[size * i + 1] + c * in[size * i + 2] + 128) >> 8);
}
template <int a, int b, int c, class T = uint8_t>
void chroma(In in, Out expected, size_t size, size_t step = 1)
{
    for (size_t i = 0; i < kBytes / step; ++i) {
        const In p = in + size * step * i;
        put<T>(expected, i, clamped(128 + ((a * p[0] + b * p[1] + c * p[2] + 128) >> 8), 0, 255));
    }
}

const PrimitiveCase kCases[] = {
    {"loadWiden", kBytes / 2,
     [](In in, Out out, Out expected) {
         store(out, loadWiden(in));
         for (size_t i = 0; i < kBytes / 2; ++i)
             put<uint16_t>(expected, i, in[i]);
     }},
    {"storeNarrow", kBytes,
     [](In in, Out out, Out expected) {
         storeNarrow(out, load<u16v>(in) & 0xFF);
         for (size_t i = 0; i < kBytes / 2; ++i)
             expected[i] = in[2 * i];
     }},
    {"load2", 2 * kBytes,
     [](In in, Out out, Out expected) {
         const u8x2 v = load2(in);
         store(out, v.a - v.b * 3);
         for (size_t i = 0; i < kBytes; ++i)
             put<uint8_t>(expected, i, in[2 * i] - in[2 * i + 1] * 3);
     }},
    {"store2", 2 * kBytes,
     [](In in, Out out, Out expected) {
         store2(out, load<u8v>(in), load<u8v>(in + kBytes));
         pixels<1, 2>(in, expected, [](In p, size_t c) { return p[kBytes * c]; });
     }},
    {"load3", 3 * kBytes,
     [](In in, Out out, Out expected) {
         const u8x3 v = load3(in);
         store(out, v.a);
         store(out + kBytes, v.b);
         store(out + 2 * kBytes, v.c);
         for (size_t i = 0; i < 3 * kBytes; ++i)
             expected[i] = in[i % kBytes * 3 + i / kBytes];
     }},
    {"store3", 3 * kBytes,
     [](In in, Out out, Out expected) {
         store3(out, load<u8v>(in), load<u8v>(in + kBytes), load<u8v>(in + 2 * kBytes));
         pixels<1, 3>(in, expected, [](In p, size_t c) { return p[kBytes * c]; });
     }},
    {"load4", 4 * kBytes,
     [](In in, Out out, Out expected) {
         const u8x4 v = load4(in);
         store(out, v.a);
         store(out + kBytes, v.b);
         store(out + 2 * kBytes, v.c);
         store(out + 3 * kBytes, v.d);
         for (size_t i = 0; i < 4 * kBytes; ++i)
             expected[i] = in[i % kBytes * 4 + i / kBytes];
     }},
    {"store4", 4 * kBytes,
     [](In in, Out out, Out expected) {
         store4(out, load<u8v>(in), load<u8v>(in + kBytes), load<u8v>(in + 2 * kBytes),
                load<u8v>(in + 3 * kBytes));
         pixels<1, 4>(in, expected, [](In p, size_t c) { return p[kBytes * c]; });
     }},
    {"widen3", 3 * kBytes,
     [](In in, Out out, Out expected) { widen3<false>(out, in), repacked<3, false>(in, expected); }},
    {"widen3 mirrored", 3 * kBytes,
     [](In in, Out out, Out expected) { widen3<true>(out, in), repacked<3, true>(in, expected); }},
    {"narrow4", 4 * kBytes,
     [](In in, Out out, Out expected) { narrow4<false>(out, in), repacked<4, false>(in, expected); }},
    {"narrow4 mirrored", 4 * kBytes,
     [](In in, Out out, Out expected) { narrow4<true>(out, in), repacked<4, true>(in, expected); }},
    {"mirror3", 3 * kBytes,
     [](In in, Out out, Out expected) {
         mirror3(out, in);
         pixels<3, 3>(in, expected, [](In p, size_t c) { return p[2 - c]; });
     }},
    {"mirror3 in place", 3 * kBytes,
     [](In in, Out out, Out expected) {
         memcpy(out, in, 3 * kBytes);
         mirror3(out, out);
         pixels<3, 3>(in, expected, [](In p, size_t c) { return p[2 - c]; });
     }},
    {"mirrorQuads", kBytes,
     [](In in, Out out, Out expected) {
         store(out, mirrorQuads(load<u8v>(in)));
         for (size_t i = 0; i < kBytes; ++i)
             expected[i] = in[i % 2 == 0 ? i ^ 2 : i];
     }},
    {"mirror565", kBytes,
     [](In in, Out out, Out expected) {
         unary<u16v, uint16_t>(
             in, out, expected, [](u16v v) { return mirror565(v); },
             [](int w) { return w << 11 | (w & 0x7E0) | w >> 11; });
     }},
    {"widen565", 2 * kBytes, widened565<false>},
    {"widen565 mirrored", 2 * kBytes, widened565<true>},
    {"lumaSums of triples", 3 * kBytes,
     [](In in, Out out, Out expected) {
         store(out, lumaSums<77, 150, 29>(loadTriples(in)));
         luma<77, 150, 29>(in, expected, 3);
     }},
    {"lumaSums of quads", 4 * kBytes,
     [](In in, Out out, Out expected) {
         store(out, lumaSums<1, 254, 1>(loadQuads(in)));
         luma<1, 254, 1>(in, expected, 4);
     }},
    {"lumaSums of channels", 3 * kBytes,
     [](In in, Out out, Out expected) {
         store(out, lumaSums<29, 150, 77>(load3(in)));
         luma<29, 150, 77>(in, expected, 3);
     }},
    {"chromaSums of triples", 3 * kBytes,
     [](In in, Out out, Out expected) {
         store(out, chromaSums<-43, -85, 128>(loadTriples(in)));
         chroma<-43, -85, 128>(in, expected, 3);
     }},
    {"chromaSums of quads", 4 * kBytes,
     [](In in, Out out, Out expected) {
         store(out, chromaSums<128, -107, -21>(loadQuads(in)));
         chroma<128, -107, -21>(in, expected, 4);
     }},
    {"chromaSums of channels", 3 * kBytes,
     [](In in, Out out, Out expected) {
         store(out, chromaSums<-21, -107, 128>(load3(in)));
         chroma<-21, -107, 128>(in, expected, 3);
     }},
    {"chromaSumsOfPairs of triples", 3 * kBytes,
     [](In in, Out out, Out expected) {
         store(out, chromaSumsOfPairs<128, -107, -21>(loadTriples(in)));
         chroma<128, -107, -21, uint16_t>(in, expected, 3, 2);
     }},
    {"chromaSumsOfPairs of quads", 4 * kBytes,
     [](In in, Out out, Out expected) {
         store(out, chromaSumsOfPairs<-43, -85, 128>(loadQuads(in)));
         chroma<-43, -85, 128, uint16_t>(in, expected, 4, 2);
     }},
    {"chromaSumsOfPairs of channels", 3 * kBytes,
     [](In in, Out out, Out expected) {
         store(out, chromaSumsOfPairs<-43, -85, 128>(load3(in)));
         chroma<-43, -85, 128, uint16_t>(in, expected, 3, 2);
     }},
    {"fineSums", 3 * kBytes,
     [](In in, Out out, Out expected) {
         store(out, fineSums<19595, 38469, 7471>(in));
         for (size_t i = 0; i < kBytes; ++i)
             put<uint8_t>(expected, i,
                          (19595 * in[3 * i] + 38469 * in[3 * i + 1] + 7471 * in[3 * i + 2] + 32768) >> 16);
     }},
    {"loadPart", kBytes,
     [](In in, Out out, Out expected) {
         store(out, loadPart<4>(in) | loadPart<8>(in + 4));
         for (size_t i = 0; i < kBytes; ++i)
             expected[i] = (uint8_t)((i < 4 ? in[i] : 0) | (i < 8 ? in[i + 4] : 0));
     }},
    {"addProducts and sumOfLanes", 2 * kBytes,
     [](In in, Out out, Out expected) {
         put<uint32_t>(out, 0, sumOfLanes(addProducts(u32v{7}, load<u8v>(in), load<u8v>(in + kBytes))));
         put<uint32_t>(out, 1, sumOfLanes(addProducts(u32v{7}, load<s8v>(in), load<s8v>(in + kBytes))));
         uint32_t sum = 7, signedSum = 7;
         for (size_t i = 0; i < kBytes; ++i) {
             sum += (uint32_t)(in[i] * in[i + kBytes]);
             signedSum += (uint32_t)((int8_t)in[i] * (int8_t)in[i + kBytes]);
         }
         put<uint32_t>(expected, 0, sum);
         put<uint32_t>(expected, 1, signedSum);
     }},
    {"addBytes, addDifferences and storeSums", 4 * kBytes,
     [](In in, Out out, Out expected) {
         const auto v = [=](int k) { return load<u8v>(in + kBytes * (size_t)k); };
         const u32v big = {0xFFFFFF00, 0xFFFFFF00};
         uint32_t sums[4];
         storeSums(sums, addBytes(u32v{}, v(0)), addBytes(big, v(1)), addDifferences(u32v{}, v(1), v(2)),
                   addDifferences(big, v(2), v(3)));
         memcpy(out, sums, sizeof sums);
         uint32_t e[4] = {0, 0xFFFFFE00, 0, 0xFFFFFE00};
         for (size_t i = 0; i < kBytes; ++i) {
             const int a = in[i], b = in[kBytes + i], c = in[2 * kBytes + i], d = in[3 * kBytes + i];
             e[0] += (uint32_t)a;
             e[1] += (uint32_t)b;
             e[2] += (uint32_t)(b < c ? c - b : b - c);
             e[3] += (uint32_t)(c < d ? d - c : c - d);
         }
         memcpy(expected, e, sizeof e);
     }},
    {"addDifferencesOf8", 2 * kBytes,
     [](In in, Out out, Out expected) {
         store(out, addDifferencesOf8((u16v)load<u8v>(in + kBytes), in, in + kBytes));
         for (size_t i = 0; i < kBytes / 2; ++i) {
             int sum = at<uint16_t>(in + kBytes, i);
             for (size_t k = 0; k < 8; ++k) {
                 const int p = in[i + k], q = in[kBytes + k];
                 sum += p < q ? q - p : p - q;
             }
             put<uint16_t>(expected, i, sum);
         }
     }},
    {"min of u8v", 2 * kBytes,
     [](In in, Out out, Out expected) {
         binary<u8v, uint8_t>(
             in, out, expected, [](u8v v, u8v w) { return min(v, w); },
             [](int a, int b) { return a < b ? a : b; });
     }},
    {"max of u8v", 2 * kBytes,
     [](In in, Out out, Out expected) {
         binary<u8v, uint8_t>(
             in, out, expected, [](u8v v, u8v w) { return max(v, w); },
             [](int a, int b) { return a < b ? b : a; });
     }},
    {"min of s16v", 2 * kBytes,
     [](In in, Out out, Out expected) {
         binary<s16v, int16_t>(
             in, out, expected, [](s16v v, s16v w) { return min(v, w); },
             [](int a, int b) { return a < b ? a : b; });
     }},
    {"max of s16v", 2 * kBytes,
     [](In in, Out out, Out expected) {
         binary<s16v, int16_t>(
             in, out, expected, [](s16v v, s16v w) { return max(v, w); },
             [](int a, int b) { return a < b ? b : a; });
     }},
    {"max of s32v", 2 * kBytes,
     [](In in, Out out, Out expected) {
         binary<s32v, int32_t>(
             in, out, expected, [](s32v v, s32v w) { return max(v, w); },
             [](int a, int b) { return a < b ? b : a; });
     }},
    {"addSat of u16v", 2 * kBytes,
     [](In in, Out out, Out expected) {
         binary<u16v, uint16_t>(
             in, out, expected, [](u16v v, u16v w) { return addSat(v, w); },
             [](int a, int b) { return clamped(a + b, 0, 65535); });
     }},
    {"addSat of s16v", 2 * kBytes,
     [](In in, Out out, Out expected) {
         binary<s16v, int16_t>(
             in, out, expected, [](s16v v, s16v w) { return addSat(v, w); },
             [](int a, int b) { return clamped(a + b, -32768, 32767); });
     }},
    {"addSat of u8v", 2 * kBytes,
     [](In in, Out out, Out expected) {
         binary<u8v, uint8_t>(
             in, out, expected, [](u8v v, u8v w) { return addSat(v, w); },
             [](int a, int b) { return clamped(a + b, 0, 255); });
     }},
    {"subSat of s8v", 2 * kBytes,
     [](In in, Out out, Out expected) {
         binary<s8v, int8_t>(
             in, out, expected, [](s8v v, s8v w) { return subSat(v, w); },
             [](int a, int b) { return clamped(a - b, -128, 127); });
     }},
    {"subSat of s16v", 2 * kBytes,
     [](In in, Out out, Out expected) {
         binary<s16v, int16_t>(
             in, out, expected, [](s16v v, s16v w) { return subSat(v, w); },
             [](int a, int b) { return clamped(a - b, -32768, 32767); });
     }},
    {"mulWide and joinSaturated", 2 * kBytes,
     [](In in, Out out, Out expected) {
         binary<s16v, int16_t>(
             in, out, expected,
             [](s16v v, s16v w) {
                 const s32p p = mulWide(v, w);
                 return joinSaturated({p.a >> 5, p.b >> 5});
             },
             [](int a, int b) { return clamped(a * b >> 5, -32768, 32767); });
     }},
    {"rootNear", kBytes,
     [](In in, Out out, Out expected) {
         const f32v v = __builtin_convertvector(load<s32v>(in) & INT32_MAX, f32v);
         const f32v root = rootNear(v);
         near(root * root, 0x1p-19, out, expected, [=](size_t i) { return (double)v[i]; });
     }},
    {"ratioNear", 2 * kBytes,
     [](In in, Out out, Out expected) {
         const s32v numerator = load<s32v>(in) & 0xFFFF, denominator = (load<s32v>(in + kBytes) & 0xFFFF) + 1;
         const f32v ratio =
             ratioNear(__builtin_convertvector(numerator, f32v), __builtin_convertvector(denominator, f32v));
         near(ratio, 0x1p-12, out, expected,
              [=](size_t i) { return (double)numerator[i] / (double)denominator[i]; });
     }},
    {"ByteTable of 64", 64 + kBytes, bytesOfTable<64>},
    {"ByteTable of 256", 256 + kBytes, bytesOfTable<256>},
    {"subSat of u8v", 2 * kBytes,
     [](In in, Out out, Out expected) {
         binary<u8v, uint8_t>(
             in, out, expected, [](u8v v, u8v w) { return subSat(v, w); },
             [](int a, int b) { return clamped(a - b, 0, 255); });
     }},
    {"subSat of u16v", 2 * kBytes,
     [](In in, Out out, Out expected) {
         binary<u16v, uint16_t>(
             in, out, expected, [](u16v v, u16v w) { return subSat(v, w); },
             [](int a, int b) { return clamped(a - b, 0, 65535); });
     }},
    {"split and join", kBytes,
     [](In in, Out out, Out expected) {
         unary<u8v, uint8_t>(
             in, out, expected, [](u8v v) { return join(split(v)); }, [](int a) { return a; });
     }},
    {"joinShifted of u16p", kBytes,
     [](In in, Out out, Out expected) {
         unary<u8v, uint8_t>(
             in, out, expected,
             [](u8v v) {
                 const u16p p = split(v);
                 return joinShifted<7>(u16p{p.a * 127 + 3, p.b * 127 + 3});
             },
             [](int a) { return (a * 127 + 3) >> 7; });
     }},
    {"joinShifted of s32p", kBytes,
     [](In in, Out out, Out expected) {
         unary<s16v, int16_t>(
             in, out, expected,
             [](s16v v) {
                 const s32p p = split(v);
                 return joinShifted<9>(s32p{p.a * 511, p.b * 511});
             },
             [](int a) { return (a * 511) >> 9; });
     }},
    {"storeInOrder", kBytes,
     [](In in, Out out, Out expected) {
         alignas(int32_t) uint8_t sums[2 * kBytes];
         storeInOrder(reinterpret_cast<int32_t*>(sums), split(load<s16v>(in)));
         memcpy(out, sums, sizeof sums);
         for (size_t i = 0; i < kBytes / 2; ++i)
             put<int32_t>(expected, i, at<int16_t>(in, i));
     }},
    {"loadInOrder and widenInOrder", kBytes,
     [](In in, Out out, Out expected) {
         const s16p bytes = loadInOrder(in);
         const s32p low = widenInOrder(bytes.a - 128), high = widenInOrder(bytes.b - 128);
         store(out, low.a), store(out + kBytes, low.b);
         store(out + 2 * kBytes, high.a), store(out + 3 * kBytes, high.b);
         for (size_t i = 0; i < kBytes; ++i)
             put<int32_t>(expected, i, in[i] - 128);
     }},
    {"storePairs", 2 * kBytes,
     [](In in, Out out, Out expected) {
         alignas(float) uint8_t pairs[2 * kBytes];
         storePairs((int16_t*)pairs, load<s16v>(in), load<s16v>(in + kBytes));
         memcpy(out, pairs, sizeof pairs);
         storePairs((float*)pairs, load<f32v>(in), load<f32v>(in + kBytes));
         memcpy(out + sizeof pairs, pairs, sizeof pairs);
         for (size_t i = 0; i < kBytes; ++i)
             put<int16_t>(expected, i, at<int16_t>(in + i % 2 * kBytes, i / 2));
         for (size_t i = 0; i < kBytes / 2; ++i)
             put<int32_t>(expected + sizeof pairs, i, at<int32_t>(in + i % 2 * kBytes, i / 2));
     }},
    {"joinSat", kBytes,
     [](In in, Out out, Out expected) {
         const s32p p = split(load<s16v>(in));
         store(out, joinSat({p.a * 2, p.b * 2}));
         for (size_t i = 0; i < kBytes / 2; ++i)
             put<int16_t>(expected, i, clamped(2 * at<int16_t>(in, i), -32768, 32767));
     }},
    {"narrowMask", 2 * kBytes,
     [](In in, Out out, Out expected) {
         store(out, narrowMask({load<s32v>(in) > 0, load<s32v>(in + kBytes) > 0}));
         for (size_t i = 0; i < kBytes / 2; ++i)
             put<int16_t>(expected, i, at<int32_t>(in, i) > 0 ? -1 : 0);
     }},
    {"sumOfSquares", 2 * kBytes,
     [](In in, Out out, Out expected) {
         const s32p sums = sumOfSquares(load<s16v>(in), load<s16v>(in + kBytes));
         store(out, sums.a), store(out + kBytes, sums.b);
         for (size_t i = 0; i < kBytes / 2; ++i) {
             const int64_t a = at<int16_t>(in, i), b = at<int16_t>(in + kBytes, i);
             put<int32_t>(expected, i, a * a + b * b);
         }
     }},
    {"abs", kBytes,
     [](In in, Out out, Out expected) {
         unary<s16v, int16_t>(
             in, out, expected, [](s16v v) { return abs(v); },
             [](int a) { return a == -32768 ? 32767
                                : a < 0     ? -a
                                            : a; });
     }},
    {"joinClamped", kBytes,
     [](In in, Out out, Out expected) {
         unary<u8v, uint8_t>(
             in, out, expected,
             [](u8v v) {
                 const u16p p = split(v);
                 return joinClamped({(s16v)p.a * 257 + INT16_MIN, (s16v)p.b * 257 + INT16_MIN});
             },
             [](int a) { return clamped(a * 257 - 32768, 0, 255); });
     }},
    {"joinClamped of small values", kBytes,
     [](In in, Out out, Out expected) {
         unary<u8v, uint8_t>(
             in, out, expected,
             [](u8v v) {
                 const u16p p = split(v);
                 return joinClamped({(s16v)p.a * 2 - 130, (s16v)p.b * 2 - 130});
             },
             [](int a) { return clamped(a * 2 - 130, 0, 255); });
     }},
    {"joinCentred", kBytes,
     [](In in, Out out, Out expected) {
         unary<u8v, uint8_t>(
             in, out, expected,
             [](u8v v) {
                 const u16p p = split(v);
                 return joinCentred<7>({(s16v)p.a * 257 + INT16_MIN, (s16v)p.b * 257 + INT16_MIN});
             },
             [](int a) { return clamped(128 + ((a * 257 - 32768) >> 7), 0, 255); });
     }},
    {"mulCentred", kBytes,
     [](In in, Out out, Out expected) {
         unary<u8v, uint8_t>(
             in, out, expected, [](u8v v) { return joinCentred<8>(mulCentred<149>(v)); },
             [](int a) { return 128 + (((a - 128) * 149) >> 8); });
     }},
    {"eachTwice", kBytes,
     [](In in, Out out, Out expected) {
         const s16p p = eachTwice((s16v)(load<u16v>(in) & 0xFF));
         store(out, join({(u16v)p.a, (u16v)p.b}));
         for (size_t i = 0; i < kBytes; ++i)
             expected[i] = in[i / 2 * 2];
     }},
    {"dots and joinDots", kBytes + 4,
     [](In in, Out out, Out expected) {
         store(out, joinShifted<8>(dots<1, 4, 6, 4, 1>(in)));
         store(out + kBytes, joinDots<4>(dotsFor<4, 1, 2, 1>(in)));
         for (size_t i = 0; i < kBytes; ++i) {
             const int sum = in[i] + 4 * in[i + 1] + 6 * in[i + 2] + 4 * in[i + 3] + in[i + 4];
             put<uint8_t>(expected, i, sum >> 8);
             put<uint8_t>(expected, kBytes + i, (in[i] + 2 * in[i + 1] + in[i + 2]) >> 4);
         }
     }},
    {"dot2 of bytes by weights2, stored in order", kBytes + 1,
     [](In in, Out out, Out expected) {
         const int8_t weights[] = {-128, 127, -128, 0};
         const s16p small = dot2(in, weights2(weights)), one = dot2(in, weights2(weights + 2));
         int16_t sums[kBytes];
         storeInOrder(sums, {small.a - one.a, small.b - one.b});
         memcpy(out, sums, sizeof sums);
         for (size_t i = 0; i < kBytes; ++i)
             put<int16_t>(expected, i, 127 * in[i + 1]);
     }},
    {"dot2 of s16", kBytes + 2,
     [](In in, Out out, Out expected) {
         int16_t numbers[kBytes / 2 + 1];
         int32_t sums[kBytes / 2];
         memcpy(numbers, in, sizeof numbers);
         storeInOrder(sums, dot2<-90, 35>(numbers));
         memcpy(out, sums, sizeof sums);
         for (size_t i = 0; i < kBytes / 2; ++i)
             put<int32_t>(expected, i, numbers[i] * -90 + numbers[i + 1] * 35);
     }},
    {"mulHigh", kBytes,
     [](In in, Out out, Out expected) {
         unary<u16v, uint16_t>(
             in, out, expected, [](u16v v) { return mulHigh(v, 52429); },
             [](uint32_t a) { return (a * 52429) >> 16; });
     }},
    {"mulRound of u16v", kBytes,
     [](In in, Out out, Out expected) {
         unary<u16v, uint16_t>(
             in, out, expected, [](u16v v) { return mulRound(v & 0x7FFF, 23170); },
             [](int a) { return ((a & 0x7FFF) * 23170 + 16384) >> 15; });
     }},
    {"mulRound of s16v", kBytes,
     [](In in, Out out, Out expected) {
         unary<s16v, int16_t>(
             in, out, expected, [](s16v v) { return mulRound(v, 32767); },
             [](int a) { return (a * 32767 + 16384) >> 15; });
     }},
    {"dotShift of two", 2 * kBytes,
     [](In in, Out out, Out expected) {
         binary<s16v, int16_t>(
             in, out, expected, [](s16v v, s16v w) { return dotShift<15>(v, w, 20000, -12767, 16384); },
             [](int a, int b) { return (a * 20000 - b * 12767 + 16384) >> 15; });
     }},
    {"dotShift of three", 2 * kBytes,
     [](In in, Out out, Out expected) {
         binary<s16v, int16_t>(
             in, out, expected,
             [](s16v v, s16v w) { return dotShift<15>(v, w, v >> 1, 9798, 3736, -18470, 16384); },
             [](int a, int b) { return (a * 9798 + b * 3736 - (a >> 1) * 18470 + 16384) >> 15; });
     }},
    {"reciprocal16", kBytes,
     [](In in, Out out, Out expected) {
         unary<s32v, int32_t>(
             in, out, expected, [](s32v v) { return reciprocal16(max(v & 0xFF, s32v{} + 1)); },
             [](int a) {
                 const int divisor = (a & 0xFF) == 0 ? 1 : a & 0xFF;
                 return (2 * 65536 + divisor) / (2 * divisor);
             });
     }},
    {"reverse", kBytes,
     [](In in, Out out, Out expected) {
         store(out, reverse(load<u8v>(in)));
         for (size_t i = 0; i < kBytes; ++i)
             expected[i] = in[kBytes - 1 - i];
     }},
    {"zip", 2 * kBytes,
     [](In in, Out out, Out expected) {
         const u8v v = load<u8v>(in), w = load<u8v>(in + kBytes);
         const u8x2 bytes = zip<1>(v, w), fours = zip<4>(v, w);
         store(out, bytes.b);
         store(out + kBytes, zip<2>(v, w).b);
         store(out + 2 * kBytes, fours.a);
         store(out + 3 * kBytes, fours.b);
         const auto zipped = [=](Out to, size_t size, size_t from) {
             for (size_t i = 0; i < kBytes; ++i) {
                 const size_t element = i % 16 / size;
                 to[i] = in[element % 2 * kBytes + i / 16 * 16 + from + element / 2 * size + i % size];
             }
         };
         zipped(expected, 1, 8);
         zipped(expected + kBytes, 2, 8);
         zipped(expected + 2 * kBytes, 4, 0);
         zipped(expected + 3 * kBytes, 4, 8);
     }},
    {"storeBytes", 4 * kBytes,
     [](In in, Out out, Out expected) {
         const auto bytes = [in](size_t i) { return load<s32v>(in + kBytes * i) & 255; };
         storeBytes(out, bytes(0), bytes(1), bytes(2), bytes(3));
         for (size_t i = 0; i < kBytes; ++i)
             expected[i] = at<uint32_t>(in, i) & 255;
     }},
    {"loadSixteens", 128,
     [](In in, Out out, Out expected) {
         store(out, loadSixteens(in + 100, -28));
         for (size_t i = 0; i < kBytes; ++i)
             expected[i] = in[100 - 28 * (i / 16) + i % 16];
     }},
    {"popCount", kBytes,
     [](In in, Out out, Out expected) {
         unary<u8v, uint8_t>(
             in, out, expected, [](u8v v) { return popCount(v); },
             [](unsigned a) { return __builtin_popcount(a); });
     }},
    {"sums of a vector", kBytes,
     [](In in, Out out, Out expected) {
         const u8v v = load<u8v>(in);
         uint32_t sum = 0, greatest = 0;
         for (size_t i = 0; i < kBytes; ++i) {
             sum += in[i];
             greatest = greatest < in[i] ? in[i] : greatest;
         }
         put<uint32_t>(out, 0, sumOfBytes(v)), put<uint32_t>(expected, 0, sum);
         put<uint32_t>(out, 1, highest(v)), put<uint32_t>(expected, 1, greatest);
         put<uint32_t>(out, 2, any(v)), put<uint32_t>(expected, 2, sum != 0);
     }},
    {"loadFloats and sumOfHalves", kBytes / 4,
     [](In in, Out out, Out expected) {
         constexpr uint32_t kLanes = kBytes / 4;
         const f32v v = loadFloats(in);
         store(out, v);
         float sums[kLanes];
         for (size_t i = 0; i < kLanes; ++i) {
             put<float>(expected, i, in[i]);
             sums[i] = static_cast<float>(in[i]) * 0.37F; // so that the order shows
         }
         for (uint32_t n = kLanes / 2; n > 0; n /= 2) {
             for (uint32_t k = 0; k < n; ++k)
                 sums[k] += sums[k + n];
         }
         put<float>(out, kLanes, sumOfHalves(v * 0.37F)), put<float>(expected, kLanes, sums[0]);
     }},
    {"loadRows", 5 * kBytes,
     [](In in, Out out, Out expected) {
         constexpr size_t stride = 19;
         store(out, loadRows(in, stride));
         for (size_t i = 0; i < kBytes; ++i)
             expected[i] = in[i / 16 * stride + i % 16];
     }},
    {"addDistances and sumsOfDistances", 5 * kBytes,
     [](In in, Out out, Out expected) {
         u16v sums[4];
         for (size_t k = 0; k < 4; ++k) {
             const In p = in + kBytes * (k + 1);
             uint32_t distances = 0;
             for (size_t i = 0; i < kBytes; ++i)
                 distances += (uint32_t)(in[i] < p[i] ? p[i] - in[i] : in[i] - p[i]);
             put<uint16_t>(expected, k, 2 * distances);
             sums[k] =
                 addDistances(addDistances(u16v{}, load<u8v>(in), load<u8v>(p)), load<u8v>(p), load<u8v>(in));
         }
         put<uint64_t>(out, 0, sumsOfDistances(sums[0], sums[1], sums[2], sums[3]));
     }},
    {"addProducts and sumOfLanes", 2 * kBytes,
     [](In in, Out out, Out expected) {
         uint32_t products = kBytes / 4 * 5;
         for (size_t i = 0; i < kBytes / 2; ++i)
             products += (uint32_t)(at<int16_t>(in, i) * (at<int16_t>(in + kBytes, i) >> 1));
         const s16v a = load<s16v>(in), b = load<s16v>(in + kBytes);
         put<uint32_t>(out, 0, sumOfLanes(addProducts(s32v{} + 5, a, b >> 1)));
         put<uint32_t>(expected, 0, products);
     }},
    {"any, highest and laneBits of one byte", 2,
     [](In in, Out out, Out expected) {
         const size_t place = in[0] % kBytes;
         uint8_t bytes[kBytes] = {};
         bytes[place] = in[1];
         const u8v v = load<u8v>(bytes);
         put<uint64_t>(out, 0, laneBits((s8v)(v != 0)));
         put<uint64_t>(expected, 0, in[1] != 0 ? uint64_t{1} << place : 0);
         put<uint64_t>(out, 1, any(v)), put<uint64_t>(expected, 1, in[1] != 0);
         put<uint64_t>(out, 2, highest(v)), put<uint64_t>(expected, 2, in[1]);
     }},
    {"laneBits", kBytes,
     [](In in, Out out, Out expected) {
         put<uint64_t>(out, 0, laneBits((s8v)(load<u8v>(in) > 127)));
         uint64_t bits = 0;
         for (size_t i = 0; i < kBytes; ++i)
             bits |= uint64_t{in[i] > 127} << i;
         put<uint64_t>(expected, 0, bits);
     }},
    {"anyAbove", 4 * kBytes + 1,
     [](In in, Out out, Out expected) {
         const uint8_t limit = in[4 * kBytes] | 1;
         const auto vector = [in](size_t i) { return load<u8v>(in + kBytes * i); };
         const uint64_t found = anyAbove(vector(0), vector(1), vector(2), vector(3), u8v{} + limit);
         for (size_t i = 0; i < 4; ++i) {
             out[i] = (found >> (16 * i) & 0xFFFF) != 0;
             expected[i] = 0;
             for (size_t lane = 0; lane < kBytes; ++lane)
                 expected[i] |= in[kBytes * i + lane] > limit;
         }
     }},
    {"storePoints", 8,
     [](In in, Out out, Out expected) {
         uint32_t points[16];
         storePoints(points, in, 70000, 5);
         memcpy(out, points, sizeof points);
         for (size_t i = 0; i < 8; ++i) {
             put<uint32_t>(expected, 2 * i, 70000 + in[i]);
             put<uint32_t>(expected, 2 * i + 1, 5);
         }
     }},
    {"widenPairs, repeatPair and addPairProducts", 3 * kBytes,
     [](In in, Out out, Out expected) {
         const auto* const p = reinterpret_cast<const int8_t*>(in);
         const int16_t pair[] = {at<int16_t>(in, 20), at<int16_t>(in, 21)};
         constexpr size_t kLanes = kBytes / 4;
         const s16v v = widenPairs(p, p + kLanes);
         store(out, addPairProducts(load<s32v>(in + kBytes), v, repeatPair(pair)));
         for (size_t i = 0; i < kLanes; ++i) {
             put<uint32_t>(expected, i,
                           at<uint32_t>(in + kBytes, i) + (uint32_t)(p[i] * pair[0] + p[kLanes + i] * pair[1]));
         }
     }},
    {"loadOnce and loadHalves", 3 * kBytes / 2,
     [](In in, Out out, Out expected) {
         store(out, loadOnce(in));
         store(out + kBytes, loadHalves(in, in + kBytes));
         memcpy(expected, in, kBytes);
         memcpy(expected + kBytes, in, kBytes / 2);
         memcpy(expected + 3 * kBytes / 2, in + kBytes, kBytes / 2);
     }},
    {"repeat and rotate", 16,
     [](In in, Out out, Out expected) {
         const u8v v = repeat(at<uint64_t>(in, 0), at<uint64_t>(in, 1));
         store(out, v);
         store(out + kBytes, rotate<5>(v));
         for (size_t i = 0; i < kBytes; ++i) {
             expected[i] = in[i % 16];
             expected[kBytes + i] = in[(i + 5) % 16];
         }
     }},
};

} // namespace

extern const test::PrimitiveCases primitives;
const test::PrimitiveCases primitives = {kCases, sizeof kCases / sizeof *kCases};

} // namespace odx::ODX_TARGET
