#include "dsp/session.h"

#include "dsp/stub.h"
#include "dsp/variant.h"
#include "frame/log.h"
#include "frame/shared.h"
#include "ondrix/modes.h"

using namespace odx;
using namespace odx::remoting;

extern "C" {
uint32_t Z9_constraint_checks_enable = 1;
}

namespace
{

enum State { kClosed, kOpen, kFailed };

State state = kClosed;
int powerMode = -1;
ODXAZ9_ATTRIBUTE attributes[1];
int attributeCount = 0;

// Serialises recoveries. Lives as long as a session.
pthread_mutex_t recoveryMutex;
bool recoveryMutexLives = false;

void setAttributes(unsigned mode)
{
    attributes[0] = {ODXAZ9_POWER_MODE, static_cast<int32_t>(mode)};
    attributeCount = mode <= 2 ? 1 : 0;
}

// An entry of the session's own, which is looked up for each use.
template <class Entry>
Entry* sessionEntry(const char* symbol)
{
    auto* const entry = reinterpret_cast<Entry*>(dlsym_get(symbol));
    if (entry == nullptr) ODX_LOG(Error, "Cannot load: %s \n", symbol);
    return entry;
}

void compareVersions(const char* version)
{
    char remote[10] = "";
    callEntry<decltype(ondrixadsp_odxGetVersionX)>(pFnX_odxGetVersionX, remote, uint32_t{sizeof remote});
    remote[sizeof remote - 1] = '\0';
    if (version[0] == remote[0] && version[1] == remote[1]) return;
    ODX_LOG(Error, "Unmatch CPU and Z9 major version. CPU version is %s, Z9 version is %s", version, remote);
}

int openSession(int mode, const char* version)
{
    if (odxZ9SessionInit(static_cast<unsigned>(mode), version) != 0) {
        powerMode = -1;
        state = kFailed;
        ODX_LOG(Error, "Z9 initialized failed. Z9 Ondrix functions are disabled.");
        return -1;
    }
    powerMode = mode;
    state = kOpen;
    ODX_LOG(Debug, "Z9 initialized successfully. Z9 Ondrix functions mode %d are enabled.", mode);
    ODX_LOG(Info, "FIT:(FeatureName=>ODXAZ9, Initialized=>1)");
    return 0;
}

// ---- recovery ----

bool answers()
{
    const StubInUse stub;
    int64_t clock;
    return callEntry<decltype(ondrixadsp_odxZ9GetClkX)>(pFnX_odxZ9GetClkX, &clock) == 0;
}

bool reloadStub()
{
    constexpr int kAttempts = 10;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        ODX_LOG(Debug, "Trying to reload Z9 stub.");
        dlclose_stub();
        if (dlopen_stub() == 0) return true;
    }
    return false;
}

bool reloadSymbols()
{
    constexpr int kAttempts = 15;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        ODX_LOG(Debug, "Trying to reinitialize DSP.");
        if (load_stub_symbols() == 0) return true;
        ODX_LOG(Error, "ondrixadsp_odxZ9SessionInit failed: Unable to load symbols from ondrix stub.");
        platform::sleepSeconds(1);
    }
    return false;
}

bool recover()
{
    ODX_LOG(Debug, "ADSP SSR cleanup sequence initiated.");
    if (answers()) {
        ODX_LOG(Debug, "Z9 already up. Skipping reload.");
        return true;
    }
    const StubReplaced replaced;
    if (!reloadStub()) return false;
    ODX_LOG(Debug, "Stub reloaded successfully.");
    if (!reloadSymbols()) return false;
    if (auto* init = sessionEntry<decltype(dspRT_initZ9_with_attributes)>(ODX_STUB_INIT)) {
        init(attributes, attributeCount);
    }
    ODX_LOG(Debug, "DSP reinitialization success.");
    return true;
}

// Threads that are in recovery. The first one moves all calls to this processor, the last one moves them back; in
// between nobody selects a mode, and so nobody closes the session under the others.
pthread_mutex_t recoveringMutex = PTHREAD_MUTEX_INITIALIZER;
uint32_t recovering = 0;

void beginRecovering()
{
    pthread_mutex_lock(&recoveringMutex);
    if (recovering++ == 0) odxSelectMode(ONDRIX_OP_CPU_PERFORMANCE);
    pthread_mutex_unlock(&recoveringMutex);
}

void endRecovering()
{
    pthread_mutex_lock(&recoveringMutex);
    if (--recovering == 0) odxSelectMode(mode_globalVar);
    pthread_mutex_unlock(&recoveringMutex);
}

} // namespace

void* RemoteCall::begins(void* const& entry)
{
    constexpr uint32_t kRepetitions = 5;
    const bool again = attempts_ != 0 && code_ == kRestarted && attempts_ <= kRepetitions;
    if (attempts_ == 0) {
        // A call does not wait for a stub that is being replaced: it is done locally.
        held_ = pthread_rwlock_tryrdlock(&stubLock) == 0;
    } else if (again) {
        if (attempts_ == 1) beginRecovering();
        held_ = adspSSRcleanUpSequence() == 0 && pthread_rwlock_rdlock(&stubLock) == 0;
    }
    if (attempts_ == 0 || again) {
        ++attempts_;
        if (held_ && entry != nullptr) return entry;
        ends(kUnreachable);
    }
    if (attempts_ > 1) endRecovering();
    return nullptr;
}

void RemoteCall::ends(int code)
{
    if (held_) pthread_rwlock_unlock(&stubLock);
    held_ = false;
    code_ = code;
}

extern "C" {

int odxZ9SessionInit_internal(unsigned mode, const char* version)
{
    setAttributes(mode);
    if (load_stub_symbols() != 0) {
        ODX_LOG(Error, "ondrixadsp_odxZ9SessionInit failed: Unable to load symbols from ondrix stub.");
        return -1;
    }
    auto* const init = sessionEntry<decltype(dspRT_initZ9_with_attributes)>(ODX_STUB_INIT);
    if (init == nullptr) {
        ODX_LOG(Error, "ondrixadsp_odxZ9SessionInit failed");
        return 0;
    }
    // Neither a failing processor nor another version keeps the session from opening.
    if (init(attributes, attributeCount) == 0 && version != nullptr) compareVersions(version);
    return 0;
}

int odxZ9SessionInit(unsigned mode, const char* version)
{
    const StubReplaced replaced;
    dlopen_stub();
    recoveryMutexLives = pthread_mutex_init(&recoveryMutex, nullptr) == 0;
    return odxZ9SessionInit_internal(mode, version);
}

void odxZ9SessionDeInit()
{
    const StubReplaced replaced;
    if (auto* deinit = sessionEntry<decltype(dspRT_deinitZ9)>(ODX_STUB_DEINIT)) deinit();
    dlclose_stub();
    if (recoveryMutexLives) pthread_mutex_destroy(&recoveryMutex);
    recoveryMutexLives = false;
}

int ODXAZ9_init(int mode, const char* version)
{
    readLogSwitch();
    switch (state) {
    case kFailed:
        return -1;
    case kOpen:
        if (mode == powerMode) return 0;
        ODX_LOG(Info, "ODXAZ9_deinit");
        odxZ9SessionDeInit();
        break;
    case kClosed:
        break;
    }
    return openSession(mode, version);
}

void ODXAZ9_deinit()
{
    ODX_LOG(Info, "ODXAZ9_deinit");
    if (state != kClosed) odxZ9SessionDeInit();
    powerMode = -1;
    state = kClosed;
}

int ODXAZ9_is_ready()
{
    return state == kOpen ? 1 : 0;
}

int ODXAZ9_get_current_mode()
{
    return powerMode;
}

int odxZ9Initialize(int mode, char* version)
{
    return ODXAZ9_init(mode, version);
}

unsigned adspSSRcleanUpSequence()
{
    constexpr auto kFailure = static_cast<unsigned>(-1);
    if (!recoveryMutexLives || pthread_mutex_lock(&recoveryMutex) != 0) return kFailure;
    const bool usable = recover();
    pthread_mutex_unlock(&recoveryMutex);
    return usable ? 0 : kFailure;
}

void odxUpdateZ9ConstraintCheckFlag(unsigned flag)
{
    publish(Z9_constraint_checks_enable, flag);
}
}
