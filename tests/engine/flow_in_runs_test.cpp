// What steers whole runs: Exit, the IF that ask for a place in the list, and the abort.

#include <gmock/gmock.h>

#include <atomic>

#include "run_fixture.h"

namespace lumo::engine {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

class FlowInRuns : public RunFixture {};

TEST_F(FlowInRuns, ExitWritesNothingForThisImage) {
    AddPicture("1.png", {40, 30});
    AddPicture("2.png", {100, 30});
    AddPicture("3.png", {40, 30});
    AddStart();
    Add(names::kIfCondition, "5,1,0,50,0,0,");  // wider than 50
    Add(names::kExit);
    Add(names::kIfEnd);
    AddOutput();
    Add(names::kEndImageLoop);
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(Out(), ElementsAre("1.png", "3.png"));
    EXPECT_EQ(view.run.errorCount, 0);
}

TEST_F(FlowInRuns, ExitBehindTheLoopEndsTheRun) {
    AddPicture("1.png");
    AddStart();
    Add(names::kEndImageLoop);
    Add(names::kExit);
    AddOutput();
    ASSERT_TRUE(RunHere());
    EXPECT_FALSE(fs::exists(folder / "out"));
    EXPECT_EQ(view.run.fatalCode, 0);
}

TEST_F(FlowInRuns, ExitInASubroutineTakesTheNextImageFromBeforeTheLoopToo) {
    AddPicture("1.png");
    Add(names::kSubroutineExecute, "1,\"S\",");
    Add(names::kCounter, "3,1,1,0,");  // never reached
    AddStart();
    Add(names::kIfCondition, "5,4,2,0,0,0,");
    AddOutput();
    Add(names::kIfEnd);
    Add(names::kEndImageLoop);
    Add(names::kSubroutineStart, "1,\"S\",");
    Add(names::kExit);
    Add(names::kSubroutineEnd);
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(Out(), ElementsAre("1.png"));
}

TEST_F(FlowInRuns, FileIfsHoldForTheFirstAndTheLastImage) {
    for (const char* name : {"1.png", "2.png", "3.png"}) AddPicture(name);
    AddStart();
    Add(names::kIfFirstFile);
    AddOutput("png,0,3,,first,0,0,1,");
    Add(names::kIfEnd);
    Add(names::kIfLastFile);
    AddOutput("png,0,3,,last,0,0,1,");
    Add(names::kIfEnd);
    Add(names::kEndImageLoop);
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(Out(), ElementsAre("first.png", "last.png"));
    EXPECT_EQ(view.run.statOutputs, 2);
}

/// Presses Abort while the so-manieth command is at work.
class AbortingInterface : public test::RecordingInterface {
  public:
    void ShowWaitCursor(bool on) override {
        if (on && ++commands == abortAt) *keepRunning = 0;
    }
    std::atomic<int>* keepRunning = nullptr;
    int abortAt = 0, commands = 0;
};

TEST_F(FlowInRuns, AnAbortEndsWithTheCommandInHand) {
    Add(names::kDoWhile, "5,4,2,0,0,0,");  // counter A stays 0: without an end
    Add(names::kCounter, "3,1,1,1,");
    Add(names::kDoEnd);
    MakeScript();
    AbortingInterface interface;
    CLumoscriptView endless(interface);
    endless.settings = view.settings;
    endless.script.commands = view.script.commands;
    interface.keepRunning = &endless.run.keepRunning;
    interface.abortAt = 1000;
    ASSERT_TRUE(PrepareBatch(endless));
    EXPECT_EQ(RunThreadEntry(endless), 1);
    EXPECT_EQ(interface.commands, 1000);
}

}  // namespace
}  // namespace lumo::engine
