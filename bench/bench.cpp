// ondrix_bench [--picture=FILE] [--report=FOLDER] [options of the benchmark library]
//
// Measures every operation on one thread: by the reference, by each SIMD target, beside memcpy of the same bytes
// and the nearest calls of other libraries. All of it is interleaved at random, so that what else the machine does
// hits everyone alike; what counts is the least time of all repetitions. --benchmark_filter takes a part of the
// rows.
#include "content.h"
#include "peers.h"
#include "report.h"

#include "cpu/ondrixDotC.h"
#include "ondrix/descriptors.h"
#include "ondrix/modes.h"

#include <benchmark/benchmark.h>

#include <fstream>
#include <iostream>

namespace odx::bench
{

namespace
{

using test::Column;
using test::Draw;
using test::Extent;
using test::Measurement;
using test::Row;

// A name is kind, operation, size and content, who ran it: "row|odxFilterMedian3x3u8|640x480|avx2".
std::string nameOf(const std::string& kind, const std::string& operation, const std::string& size,
                   const std::string& who)
{
    return kind + "|" + operation + "|" + size + "|" + who;
}

class Reporter : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
            const double time = run.GetAdjustedRealTime();
            double& least = times_[run.run_name.function_name];
            if (least == 0 || time < least) least = time;
        }
    }
    // The least time of a benchmark, 0 where it did not run.
    double operator[](const std::string& name) const
    {
        const auto found = times_.find(name);
        return found == times_.end() ? 0 : found->second;
    }

private:
    std::map<std::string, double> times_;
};

void registerTimed(const std::string& name, std::function<void(benchmark::State&)> body)
{
    benchmark::RegisterBenchmark(name.c_str(), std::move(body))
        ->Unit(benchmark::kNanosecond)
        ->UseRealTime()
        ->MinTime(0.1)
        ->Repetitions(7);
}

// The cost of the entry point, which checks, traces and dispatches: a call through it beside a direct one.
void registerWrapper()
{
    static const uint8_t bits[1] = {0x5A};
    registerTimed("wrapper|entry", [](benchmark::State& state) {
        odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE);
        auto* volatile call = odxBitCountu8;
        for (auto _ : state)
            benchmark::DoNotOptimize(call(bits, 1));
    });
    registerTimed("wrapper|direct", [](benchmark::State& state) {
        auto* volatile call = odxBitCountu8C;
        for (auto _ : state)
            benchmark::DoNotOptimize(call(bits, 1));
    });
}

struct Subject {
    std::string size; // with the content, where that matters
    Measurement measurement;
};

class Benchmarks
{
public:
    explicit Benchmarks(const std::string& picture)
    {
        for (const Extent extent : {Extent{640, 480}, Extent{1920, 1080}}) {
            const std::string size = std::to_string(extent.width) + "x" + std::to_string(extent.height);
            noise_.push_back({size, {extent}});
            addPicture(size + " scene", extent, scene(extent));
            if (!picture.empty()) addPicture(size + " picture", extent, pictureFile(picture, extent));
        }
        for (const Row& row : rows_) {
            forSubjects(row, [&](const Subject& subject) { registerRow(row, subject); });
        }
        registerWrapper();
    }

    std::vector<Line> lines(const Reporter& times) const
    {
        std::vector<Line> lines;
        for (const Row& row : rows_) {
            forSubjects(row, [&](const Subject& subject) {
                Line line = {row.operation, subject.size, 0, {}, {}};
                for (const Column& column : columns_) {
                    const double time = times[nameOf("row", row.operation, subject.size, column.name)];
                    if (time > 0) line.columns.push_back({column.name, time});
                }
                for (const Peer& peer : peers_) {
                    const double time = times[nameOf("peer", peer.operation, subject.size, peer.library)];
                    if (row.operation == std::string(peer.operation) && time > 0)
                        line.peers.push_back({peer.library, time});
                }
                line.copy = times[nameOf("copy", row.operation, subject.size, "memcpy")];
                if (!line.columns.empty()) lines.push_back(line);
            });
        }
        return lines;
    }

private:
    void addPicture(const std::string& size, Extent extent, std::vector<uint8_t> pixels)
    {
        if (pixels.empty()) {
            std::cerr << "the picture cannot be read\n";
            exit(1);
        }
        pixels_.push_back(std::make_unique<std::vector<uint8_t>>(std::move(pixels)));
        pictures_.push_back({size, {extent, pixels_.back()->data()}});
    }

    template <class F>
    void forSubjects(const Row& row, F f) const
    {
        for (const Subject& subject : noise_)
            f(row.contentMatters ? Subject{subject.size + " noise", subject.measurement} : subject);
        if (!row.contentMatters) return;
        for (const Subject& subject : pictures_)
            f(subject);
    }

    void registerRow(const Row& row, const Subject& subject)
    {
        const Measurement measurement = subject.measurement;
        for (const Column& column : columns_) {
            registerTimed(nameOf("row", row.operation, subject.size, column.name), [=](benchmark::State& state) {
                column.select();
                Draw draw(measurement, [&](const std::function<void()>& operation) {
                    for (auto _ : state)
                        operation();
                });
                row.run(draw);
            });
        }
        for (const Peer& peer : peers_) {
            if (row.operation != std::string(peer.operation)) continue;
            registerTimed(nameOf("peer", peer.operation, subject.size, peer.library),
                          [=](benchmark::State& state) {
                              const std::function<void()> call = peer.prepare(measurement);
                              call(); // the peer allocates its destination now
                              for (auto _ : state)
                                  call();
                          });
        }
        registerTimed(nameOf("copy", row.operation, subject.size, "memcpy"), [=](benchmark::State& state) {
            Draw draw(measurement, [](const std::function<void()>&) {});
            row.run(draw);
            const size_t bytes = draw.bufferBytes() / 2; // a copy reads and writes
            // Neither at the same place of a page, which slows copies down, nor at that of a cache line.
            std::vector<uint8_t> memory(2 * bytes + 8192, 1);
            uint8_t* const from = memory.data() + -reinterpret_cast<uintptr_t>(memory.data()) % 4096;
            uint8_t* const to = from + bytes / 64 * 64 + 64 + (bytes / 64 % 64 < 32 ? 2048 : 0);
            for (auto _ : state) {
                memcpy(to, from, bytes);
                benchmark::ClobberMemory();
            }
        });
    }

    std::vector<Row> rows_ = test::allRows();
    std::vector<Column> columns_ = test::allColumns();
    std::vector<Peer> peers_ = allPeers();
    std::vector<Subject> noise_, pictures_;
    std::vector<std::unique_ptr<std::vector<uint8_t>>> pixels_;
};

// Takes an argument of the form --name=value out of the list; empty if it is not there.
std::string takeArgument(std::vector<char*>& arguments, const std::string& name)
{
    const std::string prefix = "--" + name + "=";
    for (size_t i = 1; i < arguments.size(); ++i) {
        const std::string argument = arguments[i];
        if (argument.compare(0, prefix.size(), prefix) != 0) continue;
        arguments.erase(arguments.begin() + static_cast<std::ptrdiff_t>(i));
        return argument.substr(prefix.size());
    }
    return {};
}

} // namespace

std::vector<Peer> allPeers()
{
    std::vector<Peer> peers;
    for (const auto& family : {colorPeers(), cornersPeers(), smoothingPeers()})
        peers.insert(peers.end(), family.begin(), family.end());
    return peers;
}

} // namespace odx::bench

int main(int argc, char** argv)
{
    using namespace odx::bench;
    static char interleaved[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments(argv, argv + argc);
    const std::string picture = takeArgument(arguments, "picture"), folder = takeArgument(arguments, "report");
    arguments.insert(arguments.begin() + 1, interleaved);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;

    const Benchmarks benchmarks(picture);
    Reporter times;
    benchmark::RunSpecifiedBenchmarks(&times);
    const std::vector<Line> lines = benchmarks.lines(times);
    std::cout << table(lines);
    const double entry = times["wrapper|entry"], direct = times["wrapper|direct"];
    if (entry > 0 && direct > 0)
        std::cout << "\nEntry point: " << entry - direct << " ns beyond a direct call of the implementation.\n";
    if (folder.empty()) return 0;
    std::ofstream(folder + "/benchmark.md") << table(lines);
    std::ofstream(folder + "/benchmark.svg") << chart(lines);
    std::cout << "\nTable and chart: " << folder << "/benchmark.md, " << folder << "/benchmark.svg\n";
    return 0;
}
