#include "engine/dispatch.h"

#include <gmock/gmock.h>

#include "engine/command_table.h"
#include "script/catalogue.h"
#include "script/names.h"
#include "support/command_runner.h"

namespace lumo::engine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

int calls = 0;

Outcome CountCall(CLumoscriptView&, const script::Fields&) {
    ++calls;
    return Outcome::Succeeded;
}
Outcome Fail(CLumoscriptView& view, const script::Fields&) {
    OnCommandFailure(view, "Cmd_00 Test: ", LibraryError::Omit);
    return Outcome::Failed;
}

constexpr Command kPlain{
    .spec = {.name = "Plain"}, .opening = openings::kStandard, .run = CountCall};
constexpr Command kNoImage{
    .spec = {.name = "NoImage"}, .opening = openings::kNoImage, .run = CountCall};
constexpr Command kSkipAlways{
    .spec = {.name = "SkipAlways"}, .opening = openings::kSkipAlways, .run = CountCall};
constexpr Command kNoSkip{
    .spec = {.name = "NoSkip"}, .opening = openings::kNoSkip, .run = CountCall};
constexpr Command kOwnFlow{
    .spec = {.name = "OwnFlow"}, .opening = openings::kOwnFlow, .run = CountCall};
constexpr Command kFailing{
    .spec = {.name = "Failing"}, .opening = openings::kStandard, .run = Fail};

class DispatchTest : public testing::Test {
  protected:
    void SetUp() override { calls = 0; }
    test::CommandRunner runner{test::CoordinateImage({4, 4})};
};

TEST_F(DispatchTest, TableHoldsTheCatalogueInItsOrder) {
    const auto table = CommandTable();
    const auto catalogue = script::Catalogue();
    ASSERT_EQ(table.size(), catalogue.size());
    for (std::size_t i = 0; i < table.size(); ++i) {
        EXPECT_EQ(table[i].name, catalogue[i].name);
        if (table[i].command != nullptr) {
            EXPECT_EQ(table[i].command->spec.name, table[i].name);
        }
    }
}

TEST_F(DispatchTest, NamesAreComparedExactly) {
    ASSERT_NE(FindCommand("Blur_more"), nullptr);
    EXPECT_EQ(FindCommand("Blur_more")->spec.name, "Blur_more");
    EXPECT_EQ(FindCommand("Flip - vertical "), nullptr);
    EXPECT_EQ(FindCommand("END image loop"), nullptr);
    EXPECT_EQ(FindCommand("Blur more"), nullptr);
    EXPECT_EQ(ExecuteCommand(runner.view, "Blur more", "1,75,"), Outcome::Failed);
    EXPECT_EQ(ExecuteCommand(runner.view, "blur", "1,25,"), Outcome::Failed);
    EXPECT_THAT(runner.messages, IsEmpty());
}

TEST_F(DispatchTest, AnUnknownNameInARunMovesOn) {
    RunState& run = runner.view.run;
    run.list.Add("Nothing", "0");
    run.nextPc[0] = 1;
    run.inRun = true;
    EXPECT_EQ(ExecuteCommand(runner.view, "Nothing", "0"), Outcome::Failed);
    EXPECT_EQ(run.pc, 1);
    EXPECT_EQ(run.prevPc, 0);
}

TEST_F(DispatchTest, ARunMovesOnBeforeTheHandler) {
    EXPECT_EQ(runner.ExecuteInRun(kFailing, "0"), Outcome::Failed);
    EXPECT_EQ(runner.view.run.pc, 1);
    EXPECT_EQ(runner.view.run.prevPc, 0);
}

TEST_F(DispatchTest, BlockCommandsMoveThemselves) {
    runner.ExecuteInRun(kOwnFlow, "0");
    EXPECT_EQ(runner.view.run.pc, 0);
    EXPECT_EQ(calls, 1);
}

TEST_F(DispatchTest, TheSkipTestHoldsOutsideOfARun) {
    runner.view.test.ifFlag = 0;
    EXPECT_TRUE(runner.Run(kPlain, "0"));
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(runner.Run(kNoSkip, "0"));
    EXPECT_EQ(calls, 1);
}

TEST_F(DispatchTest, EachFlagOfTheTestWalkSkips) {
    const auto skips = [](auto set) {
        test::RecordingInterface ui;
        CLumoscriptView view(ui);
        set(view.test);
        return SkipTest(view);
    };
    EXPECT_FALSE(skips([](TestWalk&) {}));
    EXPECT_TRUE(skips([](TestWalk& t) { t.ifFlag = 0; }));
    EXPECT_TRUE(skips([](TestWalk& t) { t.doFlag = 0; }));
    EXPECT_TRUE(skips([](TestWalk& t) { t.exitFlag = 1; }));
    EXPECT_TRUE(skips([](TestWalk& t) { t.subSkip = 1; }));
}

TEST_F(DispatchTest, InARunOnlyTwoCommandsAskTheSkipTest) {
    runner.view.test.ifFlag = 0;
    EXPECT_EQ(runner.ExecuteInRun(kPlain, "0"), Outcome::Succeeded);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(runner.ExecuteInRun(kSkipAlways, "0"), Outcome::Succeeded);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(runner.view.run.pc, 1);  // skipped, but past it
}

TEST_F(DispatchTest, WithoutAPictureTheCommandFailsAndTheLogsSaySo) {
    runner.Main().Reset();
    runner.view.run.endIdx = 5;
    EXPECT_EQ(runner.ExecuteInRun(kPlain, "0"), Outcome::Failed);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(runner.view.run.pc, 1);
    EXPECT_THAT(runner.view.logs.batch, testing::Contains("Error: empty main image buffer"));
    EXPECT_THAT(runner.view.logs.error, testing::Contains("Error: empty main image buffer"));
    EXPECT_EQ(runner.ExecuteInRun(kNoImage, "0"), Outcome::Succeeded);
    EXPECT_EQ(calls, 1);
}

TEST_F(DispatchTest, AFailureIsAMessageOutsideOfARun) {
    ASSERT_FALSE(imaging::Image::TryCreate({0, 0}));  // leaves its reason
    OnCommandFailure(runner.view, "Cmd_37 Flip Horz L2906: ", LibraryError::Append);
    EXPECT_THAT(runner.messages,
                ElementsAre("Cmd_37 Flip Horz L2906:   IS_error a picture needs a positive width "
                            "and height"));
}

TEST_F(DispatchTest, AFailureIsALineInBothLogsInARun) {
    runner.ExecuteInRun(kFailing, "0");
    EXPECT_THAT(runner.messages, IsEmpty());
    EXPECT_THAT(runner.view.logs.batch, ElementsAre("Cmd_00 Test: "));
    EXPECT_THAT(runner.view.logs.error, ElementsAre("Cmd_00 Test: "));
    EXPECT_EQ(runner.view.run.failureReports, 1);
}

TEST_F(DispatchTest, SwitchedOffLogsTakeNoFailures) {
    runner.view.settings.logs.errors = false;
    runner.view.settings.logs.errorLog = false;
    runner.ExecuteInRun(kFailing, "0");
    EXPECT_THAT(runner.view.logs.batch, IsEmpty());
    EXPECT_THAT(runner.view.logs.error, IsEmpty());
    runner.view.run.forceErrorLog = true;
    runner.ExecuteInRun(kFailing, "0");
    EXPECT_THAT(runner.view.logs.error, ElementsAre("Cmd_00 Test: "));
}

TEST_F(DispatchTest, ReplacingTheImageShowsItsSizeOutsideOfARunOnly) {
    ReplaceMainImage(runner.view, test::CoordinateImage({7, 3}));
    EXPECT_THAT(runner.ui.sizeTexts, ElementsAre("7x3"));
    runner.view.run.batchRunning = true;
    ReplaceMainImage(runner.view, test::CoordinateImage({8, 3}));
    EXPECT_THAT(runner.ui.sizeTexts, ElementsAre("7x3"));
    EXPECT_EQ(runner.Main().Width(), 8);
}

TEST(Random, FollowsTheFixedGenerator) {
    Random random;
    random.Seed(2);
    // state = state * 214013 + 2531011, bits 16 to 30
    EXPECT_EQ(random.Next(), (2U * 214013U + 2531011U) >> 16 & 0x7fffU);
    EXPECT_EQ(random.Next(), 29216);
}

}  // namespace
}  // namespace lumo::engine
