#include "ops/geometry/flip.h"

#include <gtest/gtest.h>

#include "support/command_runner.h"

namespace lumo::ops::geometry {
namespace {

TEST(FlipCommands, MirrorInPlaceAndKeepTheTag) {
    const imaging::Image source = test::RandomImage({7, 5}, 4);
    for (const engine::Command* command : {&kFlipHorizontalCommand, &kFlipVerticalCommand}) {
        test::CommandRunner runner(test::Copy(source.View()));
        runner.view.working.imageBits = 1;
        EXPECT_EQ(runner.Execute(*command, "0"), engine::Outcome::Succeeded);
        const bool horizontal = command == &kFlipHorizontalCommand;
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 7; ++x)
                ASSERT_EQ(runner.Main().View().Pixel(x, y),
                          source.View().Pixel(horizontal ? 6 - x : x, horizontal ? y : 4 - y));
        EXPECT_EQ(runner.view.working.imageBits, 1);
    }
}

TEST(FlipCommands, OnlyTheHorizontalOneIsSkippedInARunBehindAFalseIf) {
    test::CommandRunner runner(test::CoordinateImage({7, 5}));
    runner.view.test.ifFlag = 0;
    EXPECT_EQ(runner.ExecuteInRun(kFlipHorizontalCommand, "0"), engine::Outcome::Succeeded);
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::CoordinateImage({7, 5})));
    EXPECT_EQ(runner.ExecuteInRun(kFlipVerticalCommand, "0"), engine::Outcome::Succeeded);
    EXPECT_FALSE(test::SamePixels(runner.Main(), test::CoordinateImage({7, 5})));
}

TEST(FlipCommands, SayWhichOfThemFailed) {
    test::CommandRunner runner{imaging::Image()};
    EXPECT_EQ(kFlipHorizontalCommand.run(runner.view, {}), engine::Outcome::Failed);
    EXPECT_EQ(kFlipVerticalCommand.run(runner.view, {}), engine::Outcome::Failed);
    ASSERT_EQ(runner.messages.size(), 2u);
    EXPECT_TRUE(runner.messages[0].starts_with("Cmd_37 Flip Horz L2906:   IS_error "));
    EXPECT_TRUE(runner.messages[1].starts_with("Cmd_38 Flip Vert L2924:   IS_error "));
}

}  // namespace
}  // namespace lumo::ops::geometry
