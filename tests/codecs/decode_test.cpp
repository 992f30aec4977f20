// Which decoder a file meets, and what every decoder may spend.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "imaging/codecs/codec.h"
#include "imaging/last_error.h"
#include "support/codec_files.h"
#include "support/test_files.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using namespace std::string_literals;
using testing::StartsWith;

Bytes BytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

struct Sample {
    Format format;
    Bytes file;
};

/// A small picture in each format that has a writer and a signature.
std::vector<Sample> Samples() {
    const Image image = test::CoordinateImage({9, 7});
    const ConstImageView view = image.View();
    return {{Format::Jpeg, *EncodeJpeg(view, {})},
            {Format::Png, *EncodePng(view, {})},
            {Format::Tiff, *EncodeTiff(view, {})},
            {Format::Gif, *EncodeGif(view, {})},
            {Format::Bmp, *EncodeBmp(view)},
            {Format::Pcx, *EncodePcx(view)},
            {Format::Psd, *EncodePsd(view)},
            {Format::Apm, *EncodeMetafile(view, Format::Apm)},
            {Format::Wmf, *EncodeMetafile(view, Format::Wmf)},
            {Format::Emf, *EncodeMetafile(view, Format::Emf)}};
}

TEST(FormatOfContent, KnowsTheSignatureOfEveryFormat) {
    for (const auto& [format, file] : Samples()) EXPECT_EQ(FormatOfContent(file), format);
    const struct {
        std::string beginning;
        Format format;
    } more[] = {{"GIF89a", Format::Gif},          {"BA", Format::Bmp},
                {"MM\0*"s, Format::Tiff},         {"II+\0"s, Format::Tiff},
                {"MM\0+"s, Format::Tiff},         {"\x02\0\x09\0"s, Format::Wmf},
                {"FUJIFILMCCD-RAW", Format::Raw}, {"FOVb", Format::Raw},
                {"\0MRM"s, Format::Raw},          {"II\x1a\0\0\0HEAPCCDR"s, Format::Raw}};
    for (const auto& [beginning, format] : more)
        EXPECT_EQ(FormatOfContent(BytesOf(beginning)), format) << beginning;
}

TEST(FormatOfContent, SaysNothingOfWhatHasNoSignature) {
    const Bytes tga = *EncodeTga(test::CoordinateImage({9, 7}).View());
    EXPECT_EQ(FormatOfContent(tga), Format::Unknown);
    EXPECT_EQ(FormatOfContent({}), Format::Unknown);
    for (const auto& [format, file] : Samples())
        EXPECT_EQ(FormatOfContent(ByteView(file).first(1)), Format::Unknown);
    EXPECT_EQ(FormatOfContent(BytesOf("no picture at all")), Format::Unknown);
}

TEST(Decode, ContentCountsBeforeTheExtension) {
    for (const auto& [format, file] : Samples())
        for (const Format stated : {Format::Unknown, Format::Jpeg, Format::Tga, Format::Bmp}) {
            const auto decoded = Decode(file, stated);
            ASSERT_TRUE(decoded) << decoded.Message();
            EXPECT_EQ(decoded->format, format);
            EXPECT_EQ(decoded->image.Extent(), (Size{9, 7}));
        }
}

TEST(Decode, TheExtensionDecidesWhereTheContentSaysNothing) {
    const Bytes tga = *EncodeTga(test::CoordinateImage({9, 7}).View());
    const auto decoded = Decode(tga, Format::Tga);
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(test::SamePixels(decoded->image, test::CoordinateImage({9, 7})));
    EXPECT_FALSE(Decode(tga, Format::Png));
    const auto unknown = Decode(tga, Format::Unknown);
    ASSERT_FALSE(unknown);
    EXPECT_EQ(unknown.Message(), "not a picture of a known format");
}

TEST(Decode, CameraFilesInATiffContainerGoByTheirExtension) {
    const Bytes dng = test::ReadTestFile("raw/rust-skia_sample_1mp.dng");
    ASSERT_EQ(FormatOfContent(dng), Format::Tiff);
    const auto raw = Decode(dng, Format::Raw);
    ASSERT_TRUE(raw);
    EXPECT_EQ(raw->format, Format::Raw);
    EXPECT_EQ(raw->image.Extent(), (Size{600, 338}));
    const Bytes tiff = *EncodeTiff(test::CoordinateImage({9, 7}).View(), {});
    EXPECT_EQ(Decode(tiff, Format::Jpeg)->format, Format::Tiff);
    const auto noCamera = Decode(tiff, Format::Raw);
    ASSERT_FALSE(noCamera);
    EXPECT_THAT(noCamera.Message(), StartsWith("camera RAW: "));
}

TEST(Decode, TheReasonOfAFailureIsTheLastError) {
    ClearLastError();
    EXPECT_FALSE(Decode({}, Format::Jpeg));
    EXPECT_EQ(LastError(), "the file is empty");
    EXPECT_FALSE(Decode(BytesOf("\xff\xd8\xff"), Format::Jpeg));
    EXPECT_THAT(LastError(), StartsWith("JPG: "));
}

TEST(GetImageDims, ReadsTheHeadOfEveryFormat) {
    for (const auto& [format, file] : Samples()) {
        const auto size = GetImageDims(file, Format::Unknown);
        ASSERT_TRUE(size) << int(format);
        EXPECT_EQ(*size, (Size{9, 7})) << int(format);
    }
    const Bytes tga = *EncodeTga(test::CoordinateImage({9, 7}).View());
    EXPECT_EQ(*GetImageDims(tga, Format::Tga), (Size{9, 7}));
}

TEST(GetImageDims, NeedsTheHeadAloneAndFailsWithoutOne) {
    const Bytes head = test::HeadOfPng(test::CoordinateImage({9, 7}).View());
    ASSERT_FALSE(Decode(head, Format::Unknown));
    EXPECT_EQ(*GetImageDims(head, Format::Unknown), (Size{9, 7}));
    EXPECT_FALSE(GetImageDims(ByteView(head).first(8 + 12), Format::Unknown));
    EXPECT_FALSE(GetImageDims({}, Format::Png));
    EXPECT_FALSE(GetImageDims(BytesOf("words"), Format::Jpeg));
}

TEST(GetImageDims, TellsASizeThatIsNotAllowed) {
    Bytes bmp = *EncodeBmp(test::CoordinateImage({9, 7}).View());
    bmp[18 + 2] = 0x10;  // a width of 9 + 0x100000
    ASSERT_FALSE(Decode(bmp, Format::Unknown));
    EXPECT_EQ(*GetImageDims(bmp, Format::Unknown), (Size{0x100009, 7}));
}

TEST(RefuseSize, NotesTheFirstSizeThatItIsAskedAbout) {
    Size stated;
    const DecodeLimits limits{.stated = &stated};
    EXPECT_NE(RefuseSize(0, 5, 3, limits), "");
    EXPECT_EQ(stated, Size{});
    EXPECT_EQ(RefuseSize(4, 5, 3, limits), "");
    EXPECT_EQ(RefuseSize(6, 7, 3, limits), "");
    EXPECT_EQ(stated, (Size{4, 5}));
}

TEST(RefuseSize, HoldsEachLimitToThePixel) {
    const DecodeLimits limits{.maxSide = 100, .maxPixels = 5000, .maxMemory = 12'000};
    EXPECT_EQ(RefuseSize(100, 40, 3, limits), "");
    EXPECT_EQ(RefuseSize(101, 1, 3, limits), "a picture of 101 x 1 is larger than allowed");
    EXPECT_EQ(RefuseSize(1, 101, 3, limits), "a picture of 1 x 101 is larger than allowed");
    EXPECT_EQ(RefuseSize(100, 50, 2, limits), "");
    EXPECT_EQ(RefuseSize(100, 51, 2, limits), "a picture of 100 x 51 is larger than allowed");
    EXPECT_EQ(RefuseSize(100, 41, 3, limits),
              "a picture of 100 x 41 needs more memory than allowed");
    EXPECT_EQ(RefuseSize(100, 50, 0, limits), "");  // nothing is held
}

TEST(RefuseSize, TakesAnyNumber) {
    const DecodeLimits limits;
    EXPECT_EQ(RefuseSize(0, 5, 3, limits), "the file states a size of 0 x 5");
    EXPECT_EQ(RefuseSize(5, -1, 3, limits), "the file states a size of 5 x -1");
    EXPECT_EQ(RefuseSize(65500, 7633, 3, limits), "");
    EXPECT_NE(RefuseSize(65500, 7634, 3, limits), "");  // 500 megapixels
    EXPECT_NE(RefuseSize(65501, 1, 3, limits), "");
    for (const std::int64_t huge : {INT64_MAX, std::int64_t{1} << 33}) {
        EXPECT_NE(RefuseSize(huge, huge, 3, limits), "");  // the product wraps around in 64 bits
        EXPECT_NE(RefuseSize(1, huge, huge, limits), "");
    }
}

}  // namespace
}  // namespace lumo::imaging::codecs
