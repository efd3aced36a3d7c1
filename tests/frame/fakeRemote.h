// A remote processor in place of src/dsp: it records what it is asked, and its variants are addresses without
// code.
#ifndef ODX_TESTS_FRAME_FAKE_REMOTE_H
#define ODX_TESTS_FRAME_FAKE_REMOTE_H

#include <stdint.h>
#include <string>
#include <vector>

namespace odx::test
{

struct FakeRemote {
    int openResult = -1; // what opening a session reports: there is none unless a test sets 0
    int powerMode = -1;  // of the open session
    std::vector<std::string> events;
    unsigned constraintChecks = 1;
    unsigned fillResult = 0;               // what filling the remote column reports
    std::vector<unsigned> sharedMemoryFor; // the masks that the shared memory was installed for

    std::vector<std::string> takeEvents();
};
extern FakeRemote fakeRemote;

// The routines of the internal table without remote counterpart, and one such public operation.
bool isRemote(uint32_t operation);

} // namespace odx::test

#endif
