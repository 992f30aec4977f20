#include "engine/flow/condition.h"

#include <gtest/gtest.h>

#include "imaging/measures.h"
#include "support/command_runner.h"

namespace lumo::engine::flow {
namespace {

using test::CommandRunner;

std::optional<bool> Evaluate(CommandRunner& runner, std::string_view params) {
    return EvaluateCondition(runner.view, script::ParseParams(params));
}

class ConditionTest : public testing::Test {
  protected:
    CommandRunner runner{test::CoordinateImage({640, 480})};
};

TEST_F(ConditionTest, WidthAgainstAValueInEveryTest) {
    EXPECT_EQ(Evaluate(runner, "5,1,3,640,0,0,"), true);
    EXPECT_EQ(Evaluate(runner, "5,1,0,640,0,0,"), false);
    EXPECT_EQ(Evaluate(runner, "5,1,0,639.5,0,0,"), true);
    EXPECT_EQ(Evaluate(runner, "5,1,1,641,0,0,"), true);
    EXPECT_EQ(Evaluate(runner, "5,1,1,640,0,0,"), false);
    EXPECT_EQ(Evaluate(runner, "5,1,2,640.0,0,0,"), true);
    EXPECT_EQ(Evaluate(runner, "5,1,4,640,0,0,"), true);
    EXPECT_EQ(Evaluate(runner, "5,1,4,639,0,0,"), false);
}

TEST_F(ConditionTest, EveryTestOfACounterAndOfTheColours) {
    runner.view.counters[0] = 12;
    runner.Main() = test::CoordinateImage({4, 3});  // twelve colours
    for (const char* item : {"4", "11"}) {
        const auto holds = [&](const char* test, const char* value) {
            return Evaluate(runner, std::string("5,") + item + "," + test + "," + value + ",0,0,");
        };
        EXPECT_EQ(holds("0", "11.9"), true);  // each value is cut first
        EXPECT_EQ(holds("0", "12"), false);
        EXPECT_EQ(holds("1", "13"), true);
        EXPECT_EQ(holds("1", "12.9"), false);
        EXPECT_EQ(holds("2", "12.9"), true);
        EXPECT_EQ(holds("2", "13"), false);
        EXPECT_EQ(holds("3", "12.9"), true);
        EXPECT_EQ(holds("3", "13"), false);
        EXPECT_EQ(holds("4", "12"), true);
        EXPECT_EQ(holds("4", "11.9"), false);
    }
    // The bounds of a range are cut for counters only.
    EXPECT_EQ(Evaluate(runner, "5,4,0,11.9,12.0,1,"), true);
    EXPECT_EQ(Evaluate(runner, "5,11,0,11.9,12.0,1,"), true);
    EXPECT_EQ(Evaluate(runner, "5,4,0,12.5,13.0,1,"), false);
    EXPECT_EQ(Evaluate(runner, "5,11,0,11.0,11.9,1,"), false);
}

TEST_F(ConditionTest, ValuesBeyondAnIntegerStayBeyondEveryCounter) {
    runner.view.counters[0] = 2147483647;
    EXPECT_EQ(Evaluate(runner, "5,4,3,1e20,0,0,"), true);  // cut to the largest integer
    EXPECT_EQ(Evaluate(runner, "5,4,0,-1e20,0,0,"), true);
}

TEST_F(ConditionTest, AnyTextButNoughtIsTheRangeForm) {
    EXPECT_EQ(Evaluate(runner, "5,1,1,600,700,1,"), true);
    EXPECT_EQ(Evaluate(runner, "5,1,1,600,700,x,"), true);
    EXPECT_EQ(Evaluate(runner, "4,1,1,600,700,"), true);  // missing
    EXPECT_EQ(Evaluate(runner, "5,1,1,600,700,0,"), false);
}

TEST_F(ConditionTest, UnreadableNumbersAreNought) {
    EXPECT_EQ(Evaluate(runner, "5,1,0,wide,0,0,"), true);  // width > 0
    EXPECT_EQ(Evaluate(runner, "5,x,x,1.3,0,0,"), true);   // aspect > 1.3
}

TEST_F(ConditionTest, HeightAreaAndAspect) {
    EXPECT_EQ(Evaluate(runner, "5,2,2,480,0,0,"), true);
    EXPECT_EQ(Evaluate(runner, "5,3,2,307200,0,0,"), true);
    EXPECT_EQ(Evaluate(runner, "5,0,0,1.333,0,0,"), true);
    EXPECT_EQ(Evaluate(runner, "5,0,1,1.334,0,0,"), true);
}

TEST(Condition, RangeExcludesItsLowerAndIncludesItsUpperBound) {
    CommandRunner square(test::CoordinateImage({100, 100}));
    CommandRunner wide(test::CoordinateImage({200, 100}));
    EXPECT_EQ(Evaluate(square, "5,0,0,1.0,2.0,1,"), false);
    EXPECT_EQ(Evaluate(wide, "5,0,0,1.0,2.0,1,"), true);
}

TEST_F(ConditionTest, CountersCompareAsIntegers) {
    runner.view.counters[0] = 2;
    EXPECT_EQ(Evaluate(runner, "5,4,2,2.9,0,0,"), true);  // cut to 2
    CommandRunner tiny(test::CoordinateImage({2, 2}));
    EXPECT_EQ(Evaluate(tiny, "5,1,2,2.9,0,0,"), false);  // a width is not
    EXPECT_EQ(Evaluate(runner, "5,4,0,1.0,2.9,1,"), true);
    EXPECT_EQ(Evaluate(runner, "5,4,0,2.9,9,1,"), false);  // above 2
    EXPECT_EQ(Evaluate(runner, "5,4,2,-2.9,0,0,"), false);
    runner.view.counters[0] = -2;
    EXPECT_EQ(Evaluate(runner, "5,4,2,-2.9,0,0,"), true);  // toward zero
}

TEST_F(ConditionTest, EachCounterHasItsCode) {
    const int codes[] = {4, 5, 6, 7, 8, 12, 13, 14, 15, 16};
    for (int counter = 0; counter < 10; ++counter) {
        runner.view.counters.fill(0);
        runner.view.counters[static_cast<std::size_t>(counter)] = 77;
        for (int other = 0; other < 10; ++other)
            EXPECT_EQ(Evaluate(runner, "5," + std::to_string(codes[other]) + ",2,77,0,0,"),
                      other == counter);
    }
}

TEST(Condition, BrightnessOfWhiteStaysBelow229) {
    CommandRunner white(test::FlatImage({5, 4}, {255, 255, 255}));
    EXPECT_EQ(Evaluate(white, "5,9,0,229,0,0,"), false);
    EXPECT_EQ(Evaluate(white, "5,9,0,228.7,0,0,"), true);
    EXPECT_DOUBLE_EQ(imaging::ImageBrightness(white.Main().View()), 228.735);
}

TEST(Condition, BorderBrightnessLooksAtTheFourCorners) {
    CommandRunner runner(test::FlatImage({9, 7}, {200, 100, 50}));
    runner.Main().View().SetPixel(4, 3, {0, 0, 0});
    const double flat = 0.299 * 200 + 0.587 * 100 + 0.114 * 50;
    EXPECT_DOUBLE_EQ(imaging::BorderBrightness(runner.Main().View()), flat);
    runner.Main().View().SetPixel(8, 6, {0, 0, 0});
    EXPECT_DOUBLE_EQ(imaging::BorderBrightness(runner.Main().View()), flat * 0.75);
}

TEST(Condition, ColoursUsedAreCountedExactly) {
    CommandRunner runner(test::CoordinateImage({16, 16}));
    EXPECT_EQ(Evaluate(runner, "5,11,2,256.9,0,0,"), true);
    EXPECT_EQ(Evaluate(runner, "5,11,0,255,256,1,"), true);
    EXPECT_EQ(Evaluate(runner, "5,11,0,256,300,1,"), false);
}

TEST_F(ConditionTest, UnknownCodesDecideNothing) {
    EXPECT_EQ(Evaluate(runner, "5,17,0,1,0,0,"), std::nullopt);
    EXPECT_EQ(Evaluate(runner, "5,-1,0,1,0,0,"), std::nullopt);
    EXPECT_EQ(Evaluate(runner, "5,1,5,1,0,0,"), std::nullopt);
    EXPECT_EQ(Evaluate(runner, "5,4,9,1,0,0,"), std::nullopt);
}

TEST_F(ConditionTest, WithoutAPictureTheAspectIsInfiniteAndTheRestIsNought) {
    runner.Main().Reset();
    EXPECT_EQ(Evaluate(runner, "5,0,0,1e300,0,0,"), true);
    EXPECT_EQ(Evaluate(runner, "5,0,1,1e300,0,0,"), false);
    EXPECT_EQ(Evaluate(runner, "5,0,0,1.0,1e300,1,"), false);  // above the upper bound
    EXPECT_EQ(Evaluate(runner, "5,1,2,0,0,0,"), true);
    EXPECT_EQ(Evaluate(runner, "5,3,2,0,0,0,"), true);
    EXPECT_EQ(Evaluate(runner, "5,10,2,0,0,0,"), true);
    EXPECT_EQ(Evaluate(runner, "5,9,2,0,0,0,"), true);
    EXPECT_EQ(Evaluate(runner, "5,11,2,0,0,0,"), true);
}

TEST(Condition, FactoryStringComesFromTheSchema) {
    EXPECT_EQ(script::FactoryString(ConditionFields()), "5,0,0,1.0,2.0,0,");
    EXPECT_EQ(ConditionPanel(script::ParseParams("5,1,3,640,2.0,0,")),
              "Width (pixels)\n>= (greater than or equal to)\n640\n");
    EXPECT_EQ(ConditionPanel(script::ParseParams("5,0,0,1.0,2.0,1,")),
              "Aspect ratio (width/height)\nRange: above 1.0\nup to 2.0\n");
}

}  // namespace
}  // namespace lumo::engine::flow
