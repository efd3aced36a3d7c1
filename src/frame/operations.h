// What the operation list says, as types: slot numbers, and the place of each reference function in the tables.
#ifndef ODX_FRAME_OPERATIONS_H
#define ODX_FRAME_OPERATIONS_H

#include "cpu/reference.h"
#include "frame/tables.h"

// ODX_IF_<columns>_C(x) and ODX_IF_<columns>_V(x) give x where an operation has that column.
#define ODX_IF_none_C(x)
#define ODX_IF_none_V(x)
#define ODX_IF_C_C(x) x
#define ODX_IF_C_V(x)
#define ODX_IF_CV_C(x) x
#define ODX_IF_CV_V(x) x

namespace odx
{

// One numbering of all operations: the public slots, then the entries of the internal table.
enum OperationNumber : uint32_t {
#define ODX_OPERATION(slot, name, family, index, columns) op_##name = slot,
#define ODX_INTERNAL(entry, name, family, index, columns) op_##name = kPublicSlots + entry,
#include "frame/operations.def"
    kOperationNumbers = kPublicSlots + kInternalEntries
};

// The operation that a reference function implements.
template <auto* Reference>
inline constexpr OperationNumber numberOf = kOperationNumbers;
#define ODX_OPERATION(slot, name, family, index, columns) \
    ODX_IF_##columns##_C(template <> inline constexpr OperationNumber numberOf<name##C> = op_##name;)
#define ODX_INTERNAL(entry, name, family, index, columns) ODX_OPERATION(entry, name, family, index, columns)
#include "frame/operations.def"

} // namespace odx

#endif
