// What holds for every command of the family.

#include "ops/geometry/geometry_commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "script/catalogue.h"
#include "script/names.h"
#include "script/schema.h"
#include "support/command_runner.h"

namespace lumo::ops::geometry {
namespace {

namespace names = script::names;
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
