#include "imaging/codecs/exif_properties.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "imaging/codecs/exif_tables.h"
#include "imaging/codecs/stored_metadata.h"
#include "support/jpeg_files.h"
#include "support/mutate.h"
#include "support/test_files.h"

namespace lumo::imaging::codecs {
namespace {

using namespace std::string_literals;
using test::AsBytes;
using test::Segment;
using test::TextOf;
using testing::HasSubstr;
using testing::Not;

constexpr std::size_t kBlockAt = 6;  // behind "Exif\0\0"

std::string N(std::uint64_t value, int bytes, bool highFirst = false) {
    std::string text;
    for (int i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> (8 * (highFirst ? bytes - 1 - i : i)));
    return text;
}

std::string Utf16(const std::string& ascii) {
    std::string text;
    for (const char c : ascii) text += std::string{c, '\0'};
    return text + "\0\0"s;
}

std::string Added(const std::string& payload, const PropertyTexts& texts) {
    const auto added = AddProperties(AsBytes(payload), texts);
    return added ? TextOf(*added) : "refused: " + added.Message();
}

/// What another library reads in a payload.
ExifTables TablesOf(const std::string& payload) {
    return ReadExifTables(
        AsBytes("\xFF\xD8" + Segment(0xE1, payload) + Segment(0xDA, "") + "\xFF\xD9"), 5);
}

std::string PayloadOf(std::string_view name) {
    for (const auto& [code, payload] : ReadJpegMarkers(test::ReadTestFile(name)))
        if (code == kApp1 && IsExifPayload(payload)) return TextOf(payload);
    ADD_FAILURE() << name << " holds no EXIF";
    return {};
}

TEST(AddProperties, ANewBlockByteForByte) {
    // Tables at 8, 38 and 68 of the block; the pointer of each is its second entry.
    const std::string expected = "Exif\0\0II*\0"s + N(8, 4) +                             //
                                 N(2, 2) + N(0x8769, 2) + N(4, 2) + N(1, 4) + N(38, 4) +  //
                                 N(0x9C9B, 2) + N(1, 2) + N(6, 4) + N(86, 4) + N(0, 4) +  //
                                 N(2, 2) + N(0x9C9B, 2) + N(1, 2) + N(6, 4) + N(92, 4) +  //
                                 N(0xA005, 2) + N(4, 2) + N(1, 4) + N(68, 4) + N(0, 4) +  //
                                 N(1, 2) + N(0x9C9B, 2) + N(1, 2) + N(6, 4) + N(98, 4) +
                                 N(0, 4) +  //
                                 Utf16("Hi") + Utf16("Hi") + Utf16("Hi");
    EXPECT_EQ(testing::PrintToString(Added("", {.title = "Hi"})), testing::PrintToString(expected));
}

TEST(AddProperties, TextsAreUtf16InTheirTags) {
    const std::string payload = Added("", {.title = "T\xC3\xBCr",
                                           .subject = "a subject",
                                           .author = "\xF0\x9F\x98\x80",
                                           .keywords = "one;two",
                                           .comments = "caf\xE9"});
    const ExifTables tables = TablesOf(payload);
    EXPECT_EQ(tables.texts[0],
              "0x9c9b XPTitle: T\xC3\xBCr\n0x9c9c XPComment: caf\xC3\xA9\n0x9c9d XPAuthor: "
              "\xF0\x9F\x98\x80\n0x9c9e XPKeywords: one;two\n0x9c9f XPSubject: a subject\n");
    EXPECT_EQ(tables.texts[1], "0x9c9b: T\xC3\xBCr\n");
    EXPECT_EQ(tables.texts[2], "0x9c9b: T\xC3\xBCr\n");
    EXPECT_THAT(payload, HasSubstr(Utf16("a subject")));
}

TEST(AddProperties, WithoutATitleItIsOneBlank) {
    const std::string payload = Added("", {.subject = "s"});
    EXPECT_THAT(payload, HasSubstr(N(0x9C9B, 2) + N(1, 2) + N(4, 4) + " \0\0\0"s));
    EXPECT_THAT(TablesOf(payload).texts[0],
                testing::StartsWith("0x9c9b XPTitle: \n0x9c9f XPSubject: s\n"));
}

TEST(AddProperties, ATitleThatIsThereStaysWhereNoneIsGiven) {
    const std::string once = Added("", {.title = "Old", .author = "A"});
    const std::string twice = Added(once, {.subject = "New"});
    EXPECT_EQ(TablesOf(twice).texts[0],
              "0x9c9b XPTitle: Old\n0x9c9d XPAuthor: A\n0x9c9f XPSubject: New\n");
    EXPECT_EQ(TablesOf(Added(twice, {.title = "Third", .author = "B"})).texts[0],
              "0x9c9b XPTitle: Third\n0x9c9d XPAuthor: B\n0x9c9f XPSubject: New\n");
}

TEST(AddProperties, WhatTheCameraWroteStaysInItsPlace) {
    for (const char* name :
         {"jpg/exiftool_JVC2.jpg", "jpg/image-size_1x2-flipped-little-endian.jpg",
          "jpg/imagemeta_NoExif.jpg", "jpg/12m_app-marker-missing-null-term.jpg",
          "jpg/ag-psd_kitty.jpg"}) {
        const std::string old = PayloadOf(name);
        const std::string changed = Added(old, {.title = "Title", .comments = "Remark"});
        ASSERT_GT(changed.size(), old.size()) << name;
        // All but the place of the main table, which stands in bytes 4 to 7 of the block.
        const std::size_t from = kBlockAt + 8;
        EXPECT_EQ(changed.substr(0, kBlockAt + 4), old.substr(0, kBlockAt + 4)) << name;
        EXPECT_EQ(changed.substr(from, old.size() - from), old.substr(from)) << name;

        const ExifTables before = TablesOf(old), after = TablesOf(changed);
        EXPECT_THAT(after.texts[0], HasSubstr("0x9c9b XPTitle: Title\n0x9c9c XPComment: Remark\n"));
        for (std::size_t i = 0; i < before.texts.size(); ++i) {
            std::string without = after.texts[i];
            for (const char* line :
                 {"0x9c9b XPTitle: Title\n", "0x9c9c XPComment: Remark\n", "0x9c9b: Title\n"})
                if (const auto at = without.find(line); at != std::string::npos)
                    without.erase(at, std::string_view(line).size());
            EXPECT_EQ(without, before.texts[i]) << name << " table " << i;
        }
        EXPECT_EQ(after.namesMaker, before.namesMaker) << name;
    }
}

TEST(AddProperties, KeepsTheOrderOfBytes) {
    const std::string old = "Exif\0\0MM\0*"s + N(8, 4, true) + N(1, 2, true) + N(0x112, 2, true) +
                            N(3, 2, true) + N(1, 4, true) + N(6, 2, true) + N(0, 2) + N(0, 4);
    const std::string changed = Added(old, {.title = "T"});
    EXPECT_THAT(changed,
                HasSubstr(N(0x9C9B, 2, true) + N(1, 2, true) + N(4, 4, true) + Utf16("T")));
    EXPECT_EQ(TablesOf(changed).texts[0], "0x112 Orientation: right, top\n0x9c9b XPTitle: T\n");
}

TEST(AddProperties, AgainAndAgainDoesNotGrow) {
    for (const std::string& start : {""s, PayloadOf("jpg/exiftool_JVC2.jpg")}) {
        const std::string once = Added(start, {.title = "One", .keywords = "k"});
        std::string payload = once;
        for (const char* title : {"Two", "A longer title", "3", "One"})
            payload = Added(payload, {.title = title});
        EXPECT_EQ(payload, once);
    }
}

TEST(AddProperties, SubTablesThatCannotBeReadAreLeftAlone) {
    for (const std::uint32_t place : {0U, 7U, 8U, 5000U, 0xFFFFFFFFU}) {
        const std::string old = "Exif\0\0II*\0"s + N(8, 4) + N(1, 2) + N(0x8769, 2) + N(4, 2) +
                                N(1, 4) + N(place, 4) + N(0, 4);
        const std::string changed = Added(old, {.title = "T"});
        const std::uint32_t kept = place < 26 ? place : 0xFFFFFFFF;
        EXPECT_THAT(changed, HasSubstr(N(0x8769, 2) + N(4, 2) + N(1, 4) + N(kept, 4)));
        EXPECT_THAT(changed, Not(HasSubstr(N(0xA005, 2))));
        EXPECT_THAT(TablesOf(changed).texts[0], HasSubstr("0x9c9b XPTitle: T\n"));
    }
}

TEST(AddProperties, WhatLeadsOutOfTheBlockDoesNotLeadIntoItsNewEnd) {
    const auto block = [](std::uint32_t place) {
        return "Exif\0\0II*\0"s + N(8, 4) + N(4, 2) +                         //
               N(0x10E, 2) + N(2, 2) + N(5, 4) + N(place, 4) +                // a text
               N(0x110, 2) + N(99, 2) + N(5, 4) + N(place, 4) +               // of no known type
               N(0x112, 2) + N(3, 2) + N(1, 4) + N(place & 0xFFFF, 4) +       // no place at all
               N(0x8825, 2) + N(4, 2) + N(1, 4) + N(place, 4) + N(place, 4);  // tables
    };
    const std::string changed = Added(block(70), {.title = "T"});
    EXPECT_THAT(changed, HasSubstr(N(0x10E, 2) + N(2, 2) + N(5, 4) + N(0xFFFFFFFF, 4) +
                                   N(0x110, 2) + N(99, 2) + N(5, 4) + N(70, 4) + N(0x112, 2) +
                                   N(3, 2) + N(1, 4) + N(70, 4)));
    EXPECT_THAT(changed, HasSubstr(N(0x8825, 2) + N(4, 2) + N(1, 4) + N(0xFFFFFFFF, 4)));
    EXPECT_THAT(changed, HasSubstr("T\0\0\0"s + N(0xFFFFFFFF, 4)));  // behind the last entry
    EXPECT_THAT(Added(block(12), {.title = "T"}), Not(HasSubstr(N(0xFFFFFFFF, 4))));
}

TEST(AddProperties, RefusesADamagedBlock) {
    const PropertyTexts texts{.title = "T"};
    for (const std::string& payload :
         {"http://ns.adobe.com"s, "Exif\0\0"s, "Exif\0\0XX*\0"s + N(8, 4) + N(0, 6),
          "Exif\0\0II*\0"s + N(9, 4), "Exif\0\0II*\0"s + N(0xFFFFFFFF, 4) + N(0, 6),
          "Exif\0\0II*\0"s + N(8, 4) + N(2, 2) + std::string(16, 'x'),
          "Exif\0\0II*\0"s + N(4, 4) + N(0, 6)})
        EXPECT_EQ(Added(payload, texts), "refused: EXIF: the block is damaged");
}

TEST(AddProperties, DamageDoesNoHarm) {
    for (const std::string& whole :
         {PayloadOf("jpg/exiftool_JVC2.jpg"), Added("", {.title = "One", .author = "Two"})}) {
        for (std::uint32_t seed = 0; seed < 3000; ++seed) {
            Bytes payload = test::Mutate(AsBytes(whole.substr(kBlockAt)), seed);
            payload.insert(payload.begin(), whole.begin(), whole.begin() + kBlockAt);
            const auto added = AddProperties(payload, {.title = "T", .subject = "S"});
            if (added) {
                EXPECT_THAT(TextOf(*added), HasSubstr(Utf16("T")));
            }
        }
    }
}

}  // namespace
}  // namespace lumo::imaging::codecs
