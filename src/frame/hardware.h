// Hardware and processor detection.
#ifndef ODX_FRAME_HARDWARE_H
#define ODX_FRAME_HARDWARE_H

#include "ondrix/modes.h"

#include <stddef.h>
#include <stdint.h>

// What the processor description said. Filled once per process.
struct ODX_CPU_INFO {
    uint32_t detectionRan; // 1 once detection has run, readable description or not
    uint16_t features;     // ODX_CPU_...
    uint32_t implementer;  // 0 when absent
    uint32_t cpuOnlyChip;  // the chip is one without DSP and GPU support
};

enum : uint16_t { ODX_CPU_ARMV7 = 1, ODX_CPU_VFP = 2, ODX_CPU_SIMD = 4 };

extern "C" {
// Looks "name : value" up at the start of a line. Returns a newly allocated copy of the value, which the caller
// frees, or null when the field is absent.
char* extract_cpuinfo_field(const char* buffer, int length, const char* name);

unsigned odxAvailableHWComponent(unsigned mode); // ONDRIX_HW_XDSP when a session is open for the mode, else 0
int odx_check_only_cpu();
int odxSelectXDSP6Mode(unsigned mode);
int64_t odxZ9GetClk();

extern uint32_t XDSP_initflag;
extern uint32_t GPU_initflag;
}

namespace odx
{

// Fills a record from a processor description. `flagsLine` accepts an x86 `flags` line where Features is absent.
ODX_CPU_INFO parseProcessorDescription(const char* buffer, size_t length, bool flagsLine);

// The record of this processor; detection runs with the first call.
const ODX_CPU_INFO& processorInfo();

} // namespace odx

#endif
