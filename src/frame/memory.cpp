// Aligned blocks for applications, from memory shared with the remote processor where there is such, else from the
// system.
#include "ondrix/memory.h"

#include "frame/heap.h"
#include "frame/scratch.h"

extern "C" {

void* (*odxSharedMemAlloc_)(size_t nBytes, size_t alignment) = nullptr;
int (*odxSharedMemFree_)(void* ptr) = nullptr;
void* (*odxSharedMemAllocR_)(size_t nBytes, size_t alignment) = nullptr;
int (*odxSharedMemFreeR_)(void* ptr) = nullptr;
}

namespace
{

// The byte before an aligned block holds its distance from the raw block, 2 to alignment + 1.
constexpr size_t kMaxAlignment = 128;

bool sharedMemoryInstalled()
{
    return odxSharedMemAlloc_ != nullptr && odxSharedMemFree_ != nullptr;
}

} // namespace

extern "C" {

void* odxMemAlign(size_t nBytes, size_t alignment)
{
    const bool powerOfTwo = alignment != 0 && (alignment & (alignment - 1)) == 0;
    if (!powerOfTwo || alignment > kMaxAlignment || nBytes > SIZE_MAX - alignment - 1) return nullptr;
    auto* const raw = static_cast<uint8_t*>(odx::heapAlloc(nBytes + alignment + 1));
    if (raw == nullptr) return nullptr;

    const size_t distance = alignment + 1 - ((reinterpret_cast<uintptr_t>(raw) + alignment + 1) & (alignment - 1));
    raw[distance - 1] = static_cast<uint8_t>(distance);
    return raw + distance;
}

void odxMemAlignFree(void* ptr)
{
    if (ptr == nullptr) return;
    auto* const block = static_cast<uint8_t*>(ptr);
    odx::heapFree(block - block[-1]);
}

void* odxMemAlloc(size_t nBytes, size_t alignment)
{
    if (sharedMemoryInstalled()) {
        void* const shared = odxSharedMemAlloc_(nBytes, alignment);
        if (shared != nullptr) return shared;
    }
    return odxMemAlign(nBytes, alignment);
}

void odxMemFree(void* ptr)
{
    if (ptr == nullptr) return;
    if (sharedMemoryInstalled() && odxSharedMemFree_(ptr) == 0) return;
    odxMemAlignFree(ptr);
}
}
