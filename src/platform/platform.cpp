#include "platform/platform.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <pthread.h>
#include <stdlib.h>
#include <sys/time.h>
#include <unistd.h>

namespace odx::platform
{

namespace
{

const char* processorDescriptionPath()
{
#if !defined(__ANDROID__)
    const char* replacement = getenv("ONDRIX_CPUINFO");
    if (replacement != nullptr && replacement[0] != '\0') return replacement;
#endif
    return "/proc/cpuinfo";
}

} // namespace

int propertyNumber(const char* name)
{
    char value[kPropertyValueMax] = "";
    if (__system_property_get(name, value) <= 0) return 0;
    const long number = strtol(value, nullptr, 10);
    if (number > INT_MAX) return INT_MAX;
    if (number < INT_MIN) return INT_MIN;
    return static_cast<int>(number);
}

long readProcessorDescription(char* buffer, size_t capacity)
{
    const int file = open(processorDescriptionPath(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return -1;
    ssize_t length;
    do {
        length = read(file, buffer, capacity);
    } while (length < 0 && errno == EINTR);
    close(file);
    return length;
}

long onlineProcessors()
{
    return sysconf(_SC_NPROCESSORS_ONLN);
}

int64_t wallClockMicroseconds()
{
    timeval now;
    gettimeofday(&now, nullptr);
    return int64_t{now.tv_sec} * 1000000 + now.tv_usec;
}

void sleepSeconds(unsigned seconds)
{
    sleep(seconds);
}

bool startThread(Thread* thread, void* (*run)(void*), void* context)
{
    pthread_t started;
    if (pthread_create(&started, nullptr, run, context) != 0) return false;
    *thread = static_cast<Thread>(started);
    return true;
}

void joinThread(Thread thread)
{
    pthread_join(static_cast<pthread_t>(thread), nullptr);
}

} // namespace odx::platform
