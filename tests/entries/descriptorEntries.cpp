#include "entries/entries.h"

#include "ondrix/descriptors.h"

namespace odx::test
{

Entries descriptorEntries()
{
    // Bits are counted in silence, and of any number of elements.
    const auto source = [] {
        Argument length = width(1);
        length.good = 30000;
        length.refused = {};
        length.accepted = {0};
        return std::vector{buffer(1, 4), length};
    };
    return {
        {ODX_ENTRY(odxBitCountu8), "", source()},
        {ODX_ENTRY(odxBitCountu32), "", source(), 1, 4},
    };
}

} // namespace odx::test
