// What the lists of operations say, as types: the number of each operation, and the place of each reference
// function in the tables.
#ifndef ODX_FRAME_OPERATIONS_H
#define ODX_FRAME_OPERATIONS_H

#include "cpu/reference.h"
#include "frame/operations/words.h"
#include "frame/tables.h"

namespace odx
{

// One numbering of all operations: the public slots, then the entries of the internal table.
enum OperationNumber : uint32_t {
#define ODX_ROUTINE(number, name, ...) op_##name = number,
#include "frame/operations/families.def"
    kOperationNumbers = kPublicSlots + kInternalEntries
};

// The operation that a reference function implements.
template <auto* Reference>
inline constexpr OperationNumber numberOf = kOperationNumbers;
#define ODX_ROUTINE(number, name, index, columns, ...) \
    ODX_IF_##columns##_C(template <> inline constexpr OperationNumber numberOf<name##C> = op_##name;)
#include "frame/operations/families.def"

} // namespace odx

#endif
