#include "frame/entry.h"

namespace odx
{

uint32_t narrowed(uint32_t impl, Limit limit)
{
    const bool fits =
        impl == ODX_IMPL_GPU ? limit.gpu == 0 : limit.remote == 0 || current(HW_constraint_checks_enable) == 0;
    return fits ? impl : uint32_t{ODX_IMPL_ORLAN};
}

void logDispatch(const char* name, uint32_t impl)
{
    __android_log_print(platform::kLogError, ODX_RUNTIME_LOG, "%s_%s", name, odxImplChar[impl]);
}

void logRefused(const char* name, const char* condition)
{
    ODX_LOG(Error, "Assertion failed @%s: %s\n", name, condition);
}

void logError(const char* name)
{
    ODX_LOG(Error, "Error at %s\n", name);
}

void logUnselected(const char* name)
{
    ODX_LOG(Error, "No operation mode selected @%s\n", name);
}

} // namespace odx
