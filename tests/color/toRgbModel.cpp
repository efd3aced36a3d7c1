#include "color/toRgbModel.h"

namespace odx::test
{

namespace
{

using SourcePointer = std::unique_ptr<Source>;

uint32_t groupsOf(uint32_t size, uint32_t count)
{
    return (count + size - 1) / size;
}

// The column of the chroma samples of a pixel. In rows of pairs, the last pixel of an odd row has none of its own.
uint32_t sharedColumn(uint32_t x, uint32_t across, uint32_t width)
{
    return across == 2 ? std::min(x / 2, width / 2 - 1) : x;
}

SourcePointer emptySource(uint32_t width, uint32_t height)
{
    auto source = std::make_unique<Source>();
    source->width = width;
    source->height = height;
    return source;
}

Bytes lumaOf(uint32_t width, uint32_t rows, const Content& content)
{
    Bytes luma;
    for (uint32_t y = 0; y < rows; ++y) {
        for (uint32_t x = 0; x < width; ++x)
            luma.push_back(content.y(x, y));
    }
    return luma;
}

SourcePointer planarSource(uint32_t width, uint32_t height, uint32_t across, uint32_t down, const Content& content)
{
    const uint32_t chromaRows = groupsOf(down, height), chromaWidth = groupsOf(across, width);
    SourcePointer source = emptySource(width, height);
    source->buffers[0] = lumaOf(width, chromaRows * down, content);
    for (uint32_t y = 0; y < chromaRows; ++y) {
        for (uint32_t x = 0; x < chromaWidth; ++x) {
            source->buffers[1].push_back(content.cb(x, y));
            source->buffers[2].push_back(content.cr(x, y));
        }
    }
    source->at = [=, &s = *source](uint32_t x, uint32_t y) -> Sample {
        const uint32_t chroma = chromaWidth * (y / down) + sharedColumn(x, across, width);
        return {s.buffers[0][width * y + x], s.buffers[1][chroma], s.buffers[2][chroma]};
    };
    return source;
}

SourcePointer pseudoPlanarSource(uint32_t width, uint32_t height, uint32_t across, uint32_t down,
                                 const Content& content)
{
    const uint32_t chromaRows = groupsOf(down, height), chromaStride = 2 * width / across;
    SourcePointer source = emptySource(width, height);
    source->buffers[0] = lumaOf(width, chromaRows * down, content);
    for (uint32_t y = 0; y < chromaRows; ++y) {
        for (uint32_t i = 0; i < chromaStride; ++i)
            source->buffers[1].push_back(i % 2 == 0 ? content.cb(i / 2, y) : content.cr(i / 2, y));
    }
    source->at = [=, &s = *source](uint32_t x, uint32_t y) -> Sample {
        const uint32_t chroma = chromaStride * (y / down) + 2 * sharedColumn(x, across, width);
        return {s.buffers[0][width * y + x], s.buffers[1][chroma], s.buffers[1][chroma + 1]};
    };
    return source;
}

// Chroma rows of `width` bytes after the luma; where the width is odd, the last pair of a row ends in the next
// one.
SourcePointer singleBufferSource(uint32_t width, uint32_t height, bool crFirst, const Content& content)
{
    SourcePointer source = emptySource(width, height);
    Bytes& bytes = source->buffers[0];
    bytes = lumaOf(width, height, content);
    for (uint32_t y = 0; y < groupsOf(2, height); ++y) {
        for (uint32_t i = 0; i < width; ++i)
            bytes.push_back((i % 2 == 0) != crFirst ? content.cb(i / 2, y) : content.cr(i / 2, y));
    }
    if (width % 2 != 0) bytes.push_back(content.cr(width / 2, height / 2));
    source->at = [=, &s = *source](uint32_t x, uint32_t y) -> Sample {
        const uint8_t* pair = &s.buffers[0][width * height + width * (y / 2) + x / 2 * 2];
        return {s.buffers[0][width * y + x], pair[crFirst ? 1 : 0], pair[crFirst ? 0 : 1]};
    };
    return source;
}

SourcePointer codedSource(uint32_t width, uint32_t height, uint32_t across, uint32_t down, const Content& content)
{
    const uint32_t blocks = across * down, unitSize = 64 * (blocks + 2);
    const uint32_t unitsWide = groupsOf(8 * across, width), unitsHigh = groupsOf(8 * down, height);
    const uint32_t advance = unitSize * (blocks == 1 ? width / 8 : unitsWide);
    SourcePointer source = emptySource(width, height);
    Bytes& bytes = source->buffers[0];
    bytes.resize(advance * (unitsHigh - 1) + unitSize * unitsWide);
    const auto lumaPlace = [=](uint32_t x, uint32_t y) {
        const uint32_t unit = advance * (y / (8 * down)) + unitSize * (x / (8 * across));
        const uint32_t block = y / 8 % down * across + x / 8 % across;
        return unit + 64 * block + 8 * (y % 8) + x % 8;
    };
    const auto chromaPlace = [=](uint32_t x, uint32_t y) { // of Cb; that of Cr is one block on
        return advance * (y / 8) + unitSize * (x / 8) + 64 * blocks + 8 * (y % 8) + x % 8;
    };
    for (uint32_t y = 0; y < 8 * down * unitsHigh; ++y) {
        for (uint32_t x = 0; x < 8 * across * unitsWide; ++x)
            bytes[lumaPlace(x, y)] = content.y(x, y);
    }
    for (uint32_t y = 0; y < 8 * unitsHigh; ++y) {
        for (uint32_t x = 0; x < 8 * unitsWide; ++x) {
            bytes[chromaPlace(x, y)] = content.cb(x, y);
            bytes[chromaPlace(x, y) + 64] = content.cr(x, y);
        }
    }
    source->at = [=, &s = *source](uint32_t x, uint32_t y) -> Sample {
        const uint32_t chroma = chromaPlace(x / across, y / down);
        return {s.buffers[0][lumaPlace(x, y)], s.buffers[0][chroma], s.buffers[0][chroma + 64]};
    };
    return source;
}

// ---- the table ----

Conversion conversion(const char* name, Pixels pixels, uint32_t across, uint32_t down,
                      decltype(odxColorYCbCr444PlanarToRGB888u8)* function)
{
    return {name,
            pixels,
            fullRange,
            across,
            down,
            down,
            [=](uint32_t w, uint32_t h, const Content& c) { return planarSource(w, h, across, down, c); },
            [=](const Source& s, uint8_t* dst) {
                function(s.buffers[0].data(), s.buffers[1].data(), s.buffers[2].data(), s.width, s.height, 0, 0, 0,
                         dst, 0);
            }};
}

Conversion conversion(const char* name, Pixels pixels, uint32_t across, uint32_t down,
                      decltype(odxColorYCbCr444PseudoPlanarToRGB888u8)* function)
{
    return {name,
            pixels,
            fullRange,
            across,
            down,
            down,
            [=](uint32_t w, uint32_t h, const Content& c) { return pseudoPlanarSource(w, h, across, down, c); },
            [=](const Source& s, uint8_t* dst) {
                function(s.buffers[0].data(), s.buffers[1].data(), s.width, s.height, 0, 0, dst, 0);
            }};
}

using Packed = decltype(odxColorYUV420toRGB8888u8);

std::function<void(const Source&, uint8_t*)> call(Packed* function)
{
    return [=](const Source& s, uint8_t* dst) { function(s.buffers[0].data(), s.width, s.height, dst); };
}

Conversion singleBuffer(const char* name, Pixels pixels, Rgb (*arithmetic)(Sample), bool crFirst, Packed* function)
{
    return {name,
            pixels,
            arithmetic,
            2,
            2,
            1,
            [=](uint32_t w, uint32_t h, const Content& c) { return singleBufferSource(w, h, crFirst, c); },
            call(function)};
}

// A turned image is one whose pixel (x, y) is the other's (width - 1 - x, height - 1 - y).
Conversion turned(Conversion conversion)
{
    conversion.make = [make = conversion.make](uint32_t width, uint32_t height, const Content& content) {
        SourcePointer source = make(width, height, content);
        source->at = [at = source->at, width, height](uint32_t x, uint32_t y) {
            return at(width - 1 - x, height - 1 - y);
        };
        return source;
    };
    return conversion;
}

Conversion coded(const char* name, uint32_t across, uint32_t down, Packed* function)
{
    return {name,
            Pixels::Rgb888,
            jpeg,
            across,
            down,
            1,
            [=](uint32_t w, uint32_t h, const Content& c) { return codedSource(w, h, across, down, c); },
            call(function)};
}

} // namespace

std::vector<Conversion> toRgbConversions()
{
    std::vector<Conversion> all;
#define ODX_BOTH(subsampling, across, down, name, pixels)                                                      \
    all.push_back(conversion("odxColorYCbCr" #subsampling "PlanarTo" #name "u8", Pixels::pixels, across, down, \
                             odxColorYCbCr##subsampling##PlanarTo##name##u8));                                 \
    all.push_back(conversion("odxColorYCbCr" #subsampling "PseudoPlanarTo" #name "u8", Pixels::pixels, across, \
                             down, odxColorYCbCr##subsampling##PseudoPlanarTo##name##u8));
#define ODX_ALL(subsampling, across, down)              \
    ODX_BOTH(subsampling, across, down, RGB565, Rgb565) \
    ODX_BOTH(subsampling, across, down, RGB888, Rgb888) \
    ODX_BOTH(subsampling, across, down, RGBA8888, Rgba8888)
    ODX_ALL(444, 1, 1)
    ODX_ALL(422, 2, 1)
    ODX_ALL(420, 2, 2)
#undef ODX_ALL
#undef ODX_BOTH
    all.push_back(
        singleBuffer("odxColorYUV420toRGB565u8", Pixels::Rgb565, videoRange, false, odxColorYUV420toRGB565u8));
    all.push_back(turned(singleBuffer("odxColorYUV420toRGB565u8Rotate180", Pixels::Rgb565, videoRange, false,
                                      odxColorYUV420toRGB565u8Rotate180)));
    all.push_back(singleBuffer("odxColorYUV420toRGB8888u8", Pixels::Rgba8888, videoRangeFine, true,
                               odxColorYUV420toRGB8888u8));
    Conversion strided = all.back();
    strided.name = "odxColorYCrCb420PseudoPlanarToRGB8888u8";
    strided.convert = [](const Source& s, uint8_t* dst) {
        odxColorYCrCb420PseudoPlanarToRGB8888u8(s.buffers[0].data(), s.width, s.height, s.width, s.width, dst,
                                                4 * s.width);
    };
    all.push_back(strided);
    all.push_back(coded("odxColorYCrCbH1V1toRGB888u8", 1, 1, odxColorYCrCbH1V1toRGB888u8));
    all.push_back(coded("odxColorYCrCbH2V2toRGB888u8", 2, 2, odxColorYCrCbH2V2toRGB888u8));
    all.push_back(coded("odxColorYCrCbH2V1toRGB888u8", 2, 1, odxColorYCrCbH2V1toRGB888u8));
    all.push_back(coded("odxColorYCrCbH1V2toRGB888u8", 1, 2, odxColorYCrCbH1V2toRGB888u8));
    return all;
}

} // namespace odx::test
