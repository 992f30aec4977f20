// The shipped Scripts, Subroutines and Image lists, read by a plain reader of the test's own: form,
// fields, and that each runs unattended with what the installation brings along.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <optional>

#include "support/content_files.h"

namespace lumo::test {
namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;
using testing::StartsWith;

// Every command that the shipped Scripts use, with the count of fields its stored string begins
// with.
const std::map<std::string, std::size_t, std::less<>> kFieldCounts{
    {"Add border", 8},
    {"Adjust: contrast-brightness", 2},
    {"Batch Log comments", 5},
    {"Blend images", 6},
    {"Canvas size", 7},
    {"Color curve adjust", 18},
    {"Convert: Grayscale - 8bit", 0},
    {"Convert: sepia tone", 0},
    {"Counter (reset or increment)", 3},
    {"Drop Shadow effect", 8},
    {"ELSE_END", 0},
    {"ELSE_START", 0},
    {"END image loop", 0},
    {"Exit (get next image)", 0},
    {"Frame overlay", 6},
    {"Gamma adjust", 1},
    {"IF_END", 0},
    {"IF_START (condition)", 5},
    {"Input (temporary)", 2},
    {"Mask overlay: single color", 6},
    {"New (canvas)", 6},
    {"Noise (add)", 3},
    {"Output (temporary)", 2},
    {"Output setup", 11},
    {"Reload image file", 0},
    {"Rotate (90 - 180 - 270)", 1},
    {"Scale: change image size", 6},
    {"Script info", 7},
    {"Size and crop (absolute)", 3},
    {"START image loop (setup)", 32},
    {"SUBROUTINE Execute", 1},
    {"Text overlay", 21},
    {"Text overlay (absolute)", 18},
    {"Tile over absolute", 7},
    {"Unsharp mask", 4},
    {"Watermark - overlay image", 12},
};

struct Command {
    std::string name;
    Strings fields;
};

// Lines of a file in which every line ends in CR LF and no CR or LF stands elsewhere.
std::optional<Strings> CrLfLines(const std::string& bytes) {
    Strings lines;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t end = bytes.find_first_of("\r\n", at);
        if (end == std::string::npos || bytes.compare(end, 2, "\r\n") != 0) return std::nullopt;
        lines.push_back(bytes.substr(at, end - at));
        at = end + 2;
    }
    return lines;
}

// The fields behind the count; empty if the string is not exactly "count,field,...,field,".
std::optional<Strings> SplitFields(std::string_view text) {
    if (text == "0") return Strings{};
    Strings parts(1);
    bool quoted = false;
    for (const char c : text) {
        if (c == '"')
            quoted = !quoted;
        else if (c == ',' && !quoted)
            parts.emplace_back();
        else
            parts.back() += c;
    }
    if (quoted || !parts.back().empty() || std::to_string(parts.size() - 2) != parts.front())
        return std::nullopt;
    return Strings(parts.begin() + 1, parts.end() - 1);
}

std::vector<Command> ReadCommands(const fs::path& path, std::string_view firstLine) {
    const std::string bytes = FileBytes(path);
    EXPECT_TRUE(std::ranges::all_of(bytes, [](char c) {
        return c == '\r' || c == '\n' || (c >= ' ' && c <= '~');
    })) << path;
    const auto lines = CrLfLines(bytes);
    if (!lines || lines->size() < 5 || lines->size() % 2 == 0) {
        ADD_FAILURE() << path << ": lines";
        return {};
    }
    EXPECT_EQ((*lines)[0], firstLine) << path;
    EXPECT_EQ((*lines)[1], "; ; = Comment. Do not edit. This is a script.") << path;
    EXPECT_EQ((*lines)[2], "; File must have no format characters.") << path;
    EXPECT_EQ((*lines)[lines->size() - 2], "END") << path;
    EXPECT_EQ(lines->back(), "; Do not edit - Lumoscript script.whs") << path;
    std::vector<Command> commands;
    for (std::size_t i = 3; i + 2 < lines->size(); i += 2) {
        const std::string &name = (*lines)[i], &parameters = (*lines)[i + 1];
        const auto count = kFieldCounts.find(name);
        const auto fields = SplitFields(parameters);
        EXPECT_NE(count, kFieldCounts.end()) << path << ": unknown command \"" << name << '"';
        EXPECT_TRUE(fields) << path << ": " << name << ": " << parameters;
        if (count != kFieldCounts.end() && fields) {
            EXPECT_EQ(fields->size(), count->second) << path << ": " << name;
        }
        commands.push_back({name, fields.value_or(Strings{})});
    }
    return commands;
}

std::vector<Command> ReadScript(const fs::path& path) {
    return ReadCommands(path, path.extension() == ".sbr" ? "SUBRT" : "BEGIN");
}

std::vector<fs::path> AllScripts() {
    auto paths = ShippedFiles("Scripts", ".whs");
    const auto subroutines = ShippedFiles("Subroutines", ".sbr");
    paths.insert(paths.end(), subroutines.begin(), subroutines.end());
    return paths;
}

// "<INSTALL_FOLDER>\Masks\Oval.bmp" as a path below share/; empty for any other text.
fs::path ShippedPath(std::string text) {
    constexpr std::string_view token = "<INSTALL_FOLDER>\\";
    if (!text.starts_with(token)) return {};
    text.erase(0, token.size());
    std::ranges::replace(text, '\\', '/');
    return ShareFolder() / text;
}

std::ptrdiff_t Count(const std::vector<Command>& commands, std::string_view name) {
    return std::ranges::count(commands, name, &Command::name);
}

TEST(ContentScripts, AreWellFormedAndOfferExamples) {
    EXPECT_GE(ShippedFiles("Scripts", ".whs").size(), 6u);
    EXPECT_GE(ShippedFiles("Subroutines", ".sbr").size(), 2u);
    EXPECT_TRUE(fs::is_regular_file(ShareFolder() / "Scripts/Thumbnails.whs"));
    for (const auto& path : AllScripts()) {
        const auto commands = ReadScript(path);
        EXPECT_EQ(Count(commands, "Script info"), 1) << path << " does not explain itself";
    }
}

TEST(ContentScripts, RunUnattended) {
    for (const auto& path : ShippedFiles("Scripts", ".whs")) {
        const auto commands = ReadScript(path);
        ASSERT_EQ(Count(commands, "START image loop (setup)"), 1) << path;
        ASSERT_EQ(Count(commands, "END image loop"), 1) << path;
        const auto start = std::ranges::find(commands, "START image loop (setup)", &Command::name);
        const auto end = std::ranges::find(commands, "END image loop", &Command::name);
        EXPECT_LT(start, end) << path;
        ASSERT_EQ(start->fields.size(), 32u) << path;
        EXPECT_EQ(start->fields[0], "2") << path << " asks for its input folder";
        EXPECT_TRUE(fs::is_directory(ShippedPath(start->fields[2]))) << path;
        EXPECT_GE(Count(commands, "Output setup"), 1) << path;
        for (const auto& command : commands) {
            if (command.name != "Output setup") continue;
            ASSERT_EQ(command.fields.size(), 11u) << path;
            EXPECT_EQ(command.fields[0], "0") << path << " asks for its output folder";
            EXPECT_THAT(command.fields[1], StartsWith(".\\out\\")) << path;
            EXPECT_EQ(command.fields[2], "0") << path << " writes beside the input";
            EXPECT_EQ(command.fields[9], "0") << path << " skips its output";
            EXPECT_EQ(command.fields[10], "1") << path << " fails on a second run";
        }
    }
}

TEST(ContentScripts, UseShippedPicturesAndSubroutinesThatExist) {
    int pictures = 0, calls = 0;
    for (const auto& path : AllScripts()) {
        for (const auto& command : ReadScript(path)) {
            for (const auto& field : command.fields) {
                const fs::path shipped = ShippedPath(field);
                if (shipped.empty()) continue;
                EXPECT_TRUE(fs::exists(shipped)) << path << ": " << field;
                pictures += shipped.extension() == ".bmp";
            }
            if (command.name != "SUBROUTINE Execute") continue;
            ASSERT_EQ(command.fields.size(), 1u) << path;
            EXPECT_TRUE(
                fs::is_regular_file(ShareFolder() / "Subroutines" / (command.fields[0] + ".sbr")))
                << path << ": " << command.fields[0];
            ++calls;
        }
    }
    EXPECT_GE(pictures, 6);
    EXPECT_GE(calls, 2);
}

// Section by section, as a run checks them: enders never outnumber starters, and an ELSE follows
// directly behind an IF_END.
TEST(ContentScripts, CloseTheirBlocks) {
    for (const auto& path : AllScripts()) {
        int ifs = 0, elses = 0;
        std::string before;
        for (const auto& command : ReadScript(path)) {
            const std::string& name = command.name;
            if (name == "START image loop (setup)" || name == "END image loop") {
                EXPECT_TRUE(ifs == 0 && elses == 0) << path << ": a block over " << name;
            }
            ifs += name.starts_with("IF_START") ? 1 : name == "IF_END" ? -1 : 0;
            elses += name == "ELSE_START" ? 1 : name == "ELSE_END" ? -1 : 0;
            EXPECT_TRUE(ifs >= 0 && elses >= 0) << path << ": " << name;
            if (name == "ELSE_START") {
                EXPECT_EQ(before, "IF_END") << path;
            }
            before = name;
        }
        EXPECT_TRUE(ifs == 0 && elses == 0) << path;
    }
}

TEST(ContentScripts, SubroutinesHoldNoMarkersAndNoOutput) {
    for (const auto& path : ShippedFiles("Subroutines", ".sbr")) {
        EXPECT_LE(path.stem().string().size(), 40u) << path << ": the call could not name it";
        for (const auto& command : ReadScript(path)) {
            EXPECT_NE(command.name, "START image loop (setup)") << path;
            EXPECT_NE(command.name, "END image loop") << path;
            EXPECT_NE(command.name, "Output setup") << path;
        }
    }
}

// An edit of a file by hand would be lost at the next run of its maker.
TEST(ContentScripts, AreWhatTheirMakerWrites) {
    if (std::system("python3 --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "no python3";
    EXPECT_EQ(std::system("python3 -B '" LUMO_SOURCE_ROOT "/tools/make_content.py' --check "
                          "Scripts/ Subroutines/ Lists/ CustomFilters/"),
              0);
}

TEST(ContentLists, NameShippedPhotographs) {
    const auto lists = ShippedFiles("Lists", ".lst");
    ASSERT_GE(lists.size(), 1u);
    for (const auto& path : lists) {
        const auto lines = CrLfLines(FileBytes(path));
        ASSERT_TRUE(lines && lines->size() >= 3) << path;
        EXPECT_EQ(lines->front(), "START") << path;
        EXPECT_EQ(lines->back(), "END") << path;
        for (std::size_t i = 1; i + 1 < lines->size(); ++i) {
            std::string entry = (*lines)[i];
            ASSERT_FALSE(entry.empty()) << path;
            if (entry.starts_with(";")) continue;
            if (constexpr std::string_view mark = " (no subfolders)"; entry.ends_with(mark)) {
                entry.resize(entry.size() - mark.size());
                EXPECT_TRUE(entry.ends_with('\\')) << path << ": " << entry;
                EXPECT_TRUE(fs::is_directory(ShippedPath(entry))) << path << ": " << entry;
            } else {
                EXPECT_TRUE(fs::is_regular_file(ShippedPath(entry))) << path << ": " << entry;
            }
        }
    }
}

}  // namespace
}  // namespace lumo::test
