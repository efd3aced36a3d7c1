#include "frame/remotePointers.h"

#include "dsp/dsp.h"
#include "frame/hardware.h"
#include "frame/operations.h"
#include "frame/shared.h"

extern "C" {
#define ODX_REMOTE_POINTER(name, variant) __attribute__((visibility("default"))) void* name##R_ = nullptr;
#define ODX_REMOTE_POINTER_UNLISTED(name, variant) ODX_REMOTE_POINTER(name, variant)
#include "frame/remotePointers.def"
}

namespace
{

struct RemotePointer {
    void** pointer;
    odx::OperationNumber variant;
};

// The pointers of the full list, and of each mode's list.
enum ListPosition : uint32_t {
#define ODX_REMOTE_POINTER(name, variant) position_##name,
#include "frame/remotePointers.def"
    kListedPointers
};

constexpr RemotePointer kFullList[] = {
#define ODX_REMOTE_POINTER(name, variant) {&name##R_, odx::op_##variant},
#include "frame/remotePointers.def"
};
constexpr ListPosition kLowPower[] = {
#define ODX_LOW_POWER(name) position_##name,
#include "frame/remoteLists.def"
};
constexpr ListPosition kPerformance[] = {
#define ODX_PERFORMANCE(name) position_##name,
#include "frame/remoteLists.def"
};
constexpr ListPosition kCpuOffload[] = {
#define ODX_CPU_OFFLOAD(name) position_##name,
#include "frame/remoteLists.def"
};

void point(const RemotePointer& remote)
{
    odx::publish(*remote.pointer, odx::dspVariant(remote.variant));
}

template <size_t n>
void pointList(const ListPosition (&list)[n])
{
    if ((odxAvailableHardware(0) & ONDRIX_HW_XDSP) == 0) return;
    for (ListPosition position : list)
        point(kFullList[position]);
}

void useRemote(ODX_FUNC_MANAGER* manager, uint32_t number)
{
    if (odx::dspVariant(number) == nullptr) return;
    // A record with shorter tables is filled as far as it reaches.
    if (number >= kPublicSlots) {
        const uint32_t entry = number - kPublicSlots;
        if (entry < manager->internalEntries) odx::publish(manager->internalImplTable[entry], ODX_IMPL_XDSP);
    } else if (number < manager->publicSlots) {
        odx::publish(manager->implTable[number], ODX_IMPL_XDSP);
    }
}

// A mode moves the operations that its pointer list makes reachable.
template <size_t n>
unsigned indexList(ODX_FUNC_MANAGER* manager, const ListPosition (&list)[n])
{
    if (manager == nullptr || manager->implTable == nullptr || manager->internalImplTable == nullptr ||
        manager->implementations < 3 || (odxAvailableHardware(0) & ONDRIX_HW_XDSP) == 0) {
        return 1;
    }
    for (ListPosition position : list)
        useRemote(manager, kFullList[position].variant);
    return 0;
}

} // namespace

extern "C" {

void uRNull()
{
    for (const RemotePointer& remote : kFullList)
        *remote.pointer = nullptr;
#define ODX_REMOTE_POINTER_UNLISTED(name, variant) name##R_ = nullptr;
#include "frame/remotePointers.def"
}

void uX()
{
    for (const RemotePointer& remote : kFullList)
        point(remote);
}

void uHWLowPowerMode()
{
    pointList(kLowPower);
}
void uHWPerformanceMode()
{
    pointList(kPerformance);
}
void uXCpuOffloadMode()
{
    pointList(kCpuOffload);
}

// Hooks of components that no device has.
void uF() {}
void uD() {}
void uG() {}

unsigned uXIndex(ODX_FUNC_MANAGER* manager)
{
    if (manager == nullptr) return 1;
    if (manager->implTable == nullptr) return 2;
    if (manager->internalImplTable == nullptr) return 3;
    if (manager->implementations < 3) return 4;
    for (uint32_t number = 0; number < odx::kOperationNumbers; ++number)
        useRemote(manager, number);
    return 0;
}

unsigned uHWLowPowerModeTable(ODX_FUNC_MANAGER* manager)
{
    const unsigned refused = indexList(manager, kLowPower);
    if (refused == 0) useRemote(manager, odx::op_odxRegisterBuf);
    return refused;
}

unsigned uHWPerformanceModeTable(ODX_FUNC_MANAGER* manager)
{
    return indexList(manager, kPerformance);
}
unsigned uXCpuOffloadModeTable(ODX_FUNC_MANAGER* manager)
{
    return indexList(manager, kCpuOffload);
}
}
