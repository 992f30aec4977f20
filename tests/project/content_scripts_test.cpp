// The shipped Scripts, Subroutines and Image lists: their form to the byte, the fields of each
// command, and that each Script runs unattended with what the installation brings along.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

#include "engine/block_checks.h"
#include "script/catalogue.h"
#include "script/script_file.h"
#include "script/script_format.h"
#include "support/content_files.h"
#include "support/test_files.h"

namespace lumo::test {
namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;
using testing::StartsWith;

struct Command {
    std::string name;
    Strings fields;
};

// The fields behind the count; none if the string is not exactly "count,field,...,field,". The
// program reads much looser forms; what is shipped keeps to the strict one.
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

// Fields of a command's stored string: as its default has them, which may be one more than it
// reads.
std::size_t StoredFieldCount(const script::CatalogueRow& row) {
    if (!row.factory.empty())
        return static_cast<std::size_t>(std::atoi(std::string(row.factory).c_str()));
    return static_cast<std::size_t>(std::max(0, row.fieldCount));
}

script::Script ParseShipped(const fs::path& path) {
    const std::string bytes = FileBytes(path);
    EXPECT_TRUE(std::ranges::all_of(bytes, [](char c) {
        return c == '\r' || c == '\n' || (c >= ' ' && c <= '~');
    })) << path;
    const auto parsed = script::ParseScriptBytes(bytes);
    EXPECT_TRUE(parsed.Complete()) << path;
    EXPECT_EQ(parsed.kind, script::FileKindOf(path.string())) << path;
    EXPECT_EQ(script::SerializeScript(parsed.script, parsed.kind), bytes)
        << path << " is not as the program would save it";
    return parsed.script;
}

std::vector<Command> ReadScript(const fs::path& path) {
    const script::Script shipped = ParseShipped(path);
    std::vector<Command> commands;
    for (std::size_t i = 0; i < shipped.names.size(); ++i) {
        const std::string &name = shipped.names[i], &parameters = shipped.params[i];
        const auto* row = script::FindByName(name);
        const auto fields = SplitFields(parameters);
        EXPECT_NE(row, nullptr) << path << ": unknown command \"" << name << '"';
        EXPECT_TRUE(fields) << path << ": " << name << ": " << parameters;
        if (row && fields) {
            EXPECT_EQ(fields->size(), StoredFieldCount(*row)) << path << ": " << name;
        }
        commands.push_back({name, fields.value_or(Strings{})});
    }
    return commands;
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

// As a run prepares them: what is called stands behind the Script, and all blocks are in order.
TEST(ContentScripts, CloseTheirBlocks) {
    for (const auto& path : ShippedFiles("Scripts", ".whs")) {
        script::Script commands = ParseShipped(path);
        for (const auto& subroutine : ShippedFiles("Subroutines", ".sbr"))
            ASSERT_EQ(script::AppendSubroutineBytes(commands, FileBytes(subroutine),
                                                    subroutine.stem().string()),
                      script::ReadOutcome::Complete)
                << subroutine;
        const engine::RunList list{commands, commands.Find("START image loop (setup)"),
                                   commands.Find("END image loop")};
        const auto fault = [&](std::string_view line) { ADD_FAILURE() << path << ": " << line; };
        EXPECT_TRUE(engine::CheckLoops(list, fault)) << path;
        EXPECT_TRUE(engine::CheckDoWhile(list, fault)) << path;
        EXPECT_TRUE(engine::CheckIf(list, fault)) << path;
        EXPECT_TRUE(engine::CheckElse(list, fault)) << path;
        EXPECT_TRUE(engine::CheckSubroutines(list, fault)) << path;
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
    const std::string maker = (test::SourceRoot() / "tools" / "make_content.py").string();
    const std::string command =
        "python3 -B '" + maker + "' --check Scripts/ Subroutines/ Lists/ CustomFilters/";
    EXPECT_EQ(std::system(command.c_str()), 0);
}

TEST(ContentLists, NameShippedPhotographs) {
    const auto lists = ShippedFiles("Lists", ".lst");
    ASSERT_GE(lists.size(), 1u);
    for (const auto& path : lists) {
        const std::string bytes = FileBytes(path);
        EXPECT_TRUE(bytes.ends_with("\r\nEND\r\n")) << path;
        EXPECT_EQ(std::ranges::count(bytes, '\r'), std::ranges::count(bytes, '\n')) << path;
        ASSERT_TRUE(bytes.starts_with("START\r\n")) << path;
        int entries = 0;
        for (std::size_t at = 7; at < bytes.size();) {
            const std::size_t end = bytes.find("\r\n", at);
            std::string entry = bytes.substr(at, end - at);
            at = end + 2;
            ASSERT_FALSE(entry.empty()) << path;
            if (entry == "END" || entry.starts_with(";")) continue;
            const std::size_t mark = entry.find(" (no subfolders)");
            entry.erase(std::min(mark, entry.size()));
            const fs::path named = ShippedPath(entry);
            EXPECT_TRUE(entry.ends_with('\\') ? fs::is_directory(named)
                                              : fs::is_regular_file(named))
                << path << ": " << entry;
            ++entries;
        }
        EXPECT_GE(entries, 1) << path;
    }
}

}  // namespace
}  // namespace lumo::test
