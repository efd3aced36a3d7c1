// The scratch pool: 32 blocks that are lent, taken back and kept.
#include "frame/scratch.h"

#include "frame/heap.h"

#include <algorithm>
#include <atomic>
#include <pthread.h>
#include <sched.h>
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

// What an entry's block is doing.
enum Use : uint32_t {
    kIdle,
    kLent,
    kOrphan // lent, and the pool was destroyed meanwhile
};

struct Entry {
    uint8_t* raw = nullptr; // null until the entry is used first
    uint32_t rawSize = 0;
    uint8_t* usable = nullptr;
    uint32_t capacity = 0; // the largest request served
    std::atomic<uint32_t> use{kIdle};
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER; // held while the block is lent; guards the four fields
};

// The entries outlive the pool, so that a request may run into its destruction.
Entry pool[32];
std::atomic<uint8_t> poolReady{0};

pthread_mutex_t usersMutex = PTHREAD_MUTEX_INITIALIZER; // held during creation and destruction too
uint32_t users = 0;

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

// Where the entry's block, as it is, has room for a request; null where it has none.
uint8_t* roomIn(const Entry& entry, uint32_t size, uint32_t alignment)
{
    if (entry.raw == nullptr || size > entry.capacity) return nullptr;
    for (uint8_t* const place : {entry.usable, usableIn(entry.raw, alignment)}) {
        const bool aligned = (reinterpret_cast<uintptr_t>(place) & (alignment - 1)) == 0;
        if (aligned && entry.raw + entry.rawSize - place >= static_cast<ptrdiff_t>(size)) return place;
    }
    return nullptr;
}

// Makes the entry's block fit a request. Its capacity never falls, so that repeated work comes to rest: the first
// time brings every entry to its largest size, the second, at the latest, to its strictest alignment.
bool fit(Entry& entry, uint32_t size, uint32_t alignment)
{
    if (uint8_t* const room = roomIn(entry, size, alignment)) {
        entry.usable = room;
        return true;
    }
    const uint32_t capacity = std::max(size, entry.capacity);
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
        if (entry.use.load(std::memory_order_relaxed) == kIdle && pthread_mutex_trylock(&entry.mutex) == 0)
            return &entry;
    }
    return nullptr;
}

bool isPoolReady()
{
    return poolReady.load(std::memory_order_acquire) != 0;
}

void empty(Entry& entry)
{
    odx::heapFree(entry.raw);
    entry.raw = nullptr;
    entry.rawSize = 0;
    entry.usable = nullptr;
    entry.capacity = 0;
}

// A lent block stays with its borrower, whose release frees it. Waits only for a borrower that is just taking or
// returning one.
void retire(Entry& entry)
{
    for (;;) {
        if (pthread_mutex_trylock(&entry.mutex) == 0) {
            empty(entry);
            pthread_mutex_unlock(&entry.mutex);
            return;
        }
        uint32_t use = kLent;
        if (entry.use.compare_exchange_strong(use, kOrphan) || use == kOrphan) return;
        sched_yield();
    }
}

void createPool()
{
    odxHeapStatsInit();
    poolReady.store(1, std::memory_order_release);
}

void destroyPool()
{
    poolReady.store(0, std::memory_order_release);
    for (Entry& entry : pool)
        retire(entry);
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
    entry->use.store(kLent);
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
    const uint32_t use = entry->use.exchange(kIdle);
    if (use == kIdle) return 0; // it was returned before
    if (use == kOrphan) empty(*entry);
    pthread_mutex_unlock(&entry->mutex);
    return 1;
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
    if (users > 0 && --users == 0) destroyPool();
    pthread_mutex_unlock(&usersMutex);
    return 0;
}
}
