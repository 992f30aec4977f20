#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

#include "files_fixture.h"
#include "ops/files/files_commands.h"
#include "support/test_files.h"

namespace lumo::ops::files {
namespace {

namespace fs = std::filesystem;
using engine::Outcome;
using testing::ElementsAre;
using testing::IsEmpty;

class DeleteInput : public test::FilesTest {
  protected:
    // The trash of the desktop is asked for once in the life of a program.
    static void SetUpTestSuite() {
        home = new test::TempFolder;
        setenv("HOME", home->Path().c_str(), 1);
        setenv("XDG_DATA_HOME", (*home / "share").c_str(), 1);
    }
    static void TearDownTestSuite() { delete home; }

    Outcome Delete(std::string_view params) { return Run(kDeleteInputFileCommand, params); }
    std::vector<std::string> Inputs() const { return test::NamesIn(bench.In()); }
    static std::vector<std::string> Trashed() {
        const std::string files = *home / "share/Trash/files";
        return fs::exists(files) ? test::NamesIn(files) : std::vector<std::string>();
    }
    void ExpectShellError(int number) {
        const std::string text = "Cmd_25 Delete 4438: shell error " + std::to_string(number);
        EXPECT_THAT(bench.BatchLines(), ElementsAre(text));
        EXPECT_THAT(bench.ErrorLines(), ElementsAre(text));
    }
    void TearDown() override { fs::remove_all(*home / "share"); }

    static test::TempFolder* home;
    const std::string content = test::FileText(input);
};
test::TempFolder* DeleteInput::home = nullptr;

TEST_F(DeleteInput, SendsTheFileToTheTrash) {
    EXPECT_EQ(Delete("2,1,1,"), Outcome::Succeeded);
    EXPECT_THAT(Inputs(), IsEmpty());
    EXPECT_THAT(Trashed(), ElementsAre("Cat.JPG"));
    EXPECT_EQ(test::FileText(*home / "share/Trash/files/Cat.JPG"), content);
    EXPECT_FALSE(view.working.main.IsEmpty()) << "the picture stays in hand";
    EXPECT_THAT(bench.BatchLines(), IsEmpty());
}

TEST_F(DeleteInput, WithoutUndoTheFileIsGoneAtOnce) {
    for (const char* params : {"2,1,0,", "2,1,,", "2,1,2,"}) {
        test::PutFile(input, content);
        EXPECT_EQ(Delete(params), Outcome::Succeeded);
        EXPECT_THAT(Inputs(), IsEmpty());
    }
    EXPECT_THAT(Trashed(), IsEmpty());
}

TEST_F(DeleteInput, NeedsNoWorkingImage) {
    view.working.main.Reset();
    EXPECT_EQ(Delete("2,1,0,"), Outcome::Succeeded);
    EXPECT_THAT(Inputs(), IsEmpty());
}

TEST_F(DeleteInput, ANoToTheQuestionKeepsTheFileAndIsNoFailure) {
    bench.ui.answers = {false, false};
    EXPECT_EQ(Delete("2,0,1,"), Outcome::Succeeded);
    EXPECT_EQ(Delete("2,0,0,"), Outcome::Succeeded);
    EXPECT_THAT(bench.ui.questions, ElementsAre("Send this file to the recycle bin?\n" + input,
                                                "Delete this file for good?\n" + input));
    EXPECT_EQ(test::FileText(input), content);
    EXPECT_THAT(bench.BatchLines(), IsEmpty());
}

TEST_F(DeleteInput, AYesToTheQuestionDeletes) {
    bench.ui.answers = {true};
    EXPECT_EQ(Delete("2,,0,"), Outcome::Succeeded);
    EXPECT_THAT(Inputs(), IsEmpty());
}

TEST_F(DeleteInput, AnUnattendedRunNeverAsks) {
    view.run.noPrompts = true;
    EXPECT_EQ(Delete("2,0,0,"), Outcome::Succeeded);
    EXPECT_THAT(Inputs(), IsEmpty());
    EXPECT_THAT(bench.ui.questions, IsEmpty());
}

TEST_F(DeleteInput, AFileThatIsGoneIsAShellErrorWithoutLibraryText) {
    fs::remove(input);
    EXPECT_EQ(Delete("2,0,1,"), Outcome::Failed);
    ExpectShellError(ENOENT);
    EXPECT_THAT(bench.ui.questions, IsEmpty()) << "nothing to ask about";
    EXPECT_EQ(view.run.warningCount, 0);
}

TEST_F(DeleteInput, WhereThereIsNoTrashTheFileStays) {
    const std::string other = test::OtherFileSystem();
    if (other != "/dev/shm") GTEST_SKIP() << "no file system without a trash";
    const test::TempFolder memory(other);
    test::PutFile(memory / "a.jpg", "picture");
    bench.TakeInput(memory / "a.jpg");
    EXPECT_EQ(Delete("2,1,1,"), Outcome::Failed);
    ExpectShellError(ENOTSUP);
    EXPECT_EQ(test::FileText(memory / "a.jpg"), "picture");
}

TEST_F(DeleteInput, ALinkIsDeletedAndNotWhatItLeadsTo) {
    test::PutFile(bench.folder / "real.jpg", "picture");
    fs::create_symlink(bench.folder / "real.jpg", bench.In("link.jpg"));
    bench.TakeInput(bench.In("link.jpg"));
    EXPECT_EQ(Delete("2,1,0,"), Outcome::Succeeded);
    EXPECT_THAT(Inputs(), ElementsAre("Cat.JPG"));
    EXPECT_EQ(test::FileText(bench.folder / "real.jpg"), "picture");
}

TEST_F(DeleteInput, TestsAndRunsOverTheSampleDeleteNothing) {
    using engine::RunMode;
    view.run.onLeftImage = true;
    view.run.mode = RunMode::BatchOnSample;
    EXPECT_EQ(Delete("2,1,0,"), Outcome::Succeeded);
    view.run.onLeftImage = false;
    EXPECT_EQ(Delete("2,1,0,"), Outcome::Succeeded);
    for (const RunMode mode : {RunMode::OneCommand, RunMode::WholeScript}) {
        LeaveRun(mode);
        EXPECT_EQ(Delete("2,1,0,"), Outcome::Succeeded);
    }
    LeaveRun(RunMode::Idle);
    view.test.subSkip = 1;
    EXPECT_EQ(Delete("2,1,0,"), Outcome::Succeeded);
    EXPECT_EQ(test::FileText(input), content);
}

TEST_F(DeleteInput, NothingIsDeletedOutsideOfTheImageLoop) {
    view.input.path = "Post_image_loop.";
    EXPECT_EQ(Delete("2,1,0,"), Outcome::Failed);
    ExpectShellError(ENOENT);
}

TEST_F(DeleteInput, PanelTellsBothChoices) {
    const auto panel = [](std::string_view params) {
        return script::PanelText(kDeleteInputFileCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("2,1,1,"), "No confirmation\nFile sent to recycle bin\n");
    EXPECT_EQ(panel("2,0,0,"), "Ask before deleting\nDelete for good\n");
}

}  // namespace
}  // namespace lumo::ops::files
