#include "operations/shapes.h"

#include "ondrix/descriptors.h"

namespace odx::test
{

namespace
{

// Vectors and their inverse lengths: the true ones are of that size.
float inverseLength(Draw& draw)
{
    return draw.real("inverse length", 0, 0.02f, 0.01f);
}
const float* inverseLengths(Draw& draw, uint32_t count)
{
    float* const lengths = draw.destinationArray<float>("inverse lengths", count);
    for (uint32_t i = 0; i < count; ++i)
        lengths[i] = inverseLength(draw);
    return lengths;
}

template <class T, uint32_t n>
struct Vectors {
    const T* at[5];

    explicit Vectors(Draw& draw)
    {
        for (const T*& vector : at)
            vector = draw.sourceArray<T>("vector", n);
    }
};

// operation(a, b), of n elements each.
template <class T, uint32_t n, auto* operation>
void pair(Draw& draw)
{
    const T *const a = draw.sourceArray<T>("a", n), *const b = draw.sourceArray<T>("b", n);
    draw.run([&] { return operation(a, b); });
}

// operation(a, b, length).
template <class T, auto* operation>
void arrays(Draw& draw)
{
    const uint32_t length = draw.length(0, sizeof(T));
    const T *const a = draw.sourceArray<T>("a", length), *const b = draw.sourceArray<T>("b", length);
    draw.run([&] { return operation(a, b, length); });
}

template <class T, auto* operation>
void blocks(Draw& draw)
{
    const Extent extent = draw.extent();
    const auto a = draw.source<T>("a", extent), b = draw.source<T>("b", extent);
    draw.run([&] {
        return operation(a.pixels, extent.width, extent.height, a.strideArgument(), b.pixels, b.strideArgument());
    });
}

template <uint32_t n, auto* operation>
void count(Draw& draw)
{
    const uint8_t* const src = draw.sourceArray<uint8_t>("src", n);
    draw.run([&] { return operation(src); });
}

// operation(a, b, c, d, counts).
template <uint32_t n, auto* operation>
void fourCounts(Draw& draw)
{
    const Vectors<uint8_t, n> v(draw);
    uint32_t* const counts = draw.destinationArray<uint32_t>("counts", 4);
    draw.run([&] { operation(v.at[0], v.at[1], v.at[2], v.at[3], counts); });
}

// operation(a, b, c, d, e, results).
template <class T, class Result, uint32_t n, auto* operation>
void oneWithFour(Draw& draw)
{
    const Vectors<T, n> v(draw);
    Result* const results = draw.destinationArray<Result>("results", 4);
    draw.run([&] { operation(v.at[0], v.at[1], v.at[2], v.at[3], v.at[4], results); });
}

// The same with inverse lengths.
template <class T, uint32_t n, auto* operation>
void normalised(Draw& draw)
{
    const Vectors<T, n> v(draw);
    const float length = inverseLength(draw);
    const float* const lengths = inverseLengths(draw, 4);
    float* const results = draw.destinationArray<float>("results", 4);
    draw.run([&] { operation(v.at[0], length, v.at[1], v.at[2], v.at[3], v.at[4], lengths, results); });
}

template <class T>
struct List {
    uint32_t count;
    const T* a;
    float length;
    std::vector<const T*> vectors;
    const float* lengths;
    float* results;

    List(Draw& draw, uint32_t n, uint32_t typical)
        : count(draw.number<uint32_t>("vectors", 0, 20, typical)), a(draw.sourceArray<T>("a", n)),
          length(inverseLength(draw))
    {
        for (uint32_t i = 0; i < count; ++i)
            vectors.push_back(draw.measures() && i != 0 ? vectors[0] : draw.sourceArray<T>("vector", n));
        vectors.push_back(nullptr); // so that a list of none has an address
        lengths = inverseLengths(draw, count);
        results = draw.destinationArray<float>("results", count);
    }
};

void distances36(Draw& draw)
{
    const List<int8_t> list(draw, 36, 11);
    draw.run([&] {
        odxSumOfSquaredDiffs36xNs8(list.a, list.length, list.vectors.data(), list.lengths, list.count,
                                   list.results);
    });
}

template <class T, auto* operation>
void distances(Draw& draw)
{
    const uint32_t n = draw.length(0, 64);
    const List<T> list(draw, n, 9);
    draw.run(
        [&] { operation(list.a, list.length, n, list.vectors.data(), list.lengths, list.count, list.results); });
}

} // namespace

std::vector<Row> descriptorRows()
{
    return {
        {"odxBitCountu8", arrayToResult<uint8_t, odxBitCountu8>},
        {"odxBitCountu32", arrayToResult<uint32_t, odxBitCountu32>},
        {"odxBitCount32x1u8", count<32, odxBitCount32x1u8>},
        {"odxBitCount64x1u8", count<64, odxBitCount64x1u8>},
        {"odxBitCount32x4u8", fourCounts<32, odxBitCount32x4u8>},
        {"odxBitCount64x4u8", fourCounts<64, odxBitCount64x4u8>},
        {"odxBlockDotProductu8", blocks<uint8_t, odxBlockDotProductu8>},
        {"odxBlockDotProductf32", blocks<float, odxBlockDotProductf32>},
        {"odxDotProduct36x1s8", pair<int8_t, 36, odxDotProduct36x1s8>},
        {"odxDotProduct36x1u8", pair<uint8_t, 36, odxDotProduct36x1u8>},
        {"odxDotProduct64x1s8", pair<int8_t, 64, odxDotProduct64x1s8>},
        {"odxDotProduct64x1u8", pair<uint8_t, 64, odxDotProduct64x1u8>},
        {"odxDotProduct128x1s8", pair<int8_t, 128, odxDotProduct128x1s8>},
        {"odxDotProduct128x1u8", pair<uint8_t, 128, odxDotProduct128x1u8>},
        {"odxDotProduct36x4s8", oneWithFour<int8_t, int32_t, 36, odxDotProduct36x4s8>},
        {"odxDotProduct36x4u8", oneWithFour<uint8_t, uint32_t, 36, odxDotProduct36x4u8>},
        {"odxDotProduct64x4s8", oneWithFour<int8_t, int32_t, 64, odxDotProduct64x4s8>},
        {"odxDotProduct64x4u8", oneWithFour<uint8_t, uint32_t, 64, odxDotProduct64x4u8>},
        {"odxDotProduct128x4s8", oneWithFour<int8_t, int32_t, 128, odxDotProduct128x4s8>},
        {"odxDotProduct128x4u8", oneWithFour<uint8_t, uint32_t, 128, odxDotProduct128x4u8>},
        {"odxDotProductNorm36x4s8", normalised<int8_t, 36, odxDotProductNorm36x4s8>},
        {"odxDotProductNorm36x4u8", normalised<uint8_t, 36, odxDotProductNorm36x4u8>},
        {"odxDotProductNorm64x4s8", normalised<int8_t, 64, odxDotProductNorm64x4s8>},
        {"odxDotProductNorm64x4u8", normalised<uint8_t, 64, odxDotProductNorm64x4u8>},
        {"odxDotProductNorm128x4s8", normalised<int8_t, 128, odxDotProductNorm128x4s8>},
        {"odxDotProductNorm128x4u8", normalised<uint8_t, 128, odxDotProductNorm128x4u8>},
        {"odxDotProducts8", arrays<int8_t, odxDotProducts8>},
        {"odxDotProductu8", arrays<uint8_t, odxDotProductu8>},
        {"odxDotProductf32", arrays<float, odxDotProductf32>},
        {"odxHammingDistanceu8", arrays<uint8_t, odxHammingDistanceu8>},
        {"odxHammingDistance32x1u8", pair<uint8_t, 32, odxHammingDistance32x1u8>},
        {"odxHammingDistance32x1u8a4", pair<uint8_t, 32, odxHammingDistance32x1u8a4>},
        {"odxHammingDistance64x1u8", pair<uint8_t, 64, odxHammingDistance64x1u8>},
        {"odxHammingDistance64x1u8a4", pair<uint8_t, 64, odxHammingDistance64x1u8a4>},
        {"odxHammingDistance32x4u8a4", oneWithFour<uint8_t, uint32_t, 32, odxHammingDistance32x4u8a4>},
        {"odxHammingDistance64x4u8", oneWithFour<uint8_t, uint32_t, 64, odxHammingDistance64x4u8>},
        {"odxHammingDistance64x4u8a4", oneWithFour<uint8_t, uint32_t, 64, odxHammingDistance64x4u8a4>},
        {"odxSumOfSquaredDiffs36x4s8", normalised<int8_t, 36, odxSumOfSquaredDiffs36x4s8>},
        {"odxSumOfSquaredDiffs36xNs8", distances36},
        {"odxSumOfSquaredDiffss8", distances<int8_t, odxSumOfSquaredDiffss8>},
        {"odxSumOfSquaredDiffsu8", distances<uint8_t, odxSumOfSquaredDiffsu8>},
        {"odxSumOfSquaredDiffsf32", distances<float, odxSumOfSquaredDiffsf32>},
    };
}

} // namespace odx::test
