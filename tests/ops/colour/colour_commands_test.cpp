// What holds for all commands of the family: their rows, texts and tags.

#include "ops/colour/colour_commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "engine/command_table.h"
#include "engine/dispatch.h"
#include "imaging/last_error.h"
#include "script/catalogue.h"
#include "support/command_runner.h"

namespace lumo::ops::colour {
namespace {

using engine::Command;
using imaging::Size;
using testing::ElementsAre;

const Command* const kAll[] = {&kAdjustColourHslCommand,
                               &kAdjustColourRgbCommand,
                               &kAdjustContrastBrightnessCommand,
                               &kAdjustHistogramLuminanceCommand,
                               &kColourCurveAdjustCommand,
                               &kConvertBwDitherCommand,
                               &kConvertBwThresholdCommand,
                               &kConvertGreyscaleCommand,
                               &kConvertOneColourToneCommand,
                               &kConvertSepiaToneCommand,
                               &kCountColoursCommand,
                               &kGammaAdjustCommand,
                               &kHighlightMidtoneShadowCommand,
                               &kHistogramEqualizeCommand,
                               &kHistogramStretchCommand,
                               &kMedianCutCommand,
                               &kNegativeCommand,
                               &kReplaceColourCommand,
                               &kSolarizeCommand,
                               &kSwapGreenBlueCommand,
                               &kSwapRedBlueCommand,
                               &kSwapRedGreenCommand};

std::string FactoryOf(const Command& command) {
    return std::string(script::FactoryParams(command.spec.name));
}

class EachCommand : public testing::TestWithParam<const Command*> {
  protected:
    const Command& command = *GetParam();
};

std::string TestName(const testing::TestParamInfo<const Command*>& parameter) {
    std::string name;
    for (const char c : parameter.param->spec.name)
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) name += c;
    return name;
}
INSTANTIATE_TEST_SUITE_P(Colour, EachCommand, testing::ValuesIn(kAll), TestName);

TEST_P(EachCommand, IsFoundByItsName) {
    EXPECT_EQ(engine::FindCommand(command.spec.name), &command);
}

TEST_P(EachCommand, HasTheFactoryStringOfTheCatalogue) {
    const script::CatalogueRow* const row = script::FindByName(command.spec.name);
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(static_cast<int>(command.spec.fields.size()), row->fieldCount);
    const bool hasFields = row->fieldCount > 0;
    EXPECT_EQ(hasFields ? script::FactoryString(command.spec.fields) : "", row->factory);
}

TEST_P(EachCommand, HasADialogAndAPreviewWhereTheCatalogueSaysSo) {
    const script::CatalogueRow* const row = script::FindByName(command.spec.name);
    ASSERT_EQ(command.spec.dialog != nullptr, row->hasDialog);
    if (!row->hasDialog) return;
    // The curve has a topic in its dialog only.
    if (&command == &kColourCurveAdjustCommand)
        EXPECT_EQ(command.spec.dialog->helpTopic, "Colorcurveadjust");
    else
        EXPECT_EQ(command.spec.dialog->helpTopic, row->helpTopic);
    EXPECT_EQ(command.preview != nullptr, &command != &kCountColoursCommand);
}

TEST_P(EachCommand, KeepsTheSizeAndSucceedsOnSmallPictures) {
    for (const Size size : {Size{1, 1}, Size{2, 1}, Size{1, 3}, Size{17, 5}}) {
        test::CommandRunner runner(test::RandomImage(size, 1));
        EXPECT_EQ(runner.Execute(command, FactoryOf(command)), engine::Outcome::Succeeded);
        EXPECT_EQ(runner.Main().Extent(), size);
        EXPECT_THAT(runner.messages, ElementsAre());
    }
}

TEST_P(EachCommand, AsksForAPicture) {
    test::CommandRunner runner({});
    EXPECT_FALSE(runner.Run(command, FactoryOf(command)));
}

TEST_P(EachCommand, IsPassedOverByTheSkipTest) {
    const imaging::Image before = test::RandomImage({9, 7}, 1);
    test::CommandRunner runner(test::Copy(before.View()));
    runner.view.test.ifFlag = 0;
    EXPECT_EQ(runner.Execute(command, FactoryOf(command)), engine::Outcome::Succeeded);
    EXPECT_TRUE(test::SamePixels(runner.Main(), before));
}

TEST_P(EachCommand, ThePreviewIsWhatTheRunGives) {
    if (command.preview == nullptr) return;
    const imaging::Image before = test::PhotoLikeImage({33, 21});
    test::CommandRunner runner(test::Copy(before.View()));
    const std::map<const Command*, std::string> telling{
        {&kAdjustColourHslCommand, "3,40,20,-30,"},
        {&kAdjustColourRgbCommand, "3,10,-20,30,"},
        {&kAdjustContrastBrightnessCommand, "2,30,-10,"},
        {&kColourCurveAdjustCommand,
         "18,1,255,240,224,208,192,176,160,144,128,112,96,80,64,48,32,16,0,"},
        {&kConvertBwDitherCommand, "1,30,"},
        {&kConvertBwThresholdCommand, "3,0,10,1,"},
        {&kGammaAdjustCommand, "1,2.0,"},
        {&kHighlightMidtoneShadowCommand, "3,80,60,10,"},
        {&kReplaceColourCommand, "7,120,120,120,1,2,3,30,"},
        {&kSolarizeCommand, "1,100,"},
    };
    const auto found = telling.find(&command);
    const std::string params = found == telling.end() ? FactoryOf(command) : found->second;
    ASSERT_TRUE(runner.Run(command, params));
    EXPECT_FALSE(test::SamePixels(runner.Main(), before)) << "these fields change nothing";
    const auto fields = script::ParseParams(params);
    EXPECT_TRUE(
        test::SamePixels(command.preview(before.View(), {330, 210}, fields), runner.Main()));
}

TEST_P(EachCommand, ThePreviewIsEmptyWithoutMemory) {
    if (command.preview == nullptr) return;
    const imaging::Image before = test::PhotoLikeImage({33, 21});
    const test::ScopedMemoryBudget budget(100);
    const auto fields = script::ParseParams(FactoryOf(command));
    EXPECT_TRUE(command.preview(before.View(), {33, 21}, fields).IsEmpty());
}

TEST_P(EachCommand, SurvivesAnyFields) {
    const char* const values[] = {
        "-2147483648", "-99999999999", "-1",       "0",          "1", "2", "5", "10",
        "256",         "1e300",        "0.000001", "2147483647", "",  "x", "-"};
    std::uint32_t state = 1;
    for (int round = 0; round < 60; ++round) {
        std::string params = std::to_string(command.spec.fields.size()) + ",";
        for (std::size_t i = 0; i < command.spec.fields.size(); ++i) {
            state = state * 1664525U + 1013904223U;
            params += values[(state >> 16) % std::size(values)] + std::string(",");
        }
        test::CommandRunner runner(test::PhotoLikeImage({13, 7}));
        runner.view.working.grey = round % 2 == 1;
        (void)runner.Execute(command, params);
        EXPECT_EQ(runner.Main().Extent(), (Size{13, 7})) << params;
        (void)script::PanelText(command.spec, script::ParseParams(params));
    }
}

struct Tag {
    int bits, forced;
    bool grey;
    bool operator==(const Tag&) const = default;
};

Tag TagAfter(const Command& command, Tag before) {
    test::CommandRunner runner(test::RandomImage({5, 3}, 1));
    runner.view.working.imageBits = before.bits;
    runner.view.working.imageBitsForced = before.forced;
    runner.view.working.grey = before.grey;
    EXPECT_TRUE(runner.Run(command, FactoryOf(command)));
    return {runner.view.working.imageBits, runner.view.working.imageBitsForced,
            runner.view.working.grey};
}

TEST_P(EachCommand, LeavesTheDepthTagThatIsToldOfIt) {
    const std::set<const Command*> fullColour{
        &kAdjustColourRgbCommand,      &kAdjustColourHslCommand,  &kReplaceColourCommand,
        &kConvertOneColourToneCommand, &kConvertSepiaToneCommand, &kHighlightMidtoneShadowCommand};
    const std::set<const Command*> oneBit{&kConvertBwDitherCommand, &kConvertBwThresholdCommand};
    for (const Tag before : {Tag{24, 0, false}, Tag{8, 1, true}, Tag{1, 1, true}}) {
        Tag expected = before;
        if (fullColour.count(&command) != 0) expected = {24, 0, false};
        if (oneBit.count(&command) != 0) expected = {1, 1, true};
        if (&command == &kConvertGreyscaleCommand) expected = {8, 1, true};
        EXPECT_EQ(TagAfter(command, before), expected);
    }
}

TEST(ColourDialogs, TitlesAndWindowStates) {
    const auto check = [](const Command& command, std::string_view title, std::string_view state) {
        EXPECT_EQ(command.spec.dialog->title, title);
        EXPECT_EQ(command.spec.dialog->windowState, state);
    };
    check(kAdjustContrastBrightnessCommand, "Adjust: Contrast - Brightness", "WS02");
    check(kAdjustColourHslCommand, "Adjust Hue-Saturation-Luminance", "WS03");
    check(kAdjustColourRgbCommand, "Adjust: color RGB", "WS04");
    check(kAdjustHistogramLuminanceCommand, "Adjust: luminance histogram ", "WS05");
    check(kColourCurveAdjustCommand, "Color curve adjustment", "WS14");
    check(kConvertBwDitherCommand, "Convert to black and white (1bit dithered)", "WS16");
    check(kConvertBwThresholdCommand, "Convert to Black and White (threshold)", "WS17");
    check(kConvertOneColourToneCommand, "Set single color tone (first made grayscale)", "WS18");
    check(kCountColoursCommand, "Color count - check color depth and count colors", "");
    check(kGammaAdjustCommand, "Gamma adjust", "WS40");
    check(kHighlightMidtoneShadowCommand, "Highlight - Midtone - Shadow", "WS04");
    check(kReplaceColourCommand, "Replace one color   RGB (0 - 255)", "WS66");
    check(kSolarizeCommand, "Solarize (threshold 0 - 255)", "WS75");
}

std::vector<std::string> Labels(const Command& command) {
    std::vector<std::string> labels;
    for (const script::FieldSpec& field : command.spec.fields) labels.emplace_back(field.label);
    return labels;
}

TEST(ColourDialogs, Labels) {
    EXPECT_THAT(Labels(kAdjustColourRgbCommand), ElementsAre("Adjust R", "Adjust G", "Adjust B"));
    EXPECT_THAT(Labels(kAdjustColourHslCommand), ElementsAre("Hue", "Saturation", "Luminance"));
    EXPECT_THAT(Labels(kReplaceColourCommand),
                ElementsAre("Color to remove", "", "", "Color to insert", "", "", "Tolerance %"));
    EXPECT_THAT(Labels(kConvertOneColourToneCommand), ElementsAre("Hue", "Saturation"));
    EXPECT_THAT(Labels(kAdjustContrastBrightnessCommand), ElementsAre("Contrast", "Brightness"));
    EXPECT_THAT(Labels(kGammaAdjustCommand), ElementsAre("Gamma:"));
    EXPECT_THAT(Labels(kSolarizeCommand), ElementsAre("Threshold"));
    EXPECT_THAT(Labels(kHighlightMidtoneShadowCommand),
                ElementsAre("Highlight", "Midtone", "Shadow"));
    EXPECT_EQ(Labels(kColourCurveAdjustCommand)[0], "Adjust for");
    EXPECT_THAT(Labels(kAdjustHistogramLuminanceCommand),
                ElementsAre("Low threshold", "High threshold", "Mode"));
    EXPECT_THAT(Labels(kConvertBwThresholdCommand), ElementsAre("Threshold", "Adjust %", "Mode"));
    EXPECT_THAT(Labels(kConvertBwDitherCommand), ElementsAre("Less  -- contrast --  More"));
    EXPECT_THAT(Labels(kCountColoursCommand),
                ElementsAre("Save image type in", "Save number of colors in"));
}

TEST(ColourDialogs, NamesOfTheChoices) {
    EXPECT_THAT(
        kConvertBwThresholdCommand.spec.fields[2].names,
        ElementsAre("Set threshold absolute (0-255)", "Set threshold as % adjustment to mean"));
    for (std::size_t i = 0; i < 2; ++i)
        EXPECT_THAT(
            kCountColoursCommand.spec.fields[i].names,
            ElementsAre("Counter A", "Counter B", "Counter C", "Counter D", "Counter E",
                        "Counter F", "Counter G", "Counter H", "Counter I", "Counter J", "None"));
    EXPECT_THAT(kColourCurveAdjustCommand.spec.fields[0].values,
                ElementsAre("1", "2", "3", "4", "5"));
}

TEST(ColourDialogs, Notes) {
    const std::map<const Command*, std::vector<std::string>> notes{
        {&kGammaAdjustCommand,
         {"< 1.0 will decrease brightness    =1.0 no change                        >1.0 will "
          "increase brightness"}},
        {&kConvertBwThresholdCommand, {"Pixels below threshold go to black, above go to white"}},
        {&kConvertBwDitherCommand,
         {"1 bit black and white using dithered error diffusion ", "More  -- shadow --  Less"}},
        {&kCountColoursCommand,
         {"Black and white (1 bit) = 0", "Greyscale (255 shades of gray) = 1",
          "Color (1-256 total) = 2", "Color (more than 256 total) = 3"}},
    };
    for (const Command* command : kAll) {
        if (command->spec.dialog == nullptr) continue;
        const auto found = notes.find(command);
        const auto expected = found == notes.end() ? std::vector<std::string>() : found->second;
        EXPECT_THAT(command->spec.dialog->notes, testing::ElementsAreArray(expected))
            << command->spec.name;
    }
}

TEST(ColourDialogs, Ranges) {
    const auto range = [](const Command& command, std::size_t field) {
        const script::FieldSpec& spec = command.spec.fields[field];
        return std::pair(spec.low, spec.high);
    };
    using Range = std::pair<double, double>;
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(range(kAdjustColourRgbCommand, i), Range(-100, 100));
        EXPECT_EQ(range(kHighlightMidtoneShadowCommand, i), Range(0, 100));
    }
    EXPECT_EQ(range(kAdjustColourHslCommand, 0), Range(-180, 180));
    EXPECT_EQ(range(kAdjustColourHslCommand, 1), Range(-100, 100));
    EXPECT_EQ(range(kAdjustColourHslCommand, 2), Range(-100, 100));
    for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(range(kReplaceColourCommand, i), Range(0, 255));
    EXPECT_EQ(range(kReplaceColourCommand, 6), Range(0, 100));
    EXPECT_EQ(range(kConvertOneColourToneCommand, 0), Range(0, 360));
    EXPECT_EQ(range(kConvertOneColourToneCommand, 1), Range(0, 100));
    EXPECT_EQ(range(kAdjustContrastBrightnessCommand, 0), Range(-100, 100));
    EXPECT_EQ(range(kAdjustContrastBrightnessCommand, 1), Range(-100, 100));
    EXPECT_EQ(range(kGammaAdjustCommand, 0), Range(0, 0));
    EXPECT_EQ(range(kSolarizeCommand, 0), Range(0, 255));
    for (std::size_t i = 1; i < 18; ++i)
        EXPECT_EQ(range(kColourCurveAdjustCommand, i), Range(0, 255));
    EXPECT_EQ(range(kAdjustHistogramLuminanceCommand, 0), Range(0, 127));
    EXPECT_EQ(range(kAdjustHistogramLuminanceCommand, 1), Range(128, 255));
    EXPECT_EQ(range(kConvertBwThresholdCommand, 0), Range(0, 255));
    EXPECT_EQ(range(kConvertBwThresholdCommand, 1), Range(-100, 100));
    EXPECT_EQ(range(kConvertBwDitherCommand, 0), Range(0, 100));
}

std::string Panel(const Command& command, std::string_view params) {
    return script::PanelText(command.spec, script::ParseParams(params));
}

TEST(ColourPanels, TellWhatTheCommandWillDo) {
    EXPECT_EQ(Panel(kAdjustColourRgbCommand, "3,1,-2,3,"),
              "Adjust r (%) = 1\nAdjust g (%) = -2\nAdjust b (%) = 3\n");
    EXPECT_EQ(
        Panel(kAdjustColourHslCommand, "3,0,-2,30,"),
        "Adjust hue (degrees) = +0\nAdjust saturation (%) = -2\nAdjust luminance (%) = +30\n");
    EXPECT_EQ(Panel(kReplaceColourCommand, "7,1,2,3,4,5,6,7,"),
              "Replace color: 1: 2: 3\nTolerance %: 7\nInsert color: 4: 5: 6\n");
    EXPECT_EQ(Panel(kConvertOneColourToneCommand, "2,30,50,"),
              "Image made grayscale\nwith same luminance, then:\nSet hue (degrees) = 30\n"
              "Set saturation (%) = 50\n");
    EXPECT_EQ(Panel(kConvertSepiaToneCommand, "0"),
              "Image is made grayscale\nwith same luminance, then\na one color sepia tone tint\n"
              "is added.\nNo parameters.\n");
    EXPECT_EQ(Panel(kAdjustContrastBrightnessCommand, "2,10,-20,"),
              "  (-100..+100)\nAdjust contrast %: 10\nAdjust brightness %: -20\n");
    EXPECT_EQ(Panel(kGammaAdjustCommand, "1,1.5,"), "Gamma adjust = 1.5\n");
    EXPECT_EQ(Panel(kSolarizeCommand, "1,100,"), "Threshold(0 - 255) = 100\n");
    EXPECT_EQ(Panel(kHighlightMidtoneShadowCommand, "3,90,50,5,"),
              "Highlight %: 90\nMidtone %:  50\nShadow %:  5\n");
    EXPECT_EQ(Panel(kAdjustHistogramLuminanceCommand, "3,10,200,0,"),
              "Low histogram threshold: 10\nHigh histogram threshold: 200\nStretch histogram\n");
    EXPECT_EQ(Panel(kAdjustHistogramLuminanceCommand, "3,10,200,7,"),
              "Low histogram threshold: 10\nHigh histogram threshold: 200\nEqualize histogram\n");
    EXPECT_EQ(Panel(kHistogramEqualizeCommand, "0"),
              "Equalizes the luminance\nhistogram over the entire\nrange. Averages the image\n"
              "brightness.\nNo parameters.\n");
    EXPECT_EQ(Panel(kHistogramStretchCommand, "0"),
              "Stretch the luminance\nhistogram over the entire\nrange. Increases the image\n"
              "brightness range.\nNo parameters.\n");
    EXPECT_EQ(Panel(kConvertBwThresholdCommand, "3,120,-5,0,"), "Absolute threshold:\n120\n");
    EXPECT_EQ(Panel(kConvertBwThresholdCommand, "3,120,-5,1,"),
              "Threshold is % adjust to mean:\n-5\n");
    EXPECT_EQ(Panel(kConvertBwDitherCommand, "1,30,"), "Lessen shadow, more contrast:\n30 %\n");
    EXPECT_EQ(Panel(kCountColoursCommand, "2,0,9,"),
              "Color depth code in: Counter A\nUnique colors in: Counter J\n");
    EXPECT_EQ(Panel(kCountColoursCommand, "2,10,1,"),
              "Color depth code in: None\nUnique colors in: Counter B\n");
    EXPECT_EQ(Panel(kMedianCutCommand, "0"),
              "Does a fast\n9 pixel median\nfilter of radius .6\nNo parameters\n");
}

TEST(ColourPanels, TheCurveNamesItsChannels) {
    EXPECT_EQ(Panel(kColourCurveAdjustCommand, "1,1,"),
              "Adjustment curve for:\nRGB (all color components)\n");
    EXPECT_EQ(Panel(kColourCurveAdjustCommand, "1,2,"), "Adjustment curve for:\nR (red only)\n");
    EXPECT_EQ(Panel(kColourCurveAdjustCommand, "1,3,"), "Adjustment curve for:\nG (green only)\n");
    EXPECT_EQ(Panel(kColourCurveAdjustCommand, "1,4,"), "Adjustment curve for:\nB (blue only)\n");
    EXPECT_EQ(Panel(kColourCurveAdjustCommand, "1,5,"),
              "Adjustment curve for:\nBrightness only\nno color change\n");
}

// The common opening keeps an empty picture from the handlers; called without it they report what
// the imaging folder says.
TEST(ColourFailures, AreReportedInTheWordsOfTheCommand) {
    const std::pair<const Command*, std::string> cases[] = {
        {&kAdjustContrastBrightnessCommand, "Cmd_02 CnBr L21561: "},
        {&kAdjustHistogramLuminanceCommand, "Cmd_05 Histogram(adjust) L19680: "},
        {&kColourCurveAdjustCommand, "Cmd_14 Curve L9090: "},
        {&kConvertGreyscaleCommand, "Cmd_15 Gray24 L3177: "},
        {&kConvertBwDitherCommand, "Cmd_16 Dither L20200: "},
        {&kConvertOneColourToneCommand, "Cmd_18 TintGray L6431: "},
        {&kConvertSepiaToneCommand, "Cmd_19 Sepia-Gray24 L3222: "},
        {&kGammaAdjustCommand, "Cmd_40 Gamma L9436: "},
        {&kHighlightMidtoneShadowCommand, "Cmd_42 HMS L7458: "},
        {&kHistogramEqualizeCommand, "Cmd_43 Histogram(equalize) L3109: "},
        {&kHistogramStretchCommand, "Cmd_44 Histogram (stretch) L3124: "},
        {&kSwapRedBlueCommand, "Cmd_81 SwapRB L3021: "},
    };
    for (const auto& [command, words] : cases) {
        test::CommandRunner runner({});
        std::string params = FactoryOf(*command);
        if (command == &kColourCurveAdjustCommand) params = "18,1,";
        EXPECT_EQ(command->run(runner.view, script::ParseParams(params)), engine::Outcome::Failed);
        EXPECT_THAT(runner.messages, ElementsAre(words + "  IS_error the picture is empty"));
    }
}

// What a failure leaves of the depth tag is part of the old behaviour too.
TEST(ColourFailures, TagThePictureWhereTheCommandGoesOn) {
    const auto tagAfterFailure = [](const Command& command) {
        test::CommandRunner runner({});
        runner.view.working.grey = &command == &kHighlightMidtoneShadowCommand;
        runner.view.working.imageBits = 4;
        EXPECT_EQ(command.run(runner.view, script::ParseParams(FactoryOf(command))),
                  engine::Outcome::Failed);
        return std::pair(runner.view.working.imageBits, runner.view.working.grey);
    };
    EXPECT_EQ(tagAfterFailure(kConvertGreyscaleCommand), std::pair(8, true));
    EXPECT_EQ(tagAfterFailure(kConvertBwDitherCommand), std::pair(1, true));
    EXPECT_EQ(tagAfterFailure(kHighlightMidtoneShadowCommand), std::pair(24, false));
    EXPECT_EQ(tagAfterFailure(kConvertOneColourToneCommand), std::pair(4, false));
    EXPECT_EQ(tagAfterFailure(kConvertSepiaToneCommand), std::pair(4, false));
}

TEST(ColourFailures, AFailedMedianCutStillReplacesThePicture) {
    test::CommandRunner runner(test::RandomImage({7, 5}, 1));
    const auto fail = [](imaging::ConstImageView, imaging::ImageView) {
        imaging::SetLastError("out of order");
        return false;
    };
    EXPECT_EQ(RunOperationIntoNewImage(runner.view, kMedianCutFailures, fail),
              engine::Outcome::Failed);
    EXPECT_THAT(runner.messages, ElementsAre("Cmd_57 Median cut L3154:   IS_error out of order"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({7, 5}, {0, 0, 0})));
}

TEST(ColourFailures, SomeSayNothing) {
    for (const Command* command :
         {&kNegativeCommand, &kSwapRedGreenCommand, &kSwapGreenBlueCommand}) {
        test::CommandRunner runner({});
        EXPECT_EQ(command->run(runner.view, {}), engine::Outcome::Failed);
        EXPECT_THAT(runner.messages, ElementsAre());
    }
}

}  // namespace
}  // namespace lumo::ops::colour
