// Block commands in a test walk on the sample, where flags and stacks steer them.

#include <gmock/gmock.h>

#include "engine/flow/flow_commands.h"
#include "support/command_runner.h"

namespace lumo::engine::flow {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kTrue = "5,1,3,10,0,0,";   // width >= 10
constexpr const char* kFalse = "5,1,0,10,0,0,";  // width > 10

class Walk : public testing::Test {
  protected:
    Walk() { runner.view.run.mode = RunMode::WholeScript; }
    Outcome Do(const Command& command, std::string_view params = "0") {
        return runner.Execute(command, params);
    }
    TestWalk& Test() { return runner.view.test; }
    test::CommandRunner runner{test::CoordinateImage({10, 10})};
};

TEST_F(Walk, IfPushesALetterAndIfEndTakesIt) {
    Do(kIfConditionCommand, kTrue);
    EXPECT_EQ(Test().ifFlag, 1);
    EXPECT_EQ(Test().ifStack, "T");
    EXPECT_EQ(Test().elseStack, "T");
    Do(kIfConditionCommand, kFalse);
    EXPECT_EQ(Test().ifFlag, 0);
    EXPECT_EQ(Test().ifStack, "TF");
    Do(kIfEndCommand);
    EXPECT_EQ(Test().ifFlag, 1);
    EXPECT_EQ(Test().ifStack, "T");
    EXPECT_EQ(Test().elseStack, "TF");  // kept for an ELSE
    Do(kIfEndCommand);
    EXPECT_EQ(Test().ifStack, "");
    EXPECT_EQ(Test().elseStack, "T");
}

TEST_F(Walk, ANestedIfUnderAFalseOneIsFalseWithoutATest) {
    Do(kIfConditionCommand, kFalse);
    Do(kIfConditionCommand, kTrue);
    EXPECT_EQ(Test().ifStack, "FF");
    EXPECT_EQ(Test().elseStack, "FF");
    EXPECT_EQ(Test().ifFlag, 0);
}

TEST_F(Walk, AnIfWithoutAPictureIsFalse) {
    runner.Main().Reset();
    Do(kIfConditionCommand, "5,4,2,0,0,0,");  // counter A is 0
    EXPECT_EQ(Test().ifFlag, 0);
    EXPECT_EQ(Test().ifStack, "F");
}

TEST_F(Walk, ElseTurnsTheLastAnswer) {
    Do(kIfConditionCommand, kTrue);
    Do(kIfEndCommand);
    Do(kElseStartCommand);
    EXPECT_EQ(Test().ifFlag, 0);
    EXPECT_EQ(Test().ifStack, "F");
    Do(kElseEndCommand);
    EXPECT_EQ(Test().ifFlag, 1);
    EXPECT_EQ(Test().ifStack, "");
    EXPECT_EQ(Test().elseStack, "");

    Do(kIfConditionCommand, kFalse);
    Do(kIfEndCommand);
    Do(kElseStartCommand);
    EXPECT_EQ(Test().ifFlag, 1);
    EXPECT_EQ(Test().ifStack, "T");
    Do(kElseEndCommand);
    EXPECT_EQ(Test().ifStack, "");
    EXPECT_THAT(runner.messages, IsEmpty());
}

TEST_F(Walk, AnElseInsideOfAFalseIfStaysFalse) {
    Do(kIfConditionCommand, kFalse);
    Do(kIfConditionCommand, kFalse);
    Do(kIfEndCommand);
    Do(kElseStartCommand);
    EXPECT_EQ(Test().ifFlag, 0);
    EXPECT_EQ(Test().ifStack, "FF");
    Do(kElseEndCommand);
    EXPECT_EQ(Test().ifStack, "F");
    EXPECT_EQ(Test().ifFlag, 0);
}

TEST_F(Walk, CountErrorsAreTold) {
    Do(kElseStartCommand);
    EXPECT_THAT(runner.messages, ElementsAre("If - Else count error elsestart!"));
    runner.messages.clear();
    Test().ifStack = "TT";
    Test().elseStack = "T";
    Do(kElseEndCommand);
    EXPECT_THAT(runner.messages, ElementsAre("If - Else count error!"));
}

TEST_F(Walk, ANewIfForgetsAnElseThatNeverCame) {
    Do(kIfConditionCommand, kTrue);
    Do(kIfEndCommand);
    Do(kIfConditionCommand, kFalse);
    EXPECT_EQ(Test().ifStack, "F");
    EXPECT_EQ(Test().elseStack, "F");
}

TEST_F(Walk, FileIfsAskThePlaceInTheList) {
    runner.view.run.imageIndex = 0;
    runner.view.run.imageCount = 2;
    Do(kIfFirstFileCommand);
    EXPECT_EQ(Test().ifStack, "T");
    Do(kIfEndCommand);
    Do(kIfLastFileCommand);
    EXPECT_EQ(Test().ifStack, "F");
}

TEST_F(Walk, AloneOnTheSampleOnlyFileIfsSetTheFlag) {
    runner.view.run.mode = RunMode::OneCommand;
    runner.view.run.imageIndex = 1;
    Do(kIfConditionCommand, kFalse);
    EXPECT_EQ(Test().ifFlag, 1);
    Do(kIfFirstFileCommand);
    EXPECT_EQ(Test().ifFlag, 0);
    EXPECT_EQ(Test().ifStack, "");
}

TEST_F(Walk, BlockedIfsLeaveTheStacks) {
    for (int* flag : {&Test().exitFlag, &Test().subSkip}) {
        *flag = 1;
        Do(kIfConditionCommand, kFalse);
        Do(kIfEndCommand);
        Do(kElseStartCommand);
        Do(kElseEndCommand);
        EXPECT_EQ(Test().ifStack + Test().elseStack, "");
        *flag = 0;
    }
    Test().doFlag = 0;
    Do(kIfConditionCommand, kFalse);
    EXPECT_EQ(Test().ifStack, "");
}

TEST_F(Walk, DoWhileRemembersItsPlaceAndDoEndGoesBack) {
    Test().testPc = 7;
    Do(kDoWhileCommand, kTrue);
    EXPECT_EQ(Test().doReturn, 7);
    Test().testPc = 9;
    Do(kDoEndCommand);
    EXPECT_EQ(Test().testPc, 6);
    Do(kDoWhileCommand, kFalse);
    EXPECT_EQ(Test().doFlag, 0);
    Do(kDoEndCommand);
    EXPECT_EQ(Test().doFlag, 1);
    EXPECT_EQ(Test().doReturn, 0);
    Test().testPc = 3;
    Do(kDoEndCommand);
    EXPECT_EQ(Test().testPc, 3);
}

TEST_F(Walk, AFalseIfPassesDoWhileOver) {
    Test().ifFlag = 0;
    Do(kDoWhileCommand, kFalse);
    EXPECT_EQ(Test().doFlag, 1);
}

TEST_F(Walk, NumberedLoopsCountDown) {
    Test().testPc = 4;
    Do(kLoopStartCommand, "1,3,");
    EXPECT_EQ(Test().loopCount, 3);
    for (const int expected : {4, 4}) {
        Test().testPc = 9;
        Do(kLoopEndCommand);
        EXPECT_EQ(Test().testPc, expected);
    }
    Test().testPc = 9;
    Do(kLoopEndCommand);
    EXPECT_EQ(Test().testPc, 9);
}

TEST_F(Walk, SkippedLoopsCountNothing) {
    Test().ifFlag = 0;
    Do(kLoopStartCommand, "1,3,");
    EXPECT_EQ(Test().loopCount, 0);
    Test().loopCount = 3;
    Do(kLoopEndCommand);
    EXPECT_EQ(Test().loopCount, 3);
}

TEST_F(Walk, ExitRaisesItsFlagUnlessPassedOver) {
    Test().ifFlag = 0;
    Do(kExitCommand);
    EXPECT_EQ(Test().exitFlag, 0);
    Test().ifFlag = 1;
    runner.view.run.mode = RunMode::OneCommand;
    Do(kExitCommand);
    EXPECT_EQ(Test().exitFlag, 0);
    runner.view.run.mode = RunMode::WholeScript;
    Do(kExitCommand);
    EXPECT_EQ(Test().exitFlag, 1);
}

class SubroutineWalk : public Walk {
  protected:
    SubroutineWalk() {
        script::Script& script = runner.view.script.commands;
        script.Add("SUBROUTINE Execute", "1,\"S\",");
        script.Add("SUBROUTINE_START", "1,\"S\",");
        script.Add("Blur", "1,25,");
        script.Add("SUBROUTINE_END", "0");
    }
};

TEST_F(SubroutineWalk, ACallGoesToTheDefinition) {
    EXPECT_EQ(Do(kSubroutineExecuteCommand, "1,\"S\","), Outcome::Succeeded);
    EXPECT_EQ(Test().testPc, 1);
    EXPECT_EQ(Test().subDepth, 1);
    EXPECT_THAT(Test().subReturnList, ElementsAre(0));
}

TEST_F(SubroutineWalk, TheOldestReturnRestoresNothing) {
    Test().testPc = 0;
    Do(kSubroutineExecuteCommand, "1,\"S\",");
    Test().testPc = 2;
    Do(kSubroutineExecuteCommand, "1,\"S\",");
    EXPECT_THAT(Test().subReturnList, ElementsAre(0, 2));
    Test().testPc = 3;
    EXPECT_EQ(Do(kSubroutineEndCommand), Outcome::Succeeded);
    EXPECT_EQ(Test().testPc, 2);
    Test().testPc = 3;
    EXPECT_EQ(Do(kSubroutineEndCommand), Outcome::Succeeded);
    EXPECT_EQ(Test().testPc, 3);
    EXPECT_EQ(Test().subDepth, 0);
}

TEST_F(SubroutineWalk, ANameDefinedTwiceIsEnteredAtItsLastDefinition) {
    runner.view.script.commands.Add("SUBROUTINE_START", "1,\"S\",");
    Do(kSubroutineExecuteCommand, "1,\"S\",");
    EXPECT_EQ(Test().testPc, 4);
    EXPECT_THAT(Test().subReturnList, ElementsAre(0, 1));
    EXPECT_EQ(Test().subDepth, 2);
}

TEST_F(SubroutineWalk, AnUnknownNameFails) {
    EXPECT_EQ(Do(kSubroutineExecuteCommand, "1,\"T\","), Outcome::Failed);
    EXPECT_THAT(runner.messages,
                ElementsAre("Cmd_77 Called subroutine not found (need to load first), L4585: "));
}

TEST_F(SubroutineWalk, ACallNeedsAPicture) {
    runner.Main().Reset();
    EXPECT_EQ(Do(kSubroutineExecuteCommand, "1,\"S\","), Outcome::Failed);
    runner.view.run.mode = RunMode::OneCommand;
    EXPECT_EQ(Do(kSubroutineExecuteCommand, "1,\"S\","), Outcome::Succeeded);
}

TEST_F(SubroutineWalk, AWalkFromAboveSkipsTheBody) {
    Do(kSubroutineStartCommand, "1,\"S\",");
    EXPECT_EQ(Test().subSkip, 1);
    Do(kSubroutineEndCommand);
    EXPECT_EQ(Test().subSkip, 0);
}

TEST_F(SubroutineWalk, AReturnWithoutACallFails) {
    EXPECT_EQ(Do(kSubroutineEndCommand), Outcome::Failed);
    ASSERT_EQ(runner.messages.size(), 1U);
    EXPECT_THAT(
        runner.messages[0],
        testing::StartsWith("Cmd_79 Return from Subroutine without entry L4634  IS_error "));
}

TEST_F(SubroutineWalk, SkippedSubroutineCommandsDoNothing) {
    Test().exitFlag = 1;
    Do(kSubroutineStartCommand, "1,\"S\",");
    EXPECT_EQ(Test().subSkip, 0);
    EXPECT_EQ(Do(kSubroutineEndCommand), Outcome::Succeeded);
    Do(kSubroutineExecuteCommand, "1,\"S\",");
    EXPECT_EQ(Test().subDepth, 0);
}

}  // namespace
}  // namespace lumo::engine::flow
