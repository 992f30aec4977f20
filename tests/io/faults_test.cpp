// What goes wrong around the files of a run: full disks, names that vanish, formats that nobody
// reads.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiffio.h>

#include <filesystem>

#include "io/input.h"
#include "io/output_setup.h"
#include "io/start_setup.h"
#include "support/file_size_limit.h"
#include "support/run_bench.h"

namespace lumo::io {
namespace {

namespace fs = std::filesystem;
using engine::Outcome;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr std::string_view kFailed = "Error:1004 Cmd_63 - Save file failure";

struct FaultsTest : testing::Test {
    int Open(const std::string& path) {
        view.run.inputList = {path};
        view.run.imageCount = 1;
        view.run.imageIndex = 0;
        return OpenNextImage(view);
    }
    Outcome Save(const std::string& extension) {
        return bench.Execute(kOutputSetupCommand,
                             "11,0,\"" + bench.Out() + "\",0," + extension + ",1,0,,,0,0,1,");
    }
    test::RunBench bench;
    engine::CLumoscriptView& view = bench.view;
};

TEST_F(FaultsTest, AFullDiskLeavesTheOldFileAndNothingElse) {
    bench.TakeInput(bench.In("Cat.JPG"));
    view.working.main = test::RandomImage({300, 200}, 1);
    for (const std::string extension :
         {"jpg", "png", "tif", "bmp", "gif", "psd", "tga", "pcx", "wmf", "emf", "apm"}) {
        const std::string path = bench.Out("Cat." + extension);
        test::PutFile(path, "old");
        {
            const test::ScopedFileSizeLimit fullDisk(20'000);
            EXPECT_EQ(Save(extension), Outcome::Succeeded);
        }
        EXPECT_EQ(test::FileText(path), "old") << extension;
    }
    EXPECT_EQ(test::NamesIn(bench.Out()).size(), 11U);
    EXPECT_EQ(view.run.errorCount, 11);
    EXPECT_EQ(view.run.statOutputs, 0);
    EXPECT_THAT(bench.BatchLines(), Contains(kFailed).Times(11));
    EXPECT_THAT(bench.BatchLines(), testing::Not(Contains("Unable to open file.")));
    Save("jpg");  // with room again
    EXPECT_TRUE(OpenImageFile(view, bench.Out("Cat.jpg")));
}

TEST_F(FaultsTest, AnOutputFolderThatVanishesIsMadeAnew) {
    bench.TakeInput(bench.In("Cat.JPG"));
    Save("png");
    fs::remove_all(bench.Out());
    Save("png");
    EXPECT_TRUE(fs::exists(bench.Out("Cat.png")));
    EXPECT_EQ(view.run.errorCount, 0);
}

TEST_F(FaultsTest, AnInputFolderThatVanishesIsOneErrorForEachFile) {
    for (const char* name : {"a.png", "b.png"}) bench.PutPicture(bench.In(name));
    view.inputSettings = ParseStartParams("32,2,,\"" + bench.In() + "\",0,1,1,1,1,1,1,1,1,1,");
    BuildInputList(view);
    fs::remove_all(bench.In());
    for (view.run.imageIndex = 0; view.run.imageIndex < 2; ++view.run.imageIndex)
        EXPECT_EQ(OpenNextImage(view), kFileMissing);
    EXPECT_THAT(bench.ErrorLines(),
                ElementsAre("1 Error:1093 - File not found?", "2 Error:1093 - File not found?"));
}

TEST_F(FaultsTest, AFlavourOfTiffThatNobodyReadsIsSaidToBeOne) {
    const std::string path = bench.In("sensor.tif");
    TIFF* tiff = TIFFOpen(path.c_str(), "w");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 1);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 1);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_CFA);
    std::uint8_t pixel = 0;
    TIFFWriteScanline(tiff, &pixel, 0, 0);
    TIFFClose(tiff);
    EXPECT_EQ(Open(path), kImageNotOpened);
    const std::string text =
        "Error:1073 - Unable to open image file: 0: photometric interpretation 32803 "
        "(unsupported file flavor TIFF?)";
    EXPECT_THAT(bench.BatchLines(), ElementsAre("1 : " + text));
    EXPECT_THAT(bench.ErrorLines(), ElementsAre("1" + text));
}

TEST_F(FaultsTest, APictureThatIsTooLargeForTheMemoryIsAnErrorOfItsFile) {
    bench.PutPicture(bench.In("a.png"), {400, 300});
    const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + 1000);
    EXPECT_EQ(Open(bench.In("a.png")), kImageNotOpened);
    EXPECT_THAT(bench.ErrorLines(),
                ElementsAre(StartsWith("1Error:1073 - Unable to open image file: not enough ")));
    EXPECT_TRUE(view.working.main.IsEmpty());
}

TEST_F(FaultsTest, EveryEndOfAFileLeavesItsLine) {
    bench.PutPicture(bench.In("good.png"));
    test::PutFile(bench.In("bad.png"), "\x89PNG\r\n\x1a\n");
    test::PutFile(bench.In("empty.jpg"), "");
    fs::create_symlink(bench.folder / "nowhere", bench.In("dangling.gif"));
    view.inputSettings = ParseStartParams("32,2,,\"" + bench.In() + "\",0,1,1,1,1,1,1,1,1,0,");
    view.run.inputList = {bench.In("bad.png"), bench.In("dangling.gif"), bench.In("empty.jpg"),
                          bench.In("good.png")};
    view.run.imageCount = 4;
    for (view.run.imageIndex = 0; view.run.imageIndex < 4; ++view.run.imageIndex)
        OpenNextImage(view);
    EXPECT_THAT(bench.BatchLines(),
                ElementsAre("1 : Filtered: input ext PNG", "2 :  Error:1093 - File not found?",
                            "3 : Error:1073 - Unable to open image file: the file is empty",
                            "4 : Filtered: input ext PNG"));
}

TEST_F(FaultsTest, AFilteredFileStandsBehindItsInputLineAndNotInErrorLog) {
    bench.PutPicture(bench.In("a.png"), {10, 7});
    view.settings.logs.inputName = view.settings.logs.inputSize = true;
    view.inputSettings = ParseStartParams(
        "32,2,,,0,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,1,0,0,0,0.0,4.0,0,");
    EXPECT_EQ(Open(bench.In("a.png")), kImageFiltered);
    EXPECT_THAT(bench.BatchLines(),
                ElementsAre("\r\n1 Input: " + bench.In("a.png"), "1 Input size: 10 x 7",
                            "1 : Filtered: image size too small"));
    EXPECT_THAT(bench.ErrorLines(), IsEmpty());
}

TEST_F(FaultsTest, WithoutAnImageEvenASkippedOutputFails) {
    bench.TakeInput(bench.In("Cat.JPG"));
    view.working.main.Reset();
    EXPECT_EQ(bench.Execute(kOutputSetupCommand, "11,0,/o,0,png,1,0,,,0,1,0,"), Outcome::Failed);
    EXPECT_THAT(bench.BatchLines(), Contains("No output from numbered command: Null buffer"));
}

TEST_F(FaultsTest, EachOpenedImageIsShownWhereTheSettingsSaySo) {
    bench.PutPicture(bench.In("a.png"));
    Open(bench.In("a.png"));
    EXPECT_EQ(bench.ui.rightDisplays, 0);
    view.settings.showEachImage = true;
    Open(bench.In("a.png"));
    EXPECT_EQ(bench.ui.rightDisplays, 1);
    Open(bench.In("gone.png"));
    EXPECT_EQ(bench.ui.rightDisplays, 1);
}

}  // namespace
}  // namespace lumo::io
