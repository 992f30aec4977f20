#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "imaging/parallel.h"
#include "imaging/resample.h"
#include "ops/overlays/blend_kernel.h"
#include "ops/overlays/overlay_commands.h"
#include "second_picture_fixture.h"

namespace lumo::ops::overlays {
namespace {

using imaging::Image;
using imaging::Rgb;
using imaging::Size;
using testing::ElementsAre;
using testing::StartsWith;

// The eight methods once more, each as a formula on doubles.
int PlainBlend(const BlendParams& p, int a, int b) {
    const auto cut = [](double quotient) { return std::trunc(quotient); };
    double t = 0;
    switch (p.method) {
        case BlendMethod::Normal:
            return a;
        case BlendMethod::Addition:
            t = cut((a + b) / p.scale);
            break;
        case BlendMethod::Subtract:
            t = cut((a - b) / p.scale);
            break;
        case BlendMethod::Difference:
            t = cut(std::abs(a - b) / p.scale);
            break;
        case BlendMethod::Lightest:
            t = cut(std::max(a, b) / p.scale);
            break;
        case BlendMethod::Darkest:
            t = cut(std::min(a, b) / p.scale);
            break;
        case BlendMethod::Multiply:
            t = cut(a * b / p.scale);
            break;
        case BlendMethod::Screen:
            t = 255 - cut((255 - a) * (255 - b) / p.scale);
            break;
        default:
            t = a > b ? 255 - cut((255 - a) * (255 - b) / p.scale) : cut(a * b / p.scale);
    }
    t += p.offset;
    if (t > 255) t = 255;
    if (t < 0) t = 0;
    return static_cast<int>(t);
}

constexpr BlendMethod kOwnMethods[] = {
    BlendMethod::Normal,     BlendMethod::Addition, BlendMethod::Subtract,
    BlendMethod::Difference, BlendMethod::Multiply, BlendMethod::Screen,
    BlendMethod::Overlay,    BlendMethod::Darkest,  BlendMethod::Lightest};

// Two pictures that together hold every pair of bytes.
Image AllFirst() {
    Image image = test::FlatImage({256, 86}, {});
    const auto bytes = image.View().Bytes();
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i % 256);
    return image;
}
Image AllSecond() {
    Image image = test::FlatImage({256, 86}, {});
    const auto bytes = image.View().Bytes();
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i / 256);
    return image;
}

void ExpectAsPlain(const BlendParams& params) {
    Image image = AllFirst();
    const Image before = AllFirst(), second = AllSecond();
    BlendImages(image.View(), second.View(), params);
    const auto bytes = image.View().Bytes();
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const int a = before.View().Bytes()[i];
        const int b = params.invert ? 255 - second.View().Bytes()[i] : second.View().Bytes()[i];
        int expected = PlainBlend(params, a, b);
        if (params.opacity != 100)
            expected = expected * params.opacity / 100 + b * (100 - params.opacity) / 100;
        ASSERT_EQ(bytes[i], static_cast<std::uint8_t>(expected))
            << kBlendNames[static_cast<std::size_t>(params.method)] << " of " << a << ", " << b
            << " scale " << params.scale << " offset " << params.offset << " opacity "
            << params.opacity;
    }
}

TEST(BlendImages, EveryPairOfBytesAtUsualAndOtherScales) {
    for (const BlendMethod method : kOwnMethods)
        for (const double scale :
             {UsualScale(method), 1.0, 1.5, 2.0, 3.3, 254.0, 255.0, 999.0, 0.25, -1.0, -2.5})
            for (const int offset : {0, 1, -1, 100, -255, 100000, -2147483647 - 1, 2147483647})
                ExpectAsPlain({method, offset, 100, scale, false});
}

TEST(BlendImages, OpacityMixesWithTheSecondPicture) {
    for (const BlendMethod method : kOwnMethods)
        for (const int opacity : {0, 1, 33, 50, 99, 101, 200, 1000, -7})
            for (const bool invert : {false, true})
                ExpectAsPlain({method, 3, opacity, UsualScale(method), invert});
}

TEST(BlendImages, ScaleZeroIsDefined) {
    const BlendParams add{BlendMethod::Addition, 0, 100, 0.0, false};
    EXPECT_EQ(BlendByte(add, 1, 0), 255);
    EXPECT_EQ(BlendByte(add, 0, 0), 0);  // no number at all
    const BlendParams subtract{BlendMethod::Subtract, 5, 100, 0.0, false};
    EXPECT_EQ(BlendByte(subtract, 0, 1), 0);
    EXPECT_EQ(BlendByte({BlendMethod::Screen, 0, 100, 0.0, false}, 0, 0), 0);
}

TEST(BlendImages, NumericExamples) {
    const auto blend = [](BlendMethod method, double scale, int offset, int a, int b) {
        return int{BlendByte({method, offset, 100, scale, false}, a, b)};
    };
    EXPECT_EQ(blend(BlendMethod::Addition, 1, 0, 200, 100), 255);
    EXPECT_EQ(blend(BlendMethod::Addition, 2, 0, 100, 51), 75);  // the average, cut down
    EXPECT_EQ(blend(BlendMethod::Subtract, 1, 0, 10, 50), 0);
    EXPECT_EQ(blend(BlendMethod::Subtract, 1, 100, 10, 50), 60);
    EXPECT_EQ(blend(BlendMethod::Subtract, 3, 10, 0, 5), 9);  // -1.67 is cut to -1
    EXPECT_EQ(blend(BlendMethod::Multiply, 1, 0, 16, 16), 255);
    EXPECT_EQ(blend(BlendMethod::Multiply, 1, 0, 15, 15), 225);
    EXPECT_EQ(blend(BlendMethod::Overlay, 255, 0, 200, 100), 255 - 55 * 155 / 255);
    EXPECT_EQ(blend(BlendMethod::Overlay, 255, 0, 100, 200), 100 * 200 / 255);
}

TEST(BlendImages, TheFiveFixedMethods) {
    const auto blend = [](BlendMethod method, int a, int b) {
        return int{BlendByte({method, 77, 100, 3.0, false}, a, b)};  // scale and offset unused
    };
    EXPECT_EQ(blend(BlendMethod::SoftDodge, 100, 50), 100 * 128 / 205);
    EXPECT_EQ(blend(BlendMethod::SoftDodge, 200, 100), 255 - 155 * 128 / 200);
    EXPECT_EQ(blend(BlendMethod::SoftDodge, 0, 255), 255);
    EXPECT_EQ(blend(BlendMethod::SoftBurn, 50, 100), 100 * 128 / 205);
    EXPECT_EQ(blend(BlendMethod::SoftLight, 0, 200), 0);
    EXPECT_EQ(blend(BlendMethod::SoftLight, 255, 3), 255);
    EXPECT_EQ(blend(BlendMethod::SoftLight, 100, 255), 161);  // 2a - a * a, a = 100 / 255
    EXPECT_EQ(blend(BlendMethod::SoftLight, 100, 0), 39);     // a * a
    EXPECT_EQ(blend(BlendMethod::Glow, 100, 50), 2500 / 155);
    EXPECT_EQ(blend(BlendMethod::Glow, 250, 200), 255);
    EXPECT_EQ(blend(BlendMethod::Glow, 255, 0), 255);
    EXPECT_EQ(blend(BlendMethod::Freeze, 200, 100), 255 - 55 * 55 / 100);
    EXPECT_EQ(blend(BlendMethod::Freeze, 0, 100), 0);
    EXPECT_EQ(blend(BlendMethod::Freeze, 255, 0), 0);
}

TEST(BlendImages, TheFixedMethodsRunOverPictures) {
    for (const BlendMethod method :
         {BlendMethod::SoftDodge, BlendMethod::SoftBurn, BlendMethod::SoftLight, BlendMethod::Glow,
          BlendMethod::Freeze}) {
        const BlendParams params{method, 0, 100, 1.0, false};
        Image image = AllFirst();
        const Image second = AllSecond();
        BlendImages(image.View(), second.View(), params);
        for (std::size_t i = 0; i < image.View().Bytes().size(); ++i)
            ASSERT_EQ(image.View().Bytes()[i], BlendByte(params, static_cast<int>(i % 256),
                                                         static_cast<int>(i / 256 % 256)));
    }
}

TEST(BlendImages, SizesAndThreadsGiveTheSameBytes) {
    for (const Size size : {Size{1, 1}, Size{3, 1}, Size{1367, 1}, Size{1000, 900}}) {
        const Image second = test::RandomImage(size, 1);
        Image one = test::RandomImage(size, 2), three = test::RandomImage(size, 2);
        const BlendParams params{BlendMethod::Screen, 4, 60, 255.0, true};
        BlendImages(one.View(), second.View(), params);
        imaging::SetKernelThreads(3);
        BlendImages(three.View(), second.View(), params);
        imaging::SetKernelThreads(1);
        EXPECT_TRUE(test::SamePixels(one, three));
        EXPECT_TRUE(test::SamePixels(second, test::RandomImage(size, 1)));  // not inverted itself
    }
}

class BlendCommand : public test::SecondPictureTest {
  protected:
    const Image before = test::RandomImage({30, 20}, 1);
    const Image other = test::RandomImage({30, 20}, 2);
};

TEST_F(BlendCommand, NormalAtFullOpacityChangesNothingButTheColourDepth) {
    test::CommandRunner runner(test::Copy(before.View()));
    runner.view.working.imageBits = 8;
    runner.view.working.grey = true;
    const std::string path = Put("a.bmp", other.View());
    ASSERT_TRUE(runner.Run(kBlendImagesCommand, "6,Normal,0,100,1,0,\"" + path + "\","));
    EXPECT_TRUE(test::SamePixels(runner.Main(), before));
    EXPECT_EQ(runner.view.working.imageBits, 24);
    EXPECT_FALSE(runner.view.working.grey);
    EXPECT_TRUE(runner.view.sample.blendSource.IsEmpty());
}

TEST_F(BlendCommand, EveryMethodAtOpacityZeroGivesTheSecondPicture) {
    const std::string path = Put("a.bmp", other.View());
    for (const auto name : kBlendNames) {
        test::CommandRunner runner(test::Copy(before.View()));
        ASSERT_TRUE(runner.Run(kBlendImagesCommand,
                               "6," + std::string(name) + ",9,0,1,0,\"" + path + "\","));
        EXPECT_TRUE(test::SamePixels(runner.Main(), other)) << name;
    }
}

TEST_F(BlendCommand, InvertsTheSecondPictureForExactlyOne) {
    const std::string path = Put("a.bmp", other.View());
    for (const char* flag : {"1", "0", "2", ""}) {
        test::CommandRunner runner(test::Copy(before.View()));
        ASSERT_TRUE(runner.Run(kBlendImagesCommand,
                               "6,Normal,0,0,1," + std::string(flag) + ",\"" + path + "\","));
        const int expected = other.View().Row(0)[0];
        EXPECT_EQ(runner.Main().View().Row(0)[0],
                  flag == std::string("1") ? 255 - expected : expected);
    }
}

TEST_F(BlendCommand, AnotherCaseBehavesAsNormal) {
    const std::string path = Put("a.bmp", other.View());
    for (const char* name : {"normal", "addition", "", "Additions"}) {
        test::CommandRunner runner(test::Copy(before.View()));
        ASSERT_TRUE(runner.Run(kBlendImagesCommand,
                               "6," + std::string(name) + ",50,100,1,0,\"" + path + "\","));
        EXPECT_TRUE(test::SamePixels(runner.Main(), before)) << name;
    }
}

TEST_F(BlendCommand, ReadsTheScaleByItsOwnRule) {
    const std::string path = Put("a.bmp", other.View());
    test::CommandRunner runner(test::Copy(before.View()));
    ASSERT_TRUE(runner.Run(kBlendImagesCommand, "6,Addition,0,100,1.05,0,\"" + path + "\","));
    Image expected = test::Copy(before.View());
    BlendImages(expected.View(), other.View(), {BlendMethod::Addition, 0, 100, 1.5, false});
    EXPECT_TRUE(test::SamePixels(runner.Main(), expected));
}

TEST_F(BlendCommand, StretchesTheSecondPictureToTheWorkingSize) {
    for (const Size size : {Size{90, 5}, Size{7, 60}}) {
        const Image second = test::PhotoLikeImage(size);
        const std::string path = Put("a.bmp", second.View());
        test::CommandRunner runner(test::Copy(before.View()));
        ASSERT_TRUE(runner.Run(kBlendImagesCommand, "6,Normal,0,0,1,0,\"" + path + "\","));
        auto expected = Image::TryCreate({30, 20});
        ASSERT_TRUE(imaging::ResizeImage(second.View(), expected->View(),
                                         imaging::ResampleFilter::Bicubic));
        EXPECT_TRUE(test::SamePixels(runner.Main(), *expected));
    }
}

TEST_F(BlendCommand, AMissingFileIsReportedWithItsPath) {
    test::CommandRunner runner(test::Copy(before.View()));
    EXPECT_FALSE(runner.Run(kBlendImagesCommand, "6,Normal,0,50,1,0,\"" + Missing() + "\","));
    EXPECT_THAT(runner.messages,
                ElementsAre(StartsWith("Unable to find or open:" + Missing() + " -   IS_error ")));
    EXPECT_TRUE(test::SamePixels(runner.Main(), before));
}

TEST_F(BlendCommand, MemoryFailureLeavesThePictureAlone) {
    const std::string path = Put("a.bmp", test::FlatImage({3, 3}, {}).View());
    test::CommandRunner runner(test::RandomImage({300, 200}, 1));
    const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + 20000);
    EXPECT_FALSE(runner.Run(kBlendImagesCommand, "6,Normal,0,50,1,0,\"" + path + "\","));
    EXPECT_THAT(runner.messages,
                ElementsAre(StartsWith("Cmd_07 Blend images: memory failure  IS_error ")));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({300, 200}, 1)));
}

TEST_F(BlendCommand, PanelTellsMethodAndPath) {
    const auto panel = [](const char* params) {
        return script::PanelText(kBlendImagesCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("6,Screen,1,90,2.5,1,\"a.bmp\","),
              "Blend method: Screen\nOffset: 1\nOpacity %: 90\nScale: 2.5\nSource image inverted\n"
              "Source image:\na.bmp\n");
}

TEST_F(BlendCommand, PreviewBlendsWithTheOpenedPicture) {
    const auto fields = script::ParseParams("6,Normal,0,0,1,0,\"x\",");
    const auto preview = kBlendImagesCommand.overlayPreview;
    EXPECT_TRUE(test::SamePixels(preview(before.View(), {300, 200}, other.View(), fields), other));
    EXPECT_TRUE(test::SamePixels(preview(before.View(), {300, 200}, {}, fields), before));
}

}  // namespace
}  // namespace lumo::ops::overlays
