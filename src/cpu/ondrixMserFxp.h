// The shared part of region extraction: the flood of one polarity, and the stability test.
//
// The flood pours water on one pixel and lets it rise: from a pixel it always goes on to a neighbour that is
// darker, and leaves the others on the shore, in a stack for each grey level. Pixels are finished in an order in
// which every component, once complete at its level, is an interval; so components that meet need no lists to be
// joined.
#ifndef ODX_CPU_ONDRIX_MSER_FXP_H
#define ODX_CPU_ONDRIX_MSER_FXP_H

#include "frame/log.h"

#include <algorithm>
#include <math.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace odx::mser
{

constexpr uint32_t kLevels = 256, kNone = 0xFFFFFFFF;
constexpr const char* kSource = "ondrixMserFxp";

struct Parameters {
    uint32_t minSize, maxSize; // exclusive
    int32_t delta;
    float maxVariation, minDiversity;
};

// A component that was complete at a level. Older ones, down the chain, have lower levels and fewer pixels.
struct History {
    uint32_t size, previous;
    int32_t level;
};

// An open component; its pixels are those finished from `start` on.
struct Component {
    int32_t level;
    uint32_t start;
    // What the larger of two components keeps when they meet:
    uint32_t history, historyStart; // the most recent complete component, and where its pixels start
    uint32_t historySize;           // its size; 0 for none
    uint32_t stableSize;            // of the last reported one
    float variation;                // the last one
    bool reported;                  // since the last minimum of the variation
};

struct Region {
    uint32_t start, size;
    float variation;
};

// The arrays of one polarity, for `pixels` pixels inside the frame.
struct Arrays {
    uint16_t* mask;   // grey level, and whether the flood has seen the pixel
    uint32_t* shore;  // pixels to come back to: a stack for each level
    uint32_t* order;  // finished pixels
    History* history; // at most one for each pixel
    Region* regions;  // a region has two complete components less than the next that is reported around it

    static uint64_t regionsFor(uint64_t pixels) { return pixels / 2 + 1; }
    static uint64_t bytesFor(uint64_t pixels)
    {
        return pixels * (2 * sizeof(uint32_t) + sizeof(History)) + regionsFor(pixels) * sizeof(Region);
    }
};

// ---- stability ----

// Tests the most recent complete component of c, which is complete again at its level, with `size` pixels.
inline bool isStable(Component& c, uint32_t size, const History* entries, const Parameters& p, float& variation)
{
    if (c.historySize <= p.minSize || c.historySize >= p.maxSize) return false; // also where there is none
    const History* const h = entries + c.history;

    const int32_t limit = c.level - p.delta;
    const History* e = h;
    if (h->level <= limit && h->previous != kNone) {
        e = entries + h->previous;
    } else {
        while (e->level > limit && e->previous != kNone) {
            const History *const pHistory = e, *const pPrev = entries + e->previous;
            if (!(pPrev->level <= pHistory->level))
                fatalAssertion(kSource, __LINE__, "pHistory->pPrev->nGreyLevel <= pHistory->nGreyLevel");
            e = pPrev;
        }
    }
    if (size <= e->size) fatalAssertion(kSource, __LINE__, "nSizeIncrement > 0");
    const float v = static_cast<float>(size - e->size) / static_cast<float>(e->size);

    const float last = c.variation;
    const bool falls = !(v > last) && h->level + 1 >= c.level, reported = c.reported;
    c.variation = v;
    c.reported = !falls;
    if (falls || reported || !(last < p.maxVariation)) return false;
    const float diversity = static_cast<float>(h->size - c.stableSize) / static_cast<float>(h->size);
    if (!(diversity > p.minDiversity)) return false;
    c.stableSize = h->size;
    variation = last;
    return true;
}

// ---- flood ----

// One polarity: components of pixels up to a grey level, connected by `neighbours` (4 or 8). Pixels of the frame
// are never entered.
template <uint32_t neighbours>
class Flood
{
public:
    static constexpr uint16_t kSeen = 0x100; // in the words of a mask; the frame is seen from the beginning

    Flood(const Arrays& arrays, const Parameters& parameters, uint32_t stride)
        : a_(arrays), p_(parameters), stride_(stride)
    {
    }

    // From the pixel `first` on, over pixels of which `counts` have each level. Returns the number of regions.
    uint32_t run(uint32_t first, const uint32_t* counts)
    {
        uint32_t* bottom = a_.shore;
        for (uint32_t g = 0; g < kLevels; bottom += counts[g++])
            top_[g] = bottom_[g] = bottom;

        const auto down = static_cast<ptrdiff_t>(stride_);
        const ptrdiff_t offset[] = {1, down, -1, -down, down + 1, down - 1, -down - 1, -down + 1};
        uint16_t* const mask = a_.mask;
        uint32_t* const order = a_.order;
        uint32_t finished = 0, pixel = first;
        uint32_t level = mask[pixel];
        mask[pixel] |= kSeen;
        stack_[0].level = kLevels;
        open(static_cast<int32_t>(level), finished);
        for (;;) {
            // Of the neighbours that were not seen, the darkest: the words of the others are above all levels.
            // With their numbers in the lowest bits the comparison needs neither branches nor memory.
            uint16_t* const here = mask + pixel;
            uint32_t words[neighbours], least = UINT32_MAX;
            for (uint32_t k = 0; k < neighbours; ++k)
                words[k] = here[offset[k]];
            for (uint32_t k = 0; k < neighbours; ++k)
                least = std::min(least, 8 * words[k] + k);
            if (least / 8 < level) {
                // Down there first; then here once more.
                push(level, pixel);
                const ptrdiff_t to = offset[least % 8];
                here[to] |= kSeen;
                level = least / 8;
                pixel += static_cast<uint32_t>(to);
                open(static_cast<int32_t>(level), finished);
                continue;
            }
            for (uint32_t k = 0; k < neighbours; ++k) {
                if (words[k] >= kSeen) continue;
                here[offset[k]] = static_cast<uint16_t>(words[k] | kSeen);
                push(words[k], pixel + static_cast<uint32_t>(offset[k]));
            }
            order[finished++] = pixel;

            if (top_[level] == bottom_[level]) {
                waiting_[level / 64] &= ~(uint64_t{1} << level % 64);
                level = lowestWaiting(level);
                if (level == kLevels) break;
                rise(static_cast<int32_t>(level), finished);
            }
            pixel = *--top_[level];
        }
        test(*c_, finished - c_->start);
        return regions_;
    }

private:
    void push(uint32_t grey, uint32_t pixel)
    {
        *top_[grey]++ = pixel;
        waiting_[grey / 64] |= uint64_t{1} << grey % 64;
    }

    uint32_t lowestWaiting(uint32_t level) const
    {
        uint32_t word = level / 64;
        while (word < 4 && waiting_[word] == 0)
            ++word;
        return word == 4 ? kLevels : 64 * word + static_cast<uint32_t>(__builtin_ctzll(waiting_[word]));
    }

    void open(int32_t level, uint32_t finished) { *++c_ = {level, finished, kNone, 0, 0, 0, INFINITY, false}; }

    void test(Component& c, uint32_t size)
    {
        float variation;
        const uint32_t historySize = c.historySize;
        if (isStable(c, size, a_.history, p_, variation))
            a_.regions[regions_++] = {c.historyStart, historySize, variation};
    }
    void record(Component& c, uint32_t size)
    {
        a_.history[entries_] = {size, c.history, c.level};
        c.history = entries_++;
        c.historyStart = c.start;
        c.historySize = size;
    }

    // Whether a complete component keeps its history where it joins another one: if it has more pixels than the
    // last of those that the other took its history from. Of equal ones the darker one does, and so on down both
    // histories; where these are the same, so is all that follows.
    bool outranks(uint32_t size, const Component& c, const Component& below) const
    {
        if (size != below.historySize) return size > below.historySize;
        const History* const other = a_.history + below.history;
        if (c.level != other->level) return c.level < other->level;
        uint32_t mine = c.history, theirs = other->previous;
        while (mine != kNone && theirs != kNone) {
            const History &m = a_.history[mine], &t = a_.history[theirs];
            if (m.size != t.size) return m.size > t.size;
            if (m.level != t.level) return m.level < t.level;
            mine = m.previous;
            theirs = t.previous;
        }
        return theirs == kNone && mine != kNone;
    }

    // The component on top is complete up to `level`: it rises to it, or joins the one that waits there or below.
    void rise(int32_t level, uint32_t finished)
    {
        while (c_->level < level) {
            Component& c = *c_;
            const uint32_t size = finished - c.start;
            test(c, size);
            Component& below = c_[-1];
            if (below.level > level) {
                record(c, size);
                c.level = level;
                return;
            }
            if (outranks(size, c, below)) {
                record(c, size);
                const Component larger = c;
                c = below;
                below = larger;
                below.level = c.level;
                below.start = c.start;
            }
            --c_;
        }
    }

    const Arrays a_;
    const Parameters p_;
    const uint32_t stride_;
    uint32_t entries_ = 0, regions_ = 0;
    uint32_t *top_[kLevels], *bottom_[kLevels];
    uint64_t waiting_[kLevels / 64] = {};
    // Levels fall from one open component to the next.
    Component stack_[kLevels + 1];
    Component* c_ = stack_;
};

} // namespace odx::mser

#endif
