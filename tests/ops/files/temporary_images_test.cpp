#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

#include "files_fixture.h"
#include "io/input.h"
#include "ops/files/files_commands.h"
#include "ops/files/slots.h"
#include "script/names.h"
#include "support/file_size_limit.h"

namespace lumo::ops::files {
namespace {

namespace fs = std::filesystem;
namespace names = script::names;
using engine::Outcome;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class TemporaryImages : public test::FilesTest {
  protected:
    Outcome Output(std::string_view params) { return Run(kOutputTemporaryCommand, params); }
    Outcome Input(std::string_view params) { return Run(kInputTemporaryCommand, params); }
    std::string Temp(std::string_view name = {}) const {
        return bench.folder / "Temp/" + std::string(name);
    }
    void ExpectInputFailure(const std::string& path) {
        EXPECT_EQ(bench.BatchLines(), Block(names::kInputTemporary, path,
                                            "Error:L8394 - Open Temp file failure", true));
        EXPECT_EQ(bench.ErrorLines(), Block(names::kInputTemporary, path,
                                            "Error:L8398 - Open Temp file failure", false));
    }
};

TEST_F(TemporaryImages, EverySlotIsAFileOfItsOwn) {
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(Output("2," + std::to_string(i) + ",ignored,"), Outcome::Succeeded);
    EXPECT_EQ(Output("2,7,sky,"), Outcome::Succeeded);
    EXPECT_THAT(test::NamesIn(Temp()),
                ElementsAre("Temp1.bmp", "Temp2.bmp", "Temp3.bmp", "Temp4.bmp", "Temp5.bmp",
                            "Temp6.bmp", "Temp7.bmp", "sky.bmp"));
    EXPECT_THAT(bench.BatchLines(), IsEmpty());
}

TEST_F(TemporaryImages, ComeBackPixelForPixelAsFullColour) {
    const auto picture = test::RandomImage({13, 7}, 1);
    view.working.main = *imaging::Image::TryCopy(picture.View());
    ASSERT_EQ(Output("2,2,,"), Outcome::Succeeded);
    EXPECT_TRUE(test::SamePixels(view.working.main, picture)) << "parking leaves it alone";
    view.working.main = test::CoordinateImage({3, 3});
    view.working.imageBits = 8;
    view.working.imageBitsForced = 1;
    view.working.grey = true;
    EXPECT_EQ(Input("2,2,,"), Outcome::Succeeded);
    EXPECT_TRUE(test::SamePixels(view.working.main, picture));
    EXPECT_EQ(view.working.imageBits, 24);
    EXPECT_EQ(view.working.imageBitsForced, 0);
    EXPECT_FALSE(view.working.grey);
}

TEST_F(TemporaryImages, ASlotOfAnEarlierRunServes) {
    bench.PutPicture(Temp("Temp4.bmp"), {9, 2});
    EXPECT_EQ(Input("2,3,,"), Outcome::Succeeded);
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{9, 2}));
    EXPECT_THAT(test::NamesIn(Temp()), ElementsAre("Temp4.bmp")) << "it may be read again";
}

TEST_F(TemporaryImages, AStoredPaletteComesBackIn24Bits) {
    std::string bmp("BM\x3e\0\0\0\0\0\0\0\x36\0\0\0", 14);  // one row of two pixels, one colour
    bmp += std::string("\x28\0\0\0\x02\0\0\0\x01\0\0\0\x01\0\x08\0", 16) + std::string(16, '\0') +
           std::string("\x01\0\0\0\0\0\0\0\x10\x20\x30\0\0\0\0\0", 16);
    bmp[10] = 0x3a;  // behind one entry of the palette
    test::PutFile(Temp("Temp1.bmp"), bmp);
    view.working.imageBits = 8;
    ASSERT_EQ(Input("2,0,,"), Outcome::Succeeded);
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{2, 1}));
    EXPECT_EQ(view.working.main.View().Row(0)[0], 0x30);
    EXPECT_EQ(view.working.imageBits, 24);
}

TEST_F(TemporaryImages, ACustomNameIsATitleWhateverItEndsIn) {
    EXPECT_EQ(Output("2,7,sky.bmp,"), Outcome::Succeeded);
    EXPECT_EQ(Output("2,7,\"a, b\","), Outcome::Succeeded);
    EXPECT_THAT(test::NamesIn(Temp()), ElementsAre("a, b.bmp", "sky.bmp.bmp"));
    EXPECT_EQ(Input("2,7,sky.bmp,"), Outcome::Succeeded);
    EXPECT_EQ(Input("2,7,sky,"), Outcome::Failed);
}

TEST_F(TemporaryImages, ANameNeverLeavesTheFolder) {
    for (const char* params : {"2,7,../In/Cat,", "2,7,..\\Out\\x,", "2,7,/x,"}) {
        EXPECT_EQ(Output(params), Outcome::Failed) << params;
        EXPECT_THAT(bench.BatchLines(), Contains("Path does not exist"));
        EXPECT_EQ(Input(params), Outcome::Failed) << params;
        view.working.main = test::CoordinateImage({8, 6});
    }
    EXPECT_THAT(test::NamesIn(bench.In()), ElementsAre("Cat.JPG"));
    EXPECT_THAT(test::NamesIn(bench.Out()), IsEmpty());
}

TEST_F(TemporaryImages, OtherSlotNumbersNameNoFile) {
    for (const char* params : {"2,8,x,", "2,,x,", "2,01,x,", "0", ""}) {
        EXPECT_EQ(Output(params), Outcome::Failed) << params;
        EXPECT_EQ(Input(params), Outcome::Failed) << params;
        view.working.main = test::CoordinateImage({8, 6});
    }
    EXPECT_THAT(test::NamesIn(Temp()), IsEmpty());
}

TEST_F(TemporaryImages, OutputNeedsAPicture) {
    view.working.main.Reset();
    EXPECT_EQ(Output("2,0,,"), Outcome::Failed);
    ExpectBlock(names::kOutputTemporary, "Null buffer", "Error: empty main image buffer");
    EXPECT_THAT(test::NamesIn(Temp()), IsEmpty());
}

TEST_F(TemporaryImages, AMissingFolderIsMade) {
    view.settings.folders.temp = bench.folder / "far/away";
    EXPECT_EQ(Output("2,0,,"), Outcome::Succeeded);
    EXPECT_TRUE(fs::exists(bench.folder / "far/away/Temp1.bmp"));
}

TEST_F(TemporaryImages, AFolderThatCannotBeMadeIsAnError) {
    test::PutFile(bench.folder / "file", "");
    for (const std::string& folder : {bench.folder / "file/Temp", std::string()}) {
        view.settings.folders.temp = folder;
        EXPECT_EQ(Output("2,0,,"), Outcome::Failed);
        ExpectBlock(names::kOutputTemporary, folder,
                    "Error:1036 - Path to Temp folder does not exist");
        bench.BatchLines().clear();
        bench.ErrorLines().clear();
    }
}

TEST_F(TemporaryImages, ASlotThatCannotBeOpenedIsToldAtOnce) {
    fs::create_directory(Temp("Temp1.bmp"));
    EXPECT_EQ(Output("2,0,,"), Outcome::Failed);
    ExpectBlock(names::kOutputTemporary, "File write", "Path does not exist");
    EXPECT_THAT(bench.LogFile("Batch.log"), HasSubstr("Path does not exist"));
    EXPECT_THAT(bench.LogFile("Error.log"), HasSubstr("Path does not exist"));
}

TEST_F(TemporaryImages, AFailedWriteLeavesTheOlderSlot) {
    bench.PutPicture(Temp("Temp1.bmp"), {2, 2});
    const std::string before = test::FileText(Temp("Temp1.bmp"));
    view.working.main = test::CoordinateImage({100, 100});
    {
        const test::ScopedFileSizeLimit limit(10'000);
        EXPECT_EQ(Output("2,0,,"), Outcome::Failed);
    }
    ExpectBlock(names::kOutputTemporary, Temp("Temp1.bmp"), "Error:1037 - Save Temp file failure");
    EXPECT_EQ(test::FileText(Temp("Temp1.bmp")), before);
    EXPECT_THAT(test::NamesIn(Temp()), ElementsAre("Temp1.bmp"));
}

TEST_F(TemporaryImages, AnEmptySlotFailsWithANumberForEachLog) {
    EXPECT_EQ(Input("2,0,,"), Outcome::Failed);
    ExpectInputFailure(Temp("Temp1.bmp"));
    EXPECT_TRUE(view.working.main.IsEmpty());
}

TEST_F(TemporaryImages, ADamagedSlotFails) {
    test::PutFile(Temp("Temp1.bmp"), "BM, but no picture");
    EXPECT_EQ(Input("2,0,,"), Outcome::Failed);
    ExpectInputFailure(Temp("Temp1.bmp"));
}

TEST_F(TemporaryImages, AHugeSlotFailsAndHarmsNothing) {
    view.working.main = test::CoordinateImage({300, 300});
    ASSERT_EQ(Output("2,0,,"), Outcome::Succeeded);
    const test::ScopedMemoryBudget budget(1000);
    EXPECT_EQ(Input("2,0,,"), Outcome::Failed);
    ExpectInputFailure(Temp("Temp1.bmp"));
}

TEST_F(TemporaryImages, UnattendedFailuresAreNoticedOnce) {
    view.run.noPrompts = true;
    Input("2,0,,");
    EXPECT_THAT(bench.ui.notices,
                ElementsAre(Temp("Temp1.bmp") + ": Error:L8398 - Open Temp file failure"));
}

TEST_F(TemporaryImages, WorkInATestOnTheSample) {
    LeaveRun();
    EXPECT_EQ(Output("2,0,,"), Outcome::Succeeded);
    view.working.main = test::CoordinateImage({3, 3});
    EXPECT_EQ(Input("2,0,,"), Outcome::Succeeded);
    EXPECT_EQ(bench.ui.sizeTexts.back(), "8x6");
}

TEST_F(TemporaryImages, AnEmptySlotPutsTheSampleBackInATest) {
    LeaveRun();
    EXPECT_EQ(Input("2,0,,"), Outcome::Failed);
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{5, 4}));
    EXPECT_EQ(bench.ui.sizeTexts.back(), "5x4");
    EXPECT_THAT(bench.ui.messages,
                ElementsAre("Error:L8394 - Open Temp file failure\n" + Temp("Temp1.bmp")));
    EXPECT_THAT(bench.BatchLines(), IsEmpty());
}

TEST_F(TemporaryImages, ATestPassesThemOverWhereTheScriptDoes) {
    LeaveRun();
    view.test.ifFlag = 0;
    EXPECT_EQ(Output("2,0,,"), Outcome::Succeeded);
    EXPECT_EQ(Input("2,0,,"), Outcome::Succeeded);
    EXPECT_THAT(test::NamesIn(Temp()), IsEmpty());
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{8, 6}));
}

TEST_F(TemporaryImages, PanelSaysWhereToFindTheSlot) {
    const auto panel = [](std::string_view params) {
        return script::PanelText(kOutputTemporaryCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("2,6,,"),
              "Reusable - deleted on close\nFile name: Temp7\nPath to open again:\n"
              "<TEMP_FOLDER>\\Temp7.bmp\n");
    EXPECT_EQ(panel("2,7,sky,"),
              "Reusable - deleted on close\nFile name: sky\nPath to open again:\n"
              "<TEMP_FOLDER>\\sky.bmp\n");
    EXPECT_EQ(panel("2,7,a/b,"),
              "Reusable - deleted on close\nFile name: \nPath to open again:\n\n");
    EXPECT_EQ(script::PanelText(kInputTemporaryCommand.spec, script::ParseParams("2,0,,")),
              panel("2,0,,"));
}

TEST_F(TemporaryImages, ThePathOfThePanelOpensTheSlot) {
    ASSERT_EQ(Output("2,4,,"), Outcome::Succeeded);
    const script::Fields fields = script::ParseParams("2,4,,");
    EXPECT_EQ(io::NativePath(view, StatedSlotPath(fields)), Temp("Temp5.bmp"));
    EXPECT_EQ(SlotPath(view.settings, fields), Temp("Temp5.bmp"));
    EXPECT_EQ(Run(kInputFixedImageCommand, "1,\"" + StatedSlotPath(fields) + "\","),
              Outcome::Succeeded);
}

}  // namespace
}  // namespace lumo::ops::files
