#include "frame/fakeRemote.h"

#include "dsp/remote.h"
#include "frame/operations.h"

#include <utility>

namespace odx::test
{

FakeRemote fakeRemote;

std::vector<std::string> FakeRemote::takeEvents()
{
    return std::exchange(events, {});
}

bool isRemote(uint32_t operation)
{
    switch (operation) {
    case op_odxTransposeu16:
    case op_odxSumOfAbsoluteDiff8x8u8:
    case op_odxSumOfAbsoluteDiffs16x16u8:
    case op_odxExtractHOGu16:
    case op_odxHOGInit:
    case op_odxHOGDeInit:
        return false;
    default:
        return !isEmptySlot(operation);
    }
}

} // namespace odx::test

using odx::test::fakeRemote;

extern "C" {

int ODXAZ9_init(int mode, const char* version)
{
    fakeRemote.events.push_back("open " + std::to_string(mode) + " for " + version);
    if (fakeRemote.openResult == 0) fakeRemote.powerMode = mode;
    return fakeRemote.openResult;
}

void ODXAZ9_deinit()
{
    fakeRemote.events.push_back("close");
    fakeRemote.powerMode = -1;
}

int ODXAZ9_is_ready()
{
    return fakeRemote.powerMode >= 0 ? 1 : 0;
}
int ODXAZ9_get_current_mode()
{
    return fakeRemote.powerMode;
}
void odxUpdateZ9ConstraintCheckFlag(unsigned flag)
{
    fakeRemote.constraintChecks = flag;
}
void odxInitSharedMem(unsigned hwMask)
{
    fakeRemote.sharedMemoryFor.push_back(hwMask);
}
void odxDeInitSharedMem() {}
void odxCleanUpHW()
{
    fakeRemote.events.push_back("clean up");
}
int64_t odxZ9GetClkX()
{
    return 0x123456789ab;
}

unsigned uXTable(ODX_FUNC_MANAGER* manager, unsigned column)
{
    for (uint32_t number = 0; number < odx::kOperationNumbers; ++number) {
        void* const variant = odx::remoteVariant(number);
        if (variant == nullptr) continue;
        void** const table = number < kPublicSlots ? manager->funcTable->entry : manager->internalFuncTable->entry;
        table[(number < kPublicSlots ? number : number - kPublicSlots) * kImplementations + column] = variant;
    }
    return fakeRemote.fillResult;
}
}

void* odx::remoteVariant(uint32_t operation)
{
    static char variants[odx::kOperationNumbers];
    return odx::test::isRemote(operation) ? &variants[operation] : nullptr;
}
