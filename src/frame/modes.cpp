// Mode selection: from an operation mode to the indices that every call reads.
#include "ondrix/modes.h"

#include "dsp/remote.h"
#include "frame/hardware.h"
#include "frame/log.h"
#include "frame/operations.h"
#include "frame/shared.h"
#include "frame/tables.h"

#include <initializer_list>
#include <string.h>

extern "C" {
int32_t mode_globalVar = ONDRIX_OP_CPU_PERFORMANCE;
uint8_t odxImplTablesInitialized = 0;
int32_t nOdxAvailableProc = 1;
}

namespace
{

constexpr int kUnusableProcessor = 999;
constexpr uint32_t kRegistration = odx::op_odxRegisterBuf - kPublicSlots;

ODX_FUNC_MANAGER manager;

bool unusable(unsigned hw)
{
    return (hw & (ONDRIX_HW_CPU_INFO | ONDRIX_HW_SIMD | ONDRIX_HW_VFP)) == ONDRIX_HW_CPU_INFO;
}

void fillTables(unsigned hw)
{
    const bool simd = (hw & ONDRIX_HW_SIMD) != 0;
    if (odxImplTablesInitialized == 0) {
        for (unsigned column : {ODX_IMPL_CPU, ODX_IMPL_ORLAN, ODX_IMPL_XDSP, ODX_IMPL_GPU}) {
            uCTable(&odxFuncTable, &odxInternalFuncTable, column);
        }
        if (simd) {
            for (unsigned column : {ODX_IMPL_ORLAN, ODX_IMPL_XDSP, ODX_IMPL_GPU}) {
                uVTable(&odxFuncTable, &odxInternalFuncTable, column);
            }
        }
        manager = {odxImplTable,     kPublicSlots,          &odxFuncTable,   odxInternalImplTable,
                   kInternalEntries, &odxInternalFuncTable, kImplementations};
        if (odxInitializeMasterFuncManager(&manager) != 0) {
            ODX_LOG(Error, "%s", "odxInitializeMasterFuncManager is failed");
        }
    } else if (simd) {
        uVTable(&odxFuncTable, &odxInternalFuncTable, ODX_IMPL_XDSP);
    } else {
        uCTable(&odxFuncTable, &odxInternalFuncTable, ODX_IMPL_XDSP);
    }
    odxTableHWInit(&odxFuncTable, &odxInternalFuncTable, (hw & ONDRIX_HW_XDSP) != 0, (hw & ONDRIX_HW_GPU) != 0);
    odxImplTablesInitialized = 1;
}

// Back to the reference code, except the index of the buffer registration and the slots without an operation,
// which keep what the previous mode gave them.
void resetIndices()
{
    for (uint32_t entry = 0; entry < kInternalEntries; ++entry) {
        if (entry != kRegistration) odx::publish(odxInternalImplTable[entry], ODX_IMPL_CPU);
    }
    for (uint32_t slot = 0; slot < kPublicSlots; ++slot) {
        if (!isEmptySlot(slot)) odx::publish(odxImplTable[slot], ODX_IMPL_CPU);
    }
}

void useSimd(unsigned hw)
{
    if ((hw & ONDRIX_HW_SIMD) == 0) return;
    uVHelper();
    uVIndex();
}

int selectExtended(uint32_t target, unsigned hw)
{
    enum : uint32_t { kCpu = 1, kReference = 2, kOrlan = 4, kDsp = 8, kGpu = 32, kXdsp = 1024 };

    if (target == kReference) return 0;
    useSimd(hw);
    switch (target) {
    case kCpu:
    case kOrlan:
        return 0;
    case kGpu:
        if ((hw & ONDRIX_HW_GPU) != 0) {
            uG();
            uGIndex(&manager);
        }
        return 0;
    case kDsp:
    case kXdsp:
        odxSetHWFlag(0);
        if ((hw & ONDRIX_HW_XDSP) != 0) {
            uX();
            uXIndex(&manager);
        }
        return 0;
    default:
        return -1; // the SIMD indices stay in force
    }
}

void selectStandard(int32_t mode, unsigned hw)
{
    if ((hw & ONDRIX_HW_MOBILE) == 0 || mode > ONDRIX_OP_CPU_PERFORMANCE) return;
    useSimd(hw);
    switch (mode) {
    case ONDRIX_OP_LOW_POWER:
        uHWLowPowerMode();
        uHWLowPowerModeTable(&manager);
        break;
    case ONDRIX_OP_PERFORMANCE:
        uHWPerformanceMode();
        uHWPerformanceModeTable(&manager);
        break;
    case ONDRIX_OP_CPU_OFFLOAD:
        if ((hw & ONDRIX_HW_COMPONENT_16) != 0) uF();
        if ((hw & ONDRIX_HW_COMPONENT_512) != 0) uD();
        if ((hw & ONDRIX_HW_GPU) != 0) {
            uG();
            uGIndex(&manager);
        }
        if ((hw & ONDRIX_HW_XDSP) != 0) {
            uXCpuOffloadMode();
            uXCpuOffloadModeTable(&manager);
        }
        break;
    default:
        break;
    }
}

} // namespace

extern "C" {

int odxSelectMode(int32_t mode)
{
    odxSetHWFlag(1);
    odx::publish(nOdxAvailableProc, odxAvailableProcessors());
    odx::readLogSwitch();
    const unsigned hw = odxAvailableHardware(mode);
    if (unusable(hw)) return kUnusableProcessor;

    fillTables(hw);
    uCHelper();
    resetIndices();
    if (mode < 0) return selectExtended(static_cast<uint32_t>(mode) & 0x7FFFFFFFu, hw);
    selectStandard(mode, hw);
    return 0;
}

int odxSetOperationMode(odxOperationMode mode)
{
    if (mode != ONDRIX_OP_EXT_REFERENCE && odx_check_only_cpu() != 0) {
        ODX_LOG(Error, "%s\n", "DSP and GPU not present. Setting ONDRIX mode to ONDRIX_OP_CPU_PERFORMANCE.");
        mode = ONDRIX_OP_CPU_PERFORMANCE;
    }
    mode_globalVar = mode;
    return odxSelectMode(mode);
}

int odxSetOperationModeExt(odxOperationModeExt mode)
{
    switch (mode) {
    case ONDRIX_EXT_TARGET_XDSP:
        return odxSetOperationMode(ONDRIX_OP_EXT_XDSP) != 0 ? 1 : 0;
    case ONDRIX_EXT_TARGET_GPU:
        return odxSetOperationMode(ONDRIX_OP_EXT_GPU) != 0 ? 1 : 0;
    default:
        ODX_LOG(Debug,
                "Failed in %s. Please select appropriate option for mode to %s based on the target of interest",
                __func__, __func__);
        ODX_LOG(Debug, "For mobile targets, %s supports only ONDRIX_OP_EXT_XDSP and ONDRIX_OP_EXT_GPU options",
                __func__);
        ODX_LOG(Debug,
                "For non mobile targets(IOT or BXR), %s supports ONDRIX_OP_EXT_XDSP, ONDRIX_OP_EXT_GPU, "
                "ONDRIX_OP_EXT_ADSP, ONDRIX_OP_EXT_CDSP and ONDRIX_OP_EXT_MDSP  options",
                __func__);
        return 1;
    }
}

unsigned int odxSetOperationModeRemoteLib(odxOperationMode mode)
{
    odxSetHWFlag(1);
    odx::readLogSwitch();
    const unsigned hw = odxAvailableHardware(mode);
    if (unusable(hw)) return kUnusableProcessor;

    const bool xdsp = (hw & ONDRIX_HW_XDSP) != 0;
    uRNull();
    if (xdsp) uXTable(odxMasterFuncManager, ODX_IMPL_XDSP);
    if (mode < 0) {
        if (xdsp && (mode == ONDRIX_OP_EXT_XDSP || mode == ONDRIX_OP_EXT_DSP)) {
            odxSetHWFlag(0);
            uX();
            uXIndex(odxMasterFuncManager);
        }
    } else if ((hw & ONDRIX_HW_MOBILE) != 0) {
        if (mode == ONDRIX_OP_CPU_OFFLOAD && xdsp) {
            uXCpuOffloadMode();
            uXCpuOffloadModeTable(odxMasterFuncManager);
        } else if (mode == ONDRIX_OP_PERFORMANCE) {
            uHWPerformanceMode();
            uHWPerformanceModeTable(odxMasterFuncManager);
        } else if (mode == ONDRIX_OP_LOW_POWER) {
            uHWLowPowerMode();
            uHWLowPowerModeTable(odxMasterFuncManager);
        }
    }
    return 0;
}

int odxCleanUp(void)
{
    odxCleanUpHW();
    GPU_initflag = 0;
    XDSP_initflag = 0;
    return 0;
}

void odxGetVersion(char* version, unsigned int versionLength)
{
    static constexpr char kVersion[] = ONDRIX_VERSION_TEXT;
    ODX_LOG(Debug, "%s\n", "Ondrix vendor library");
    if (version == nullptr) return;
    if (versionLength >= sizeof kVersion) {
        memcpy(version, kVersion, sizeof kVersion);
    } else {
        memset(version, 0, versionLength);
    }
}

void odxSetHWFlag(unsigned int flag)
{
    odx::publish(HW_constraint_checks_enable, flag);
    odxUpdateZ9ConstraintCheckFlag(flag);
}
}
