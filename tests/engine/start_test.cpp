#include "engine/start.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "script/catalogue.h"
#include "script/names.h"
#include "support/recording_ui.h"
#include "support/temp_folder.h"
#include "support/test_images.h"

namespace lumo::engine {
namespace {

namespace fs = std::filesystem;
namespace names = script::names;
using testing::ElementsAre;
using testing::IsEmpty;

/// A user with an empty home.
class Start : public testing::Test {
  protected:
    test::TempFolder root;
    test::ScopedVariable home{"HOME", root / "home"};
    test::ScopedVariable config{"XDG_CONFIG_HOME", root / "config"};
    test::ScopedVariable install{"LUMOSCRIPT_INSTALL_FOLDER", root / "install"};
    test::ScopedMemoryBudget budget{imaging::MemoryBudget()};  // as before when the test is over
    std::string settingsFile = root / "config/lumoscript/settings.toml";
    std::string subroutines = root / "home/Documents/Lumoscript/Subroutines";
    test::RecordingInterface ui;
    CLumoscriptView view{ui};
};

TEST_F(Start, MakesFoldersSettingsAndANewScript) {
    StartView(view, SettingsFile::ReadAndWrite);
    EXPECT_THAT(ui.notices, IsEmpty());
    EXPECT_TRUE(fs::exists(settingsFile));
    EXPECT_TRUE(fs::exists(subroutines));
    const ScriptState& script = view.script;
    EXPECT_THAT(script.commands.names,
                ElementsAre(names::kStartImageLoop, names::kOutputSetup, names::kEndImageLoop));
    EXPECT_EQ(script.commands.ParamsAt(0), view.settings.commandDefaults.at("STARTDef"));
    EXPECT_EQ(script.commands.ParamsAt(1), "11,0,,0,jpg,0,0,,,0,0,0,");
    EXPECT_EQ(script.commands.ParamsAt(2), "0");
    EXPECT_FALSE(script.hasFile);
    EXPECT_FALSE(script.undoValid);
    EXPECT_TRUE(script.modified);
    EXPECT_EQ(script.caption, "Batch script: (unsaved)");
}

TEST_F(Start, ReadOnlyLeavesNothingBehind) {
    StartView(view, SettingsFile::ReadOnly);
    EXPECT_TRUE(fs::is_empty(root.Path()));
    EXPECT_EQ(view.script.commands.Count(), 3);
}

TEST_F(Start, SeedsTheGenerator) {
    Random seeded;
    seeded.Seed(2);
    view.random.Seed(77);
    StartView(view, SettingsFile::ReadOnly);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(view.random.Next(), seeded.Next());
}

TEST_F(Start, TakesTheMemoryBudgetOfTheSettings) {
    test::PutFile(settingsFile,
                  "[\"1.0\"]\nbFirstBoot = \"No\"\n[Settings]\nShowFirstPic = \"Yes\"\n"
                  "[Limits]\nMemoryBudgetMegabytes = 12\n");
    StartView(view, SettingsFile::ReadOnly);
    EXPECT_EQ(imaging::MemoryBudget(), 12u << 20);
    EXPECT_TRUE(view.run.showEachImage);
}

TEST_F(Start, AnEndlessMemoryBudgetIsNone) {
    test::PutFile(settingsFile,
                  "[\"1.0\"]\nbFirstBoot = \"No\"\n"
                  "[Limits]\nMemoryBudgetMegabytes = 17592186044416\n");  // 2 to the 64th bytes
    StartView(view, SettingsFile::ReadOnly);
    EXPECT_GT(imaging::MemoryBudget(), std::size_t{1} << 40);
}

TEST_F(Start, TellsOfSettingsThatCannotBeRead) {
    test::PutFile(settingsFile, "broken [");
    StartView(view, SettingsFile::ReadOnly);
    EXPECT_EQ(ui.notices.size(), 1u);
}

class Opening : public Start {
  protected:
    Opening() { StartView(view, SettingsFile::ReadOnly); }
    bool Open(std::string_view name, std::string_view bytes) {
        test::PutFile(root / name, bytes);
        return OpenScript(view, root / name);
    }
};

TEST_F(Opening, GivesAScriptItsMarkersAndItsCaption) {
    view.script.selected = 2;
    ASSERT_TRUE(Open("small.sbr", "SUBRT\r\nExit\r\n0\r\nEND\r\n"));
    EXPECT_EQ(view.script.selected, 0);
    const ScriptState& script = view.script;
    EXPECT_THAT(script.commands.names,
                ElementsAre(names::kStartImageLoop, names::kExit, names::kEndImageLoop));
    EXPECT_EQ(script.commands.ParamsAt(0), view.settings.commandDefaults.at("STARTDef"));
    EXPECT_EQ(script.commands.ParamsAt(2), "0");
    EXPECT_EQ(script.path, root / "small.sbr");
    EXPECT_EQ(script.caption, "Script name: small");
    EXPECT_TRUE(script.hasFile);
    EXPECT_FALSE(script.modified);
    EXPECT_THAT(ui.selected, ElementsAre(0));
    EXPECT_THAT(ui.messages, IsEmpty());
}

TEST_F(Opening, KeepsTheScriptOfBeforeForUndo) {
    const script::Script before = view.script.commands;
    ASSERT_TRUE(Open("a.whs", "BEGIN\r\nBlur\r\n1,25,\r\nEND\r\n"));
    EXPECT_TRUE(view.script.undoValid);
    EXPECT_EQ(view.script.undo, before);
    EXPECT_FALSE(OpenScript(view, root / "missing.whs"));
    EXPECT_EQ(view.script.undo, before);
}

TEST_F(Opening, KeepsTheMarkersThatAreThere) {
    ASSERT_TRUE(
        Open("old.whs",
             "BEGIN\r\nStart: Input setup\r\n32,2,,\r\nEnd: Output setup\r\n11,a,\r\nEND\r\n"));
    EXPECT_THAT(view.script.commands.names,
                ElementsAre(names::kStartImageLoop, names::kOutputSetup, names::kEndImageLoop));
    EXPECT_THAT(view.script.commands.params, ElementsAre("32,2,,", "11,a,", "0"));
}

TEST_F(Opening, LeavesTheScriptThatStandsWhereItFails) {
    ASSERT_TRUE(Open("good.whs", "BEGIN\r\nBlur\r\n1,25,\r\nEND\r\n"));
    const script::Script before = view.script.commands;
    constexpr auto kWords =
        "Unable to find or open named Lumoscript script file (.whs), check file path?";
    EXPECT_FALSE(OpenScript(view, root / "missing.whs"));
    EXPECT_THAT(ui.messages, ElementsAre(kWords));
    ui.messages.clear();
    EXPECT_FALSE(Open("bad.whs", "something else"));
    EXPECT_THAT(ui.messages, ElementsAre("Not a valid script or subroutine file!", kWords));
    EXPECT_FALSE(Open("cut.whs", "BEGIN\r\nCrop\r\nc\r\n"));
    EXPECT_EQ(view.script.commands, before);
    EXPECT_EQ(view.script.path, root / "good.whs");
    EXPECT_EQ(view.script.caption, "Script name: good");
}

TEST_F(Start, AScriptIsFoundByItsNameAmongTheUsersAndTheShippedOnes) {
    const std::string scripts = root / "home/Documents/Lumoscript/Scripts";
    const std::string shipped = root / "install/Scripts";
    fs::create_directories(shipped);
    StartView(view, SettingsFile::ReadAndWrite);
    test::PutFile(shipped + "/Both.whs", "");
    test::PutFile(scripts + "/Both.whs", "");
    test::PutFile(shipped + "/Shipped.whs", "");
    test::PutFile(root / "mine", "");
    EXPECT_EQ(FindScript(view, "Both"), scripts + "/Both.whs");
    EXPECT_EQ(FindScript(view, "Both.whs"), scripts + "/Both.whs");
    EXPECT_EQ(FindScript(view, "Shipped"), shipped + "/Shipped.whs");
    EXPECT_EQ(FindScript(view, shipped + "/Shipped"), shipped + "/Shipped.whs");
    EXPECT_EQ(FindScript(view, root / "mine"), root / "mine");
    // What states a folder is looked for nowhere else, and what is nowhere stays as it was said.
    EXPECT_EQ(FindScript(view, "./Shipped.whs"), "./Shipped.whs");
    EXPECT_EQ(FindScript(view, "None"), "None");
    EXPECT_EQ(FindScript(view, ""), "");
}

}  // namespace
}  // namespace lumo::engine
