#include "io/input.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "imaging/codecs/stored_metadata.h"
#include "imaging/last_error.h"
#include "io/output.h"
#include "io/run_logs.h"
#include "io/start_setup.h"
#include "support/run_bench.h"

namespace lumo::io {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// All types but RAW, no tests.
const std::string kAllTypes =
    "0,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,0,0,0,0.0,4.0,";

struct InputTest : testing::Test {
    void UseFolder(bool subfolders = false) {
        view.inputSettings = ParseStartParams("32,2,,\"" + bench.In() + "\"," + kAllTypes +
                                              (subfolders ? "1," : "0,"));
    }
    /// Takes the next file of the list, as the run loop does.
    int Next() {
        ++view.run.imageIndex;
        return OpenNextImage(view);
    }
    test::RunBench bench;
    CLumoscriptView& view = bench.view;
    std::vector<std::string>& list = bench.view.run.inputList;
    std::vector<std::string>& batch = bench.BatchLines();
    std::vector<std::string>& error = bench.ErrorLines();
};

// ---- The list ---------------------------------------------------------------------------------

TEST_F(InputTest, AFolderGivesItsPicturesInOrderOfUpperCaseNames) {
    for (const char* name : {"b.jpg", "A.png", "c.TIF", "B2.bmp", "notes.txt", "d.jpg/inside.jpg"})
        test::PutFile(bench.In(name), "x");
    UseFolder();
    BuildInputList(view);
    EXPECT_THAT(list, ElementsAre(bench.In("A.png"), bench.In("b.jpg"), bench.In("B2.bmp"),
                                  bench.In("c.TIF")));
    EXPECT_EQ(view.run.imageCount, 4);
    EXPECT_EQ(view.run.statFiles, 4);
}

TEST_F(InputTest, SubfoldersStandWhereTheirNamesDo) {
    for (const char* name : {"a.jpg", "m/1.jpg", "m/n/2.jpg", "m/z.jpg", "z.jpg"})
        test::PutFile(bench.In(name), "x");
    UseFolder(true);
    BuildInputList(view);
    EXPECT_THAT(list, ElementsAre(bench.In("a.jpg"), bench.In("m/1.jpg"), bench.In("m/n/2.jpg"),
                                  bench.In("m/z.jpg"), bench.In("z.jpg")));
}

TEST_F(InputTest, LinksInALoopEnd) {
    test::PutFile(bench.In("sub/a.jpg"), "x");
    fs::create_directory_symlink(bench.In(), bench.In("sub/up"));
    UseFolder(true);
    BuildInputList(view);
    EXPECT_THAT(list, ElementsAre(bench.In("sub/a.jpg")));
}

TEST_F(InputTest, TheLastFourCharactersAreTheExtension) {
    for (const char* name : {"photo.jpeg", "nodotjpeg", ".jpg", "tif", "x.tiff", "jpg"})
        test::PutFile(bench.In(name), "x");
    UseFolder();
    BuildInputList(view);
    EXPECT_THAT(list, ElementsAre(bench.In(".jpg"), bench.In("nodotjpeg"), bench.In("photo.jpeg"),
                                  bench.In("x.tiff")));
}

TEST_F(InputTest, EveryTypeHasItsFlag) {
    const std::pair<const char*, int> types[] = {
        {".nef", start::kUseRaw}, {".bmp", start::kUseBmp}, {".jif", start::kUseJpg},
        {".tga", start::kUseTga}, {".tif", start::kUseTif}, {".gif", start::kUseGif},
        {".wmf", start::kUseWmf}, {".emf", start::kUseWmf}, {".apm", start::kUseWmf},
        {".psd", start::kUsePsd}, {".pcx", start::kUsePcx}, {".png", start::kUsePng}};
    for (const auto& [extension, field] : types) {
        view.inputSettings = {};
        EXPECT_FALSE(ExtensionAccepted(view, extension)) << extension;
        view.inputSettings.Set(field, "1");
        EXPECT_TRUE(ExtensionAccepted(view, extension)) << extension;
        view.inputSettings.Set(field, "yes");
        EXPECT_FALSE(ExtensionAccepted(view, extension)) << extension;
    }
    EXPECT_FALSE(ExtensionAccepted(view, ".txt"));
}

TEST_F(InputTest, AMissingFolderAndAnEmptyOneAreEmptyLists) {
    UseFolder();
    BuildInputList(view);
    EXPECT_THAT(list, IsEmpty());
    fs::remove(bench.In());
    BuildInputList(view);
    EXPECT_THAT(list, IsEmpty());
    EXPECT_EQ(view.run.imageCount, 0);
    EXPECT_THAT(bench.ui.messages, IsEmpty());
}

TEST_F(InputTest, TheFirstScanOnlyCounts) {
    for (const char* name : {"a.jpg", "b.jpg"}) test::PutFile(bench.In(name), "x");
    view.script.commands.Add("Crop", "0");
    EXPECT_FALSE(PrepareInput(view));
    view.script.commands.Add("START image loop (setup)",
                             "32,2,,\"" + bench.In() + "\"," + kAllTypes + "0,");
    EXPECT_TRUE(PrepareInput(view));
    EXPECT_EQ(view.run.firstScanCount, 2);
    EXPECT_THAT(list, IsEmpty());
    EXPECT_EQ(view.run.imageCount, 0);

    // What comes and goes between the two scans is seen by the second one.
    test::PutFile(bench.In("c.jpg"), "x");
    fs::remove(bench.In("a.jpg"));
    BuildInputList(view);
    EXPECT_THAT(list, ElementsAre(bench.In("b.jpg"), bench.In("c.jpg")));
    EXPECT_EQ(view.run.firstScanCount, 2);
}

TEST_F(InputTest, ARunOnTheSampleHasOneInput) {
    view.run.onLeftImage = true;
    view.sample.path = "/photos/sample.jpg";
    BuildInputList(view);
    EXPECT_THAT(list, ElementsAre("/photos/sample.jpg"));
}

TEST_F(InputTest, StatedPathsMayUseBackslashesAndTokens) {
    test::PutFile(bench.folder / "Install/Photos/p.jpg", "x");
    view.inputSettings = ParseStartParams("32,2,,\"<INSTALL_FOLDER>\\Photos\"," + kAllTypes + "0,");
    BuildInputList(view);
    EXPECT_THAT(list, ElementsAre(bench.folder / "Install/Photos/p.jpg"));
    view.inputSettings = ParseStartParams("32,2,,\"C:\\Photos\"," + kAllTypes + "0,");
    BuildInputList(view);
    EXPECT_THAT(list, IsEmpty());
}

// ---- Members of the input file -----------------------------------------------------------------

TEST_F(InputTest, SplitsAPath) {
    SplitInputPath(view, "/In/Cat.JPG");
    EXPECT_EQ(view.input.path, "/In/Cat.JPG");
    EXPECT_EQ(view.input.folder, "/In/");
    EXPECT_EQ(view.input.title, "Cat");
    EXPECT_EQ(view.input.name, "Cat.JPG");
    EXPECT_EQ(view.input.extension, ".JPG");
    EXPECT_EQ(view.input.type, 1);
}

TEST_F(InputTest, SplitsOddPaths) {
    struct {
        std::string_view path, folder, title, extension;
    } const cases[] = {{"/In/.jpg", "/In/", "", ".jpg"},
                       {"/In.d/cat", "/In.d/", "cat", ""},
                       {"Pre_image_loop.", "", "Pre_image_loop", "."},
                       {"/a/b.c.tif", "/a/", "b.c", ".tif"},
                       {"/a/back\\slash.png", "/a/", "back\\slash", ".png"},
                       {"", "", "", ""}};
    for (const auto& expected : cases) {
        SplitInputPath(view, expected.path);
        EXPECT_EQ(view.input.folder, expected.folder) << expected.path;
        EXPECT_EQ(view.input.title, expected.title) << expected.path;
        EXPECT_EQ(view.input.extension, expected.extension) << expected.path;
        EXPECT_EQ(view.input.name, std::string(expected.title).append(expected.extension));
    }
}

// ---- Opening -----------------------------------------------------------------------------------

TEST_F(InputTest, OpensThePicturesOneByOne) {
    bench.PutPicture(bench.In("a.png"), {10, 7});
    bench.PutPicture(bench.In("b.jpg"), {20, 15});
    view.settings.logs.inputName = view.settings.logs.inputSize = true;
    view.working.imageBits = 1;
    view.working.imageBitsForced = 1;
    view.working.grey = true;
    UseFolder();
    BuildInputList(view);
    EXPECT_EQ(Next(), kImageOpened);
    EXPECT_EQ(view.input.name, "a.png");
    EXPECT_TRUE(test::SamePixels(view.working.main, test::CoordinateImage({10, 7})));
    EXPECT_EQ(view.working.imageBits, 24);
    EXPECT_EQ(view.working.imageBitsForced, 0);
    EXPECT_FALSE(view.working.grey);
    EXPECT_EQ(Next(), kImageOpened);
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{20, 15}));
    EXPECT_EQ(view.run.statInputs, 2);
    EXPECT_EQ(view.openedImages, 2);
    EXPECT_THAT(batch, ElementsAre("\r\n1 Input: " + bench.In("a.png"), "1 Input size: 10 x 7",
                                   "\r\n2 Input: " + bench.In("b.jpg"), "2 Input size: 20 x 15"));
    EXPECT_THAT(error, IsEmpty());
}

TEST_F(InputTest, ProgressPassesThirds) {
    for (const char* name : {"a.png", "b.png", "c.png"}) bench.PutPicture(bench.In(name));
    UseFolder();
    BuildInputList(view);
    while (view.run.imageIndex + 1 < view.run.imageCount) Next();
    EXPECT_THAT(bench.ui.titles, ElementsAre("0% Done", "33% Done", "66% Done"));
    EXPECT_EQ(bench.ui.lastCounts.totalInput, 3);
    EXPECT_EQ(bench.ui.lastCounts.current, 3);
}

TEST_F(InputTest, AFileThatHasGoneIsAnError) {
    list = {bench.In("gone.jpg")};
    view.run.imageCount = 1;
    view.working.main = test::CoordinateImage({3, 3});
    EXPECT_EQ(Next(), kFileMissing);
    EXPECT_THAT(batch, ElementsAre("1 :  Error:1093 - File not found?"));
    EXPECT_THAT(error, ElementsAre("1 Error:1093 - File not found?"));
    EXPECT_FALSE(view.working.main.IsEmpty());  // what was there stays
    EXPECT_EQ(view.openedImages, 0);
}

TEST_F(InputTest, AFileThatIsNoPictureIsAnError) {
    test::PutFile(bench.In("text.png"), "no picture at all");
    list = {bench.In("text.png")};
    view.run.imageCount = 1;
    view.working.main = test::CoordinateImage({3, 3});
    EXPECT_EQ(Next(), kImageNotOpened);
    const std::string text = "Error:1073 - Unable to open image file: " + imaging::LastError();
    EXPECT_THAT(batch, ElementsAre("1 : " + text));
    EXPECT_THAT(error, ElementsAre("1" + text));
    EXPECT_TRUE(view.working.main.IsEmpty());
    EXPECT_EQ(view.openedImages, 0);
}

TEST_F(InputTest, ADamagedFileThatGivesAPictureIsOpenedAndNoted) {
    view.working.main = test::PhotoLikeImage({200, 150});
    ASSERT_NE(WriteMainImage(view, bench.In("whole.jpg")), 0);
    const std::string whole = test::FileText(bench.In("whole.jpg"));
    test::PutFile(bench.In("half.jpg"), std::string_view(whole).substr(0, whole.size() / 2));
    list = {bench.In("half.jpg")};
    view.run.imageCount = 1;
    EXPECT_EQ(Next(), kImageOpened);
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{200, 150}));
    EXPECT_THAT(batch, ElementsAre(testing::StartsWith("1 :  Warning - image file is damaged: ")));
    EXPECT_THAT(error, ElementsAre(testing::StartsWith("1 Warning - image file is damaged: ")));
    EXPECT_EQ(view.openedImages, 1);
    EXPECT_EQ(view.run.warningCount, 1);
    EXPECT_EQ(view.run.errorCount, 0);
}

TEST_F(InputTest, AFolderThatIsListedAsAFileIsAnError) {
    fs::create_directory(bench.In("folder.jpg"));
    list = {bench.In("folder.jpg")};
    view.run.imageCount = 1;
    EXPECT_EQ(Next(), kImageNotOpened);
    EXPECT_THAT(batch, ElementsAre(HasSubstr("Error:1073 - Unable to open image file: ")));
}

TEST_F(InputTest, APathWithAZeroByteIsNotThePathBeforeIt) {
    bench.PutPicture(bench.In("a.png"));
    list = {bench.In("a.png") + std::string("\0.jpg", 5)};
    view.run.imageCount = 1;
    EXPECT_EQ(Next(), kFileMissing);
}

TEST_F(InputTest, FilteredFilesLeaveNoGapInTheOpenedImages) {
    bench.PutPicture(bench.In("a.png"), {10, 10});
    bench.PutPicture(bench.In("b.png"), {50, 50});
    bench.PutPicture(bench.In("c.jpg"), {50, 50});
    bench.PutPicture(bench.In("d.png"), {50, 50});
    UseFolder();
    BuildInputList(view);
    view.inputSettings.Set(start::kUseJpg, "0");
    view.inputSettings.Set(start::kMinSizeOn, "1");
    view.inputSettings.Set(start::kMinWidth, "40");
    EXPECT_EQ(Next(), kImageFiltered);
    EXPECT_EQ(Next(), kImageOpened);
    EXPECT_EQ(view.openedImages, 1);
    EXPECT_EQ(Next(), kFileFiltered);
    EXPECT_EQ(Next(), kImageOpened);
    EXPECT_EQ(view.openedImages, 2);
    EXPECT_EQ(view.run.statInputs, 4);
    EXPECT_THAT(batch,
                ElementsAre("1 : Filtered: image size too small", "3 : Filtered: input ext JPG"));
    EXPECT_THAT(error, IsEmpty());
}

TEST_F(InputTest, UnattendedErrorsAreToldToWhoeverStartedTheRun) {
    list = {bench.In("two\nlines.jpg")};
    view.run.imageCount = 1;
    view.run.noPrompts = true;
    Next();
    EXPECT_THAT(bench.ui.notices,
                ElementsAre(bench.In("two?lines.jpg") + ": Error:1093 - File not found?"));
}

TEST_F(InputTest, DebugLogBeginsWithTheFileAboutToBeOpened) {
    test::PutFile(bench.In("text.png"), "no picture at all");
    list = {bench.In("text.png"), bench.In("gone.png")};
    view.run.imageCount = 2;
    view.logs.debugOn = true;
    view.logs.executions = 7;
    Next();
    EXPECT_THAT(bench.LogFile("Debug.log"), testing::EndsWith(bench.In("text.png") + "\r\n"));
    EXPECT_EQ(view.logs.executions, 0);
    Next();
    EXPECT_THAT(bench.LogFile("Debug.log"), testing::EndsWith(bench.In("text.png") + "\r\n"));
}

TEST_F(InputTest, MetadataOfTheFileReplacesThatOfTheLast) {
    view.metadata.jpgOutput = {{0xFE, {'o', 'l', 'd'}}};
    bench.PutPicture(bench.In("a.jpg"));
    view.metadata.pngOutput = {{"old", "old"}};
    view.metadata.pngInput = {{"old", "old"}};
    bench.PutPicture(bench.In("b.png"));
    UseFolder();
    BuildInputList(view);
    Next();
    const auto& markers = view.metadata.jpgInput;
    EXPECT_THAT(markers, Contains(testing::Pair(0xFE, ElementsAre('o', 'l', 'd'))));
    EXPECT_THAT(view.metadata.jpgOutput, IsEmpty());
    EXPECT_THAT(view.metadata.pngInput, IsEmpty());
    EXPECT_THAT(view.metadata.pngOutput, IsEmpty());
    Next();
    EXPECT_THAT(view.metadata.jpgInput, IsEmpty());
}

TEST_F(InputTest, ARunOnTheSampleWorksOnACopyOfIt) {
    view.run.onLeftImage = true;
    view.sample.left = test::CoordinateImage({9, 5});
    list = {"/photos/sample.jpg"};
    view.run.imageCount = 1;
    EXPECT_EQ(Next(), kImageOpened);
    EXPECT_TRUE(test::SamePixels(view.working.main, view.sample.left));
    EXPECT_EQ(view.run.statInputs, 0);
    EXPECT_EQ(view.openedImages, 0);
}

TEST_F(InputTest, ALargePictureIsRefusedByTheLimitsOfTheSettings) {
    bench.PutPicture(bench.In("a.png"), {2000, 600});
    list = {bench.In("a.png"), bench.In("a.png"), bench.In("a.png")};
    view.run.imageCount = 3;
    view.settings.maxPictureSide = 1999;
    EXPECT_EQ(Next(), kImageNotOpened);
    view.settings.maxPictureSide = 2000;
    view.settings.maxPictureMegapixels = 1;
    EXPECT_EQ(Next(), kImageNotOpened);
    view.settings.maxPictureMegapixels = 2;
    EXPECT_EQ(Next(), kImageOpened);
}

TEST_F(InputTest, OpenImageFileGivesThePictureOrTheReason) {
    bench.PutPicture(bench.In("a.png"), {12, 9});
    const auto decoded = OpenImageFile(view, bench.In("a.png"));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->image.Extent(), (imaging::Size{12, 9}));
    EXPECT_FALSE(OpenImageFile(view, bench.In("gone.png")));
    EXPECT_NE(imaging::LastError(), "0");
    EXPECT_FALSE(OpenImageFile(view, bench.In()));
}

}  // namespace
}  // namespace lumo::io
