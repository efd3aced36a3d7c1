#include "operations/draw.h"

#include "dsp/remoteEntries.h"
#include "frame/operations/words.h"
#include "frame/tables.h"
#include "ondrix/modes.h"
#include "orlan/targets.h"
#include "stub/control.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

namespace odx::test
{

namespace
{

void selectMode(odxOperationMode mode)
{
    if (odxSetOperationMode(mode) != 0) {
        fprintf(stderr, "the operation mode %x cannot be selected\n", static_cast<unsigned>(mode));
        exit(1);
    }
}

// The stub, held so that it keeps its counts.
void* stub()
{
    static void* const handle = dlopen(ODX_STUB_LIBRARY, RTLD_NOW);
    if (handle == nullptr) {
        fprintf(stderr, "no stub: %s\n", dlerror());
        exit(1);
    }
    return handle;
}

} // namespace

std::vector<Column> allColumns()
{
    std::vector<Column> columns = {{"reference", [] { selectMode(ONDRIX_OP_EXT_REFERENCE); }}};
    if ((odxAvailableHardware(ONDRIX_OP_EXT_CPU) & ONDRIX_HW_SIMD) == 0) return columns;
    for (size_t i = 0; i < orlan::kTargetCount; ++i) {
        const orlan::Target* target = orlan::kTargets[i];
        if (!target->supported()) continue;
        columns.push_back({target->name, [target] {
                               orlan::useTarget(target);
                               selectMode(ONDRIX_OP_EXT_CPU);
                               // Later selections leave this column as the first one filled it.
                               uVTable(&odxFuncTable, &odxInternalFuncTable, ODX_IMPL_ORLAN);
                           }});
    }
    return columns;
}

Column remoteColumn()
{
    const auto select = [] {
        stub();
        setenv("RO_BOARD_PLATFORM", "vka", 1); // a board that has the remote processor
        selectMode(ONDRIX_OP_EXT_XDSP);
    };
    return {"remote", select, true};
}

bool isRemote(const char* operation)
{
    std::string slot = operation;
#define ODX_VERSION(name, base, columns, pointer) \
    if (slot == #name) slot = #base;
#include "frame/operations/families.def"
#define ODX_ROUTINE(number, name, index, columns, pointer, ...) \
    ODX_IF_##columns##_X(if (slot == #name) return true;)
#include "frame/operations/families.def"
    return false;
}

uint32_t remoteCalls()
{
    static const auto count = reinterpret_cast<decltype(&odxStubCount)>(dlsym(stub(), "odxStubCount"));
    odxStubCounts counts;
    count(&counts);
    return counts.completed;
}

#define FAMILY(name)         \
    namespace name           \
    {                        \
    std::vector<Row> rows(); \
    }
#include "Rows.def"

std::vector<Row> allRows()
{
    std::vector<Row> rows;
    const auto add = [&](const std::vector<Row>& family) {
        rows.insert(rows.end(), family.begin(), family.end());
    };
#define FAMILY(name) add(name::rows());
#include "Rows.def"
    return rows;
}

std::vector<std::string> builtOperations()
{
    struct Listed {
        const char* name;
        const char* columns;
    };
    const Listed list[] = {
#define ODX_ROUTINE(number, name, index, columns, ...) {#name, #columns},
#define ODX_VERSION(name, base, columns, pointer) {#name, #columns},
#include "frame/operations/families.def"
    };
    std::vector<std::string> built;
    for (const Listed& listed : list) {
        if (strcmp(listed.columns, "none") != 0) built.push_back(listed.name);
    }
    return built;
}

} // namespace odx::test
