#include "operations/shapes.h"

#include "ondrix/descriptors.h"

namespace odx::test::descriptors
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

template <class T, uint32_t n, auto* operation>
constexpr auto pair = taking<operation, array<T, n>, array<T, n>>;

// operation(a, b, length), or of one array.
template <class T, auto* operation>
void arrays(Draw& draw)
{
    const uint32_t length = draw.length(0, sizeof(T));
    const auto array = from<T>("array", length);
    draw.call(operation, array, when<arity(operation) == 3>(array), length);
}

template <class T, auto* operation>
void blocks(Draw& draw)
{
    const auto a = draw.source<T>("a", draw.extent()), b = draw.source<T>("b", a.extent());
    draw.call(operation, sized(a), b);
}

template <uint32_t n, auto* operation>
constexpr auto count = taking<operation, array<uint8_t, n>>;
template <uint32_t n, auto* operation, auto array = test::array<uint8_t, n>>
constexpr auto fourCounts = taking<operation, array, array, array, array, results<uint32_t, 4>>;
template <class T, class Result, uint32_t n, auto* operation, auto array = test::array<T, n>>
constexpr auto oneWithFour = taking<operation, array, array, array, array, array, results<Result, 4>>;

// The same with inverse lengths.
const float* fourLengths(Draw& draw)
{
    return inverseLengths(draw, 4);
}
template <class T, uint32_t n, auto* operation, auto array = test::array<T, n>>
constexpr auto normalised =
    taking<operation, array, inverseLength, array, array, array, array, fourLengths, results<float, 4>>;

// operation(a, invLengthA, bList, invLengthsB, number, distances), with the length of vectors where it is not
// fixed.
template <class T, auto* operation, uint32_t fixed = 0>
void distances(Draw& draw)
{
    const uint32_t n = fixed != 0 ? fixed : draw.length(0, 64), count = draw.number("vectors", 0u, 20u, 11u);
    std::vector<const T*> vectors;
    for (uint32_t i = 0; i < count; ++i)
        vectors.push_back(draw.measures() && i != 0 ? vectors[0] : draw.sourceArray<T>("vector", n));
    vectors.push_back(nullptr); // so that a list of none has an address
    draw.call(operation, from<T>("a", n), inverseLength, when<fixed == 0>(n), vectors.data(),
              inverseLengths(draw, count), count, to<float>("distances", count));
}

template <uint32_t width, uint32_t height>
Image<uint8_t> patch(Draw& draw)
{
    return draw.source<uint8_t>("patch", {width, height});
}
template <uint32_t width, uint32_t height, auto* operation>
constexpr auto patches = taking<operation, patch<width, height>, patch<width, height>>;

// operation(patch, patchStride, src, srcWidth, srcHeight, srcStride, dst, dstStride): packed images have no
// strides.
template <uint32_t n, auto* operation>
void everywhere(Draw& draw)
{
    constexpr bool packed = arity(operation) < 8;
    const auto patch = draw.source<uint8_t>("patch", {n, n}, packed),
               src = draw.source<uint8_t>("src", draw.extent(n, n, n - 1), packed);
    const auto dst = draw.destination<uint16_t>("dst", {src.width - n + 1, src.height - n + 1}, packed);
    draw.call(operation, patch, sized(src), dst);
}

void describe(Draw& draw)
{
    draw.call(odxDescriptor17x17u8To36s8, patch<17, 17>, results<int8_t, 36>, maybe(results<float, 1>));
}

void normalise(Draw& draw)
{
    const uint32_t count = draw.length(1, 36 * 8), stop = draw.pick("stop", {0u, 0u, 0u, 0u, 256u});
    const auto src = draw.source<int8_t>("src", {36, count});
    const float* const lengths = inverseLengths(draw, count);
    draw.call(odxVecNormalize36s8f32, src, lengths, count, draw.real("norm", -3, 300, 1),
              to<float>("dst", 36 * count), &stop);
}

Random seeded(Draw& draw)
{
    return {draw.number<uint64_t>("seed", 0, 1u << 30, 7)};
}

// Floats as descriptors have them: neither close to the greatest nor to the least.
Image<float> vectors(Draw& draw, const char* name, uint32_t length, uint32_t count)
{
    const auto image = draw.source<float>(name, {length, count});
    Random random = seeded(draw);
    for (uint32_t y = 0; y < count; ++y) {
        for (uint32_t x = 0; x < length; ++x)
            image.at(x, y) = static_cast<float>(static_cast<int>(random() % 2001) - 1000) / 977;
    }
    return image;
}

void meanAndVariance(Draw& draw)
{
    const uint32_t count = draw.length(1, 36 * 8);
    const auto v = vectors(draw, "vectors", 36, count);
    const uint32_t sample = draw.number<uint32_t>("sample", 1, count, count);
    uint32_t* const indices = draw.destinationArray<uint32_t>("indices", sample);
    Random random = seeded(draw);
    for (uint32_t i = 0; i < sample; ++i)
        indices[i] = static_cast<uint32_t>(random() % count);
    const bool all = draw.pick("indices", {1, 0}) == 0;
    draw.call(odxDescriptorSampledMeanAndVar36f32, v.pixels, count, v.strideArgument(), all ? nullptr : indices,
              sample, results<float, 36>, results<float, 36>);
}

void sort8(Draw& draw)
{
    float *const in = draw.destinationArray<float>("in", 8), *const out = draw.destinationArray<float>("out", 8);
    std::vector<float> scores(8);
    Random random = seeded(draw);
    for (float& score : scores)
        score = static_cast<float>(random() % 9) - 4;
    draw.run([&] {
        std::copy(scores.begin(), scores.end(), in);
        odxSort8Scoresf32(in, out);
    });
}

// An operation that writes all, or what may be left out; it is told the length of vectors unless that is fixed.
template <class T, class Distance, class Sum, auto* operation, uint32_t fixed = 0>
void clusters(Draw& draw)
{
    const uint32_t length = fixed != 0        ? fixed
                            : draw.measures() ? 64
                                              : draw.length(1),
                   count = draw.number<uint32_t>("vectors", 1, 40, 2000),
                   numCenters = draw.number<uint32_t>("centers", 1, 9, 64);
    const auto make = [&](const char* name, uint32_t n) {
        if constexpr (std::is_same_v<T, float>) {
            return vectors(draw, name, length, n);
        } else {
            return draw.source<T>(name, {length, n});
        }
    };
    const auto v = make("vectors", count), centers = make("centers", numCenters);
    draw.writesInPlace(centers);
    T* const moved = draw.destinationArray<T>("new centers", centers.stride / sizeof(T) * numCenters);
    const int left = draw.pick("results", {0, 1, 2, 3});
    const auto unless = [](bool unwanted, auto drawn) {
        return [=](Draw& d) { return unwanted ? nullptr : drawn(d); };
    };
    draw.call(operation, v.pixels, when<fixed == 0>(length), count, v.strideArgument(), centers.pixels, numCenters,
              centers.strideArgument(), to<uint32_t>("labels", count),
              unless(left == 1, to<Distance>("distances", count)),
              unless(left == 2, to<uint32_t>("counts", numCenters)),
              unless(left >= 2, to<Sum>("sums", numCenters * length)),
              left >= 2   ? nullptr
              : left == 1 ? centers.pixels
                          : moved);
}

// Vectors around a few centers, and a tree over them.
struct TreeCase {
    uint32_t count;
    const int8_t *vectors, *query;
    const float* lengths;
    float length;

    explicit TreeCase(Draw& draw)
        : count(draw.number<uint32_t>("vectors", 0, 400, 2000)),
          vectors(draw.sourceArray<int8_t>("v", 36 * count)), query(draw.sourceArray<int8_t>("query", 36)),
          lengths(inverseLengths(draw, count)), length(inverseLength(draw))
    {
    }
    odxKDTree36s8f32* create() const
    {
        odxKDTree36s8f32* tree = nullptr;
        odxKDTreeCreate36s8f32(vectors, lengths, static_cast<int>(count), &tree);
        return tree;
    }
};

void createTree(Draw& draw)
{
    const TreeCase tree(draw);
    draw.run([&] { return odxKDTreeDestroy36s8f32(tree.create()); });
}

void queryTree(Draw& draw)
{
    const TreeCase made(draw);
    odxKDTree36s8f32* const tree = made.create();
    const int room = draw.number<int>("room", 0, 90, 2), checks = draw.number<int>("checks", 0, 300, 128);
    const float most = draw.real("most", 0, 5, 5);
    const auto size = static_cast<uint32_t>(room);
    draw.call(odxKDTreeQuery36s8f32, tree, made.query, made.length, room, most, checks, 0, results<uint32_t, 1>,
              to<int32_t>("indices", size), to<float>("distances", size));
    odxKDTreeDestroy36s8f32(tree);
}

// A database of a few targets, which may reach beyond its end.
struct DatabaseCase {
    uint32_t count, targets;
    int8_t* descriptors;
    uint32_t *lut, *lengths, *old;
    uint16_t* ids;

    explicit DatabaseCase(Draw& draw)
        : count(draw.number<uint32_t>("descriptors", 0, 300, 4000)),
          targets(draw.number<uint32_t>("targets", 1, 4, 1))
    {
        const auto random = draw.source<int8_t>("descriptors", {36 * count, 1}, true);
        draw.writesInPlace(random);
        descriptors = random.pixels;
        lut = draw.destinationArray<uint32_t>("lut", 2 * targets);
        lengths = draw.destinationArray<uint32_t>("lengths", count);
        old = draw.destinationArray<uint32_t>("old", count);
        ids = draw.destinationArray<uint16_t>("ids", count);
        Random r = seeded(draw);
        for (uint32_t t = 0; t < targets; ++t) {
            lut[2 * t] = static_cast<uint32_t>(count / targets * t);
            lut[2 * t + 1] = count / targets + (t + 1 == targets ? static_cast<uint32_t>(r() % 2) : 0);
        }
        for (uint32_t i = 0; i < count; ++i) {
            lengths[i] = static_cast<uint32_t>((uint64_t{1} << 38) / (200 + r() % 500));
            ids[i] = static_cast<uint16_t>(r() % 7);
            old[i] = i;
        }
    }
};

void prepareSearch(Draw& draw)
{
    DatabaseCase all(draw);
    // An order of equal ids is not promised, so that there are none.
    for (uint32_t i = 0; i < all.count; ++i)
        all.ids[i] = static_cast<uint16_t>(i * 40503u);
    draw.call(odxLinearSearchPrepare8x36s8, all.lut, all.targets, all.descriptors, all.lengths, all.ids, all.old,
              all.count);
}

void searchLinearly(Draw& draw)
{
    const DatabaseCase all(draw);
    const uint32_t sources = draw.number<uint32_t>("sources", 0, 9, 10),
                   ignored = draw.number<uint32_t>("ignored", 0, 2, 1),
                   room = draw.number<uint32_t>("room", 0, 60, 1000);
    const int8_t* const src = draw.sourceArray<int8_t>("src", 36 * sources);
    uint32_t *const lengths = draw.destinationArray<uint32_t>("src lengths", sources),
                    *const targets = draw.destinationArray<uint32_t>("src targets", sources);
    for (uint32_t i = 0; i < sources; ++i) {
        lengths[i] = 0x20000000 + i;
        targets[i] = draw.measures() ? 0 : i % (all.targets + 1);
    }
    const uint16_t ignore[2] = {3, 5};
    const uint32_t most = draw.pick("most", {0xFFFFFFFFu, 0x7FFFFFFFu});
    const auto result = to<uint32_t>("result", std::max(room, 1u));
    draw.call(odxLinearSearch8x36s8, all.lut, all.targets, all.descriptors, all.lengths, all.ids, all.count, src,
              lengths, targets, sources, ignore, ignored, most, result, result, result, room,
              results<uint32_t, 1>);
}

void searchVocabulary(Draw& draw)
{
    const uint32_t nodes = draw.number<uint32_t>("nodes", 1, 60, 111);
    uint32_t* const lengths = draw.destinationArray<uint32_t>("lengths", 10 * nodes);
    int32_t* const children = draw.destinationArray<int32_t>("children", 10 * nodes);
    uint8_t* const counts = draw.destinationArray<uint8_t>("counts", nodes);
    Random random = seeded(draw);
    for (uint32_t i = 0; i < 10 * nodes; ++i) {
        const uint32_t child = i + 1;
        children[i] = static_cast<int32_t>(child < nodes ? child : 0x80000000 | child);
        lengths[i] = static_cast<uint32_t>(random());
        counts[i / 10] = static_cast<uint8_t>(draw.measures() ? 10 : random() % 12);
    }
    draw.call(odxKMeansTreeSearch36x10s8, from<int8_t>("centers", 360 * nodes), lengths, children, counts, nodes,
              array<int8_t, 36>);
}

#define DOT_PRODUCTS(n)                                                                         \
    {"odxDotProduct" #n "x1s8", pair<int8_t, n, odxDotProduct##n##x1s8>},                       \
        {"odxDotProduct" #n "x1u8", pair<uint8_t, n, odxDotProduct##n##x1u8>},                  \
        {"odxDotProduct" #n "x4s8", oneWithFour<int8_t, int32_t, n, odxDotProduct##n##x4s8>},   \
        {"odxDotProduct" #n "x4u8", oneWithFour<uint8_t, uint32_t, n, odxDotProduct##n##x4u8>}, \
        {"odxDotProductNorm" #n "x4s8", normalised<int8_t, n, odxDotProductNorm##n##x4s8>},     \
    {                                                                                           \
        "odxDotProductNorm" #n "x4u8", normalised<uint8_t, n, odxDotProductNorm##n##x4u8>       \
    }

std::vector<Row> rows()
{
    return {
        {"odxBitCountu8", arrays<uint8_t, odxBitCountu8>},
        {"odxBitCountu32", arrays<uint32_t, odxBitCountu32>},
        {"odxBitCount32x1u8", count<32, odxBitCount32x1u8>},
        {"odxBitCount64x1u8", count<64, odxBitCount64x1u8>},
        {"odxBitCount32x4u8", fourCounts<32, odxBitCount32x4u8>},
        {"odxBitCount64x4u8", fourCounts<64, odxBitCount64x4u8>},
        {"odxBlockDotProductu8", blocks<uint8_t, odxBlockDotProductu8>},
        {"odxBlockDotProductf32", blocks<float, odxBlockDotProductf32>},
        DOT_PRODUCTS(36),
        DOT_PRODUCTS(64),
        DOT_PRODUCTS(128),
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
        {"odxSumOfSquaredDiffs36xNs8", distances<int8_t, odxSumOfSquaredDiffs36xNs8, 36>},
        {"odxSumOfSquaredDiffss8", distances<int8_t, odxSumOfSquaredDiffss8>},
        {"odxSumOfSquaredDiffsu8", distances<uint8_t, odxSumOfSquaredDiffsu8>},
        {"odxSumOfSquaredDiffsf32", distances<float, odxSumOfSquaredDiffsf32>},
        {"odxSumOfAbsoluteDiff8x8u8", patches<8, 8, odxSumOfAbsoluteDiff8x8u8>},
        {"odxSumOfAbsoluteDiff16x16u8", patches<16, 16, odxSumOfAbsoluteDiff16x16u8>},
        {"odxDotProduct8x8u8", patches<8, 8, odxDotProduct8x8u8>},
        {"odxDotProduct11x12u8", patches<11, 12, odxDotProduct11x12u8>},
        {"odxSumOfAbsoluteDiffs8x8u8", everywhere<8, odxSumOfAbsoluteDiffs8x8u8>},
        {"odxSumOfAbsoluteDiffs8x8u8_v2", everywhere<8, odxSumOfAbsoluteDiffs8x8u8_v2>},
        {"odxSumOfAbsoluteDiffs16x16u8", everywhere<16, odxSumOfAbsoluteDiffs16x16u8>},
        {"odxDescriptor17x17u8To36s8", describe},
        {"odxVecNormalize36s8f32", normalise},
        {"odxDescriptorSampledMeanAndVar36f32", meanAndVariance},
        {"odxSort8Scoresf32", sort8},
        {"odxClusterEuclideanu8", clusters<uint8_t, uint32_t, uint32_t, odxClusterEuclideanu8>},
        {"odxClusterEuclideanf32", clusters<float, float, double, odxClusterEuclideanf32>},
        {"odxClusterEuclideanNormedf32", clusters<float, float, double, odxClusterEuclideanNormedf32>},
        {"odxClusterEuclideanNormed36f32", clusters<float, float, double, odxClusterEuclideanNormed36f32, 36>},
        {"odxKDTreeCreate36s8f32", createTree, false, true},
        {"odxKDTreeDestroy36s8f32", createTree, false, true},
        {"odxKDTreeQuery36s8f32", queryTree},
        {"odxLinearSearchPrepare8x36s8", prepareSearch},
        {"odxLinearSearch8x36s8", searchLinearly},
        {"odxKMeansTreeSearch36x10s8", searchVocabulary},
    };
}

} // namespace odx::test::descriptors
