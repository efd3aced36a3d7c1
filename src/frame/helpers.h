// The helper pointers. Null before the first mode selection.
#ifndef ODX_FRAME_HELPERS_H
#define ODX_FRAME_HELPERS_H

#include "cpu/reference.h"
#include "frame/shared.h"

namespace odx
{

// A pointer to a kernel that a recovery may change while other threads call through it.
template <class Kernel>
class HelperPointer
{
public:
    [[gnu::always_inline]] operator Kernel*() const { return current(kernel_); }
    [[gnu::always_inline]] HelperPointer& operator=(Kernel* kernel)
    {
        publish(kernel_, kernel);
        return *this;
    }

private:
    Kernel* kernel_;
};

} // namespace odx

extern "C" {
#define ODX_HELPER(name, columns) extern odx::HelperPointer<decltype(name##C)> name##_;
#include "frame/operations/families.def"
}

#endif
