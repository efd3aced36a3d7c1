#include "common/library.h"

#include "common/loopback.h"

#include <algorithm>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <set>

namespace
{

struct LogLine {
    std::string tag, text;
};

std::mutex logMutex;
bool listening = false;
std::vector<LogLine> heard;
std::set<std::string> said;

constexpr int kErrorPriority = 6;
constexpr const char *kTraceTag = "ondrix_runtime_log", *kMessageTag = "ondrix_lib_log";

} // namespace

// In place of the platform's: while an operation is watched its lines are kept; other error lines go to stderr,
// each text once.
extern "C" __attribute__((visibility("default"), format(printf, 3, 4))) int
__android_log_print(int priority, const char* tag, const char* format, ...);

extern "C" int __android_log_print(int priority, const char* tag, const char* format, ...)
{
    char text[1024];
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    text[strcspn(text, "\n")] = '\0';

    const std::lock_guard lock(logMutex);
    if (listening) {
        heard.push_back({tag, text});
    } else if (priority >= kErrorPriority && strcmp(tag, kMessageTag) == 0 && said.insert(text).second) {
        fprintf(stderr, "%s: %s\n", tag, text);
    }
    return length;
}

namespace demo
{

namespace
{

std::vector<LogLine> linesOf(const std::function<void()>& action)
{
    {
        const std::lock_guard lock(logMutex);
        heard.clear();
        listening = true;
    }
    action();
    const std::lock_guard lock(logMutex);
    listening = false;
    return heard;
}

// The trace line of a call is the operation's name, an underscore and the implementation's. Operations that the
// operation calls leave lines of their own: their implementations follow, if they are others.
std::string implementationIn(const std::vector<LogLine>& lines, const std::string& operation)
{
    std::string own = "?";
    std::set<std::string> called;
    for (const LogLine& line : lines) {
        const size_t end = line.text.rfind('_');
        if (line.tag != kTraceTag || end == std::string::npos) continue;
        const std::string implementation = line.text.substr(end + 1);
        if (line.text.substr(0, end) == operation) {
            own = implementation;
        } else {
            called.insert(implementation);
        }
    }
    called.erase(own);
    for (const std::string& implementation : called)
        own += "+" + implementation;
    return own;
}

// Lines that the remote path writes on its way to another implementation are no refusals.
bool isRefusal(const LogLine& line)
{
    const auto startsWith = [&](const char* start) { return line.text.rfind(start, 0) == 0; };
    return line.tag == kMessageTag && (startsWith("Assertion failed @") || startsWith("Error at "));
}

std::string refusalIn(const std::vector<LogLine>& lines, odxStatus status)
{
    for (const LogLine& line : lines)
        if (isRefusal(line)) return line.text;
    switch (status) {
    case ONDRIX_SUCCESS:
        return "";
    case ONDRIX_BAD_PARAMETER:
        return "status 3: bad parameter";
    case ONDRIX_NO_MEMORY:
        return "status 5: no memory";
    default:
        return "status " + std::to_string(status);
    }
}

Trial tried(const std::string& operation, const std::function<odxStatus()>& call)
{
    odxStatus status = ONDRIX_SUCCESS;
    const long remoteBefore = loopbackCalls();
    const std::vector<LogLine> lines = linesOf([&] { status = call(); });
    Trial trial;
    trial.implementation = implementationIn(lines, operation);
    if (trial.implementation == "XDSP" && remoteBefore >= 0 && loopbackCalls() == remoteBefore)
        trial.implementation += " failed"; // and the library did the work on the processor here
    trial.refusal = refusalIn(lines, status);
    return trial;
}

using Bytes = std::vector<unsigned char>;

Bytes copyOf(const std::vector<Buffer>& buffers)
{
    Bytes bytes;
    for (const Buffer& buffer : buffers) {
        const auto* const data = static_cast<const unsigned char*>(buffer.data);
        bytes.insert(bytes.end(), data, data + buffer.bytes);
    }
    return bytes;
}

void restore(const std::vector<Buffer>& buffers, const Bytes& bytes)
{
    const unsigned char* from = bytes.data();
    for (const Buffer& buffer : buffers) {
        memcpy(buffer.data, from, buffer.bytes);
        from += buffer.bytes;
    }
}

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Seconds of one call, from as many as fill a few milliseconds.
double secondsPerCall(const std::function<odxStatus()>& call)
{
    constexpr double kTurn = 0.005;
    const Clock::time_point start = Clock::now();
    unsigned calls = 0;
    double seconds = 0;
    do {
        call();
        ++calls;
        seconds = secondsSince(start);
    } while (seconds < kTurn);
    return seconds / calls;
}

// The columns take turns, so that a slow moment of the machine meets all of them. The best turn counts.
void timeColumns(const std::vector<Column>& columns, size_t pixels, const std::function<odxStatus()>& call,
                 std::vector<Trial>& trials)
{
    constexpr double kEnough = 0.1; // seconds for one operation
    const Clock::time_point start = Clock::now();
    do {
        for (size_t i = 0; i < columns.size(); ++i) {
            selectMode(columns[i].mode, false);
            const double ms = secondsPerCall(call) * 1e9 / static_cast<double>(pixels);
            double& best = trials[i].msPerMegapixel;
            best = best == 0 ? ms : std::min(best, ms);
        }
    } while (secondsSince(start) < kEnough);
}

} // namespace

int selectMode(odxOperationMode mode, bool trace)
{
    setenv("VENDOR_RUNTIME_ONDRIX_LOG", trace ? "1" : "0", 1); // the library reads it when a mode is selected
    return odxSetOperationMode(mode);
}

std::string hardwareInWords(unsigned mask)
{
    static constexpr struct {
        unsigned bit;
        const char* words;
    } kBits[] = {{ONDRIX_HW_SIMD, "SIMD"},
                 {ONDRIX_HW_VFP, "floating point"},
                 {ONDRIX_HW_ARMV7, "ARMv7 or later"},
                 {ONDRIX_HW_MOBILE, "supported mobile target"},
                 {ONDRIX_HW_XDSP, "DSP session"},
                 {ONDRIX_HW_GPU, "GPU"}};
    std::string words;
    for (const auto& entry : kBits)
        if ((mask & entry.bit) != 0) words += (words.empty() ? "" : ", ") + std::string(entry.words);
    return words.empty() ? "nothing beyond the plain processor" : words;
}

double Outcome::speedUp() const
{
    if (trials.size() < 2 || trials[1].msPerMegapixel == 0) return 0;
    return trials[0].msPerMegapixel / trials[1].msPerMegapixel;
}

Outcome compareColumns(const std::vector<Column>& columns, const std::string& operation,
                       const std::vector<Buffer>& buffers, size_t pixels, const std::function<odxStatus()>& call)
{
    const Bytes before = copyOf(buffers);
    Bytes first, last;
    Outcome outcome;
    outcome.operation = operation;
    for (const Column& column : columns) {
        selectMode(column.mode, true);
        restore(buffers, before);
        outcome.trials.push_back(tried(operation, call));
        last = copyOf(buffers);
        if (first.empty()) first = last;
        if (last != first || outcome.trials.back().refusal != outcome.trials.front().refusal)
            outcome.identical = false;
    }
    if (!outcome.refused() && pixels >= kFewestTimedPixels) {
        timeColumns(columns, pixels, call, outcome.trials);
        restore(buffers, last); // timed calls may have worked in place
    }
    return outcome;
}

} // namespace demo
