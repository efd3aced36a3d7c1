#include "simd/targets/loops.h"

#include "orlan/simd/columns.h"
#include "orlan/simd/roots.h"
#include "orlan/simd/weighing.h"

namespace odx::ODX_TARGET
{
using namespace loops;

namespace
{

template <uint32_t size>
void bytesOfTable(In in, Out out, Out expected)
{
    const ByteTable<size> table(in);
    store(out, table(load<u8v>(in + size) & (u8v{} + (uint8_t)(size - 1))));
    for (size_t i = 0; i < kBytes; ++i)
        expected[i] = in[in[size + i] & (size - 1)];
}

template <class T, class V>
void pairsStored(In in, Out out, Out expected)
{
    numbers<T, 2 * kBytes / sizeof(T)>(out, [=](T* p) { storePairs(p, load<V>(in), load<V>(in + kBytes)); });
    for (size_t i = 0; i < 2 * kBytes / sizeof(T); ++i)
        memcpy(expected + sizeof(T) * i, in + i % 2 * kBytes + i / 2 * sizeof(T), sizeof(T));
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

const PrimitiveCase kCases[] = {
    CASE("loadPart", kBytes, uint8_t, kBytes, (i < 4 ? in[i] : 0) | (i < 8 ? in[i + 4] : 0),
         store(out, loadPart<4>(in) | loadPart<8>(in + 4))),
    CASE("addProducts of u8v and sumOfLanes", 2 * kBytes, uint32_t, 1,
         7 + sumOf(kBytes, [=](size_t k) { return in[k] * in[k + kBytes]; }),
         put<uint32_t>(out, 0, sumOfLanes(addProducts(u32v{7}, load<u8v>(in), load<u8v>(in + kBytes))))),
    CASE("addProducts of s8v", 2 * kBytes, uint32_t, 1,
         7 + sumOf(kBytes, [=](size_t k) { return (int8_t)in[k] * (int8_t)in[k + kBytes]; }),
         put<uint32_t>(out, 0, sumOfLanes(addProducts(u32v{7}, load<s8v>(in), load<s8v>(in + kBytes))))),
    CASE("addProducts of s16v", 2 * kBytes, uint32_t, 1,
         kBytes / 4 * 5 + sumOf(kBytes / 2, [=](size_t k) {
             return at<int16_t>(in, k) * (at<int16_t>(in + kBytes, k) >> 1);
         }),
         put<uint32_t>(out, 0, sumOfLanes(addProducts(s32v{} + 5, load<s16v>(in), load<s16v>(in + kBytes) >> 1)))),
    CASE("addWords", kBytes, uint32_t, 1, 7 + sumOf(kBytes / 2, [=](size_t k) { return at<uint16_t>(in, k) >> 1; }),
         put<uint32_t>(out, 0, sumOfLanes(addWords(u32v{7}, load<u16v>(in) >> 1)))),
    {"addBytes, addDifferences and storeSums", 4 * kBytes,
     [](In in, Out out, Out expected) {
         const auto v = [=](int k) { return load<u8v>(in + kBytes * (size_t)k); };
         const u32v big = {0xFFFFFF00, 0xFFFFFF00};
         numbers<uint32_t, 4>(out, [=](uint32_t* sums) {
             storeSums(sums, addBytes(u32v{}, v(0)), addBytes(big, v(1)), addDifferences(u32v{}, v(1), v(2)),
                       addDifferences(big, v(2), v(3)));
         });
         EACH(uint32_t, 4, i % 2 * 0xFFFFFE00 + sumOf(kBytes, [=](size_t k) {
             const In p = in + (i + 1) / 2 * kBytes + k; // 0, 1, 1 and 2
             return i < 2 ? p[0] : distanceOf(p[0], p[kBytes]);
         }));
     }},
    {"addDifferencesOf8 and storePlaces", 3 * kPatchPlaces + 16,
     [](In in, Out out, Out expected) {
         const In p = in + 2 * kPatchPlaces, q = p + kPatchPlaces + 8;
         PlaceSums sums;
         memcpy(&sums, in, sizeof sums);
         numbers<uint16_t, kPatchPlaces>(
             out, [=](uint16_t* places) { storePlaces(places, addDifferencesOf8(sums, p, q)); });
         EACH(uint16_t, kPatchPlaces,
              at<uint16_t>(in, i) + sumOf(8, [=](size_t k) { return distanceOf(p[i + k], q[k]); }));
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
    {"floorRoot", kBytes,
     [](In in, Out out, Out expected) {
         float nearly[kBytes / 4];
         uint32_t low[kBytes / 4];
         for (size_t i = 0; i < kBytes / 4; ++i) {
             // The least and the greatest number with a root of up to 2^23, of all sizes.
             const uint32_t random = at<uint32_t>(in, i);
             const uint64_t root = ((random & 0x7FFFFF) + 1) >> (random >> 27),
                            square = root * root + (random >> 26 & 1) * 2 * root;
             nearly[i] = (float)square * (random >> 25 & 1 ? 1 : 1 - 0x1p-24f);
             low[i] = (uint32_t)square;
             put<uint32_t>(expected, i, root);
         }
         store(out, floorRoot(load<f32v>(nearly), load<u32v>(low)));
     }},
    {"ByteTable of 64", 64 + kBytes, bytesOfTable<64>},
    {"ByteTable of 128", 128 + kBytes, bytesOfTable<128>},
    {"ByteTable of 256", 256 + kBytes, bytesOfTable<256>},
    {"lookUp", 256 + kLookedUp,
     [](In in, Out out, Out expected) {
         lookUp(ByteTable<256>(in), in + 256, out);
         EACH(uint8_t, kLookedUp, in[in[256 + i]]);
     }},
    {"storeWordColumns and storeTripleColumn", 96,
     [](In in, Out out, Out expected) {
         if constexpr (kStoresColumns) {
             storeWordColumns(in + 48, -16, out, 16); // upwards
             EACH(uint32_t, 16, at<uint32_t>(in, (3 - i % 4) * 4 + i / 4));
             storeTripleColumn(in, out + 64, 6);
             storeTripleColumn(in + 48, out + 67, 6);
             expected += 64;
             EACH(uint8_t, 96, in[i % 6 / 3 * 48 + i / 6 * 3 + i % 3]);
         }
     }},
    {"distance, pairUp, addWeights, addWeighted, addDots and joinBytes", 3 * kBytes,
     [](In in, Out out, Out expected) {
         // The greatest weights, and the values that are furthest below.
         const auto most = [=](size_t i) { return i % 3 == 0; };
         const auto weightOf = [=](size_t i) { return most(i) ? 128 : in[i] % 129; };
         const auto valueOf = [=](size_t i) { return most(i) ? -128 : (int8_t)in[kBytes + i]; };
         uint8_t weights[kBytes], values[kBytes];
         for (size_t i = 0; i < kBytes; ++i) {
             weights[i] = weightByte((uint32_t)weightOf(i));
             values[i] = (uint8_t)valueOf(i);
         }
         const u8v w = load<u8v>(weights), v = load<u8v>(values);
         const s16p none = {}, weight = addWeights(addWeights(none, pairUp(w, w)), pairUp(w, w)),
                    value = addWeighted(none, pairUp(w, w), pairUp(v, v));
         const s32x4 sums = addDots(s32x4{}, value, weight, 200, -255);
         store(out, joinBytes({sums.a & 255, sums.b & 255, sums.c & 255, sums.d & 255}));
         store(out + kBytes,
               joinBytes({sums.a >> 8 & 255, sums.b >> 8 & 255, sums.c >> 8 & 255, sums.d >> 8 & 255}));
         store(out + 2 * kBytes, distance(load<u8v>(in), load<u8v>(in + kBytes)));
         for (size_t i = 0; i < kBytes; ++i) {
             const int sum = 200 * 2 * weightOf(i) * valueOf(i) - 255 * 4 * weightOf(i);
             expected[i] = (uint8_t)sum;
             expected[kBytes + i] = (uint8_t)(sum >> 8);
             expected[2 * kBytes + i] = (uint8_t)distanceOf(in[i], in[kBytes + i]);
         }
     }},
    CASE("storeInOrder", kBytes, int32_t, kBytes / 2, at<int16_t>(in, i),
         numbers<int32_t, kBytes / 2>(out, [=](int32_t* p) { storeInOrder(p, split(load<s16v>(in))); })),
    CASE("loadInOrder and widenInOrder", kBytes, int32_t, kBytes, in[i] - 128,
         put<s32p>(out, 0, widenInOrder(loadInOrder(in).a - 128)),
         put<s32p>(out, 1, widenInOrder(loadInOrder(in).b - 128))),
    {"storePairs of s16v", 2 * kBytes, pairsStored<int16_t, s16v>},
    {"storePairs of f32v", 2 * kBytes, pairsStored<float, f32v>},
    CASE("narrowMask", 2 * kBytes, int16_t, kBytes / 2, at<int32_t>(in, i) > 0 ? -1 : 0,
         store(out, narrowMask({load<s32v>(in) > 0, load<s32v>(in + kBytes) > 0}))),
    CASE("sumOfSquares", 2 * kBytes, uint32_t, kBytes / 2,
         sumOf(2, [=](size_t k) {
             const int64_t v = at<int16_t>(in + kBytes * k, i);
             return v * v;
         }),
         put<s32p>(out, 0, sumOfSquares(load<s16v>(in), load<s16v>(in + kBytes)))),
    CASE("eachTwice", kBytes, uint8_t, kBytes, in[i / 2 * 2],
         store(out, join(ofHalves<u16p>(eachTwice((s16v)(load<u16v>(in) & 0xFF)), [](u16v v) { return v; })))),
    CASE("dots", kBytes + 4, uint8_t, kBytes,
         (in[i] + 4 * in[i + 1] + 6 * in[i + 2] + 4 * in[i + 3] + in[i + 4]) >> 8,
         store(out, joinShifted<8>(dots<1, 4, 6, 4, 1>(in)))),
    CASE("joinDots", kBytes + 4, uint8_t, kBytes, (in[i] + 2 * in[i + 1] + in[i + 2]) >> 4,
         store(out, joinDots<4>(dotsFor<4, 1, 2, 1>(in)))),
    {"dot2 of bytes by weights2, stored in order", kBytes + 1,
     [](In in, Out out, Out expected) {
         const int8_t weights[] = {-128, 127, -128, 0};
         const s16p small = dot2(in, weights2(weights)), one = dot2(in, weights2(weights + 2));
         numbers<int16_t, kBytes>(out, [=](int16_t* p) { storeInOrder(p, {small.a - one.a, small.b - one.b}); });
         EACH(int16_t, kBytes, 127 * in[i + 1]);
     }},
    {"dot2 of s16", kBytes + 2,
     [](In in, Out out, Out expected) {
         int16_t n[kBytes / 2 + 1];
         memcpy(n, in, sizeof n);
         numbers<int32_t, kBytes / 2>(out, [&n](int32_t* sums) { storeInOrder(sums, dot2<-90, 35>(n)); });
         EACH(int32_t, kBytes / 2, n[i] * -90 + n[i + 1] * 35);
     }},
    CASE("reverse", kBytes, uint8_t, 2 * kBytes, in[i < kBytes ? kBytes - 1 - i : (2 * kBytes - 1 - i) ^ 1],
         storeAll(out, reverse(load<u8v>(in)), (u8v)reverse(load<u16v>(in)))),
    {"zip", 2 * kBytes,
     [](In in, Out out, Out expected) {
         const u8v v = load<u8v>(in), w = load<u8v>(in + kBytes);
         const u8x2 bytes = zip<1>(v, w), fours = zip<4>(v, w);
         storeAll(out, bytes.b, zip<2>(v, w).b, fours.a, fours.b);
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
    CASE("storeBytes", 4 * kBytes, uint8_t, kBytes, at<uint32_t>(in, i) & 255,
         storeBytes(out, load<s32v>(in) & 255, load<s32v>(in + kBytes) & 255, load<s32v>(in + 2 * kBytes) & 255,
                    load<s32v>(in + 3 * kBytes) & 255)),
    CASE("loadSixteens", 128, uint8_t, kBytes, in[100 - 28 * (i / 16) + i % 16],
         store(out, loadSixteens(in + 100, -28))),
    {"sums of a vector", kBytes,
     [](In in, Out out, Out expected) {
         const u8v v = load<u8v>(in);
         const uint32_t sum = sumOf(kBytes, [=](size_t i) { return in[i]; });
         uint64_t greatest = 0, bits = 0;
         for (size_t i = 0; i < kBytes; ++i) {
             greatest = greatest < in[i] ? in[i] : greatest;
             bits |= uint64_t{in[i] > 127} << i;
         }
         put<uint64_t>(out, 0, sumOfBytes(v)), put<uint64_t>(expected, 0, sum);
         put<uint64_t>(out, 1, highest(v)), put<uint64_t>(expected, 1, greatest);
         put<uint64_t>(out, 2, any(v)), put<uint64_t>(expected, 2, sum != 0);
         put<uint64_t>(out, 3, laneBits((s8v)(v > 127))), put<uint64_t>(expected, 3, bits);
     }},
    {"following", 2 * kBytes,
     [](In in, Out out, Out expected) {
         store(out, following(load<f32v>(in), load<f32v>(in + kBytes)));
         EACH(uint32_t, kBytes / 4, at<uint32_t>(in, i + 1));
     }},
    {"loadFloats and sumOfHalves", kBytes / 2,
     [](In in, Out out, Out expected) {
         constexpr uint32_t kLanes = kBytes / 4;
         const f32p v = loadFloats(in);
         storeAll(out, v.a, v.b);
         float sums[kLanes];
         for (size_t i = 0; i < 2 * kLanes; ++i)
             put<float>(expected, i, in[i]);
         for (size_t i = 0; i < kLanes; ++i)
             sums[i] = static_cast<float>(in[i]) * 0.37F; // so that the order shows
         for (uint32_t n = kLanes / 2; n > 0; n /= 2) {
             for (uint32_t k = 0; k < n; ++k)
                 sums[k] += sums[k + n];
         }
         put<float>(out, 2 * kLanes, sumOfHalves(v.a * 0.37F)), put<float>(expected, 2 * kLanes, sums[0]);
     }},
    CASE("loadRows", 5 * kBytes, uint8_t, kBytes, in[i / 16 * 19 + i % 16], store(out, loadRows(in, 19))),
    {"addDistances and sumsOfDistances", 5 * kBytes,
     [](In in, Out out, Out expected) {
         u16v sums[4];
         for (size_t k = 0; k < 4; ++k) {
             const In p = in + kBytes * (k + 1);
             put<uint16_t>(expected, k, 2 * sumOf(kBytes, [=](size_t i) { return distanceOf(in[i], p[i]); }));
             sums[k] =
                 addDistances(addDistances(u16v{}, load<u8v>(in), load<u8v>(p)), load<u8v>(p), load<u8v>(in));
         }
         put<uint64_t>(out, 0, sumsOfDistances(sums[0], sums[1], sums[2], sums[3]));
     }},
#ifdef ODX_SIMD_ROWS
    {"addRowDistances, addRowProducts and sumOfLanes", 32,
     [](In in, Out out, Out expected) {
         const auto distances = [=](size_t i) { return distanceOf(in[i], in[i + 16]); };
         const auto products = [=](size_t i) { return in[i] * in[i + 16]; };
         put<uint32_t>(out, 0, sumOfLanes(addRowDistances<8>(addRowDistances<16>(u16v{}, in, in + 16), in, in + 16)));
         put<uint32_t>(out, 1, sumOfLanes(addRowProducts<8>(addRowProducts<11>(u32v{}, in, in + 16), in, in + 16)));
         put<uint32_t>(expected, 0, sumOf(16, distances) + sumOf(8, distances));
         put<uint32_t>(expected, 1, sumOf(11, products) + sumOf(8, products));
     }},
#endif
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
    {"mirrorBytes", 8,
     [](In in, Out out, Out expected) {
         put<uint64_t>(out, 0, mirrorBytes(at<uint64_t>(in, 0)));
         for (uint32_t i = 0; i < 64; ++i)
             expected[i / 8] = (uint8_t)(expected[i / 8] << 1 | (in[i / 8] >> i % 8 & 1));
     }},
    {"storePoints", 8,
     [](In in, Out out, Out expected) {
         numbers<uint32_t, 16>(out, [=](uint32_t* points) { storePoints(points, in, 70000, 5); });
         EACH(uint32_t, 16, i % 2 == 0 ? 70000 + in[i / 2] : 5);
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
    CASE("loadOnce", kBytes, uint8_t, kBytes, in[i], store(out, loadOnce(in))),
    CASE("loadHalves", 3 * kBytes / 2, uint8_t, kBytes, in[i < kBytes / 2 ? i : kBytes / 2 + i],
         store(out, loadHalves(in, in + kBytes))),
    CASE("repeat and rotate", 16, uint8_t, 2 * kBytes, in[(i + i / kBytes * 5) % 16],
         storeAll(out, repeat(at<uint64_t>(in, 0), at<uint64_t>(in, 1)),
                  rotate<5>(repeat(at<uint64_t>(in, 0), at<uint64_t>(in, 1))))),
};

} // namespace

extern const test::PrimitiveCases crossCases;
const test::PrimitiveCases crossCases = {kCases, sizeof kCases / sizeof *kCases};

} // namespace odx::ODX_TARGET
