// "Border (find and crop)" on scans as they are found, and on photographs in a frame that has gone
// through a JPG. The rectangles of the scans are those that other programs trim them to.

#include <gtest/gtest.h>

#include <string>

#include "imaging/codecs/codec.h"
#include "imaging/compose.h"
#include "imaging/crop.h"
#include "imaging/resample.h"
#include "ops/geometry/geometry_commands.h"
#include "support/command_runner.h"
#include "support/content_files.h"
#include "support/test_files.h"

namespace lumo::ops::geometry {
namespace {

using imaging::Image;
using imaging::Rect;
using imaging::Rgb;
using imaging::Size;
using imaging::codecs::Format;

Image Decoded(std::span<const std::uint8_t> file, Format format) {
    auto decoded = imaging::codecs::Decode(file, format);
    EXPECT_TRUE(decoded);
    return decoded ? std::move(decoded->image) : Image();
}

Image CutOut(const Image& source, Rect rect) {
    Image part = test::FlatImage(rect.Extent(), {});
    EXPECT_TRUE(imaging::CropImage(source.View(), rect, part.View()));
    return part;
}

struct Scan {
    const char* file;
    const char* percent;
    Rect inside;  // right and bottom exclusive
};

TEST(BorderOfScans, IsCutAwayToThePixel) {
    const Scan scans[] = {
        // The shade around the label fades into the paper: the more tolerance, the more of it goes.
        {"border/12m_gray-sample.jpg", "1", {4, 13, 378, 391}},
        {"border/12m_gray-sample.jpg", "10", {4, 29, 377, 391}},
        {"border/commons-imaging_image.jpeg", "1", {6, 6, 508, 348}},
        {"border/commons-imaging_image.jpeg", "10", {6, 6, 507, 348}},
        {"border/commons-imaging_Imaging247.tiff", "1", {40, 392, 2326, 1348}},
        {"border/commons-imaging_Imaging247.tiff", "30", {40, 392, 2326, 1348}},
    };
    for (const Scan& scan : scans) {
        const Image picture = Decoded(test::ReadTestFile(scan.file), Format::Unknown);
        ASSERT_FALSE(picture.IsEmpty()) << scan.file;
        const Image expected = CutOut(picture, scan.inside);
        // Found by itself, and given by the fields.
        const Rgb paper = picture.View().Pixel(0, 0);
        const std::string given = "," + std::to_string(paper.red) + "," +
                                  std::to_string(paper.green) + "," + std::to_string(paper.blue) +
                                  ",1,";
        for (const std::string& colour : {std::string(",0,0,0,0,"), given}) {
            test::CommandRunner runner(test::Copy(picture.View()));
            ASSERT_TRUE(
                runner.Run(kBorderFindAndCropCommand, std::string("5,") + scan.percent + colour));
            EXPECT_TRUE(test::SamePixels(runner.Main(), expected)) << scan.file << colour;
        }
    }
}

// In a frame of that colour, saved as a JPG and opened again: what was one colour no longer is.
Image FramedAndSaved(const Image& photograph, Rect place, Size size, Rgb colour) {
    Image framed = test::FlatImage(size, colour);
    EXPECT_TRUE(imaging::OverlayImage(framed.View(), photograph.View(), place.left, place.top));
    const auto file = imaging::codecs::EncodeJpeg(framed.View(), {.quality = 85});
    EXPECT_TRUE(file);
    return Decoded(*file, Format::Jpeg);
}

TEST(BorderOfPhotographs, FramesOfAnyColourAreCutAwayToThePixel) {
    const Rect place{23, 17, 323, 217};
    const auto photographs = test::ShippedFiles("Photos", ".jpg");
    ASSERT_GE(photographs.size(), 9U);
    for (const auto& path : photographs) {
        const Image photograph = Decoded(test::ReadWholeFile(path), Format::Jpeg);
        Image small = test::FlatImage(place.Extent(), {});
        ASSERT_TRUE(
            imaging::ResizeImage(photograph.View(), small.View(), imaging::ResampleFilter::Box));
        for (const Rgb colour : {Rgb{255, 255, 255}, Rgb{0, 0, 0}, Rgb{140, 20, 40}}) {
            const Image framed = FramedAndSaved(small, place, {354, 257}, colour);
            test::CommandRunner runner(test::Copy(framed.View()));
            ASSERT_TRUE(runner.Run(kBorderFindAndCropCommand, "5,3,0,0,0,0,"));
            EXPECT_TRUE(test::SamePixels(runner.Main(), CutOut(framed, place)))
                << path << " in a frame of red " << int{colour.red};
        }
    }
}

TEST(BorderOfPhotographs, APhotographWithoutOneStaysAsItIs) {
    for (const auto& path : test::ShippedFiles("Photos", ".jpg")) {
        const Image photograph = Decoded(test::ReadWholeFile(path), Format::Jpeg);
        test::CommandRunner runner(test::Copy(photograph.View()));
        ASSERT_TRUE(runner.Run(kBorderFindAndCropCommand, "5,0,0,0,0,0,"));
        EXPECT_TRUE(test::SamePixels(runner.Main(), photograph)) << path;
    }
}

}  // namespace
}  // namespace lumo::ops::geometry
