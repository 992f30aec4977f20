#include "imaging/codecs/exif_tables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/mutate.h"
#include "support/test_files.h"

namespace lumo::imaging::codecs {
namespace {

using namespace std::string_literals;
using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;

/// A tag of an EXIF table with its value as stored.
struct Tag {
    int number, type, count;
    std::string value;
};
constexpr int kByte = 1, kAscii = 2, kShort = 3, kLong = 4;

void Append(std::string& block, std::uint32_t number, int bytes) {
    for (int i = 0; i < bytes; ++i) block += static_cast<char>(number >> (8 * i));
}
std::string Number(std::uint32_t number, int bytes) {
    std::string text;
    Append(text, number, bytes);
    return text;
}
Tag Ascii(int number, const std::string& text) {
    return {number, kAscii, static_cast<int>(text.size()) + 1, text + '\0'};
}

/// One table, as it lies at `at` of a block: its tags, the place of the next table, long values.
std::string Table(std::uint32_t at, const std::vector<Tag>& tags, std::uint32_t next) {
    std::string table, values;
    Append(table, static_cast<std::uint32_t>(tags.size()), 2);
    const auto valuesAt = at + 2 + 12 * static_cast<std::uint32_t>(tags.size()) + 4;
    for (const Tag& tag : tags) {
        Append(table, static_cast<std::uint32_t>(tag.number), 2);
        Append(table, static_cast<std::uint32_t>(tag.type), 2);
        Append(table, static_cast<std::uint32_t>(tag.count), 4);
        if (tag.value.size() <= 4) {
            table += tag.value + std::string(4 - tag.value.size(), '\0');
        } else {
            Append(table, valuesAt + static_cast<std::uint32_t>(values.size()), 4);
            values += tag.value;
            if (values.size() % 2 != 0) values += '\0';
        }
    }
    Append(table, next, 4);
    return table + values;
}

/// A block with a main, an EXIF, a thumbnail and a GPS table.
std::string Block(std::vector<Tag> main) {
    constexpr std::uint32_t kExifAt = 1000, kThumbnailAt = 2000, kGpsAt = 3000;
    main.push_back({0x8769, kLong, 1, Number(kExifAt, 4)});
    main.push_back({0x8825, kLong, 1, Number(kGpsAt, 4)});
    std::string block = "II*\0"s + Number(8, 4) + Table(8, main, kThumbnailAt);
    block.resize(kExifAt);
    block += Table(kExifAt,
                   {Ascii(0x9003, "2024:01:31 12:00:00"), {0xA002, kShort, 1, Number(640, 2)}}, 0);
    block.resize(kThumbnailAt);
    block += Table(kThumbnailAt, {{0x0112, kShort, 1, Number(1, 2)}}, 0);
    block.resize(kGpsAt);
    block += Table(kGpsAt, {Ascii(0x1D, "2024:01:31")}, 0);
    return block;
}

Bytes JpegWith(const std::string& block) {
    const std::string payload = "Exif\0\0"s + block;
    const std::size_t length = payload.size() + 2;
    const std::string file = "\xFF\xD8\xFF\xE1"s + static_cast<char>(length >> 8) +
                             static_cast<char>(length & 0xFF) + payload + "\xFF\xD9";
    return {file.begin(), file.end()};
}

TEST(ReadExifTables, OneLineForEachTag) {
    const ExifTables tables =
        ReadExifTables(JpegWith(Block({Ascii(0x10F, "Canon"), Ascii(0x110, "PowerShot")})), 5);
    EXPECT_TRUE(tables.namesMaker);
    EXPECT_EQ(tables.texts[0], "0x10f Make: Canon\n0x110 Model: PowerShot\n");
    EXPECT_EQ(tables.texts[1],
              "0x9003 DateTimeOriginal: 2024:01:31 12:00:00\n0xa002 PixelXDimension: 640\n");
    EXPECT_EQ(tables.texts[2], "");
    EXPECT_EQ(tables.texts[3], "0x112 Orientation: top, left\n");
    EXPECT_EQ(tables.texts[4], "0x1d GPSDateStamp: 2024:01:31\n");
}

TEST(ReadExifTables, ATifHasNoneThoughItIsLaidOutAsOne) {
    const std::string block = Block({Ascii(0x10F, "Canon")});
    const ExifTables tables =
        ReadExifTables({reinterpret_cast<const std::uint8_t*>(block.data()), block.size()}, 5);
    EXPECT_FALSE(tables.namesMaker);
    EXPECT_THAT(tables.texts, Each(IsEmpty()));
}

TEST(ReadExifTables, TablesBeyondTheCountAreNotRead) {
    const auto file = JpegWith(Block({Ascii(0x10F, "Canon")}));
    const ExifTables two = ReadExifTables(file, 2);
    EXPECT_FALSE(two.texts[1].empty());
    EXPECT_EQ(two.texts[3], "");
    EXPECT_EQ(two.texts[4], "");
    EXPECT_FALSE(ReadExifTables(file, 0).namesMaker);
    EXPECT_THAT(ReadExifTables(file, 0).texts, Each(IsEmpty()));
}

TEST(ReadExifTables, WithoutTheMakerNoneIsNamed) {
    // The word in a value, or another tag with it in its name, is no maker.
    const ExifTables tables = ReadExifTables(JpegWith(Block({Ascii(0x110, "Make")})), 5);
    EXPECT_FALSE(tables.namesMaker);
    EXPECT_FALSE(tables.texts[0].empty());
}

TEST(ReadExifTables, PropertyTextsAreUtf16) {
    // "Jörg €" and a character beyond 16 bits, then half of one.
    const std::string utf16 = "J\0\xF6\0r\0g\0 \0\xAC\x20\x3D\xD8\0\xDE\x3D\xD8\0\0"s;
    const ExifTables tables = ReadExifTables(
        JpegWith(Block({{0x9C9B, kByte, static_cast<int>(utf16.size()), utf16}})), 5);
    EXPECT_THAT(
        tables.texts[0],
        HasSubstr("0x9c9b XPTitle: J\xC3\xB6rg \xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD\n"));
}

TEST(ReadExifTables, ValuesAreOneShortLine) {
    const ExifTables tables = ReadExifTables(JpegWith(Block({Ascii(0x10E, "two\r\nlines\x1B[31m"),
                                                             Ascii(0x10F, std::string(300, 'x'))})),
                                             5);
    EXPECT_THAT(tables.texts[0], HasSubstr("0x10e ImageDescription: two lines?[31m\n"));
    EXPECT_THAT(tables.texts[0], HasSubstr("0x10f Make: " + std::string(200, 'x') + "...\n"));
}

TEST(ReadExifTables, OtherFilesHaveNone) {
    EXPECT_THAT(ReadExifTables({}, 5).texts, Each(IsEmpty()));
    EXPECT_THAT(ReadExifTables(test::ReadTestFile("jpg/serenity_grayscale_mcu.jpg"), 5).texts,
                Each(IsEmpty()));
    for (const char* name : {"png/pngsuite_ctjn0g04.png", "tif/exiftool_ExifTool.tif"})
        EXPECT_THAT(ReadExifTables(test::ReadTestFile(name), 5).texts, Each(IsEmpty())) << name;
}

TEST(ReadExifTables, RealCamerasAreNamed) {
    const ExifTables jpg = ReadExifTables(test::ReadTestFile("jpg/exiftool_JVC2.jpg"), 5);
    EXPECT_TRUE(jpg.namesMaker);
    EXPECT_THAT(jpg.texts[0], HasSubstr("0x10f Make: JVC\n0x110 Model: GC-X1E\n"));
    EXPECT_THAT(jpg.texts[1], HasSubstr("0x829a ExposureTime: 1/30 s\n"));
    EXPECT_THAT(jpg.texts[1], HasSubstr("0x927c MakerNote: (16 bytes)\n"));
}

TEST(ReadExifTables, DamageIsSilentAndDoesNoHarm) {
    const std::vector<Bytes> files{JpegWith(Block({Ascii(0x10F, "Canon")})),
                                   test::ReadTestFile("jpg/exiftool_JVC2.jpg"),
                                   test::ReadTestFile("tif/exiftool_ExifTool.tif")};
    testing::internal::CaptureStderr();
    for (const Bytes& file : files)
        for (std::uint32_t seed = 0; seed < 500; ++seed)
            static_cast<void>(ReadExifTables(test::Mutate(file, seed), 5));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace lumo::imaging::codecs
