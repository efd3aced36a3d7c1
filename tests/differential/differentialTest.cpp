// Every operation, run by every column on the same arguments: the reference decides what the others must write.
//
// A failure, also one that ends the process, names the seed of its case and the command that runs this case alone.
// Every run goes through the sizes that matter (operations/draw.h); ONDRIX_TEST_CASES sets how many cases are
// drawn besides. With ONDRIX_TEST_SEED its case is all that runs; with both, that many cases in a place that
// the seed and the operation decide.
// With ONDRIX_TEST_THREADS another thread makes the same call at the same time, for the thread sanitizer to watch.
// ONDRIX_TEST_DIGEST names a file that receives a line for each operation, with a digest of what its reference
// wrote: builds for other processors and by other compilers must give the same lines.
#include "ondrix/modes.h"
#include "operations/draw.h"

#include <gtest/gtest.h>

#include <errno.h>
#include <fstream>
#include <set>
#include <signal.h>
#include <sstream>
#include <stdlib.h>
#include <string_view>
#include <thread>
#include <unistd.h>

// Of the sanitizers, which end the process without a signal.
extern "C" [[gnu::weak]] void __sanitizer_set_death_callback(void (*)());

namespace odx::test
{

// As GoogleTest shows it.
static void PrintTo(const Row& row, std::ostream* out)
{
    *out << row.operation;
}

namespace
{

uint64_t environmentNumber(const char* name, uint64_t otherwise)
{
    const char* text = getenv(name);
    return text != nullptr ? strtoull(text, nullptr, 0) : otherwise;
}

// What is running, for whom it ends.
char running[1024];

void announce(const char* operation, const std::string& column, uint64_t seed)
{
    const char* const processor = getenv("ONDRIX_CPUINFO");
    snprintf(running, sizeof running,
             "%s by %s, seed %llu; to repeat it:\n  %s%s ONDRIX_TEST_SEED=%llu %s%s --gtest_filter='*/%s'\n",
             operation, column.c_str(), static_cast<unsigned long long>(seed),
             processor != nullptr ? "ONDRIX_CPUINFO=" : "", processor != nullptr ? processor : "",
             static_cast<unsigned long long>(seed), ODX_EMULATOR, program_invocation_name, operation);
}

constexpr int kSignals[] = {SIGSEGV, SIGBUS, SIGILL, SIGTRAP, SIGFPE, SIGABRT};
struct sigaction previous[std::size(kSignals)];

void tellWhatRuns()
{
    for (const std::string_view text : {"\nThe process ends in ", static_cast<const char*>(running)}) {
        if (write(STDERR_FILENO, text.data(), text.size()) < 0) break;
    }
}

// Leaves the signal to whoever had it before.
void onSignal(int number)
{
    tellWhatRuns();
    for (size_t i = 0; i < std::size(kSignals); ++i) {
        if (kSignals[i] == number) sigaction(number, &previous[i], nullptr);
    }
    if (number == SIGABRT || number == SIGTRAP) raise(number);
}

// Adds an operation's line to the digests, if they are asked for: over the cases that every kind of run has.
void recordDigest(const char* operation, const std::vector<uint64_t>& seeds,
                  const std::vector<std::vector<uint8_t>>& outcomes)
{
    const char* const path = getenv("ONDRIX_TEST_DIGEST");
    if (path == nullptr) return;
    uint64_t digest = 14695981039346656037u;
    for (size_t i = 0; i < outcomes.size() && seeds[i] < Draw::kFirstDrawn + 40; ++i)
        digest = digestOf(outcomes[i], digest);
    std::ofstream(path, std::ios::app)
        << (std::ostringstream() << operation << ' ' << std::hex << digest << '\n').str();
}

class Differential : public testing::TestWithParam<Row>
{
protected:
    static void SetUpTestSuite()
    {
        struct sigaction action = {};
        action.sa_handler = onSignal;
        for (size_t i = 0; i < std::size(kSignals); ++i)
            sigaction(kSignals[i], &action, &previous[i]);
        if (__sanitizer_set_death_callback != nullptr) __sanitizer_set_death_callback(tellWhatRuns);
    }
    static void TearDownTestSuite() { printf("compared calls: %zu\n", comparedCalls); }

    static inline size_t comparedCalls = 0;
};

// The seeds of a run of a row: the sizes that matter, then drawn ones.
std::vector<uint64_t> seedsOf(const Row& row)
{
    std::vector<uint64_t> seeds;
    const uint64_t only = environmentNumber("ONDRIX_TEST_SEED", 0);
    const uint64_t cases = environmentNumber("ONDRIX_TEST_CASES", only != 0 ? 1 : 300);
    if (only == 0) {
        Draw draw(1);
        row.run(draw);
        for (uint64_t seed = 1; seed <= draw.sizes(); ++seed)
            seeds.push_back(seed);
    }
    // Operations do not share what is drawn; a single case is the one that was asked for.
    const uint64_t own = cases > 1 ? std::hash<std::string>()(row.operation) >> 8 : 0;
    for (uint64_t i = 0; i < cases; ++i)
        seeds.push_back(only != 0 ? only + own + i : Draw::kFirstDrawn + i);
    return seeds;
}

TEST_P(Differential, ColumnsWriteTheSameBytes)
{
    const Row row = GetParam();
    static const std::vector<Column> columns = [] {
        auto all = allColumns();
        all.push_back(remoteColumn());
        return all;
    }();

    const bool inThreads = getenv("ONDRIX_TEST_THREADS") != nullptr;
    columns.front().select();
    const std::vector<uint64_t> seeds = seedsOf(row);
    std::vector<std::vector<uint8_t>> expected;
    size_t effective = 0;
    for (const Column& column : columns) {
        if (column.remote && !isRemote(row.operation)) continue;
        const bool isReference = &column == &columns.front();
        column.select();
        const uint32_t callsBefore = column.remote ? remoteCalls() : 0;
        for (size_t i = 0; i < seeds.size(); ++i) {
            announce(row.operation, column.name, seeds[i]);
            std::thread beside;
            if (inThreads) {
                beside = std::thread([&] {
                    Draw draw(seeds[i], column.remote);
                    row.run(draw);
                });
            }
            Draw draw(seeds[i], column.remote);
            row.run(draw);
            if (inThreads) beside.join();
            ASSERT_EQ("", draw.overrun()) << "something was written beside it, " << draw.description() << "\n"
                                          << running;
            std::vector<uint8_t> outcome = draw.outcome();
            if (isReference) {
                effective += draw.didSomething() ? 1 : 0;
                expected.push_back(std::move(outcome));
                continue;
            }
            ++comparedCalls;
            const std::string difference = draw.difference(expected[i], outcome);
            if (!difference.empty()) {
                ADD_FAILURE() << difference << "\n" << draw.description() << "\n" << running;
                break; // and see what the next column does
            }
        }
        if (column.remote && !HasFailure()) {
            EXPECT_GE(2 * (remoteCalls() - callsBefore), seeds.size()) << "most calls were not sent";
        }
    }
    if (seeds.size() > 1) {
        EXPECT_GE(2 * effective, seeds.size()) << "most cases were refused, or wrote nothing";
    }
    recordDigest(row.operation, seeds, expected);
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
