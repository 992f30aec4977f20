#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>

#include "store_fixture.h"

namespace lumo::settings {
namespace {

namespace fs = std::filesystem;
using test::FileText;
using test::NamesIn;
using test::PutFile;
using test::ScopedVariable;
using testing::ElementsAre;
using testing::IsEmpty;

struct FirstBoot : StoreFixture {};

TEST_F(FirstBoot, MakesTheFolderTreeAndCopiesWhatShips) {
    const Settings settings = Opened();
    EXPECT_THAT(messages, IsEmpty());
    EXPECT_THAT(NamesIn(data),
                ElementsAre("CustomFilters", "Lists", "Logs", "Scripts", "Subroutines", "Temp"));
    EXPECT_EQ(FileText(data + "/Scripts/thumb.whs"), "script");
    EXPECT_EQ(FileText(data + "/Scripts/odd\n\xFF.whs"), "odd");
    EXPECT_EQ(FileText(data + "/Subroutines/sub.sbr"), "sub");
    EXPECT_EQ(FileText(data + "/CustomFilters/soft.acf"), "filter");
    EXPECT_EQ(FileText(data + "/Lists/all.lst"), "list");
    EXPECT_THAT(NamesIn(data + "/Scripts"),
                ElementsAre("odd\n\xFF.whs", "thumb.whs"));  // files only
    EXPECT_THAT(NamesIn(data + "/Temp"), IsEmpty());
    EXPECT_EQ(settings.userMode, 2);
    EXPECT_EQ(settings.folders.scripts, data + "/Scripts");
    EXPECT_EQ(settings.folders.masks, install + "/Masks");
    EXPECT_EQ(settings.installFolder, install);
}

TEST_F(FirstBoot, SavesEverything) {
    Opened();
    EXPECT_EQ(Stored({"Multiuser"}, "Multiuser"), "Yes");
    EXPECT_EQ(Stored({"1.0"}, "bFirstBoot"), "No");
    EXPECT_EQ(Stored({"1.0"}, "MainPath"), install);
    EXPECT_EQ(Stored({"1.0"}, "TempPath"), data + "/Temp");
    EXPECT_EQ(Stored({"1.0"}, "PNGgamma"), "real 2.200000");
    EXPECT_EQ(Stored({"1.0"}, "DATE"), "integer 1700000000");
    EXPECT_EQ(Stored({"Cmds"}, "Blend"),
              "6,Normal,0,100,1,0,\"" + install + "/Masks/Mask-1.bmp\",");
    EXPECT_EQ(Stored({"Cmds"}, "STARTDef").substr(0, 12), "32,0,,,1,1,1");
    EXPECT_EQ(Stored({"Cmds"}, "FixedIn"), "");
    EXPECT_EQ(Stored({"Dialogs"}, "LastInFolder"), install + "/Photos/");
}

TEST_F(FirstBoot, TheSecondStartReadsWhatTheFirstSaved) {
    const Settings first = Opened();
    const std::string before = FileText(file);
    Settings second = Opened();
    EXPECT_THAT(messages, IsEmpty());
    // The comment that ships with the JPG header is longer than a text that is read.
    EXPECT_EQ(second.commandDefaults["JPGheader"],
              first.commandDefaults.at("JPGheader").substr(0, 255));
    second.commandDefaults["JPGheader"] = first.commandDefaults.at("JPGheader");
    EXPECT_EQ(second, first);
    EXPECT_EQ(FileText(file), before);  // a start writes nothing
}

TEST_F(FirstBoot, OverwritesNoFile) {
    PutFile(data + "/Scripts/thumb.whs", "my own");
    fs::create_directories(data + "/Lists");
    fs::create_symlink(root / "gone", data + "/Lists/all.lst");
    Opened();
    EXPECT_EQ(FileText(data + "/Scripts/thumb.whs"), "my own");
    EXPECT_EQ(FileText(data + "/Scripts/odd\n\xFF.whs"), "odd");
    EXPECT_TRUE(fs::is_symlink(data + "/Lists/all.lst"));
    EXPECT_FALSE(fs::exists(root / "gone"));
}

TEST_F(FirstBoot, DeletingItsMarkRepeatsItWithoutTheFolders) {
    Settings settings = Opened();
    settings.folders.photos = "/mine";
    settings.autoPad = "7";
    settings.recentScripts[0] = "/r.whs";
    settings.windows["WS01"] = {true, 1, 1, 1, 1, 1, 1};
    SaveSettings(settings, SaveKind::Normal, kNow);
    Edit("bFirstBoot = \"No\"\n", "");
    fs::remove_all(data);
    const Settings again = Opened();
    EXPECT_EQ(again.folders.photos, install + "/Photos");
    EXPECT_EQ(again.autoPad, "0001");
    EXPECT_EQ(again.recentScripts[0], "");
    EXPECT_EQ(again.windows, settings.windows);
    EXPECT_EQ(Stored({"1.0"}, "AutoPad"), "0001");
    EXPECT_EQ(Stored({"1.0"}, "bFirstBoot"), "No");
    EXPECT_FALSE(fs::exists(data));  // the users' folders were made at the start before
}

TEST_F(FirstBoot, OneUserBecomesSeveral) {
    PutFile(file, "[Multiuser]\nMultiuser = \"No\"\n");
    EXPECT_EQ(Opened().userMode, 2);
    EXPECT_TRUE(fs::exists(data + "/Logs"));
    EXPECT_EQ(Stored({"Multiuser"}, "Multiuser"), "Yes");
}

TEST_F(FirstBoot, AStatedUserFolderIsTheDataFolder) {
    PutFile(file, "[Multiuser]\nUserLSset = \"Yes\"\nUserLSpath = \"" + (root / "net/u") + "/\"\n");
    const Settings settings = Opened();
    EXPECT_EQ(settings.folders.scripts, root / "net/u/Scripts");
    EXPECT_EQ(FileText(root / "net/u/Scripts/thumb.whs"), "script");
    EXPECT_FALSE(fs::exists(home));
    EXPECT_EQ(Stored({"Multiuser"}, "UserLSset"), "Yes");
}

TEST_F(FirstBoot, TheDesktopNamesTheDocumentsFolder) {
    PutFile(root / "config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/My Papers\"\n");
    EXPECT_EQ(Opened().folders.logs, home + "/My Papers/Lumoscript/Logs");
    EXPECT_TRUE(fs::exists(home + "/My Papers/Lumoscript/Scripts/thumb.whs"));
}

TEST_F(FirstBoot, WithoutAnInstallationThereAreFoldersAllTheSame) {
    const ScopedVariable none("LUMOSCRIPT_INSTALL_FOLDER", root / "nowhere");
    Opened();
    EXPECT_THAT(messages, IsEmpty());
    EXPECT_TRUE(fs::exists(data + "/Scripts"));
    EXPECT_THAT(NamesIn(data + "/Scripts"), IsEmpty());
}

TEST_F(FirstBoot, FoldersThatCannotBeMadeAreToldAndStopNothing) {
    PutFile(home + "/Documents", "a file in the place of the folder");
    const Settings settings = Opened();
    ASSERT_EQ(messages.size(), 12U);  // the words and the reason, for six folders
    EXPECT_EQ(messages[0], " failed to create folder, invalid_handle2");
    EXPECT_EQ(messages[1], home + "/Documents: Not a directory");
    EXPECT_EQ(settings.folders.logs, data + "/Logs");
    EXPECT_EQ(Stored({"1.0"}, "bFirstBoot"), "No");
}

TEST_F(FirstBoot, AFileInThePlaceOfOneFolderIsToldAndLeft) {
    PutFile(data + "/Lists", "mine");
    Opened();
    EXPECT_THAT(messages,
                ElementsAre("error 9755 in creating directory", data + "/Lists: Not a directory"));
    EXPECT_EQ(FileText(data + "/Lists"), "mine");
    EXPECT_TRUE(fs::exists(data + "/Temp"));
}

TEST_F(FirstBoot, TheCurrentFolderStays) {
    const fs::path before = fs::current_path();
    Opened();
    EXPECT_EQ(fs::current_path(), before);
}

TEST_F(FirstBoot, AHomelessUserCanWorkToo) {
    // As in a container: nothing can be written at all.
    const ScopedVariable noHome("HOME", "/proc/none");
    const ScopedVariable noConfig("XDG_CONFIG_HOME", "/proc/none");
    const Settings settings = Opened();
    EXPECT_EQ(settings.folders.temp, "/proc/none/Documents/Lumoscript/Temp");
    EXPECT_EQ(settings.commandDefaults.size(), 59U);
    EXPECT_EQ(messages.size(), 12U + 7U);
}

}  // namespace
}  // namespace lumo::settings
