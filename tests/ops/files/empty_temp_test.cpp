#include "ops/files/empty_temp.h"

#include <gmock/gmock.h>

#include "files_fixture.h"
#include "script/names.h"

namespace lumo::ops::files {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class EmptyTemp : public test::FilesTest {
  protected:
    EmptyTemp() {
        LeaveRun(engine::RunMode::Idle);
        test::PutFile(slots + "/Temp1.bmp", "slot");
        test::PutFile(slots + "/mine.bmp", "picture");
    }
    void ExpectRefused() {
        EXPECT_FALSE(EmptyTempFolderNow(view));
        EXPECT_THAT(test::NamesIn(slots), ElementsAre("Temp1.bmp", "mine.bmp"));
        view.script.commands.Clear();
    }
    const std::string slots = bench.folder / "Temp";
};

TEST_F(EmptyTemp, DeletesTheSlotsWithASound) {
    const auto removed = EmptyTempFolderNow(view);
    ASSERT_TRUE(removed) << removed.Message();
    EXPECT_EQ(*removed, 1);
    EXPECT_THAT(test::NamesIn(slots), ElementsAre("mine.bmp"));
    EXPECT_THAT(bench.ui.played, ElementsAre(engine::Sound::Recycle));
}

TEST_F(EmptyTemp, SoundsOtherwiseWhereThereIsNoFolder) {
    view.settings.folders.temp = bench.folder / "none";
    EXPECT_FALSE(EmptyTempFolderNow(view));
    EXPECT_THAT(bench.ui.played, ElementsAre(engine::Sound::Asterisk));
}

TEST_F(EmptyTemp, IsRefusedWhileABatchRuns) {
    view.run.batchRunning = true;
    ExpectRefused();
}

TEST_F(EmptyTemp, SparesTheFoldersOfTheScriptAtHand) {
    script::Script& commands = view.script.commands;
    commands.Add(std::string(script::names::kStartImageLoop),
                 "32,2,\"\",\"" + slots +
                     "\",1,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,"
                     "960,0,0,0,0,0,0,0.0,4.0,0,");
    ExpectRefused();
    commands.Add(std::string(script::names::kOutputSetup),
                 "11,0,\"<TEMP_FOLDER>\\\",0,jpg,1,0,,,0,0,1,");
    ExpectRefused();
    commands.Add(std::string(script::names::kCopyMove),
                 "6,1,\"<..original folder path>\\Temp\",0,,,1,");
    ExpectRefused();
    commands.Add(std::string(script::names::kInputFixedImage), "1,\"" + slots + "/\",");
    ExpectRefused();
    view.sample.path = slots + "/mine.bmp";
    ExpectRefused();
}

}  // namespace
}  // namespace lumo::ops::files
