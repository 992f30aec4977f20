// Block commands in a batch run, where the tables move them.

#include <gmock/gmock.h>

#include "engine/flow/flow_commands.h"
#include "support/flow_runner.h"

namespace lumo::engine {
namespace {

namespace names = script::names;
using test::CommandList;
using test::FlowRunner;
using testing::ElementsAre;

const std::string kTrueIf = "5,1,3,640,0,0,";   // width >= 640
const std::string kFalseIf = "5,1,0,640,0,0,";  // width > 640
const std::string kAddOneToA = "3,1,1,0,";
std::string Named(std::string_view name) {
    return std::string(name);
}
std::string AddOne(int counter) {
    return "3,1,1," + std::to_string(counter) + ",";
}

TEST(FlowRun, ATrueIfRunsItsBodyAndStepsOverItsElse) {
    FlowRunner flow({{Named(names::kIfCondition), kTrueIf},
                     {Named(names::kCounter), AddOne(0)},
                     {Named(names::kIfEnd), "0"},
                     {Named(names::kElseStart), "0"},
                     {Named(names::kCounter), AddOne(1)},
                     {Named(names::kElseEnd), "0"},
                     {Named(names::kCounter), AddOne(2)}});
    flow.Walk();
    EXPECT_THAT(flow.trace, ElementsAre(0, 1, 2, 6));
}

TEST(FlowRun, AFalseIfRunsItsElse) {
    FlowRunner flow({{Named(names::kIfCondition), kFalseIf},
                     {Named(names::kCounter), AddOne(0)},
                     {Named(names::kIfEnd), "0"},
                     {Named(names::kElseStart), "0"},
                     {Named(names::kCounter), AddOne(1)},
                     {Named(names::kElseEnd), "0"},
                     {Named(names::kCounter), AddOne(2)}});
    flow.Walk();
    EXPECT_THAT(flow.trace, ElementsAre(0, 3, 4, 5, 6));
}

TEST(FlowRun, FileIfsLookAtThePlaceInTheList) {
    const CommandList list{{Named(names::kIfFirstFile), "0"},   {Named(names::kCounter), AddOne(0)},
                           {Named(names::kIfEnd), "0"},         {Named(names::kIfLastFile), "0"},
                           {Named(names::kCounter), AddOne(1)}, {Named(names::kIfEnd), "0"}};
    const auto counts = [&](int index) {
        FlowRunner flow(list);
        flow.Run().imageCount = 3;
        flow.Run().imageIndex = index;
        flow.Walk();
        EXPECT_EQ(flow.View().test.ifFlag, 1);  // untouched
        return std::pair(flow.Counter('A'), flow.Counter('B'));
    };
    EXPECT_EQ(counts(0), std::pair(1, 0));
    EXPECT_EQ(counts(1), std::pair(0, 0));
    EXPECT_EQ(counts(2), std::pair(0, 1));
}

TEST(FlowRun, DoWhileRepeatsWhileItsConditionHolds) {
    FlowRunner flow({{Named(names::kDoWhile), "5,4,1,3.0,0,0,"},  // counter A < 3
                     {Named(names::kCounter), kAddOneToA},
                     {Named(names::kDoEnd), "0"}});
    flow.Walk();
    EXPECT_EQ(flow.Counter('A'), 3);
    EXPECT_EQ(flow.Count(1), 3);
    EXPECT_EQ(flow.Count(0), 4);
}

TEST(FlowRun, DoWhileThatIsFalseAtFirstSkipsItsBody) {
    FlowRunner flow({{Named(names::kDoWhile), "5,4,0,3.0,0,0,"},
                     {Named(names::kCounter), kAddOneToA},
                     {Named(names::kDoEnd), "0"},
                     {Named(names::kCounter), AddOne(1)}});
    flow.Walk();
    EXPECT_THAT(flow.trace, ElementsAre(0, 3));
}

TEST(FlowRun, NumberedLoopsRunOnceAtLeast) {
    for (const auto& [field, passes] : std::vector<std::pair<std::string, int>>{
             {"3", 3}, {"1", 1}, {"0", 1}, {"-5", 1}, {"x", 1}, {"", 1}}) {
        FlowRunner flow({{Named(names::kLoopStart), "1," + field + ","},
                         {Named(names::kCounter), kAddOneToA},
                         {Named(names::kLoopEnd), "0"}});
        flow.Walk();
        EXPECT_EQ(flow.Counter('A'), passes) << field;
        flow.Walk();  // the start sets the count anew
        EXPECT_EQ(flow.Counter('A'), 2 * passes) << field;
    }
}

TEST(FlowRun, AnOuterNumberedLoopGoesBackToTheInnerStart) {
    FlowRunner flow({{Named(names::kLoopStart), "1,3,"},
                     {Named(names::kCounter), AddOne(0)},
                     {Named(names::kLoopStart), "1,2,"},
                     {Named(names::kCounter), AddOne(1)},
                     {Named(names::kLoopEnd), "0"},
                     {Named(names::kCounter), AddOne(2)},
                     {Named(names::kLoopEnd), "0"}});
    flow.Walk();
    EXPECT_EQ(flow.Counter('A'), 1);  // the outer loop runs once
    EXPECT_EQ(flow.Counter('B'), 2);
    EXPECT_EQ(flow.Counter('C'), 1);
}

TEST(FlowRun, MeasuredItemsOfAnIfRangeGoToTheOtherFlag) {
    // "Colors used" in range form: false, yet the branch follows the old ifFlag.
    FlowRunner flow({{Named(names::kIfCondition), "5,11,0,1.0,2.0,1,"},
                     {Named(names::kCounter), AddOne(0)},
                     {Named(names::kIfEnd), "0"}});
    flow.Walk();
    EXPECT_EQ(flow.View().test.doFlag, 0);
    EXPECT_EQ(flow.View().test.ifFlag, 1);
    EXPECT_EQ(flow.Counter('A'), 1);
}

TEST(FlowRun, MeasuredItemsOfADoTestGoToTheOtherFlag) {
    FlowRunner flow({{Named(names::kDoWhile), "5,9,0,300.0,0,0,"},
                     {Named(names::kCounter), AddOne(0)},
                     {Named(names::kDoEnd), "0"}});
    flow.View().test.doFlag = 0;
    flow.View().test.ifFlag = 1;
    flow.Walk();
    EXPECT_EQ(flow.View().test.ifFlag, 0);
    EXPECT_EQ(flow.View().test.doFlag, 0);
    EXPECT_EQ(flow.Counter('A'), 0);
}

TEST(FlowRun, UnknownConditionLeavesTheFlag) {
    FlowRunner flow(
        {{Named(names::kIfCondition), "5,99,0,1.0,2.0,0,"}, {Named(names::kIfEnd), "0"}});
    flow.View().test.ifFlag = 0;
    flow.Walk();
    EXPECT_EQ(flow.View().test.ifFlag, 0);
}

CommandList WithSubroutine(const CommandList& caller, const CommandList& body) {
    CommandList list{{Named(names::kStartImageLoop), "0"}};
    list.insert(list.begin(), caller.begin(), caller.end());
    list.push_back({Named(names::kEndImageLoop), "0"});
    list.push_back({Named(names::kSubroutineStart), "1,\"S\","});
    list.insert(list.end(), body.begin(), body.end());
    list.push_back({Named(names::kSubroutineEnd), "0"});
    return list;
}

TEST(FlowRun, CountersAreLocalToASubroutineButForFAndG) {
    CommandList body;
    for (int counter = 0; counter < 10; ++counter)
        body.push_back({Named(names::kCounter), "3,1,100," + std::to_string(counter) + ","});
    FlowRunner flow(WithSubroutine({{Named(names::kSubroutineExecute), "1,\"S\","}}, body));
    for (int counter = 0; counter < 10; ++counter)
        flow.View().counters[static_cast<std::size_t>(counter)] = counter + 1;
    flow.Walk();
    EXPECT_THAT(flow.View().counters, ElementsAre(1, 2, 3, 4, 5, 106, 6, 8, 9, 10));
    EXPECT_EQ(flow.Run().stackIndex, 0);
}

TEST(FlowRun, ALoopSurvivesTheCallOfASubroutineWithALoop) {
    FlowRunner flow(WithSubroutine({{Named(names::kLoopStart), "1,3,"},
                                    {Named(names::kSubroutineExecute), "1,\"S\","},
                                    {Named(names::kLoopEnd), "0"}},
                                   {{Named(names::kLoopStart), "1,2,"},
                                    {Named(names::kCounter), AddOne(5)},
                                    {Named(names::kLoopEnd), "0"}}));
    flow.Walk();
    EXPECT_EQ(flow.Counter('F'), 6);
    EXPECT_EQ(flow.Run().stackIndex, 0);
}

TEST(FlowRun, EndlessRecursionOverflows) {
    FlowRunner flow(WithSubroutine({{Named(names::kSubroutineExecute), "1,\"S\","}},
                                   {{Named(names::kSubroutineExecute), "1,\"T\","}}));
    // A subroutine is sought downwards only, so a second one closes the circle by its own table.
    RunState& run = flow.Run();
    const int inner = run.list.Find(names::kSubroutineStart) + 1;
    run.nextPc[static_cast<std::size_t>(inner)] = inner;
    flow.Walk();
    EXPECT_EQ(run.pc, 8080);
    EXPECT_EQ(run.stackIndex, 0);
    EXPECT_EQ(flow.Count(inner), 196);  // 12 words a frame, the 197th call passes 2360
}

TEST(FlowRun, ReturnWithoutACallEndsTheRun) {
    FlowRunner flow({{Named(names::kSubroutineEnd), "0"}});
    flow.Run().stack[0] = -1;
    flow.Walk();
    EXPECT_EQ(flow.Run().pc, -1);
}

TEST(FlowRun, ExitLeavesTheRestOfTheImage) {
    FlowRunner flow({{Named(names::kStartImageLoop), "0"},
                     {Named(names::kExit), "0"},
                     {Named(names::kCounter), AddOne(0)},
                     {Named(names::kEndImageLoop), "0"}});
    flow.Run().pc = 1;
    flow.Run().inRun = true;
    ExecuteCommand(flow.View(), names::kExit, "0");
    EXPECT_EQ(flow.Run().pc, 0);
}

TEST(FlowRun, ExitInASubroutineTakesTheNextImageWhileTheLoopLasts) {
    FlowRunner flow({{Named(names::kStartImageLoop), "0"},
                     {Named(names::kEndImageLoop), "0"},
                     {Named(names::kExit), "0"}});
    RunState& run = flow.Run();
    run.inRun = true;
    run.pc = 2;
    run.stackIndex = 12;
    ExecuteCommand(flow.View(), names::kExit, "0");
    EXPECT_EQ(run.pc, 0);
    run.pc = 2;
    run.imageLoopOver = true;
    ExecuteCommand(flow.View(), names::kExit, "0");
    EXPECT_EQ(run.pc, 3);
    run.pc = 2;
    run.imageLoopOver = false;
    run.imageIndex = -1;  // before the first image the loop is not over either
    ExecuteCommand(flow.View(), names::kExit, "0");
    EXPECT_EQ(run.pc, 0);
    run.pc = 2;
    run.stackIndex = 0;
    ExecuteCommand(flow.View(), names::kExit, "0");
    EXPECT_EQ(run.pc, 3);
}

TEST(Counter, ResetsAndAdds) {
    test::CommandRunner runner{imaging::Image()};
    auto& counters = runner.view.counters;
    EXPECT_TRUE(runner.Run(flow::kCounterCommand, "3,0,5,2,"));
    EXPECT_EQ(counters[2], 5);
    EXPECT_TRUE(runner.Run(flow::kCounterCommand, "3,1,-7,2,"));
    EXPECT_EQ(counters[2], -2);
    EXPECT_TRUE(runner.Run(flow::kCounterCommand, "3,0,9,10,"));
    EXPECT_TRUE(runner.Run(flow::kCounterCommand, "3,0,9,,"));
    EXPECT_THAT(counters, ElementsAre(0, 0, -2, 0, 0, 0, 0, 0, 0, 0));
    counters[0] = 2147483647;
    EXPECT_TRUE(runner.Run(flow::kCounterCommand, "3,1,1,0,"));
    EXPECT_EQ(counters[0], -2147483648);
}

TEST(FlowRun, AScriptInfoIsPassedOver) {
    FlowRunner flow(
        {{Named(names::kScriptInfo), "7,a,b,c,d,e,f,g,"}, {Named(names::kCounter), AddOne(0)}});
    flow.Walk();
    EXPECT_THAT(flow.trace, ElementsAre(0, 1));
}

TEST(FlowRun, FallingOnADefinitionStepsOverItsBody) {
    FlowRunner flow({{Named(names::kSubroutineStart), "1,\"S\","},
                     {Named(names::kCounter), AddOne(0)},
                     {Named(names::kSubroutineEnd), "0"},
                     {Named(names::kCounter), AddOne(1)}});
    flow.Walk();
    EXPECT_THAT(flow.trace, ElementsAre(0, 3));
}

TEST(FlowRun, ACallGoesBehindTheDefinitionAndComesBackBehindItself) {
    FlowRunner flow(WithSubroutine(
        {{Named(names::kSubroutineExecute), "1,\"S\","}, {Named(names::kCounter), AddOne(0)}},
        {{Named(names::kCounter), AddOne(1)}}));
    flow.Walk();
    EXPECT_THAT(flow.trace, ElementsAre(0, 5, 6, 1, 2));
}

TEST(FlowRun, ACallThatFindsNothingBelowFallsThrough) {
    FlowRunner flow({{Named(names::kSubroutineExecute), "1,\"S\","},
                     {Named(names::kSubroutineStart), "1,\"s\","},
                     {Named(names::kSubroutineEnd), "0"}});
    flow.Walk();
    EXPECT_THAT(flow.trace, ElementsAre(0, 1));
    EXPECT_EQ(flow.Run().stackIndex, 12);  // its frame stays
}

TEST(FlowRun, AFrameHoldsCountersLoopsAndTheWayBack) {
    FlowRunner flow(WithSubroutine({{Named(names::kLoopStart), "1,9,"},
                                    {Named(names::kSubroutineExecute), "1,\"S\","},
                                    {Named(names::kLoopEnd), "0"}},
                                   {{Named(names::kCounter), AddOne(0)}}));
    RunState& run = flow.Run();
    for (int counter = 0; counter < 10; ++counter)
        flow.View().counters[static_cast<std::size_t>(counter)] = 10 * counter;
    run.inRun = true;
    for (int place : {0, 1}) {
        run.pc = place;
        ExecuteCommand(flow.View(), run.list.NameAt(place), run.list.ParamsAt(place));
    }
    const std::vector<std::int32_t> frame(run.stack.begin(),
                                          run.stack.begin() + run.stackIndex + 1);
    // Word 0 is the bottom; then A to J, the passes that remain, their Loop End, how many loops,
    // and the command behind the call.
    EXPECT_THAT(frame, ElementsAre(-1, 0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 9, 2, 1, 2));
}

TEST(FlowRun, AMeasuredItemAnswersToItsOwnFlagInTheOtherForm) {
    FlowRunner flow({{Named(names::kIfCondition), "5,11,0,1e9,2.0,0,"},  // colours > 1e9
                     {Named(names::kCounter), AddOne(0)},
                     {Named(names::kIfEnd), "0"},
                     {Named(names::kDoWhile), "5,11,0,1e9,2e9,1,"},
                     {Named(names::kCounter), AddOne(0)},
                     {Named(names::kDoEnd), "0"}});
    flow.View().working.main = test::CoordinateImage({4, 3});
    flow.Walk();
    EXPECT_THAT(flow.trace, ElementsAre(0, 3));
    EXPECT_EQ(flow.View().test.ifFlag, 0);
    EXPECT_EQ(flow.View().test.doFlag, 0);
}

TEST(FlowRun, EachMeasuredItemGoesAstrayInItsForm) {
    for (const char* item : {"9", "10", "11"}) {
        const std::string range = std::string("5,") + item + ",0,1e8,1e9,1,";  // false
        FlowRunner flow({{Named(names::kIfCondition), range},
                         {Named(names::kIfEnd), "0"},
                         {Named(names::kDoWhile), std::string("5,") + item + ",0,1e9,0,0,"},
                         {Named(names::kDoEnd), "0"}});
        flow.View().working.main = test::CoordinateImage({4, 3});
        flow.Walk(2);
        EXPECT_EQ(flow.View().test.doFlag, 0) << item;  // of the IF
        EXPECT_EQ(flow.View().test.ifFlag, 1) << item;
        flow.Run().pc = 2;
        flow.Run().inRun = true;
        ExecuteCommand(flow.View(), names::kDoWhile, flow.Run().list.ParamsAt(2));
        EXPECT_EQ(flow.View().test.ifFlag, 0) << item;  // of the DO_WHILE
        EXPECT_EQ(flow.Run().pc, 4) << item;            // as doFlag was
    }
}

}  // namespace
}  // namespace lumo::engine
