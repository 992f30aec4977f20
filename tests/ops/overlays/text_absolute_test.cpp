#include "ops/overlays/text_absolute.h"

#include <gmock/gmock.h>

#include <climits>

#include "text_fixture.h"

namespace lumo::ops::overlays {
namespace {

using imaging::Image;
using imaging::Rect;
using imaging::Rgb;
using imaging::Size;
using imaging::Smoothing;
using test::BoldSans;
using testing::ElementsAre;
using testing::StartsWith;

constexpr Rgb kBack{30, 40, 50}, kInk{255, 250, 245};

/// The fields of the command.
struct Params {
    std::string x = "10", y = "20", noBackground = "0", height = "-24", weight = "700",
                text = "Sample\r\nFilename: a.jpg\r\nDate", smooth = "1", opacity = "100";

    std::string String() const {
        return "18," + x + "," + y + "," + noBackground + ",30,40,50," + height + "," + weight +
               ",F,F,F,Lumo Test Sans,255,250,245,\"" + text + "\"," + smooth + "," + opacity + ",";
    }
    Smoothing Mode() const { return smooth == "1" ? Smoothing::Smooth : Smoothing::Aliased; }
};

class TextAbsolute : public test::TextCommandTest {
  protected:
    static Image After(const Params& params, Size size = {640, 480}) {
        return TextCommandTest::After(kTextOverlayAbsoluteCommand, params.String(), size);
    }
    /// Width of the widest line, and the step from line to line.
    static Size Lines(std::string_view widest, int height, Smoothing smoothing) {
        const int factor = smoothing == Smoothing::Smooth ? 4 : 1;
        const Size size = Measured(widest, BoldSans(height * factor), smoothing);
        return {size.width / factor, size.height / factor};
    }
};

TEST(WithLineBreaks, StoredBreaksAndLineFeedsBecomeReturns) {
    EXPECT_EQ(WithLineBreaks("a$xb"), "a\r\nb");
    EXPECT_EQ(WithLineBreaks("a\nb\r\nc"), "a\r\nb\r\nc");
    EXPECT_EQ(WithLineBreaks("$x$x$"), "\r\n\r\n$");
    EXPECT_EQ(WithLineBreaks("\n\n\r"), "\r\n\r\n\r");
    EXPECT_EQ(WithLineBreaks("$X $(x) $$x"), "$X $(x) $\r\n");
}

TEST(SplitAtReturns, EndsLinesAtReturnsAndAtTheEnd) {
    EXPECT_THAT(SplitAtReturns("a\r\nb"), ElementsAre("a", "b"));
    EXPECT_THAT(SplitAtReturns("a\r"), ElementsAre("a"));        // the return is the last one
    EXPECT_THAT(SplitAtReturns("a\r\n"), ElementsAre("a", ""));  // here the line feed is
    EXPECT_THAT(SplitAtReturns("\r\n\r\nb"), ElementsAre("", "", "b"));
    EXPECT_THAT(SplitAtReturns("a\tb\nc\x0E"), ElementsAre("abc\x0E"));  // up to 13 they vanish
    EXPECT_THAT(SplitAtReturns("\xE9\x80"), ElementsAre("\xE9\x80"));    // codes are unsigned
    EXPECT_THAT(SplitAtReturns(""), ElementsAre(""));
}

TEST_F(TextAbsolute, TheBlockHoldsAllLinesWithMargins) {
    for (const char* smooth : {"0", "1"}) {
        Params params{.x = "50", .y = "60", .smooth = smooth};
        const Size lines = Lines("Filename: a.jpg", -24, params.Mode());
        const Image after = After(params);
        EXPECT_EQ(Changed(after), (Rect{46, 56, 46 + lines.width + 8, 56 + 3 * lines.height + 8}));
        EXPECT_EQ(after.View().Pixel(46, 56), kBack);
        const Rect ink = BoxOf(after, kInk);
        EXPECT_GE(ink.left, 50);
        EXPECT_LE(ink.right, 50 + lines.width);
        EXPECT_GE(ink.top, 60);
        EXPECT_LE(ink.bottom, 60 + 3 * lines.height);
    }
}

TEST_F(TextAbsolute, SmoothLinesStandAQuarterOfTheirFourfoldHeightApart) {
    for (const int height : {-13, -24, -37}) {
        Params params{.noBackground = "1", .height = std::to_string(height)};
        const int step = Lines("Filename: a.jpg", height, Smoothing::Smooth).height;
        Image expected = test::FlatImage({640, 480}, kGround);
        int y = 20;
        for (const char* line : {"Sample", "Filename: a.jpg", "Date"}) {
            ASSERT_TRUE(imaging::DrawSmoothTextOnRGB2(expected.View(), line, BoldSans(height),
                                                      {10, y, 640, 480}, kInk, 1.0));
            y += step;
        }
        EXPECT_TRUE(test::SamePixels(After(params), expected)) << height;
    }
}

TEST_F(TextAbsolute, AliasedLinesAreDrawnAsOneText) {
    Params params{.noBackground = "1", .smooth = "0", .opacity = "60"};
    Image expected = test::FlatImage({640, 480}, kGround);
    ASSERT_TRUE(imaging::DrawTextOnRGB2(expected.View(), params.text, BoldSans(-24),
                                        {10, 20, 640, 480}, kInk, 0.6));
    EXPECT_TRUE(test::SamePixels(After(params), expected));
}

TEST_F(TextAbsolute, TheBlocksInkIsThatOfTheSameTextOnItsColour) {
    for (const char* smooth : {"0", "1"}) {
        const Params on{.smooth = smooth}, off{.noBackground = "1", .smooth = smooth};
        const Image with = After(on), without = After(off);
        Image ground = test::FlatImage({640, 480}, kBack);
        test::CommandRunner runner(std::move(ground));
        ASSERT_TRUE(runner.Run(kTextOverlayAbsoluteCommand, off.String()));
        const Rect block = Changed(with);
        for (int y = block.top; y < block.bottom; ++y)
            for (int x = block.left; x < block.right; ++x)
                ASSERT_EQ(with.View().Pixel(x, y), runner.Main().View().Pixel(x, y));
    }
}

TEST_F(TextAbsolute, AtTheLeftEdgeTheBlockBeginsThereAndTheTextMovesRight) {
    for (const char* smooth : {"0", "1"}) {
        const Params on{.x = "0", .y = "2", .text = "HH", .smooth = smooth};
        const Params off{.x = "0", .y = "2", .noBackground = "1", .text = "HH", .smooth = smooth};
        const Image with = After(on);
        EXPECT_EQ(Changed(with).left, 0);
        EXPECT_EQ(Changed(with).top, 0);
        const Rect ink = BoxOf(with, kInk), plain = BoxOf(After(off), kInk);
        EXPECT_EQ(ink.left, plain.left + 4);
        EXPECT_EQ(ink.top, plain.top + 2);
    }
}

TEST_F(TextAbsolute, TheBlockIsCutOffAtTheRightAndBelow) {
    for (const char* smooth : {"0", "1"}) {
        Params params{.x = "600", .y = "460", .smooth = smooth};
        EXPECT_EQ(Changed(After(params)), (Rect{596, 456, 640, 480}));
        params = {.x = "636", .y = "476", .smooth = smooth};
        EXPECT_EQ(Changed(After(params)), (Rect{632, 472, 640, 480}));
    }
}

TEST_F(TextAbsolute, ABlockOutsideOfTheImageIsNoBlock) {
    for (const char* x : {"644", "9999", "2147483647"}) {
        test::CommandRunner runner(test::FlatImage({640, 480}, kGround));
        EXPECT_FALSE(runner.Run(kTextOverlayAbsoluteCommand, Params{.x = x}.String()));
        EXPECT_THAT(runner.messages, ElementsAre(StartsWith("Cmd_84 Text Absolute: memory failure"
                                                            "  IS_error ")));
        EXPECT_EQ(Changed(runner.Main()), Rect{});
        // Without one there is just nothing to see.
        EXPECT_EQ(Changed(After(Params{.x = x, .noBackground = "1"})), Rect{});
    }
}

TEST_F(TextAbsolute, AnEmptyTextLaysABlockOfItsMarginsAndALine) {
    for (const char* smooth : {"0", "1"}) {
        Params params{.text = "", .smooth = smooth};
        const int line = Lines("x", -24, params.Mode()).height;
        const Image after = After(params);
        EXPECT_EQ(Changed(after), (Rect{6, 16, 14, 24 + line}));
        EXPECT_EQ(BoxOf(after, kBack), Changed(after));
    }
}

TEST_F(TextAbsolute, EmptyLinesCount) {
    for (const char* smooth : {"0", "1"}) {
        Params params{.text = "a$x$x\tb$x", .smooth = smooth};
        const int line = Lines("x", -24, params.Mode()).height;
        EXPECT_EQ(Changed(After(params)).Extent().height, 4 * line + 8);
    }
}

TEST_F(TextAbsolute, AllLineBreaksAreTheSame) {
    for (const char* smooth : {"0", "1"}) {
        const Image returns = After({.text = "one\r\ntwo", .smooth = smooth});
        EXPECT_TRUE(test::SamePixels(After({.text = "one$xtwo", .smooth = smooth}), returns));
        EXPECT_TRUE(test::SamePixels(After({.text = "one\ntwo", .smooth = smooth}), returns));
    }
}

TEST_F(TextAbsolute, OpacityFadesTheBlockAsAWhole) {
    const Image whole = After({}), half = After({.opacity = "50"});
    for (int y = 0; y < 480; ++y)
        for (int x = 0; x < 640; ++x) {
            const Rgb over = whole.View().Pixel(x, y);
            const auto mix = [](int a, int b) {
                return static_cast<std::uint8_t>(a * 0.5 + b * 0.5 + 0.5);
            };
            ASSERT_EQ(half.View().Pixel(x, y),
                      over == kGround
                          ? kGround
                          : (Rgb{mix(over.red, kGround.red), mix(over.green, kGround.green),
                                 mix(over.blue, kGround.blue)}));
        }
}

TEST_F(TextAbsolute, EmptyFlagsOfOlderScriptsHaveDefaults) {
    const Image expected = After({.smooth = "0", .opacity = "100"});
    EXPECT_TRUE(test::SamePixels(After({.smooth = "", .opacity = ""}), expected));
    // Sixteen fields: both are missing.
    const std::string older =
        "16,10,20,0,30,40,50,-24,700,F,F,F,Lumo Test Sans,255,250,245,\"" + Params{}.text + "\",";
    EXPECT_TRUE(
        test::SamePixels(TextCommandTest::After(kTextOverlayAbsoluteCommand, older), expected));
}

TEST_F(TextAbsolute, AHeightOfZeroIsSixteenPixels) {
    for (const char* smooth : {"0", "1"})
        EXPECT_TRUE(test::SamePixels(After({.height = "0", .smooth = smooth}),
                                     After({.height = "-16", .smooth = smooth})));
}

TEST_F(TextAbsolute, MacrosAreExpandedBehindTheLineBreaks) {
    test::CommandRunner runner(test::FlatImage({640, 480}, kGround));
    runner.view.sample.path = "/photos/a$xb.jpg";  // a name is no line break
    runner.view.counters[1] = 3;
    const Params params{.text = "Sample $(size)$xFilename: $(filename)\nCounter $(counterB)"};
    ASSERT_TRUE(runner.Run(kTextOverlayAbsoluteCommand, params.String()));
    const Size widest = Lines("Filename: a$xb.jpg", -24, Smoothing::Smooth);
    EXPECT_EQ(Changed(runner.Main()).Extent(), (Size{widest.width + 8, 3 * widest.height + 8}));
    const Params expanded{.text = "Sample 640x480$x$xCounter 3"};
    const Image others = After(expanded);
    for (int x = 6; x < 130; ++x)  // the lines above and below
        for (const int y : {20 + 12, 20 + 2 * widest.height + 12})
            EXPECT_EQ(runner.Main().View().Pixel(x, y), others.View().Pixel(x, y));
}

TEST_F(TextAbsolute, TheFactoryTextHasThreeLines) {
    const script::Fields fields =
        script::ParseParams(script::FactoryString(kTextOverlayAbsoluteCommand.spec.fields));
    EXPECT_THAT(SplitAtReturns(WithLineBreaks(fields.Text(15))),
                ElementsAre("Sample $(size)", "Filename: $(filename)", "Date: $(date)"));
    const Image after =
        TextCommandTest::After(kTextOverlayAbsoluteCommand,
                               script::FactoryString(kTextOverlayAbsoluteCommand.spec.fields));
    EXPECT_EQ(Changed(after).left, 6);
    EXPECT_EQ(Changed(after).top, 6);
}

TEST_F(TextAbsolute, SetsFullColour) {
    test::CommandRunner runner(test::FlatImage({64, 48}, kGround));
    runner.view.working.imageBits = 1;
    runner.view.working.imageBitsForced = 1;
    runner.view.working.grey = true;
    EXPECT_EQ(runner.Execute(kTextOverlayAbsoluteCommand, Params{}.String()),
              engine::Outcome::Succeeded);
    EXPECT_EQ(runner.view.working.imageBits, 24);
    EXPECT_EQ(runner.view.working.imageBitsForced, 0);
    EXPECT_FALSE(runner.view.working.grey);
}

TEST_F(TextAbsolute, ABlockWithoutMemoryFails) {
    for (const char* smooth : {"0", "1"}) {
        test::CommandRunner runner(test::FlatImage({640, 480}, kGround));
        const test::ScopedMemoryBudget budget(1000);
        EXPECT_FALSE(runner.Run(kTextOverlayAbsoluteCommand, Params{.smooth = smooth}.String()));
        EXPECT_THAT(runner.messages, ElementsAre(StartsWith("Cmd_84 Text Absolute: memory failure"
                                                            "  IS_error ")));
        EXPECT_EQ(Changed(runner.Main()), Rect{});
    }
}

TEST_F(TextAbsolute, EachStepThatFailsIsNamedAndTheNextIsTaken) {
    const std::string reason = "  IS_error there is no font to draw text with";
    // What is done line by line is reported line by line.
    const auto messages = [](Params params) {
        params.text = "one$xtwo";
        return MessagesWithoutFonts(kTextOverlayAbsoluteCommand, params.String());
    };
    EXPECT_THAT(messages({.noBackground = "1", .smooth = "0"}),
                ElementsAre("Cmd_84 Text Absolute L4287: " + reason));
    EXPECT_THAT(messages({.smooth = "0"}), ElementsAre("Cmd_84 Text Absolute L3957: " + reason,
                                                       "Cmd_84 Text Absolute L3957: " + reason,
                                                       "Cmd_84 Text Absolute L4001: " + reason));
    EXPECT_THAT(messages({}), ElementsAre("Cmd_84 Text Absolute L4411: " + reason,
                                          "Cmd_84 Text Absolute L4411: " + reason,
                                          "Cmd_84 Text Absolute L4474: " + reason,
                                          "Cmd_84 Text Absolute L4474: " + reason));
    EXPECT_THAT(messages({.y = "0", .noBackground = "1"}),
                ElementsAre("Cmd_84 Text Absolute L4411: " + reason,
                            "Cmd_84 Text Absolute L4411: " + reason,
                            "Cmd_84 Text Absolute L4505: " + reason,
                            "Cmd_84 Text Absolute L4505: " + reason));
}

TEST_F(TextAbsolute, EveryStepHasItsWords) {
    const auto words = [](bool background, Smoothing smoothing) {
        Image image = test::FlatImage({200, 100}, kGround);
        std::vector<std::string> failures;
        EXPECT_TRUE(OverlayTextLines(
            image.View(), "one\r\ntwo",
            {.style = {.font = BoldSans(-20), .onBackground = background, .smoothing = smoothing}},
            [&](std::string_view step) { failures.emplace_back(step); }, WithoutLaying()));
        return failures;
    };
    EXPECT_THAT(words(false, Smoothing::Aliased), ElementsAre("Cmd_84 Text Absolute L4287: "));
    EXPECT_THAT(words(true, Smoothing::Aliased),
                ElementsAre("Cmd_84 Text Absolute L3998: ", "Cmd_84 Text Absolute L4001: ",
                            "Cmd_84 Text Absolute L4003: "));
    EXPECT_THAT(words(false, Smoothing::Smooth),
                ElementsAre("Cmd_84 Text Absolute L4505: ", "Cmd_84 Text Absolute L4505: "));
    EXPECT_THAT(words(true, Smoothing::Smooth),
                ElementsAre("Cmd_84 Text Absolute L4457: ", "Cmd_84 Text Absolute L4474: ",
                            "Cmd_84 Text Absolute L4474: ", "Cmd_84 Text Absolute L4482: "));
}

TEST_F(TextAbsolute, LinesThatCannotBeMeasuredLieOnABlockOfTheMargins) {
    for (const Smoothing smoothing : {Smoothing::Aliased, Smoothing::Smooth}) {
        Image image = test::FlatImage({200, 100}, kGround);
        EXPECT_TRUE(OverlayTextLines(
            image.View(), "one",
            {.x = 20,
             .y = 30,
             .style = {.font = BoldSans(-20), .onBackground = true, .smoothing = smoothing}},
            [](std::string_view) {}, WithoutMeasure()));
        EXPECT_EQ(Changed(image), (Rect{16, 26, 24, 34}));
    }
}

TEST_F(TextAbsolute, HandEditedNumbersAndTextsEndWell) {
    const std::string manyLines = [] {
        std::string text;
        for (int i = 0; i < 5'000; ++i) text += "x\n";
        return text;
    }();
    for (const char* smooth : {"0", "1"})
        for (const char* noBackground : {"0", "1"})
            for (const char* place : {"0", "-30", "-2147483648"}) {
                Params params{
                    .x = place, .y = place, .noBackground = noBackground, .smooth = smooth};
                After(params, {120, 90});
                params.text = manyLines;
                After(params, {120, 90});
                params.text = std::string(20'000, 'w') + "\xFF";
                After(params, {120, 90});
                params.height = "-2147483648";
                After(params, {120, 90});
                params.height = "2147483647";
                params.opacity = "-7";
                After(params, {1, 1});
            }
}

TEST_F(TextAbsolute, PanelTellsPlaceFontColoursAndLines) {
    const auto panel = [](const Params& params) {
        return script::PanelText(kTextOverlayAbsoluteCommand.spec,
                                 script::ParseParams(params.String()));
    };
    EXPECT_EQ(panel({.text = "one$xtwo"}),
              "X = 10\nY = 20\nFont: Lumo Test Sans\nFont height: -24\n"
              "Text color: 255: 250: 245\nBackground color: 30: 40: 50\nAnti-aliased\n"
              "Opacity %: 100\none\ntwo\n");
    EXPECT_EQ(panel({.noBackground = "1", .text = "one", .smooth = "", .opacity = ""}),
              "X = 10\nY = 20\nFont: Lumo Test Sans\nFont height: -24\n"
              "Text color: 255: 250: 245\nNo text background\nOpacity %: 100\none\n");
}

TEST_F(TextAbsolute, ThePreviewShowsTheRunInSmall) {
    Params params{.x = "200", .y = "300", .height = "-100", .text = "one$xtwo"};
    const Size sample{1600, 1200};
    const Image small = test::FlatImage({320, 240}, kGround);
    const Image after = kTextOverlayAbsoluteCommand.preview(small.View(), sample,
                                                            script::ParseParams(params.String()));
    const Rect run = Changed(After(params, sample)), shown = Changed(after);
    EXPECT_NEAR(shown.left, run.left / 5, 1);
    EXPECT_NEAR(shown.top, run.top / 5, 1);
    EXPECT_NEAR(shown.Extent().width, run.Extent().width / 5, 4);
    EXPECT_NEAR(shown.Extent().height, run.Extent().height / 5, 4);
}

}  // namespace
}  // namespace lumo::ops::overlays
