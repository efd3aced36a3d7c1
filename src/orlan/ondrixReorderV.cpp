#include "cpu/ondrixReorder.h"
#include "cpu/ondrixReorderC.h"
#include "orlan/simd/columns.h"
#include "orlan/squares.h"

#define ODX_FAMILY_LIST "frame/operations/reordering.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{

// ---- mirrors ----

// kBytes pixels, or as many as a vector holds, in reverse order.
template <size_t size>
struct Reversed;
template <>
struct Reversed<1> {
    static constexpr size_t kPixels = kBytes;
    u8v v;
    ODX_MEMBER static Reversed load(const uint8_t* p) { return {reverse(simd::load<u8v>(p))}; }
    ODX_MEMBER void store(uint8_t* p) const { simd::store(p, v); }
};
template <>
struct Reversed<2> {
    static constexpr size_t kPixels = kBytes / 2;
    u16v v;
    ODX_MEMBER static Reversed load(const uint8_t* p) { return {reverse(simd::load<u16v>(p))}; }
    ODX_MEMBER void store(uint8_t* p) const { simd::store(p, v); }
};
template <>
struct Reversed<3> {
    static constexpr size_t kPixels = kBytes;
    u8x3 v;
    ODX_MEMBER static Reversed load(const uint8_t* p)
    {
        const u8x3 pixels = load3(p);
        return {{reverse(pixels.a), reverse(pixels.b), reverse(pixels.c)}};
    }
    ODX_MEMBER void store(uint8_t* p) const { store3(p, v.a, v.b, v.c); }
};

template <size_t size>
struct Mirror {
    using Vector = Reversed<size>;
    static constexpr size_t kSize = size, kPixels = Vector::kPixels;

    ODX_MEMBER static void copy(const uint8_t* src, uint8_t* dst, size_t width)
    {
        if (width < kPixels) {
            for (size_t x = 0; x < width; ++x)
                reorder::setPixel(dst, x, reorder::pixelAt<size>(src, width - 1 - x));
            return;
        }
        const auto move = [=](size_t x) {
            Vector::load(src + size * (width - kPixels - x)).store(dst + size * x);
        };
        // Two are loaded before one is stored, which makes pairs of vectors.
        const auto moveTwo = [=](size_t x) {
            const uint8_t* const in = src + size * (width - 2 * kPixels - x);
            const Vector last = Vector::load(in + size * kPixels), first = Vector::load(in);
            last.store(dst + size * x);
            first.store(dst + size * (x + kPixels));
        };
        size_t x = 0;
        for (; size < 3 && width - x > 4 * kPixels; x += 4 * kPixels)
            moveTwo(x), moveTwo(x + 2 * kPixels);
        for (; x < width - kPixels; x += kPixels)
            move(x);
        Vector::load(src).store(dst + size * (width - kPixels));
    }
    ODX_MEMBER static void exchange(uint8_t* a, uint8_t* b, size_t width) { exchangeUpTo(a, b, width, width); }
    ODX_MEMBER static void inPlace(uint8_t* row, size_t width) { exchangeUpTo(row, row, width, width / 2); }

private:
    ODX_MEMBER static void exchangeUpTo(uint8_t* a, uint8_t* b, size_t width, size_t end)
    {
        size_t x = 0;
        for (; end - x >= kPixels; x += kPixels) {
            const size_t mirrored = width - kPixels - x;
            const Vector left = Vector::load(a + size * x), right = Vector::load(b + size * mirrored);
            right.store(a + size * x);
            left.store(b + size * mirrored);
        }
        reorder::exchangeMirrored<size>(a, b, width, x, end);
    }
};

void odxFlipu8V(const uint8_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride, uint8_t* dst,
                unsigned dstStride, int dir)
{
    reorder::flip<Mirror<1>>(src, srcWidth, srcHeight, srcStride, dst, dstStride, dir);
}

void odxFlipu16V(const uint16_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride, uint16_t* dst,
                 unsigned dstStride, int dir)
{
    reorder::flip<Mirror<2>>(reinterpret_cast<const uint8_t*>(src), srcWidth, srcHeight, srcStride,
                             reinterpret_cast<uint8_t*>(dst), dstStride, dir);
}

odxStatus odxFlipRGB888u8V(const uint8_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride,
                           uint8_t* dst, unsigned dstStride, int dir)
{
    reorder::flip<Mirror<3>>(src, srcWidth, srcHeight, srcStride, dst, dstStride, dir);
    return ONDRIX_SUCCESS;
}

// ---- transposition ----

// 16 bytes of columns, and as many rows as a vector of the destination has elements: each 16 bytes of a vector
// take a square of their own.
template <size_t size>
struct Block {
    static constexpr size_t kColumns = 16 / size, kRows = kBytes / size;

    ODX_MEMBER static void move(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst, ptrdiff_t dstStride)
    {
        asm("" : "+r"(src), "+r"(dst)); // one address at a time: compilers would keep those of all rows
        if constexpr (size == 4 && kStoresColumns) {
            storeWordColumns(src, srcStride, dst, dstStride);
        } else {
            move(src, srcStride, dst, dstStride, std::make_index_sequence<kColumns>());
        }
    }

private:
    template <size_t... i>
    ODX_MEMBER static void move(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst, ptrdiff_t dstStride,
                                std::index_sequence<i...>)
    {
        u8v v[kColumns];
        ((v[i] = loadSixteens(src, srcStride * (ptrdiff_t)kColumns), src += srcStride), ...);
        transposeSquares<size>(v);
        ((store(dst, v[i]), dst += dstStride), ...);
    }
};

template <>
struct Block<3> {
    static constexpr size_t kColumns = kBytes, kRows = 1;

    ODX_MEMBER static void move(const uint8_t* src, ptrdiff_t, uint8_t* dst, ptrdiff_t dstStride)
    {
        storeTripleColumn(src, dst, dstStride);
    }
};

// Strips of rows that become whole lines of the cache in the destination, or two where blocks are made in few
// instructions, in blocks of so many rows and columns that the pages of both images are found again: each row of a
// large image lies on pages of its own.
template <size_t size>
static void transposeStrips(const reorder::Transposition& t)
{
    using Block = ODX_TARGET::Block<size>;
    constexpr size_t kColumns = Block::kColumns, kRows = Block::kRows, kLines = kStoresColumns ? 2 : 1,
                     kStrip = kBytes < 64 || size == 3 ? kLines * 64 / size / kRows * kRows : kRows;
    constexpr size_t kFarColumns = 8 * kColumns, kFarRows = 8 / kLines * kStrip;
    if (t.width < kColumns || t.height < kRows) return reorder::transposeBlocks<size>(t);
    const auto strip = [&t](size_t left, size_t right, size_t y, size_t end) {
        for (size_t x = left; x < right; x += kColumns) {
            const size_t column = t.width - x < kColumns ? t.width - kColumns : x;
            const uint8_t* in = t.src + t.srcStride * (ptrdiff_t)y + size * column;
            uint8_t* out = t.dst + t.dstStride * (ptrdiff_t)column + size * y;
            const size_t rows = end - y;
            for (size_t r = kRows; r <= rows;
                 r += kRows, in += t.srcStride * (ptrdiff_t)kRows, out += size * kRows)
                Block::move(in, t.srcStride, out, t.dstStride);
            // The last block overlaps the one before, which may be another strip's.
            if (const size_t back = -rows % kRows; back != 0)
                Block::move(in - t.srcStride * (ptrdiff_t)back, t.srcStride, out - size * back, t.dstStride);
        }
    };
    const auto least = [](size_t a, size_t b) { return a < b ? a : b; };
    for (size_t top = 0; top < t.height; top += kFarRows) {
        for (size_t x = 0; x < t.width; x += kFarColumns) {
            for (size_t y = top; y < least(t.height, top + kFarRows); y += kStrip)
                strip(x, least(t.width, x + kFarColumns), y, least(t.height, y + kStrip));
        }
    }
}

// Lines that are a power of two apart fall into the same few places of a cache, and drive each other out before
// their next bytes are wanted; of large images no line stays near. Tiles are copied together first, by whole
// lines.
template <size_t size>
static void transposeTiles(const reorder::Transposition& t)
{
    using Block = ODX_TARGET::Block<size>;
    constexpr size_t kColumns = 64 / size, kRows = 256 / size, kFarColumns = 8 * kColumns, kFarRows = 2 * kRows;
    alignas(64) uint8_t tile[64 * kRows];
    const auto move = [&t, &tile](size_t x, size_t y) {
        const uint8_t* src = t.src + t.srcStride * (ptrdiff_t)y + size * x;
        for (uint8_t* line = tile; line < tile + sizeof tile; line += 64, src += t.srcStride) {
            __builtin_prefetch(src + 64);
            for (size_t i = 0; i < 64; i += kBytes)
                store(line + i, load<u8v>(src + i));
        }
        for (size_t c = 0; c < kColumns; c += Block::kColumns) {
            for (size_t r = 0; r < kRows; r += Block::kRows)
                Block::move(tile + 64 * r + size * c, 64,
                            t.dst + t.dstStride * (ptrdiff_t)(x + c) + size * (y + r), t.dstStride);
        }
    };
    // What is left of tiles begins earlier where it would be narrower than a block.
    const auto rest = [](size_t all, size_t tiled, size_t block) {
        return tiled == all || all - tiled >= block || all < block ? tiled : all - block;
    };
    const size_t width = t.width / kColumns * kColumns, height = t.height / kRows * kRows;
    const size_t right = rest(t.width, width, Block::kColumns), bottom = rest(t.height, height, Block::kRows);
    for (size_t top = 0; top < height; top += kFarRows) {
        for (size_t left = 0; left < width; left += kFarColumns) {
            for (size_t y = top; y < height && y < top + kFarRows; y += kRows) {
                for (size_t x = left; x < width && x < left + kFarColumns; x += kColumns)
                    move(x, y);
            }
        }
    }
    transposeStrips<size>({t.src + size * right, t.width - right, t.height, t.srcStride,
                           t.dst + t.dstStride * (ptrdiff_t)right, t.dstStride});
    transposeStrips<size>({t.src + t.srcStride * (ptrdiff_t)bottom, right, t.height - bottom, t.srcStride,
                           t.dst + size * bottom, t.dstStride});
}

template <size_t size>
ODX_INLINE void transposeVectors(const reorder::Transposition& t)
{
    if constexpr (size != 3) {
        const bool apart = t.srcStride % 1024 == 0, large = t.width * t.height > (size_t{8} << 20) / size;
        if (apart || large) return transposeTiles<size>(t);
    }
    transposeStrips<size>(t);
}

void odxTransposeu8V(const uint8_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride, uint8_t* dst,
                     unsigned dstStride)
{
    transposeVectors<1>(reorder::transposition(src, srcWidth, srcHeight, srcStride, dst, dstStride));
}

void odxTransposeu16V(const uint16_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride,
                      uint16_t* dst, unsigned dstStride)
{
    transposeVectors<2>(reorder::transposition(src, srcWidth, srcHeight, srcStride, dst, dstStride));
}

void odxTransposef32V(const float* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride, float* dst,
                      unsigned dstStride)
{
    transposeVectors<4>(reorder::transposition(src, srcWidth, srcHeight, srcStride, dst, dstStride));
}

void odxTransposeRGB888u8V(const uint8_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride,
                           uint8_t* dst, unsigned dstStride)
{
    // The reference says what it refuses, and takes the images that are too small.
    const bool refused = !src || !dst || srcStride < uint64_t{srcWidth} * 3 || dstStride < uint64_t{srcHeight} * 3;
    if (refused || !kStoresColumns || srcWidth < kBytes)
        return odxTransposeRGB888u8C(src, srcWidth, srcHeight, srcStride, dst, dstStride);
    transposeVectors<3>(reorder::transposition(src, srcWidth, srcHeight, srcStride, dst, dstStride));
}

odxStatus odxRotateImageu8V(const uint8_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride,
                            uint8_t* dst, unsigned dstStride, int degree)
{
    if (degree == 2) return odxRotateImageu8C(src, srcWidth, srcHeight, srcStride, dst, dstStride, degree);
    transposeVectors<1>(reorder::quarterTurn(src, srcWidth, srcHeight, srcStride, dst, dstStride, degree == 1));
    return ONDRIX_SUCCESS;
}

odxStatus odxRotateImageInterleavedu8V(const uint8_t* src, unsigned srcWidth, unsigned srcHeight,
                                       unsigned srcStride, uint8_t* dst, unsigned dstStride, int degree)
{
    if (degree == 2)
        return odxRotateImageInterleavedu8C(src, srcWidth, srcHeight, srcStride, dst, dstStride, degree);
    transposeVectors<2>(reorder::quarterTurn(src, srcWidth, srcHeight, srcStride, dst, dstStride, degree == 1));
    return ONDRIX_SUCCESS;
}

} // namespace odx::ODX_TARGET
