#ifndef ODX_TESTS_SUPPORT_THREADS_H
#define ODX_TESTS_SUPPORT_THREADS_H

#include <thread>
#include <vector>

namespace odx::test
{

// body(i) in `count` threads at once.
template <class Body>
void inThreads(unsigned count, Body&& body)
{
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < count; ++i)
        threads.emplace_back([&body, i] { body(i); });
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace odx::test

#endif
