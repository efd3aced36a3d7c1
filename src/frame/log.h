// Log lines of the library.
#ifndef ODX_FRAME_LOG_H
#define ODX_FRAME_LOG_H

#include "platform/platform.h"

#define ODX_LIB_LOG "ondrix_lib_log"         // library messages and argument failures
#define ODX_RUNTIME_LOG "ondrix_runtime_log" // the trace of dispatched calls, timing
#define ODX_PLATFORM_LOG "ondrix_PLATFORM"   // the override library

// Logs on the library's tag: ODX_LOG(Error, "%s failed", name). The format must be a literal.
#define ODX_LOG(priority, ...) __android_log_print(odx::platform::kLog##priority, ODX_LIB_LOG, __VA_ARGS__)

extern "C" {
extern uint8_t libLogPrint;  // the trace is on
extern uint8_t libLogPrintX; // the same for the remote variants, which tell when they do not send a call

// Writes one line of at most 511 bytes: the line number, unless it is 0, and the message. The tag is the base name
// of `file`. Returns the length that formatting reported.
int odxLogAssert(const char* file, int line, int priority, const char* format, ...)
    __attribute__((format(printf, 4, 5)));
}

namespace odx
{

// Sets both from the property that switches the trace.
void readLogSwitch();

// Logs a violated internal assumption and ends the process with exit status 1.
[[noreturn]] void fatalAssertion(const char* source, int line, const char* text);

} // namespace odx

// An internal assumption of a reference implementation. The source name and line are part of the log's text.
#define ODX_FATAL_ASSERT(source, line, condition)                        \
    do {                                                                 \
        if (!(condition)) odx::fatalAssertion(source, line, #condition); \
    } while (0)

#endif
