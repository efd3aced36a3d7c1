// Shows the library to a person: runs its operations on a picture, in every column, compares the bytes, measures,
// and writes a contact sheet.
#include "common/library.h"
#include "common/pictureFile.h"
#include "common/scene.h"
#include "demo/sections.h"
#include "demo/stage.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <system_error>
#include <vector>

namespace demo
{

namespace
{

struct Options {
    std::string picture;  // empty: the scene
    std::string pictures; // the folder of a sequence; empty: the picture is moved
    std::string output = "ondrix-demo.png";
    bool remote = false, help = false;
};

constexpr int kSmallest = 16; // the largest windows are 11 pixels wide and high

constexpr const char* kUsage =
    "usage: demo [--remote] [--pictures FOLDER] [-o FILE] [PICTURE]\n"
    "Runs the library's operations on a picture (PNG, JPEG or PNM; without one, on a scene that it renders),\n"
    "in the reference and the SIMD column, compares the bytes, and measures.\n"
    "  --pictures FOLDER\n"
    "             motion is shown on pictures from here whose names differ in a number only\n"
    "  -o FILE    where the contact sheet goes, a PNG file (ondrix-demo.png)\n"
    "  --remote   also in the mode for the remote processor\n";

// Returns the argument that makes no sense, or null.
const char* parse(int argc, char** argv, Options& options)
{
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--remote") {
            options.remote = true;
        } else if (argument == "--help" || argument == "-h") {
            options.help = true;
        } else if (argument == "--pictures" && i + 1 < argc) {
            options.pictures = argv[++i];
        } else if (argument == "-o" && i + 1 < argc) {
            options.output = argv[++i];
        } else if ((argument.size() > 1 && argument[0] == '-') || !options.picture.empty() || argument.empty()) {
            return argv[i];
        } else {
            options.picture = argument;
        }
    }
    return nullptr;
}

int fail(const std::string& message)
{
    fprintf(stderr, "demo: %s\n", message.c_str());
    return 1;
}

std::string sizeText(const Picture& picture)
{
    return std::to_string(picture.width()) + " x " + std::to_string(picture.height()) + " pixels";
}

std::string baseName(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

// The pictures of a folder that follow each other: of those with a number before their ending the most with one
// name.
std::vector<std::string> sequenceIn(const std::string& folder)
{
    std::map<std::string, std::vector<std::string>> names;
    std::error_code failed;
    for (const auto& entry : std::filesystem::directory_iterator(folder, failed)) {
        std::string stem = entry.path().stem().string();
        const size_t letters = stem.find_last_not_of("0123456789") + 1;
        if (letters < stem.size()) names[stem.substr(0, letters)].push_back(entry.path().string());
    }
    std::vector<std::string> most;
    for (auto& [name, files] : names) {
        if (files.size() > most.size()) most = files;
    }
    std::sort(most.begin(), most.end(), [](const std::string& a, const std::string& b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    });
    return most;
}

// Empty, with the reason, unless there are two pictures or more of one size.
std::vector<Picture> loadSequence(const std::string& folder, std::string& error)
{
    std::vector<Picture> pictures;
    for (const std::string& file : sequenceIn(folder)) {
        pictures.push_back(loadPicture(file, error));
        const Picture &first = pictures.front(), &last = pictures.back();
        if (last.empty()) return {};
        if (last.width() == first.width() && last.height() == first.height()) continue;
        error = file + " is not as large as those before it";
        return {};
    }
    if (pictures.size() > 1) return pictures;
    error = "no pictures that follow each other in " + folder;
    return {};
}

std::vector<Column> columnsFor(const Options& options)
{
    std::vector<Column> columns = {{"reference", ONDRIX_OP_EXT_REFERENCE, "ONDRIX_OP_EXT_REFERENCE"},
                                   {"SIMD", ONDRIX_OP_EXT_CPU, "ONDRIX_OP_EXT_CPU"}};
    if (options.remote) columns.push_back({"remote", ONDRIX_OP_EXT_XDSP, "ONDRIX_OP_EXT_XDSP"});
    return columns;
}

// What is known before the first call.
std::vector<Fact> factsBefore(const std::string& pictureName, const Picture& picture, odxOperationMode widestMode)
{
    char mask[16];
    const unsigned hardware = odxAvailableHardware(widestMode);
    snprintf(mask, sizeof mask, "0x%x: ", hardware);
    const int processors = odxAvailableProcessors();
    return {{"picture", sizeText(picture) + ", " + pictureName},
            {"hardware", mask + hardwareInWords(hardware)},
            {"processors", std::to_string(processors) + " online, one used"}};
}

std::vector<Fact> factsAfter(const Stage& stage)
{
    std::vector<Fact> facts;
    for (size_t i = 0; i < stage.columns().size(); ++i) {
        const Column& column = stage.columns()[i];
        facts.push_back({column.name, "mode " + column.modeName + ", calls took: " + stage.implementations(i),
                         colours::kBars[i]});
    }
    Fact bytes{"bytes", "identical in " + std::to_string(stage.identical()) + " of " +
                            std::to_string(stage.comparisons()) + " comparisons"};
    bytes.mark = stage.identical() == stage.comparisons() ? Mark::good : Mark::bad;
    facts.push_back(bytes);
    facts.insert(facts.end(), stage.facts().begin(), stage.facts().end());
    facts.push_back({"times", "milliseconds for a million pixels, the best of several turns"});
    return facts;
}

void print(const std::vector<Fact>& facts)
{
    for (const Fact& fact : facts)
        printf("%-11s %s\n", fact.name.c_str(), fact.text.c_str());
}

int show(const Options& options, const std::string& version)
{
    std::string error;
    const Picture picture = options.picture.empty() ? renderScene() : loadPicture(options.picture, error);
    if (picture.empty()) return fail(error);
    if (picture.width() < kSmallest || picture.height() < kSmallest)
        return fail(options.picture + " is " + sizeText(picture) + "; the filters need at least " +
                    std::to_string(kSmallest) + " x " + std::to_string(kSmallest));
    const std::vector<Column> columns = columnsFor(options);
    for (const Column& column : columns) {
        const int result = selectMode(column.mode, false);
        if (result != 0) return fail("selecting " + column.modeName + " failed with " + std::to_string(result));
    }

    if (options.remote && (odxAvailableHardware(ONDRIX_OP_EXT_XDSP) & ONDRIX_HW_XDSP) == 0)
        return fail("no session with a remote processor; tools/stub/README.md says what it takes");

    printf("Ondrix %s\n", version.c_str());
    std::vector<Fact> facts = factsBefore(options.picture.empty() ? "rendered scene" : baseName(options.picture),
                                          picture, columns.back().mode);
    print(facts);
    Stage stage(picture, columns);
    if (!options.pictures.empty()) {
        stage.setSequence(loadSequence(options.pictures, error));
        if (stage.sequence().empty()) return fail(error);
    }
    for (const auto section : kSections)
        section(stage);

    printf("\n");
    const std::vector<Fact> results = factsAfter(stage);
    print(results);
    facts.insert(facts.end(), results.begin(), results.end());
    stage.sheet().setHead(fitted(picture, Sheet::kTileWidth, Sheet::kTileHeight), "Ondrix " + version, facts);
    if (!savePng(stage.sheet().draw(), options.output, error)) return fail(error);
    printf("%-11s %s\n", "sheet", options.output.c_str());
    if (stage.refused() != 0) return fail(std::to_string(stage.refused()) + " calls were refused");
    return stage.identical() == stage.comparisons() ? 0 : fail("the columns do not agree");
}

} // namespace

} // namespace demo

int main(int argc, char** argv)
{
    demo::Options options;
    if (const char* const wrong = demo::parse(argc, argv, options)) {
        fprintf(stderr, "demo: cannot make sense of %s\n%s", wrong, demo::kUsage);
        return 1;
    }
    if (options.help) {
        printf("%s", demo::kUsage);
        return 0;
    }
    char version[16];
    odxGetVersion(version, sizeof version);
    odxMemInit();
    const int result = demo::show(options, version);
    odxMemDeInit();
    odxCleanUp();
    return result;
}
