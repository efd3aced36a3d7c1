#include "frame/fakeDsp.h"

#include "dsp/dsp.h"
#include "frame/operations.h"

#include <utility>

namespace odx::test
{

FakeDsp dsp;

std::vector<std::string> FakeDsp::takeEvents()
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

using odx::test::dsp;

extern "C" {

int ODXAZ9_init(int mode, const char* version)
{
    dsp.events.push_back("open " + std::to_string(mode) + " for " + version);
    if (dsp.openResult == 0) dsp.powerMode = mode;
    return dsp.openResult;
}

void ODXAZ9_deinit()
{
    dsp.events.push_back("close");
    dsp.powerMode = -1;
}

int ODXAZ9_is_ready()
{
    return dsp.powerMode >= 0 ? 1 : 0;
}
int ODXAZ9_get_current_mode()
{
    return dsp.powerMode;
}
void odxUpdateZ9ConstraintCheckFlag(unsigned flag)
{
    dsp.constraintChecks = flag;
}
void odxInitSharedMem(unsigned hwMask)
{
    dsp.sharedMemoryFor.push_back(hwMask);
}
void odxDeInitSharedMem() {}
void odxCleanUpHW()
{
    dsp.events.push_back("clean up");
}
int64_t odxZ9GetClkX()
{
    return 0x123456789ab;
}

unsigned uXTable(ODX_FUNC_MANAGER* manager, unsigned column)
{
    for (uint32_t number = 0; number < odx::kOperationNumbers; ++number) {
        void* const variant = odx::dspVariant(number);
        if (variant == nullptr) continue;
        void** const table = number < kPublicSlots ? manager->funcTable->entry : manager->internalFuncTable->entry;
        table[(number < kPublicSlots ? number : number - kPublicSlots) * kImplementations + column] = variant;
    }
    return dsp.fillResult;
}
}

void* odx::dspVariant(uint32_t operation)
{
    static char variants[odx::kOperationNumbers];
    return odx::test::isRemote(operation) ? &variants[operation] : nullptr;
}
