// Log lines of the remote column, and lists of them.
#ifndef ODX_TESTS_REMOTE_LINES_H
#define ODX_TESTS_REMOTE_LINES_H

#include "remote/loader.h"
#include "support/logCapture.h"

namespace odx::test
{

using Lines = std::vector<LogLine>;

template <class T>
std::vector<T> operator+(std::vector<T> a, const std::vector<T>& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
inline Lines times(int n, const Lines& lines)
{
    Lines all;
    for (int i = 0; i < n; ++i)
        all = all + lines;
    return all;
}

inline Lines debug(const std::string& text)
{
    return {{3, "ondrix_lib_log", text}};
}
inline Lines info(const std::string& text)
{
    return {{4, "ondrix_lib_log", text}};
}
inline Lines error(const std::string& text)
{
    return {{6, "ondrix_lib_log", text}};
}

// The stub was loaded; its handle is the last one.
inline Lines loaded()
{
    char text[100];
    snprintf(text, sizeof text, "dlopen_stub completed. adspstubHandle=%p \n", loader.handle);
    return debug(text);
}
inline const Lines notLoaded =
    error("Failed to open libondrixadsp_stub.so!!! adspstubHandle is NULL, no such library \n");
inline const Lines unloaded = debug("Enter dlclose_stub completed \n");
inline Lines cannotLoad(const std::string& symbol)
{
    return error("Cannot load: " + symbol + " \n");
}
inline const Lines noSymbols =
    error("ondrixadsp_odxZ9SessionInit failed: Unable to load symbols from ondrix stub.");
inline Lines initialized(int mode)
{
    return debug("Z9 initialized successfully. Z9 Ondrix functions mode " + std::to_string(mode) +
                 " are enabled.") +
           info("FIT:(FeatureName=>ODXAZ9, Initialized=>1)");
}
inline const Lines disabled = error("Z9 initialized failed. Z9 Ondrix functions are disabled.");
inline const Lines closing = info("ODXAZ9_deinit");

} // namespace odx::test

#endif
