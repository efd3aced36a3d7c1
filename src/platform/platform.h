// The outside world: everything that the library asks of the operating system goes through this header.
#ifndef ODX_PLATFORM_PLATFORM_H
#define ODX_PLATFORM_PLATFORM_H

#include <stddef.h>
#include <stdint.h>

// The platform's own functions. On Android they are the system's; elsewhere hostDefaults.cpp brings weak
// definitions that a program or a preloaded library may replace, so every call goes through the dynamic linker.
extern "C" {
int __android_log_print(int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 3, 4)));
int __system_property_get(const char* name, char* value);

// The shared-memory allocator. Failures are negative. Android has it only in processes that load its library.
#if defined(__ANDROID__)
#define ODX_MAY_BE_ABSENT __attribute__((weak))
#else
#define ODX_MAY_BE_ABSENT
#endif
int ion_open(void) ODX_MAY_BE_ABSENT;
int ion_alloc_fd(int device, size_t length, size_t alignment, unsigned int heapMask, unsigned int flags,
                 int* bufferDescriptor) ODX_MAY_BE_ABSENT;
int ion_close(int device) ODX_MAY_BE_ABSENT;
}

namespace odx::platform
{

enum LogPriority { kLogDebug = 3, kLogInfo = 4, kLogError = 6 };

constexpr size_t kPropertyValueMax = 92; // what __system_property_get may write, terminator included

// The integer value of a system property; 0 when it is absent or no number.
int propertyNumber(const char* name);

// Reads the start of the processor description in one read: at most `capacity` bytes into `buffer`.
// Returns the number of bytes, or -1 when it cannot be opened or read.
long readProcessorDescription(char* buffer, size_t capacity);

// Number of processors that are online, or -1 when the system does not tell.
long onlineProcessors();

// Wall-clock time in microseconds.
int64_t wallClockMicroseconds();

void sleepSeconds(unsigned seconds);

// A thread of its own for one function, with the system's default attributes. False when there is none to be had.
using Thread = uintptr_t;
bool startThread(Thread* thread, void* (*run)(void* context), void* context);
void joinThread(Thread thread);

// Dynamic loading. `loaderError` tells what went wrong last, and is never null.
void* openLibrary(const char* path); // lazy binding
void closeLibrary(void* handle);
void* findSymbol(void* handle, const char* symbol);
void* findSymbolInProcess(const char* symbol); // in what is loaded for everybody
const char* loaderError();

// Whether this process has the shared-memory allocator at all.
bool hasSharedAllocator();

// Buffers of the shared-memory allocator. `mapShared` maps one for reading and writing, and gives null on failure,
// with errno set; access by this processor is bracketed by a start and an end.
void* mapShared(int descriptor, size_t length);
void unmap(void* address, size_t length);
void closeDescriptor(int descriptor);
bool startBufferAccess(int descriptor);
bool endBufferAccess(int descriptor);

} // namespace odx::platform

#endif
