#include "operations/draw.h"

#include "ondrix/descriptors.h"

namespace odx::test
{

namespace
{

template <class T, auto* operation>
void bitCount(Draw& draw)
{
    const uint32_t count = draw.length(1, sizeof(T));
    const T* src = draw.sourceArray<T>("src", count);
    draw.run([&] { return operation(src, count); });
}

} // namespace

std::vector<Row> descriptorRows()
{
    return {
        {"odxBitCountu8", bitCount<uint8_t, odxBitCountu8>},
        {"odxBitCountu32", bitCount<uint32_t, odxBitCountu32>},
    };
}

} // namespace odx::test
