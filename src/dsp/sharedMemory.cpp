// Buffers shared with the remote processor: from the ION allocator, mapped here and registered with the remote
// call layer, so that the calls pass them on without a copy.
#include "dsp/services.h"
#include "dsp/stub.h"
#include "frame/log.h"
#include "frame/scratch.h"
#include "ondrix/modes.h"

#include <errno.h>
#include <limits.h>
#include <pthread.h>

using namespace odx;

namespace
{

constexpr size_t kPage = 4096;
constexpr size_t kEntries = 128;

struct SharedBuffer {
    void* address; // null: the entry is free
    int device;    // of the allocator
    void* mapping; // the address again
    size_t size;   // as it was asked for
    int descriptor;
};

SharedBuffer table[kEntries];
pthread_mutex_t tableMutex;
bool tableReady = false;

// Size of the mapping, or 0 when it cannot be had.
size_t mappedLength(size_t size)
{
    constexpr size_t kMost = INT_MAX / kPage * kPage; // the remote call layer counts with int
    return size <= kMost ? (size + kPage - 1) / kPage * kPage : 0;
}

bool enter(SharedBuffer buffer)
{
    if (pthread_mutex_lock(&tableMutex) != 0) return false;
    bool entered = false;
    for (SharedBuffer& entry : table) {
        if (entry.address != nullptr) continue;
        entry = buffer;
        entered = true;
        break;
    }
    pthread_mutex_unlock(&tableMutex);
    return entered;
}

// Tells the remote call layer of a buffer; a descriptor of -1 takes it back. The layer is part of the process, or
// comes with the stub, which must stay while it is called; without it there is nobody to tell.
bool registerBuffer(void* address, size_t length, int descriptor)
{
    static constexpr char kSymbol[] = "remote_register_buf";
    const remoting::StubInUse stub;
    void* symbol = platform::findSymbolInProcess(kSymbol);
    if (symbol == nullptr) symbol = dlsym_get(kSymbol);
    if (symbol == nullptr) return false;
    using Register = void(void* address, int size, int descriptor);
    reinterpret_cast<Register*>(symbol)(address, static_cast<int>(length), descriptor);
    return true;
}

// What an allocation has done so far; it is undone in reverse, from the last step that was reached.
enum Step { kNothing, kDevice, kDescriptor, kMapping, kAccess, kRegistration };

void release(const SharedBuffer& buffer, Step reached)
{
    const size_t length = mappedLength(buffer.size);
    if (reached >= kRegistration && !registerBuffer(buffer.address, length, -1)) {
        ODX_LOG(Error, "%s", "register_buf to unregister ion buffer failed\n");
    }
    if (reached >= kAccess && !platform::endBufferAccess(buffer.descriptor)) {
        ODX_LOG(Error, "%s", "mem_free_ion : failed to end DMA_BUF_IOCTL_SYNC\n");
    }
    if (reached >= kMapping) platform::unmap(buffer.mapping, length);
    if (reached >= kDescriptor) platform::closeDescriptor(buffer.descriptor);
    if (reached >= kDevice) ion_close(buffer.device);
}

// Takes the steps in order. Returns the last one that succeeded.
Step acquire(SharedBuffer& buffer)
{
    constexpr unsigned kHeapMask = 0x2000000, kCached = 1;
    const size_t length = mappedLength(buffer.size);

    buffer.device = platform::hasSharedAllocator() ? ion_open() : -1;
    if (buffer.device < 0) {
        ODX_LOG(Error, "%s", "mem_alloc_ion : Open ion device failed\n");
        return kNothing;
    }
    if (ion_alloc_fd(buffer.device, length, kPage, kHeapMask, kCached, &buffer.descriptor) != 0) {
        ODX_LOG(Error, "mem_alloc_ion : ION alloc length %zu\n", length);
        return kDevice;
    }
    buffer.address = buffer.mapping = platform::mapShared(buffer.descriptor, length);
    if (buffer.mapping == nullptr) {
        ODX_LOG(Error, "mem_alloc_ion : mmap call failed %d\n", errno);
        return kDescriptor;
    }
    if (!platform::startBufferAccess(buffer.descriptor)) {
        ODX_LOG(Error, "%s", "mem_alloc_ion : failed to start DMA_BUF_IOCTL_SYNC\n");
        return kMapping;
    }
    if (!registerBuffer(buffer.address, length, buffer.descriptor)) {
        ODX_LOG(Error, "mem_alloc_ion : Failed to register buffer with rpc %d\n", -1);
        return kAccess;
    }
    return kRegistration;
}

void install(void* (*allocate)(size_t, size_t), int (*free)(void*))
{
    odxSharedMemAlloc_ = odxSharedMemAllocR_ = allocate;
    odxSharedMemFree_ = odxSharedMemFreeR_ = free;
}

} // namespace

extern "C" {

void* odxSharedMemAllocX(size_t nBytes, size_t alignment)
{
    if (!tableReady || nBytes == 0 || alignment > kPage || mappedLength(nBytes) == 0) return nullptr;
    SharedBuffer buffer = {};
    buffer.size = nBytes;
    const Step reached = acquire(buffer);
    const bool aligned = reinterpret_cast<uintptr_t>(buffer.address) % kPage == 0;
    if (reached == kRegistration && aligned && enter(buffer)) return buffer.address;
    release(buffer, reached);
    return nullptr;
}

int odxSharedMemFreeX(void* ptr)
{
    if (ptr == nullptr || !tableReady || pthread_mutex_lock(&tableMutex) != 0) return -1;
    SharedBuffer found = {};
    for (SharedBuffer& entry : table) {
        if (entry.address != ptr) continue;
        found = entry;
        entry = {};
        break;
    }
    pthread_mutex_unlock(&tableMutex);
    if (found.address == nullptr) return -1;
    release(found, kRegistration);
    return 0;
}

int odxInitSharedMem_Xdsp()
{
    if (tableReady) return 0;
    if (pthread_mutex_init(&tableMutex, nullptr) != 0) return -1;
    for (SharedBuffer& entry : table)
        entry = {};
    tableReady = true;
    return 0;
}

void odxDeInitSharedMem_Xdsp()
{
    if (!tableReady) return;
    tableReady = false;
    pthread_mutex_destroy(&tableMutex);
}

void odxInitSharedMem(unsigned hwMask)
{
    if ((hwMask & (ONDRIX_HW_XDSP | ONDRIX_HW_GPU)) != ONDRIX_HW_XDSP) return;
    if (odxSharedMemAlloc_ == odxSharedMemAllocX) return; // a recovery passes here beside running calls
    if (odxInitSharedMem_Xdsp() == 0) install(odxSharedMemAllocX, odxSharedMemFreeX);
}

void odxDeInitSharedMem()
{
    if (odxSharedMemAlloc_ == odxSharedMemAllocX) odxDeInitSharedMem_Xdsp();
    install(nullptr, nullptr);
}

void odxCleanUpHW()
{
    ODXAZ9_deinit();
    odxDeInitSharedMem();
}
}
