#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "imaging/codecs/codec.h"
#include "imaging/codecs/decoders.h"
#include "support/metafile_builder.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using testing::HasSubstr;

constexpr Format kFormats[] = {Format::Wmf, Format::Emf, Format::Apm};

Bytes MustEncode(ConstImageView image, Format format) {
    auto file = EncodeMetafile(image, format);
    EXPECT_TRUE(file) << file.Message();
    return file ? std::move(*file) : Bytes{};
}

std::uint32_t U32At(const Bytes& file, std::size_t at) {
    return file[at] | file[at + 1] << 8 | file[at + 2] << 16 |
           static_cast<std::uint32_t>(file[at + 3]) << 24;
}

TEST(MetafileWriter, EveryPixelComesBackInAllThreeForms) {
    for (const Format format : kFormats)
        for (const Size size : {Size{1, 1}, Size{1, 7}, Size{7, 1}, Size{2, 3}, Size{3, 2},
                                Size{133, 97}, Size{640, 480}, Size{401, 399}, Size{1000, 3}}) {
            const Image image = test::RandomImage(size, 5);
            const Bytes file = MustEncode(image.View(), format);
            const auto decoded = Decode(file, Format::Unknown);
            ASSERT_TRUE(decoded) << decoded.Message();
            EXPECT_EQ(decoded->format, format);
            EXPECT_EQ(decoded->warning, "");
            EXPECT_TRUE(test::SamePixels(decoded->image, image));
        }
}

TEST(MetafileWriter, TheHintDoesNotScaleThem) {
    const Image image = test::RandomImage({150, 90}, 6);
    for (const Format format : kFormats) {
        const auto decoded =
            Decode(MustEncode(image.View(), format), Format::Unknown, {.metafileHint = {100, 100}});
        ASSERT_TRUE(decoded);
        EXPECT_TRUE(test::SamePixels(decoded->image, image));
    }
}

// A reader that knows no short cut gets the same pixels: here the records are drawn because one
// more, which draws nothing, stands before the bitmap.
TEST(MetafileWriter, DrawingTheRecordsGivesTheSamePixels) {
    const Image image = test::RandomImage({133, 97}, 7);
    const std::pair<Format, Bytes> cases[] = {
        {Format::Apm, test::ByteList().U32(4).U16(0x0102).U16(1).bytes},
        {Format::Emf, test::ByteList().Longs({18, 12, 1}).bytes}};
    for (const auto& [format, record] : cases) {
        Bytes file = MustEncode(image.View(), format);
        const std::size_t at = format == Format::Emf ? 108 : 22 + 18;
        file.insert(file.begin() + static_cast<std::ptrdiff_t>(at), record.begin(), record.end());
        const auto decoded = Decode(file, Format::Unknown);
        ASSERT_TRUE(decoded);
        EXPECT_TRUE(test::SamePixels(decoded->image, image));
    }
}

TEST(MetafileWriter, WindowsHeaderCountsWords) {
    const Image image = test::RandomImage({5, 3}, 1);
    const Bytes file = MustEncode(image.View(), Format::Wmf);
    EXPECT_EQ(file.size() % 2, 0U);
    EXPECT_EQ(U32At(file, 6), file.size() / 2);
    EXPECT_EQ(U32At(file, 12), 14U + (40 + 16 * 3) / 2);  // the longest record
}

TEST(MetafileWriter, PlaceableHeaderStatesPixelsAt96AndItsChecksum) {
    const Image image = test::RandomImage({300, 200}, 1);
    const Bytes file = MustEncode(image.View(), Format::Apm);
    EXPECT_EQ(U32At(file, 0), 0x9AC6CDD7U);
    EXPECT_EQ(U32At(file, 10), 300U | 200U << 16);
    EXPECT_EQ(U32At(file, 14) & 0xFFFF, 96U);
    unsigned checksum = 0;
    for (std::size_t i = 0; i < 22; i += 2) checksum ^= U32At(file, i) & 0xFFFF;
    EXPECT_EQ(checksum, 0U) << "the last word is the exclusive or of the others";
    const Bytes plain = MustEncode(image.View(), Format::Wmf);
    EXPECT_TRUE(std::equal(plain.begin(), plain.end(), file.begin() + 22, file.end()));
}

TEST(MetafileWriter, EnhancedHeaderCountsBytesAndRecords) {
    const Image image = test::RandomImage({5, 3}, 1);
    const Bytes file = MustEncode(image.View(), Format::Emf);
    EXPECT_EQ(U32At(file, 48), file.size());
    std::size_t records = 0, at = 0;
    for (; at < file.size(); at += U32At(file, at + 4)) ++records;
    EXPECT_EQ(at, file.size());
    EXPECT_EQ(U32At(file, 52), records);
    EXPECT_EQ(U32At(file, 16), 4U) << "the bounds hold their last pixel";
}

TEST(MetafileWriter, SidesOfTheWindowsFormsEndAt32767) {
    const Image longest = test::FlatImage({32767, 1}, {1, 2, 3});
    const Image tooLong = test::FlatImage({32768, 1}, {1, 2, 3});
    for (const Format format : kFormats) {
        const auto decoded = Decode(MustEncode(longest.View(), format), Format::Unknown);
        ASSERT_TRUE(decoded) << decoded.Message();
        EXPECT_TRUE(test::SamePixels(decoded->image, longest));
    }
    for (const Format format : {Format::Wmf, Format::Apm})
        EXPECT_THAT(EncodeMetafile(tooLong.View(), format).Message(), HasSubstr("end at 32767"));
    const auto decoded = Decode(MustEncode(tooLong.View(), Format::Emf), Format::Unknown);
    ASSERT_TRUE(decoded) << decoded.Message();
    EXPECT_TRUE(test::SamePixels(decoded->image, tooLong));
}

}  // namespace
}  // namespace lumo::imaging::codecs
