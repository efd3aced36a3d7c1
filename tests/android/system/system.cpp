// What the library takes from Android's own libraries.
#include <stdio.h>

#define ODX_SYSTEM extern "C" __attribute__((visibility("default")))

ODX_SYSTEM int __android_log_print(int, const char*, const char* format, ...)
{
    return fputs(format, stderr);
}

ODX_SYSTEM int __system_property_get(const char*, char* value)
{
    value[0] = '\0';
    return 0;
}
