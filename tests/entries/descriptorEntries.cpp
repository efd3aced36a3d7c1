#include "entries/entries.h"

#include "ondrix/descriptors.h"

namespace odx::test
{

namespace
{

using Arguments = std::vector<Argument>;

Arguments repeated(size_t count, const Argument& argument)
{
    return Arguments(count, argument);
}
Arguments operator+(Arguments a, const Arguments& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// A number of elements, of which there may be none.
Argument length()
{
    Argument length = width(1);
    length.good = 30000;
    length.refused = {};
    length.accepted = {0};
    return length;
}

} // namespace

Entries descriptorEntries()
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
    const char *const dots = "A && B && C && D && E && dotProducts",
                      *const cosines = "A && vB0 && vB1 && vB2 && vB3 && invLengthsB && dotProducts",
                      *const counts = "A && B && C && D && count",
                      *const hamming = "A && B && C && D && E && distances",
                      *const distances = "a && bList && invLenB && distances";
    return {
        {ODX_ENTRY(odxBitCountu8), "", source},
        {ODX_ENTRY(odxBitCountu32), "", source, 1, 4},
        {ODX_ENTRY(odxBitCount32x1u8), "", one, 1, kNever},
        {ODX_ENTRY(odxBitCount64x1u8), "", one, 1, kNever},
        {ODX_ENTRY(odxBitCount32x4u8), counts, four, 1, kNever},
        {ODX_ENTRY(odxBitCount64x4u8), counts, four, 1, kNever},
        {ODX_ENTRY(odxBlockDotProductu8), "", block()},
        {ODX_ENTRY(odxBlockDotProductf32), "", block()},
        {ODX_ENTRY(odxDotProduct36x1s8), "", pair, 1, kNever},
        {ODX_ENTRY(odxDotProduct36x1u8), "", pair, 1, kNever},
        {ODX_ENTRY(odxDotProduct64x1s8), "", pair, 1, kNever},
        {ODX_ENTRY(odxDotProduct64x1u8), "", pair, 1, kNever},
        {ODX_ENTRY(odxDotProduct128x1s8), "", pair, 1, kNever},
        {ODX_ENTRY(odxDotProduct128x1u8), "", pair, 1, kNever},
        {ODX_ENTRY(odxDotProduct36x4s8), "A && B && C && D && E", unchecked, 1, kNever},
        {ODX_ENTRY(odxDotProduct36x4u8), dots, five, 1, kNever},
        {ODX_ENTRY(odxDotProduct64x4s8), dots, five, 1, kNever},
        {ODX_ENTRY(odxDotProduct64x4u8), dots, five, 1, kNever},
        {ODX_ENTRY(odxDotProduct128x4s8), dots, five, 1, kNever},
        {ODX_ENTRY(odxDotProduct128x4u8), dots, five, 1, kNever},
        {ODX_ENTRY(odxDotProductNorm36x4s8), cosines, normalised, 1, kNever},
        {ODX_ENTRY(odxDotProductNorm36x4u8), cosines, normalised, 1, kNever},
        {ODX_ENTRY(odxDotProductNorm64x4s8), cosines, normalised, 1, kNever},
        {ODX_ENTRY(odxDotProductNorm64x4u8), cosines, normalised, 1, kNever},
        {ODX_ENTRY(odxDotProductNorm128x4s8), cosines, normalised, 1, kNever},
        {ODX_ENTRY(odxDotProductNorm128x4u8), cosines, normalised, 1, kNever},
        {ODX_ENTRY(odxDotProducts8), "", arrays},
        {ODX_ENTRY(odxDotProductu8), "", arrays},
        {ODX_ENTRY(odxDotProductf32), "", arrays, 1, 4},
        {ODX_ENTRY(odxHammingDistanceu8), "", arrays},
        {ODX_ENTRY(odxHammingDistance32x1u8), "", pair, 1, kNever},
        {ODX_ENTRY(odxHammingDistance32x1u8a4), "", pair, 1, kNever},
        {ODX_ENTRY(odxHammingDistance64x1u8), "", pair, 1, kNever},
        {ODX_ENTRY(odxHammingDistance64x1u8a4), "", pair, 1, kNever},
        {ODX_ENTRY(odxHammingDistance32x4u8a4), hamming, five, 1, kNever},
        {ODX_ENTRY(odxHammingDistance64x4u8), hamming, five, 1, kNever},
        {ODX_ENTRY(odxHammingDistance64x4u8a4), hamming, five, 1, kNever},
        {ODX_ENTRY(odxSumOfSquaredDiffs36x4s8), "A && B && C && D && E && invLenB && distances", normalised, 1,
         kNever},
        {ODX_ENTRY(odxSumOfSquaredDiffs36xNs8), "A && B && invLenB && distances", list, 1, kNever},
        {ODX_ENTRY(odxSumOfSquaredDiffss8), distances, listOf, 1, kNever},
        {ODX_ENTRY(odxSumOfSquaredDiffsu8), distances, listOf, 1, kNever},
        {ODX_ENTRY(odxSumOfSquaredDiffsf32), distances, listOf, 1, kNever},
    };
}

} // namespace odx::test
