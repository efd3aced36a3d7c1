// Helper pointers: null before the first mode selection. They are declared beside the kernels that they reach.
#ifndef ODX_FRAME_HELPERS_H
#define ODX_FRAME_HELPERS_H

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

// The pointer to the kernels of a name.
#define ODX_HELPER_POINTER(name) extern odx::HelperPointer<decltype(name##C)> name##_

#endif
