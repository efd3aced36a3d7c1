#include "frame/log.h"

#include "frame/shared.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

extern "C" {

uint8_t libLogPrint = 0;
uint8_t libLogPrintX = 0;

int odxLogAssert(const char* file, int line, int priority, const char* format, ...)
{
    char text[512];
    int prefix = 0;
    if (line != 0) prefix = snprintf(text, sizeof text, "%4d| ", line);

    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(text + prefix, sizeof text - (size_t)prefix, format, arguments);
    va_end(arguments);

    const char* slash = strrchr(file, '/');
    char tag[128 + 1];
    snprintf(tag, sizeof tag, "%s", slash != nullptr ? slash + 1 : file);
    __android_log_print(priority, tag, "%s", text);
    return length;
}
}

namespace odx
{

void readLogSwitch()
{
    const uint8_t on = platform::propertyNumber("vendor.runtime.ondrix.log") != 0 ? 1 : 0;
    publish(libLogPrint, on);
    publish(libLogPrintX, on);
}

void fatalAssertion(const char* source, int line, const char* text)
{
    ODX_LOG(Error, "%s@%d: %s Assertion failed\n", source, line, text);
    exit(1);
}

} // namespace odx
