// The scratch pool: 32 blocks that are lent, taken back and kept.
#include "frame/scratch.h"

#include "frame/heap.h"

#include <algorithm>
#include <atomic>
#include <pthread.h>
#include <string.h>

namespace
{

constexpr uint32_t kMaxPreAlloc = 33177600;
constexpr uint32_t kPoolMarker = 0xCDCDCDCD;
constexpr uint32_t kSystemMarker = 0xABABABAB;

// Stands just below every block that is lent.
struct Header {
    uint32_t marker;
    void* origin; // the pool's entry, or what the system allocator returned
};
static_assert(sizeof(Header) == 2 * sizeof(void*));

struct Entry {
    uint8_t* raw; // null until the entry is used first
    uint32_t rawSize;
    uint8_t* usable;
    uint32_t capacity;           // the largest request served; `usable` has room for it
    std::atomic<uint32_t> inUse; // read ahead of the mutex, which alone decides
    pthread_mutex_t mutex;       // held while the block is lent; guards all of the above
};

Entry pool[32];
std::atomic<uint8_t> poolReady{0};

// Users, creation and destruction. The entries' mutexes outlive the pool, so that a request may run into its
// destruction.
pthread_mutex_t usersMutex = PTHREAD_MUTEX_INITIALIZER;
uint32_t users = 0;
bool entryMutexesExist = false;

Header* headerOf(void* block)
{
    return static_cast<Header*>(block) - 1;
}

void* lend(uint8_t* usable, uint32_t marker, void* origin)
{
    *headerOf(usable) = {marker, origin};
    return usable;
}

// The first address in a raw block that is aligned and leaves room for the header.
uint8_t* usableIn(uint8_t* raw, uint32_t alignment)
{
    const uintptr_t past = reinterpret_cast<uintptr_t>(raw) + sizeof(Header);
    return raw + sizeof(Header) + (-past & (alignment - 1));
}

// What to ask the system allocator for; 0 when it is more than an entry can record.
uint32_t rawSizeFor(uint32_t size, uint32_t alignment)
{
    const uint64_t bytes = uint64_t{size} + alignment - 1 + sizeof(Header);
    return bytes <= UINT32_MAX ? static_cast<uint32_t>(bytes) : 0;
}

uint8_t* allocateRaw(uint32_t rawSize)
{
    return rawSize == 0 ? nullptr : static_cast<uint8_t*>(odx::heapAlloc(rawSize));
}

void* lendFromSystem(uint32_t size, uint32_t alignment)
{
    uint8_t* const raw = allocateRaw(rawSizeFor(size, alignment));
    return raw == nullptr ? nullptr : lend(usableIn(raw, alignment), kSystemMarker, raw);
}

// Makes the entry's block fit a request. What it served before it still serves afterwards, whatever the order of
// sizes and alignments, so that repeated work comes to rest.
bool fit(Entry& entry, uint32_t size, uint32_t alignment)
{
    const uint32_t capacity = std::max(size, entry.capacity);
    if (entry.raw != nullptr && capacity == entry.capacity) {
        uint8_t* const usable = usableIn(entry.raw, alignment);
        if ((reinterpret_cast<uintptr_t>(entry.usable) & (alignment - 1)) == 0) return true;
        if (static_cast<size_t>(usable - entry.raw) + capacity <= entry.rawSize) {
            entry.usable = usable;
            return true;
        }
    }
    const uint32_t rawSize = rawSizeFor(capacity, alignment);
    uint8_t* const raw = allocateRaw(rawSize);
    if (raw == nullptr) return false;
    odx::heapFree(entry.raw);
    entry.raw = raw;
    entry.rawSize = rawSize;
    entry.usable = usableIn(raw, alignment);
    entry.capacity = capacity;
    return true;
}

// Takes the mutex of the first entry that is not lent; null when there is none.
Entry* takeEntry()
{
    for (Entry& entry : pool) {
        if (entry.inUse.load(std::memory_order_relaxed) == 0 && pthread_mutex_trylock(&entry.mutex) == 0)
            return &entry;
    }
    return nullptr;
}

bool isPoolReady()
{
    return poolReady.load(std::memory_order_acquire) != 0;
}

void createPool()
{
    if (!entryMutexesExist) {
        // The destruction meets entries that its own thread has lent: those must fail to lock, not wait.
        pthread_mutexattr_t attributes;
        pthread_mutexattr_init(&attributes);
        pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
        for (Entry& entry : pool)
            pthread_mutex_init(&entry.mutex, &attributes);
        pthread_mutexattr_destroy(&attributes);
        entryMutexesExist = true;
    }
    odxHeapStatsInit();
    poolReady.store(1, std::memory_order_release);
}

// Waits for blocks that other threads have. A block that this thread has becomes one of the system's.
void emptyEntry(Entry& entry)
{
    pthread_mutex_lock(&entry.mutex);
    if (entry.inUse.load(std::memory_order_relaxed) != 0) {
        lend(entry.usable, kSystemMarker, entry.raw);
    } else {
        odx::heapFree(entry.raw);
    }
    entry.raw = nullptr;
    entry.rawSize = 0;
    entry.usable = nullptr;
    entry.capacity = 0;
    entry.inUse.store(0, std::memory_order_relaxed);
    pthread_mutex_unlock(&entry.mutex);
}

void destroyPool()
{
    poolReady.store(0, std::memory_order_release);
    for (Entry& entry : pool)
        emptyEntry(entry);
    odxHeapStats();
}

} // namespace

extern "C" {

void* (*odxGetScratchBufferAligned_)(uint32_t size, uint32_t alignment) = local_odxGetScratchBufferAligned;
void* (*odxGetScratchBufferUnaligned_)(uint32_t size) = local_odxGetScratchBufferUnaligned;
int (*odxReleaseScratchBuffer_)(void* block) = local_odxReleaseScratchBuffer;

void* local_odxGetScratchBufferAligned(uint32_t size, uint32_t alignment)
{
    if (alignment == 0 || (alignment & (alignment - 1)) != 0) alignment = 1;
    if (!isPoolReady()) return lendFromSystem(size, alignment);

    Entry* const entry = takeEntry();
    if (entry == nullptr) return nullptr;
    const bool destroyedMeanwhile = !isPoolReady();
    if (destroyedMeanwhile || !fit(*entry, size, alignment)) {
        pthread_mutex_unlock(&entry->mutex);
        return destroyedMeanwhile ? lendFromSystem(size, alignment) : nullptr;
    }
    entry->inUse.store(1, std::memory_order_relaxed);
    return lend(entry->usable, kPoolMarker, entry);
}

void* local_odxGetScratchBufferUnaligned(uint32_t size)
{
    return local_odxGetScratchBufferAligned(size, 1);
}

int local_odxReleaseScratchBuffer(void* block)
{
    if (block == nullptr) return 0;
    Header* const header = headerOf(block);
    if (header->marker == kSystemMarker) {
        odx::heapFree(header->origin);
        return 1;
    }
    if (header->marker != kPoolMarker) return 0;
    auto* const entry = static_cast<Entry*>(header->origin);
    entry->inUse.store(0, std::memory_order_relaxed);
    return pthread_mutex_unlock(&entry->mutex) == 0 ? 1 : 0;
}

int odxMemInit(void)
{
    pthread_mutex_lock(&usersMutex);
    if (!isPoolReady()) createPool();
    ++users;
    pthread_mutex_unlock(&usersMutex);
    return 1;
}

int odxMemInitPreAlloc(unsigned int preAllocBytes)
{
    odxMemInit();
    if (preAllocBytes == 0) return 1;
    const uint32_t size = std::min<uint32_t>(preAllocBytes, kMaxPreAlloc);
    void* const block = local_odxGetScratchBufferAligned(size, 16);
    if (block == nullptr) return 0;
    memset(block, 0, size); // brings its pages in
    return local_odxReleaseScratchBuffer(block);
}

int odxMemDeInit(void)
{
    pthread_mutex_lock(&usersMutex);
    if (users != 0 && --users == 0) destroyPool();
    pthread_mutex_unlock(&usersMutex);
    return 0;
}
}
