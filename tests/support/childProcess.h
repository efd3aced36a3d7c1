// Runs a piece of a test in a process of its own: for state that exists once per process, and for calls that end
// it.
#ifndef ODX_TESTS_SUPPORT_CHILD_PROCESS_H
#define ODX_TESTS_SUPPORT_CHILD_PROCESS_H

#include <functional>
#include <string>

namespace odx::test
{

struct ChildResult {
    int exitStatus;     // what it exited with; -signal when a signal ended it
    std::string output; // what it wrote to stdout and stderr
};

// Forks; the child runs `body` and exits with 0, or with 1 when an expectation of GoogleTest failed in it. What it
// prints, GoogleTest's failure messages included, is the output.
ChildResult runInChild(const std::function<void()>& body);

// Expects the body to end the process with 1, with a text in the output: a regular expression.
void expectEnd(const std::string& text, const std::function<void()>& body);

} // namespace odx::test

#endif
