// One target's description; compiled once per target, with its flags and ODX_TARGET its name.
#include "orlan/targets.h"

#include "cpu/reference.h"
#include "frame/helpers.h"
#include "frame/shared.h"
#include "frame/tables.h"
#include "orlan/family.h"
#include "orlan/simd/target.h"

namespace odx::ODX_TARGET
{

static void fillColumn([[maybe_unused]] void** publicColumn, [[maybe_unused]] void** internalColumn)
{
#define ODX_OPERATION(slot, name, index, columns, ...) \
    ODX_IF_##columns##_V(publish(publicColumn[slot * kImplementations], reinterpret_cast<void*>(&name##V));)
#define ODX_INTERNAL(entry, name, index, columns, ...) \
    ODX_IF_##columns##_V(publish(internalColumn[entry * kImplementations], reinterpret_cast<void*>(&name##V));)
#include "frame/operations/families.def"
}

static void pointHelpers()
{
#define ODX_HELPER(name, columns) ODX_IF_##columns##_V(name##_ = &name##V;)
#include "frame/operations/families.def"
}

#define ODX_TEXT(x) #x
#define ODX_TEXT_OF(x) ODX_TEXT(x)

extern const orlan::Target target;
const orlan::Target target = {ODX_TEXT_OF(ODX_TARGET), simd::supported, fillColumn, pointHelpers};

} // namespace odx::ODX_TARGET
