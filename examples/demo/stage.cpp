#include "demo/stage.h"

#include "common/view.h"

#include <cstdio>

namespace demo
{

namespace
{

constexpr int kDetailWidth = 32, kDetailHeight = 20;

std::string number(const char* format, double value)
{
    char text[32];
    snprintf(text, sizeof text, format, value);
    return text;
}

// Three significant digits, as far as they are worth anything.
std::string timeText(double ms)
{
    return number(ms < 0.9995 ? "%.3f" : ms < 9.995 ? "%.2f" : ms < 99.95 ? "%.1f" : "%.0f", ms);
}

std::string speedUpText(const Outcome& outcome)
{
    const double times = outcome.speedUp();
    return times == 0 ? "" : number(times < 99.95 ? "%.1fx" : "%.0fx", times);
}

} // namespace

Stage::Stage(const Picture& picture, std::vector<Column> columns)
    : picture_(picture), grey_(greyOf(picture)), detail_(mostDetailed(grey_, kDetailWidth, kDetailHeight)),
      columns_(std::move(columns)), implementations_(columns_.size())
{
    printf("\n%-42s", "operation");
    for (const Column& column : columns_)
        printf("  %-19s", (column.name + ", ms/Mpx").c_str());
    printf("  %-8s  %s\n", "speed-up", "bytes");
}

void Stage::beginSection(const std::string& title, const std::string& note)
{
    printf("%s\n", title.c_str());
    sheet_.addSection(title, note);
}

Picture Stage::viewOf(const Picture& picture, const std::vector<Point>& marks) const
{
    // Some results lack the last row or column.
    const bool whole = picture.width() >= picture_.width() - 1 && picture.height() >= picture_.height() - 1;
    const Rectangle none{0, 0, 0, 0};
    return View(picture.width(), picture.height(), whole ? detail_ : none, Sheet::kTileWidth, Sheet::kTileHeight)
        .of(picture, marks);
}

void Stage::showSource(const std::string& title, const std::string& note, const Picture& picture)
{
    Tile tile;
    tile.picture = viewOf(picture);
    tile.title = title;
    tile.note = note;
    sheet_.add(std::move(tile));
}

void Stage::show(const std::string& title, const Outcome& outcome, const Picture& result,
                 const std::vector<Point>& marks)
{
    ++comparisons_;
    identical_ += outcome.identical;
    refused_ += outcome.refused();
    printLine(outcome);

    Tile tile;
    tile.title = title;
    tile.note = outcome.operation;
    tile.mark = outcome.identical ? Mark::good : Mark::bad;
    if (outcome.refused()) {
        tile.message = outcome.trials.front().refusal;
    } else {
        tile.picture = viewOf(result, marks);
        tile.badge = speedUpText(outcome);
    }
    for (size_t i = 0; i < outcome.trials.size(); ++i) {
        const Trial& trial = outcome.trials[i];
        ++implementations_[i][trial.implementation];
        if (outcome.refused()) continue;
        const bool timed = trial.msPerMegapixel != 0;
        tile.bars.push_back({trial.implementation, trial.msPerMegapixel,
                             timed ? timeText(trial.msPerMegapixel) + " ms/Mpx" : "too small to time"});
    }
    sheet_.add(std::move(tile));
}

void Stage::printLine(const Outcome& outcome) const
{
    printf("  %-40s", outcome.operation.c_str());
    for (const Trial& trial : outcome.trials) {
        const std::string time = trial.msPerMegapixel != 0 ? timeText(trial.msPerMegapixel) : "-";
        printf("  %-10s %-8s", trial.implementation.c_str(), time.c_str());
    }
    printf("  %-8s  %s\n", speedUpText(outcome).c_str(), outcome.identical ? "identical" : "DIFFERENT");
    if (outcome.refused()) printf("    refused: %s\n", outcome.trials.front().refusal.c_str());
    fflush(stdout);
}

std::string Stage::implementations(size_t column) const
{
    std::string text;
    for (const auto& [name, calls] : implementations_[column])
        text += (text.empty() ? "" : ", ") + std::to_string(calls) + " " + name;
    return text;
}

} // namespace demo
