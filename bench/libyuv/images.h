// Pictures of a measurement as libyuv takes them.
#ifndef ODX_BENCH_LIBYUV_IMAGES_H
#define ODX_BENCH_LIBYUV_IMAGES_H

#include "peers.h"

#include <libyuv.h>

namespace odx::bench
{

using test::Measurement;

struct LibyuvPeers : Peers {
    LibyuvPeers(std::initializer_list<Peer> peers) : Peers("libyuv", peers) {}
};

// An image of luma and chroma, and one of packed pixels.
struct Images {
    explicit Images(const Measurement& measurement)
        : width(static_cast<int>(measurement.extent.width)), height(static_cast<int>(measurement.extent.height))
    {
        const size_t pixels = size_t{measurement.extent.width} * measurement.extent.height;
        planes.resize(4 * pixels);
        packed.resize(4 * pixels);
        uint32_t noise = 1;
        for (std::vector<uint8_t>* bytes : {&planes, &packed}) {
            for (uint8_t& byte : *bytes)
                byte = static_cast<uint8_t>((noise = noise * 1664525 + 1013904223) >> 24);
        }
        y = planes.data();
        second = y + pixels;
        third = second + pixels;
    }
    Images(const Images&) = delete;
    Images& operator=(const Images&) = delete;

    int width, height;
    std::vector<uint8_t> planes, packed;
    uint8_t *y, *second, *third;
};

// Chroma rows of 1/across of a plane's width.
template <auto* convert, int across, int pixelSize>
Call planes(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        const int chroma = i->width / across;
        convert(i->y, i->width, i->second, chroma, i->third, chroma, i->packed.data(), pixelSize * i->width,
                i->width, i->height);
    };
}

template <auto* convert, int pixelSize>
Call pairs(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        convert(i->y, i->width, i->second, i->width, i->packed.data(), pixelSize * i->width, i->width, i->height);
    };
}

// The other way: pixels to luma and chroma.
template <auto* convert, int across, int pixelSize>
Call toPlanes(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        const int chroma = i->width / across;
        convert(i->packed.data(), pixelSize * i->width, i->y, i->width, i->second, chroma, i->third, chroma,
                i->width, i->height);
    };
}

template <auto* convert, int pixelSize>
Call toPairs(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        convert(i->packed.data(), pixelSize * i->width, i->y, i->width, i->second, i->width, i->width, i->height);
    };
}

// One packed image to another.
template <auto* convert, int fromSize, int toSize>
Call repack(const Measurement& measurement)
{
    return [i = std::make_shared<Images>(measurement)] {
        convert(i->packed.data(), fromSize * i->width, i->y, toSize * i->width, i->width, i->height);
    };
}

} // namespace odx::bench

#endif
