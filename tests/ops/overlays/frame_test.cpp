#include <gmock/gmock.h>

#include "imaging/compose.h"
#include "imaging/resample.h"
#include "ops/overlays/overlay_commands.h"
#include "second_picture_fixture.h"

namespace lumo::ops::overlays {
namespace {

using imaging::Image;
using imaging::Rgb;
using imaging::Size;
using testing::ElementsAre;
using testing::StartsWith;

class FrameCommand : public test::SecondPictureTest {
  protected:
    /// A white window of a third in a frame of many colours.
    static Image Window(Size size) {
        Image made = test::RandomImage(size, 3);
        for (std::uint8_t& byte : made.View().Bytes()) byte /= 2;
        const imaging::Rect window{size.width / 3, size.height / 3, size.width * 2 / 3,
                                   size.height * 2 / 3};
        EXPECT_TRUE(imaging::FillSolidRect(made.View(), window, {255, 255, 250}));
        return made;
    }
    /// The frame stretched by the nearest pixel, near pixels of `key` left out.
    Image Expected(const Image& from, Rgb key, int t) const {
        auto stretched = Image::TryCreate(before.Extent());
        EXPECT_TRUE(
            imaging::ResizeImage(from.View(), stretched->View(), imaging::ResampleFilter::Nearest));
        for (int y = 0; y < before.Height(); ++y)
            for (int x = 0; x < before.Width(); ++x) {
                const Rgb p = stretched->View().Pixel(x, y);
                const int dr = p.red - key.red, dg = p.green - key.green, db = p.blue - key.blue;
                if (dr * dr + dg * dg + db * db <= t * 3 * t)
                    stretched->View().SetPixel(x, y, before.View().Pixel(x, y));
            }
        return std::move(*stretched);
    }
    const Image before = test::RandomImage({61, 40}, 1);
    const Image frame = Window({30, 30});
    const std::string path = Put("frame.bmp", frame.View());
};

TEST_F(FrameCommand, ShowsThePictureThroughTheExactColour) {
    test::CommandRunner runner(test::Copy(before.View()));
    runner.view.working.imageBits = 8;
    ASSERT_TRUE(runner.Run(kFrameOverlayCommand, "6,255,511,250,\"" + path + "\",0,0,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), Expected(frame, {255, 255, 250}, 0)));
    EXPECT_EQ(runner.Main().View().Pixel(30, 20), before.View().Pixel(30, 20));
    EXPECT_EQ(runner.view.working.imageBits, 24);
}

TEST_F(FrameCommand, AnotherColourCoversEverything) {
    test::CommandRunner runner(test::Copy(before.View()));
    ASSERT_TRUE(runner.Run(kFrameOverlayCommand, "6,255,255,255,\"" + path + "\",0,0,"));
    EXPECT_EQ(runner.Main().View().Pixel(30, 20), (Rgb{255, 255, 250}));
}

TEST_F(FrameCommand, AToleranceReachesNearColours) {
    test::CommandRunner runner(test::Copy(before.View()));
    ASSERT_TRUE(runner.Run(kFrameOverlayCommand, "6,255,255,255,\"" + path + "\",0,2,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), Expected(frame, {255, 255, 255}, 5)));
    EXPECT_EQ(runner.Main().View().Pixel(30, 20), before.View().Pixel(30, 20));
}

TEST_F(FrameCommand, TheCentreOfTheFrameGivesTheColour) {
    test::CommandRunner runner(test::Copy(before.View()));
    ASSERT_TRUE(runner.Run(kFrameOverlayCommand, "6,1,2,3,\"" + path + "\",1,0,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), Expected(frame, {255, 255, 250}, 0)));
}

TEST_F(FrameCommand, Failures) {
    test::CommandRunner runner(test::RandomImage({300, 200}, 1));
    EXPECT_FALSE(runner.Run(kFrameOverlayCommand, "6,1,2,3,\"" + Missing() + "\",1,0,"));
    const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + 100000);
    EXPECT_FALSE(runner.Run(kFrameOverlayCommand, "6,1,2,3,\"" + path + "\",1,0,"));
    EXPECT_THAT(runner.messages,
                ElementsAre(StartsWith("Unable to find or open:" + Missing() + " -   IS_error "),
                            StartsWith("Cmd_39 Frame L16726: memory failure  IS_error ")));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({300, 200}, 1)));
}

TEST_F(FrameCommand, PreviewGivesWhatTheRunGives) {
    const auto fields = script::ParseParams("6,1,2,3,\"x\",1,0,");
    EXPECT_TRUE(test::SamePixels(
        kFrameOverlayCommand.overlayPreview(before.View(), {610, 400}, frame.View(), fields),
        Expected(frame, {255, 255, 250}, 0)));
}

}  // namespace
}  // namespace lumo::ops::overlays
