#include "support/logCapture.h"

#include <mutex>
#include <stdarg.h>
#include <stdio.h>

namespace odx::test
{

namespace
{
std::mutex mutex;
LogCapture* innermost = nullptr;
} // namespace

std::ostream& operator<<(std::ostream& stream, const LogLine& line)
{
    return stream << line.priority << ' ' << line.tag << ": \"" << line.text << '"';
}

LogCapture::LogCapture()
{
    const std::lock_guard lock(mutex);
    outer_ = innermost;
    innermost = this;
}

LogCapture::~LogCapture()
{
    const std::lock_guard lock(mutex);
    innermost = outer_;
}

std::vector<LogLine> LogCapture::take()
{
    const std::lock_guard lock(mutex);
    std::vector<LogLine> taken;
    taken.swap(lines_);
    return taken;
}

void capture(int priority, const char* tag, std::string text)
{
    const std::lock_guard lock(mutex);
    if (innermost != nullptr) {
        innermost->lines_.push_back({priority, tag, std::move(text)});
    } else {
        fprintf(stderr, "%d/%s: %s\n", priority, tag, text.c_str());
    }
}

} // namespace odx::test

extern "C" __attribute__((visibility("default"))) int __android_log_print(int priority, const char* tag,
                                                                          const char* format, ...)
{
    char text[2048];
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    odx::test::capture(priority, tag, text);
    return length;
}
