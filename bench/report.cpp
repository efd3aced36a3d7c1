#include "report.h"

#include <algorithm>
#include <cmath>
#include <stdarg.h>
#include <stdio.h>

namespace odx::bench
{

namespace
{

// NOLINTNEXTLINE(cert-dcl50-cpp): formats like printf
[[gnu::format(printf, 2, 3)]] void append(std::string& text, const char* format, ...)
{
    char part[512];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(part, sizeof part, format, arguments);
    va_end(arguments);
    text += part;
}

// A ratio with as many digits as it deserves; a dash where one side was not measured.
std::string ratio(double a, double b)
{
    if (a <= 0 || b <= 0) return "-";
    std::string text;
    append(text, a / b < 10 ? "%.2f" : "%.1f", a / b);
    return text;
}

struct Bar {
    std::string name;
    double time;
    const char* colour;
};

std::vector<Bar> barsOf(const Line& line)
{
    static const char* const simdColours[] = {"#2a78b5", "#164d7a"};
    static const char* const peerColours[] = {"#d98032", "#b5562a"};
    std::vector<Bar> bars;
    for (size_t i = 0; i < line.columns.size(); ++i)
        bars.push_back(
            {line.columns[i].first, line.columns[i].second, i == 0 ? "#9aa5ad" : simdColours[(i - 1) % 2]});
    for (size_t i = 0; i < line.peers.size(); ++i)
        bars.push_back({line.peers[i].first, line.peers[i].second, peerColours[i % 2]});
    return bars;
}

} // namespace

double Line::bestPeer() const
{
    double best = 0;
    for (const auto& [name, time] : peers)
        best = best == 0 ? time : std::min(best, time);
    return best;
}

std::string tableHead()
{
    return "Times in microseconds, one thread, the least of many. `gain` is the reference's time and `lead` "
           "the "
           "fastest\npeer's time over the best SIMD column's (the reference's, where there is no other); `copies` "
           "is "
           "that column's time\nin copies of as many bytes as the operation reads and writes.\n\n"
           "| operation | size | reference | SIMD | peers | memcpy | gain | lead | copies |\n"
           "|---|---|--:|---|---|--:|--:|--:|--:|\n";
}

std::string tableLine(const Line& line)
{
    const auto listed = [](const std::vector<std::pair<std::string, double>>& entries, size_t from) {
        std::string list;
        for (size_t i = from; i < entries.size(); ++i)
            append(list, "%s%s %.1f", i == from ? "" : ", ", entries[i].first.c_str(), entries[i].second / 1e3);
        return list;
    };
    std::string text;
    append(text, "| %s | %s | %.1f | %s | %s | %.1f | %s | %s | %s |\n", line.operation.c_str(), line.size.c_str(),
           line.reference() / 1e3, listed(line.columns, 1).c_str(), listed(line.peers, 0).c_str(), line.copy / 1e3,
           ratio(line.reference(), line.best()).c_str(), ratio(line.bestPeer(), line.best()).c_str(),
           ratio(line.best(), line.copy).c_str());
    return text;
}

std::string chart(const std::vector<Line>& lines)
{
    constexpr double left = 330, plot = 640, bar = 9, gap = 10, top = 60, axisEnd = 512; // axis: 1/2 to 512 copies
    const auto x = [&](double copies) {
        return left + plot * std::log2(std::clamp(copies, 0.5, axisEnd) * 2) / std::log2(axisEnd * 2);
    };
    double height = top + 20;
    for (const Line& line : lines)
        height += bar * static_cast<double>(line.columns.size() + line.peers.size()) + gap;

    std::string svg;
    append(svg,
           "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"1060\" height=\"%.0f\" font-family=\"sans-serif\">\n"
           "<rect width=\"100%%\" height=\"100%%\" fill=\"white\"/>\n"
           "<text x=\"20\" y=\"24\" font-size=\"16\">Time of each operation in copies (memcpy) of the same bytes; "
           "shorter is better</text>\n",
           height);
    for (double copies = 0.5; copies <= axisEnd; copies *= 2) {
        append(svg,
               "<path d=\"M%.1f %.0fV%.0f\" stroke=\"#e3e6e8\"/><text x=\"%.1f\" y=\"%.0f\" font-size=\"10\" "
               "text-anchor=\"middle\">%g</text>\n",
               x(copies), top - 8, height - 10, x(copies), top - 14, copies);
    }
    double y = top;
    for (const Line& line : lines) {
        if (line.copy <= 0) continue;
        const auto bars = barsOf(line);
        append(svg, "<text x=\"%.0f\" y=\"%.1f\" font-size=\"11\" text-anchor=\"end\">%s, %s</text>\n", left - 8,
               y + bar * static_cast<double>(bars.size()) / 2 + 4, line.operation.c_str(), line.size.c_str());
        for (const Bar& b : bars) {
            append(svg,
                   "<rect x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\" fill=\"%s\"/>"
                   "<text x=\"%.1f\" y=\"%.1f\" font-size=\"8\">%s %.1f</text>\n",
                   left, y, x(b.time / line.copy) - left, bar - 1, b.colour, x(b.time / line.copy) + 3,
                   y + bar - 2, b.name.c_str(), b.time / line.copy);
            y += bar;
        }
        y += gap;
    }
    return svg + "</svg>\n";
}

} // namespace odx::bench
