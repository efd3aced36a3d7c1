#include "common/sheet.h"

#include "common/canvas.h"

#include <algorithm>

namespace demo
{

namespace
{

constexpr int kColumns = 4;
constexpr int kGap = 24;
constexpr int kMargin = (Sheet::kWidth - kColumns * Sheet::kTileWidth - (kColumns - 1) * kGap) / 2;
constexpr int kLetter = 12; // advance of a small letter
constexpr int kMarkWidth = 16;
constexpr int kLine = 20;
constexpr int kBarsTop = 8, kBarsBottom = 26;
constexpr size_t kNoteLetters = (Sheet::kTileWidth - kMarkWidth - 6) / kLetter;

void drawMark(Picture& sheet, int x, int y, Mark mark)
{
    if (mark == Mark::good) drawTick(sheet, x, y, colours::kGood);
    if (mark == Mark::bad) drawCross(sheet, x, y, colours::kBad);
}

int columnX(size_t column)
{
    return kMargin + static_cast<int>(column) * (Sheet::kTileWidth + kGap);
}

void drawMessage(Picture& sheet, const Rectangle& panel, const std::string& message)
{
    constexpr int kInset = 14;
    write(sheet, panel.x + kInset, panel.y + kInset, TextSize::small, colours::kBad, "refused");
    int y = panel.y + kInset + kLine + 6;
    for (const std::string& line : wrapped(message, static_cast<size_t>((panel.width - 2 * kInset) / kLetter))) {
        write(sheet, panel.x + kInset, y, TextSize::small, colours::kDim, line);
        y += kLine;
    }
}

// Label, bar and value of each column; the longest bar is the slowest.
void drawBars(Picture& sheet, int x, int y, const std::vector<Bar>& bars)
{
    double most = 0;
    size_t label = 0, text = 0;
    for (const Bar& bar : bars) {
        most = std::max(most, bar.value);
        label = std::max(label, bar.label.size());
        text = std::max(text, bar.text.size());
    }
    const int left = static_cast<int>(label) * kLetter + 6;
    const int room = Sheet::kTileWidth - left - static_cast<int>(text) * kLetter - 8;
    for (size_t i = 0; i < bars.size(); ++i, y += kLine) {
        const Rgb colour = colours::kBars[std::min(i, std::size(colours::kBars) - 1)];
        write(sheet, x, y, TextSize::small, colour, bars[i].label);
        writeRight(sheet, x + Sheet::kTileWidth, y, TextSize::small, colours::kText, bars[i].text);
        if (most <= 0 || room <= 0) continue;
        const int length = std::max(2, static_cast<int>(room * bars[i].value / most));
        fill(sheet, {x + left, y + 1, length, 12}, colour);
    }
}

void drawTile(Picture& sheet, int x, int y, size_t noteLines, const Tile& tile)
{
    const Rectangle panel{x, y, Sheet::kTileWidth, Sheet::kTileHeight};
    fill(sheet, panel, colours::kPanel);
    if (!tile.message.empty()) {
        drawMessage(sheet, panel, tile.message);
    } else {
        place(sheet, x + (panel.width - tile.picture.width()) / 2, y + (panel.height - tile.picture.height()) / 2,
              tile.picture);
    }
    y = panel.bottom() + 10;
    write(sheet, x, y, TextSize::small, colours::kText, tile.title);
    writeRight(sheet, panel.right(), y, TextSize::small, colours::kBars[1], tile.badge);
    y += kLine;
    drawMark(sheet, panel.right() - kMarkWidth, y, tile.mark);
    for (const std::string& line : wrapped(tile.note, kNoteLetters)) {
        write(sheet, x, y, TextSize::small, colours::kDim, line);
        y += kLine;
    }
    drawBars(sheet, x, panel.bottom() + 10 + static_cast<int>(noteLines + 1) * kLine + kBarsTop, tile.bars);
}

// The tiles of one row share the height of the tallest caption.
struct Row {
    size_t first, count, noteLines, bars;

    int height() const
    {
        const int barHeight = bars == 0 ? 0 : kBarsTop + static_cast<int>(bars) * kLine;
        return Sheet::kTileHeight + 10 + static_cast<int>(noteLines + 1) * kLine + barHeight + kBarsBottom;
    }
};

std::vector<Row> rowsOf(const std::vector<Tile>& tiles)
{
    std::vector<Row> rows;
    for (size_t first = 0; first < tiles.size(); first += kColumns) {
        Row row{first, std::min<size_t>(kColumns, tiles.size() - first), 1, 0};
        for (size_t i = first; i < first + row.count; ++i) {
            row.noteLines = std::max(row.noteLines, wrapped(tiles[i].note, kNoteLetters).size());
            row.bars = std::max(row.bars, tiles[i].bars.size());
        }
        rows.push_back(row);
    }
    return rows;
}

constexpr int kHeadTop = 36, kSectionHead = 56;

int headHeight(size_t facts)
{
    return kHeadTop + std::max(Sheet::kTileHeight, 62 + static_cast<int>(facts) * 26) + 40;
}

} // namespace

void Sheet::setHead(const Picture& picture, const std::string& title, const std::vector<Fact>& facts)
{
    headPicture_ = picture;
    headTitle_ = title;
    facts_ = facts;
}

Picture Sheet::draw() const
{
    int height = headHeight(facts_.size());
    for (const Section& section : sections_) {
        height += kSectionHead;
        for (const Row& row : rowsOf(section.tiles))
            height += row.height();
    }
    Picture sheet(kWidth, height, colours::kPaper);

    int y = kHeadTop;
    fill(sheet, {kMargin, y, kTileWidth, kTileHeight}, colours::kPanel);
    place(sheet, kMargin + (kTileWidth - headPicture_.width()) / 2, y + (kTileHeight - headPicture_.height()) / 2,
          headPicture_);
    const int left = columnX(1);
    write(sheet, left, y, TextSize::large, colours::kText, headTitle_);
    y += 62;
    for (const Fact& fact : facts_) {
        write(sheet, left, y, TextSize::small, fact.nameColour, fact.name);
        write(sheet, left + 13 * kLetter, y, TextSize::small, colours::kText, fact.text);
        drawMark(sheet, left + (14 + static_cast<int>(fact.text.size())) * kLetter, y, fact.mark);
        y += 26;
    }

    y = headHeight(facts_.size());
    for (const Section& section : sections_) {
        fill(sheet, {kMargin, y - 14, kWidth - 2 * kMargin, 2}, colours::kLine);
        write(sheet, kMargin, y + 6, TextSize::small, colours::kText, section.title);
        const int titleEnd = kMargin + textWidth(section.title, TextSize::small);
        write(sheet, std::max(columnX(1), titleEnd + 2 * kLetter), y + 6, TextSize::small, colours::kDim,
              section.note);
        y += kSectionHead - 14;
        for (const Row& row : rowsOf(section.tiles)) {
            for (size_t i = 0; i < row.count; ++i)
                drawTile(sheet, columnX(i), y, row.noteLines, section.tiles[row.first + i]);
            y += row.height();
        }
        y += 14;
    }
    return sheet;
}

} // namespace demo
