#include "entries/entries.h"

#include "ondrix/descriptors.h"

#include <math.h>

namespace odx::test
{

namespace
{

Arguments repeated(size_t count, const Argument& argument)
{
    return Arguments(count, argument);
}
// A number of elements, of which there may be none.
Argument length(uint32_t least = 0)
{
    Argument length = width(1);
    length.good = 30000;
    length.refused = least == 0 ? std::vector<double>{} : std::vector<double>{least - 1.0};
    length.accepted = {double(least)};
    return length;
}

} // namespace

Entries descriptorsEntries()
{
    const Argument vector = buffer(1, 4);
    const Arguments source = {vector, length()}, arrays = {vector, vector, length()}, one = {vector},
                    pair = {vector, vector}, four = repeated(4, vector) + Arguments{buffer()},
                    five = repeated(5, vector) + Arguments{buffer()},
                    unchecked = repeated(5, vector) + Arguments{optional()},
                    normalised = Arguments{vector, value()} + repeated(4, vector) + Arguments{buffer(), buffer()},
                    list = {vector, value(), buffer(), buffer(), value(1, {}, {0}), buffer()},
                    listOf = {vector, value(), value(1, {}, {0}), buffer(), buffer(), value(1, {}, {0}), buffer()};
    const auto block = [=] {
        Argument columns = width(1), rows = height(1);
        columns.refused = rows.refused = {};
        columns.accepted = rows.accepted = {0};
        return Arguments{vector, columns, rows, looseStride(), vector, looseStride()};
    };
    const auto patches = [=](uint32_t n) { return Arguments{buffer(1, 16), stride(n), buffer(1, 16), stride(n)}; };
    const auto clusters = [=](uint32_t size) {
        return Arguments{buffer(8, 16),
                         width(),
                         height(),
                         stride(size * kWidth, 8),
                         buffer(8, 16),
                         value(1, {0}),
                         stride(size * kWidth, 8),
                         buffer(),
                         optional(),
                         optional(),
                         optional(),
                         optional()};
    };
    // New centers without counts, and without sums.
    const auto withoutSums = [](size_t counts) {
        return std::vector<std::vector<std::pair<size_t, double>>>{{{counts, 0}}, {{counts + 1, 0}}};
    };
    const char *const clustersOfFloats = "vectors && centers && labels && length && numVectors && numCenters && "
                                         "(vectorsStride >= length*sizeof(float)) && (centersStride >= "
                                         "length*sizeof(float)) && ((counts && sums) || !newCenters)",
                      *const dots = "A && B && C && D && E && dotProducts",
                      *const cosines = "A && vB0 && vB1 && vB2 && vB3 && invLengthsB && dotProducts",
                      *const counts = "A && B && C && D && count",
                      *const hamming = "A && B && C && D && E && distances",
                      *const distances = "a && bList && invLenB && distances";
    return {
        entry(ODX_ENTRY(odxBitCountu8), "", source),
        entry(ODX_ENTRY(odxBitCountu32), "", source).pixels(4),
        entry(ODX_ENTRY(odxBitCount32x1u8), "", one).never(),
        entry(ODX_ENTRY(odxBitCount64x1u8), "", one).never(),
        entry(ODX_ENTRY(odxBitCount32x4u8), counts, four).never(),
        entry(ODX_ENTRY(odxBitCount64x4u8), counts, four).never(),
        entry(ODX_ENTRY(odxBlockDotProductu8), "", block()),
        entry(ODX_ENTRY(odxBlockDotProductf32), "", block()),
        entry(ODX_ENTRY(odxDotProduct36x1s8), "", pair).never(),
        entry(ODX_ENTRY(odxDotProduct36x1u8), "", pair).never(),
        entry(ODX_ENTRY(odxDotProduct64x1s8), "", pair).never(),
        entry(ODX_ENTRY(odxDotProduct64x1u8), "", pair).never(),
        entry(ODX_ENTRY(odxDotProduct128x1s8), "", pair).never(),
        entry(ODX_ENTRY(odxDotProduct128x1u8), "", pair).never(),
        entry(ODX_ENTRY(odxDotProduct36x4s8), "A && B && C && D && E", unchecked).never(),
        entry(ODX_ENTRY(odxDotProduct36x4u8), dots, five).never(),
        entry(ODX_ENTRY(odxDotProduct64x4s8), dots, five).never(),
        entry(ODX_ENTRY(odxDotProduct64x4u8), dots, five).never(),
        entry(ODX_ENTRY(odxDotProduct128x4s8), dots, five).never(),
        entry(ODX_ENTRY(odxDotProduct128x4u8), dots, five).never(),
        entry(ODX_ENTRY(odxDotProductNorm36x4s8), cosines, normalised).never(),
        entry(ODX_ENTRY(odxDotProductNorm36x4u8), cosines, normalised).never(),
        entry(ODX_ENTRY(odxDotProductNorm64x4s8), cosines, normalised).never(),
        entry(ODX_ENTRY(odxDotProductNorm64x4u8), cosines, normalised).never(),
        entry(ODX_ENTRY(odxDotProductNorm128x4s8), cosines, normalised).never(),
        entry(ODX_ENTRY(odxDotProductNorm128x4u8), cosines, normalised).never(),
        entry(ODX_ENTRY(odxDotProducts8), "", arrays),
        entry(ODX_ENTRY(odxDotProductu8), "", arrays),
        entry(ODX_ENTRY(odxDotProductf32), "", arrays).pixels(4),
        entry(ODX_ENTRY(odxHammingDistanceu8), "", arrays),
        entry(ODX_ENTRY(odxHammingDistance32x1u8), "", pair).never(),
        entry(ODX_ENTRY(odxHammingDistance32x1u8a4), "", pair).never(),
        entry(ODX_ENTRY(odxHammingDistance64x1u8), "", pair).never(),
        entry(ODX_ENTRY(odxHammingDistance64x1u8a4), "", pair).never(),
        entry(ODX_ENTRY(odxHammingDistance32x4u8a4), hamming, five).never(),
        entry(ODX_ENTRY(odxHammingDistance64x4u8), hamming, five).never(),
        entry(ODX_ENTRY(odxHammingDistance64x4u8a4), hamming, five).never(),
        entry(ODX_ENTRY(odxSumOfSquaredDiffs36x4s8), "A && B && C && D && E && invLenB && distances", normalised)
            .never(),
        entry(ODX_ENTRY(odxSumOfSquaredDiffs36xNs8), "A && B && invLenB && distances", list).never(),
        entry(ODX_ENTRY(odxSumOfSquaredDiffss8), distances, listOf).never(),
        entry(ODX_ENTRY(odxSumOfSquaredDiffsu8), distances, listOf).never(),
        entry(ODX_ENTRY(odxSumOfSquaredDiffsf32), distances, listOf).never(),
        entry(ODX_ENTRY(odxSumOfAbsoluteDiff8x8u8), "a && b && (aStride >= 8) && (bStride >= 8)", patches(8))
            .never(),
        entry(ODX_ENTRY(odxSumOfAbsoluteDiff16x16u8), "a && b && (aStride >= 16) && (bStride >= 16)", patches(16))
            .never(),
        entry(ODX_ENTRY(odxDotProduct8x8u8), "a && b && (aStride >= 8) && (bStride >= 8)", patches(8)).never(),
        entry(ODX_ENTRY(odxDotProduct11x12u8), "a && b && (aStride >= 11) && (bStride >= 11)", patches(11))
            .never(),
        entry(ODX_ENTRY(odxSumOfAbsoluteDiffs8x8u8), "patch && src && dst && (srcWidth >= 8) && (srcHeight >= 8)",
              {buffer(), buffer(8, 16), width(8), height(8), buffer(8, 16)}),
        entry(ODX_ENTRY(odxSumOfAbsoluteDiffs8x8u8_v2),
              "patch && src && dst && (srcWidth >= 8) && (srcHeight >= 8) && (patchStride >= 8) && (srcStride >= "
              "srcWidth) && (dstStride >= (srcWidth - 7)*sizeof(uint16_t))",
              {buffer(), stride(8), buffer(8, 16), width(8), height(8), stride(kWidth, 8), buffer(8, 16),
               stride(2 * (kWidth - 7))}),
        entry(ODX_ENTRY(odxSumOfAbsoluteDiffs16x16u8),
              "patch && src && dst && (srcWidth >= 16) && (srcHeight >= 16) && (patchStride >= 16) && (srcStride "
              ">= srcWidth) && (dstStride >= (srcWidth - 15)*sizeof(uint16_t))",
              {buffer(), stride(16), buffer(1, 16), width(16), height(16), stride(), buffer(1, 16),
               stride(2 * (kWidth - 15))})
            .never(),
        entry(ODX_ENTRY(odxDescriptor17x17u8To36s8), "src && dst && (srcStride >= 17)",
              {buffer(1, 16), stride(17), buffer(1, 16), optional(1, 16)})
            .never(),
        entry(ODX_ENTRY(odxVecNormalize36s8f32), "",
              {vector, looseStride(), buffer(), length(), value(), buffer(), optional()})
            .pixels(36),
        entry(ODX_ENTRY(odxDescriptorSampledMeanAndVar36f32),
              "vectors && numIndices && mean && variance && (vectorsStride >= 36*sizeof(float)) && inRange",
              {buffer(8, 16), length(1), stride(144, 8), value(0), value(1, {0, 30001}), buffer(), buffer()})
            .pixels(144),
        entry(ODX_ENTRY(odxSort8Scoresf32), "inScores && outScores", pair).never(),
        entry(ODX_ENTRY(odxClusterEuclideanu8),
              "vectors && centers && labels && length && numVectors && numCenters && (length <= 65536) && "
              "(numVectors <= 16777216) && (vectorsStride >= length) && (centersStride >= length) && ((counts && "
              "sums) || !newCenters)",
              clusters(1))
            .refusing(withoutSums(9)),
        entry(ODX_ENTRY(odxClusterEuclideanf32), clustersOfFloats, clusters(4)).pixels(4).refusing(withoutSums(9)),
        entry(ODX_ENTRY(odxClusterEuclideanNormedf32), clustersOfFloats, clusters(4))
            .pixels(4)
            .refusing(withoutSums(9)),
        entry(ODX_ENTRY(odxClusterEuclideanNormed36f32),
              "vectors && centers && labels && numVectors && numCenters && (vectorsStride >= 36*sizeof(float)) && "
              "(centersStride >= 36*sizeof(float)) && ((counts && sums) || !newCenters)",
              {buffer(8, 16), length(1), stride(144, 8), buffer(8, 16), value(1, {0}), stride(144, 8), buffer(),
               optional(), optional(), optional(), optional()})
            .pixels(144)
            .refusing(withoutSums(8)),
        entry(ODX_ENTRY(odxKDTreeCreate36s8f32), "", {vector, vector, value(9, {-1}, {0}), buffer()}).never(),
        entry(ODX_ENTRY(odxKDTreeDestroy36s8f32), "", {buffer()}).never(),
        entry(ODX_ENTRY(odxKDTreeQuery36s8f32), "",
              {buffer(), vector, value(1, {-1, double(NAN)}, {0}), value(2, {-1}, {0}),
               value(1, {-1, double(NAN)}, {0, double(INFINITY)}), value(8, {-1}, {0}), value(), buffer(),
               buffer(), buffer()})
            .never(),
        entry(ODX_ENTRY(odxLinearSearchPrepare8x36s8), "",
              {buffer(), value(1, {}, {0}), vector, buffer(), buffer(), buffer(), value(1, {}, {0})})
            .never(),
        entry(ODX_ENTRY(odxLinearSearch8x36s8),
              "dbLUT && descDB && descDBInvLenQ38 && descDBTargetId && srcDesc && srcDescInvLenQ38 && srcDescIdx "
              "&& (numTargetsToIgnore==0 || targetsToIgnore) && correspondenceDBIdx && correspondencSrcDescIdx && "
              "correspondenceDistanceQ31 && numCorrespondences",
              {buffer(), value(), vector, buffer(), buffer(), length(), vector, buffer(), buffer(),
               value(1, {}, {0}), optional(), value(0), value(), buffer(), buffer(), buffer(), value(1, {}, {0}),
               buffer()})
            .pixels(36)
            .refusing({{{10, 0}, {11, 1}}}),
        entry(ODX_ENTRY(odxKMeansTreeSearch36x10s8), "",
              {vector, buffer(), buffer(), buffer(), value(1, {}, {0}), vector})
            .never(),
    };
}

} // namespace odx::test
