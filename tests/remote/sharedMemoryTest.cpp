// Buffers shared with the remote processor: what is asked of the system, in which order, and that every failure
// gives back what was had before it.
#include "dsp/services.h"
#include "frame/scratch.h"
#include "platform/platform.h"
#include "remote/ion.h"
#include "remote/remoteCase.h"

#include <sys/mman.h>
#include <unistd.h>

using namespace odx;
using namespace odx::test;

namespace
{

using Events = std::vector<std::string>;

void withSharedMemory(const std::function<void(LogCapture&)>& body)
{
    onProcessor(kArmSimd, [&] {
        ion.present = true;
        loader.provided = reinterpret_cast<void*>(Ion::registerBuffer);
        const size_t descriptors = Ion::openDescriptors();
        LogCapture log;
        EXPECT_EQ(0, odxInitSharedMem_Xdsp());
        body(log);
        EXPECT_EQ(descriptors, Ion::openDescriptors());
        EXPECT_EQ(0, ion.mappings);
        EXPECT_EQ(0, ion.devices);
        EXPECT_EQ(0, ion.registrations);
        odxDeInitSharedMem_Xdsp();
    });
}

const Events allocated = {"open", "alloc 4096 4096 2000000 1", "map 4096", "sync 3", "register 4096"};
const Events released = {"unregister 4096", "sync 7", "unmap 4096", "close"};

Events first(size_t n, const Events& events)
{
    return {events.begin(), events.begin() + static_cast<ptrdiff_t>(n)};
}
Events last(size_t n, const Events& events)
{
    return {events.end() - static_cast<ptrdiff_t>(n), events.end()};
}

} // namespace

TEST(SharedMemory, ABufferIsAllocatedMappedAndRegistered)
{
    withSharedMemory([](LogCapture& log) {
        auto* const buffer = static_cast<uint8_t*>(odxSharedMemAllocX(1, 128));
        ASSERT_NE(nullptr, buffer);
        EXPECT_EQ(allocated, ion.takeEvents());
        EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(buffer) % 4096);
        buffer[4095] = 1; // a page was mapped for the byte
        EXPECT_EQ(-1, odxSharedMemFreeX(buffer + 1));
        EXPECT_EQ(-1, odxSharedMemFreeX(nullptr));
        EXPECT_EQ(Events{}, ion.takeEvents());
        EXPECT_EQ(0, odxSharedMemFreeX(buffer));
        EXPECT_EQ(released, ion.takeEvents());
        EXPECT_EQ(-1, odxSharedMemFreeX(buffer));
        EXPECT_EQ(Lines{}, log.take());
    });
}

TEST(SharedMemory, SizesAreWholePages)
{
    withSharedMemory([](LogCapture& log) {
        for (const auto& [size, length] :
             {std::pair<size_t, size_t>{4096, 4096}, {4097, 8192}, {100000, 102400}}) {
            void* const buffer = odxSharedMemAllocX(size, 4096);
            EXPECT_EQ("alloc " + std::to_string(length) + " 4096 2000000 1", ion.takeEvents()[1]);
            EXPECT_EQ(0, odxSharedMemFreeX(buffer));
            EXPECT_EQ("unmap " + std::to_string(length), ion.takeEvents()[2]);
        }
        EXPECT_EQ(nullptr, odxSharedMemAllocX(0, 8));
        EXPECT_EQ(nullptr, odxSharedMemAllocX(1, 8192));
        EXPECT_EQ(nullptr, odxSharedMemAllocX(SIZE_MAX, 8));
        EXPECT_EQ(nullptr, odxSharedMemAllocX(0x7FFFF001u, 8)); // whole pages of it exceed 31 bits
        EXPECT_EQ(Events{}, ion.takeEvents());
        EXPECT_EQ(Lines{}, log.take());
    });
}

TEST(SharedMemory, EveryFailureUndoesWhatWasDoneBefore)
{
    // The steps that were tried, and the part of a release that undoes those which succeeded.
    const struct {
        Ion::Accident accident;
        size_t tried, undone;
        Lines lines;
    } rows[] = {
        {Ion::kOpen, 1, 0, error("mem_alloc_ion : Open ion device failed\n")},
        {Ion::kAlloc, 2, 1, error("mem_alloc_ion : ION alloc length 4096\n")},
        {Ion::kMap, 3, 1, error("mem_alloc_ion : mmap call failed " + std::to_string(EAGAIN) + "\n")},
        {Ion::kStartAccess, 4, 2, error("mem_alloc_ion : failed to start DMA_BUF_IOCTL_SYNC\n")},
        {Ion::kMisaligned, 5, 4, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.accident);
        withSharedMemory([&](LogCapture& log) {
            ion.accident = row.accident;
            EXPECT_EQ(nullptr, odxSharedMemAllocX(1, 8));
            EXPECT_EQ(first(row.tried, allocated) + last(row.undone, released), ion.takeEvents());
            EXPECT_EQ(row.lines, log.take());
        });
    }
    withSharedMemory([&](LogCapture& log) {
        loader.provided = nullptr; // no remote call layer in the process
        EXPECT_EQ(nullptr, odxSharedMemAllocX(1, 8));
        EXPECT_EQ(first(4, allocated) + last(3, released), ion.takeEvents());
        EXPECT_EQ(error("mem_alloc_ion : Failed to register buffer with rpc -1\n"), log.take());
    });
}

TEST(SharedMemory, AReleaseGoesOnPastItsFailures)
{
    withSharedMemory([](LogCapture& log) {
        void* const buffer = odxSharedMemAllocX(1, 8);
        ion.takeEvents();
        ion.accident = Ion::kEndAccess;
        loader.provided = nullptr;
        EXPECT_EQ(0, odxSharedMemFreeX(buffer));
        EXPECT_EQ(last(3, released), ion.takeEvents());
        EXPECT_EQ(error("register_buf to unregister ion buffer failed\n") +
                      error("mem_free_ion : failed to end DMA_BUF_IOCTL_SYNC\n"),
                  log.take());
        ion.registrations = 0; // nobody could be told
    });
}

TEST(SharedMemory, ThereAreAHundredAndTwentyEight)
{
    withSharedMemory([](LogCapture& log) {
        std::vector<void*> buffers;
        for (int i = 0; i < 128; ++i) {
            buffers.push_back(odxSharedMemAllocX(1, 8));
            ASSERT_NE(nullptr, buffers.back());
        }
        ion.takeEvents();
        EXPECT_EQ(nullptr, odxSharedMemAllocX(1, 8));
        EXPECT_EQ(allocated + released, ion.takeEvents());
        EXPECT_EQ(0, odxSharedMemFreeX(buffers[77]));
        buffers[77] = odxSharedMemAllocX(1, 8);
        EXPECT_NE(nullptr, buffers[77]);
        for (void* buffer : buffers)
            EXPECT_EQ(0, odxSharedMemFreeX(buffer));
        EXPECT_EQ(Lines{}, log.take());
    });
}

TEST(SharedMemory, IsInstalledForADspWithoutGpuAndRemovedOnce)
{
    onProcessor(kArmSimd, [] {
        const auto installed = [] {
            EXPECT_EQ(odxSharedMemAlloc_, odxSharedMemAllocR_);
            EXPECT_EQ(odxSharedMemFree_, odxSharedMemFreeR_);
            EXPECT_EQ(odxSharedMemAlloc_ != nullptr, odxSharedMemFree_ != nullptr);
            return odxSharedMemAlloc_ == odxSharedMemAllocX;
        };
        for (const unsigned mask : {0x0u, 0x20u, 0x28u, 0x886u}) {
            odxInitSharedMem(mask);
            EXPECT_FALSE(installed()) << mask;
        }
        EXPECT_EQ(nullptr, odxSharedMemAllocX(1, 8)); // no table yet
        EXPECT_EQ(-1, odxSharedMemFreeX(&ion));
        odxInitSharedMem(0x88E);
        EXPECT_TRUE(installed());
        odxDeInitSharedMem();
        EXPECT_FALSE(installed());
        odxSharedMemAlloc_ = odxSharedMemAllocR_ = [](size_t, size_t) -> void* { return nullptr; };
        odxSharedMemFree_ = odxSharedMemFreeR_ = [](void*) { return 0; };
        odxDeInitSharedMem(); // somebody else's go, too
        EXPECT_FALSE(installed());
        EXPECT_EQ(nullptr, odxSharedMemAlloc_);
        odxInitSharedMem(0x8);
        EXPECT_TRUE(installed());
        odxCleanUp();
        EXPECT_FALSE(installed());
    });
}

TEST(SharedMemory, ServesTheApplicationWhileASessionIsOpen)
{
    onRemote([](Stub&, LogCapture& log) {
        ion.present = true;
        loader.provided = reinterpret_cast<void*>(Ion::registerBuffer);
        auto* const shared = static_cast<uint8_t*>(odxMemAlloc(100, 16));
        EXPECT_EQ(allocated, ion.takeEvents());
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_XDSP)); // a selection keeps what was lent
        odxMemFree(shared);
        EXPECT_EQ(released, ion.takeEvents());
        log.take();

        ion.accident = Ion::kAlloc;
        void* const own = odxMemAlloc(100, 16);
        EXPECT_NE(nullptr, own);
        EXPECT_EQ(1u, log.take().size());
        odxMemFree(own);
        odxCleanUp();
        ion.takeEvents();
        odxMemFree(odxMemAlloc(100, 16));
        EXPECT_EQ(Events{}, ion.takeEvents());
    });
}

// The system itself: a descriptor that is no buffer of the allocator can be mapped, but not synchronised.
TEST(SharedMemory, AsksTheSystemWhereNoAllocatorIsScripted)
{
    const int descriptor = memfd_create("file", 0);
    ASSERT_EQ(0, ftruncate(descriptor, 4096));
    auto* const mapped = static_cast<uint8_t*>(platform::mapShared(descriptor, 4096));
    ASSERT_NE(nullptr, mapped);
    mapped[5] = 7;
    uint8_t byte = 0;
    EXPECT_EQ(1, pread(descriptor, &byte, 1, 5));
    EXPECT_EQ(7, byte);
    EXPECT_FALSE(platform::startBufferAccess(descriptor));
    EXPECT_FALSE(platform::endBufferAccess(descriptor));
    platform::unmap(mapped, 4096);
    platform::closeDescriptor(descriptor);
    EXPECT_EQ(nullptr, platform::mapShared(descriptor, 4096));
}
