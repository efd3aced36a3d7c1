// What a buffer shared with the remote processor asks of the system.
#include "platform/platform.h"

#include <linux/dma-buf.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace odx::platform
{

namespace
{

bool synchronise(int descriptor, uint64_t flags)
{
    dma_buf_sync request = {};
    request.flags = flags;
    return ioctl(descriptor, DMA_BUF_IOCTL_SYNC, &request) == 0;
}

} // namespace

bool hasSharedAllocator()
{
#if defined(__ANDROID__)
    return ion_open != nullptr && ion_alloc_fd != nullptr && ion_close != nullptr;
#else
    return true;
#endif
}

void* mapShared(int descriptor, size_t length)
{
    void* const address = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    return address != MAP_FAILED ? address : nullptr;
}

void unmap(void* address, size_t length)
{
    munmap(address, length);
}

void closeDescriptor(int descriptor)
{
    close(descriptor);
}

bool startBufferAccess(int descriptor)
{
    return synchronise(descriptor, DMA_BUF_SYNC_RW | DMA_BUF_SYNC_START);
}

bool endBufferAccess(int descriptor)
{
    return synchronise(descriptor, DMA_BUF_SYNC_RW | DMA_BUF_SYNC_END);
}

} // namespace odx::platform
