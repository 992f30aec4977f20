#include "imaging/codecs/stored_metadata.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <string>

#include "support/jpeg_files.h"
#include "support/mutate.h"
#include "support/test_files.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using namespace std::string_literals;
using test::AsBytes;
using test::Segment;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

std::string Chunk(const std::string& type, const std::string& body) {
    std::string chunk;
    for (int shift = 24; shift >= 0; shift -= 8) chunk += static_cast<char>(body.size() >> shift);
    return chunk + type + body + "sums";  // nobody checks the sum of a text
}

std::string Packed(const std::string& text) {
    uLongf size = compressBound(text.size());
    std::string packed(size, '\0');
    compress(reinterpret_cast<Bytef*>(packed.data()), &size,
             reinterpret_cast<const Bytef*>(text.data()), text.size());
    packed.resize(size);
    return packed;
}

const std::string kPng = "\x89PNG\r\n\x1a\n"s;

TEST(ReadJpegMarkers, GivesApplicationDataAndCommentsInFileOrder) {
    const auto file =
        AsBytes("\xFF\xD8"s + Segment(0xE0, "JFIF") + Segment(0xFE, "one") + "\xFF\xFF\xFF" +
                Segment(0xE1, "Exif") + Segment(0xDB, "table") + Segment(0xFE, "") +
                Segment(0xED, "8BIM") + Segment(0xDA, "scan") + Segment(0xFE, "too late"));
    EXPECT_THAT(ReadJpegMarkers(file),
                ElementsAre(Pair(0xE0, AsBytes("JFIF")), Pair(0xFE, AsBytes("one")),
                            Pair(0xE1, AsBytes("Exif")), Pair(0xFE, AsBytes("")),
                            Pair(0xED, AsBytes("8BIM"))));
}

TEST(ReadJpegMarkers, DamageEndsTheReading) {
    const std::string good = "\xFF\xD8"s + Segment(0xFE, "one");
    for (const std::string& rest :
         {""s, "\xFF"s, "\xFF\xFE"s, "\xFF\xFE\x00"s, "\xFF\xFE\x00\x01"s, "\xFF\xFE\x00\x09short"s,
          "garbage"s, "\xFF\xD9"s + Segment(0xFE, "behind the end")})
        EXPECT_THAT(ReadJpegMarkers(AsBytes(good + rest)), ElementsAre(Pair(0xFE, AsBytes("one"))));
}

TEST(ReadJpegMarkers, OtherFilesHaveNone) {
    EXPECT_THAT(ReadJpegMarkers({}), IsEmpty());
    EXPECT_THAT(ReadJpegMarkers(AsBytes("\xFF")), IsEmpty());
    EXPECT_THAT(ReadJpegMarkers(AsBytes(kPng + Chunk("tEXt", "Key\0text"s))), IsEmpty());
}

TEST(ReadJpegMarkers, GetBackWhatTheWriterWrote) {
    JpegWriteOptions options;
    options.markers = {
        {0xE1, AsBytes("Exif\0\0x"s)}, {0xFE, AsBytes("first")}, {0xFE, AsBytes("second")}};
    const auto file = EncodeJpeg(test::FlatImage({4, 4}, {1, 2, 3}).View(), options);
    ASSERT_TRUE(file);
    auto markers = ReadJpegMarkers(*file);
    ASSERT_EQ(markers.size(), 4U);
    EXPECT_EQ(markers.front().first, kApp0);
    markers.erase(markers.begin());
    EXPECT_EQ(markers, options.markers);
}

TEST(MarkersForNewPicture, LeavesOutWhatDescribesTheOldFile) {
    const auto profile = [](const std::string& space, char part = '\1') {
        return std::pair(0xE2, AsBytes("ICC_PROFILE\0"s + part + '\2' + std::string(16, 'x') +
                                       space + std::string(100, 'x')));
    };
    const std::pair jfif(0xE0, AsBytes("JFIF\0"s)), adobe(0xEE, AsBytes("Adobe"));
    const std::pair index(0xE2, AsBytes("MPF\0II*\0"s)), exif(0xE1, AsBytes("Exif\0\0"s));
    const std::pair other(0xE2, AsBytes("FPXR")), comment(0xFE, AsBytes("remark"));
    const auto rgb = profile("RGB "), second = profile("more", '\2'), cmyk = profile("CMYK");
    EXPECT_THAT(MarkersForNewPicture({jfif, exif, rgb, second, adobe, index, other, comment}),
                ElementsAre(exif, rgb, second, other, comment));
    EXPECT_THAT(MarkersForNewPicture({cmyk, second, exif}), ElementsAre(exif));
    EXPECT_THAT(MarkersForNewPicture({profile("GRAY"), comment}), ElementsAre(comment));
    EXPECT_THAT(MarkersForNewPicture({{0xE2, AsBytes("ICC_PROFILE\0"s)}}), IsEmpty());
    EXPECT_THAT(MarkersForNewPicture({}), IsEmpty());
}

TEST(ReadPngTexts, ReadsThePlainThePackedAndTheInternationalKind) {
    const auto file =
        AsBytes(kPng + Chunk("IHDR", "x") + Chunk("tEXt", "Title\0plain"s) + Chunk("IDAT", "x") +
                Chunk("zTXt", "Comment\0\0"s + Packed("packed")) +
                Chunk("iTXt", "Author\0\0\0de\0Autor\0J\xC3\xB6rg"s) +
                Chunk("iTXt", "Packed\0\1\0\0\0"s + Packed("caf\xC3\xA9")) +
                Chunk("iTXt", "Beyond\0\0\0\0\0\xE2\x82\xAC 5"s) + Chunk("tEXt", "Empty\0"s));
    EXPECT_THAT(ReadPngTexts(file),
                ElementsAre(Pair("Title", "plain"), Pair("Comment", "packed"),
                            Pair("Author", "J\xF6rg"), Pair("Packed", "caf\xE9"),
                            Pair("Beyond", "\xE2\x82\xAC 5"), Pair("Empty", "")));
}

TEST(ReadPngTexts, DamagedTextsAreLeftOut) {
    const auto file = AsBytes(
        kPng + Chunk("tEXt", "no end of key") + Chunk("zTXt", "Key\0\1packed otherwise"s) +
        Chunk("zTXt", "Key\0\0no stream"s) + Chunk("zTXt", "Key\0"s) + Chunk("iTXt", "Key\0"s) +
        Chunk("iTXt", "Key\0\0\0no end"s) + Chunk("tEXt", "Good\0text"s));
    EXPECT_THAT(ReadPngTexts(file), ElementsAre(Pair("Good", "text")));
}

TEST(ReadPngTexts, ALengthBeyondTheFileEndsTheReading) {
    EXPECT_THAT(
        ReadPngTexts(AsBytes(kPng + Chunk("tEXt", "A\0b"s) + "\xFF\xFF\xFF\xFFtEXtC\0dsums"s)),
        ElementsAre(Pair("A", "b")));
    EXPECT_THAT(ReadPngTexts(AsBytes(kPng)), IsEmpty());
    EXPECT_THAT(ReadPngTexts(AsBytes(kPng + "short")), IsEmpty());
    EXPECT_THAT(ReadPngTexts({}), IsEmpty());
}

TEST(ReadPngTexts, ATextThatUnpacksToMuchMoreIsLeftOut) {
    const std::string bomb = Packed(std::string((std::size_t{8} << 20) + 1, 'x'));
    EXPECT_LT(bomb.size(), 20000U);
    const std::string chunk = Chunk("zTXt", "Key\0\0"s + bomb);
    EXPECT_THAT(ReadPngTexts(AsBytes(kPng + chunk + Chunk("tEXt", "A\0b"s))),
                ElementsAre(Pair("A", "b")));
}

TEST(StoredMetadata, RealFilesAreRead) {
    const auto markers = ReadJpegMarkers(test::ReadTestFile("jpg/me_withIptc.jpg"));
    EXPECT_THAT(markers, testing::Contains(Pair(kApp13, testing::_)));
    const auto texts = ReadPngTexts(test::ReadTestFile("png/pngsuite_ctjn0g04.png"));
    EXPECT_THAT(texts, testing::Contains(Pair("Software", testing::_)));
}

TEST(StoredMetadata, DamagedFilesDoNoHarm) {
    for (const auto& folder : {"jpg", "png"}) {
        for (const auto& path : test::TestFilesIn(folder)) {
            const auto whole = test::ReadWholeFile(path);
            for (std::uint32_t seed = 0; seed < 50; ++seed) {
                const auto damaged = test::Mutate(whole, seed);
                static_cast<void>(ReadJpegMarkers(damaged));
                static_cast<void>(ReadPngTexts(damaged));
            }
        }
    }
}

}  // namespace
}  // namespace lumo::imaging::codecs
