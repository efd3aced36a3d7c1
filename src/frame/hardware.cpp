#include "frame/hardware.h"

#include "dsp/remote.h"
#include "frame/log.h"
#include "platform/platform.h"

#include <initializer_list>
#include <pthread.h>
#include <stdlib.h>
#include <string.h>

extern "C" {
uint32_t XDSP_initflag = 0;
uint32_t GPU_initflag = 0;
}

namespace
{

#if defined(__x86_64__)
constexpr bool kHasFlagsLine = true;
#else
constexpr bool kHasFlagsLine = false;
#endif

constexpr uint32_t kImplementerArm = 0x41, kImplementerVendor = 0x51;

// A field of the processor description; an absent one reads as empty.
class Field
{
public:
    Field(const char* buffer, size_t length, const char* name)
        : value_(extract_cpuinfo_field(buffer, static_cast<int>(length), name))
    {
    }
    ~Field() { free(value_); }
    Field(const Field&) = delete;
    Field& operator=(const Field&) = delete;

    bool present() const { return value_ != nullptr; }
    const char* text() const { return value_ != nullptr ? value_ : ""; }

private:
    char* value_;
};

bool hasToken(const char* list, const char* token)
{
    static constexpr char kBlanks[] = " \t";
    const size_t tokenLength = strlen(token);
    for (;;) {
        list += strspn(list, kBlanks);
        const size_t length = strcspn(list, kBlanks);
        if (length == 0) return false;
        if (length == tokenLength && memcmp(list, token, length) == 0) return true;
        list += length;
    }
}

bool isArmv7OrLater(const char* architecture)
{
    return strtol(architecture, nullptr, 10) >= 7; // a text without digits reads as 0
}

bool isCpuOnlyChip(const char* hardware)
{
    for (const char* chip : {"TKM200", "TKM210", "TKM100", "DELTA"}) {
        if (strstr(hardware, chip) != nullptr) return true;
    }
    return false;
}

ODX_CPU_INFO record;
pthread_once_t detection = PTHREAD_ONCE_INIT;

void detect()
{
    char buffer[4096];
    const long length = odx::platform::readProcessorDescription(buffer, sizeof buffer);
    record = {};
    if (length >= 0) record = odx::parseProcessorDescription(buffer, static_cast<size_t>(length), kHasFlagsLine);
    record.detectionRan = 1;
}

// Whether the board carries one of the supported vendor's chip families.
bool isVendorBoard()
{
    char platform[odx::platform::kPropertyValueMax] = "";
    if (__system_property_get("ro.board.platform", platform) <= 0) return false;
    return strncmp(platform, "vk", 2) == 0 && platform[2] >= 'a' && platform[2] <= 'd';
}

bool isMobile(uint32_t implementer)
{
    return implementer == kImplementerArm || implementer == kImplementerVendor || isVendorBoard();
}

bool staysOnCpu(int mode)
{
    return mode == ONDRIX_OP_CPU_PERFORMANCE || mode == ONDRIX_OP_EXT_CPU || mode == ONDRIX_OP_EXT_REFERENCE ||
           mode == ONDRIX_OP_EXT_ORLAN;
}

// Power mode of the DSP session for an operation mode.
int powerMode(unsigned mode)
{
    const bool extended = (mode & 0x80000000u) != 0;
    return extended || mode == ONDRIX_OP_PERFORMANCE ? 2 : 1;
}

bool openSession(int power)
{
    if (ODXAZ9_is_ready() == 1 && ODXAZ9_get_current_mode() == power) return true;
    char version[6];
    odxGetVersion(version, sizeof version);
    ODXAZ9_deinit();
    return ODXAZ9_init(power, version) == 0;
}

} // namespace

namespace odx
{

ODX_CPU_INFO parseProcessorDescription(const char* buffer, size_t length, bool flagsLine)
{
    const Field architecture(buffer, length, "CPU architecture");
    const Field implementer(buffer, length, "CPU implementer");
    const Field features(buffer, length, "Features");
    const Field flags(buffer, length, "flags");
    const Field hardware(buffer, length, "Hardware");

    bool floatingPoint = hasToken(features.text(), "vfp") || hasToken(features.text(), "fp");
    bool simd = hasToken(features.text(), "neon") || hasToken(features.text(), "asimd");
    if (flagsLine && !features.present()) {
        floatingPoint = hasToken(flags.text(), "fpu");
        simd = hasToken(flags.text(), "avx2");
    }

    ODX_CPU_INFO info = {};
    info.features = static_cast<uint16_t>((isArmv7OrLater(architecture.text()) ? ODX_CPU_ARMV7 : 0) |
                                          (floatingPoint ? ODX_CPU_VFP : 0) | (simd ? ODX_CPU_SIMD : 0));
    info.implementer = static_cast<uint32_t>(strtoul(implementer.text(), nullptr, 0));
    info.cpuOnlyChip = isCpuOnlyChip(hardware.text()) ? 1 : 0;
    return info;
}

const ODX_CPU_INFO& processorInfo()
{
    pthread_once(&detection, detect);
    return record;
}

} // namespace odx

extern "C" {

char* extract_cpuinfo_field(const char* buffer, int length, const char* name)
{
    const char* const end = buffer + (length > 0 ? length : 0);
    const size_t nameLength = strlen(name);

    const char* line = buffer;
    while (static_cast<size_t>(end - line) < nameLength || memcmp(line, name, nameLength) != 0) {
        const void* lineFeed = memchr(line, '\n', static_cast<size_t>(end - line));
        if (lineFeed == nullptr) return nullptr;
        line = static_cast<const char*>(lineFeed) + 1;
    }

    const char* const colon =
        static_cast<const char*>(memchr(line + nameLength, ':', static_cast<size_t>(end - line) - nameLength));
    if (colon == nullptr || end - colon < 2 || colon[1] != ' ') return nullptr;
    const char* const value = colon + 2;
    const void* lineFeed = memchr(value, '\n', static_cast<size_t>(end - value));
    const char* const valueEnd = lineFeed != nullptr ? static_cast<const char*>(lineFeed) : end;
    return strndup(value, static_cast<size_t>(valueEnd - value));
}

unsigned int odxAvailableHardware(int mode)
{
    const ODX_CPU_INFO& cpu = odx::processorInfo();
    odx::readLogSwitch();

    const bool mobile = isMobile(cpu.implementer);
    unsigned mask = cpu.detectionRan != 0 ? ONDRIX_HW_CPU_INFO : 0;
    if (mobile) mask |= ONDRIX_HW_MOBILE;
    if ((cpu.features & ODX_CPU_SIMD) != 0) mask |= ONDRIX_HW_SIMD;
    if ((cpu.features & ODX_CPU_VFP) != 0) mask |= ONDRIX_HW_VFP;
    if ((cpu.features & ODX_CPU_ARMV7) != 0) mask |= ONDRIX_HW_ARMV7;
    if (!mobile || staysOnCpu(mode)) return mask;

    mask |= odxAvailableHWComponent(static_cast<unsigned>(mode));
    XDSP_initflag = (mask & ONDRIX_HW_XDSP) != 0 ? 1 : 0;
    GPU_initflag = (mask & ONDRIX_HW_GPU) != 0 ? 1 : 0;
    return mask;
}

unsigned odxAvailableHWComponent(unsigned mode)
{
    const int64_t start = odxGetTime();
    const unsigned components = openSession(powerMode(mode)) ? ONDRIX_HW_XDSP : 0;
    if (libLogPrint != 0) {
        __android_log_print(odx::platform::kLogError, ODX_RUNTIME_LOG, "%s %lld",
                            " Z9 Initialization Time :", static_cast<long long>(odxGetTime() - start));
    }
    odxInitSharedMem(components);
    return components;
}

int odx_check_only_cpu()
{
    return static_cast<int>(odx::processorInfo().cpuOnlyChip);
}

int odxAvailableProcessors(void)
{
    const long count = odx::platform::onlineProcessors();
    if (count > 0) return static_cast<int>(count);
    ODX_LOG(Error, "%s", "Error in getting the number of available processor");
    return 1;
}

// `mode` is the power mode itself. Success is 1, as is the flag.
int odxSelectXDSP6Mode(unsigned mode)
{
    char version[6];
    odxGetVersion(version, sizeof version);
    const int result = ODXAZ9_init(static_cast<int>(mode), version);
    if (result != 0) return result;
    XDSP_initflag = 1;
    return 1;
}

int64_t odxGetTime(void)
{
    return odx::platform::wallClockMicroseconds();
}

int64_t odxZ9GetClk()
{
    return odxZ9GetClkX();
}
}
