// Log lines of the library, captured through its own log function.
#ifndef ODX_TESTS_SUPPORT_LOG_CAPTURE_H
#define ODX_TESTS_SUPPORT_LOG_CAPTURE_H

#include <ostream>
#include <string>
#include <vector>

namespace odx::test
{

struct LogLine {
    int priority;
    std::string tag;
    std::string text; // formatted, with the line feed that some messages end with

    bool operator==(const LogLine& other) const
    {
        return priority == other.priority && tag == other.tag && text == other.text;
    }
};
std::ostream& operator<<(std::ostream& stream, const LogLine& line);

// While it lives, log lines of all threads go into `lines` instead of stderr. Captures nest; the innermost one
// takes the lines. The program that links this file supplies __android_log_print in place of the library's
// default.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<LogLine> take(); // what came since the last take

private:
    LogCapture* outer_;
    std::vector<LogLine> lines_;
    friend void capture(int, const char*, std::string);
};

} // namespace odx::test

#endif
