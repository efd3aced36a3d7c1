// The tables through which every public call is dispatched.
#ifndef ODX_FRAME_TABLES_H
#define ODX_FRAME_TABLES_H

#include <stdint.h>

// Columns of the function tables.
enum ODX_IMPL : uint32_t {
    ODX_IMPL_CPU = 0,   // reference code
    ODX_IMPL_ORLAN = 1, // SIMD code
    ODX_IMPL_XDSP = 2,  // remote processor
    ODX_IMPL_GPU = 3,
    ODX_IMPL_ADSP = 4,
    ODX_IMPL_CDSP = 5,
    ODX_IMPL_MDSP = 6,
};

constexpr uint32_t kPublicSlots = 506, kInternalEntries = 16, kImplementations = 7;
constexpr uint32_t kEmptySlots[] = {362, 363}; // no operation has them
constexpr bool isEmptySlot(uint32_t slot)
{
    for (uint32_t empty : kEmptySlots) {
        if (slot == empty) return true;
    }
    return false;
}

// Entry of slot s for implementation i: element s * 7 + i. Zero before the first mode selection.
struct ODX_FUNC_TABLE {
    void* entry[kPublicSlots * kImplementations];
};
struct ODX_INTERNAL_FUNC_TABLE {
    void* entry[kInternalEntries * kImplementations];
};

// The tables as the routines of the remote and GPU targets see them.
struct ODX_FUNC_MANAGER {
    uint32_t* implTable;
    uint32_t publicSlots;
    ODX_FUNC_TABLE* funcTable;
    uint32_t* internalImplTable;
    uint32_t internalEntries;
    ODX_INTERNAL_FUNC_TABLE* internalFuncTable;
    uint32_t implementations;
};

extern "C" {
extern ODX_FUNC_TABLE odxFuncTable;
extern ODX_INTERNAL_FUNC_TABLE odxInternalFuncTable;
extern uint32_t odxImplTable[kPublicSlots];
extern uint32_t odxInternalImplTable[kInternalEntries];
extern const char* const odxImplChar[kImplementations];

extern int32_t mode_globalVar;               // the last mode passed to odxSetOperationMode
extern uint8_t odxImplTablesInitialized;     // the tables were filled once
extern uint32_t HW_constraint_checks_enable; // size and alignment limits of the remote targets are on
extern int32_t nOdxAvailableProc;            // number of online processors
extern ODX_FUNC_MANAGER* odxMasterFuncManager;

// Selects a mode without recording it in mode_globalVar.
int odxSelectMode(int32_t mode);

unsigned odxInitializeMasterFuncManager(ODX_FUNC_MANAGER* manager);
unsigned odxTableHWInit(ODX_FUNC_TABLE* funcTable, ODX_INTERNAL_FUNC_TABLE* internalTable, bool xdsp, bool gpu);

// Fill routines: the entries of one column.
void uCTable(ODX_FUNC_TABLE* funcTable, ODX_INTERNAL_FUNC_TABLE* internalTable, unsigned column);
void uVTable(ODX_FUNC_TABLE* funcTable, ODX_INTERNAL_FUNC_TABLE* internalTable, unsigned column);
unsigned uGTable(ODX_FUNC_MANAGER* manager, unsigned column);

// Index routines: which column each slot takes.
void uVIndex();
unsigned uXIndex(ODX_FUNC_MANAGER* manager);
unsigned uGIndex(ODX_FUNC_MANAGER* manager);
unsigned uHWLowPowerModeTable(ODX_FUNC_MANAGER* manager);
unsigned uHWPerformanceModeTable(ODX_FUNC_MANAGER* manager);
unsigned uXCpuOffloadModeTable(ODX_FUNC_MANAGER* manager);

// Helper pointers: inner kernels that reference and SIMD code call directly.
void uCHelper();
void uVHelper();

// Remote pointers.
void uRNull();
void uX();
void uHWLowPowerMode();
void uHWPerformanceMode();
void uXCpuOffloadMode();
void uF();
void uD();
void uG();
}

#endif
