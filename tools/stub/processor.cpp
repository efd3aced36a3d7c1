#include "processor.h"

#include "dsp/remoteEntries.h"
#include "frame/shared.h"
#include "ondrix/modes.h"
#include "platform/platform.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

using odx::current;
using odx::publish;

namespace
{

odxStubBehaviour behaviour;
odxStubCounts counts;
uint32_t callsUntilNow; // of the present behaviour
uint32_t returnsToFail; // of the present restart
uint32_t up;            // the processor was initialised, and did not restart since
uint32_t life;          // number of its restarts: a call that ends in another life than it began in is lost

uint32_t increment(uint32_t& counter)
{
    return __atomic_add_fetch(&counter, 1, __ATOMIC_SEQ_CST);
}

void restart()
{
    publish(returnsToFail, current(behaviour.failedReturns));
    publish(up, 0);
    increment(life);
    increment(counts.restarts);
}

uint32_t environmentNumber(const char* name)
{
    const char* const text = getenv(name);
    return text != nullptr ? static_cast<uint32_t>(strtol(text, nullptr, 0)) : 0;
}

__attribute__((constructor)) void behaveAsTheEnvironmentSays()
{
    odxStubBehaviour wanted = {};
    wanted.restartEvery = environmentNumber("ONDRIX_STUB_RESTART_EVERY");
    wanted.failedReturns = environmentNumber("ONDRIX_STUB_FAILED_RETURNS");
    wanted.failure = static_cast<int32_t>(environmentNumber("ONDRIX_STUB_FAILURE"));
    wanted.delayMicroseconds = environmentNumber("ONDRIX_STUB_DELAY");
    const char* const version = getenv("ONDRIX_STUB_VERSION");
    snprintf(wanted.version, sizeof wanted.version, "%s", version != nullptr ? version : "");
    odxStubBehave(&wanted);
}

} // namespace

namespace odx::stub
{

Call::Call() : life_(__atomic_load_n(&life, __ATOMIC_SEQ_CST)), arrival_(reach())
{
    increment(counts.calls);
    if (arrival_ != kDone) return;
    const uint32_t period = current(behaviour.restartEvery);
    if (period != 0 && increment(callsUntilNow) % period == 0) restart();
    if (const uint32_t delay = current(behaviour.delayMicroseconds)) usleep(delay);
    if (survived()) arrival_ = current(behaviour.failure);
}

bool Call::survived() const
{
    return __atomic_load_n(&life, __ATOMIC_SEQ_CST) == life_;
}

int Call::outcome() const
{
    if (!survived()) return kRestarted;
    increment(counts.completed);
    return kDone;
}

int reach()
{
    return current(up) != 0 ? kDone : kRestarted;
}

const char* version()
{
    static char own[10];
    if (behaviour.version[0] != '\0') return behaviour.version;
    odxGetVersion(own, sizeof own);
    return own;
}

} // namespace odx::stub

extern "C" {

// The processor's log is not the application's; but what is wrong there must not go unnoticed.
int __android_log_print(int priority, const char*, const char* format, ...)
{
    if (priority < odx::platform::kLogError) return 0;
    va_list arguments;
    va_start(arguments, format);
    char line[512];
    vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    return fprintf(stderr, "remote processor: %s\n", line);
}

void odxStubBehave(const odxStubBehaviour* newBehaviour)
{
    publish(behaviour.restartEvery, newBehaviour->restartEvery);
    publish(behaviour.failedReturns, newBehaviour->failedReturns);
    publish(behaviour.failure, newBehaviour->failure);
    publish(behaviour.delayMicroseconds, newBehaviour->delayMicroseconds);
    snprintf(behaviour.version, sizeof behaviour.version, "%.*s", int{sizeof behaviour.version - 1},
             newBehaviour->version);
    publish(callsUntilNow, 0);
}

void odxStubCount(odxStubCounts* newCounts)
{
    newCounts->calls = current(counts.calls);
    newCounts->completed = current(counts.completed);
    newCounts->restarts = current(counts.restarts);
    newCounts->initialisations = current(counts.initialisations);
    newCounts->powerMode = current(counts.powerMode);
}

int dspRT_initZ9_with_attributes(const ODXAZ9_ATTRIBUTE* attributes, int count)
{
    int32_t powerMode = -1;
    for (int i = 0; i < count; ++i) {
        if (attributes[i].identifier == ODXAZ9_POWER_MODE) powerMode = attributes[i].value;
    }
    publish(counts.powerMode, powerMode);
    increment(counts.initialisations);
    if (const uint32_t left = current(returnsToFail)) {
        publish(returnsToFail, left - 1);
        return -1;
    }
    // The operations that its implementations use in turn run here, too.
    odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE);
    publish(up, 1);
    return 0;
}

int dspRT_deinitZ9(void)
{
    publish(up, 0);
    return 0;
}
}
