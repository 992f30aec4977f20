#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/command_table.h"
#include "imaging/blur_gaussian.h"
#include "imaging/colour.h"
#include "imaging/last_error.h"
#include "imaging/simple_filters.h"
#include "ops/filters/box_blurs.h"
#include "ops/filters/filters_commands.h"
#include "ops/filters/unsharp.h"
#include "reference/disc_reference.h"
#include "reference/filter_reference.h"
#include "script/catalogue.h"
#include "support/command_runner.h"

namespace lumo::ops::filters {
namespace {

using engine::Command;
using imaging::Image;
using imaging::Rgb;
using imaging::Size;
using testing::ElementsAre;
using testing::StartsWith;

constexpr std::string_view kCustomDefault =
    "28,0,0,0,0,0,0,-1,0,-1,0,0,0,6,0,0,0,-1,0,-1,0,0,0,0,0,0,2,0,\"Sharpen\",";

struct Row {
    const Command& command;
    std::string_view params;  // the factory string
    std::string_view panel;
    std::string_view title, windowState, helpTopic;
    std::vector<std::string> failures;  // as the memory budget grows
};

const std::vector<Row>& Rows() {
    static const std::vector<Row> rows{
        {kBlurCommand, "1,25,", "", "Blur", "", "Blur", {"Cmd_08 Blur1: memory failure!"}},
        {kBlurMoreCommand,
         "1,75,",
         "",
         "Blur_more",
         "",
         "Blur_more",
         {"Cmd_09 Blur2: memory failure!"}},
        {kBlurGaussianCommand,
         "1,1.0,",
         "Blur radius (0.1 - 100:1.0\n",
         "Blur (gaussian)",
         "WS08",
         "Blurgaussian",
         {"Cmd_10 Blur Gaussian: memory failure!"}},
        {kBlurOutwardCommand,
         "2,40,5.0,",
         "Radius % to begin blur\n(0 - 100) =40\nBlur radius (0.1-10.0):5.0\n",
         "Median filter",
         "WS11",
         "Bluroutward",
         {"Cmd_11 Blur Out: memory failure!"}},
        {kDespeckleCommand,
         "0",
         "No parameters\nDoes a block blur\non pixels with the\ngreatest color change.\n",
         "",
         "",
         "",
         {"Cmd_26 Despeckle failure L3195: "}},
        {kDustRemoveCommand,
         "2,40,1.0,",
         "Luminance variation\nthreshold(0 - 255) =40\nRadius (0.1 - 10.0) =1.0\n",
         "Median filter",
         "WS11",
         "Dustremove",
         {"Cmd_30 Dust: memory failure"}},
        {kMaximumFilterCommand,
         "1,1.0,",
         "Search radius (0.1 - 10.0):1.0\n",
         "Blur (gaussian)",
         "WS08",
         "Maximumfilter",
         {"Cmd_56 Max: memory failure"}},
        {kMedianFilterCommand,
         "1,1.0,",
         "filter radius (0.1 - 10.0):1.0\n",
         "Median filter",
         "WS11",
         "medianfilter",
         {"Cmd_58 Median Filter: memory failure!"}},
        {kMinimumFilterCommand,
         "1,1.0,",
         "Search radius (0.1 - 10.0):1.0\n",
         "Blur (gaussian)",
         "WS08",
         "Minimumfilter",
         {"Cmd_59 Minimum: memory failure"}},
        {kSharpenCommand,
         "1,0,",
         "Sharpen(0 - 100) =0\n",
         "Sharpen",
         "WS71",
         "Sharpen",
         {"Sharp L15456: memory failure!"}},
        {kUnsharpMaskCommand,
         "4,1.0,100,0,1,",
         "Pixel radius:1.0\nAmount:100\nThreashold:0\nLuminance only\n",
         "Unsharp mask",
         "WS88",
         "Unsharpmask",
         {"Cmd_88 Unsharp mask: memory failure", "Unsharp mask: memory failure!"}},
        {kEmbossCommand,
         "2,50,0,",
         "Brightness (0-100): 50\nConvert color values\n",
         "Emboss filter",
         "WS34",
         "Emboss",
         {"Cmd_34 Emboss1: memory failure", "Cmd_34 Emboss2: memory failure",
          "Cmd_34 Emboss3: memory failure"}},
        {kCustomFilterCommand,
         kCustomDefault,
         "Custom filter: Sharpen\nScale: 2\nOffset addjustment:0\n",
         "Custom filter",
         "WS24",
         "Customfilter",
         {"Cmd_24 Custom1: memory failure", "Cmd_24 Custom2: memory failure",
          "Cmd_24 Custom3: memory failure"}},
    };
    return rows;
}

TEST(FilterCommands, StandInTheTableWithTheSchemaOfTheCatalogue) {
    ASSERT_EQ(Rows().size(), 13U);
    for (const Row& row : Rows()) {
        const std::string name(row.command.spec.name);
        EXPECT_EQ(engine::FindCommand(name), &row.command) << name;
        EXPECT_EQ(script::FactoryString(row.command.spec.fields), row.params) << name;
        EXPECT_EQ(script::PanelText(row.command.spec, script::ParseParams(row.params)), row.panel)
            << name;
        if (row.title.empty()) {
            EXPECT_EQ(row.command.spec.dialog, nullptr) << name;
            continue;
        }
        ASSERT_NE(row.command.spec.dialog, nullptr) << name;
        EXPECT_EQ(row.command.spec.dialog->title, row.title) << name;
        EXPECT_EQ(row.command.spec.dialog->windowState, row.windowState) << name;
        EXPECT_EQ(row.command.spec.dialog->helpTopic, row.helpTopic) << name;
        EXPECT_NE(row.command.preview, nullptr) << name;
    }
}

TEST(FilterDialogs, LabelsAndRanges) {
    struct Edit {
        const Command& command;
        std::size_t field;
        std::string_view label;
        double low, high;  // equal: no range
    };
    const Edit edits[] = {
        {kBlurGaussianCommand, 0, "Blur radius", 0.1, 10.0},
        {kBlurOutwardCommand, 0, "Radius % to begin blur", 0, 100},
        {kBlurOutwardCommand, 1, "Blur radius", 0.1, 10.0},
        {kMaximumFilterCommand, 0, "Search radius", 0.1, 10.0},
        {kMinimumFilterCommand, 0, "Search radius", 0.1, 10.0},
        {kMedianFilterCommand, 0, "filter radius", 0.1, 10.0},
        {kDustRemoveCommand, 0, "Luminance variation threshold", 1, 255},
        {kDustRemoveCommand, 1, "Radius", 0.1, 10.0},
        {kSharpenCommand, 0, "Sharpen", 0, 100},
        {kUnsharpMaskCommand, 0, "Pixel radius", 0.1, 20.0},
        {kUnsharpMaskCommand, 1, "Amount 1-500%", 1, 500},
        {kUnsharpMaskCommand, 2, "Threshold 0-255", 0, 255},
        {kUnsharpMaskCommand, 3, "Luminosity only", 0, 0},
        {kEmbossCommand, 0, "Brighten (0-100)", 0, 100},
        {kCustomFilterCommand, 25, "Scale:", 0, 0},
        {kCustomFilterCommand, 26, "Offset:", 0, 0},
    };
    for (const Edit& edit : edits) {
        const script::FieldSpec& field = edit.command.spec.fields[edit.field];
        EXPECT_EQ(field.label, edit.label) << edit.command.spec.name;
        EXPECT_EQ(field.low, edit.low) << edit.command.spec.name << " " << edit.label;
        EXPECT_EQ(field.high, edit.high) << edit.command.spec.name << " " << edit.label;
    }
    EXPECT_THAT(kEmbossCommand.spec.fields[1].names,
                ElementsAre("Convert color values", "Convert to grayscale"));
    for (std::size_t i = 0; i < 25; ++i)
        EXPECT_EQ(kCustomFilterCommand.spec.fields[i].maxLength, 4);
}

TEST(FilterPanels, NameTheOtherChoice) {
    const auto panel = [](const Command& command, std::string_view params) {
        return script::PanelText(command.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel(kUnsharpMaskCommand, "4,1.5,200,3,0,"),
              "Pixel radius:1.5\nAmount:200\nThreashold:3\nColors modified\n");
    EXPECT_EQ(panel(kEmbossCommand, "2,10,1,"), "Brightness (0-100): 10\nConvert to grayscale\n");
}

// The common opening keeps an empty picture from the handlers; called without it they report what
// the imaging folder says.
TEST(FilterFailures, OfOperationsAreReportedInTheWordsOfTheCommand) {
    const auto messageOf = [](const Command& command, std::string_view params) {
        test::CommandRunner runner{Image()};
        EXPECT_EQ(command.run(runner.view, script::ParseParams(params)), engine::Outcome::Failed);
        EXPECT_FALSE(runner.view.working.grey);
        EXPECT_EQ(runner.messages.size(), 1U);
        return runner.messages.empty() ? "" : runner.messages[0];
    };
    EXPECT_EQ(messageOf(kDespeckleCommand, "0"),
              "Cmd_26 Despeckle failure L3195:   IS_error the picture is empty");
    EXPECT_EQ(messageOf(kEmbossCommand, "2,50,1,"),
              "Cmd_34 Emboss L18692: gray conversion failure:   IS_error the picture is empty");
}

TEST(FilterFailures, AFailedBlurOrSharpeningStillReplacesThePicture) {
    const auto fail = [](imaging::ConstImageView, imaging::ImageView) {
        imaging::SetLastError("out of order");
        return false;
    };
    for (const auto& [failures, words] :
         {std::pair(kBlurFailures, "Cmd_08 Blur1 L18535:   IS_error out of order"),
          std::pair(kSharpenFailures, "Cmd_71 Sharp L15462:   IS_error out of order")}) {
        test::CommandRunner runner(test::RandomImage({7, 5}, 1));
        EXPECT_EQ(RunOperationIntoNewImage(runner.view, failures, fail), engine::Outcome::Failed);
        EXPECT_THAT(runner.messages, ElementsAre(words));
        EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({7, 5}, {0, 0, 0})));
    }
}

TEST(FilterCommands, KeepSizeAndColourDepth) {
    for (const Row& row : Rows()) {
        test::CommandRunner runner(test::RandomImage({37, 23}, 1));
        runner.view.working.imageBits = 1;
        runner.view.working.imageBitsForced = 1;
        runner.view.working.grey = true;
        EXPECT_TRUE(runner.Run(row.command, row.params)) << row.command.spec.name;
        EXPECT_EQ(runner.Main().Extent(), (Size{37, 23})) << row.command.spec.name;
        EXPECT_EQ(runner.view.working.imageBits, 1) << row.command.spec.name;
        EXPECT_EQ(runner.view.working.imageBitsForced, 1) << row.command.spec.name;
        EXPECT_TRUE(runner.view.working.grey) << row.command.spec.name;
        EXPECT_TRUE(runner.messages.empty()) << row.command.spec.name;
    }
}

TEST(FilterCommands, FailOnAnEmptyImage) {
    for (const Row& row : Rows()) {
        test::CommandRunner runner{Image()};
        EXPECT_FALSE(runner.Run(row.command, row.params)) << row.command.spec.name;
    }
}

TEST(FilterCommands, ReportMissingMemoryAndLeaveTheImageAlone) {
    const Image before = test::RandomImage({2000, 8}, 2);
    for (const Row& row : Rows()) {
        test::CommandRunner runner(test::Copy(before.View()));
        std::vector<std::string> seen;
        for (std::size_t extra = 0; extra < 3'000'000; extra += 2000) {
            imaging::TrimPixelPool();
            const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + extra);
            if (runner.Run(row.command, row.params)) break;
            ASSERT_EQ(runner.messages.size(), 1U);
            EXPECT_NE(runner.messages[0].find("  IS_error "), std::string::npos);
            const std::string text = runner.messages[0].substr(0, runner.messages[0].find("  IS_"));
            if (seen.empty() || seen.back() != text) seen.push_back(text);
            runner.messages.clear();
            ASSERT_TRUE(test::SamePixels(runner.Main(), before)) << row.command.spec.name;
        }
        EXPECT_EQ(seen, row.failures) << row.command.spec.name;
    }
}

Image Ran(const Command& command, const Image& source, std::string_view params) {
    test::CommandRunner runner(test::Copy(source.View()));
    EXPECT_TRUE(runner.Run(command, params)) << command.spec.name;
    return test::Copy(runner.Main().View());
}

TEST(FilterCommands, HandTheirFieldsToTheFilters) {
    const Image source = test::RandomImage({41, 29}, 3);
    const auto view = source.View();
    EXPECT_TRUE(test::SamePixels(Ran(kMaximumFilterCommand, source, "1,3.5,"),
                                 reference::MaximumFilter(view, 3.5)));
    EXPECT_TRUE(test::SamePixels(Ran(kMinimumFilterCommand, source, "1,3.5,"),
                                 reference::MinimumFilter(view, 3.5)));
    EXPECT_TRUE(test::SamePixels(Ran(kMedianFilterCommand, source, "1,99,"),
                                 reference::MedianFilter(view, 10.0)));
    EXPECT_TRUE(test::SamePixels(Ran(kMedianFilterCommand, source, "1,,"),
                                 reference::MedianFilter(view, 0.1)));
    EXPECT_TRUE(test::SamePixels(Ran(kDustRemoveCommand, source, "2,70,2.5,"),
                                 reference::DustRemove(view, 70, 2.5)));
    EXPECT_TRUE(test::SamePixels(Ran(kBlurOutwardCommand, source, "2,40,5.0,"),
                                 reference::BlurOutward(view, 40, 5.0)));
    EXPECT_TRUE(
        test::SamePixels(Ran(kBlurMoreCommand, source, "anything"), reference::BlurMore(view)));
    EXPECT_TRUE(test::SamePixels(
        Ran(kCustomFilterCommand, source, kCustomDefault),
        reference::Convolve(
            view, {0, 0, 0, 0, 0, 0, -1, 0, -1, 0, 0, 0, 6, 0, 0, 0, -1, 0, -1, 0, 0, 0, 0, 0, 0},
            2, 0)));
    Image blurred = test::Copy(view);
    ASSERT_TRUE(imaging::BlurGaussian(view, blurred.View(), 2.5));
    EXPECT_TRUE(test::SamePixels(Ran(kBlurGaussianCommand, source, "1,2.5,"), blurred));
    EXPECT_TRUE(test::SamePixels(Ran(kUnsharpMaskCommand, source, "4,2.5,150,9,1,"),
                                 reference::UnsharpMask(view, blurred.View(), 150, 9, true)));
    EXPECT_TRUE(test::SamePixels(Ran(kUnsharpMaskCommand, source, "4,2.5,150,9,2,"),
                                 reference::UnsharpMask(view, blurred.View(), 150, 9, false)));
    Image other = test::Copy(view);
    ASSERT_TRUE(imaging::BlurImage(view, other.View(), 100));
    EXPECT_TRUE(test::SamePixels(Ran(kBlurCommand, source, "0"), other));
    ASSERT_TRUE(imaging::SharpenImage(view, other.View(), 60));
    EXPECT_TRUE(test::SamePixels(Ran(kSharpenCommand, source, "1,60,"), other));
}

TEST(EmbossFilter, MakesFlatAreasTheMiddleGrey) {
    const Image flat = test::FlatImage({20, 10}, {200, 10, 90});
    EXPECT_TRUE(test::SamePixels(Ran(kEmbossCommand, flat, "2,50,0,"),
                                 test::FlatImage({20, 10}, {128, 128, 128})));
    EXPECT_TRUE(test::SamePixels(Ran(kEmbossCommand, flat, "2,0,0,"),
                                 test::FlatImage({20, 10}, {78, 78, 78})));
}

TEST(EmbossFilter, ConvertsToGreyFirstWhereItIsAsked) {
    const Image source = test::RandomImage({30, 20}, 5);
    Image grey = test::Copy(source.View());
    imaging::ImageToGrayScale(grey.View());
    const std::array<int, 25> kernel{0, 0, 0, 0,  0, 0, -1, 0, 1, 0, 0, -1, 0,
                                     1, 0, 0, -1, 0, 1, 0,  0, 0, 0, 0, 0};
    test::CommandRunner runner(test::Copy(source.View()));
    ASSERT_TRUE(runner.Run(kEmbossCommand, "2,50,1,"));
    EXPECT_TRUE(test::SamePixels(runner.Main().View(),
                                 reference::Convolve(grey.View(), kernel, 1, 128).View()));
    EXPECT_TRUE(runner.view.working.grey);
    EXPECT_EQ(runner.view.working.imageBits, 8);
    EXPECT_EQ(runner.view.working.imageBitsForced, 1);
    // A picture that is marked as grey is not converted again.
    test::CommandRunner marked(test::Copy(source.View()));
    marked.view.working.grey = true;
    ASSERT_TRUE(marked.Run(kEmbossCommand, "2,50,1,"));
    EXPECT_TRUE(test::SamePixels(marked.Main().View(),
                                 reference::Convolve(source.View(), kernel, 1, 128).View()));
}

TEST(CustomFilter, KeepsAFlatPictureWithTheDefaultKernel) {
    for (const int level : {0, 1, 99, 254, 255}) {
        const auto v = static_cast<std::uint8_t>(level);
        const Image flat = test::FlatImage({9, 9}, {v, v, v});
        EXPECT_TRUE(test::SamePixels(Ran(kCustomFilterCommand, flat, kCustomDefault), flat));
    }
}

TEST(CustomFilter, GivesTheOffsetWithoutWeights) {
    const std::string zeros = "28,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,";
    const Image source = test::RandomImage({9, 9}, 6);
    EXPECT_TRUE(test::SamePixels(Ran(kCustomFilterCommand, source, zeros + "1,77,\"x\","),
                                 test::FlatImage({9, 9}, {77, 77, 77})));
    EXPECT_TRUE(test::SamePixels(Ran(kCustomFilterCommand, source, zeros + "0,300,\"x\","),
                                 test::FlatImage({9, 9}, {255, 255, 255})));
}

// As the memory grows the command fails, then succeeds without a change, then works.
void ExpectNoChangeWithoutMemoryToBlur(const Command& command, std::string_view params) {
    const Image before = test::RandomImage({2000, 8}, 2);
    test::CommandRunner runner(test::Copy(before.View()));
    bool unchanged = false, changed = false;
    for (std::size_t extra = 0; extra < 3'000'000 && !changed; extra += 2000) {
        imaging::TrimPixelPool();
        const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + extra);
        if (!runner.Run(command, params)) continue;
        (test::SamePixels(runner.Main(), before) ? unchanged : changed) = true;
    }
    EXPECT_TRUE(unchanged) << command.spec.name;
    EXPECT_TRUE(changed) << command.spec.name;
}

TEST(FilterCommands, SucceedWithoutAChangeIfThereIsNoMemoryToBlur) {
    ExpectNoChangeWithoutMemoryToBlur(kBlurGaussianCommand, "1,5.0,");
    ExpectNoChangeWithoutMemoryToBlur(kUnsharpMaskCommand, "4,20.0,100,0,0,");
    ExpectNoChangeWithoutMemoryToBlur(kUnsharpMaskCommand, "4,20.0,100,0,1,");
}

TEST(FilterCommands, PreviewAtFullSizeIsWhatTheRunGives) {
    const Image source = test::RandomImage({41, 29}, 3);
    for (const Row& row : Rows()) {
        if (row.command.preview == nullptr) continue;
        const Image shown =
            row.command.preview(source.View(), source.Extent(), script::ParseParams(row.params));
        EXPECT_TRUE(test::SamePixels(shown, Ran(row.command, source, row.params)))
            << row.command.spec.name;
    }
}

TEST(FilterCommands, PreviewScalesTheRadius) {
    const Image source = test::RandomImage({41, 29}, 3);
    const Size sample{410, 290};
    const auto fields = script::ParseParams("1,10.0,");
    EXPECT_TRUE(test::SamePixels(kMedianFilterCommand.preview(source.View(), sample, fields),
                                 reference::MedianFilter(source.View(), 1.0)));
    EXPECT_TRUE(test::SamePixels(kMaximumFilterCommand.preview(source.View(), sample, fields),
                                 reference::MaximumFilter(source.View(), 1.0)));
}

}  // namespace
}  // namespace lumo::ops::filters
