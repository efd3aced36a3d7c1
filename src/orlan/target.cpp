// One target's description; compiled once per target, with its flags and ODX_TARGET its name.
#include "orlan/targets.h"

#include "cpu/reference.h"
#include "frame/helpers.h"
#include "frame/shared.h"
#include "frame/tables.h"
#include "orlan/family.h"
#include "orlan/narrow.h"
#include "orlan/simd/target.h"

#define DECLARE_NARROW(name) decltype(name##C) name##V;
namespace odx::avx2
{
ODX_NARROW(DECLARE_NARROW)
}

namespace odx::ODX_TARGET
{

// The functions that the column takes: the target's own, but for those that it takes from AVX2.
namespace taken
{
using namespace ODX_TARGET;
#define TAKE_NARROW(name) using avx2::name##V;
ODX_NARROW(TAKE_NARROW)
} // namespace taken

static void fillColumn([[maybe_unused]] void** publicColumn, [[maybe_unused]] void** internalColumn)
{
#define ODX_OPERATION(slot, name, index, columns, ...) \
    ODX_IF_##columns##_V(publish(publicColumn[slot * kImplementations], reinterpret_cast<void*>(&taken::name##V));)
#define ODX_INTERNAL(entry, name, index, columns, ...) \
    ODX_IF_##columns##_V(                              \
        publish(internalColumn[entry * kImplementations], reinterpret_cast<void*>(&taken::name##V));)
#include "frame/operations/families.def"
}

static void pointHelpers()
{
#define ODX_HELPER(name, columns) ODX_IF_##columns##_V(name##_ = &taken::name##V;)
#include "frame/operations/families.def"
}

#define ODX_TEXT(x) #x
#define ODX_TEXT_OF(x) ODX_TEXT(x)

extern const orlan::Target target;
const orlan::Target target = {ODX_TEXT_OF(ODX_TARGET), simd::supported, fillColumn, pointHelpers};

} // namespace odx::ODX_TARGET
