// Runs that do not start, and what is said of them.

#include <gmock/gmock.h>

#include <filesystem>

#include "run_fixture.h"

namespace lumo::engine {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Refusal : public RunFixture {};

TEST_F(Refusal, NoStartMarker) {
    Add(names::kOutputSetup, "0");
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ui.messages,
                ElementsAre("No 'START Image loop (setup)'. Not a batch script. No batching."));
    ui.messages.clear();
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ui.messages, IsEmpty());
    EXPECT_THAT(ui.notices,
                Contains("No 'START Image loop (setup)'. Not a batch script. No batching."));
    EXPECT_THAT(ErrorLog(), HasSubstr("No 'START Image loop (setup)'. Not a batch script."));
    EXPECT_THAT(BatchLog(), HasSubstr("No 'START Image loop (setup)'. Not a batch script."));
    EXPECT_THAT(ui.timers, ElementsAre(1000));
    EXPECT_TRUE(view.run.refused);
}

TEST_F(Refusal, FewCommandsAreAskedAbout) {
    AddStart();
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ui.questions,
                ElementsAre("No commands except 'Start (Image loop)' and 'End (Image loop)' in "
                            "script! Continue anyway?"));
    ui.answers = {true};
    EXPECT_TRUE(RunHere());
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(), HasSubstr("No commands except 'Start (Image loop)' and 'End (Image "
                                      "loop)' in script\r\n"));
}

TEST_F(Refusal, AnInputLeftToRunTimeIsPromptedFor) {
    Add(names::kStartImageLoop, "32,0,,," + kFilters);
    AddOutput();
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ui.prompted, ElementsAre(0));
    EXPECT_THAT(ui.messages, IsEmpty());
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(),
                HasSubstr("In 'START Image loop setup' command you must uncheck 'Set at runtime' "
                          "and set input folder. Then run again."));
}

TEST_F(Refusal, AnOutputFolderLeftOpen) {
    AddStart();
    Add(names::kOutputSetup, "11,0,,0,jpg,0,0,,,0,0,0,");
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ui.messages,
                ElementsAre("In 'Output setup' command(s) you must uncheck 'Set at runtime' and "
                            "set the output folder. Then run again"));
    EXPECT_THAT(ui.edited, ElementsAre(1));
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(), HasSubstr("In 'Output setup' command(s) you must uncheck 'Set at "
                                      "runtime' and set output folder. Then run again\r\n"));
}

TEST_F(Refusal, ASkippedOutputIsAskedAbout) {
    AddPicture("1.png");
    AddStart();
    AddOutput("png,0,0,,,0,1,0,");
    Add(names::kEndImageLoop);
    ui.answers = {true};
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ui.questions,
                ElementsAre("Selected Output setup command is set to be skipped. Do you wish to "
                            "change this? If 'Yes' you will have to run again after making "
                            "changes."));
    EXPECT_THAT(ui.edited, ElementsAre(1));
    EXPECT_EQ(view.script.selected, 1);
    EXPECT_TRUE(RunHere());  // No: it runs, and writes nothing
    EXPECT_FALSE(fs::exists(folder / "out/1.png"));
    EXPECT_EQ(view.script.selected, 0);  // the first command, at the end of a run
}

TEST_F(Refusal, BlockFaultsStopTheRunBeforeItsFirstImage) {
    AddPicture("1.png");
    AddStart();
    Add(names::kIfCondition, "5,0,0,1.0,2.0,0,");
    AddOutput();
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(
        ErrorLog(),
        HasSubstr("Preprocessing error: IF_START  IF_END count mismatch in Image loop\r\n"));
    EXPECT_THAT(ErrorLog(), HasSubstr("0 errors\r\n"));
    EXPECT_THAT(BatchLog(), HasSubstr("---- done ----"));
    EXPECT_FALSE(fs::exists(folder / "out"));
}

TEST_F(Refusal, AFaultWithoutALineIsSaidOnStandardError) {
    Add(names::kIfLastFile);
    MakeScript();
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(), Not(HasSubstr("Preprocessing")));
    ASSERT_THAT(ui.notices, Contains(HasSubstr("first-file or last-file IF")));
}

TEST_F(Refusal, MarkersTwiceOrReversed) {
    MakeScript();
    AddStart();
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(), HasSubstr("more than one 'START image loop (setup)'"));
    view.script.commands.Clear();
    Add(names::kEndImageLoop);
    AddOutput();
    AddStart();
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(), HasSubstr("'END image loop' before 'START image loop (setup)'"));
}

TEST_F(Refusal, MarkersThatAreMissingOrTwice) {
    const auto refusal = [&](std::initializer_list<std::string_view> commands) {
        view.script.commands.Clear();
        for (const auto name : commands) name == names::kStartImageLoop ? AddStart() : Add(name);
        Unattended();
        ui.notices.clear();
        EXPECT_FALSE(RunHere());
        EXPECT_EQ(ui.notices.size(), 1U);
        return ui.notices.front();
    };
    constexpr auto kStart = names::kStartImageLoop, kEnd = names::kEndImageLoop;
    constexpr auto kStep = names::kFlipVertical;
    EXPECT_EQ(refusal({kStart, kStep, kStep}),
              "Preprocessing error: no 'END image loop' in script");
    EXPECT_EQ(refusal({kStart, kEnd, kStep, kEnd}),
              "Preprocessing error: more than one 'END image loop' in script");
}

TEST_F(Refusal, AnElseThatComesTooLateIsSaidOnStandardErrorToo) {
    MakeScript({names::kIfFirstFile, names::kIfEnd, names::kFlipVertical, names::kElseStart,
                names::kElseEnd});
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(), Not(HasSubstr("Preprocessing")));
    EXPECT_THAT(ui.notices,
                ElementsAre(HasSubstr("an ELSE_START that does not follow its IF_END")));
}

TEST_F(Refusal, MoreThan2000Commands) {
    AddStart();
    for (int i = 0; i < 2000; ++i) Add(names::kCounter, "3,1,1,0,");
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(), HasSubstr("more than 2000 commands"));
}

TEST_F(Refusal, OneRunTellsTheFaultsOfAllBlocks) {
    Add(names::kLoopEnd);
    AddStart();
    Add(names::kSubroutineExecute, "1,\"Nowhere\",");
    Add(names::kSubroutineStart, "1,\"a\",");
    Add(names::kElseEnd);
    Add(names::kIfEnd);
    Add(names::kDoEnd);
    Add(names::kEndImageLoop);
    Add(names::kLoopStart);
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(
        ErrorLog(),
        HasSubstr(
            "-- Errors and Warnings --\r\n"
            "Preprocessing error: Unable to load called subroutine; Nowhere\r\n"
            "Preprocessing error: Loop End before Loop Start in pre-Image loop\r\n"
            "Preprocessing error: Loop Start - Loop End count mismatch pre-Image loop\r\n"
            "Preprocessing error: Loop Start - Loop End count mismatch post-Image loop\r\n"
            "Preprocessing error: DO_END before DO_WHILE (condition) in Image loop\r\n"
            "Preprocessing error: DO_WHILE - DO_END count mismatch Image loop\r\n"
            "Preprocessing error: IF_END before IF_START in Image loop\r\n"
            "Preprocessing error: IF_START  IF_END count mismatch in Image loop\r\n"
            "Preprocessing error: ELSE_END before ELSE_START in Image loop\r\n"
            "Preprocessing error: ELSE_START  ELSE_END count mismatch in Image loop\r\n"
            "Preprocessing error: SUBROUTINE_START  SUBROUTINE_END count mismatch in Image loop\r\n"
            "0 errors\r\n"));
    EXPECT_TRUE(view.run.refused);
    EXPECT_THAT(ui.statuses, ElementsAre("Processing...", "Done!"));
}

TEST_F(Refusal, FaultsAreLinesOfTheErrorLogOnlyWhereItIsKept) {
    AddStart();
    Add(names::kLoopStart, "1,2,");
    Add(names::kEndImageLoop);
    view.settings.logs.errorLog = false;
    EXPECT_FALSE(RunHere());
    EXPECT_FALSE(fs::exists(folder / "logs/Error.log"));
    EXPECT_THAT(BatchLog(), Not(HasSubstr("Preprocessing")));
    EXPECT_THAT(ui.notices, IsEmpty());
    Unattended();
    view.run.forceErrorLog = true;
    EXPECT_FALSE(RunHere());
    constexpr auto kLine = "Preprocessing error: Loop Start - Loop End count mismatch Image loop";
    EXPECT_THAT(ErrorLog(), HasSubstr(kLine));
    EXPECT_THAT(ui.notices, ElementsAre(kLine));
}

TEST_F(Refusal, PutsTheSampleBack) {
    view.sample.left = test::CoordinateImage({20, 10});
    AddStart();
    Add(names::kLoopStart, "1,2,");
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    EXPECT_TRUE(test::SamePixels(view.working.main, view.sample.left));
}

}  // namespace
}  // namespace lumo::engine
