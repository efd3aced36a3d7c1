// What was measured, as a table and as a chart.
#ifndef ODX_BENCH_REPORT_H
#define ODX_BENCH_REPORT_H

#include <string>
#include <utility>
#include <vector>

namespace odx::bench
{

// One line: an operation on one size and content. Times are in nanoseconds, the least of all repetitions.
struct Line {
    std::string operation, size;
    double copy = 0; // memcpy of as many bytes as the operation reads and writes
    std::vector<std::pair<std::string, double>> columns; // reference first, then SIMD targets, the best one first
    std::vector<std::pair<std::string, double>> peers;

    double reference() const { return columns.empty() ? 0 : columns.front().second; }
    double best() const { return columns.size() > 1 ? columns[1].second : reference(); }
    double bestPeer() const;
};

// A table in Markdown, line by line.
std::string tableHead();
std::string tableLine(const Line& line);
std::string chart(const std::vector<Line>& lines); // SVG: times as multiples of memcpy, logarithmic

} // namespace odx::bench

#endif
