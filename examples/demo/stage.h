// What a section of the demo works with: the picture, the columns to compare, and the table and sheet it adds to.
#ifndef ONDRIX_EXAMPLES_DEMO_STAGE_H
#define ONDRIX_EXAMPLES_DEMO_STAGE_H

#include "common/library.h"
#include "common/picture.h"
#include "common/sheet.h"

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

// An operation's name and the operation, for tables and calls.
#define NAMED(operation) #operation, operation

namespace demo
{

class Stage
{
public:
    Stage(const Picture& picture, std::vector<Column> columns);

    const Picture& picture() const { return picture_; }
    const Plane<uint8_t>& grey() const { return grey_; }
    // Pictures of one size that follow each other; empty when there are none.
    const std::vector<Picture>& sequence() const { return sequence_; }
    void setSequence(std::vector<Picture> sequence) { sequence_ = std::move(sequence); }
    const Rectangle& detail() const { return detail_; } // a small window with much to see

    void beginSection(const std::string& title, const std::string& note);
    // A picture to compare results with; no call was made for it.
    void showSource(const std::string& title, const std::string& note, const Picture& picture);
    // Runs an operation that writes these buffers in every column, and times it by the pixels that it works on.
    Outcome run(const std::string& operation, const std::vector<Buffer>& buffers, size_t pixels,
                const std::function<odxStatus()>& call) const
    {
        return compareColumns(columns_, operation, buffers, pixels, call);
    }
    template <class T>
    Outcome run(const std::string& operation, Plane<T>& destination, const std::function<odxStatus()>& call) const
    {
        const size_t pixels = static_cast<size_t>(destination.width()) * destination.height();
        return run(operation, {{destination.data(), destination.bytes()}}, pixels, call);
    }
    // A line of the table and a tile.
    void show(const std::string& title, const Outcome& outcome, const Picture& result,
              const std::vector<Point>& marks = {});
    // A line below the table and in the head of the sheet.
    void addFact(const std::string& name, const std::string& text) { facts_.push_back({name, text}); }

    const std::vector<Column>& columns() const { return columns_; }
    unsigned comparisons() const { return comparisons_; }
    unsigned identical() const { return identical_; }
    unsigned refused() const { return refused_; }
    // The implementations that a column's calls took, in words: "19 ORLAN, 2 CPU".
    std::string implementations(size_t column) const;
    const std::vector<Fact>& facts() const { return facts_; }
    Sheet& sheet() { return sheet_; }

private:
    Picture viewOf(const Picture& picture, const std::vector<Point>& marks = {}) const;
    void printLine(const Outcome& outcome) const;

    const Picture& picture_;
    Plane<uint8_t> grey_;
    std::vector<Picture> sequence_;
    Rectangle detail_;
    std::vector<Column> columns_;
    std::vector<std::map<std::string, unsigned>> implementations_; // calls of each, for each column
    unsigned comparisons_ = 0, identical_ = 0, refused_ = 0;
    std::vector<Fact> facts_;
    Sheet sheet_;
};

// For the operations that have no status to return.
template <class... Parameters, class... Arguments>
odxStatus done(void (*operation)(Parameters...), Arguments... arguments)
{
    operation(arguments...);
    return ONDRIX_SUCCESS;
}

} // namespace demo

#endif
