#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ops/geometry/geometry_commands.h"
#include "support/command_runner.h"

namespace lumo::ops::geometry {
namespace {

using engine::Outcome;
using imaging::Image;
using imaging::Rgb;
using imaging::Size;

// A random picture inside of a band of that colour.
Image Framed(Size inner, int left, int top, int right, int bottom, Rgb colour) {
    Image image =
        test::FlatImage({inner.width + left + right, inner.height + top + bottom}, colour);
    const Image picture = test::FlatImage(inner, {200, 40, 90});
    for (int y = 0; y < inner.height; ++y)
        for (int x = 0; x < inner.width; ++x)
            image.View().SetPixel(left + x, top + y, picture.View().Pixel(x, y));
    return image;
}

TEST(BorderFindCommand, KeepsThePictureInsideOfTheBorder) {
    test::CommandRunner runner(Framed({30, 20}, 1, 2, 3, 4, {0, 0, 0}));
    EXPECT_EQ(runner.Execute(kBorderFindAndCropCommand, "5,10,0,0,0,0,"), Outcome::Succeeded);
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({30, 20}, {200, 40, 90})));
    EXPECT_EQ(runner.ui.sizeTexts.back(), "30x20");
}

TEST(BorderFindCommand, APictureWithoutABorderStaysAndSucceeds) {
    test::CommandRunner runner(test::RandomImage({40, 30}, 3));
    EXPECT_EQ(runner.Execute(kBorderFindAndCropCommand, "5,0,0,0,0,0,"), Outcome::Succeeded);
    EXPECT_TRUE(runner.messages.empty());
    EXPECT_TRUE(runner.ui.sizeTexts.empty());
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({40, 30}, 3)));
}

TEST(BorderFindCommand, AFlatPictureIsNoBorder) {
    test::CommandRunner runner(test::FlatImage({40, 30}, {9, 9, 9}));
    EXPECT_EQ(runner.Execute(kBorderFindAndCropCommand, "5,10,0,0,0,0,"), Outcome::Succeeded);
    EXPECT_EQ(runner.Main().Extent(), (Size{40, 30}));
}

TEST(BorderFindCommand, AGivenColourCountsWhereTheDetectionIsOff) {
    const auto sizeAfter = [](std::string_view params) {
        test::CommandRunner runner(Framed({30, 20}, 2, 2, 2, 2, {10, 20, 30}));
        EXPECT_TRUE(runner.Run(kBorderFindAndCropCommand, params));
        return runner.Main().Extent();
    };
    EXPECT_EQ(sizeAfter("5,0,10,20,30,1,"), (Size{30, 20}));
    EXPECT_EQ(sizeAfter("5,0,10,20,31,1,"), (Size{34, 24}));
    EXPECT_EQ(sizeAfter("5,0,10,20,31,0,"), (Size{30, 20}));  // "0" detects
    EXPECT_EQ(sizeAfter("5,0,10,20,30,"), (Size{30, 20}));    // a missing flag does not
    EXPECT_EQ(sizeAfter("5,0,10,20,31,"), (Size{34, 24}));
    EXPECT_EQ(sizeAfter("5,0,266,276,-226,1,"), (Size{30, 20}));  // low 8 bits
}

TEST(BorderFindCommand, ToleranceIsAShareOfTheLargestSumOfSquares) {
    // 10 percent are 19507: a grey border of 80 differs from black by 3 * 6400 = 19200, one of 81
    // by 19683.
    const auto sizeAfter = [](int grey, std::string_view params) {
        const auto value = static_cast<std::uint8_t>(grey);
        test::CommandRunner runner(Framed({30, 20}, 2, 2, 2, 2, {value, value, value}));
        EXPECT_TRUE(runner.Run(kBorderFindAndCropCommand, params));
        return runner.Main().Extent();
    };
    EXPECT_EQ(sizeAfter(80, "5,10,0,0,0,1,"), (Size{30, 20}));
    EXPECT_EQ(sizeAfter(81, "5,10,0,0,0,1,"), (Size{34, 24}));
    EXPECT_EQ(sizeAfter(81, "5,11,0,0,0,1,"), (Size{30, 20}));
    EXPECT_EQ(sizeAfter(81, "5,100,0,0,0,1,"), (Size{34, 24}));  // all of it is border
    EXPECT_EQ(sizeAfter(0, "5,-1,0,0,0,1,"), (Size{34, 24}));    // wraps to more than everything
}

TEST(BorderFindCommand, PanelTellsTheDetectionOrTheColour) {
    const auto panel = [](std::string_view params) {
        return script::PanelText(kBorderFindAndCropCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("5,10,1,2,3,0,"), "Tolerance%: 10\nAuto detect border color\n");
    EXPECT_EQ(panel("5,10,1,2,3,1,"), "Tolerance%: 10\nBorder color:1:2:3\n");
}

TEST(BorderFindCommand, TheFlagOfTheDetectionIsOnAtNought) {
    const script::FieldSpec& flag = kBorderFindAndCropCommand.spec.fields[4];
    EXPECT_EQ(flag.on, "0");
    EXPECT_EQ(flag.off, "1");
}

}  // namespace
}  // namespace lumo::ops::geometry
