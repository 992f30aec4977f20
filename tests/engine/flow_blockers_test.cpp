// What a test walk passes over: each block command under each flag that stops it.

#include <gmock/gmock.h>

#include <algorithm>

#include "engine/flow/flow_commands.h"
#include "support/command_runner.h"

namespace lumo::engine::flow {
namespace {

using testing::IsEmpty;

constexpr const char* kFalse = "5,1,0,10,0,0,";  // width > 10

enum class Blocker { OneCommand, IfFalse, DoFalse, Exit, SubSkip };
constexpr Blocker kAll[] = {Blocker::OneCommand, Blocker::IfFalse, Blocker::DoFalse, Blocker::Exit,
                            Blocker::SubSkip};

/// A walk in the middle of a Script, with every field at a value that a command would change.
class WalkUnder {
  public:
    explicit WalkUnder(Blocker blocker) {
        runner.view.run.mode = RunMode::WholeScript;
        runner.view.run.imageIndex = 1;
        runner.view.run.imageCount = 3;
        TestWalk& test = runner.view.test;
        test.ifStack = "TF";
        test.elseStack = "TFT";
        test.testPc = 9;
        test.loopCount = 5;
        test.loopReturn = 4;
        test.doReturn = 3;
        script::Script& script = runner.view.script.commands;
        script.Add("SUBROUTINE_START", "1,S,");
        script.Add("SUBROUTINE_END", "0");
        switch (blocker) {
            case Blocker::OneCommand:
                runner.view.run.mode = RunMode::OneCommand;
                break;
            case Blocker::IfFalse:
                test.ifFlag = 0;
                break;
            case Blocker::DoFalse:
                test.doFlag = 0;
                break;
            case Blocker::Exit:
                test.exitFlag = 1;
                break;
            case Blocker::SubSkip:
                test.subSkip = 1;
                break;
        }
    }

    /// The whole state of the walk as a text.
    std::string State() const {
        const TestWalk& t = runner.view.test;
        std::string text = t.ifStack + "/" + t.elseStack;
        for (const int value :
             {t.ifFlag, t.doFlag, t.exitFlag, t.subSkip, t.subDepth, t.testPc, t.loopReturn,
              t.loopCount, t.doReturn, static_cast<int>(t.subReturnList.size())})
            text += " " + std::to_string(value);
        return text;
    }

    test::CommandRunner runner{test::CoordinateImage({10, 10})};
};

struct Row {
    const Command& command;
    const char* params;
    std::vector<Blocker> passedOver;
};

TEST(FlowBlockers, EachCommandIsStoppedByItsOwnFlagsAndNoOthers) {
    using enum Blocker;
    const Row rows[] = {
        {kScriptInfoCommand, "7,a,b,c,d,e,f,g,", {OneCommand, IfFalse, DoFalse, Exit, SubSkip}},
        {kExitCommand, "0", {OneCommand, IfFalse, DoFalse, Exit, SubSkip}},
        {kIfConditionCommand, kFalse, {OneCommand, DoFalse, Exit, SubSkip}},
        {kIfFirstFileCommand, "0", {DoFalse, Exit, SubSkip}},
        {kIfLastFileCommand, "0", {DoFalse, Exit, SubSkip}},
        {kIfEndCommand, "0", {OneCommand, DoFalse, Exit, SubSkip}},
        {kElseStartCommand, "0", {OneCommand, DoFalse, Exit, SubSkip}},
        {kElseEndCommand, "0", {OneCommand, DoFalse, Exit, SubSkip}},
        {kDoWhileCommand, "5,1,2,10,0,0,", {OneCommand, IfFalse, Exit, SubSkip}},
        {kDoEndCommand, "0", {OneCommand, IfFalse, Exit, SubSkip}},
        {kLoopStartCommand, "1,7,", {IfFalse, DoFalse, Exit, SubSkip}},
        {kLoopEndCommand, "0", {IfFalse, DoFalse, Exit, SubSkip}},
        {kSubroutineExecuteCommand, "1,S,", {OneCommand, IfFalse, DoFalse, Exit, SubSkip}},
        // A start inside of a body that is skipped anyway leaves the flag up.
        {kSubroutineStartCommand, "1,S,", {IfFalse, DoFalse, Exit, SubSkip}},
        {kSubroutineEndCommand, "0", {IfFalse, DoFalse, Exit}},
    };
    for (const Row& row : rows)
        for (const Blocker blocker : kAll) {
            WalkUnder walk(blocker);
            if (row.command.run == kSubroutineEndCommand.run) {
                walk.runner.view.test.subDepth = 1;
                walk.runner.view.test.subReturnList = {2};
            }
            const std::string before = walk.State();
            EXPECT_EQ(walk.runner.Execute(row.command, row.params), Outcome::Succeeded)
                << row.command.spec.name;
            const bool stopped = std::ranges::find(row.passedOver, blocker) != row.passedOver.end();
            EXPECT_EQ(walk.State() == before, stopped)
                << row.command.spec.name << " under " << static_cast<int>(blocker) << ": " << before
                << " to " << walk.State();
            EXPECT_THAT(walk.runner.messages, IsEmpty()) << row.command.spec.name;
        }
}

TEST(FlowBlockers, ADoEndThatIsAbortedLetsGo) {
    WalkUnder walk(Blocker::DoFalse);
    walk.runner.view.run.batchRunning = true;
    walk.runner.view.run.keepRunning = 0;
    walk.runner.Execute(kDoEndCommand, "0");
    EXPECT_EQ(walk.runner.view.test.doFlag, 1);
    EXPECT_EQ(walk.runner.view.test.doReturn, 3);  // kept
    EXPECT_EQ(walk.runner.view.test.testPc, 9);    // and not gone back to
}

TEST(FlowBlockers, ADoWhileThatIsFalseMarksNoPlaceToReturnTo) {
    WalkUnder walk(Blocker::OneCommand);
    walk.runner.view.run.mode = RunMode::WholeScript;
    walk.runner.Execute(kDoWhileCommand, kFalse);
    EXPECT_EQ(walk.runner.view.test.doFlag, 0);
    EXPECT_EQ(walk.runner.view.test.doReturn, 3);
}

TEST(FlowBlockers, TheMeasuredItemsGoAstrayInATestTooButTheLetterFollowsIfFlag) {
    WalkUnder walk(Blocker::OneCommand);
    walk.runner.view.run.mode = RunMode::WholeScript;
    walk.runner.view.test.ifStack = walk.runner.view.test.elseStack = "";
    walk.runner.Execute(kIfConditionCommand, "5,11,0,1e8,1e9,1,");  // false
    EXPECT_EQ(walk.runner.view.test.doFlag, 0);
    EXPECT_EQ(walk.runner.view.test.ifFlag, 1);
    EXPECT_EQ(walk.runner.view.test.ifStack, "T");
}

}  // namespace
}  // namespace lumo::engine::flow
