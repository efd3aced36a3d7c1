// The library as the examples use it: selecting modes, listening to what it logs, comparing and timing its
// columns.
#ifndef ONDRIX_EXAMPLES_LIBRARY_H
#define ONDRIX_EXAMPLES_LIBRARY_H

#include <ondrix.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace demo
{

// A way of running every operation.
struct Column {
    std::string name; // "reference"
    odxOperationMode mode;
    std::string modeName;
};

// Selects a mode, with or without the trace of calls. Returns what odxSetOperationMode returns.
int selectMode(odxOperationMode mode, bool trace);

// The bits of the hardware mask in words.
std::string hardwareInWords(unsigned mask);

// What one column made of an operation.
struct Trial {
    std::string implementation; // what the call took, in the library's own words; "?" when it did not say
    std::string refusal;        // the library's line, or the status, when the arguments were refused; else empty
    double msPerMegapixel = 0;  // the best of several calls; 0 when not measured
};

struct Outcome {
    std::string operation;
    std::vector<Trial> trials; // one for each column
    bool identical = true;     // the same bytes, or the same refusal, from all columns

    bool refused() const { return !trials.front().refusal.empty(); }
    // How many times as fast as the first column the second was, also where both took the same implementation: its
    // inner loops may differ. 0 when that was not measured.
    double speedUp() const;
};

// Images with fewer pixels are not timed: the cost of a call would be the greater part of it.
constexpr size_t kFewestTimedPixels = 4096;

// Memory that an operation writes.
struct Buffer {
    void* data;
    size_t bytes;
};

// Runs an operation in every column, each time from the same bytes in the buffers, compares what they wrote, and
// times them, taking turns. Operations without a status return ONDRIX_SUCCESS from `call`. Afterwards the buffers
// hold what the last column wrote.
Outcome compareColumns(const std::vector<Column>& columns, const std::string& operation,
                       const std::vector<Buffer>& buffers, size_t pixels, const std::function<odxStatus()>& call);

} // namespace demo

#endif
