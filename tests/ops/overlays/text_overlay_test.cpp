#include "ops/overlays/text_overlay.h"

#include <gmock/gmock.h>

#include <climits>

#include "text_fixture.h"

namespace lumo::ops::overlays {
namespace {

using imaging::Image;
using imaging::ImageView;
using imaging::Rect;
using imaging::Rgb;
using imaging::Size;
using imaging::Smoothing;
using test::BoldSans;
using testing::ElementsAre;
using testing::StartsWith;

constexpr Smoothing kBoth[] = {Smoothing::Aliased, Smoothing::Smooth};
constexpr Rgb kBack{30, 40, 50}, kInk{255, 250, 245};

/// The fields of the command; defaults as the factory has them, but for the face.
struct Params {
    std::string x = "10", y = "10", text = "Put message here", noBackground = "0", percent = "10",
                mode = "0", height = "-24", weight = "700", italic = "F", underline = "F",
                strikeOut = "F", face = "Lumo Test Sans", smooth = "0", anchor = "0",
                opacity = "100";

    std::string String() const {
        return "21," + x + "," + y + ",\"" + text + "\"," + noBackground + ",30,40,50," + percent +
               "," + mode + "," + height + "," + weight + "," + italic + "," + underline + "," +
               strikeOut + "," + face + ",255,250,245," + smooth + "," + anchor + "," + opacity +
               ",";
    }
    Smoothing Mode() const { return smooth == "1" ? Smoothing::Smooth : Smoothing::Aliased; }
};

class TextOverlay : public test::TextCommandTest {
  protected:
    static Image After(const Params& params, Size size = {640, 480}) {
        return TextCommandTest::After(kTextOverlayCommand, params.String(), size);
    }
};

TEST(FontHeightByPercent, IsFourThirdsOfTheShareTruncatedTwice) {
    EXPECT_EQ(FontHeightByPercent(10, 600), -80);
    EXPECT_EQ(FontHeightByPercent(0, 600), 0);
    EXPECT_EQ(FontHeightByPercent(7, 100), -9);    // 7 * -4 / 3
    EXPECT_EQ(FontHeightByPercent(10, 479), -62);  // 47 * -4 / 3
    EXPECT_EQ(FontHeightByPercent(-10, 600), 80);
    EXPECT_EQ(FontHeightByPercent(INT_MAX, 65500), INT_MIN);
}

TEST_F(TextOverlay, ABlockOfTheTextAndItsMarginsStandsAtItsPlace) {
    for (const char* smooth : {"0", "1"}) {
        Params params{.smooth = smooth};
        const Image after = After(params);
        const Size text = Measured(params.text, BoldSans(-24), params.Mode());
        EXPECT_EQ(Changed(after), (Rect{64, 48, 64 + text.width + 8, 48 + text.height + 8}));
        const Rect ink = BoxOf(after, kInk);
        EXPECT_GE(ink.left, 64 + 4);
        EXPECT_LE(ink.right, 64 + 4 + text.width);
        EXPECT_GE(ink.top, 48 + 4);
        EXPECT_LE(ink.bottom, 48 + 4 + text.height);
        EXPECT_EQ(after.View().Pixel(64, 48), kBack);
    }
}

TEST_F(TextOverlay, ItsInkIsThatOfTheTextFourPixelsIntoTheBlock) {
    for (const char* smooth : {"0", "1"}) {
        Params params{.smooth = smooth};
        const Image after = After(params);
        Image expected = test::FlatImage({640, 480}, kBack);
        const auto draw = params.Mode() == Smoothing::Smooth ? imaging::DrawSmoothTextOnRGB2
                                                             : imaging::DrawTextOnRGB2;
        ASSERT_TRUE(
            draw(expected.View(), params.text, BoldSans(-24), {68, 52, 640, 480}, kInk, 1.0));
        const Rect block = Changed(after);
        for (int y = block.top; y < block.bottom; ++y)
            for (int x = block.left; x < block.right; ++x)
                ASSERT_EQ(after.View().Pixel(x, y), expected.View().Pixel(x, y));
    }
}

TEST_F(TextOverlay, WithoutABackgroundOnlyInkIsLaid) {
    for (const char* smooth : {"0", "1"}) {
        Params params{.noBackground = "1", .smooth = smooth};
        Image expected = test::FlatImage({640, 480}, kGround);
        const auto draw = params.Mode() == Smoothing::Smooth ? imaging::DrawSmoothTextOnRGB2
                                                             : imaging::DrawTextOnRGB2;
        ASSERT_TRUE(
            draw(expected.View(), params.text, BoldSans(-24), {64, 48, 640, 480}, kInk, 1.0));
        EXPECT_TRUE(test::SamePixels(After(params), expected));
        // Any other text than "0" is no background either.
        params.noBackground = "x";
        EXPECT_TRUE(test::SamePixels(After(params), expected));
    }
}

TEST_F(TextOverlay, OpacityFadesTextOrBlockAsAWhole) {
    const auto mixed = [](Rgb over, double opacity) {
        const auto mix = [&](int a, int b) {
            return static_cast<std::uint8_t>(a * opacity + b * (1.0 - opacity) + 0.5);
        };
        return Rgb{mix(over.red, kGround.red), mix(over.green, kGround.green),
                   mix(over.blue, kGround.blue)};
    };
    for (const char* noBackground : {"0", "1"}) {
        Params params{.noBackground = noBackground, .opacity = "25"};
        const Image whole = After(Params{.noBackground = noBackground}), faded = After(params);
        for (int y = 0; y < 480; ++y)
            for (int x = 0; x < 640; ++x) {
                const Rgb over = whole.View().Pixel(x, y);
                ASSERT_EQ(faded.View().Pixel(x, y), over == kGround ? kGround : mixed(over, 0.25))
                    << x << "," << y;
            }
        params.opacity = "0";
        EXPECT_EQ(Changed(After(params)), Rect{});
        // An empty field, or a string that was stored before the field came, is full opacity.
        params.opacity = "";
        EXPECT_TRUE(test::SamePixels(After(params), whole));
    }
    const std::string older =
        "20,10,10,Put message here,0,30,40,50,10,0,-24,700,F,F,F,Lumo Test Sans,255,250,245,0,0,";
    EXPECT_TRUE(
        test::SamePixels(TextCommandTest::After(kTextOverlayCommand, older), After(Params{})));
}

TEST_F(TextOverlay, OpacityHoldsForOneDrawing) {
    test::CommandRunner runner(test::FlatImage({640, 480}, kGround));
    Params params{.y = "60", .noBackground = "1", .opacity = "20"};
    ASSERT_TRUE(runner.Run(kTextOverlayCommand, params.String()));
    params.y = "10";
    params.opacity = "100";
    ASSERT_TRUE(runner.Run(kTextOverlayCommand, params.String()));
    EXPECT_FALSE(BoxOf(runner.Main(), kInk).Extent().IsEmpty());
    EXPECT_LT(BoxOf(runner.Main(), kInk).bottom, 240);
}

TEST_F(TextOverlay, AnchorsMoveTheTextToTheLeft) {
    for (const char* smooth : {"0", "1"}) {
        Params params{.x = "50", .smooth = smooth};
        const int width = Measured(params.text, BoldSans(-24), params.Mode()).width + 8;
        EXPECT_EQ(Changed(After(params)).left, 320);
        params.anchor = "1";
        EXPECT_EQ(Changed(After(params)).left, 320 - width / 2);
        params.anchor = "2";
        EXPECT_EQ(Changed(After(params)).left, 320 - width);
        params.anchor = "3";  // any other text is the start
        EXPECT_EQ(Changed(After(params)).left, 320);
        // Near the left edge it is not centred any more.
        params.x = "5";
        params.anchor = "1";
        EXPECT_EQ(Changed(After(params)), (Rect{0, 48, width, Changed(After(params)).bottom}));
        params.anchor = "2";
        EXPECT_EQ(Changed(After(params)).left, 0);
        params.x = "100";
        EXPECT_EQ(Changed(After(params)).left, 640 - width);
        EXPECT_EQ(Changed(After(params)).right, 640);
        // The start of text at the right edge: all of it runs off.
        params.anchor = "0";
        EXPECT_EQ(Changed(After(params)), Rect{});
    }
}

TEST_F(TextOverlay, AnchorsWithoutABackgroundUseTheTextsOwnWidth) {
    Params params{.x = "50", .text = "HH", .noBackground = "1", .anchor = "2"};
    const int width = Measured("HH", BoldSans(-24), Smoothing::Aliased).width;
    const Rect ink = Changed(After(params));
    EXPECT_GE(ink.left, 320 - width);
    EXPECT_LE(ink.right, 320);
    EXPECT_GE(ink.right, 320 - 4);
}

TEST_F(TextOverlay, HeightByPercentFollowsTheImage) {
    Params params{.mode = "1"};
    const int line = Measured("x", BoldSans(-80), Smoothing::Aliased).height;
    EXPECT_EQ(Changed(After(params, {1200, 600})).Extent().height, line + 8);
    params.mode = "2";  // anything but "0"
    EXPECT_EQ(Changed(After(params, {1200, 600})).Extent().height, line + 8);
    // 0 percent is a height of 0, which is 16 pixels.
    params.percent = "0";
    EXPECT_EQ(Changed(After(params, {1200, 600})).Extent().height,
              Measured("x", BoldSans(-16), Smoothing::Aliased).height + 8);
}

TEST_F(TextOverlay, AWideTextIsCutByItsShareOfCharacters) {
    for (const char* smooth : {"0", "1"}) {
        const std::string text = "caf\u00E9 caf\u00E9 caf\u00E9 caf\u00E9 caf\u00E9 caf\u00E9";
        Params params{.x = "0", .text = text, .smooth = smooth};
        const Size size{200, 100};
        const int width = Measured(text, BoldSans(-24), params.Mode()).width;
        ASSERT_GT(width, size.width);
        const int kept = 29 * size.width / width;
        std::string first;
        for (int i = 0, at = 0; i < kept; ++i) {
            const int bytes = static_cast<unsigned char>(text[at]) == 0xC3 ? 2 : 1;
            first += text.substr(at, bytes);
            at += bytes;
        }
        Params cut{.x = "0", .text = first, .smooth = smooth};
        EXPECT_TRUE(test::SamePixels(After(params, size), After(cut, size)));
    }
}

TEST_F(TextOverlay, AWideTextMayStillHangOverALittle) {
    // Narrow letters first: the share of characters keeps wide ones too, and is not checked again.
    Params params{.x = "0", .text = "MMMMMMMMMMiiiiiiiiii", .noBackground = "0"};
    const Size size{150, 100};
    EXPECT_EQ(Changed(After(params, size)).right, 150);
}

TEST_F(TextOverlay, AnEmptyTextLaysABlockOfItsMargins) {
    for (const char* smooth : {"0", "1"}) {
        Params params{.text = "", .smooth = smooth};
        const Image after = After(params);
        const int line = Measured("x", BoldSans(-24), params.Mode()).height;
        EXPECT_EQ(Changed(after), (Rect{64, 48, 72, 48 + 8 + line}));
        EXPECT_EQ(BoxOf(after, kBack), Changed(after));
        params.noBackground = "1";
        EXPECT_EQ(Changed(After(params)), Rect{});
    }
}

TEST_F(TextOverlay, StylesReachTheFont) {
    const Image plain = After(Params{.noBackground = "1", .weight = "400"});
    const auto differs = [&](const Params& params) {
        return !test::SamePixels(After(params), plain);
    };
    EXPECT_TRUE(differs({.noBackground = "1", .weight = "700"}));
    EXPECT_TRUE(differs({.noBackground = "1", .weight = "400", .italic = "T"}));
    EXPECT_TRUE(differs({.noBackground = "1", .weight = "400", .underline = "T"}));
    EXPECT_TRUE(differs({.noBackground = "1", .weight = "400", .strikeOut = "T"}));
    EXPECT_TRUE(differs({.noBackground = "1", .weight = "400", .smooth = "1"}));
    // Exactly "T" is on, exactly "1" is smooth.
    EXPECT_FALSE(differs({.noBackground = "1",
                          .weight = "400",
                          .italic = "t",
                          .underline = "1",
                          .strikeOut = "TRUE",
                          .smooth = "2"}));
}

TEST_F(TextOverlay, MacrosKnowTheImageTheFileAndTheCounters) {
    test::CommandRunner runner(test::FlatImage({640, 480}, kGround));
    runner.view.sample.path = "/photos/Summer/IMG 1.tar.jpg";
    runner.view.counters[0] = 7;
    runner.view.counters[9] = -12;
    Params params{.x = "0",
                  .text =
                      "$(width) $(height) $(size) $(filetitle) $(filename) $(counterA) "
                      "$(counterJ) $(nothing)",
                  .height = "-12"};
    ASSERT_TRUE(runner.Run(kTextOverlayCommand, params.String()));
    params.text = "640 480 640x480 IMG 1.tar IMG 1.tar.jpg 7 -12 $(nothing)";
    EXPECT_TRUE(test::SamePixels(runner.Main(), After(params)));
}

TEST_F(TextOverlay, DatesTakeAFormatOfTheirOwn) {
    test::CommandRunner runner(test::FlatImage({640, 480}, kGround));
    runner.view.settings.dateFormat = "day %%";
    Params params{.text = "$(date) $(dateformat) $(date%%Y!)"};
    ASSERT_TRUE(runner.Run(kTextOverlayCommand, params.String()));
    params.text = "day % $(dateformat) %Y!";
    EXPECT_TRUE(test::SamePixels(runner.Main(), After(params)));
}

TEST_F(TextOverlay, InARunTheFileOfTheInputCounts) {
    test::CommandRunner runner(test::FlatImage({640, 480}, kGround));
    runner.view.sample.path = "/photos/sample.jpg";
    runner.view.input.name = "input.png";
    Params params{.text = "$(filename)"};
    ASSERT_EQ(runner.ExecuteInRun(kTextOverlayCommand, params.String()),
              engine::Outcome::Succeeded);
    params.text = "input.png";
    EXPECT_TRUE(test::SamePixels(runner.Main(), After(params)));
}

TEST_F(TextOverlay, KnowsNoLineBreakButShowsItsTwoCharacters) {
    const Image after = After(Params{.text = "a$xb"});
    EXPECT_EQ(Changed(after).Extent(),
              (Size{Measured("a$xb", BoldSans(-24), Smoothing::Aliased).width + 8,
                    Measured("x", BoldSans(-24), Smoothing::Aliased).height + 8}));
}

TEST_F(TextOverlay, ALongFaceIsCutToWhatTheRecordHeld) {
    // 31 bytes fit; what follows changes nothing.
    const std::string face = "Lumo Test Asian,,,,,,,,,,,,,,,,";
    const imaging::TextFont font =
        ReadFont(script::ParseParams("6,-24,700,F,F,F,\"" + face + "and much more\","), 0);
    EXPECT_EQ(font.face, face);
    // Never half of a character.
    const imaging::TextFont accents =
        ReadFont(script::ParseParams("6,-24,700,F,F,F,123456789012345678901234567890\u00E9,"), 0);
    EXPECT_EQ(accents.face, "123456789012345678901234567890");
    const imaging::TextFont fits =
        ReadFont(script::ParseParams("6,-24,700,F,F,F,12345678901234567890123456789\u00E9,"), 0);
    EXPECT_EQ(fits.face, "12345678901234567890123456789\u00E9");
}

TEST_F(TextOverlay, SetsFullColour) {
    test::CommandRunner runner(test::FlatImage({64, 48}, kGround));
    runner.view.working.imageBits = 8;
    runner.view.working.imageBitsForced = 1;
    runner.view.working.grey = true;
    EXPECT_EQ(runner.Execute(kTextOverlayCommand, Params{}.String()), engine::Outcome::Succeeded);
    EXPECT_EQ(runner.view.working.imageBits, 24);
    EXPECT_EQ(runner.view.working.imageBitsForced, 0);
    EXPECT_FALSE(runner.view.working.grey);
}

TEST_F(TextOverlay, ABlockWithoutMemoryFails) {
    test::CommandRunner runner(test::FlatImage({640, 480}, kGround));
    const Image before = test::Copy(runner.Main().View());
    const test::ScopedMemoryBudget budget(1000);
    EXPECT_FALSE(runner.Run(kTextOverlayCommand, Params{}.String()));
    EXPECT_THAT(runner.messages,
                ElementsAre(StartsWith("Cmd_83 Text Overlay: memory fail  IS_error ")));
    EXPECT_TRUE(test::SamePixels(runner.Main(), before));
    // An absurd height asks for an absurd block.
    runner.messages.clear();
    EXPECT_FALSE(runner.Run(kTextOverlayCommand, Params{.height = "-999999"}.String()));
    EXPECT_THAT(runner.messages,
                ElementsAre(StartsWith("Cmd_83 Text Overlay: memory fail  IS_error ")));
}

TEST_F(TextOverlay, EachStepThatFailsIsNamedAndTheNextIsTaken) {
    const std::string reason = "  IS_error there is no font to draw text with";
    const auto messages = [](const Params& params) {
        return MessagesWithoutFonts(kTextOverlayCommand, params.String());
    };
    EXPECT_THAT(messages({}), ElementsAre("Cmd_83 Text Overlay L3708: " + reason,
                                          "Text Overlay L3761: " + reason));
    EXPECT_THAT(messages({.smooth = "1"}), ElementsAre("Cmd_83 Text Overlay L3708: " + reason,
                                                       "Text Overlay L3801: " + reason));
    EXPECT_THAT(messages({.noBackground = "1"}),
                ElementsAre("Cmd_83 Text Overlay L3708: " + reason,
                            "Cmd_83 Text Overlay L3738: " + reason));
    EXPECT_THAT(messages({.noBackground = "1", .smooth = "1"}),
                ElementsAre("Cmd_83 Text Overlay L3708: " + reason,
                            "Cmd_83 Text Overlay L3773: " + reason));
}

std::vector<std::string> FailuresOf(const TextLineParams& params, const TextServices& services,
                                    Image& image) {
    std::vector<std::string> words;
    EXPECT_TRUE(OverlayTextLine(
        image.View(), "some text", params, [&](std::string_view step) { words.emplace_back(step); },
        services));
    return words;
}

TEST_F(TextOverlay, EveryStepHasItsWords) {
    const auto words = [](bool background, Smoothing smoothing) {
        Image image = test::FlatImage({200, 100}, kGround);
        TextLineParams params{
            .style = {.font = BoldSans(-20), .onBackground = background, .smoothing = smoothing}};
        return FailuresOf(params, WithoutLaying(), image);
    };
    EXPECT_THAT(words(false, Smoothing::Aliased), ElementsAre("Cmd_83 Text Overlay L3738: "));
    EXPECT_THAT(
        words(true, Smoothing::Aliased),
        ElementsAre("Text Overlay L3758: ", "Text Overlay L3761: ", "Cmd_83 Text Overlay L3763: "));
    EXPECT_THAT(words(false, Smoothing::Smooth), ElementsAre("Cmd_83 Text Overlay L3773: "));
    EXPECT_THAT(
        words(true, Smoothing::Smooth),
        ElementsAre("Text Overlay L3798: ", "Text Overlay L3801: ", "Cmd_83 Text Overlay L3803: "));
}

TEST_F(TextOverlay, ATextThatCannotBeMeasuredIsDrawnAllTheSame) {
    // At once: as if it had no width. On a block of the margins alone.
    Image image = test::FlatImage({200, 100}, kGround);
    const TextLineParams params{
        .style = {
            .font = BoldSans(-20), .colour = kInk, .onBackground = true, .background = kBack}};
    EXPECT_THAT(FailuresOf(params, WithoutMeasure(), image),
                ElementsAre("Cmd_83 Text Overlay L3708: "));
    EXPECT_EQ(Changed(image), (Rect{0, 0, 8, 8}));
    // After the cut of a wide text: it is not wide any more.
    image = test::FlatImage({200, 100}, kGround);
    TextServices services;
    services.measure = [calls = 0](auto&&...) mutable -> std::optional<Size> {
        if (calls++ == 0) return Size{400, 20};
        return std::nullopt;
    };
    std::string drawn;
    services.draw = [&](ImageView, std::string_view text, auto&&...) {
        drawn = text;
        return true;
    };
    EXPECT_THAT(FailuresOf(params, services, image), ElementsAre("Cmd_83 Text Overlay L3717: "));
    EXPECT_EQ(drawn, "some");  // 9 * 200 / 400 characters
    EXPECT_EQ(Changed(image), (Rect{0, 0, 8, 8}));
}

TEST_F(TextOverlay, ALongTextEndsSoon) {
    std::string text;
    for (int i = 0; i < 50'000; ++i) text += "\u00E9 ";  // 100,000 characters
    for (const char* smooth : {"0", "1"})
        for (const char* noBackground : {"0", "1"}) {
            const Image after =
                After({.text = text, .noBackground = noBackground, .smooth = smooth}, {300, 100});
            EXPECT_FALSE(Changed(after).Extent().IsEmpty());
        }
    After({.text = "$(date%999999999d)" + std::string(50'000, '$') + std::string(50'000, '(')},
          {300, 100});
}

TEST_F(TextOverlay, HandEditedNumbersAndTextsEndWell) {
    const Params wild[] = {{.x = "-50", .y = "-50"},
                           {.x = "2147483647", .y = "-2147483648", .anchor = "1"},
                           {.opacity = "-300"},
                           {.noBackground = "1", .opacity = "300"},
                           {.percent = "-20", .mode = "1"},
                           {.weight = "-5"},
                           {.weight = "99999"},
                           {.text = "\xFF\xFE\x80 caf\xE9"},
                           {.text = std::string(20'000, 'w')},
                           {.text = std::string(20'000, 'w'), .noBackground = "1", .smooth = "1"},
                           {.noBackground = "1", .height = "-2147483648"}};
    for (const Params& params : wild) After(params, {120, 90});
}

TEST_F(TextOverlay, PanelTellsPlaceFontAndColours) {
    const auto panel = [](const Params& params) {
        return script::PanelText(kTextOverlayCommand.spec, script::ParseParams(params.String()));
    };
    EXPECT_EQ(panel({.mode = "1"}),
              "% right: 10\n% down: 10\nPosition is for: start of text\nText: Put message here\n"
              "Font: Lumo Test Sans, sized to pct\nText hgt(%): 10\nText color: 255: 250: 245\n"
              "Background color: 30: 40: 50\nOpacity %: 100\n");
    EXPECT_EQ(panel({.noBackground = "1", .smooth = "1", .anchor = "2", .opacity = ""}),
              "% right: 10\n% down: 10\nPosition is for: end of text\nText: Put message here\n"
              "Font: Lumo Test Sans, use font size\nFont height: -24\nText color: 255: 250: 245\n"
              "No text background\nAnti-aliased\nOpacity %: 100\n");
    EXPECT_THAT(panel({.anchor = "1"}), testing::HasSubstr("center of text"));
}

TEST_F(TextOverlay, ThePreviewShowsTheRunInSmall) {
    Params params{.x = "20", .y = "40", .mode = "1"};
    const Size sample{1600, 1200};
    const Image small = test::FlatImage({320, 240}, kGround);
    const Image after =
        kTextOverlayCommand.preview(small.View(), sample, script::ParseParams(params.String()));
    const Rect run = Changed(After(params, sample)), shown = Changed(after);
    EXPECT_NEAR(shown.left, run.left / 5, 1);
    EXPECT_NEAR(shown.top, run.top / 5, 1);
    EXPECT_NEAR(shown.Extent().width, run.Extent().width / 5, 8);
    EXPECT_NEAR(shown.Extent().height, run.Extent().height / 5, 3);
    // A font in pixels shrinks as the sample did.
    params.mode = "0";
    params.height = "-100";
    EXPECT_NEAR(Changed(kTextOverlayCommand.preview(small.View(), sample,
                                                    script::ParseParams(params.String())))
                    .Extent()
                    .height,
                (100 * 1.17 + 8) / 5, 3);
}

}  // namespace
}  // namespace lumo::ops::overlays
