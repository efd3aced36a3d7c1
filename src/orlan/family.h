// Declares the SIMD functions of the family whose list ODX_FAMILY_LIST names, or of all: each has the type of its
// reference, which is declared before. No guard: the list is another one each time.
#include "frame/operations/words.h"

#ifdef ODX_FAMILY_LIST
#define ODX_ONE_FAMILY ODX_FAMILY_LIST
#endif

namespace odx::ODX_TARGET
{

#define ODX_ROUTINE(number, name, index, columns, ...) ODX_IF_##columns##_V(decltype(name##C) name##V;)
#define ODX_HELPER(name, columns) ODX_IF_##columns##_V(decltype(name##C) name##V;)
#include "frame/operations/families.def"

} // namespace odx::ODX_TARGET
