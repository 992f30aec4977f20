#include <gmock/gmock.h>

#include <filesystem>

#include "files_fixture.h"
#include "imaging/last_error.h"
#include "ops/files/files_commands.h"
#include "platform/environment.h"
#include "script/names.h"
#include "support/file_size_limit.h"

namespace lumo::ops::files {
namespace {

namespace fs = std::filesystem;
namespace names = script::names;
using engine::Outcome;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr std::string_view kGone =
    "Warning:1125 Cmd_20 - Original file no longer exists (Delete/Move?)";
constexpr std::string_view kExists = "Warning:1123 Cmd_20 - Copy/move to file exists, no overwrite";

class CopyMove : public test::FilesTest {
  protected:
    struct Setup {
        std::string operation = "1", folder, mode = "0", prefix, suffix, overwrite = "0";
    };
    static std::string Params(const Setup& s) {
        return "6," + s.operation + ",\"" + s.folder + "\"," + s.mode + ",\"" + s.prefix + "\",\"" +
               s.suffix + "\"," + s.overwrite + ",";
    }
    Outcome RunIt(const Setup& setup) { return Run(kCopyMoveCommand, Params(setup)); }
    std::vector<std::string> Arrived() const { return test::NamesIn(out); }
    std::vector<std::string> Inputs() const { return test::NamesIn(bench.In()); }
    void ExpectShellError(int number) {
        const std::string text = "Cmd_20 Copy 27352: shell error " + std::to_string(number) +
                                 "  IS_error " + imaging::LastError();
        EXPECT_THAT(bench.BatchLines(), ElementsAre(text));
        EXPECT_THAT(bench.ErrorLines(), ElementsAre(text));
        EXPECT_EQ(view.run.warningCount, 0);
        bench.BatchLines().clear();
        bench.ErrorLines().clear();
    }

    const std::string out = bench.Out();
    const std::string content = test::FileText(input);
};

TEST_F(CopyMove, CopyLeavesTheOriginal) {
    EXPECT_EQ(RunIt({.folder = out}), Outcome::Succeeded);
    EXPECT_EQ(test::FileText(bench.Out("Cat.JPG")), content);
    EXPECT_EQ(test::FileText(input), content);
    EXPECT_THAT(bench.BatchLines(), IsEmpty());
}

TEST_F(CopyMove, AnyOtherOperationMoves) {
    for (const char* operation : {"0", "", "2", "01"}) {
        EXPECT_EQ(RunIt({.operation = operation, .folder = out}), Outcome::Succeeded);
        EXPECT_EQ(test::FileText(bench.Out("Cat.JPG")), content);
        EXPECT_THAT(Inputs(), IsEmpty());
        fs::rename(bench.Out("Cat.JPG"), input);
    }
}

TEST_F(CopyMove, TheWorkingImageStays) {
    view.working.main = test::CoordinateImage({3, 2});
    RunIt({.operation = "0", .folder = out});
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{3, 2}));
    EXPECT_EQ(test::FileText(bench.Out("Cat.JPG")), content) << "the file as it is on disk";
}

TEST_F(CopyMove, TheNameIsBuiltInOrder) {
    view.openedImages = 7;
    view.run.imageCount = 120;
    view.incrementalCount = 12;
    RunIt({.folder = out, .mode = "0", .prefix = "p_", .suffix = "_s"});
    RunIt({.folder = out, .mode = "1", .prefix = "p_", .suffix = "_s"});
    RunIt({.folder = out, .mode = "2", .prefix = "p_", .suffix = "_s"});
    RunIt({.folder = out, .mode = "x", .prefix = "q_"});
    RunIt({.folder = out, .mode = "", .prefix = "r_"});
    EXPECT_THAT(Arrived(), ElementsAre("p_0007_s.JPG", "p_Cat0007_s.JPG", "p_Cat_s.JPG",
                                       "q_0007.JPG", "r_0007.JPG"));
    EXPECT_EQ(view.incrementalCount, 12) << "no count of outputs is used up";
}

TEST_F(CopyMove, MacrosSpeakOfTheInputAndThePicture) {
    view.counters[0] = 5;
    RunIt({.folder = out,
           .mode = "1",
           .prefix = "$(filetitle)-$(width)x$(height)-",
           .suffix = "-$(counterA)$(filepath)"});
    EXPECT_THAT(Arrived(), ElementsAre("Cat-8x6-0001-5.JPG"));
}

TEST_F(CopyMove, TheExtensionStaysAsItIs) {
    for (const char* name : {"dots.in.name.JpEg", "none", ".jpg", "ends."}) {
        test::PutFile(bench.In(name), name);
        bench.TakeInput(bench.In(name));
        EXPECT_EQ(RunIt({.folder = out, .suffix = "_s"}), Outcome::Succeeded);
    }
    EXPECT_THAT(Arrived(), ElementsAre("_s.jpg", "dots.in.name_s.JpEg", "ends_s.", "none_s"));
}

TEST_F(CopyMove, NamesAreJustNames) {
    for (const char* name : {"two\nlines.jpg", "$(date).jpg", "%s%n.jpg", "\xFF\xFE.jpg",
                             "-rf ;x.jpg", "a\"b'c.jpg", "back\\slash.jpg", " leading.jpg"}) {
        test::PutFile(bench.In(name), name);
        bench.TakeInput(bench.In(name));
        EXPECT_EQ(RunIt({.operation = "0", .folder = out}), Outcome::Succeeded);
        EXPECT_EQ(test::FileText(bench.Out(name)), name);
        EXPECT_FALSE(fs::exists(bench.In(name)));
    }
}

TEST_F(CopyMove, FoldersMayBeStatedInEveryForm) {
    EXPECT_EQ(RunIt({.folder = "<original folder path>\\small"}), Outcome::Succeeded);
    EXPECT_TRUE(fs::exists(bench.In("small/Cat.JPG")));
    EXPECT_EQ(RunIt({.folder = "<..original folder path>\\Out"}), Outcome::Succeeded);
    EXPECT_THAT(Arrived(), ElementsAre("Cat.JPG"));
    EXPECT_EQ(RunIt({.folder = "<INSTALL_FOLDER>\\a\\b"}), Outcome::Succeeded);
    EXPECT_TRUE(fs::exists(bench.folder / "Install/a/b/Cat.JPG"));
    EXPECT_EQ(RunIt({.folder = out + "/", .prefix = "2"}), Outcome::Succeeded);
    EXPECT_THAT(Arrived(), ElementsAre("2Cat.JPG", "Cat.JPG"));
}

TEST_F(CopyMove, ASeparatorInTheNameIsRefused) {
    for (const char* part : {"../", "a/b", "a\\b"}) {
        EXPECT_EQ(RunIt({.folder = out, .prefix = part}), Outcome::Failed);
        ExpectShellError(EINVAL);
        EXPECT_EQ(RunIt({.folder = out, .suffix = part}), Outcome::Failed);
        ExpectShellError(EINVAL);
    }
    EXPECT_THAT(Arrived(), IsEmpty());
    EXPECT_THAT(Inputs(), ElementsAre("Cat.JPG"));
}

TEST_F(CopyMove, AZeroByteCutsNoPathShort) {
    using namespace std::string_literals;
    EXPECT_EQ(RunIt({.operation = "0", .folder = out + "\0more"s}), Outcome::Failed);
    ExpectShellError(EINVAL);
    EXPECT_EQ(RunIt({.operation = "0", .folder = out, .suffix = "a\0b"s}), Outcome::Failed);
    ExpectShellError(EINVAL);
    EXPECT_THAT(Arrived(), IsEmpty());
    EXPECT_EQ(test::FileText(input), content);
}

TEST_F(CopyMove, WithoutAFolderNothingMoves) {
    EXPECT_EQ(RunIt({.operation = "0"}), Outcome::Failed);
    ExpectShellError(ENOENT);
    EXPECT_THAT(bench.ui.messages, ElementsAre("no output folder path specified"));
    EXPECT_EQ(test::FileText(input), content);
}

TEST_F(CopyMove, AFolderThatCannotBeMadeIsAShellError) {
    test::PutFile(bench.folder / "file", "");
    EXPECT_EQ(RunIt({.operation = "0", .folder = bench.folder / "file/out"}), Outcome::Failed);
    ExpectShellError(ENOTDIR);
    EXPECT_EQ(test::FileText(input), content);
}

TEST_F(CopyMove, TheQuestionAboutANewFolderMayBeRefused) {
    view.settings.warnBeforeMakingFolder = true;
    bench.ui.answers = {false};
    EXPECT_EQ(RunIt({.operation = "0", .folder = bench.folder / "New"}), Outcome::Failed);
    EXPECT_THAT(bench.ui.questions,
                ElementsAre(bench.folder / "New/ :does not exist. Create now?"));
    EXPECT_EQ(view.run.keepRunning, 0);
    EXPECT_FALSE(fs::exists(bench.folder / "New"));
    EXPECT_EQ(test::FileText(input), content);
}

TEST_F(CopyMove, TheQuestionAboutANewFolderMayBeAnsweredYes) {
    view.settings.warnBeforeMakingFolder = true;
    bench.ui.answers = {true};
    EXPECT_EQ(RunIt({.folder = bench.folder / "New"}), Outcome::Succeeded);
    EXPECT_TRUE(fs::exists(bench.folder / "New/Cat.JPG"));
    EXPECT_EQ(view.run.keepRunning, 1);
}

TEST_F(CopyMove, AnExistingTargetIsAWarning) {
    test::PutFile(bench.Out("Cat.JPG"), "older");
    for (const char* operation : {"1", "0"}) {
        bench.BatchLines().clear();
        bench.ErrorLines().clear();
        EXPECT_EQ(RunIt({.operation = operation, .folder = out}), Outcome::Failed);
        ExpectBlock(names::kCopyMove, bench.Out("Cat.JPG"), kExists);
    }
    EXPECT_EQ(view.run.warningCount, 2);
    EXPECT_EQ(test::FileText(bench.Out("Cat.JPG")), "older");
    EXPECT_EQ(test::FileText(input), content);
}

TEST_F(CopyMove, OnlyTheText1AllowsOverwriting) {
    for (const char* overwrite : {"0", "", "2", "yes"}) {
        test::PutFile(bench.Out("Cat.JPG"), "older");
        EXPECT_EQ(RunIt({.folder = out, .overwrite = overwrite}), Outcome::Failed);
        EXPECT_EQ(test::FileText(bench.Out("Cat.JPG")), "older");
    }
    for (const char* operation : {"1", "0"}) {
        test::PutFile(bench.Out("Cat.JPG"), "older");
        EXPECT_EQ(RunIt({.operation = operation, .folder = out, .overwrite = "1"}),
                  Outcome::Succeeded);
        EXPECT_EQ(test::FileText(bench.Out("Cat.JPG")), content);
    }
}

TEST_F(CopyMove, ALinkThatLeadsNowhereHasTheNameToo) {
    fs::create_symlink("nowhere", bench.Out("Cat.JPG"));
    EXPECT_EQ(RunIt({.operation = "0", .folder = out}), Outcome::Failed);
    ExpectBlock(names::kCopyMove, bench.Out("Cat.JPG"), kExists);
    EXPECT_TRUE(fs::is_symlink(bench.Out("Cat.JPG")));
}

TEST_F(CopyMove, OntoItselfIsAWarningOrAShellError) {
    const std::string in = bench.In();
    fs::create_directory_symlink("In", bench.folder / "Link");
    for (const std::string& folder :
         {in, in + "../In", std::string("<original folder path>"), bench.folder / "Link"}) {
        for (const char* operation : {"1", "0"}) {
            EXPECT_EQ(RunIt({.operation = operation, .folder = folder}), Outcome::Failed);
            EXPECT_THAT(bench.BatchLines(), testing::Contains(kExists));
            bench.BatchLines().clear();
            bench.ErrorLines().clear();
            view.run.warningCount = 0;
            EXPECT_EQ(RunIt({.operation = operation, .folder = folder, .overwrite = "1"}),
                      Outcome::Failed);
            ExpectShellError(EEXIST);
        }
    }
    EXPECT_THAT(Inputs(), ElementsAre("Cat.JPG"));
    EXPECT_EQ(test::FileText(input), content);
}

TEST_F(CopyMove, AnOriginalThatIsGoneIsAWarning) {
    ASSERT_EQ(RunIt({.operation = "0", .folder = out}), Outcome::Succeeded);
    EXPECT_EQ(RunIt({.operation = "1", .folder = out, .prefix = "2"}), Outcome::Failed);
    ExpectBlock(names::kCopyMove, input, kGone);
    EXPECT_EQ(view.run.warningCount, 1);
    EXPECT_THAT(Arrived(), ElementsAre("Cat.JPG"));
}

TEST_F(CopyMove, OutsideOfTheImageLoopThereIsNoOriginal) {
    for (const char* name : {"Pre_image_loop.", "Post_image_loop."}) {
        view.input.path = name;
        EXPECT_EQ(RunIt({.folder = out}), Outcome::Failed);
    }
    EXPECT_EQ(view.run.warningCount, 2);
    EXPECT_THAT(Arrived(), IsEmpty());
}

TEST_F(CopyMove, NeedsAWorkingImage) {
    view.working.main.Reset();
    EXPECT_EQ(RunIt({.operation = "0", .folder = out}), Outcome::Failed);
    ExpectBlock(names::kCopyMove, "Null buffer", "Error: empty main image buffer");
    EXPECT_EQ(test::FileText(input), content);
}

TEST_F(CopyMove, ARunOverTheSampleMovesNothing) {
    view.run.onLeftImage = true;
    EXPECT_EQ(RunIt({.operation = "0", .folder = out}), Outcome::Succeeded);
    view.run.onLeftImage = false;
    view.run.mode = engine::RunMode::BatchOnSample;
    view.working.main.Reset();
    EXPECT_EQ(RunIt({.operation = "0", .folder = out}), Outcome::Succeeded);
    EXPECT_EQ(test::FileText(input), content);
    EXPECT_THAT(Arrived(), IsEmpty());
}

TEST_F(CopyMove, ATestOfOneCommandWorksOnTheSamplesFile) {
    LeaveRun();
    view.input = {};
    EXPECT_EQ(RunIt({.folder = out}), Outcome::Succeeded);
    EXPECT_THAT(Arrived(), ElementsAre("Cat.JPG"));
    EXPECT_EQ(RunIt({.folder = out}), Outcome::Failed);
    EXPECT_THAT(bench.ui.messages, ElementsAre(std::string(kExists) + "\n" + bench.Out("Cat.JPG")));
    EXPECT_EQ(RunIt({.folder = bench.In(), .overwrite = "1"}), Outcome::Failed);
    EXPECT_THAT(bench.ui.messages.back(),
                StartsWith("Cmd_20 Copy 27352: shell error 17  IS_error "));
}

TEST_F(CopyMove, ATestPassesItOverWhereTheScriptDoes) {
    LeaveRun(engine::RunMode::WholeScript);
    view.test.ifFlag = 0;
    EXPECT_EQ(RunIt({.operation = "0", .folder = out}), Outcome::Succeeded);
    EXPECT_EQ(test::FileText(input), content);
}

TEST_F(CopyMove, AFullDiskLeavesTheOriginalAndTheOlderFile) {
    const std::string other = test::OtherFileSystem();
    if (other.empty()) GTEST_SKIP() << "no second file system that can be written";
    const test::TempFolder far(other);
    test::PutFile(far / "Cat.JPG", "older");
    test::PutFile(input, std::string(50'000, 'x'));
    {
        const test::ScopedFileSizeLimit limit(10'000);
        EXPECT_EQ(RunIt({.operation = "0", .folder = far.Path(), .overwrite = "1"}),
                  Outcome::Failed);
    }
    ExpectShellError(EFBIG);
    EXPECT_EQ(test::FileText(far / "Cat.JPG"), "older");
    EXPECT_EQ(test::FileText(input), std::string(50'000, 'x'));
    EXPECT_THAT(test::NamesIn(far.Path()), ElementsAre("Cat.JPG"));
}

TEST_F(CopyMove, PanelTellsWhatGoesWhereAndHow) {
    const auto panel = [](const Setup& setup) {
        return script::PanelText(kCopyMoveCommand.spec, script::ParseParams(Params(setup)));
    };
    EXPECT_EQ(script::PanelText(kCopyMoveCommand.spec, script::ParseParams("6,1,,0,,,1,")),
              "Copy\nFolder to copy image file:\nNo folder selected\nUse Input filename\n"
              "Allow overwrite\n");
    EXPECT_EQ(panel({.operation = "0", .folder = "C:\\Out", .mode = "1", .prefix = "a"}),
              "Move\nFolder to move image file:\nC:\\Out\nUse AutoNumeric numbering\nPrefix: a\n"
              "No overwrite\n");
    EXPECT_EQ(panel({.folder = "/a/very/long/path/to/the/pictures", .mode = "2", .suffix = "b"}),
              "Copy\nFolder to copy image file:\n...long/path/to/the/pictures\n"
              "Input filename + AutoNumeric\nSuffix: b\nNo overwrite\n");
}

}  // namespace
}  // namespace lumo::ops::files
