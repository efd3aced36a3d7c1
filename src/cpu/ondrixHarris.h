// What the reference and SIMD Harris detectors share: the order in which rows are computed, the search for maxima,
// and the operations built on both. A column brings the row arithmetic, as a class `Rows`:
//
//     Rows(view, memory)            memory as large as responseBytes, gradientBytes and smoothedBytes say
//     push(y)                       takes the gradients of image row y; rows come one after the other
//     const Planes& smooth()        the products of gradients, smoothed over the five rows pushed last
//     harrisRow(planes, out)        responses of a smoothed row, at their columns
//     eigenvalueRow(planes, out)    the same of smaller eigenvalues, in 1/256
//     kLeastWidth                   of an image
//     anyAbove(row, count, limit)   whether one of these responses is; may be true where none is
//     maxima(recent, from, to, threshold, f)
//                                   f(x) for each maximum of the middle one of five response rows, in order, until
//                                   f returns false
#ifndef ODX_CPU_ONDRIX_HARRIS_H
#define ODX_CPU_ONDRIX_HARRIS_H

#include "cpu/image.h"
#include "cpu/ondrixFast.h"
#include "frame/scratch.h"
#include "ondrix/types.h"

#define ODX_HARRIS_INLINE [[gnu::always_inline]] static inline
#define ODX_HARRIS_MEMBER [[gnu::always_inline]] inline

namespace odx::harris
{

// Pixels closer than this to an edge have no response: a gradient reaches one pixel, the smoothing two more.
constexpr uint32_t kMargin = 3;
constexpr uint32_t kRing = 5; // rows that smoothing and the search for maxima look at

struct View {
    const uint8_t* src;
    uint32_t width, height;
    size_t stride;

    ODX_HARRIS_MEMBER const uint8_t* row(size_t y) const { return rowOf(src, stride, y); }
    ODX_HARRIS_MEMBER bool hasResponses() const { return width > 2 * kMargin && height > 2 * kMargin; }
};

// Rows of the products of gradients, or their smoothed sums, at their columns.
struct Planes {
    int16_t *xx, *yy, *xy;
};

// Five rows of responses, the oldest first.
struct Recent {
    const int32_t* row[kRing];
};

enum class Measure { Harris, MinEigenvalue };

ODX_HARRIS_INLINE int32_t harrisResponse(int32_t xx, int32_t yy, int32_t xy)
{
    const int32_t trace = xx + yy; // up to 2^15: its square fits
    return xx * yy - (xy * xy + static_cast<int32_t>(static_cast<uint32_t>(trace * trace) >> 4));
}

// Columns that are searched for maxima at a time.
constexpr uint32_t kSearched = 128;

// The largest of the 24 neighbours of a chunk of columns, by columns first: `column[x]` is the maximum of column
// from - 2 + x over all five rows, `around[x]` that without the middle row.
struct Neighbours {
    static constexpr uint32_t kPadding = 32; // four columns, and room for vectors
    int32_t column[kSearched + kPadding], around[kSearched + kPadding];
};

// ---- memory ----

struct Memory {
    int32_t* corner;    // ring of response rows
    int16_t* grads;     // products of gradients
    int16_t* blurgrads; // one smoothed row of products
};
// Ends the process when there is not enough memory.
Memory takeMemory(uint64_t cornerBytes, uint64_t gradsBytes, uint64_t blurgradsBytes);
void releaseMemory(const Memory& memory);

template <class Rows>
ODX_HARRIS_INLINE Memory memoryFor(const View& view)
{
    return takeMemory(kRing * Rows::responseBytes(view.width), Rows::gradientBytes(view.width),
                      Rows::smoothedBytes(view.width));
}

// ---- scans ----

// Computes the rows of responses from top to bottom: visit(y, recent), whose last row is that of y, until it
// returns false.
template <class Rows, Measure measure, class Visit>
ODX_HARRIS_INLINE void forResponses(const View& view, Visit visit)
{
    const Memory memory = memoryFor<Rows>(view);
    if (view.hasResponses()) {
        Rows rows(view, memory);
        Recent recent = {};
        for (uint32_t y = 1; y < 5; ++y)
            rows.push(y);
        for (uint32_t k = 0; k < view.height - 2 * kMargin; ++k) {
            rows.push(k + 5);
            int32_t* const out =
                rowOf(memory.corner, static_cast<size_t>(Rows::responseBytes(view.width)), k % kRing);
            const Planes& smoothed = rows.smooth();
            if constexpr (measure == Measure::Harris) {
                rows.harrisRow(smoothed, out);
            } else {
                rows.eigenvalueRow(smoothed, out);
            }
            for (uint32_t i = 1; i < kRing; ++i)
                recent.row[i - 1] = recent.row[i];
            recent.row[kRing - 1] = out;
            if (!visit(k + kMargin, recent)) break;
        }
    }
    releaseMemory(memory);
}

ODX_HARRIS_INLINE uint32_t effectiveBorder(uint32_t border)
{
    return border < 6 ? 5 : border;
}

// The maxima of responses in raster order: accept(x, y, response), until it returns false.
template <class Rows, Measure measure, class Accept>
ODX_HARRIS_INLINE void forMaxima(const View& view, uint32_t border, int32_t threshold, Accept accept)
{
    border = effectiveBorder(border);
    const bool covered = 2 * uint64_t{border} >= view.width || 2 * uint64_t{border} >= view.height;
    forResponses<Rows, measure>(view, [&](uint32_t last, const Recent& recent) {
        const uint32_t y = last - 2;
        if (covered || y >= view.height - border) return false;
        if (y < border) return true;
        bool more = true;
        Rows::maxima(recent, border, view.width - border, threshold, [&](uint32_t x) {
            more = accept(x, y, recent.row[2][x]);
            return more;
        });
        return more;
    });
}

// ---- corners in raster order ----

struct CornerOutput {
    uint32_t* xy;
    int32_t* scores; // may be null
    uint32_t capacity;
    uint32_t* count;
};

template <class Rows, class Excluder>
ODX_HARRIS_INLINE void corners(const View& view, uint32_t border, int32_t threshold, const CornerOutput& output,
                               Excluder excluder)
{
    uint32_t count = 0;
    forMaxima<Rows, Measure::Harris>(view, border, threshold, [&](uint32_t x, uint32_t y, int32_t response) {
        if (count >= output.capacity) return false;
        excluder.enter(y);
        if (excluder.excludes(x)) return true;
        output.xy[2 * size_t{count}] = x;
        output.xy[2 * size_t{count} + 1] = y;
        if (output.scores != nullptr) output.scores[count] = response;
        ++count;
        return count < output.capacity;
    });
    *output.count = count;
}

template <class Rows>
ODX_HARRIS_INLINE void cornersInMask(const View& view, uint32_t border, int32_t threshold,
                                     const CornerOutput& output, const uint8_t* bits, uint32_t maskWidth,
                                     uint32_t maskHeight)
{
    fast::Mask mask;
    *output.count = 0;
    if (!fast::fitMask(mask, bits, view.width, view.height, maskWidth, maskHeight)) return;
    corners<Rows>(view, border, threshold, output, mask);
}

// ---- corners by strength ----

struct Candidate {
    uint32_t x, y;
    int32_t response;
};

// Maxima are at least three pixels apart, so this many suffice.
ODX_HARRIS_INLINE uint64_t candidateLimit(const View& view)
{
    return (uint64_t{view.width} + 2) / 3 * ((uint64_t{view.height} + 2) / 3);
}

template <class Rows, Measure measure>
ODX_HARRIS_INLINE uint32_t collect(const View& view, uint32_t border, int32_t threshold, Candidate* candidates)
{
    uint32_t count = 0;
    forMaxima<Rows, measure>(view, border, threshold, [&](uint32_t x, uint32_t y, int32_t response) {
        candidates[count++] = {x, y, response};
        return true;
    });
    return count;
}

// Without memory for the candidates there are no corners, and a line says so.
void logNoCandidates(const char* operation);
// Writes the strongest candidates in raster order; among equals the earlier one wins.
void writeStrongest(Candidate* candidates, uint32_t candidateCount, const CornerOutput& output);
// Writes candidates from the strongest on that are at least the distance apart, down to the quality.
void writeSpread(const View& view, Candidate* candidates, uint32_t candidateCount, float qualityLevel,
                 uint32_t minDistance, const CornerOutput& output);

template <class Rows>
ODX_HARRIS_INLINE void strongestCorners(const View& view, uint32_t border, int32_t threshold,
                                        const CornerOutput& output)
{
    *output.count = 0;
    const Scratch<Candidate> candidates(candidateLimit(view));
    if (!candidates) return logNoCandidates("odxCornerHarrisAdaptiveu8");
    const uint32_t count = collect<Rows, Measure::Harris>(view, border, threshold, candidates.get());
    writeStrongest(candidates.get(), count, output);
}

template <class Rows>
ODX_HARRIS_INLINE void goodFeatures(const View& view, uint32_t border, float qualityLevel, uint32_t minDistance,
                                    const CornerOutput& output)
{
    *output.count = 0;
    const Scratch<Candidate> candidates(candidateLimit(view));
    if (!candidates) return logNoCandidates("odxGoodFeatureToTracku8");
    const uint32_t count = collect<Rows, Measure::MinEigenvalue>(view, border, 0, candidates.get());
    writeSpread(view, candidates.get(), count, qualityLevel, minDistance, output);
}

// ---- the strongest response of a window ----

template <class Rows>
ODX_HARRIS_INLINE odxStatus localMaximum(const View& view, uint32_t centreX, uint32_t centreY, uint32_t radius,
                                         uint32_t* x, uint32_t* y, int32_t* response)
{
    // The part of the window that has responses, and the part of the image that these come from.
    const auto clipped = [](uint32_t centre, uint32_t reach, uint32_t length, uint32_t& from, uint32_t& to) {
        const uint64_t end = uint64_t{centre} + reach + 1, limit = length - kMargin;
        from = centre > reach && centre - reach > kMargin ? centre - reach : kMargin;
        to = static_cast<uint32_t>(end < limit ? end : limit);
        return from < to;
    };
    uint32_t left = 0, right = 0, top = 0, bottom = 0;
    if (!view.hasResponses() || !clipped(centreX, radius, view.width, left, right) ||
        !clipped(centreY, radius, view.height, top, bottom)) {
        return ONDRIX_BAD_PARAMETER;
    }
    uint32_t x0 = left - kMargin, partWidth = right - left + 2 * kMargin;
    if (partWidth < Rows::kLeastWidth) { // more columns than are looked at
        partWidth = Rows::kLeastWidth;
        if (x0 > view.width - partWidth) x0 = view.width - partWidth;
    }
    const uint32_t y0 = top - kMargin;
    const View part = {view.row(y0) + x0, partWidth, bottom - top + 2 * kMargin, view.stride};
    bool found = false;
    forResponses<Rows, Measure::Harris>(part, [&](uint32_t row, const Recent& recent) {
        const int32_t* const responses = recent.row[kRing - 1];
        if (found && !Rows::anyAbove(responses + (left - x0), right - left, *response)) return true;
        for (uint32_t column = left; column < right; ++column) {
            if (found && responses[column - x0] <= *response) continue;
            found = true;
            *response = responses[column - x0];
            *x = column;
            *y = y0 + row;
        }
        return true;
    });
    return ONDRIX_SUCCESS;
}

} // namespace odx::harris

#endif
