// What the FAST corner detectors refuse, what ends the process, and where calls go.
#include "corners/fastModels.h"
#include "frame/log.h"
#include "frame/operations.h"
#include "frame/tables.h"
#include "support/childProcess.h"
#include "support/logCapture.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

using namespace odx::test;
using namespace odx::test::fast;

namespace
{

class FastChecks : public testing::Test
{
protected:
    FastChecks() { EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE)); }
};

// The arguments of a call, as an operation that takes them all would have them.
struct Arguments {
    const uint8_t* src;
    uint32_t width = 40, height = 30, stride = 40, border = 3;
    uint32_t *xy, *scores, *count;
    const uint8_t* mask;
    uint32_t nms = 0;
    uint32_t* tempBuf = nullptr;
};

struct Entry {
    const char* name;
    uint32_t slot;
    const char* condition;
    bool scored, masked, suppresses;
    void (*call)(const Arguments&);
};

const char kFast9[] = "src && xy && numcorners && stride >= width && border*2 < width && border*2 < height";
const char kFast9InMask[] =
    "src && xy && numcorners && bitMask && stride >= width && border*2 < width && border*2 < height";
const char kFast9Score[] =
    "src && xy && scores && numcorners && stride >= width && border*2 < width && border*2 < height";
const char kFast9InMaskScore[] =
    "src && xy && scores && numcorners && bitMask && stride >= width && border*2 < width && border*2 < height";
const char kFast10[] =
    "src && xy && nCorners && srcStride >= srcWidth && border*2 < srcWidth && border*2 < srcHeight";
const char kFast10InMask[] =
    "src && xy && nCorners && mask && srcStride >= srcWidth && border*2 < srcWidth && border*2 < srcHeight";
const char kFast10Score[] =
    "src && xy && scores && nCorners && srcStride >= srcWidth && border*2 < srcWidth && border*2 < srcHeight";
const char kFast10InMaskScore[] = "src && xy && scores && nCorners && mask && srcStride >= srcWidth && "
                                  "border*2 < srcWidth && border*2 < srcHeight";

#define DETECTION a.src, a.width, a.height, a.stride, 20, a.border, a.xy
#define MASK a.mask, a.width, a.height
#define ENTRY(name, condition, scored, masked, suppresses, ...)       \
    {                                                                 \
#name, odx::op_##name, condition, scored, masked, suppresses, \
            [](const Arguments& a) { name(DETECTION, __VA_ARGS__); }  \
    }
const Entry kEntries[] = {
    ENTRY(odxCornerFast9u8, kFast9, false, false, false, 100, a.count),
    ENTRY(odxCornerFast9InMasku8, kFast9InMask, false, true, false, 100, a.count, MASK),
    ENTRY(odxCornerFast9Scoreu8, kFast9Score, true, false, false, a.scores, 100, a.count),
    ENTRY(odxCornerFast9Scoreu8_v2, kFast9Score, true, false, true, a.scores, 100, a.count, a.nms, a.tempBuf),
    ENTRY(odxCornerFast9InMaskScoreu8, kFast9InMaskScore, true, true, false, a.scores, 100, a.count, MASK),
    ENTRY(odxCornerFast9InMaskScoreu8_v2, kFast9InMaskScore, true, true, true, a.scores, 100, a.count, MASK, a.nms,
          a.tempBuf),
    ENTRY(odxCornerFast10u8, kFast10, false, false, false, 100, a.count),
    ENTRY(odxCornerFast10InMasku8, kFast10InMask, false, true, false, 100, a.count, MASK),
    ENTRY(odxCornerFast10Scoreu8, kFast10Score, true, false, true, a.scores, 100, a.count, a.nms, a.tempBuf),
    ENTRY(odxCornerFast10InMaskScoreu8, kFast10InMaskScore, true, true, true, a.scores, 100, a.count, MASK, a.nms,
          a.tempBuf),
};
#undef ENTRY
#undef MASK
#undef DETECTION

struct Buffers {
    Image image = noise(40, 30, 1);
    std::vector<uint8_t> mask = std::vector<uint8_t>(5 * 30);
    std::vector<uint32_t> xy = std::vector<uint32_t>(200, 77), scores = std::vector<uint32_t>(100, 77);
    uint32_t count = 77;

    Arguments arguments()
    {
        Arguments a{};
        a.src = image.data();
        a.width = a.stride = 40;
        a.height = 30;
        a.border = 3;
        a.xy = xy.data();
        a.scores = scores.data();
        a.count = &count;
        a.mask = mask.data();
        return a;
    }
    bool untouched() const
    {
        const auto is77 = [](uint32_t word) { return word == 77; };
        return count == 77 && std::all_of(xy.begin(), xy.end(), is77) &&
               std::all_of(scores.begin(), scores.end(), is77);
    }
};

TEST_F(FastChecks, BadArgumentsAreOneLineAndNothingElse)
{
    for (const Entry& entry : kEntries) {
        using Spoil = std::function<void(Arguments&)>;
        std::vector<Spoil> spoils = {
            [](Arguments& a) { a.src = nullptr; },      [](Arguments& a) { a.xy = nullptr; },
            [](Arguments& a) { a.count = nullptr; },    [](Arguments& a) { a.stride = 39; },
            [](Arguments& a) { a.width = 6; },          [](Arguments& a) { a.height = 6; },
            [](Arguments& a) { a.width = 0; },          [](Arguments& a) { a.height = 0; },
            [](Arguments& a) { a.border = 15; },        [](Arguments& a) { a.border = 20; },
            [](Arguments& a) { a.border = 0x80000000; } // twice this must not be 0
        };
        if (entry.scored) spoils.push_back([](Arguments& a) { a.scores = nullptr; });
        if (entry.masked) spoils.push_back([](Arguments& a) { a.mask = nullptr; });
        const LogLine line = {6, "ondrix_lib_log",
                              std::string("Assertion failed @") + entry.name + ": " + entry.condition + "\n"};
        for (size_t i = 0; i < spoils.size(); ++i) {
            Buffers buffers;
            Arguments arguments = buffers.arguments();
            spoils[i](arguments);
            LogCapture log;
            entry.call(arguments);
            EXPECT_EQ(std::vector<LogLine>{line}, log.take()) << "call " << i;
            EXPECT_TRUE(buffers.untouched()) << entry.name << " call " << i;
        }
    }
}

TEST_F(FastChecks, GoodArgumentsSayNothing)
{
    for (const Entry& entry : kEntries) {
        Buffers buffers;
        Arguments arguments = buffers.arguments();
        arguments.stride = 0;
        LogCapture log;
        entry.call(arguments);
        EXPECT_EQ(std::vector<LogLine>{}, log.take()) << entry.name;
        EXPECT_FALSE(buffers.untouched()) << entry.name;
    }
}

TEST_F(FastChecks, SuppressionWithoutMemoryEndsTheProcess)
{
    for (const Operation& operation : operations()) {
        if (!operation.suppresses) continue;
        const ChildResult child = runInChild([&] {
            const Image image = noise(40, 30, 1);
            const Mask mask(image, 1, 1);
            Options options;
            options.mask = &mask;
            uint32_t xy[2], score, count;
            options.capacity = 1;
            operation.run(image, options, xy, &score, &count, 1, nullptr);
        });
        EXPECT_EQ(1, child.exitStatus) << operation.name;
        const std::string source = operation.N == 9 ? "ondrixFastC" : "ondrixFast10C";
        const std::regex line("6/ondrix_lib_log: " + source + "@[1-9][0-9]*: tempBuf Assertion failed\n\n");
        EXPECT_TRUE(std::regex_match(child.output, line)) << operation.name << ": " << child.output;
    }
}

// ---- the choice of the implementation, read from the trace ----

class FastChoice : public FastChecks
{
protected:
    FastChoice() { libLogPrint = 1; }
    ~FastChoice() override { libLogPrint = 0; }

    // Aligned arguments that every implementation takes.
    Arguments aligned()
    {
        const auto at = [this](size_t i) { return memory_.data() + 200000 / 64 * i; };
        Arguments a{};
        a.src = reinterpret_cast<const uint8_t*>(at(0));
        a.mask = reinterpret_cast<const uint8_t*>(at(1));
        a.xy = reinterpret_cast<uint32_t*>(at(2));
        a.scores = reinterpret_cast<uint32_t*>(at(3));
        a.tempBuf = reinterpret_cast<uint32_t*>(at(4));
        a.count = &count_;
        a.width = a.stride = 256;
        a.height = 128;
        a.border = 3;
        a.nms = 1;
        return a;
    }

    // The implementation that a call goes to when a mode has selected `selected`, from its trace.
    static std::string chosen(const Entry& entry, uint32_t selected, const Arguments& arguments)
    {
        odxImplTable[entry.slot] = selected;
        LogCapture log;
        entry.call(arguments);
        odxImplTable[entry.slot] = ODX_IMPL_CPU;
        const std::vector<LogLine> lines = log.take();
        const std::string start = std::string(entry.name) + "_";
        if (lines.empty() || lines[0].text.compare(0, start.size(), start) != 0) return "no trace";
        return lines[0].text.substr(start.size());
    }

    struct alignas(64) Block {
        uint8_t bytes[64];
    };
    std::vector<Block> memory_ = std::vector<Block>(5 * (200000 / 64));
    uint32_t count_ = 0;
};

// A pointer that is some bytes further on.
template <class T>
T* moved(T* pointer, ptrdiff_t bytes)
{
    return reinterpret_cast<T*>(reinterpret_cast<intptr_t>(pointer) + bytes);
}

using Change = std::function<void(Arguments&)>;

TEST_F(FastChoice, SmallOrMisalignedImagesDoNotTravel)
{
    const Change stays[] = {[](Arguments& a) { a.height = 99; }, // 25344 pixels
                            [](Arguments& a) { a.src = moved(a.src, 4); }, [](Arguments& a) { a.stride = 260; }};
    for (const Entry& entry : kEntries) {
        for (uint32_t target : {ODX_IMPL_XDSP, ODX_IMPL_ADSP, ODX_IMPL_CDSP, ODX_IMPL_MDSP}) {
            EXPECT_EQ(odxImplChar[target], chosen(entry, target, aligned())) << entry.name;
            for (const Change& change : stays) {
                Arguments a = aligned();
                change(a);
                EXPECT_EQ("ORLAN", chosen(entry, target, a)) << entry.name;
            }
        }
        // Without the checks of constraints, it does.
        HW_constraint_checks_enable = 0;
        Arguments a = aligned();
        a.height = 20;
        EXPECT_EQ("XDSP", chosen(entry, ODX_IMPL_XDSP, a)) << entry.name;
        HW_constraint_checks_enable = 1;
    }
}

TEST_F(FastChoice, TheGpuTakesAlignedBuffers)
{
    struct Case {
        const char* what;
        Change change;
        bool concerns[3]; // whether it makes plain, scored and suppressing detectors fall back
    };
    const Case cases[] = {
        {"nothing", [](Arguments&) {}, {false, false, false}},
        {"src", [](Arguments& a) { a.src = moved(a.src, 8); }, {true, true, true}},
        {"xy", [](Arguments& a) { a.xy = moved(a.xy, 8); }, {true, true, true}},
        {"scores", [](Arguments& a) { a.scores = moved(a.scores, 8); }, {false, true, true}},
        {"stride", [](Arguments& a) { a.stride = 260; }, {false, false, true}},
        {"stride below width", [](Arguments& a) { a.stride = 248; }, {false, false, true}},
        {"tempBuf", [](Arguments& a) { a.tempBuf = moved(a.tempBuf, 8); }, {false, false, true}},
        {"unused tempBuf",
         [](Arguments& a) { a.nms = 0, a.tempBuf = moved(a.tempBuf, 8); },
         {false, false, false}},
        {"no unused tempBuf", [](Arguments& a) { a.nms = 0, a.tempBuf = nullptr; }, {false, false, false}},
    };
    for (const Entry& entry : kEntries) {
        const int kind = entry.suppresses ? 2 : entry.scored ? 1 : 0;
        for (const Case& c : cases) {
            Arguments a = aligned();
            c.change(a);
            EXPECT_EQ(c.concerns[kind] ? "ORLAN" : "GPU", chosen(entry, ODX_IMPL_GPU, a)) << entry.name << c.what;
        }
        Arguments a = aligned();
        a.mask = moved(a.mask, 8);
        EXPECT_EQ(entry.masked && entry.suppresses ? "ORLAN" : "GPU", chosen(entry, ODX_IMPL_GPU, a))
            << entry.name;
    }
}

} // namespace
