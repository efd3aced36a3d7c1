#include "entries/entries.h"

#include "ondrix/descriptors.h"

#include <math.h>

namespace odx::test::descriptors
{

// A number of elements, of which there may be none.
Argument length(uint32_t least = 0)
{
    return {Argument::kColumns, 30000, least == 0 ? Values() : Values{least - 1.0}, 1, 1, {double(least)}};
}

Entries entries()
{
    const Argument vector = buffer(1, 4);
    // Too little work to leave, but for lists of any length.
    const Arguments source = {vector, length()}, arrays = {vector, vector, length()},
                    one = Arguments{vector}.never(), pair = one + vector,
                    four = Arguments(4, vector).never() + buffer(), five = Arguments(5, vector).never() + buffer(),
                    unchecked = Arguments(5, vector).never() + optional(),
                    normalised = Arguments{vector, value()}.never() + Arguments(4, vector) + buffer() + buffer(),
                    list = Arguments{vector, value(), buffer(), buffer(), value(1, {}, {0}), buffer()}.never(),
                    listOf = Arguments{vector,   value(),           value(1, {}, {0}), buffer(),
                                       buffer(), value(1, {}, {0}), buffer()}
                                 .never();
    const Arguments block = {vector, width().with({}, {0}), height().with({}, {0}), looseStride(),
                             vector, looseStride()};
    const auto patches = [=](uint32_t n) {
        return Arguments{buffer(1, 16), stride(n), buffer(1, 16), stride(n)}.never();
    };
    // Vectors of some sizes, in rows of so many bytes; new centers without counts, and without sums, are refused.
    const auto clusters = [=](const Arguments& sizes, uint32_t row) {
        const size_t counts = 7 + sizes.size();
        return (Arguments{buffer(8, 16)} + sizes +
                Arguments{stride(row, 8), buffer(8, 16), value(1, {0}), stride(row, 8), buffer()} +
                Arguments(4, optional()))
            .refusing({{{counts, 0}}, {{counts + 1, 0}}});
    };
    const Arguments floats = clusters({width(), height()}, 4 * kWidth).pixels(4);
    const char *const clustersOfFloats = "vectors && centers && labels && length && numVectors && numCenters && "
                                         "(vectorsStride >= length*sizeof(float)) && (centersStride >= "
                                         "length*sizeof(float)) && ((counts && sums) || !newCenters)",
                      *const dots = "A && B && C && D && E && dotProducts",
                      *const cosines = "A && vB0 && vB1 && vB2 && vB3 && invLengthsB && dotProducts",
                      *const counts = "A && B && C && D && count",
                      *const hamming = "A && B && C && D && E && distances",
                      *const distances = "a && bList && invLenB && distances";
    const Entries shared =
        alike("", one, {OP(odxBitCount32x1u8), OP(odxBitCount64x1u8)}) +
        alike(counts, four, {OP(odxBitCount32x4u8), OP(odxBitCount64x4u8)}) +
        alike("", block, {OP(odxBlockDotProductu8), OP(odxBlockDotProductf32)}) +
        alike("", pair,
              {OP(odxDotProduct36x1s8), OP(odxDotProduct36x1u8), OP(odxDotProduct64x1s8), OP(odxDotProduct64x1u8),
               OP(odxDotProduct128x1s8), OP(odxDotProduct128x1u8), OP(odxHammingDistance32x1u8),
               OP(odxHammingDistance32x1u8a4), OP(odxHammingDistance64x1u8), OP(odxHammingDistance64x1u8a4)}) +
        alike(dots, five,
              {OP(odxDotProduct36x4u8), OP(odxDotProduct64x4s8), OP(odxDotProduct64x4u8), OP(odxDotProduct128x4s8),
               OP(odxDotProduct128x4u8)}) +
        alike(cosines, normalised,
              {OP(odxDotProductNorm36x4s8), OP(odxDotProductNorm36x4u8), OP(odxDotProductNorm64x4s8),
               OP(odxDotProductNorm64x4u8), OP(odxDotProductNorm128x4s8), OP(odxDotProductNorm128x4u8)}) +
        alike("", arrays, {OP(odxDotProducts8), OP(odxDotProductu8), OP(odxHammingDistanceu8)}) +
        alike(hamming, five,
              {OP(odxHammingDistance32x4u8a4), OP(odxHammingDistance64x4u8), OP(odxHammingDistance64x4u8a4)}) +
        alike(distances, listOf,
              {OP(odxSumOfSquaredDiffss8), OP(odxSumOfSquaredDiffsu8), OP(odxSumOfSquaredDiffsf32)}) +
        alike("a && b && (aStride >= 8) && (bStride >= 8)", patches(8),
              {OP(odxSumOfAbsoluteDiff8x8u8), OP(odxDotProduct8x8u8)}) +
        alike(clustersOfFloats, floats, {OP(odxClusterEuclideanf32), OP(odxClusterEuclideanNormedf32)});
    const Entries others = {
        ENTRY(odxBitCountu8, "", source),
        ENTRY(odxBitCountu32, "", source.pixels(4)),
        ENTRY(odxDotProduct36x4s8, "A && B && C && D && E", unchecked),
        ENTRY(odxDotProductf32, "", arrays.pixels(4)),
        ENTRY(odxSumOfSquaredDiffs36x4s8, "A && B && C && D && E && invLenB && distances", normalised),
        ENTRY(odxSumOfSquaredDiffs36xNs8, "A && B && invLenB && distances", list),
        ENTRY(odxSumOfAbsoluteDiff16x16u8, "a && b && (aStride >= 16) && (bStride >= 16)", patches(16)),
        ENTRY(odxDotProduct11x12u8, "a && b && (aStride >= 11) && (bStride >= 11)", patches(11)),
        ENTRY(odxSumOfAbsoluteDiffs8x8u8, "patch && src && dst && (srcWidth >= 8) && (srcHeight >= 8)",
              {buffer(), buffer(8, 16), width(8), height(8), buffer(8, 16)}),
        ENTRY(odxSumOfAbsoluteDiffs8x8u8_v2,
              "patch && src && dst && (srcWidth >= 8) && (srcHeight >= 8) && (patchStride >= 8) && (srcStride >= "
              "srcWidth) && (dstStride >= (srcWidth - 7)*sizeof(uint16_t))",
              {buffer(), stride(8), buffer(8, 16), width(8), height(8), stride(kWidth, 8), buffer(8, 16),
               stride(2 * (kWidth - 7))}),
        ENTRY(odxSumOfAbsoluteDiffs16x16u8,
              "patch && src && dst && (srcWidth >= 16) && (srcHeight >= 16) && (patchStride >= 16) && (srcStride "
              ">= srcWidth) && (dstStride >= (srcWidth - 15)*sizeof(uint16_t))",
              Arguments{buffer(), stride(16), buffer(1, 16), width(16), height(16), stride(), buffer(1, 16),
                        stride(2 * (kWidth - 15))}
                  .never()),
        ENTRY(odxDescriptor17x17u8To36s8, "src && dst && (srcStride >= 17)",
              Arguments{buffer(1, 16), stride(17), buffer(1, 16), optional(1, 16)}.never()),
        ENTRY(odxVecNormalize36s8f32, "",
              Arguments{vector, looseStride(), buffer(), length(), value(), buffer(), optional()}.pixels(36)),
        ENTRY(
            odxDescriptorSampledMeanAndVar36f32,
            "vectors && numIndices && mean && variance && (vectorsStride >= 36*sizeof(float)) && inRange",
            Arguments{buffer(8, 16), length(1), stride(144, 8), value(0), value(1, {0, 30001}), buffer(), buffer()}
                .pixels(144)),
        ENTRY(odxSort8Scoresf32, "inScores && outScores", pair),
        ENTRY(odxClusterEuclideanu8,
              "vectors && centers && labels && length && numVectors && numCenters && (length <= 65536) && "
              "(numVectors <= 16777216) && (vectorsStride >= length) && (centersStride >= length) && ((counts && "
              "sums) || !newCenters)",
              clusters({width(), height()}, kWidth)),
        ENTRY(odxClusterEuclideanNormed36f32,
              "vectors && centers && labels && numVectors && numCenters && (vectorsStride >= 36*sizeof(float)) && "
              "(centersStride >= 36*sizeof(float)) && ((counts && sums) || !newCenters)",
              clusters({length(1)}, 144).pixels(144)),
        ENTRY(odxKDTreeCreate36s8f32, "", Arguments{vector, vector, value(9, {-1}, {0}), buffer()}.never()),
        ENTRY(odxKDTreeDestroy36s8f32, "", Arguments{buffer()}.never()),
        ENTRY(odxKDTreeQuery36s8f32, "",
              Arguments{buffer(), vector, value(1, {-1, double(NAN)}, {0}), value(2, {-1}, {0}),
                        value(1, {-1, double(NAN)}, {0, double(INFINITY)}), value(8, {-1}, {0}), value(), buffer(),
                        buffer(), buffer()}
                  .never()),
        ENTRY(odxLinearSearchPrepare8x36s8, "",
              Arguments{buffer(), value(1, {}, {0}), vector, buffer(), buffer(), buffer(), value(1, {}, {0})}
                  .never()),
        ENTRY(odxLinearSearch8x36s8,
              "dbLUT && descDB && descDBInvLenQ38 && descDBTargetId && srcDesc && srcDescInvLenQ38 && srcDescIdx "
              "&& (numTargetsToIgnore==0 || targetsToIgnore) && correspondenceDBIdx && correspondencSrcDescIdx && "
              "correspondenceDistanceQ31 && numCorrespondences",
              Arguments{buffer(), value(), vector, buffer(), buffer(), length(), vector, buffer(), buffer(),
                        value(1, {}, {0}), optional(), value(0), value(), buffer(), buffer(), buffer(),
                        value(1, {}, {0}), buffer()}
                  .pixels(36)
                  .refusing({{{10, 0}, {11, 1}}})),
        ENTRY(odxKMeansTreeSearch36x10s8, "",
              Arguments{vector, buffer(), buffer(), buffer(), value(1, {}, {0}), vector}.never()),
    };
    return shared + others;
}

} // namespace odx::test::descriptors
