#include "ops/overlays/watermark.h"

#include <gmock/gmock.h>

#include <random>

#include "imaging/parallel.h"
#include "imaging/resample.h"
#include "imaging/resize_masked.h"
#include "ops/overlays/overlay_commands.h"
#include "second_picture_fixture.h"

namespace lumo::ops::overlays {
namespace {

using imaging::Image;
using imaging::Rgb;
using imaging::Size;
using testing::ElementsAre;
using testing::StartsWith;

// The walk over the overlay's pixels, one index for drawn and skipped ones alike.
void PlainComposite(Image& image, const Image& overlay, int x, int y, int p, const Rgb* key) {
    const std::uint8_t* pixel = overlay.View().Row(0);
    for (int row = y; row < y + overlay.Height(); ++row)
        for (int column = x; column < x + overlay.Width(); ++column, pixel += 3) {
            if (row < 0 || column < 0 || row >= image.Height() || column >= image.Width()) continue;
            if (key != nullptr && Rgb{pixel[0], pixel[1], pixel[2]} == *key) continue;
            for (int c = 0; c < 3; ++c) {
                std::uint8_t& value = image.View().At(column, row)[c];
                value = static_cast<std::uint8_t>(value * (100 - p) / 100 + pixel[c] * p / 100);
            }
        }
}

// Pixels of few colours, so that a key colour meets some of them.
Image Coarse(Size size, std::uint32_t seed) {
    Image image = test::RandomImage(size, seed);
    for (std::uint8_t& byte : image.View().Bytes()) byte &= 0x80;
    return image;
}

TEST(CompositeWatermark, MixesAsThePlainWalkAtEveryPlace) {
    std::mt19937 random(3);
    const auto upTo = [&](int most) { return static_cast<int>(random() % (most + 1)); };
    const Rgb key{0, 128, 0};
    for (int i = 0; i < 600; ++i) {
        const Image overlay = Coarse({1 + upTo(30), 1 + upTo(30)}, 100 + i);
        const Size size{1 + upTo(40), 1 + upTo(40)};
        const int x = upTo(90) - 40, y = upTo(90) - 40;
        const int opacity = i % 5 == 0 ? upTo(1000) - 400 : upTo(100);
        const Rgb* used = i % 2 == 0 ? &key : nullptr;
        Image actual = test::RandomImage(size, 5), expected = test::RandomImage(size, 5);
        CompositeWatermark(actual.View(), overlay.View(), x, y, opacity, used);
        PlainComposite(expected, overlay, x, y, opacity, used);
        ASSERT_TRUE(test::SamePixels(actual, expected)) << x << "," << y << " at " << opacity;
    }
}

TEST(CompositeWatermark, RowsLongerThanAPartAndThreads) {
    imaging::SetKernelThreads(3);
    const Image overlay = Coarse({1500, 800}, 1);
    Image actual = test::RandomImage({1400, 900}, 5), expected = test::RandomImage({1400, 900}, 5);
    const Rgb key{128, 128, 0};
    CompositeWatermark(actual.View(), overlay.View(), -3, 7, 61, &key);
    PlainComposite(expected, overlay, -3, 7, 61, &key);
    EXPECT_TRUE(test::SamePixels(actual, expected));
    imaging::SetKernelThreads(1);
}

TEST(CompositeWatermark, PlacesFarOutsideDrawNothing) {
    const Image overlay = test::FlatImage({4, 4}, {1, 1, 1});
    Image image = test::CoordinateImage({9, 9});
    for (const std::int64_t far : {2147483647LL, -2147483648LL, 1LL << 40}) {
        CompositeWatermark(image.View(), overlay.View(), far, 0, 100, nullptr);
        CompositeWatermark(image.View(), overlay.View(), 0, far, 100, nullptr);
    }
    EXPECT_TRUE(test::SamePixels(image, test::CoordinateImage({9, 9})));
}

TEST(PlaceWatermark, RelativeSizesTruncate) {
    const Size image{641, 481};
    WatermarkParams params{.x = 10, .y = 33, .sizePercent = 20, .enlarge = true};
    EXPECT_EQ(PlaceWatermark(image, {300, 200}, params), (WatermarkPlace{64, 158, 128, 85}));
    params.sizePercent = 100;
    EXPECT_EQ(PlaceWatermark(image, {64, 32}, params), (WatermarkPlace{64, 158, 641, 320}));
    params.enlarge = false;
    EXPECT_EQ(PlaceWatermark(image, {64, 32}, params), (WatermarkPlace{64, 158, 64, 32}));
    EXPECT_EQ(PlaceWatermark(image, {900, 450}, params), (WatermarkPlace{64, 158, 641, 320}));
    params.sizePercent = 0;
    EXPECT_EQ(PlaceWatermark(image, {64, 32}, params), (WatermarkPlace{64, 158, 0, 0}));
}

TEST(PlaceWatermark, AbsoluteKeepsPixelsAndFileSize) {
    const WatermarkParams params{.x = -7, .y = 900, .sizePercent = 50, .absolute = true};
    EXPECT_EQ(PlaceWatermark({100, 100}, {300, 20}, params), (WatermarkPlace{-7, 900, 300, 20}));
}

class WatermarkCommand : public test::SecondPictureTest {
  protected:
    std::string Params(const std::string& front, const std::string& path,
                       const std::string& back = "0,0,") const {
        return "12," + front + ",\"" + path + "\"," + back;
    }
    const Image before = test::RandomImage({60, 40}, 1);
};

TEST_F(WatermarkCommand, FullOpacityReplacesAndZeroChangesNothing) {
    const Image overlay = test::RandomImage({10, 8}, 2);
    const std::string path = Put("a.bmp", overlay.View());
    test::CommandRunner runner(test::Copy(before.View()));
    runner.view.working.imageBits = 8;
    ASSERT_TRUE(runner.Run(kWatermarkCommand, Params("5,6,20,0,0,0,0,255,10", path, "1,0,")));
    EXPECT_TRUE(test::SamePixels(runner.Main(), before));
    EXPECT_EQ(runner.view.working.imageBits, 24);
    ASSERT_TRUE(runner.Run(kWatermarkCommand, Params("5,6,20,100,0,0,0,255,10", path, "1,0,")));
    Image expected = test::Copy(before.View());
    PlainComposite(expected, overlay, 5, 6, 100, nullptr);
    EXPECT_TRUE(test::SamePixels(runner.Main(), expected));
}

TEST_F(WatermarkCommand, IsCutAtTheRightAndBottomEdges) {
    const Image overlay = test::RandomImage({12, 8}, 2);
    test::CommandRunner runner(test::Copy(before.View()));
    ASSERT_TRUE(runner.Run(kWatermarkCommand,
                           Params("95,98,20,100,0,0,0,255,10", Put("a.bmp", overlay.View()))));
    EXPECT_EQ(runner.Main().View().Pixel(57, 39), overlay.View().Pixel(0, 0));
    EXPECT_EQ(runner.Main().View().Pixel(59, 39), overlay.View().Pixel(2, 0));
    EXPECT_EQ(runner.Main().View().Pixel(56, 39), before.View().Pixel(56, 39));
}

TEST_F(WatermarkCommand, ASmallFileKeepsItsSizeUnlessItMayGrow) {
    const Image overlay = test::FlatImage({6, 4}, {9, 9, 9});
    const std::string path = Put("a.bmp", overlay.View());
    test::CommandRunner runner(test::FlatImage({60, 40}, {0, 0, 0}));
    ASSERT_TRUE(runner.Run(kWatermarkCommand, Params("0,0,100,100,0,0,0,255,10", path, "0,0,")));
    EXPECT_EQ(runner.Main().View().Pixel(5, 3), (Rgb{9, 9, 9}));
    EXPECT_EQ(runner.Main().View().Pixel(6, 3), (Rgb{0, 0, 0}));
    ASSERT_TRUE(runner.Run(kWatermarkCommand, Params("0,0,100,100,0,0,0,255,10", path, "0,1,")));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({60, 40}, {9, 9, 9})));
}

TEST_F(WatermarkCommand, OldScriptsWithoutTheLastFieldsStillWork) {
    const Image overlay = test::FlatImage({6, 4}, {9, 9, 9});
    const std::string path = Put("a.bmp", overlay.View());
    test::CommandRunner runner(test::FlatImage({60, 40}, {0, 0, 0}));
    ASSERT_TRUE(runner.Run(kWatermarkCommand, "10,50,50,100,100,0,0,0,255,10,\"" + path + "\","));
    EXPECT_EQ(runner.Main().View().Pixel(30, 20), (Rgb{9, 9, 9}));
    EXPECT_EQ(runner.Main().View().Pixel(36, 20), (Rgb{0, 0, 0}));
}

TEST_F(WatermarkCommand, TheKeyIsSnappedByTheToleranceAndThenExact) {
    Image overlay = test::FlatImage({3, 1}, {0, 0, 255});
    overlay.View().SetPixel(1, 0, {0, 0, 240});  // within 10 percent: 25 levels in each channel
    overlay.View().SetPixel(2, 0, {0, 0, 200});
    const std::string path = Put("a.bmp", overlay.View());
    for (const char* tolerance : {"10", "0"}) {
        test::CommandRunner runner(test::FlatImage({3, 1}, {1, 2, 3}));
        ASSERT_TRUE(
            runner.Run(kWatermarkCommand,
                       Params("0,0,20,100,1,0,0,255," + std::string(tolerance), path, "1,0,")));
        const auto pixel = [&](int x) { return runner.Main().View().Pixel(x, 0); };
        EXPECT_EQ(pixel(0), (Rgb{1, 2, 3}));
        EXPECT_EQ(pixel(1), tolerance == std::string("0") ? (Rgb{0, 0, 240}) : (Rgb{1, 2, 3}));
        EXPECT_EQ(pixel(2), (Rgb{0, 0, 200}));
    }
}

TEST_F(WatermarkCommand, ResizesWithAndWithoutTheKey) {
    const Image overlay = Coarse({40, 30}, 8);
    const std::string path = Put("a.bmp", overlay.View());
    const Rgb key{128, 0, 128};
    for (const bool useKey : {false, true}) {
        test::CommandRunner runner(test::Copy(before.View()));
        ASSERT_TRUE(runner.Run(
            kWatermarkCommand,
            Params(std::string("10,10,33,70,") + (useKey ? "1" : "0") + ",128,0,128,0", path)));
        auto resized = Image::TryCreate({19, 14});
        ASSERT_TRUE(useKey ? imaging::ResizeImageMasked(overlay.View(), resized->View(), key)
                           : imaging::ResizeImage(overlay.View(), resized->View(),
                                                  imaging::ResampleFilter::Bicubic));
        Image expected = test::Copy(before.View());
        PlainComposite(expected, *resized, 6, 4, 70, useKey ? &key : nullptr);
        EXPECT_TRUE(test::SamePixels(runner.Main(), expected));
    }
}

TEST_F(WatermarkCommand, NegativePositionsAreSkipped) {
    const Image overlay = test::RandomImage({10, 8}, 2);
    test::CommandRunner runner(test::Copy(before.View()));
    ASSERT_TRUE(runner.Run(kWatermarkCommand, Params("-4,-3,20,100,0,0,0,255,10",
                                                     Put("a.bmp", overlay.View()), "1,0,")));
    Image expected = test::Copy(before.View());
    PlainComposite(expected, overlay, -4, -3, 100, nullptr);
    EXPECT_TRUE(test::SamePixels(runner.Main(), expected));
}

TEST_F(WatermarkCommand, SizeZeroAsksForAnEmptyTargetAndFails) {
    const std::string path = Put("a.bmp", test::RandomImage({10, 8}, 2).View());
    test::CommandRunner runner(test::Copy(before.View()));
    EXPECT_FALSE(runner.Run(kWatermarkCommand, Params("0,0,0,100,0,0,0,255,10", path)));
    EXPECT_FALSE(runner.Run(kWatermarkCommand, Params("0,0,-20,100,1,0,0,255,10", path)));
    EXPECT_THAT(runner.messages, ElementsAre(StartsWith("Cmd_90 Watermark L3492:   IS_error "),
                                             StartsWith("Cmd_90 Watermark L3487:   IS_error ")));
    EXPECT_TRUE(test::SamePixels(runner.Main(), before));
}

TEST_F(WatermarkCommand, AMissingFileIsReportedWithItsPath) {
    test::CommandRunner runner(test::Copy(before.View()));
    EXPECT_FALSE(runner.Run(kWatermarkCommand, Params("0,0,20,100,0,0,0,255,10", Missing())));
    EXPECT_THAT(
        runner.messages,
        ElementsAre(StartsWith("Cmd_90 Unable to find or open:" + Missing() + "  IS_error ")));
}

TEST_F(WatermarkCommand, MemoryFailureLeavesThePictureAlone) {
    const std::string path = Put("a.bmp", test::RandomImage({10, 8}, 2).View());
    test::CommandRunner runner(test::Copy(before.View()));
    const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + (1 << 20));
    EXPECT_FALSE(runner.Run(kWatermarkCommand, Params("0,0,9000,100,0,0,0,255,10", path, "0,1,")));
    EXPECT_FALSE(
        runner.Run(kWatermarkCommand, Params("0,0,2147483647,100,0,0,0,255,10", path, "0,1,")));
    EXPECT_THAT(runner.messages, ElementsAre(StartsWith("Cmd_90 Watermark: memory failure"),
                                             StartsWith("Cmd_90 Watermark: memory failure")));
    EXPECT_TRUE(test::SamePixels(runner.Main(), before));
}

TEST_F(WatermarkCommand, AnEmptyPictureIsReportedAndDrawsNothing) {
    for (const bool absolute : {true, false}) {
        test::CommandRunner runner(test::Copy(before.View()));
        const auto outcome = LayWatermark(
            runner.view, {}, {.sizePercent = 20, .useKey = true, .absolute = absolute});
        EXPECT_EQ(outcome == engine::Outcome::Succeeded, absolute);
        ASSERT_FALSE(runner.messages.empty());
        EXPECT_EQ(runner.messages[0],
                  "Cmd_90 Watermark overlay: Nothing in image or corrupt file!");
        EXPECT_TRUE(test::SamePixels(runner.Main(), before));
    }
}

TEST_F(WatermarkCommand, PreviewIsInProportion) {
    const Image overlay = test::FlatImage({100, 50}, {9, 9, 9});
    const auto preview = [&](const char* params) {
        return kWatermarkCommand.overlayPreview(before.View(), {600, 400}, overlay.View(),
                                                script::ParseParams(params));
    };
    Image expected = test::Copy(before.View());
    PlainComposite(expected, test::FlatImage({10, 5}, {9, 9, 9}), 20, 10, 100, nullptr);
    EXPECT_TRUE(test::SamePixels(preview("12,200,100,20,100,0,0,0,255,10,\"x\",1,0,"), expected));
    EXPECT_TRUE(test::SamePixels(
        kWatermarkCommand.overlayPreview(before.View(), {600, 400}, {}, script::Fields()), before));
}

TEST_F(WatermarkCommand, PanelShowsWhatCounts) {
    const auto panel = [](const char* params) {
        return script::PanelText(kWatermarkCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("12,1,2,20,90,1,0,0,255,10,\"a.bmp\",0,1,"),
              "Relative (%)\nX = 1\nY = 2\nSize %: 20\nAllow enlarging\nOpacity %: 90\n"
              "Transparent color: 0: 0: 255\nTolerance %: 10\nOverlay image:\na.bmp\n");
    EXPECT_EQ(panel("12,1,2,20,90,0,0,0,255,10,\"a.bmp\",1,1,"),
              "Absolute(pixels)\nX = 1\nY = 2\nOpacity %: 90\nOverlay image:\na.bmp\n");
}

}  // namespace
}  // namespace lumo::ops::overlays
