#include "io/output_setup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "imaging/codecs/codec.h"
#include "io/input.h"
#include "io/output.h"
#include "platform/environment.h"
#include "support/run_bench.h"

namespace lumo::io {
namespace {

namespace fs = std::filesystem;
using engine::Outcome;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::string_view kExists =
    "Warning:101 - Output file exists, Output setup command set for no overwrite";
constexpr std::string_view kFailed = "Error:1004 Cmd_63 - Save file failure";

/// What a hostile or plain folder of photographs may call its files.
const char* const kOddNames[] = {"two\nlines.jpg",  "$(date).jpg",  "%s%n.jpg",
                                 "\xFF\xFE.jpg",    "-rf ;x.jpg",   "a\"b'c.jpg",
                                 "back\\slash.jpg", " leading.jpg", ".jpg"};

struct OutputSetupTest : testing::Test {
    OutputSetupTest() { bench.TakeInput(bench.In("Cat.JPG")); }

    /// The fields from the folder on, in the order of the string.
    struct Setup {
        std::string folder;
        std::string extension = "png", mode = "0", suffix, prefix;
        std::string incremental = "0", overwrite = "0";
    };
    static std::string Params(const Setup& s) {
        return "11,0,\"" + s.folder + "\",0," + s.extension + ",1," + s.mode + ",\"" + s.suffix +
               "\",\"" + s.prefix + "\"," + s.incremental + ",0," + s.overwrite + ",";
    }
    Outcome RunParams(const std::string& params) {
        return bench.Execute(kOutputSetupCommand, params);
    }
    Outcome Run(const Setup& setup) { return RunParams(Params(setup)); }
    std::vector<std::string> Written() { return test::NamesIn(bench.Out()); }

    test::RunBench bench;
    engine::CLumoscriptView& view = bench.view;
    std::string out = bench.Out();
};

TEST_F(OutputSetupTest, FactoryStringComesFromTheSchema) {
    EXPECT_EQ(script::FactoryString(kOutputSetupCommand.spec.fields), "11,0,,0,jpg,0,0,,,0,0,0,");
}

TEST_F(OutputSetupTest, NameIsPrefixTitleNumberSuffixCount) {
    view.openedImages = 7;
    view.run.imageCount = 120;
    view.incrementalCount = 12;
    EXPECT_EQ(
        Run({.folder = out, .mode = "2", .suffix = "_s", .prefix = "web_", .incremental = "1"}),
        Outcome::Succeeded);
    EXPECT_THAT(Written(), ElementsAre("web_Cat0007_s0012.png"));
    EXPECT_EQ(view.incrementalCount, 13);
}

TEST_F(OutputSetupTest, OriginalFolderFormsTakeTheFolderOfTheInput) {
    view.openedImages = 7;
    view.run.imageCount = 120;
    Run({.folder = "<original folder path>\\small", .mode = "1"});
    EXPECT_TRUE(fs::exists(bench.In("small/0007.png")));
    Run({.folder = "<..original folder path>\\Out"});
    EXPECT_THAT(Written(), ElementsAre("Cat.png"));
    RunParams("11,0,\"" + out + "\",1,png,1,0,,,0,0,0,");  // beside the input
    EXPECT_TRUE(fs::exists(bench.In("Cat.png")));
}

TEST_F(OutputSetupTest, TheWrittenFileIsTheWorkingImage) {
    view.working.main = test::RandomImage({33, 21}, 5);
    Run({.folder = out});
    const auto decoded = OpenImageFile(view, bench.Out("Cat.png"));
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(test::SamePixels(decoded->image, view.working.main));
    EXPECT_TRUE(test::SamePixels(view.working.main, test::RandomImage({33, 21}, 5)));
}

TEST_F(OutputSetupTest, SuccessIsCountedAndLogged) {
    Run({.folder = out});
    EXPECT_EQ(view.run.statOutputs, 1);
    EXPECT_EQ(bench.ui.lastCounts.saved, 1);
    EXPECT_THAT(bench.BatchLines(),
                ElementsAre("1 Output: " + bench.Out("Cat.png"), "1 Output size: 8 x 6"));
    view.settings.logs.outputName = view.settings.logs.outputSize = false;
    Run({.folder = out, .suffix = "2"});
    EXPECT_EQ(bench.BatchLines().size(), 2U);
    EXPECT_EQ(view.run.statOutputs, 2);
}

TEST_F(OutputSetupTest, AnExistingFileStaysWithoutOverwrite) {
    test::PutFile(bench.Out("Cat.png"), "old");
    EXPECT_EQ(Run({.folder = out}), Outcome::Succeeded);
    EXPECT_EQ(test::FileText(bench.Out("Cat.png")), "old");
    EXPECT_EQ(view.run.warningCount, 1);
    EXPECT_EQ(view.run.errorCount, 0);
    EXPECT_EQ(view.run.statOutputs, 0);
    EXPECT_THAT(
        bench.BatchLines(),
        ElementsAre("", "Image number: 1   Command number: 1 Output setup",
                    "Input image: " + bench.In("Cat.JPG"),
                    "No output from numbered command: " + bench.Out("Cat.png"), kExists, ""));
    EXPECT_THAT(bench.ErrorLines(),
                ElementsAre("Image number: 1   Command number: 1 Output setup",
                            "Input image: " + bench.In("Cat.JPG"),
                            "No output from command named: " + bench.Out("Cat.png"), kExists, ""));
    EXPECT_FALSE(view.working.main.IsEmpty());
}

TEST_F(OutputSetupTest, AnExistingFileIsReplacedWithOverwrite) {
    test::PutFile(bench.Out("Cat.png"), "old");
    Run({.folder = out, .overwrite = "1"});
    EXPECT_TRUE(OpenImageFile(view, bench.Out("Cat.png")));
    EXPECT_EQ(view.run.statOutputs, 1);
    EXPECT_THAT(Written(), ElementsAre("Cat.png"));
}

TEST_F(OutputSetupTest, ForcedErrorLogDoesNotBringInWarningsAndFailedSaves) {
    test::PutFile(bench.Out("Cat.png"), "old");
    view.settings.logs.errorLog = false;
    view.run.forceErrorLog = true;
    Run({.folder = out});
    EXPECT_THAT(bench.ErrorLines(), IsEmpty());
    view.run.noPrompts = true;
    Run({.folder = out});
    EXPECT_THAT(bench.ui.notices, ElementsAre(HasSubstr("Warning:101")));
}

TEST_F(OutputSetupTest, WithoutAnImageItFails) {
    view.working.main.Reset();
    EXPECT_EQ(Run({.folder = out}), Outcome::Failed);
    EXPECT_THAT(bench.BatchLines(), Contains(std::string("Error: empty main image buffer")));
    EXPECT_THAT(bench.BatchLines(), Contains("No output from numbered command: Null buffer"));
    EXPECT_EQ(view.run.pc, 1);
}

TEST_F(OutputSetupTest, SkipWritesNothing) {
    EXPECT_EQ(RunParams("11,0,\"" + out + "\",0,png,1,0,,,0,1,0,"), Outcome::Succeeded);
    EXPECT_THAT(Written(), IsEmpty());
}

TEST_F(OutputSetupTest, ARunOverTheSampleWritesNothing) {
    view.run.onLeftImage = true;
    EXPECT_EQ(Run({.folder = out}), Outcome::Succeeded);
    view.run.onLeftImage = false;
    view.run.mode = engine::RunMode::BatchOnSample;
    view.working.main.Reset();  // not even looked at
    EXPECT_EQ(Run({.folder = out}), Outcome::Succeeded);
    EXPECT_THAT(Written(), IsEmpty());
}

TEST_F(OutputSetupTest, ASingleTestWritesUnderTheNameOfTheSample) {
    view.run.batchRunning = view.run.inRun = false;
    view.run.mode = engine::RunMode::OneCommand;
    view.sample.path = "/photos/Dog.tif";
    Run({.folder = out, .prefix = "$(filetitle)-"});
    EXPECT_THAT(Written(), ElementsAre("Dog-Dog.png"));
    EXPECT_EQ(RunParams("11,1,\"" + out + "\",0,png,1,0,later,,0,0,0,"), Outcome::Succeeded);
    EXPECT_THAT(Written(), ElementsAre("Dog-Dog.png"));  // the folder is still to be named
}

TEST_F(OutputSetupTest, ASingleTestTellsInsteadOfLogging) {
    view.run.batchRunning = view.run.inRun = false;
    view.run.mode = engine::RunMode::OneCommand;
    view.sample.path = "/photos/Dog.tif";
    test::PutFile(bench.folder / "Logs/Batch.log", "of the last run");
    test::PutFile(bench.Out("file"), "x");
    Run({.folder = bench.Out("file")});
    test::PutFile(bench.Out("Dog.png"), "old");
    Run({.folder = out});
    EXPECT_THAT(bench.ui.messages,
                ElementsAre("error 9755 in creating directory",
                            std::string(kFailed) + "\n" + bench.Out("file/Dog.png"),
                            std::string(kExists) + "\n" + bench.Out("Dog.png")));
    EXPECT_THAT(bench.BatchLines(), IsEmpty());
    EXPECT_EQ(bench.LogFile("Batch.log"), "of the last run");
}

TEST_F(OutputSetupTest, NoNameAtAllIsADotAndTheExtension) {
    Run({.folder = out, .mode = "3"});
    EXPECT_THAT(Written(), ElementsAre(".png"));
    Run({.folder = out, .mode = "3"});
    EXPECT_EQ(view.run.warningCount, 1);
}

TEST_F(OutputSetupTest, CapitalsOfTheExtensionStay) {
    Run({.folder = out, .extension = "PnG"});
    EXPECT_THAT(Written(), ElementsAre("Cat.PnG"));
    EXPECT_TRUE(OpenImageFile(view, bench.Out("Cat.PnG")));
}

TEST_F(OutputSetupTest, AnExtensionWithoutAWriterLeavesAnEmptyFile) {
    EXPECT_EQ(Run({.folder = out, .extension = "jpeg"}), Outcome::Succeeded);
    EXPECT_EQ(test::FileText(bench.Out("Cat.jpeg")), "");
    EXPECT_EQ(view.run.errorCount, 1);
    EXPECT_THAT(bench.BatchLines(), Contains(kFailed));
}

TEST_F(OutputSetupTest, AnExtensionWithoutAWriterEmptiesNoExistingFile) {
    test::PutFile(bench.Out("Cat.txt"), "old");
    Run({.folder = out, .extension = "txt", .overwrite = "1"});
    EXPECT_EQ(test::FileText(bench.Out("Cat.txt")), "old");
    EXPECT_THAT(bench.BatchLines(), Contains(kFailed));
    EXPECT_THAT(Written(), ElementsAre("Cat.txt"));
}

TEST_F(OutputSetupTest, AFileThatCannotBeOpenedHasItsWordsAndTheLogsAreSaved) {
    test::PutFile(bench.Out("file"), "x");
    EXPECT_EQ(Run({.folder = bench.Out("file")}), Outcome::Succeeded);
    EXPECT_EQ(view.run.errorCount, 1);
    EXPECT_THAT(
        bench.BatchLines(),
        ElementsAre("", "Image number: 1   Command number: 1 Save file",
                    "Input image: " + bench.In("Cat.JPG"),
                    "No output from numbered command: File write", "Unable to open file.", "", "",
                    "Image number: 1   Command number: 1 Output setup",
                    "Input image: " + bench.In("Cat.JPG"),
                    "No output from numbered command: " + bench.Out("file/Cat.png"), kFailed, ""));
    EXPECT_THAT(bench.LogFile("Batch.log"), HasSubstr("Unable to open file.\r\n"));
    EXPECT_THAT(bench.LogFile("Error.log"), HasSubstr("Unable to open file.\r\n"));
    EXPECT_THAT(bench.LogFile("Batch.log"), testing::Not(HasSubstr("1004")));
}

TEST_F(OutputSetupTest, APlaceWhereNobodyMayWriteIsAnErrorOfTheFile) {
    Run({.folder = "/proc"});
    EXPECT_EQ(view.run.errorCount, 1);
    EXPECT_THAT(bench.BatchLines(), Contains("Unable to open file."));
    EXPECT_THAT(bench.ui.messages, IsEmpty());
    Run({.folder = "/proc/new"});
    EXPECT_EQ(view.run.errorCount, 2);
    EXPECT_THAT(bench.ui.messages, ElementsAre(" failed to create folder, invalid_handle2"));
}

TEST_F(OutputSetupTest, AFailedOverwriteLeavesTheOldFile) {
    test::PutFile(bench.Out("Cat.jpg"), "old");
    view.working.main = test::FlatImage({65600, 1}, {1, 2, 3});  // 65500 a side at most
    Run({.folder = out, .extension = "jpg", .overwrite = "1"});
    EXPECT_EQ(test::FileText(bench.Out("Cat.jpg")), "old");
    EXPECT_THAT(bench.BatchLines(), Contains(kFailed));
    EXPECT_THAT(Written(), ElementsAre("Cat.jpg"));
}

TEST_F(OutputSetupTest, AFolderUnderTheNameOfTheFileIsAnError) {
    fs::create_directory(bench.Out("Cat.png"));
    Run({.folder = out});
    EXPECT_EQ(view.run.warningCount, 1);
    Run({.folder = out, .overwrite = "1"});
    EXPECT_EQ(view.run.errorCount, 1);
    EXPECT_TRUE(fs::is_directory(bench.Out("Cat.png")));
    EXPECT_THAT(Written(), ElementsAre("Cat.png"));
}

TEST_F(OutputSetupTest, ATooLongNameIsAnError) {
    Run({.folder = out, .prefix = std::string(300, 'x')});
    EXPECT_EQ(view.run.errorCount, 1);
    EXPECT_THAT(bench.BatchLines(), Contains("Unable to open file."));
    EXPECT_THAT(Written(), IsEmpty());
}

TEST_F(OutputSetupTest, OddNamesStayWhatTheyAre) {
    for (const std::string name : kOddNames) {
        bench.TakeInput(bench.In() + name);
        Run({.folder = out, .extension = "JPG", .suffix = "$(counterA)"});
        EXPECT_TRUE(fs::exists(out + name.substr(0, name.size() - 4) + "0.JPG")) << name;
    }
    EXPECT_EQ(Written().size(), std::size(kOddNames));
    EXPECT_EQ(view.run.errorCount, 0);
    for (const std::string& line : bench.BatchLines())
        EXPECT_EQ(line.find('\n'), std::string::npos) << line;
}

TEST_F(OutputSetupTest, OddNamesThroughAMacroStayInTheFolder) {
    for (const std::string name : kOddNames) {
        bench.TakeInput(bench.In() + name);
        Run({.folder = out, .mode = "3", .prefix = "$(filename)"});
        std::string expected = name + ".png";
        std::replace(expected.begin(), expected.end(), '\\', '-');
        EXPECT_TRUE(fs::exists(out + expected)) << name;
    }
    EXPECT_EQ(view.run.errorCount, 0);
}

TEST_F(OutputSetupTest, SeparatorsOfADateBecomeDashes) {
    view.settings.dateFormat = "../%Y/..";
    Run({.folder = out, .mode = "3", .prefix = "$(date)"});
    EXPECT_THAT(Written(),
                ElementsAre("..-" + platform::FormatTime("%Y", std::time(nullptr)) + "-...png"));
}

TEST_F(OutputSetupTest, TypedSeparatorsAreRefused) {
    Run({.folder = out, .prefix = "../"});
    Run({.folder = out, .suffix = "a\\b"});
    Run({.folder = out, .extension = "/x"});
    EXPECT_EQ(view.run.errorCount, 3);
    EXPECT_THAT(Written(), IsEmpty());
    EXPECT_THAT(test::NamesIn(bench.folder.Path()), ElementsAre("In", "Logs", "Out", "Temp"));
    EXPECT_THAT(bench.BatchLines(), Contains(kFailed).Times(3));
}

TEST_F(OutputSetupTest, WithoutAFolderNothingIsWritten) {
    Run({.folder = ""});
    EXPECT_THAT(bench.ui.messages, ElementsAre("no output folder path specified"));
    EXPECT_EQ(view.run.errorCount, 1);
    SplitInputPath(view, kPathBeforeImages);
    Run({.folder = "<original folder path>\\x"});
    EXPECT_EQ(view.run.errorCount, 2);
    EXPECT_FALSE(fs::exists("x"));
    EXPECT_FALSE(fs::exists("Cat.png"));
}

TEST_F(OutputSetupTest, ARefusedFolderFailsTheCommandAndEndsTheRun) {
    view.settings.warnBeforeMakingFolder = true;
    EXPECT_EQ(Run({.folder = bench.Out("new")}), Outcome::Failed);
    EXPECT_EQ(view.run.keepRunning, 0);
    EXPECT_THAT(Written(), IsEmpty());
}

TEST_F(OutputSetupTest, ThePanelTellsWhatWillBeDone) {
    const auto panel = [](std::string_view params) {
        return script::PanelText(kOutputSetupCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("11,0,,0,jpg,0,0,,,0,0,0,"),
              "Folder to output images:\nNo folder selected\njpg\nUse Input filename\n"
              "No overwrite\n");
    EXPECT_EQ(panel("11,1,/o,1,png,1,1,\"_s\",\"web_\",1,0,1,"),
              "Set the folder at runtime\nUse input folder.\npng\nUse AutoNumeric numbering\n"
              "Prefix: web_\nSuffix: _s\nAdd incremental numbering\nAllow overwrite\n");
    EXPECT_EQ(panel("11,0,/abcdefghijklmnopqrstuvwxyz12,0,png,1,2,,,0,1,1,"),
              "No output - skip command\n...defghijklmnopqrstuvwxyz12\npng\n"
              "Input filename + AutoNumeric\nAllow overwrite\n");
}

TEST(OutputFolderLeftOpen, IsRefusedBeforeARunUnlessTheCommandIsSkipped) {
    EXPECT_TRUE(OutputFolderLeftOpen("11,1,/out,0,jpg,0,0,,,0,0,0,"));
    EXPECT_TRUE(OutputFolderLeftOpen("11,0,,0,jpg,0,0,,,0,0,0,"));
    EXPECT_FALSE(OutputFolderLeftOpen("11,0,/out,0,jpg,0,0,,,0,0,0,"));
    EXPECT_FALSE(OutputFolderLeftOpen("11,0,,1,jpg,0,0,,,0,0,0,"));
    EXPECT_FALSE(OutputFolderLeftOpen("11,1,,0,jpg,0,0,,,0,1,0,"));
}

}  // namespace
}  // namespace lumo::io
