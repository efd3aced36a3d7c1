// A contact sheet: a head, and sections of captioned pictures with bars that compare times.
#ifndef ONDRIX_EXAMPLES_SHEET_H
#define ONDRIX_EXAMPLES_SHEET_H

#include "common/picture.h"

#include <string>
#include <vector>

namespace demo
{

namespace colours
{
constexpr Rgb kPaper{20, 23, 29}, kPanel{29, 33, 41}, kLine{54, 61, 74};
constexpr Rgb kText{234, 237, 243}, kDim{146, 156, 173};
constexpr Rgb kBars[] = {{224, 164, 88}, {78, 201, 176}, {120, 160, 240}}; // one for each column
constexpr Rgb kGood{126, 211, 110}, kBad{240, 88, 80}, kMarker{255, 206, 84}, kMark{255, 72, 88};
} // namespace colours

struct Bar {
    std::string label;
    double value;
    std::string text;
};

enum class Mark { none, good, bad };

struct Tile {
    Picture picture;
    std::string title, note,
        badge; // the badge stands at the right of the title, the mark at the right of the note
    Mark mark = Mark::none;
    std::vector<Bar> bars;
    std::string message; // shown in place of the picture
};

struct Fact {
    std::string name, text;
    Rgb nameColour = colours::kDim;
    Mark mark = Mark::none;
};

class Sheet
{
public:
    static constexpr int kWidth = 1600, kTileWidth = 364, kTileHeight = 242;

    void setHead(const Picture& picture, const std::string& title, const std::vector<Fact>& facts);
    void addSection(const std::string& title, const std::string& note) { sections_.push_back({title, note, {}}); }
    void add(Tile tile) { sections_.back().tiles.push_back(std::move(tile)); }

    Picture draw() const;

private:
    struct Section {
        std::string title, note;
        std::vector<Tile> tiles;
    };

    Picture headPicture_;
    std::string headTitle_;
    std::vector<Fact> facts_;
    std::vector<Section> sections_;
};

} // namespace demo

#endif
