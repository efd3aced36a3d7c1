// The processor behind the stub: whether it is up, and what a call finds there.
#ifndef ONDRIX_STUB_PROCESSOR_H
#define ONDRIX_STUB_PROCESSOR_H

#include "control.h"

namespace odx::stub
{

constexpr int kDone = 0, kOutOfMemory = 1, kRestarted = 104;

// A call of an operation, from its arrival to its end.
class Call
{
public:
    Call();
    // 0, or the code that the call returns: now, and once its work is done.
    int arrival() const { return arrival_; }
    int outcome() const;

private:
    bool survived() const; // no restart so far

    uint32_t life_;
    int arrival_;
};

// 0 or the code of a call that asks the processor for something small.
int reach();

const char* version();

} // namespace odx::stub

#endif
