#include "entries/entries.h"

#include "frame/log.h"
#include "frame/operations.h"
#include "support/logCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string.h>

namespace odx::test
{

#define FAMILY(name)   \
    namespace name     \
    {                  \
    Entries entries(); \
    }
#include "Entries.def"

namespace
{

const Entries& allEntries()
{
    static const Entries all = [] {
        Entries entries;
#define FAMILY(name) entries = entries + name::entries();
#include "Entries.def"
        // Every buffer in a place of its own.
        for (Entry& entry : entries) {
            for (size_t i = 0; i < entry.arguments.size(); ++i) {
                if (entry.arguments[i].kind == Argument::kPointer)
                    entry.arguments[i].good = 65536.0 * double(i + 1);
            }
        }
        return entries;
    }();
    return all;
}

Values goodArguments(const Entry& entry)
{
    Values values;
    for (const Argument& argument : entry.arguments)
        values.push_back(argument.good);
    return values;
}

// The place of the first argument of a kind.
size_t find(const Entry& entry, Argument::Kind kind)
{
    size_t i = 0;
    while (i < entry.arguments.size() && entry.arguments[i].kind != kind)
        ++i;
    return i;
}

// The index that is selected for an operation, or for the one whose implementations it shares.
uint32_t& selectedIndex(uint32_t number)
{
    return number < kPublicSlots ? odxImplTable[number] : odxInternalImplTable[number - kPublicSlots];
}

// Every operation that exists, and the index that is selected for it.
const std::map<std::string, uint32_t*>& listed()
{
    static const std::map<std::string, uint32_t*> list = [] {
        std::map<std::string, uint32_t*> operations;
#define ODX_ROUTINE(number, name, index, columns, ...) \
    if (strcmp(#columns, "none") != 0) operations[#name] = &selectedIndex(op_##name);
#define ODX_VERSION(name, base, columns, pointer) \
    if (strcmp(#columns, "none") != 0) operations[#name] = &selectedIndex(op_##base);
#include "frame/operations/families.def"
        operations.erase("odxRegisterBuf"); // a service
        return operations;
    }();
    return list;
}

constexpr struct {
    uint32_t column;
    const char* name;
} kRemoteColumns[] = {{2, "XDSP"}, {4, "ADSP"}, {5, "CDSP"}, {6, "MDSP"}};

class EntryPoints : public testing::Test
{
protected:
    ~EntryPoints() override
    {
        libLogPrint = 0;
        HW_constraint_checks_enable = 1;
    }

    // What a call says.
    static std::vector<LogLine> lines(const Entry& entry, const Values& arguments)
    {
        LogCapture log;
        result_ = entry.call(arguments);
        return log.take();
    }

    // The column that a call takes when one was selected, from its trace.
    static std::string taken(const Entry& entry, uint32_t column, const Values& arguments)
    {
        const auto found = listed().find(entry.name);
        if (found == listed().end()) return "not listed";
        *found->second = column;
        libLogPrint = 1;
        const std::vector<LogLine> said = lines(entry, arguments);
        libLogPrint = 0;
        *found->second = 0;
        const std::string prefix = std::string(entry.name) + "_";
        return said.empty() || said[0].text.rfind(prefix, 0) != 0 ? "nothing" : said[0].text.substr(prefix.size());
    }

    // A call that says so, and fails.
    static void expect(const std::vector<LogLine>& said, const Entry& entry, const Values& arguments,
                       const std::string& what)
    {
        EXPECT_EQ(said, lines(entry, arguments)) << entry.name << ", " << what;
        EXPECT_EQ(entry.failure, result_) << entry.name << ", " << what;
    }
    static LogLine line(const std::string& text) { return {6, "ondrix_lib_log", text + "\n"}; }

    // A call that is accepted finds that there is no implementation yet.
    static void expectAccepted(const Entry& entry, const Values& arguments, const std::string& what)
    {
        expect({line(std::string("No operation mode selected @") + entry.name)}, entry, arguments, what);
    }
    // It is traced before it is refused.
    static void expectRefused(const Entry& entry, const Values& arguments, const std::string& what)
    {
        const std::string name = entry.name;
        std::vector<LogLine> said = {{6, "ondrix_runtime_log", name + "_CPU"}};
        if (!entry.condition.empty()) said.push_back(line("Assertion failed @" + name + ": " + entry.condition));
        libLogPrint = 1;
        expect(said, entry, arguments, what);
        libLogPrint = 0;
    }
    // What fails the first test is not.
    static void expectFailed(const Entry& entry, const Values& arguments, const std::string& what)
    {
        libLogPrint = 1;
        expect({line(std::string("Error at ") + entry.name)}, entry, arguments, what);
        libLogPrint = 0;
    }

    static inline Outcome result_;
};

// Calls `check` with each argument in turn replaced by each of some values.
template <class Check>
void replacing(const Entry& entry, Values Argument::*values, Check check)
{
    for (size_t i = 0; i < entry.arguments.size(); ++i) {
        for (const double value : entry.arguments[i].*values) {
            Values arguments = goodArguments(entry);
            arguments[i] = value;
            check(entry, arguments, "argument " + std::to_string(i) + " is " + std::to_string(value));
        }
    }
}

TEST_F(EntryPoints, AreAllHere)
{
    std::set<std::string> here, expected;
    for (const Entry& entry : allEntries())
        here.insert(entry.name);
    for (const auto& l : listed())
        expected.insert(l.first);
    EXPECT_EQ(expected, here);
}

TEST_F(EntryPoints, RefuseWhatTheirCheckNames)
{
    for (const Entry& entry : allEntries()) {
        expectAccepted(entry, goodArguments(entry), "good arguments");
        replacing(entry, &Argument::accepted, expectAccepted);
        replacing(entry, &Argument::refused, expectRefused);
        replacing(entry, &Argument::failing, expectFailed);
        for (const auto& combination : entry.arguments.alsoRefused) {
            Values arguments = goodArguments(entry);
            for (const auto& [i, value] : combination)
                arguments[i] = value;
            expectRefused(entry, arguments, "a combination");
        }
    }
}

TEST_F(EntryPoints, SendWhatIsAligned)
{
    const auto check = [](const Entry& entry, uint32_t column, const char* name, uint32_t Argument::*multiple) {
        if (entry.arguments.pixelSize == kNever && column != ODX_IMPL_GPU) name = "ORLAN";
        if (column == ODX_IMPL_GPU && !entry.forGpu) {
            Values refused = goodArguments(entry);
            refused[find(entry, Argument::kRows)] += 1;
            EXPECT_EQ("ORLAN", taken(entry, column, goodArguments(entry))) << entry.name;
            EXPECT_EQ(name, taken(entry, column, refused)) << entry.name;
            return;
        }
        EXPECT_EQ(name, taken(entry, column, goodArguments(entry))) << entry.name;
        for (size_t i = 0; i < entry.arguments.size(); ++i) {
            const Argument& argument = entry.arguments[i];
            if (argument.kind == Argument::kOther) continue;
            for (const uint32_t step : {1u, 2u, 4u, 8u, 16u}) {
                Values arguments = goodArguments(entry);
                arguments[i] += step;
                if (argument.fails(arguments[i])) continue;
                EXPECT_EQ(step % argument.*multiple == 0 ? name : "ORLAN", taken(entry, column, arguments))
                    << entry.name << ", argument " << i << " + " << step;
            }
        }
    };
    for (const Entry& entry : allEntries()) {
        for (const auto& [column, name] : kRemoteColumns)
            check(entry, column, name, &Argument::remote);
        for (const unsigned checks : {0u, 1u}) {
            HW_constraint_checks_enable = checks;
            check(entry, ODX_IMPL_GPU, "GPU", &Argument::gpu);
        }
        // Columns of this processor take everything.
        Values arguments = goodArguments(entry);
        for (size_t i = 0; i < arguments.size(); ++i)
            arguments[i] = entry.arguments[i].fails(0) ? arguments[i] : 0;
        EXPECT_EQ("CPU", taken(entry, ODX_IMPL_CPU, arguments)) << entry.name;
    }
}

TEST_F(EntryPoints, SendWhatIsWorthIt)
{
    for (const Entry& entry : allEntries()) {
        if (entry.arguments.pixelSize == 0 || entry.arguments.pixelSize == kNever) continue;
        const size_t w = find(entry, Argument::kColumns), h = find(entry, Argument::kRows);
        const bool flat = h == entry.arguments.size(); // a list has a length only
        for (const auto& [column, name] : kRemoteColumns) {
            const auto at = [&, column = column](double width, double height) {
                Values arguments = goodArguments(entry);
                arguments[w] = width;
                if (!flat) arguments[h] = height;
                return taken(entry, column, arguments);
            };
            if (flat) {
                const uint32_t few = 25344 / entry.arguments.pixelSize;
                EXPECT_EQ("ORLAN", at(few, 0)) << entry.name;
                EXPECT_EQ(name, at(few + 1, 0)) << entry.name;
                EXPECT_EQ(name, at(0x40000001, 0)) << entry.name; // 2^32 + 4 bytes of words
                continue;
            }
            const uint32_t small = 25344 / (64 * entry.arguments.pixelSize);
            EXPECT_EQ("ORLAN", at(64, small)) << entry.name;
            EXPECT_EQ(name, at(64, small + 1)) << entry.name;
            for (uint32_t height = 1; height < 6; ++height) {
                if (!entry.arguments[h].fails(height))
                    EXPECT_EQ(height >= entry.arguments.leastHeight ? name : "ORLAN", at(65536, height))
                        << entry.name;
            }
            EXPECT_EQ(name, at(65536, 65536)) << entry.name; // the number of pixels does not fit 32 bits
        }
    }
}

TEST_F(EntryPoints, SendEverythingWhereConstraintsAreOff)
{
    HW_constraint_checks_enable = 0;
    for (const Entry& entry : allEntries()) {
        for (const auto& [column, name] : kRemoteColumns) {
            Values arguments = goodArguments(entry);
            for (size_t i = 0; i < arguments.size(); ++i) {
                if (entry.arguments[i].kind <= Argument::kStride) arguments[i] = 2 * (9 + double(i));
            }
            EXPECT_EQ(name, taken(entry, column, arguments)) << entry.name;
        }
    }
}

} // namespace

} // namespace odx::test
