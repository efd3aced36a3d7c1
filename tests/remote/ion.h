// The shared-memory allocator of a device, and the system calls on its buffers, as a test scripts them. Every call
// is an event; descriptors and mappings are real ones, so that what is not given back can be counted.
#ifndef ODX_TESTS_REMOTE_ION_H
#define ODX_TESTS_REMOTE_ION_H

#include <string>
#include <vector>

namespace odx::test
{

struct Ion {
    enum Accident { kNone, kOpen, kAlloc, kMap, kMisaligned, kStartAccess, kEndAccess };

    bool present = false;      // else the calls on its buffers are the system's
    Accident accident = kNone; // happens at every call of its kind
    std::vector<std::string> events;
    int devices = 0, buffers = 0, mappings = 0, registrations = 0; // that exist

    std::vector<std::string> takeEvents();
    static size_t openDescriptors();                                     // of the process
    static void registerBuffer(void* address, int size, int descriptor); // of the remote call layer
};
extern Ion ion;

} // namespace odx::test

#endif
