// What the reference and SIMD morphology share: the operations, the border of the 3x3 filters, and the walk of NxN
// windows, whose cost does not depend on N.
#ifndef ODX_CPU_ONDRIX_MORPH_H
#define ODX_CPU_ONDRIX_MORPH_H

#include "cpu/image.h"
#include "frame/scratch.h"
#include "ondrix/types.h"

#include <string.h>

namespace odx::morph
{

// What an operation picks of two pixels, and the pixel that is never picked, which is what lies outside the image.
struct Erosion {
    static constexpr uint8_t kNeutral = 255;
    static uint8_t pick(uint8_t a, uint8_t b) { return a < b ? a : b; }
};
struct Dilation {
    static constexpr uint8_t kNeutral = 0;
    static uint8_t pick(uint8_t a, uint8_t b) { return a < b ? b : a; }
};

template <class Operation>
static constexpr uint8_t outside(odxBorderType type, uint32_t value)
{
    return type == ONDRIX_BORDER_CONSTANT ? static_cast<uint8_t>(value) : Operation::kNeutral;
}

// The outputs of 3x3 windows that reach beyond the image. For both operations.
template <class Operation>
void border3x3(const Plane<uint8_t>& plane, uint8_t outside);

// ---- NxN ----

// How far a window reaches, as far as there is an image.
struct Reach {
    uint32_t before, after;

    uint32_t size() const { return before + after + 1; }
};

static inline Reach reachOf(uint32_t N, uint32_t length)
{
    const uint32_t before = N / 2, after = N == 0 ? 0 : N - before - 1;
    return {before < length ? before : length - 1, after < length ? after : length - 1};
}

// Picks of longer and longer runs along a row: each step picks of four runs of the step before, which overlap.
struct Step {
    uint32_t offset[3]; // of the other three runs
    uint32_t run;       // that it makes
};
struct Steps {
    Step step[16]; // runs become up to 4 times as long
    uint32_t count = 0;

    explicit Steps(uint32_t size)
    {
        for (uint32_t run = 1; run < size || count == 0; run = step[count++].run) {
            const uint32_t next = size / 4 >= run ? 4 * run : size, farthest = next - run;
            step[count] = {{run < farthest ? run : farthest, 2 * run < farthest ? 2 * run : farthest, farthest},
                           next};
        }
    }
};

constexpr uint32_t kTile = 512, kVector = 64; // columns that the nearest cache holds; bytes of the longest vectors

// Down the columns, rows come in blocks as high as a window. A window then is the end of one block and the
// beginning of the next: the picks from each row to the end of its block are made when the block is complete, in
// the rows of a ring, and the pick from the beginning of a block follows the rows that enter.
//
// `Rows` brings the loops over a row; all but combine() may work on up to kVector - 1 pixels more than n:
//   kNeutral
//   widen(in, step, n, out)                 out[i] = pick of in[i], in[i + offset...]
//   enter(in, step, begins, sum, row, n)    the same, stored to row, and picked into sum or, where a block begins,
//                                           stored there
//   merge(from, row, n)                     row[i] = pick of row[i], from[i]
//   combine(a, b, out, n)                   out[i] = pick of a[i], b[i]
template <class Rows>
class Tile
{
public:
    Tile(const Plane<uint8_t>& plane, Reach across, Reach down, const Steps& steps, uint32_t width,
         uint8_t* memory)
        : plane_(plane), across_(across), down_(down), steps_(steps), width_(width),
          stride_((size_t{width} + kVector - 1) / kVector * kVector), lines_{memory,
                                                                             memory + lineLength(across, stride_)},
          sum_(lines_[1] + lineLength(across, stride_)), ring_(sum_ + stride_)
    {
    }

    static uint64_t memorySize(Reach across, uint32_t ringRows, uint32_t width)
    {
        const uint64_t stride = (uint64_t{width} + kVector - 1) / kVector * kVector;
        return 2 * (stride + across.size() + 2 * kVector) + (uint64_t{ringRows} + 1) * stride;
    }

    void filter(uint32_t left)
    {
        const uint32_t height = plane_.height, block = down_.size();
        bool ended = false; // the last block is complete
        uint32_t entered = 0;
        for (uint32_t y = 0; y < height; ++y) {
            const uint32_t last = height - 1 - y < down_.after ? height - 1 : y + down_.after;
            for (; entered <= last; ++entered) {
                if (entered % block == 0 && entered != 0) complete(block);
                enter(left, entered);
            }
            uint8_t* const out = rowOf(plane_.dst, plane_.dstStride, y) + left;
            const uint32_t first = y > down_.before ? y - down_.before : 0, place = first % block;
            if (place == 0) {
                memcpy(out, sum_, width_);
            } else if (last - first < block - place) {
                if (!ended) complete(last % block + 1);
                ended = true;
                memcpy(out, ringRow(place), width_);
            } else {
                Rows::combine(ringRow(place), sum_, out, width_);
            }
        }
    }

private:
    static size_t lineLength(Reach across, size_t stride) { return stride + across.size() + 2 * kVector; }
    uint8_t* ringRow(uint32_t place) const { return ring_ + stride_ * place; }

    // The row's pixels under the windows of the tile, with readable ones behind them.
    const uint8_t* pixels(uint32_t left, uint32_t y) const
    {
        const uint8_t* const row = rowOf(plane_.src, plane_.srcStride, y);
        const uint64_t end = uint64_t{left} + width_ + across_.after;
        if (left >= across_.before && end + kVector <= plane_.width) return row + (left - across_.before);

        uint8_t* line = lines_[1];
        const uint32_t begin = left < across_.before ? 0 : left - across_.before;
        const uint32_t missing = left < across_.before ? across_.before - left : 0;
        const size_t inside = (end < plane_.width ? static_cast<size_t>(end) : plane_.width) - begin;
        memset(line, Rows::kNeutral, missing);
        memcpy(line + missing, row + begin, inside);
        if (end > plane_.width)
            memset(line + missing + inside, Rows::kNeutral, static_cast<size_t>(end - plane_.width));
        return line;
    }

    void enter(uint32_t left, uint32_t y)
    {
        const uint8_t* in = pixels(left, y);
        const size_t all = size_t{width_} + across_.size();
        for (uint32_t i = 0; i + 1 < steps_.count; ++i) {
            Rows::widen(in, steps_.step[i], all - steps_.step[i].run, lines_[i % 2]);
            in = lines_[i % 2];
        }
        const uint32_t place = y % down_.size();
        Rows::enter(in, steps_.step[steps_.count - 1], place == 0, sum_, ringRow(place), width_);
    }

    // From the rows of a block to the picks from them to its end; nobody asks for the first one's.
    void complete(uint32_t rows)
    {
        for (uint32_t i = rows - 1; i > 1; --i)
            Rows::merge(ringRow(i), ringRow(i - 1), width_);
    }

    const Plane<uint8_t>& plane_;
    const Reach across_, down_;
    const Steps& steps_;
    const uint32_t width_;
    const size_t stride_;
    uint8_t* const lines_[2];
    uint8_t* const sum_;
    uint8_t* const ring_;
};

template <class Rows>
static inline odxStatus filterNxN(const Plane<uint8_t>& plane, uint32_t N)
{
    const Reach across = reachOf(N, plane.width), down = reachOf(N, plane.height);
    const Steps steps(across.size());
    // Of wide windows the tiles are wider: what they have in common is done for each of them.
    const uint64_t wide = 2 * uint64_t{across.size()} < kTile ? kTile : 2 * uint64_t{across.size()};
    const uint32_t width = plane.width < wide ? plane.width : static_cast<uint32_t>(wide);
    const uint32_t ringRows = down.size() < plane.height ? down.size() : plane.height;
    const Scratch<uint8_t> memory(Tile<Rows>::memorySize(across, ringRows, width));
    if (!memory) return ONDRIX_NO_MEMORY;

    Tile<Rows> tile(plane, across, down, steps, width, memory.get());
    uint32_t left = 0;
    for (; plane.width - left > width; left += width)
        tile.filter(left);
    tile.filter(plane.width - width);
    return ONDRIX_SUCCESS;
}

} // namespace odx::morph

#endif
