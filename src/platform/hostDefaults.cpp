// Stand-ins for the Android functions on other systems. Each is weak and visible, so that a program, a test or a
// preloaded library takes over by defining a function of the same name.
#if !defined(__ANDROID__)

#include "platform/platform.h"

#include <errno.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define ODX_HOST_DEFAULT __attribute__((weak, visibility("default")))

namespace
{

char priorityLetter(int priority)
{
    static constexpr char kLetters[] = "??VDIWEF";
    return priority >= 0 && priority < 8 ? kLetters[priority] : '?';
}

// The environment variable that stands for a property: "ro.board.platform" is RO_BOARD_PLATFORM.
bool variableName(const char* property, char* variable, size_t capacity)
{
    const size_t length = strlen(property);
    if (length >= capacity) return false;
    for (size_t i = 0; i <= length; ++i) {
        const char c = property[i];
        if (c >= 'a' && c <= 'z') {
            variable[i] = static_cast<char>(c - 'a' + 'A');
        } else {
            const bool kept = (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '\0';
            variable[i] = kept ? c : '_';
        }
    }
    return true;
}

} // namespace

extern "C" {

// One line on stderr. Some messages bring their line feed along, others leave it to the log.
ODX_HOST_DEFAULT int __android_log_print(int priority, const char* tag, const char* format, ...)
{
    char text[1024];
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    if (length < 0) return length;

    const size_t written = strlen(text);
    const bool ended = written > 0 && text[written - 1] == '\n';
    return fprintf(stderr, "%c/%s: %s%s", priorityLetter(priority), tag, text, ended ? "" : "\n");
}

ODX_HOST_DEFAULT int __system_property_get(const char* name, char* value)
{
    char variable[256];
    const char* text = variableName(name, variable, sizeof variable) ? getenv(variable) : nullptr;
    if (text == nullptr) text = "";
    snprintf(value, odx::platform::kPropertyValueMax, "%s", text);
    return static_cast<int>(strlen(value));
}

// A device without the shared-memory allocator.
ODX_HOST_DEFAULT int ion_open(void)
{
    errno = ENODEV;
    return -1;
}

ODX_HOST_DEFAULT int ion_alloc_fd(int, size_t, size_t, unsigned int, unsigned int, int*)
{
    return -ENODEV;
}

ODX_HOST_DEFAULT int ion_close(int)
{
    return -ENODEV;
}
}

#endif
