#include "frame/remotePointers.h"

#include "dsp/remote.h"
#include "frame/hardware.h"
#include "frame/operations.h"
#include "frame/shared.h"

extern "C" {
#define ODX_REMOTE_POINTER(name, variant, pointer) \
    ODX_POINTER_##pointer(__attribute__((visibility("default"))) void* name##R_ = nullptr;)
#include "frame/operations/families.def"
}

namespace
{

struct RemotePointer {
    void** pointer;
    odx::OperationNumber variant;
    odx::RemoteList lists;
};

constexpr RemotePointer kRemotePointers[] = {
#define ODX_REMOTE_POINTER(name, variant, pointer) \
    ODX_POINTER_##pointer({&name##R_, odx::op_##variant, odx::remoteList_##pointer}, )
#include "frame/operations/families.def"
};

bool isIn(const RemotePointer& remote, odx::RemoteList list)
{
    return (remote.lists & list) == list;
}

void pointList(odx::RemoteList list)
{
    for (const RemotePointer& remote : kRemotePointers) {
        if (isIn(remote, list)) odx::publish(*remote.pointer, odx::remoteVariant(remote.variant));
    }
}

void pointModeList(odx::RemoteList list)
{
    if ((odxAvailableHardware(0) & ONDRIX_HW_XDSP) != 0) pointList(list);
}

void useRemote(ODX_FUNC_MANAGER* manager, uint32_t number)
{
    if (odx::remoteVariant(number) == nullptr) return;
    // A record with shorter tables is filled as far as it reaches.
    if (number >= kPublicSlots) {
        const uint32_t entry = number - kPublicSlots;
        if (entry < manager->internalEntries) odx::publish(manager->internalImplTable[entry], ODX_IMPL_XDSP);
    } else if (number < manager->publicSlots) {
        odx::publish(manager->implTable[number], ODX_IMPL_XDSP);
    }
}

// A mode moves the operations that its pointer list makes reachable.
unsigned indexList(ODX_FUNC_MANAGER* manager, odx::RemoteList list)
{
    if (manager == nullptr || manager->implTable == nullptr || manager->internalImplTable == nullptr ||
        manager->implementations < 3 || (odxAvailableHardware(0) & ONDRIX_HW_XDSP) == 0) {
        return 1;
    }
    for (const RemotePointer& remote : kRemotePointers) {
        if (isIn(remote, list)) useRemote(manager, remote.variant);
    }
    return 0;
}

} // namespace

extern "C" {

void uRNull()
{
    for (const RemotePointer& remote : kRemotePointers)
        *remote.pointer = nullptr;
}

void uX()
{
    pointList(odx::remoteList_all);
}

void uHWLowPowerMode()
{
    pointModeList(odx::remoteList_L);
}
void uHWPerformanceMode()
{
    pointModeList(odx::remoteList_P);
}
void uXCpuOffloadMode()
{
    pointModeList(odx::remoteList_O);
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
    const unsigned refused = indexList(manager, odx::remoteList_L);
    if (refused == 0) useRemote(manager, odx::op_odxRegisterBuf);
    return refused;
}

unsigned uHWPerformanceModeTable(ODX_FUNC_MANAGER* manager)
{
    return indexList(manager, odx::remoteList_P);
}
unsigned uXCpuOffloadModeTable(ODX_FUNC_MANAGER* manager)
{
    return indexList(manager, odx::remoteList_O);
}
}
