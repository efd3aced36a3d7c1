// Who is measured against whom, and how: by the clock, or by the instructions that an emulator counts.
#ifndef ODX_BENCH_RACE_H
#define ODX_BENCH_RACE_H

#include <functional>
#include <stdint.h>
#include <string>
#include <vector>

namespace odx::bench
{

struct Contender {
    std::string name;
    std::function<void()> select; // makes its column the one that runs; may be empty
    std::function<void()> call;
    double nanoseconds = 0; // the least time of a call: of any one, or of a short batch
};

// How much time a contender gets: rounds of a slice, and no further round once its budget is
// spent. In seconds.
struct Effort {
    int rounds;
    double slice, budget;
};

// Times the contenders by turns, in an order drawn anew for each round, so that what else the machine does hits
// everyone alike.
void race(std::vector<Contender>& contenders, const Effort& effort);

// Prints the label and the number of instructions that the call executes, as a line; needs QEMU and the plugin
// in arm/.
void countInstructions(const std::string& label, const std::function<void()>& call);

} // namespace odx::bench

#endif
