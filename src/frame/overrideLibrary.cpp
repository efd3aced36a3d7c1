// The optional library through which a device's maker may override parts of this one.
#include "ondrix/modes.h"

#include "frame/log.h"
#include "platform/platform.h"

namespace
{

namespace platform = odx::platform;

constexpr char kPath[] = "/data/local/libodxopt.so";
void* library = nullptr;

} // namespace

extern "C" {

int odxPlatformOptLoad(void)
{
    // The first line has a tag of its own.
    __android_log_print(platform::kLogDebug, "odx", "Loading from: %s\n", kPath);
    if (library == nullptr) library = platform::openLibrary(kPath);
    if (library == nullptr) {
        __android_log_print(platform::kLogError, ODX_PLATFORM_LOG, "dlopen for %s failed!\n Error:%s\n", kPath,
                            platform::loaderError());
        return -1;
    }
    __android_log_print(platform::kLogDebug, ODX_PLATFORM_LOG, "dlopen for %s is successfull.\n", kPath);
    return 0;
}

int odxPlatformOptClose(void)
{
    if (library != nullptr) platform::closeLibrary(library);
    library = nullptr;
    return 0;
}

void* odxPlatformOptGetFunc(const char* symbol)
{
    void* const function =
        library != nullptr && symbol != nullptr ? platform::findSymbol(library, symbol) : nullptr;
    if (function == nullptr) {
        __android_log_print(platform::kLogError, ODX_PLATFORM_LOG, "dlsym for %s failed! \n Error:%s\n",
                            symbol != nullptr ? symbol : "(null)",
                            library != nullptr ? platform::loaderError() : "the library is not loaded");
    }
    return function;
}
}
