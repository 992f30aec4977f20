#include "platform/environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <limits>

#include "support/temp_folder.h"

namespace lumo::platform {
namespace {

using test::PutFile;
using test::ScopedVariable;
using test::TempFolder;

TEST(InstallFolder, IsTheOneThatTheVariableNames) {
    const ScopedVariable stated("LUMOSCRIPT_INSTALL_FOLDER", "/some/where//");
    EXPECT_EQ(InstallFolder(), "/some/where");
}

TEST(InstallFolder, IsMadeAbsolute) {
    const ScopedVariable stated("LUMOSCRIPT_INSTALL_FOLDER", "here");
    EXPECT_EQ(InstallFolder(), (std::filesystem::current_path() / "here").string());
}

TEST(InstallFolder, IsNeverEmptyWithoutTheVariable) {
    const ScopedVariable none("LUMOSCRIPT_INSTALL_FOLDER", nullptr);
    EXPECT_THAT(InstallFolder(), testing::MatchesRegex("/.*/share(/lumoscript)?"));
    const ScopedVariable empty("LUMOSCRIPT_INSTALL_FOLDER", "");
    EXPECT_THAT(InstallFolder(), testing::MatchesRegex("/.*/share(/lumoscript)?"));
}

TEST(ConfigFolder, FollowsTheDesktopsRules) {
    const ScopedVariable home("HOME", "/home/u/");
    {
        const ScopedVariable config("XDG_CONFIG_HOME", "/c/");
        EXPECT_EQ(ConfigFolder(), "/c/lumoscript");
    }
    {
        const ScopedVariable relative("XDG_CONFIG_HOME", "c");
        EXPECT_EQ(ConfigFolder(), "/home/u/.config/lumoscript");
    }
    const ScopedVariable none("XDG_CONFIG_HOME", nullptr);
    EXPECT_EQ(ConfigFolder(), "/home/u/.config/lumoscript");
}

TEST(ConfigFolder, ComesFromTheUserListWithoutHome) {
    const ScopedVariable config("XDG_CONFIG_HOME", nullptr);
    const ScopedVariable home("HOME", nullptr);
    EXPECT_THAT(ConfigFolder(), testing::MatchesRegex("(/.*)?/.config/lumoscript"));
}

struct Documents : testing::Test {
    TempFolder folder;
    ScopedVariable config{"XDG_CONFIG_HOME", folder.Path()};
    ScopedVariable home{"HOME", "/home/u"};

    std::string Of(std::string_view list) {
        PutFile(folder / "user-dirs.dirs", list);
        return DocumentsFolder();
    }
};

TEST_F(Documents, DefaultLiesBelowHome) {
    EXPECT_EQ(DocumentsFolder(), "/home/u/Documents");
}

TEST_F(Documents, ListNamesThem) {
    EXPECT_EQ(Of("# c\nXDG_MUSIC_DIR=\"/m\"\nXDG_DOCUMENTS_DIR=\"$HOME/Papiere\"\n"),
              "/home/u/Papiere");
    EXPECT_EQ(Of("  XDG_DOCUMENTS_DIR = \"/data/my docs//\"  # ours"), "/data/my docs");
    EXPECT_EQ(Of("XDG_DOCUMENTS_DIR=\"$HOME/\""), "/home/u");  // the desktop's word for "none"
    EXPECT_EQ(Of("XDG_DOCUMENTS_DIR=\"$HOME\""), "/home/u");
    EXPECT_EQ(Of("XDG_DOCUMENTS_DIR=\"/a\"\nXDG_DOCUMENTS_DIR=\"/b\"\n"), "/b");
    EXPECT_EQ(Of("XDG_DOCUMENTS_DIR=\"/a\\\"\\$b\\\\\xFF\"\n"), "/a\"$b\\\xFF");
}

TEST_F(Documents, BrokenLinesCountForNothing) {
    for (const char* list :
         {"", "\n\n", "XDG_DOCUMENTS_DIR", "XDG_DOCUMENTS_DIR=", "XDG_DOCUMENTS_DIR=\"",
          "XDG_DOCUMENTS_DIR=\"/open", "XDG_DOCUMENTS_DIR=\"relative\"", "XDG_DOCUMENTS_DIR=/bare",
          "XDG_DOCUMENTS_DIR=\"$HOMEX/a\"", "XDG_DOCUMENTS_DIRX=\"/a\"",
          "#XDG_DOCUMENTS_DIR=\"/a\"", "XDG_DOCUMENTS_DIR=\"\"", "XDG_DOCUMENTS_DIR=\"/a\\"}) {
        EXPECT_EQ(Of(list), "/home/u/Documents") << list;
    }
}

TEST(Figures, OfDiskAndMemoryAreSane) {
    const auto disk = CurrentDisk();
    ASSERT_TRUE(disk);
    EXPECT_GT(disk->totalBytes, 0U);
    EXPECT_LE(disk->freeBytes, disk->totalBytes);
    const auto memory = Memory();
    ASSERT_TRUE(memory);
    EXPECT_GT(memory->totalRam, std::uint64_t{64} << 20);
    EXPECT_GT(memory->availableRam, 0U);
    EXPECT_LE(memory->availableRam, memory->totalRam);
    EXPECT_GE(memory->totalVirtual, memory->totalRam);
    EXPECT_GE(memory->loadPercent, 0);
    EXPECT_LE(memory->loadPercent, 100);
}

TEST(FormatTime, GivesLocalTime) {
    const ScopedVariable zone("TZ", "UTC-2");
    EXPECT_EQ(FormatTime("%m/%d/%y %H:%M", 86400), "01/02/70 02:00");
    EXPECT_EQ(FormatTime("plain", 0), "plain");
    EXPECT_EQ(FormatTime("", 0), "");
    EXPECT_EQ(FormatTime("100%%", 0), "100%");
}

TEST(FormatTime, NeverCutsAndNeverFails) {
    EXPECT_EQ(FormatTime(std::string(5000, 'x'), 0), std::string(5000, 'x'));
    EXPECT_EQ(FormatTime("%999999999d", 0), "%999999999d");
    EXPECT_EQ(FormatTime("a%", 0).substr(0, 1), "a");
    EXPECT_EQ(FormatTime(std::string_view("a\0b", 3), 0), std::string("a\0b", 3));
    EXPECT_FALSE(FormatTime("%Y", std::numeric_limits<std::time_t>::max()).empty());
    EXPECT_EQ(FormatTime("%p", 0), FormatTime("%p", 60));  // may be empty in some languages
}

}  // namespace
}  // namespace lumo::platform
