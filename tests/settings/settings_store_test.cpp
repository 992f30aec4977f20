#include "settings/settings_store.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

#include "store_fixture.h"
#include "support/file_size_limit.h"

namespace lumo::settings {
namespace {

namespace fs = std::filesystem;
using test::FileText;
using test::NamesIn;
using test::PutFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct Store : StoreFixture {};

TEST_F(Store, WhatIsSavedIsThereAtTheNextStart) {
    Settings settings = Opened();
    settings.folders.photos = "/photos\xFF\n\"x\"";
    settings.commandDefaults["Crop"] = "6,1,2,3,4,5,6,";
    settings.windows["WS23"] = {true, 1, 2, 3, 4, 5, 6};
    settings.recentLists[3] = "/l.lst";
    EXPECT_THAT(SaveSettings(settings, SaveKind::Normal, kNow + 1), IsEmpty());
    EXPECT_EQ(Opened(), settings);
    EXPECT_THAT(messages, IsEmpty());
    EXPECT_EQ(Stored({"1.0"}, "DATE"), "integer 1700000001");
    EXPECT_THAT(FileText(file), StartsWith("# Settings of Lumoscript"));
    EXPECT_THAT(NamesIn(root / "config/lumoscript"), ElementsAre("settings.toml"));
}

TEST_F(Store, ABrokenFileIsKeptBesideAndReported) {
    PutFile(file, "this is = = no settings file\n");
    const Settings settings = Opened();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_THAT(messages[0], HasSubstr(file + ": line 1"));
    EXPECT_THAT(messages[0], HasSubstr("kept as " + file + ".broken"));
    EXPECT_EQ(FileText(file + ".broken"), "this is = = no settings file\n");
    EXPECT_EQ(Stored({"1.0"}, "bFirstBoot"), "No");  // a first start took place
    EXPECT_EQ(settings.writer.jpgQuality, "85");

    PutFile(file, "\xFF\xFE");
    Opened();
    EXPECT_EQ(FileText(file + ".broken-2"), "\xFF\xFE");
    EXPECT_EQ(FileText(file + ".broken"), "this is = = no settings file\n");
    EXPECT_THAT(NamesIn(root / "config/lumoscript"),
                ElementsAre("settings.toml", "settings.toml.broken", "settings.toml.broken-2"));
}

TEST_F(Store, AFileThatBreaksWhileTheProgramRunsIsKeptToo) {
    const Settings settings = Opened();
    PutFile(file, "[");
    const Messages told = SaveSettings(settings, SaveKind::Normal, kNow);
    ASSERT_EQ(told.size(), 1U);
    EXPECT_THAT(told[0], HasSubstr("kept as"));
    EXPECT_EQ(FileText(file + ".broken"), "[");
    EXPECT_EQ(Opened(), settings);
}

TEST_F(Store, AHugeFileIsKeptBeside) {
    PutFile(file, "[a]\n#" + std::string(5 << 20, 'x'));
    Opened();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_THAT(messages[0], HasSubstr("too large"));
    EXPECT_TRUE(fs::exists(file + ".broken"));
}

TEST_F(Store, AFolderInThePlaceOfTheFileStopsNothing) {
    fs::create_directories(file);
    const Settings settings = Opened();
    EXPECT_EQ(settings.writer.jpgQuality, "85");
    ASSERT_GE(messages.size(), 7U);
    EXPECT_THAT(messages[0], HasSubstr("Is a directory"));
    EXPECT_EQ(messages[1], "registry write error_2679");
    EXPECT_TRUE(fs::is_directory(file));
}

TEST_F(Store, ABrokenFileThatCannotBePutAsideIsNotOverwritten) {
    PutFile(file, "broken [");
    PutFile(file + ".broken", "");
    for (int n = 2; n <= 1000; ++n) PutFile(file + ".broken-" + std::to_string(n), "");
    const Settings settings = Opened();
    EXPECT_EQ(FileText(file), "broken [");
    ASSERT_EQ(messages.size(), 7U);
    EXPECT_EQ(messages[1], "registry write error_2679");
    EXPECT_EQ(SaveSettings(settings, SaveKind::Normal, kNow).size(), 7U);
    EXPECT_EQ(FileText(file), "broken [");
}

TEST_F(Store, ReadOnlyChangesNothingOnDisk) {
    const Settings settings = Opened(StoreAccess::ReadOnly);
    EXPECT_THAT(messages, IsEmpty());
    EXPECT_EQ(settings.folders.temp, data + "/Temp");
    EXPECT_EQ(settings.folders.photos, install + "/Photos");
    EXPECT_FALSE(fs::exists(home));
    EXPECT_FALSE(fs::exists(root / "config"));

    PutFile(file, "broken [");
    Opened(StoreAccess::ReadOnly);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_THAT(messages[0], HasSubstr(file));
    EXPECT_EQ(FileText(file), "broken [");
    EXPECT_THAT(NamesIn(root / "config/lumoscript"), ElementsAre("settings.toml"));
}

TEST_F(Store, AStoreThatCannotBeWrittenSaysSoTableByTable) {
    PutFile(root / "config", "a file in the place of the folder");
    const Settings settings = Opened();
    EXPECT_THAT(messages, ElementsAre("registry write error_2679", "registry write error_2677",
                                      "registry write error_2677", "registry write error_2697",
                                      "registry write error_2675", "registry write error_2676",
                                      root / "config: Not a directory"));
    EXPECT_EQ(settings.folders.logs, data + "/Logs");
    EXPECT_EQ(settings.commandDefaults.at("Crop"), "6,10,10,10,10,0,0,");
    EXPECT_THAT(SaveRecentLists(settings),
                ElementsAre("registry write error_2675a", root / "config: Not a directory"));
    SaveWindowStates(settings);
    EXPECT_EQ(FileText(root / "config"), "a file in the place of the folder");
}

TEST_F(Store, AFailedSaveLeavesTheOldFile) {
    Settings settings = Opened();
    const std::string before = FileText(file);
    const test::ScopedFileSizeLimit fullDisk(1000);
    settings.autoPad = "1";
    const Messages told = SaveSettings(settings, SaveKind::Normal, kNow);
    ASSERT_EQ(told.size(), 7U);
    EXPECT_EQ(told[6], file + ": File too large");
    EXPECT_EQ(FileText(file), before);
    EXPECT_THAT(NamesIn(root / "config/lumoscript"), ElementsAre("settings.toml"));
}

TEST_F(Store, ALinkedFileStaysALink) {
    const Settings settings = Opened();
    fs::create_directories(root / "dotfiles");
    fs::rename(file, root / "dotfiles/lumo.toml");
    fs::create_symlink(root / "dotfiles/lumo.toml", file);
    Settings changed = settings;
    changed.autoPad = "00";
    EXPECT_THAT(SaveSettings(changed, SaveKind::Normal, kNow), IsEmpty());
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_THAT(FileText(root / "dotfiles/lumo.toml"), HasSubstr("AutoPad = \"00\""));
    EXPECT_EQ(Opened(), changed);
}

TEST_F(Store, TheFileKeepsItsMode) {
    const Settings settings = Opened();
    ASSERT_EQ(chmod(file.c_str(), 0600), 0);
    EXPECT_THAT(SaveSettings(settings, SaveKind::Normal, kNow), IsEmpty());
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
}

TEST_F(Store, ADefaultOfAnotherLayoutDiesQuietly) {
    Opened();
    Edit("Shift = \"7,0,0,0,1,255,255,255,\"", "Shift = \"6,1,2\"");
    Edit("Crop = \"6,10,10,10,10,0,0,\"", "Crop = \"6,1\"");
    const Settings settings = Opened();
    EXPECT_THAT(messages, IsEmpty());
    EXPECT_EQ(settings.commandDefaults.at("Shift"), "7,0,0,0,1,255,255,255,");
    EXPECT_EQ(settings.commandDefaults.at("Crop"), "6,1");
}

TEST_F(Store, RecentListsGoAndComeAlone) {
    Settings settings = Opened();
    settings.recentLists[0] = "/new.lst";
    settings.recentScripts[0] = "/unsaved.whs";
    EXPECT_THAT(SaveRecentLists(settings), IsEmpty());
    Settings other = Opened();
    EXPECT_EQ(other.recentLists[0], "/new.lst");
    EXPECT_EQ(other.recentScripts[0], "");
    Edit("/new.lst", "/newer.lst");
    other.recentScripts[0] = "/mine.whs";
    LoadRecentLists(other);
    EXPECT_EQ(other.recentLists[0], "/newer.lst");
    EXPECT_EQ(other.recentScripts[0], "/mine.whs");
}

TEST_F(Store, PlacementsOfDialogsAreSavedAlone) {
    Settings settings = Opened();
    settings.windows["WS23"] = {true, 0, 1, 10, 20, 300, 400};
    settings.autoPad = "unsaved";
    SaveWindowStates(settings);
    EXPECT_EQ(Stored({"WinState", "WS23"}, "SavedState"), "Yes");
    EXPECT_EQ(Stored({"WinState", "WS23"}, "Right"), "integer 300");
    EXPECT_EQ(Stored({"1.0"}, "AutoPad"), "0001");
    EXPECT_EQ(Opened().windows, settings.windows);
}

TEST_F(Store, OldSlotsAreEmptiedAtStart) {
    const auto slotsAfter = [&](std::time_t later) {
        PutFile(data + "/Temp/Temp1.bmp", "x");
        Opened(StoreAccess::ReadAndWrite, kNow + later);
        return NamesIn(data + "/Temp").size();
    };
    Opened();
    EXPECT_EQ(slotsAfter(0), 1U);
    EXPECT_EQ(slotsAfter(8 * 3600), 1U);
    EXPECT_EQ(slotsAfter(9 * 3600 - 1), 1U);  // eight whole hours, and no more than eight
    EXPECT_EQ(slotsAfter(9 * 3600), 0U);
    EXPECT_EQ(slotsAfter(-100 * 3600), 1U);  // saved in the future: a clock was set back

    Opened(StoreAccess::ReadOnly, kNow + 100 * 3600);
    EXPECT_EQ(NamesIn(data + "/Temp").size(), 1U);
    Edit("DATE = 1700000000", "");
    EXPECT_EQ(slotsAfter(100 * 3600), 1U);
}

TEST_F(Store, OldPicturesInAPhotoFolderAreNeverTakenForSlots) {
    Settings settings = Opened();
    settings.folders.temp = root / "pictures";
    settings.lastInFolder = root / "pictures/";
    PutFile(root / "pictures/Temp1.bmp", "picture");
    SaveSettings(settings, SaveKind::Normal, kNow);
    Opened(StoreAccess::ReadAndWrite, kNow + 100 * 3600);
    EXPECT_EQ(FileText(root / "pictures/Temp1.bmp"), "picture");
}

TEST_F(Store, HostileMomentsDoNoHarm) {
    Opened();
    PutFile(data + "/Temp/Temp1.bmp", "x");
    for (const char* moment : {"-9223372036854775808", "9223372036854775807", "-1", "1e300"}) {
        SaveSettings(Opened(), SaveKind::Normal, kNow);
        Edit("DATE = 1700000000", "DATE = " + std::string(moment));
        Opened();
        EXPECT_TRUE(fs::exists(data + "/Temp/Temp1.bmp")) << moment;
    }
}

TEST_F(Store, WhatSomebodyElseWroteMeanwhileStays) {
    const Settings settings = Opened();
    Edit("[Limits]", "[Extra]\nkey = [1, 2]\n[Limits]");
    SaveSettings(settings, SaveKind::Normal, kNow);
    EXPECT_THAT(FileText(file), HasSubstr("[Extra]\nkey = [ 1, 2 ]"));
    EXPECT_EQ(Opened(), settings);
}

TEST_F(Store, LimitsComeFromTheFile) {
    Opened();
    Edit("MemoryBudgetMegabytes = 0", "MemoryBudgetMegabytes = 512");
    const Settings settings = Opened();
    EXPECT_EQ(settings.memoryBudgetMegabytes, 512);
    SaveSettings(settings, SaveKind::Normal, kNow);
    Edit("bFirstBoot = \"No\"", "");
    EXPECT_EQ(Opened().memoryBudgetMegabytes, 512);  // a first start does not touch them
}

TEST_F(Store, AbsurdLimitsAreAsLargeAsTheyCanBe) {
    Opened();
    Edit("MemoryBudgetMegabytes = 0", "MemoryBudgetMegabytes = 9223372036854775807");
    Edit("MaxPictureSide = 0", "MaxPictureSide = 4294967297");  // must not come out as 1
    Edit("MaxPictureMegapixels = 0", "MaxPictureMegapixels = -9223372036854775808");
    const Settings settings = Opened();
    EXPECT_EQ(settings.memoryBudgetMegabytes, 2147483647);
    EXPECT_EQ(settings.maxPictureSide, 2147483647);
    EXPECT_EQ(settings.maxPictureMegapixels, 0);
}

}  // namespace
}  // namespace lumo::settings
