// Regions against the definition: every level thresholded, components labelled, their areas followed.
#include "cpu/ondrixMserFxpC.h"
#include "ondrix/modes.h"
#include "support/childProcess.h"
#include "support/drawings.h"
#include "support/logCapture.h"

#include <cmath>
#include <map>
#include <random>

namespace odx::test
{

namespace
{

using Image = Grid<uint8_t>;

struct Settings {
    int delta = 2;
    uint32_t least = 3, most = 200;
    float variation = 0.5f, diversity = 0.2f;
    bool eight = false;
};

using Points = std::vector<uint32_t>;                    // y * width + x, sorted
using Regions = std::map<std::pair<int, Points>, float>; // polarity and points, and the variation

// ---- the definition ----

struct Level {
    size_t size;
    int level;
};
struct Component {
    Points points;
    std::vector<Level> history;
    float last = INFINITY;
    bool reported = false;
    size_t stable = 0;
};

// Of two components with histories, whose goes on.
bool outranks(const std::vector<Level>& a, const std::vector<Level>& b)
{
    for (size_t i = 1; i <= std::min(a.size(), b.size()); ++i) {
        const Level &p = a[a.size() - i], &q = b[b.size() - i];
        if (p.size != q.size) return p.size > q.size;
        if (p.level != q.level) return p.level < q.level;
    }
    return a.size() > b.size();
}

void follow(const Image& image, int polarity, const Settings& s, Regions& regions)
{
    const auto place = [&](int x, int y) { return uint32_t(y * image.width + x); };
    const auto value = [&](uint32_t i) { return polarity == 1 ? image.pixels[i] : 255 - image.pixels[i]; };
    std::vector<Component> before;
    std::vector<int> ownerBefore(image.pixels.size(), -1);
    for (int g = 0; g < 256; ++g) {
        std::vector<Component> now;
        std::vector<int> owner(image.pixels.size(), -1);
        for (uint32_t start = 0; start < image.pixels.size(); ++start) {
            const auto reaches = [&](int x, int y) { // a pixel without an owner
                const uint32_t i = place(x, y);
                return !image.border(x, y, 1) && value(i) <= g && owner[i] < 0;
            };
            if (!reaches(int(start % image.w()), int(start / image.w()))) continue;
            Component c;
            c.points = {start};
            owner[start] = int(now.size());
            for (size_t k = 0; k < c.points.size(); ++k) {
                const int x = int(c.points[k] % image.w()), y = int(c.points[k] / image.w());
                window(1, 1, [&](int dx, int dy) {
                    if (((dx + dy) % 2 == 0 && !s.eight) || !reaches(x + dx, y + dy)) return;
                    owner[place(x + dx, y + dy)] = int(now.size());
                    c.points.push_back(place(x + dx, y + dy));
                });
            }
            std::sort(c.points.begin(), c.points.end());
            const Component* heir = nullptr;
            for (const uint32_t i : c.points) {
                if (ownerBefore[i] < 0) continue;
                const Component& sub = before[size_t(ownerBefore[i])];
                if (heir == nullptr || outranks(sub.history, heir->history)) heir = &sub;
            }
            if (heir != nullptr && heir->points.size() == c.points.size()) {
                now.push_back(*heir);
                continue;
            }
            if (heir != nullptr) {
                c.history = heir->history;
                c.last = heir->last, c.reported = heir->reported, c.stable = heir->stable;
                const Level h = c.history.back();
                if (h.size > s.least && h.size < s.most) {
                    size_t e = c.history.size() - 1;
                    if (h.level <= g - s.delta && e > 0) {
                        --e;
                    } else {
                        while (e > 0 && c.history[e].level > g - s.delta)
                            --e;
                    }
                    const float v = float(c.points.size() - c.history[e].size) / float(c.history[e].size);
                    const float fresh = float(h.size - c.stable) / float(h.size);
                    if (v <= c.last && h.level + 1 >= g) {
                        c.reported = false;
                    } else {
                        if (!c.reported && c.last < s.variation && fresh > s.diversity) {
                            regions[{polarity, heir->points}] = c.last;
                            c.stable = h.size;
                        }
                        c.reported = true;
                    }
                    c.last = v;
                }
            }
            c.history.push_back({c.points.size(), g});
            now.push_back(c);
        }
        before = std::move(now);
        ownerBefore = std::move(owner);
    }
}

// ---- the library ----

class Handle
{
public:
    Handle(uint32_t width, uint32_t height, const Settings& s)
    {
        const auto init = s.eight ? odxMserNN8InitC : odxMserInitC;
        made = init(width, height, s.delta, s.least, s.most, s.variation, s.diversity, &handle);
    }
    ~Handle() { odxMserReleaseC(handle); }

    uint32_t made;
    void* handle = this;
};

struct Output {
    uint32_t maxContours = 20000, maxPoints = 400000, result = 0;
    std::vector<uint32_t> count = std::vector<uint32_t>(2, 77);
    std::vector<uint16_t> points = std::vector<uint16_t>(maxContours + 1, 77);
    std::vector<uint32_t> array = std::vector<uint32_t>(2 * maxPoints + 1, 77);
    std::vector<float> variation = std::vector<float>(maxContours);
    std::vector<int32_t> polarity = std::vector<int32_t>(maxContours);
    std::vector<uint32_t> id = std::vector<uint32_t>(maxContours), counter = id,
                          box = std::vector<uint32_t>(4 * maxContours);

    void extract(const Handle& h, const Image& image, uint32_t stride = 0)
    {
        if (stride == 0) stride = image.w();
        result = odxMserExtu8_v3C(h.handle, image.data(), image.w(), image.h(), stride, maxContours, count.data(),
                                  points.data(), maxPoints, array.data(), variation.data(), polarity.data(),
                                  id.data(), counter.data(), box.data());
    }
    Regions regions(uint32_t width) const
    {
        Regions found;
        const uint32_t* p = array.data();
        for (uint32_t k = 0; k < count[0]; ++k) {
            Points inRegion;
            uint32_t box4[4] = {~0u, ~0u, 0, 0};
            for (uint32_t n = 0; n < points[k]; ++n, p += 2) {
                inRegion.push_back(p[1] * width + p[0]);
                box4[0] = std::min(box4[0], p[0]), box4[1] = std::min(box4[1], p[1]);
                box4[2] = std::max(box4[2], p[0]), box4[3] = std::max(box4[3], p[1]);
            }
            EXPECT_TRUE(std::equal(box4, box4 + 4, box.begin() + 4 * k));
            EXPECT_EQ(points[k], counter[k]);
            std::sort(inRegion.begin(), inRegion.end());
            EXPECT_TRUE(found.emplace(std::pair(polarity[k], inRegion), variation[k]).second) << "twice";
        }
        return found;
    }
};

size_t expectDefinition(const Image& image, const Settings& s, const char* what)
{
    Regions expected;
    follow(image, 1, s, expected);
    follow(image, -1, s, expected);
    const Handle handle(image.w(), image.h(), s);
    EXPECT_EQ(1u, handle.made);
    Output out;
    for (int again = 0; again < 2; ++again) {
        out.extract(handle, image);
        EXPECT_EQ(1u, out.result);
        EXPECT_EQ(expected, out.regions(image.w())) << what << ", " << expected.size() << " regions";
    }
    // Intervals of the tree.
    const Regions found = out.regions(image.w());
    for (uint32_t i = 0, at = 0; i < out.count[0]; at += 2 * out.points[i++]) {
        for (uint32_t k = 0, other = 0; k < out.count[0]; other += 2 * out.points[k++]) {
            if (out.polarity[i] != out.polarity[k]) continue;
            bool contains = out.points[k] <= out.points[i], found2 = false;
            for (uint32_t n = 0; n < out.points[i] && contains; ++n)
                found2 |= std::equal(&out.array[at + 2 * n], &out.array[at + 2 * n] + 2, &out.array[other]);
            EXPECT_EQ(contains && found2,
                      out.id[i] <= out.id[k] && out.id[k] + out.counter[k] <= out.id[i] + out.counter[i]);
        }
    }
    return expected.size();
}

// Four squares of 9 pixels, of which two and two are joined at level 40. One of the first two is full at a lower
// level, though begun at a higher one; the others differ in how full they are a level before.
int tied(int x, int y)
{
    constexpr int levels[] = {20, 29, 29, 29}, full[] = {39, 30, 30, 30}, early[] = {5, 5, 4, 5};
    const int square = (x - 5) / 4, column = (x - 5) % 4, row = y - 5;
    if (x < 5 || square > 3 || row < 0 || row > 2) return 100;
    if (column == 3) return square % 2 == 0 ? 40 : 100;
    return (3 * row + column < early[square] ? levels : full)[square];
}

TEST(Mser, FindsTheRegionsOfTheDefinition)
{
    std::mt19937 random(3);
    size_t number = 0;
    for (const int content : {0, 1, 2, 3, 4, 5, 6, 7, 8}) {
        for (const bool eight : {false, true}) {
            for (const int delta : {1, 2, 5, 200}) {
                const Image image = drawn<uint8_t>(53, 17, [&](int x, int y) {
                    const double wave = std::sin(x * 0.4) * std::cos(y * 0.6 + content);
                    const int values[] = {
                        int(random() % 256),                                 // noise
                        int(random() % 4),                                   // noise of few levels
                        int(120 + 100 * wave),                               // hills and hollows
                        int(120 + 60 * wave + int(random() % 30)),           // rough ones
                        (x + y) % 2 ? 255 : 0,                               // a checkerboard
                        int(2 * x + y),                                      // a ramp
                        y % 2 == 0 || x == (y % 4 == 1 ? 1 : 51) ? 20 : 200, // a maze
                        99,                                                  // a constant image
                        tied(x, y),
                    };
                    return values[content];
                });
                Settings s = {delta,
                              1 + uint32_t(random() % 6),
                              100 + uint32_t(random() % 700),
                              0.3f + float(random() % 10) / 5,
                              float(random() % 5) / 10,
                              eight};
                const size_t found = expectDefinition(image, s, ("content " + std::to_string(content)).c_str());
                number += found;
                if (content == 7) EXPECT_EQ(0u, found);
            }
        }
    }
    EXPECT_GT(number, 300u); // there is something to compare
}

// A dark square of 49 pixels that is full more and more slowly, on ground without noise.
Image square()
{
    return drawn<uint8_t>(60, 20, [](int x, int y) {
        const int n = (y - 3) * 7 + x - 3;
        return x < 3 || x > 9 || y < 3 || y > 9 ? 200 : 40 + (n >= 9) + (n >= 29) + (n >= 41) + (n >= 48);
    });
}

TEST(Mser, SmallerImagesScaleTheLargestSize)
{
    const Settings s = {1, 10, 300, 9.0f, 0.1f, false};
    const Image image = square();
    const Handle own(60, 20, s);
    Output expected, same;
    expected.extract(own, image);
    ASSERT_GT(expected.count[0], 0u);
    for (const auto& [width, height] : {std::pair{60u, 20u}, {60u, 40u}, {120u, 40u}}) {
        // The area is as large, twice or 4 times: 49 pixels pass exactly where the limit is above.
        for (const uint32_t limit : {49u, 50u}) {
            const Settings wide = {1, 10, limit * (width / 60) * (height / 20), 9.0f, 0.1f, false};
            const Handle larger(width, height, wide);
            Output out;
            out.extract(larger, image);
            EXPECT_EQ(1u, out.result);
            const Regions found = out.regions(60);
            EXPECT_EQ(limit > 49, std::any_of(found.begin(), found.end(),
                                              [](const auto& r) { return r.first.second.size() == 49; }));
        }
    }
    // Rows with something between them, and images that the handle does not take.
    Image padded = drawn<uint8_t>(75, 20, [&](int x, int y) { return x < 60 ? image.at(x, y) : 7; });
    padded.width = 60;
    same.extract(own, padded, 75);
    EXPECT_EQ(expected.regions(60), same.regions(60));
    for (const Image& refused : {Image(61, 20), Image(60, 21)}) {
        Output out;
        out.extract(own, refused);
        EXPECT_EQ(0u, out.result);
        EXPECT_EQ(77u, out.count[0]);
    }
    Output thin;
    thin.extract(own, Image(2, 20));
    EXPECT_EQ(0u, thin.count[0]);
    thin.extract(own, image, 59);
    EXPECT_EQ(0u, thin.result);
}

TEST(Mser, FullOutputsHoldWholeRegions)
{
    std::mt19937 random(5);
    const Image image = drawn<uint8_t>(64, 48, [&](int, int) { return random() % 8; });
    const Settings s = {1, 2, 3000, 2.0f, 0.0f, false};
    const Handle handle(64, 48, s);
    Output all;
    all.extract(handle, image);
    ASSERT_GT(all.count[0], 20u);
    uint32_t total = 0;
    for (uint32_t k = 0; k < all.count[0]; ++k)
        total += all.points[k];
    for (const int less : {0, 1, 2}) {
        Output out;
        LogCapture log;
        (less == 1 ? out.maxContours : out.maxPoints) = (less == 1 ? all.count[0] : total) - (less != 0);
        if (less == 0) out.maxContours = all.count[0];
        out.extract(handle, image);
        EXPECT_EQ(less == 0, out.result == 1);
        EXPECT_EQ(all.count[0] - (less != 0), out.count[0]);
        EXPECT_EQ(77, out.points[out.count[0]]);
        const uint32_t points = less == 0 ? total : total - all.points[all.count[0] - 1];
        EXPECT_EQ(77u, out.array[2 * points]);
        const auto lines = log.take();
        ASSERT_EQ(less == 0 ? 0u : 1u, lines.size());
        if (less == 1)
            EXPECT_EQ(0u, lines[0].text.find("ERROR: maxContours = " + std::to_string(out.maxContours)));
        if (less == 2)
            EXPECT_EQ(0u, lines[0].text.find("ERROR: " + std::to_string(total) +
                                             " contour points extracted. Exceeds the maximum number of " +
                                             std::to_string(total - 1)));
    }
}

TEST(Mser, FormsAgree)
{
    odxSetOperationMode(ONDRIX_OP_EXT_CPU);
    const Image image = square();
    for (const bool eight : {false, true}) {
        const Settings s = {1, 10, 300, 9.0f, 0.1f, eight};
        const Handle handle(60, 20, s);
        Output ext;
        ext.extract(handle, image);
        ASSERT_GT(ext.count[0], 0u);
        const auto dark = uint32_t(std::count(ext.polarity.begin(), ext.polarity.begin() + ext.count[0], 1));
        // How many points a region has is a number of 16 or of 32 bits.
        const auto expectSame = [&](auto* operation, auto number, bool split, auto... further) {
            Output o;
            std::vector<decltype(number)> points(o.maxContours + 1, 77);
            operation(handle.handle, image.data(), 60, 20, 0, o.maxContours, o.count.data(), points.data(),
                      o.maxPoints, o.array.data(), (o.*further).data()...);
            EXPECT_TRUE(o.array == ext.array && std::equal(points.begin(), points.end(), ext.points.begin()));
            EXPECT_EQ(split ? dark : ext.count[0], o.count[0]);
            EXPECT_EQ(split ? ext.count[0] - dark : 77, o.count[1]);
            EXPECT_TRUE(((o.*further == ext.*further) && ...));
        };
        const auto expectExtended = [&](auto* operation, auto number, bool split) {
            expectSame(operation, number, split, &Output::variation, &Output::polarity, &Output::id,
                       &Output::counter);
        };
        expectSame(odxMseru8, uint32_t{}, false);
        expectSame(odxMseru8_v2, uint16_t{}, false);
        expectSame(odxMserNN8u8, uint16_t{}, false);
        expectExtended(odxMserExtu8, uint32_t{}, false);
        expectExtended(odxMserExtu8_v2, uint16_t{}, false);
        expectExtended(odxMserExtNN8u8, uint16_t{}, false);
        expectExtended(odxMserSplitExtu8, uint16_t{}, true);
        expectExtended(odxMserSplitExtu8ST, uint16_t{}, true);
    }
}

TEST(Mser, HandlesHaveLimits)
{
    const auto made = [](uint32_t width, uint32_t height) {
        LogCapture log;
        const Handle h(width, height, {});
        EXPECT_EQ(h.made != 0, h.handle != nullptr);
        std::string text;
        for (const LogLine& line : log.take())
            text += line.text;
        return text;
    };
    const std::string end = "Failed to initialize MSER handle!\n",
                      narrow = "ERROR: image width must be greater than 50 for MSER.\n",
                      low = "ERROR: image height must be greater than 5 for MSER.\n";
    EXPECT_EQ("", made(51, 6));
    EXPECT_EQ("", made(8160, 6));
    EXPECT_EQ(narrow + end, made(50, 6));
    EXPECT_EQ(narrow + low + end, made(50, 5));
    const float nan = NAN;
    const std::pair<uint32_t, Settings> fatal[] = {{51, {0}},
                                                   {51, {256}},
                                                   {51, {2, 49 * 4}},
                                                   {51, {2, 3, 1}},
                                                   {51, {2, 3, 4}},
                                                   {51, {2, 3, 9, 0}},
                                                   {51, {2, 3, 9, nan}},
                                                   {51, {2, 3, 9, 1, 256}},
                                                   {51, {2, 3, 9, 1, nan}},
                                                   {8161, {}},
                                                   {65535, {}}};
    for (const auto& [width, settings] : fatal) {
        expectEnd("ondrixMserFxpC@.*: \\( \\( pHandle->nStride&\\(32-1\\)\\) == 0 \\) && \\( pHandle->nStride <= "
                  "\\(\\(1<<8\\)-1\\)\\*32\\) && \\( 0<pHandle->nDelta && pHandle->nDelta<256\\) && \\( "
                  "pHandle->nMinSize < "
                  "pHandle->nNumPixels\\) && \\( pHandle->nMaxSize > 1\\) && \\( pHandle->nMinSize\\+1 < "
                  "pHandle->nMaxSize\\) && \\( pHandle->nMaxVar > 0\\) && \\( pHandle->nMinDiv < \\(1<<8\\)\\) "
                  "Assertion failed",
                  [&, w = width, s = settings] { Handle(w, 6, s); });
    }
    odxMserReleaseC(nullptr);
}

} // namespace

} // namespace odx::test
