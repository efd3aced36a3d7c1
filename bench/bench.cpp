// ondrix_bench [--filter=REGEX] [--quick] [--large] [--picture=FILE] [--report=FOLDER] [--count]
//
// Measures every operation on one thread: by the reference, by each SIMD target, beside memcpy of the same bytes
// and the nearest calls of other libraries. What counts is the least time.
//   --filter   only operations whose name, size and content have a part that matches ("Median", "u8.*1920x1080")
//   --quick    small images and little time, for a first look
//   --large    the pictures of cameras in place of the usual sizes
//   --picture  a picture to look at, too, where content matters
//   --report   leaves a table and a chart in the folder
//   --count    counts instructions in place of time: a line of operation, size, who and count for each. For QEMU
//              with the plugin in arm/.
#include "content.h"
#include "peers.h"
#include "race.h"
#include "report.h"

#include "cpu/ondrixDotC.h"
#include "ondrix/descriptors.h"
#include "ondrix/modes.h"

#include <chrono>
#include <fstream>
#include <iostream>
#include <map>
#include <regex>
#include <unistd.h>

namespace odx::bench
{

namespace
{

using test::Column;
using test::Draw;
using test::Extent;
using test::Measurement;
using test::Row;

struct Options {
    std::string filter, picture, report;
    bool quick = false, large = false, count = false;

    std::vector<Extent> extents() const
    {
        if (quick) return {{640, 480}};
        if (large) return {{4000, 3000}, {8192, 6144}};
        return {{640, 480}, {1920, 1080}};
    }
    Effort effort() const { return quick ? Effort{6, 0.002, 0.04} : Effort{16, 0.005, 0.25}; }
};

// An operation on an image size and content.
struct Subject {
    Row row;
    Extent extent;
    std::string content; // "" where it does not matter

    std::string size() const
    {
        return std::to_string(extent.width) + "x" + std::to_string(extent.height) +
               (content.empty() ? "" : " " + content);
    }
};

std::vector<Subject> subjectsOf(const Options& options)
{
    const std::regex filter(options.filter);
    std::vector<Subject> subjects;
    for (const Row& row : test::allRows()) {
        std::vector<std::string> contents = {""};
        if (row.contentMatters) contents = {"noise", "scene"};
        if (row.contentMatters && !options.picture.empty()) contents.push_back("picture");
        for (const std::string& content : contents) {
            for (const Extent extent : options.extents()) {
                const Subject subject{row, extent, content};
                if (std::regex_search(row.operation + (" " + subject.size()), filter)) subjects.push_back(subject);
            }
        }
    }
    return subjects;
}

class Benchmark
{
public:
    explicit Benchmark(const Options& options) : options_(options) {}

    // Times of one subject. Columns share their images, and so their places in memory.
    Line time(const Subject& subject)
    {
        const Measurement measurement = measurementOf(subject);
        std::vector<Contender> contenders;
        for (const Column& column : columns_)
            contenders.push_back({column.name, column.select, {}});
        const std::vector<Peer> peers = Peers::of(subject.row.operation);
        for (const Peer& peer : peers)
            contenders.push_back({peer.library, {}, peer.prepare(measurement)});
        columns_.front().select();
        Draw* drawn = nullptr;
        Draw draw(measurement, [&](const std::function<void()>& operation) {
            for (size_t i = 0; i < columns_.size(); ++i)
                contenders[i].call = operation;
            operation();
            contenders.push_back({"memcpy", {}, copyOf(drawn->bytesMoved())});
            race(contenders, options_.effort());
        });
        drawn = &draw;
        subject.row.run(draw);

        Line line = {subject.row.operation, subject.size(), contenders.back().nanoseconds, {}, {}};
        for (size_t i = 0; i + 1 < contenders.size(); ++i)
            (i < columns_.size() ? line.columns : line.peers)
                .push_back({contenders[i].name, contenders[i].nanoseconds});
        return line;
    }

    // Each column starts from the same images, so that its count does not depend on the others.
    void count(const Subject& subject)
    {
        const Measurement measurement = measurementOf(subject);
        const std::string label = subject.row.operation + ("\t" + subject.size()) + "\t";
        for (const Column& column : columns_) {
            column.select();
            Draw draw(measurement, [&](const std::function<void()>& operation) {
                countInstructions(label + column.name, operation);
            });
            subject.row.run(draw);
        }
        for (const Peer& peer : Peers::of(subject.row.operation)) {
            const Call call = peer.prepare(measurement);
            call();
            countInstructions(label + peer.library, call);
        }
    }

private:
    // A copy that moves as many bytes. A copy reads and writes.
    Call copyOf(size_t bytesMoved)
    {
        const size_t bytes = bytesMoved / 2;
        memory_.resize(2 * bytes + 8192, 1);
        // Neither at the same place of a page, which slows copies down, nor at that of a cache line.
        uint8_t* const from = memory_.data() + -reinterpret_cast<uintptr_t>(memory_.data()) % 4096;
        uint8_t* const to = from + bytes / 64 * 64 + 64 + (bytes / 64 % 64 < 32 ? 2048 : 0);
        return [=] {
            memcpy(to, from, bytes);
            asm volatile("" : : : "memory");
        };
    }

    Measurement measurementOf(const Subject& subject)
    {
        if (subject.content.empty() || subject.content == "noise") return {subject.extent};
        std::vector<uint8_t>& pixels = pictures_[subject.size()];
        if (pixels.empty())
            pixels =
                subject.content == "scene" ? scene(subject.extent) : pictureFile(options_.picture, subject.extent);
        if (pixels.empty()) {
            std::cerr << "the picture cannot be read\n";
            exit(1);
        }
        return {subject.extent, pixels.data()};
    }

    Options options_;
    std::vector<Column> columns_ = test::allColumns();
    std::map<std::string, std::vector<uint8_t>> pictures_; // made when they are first asked for
    std::vector<uint8_t> memory_;
};

// The cost of the entry point, which checks, traces and dispatches: a call through it beside a direct one.
double entryCost(const Effort& effort)
{
    static const uint8_t bits[1] = {0x5A};
    odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE);
    const auto calling = [](auto* volatile call) {
        return [call] {
            const auto result = call(bits, 1);
            asm volatile("" : : "r"(&result) : "memory");
        };
    };
    std::vector<Contender> contenders = {{"entry", {}, calling(odxBitCountu8)},
                                         {"direct", {}, calling(odxBitCountu8C)}};
    race(contenders, effort);
    return contenders[0].nanoseconds - contenders[1].nanoseconds;
}

// How far it is, for whoever waits.
class Progress
{
public:
    explicit Progress(size_t total) : total_(total) {}
    void show(size_t done, const std::string& next) const
    {
        const double spent = std::chrono::duration<double>(Clock::now() - start_).count();
        std::string left;
        if (done > 0) {
            const int seconds =
                static_cast<int>(spent / static_cast<double>(done) * static_cast<double>(total_ - done));
            left = ", " + std::to_string(seconds / 60) + " min " + std::to_string(seconds % 60) + " s left";
        }
        if (terminal_) {
            std::cerr << "\r\033[K" << done << " of " << total_ << left << ": " << next << std::flush;
        } else if (done % 20 == 0) {
            std::cerr << done << " of " << total_ << left << '\n';
        }
    }
    void hide() const
    {
        if (terminal_) std::cerr << "\r\033[K" << std::flush;
    }

private:
    using Clock = std::chrono::steady_clock;
    size_t total_;
    bool terminal_ = isatty(STDERR_FILENO) != 0;
    Clock::time_point start_ = Clock::now();
};

int timeAll(const Options& options)
{
    const std::vector<Subject> subjects = subjectsOf(options);
    Benchmark benchmark(options);
    const Progress progress(subjects.size());
    std::vector<Line> lines;
    std::cout << tableHead() << std::flush;
    for (const Subject& subject : subjects) {
        progress.show(lines.size(), subject.row.operation + (" " + subject.size()));
        lines.push_back(benchmark.time(subject));
        progress.hide();
        std::cout << tableLine(lines.back()) << std::flush;
    }
    std::cout << "\nEntry point: " << entryCost(options.effort())
              << " ns beyond a direct call of the implementation.\n";
    if (options.report.empty()) return 0;
    std::ofstream table(options.report + "/benchmark.md");
    table << tableHead();
    for (const Line& line : lines)
        table << tableLine(line);
    std::ofstream(options.report + "/benchmark.svg") << chart(lines);
    std::cout << "\nTable and chart: " << options.report << "/benchmark.md, " << options.report
              << "/benchmark.svg\n";
    return 0;
}

int countAll(const Options& options)
{
    const std::vector<Subject> subjects = subjectsOf(options);
    Benchmark benchmark(options);
    const Progress progress(subjects.size());
    for (size_t i = 0; i < subjects.size(); ++i) {
        progress.show(i, subjects[i].row.operation);
        benchmark.count(subjects[i]);
    }
    progress.hide();
    return 0;
}

bool parse(int argc, char** argv, Options& options)
{
    const std::map<std::string, bool*> flags = {
        {"--quick", &options.quick}, {"--large", &options.large}, {"--count", &options.count}};
    const std::map<std::string, std::string*> values = {{"--filter", &options.filter},
                                                        {"--benchmark_filter", &options.filter},
                                                        {"--picture", &options.picture},
                                                        {"--report", &options.report}};
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const size_t equals = argument.find('=');
        const auto flag = flags.find(argument);
        const auto value = values.find(argument.substr(0, equals));
        if (flag != flags.end()) {
            *flag->second = true;
        } else if (equals != std::string::npos && value != values.end()) {
            *value->second = argument.substr(equals + 1);
        } else {
            std::cerr << "usage: " << argv[0]
                      << " [--filter=REGEX] [--quick] [--large] [--picture=FILE] [--report=FOLDER] [--count]\n";
            return false;
        }
    }
    return true;
}

} // namespace

} // namespace odx::bench

int main(int argc, char** argv)
{
    odx::bench::Options options;
    try {
        if (!odx::bench::parse(argc, argv, options)) return 2;
        return options.count ? odx::bench::countAll(options) : odx::bench::timeAll(options);
    } catch (const std::exception& error) { // a filter that is no expression
        fprintf(stderr, "ondrix_bench: %s\n", error.what());
        return 2;
    }
}
