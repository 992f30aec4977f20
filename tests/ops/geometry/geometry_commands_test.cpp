// What holds for every command of the family.

#include "ops/geometry/geometry_commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "imaging/parallel.h"
#include "ops/geometry/scale.h"
#include "ops/geometry/size_and_crop.h"
#include "script/catalogue.h"
#include "script/names.h"
#include "script/schema.h"
#include "support/command_runner.h"

namespace lumo::ops::geometry {
namespace {

namespace names = script::names;
using testing::ElementsAre;
using testing::StartsWith;

struct Row {
    const engine::Command& command;
    std::string_view name, title, windowState;
    // A parameter string whose work on 30 by 20 pixels of coordinates takes a buffer, and what is
    // said without the memory for it. The border found is the last column.
    std::string_view params, memoryFailure;
    bool fullColour;  // of the tag, when the command has done its work
};

const Row kRows[] = {
    {kAddBorderCommand, names::kAddBorder, "Add border ", "WS01", "8,1,1,1,1,0,0,0,0,",
     "Cmd_01 Border: memory failure!:", true},
    {kBorderFindAndCropCommand, names::kBorderFindAndCrop, "Border (find and crop)", "WS12",
     "5,1,69,10,22,1,", "AutoCrop: memory failure", false},
    {kCanvasSizeCommand, names::kCanvasSize, "Set canvas size", "WS13", "7,100,100,0,1,0,0,0,",
     "Canvas: memory failure", true},
    {kCropCommand, names::kCrop, "Crop", "WS23", "6,1,1,1,1,0,0,", "Cmd_23 Crop: memory failure",
     false},
    {kHorizontalPerspectiveCommand, names::kHorizontalPerspective, "Horizontal perspective", "WS45",
     "4,255,255,255,10,", "Cmd_45 Horizontal: memory failure", true},
    {kNewCanvasCommand, names::kNewCanvas, "New (canvas)   Replace current image with canvas", "",
     "6,640,480,0,0,0,0,", "Cmd_61 NewCanvas: memory failure", true},
    {kRotateQuarterCommand, names::kRotate90, "Rotate  (90 - 180 - 270)", "WS67", "1,90,", "",
     false},
    {kRotateSpecifyCommand, names::kRotateSpecify, "Rotate ( 1-359 )", "WS68", "4,255,255,255,20,",
     "Cmd_68 Rot Free: memory failure", true},
    {kShiftImageCommand, names::kShiftImage, "Shift image", "WS72", "7,0,0,0,1,255,255,255,",
     "Cmd_72 Shift: memory failure", true},
    {kSkewCommand, names::kSkew, "Skew", "WS74", "5,0,10,255,255,255,", "Skew: memory failure",
     true},
    {kSkewCommand, names::kSkew, "Skew", "WS74", "5,10,0,255,255,255,",
     "Cmd_74 Skew: memory failure", true},
    {kVerticalPerspectiveCommand, names::kVerticalPerspective, "Vertical perspective", "WS89",
     "4,255,255,255,10,", "Cmd_89 Vertical: memory failure", true},
};

TEST(GeometryCommands, FactoryStringsAndHelpTopicsAgreeWithTheCatalogue) {
    for (const Row& row : kRows) {
        const script::CatalogueRow* listed = script::FindByName(row.name);
        ASSERT_NE(listed, nullptr) << row.name;
        EXPECT_EQ(row.command.spec.name, row.name);
        EXPECT_EQ(script::FactoryString(row.command.spec.fields), listed->factory) << row.name;
        EXPECT_EQ(row.command.spec.dialog->helpTopic, listed->helpTopic) << row.name;
    }
}

TEST(GeometryCommands, AreFoundByNameAndTitledAsTheirDialogs) {
    for (const Row& row : kRows) {
        EXPECT_EQ(engine::FindCommand(row.name), &row.command) << row.name;
        EXPECT_EQ(row.command.spec.dialog->title, row.title);
        EXPECT_EQ(row.command.spec.dialog->windowState, row.windowState) << row.name;
    }
}

struct Range {
    const engine::Command& command;
    int field;
    double low, high;
};

const Range kRanges[] = {{kAddBorderCommand, 0, 0, 400},
                         {kAddBorderCommand, 1, 0, 400},
                         {kAddBorderCommand, 2, 0, 400},
                         {kAddBorderCommand, 3, 0, 400},
                         {kBorderFindAndCropCommand, 0, 0, 100},
                         {kCanvasSizeCommand, 0, 20, 32767},
                         {kCanvasSizeCommand, 1, 20, 32767},
                         {kCropCommand, 0, 0, 10000},
                         {kCropCommand, 1, 0, 10000},
                         {kCropCommand, 2, 0, 10000},
                         {kCropCommand, 3, 0, 10000},
                         {kHorizontalPerspectiveCommand, 3, -100, 100},
                         {kNewCanvasCommand, 0, 20, 32767},
                         {kNewCanvasCommand, 1, 20, 32767},
                         {kRotateSpecifyCommand, 3, 1, 359},
                         {kShiftImageCommand, 2, 0, 10000},
                         {kSizeAndCropCommand, 0, 20, 12000},
                         {kSizeAndCropCommand, 1, 20, 12000},
                         {kSkewCommand, 0, -45, 45},
                         {kSkewCommand, 1, -45, 45},
                         {kVerticalPerspectiveCommand, 3, -100, 100}};

TEST(GeometryCommands, DialogsLimitTheirNumbers) {
    for (const Range& range : kRanges) {
        const script::FieldSpec& field =
            range.command.spec.fields[static_cast<std::size_t>(range.field)];
        EXPECT_EQ(field.low, range.low) << range.command.spec.name << " " << range.field;
        EXPECT_EQ(field.high, range.high) << range.command.spec.name << " " << range.field;
    }
    // Colours are bytes, and every other number has a range.
    for (const Row& row : kRows)
        for (const script::FieldSpec& field : row.command.spec.fields) {
            const bool colour = field.kind == script::FieldKind::Red ||
                                field.kind == script::FieldKind::Green ||
                                field.kind == script::FieldKind::Blue;
            if (colour) {
                EXPECT_EQ(field.low, 0) << row.name;
                EXPECT_EQ(field.high, 255) << row.name;
            } else if (field.kind == script::FieldKind::Integer) {
                EXPECT_LT(field.low, field.high) << row.name;
            }
        }
}

TEST(GeometryCommands, PercentNarrowTheRangesOfCropAndShift) {
    const script::FieldSpec& shift = kShiftImageCommand.spec.fields[2];
    EXPECT_EQ(shift.whenField, 1);
    EXPECT_EQ(shift.whenText, "1");
    EXPECT_EQ(shift.whenLow, 0);
    EXPECT_EQ(shift.whenHigh, 100);
}

TEST(GeometryCommands, LabelsAndChoicesAreThoseOfTheDialogs) {
    const auto label = [](const engine::Command& command, std::size_t field) {
        return command.spec.fields[field].label;
    };
    EXPECT_EQ(label(kBorderFindAndCropCommand, 4), "Auto detect border color");
    EXPECT_EQ(label(kRotateSpecifyCommand, 3), "Rotate (degrees)");
    EXPECT_EQ(label(kHorizontalPerspectiveCommand, 3), "-100 %  perspective 100%");
    EXPECT_EQ(label(kVerticalPerspectiveCommand, 3), "-100 %  perspective 100%");
    EXPECT_EQ(label(kShiftImageCommand, 3), "Wrap around (else fill with background color)");
    EXPECT_EQ(label(kScaleCommand, 0), "Maintain aspect ratio (constrains proportions)");
    EXPECT_THAT(kRotateQuarterCommand.spec.fields[0].names,
                ElementsAre("Rotate 90", "Rotate 180", "Rotate 270"));
    EXPECT_THAT(kRotateQuarterCommand.spec.fields[0].values, ElementsAre("90", "180", "270"));
    EXPECT_THAT(kCropCommand.spec.fields[4].names, ElementsAre("Pixels", "Percent"));
    EXPECT_THAT(kCropCommand.spec.fields[5].names, ElementsAre("From edges", "From center"));
    EXPECT_THAT(kAddBorderCommand.spec.fields[7].names, ElementsAre("Pixels", "Percent"));
    EXPECT_THAT(kScaleCommand.spec.fields[1].names,
                ElementsAre("Absolute", "Relative", "Percentage"));
    for (const engine::Command* command : {&kScaleCommand, &kSizeAndCropCommand}) {
        const script::FieldSpec& sizing = command->spec.fields[command == &kScaleCommand ? 4 : 2];
        EXPECT_THAT(sizing.names,
                    ElementsAre("Bicubic resample", "Bilinear resample", "Nearest neighbor",
                                "Decimate", "Lanczos3 filter", "Hermite filter", "Catrona filter"));
        EXPECT_THAT(sizing.values, ElementsAre("3", "0", "1", "4", "13", "16", "18"));
    }
}

TEST(GeometryCommands, WithoutMemorySayItInTheirOwnWordsAndLeaveThePictureAlone) {
    const imaging::Image before = test::CoordinateImage({30, 20});
    for (const Row& row : kRows) {
        if (row.memoryFailure.empty()) continue;
        test::CommandRunner runner(test::CoordinateImage({30, 20}));
        runner.view.working.imageBits = 8;
        const test::ScopedMemoryBudget budget(1000);
        EXPECT_EQ(runner.Execute(row.command, row.params), engine::Outcome::Failed) << row.name;
        ASSERT_EQ(runner.messages.size(), 1U) << row.name;
        EXPECT_THAT(runner.messages[0],
                    StartsWith(std::string(row.memoryFailure) + "  IS_error not enough memory: "));
        EXPECT_TRUE(test::SamePixels(runner.Main().View(), before.View()));
        EXPECT_EQ(runner.view.working.imageBits, 8) << row.name;
    }
}

TEST(GeometryCommands, LeaveTheColourDepthTagAsEachIsToldTo) {
    for (const Row& row : kRows) {
        test::CommandRunner runner(test::CoordinateImage({30, 20}));
        runner.view.working.imageBits = 8;
        runner.view.working.imageBitsForced = 1;
        runner.view.working.grey = true;
        EXPECT_EQ(runner.Execute(row.command, row.params), engine::Outcome::Succeeded) << row.name;
        EXPECT_TRUE(runner.messages.empty()) << row.name;
        EXPECT_EQ(runner.view.working.imageBits, row.fullColour ? 24 : 8) << row.name;
        EXPECT_EQ(runner.view.working.imageBitsForced, row.fullColour ? 0 : 1) << row.name;
        EXPECT_EQ(runner.view.working.grey, !row.fullColour) << row.name;
    }
}

TEST(GeometryCommands, ShowTheNewSizeOutsideOfABatchOnly) {
    for (const Row& row : kRows) {
        test::CommandRunner runner(test::CoordinateImage({30, 20}));
        runner.Execute(row.command, row.params);
        const imaging::Size size = runner.Main().Extent();
        const std::string text = std::to_string(size.width) + "x" + std::to_string(size.height);
        ASSERT_FALSE(runner.ui.sizeTexts.empty()) << row.name;
        EXPECT_EQ(runner.ui.sizeTexts.back(), text) << row.name;
        runner.ui.sizeTexts.clear();
        runner.ExecuteInRun(row.command, row.params);
        EXPECT_TRUE(runner.ui.sizeTexts.empty()) << row.name;
    }
}

TEST(GeometryCommands, FailWithoutAPictureButForTheNewCanvas) {
    for (const Row& row : kRows) {
        test::CommandRunner runner{imaging::Image()};
        EXPECT_EQ(runner.Run(row.command, row.params), row.name == names::kNewCanvas) << row.name;
    }
}

// Whatever the fields say and whatever the picture is: a picture or none, but no crash, no endless
// work and no memory beyond the budget.
TEST(GeometryCommands, TakeAnyFieldsOnAnySmallPicture) {
    constexpr std::string_view kValues[] = {
        "",      "0",      "1",    "-1",         "2",           "3",         "45",
        "90",    "100",    "-100", "2147483647", "-2147483648", "1e9",       "x",
        "32767", "-32767", "200",  "359",        "65536",       "1073741824"};
    const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + (std::size_t{16} << 20));
    std::uint32_t state = 1;
    const auto next = [&](std::size_t below) {
        state = state * 1664525U + 1013904223U;
        return (state >> 8) % below;
    };
    for (int round = 0; round < 4000; ++round) {
        const Row& row = kRows[next(std::size(kRows))];
        const auto count = row.command.spec.fields.size();
        std::string params = std::to_string(count) + ",";
        for (std::size_t i = 0; i < count; ++i)
            params.append(kValues[next(std::size(kValues))]) += ',';
        const imaging::Size size{1 + static_cast<int>(next(9)), 1 + static_cast<int>(next(9))};
        test::CommandRunner runner(test::RandomImage(size, 5));
        runner.Execute(row.command, params);
        ASSERT_FALSE(runner.Main().IsEmpty()) << row.name << " " << params;
        const script::Fields fields = script::ParseParams(params);
        script::PanelText(row.command.spec, fields);
        row.command.preview(test::RandomImage({5, 4}, 6).View(), size, fields);
    }
}

TEST(GeometryCommands, SeveralThreadsGiveTheSameBytes) {
    std::vector<std::pair<const engine::Command*, std::string>> runs;
    for (const Row& row : kRows) runs.emplace_back(&row.command, row.params);
    for (const char* params : {"5,0,-40,1,2,3,", "5,0,3,1,2,3,"})
        runs.emplace_back(&kSkewCommand, params);
    for (const char* params : {"4,1,2,3,-70,", "4,1,2,3,100,"})
        for (const auto* command : {&kHorizontalPerspectiveCommand, &kVerticalPerspectiveCommand})
            runs.emplace_back(command, params);
    for (const char* params : {"7,3,0,333,1,1,2,3,", "7,1,0,333,0,1,2,3,"})
        runs.emplace_back(&kShiftImageCommand, params);
    for (const auto& [command, params] : runs) {
        test::CommandRunner alone(test::RandomImage({1500, 1100}, 8));
        ASSERT_TRUE(alone.Run(*command, params));
        imaging::SetKernelThreads(4);
        test::CommandRunner shared(test::RandomImage({1500, 1100}, 8));
        const bool ok = shared.Run(*command, params);
        imaging::SetKernelThreads(1);
        EXPECT_TRUE(ok);
        EXPECT_TRUE(test::SamePixels(shared.Main(), alone.Main()))
            << command->spec.name << " " << params;
    }
}

TEST(GeometryCommands, PreviewsShowWhatTheRunGivesAtFullScale) {
    for (const Row& row : kRows) {
        if (row.name == names::kCrop) continue;  // shows where the cut falls
        test::CommandRunner runner(test::CoordinateImage({30, 20}));
        const imaging::Image before = test::CoordinateImage({30, 20});
        std::string params(row.params);
        if (row.name == names::kNewCanvas) params = "6,40,30,0,1,2,3,";
        if (row.name == names::kCanvasSize) params = "7,40,30,0,1,1,2,3,";
        ASSERT_TRUE(runner.Run(row.command, params));
        const imaging::Image shown =
            row.command.preview(before.View(), {30, 20}, script::ParseParams(params));
        EXPECT_TRUE(test::SamePixels(shown.View(), runner.Main().View())) << row.name;
    }
}

}  // namespace
}  // namespace lumo::ops::geometry
