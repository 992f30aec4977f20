// What desktops are told of the program: the files name one another, and what they name is there.

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "script/script_file.h"
#include "script/templates.h"
#include "support/temp_folder.h"
#include "support/test_files.h"

namespace lumo {
namespace {

namespace fs = std::filesystem;
using testing::Contains, testing::HasSubstr, testing::IsEmpty, testing::Not;

const fs::path kPackaging = test::SourceRoot() / "packaging";
constexpr int kSizes[] = {16, 22, 24, 32, 48, 64, 128, 256, 512};

std::string Read(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// The pairs of the one group of a desktop file.
std::map<std::string, std::string> DesktopEntry() {
    std::istringstream lines(Read(kPackaging / "lumoscript.desktop"));
    std::map<std::string, std::string> entry;
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "[Desktop Entry]");
    while (std::getline(lines, line)) {
        const std::size_t equals = line.find('=');
        EXPECT_NE(equals, std::string::npos) << line;
        const std::string key = line.substr(0, equals);
        EXPECT_TRUE(entry.emplace(key, line.substr(equals + 1)).second) << key << " stands twice";
    }
    return entry;
}

std::vector<std::string> Split(const std::string& list, char separator) {
    std::vector<std::string> parts;
    std::istringstream text(list);
    for (std::string part; std::getline(text, part, separator);) parts.push_back(part);
    return parts;
}

/// All that stands between `before` and `after`.
std::vector<std::string> Between(const std::string& text, std::string_view before,
                                 std::string_view after) {
    std::vector<std::string> found;
    for (std::size_t at = 0; (at = text.find(before, at)) != std::string::npos;) {
        at += before.size();
        const std::size_t end = text.find(after, at);
        if (end == std::string::npos) break;
        found.push_back(text.substr(at, end - at));
    }
    return found;
}

/// Why the text is no well-formed XML, or "". Enough for our own files: no CDATA, no DTD.
std::string Malformation(std::string_view text) {
    std::vector<std::string> open;
    std::size_t roots = 0;
    for (std::size_t at = 0; (at = text.find('<', at)) != std::string_view::npos;) {
        const bool comment = text.substr(at).starts_with("<!--");
        const std::string_view close = comment ? "-->" : ">";
        const std::size_t end = text.find(close, at);
        if (end == std::string_view::npos) return "a tag is not closed";
        std::string tag(text.substr(at + 1, end - at - 1));
        at = end + close.size();
        if (comment || tag.starts_with('?')) continue;
        if (std::ranges::count(tag, '"') % 2 != 0) return "odd quotes in <" + tag + ">";
        const bool alone = tag.ends_with('/');
        const std::string name = tag.substr(0, tag.find_first_of(" \t\n/", 1));
        if (tag.starts_with('/')) {
            if (open.empty() || "/" + open.back() != name) return "unexpected <" + tag + ">";
            open.pop_back();
        } else {
            if (open.empty() && ++roots > 1) return "a second root <" + tag + ">";
            if (!alone) open.push_back(name);
        }
    }
    return !open.empty() ? "<" + open.back() + "> stays open" : roots == 1 ? "" : "no root";
}

/// Width and height of a PNG file.
std::pair<int, int> PngSize(const fs::path& path) {
    const std::string bytes = Read(path);
    if (bytes.size() < 24 || bytes.substr(0, 8) != "\x89PNG\r\n\x1a\n") return {};
    const auto word = [&](std::size_t at) {
        int value = 0;
        for (std::size_t i = at; i < at + 4; ++i)
            value = value << 8 | static_cast<unsigned char>(bytes[i]);
        return value;
    };
    return {word(16), word(20)};
}

TEST(Malformation, FindsWhatIsWrong) {
    EXPECT_EQ(Malformation("<?xml?><!-- <x> --><a><b c=\"d\"/></a>"), "");
    for (const std::string_view wrong :
         {"", "<a>", "<a><b></a></b>", "<a></a><b></b>", "<a b=\"></a>", "<a", "</a>"})
        EXPECT_NE(Malformation(wrong), "") << wrong;
}

TEST(Packaging, EveryXmlFileIsWellFormed) {
    int seen = 0;
    for (const auto& entry : fs::recursive_directory_iterator(kPackaging)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".xml" && extension != ".svg") continue;
        EXPECT_EQ(Malformation(Read(entry.path())), "") << entry.path();
        ++seen;
    }
    EXPECT_EQ(seen, 4);
}

TEST(Packaging, DesktopFileStartsAProgramOfOurs) {
    auto entry = DesktopEntry();
    EXPECT_EQ(entry["Type"], "Application");
    EXPECT_EQ(entry["Exec"], "lumoscript %f");
    EXPECT_EQ(entry["Terminal"], "false");
    const std::string build = Read(test::SourceRoot() / "src/CMakeLists.txt");
    EXPECT_THAT(build, HasSubstr("add_executable(lumoscript "));
    for (const char* needed : {"Name", "Comment", "Categories", "Icon", "MimeType"})
        EXPECT_THAT(entry[needed], Not(IsEmpty())) << needed;
}

TEST(Packaging, EveryNamedIconIsThereInAllSizes) {
    std::vector<std::string> icons{DesktopEntry()["Icon"]};
    const std::string metainfo = Read(kPackaging / "org.lumoscript.Lumoscript.metainfo.xml");
    for (const std::string& icon : Between(metainfo, "<icon type=\"stock\">", "</icon>"))
        icons.push_back(icon);
    for (const std::string& icon :
         Between(Read(kPackaging / "lumoscript-mime.xml"), "<icon name=\"", "\""))
        icons.push_back(icon);
    EXPECT_EQ(icons.size(), 4U);
    for (const std::string& icon : icons) {
        EXPECT_TRUE(fs::exists(kPackaging / "icons" / (icon + ".svg"))) << icon;
        for (const int size : kSizes) {
            const std::string folder = std::to_string(size) + "x" + std::to_string(size);
            EXPECT_EQ(PngSize(kPackaging / "icons" / folder / (icon + ".png")),
                      (std::pair{size, size}))
                << icon << " " << size;
        }
    }
}

TEST(Packaging, TypesOfFilesAreDefinedAndOffered) {
    const std::string mime = Read(kPackaging / "lumoscript-mime.xml");
    const std::vector<std::string> defined = Between(mime, "<mime-type type=\"", "\"");
    EXPECT_EQ(defined.size(), 2U);
    EXPECT_EQ(Split(DesktopEntry()["MimeType"], ';'), defined);
    EXPECT_EQ(Between(Read(kPackaging / "org.lumoscript.Lumoscript.metainfo.xml"), "<mediatype>",
                      "</mediatype>"),
              defined);
    EXPECT_EQ(Between(mime, "<glob pattern=\"", "\""),
              (std::vector<std::string>{"*.whs", "*.sbr"}));
}

TEST(Packaging, FilesThatTheProgramWritesAreRecognisedByTheirBeginning) {
    const std::string mime = Read(kPackaging / "lumoscript-mime.xml");
    std::vector<std::string> beginnings = Between(mime, "offset=\"0\" value=\"", "\"");
    ASSERT_EQ(beginnings.size(), 2U);
    for (std::string& text : beginnings) text.replace(text.find("\\r\\n"), 4, "\r\n");
    const test::TempFolder folder;
    const auto written = [&](script::FileKind kind) {
        const std::string path = folder / "x";
        script::SaveScript(script::NewSubroutine(), path, kind);
        return Read(path);
    };
    EXPECT_TRUE(written(script::FileKind::Script).starts_with(beginnings[0]));
    EXPECT_TRUE(written(script::FileKind::Subroutine).starts_with(beginnings[1]));
}

TEST(Packaging, MetainfoNamesTheDesktopFile) {
    const std::string metainfo = Read(kPackaging / "org.lumoscript.Lumoscript.metainfo.xml");
    for (const std::string& file :
         Between(metainfo, "<launchable type=\"desktop-id\">", "</launchable>"))
        EXPECT_TRUE(fs::exists(kPackaging / file)) << file;
    EXPECT_THAT(Between(metainfo, "<id>", "</id>"), Contains("org.lumoscript.Lumoscript"));
    const std::string build = Read(test::SourceRoot() / "CMakeLists.txt");
    const auto version = Between(build, "project(Lumoscript VERSION ", " ");
    ASSERT_EQ(version.size(), 1U);
    EXPECT_THAT(metainfo, HasSubstr("<release version=\"" + version[0] + "\""));
}

TEST(Packaging, WhatIsInstalledIsThere) {
    const std::string rules = Read(test::SourceRoot() / "cmake/Packaging.cmake");
    for (const std::string& file : Between(rules, "install(FILES ${LUMO_PACKAGING}/", " ")) {
        const std::string path = file.substr(0, file.find('\n'));
        if (path.find("${folder}") == std::string::npos) {
            EXPECT_TRUE(fs::exists(kPackaging / path)) << path;
        }
    }
}

}  // namespace
}  // namespace lumo
