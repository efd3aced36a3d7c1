#include "remote/ion.h"

#include <errno.h>
#include <filesystem>
#include <linux/dma-buf.h>
#include <map>
#include <mutex>
#include <set>
#include <stdarg.h>
#include <stdio.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

// What a sanitizer's runtime does to hear of mappings; null where there is none.
extern "C" {
[[gnu::weak]] void* __interceptor_mmap(void*, size_t, int, int, int, off_t);
[[gnu::weak]] int __interceptor_munmap(void*, size_t);
}

namespace odx::test
{

Ion ion;

namespace
{

constexpr size_t kMisalignment = 16;

// While one thread uses the allocator, others may map memory of their own.
std::mutex tablesMutex;
std::set<int> bufferDescriptors;
std::map<void*, size_t> mapped;

__attribute__((format(printf, 1, 2))) void happened(const char* format, ...)
{
    char text[200];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    ion.events.push_back(text);
}

bool isBuffer(int descriptor)
{
    if (!ion.present || descriptor < 0) return false;
    const std::lock_guard<std::mutex> lock(tablesMutex);
    return bufferDescriptors.count(descriptor) != 0;
}

void* systemMap(void* address, size_t length, int protection, int flags, int descriptor, off_t offset)
{
    if (__interceptor_mmap != nullptr) {
        return __interceptor_mmap(address, length, protection, flags, descriptor, offset);
    }
#if defined(SYS_mmap2)
    return reinterpret_cast<void*>(
        syscall(SYS_mmap2, address, length, protection, flags, descriptor, static_cast<long>(offset / 4096)));
#else
    return reinterpret_cast<void*>(syscall(SYS_mmap, address, length, protection, flags, descriptor, offset));
#endif
}

int systemUnmap(void* address, size_t length)
{
    if (__interceptor_munmap != nullptr) return __interceptor_munmap(address, length);
    return static_cast<int>(syscall(SYS_munmap, address, length));
}

} // namespace

std::vector<std::string> Ion::takeEvents()
{
    return std::exchange(events, {});
}

size_t Ion::openDescriptors()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(all), end(all)));
}

void Ion::registerBuffer(void* address, int size, int descriptor)
{
    ion.registrations += descriptor >= 0 ? 1 : -1;
    happened("%s %d", descriptor >= 0 ? "register" : "unregister", size);
    const std::lock_guard<std::mutex> lock(tablesMutex);
    if (mapped.count(address) == 0) happened("an address that is not mapped");
}

} // namespace odx::test

using namespace odx::test;

extern "C" {

int ion_open()
{
    happened("open");
    if (ion.accident == Ion::kOpen) return -ENODEV;
    ++ion.devices;
    return memfd_create("ion", 0);
}

int ion_close(int device)
{
    happened("close");
    --ion.devices;
    return close(device);
}

int ion_alloc_fd(int, size_t length, size_t alignment, unsigned heapMask, unsigned flags, int* descriptor)
{
    happened("alloc %zu %zu %x %u", length, alignment, heapMask, flags);
    if (ion.accident == Ion::kAlloc) return -ENOMEM;
    *descriptor = memfd_create("buffer", 0);
    {
        const std::lock_guard<std::mutex> lock(tablesMutex);
        bufferDescriptors.insert(*descriptor);
    }
    return ftruncate(*descriptor, static_cast<off_t>(length));
}

void* mmap(void* address, size_t length, int protection, int flags, int descriptor, off_t offset) noexcept
{
    if (!isBuffer(descriptor)) return systemMap(address, length, protection, flags, descriptor, offset);
    happened("map %zu", length);
    if (flags != MAP_SHARED || protection != (PROT_READ | PROT_WRITE) || offset != 0) happened("wrong flags");
    if (ion.accident == Ion::kMap) {
        errno = EAGAIN;
        return MAP_FAILED;
    }
    auto* result = static_cast<char*>(systemMap(address, length, protection, flags, descriptor, 0));
    if (ion.accident == Ion::kMisaligned) result += kMisalignment;
    {
        const std::lock_guard<std::mutex> lock(tablesMutex);
        mapped[result] = length;
    }
    ++ion.mappings;
    return result;
}

int munmap(void* address, size_t length) noexcept
{
    {
        const std::lock_guard<std::mutex> lock(tablesMutex);
        if (mapped.erase(address) == 0) return systemUnmap(address, length);
    }
    happened("unmap %zu", length);
    --ion.mappings;
    const auto page = reinterpret_cast<uintptr_t>(address) & ~uintptr_t{kMisalignment};
    return systemUnmap(reinterpret_cast<void*>(page), length);
}

int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    if (!isBuffer(descriptor) || request != DMA_BUF_IOCTL_SYNC) {
        return static_cast<int>(syscall(SYS_ioctl, descriptor, request, argument));
    }
    const auto flags = static_cast<unsigned>(static_cast<dma_buf_sync*>(argument)->flags);
    happened("sync %u", flags);
    const bool end = (flags & DMA_BUF_SYNC_END) != 0;
    return ion.accident == (end ? Ion::kEndAccess : Ion::kStartAccess) ? -1 : 0;
}
}
