// Every operation, run by every column on the same arguments: the reference decides what the others must write.
//
// A failure names the seed of its case. To run that case alone:
//     ONDRIX_TEST_SEED=<seed> differential_tests --gtest_filter='*/<operation>'
// ONDRIX_TEST_CASES sets the number of cases of each operation. ONDRIX_TEST_DIGEST names a file that receives a
// line for each operation, with a digest of what its reference wrote: builds for other processors and by other
// compilers must give the same lines.
#include "ondrix/modes.h"
#include "operations/draw.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <stdlib.h>

namespace odx::test
{

namespace
{

uint64_t environmentNumber(const char* name, uint64_t otherwise)
{
    const char* text = getenv(name);
    return text != nullptr ? strtoull(text, nullptr, 0) : otherwise;
}

// Where two outcomes differ first, in bytes.
size_t firstDifference(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b)
{
    return static_cast<size_t>(std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin());
}

// Adds an operation's line to the digests, if they are asked for: over as many outcomes as every kind of run has.
void recordDigest(const char* operation, const std::vector<std::vector<uint8_t>>& outcomes)
{
    const char* const path = getenv("ONDRIX_TEST_DIGEST");
    if (path == nullptr) return;
    uint64_t digest = 14695981039346656037u; // FNV-1a
    for (size_t i = 0; i < std::min<size_t>(outcomes.size(), 100); ++i) {
        for (const uint8_t byte : outcomes[i])
            digest = (digest ^ byte) * 1099511628211u;
    }
    std::ofstream(path, std::ios::app) << operation << ' ' << std::hex << digest << '\n';
}

class Differential : public testing::TestWithParam<Row>
{
};

TEST_P(Differential, ColumnsWriteTheSameBytes)
{
    const Row row = GetParam();
    static const std::vector<Column> columns = [] {
        auto all = allColumns();
        all.push_back(remoteColumn());
        return all;
    }();
    const bool single = getenv("ONDRIX_TEST_SEED") != nullptr;
    const uint64_t first = environmentNumber("ONDRIX_TEST_SEED", 1);
    const uint64_t cases = single ? 1 : environmentNumber("ONDRIX_TEST_CASES", 400);

    std::vector<std::vector<uint8_t>> expected(cases);
    uint64_t effective = 0;
    for (const Column& column : columns) {
        if (column.remote && !isRemote(row.operation)) continue;
        column.select();
        const uint32_t callsBefore = column.remote ? remoteCalls() : 0;
        for (uint64_t i = 0; i < cases; ++i) {
            Draw draw(first + i, column.remote);
            row.run(draw);
            SCOPED_TRACE(column.name + ", seed " + std::to_string(first + i) + ": " + draw.description());
            ASSERT_TRUE(draw.surroundingsIntact()) << "wrote outside its buffers";
            std::vector<uint8_t> outcome = draw.outcome();
            if (&column == &columns.front()) {
                effective += draw.didSomething() ? 1 : 0;
                expected[i] = std::move(outcome);
            } else {
                ASSERT_EQ(expected[i].size(), outcome.size());
                ASSERT_EQ(firstDifference(expected[i], outcome), outcome.size()) << "first differing byte";
            }
        }
        if (column.remote) {
            EXPECT_GE(2 * (remoteCalls() - callsBefore), cases) << "most calls were not sent";
        }
    }
    EXPECT_GE(2 * effective, cases) << "most cases were refused, or wrote nothing";
    recordDigest(row.operation, expected);
}

INSTANTIATE_TEST_SUITE_P(Operations, Differential, testing::ValuesIn(allRows()),
                         [](const auto& row) { return std::string(row.param.operation); });

TEST(DifferentialRows, CoverEveryOperation)
{
    std::multiset<std::string> rows, operations;
    for (const Row& row : allRows())
        rows.insert(row.operation);
    for (const std::string& name : builtOperations())
        operations.insert(name);
    EXPECT_EQ(rows, operations);
}

TEST(DifferentialRows, RunMoreThanTheReferenceWhereTheProcessorHasSimd)
{
    const bool simd = (odxAvailableHardware(ONDRIX_OP_EXT_CPU) & ONDRIX_HW_SIMD) != 0;
    const auto columns = allColumns();
    for (const Column& column : columns)
        printf("column: %s\n", column.name.c_str());
    EXPECT_EQ(columns.size() > 1, simd);
}

} // namespace

} // namespace odx::test
