#include "cpu/ondrixFastC.h"

#include "cpu/ondrixFastReference.h"

#include <algorithm>

using namespace odx;
using namespace odx::fast;

namespace
{

// Candidates in raster order. Their places are numbers that ascend, from 1 on: something is left of the first.
struct Candidates {
    const uint32_t* xy;
    const uint32_t* scores;
    uint32_t count;

    static uint64_t place(uint64_t x, uint64_t y) { return (y << 32 | x) + 1; }
    uint64_t placeOf(uint32_t i) const { return place(xy[2 * size_t{i}], xy[2 * size_t{i} + 1]); }
    // Beyond the list there is its last candidate again.
    uint32_t within(uint32_t i) const { return i < count ? i : count - 1; }

    // 1 if candidate i is one of the `width` pixels from `first` on and has at least the score, otherwise 0. A
    // number, since results are combined without branches: they'd be mispredicted.
    uint32_t suppresses(uint32_t i, uint64_t first, uint32_t width, uint32_t score) const
    {
        return uint32_t{placeOf(i) - first < width} & uint32_t{scores[i] >= score};
    }
};

// A row beside the one whose candidates are tested. The cursor only moves on: it is at the first candidate that
// may touch the tested one.
struct NeighbourRow {
    const Candidates& candidates;
    uint32_t cursor = 0;

    bool suppresses(uint32_t start, uint32_t x, uint32_t y, uint32_t score)
    {
        const uint64_t first = Candidates::place(x, y) - 1;
        if (cursor < start) cursor = start;
        while (cursor < candidates.count && candidates.placeOf(cursor) < first)
            ++cursor;
        const auto next = [&](uint32_t n) {
            return candidates.suppresses(candidates.within(cursor + n), first, 3, score);
        };
        return (next(0) | next(1) | next(2)) != 0;
    }
};

// Where the survivors go.
struct Survivors {
    uint32_t *xy, *scores;
    uint32_t count;

    void add(const Candidates& candidates, uint32_t i)
    {
        xy[2 * size_t{count}] = candidates.xy[2 * size_t{i}];
        xy[2 * size_t{count} + 1] = candidates.xy[2 * size_t{i} + 1];
        scores[count] = candidates.scores[i];
        ++count;
    }
};

// The scores of three neighbouring rows at their columns, so that a candidate's neighbours are looked up without
// branches. A place holds its row, counted from 2, and the score: what an earlier row left there is always less
// than what is looked for, and nothing needs to be cleared.
class ScoreRows
{
public:
    static constexpr uint32_t kColumns = 4094, kRows = 0xFFFD, kScores = 0x10000;

    explicit ScoreRows(uint32_t columns)
    {
        for (auto& row : rows_)
            memset(row, 0, sizeof *row * (size_t{columns} + 2));
    }

    void enter(uint32_t x, uint32_t y, uint32_t score) { rows_[y % 3][x + 1] = value(y, score); }

    bool suppresses(uint32_t x, uint32_t y, uint32_t score) const
    {
        const auto three = [x](const uint32_t* row) { return std::max({row[x], row[x + 1], row[x + 2]}); };
        const uint32_t *const row = rows_[y % 3], beside = std::max(row[x], row[x + 2]);
        const bool above = three(rows_[(y + 2) % 3]) >= value(y - 1, score),
                   below = three(rows_[(y + 1) % 3]) >= value(y + 1, score);
        return (beside >= value(y, score)) | above | below;
    }

private:
    static uint32_t value(uint32_t y, uint32_t score) { return (y + 2) << 16 | score; }

    uint32_t rows_[3][kColumns + 2];
};

void suppressByRows(const Candidates& candidates, uint32_t columns, Survivors& survivors)
{
    ScoreRows rows(columns);
    const auto yOf = [&](uint32_t i) { return candidates.xy[2 * size_t{i} + 1]; };
    // Enters the row that begins with a candidate; returns where the next one begins.
    const auto enterRow = [&](uint32_t i) {
        if (i == candidates.count) return i;
        for (const uint32_t y = yOf(i); i < candidates.count && yOf(i) == y; ++i)
            rows.enter(candidates.xy[2 * size_t{i}], y, candidates.scores[i]);
        return i;
    };
    uint32_t begin = 0, end = enterRow(0);
    while (begin < candidates.count) {
        const uint32_t y = yOf(begin);
        // Another row than the one below may take the place of this one, and is entered after it.
        const bool adjacent = end < candidates.count && yOf(end) == y + 1;
        uint32_t nextEnd = adjacent ? enterRow(end) : end;
        for (uint32_t i = begin; i < end; ++i) {
            if (!rows.suppresses(candidates.xy[2 * size_t{i}], y, candidates.scores[i]))
                survivors.add(candidates, i);
        }
        if (!adjacent) nextEnd = enterRow(end);
        begin = end;
        end = nextEnd;
    }
}

} // namespace

extern "C" {

void make_offsets(ptrdiff_t* offsets, unsigned int stride)
{
    for (int k = 0; k < kCircleSize; ++k)
        offsets[k] = kCircle[k].dx + kCircle[k].dy * static_cast<ptrdiff_t>(stride);
}

void nms_processing(const uint32_t* xy, const uint32_t* scores, uint32_t* rowStart, uint32_t count,
                    uint32_t* xyOut, uint32_t* scoresOut, uint32_t* countOut)
{
    *countOut = 0;
    if (count == 0) return;

    constexpr uint32_t kNone = 0xFFFFFFFF;
    const Candidates candidates = {xy, scores, count};
    const auto yOf = [xy](uint32_t i) { return xy[2 * size_t{i} + 1]; };
    const uint32_t lastY = yOf(count - 1);
    for (uint32_t y = 0; y <= lastY; ++y)
        rowStart[y] = kNone;
    uint32_t highest = 0, right = 0;
    for (uint32_t i = 0; i < count; ++i) {
        if (i == 0 || yOf(i) != yOf(i - 1)) rowStart[yOf(i)] = i;
        highest = std::max(highest, scores[i]);
        right = std::max(right, xy[2 * size_t{i}]);
    }
    Survivors survivors = {xyOut, scoresOut, 0};
    if (right < ScoreRows::kColumns && lastY < ScoreRows::kRows && highest < ScoreRows::kScores) {
        suppressByRows(candidates, right + 1, survivors);
        *countOut = survivors.count;
        return;
    }

    NeighbourRow above = {candidates}, below = {candidates};
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t x = xy[2 * size_t{i}], y = yOf(i), score = scores[i];
        const uint64_t place = candidates.placeOf(i);
        if ((candidates.suppresses(i > 0 ? i - 1 : 0, place - 1, 1, score) |
             candidates.suppresses(candidates.within(i + 1), place + 1, 1, score)) != 0)
            continue;
        if (y > 0 && rowStart[y - 1] != kNone && above.suppresses(rowStart[y - 1], x, y - 1, score)) continue;
        if (y != lastY && rowStart[y + 1] != kNone && below.suppresses(rowStart[y + 1], x, y + 1, score)) continue;
        survivors.add(candidates, i);
    }
    *countOut = survivors.count;
}

int32_t fast9_corner_scoreC(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier)
{
    return score<9>(pixel, offsets, barrier);
}

void score_9(const uint8_t* src, unsigned int width, [[maybe_unused]] unsigned int height, int barrier,
             unsigned int count, const uint32_t* xy, uint32_t* scores, unsigned int stride)
{
    scoreCorners(fast9_corner_score_, src, stride == 0 ? width : stride, barrier, count, xy, scores);
}

void odxCornerFast9u8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                       int barrier, unsigned int border, uint32_t* xy, unsigned int nCornersMax,
                       uint32_t* nCorners)
{
    *nCorners = detect<9>(src, srcStride, areaInside(srcWidth, srcHeight, border), barrier,
                          CornerList{xy, nCornersMax, 0}, NoMask());
}

void odxCornerFast9InMasku8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                             unsigned int nCornersMax, uint32_t* nCorners, const uint8_t* bitMask,
                             unsigned int maskWidth, unsigned int maskHeight)
{
    *nCorners = 0;
    Mask mask;
    if (!fitMask(mask, bitMask, srcWidth, srcHeight, maskWidth, maskHeight)) return;
    *nCorners = detect<9>(src, srcStride, areaInside(srcWidth, srcHeight, border), barrier,
                          CornerList{xy, nCornersMax, 0}, mask);
}

void odxCornerFast9Scoreu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                            uint32_t* scores, unsigned int nCornersMax, uint32_t* nCorners)
{
    odxCornerFast9u8(src, srcWidth, srcHeight, srcStride, barrier, border, xy, nCornersMax, nCorners);
    score_9(src, srcWidth, srcHeight, barrier, *nCorners, xy, scores, srcStride);
}

void odxCornerFast9InMaskScoreu8C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                                  uint32_t* scores, unsigned int nCornersMax, uint32_t* nCorners,
                                  const uint8_t* bitMask, unsigned int maskWidth, unsigned int maskHeight)
{
    odxCornerFast9InMasku8(src, srcWidth, srcHeight, srcStride, barrier, border, xy, nCornersMax, nCorners,
                           bitMask, maskWidth, maskHeight);
    score_9(src, srcWidth, srcHeight, barrier, *nCorners, xy, scores, srcStride);
}

void odxCornerFast9Scoreu8_v2C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                               uint32_t* scores, unsigned int nCornersMax, uint32_t* nCorners,
                               unsigned int nmsEnabled, uint32_t* tempBuf)
{
    if (nmsEnabled == 0) {
        return odxCornerFast9Scoreu8C(src, srcWidth, srcHeight, srcStride, barrier, border, xy, scores,
                                      nCornersMax, nCorners);
    }
    ODX_FATAL_ASSERT("ondrixFastC", __LINE__, tempBuf);
    const auto detectAndScore = [&](uint32_t* listXy, uint32_t* listScores, uint32_t* count) {
        odxCornerFast9Scoreu8C(src, srcWidth, srcHeight, srcStride, barrier, border, listXy, listScores,
                               nCornersMax, count);
    };
    suppress(detectAndScore, tempBuf, nCornersMax, xy, scores, nCorners);
}

void odxCornerFast9InMaskScoreu8_v2C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                                     uint32_t* scores, unsigned int nCornersMax, uint32_t* nCorners,
                                     const uint8_t* bitMask, unsigned int maskWidth, unsigned int maskHeight,
                                     unsigned int nmsEnabled, uint32_t* tempBuf)
{
    if (nmsEnabled == 0) {
        return odxCornerFast9InMaskScoreu8C(src, srcWidth, srcHeight, srcStride, barrier, border, xy, scores,
                                            nCornersMax, nCorners, bitMask, maskWidth, maskHeight);
    }
    ODX_FATAL_ASSERT("ondrixFastC", __LINE__, tempBuf);
    const auto detectAndScore = [&](uint32_t* listXy, uint32_t* listScores, uint32_t* count) {
        odxCornerFast9InMaskScoreu8C(src, srcWidth, srcHeight, srcStride, barrier, border, listXy, listScores,
                                     nCornersMax, count, bitMask, maskWidth, maskHeight);
    };
    suppress(detectAndScore, tempBuf, nCornersMax, xy, scores, nCorners);
}
}
