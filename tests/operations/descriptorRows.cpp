#include "operations/shapes.h"

#include "ondrix/descriptors.h"

namespace odx::test
{

std::vector<Row> descriptorRows()
{
    return {
        {"odxBitCountu8", arrayToResult<uint8_t, odxBitCountu8>},
        {"odxBitCountu32", arrayToResult<uint32_t, odxBitCountu32>},
    };
}

} // namespace odx::test
