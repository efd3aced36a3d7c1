/// \file modes.h
/// Operation modes: which implementation the operations use. Also version and hardware information.
///
/// Every operation exists as portable reference code ("CPU"), as SIMD code that writes the same bytes ("ORLAN"),
/// and, on devices that have one, on a remote signal processor ("XDSP"). A mode chooses among them for the whole
/// process. Selecting a mode is not synchronised with calls: do it while no other thread is inside the library.
///
/// A remote call takes along stride x height bytes of each image, so that on the DSP the last row must be as long
/// as the others. It may come back with what lies between the rows, which no other thread may write meanwhile.
/// When the DSP fails or restarts, the call is done on the processor, and the application does not notice.
///
/// Before the first selection every operation logs one error line and returns its failure result.
///
/// Lines that a healthy program logs, too: odxGetVersion says "Ondrix vendor library", odxCleanUp "ODXAZ9_deinit",
/// and a mode that may use the DSP logs how its session comes about, on mobile targets alone. Where these have no
/// stub library for it (an ordinary ARM board, say), that is several error lines; modes without the DSP have none.
///
/// Set the property `vendor.runtime.ondrix.log` to a non-zero number before a mode is selected and each call logs
/// its name and the implementation that it takes. On Android that is a system property; elsewhere it is read from
/// the environment variable VENDOR_RUNTIME_ONDRIX_LOG.
#ifndef ONDRIX_MODES_H
#define ONDRIX_MODES_H

#include "ondrix/types.h"
#include "ondrix/version.h"

/// **The standard modes (0 to 3, those named after performance too) are reference code on a PC.** They take the
/// SIMD code only on mobile targets of the supported vendor (hardware bit ONDRIX_HW_MOBILE: a processor whose
/// description names ARM, 0x41, or that vendor, 0x51, as its implementer, or one of the vendor's boards); on any
/// other processor they use the reference code, in silence. The extended modes name a target and do not ask for
/// the vendor: ONDRIX_OP_EXT_CPU is the mode for the SIMD code on any machine.
///
/// Unknown numbers: without the top bit they select the reference code on every processor, with result 0; with the
/// top bit they give -1 and leave the SIMD code in force.
// clang-format off
ODX_ENUM(int32_t, odxOperationMode){
    ONDRIX_OP_LOW_POWER       = 0, ///< PC: reference. Mobile: SIMD, and the power-saving set on the DSP
    ONDRIX_OP_PERFORMANCE     = 1, ///< PC: reference. Mobile: SIMD, and the few operations faster there on the DSP
    ONDRIX_OP_CPU_OFFLOAD     = 2, ///< PC: reference. Mobile: SIMD, and as much as reasonable on the DSP
    ONDRIX_OP_CPU_PERFORMANCE = 3, ///< PC: reference. Mobile: SIMD only
    ONDRIX_OP_EXT_CPU         = (int32_t)0x80000001, ///< SIMD only, the DSP is never probed
    ONDRIX_OP_EXT_REFERENCE   = (int32_t)0x80000002, ///< reference code only
    ONDRIX_OP_EXT_ORLAN       = (int32_t)0x80000004, ///< the same as ONDRIX_OP_EXT_CPU
    ONDRIX_OP_EXT_DSP         = (int32_t)0x80000008, ///< the same as ONDRIX_OP_EXT_XDSP
    ONDRIX_OP_EXT_GPU         = (int32_t)0x80000020, ///< SIMD (there is no GPU code)
    ONDRIX_OP_EXT_XDSP        = (int32_t)0x80000400  ///< all that the DSP can do on the DSP, size limits off
};
// clang-format on

/// Argument of odxSetOperationModeExt, which numbers the extended targets on its own.
ODX_ENUM(int32_t, odxOperationModeExt){
    ONDRIX_EXT_TARGET_XDSP = 0, ///< selects ONDRIX_OP_EXT_XDSP
    ONDRIX_EXT_TARGET_GPU = 1   ///< selects ONDRIX_OP_EXT_GPU
};

/// Bits of the hardware mask.
enum {
    ONDRIX_HW_CPU_INFO = 0x2,        ///< detection ran, even if the processor description could not be read
    ONDRIX_HW_SIMD = 0x4,            ///< NEON / Advanced SIMD; AVX2 on x86-64
    ONDRIX_HW_XDSP = 0x8,            ///< a DSP session is open
    ONDRIX_HW_COMPONENT_16 = 0x10,   ///< never set by the detection
    ONDRIX_HW_GPU = 0x20,            ///< never set by the detection
    ONDRIX_HW_VFP = 0x80,            ///< floating point
    ONDRIX_HW_ARMV7 = 0x100,         ///< ARM architecture 7 or later
    ONDRIX_HW_COMPONENT_512 = 0x200, ///< never set by the detection
    ONDRIX_HW_MOBILE = 0x800         ///< mobile target of the supported vendor
};

/// Selects the implementations that every later call takes.
/// On a device known to have neither DSP nor GPU every mode but ONDRIX_OP_EXT_REFERENCE becomes
/// ONDRIX_OP_CPU_PERFORMANCE, with one error line.
///
/// A selection that fails leaves this behind:
/// - 999: nothing. The processor is looked at once, so that every selection of the process gives 999; operations
///   log one line each and return their failure results, as before any selection.
/// - -1: operations take the SIMD code, as in ONDRIX_OP_EXT_CPU, or the reference where the processor has none.
/// A DSP session that cannot be opened is no failure: the result is 0, and operations take the SIMD code.
/// \return 0; 999 when the processor has neither SIMD nor floating point, or its description (/proc/cpuinfo) cannot
///         be read; -1 for an unknown extended mode
ODX_API int odxSetOperationMode(odxOperationMode mode);

/// Selects an extended target.
/// \return 0 when the mode was set; 1 when odxSetOperationMode failed or the option is unknown (three log lines).
ODX_API int odxSetOperationModeExt(odxOperationModeExt mode);

/// Mode selection for a library that serves the remote side: sets the remote pointers and the indices of the
/// mode's remote operations, and resets nothing else.
/// \return 0; 999 as for odxSetOperationMode.
ODX_API unsigned int odxSetOperationModeRemoteLib(odxOperationMode mode);

/// Closes the DSP session and removes the shared-memory routines. The tables stay filled, so that operations keep
/// working and a later selection starts from there.
/// \return 0
ODX_API int odxCleanUp(void);

/// Copies the version text, ONDRIX_VERSION_TEXT as it was when the library was built, with its terminator.
/// Logs a line ("Ondrix vendor library").
/// \param version        destination; null is ignored
/// \param versionLength  its size in bytes: with at least 6 the text is copied, with less it is filled with zeros
ODX_API void odxGetVersion(char* version, unsigned int versionLength);

/// Turns the size and alignment limits of the remote targets on (non-zero) or off (0). Selecting a mode turns them
/// on again, except for the two extended DSP modes.
ODX_API void odxSetHWFlag(unsigned int flag);

/// The hardware mask (ONDRIX_HW_...) that selecting `mode` would see. Modes that may use the DSP open its session.
ODX_API unsigned int odxAvailableHardware(int mode);

/// Number of processors that are online; 1 and an error line when the system does not tell.
ODX_API int odxAvailableProcessors(void);

/// Wall-clock time in microseconds.
ODX_API int64_t odxGetTime(void);

/// Loads the optional platform-override library, /data/local/libodxopt.so.
/// That path is fixed, and opened on Linux hosts, too: the library found there runs in the caller's process, so
/// only those who may install software should be able to write there. Nothing but this function opens it. Logs a
/// line before, and one after.
///
/// \return 0; -1 and an error line when it cannot be loaded
ODX_API int odxPlatformOptLoad(void);

/// Closes it again if it is held.
///
/// \return 0
ODX_API int odxPlatformOptClose(void);

/// Looks a symbol of the override library up.
///
/// \return its address; null and an error line without it
ODX_API void* odxPlatformOptGetFunc(const char* symbol);

#endif
