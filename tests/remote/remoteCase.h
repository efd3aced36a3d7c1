// A process whose operations all go to the remote processor, and calls in it whose results are known.
#ifndef ODX_TESTS_REMOTE_REMOTE_CASE_H
#define ODX_TESTS_REMOTE_REMOTE_CASE_H

#include "dsp/remoteOperations.h"
#include "dsp/stub.h"
#include "ondrix.h"
#include "remote/lines.h"
#include "support/processors.h"

#include <gtest/gtest.h>

namespace odx::test
{

// Runs a test in a process where a mode is selected, whose log lines are taken.
inline void inMode(odxOperationMode mode, const std::function<void(Stub&, LogCapture&)>& body)
{
    onProcessor(kArmSimd, [&] {
        Stub stub;
        LogCapture log;
        ASSERT_EQ(0, odxSetOperationMode(mode));
        log.take();
        body(stub, log);
    });
}
inline void onRemote(const std::function<void(Stub&, LogCapture&)>& body)
{
    inMode(ONDRIX_OP_EXT_XDSP, body);
}

// Three words with 1 + 32 + 0 bits.
inline uint32_t countBits()
{
    static const uint32_t words[] = {0x8000, 0xFFFFFFFF, 0};
    return odxBitCountu32(words, 3);
}
constexpr uint32_t kBits = 33;

// Calls and replaces remote entries.
template <class Entry>
Entry* entry(void* pointer)
{
    return reinterpret_cast<Entry*>(pointer);
}
template <class Entry>
void setEntry(void*& pointer, Entry* entry)
{
    pointer = reinterpret_cast<void*>(entry);
}
// A stub that restarts at every so manieth call, and comes back after so many attempts.
inline odxStubBehaviour restarting(uint32_t every, uint32_t failedReturns = 0)
{
    odxStubBehaviour behaviour = {};
    behaviour.restartEvery = every;
    behaviour.failedReturns = failedReturns;
    return behaviour;
}
inline int countRemotely(uint32_t* words, uint32_t* count)
{
    return entry<decltype(ondrixadsp_odxBitCountu32X)>(pFnX_odxBitCountu32X)(words, 1, 1, count);
}

} // namespace odx::test

#endif
