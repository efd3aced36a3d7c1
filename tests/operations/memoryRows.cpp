#include "operations/shapes.h"

#include "ondrix/memory.h"

namespace odx::test::memory
{

void registerBuffer(Draw& draw)
{
    const uint32_t size = draw.number<uint32_t>("size", 1, 9, 4096);
    const Image<uint8_t> buffer = draw.source<uint8_t>("buffer", {size, 1}, true);
    draw.call(odxRegisterBuf, buffer.pixels, size, 3);
}

std::vector<Row> rows()
{
    return {{"odxRegisterBuf", registerBuffer}};
}

} // namespace odx::test::memory
