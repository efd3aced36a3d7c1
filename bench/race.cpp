#include "race.h"

#include <algorithm>
#include <chrono>
#include <dlfcn.h>
#include <errno.h>
#include <pthread.h>
#include <random>
#include <stdio.h>
#include <unistd.h>

namespace odx::bench
{

namespace
{

constexpr double kBatch = 20e-6; // seconds, beside which reading the clock is nothing

struct Runner {
    Contender* contender;
    uint64_t calls = 1; // of a batch
    double spent = 0;

    double batch() const
    {
        using Clock = std::chrono::steady_clock;
        const Clock::time_point start = Clock::now();
        for (uint64_t i = 0; i < calls; ++i)
            contender->call();
        return std::chrono::duration<double>(Clock::now() - start).count();
    }
    void select() const
    {
        if (contender->select) contender->select();
    }
    // Batches for as long as a slice, one at the least.
    void run(double slice)
    {
        for (double end = spent + slice; spent < end;) {
            const double seconds = batch(), time = seconds * 1e9 / static_cast<double>(calls);
            spent += seconds;
            if (contender->nanoseconds == 0 || time < contender->nanoseconds) contender->nanoseconds = time;
        }
    }
};

bool counting = false;

} // namespace

void race(std::vector<Contender>& contenders, const Effort& effort)
{
    static std::mt19937 random(1);
    std::vector<Runner> runners;
    for (Contender& contender : contenders) {
        Runner runner{&contender};
        runner.select();
        contender.call(); // what is made at the first call is there from now on
        while (runner.batch() < kBatch)
            runner.calls *= 2;
        runners.push_back(runner);
    }
    for (int round = 0; round < effort.rounds; ++round) {
        std::shuffle(runners.begin(), runners.end(), random);
        for (Runner& runner : runners) {
            if (runner.spent >= effort.budget) continue;
            runner.select();
            runner.run(effort.slice);
        }
    }
}

void countInstructions(const std::string& label, const std::function<void()>& call)
{
    constexpr long kMark = 0x4F44; // a system call that only the plugin knows
    printf("%s\t", label.c_str());
    fflush(stdout);
    counting = true;
    syscall(kMark, 0);
    call();
    syscall(kMark, 1);
    counting = false;
}

} // namespace odx::bench

// Threads would lose some of each other's counts, so that nobody gets one while instructions are counted:
// operations that ask for one then do all of the work themselves.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*),
                              void* context) noexcept
{
    if (odx::bench::counting) return EAGAIN;
    static auto* const create = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    return create(thread, attributes, run, context);
}
