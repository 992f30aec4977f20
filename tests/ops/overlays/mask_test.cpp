#include "ops/overlays/mask.h"

#include <gmock/gmock.h>

#include <vector>

#include "imaging/parallel.h"
#include "ops/overlays/overlay_commands.h"
#include "second_picture_fixture.h"

namespace lumo::ops::overlays {
namespace {

using imaging::Image;
using imaging::Rgb;
using imaging::Size;
using testing::ElementsAre;
using testing::StartsWith;

void PlainMask(Image& image, const std::uint8_t* grey, const MaskParams& params) {
    for (std::size_t i = 0; i < image.Extent().Area(); ++i) {
        const int m = params.invert ? 255 - grey[i] : grey[i];
        std::uint8_t* pixel = image.View().Row(0) + 3 * i;
        const int colour[] = {params.colour.red, params.colour.green, params.colour.blue};
        for (int c = 0; c < 3; ++c)
            if (!params.hardEdge)
                pixel[c] = static_cast<std::uint8_t>((pixel[c] * m + colour[c] * (255 - m)) / 255);
            else if (m != 255)
                pixel[c] = static_cast<std::uint8_t>(colour[c]);
    }
}

TEST(ApplyMask, FadesAsThePlainLoop) {
    for (const Size size : {Size{1, 1}, Size{5, 3}, Size{1025, 2}, Size{800, 700}})
        for (const bool hardEdge : {false, true})
            for (const bool invert : {false, true}) {
                const Image bytes = test::RandomImage(size, 4);
                std::vector<std::uint8_t> grey(size.Area());
                for (std::size_t i = 0; i < grey.size(); ++i) {
                    const int value = bytes.View().Row(0)[3 * i];
                    grey[i] = static_cast<std::uint8_t>(value < 60 ? 0 : value > 190 ? 255 : value);
                }
                const MaskParams params{{200, 100, 3}, hardEdge, invert};
                Image actual = test::RandomImage(size, 5), expected = test::RandomImage(size, 5);
                imaging::SetKernelThreads(size.width == 800 ? 3 : 1);
                ApplyMask(actual.View(), grey.data(), params);
                imaging::SetKernelThreads(1);
                PlainMask(expected, grey.data(), params);
                ASSERT_TRUE(test::SamePixels(actual, expected)) << size.width;
            }
}

class MaskCommand : public test::SecondPictureTest {
  protected:
    MaskCommand() {
        // Black, grey, near white, white.
        Image mask = test::FlatImage({4, 1}, {0, 0, 0});
        mask.View().SetPixel(1, 0, {100, 100, 100});
        mask.View().SetPixel(2, 0, {254, 254, 254});
        mask.View().SetPixel(3, 0, {255, 255, 255});
        path = Put("mask.bmp", mask.View());
    }
    std::vector<int> Reds(const std::string& transparent, const std::string& invert) {
        test::CommandRunner runner(test::FlatImage({4, 1}, {200, 0, 0}));
        EXPECT_TRUE(runner.Run(kMaskOverlayCommand,
                               "6,50,0,0,\"" + path + "\"," + transparent + "," + invert + ","));
        std::vector<int> reds;
        for (int x = 0; x < 4; ++x) reds.push_back(runner.Main().View().Pixel(x, 0).red);
        return reds;
    }
    std::string path;
};

TEST_F(MaskCommand, WhiteShowsThePictureAndBlackTheColour) {
    const int grey = (200 * 100 + 50 * 155) / 255, near = (200 * 254 + 50) / 255;
    EXPECT_THAT(Reds("1", "0"), ElementsAre(50, grey, near, 200));
    EXPECT_THAT(Reds("", "0"), ElementsAre(50, grey, near, 200));  // only "0" is the hard edge
}

TEST_F(MaskCommand, TheHardEdgeCoversEverythingShortOfWhite) {
    EXPECT_THAT(Reds("0", "0"), ElementsAre(50, 50, 50, 200));
    EXPECT_THAT(Reds("0", "1"), ElementsAre(200, 50, 50, 50));  // pure black alone shows it
}

TEST_F(MaskCommand, AnythingButZeroInverts) {
    EXPECT_EQ(Reds("1", "1"), Reds("1", "x"));
    EXPECT_EQ(Reds("1", "1")[0], 200);
    EXPECT_EQ(Reds("1", "1")[3], 50);
}

TEST_F(MaskCommand, StretchesByTheNearestPixelAndKeepsTheColourDepth) {
    test::CommandRunner runner(test::FlatImage({8, 6}, {200, 0, 0}));
    runner.view.working.imageBits = 8;
    ASSERT_TRUE(runner.Run(kMaskOverlayCommand, "6,50,0,0,\"" + path + "\",0,0,"));
    for (int y = 0; y < 6; ++y) {
        EXPECT_EQ(runner.Main().View().Pixel(5, y), (Rgb{50, 0, 0}));
        EXPECT_EQ(runner.Main().View().Pixel(6, y), (Rgb{200, 0, 0}));
    }
    EXPECT_EQ(runner.view.working.imageBits, 8);
}

TEST_F(MaskCommand, Failures) {
    test::CommandRunner runner(test::RandomImage({300, 200}, 1));
    EXPECT_FALSE(runner.Run(kMaskOverlayCommand, "6,0,0,0,\"" + Missing() + "\",1,0,"));
    {
        const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + 100000);
        EXPECT_FALSE(runner.Run(kMaskOverlayCommand, "6,0,0,0,\"" + path + "\",1,0,"));
    }
    {
        const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + 300 * 200 * 3 + 20000);
        EXPECT_FALSE(runner.Run(kMaskOverlayCommand, "6,0,0,0,\"" + path + "\",1,0,"));
    }
    EXPECT_THAT(runner.messages,
                ElementsAre(StartsWith("Cmd_55 Edge fade - open image file failure  IS_error "),
                            StartsWith("Cmd_55 Edge fade: memory failure!  IS_error "),
                            StartsWith("Cmd_55 Edge fade-2: memory failure  IS_error ")));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({300, 200}, 1)));
}

TEST_F(MaskCommand, ThePanelRunsTheOtherWay) {
    const auto panel = [](const char* params) {
        return script::PanelText(kMaskOverlayCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("6,1,2,3,\"a.bmp\",0,1,"),
              "Mask color: 1: 2: 3\nBlend transparent\nMask values inverted\nEdge mask:\na.bmp\n");
    EXPECT_EQ(panel("6,1,2,3,\"a.bmp\",1,0,"),
              "Mask color: 1: 2: 3\nOverlay opaque\nEdge mask:\na.bmp\n");
}

}  // namespace
}  // namespace lumo::ops::overlays
