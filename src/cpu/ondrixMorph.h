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

    [[gnu::always_inline]] uint32_t size() const { return before + after + 1; }
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

    [[gnu::always_inline]] explicit Steps(uint32_t size)
    {
        for (uint32_t run = 1; run < size || count == 0; run = step[count++].run) {
            const uint32_t next = size / 4 >= run ? 4 * run : size, farthest = next - run;
            step[count] = {{run < farthest ? run : farthest, 2 * run < farthest ? 2 * run : farthest, farthest},
                           next};
        }
    }
};

constexpr uint32_t kTile = 2048; // columns: a few rows of so many stay in the nearest cache
constexpr uint32_t kVector = 64; // bytes of the longest vectors
constexpr uint32_t kBatch = 4;   // rows that take each step together: what is stored is not read at once

// Down the columns, rows come in blocks as high as a window. A window then is the end of one block and the
// beginning of the next: the picks from each row to the end of its block are made when the block is complete, in
// the rows of a ring, and the pick from the beginning of a block follows the rows that enter.
//
// `Rows`, which has no linkage so that every object has a walk of its own, brings the loops over a row, and as
// `Operation` what is picked:
//   widen(in, step, n, out)           out[i] = pick of in[i], in[i + offset...]; n is at least the width, or
//                                     kVector if that is less
//   enter(in, step, sum, row, n)      the same, stored to row and picked into sum; rows have room for vectors
//   enter(in, step, sum, row, with, out, n)
//                                     besides, out[i] = pick of with[i] and the new sum[i]
//   combine(a, b, out, n)             out[i] = pick of a[i], b[i]
//   complete(ring, stride, rows, n)   from the last row up to the second: pick of each and the next one
template <class Rows>
class Tile
{
public:
    Tile(const Plane<uint8_t>& plane, Reach across, Reach down, const Steps& steps, uint32_t width,
         uint8_t* memory)
        : plane_(plane), across_(across), down_(down), steps_(steps), width_(width), stride_(strideOf(width)),
          lineLength_(stride_ + across.size() + 2 * kVector), lines_(memory),
          sum_(memory + 2 * kBatch * lineLength_), ring_(sum_ + stride_)
    {
    }

    static uint64_t memorySize(Reach across, uint32_t ringRows, uint32_t width)
    {
        const uint64_t stride = strideOf(width);
        return 2 * kBatch * (stride + across.size() + 2 * kVector) + (uint64_t{ringRows} + 1) * stride;
    }

    void filter(uint32_t left)
    {
        const uint32_t height = plane_.height, block = down_.size();
        bool ended = false; // the last block is complete
        uint32_t entered = 0;
        for (uint32_t y = 0; y < height; ++y) {
            const uint32_t last = height - 1 - y < down_.after ? height - 1 : y + down_.after;
            uint8_t* const out = rowOf(plane_.dst, plane_.dstStride, y) + left;
            const uint32_t first = y > down_.before ? y - down_.before : 0, place = first % block;
            const bool inBlock = last - first < block - place;
            const bool together = entered == last && !inBlock;
            for (; entered <= last; ++entered)
                enter(left, entered, together ? ringRow(place) : nullptr, out);
            if (place == 0) {
                memcpy(out, sum_, width_);
            } else if (inBlock) {
                if (!ended) Rows::complete(ring_, stride_, last % block + 1, width_);
                ended = true;
                memcpy(out, ringRow(place), width_);
            } else if (!together) {
                Rows::combine(ringRow(place), sum_, out, width_);
            }
        }
    }

private:
    // Whole vectors, and an odd number of them: rows do not come to lie in the same lines of the cache.
    static constexpr size_t strideOf(size_t width) { return ((width + kVector - 1) / kVector | 1) * kVector; }
    uint8_t* line(uint32_t set, uint32_t i) const { return lines_ + lineLength_ * (kBatch * set + i); }
    uint8_t* ringRow(uint32_t place) const { return ring_ + stride_ * place; }

    // The row's pixels under the windows of the tile, with readable ones behind them.
    const uint8_t* pixels(uint32_t left, uint32_t y, uint8_t* line) const
    {
        const uint8_t* const row = rowOf(plane_.src, plane_.srcStride, y);
        const uint64_t end = uint64_t{left} + width_ + across_.after;
        if (left >= across_.before && end + kVector <= plane_.width) return row + (left - across_.before);

        const uint32_t begin = left < across_.before ? 0 : left - across_.before;
        const uint32_t missing = left < across_.before ? across_.before - left : 0;
        const size_t inside = (end < plane_.width ? static_cast<size_t>(end) : plane_.width) - begin;
        memset(line, Rows::Operation::kNeutral, missing);
        memcpy(line + missing, row + begin, inside);
        if (end > plane_.width)
            memset(line + missing + inside, Rows::Operation::kNeutral, static_cast<size_t>(end - plane_.width));
        return line;
    }

    // The first step, from the image itself: runs inside it by the loop, those that reach beyond it one by one.
    void firstStep(uint32_t left, uint32_t y, uint8_t* out) const
    {
        const uint8_t* const row = rowOf(plane_.src, plane_.srcStride, y);
        const Step& step = steps_.step[0];
        const int64_t run = step.run, width = plane_.width;
        const int64_t begin = int64_t{left} - across_.before,
                      end = int64_t{left} + width_ + across_.after - run + 1;
        const int64_t first = begin < 0 ? 0 : begin, last = end < width - run + 1 ? end : width - run + 1;
        const auto clipped = [&](int64_t from, int64_t to) {
            for (int64_t x = from; x < to; ++x) {
                uint8_t picked = Rows::Operation::kNeutral;
                for (int64_t i = x < 0 ? 0 : x; i < x + run && i < width; ++i)
                    picked = Rows::Operation::pick(picked, row[i]);
                out[x - begin] = picked;
            }
        };
        memset(out, Rows::Operation::kNeutral, static_cast<size_t>(first - begin));
        clipped(begin < 1 - run ? 1 - run : begin, first);
        Rows::widen(row + first, step, static_cast<size_t>(last - first), out + (first - begin));
        memset(out + (last - begin), Rows::Operation::kNeutral, static_cast<size_t>(end - last));
        clipped(last, end < width ? end : width);
    }

    // All steps but the last, of a batch of rows.
    void prepare(uint32_t left, uint32_t y)
    {
        const uint32_t rows = plane_.height - y < kBatch ? plane_.height - y : kBatch;
        const bool inPlace = steps_.count > 1 && width_ >= 2 * kVector;
        for (uint32_t i = 0; i < rows; ++i) {
            if (inPlace) {
                firstStep(left, y + i, line(0, i));
                prepared_[i] = line(0, i);
            } else {
                prepared_[i] = pixels(left, y + i, line(1, i));
            }
        }
        const size_t all = size_t{width_} + across_.size();
        for (uint32_t s = inPlace ? 1 : 0; s + 1 < steps_.count; ++s) {
            for (uint32_t i = 0; i < rows; ++i) {
                Rows::widen(prepared_[i], steps_.step[s], all - steps_.step[s].run, line(s % 2, i));
                prepared_[i] = line(s % 2, i);
            }
        }
    }

    // A row enters; where outputs are made together with it, they are combined with a row of the ring.
    void enter(uint32_t left, uint32_t y, const uint8_t* with, uint8_t* out)
    {
        if (y % kBatch == 0) prepare(left, y);
        const uint8_t* const in = prepared_[y % kBatch];
        const uint32_t place = y % down_.size();
        if (place == 0) {
            if (y != 0) Rows::complete(ring_, stride_, down_.size(), width_);
            memset(sum_, Rows::Operation::kNeutral, width_);
        }
        const Step& step = steps_.step[steps_.count - 1];
        if (with != nullptr) {
            Rows::enter(in, step, sum_, ringRow(place), with, out, width_);
        } else {
            Rows::enter(in, step, sum_, ringRow(place), width_);
        }
    }

    const Plane<uint8_t>& plane_;
    const Reach across_, down_;
    const Steps& steps_;
    const uint32_t width_;
    const size_t stride_, lineLength_;
    const uint8_t* prepared_[kBatch];
    uint8_t* const lines_;
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
    const uint64_t tiles = (plane.width + wide - 1) / wide;
    const uint64_t even = (plane.width + tiles - 1) / tiles + kVector - 1;
    const uint32_t width =
        static_cast<uint32_t>(even / kVector * kVector < plane.width ? even / kVector * kVector : plane.width);
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
