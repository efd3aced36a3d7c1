#include "support/childProcess.h"

#include <gtest/gtest.h>

#include <regex>

#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

namespace odx::test
{

ChildResult runInChild(const std::function<void()>& body)
{
    int ends[2];
    if (pipe(ends) != 0) abort();
    fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) abort();
    if (child == 0) {
        close(ends[0]);
        dup2(ends[1], STDOUT_FILENO); // GoogleTest reports there
        dup2(ends[1], STDERR_FILENO);
        body();
        fflush(nullptr);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    close(ends[1]);
    ChildResult result;
    char part[4096];
    for (ssize_t n; (n = read(ends[0], part, sizeof part)) > 0;)
        result.output.append(part, static_cast<size_t>(n));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    result.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return result;
}

void expectEnd(const std::string& text, const std::function<void()>& body)
{
    const ChildResult child = runInChild(body);
    EXPECT_EQ(1, child.exitStatus);
    EXPECT_TRUE(std::regex_search(child.output, std::regex(text))) << child.output;
}

} // namespace odx::test
