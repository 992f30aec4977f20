#include "imaging/codecs/jpeg_segments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

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
using testing::ElementsAre;
using testing::Pair;

const std::string kStart = "\xFF\xD8";
const std::string kJfif = Segment(0xE0, "JFIF\0\1\1"s), kJfxx = Segment(0xE0, "JFXX\0"s);
const std::string kExif = Segment(0xE1, "Exif\0\0II*\0old"s), kXmp = Segment(0xE1, "http://x");
const std::string kProfile = Segment(0xE2, "ICC_PROFILE\0"s), kOther = Segment(0xEC, "Ducky");
const std::string kResources = Segment(0xED, "Photoshop 3.0\0"s), kAdobe = Segment(0xEE, "Adobe");
const std::string kRemark = Segment(0xFE, "old remark"), kTable = Segment(0xDB, "table");
const std::string kFrame = Segment(0xC0, "frame");
const std::string kScan = Segment(0xDA, "scan") + "data \xFF\x00 \xFF\xFE more\xFF\xD9 and behind"s;

std::string Spliced(const std::string& file, const JpegChanges& changes) {
    const Bytes bytes = AsBytes(file);
    const JpegHead head = ReadJpegHead(bytes);
    const auto spliced = SpliceJpegHead(head, changes);
    if (!spliced) return "refused: " + spliced.Message();
    return TextOf(*spliced) + TextOf(head.rest);
}

JpegMarkers Markers(std::initializer_list<std::pair<int, std::string>> list) {
    JpegMarkers markers;
    for (const auto& [code, text] : list) markers.emplace_back(code, AsBytes(text));
    return markers;
}

TEST(ReadJpegHead, GivesEverySegmentUpToTheFirstScan) {
    const Bytes file =
        AsBytes(kStart + kJfif + "\xFF\xFF" + kRemark + "\xFF\x01" + kTable + kFrame + kScan);
    const JpegHead head = ReadJpegHead(file);
    EXPECT_EQ(head.damage, "");
    std::vector<std::pair<int, std::string>> segments;
    std::string whole = kStart;
    for (const JpegSegment& segment : head.segments) {
        segments.emplace_back(segment.code, TextOf(segment.payload));
        whole += TextOf(segment.whole);
    }
    EXPECT_THAT(segments, ElementsAre(Pair(0xE0, "JFIF\0\1\1"s), Pair(0xFE, "old remark"),
                                      Pair(0x01, ""), Pair(0xDB, "table"), Pair(0xC0, "frame")));
    EXPECT_EQ(TextOf(head.segments[1].whole), "\xFF\xFF" + kRemark);
    EXPECT_EQ(TextOf(head.rest), kScan);
    EXPECT_EQ(whole + kScan, TextOf(file));
}

TEST(ReadJpegHead, SaysWhatIsDamaged) {
    const struct {
        std::string file, damage;
    } cases[] = {
        {"", "the file does not begin as a JPG"},
        {"\xFF", "the file does not begin as a JPG"},
        {"\x89PNG", "the file does not begin as a JPG"},
        {kStart, "the file ends before the picture data"},
        {kStart + "\xFF", "the file ends before the picture data"},
        {kStart + kJfif, "the file ends before the picture data"},
        {kStart + kJfif + "garbage", "no marker at byte 13"},
        {kStart + "\xFF\x00"s + kScan, "no marker at byte 2"},
        {kStart + "\xFF\xFF\xFF", "no marker at byte 2"},
        {kStart + "\xFF\xD9" + kRemark, "the file holds no picture data"},
        {kStart + "\xFF\xFE", "marker 0xfe at byte 2 has a wrong length"},
        {kStart + "\xFF\xFE\0"s, "marker 0xfe at byte 2 has a wrong length"},
        {kStart + "\xFF\xFE\0\1"s + kScan, "marker 0xfe at byte 2 has a wrong length"},
        {kStart + "\xFF\xE1\0\x09short"s, "marker 0xe1 at byte 2 has a wrong length"},
    };
    for (const auto& [file, damage] : cases) {
        const Bytes bytes = AsBytes(file);
        const JpegHead head = ReadJpegHead(bytes);
        EXPECT_EQ(head.damage, "JPG: " + damage);
        EXPECT_TRUE(head.rest.empty());
        EXPECT_EQ(SpliceJpegHead(head, {}).Message(), head.damage);
    }
}

TEST(ReadJpegHead, CountsItsSegments) {
    std::string most = kStart;
    for (std::size_t i = 0; i < kMaxSegments; ++i) most += "\xFF\x01";
    EXPECT_EQ(ReadJpegHead(AsBytes(most + kScan)).damage, "JPG: more than 65536 markers");
    most.resize(most.size() - 2);
    EXPECT_EQ(ReadJpegHead(AsBytes(most + kScan)).damage, "");
}

TEST(SpliceJpegHead, WithoutKeepAllOnlyThePicturesOwnMarkersStay) {
    const std::string file = kStart + kJfif + kExif + kResources + kXmp + kJfxx + kProfile +
                             kOther + kAdobe + kTable + kRemark + "\xFF" + kFrame + kScan;
    EXPECT_EQ(Spliced(file, {}),
              kStart + kJfif + kJfxx + kProfile + kAdobe + kTable + "\xFF" + kFrame + kScan);
    EXPECT_EQ(Spliced(file, {.added = Markers({{0xE1, "Exif"}, {0xFE, ""}, {0xFE, "new"}})}),
              kStart + kJfif + kJfxx + Segment(0xE1, "Exif") + Segment(0xFE, "") +
                  Segment(0xFE, "new") + kProfile + kAdobe + kTable + "\xFF" + kFrame + kScan);
}

TEST(SpliceJpegHead, KeepAllLeavesTheOldOnesWhereTheyAre) {
    const std::string front = kStart + kJfif + kExif + kXmp;
    const std::string back =
        kResources + "\xFF" + kProfile + kOther + kAdobe + kTable + kRemark + kFrame + kScan;
    EXPECT_EQ(Spliced(front + back, {.keepAll = true}), front + back);
    EXPECT_EQ(Spliced(front + back, {.keepAll = true, .added = Markers({{0xFE, "new"}})}),
              front + Segment(0xFE, "new") + back);
}

TEST(SpliceJpegHead, ChangedExifTakesThePlaceOfTheOld) {
    const Bytes exif = AsBytes("Exif\0\0II*\0new"s);
    const std::string fresh = Segment(0xE1, TextOf(exif));
    EXPECT_EQ(
        Spliced(kStart + kRemark + kXmp + kExif + kExif + kScan, {.keepAll = true, .exif = exif}),
        kStart + kRemark + kXmp + fresh + kExif + kScan);
    EXPECT_EQ(Spliced(kStart + kJfif + kXmp + kRemark + kScan,
                      {.keepAll = true, .added = Markers({{0xFE, "new"}}), .exif = exif}),
              kStart + kJfif + fresh + kXmp + Segment(0xFE, "new") + kRemark + kScan);
    EXPECT_EQ(Spliced(kStart + kScan, {.keepAll = true, .exif = exif}), kStart + fresh + kScan);
}

TEST(SpliceJpegHead, TheLongestPayloadFitsAndALongerOneIsRefused) {
    const std::string longest(65533, 'x');
    EXPECT_EQ(Spliced(kStart + kScan, {.added = Markers({{0xFE, longest}})}),
              kStart + "\xFF\xFE\xFF\xFF" + longest + kScan);
    const std::string refusal =
        "refused: JPG: a marker of 65534 bytes is too long, 65533 is the most";
    EXPECT_EQ(Spliced(kStart + kScan, {.added = Markers({{0xFE, longest + "x"}})}), refusal);
    EXPECT_EQ(Spliced(kStart + kScan, {.keepAll = true, .exif = AsBytes(longest + "x")}), refusal);
}

TEST(SpliceJpegHead, RealFilesComeBackAndKeepTheirScans) {
    for (const auto& path : test::TestFilesIn("jpg")) {
        const std::string file = TextOf(test::ReadWholeFile(path));
        EXPECT_EQ(Spliced(file, {.keepAll = true}), file) << path;
        const std::string changed =
            Spliced(file, {.added = Markers({{0xE1, "Exif\0\0"s}, {0xFE, "remark"}})});
        EXPECT_EQ(test::ScanDataOf(changed), test::ScanDataOf(file)) << path;
        int markers = 0;
        for (const auto& [code, payload] : test::SegmentsOf(changed))
            if (code >= 0xE0) markers += code != 0xE0 && code != 0xE2 && code != 0xEE ? 1 : 0;
        EXPECT_EQ(markers, 2) << path;
    }
}

TEST(CommentPayloads, AreCutBetweenCharacters) {
    const auto sizes = [](const std::string& text) {
        std::vector<std::size_t> lengths;
        std::string joined;
        for (const Bytes& payload : CommentPayloads(text)) {
            lengths.push_back(payload.size());
            joined += TextOf(payload);
        }
        EXPECT_EQ(joined, text);
        return lengths;
    };
    const std::string full(65533, 'x');
    EXPECT_THAT(sizes(""), ElementsAre());
    EXPECT_THAT(sizes("remark"), ElementsAre(6));
    EXPECT_THAT(sizes(full), ElementsAre(65533));
    EXPECT_THAT(sizes(full + "y"), ElementsAre(65533, 1));
    EXPECT_THAT(sizes(full + full), ElementsAre(65533, 65533));
    EXPECT_THAT(sizes(full.substr(1) + "\xC3\xA9"), ElementsAre(65532, 2));
    EXPECT_THAT(sizes(full.substr(3) + "\xF0\x9F\x98\x80z"), ElementsAre(65530, 5));
    EXPECT_THAT(sizes(full + "\xE9t\xE9"), ElementsAre(65533, 3));
    EXPECT_THAT(sizes(std::string(70000, '\x80')), ElementsAre(65533, 4467));  // no UTF-8 at all
}

// ---- The index of further pictures ------------------------------------------------------------

std::string Number(bool highFirst, std::uint32_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> (8 * (highFirst ? bytes - 1 - i : i)));
    return text;
}

/// An index with two pictures behind the first one. Places count from its fourth byte.
std::string Index(bool highFirst, std::uint32_t firstLength, std::uint32_t secondAt,
                  std::uint32_t thirdAt) {
    const auto n = [&](std::uint32_t value, int bytes) { return Number(highFirst, value, bytes); };
    std::string index = "MPF\0"s + (highFirst ? "MM" : "II") + n(42, 2) + n(8, 4) + n(2, 2);
    index += n(0xB001, 2) + n(4, 2) + n(1, 4) + n(3, 4);
    index += n(0xB002, 2) + n(7, 2) + n(48, 4) + n(38, 4) + n(0, 4);
    index += n(0x030000, 4) + n(firstLength, 4) + n(0, 4) + n(0, 4);
    index += n(0, 4) + n(7, 4) + n(secondAt, 4) + n(0, 4);
    return index + n(0, 4) + n(7, 4) + n(thirdAt, 4) + n(0, 4);
}

const std::string kFirstScan = Segment(0xDA, "scan") + "data\xFF\xD9";
const std::string kSmall = kStart + "two\xFF\xD9";

/// `front`, the index, `back`, the scan and two small pictures, with the index as it should be.
std::string WithPictures(bool highFirst, const std::string& front, const std::string& back) {
    const std::string sized = Segment(0xE2, Index(highFirst, 0, 0, 0));
    const std::size_t countsFrom = front.size() + 4 + 4;
    const std::size_t first = front.size() + sized.size() + back.size() + kFirstScan.size();
    const auto place = static_cast<std::uint32_t>(first - countsFrom);
    const std::string index = Index(highFirst, static_cast<std::uint32_t>(first), place,
                                    place + static_cast<std::uint32_t>(kSmall.size()));
    return front + Segment(0xE2, index) + back + kFirstScan + kSmall + kSmall;
}

TEST(SpliceJpegHead, AnIndexOfFurtherPicturesFollowsThem) {
    for (const bool highFirst : {false, true}) {
        const JpegMarkers added = Markers({{0xFE, "new"}});
        // Growth before the index: only the first picture is longer.
        EXPECT_EQ(Spliced(WithPictures(highFirst, kStart + kExif, kTable + kFrame),
                          {.keepAll = true, .added = added}),
                  WithPictures(highFirst, kStart + kExif + Segment(0xFE, "new"), kTable + kFrame));
        // Loss behind it: the others come nearer as well.
        EXPECT_EQ(Spliced(WithPictures(highFirst, kStart + kExif, kXmp + kTable + kRemark), {}),
                  WithPictures(highFirst, kStart, kTable));
        // Nothing changes.
        const std::string same = WithPictures(highFirst, kStart + kJfif, kTable);
        EXPECT_EQ(Spliced(same, {}), same);
    }
}

TEST(SpliceJpegHead, AnIndexThatIsWrongAlreadyStaysAsItIs) {
    const std::string good = Index(false, 200, 100, 120);
    for (const std::string& index :
         {good, good.substr(0, 90), good.substr(0, 40), good.substr(0, 12), good.substr(0, 4),
          "MPF\0XX"s + good.substr(6), Index(false, 200, 0xFFFFFFFF, 120),
          good.substr(0, 8) + "\xFF\xFF\xFF\xFF" + good.substr(12),
          good.substr(0, 12) + "\xFF\xFF" + good.substr(14), "FPXR\0"s + good}) {
        const std::string marker = Segment(0xE2, index);
        EXPECT_EQ(Spliced(kStart + kXmp + marker + kRemark + kFirstScan + kSmall, {}),
                  kStart + marker + kFirstScan + kSmall);
    }
    // Cut behind the first picture, as copies on the web are.
    std::string file = WithPictures(false, kStart + kExif, kTable);
    file.resize(file.size() - 2 * kSmall.size());
    std::string expected = file;
    expected.erase(2, kExif.size());
    EXPECT_EQ(Spliced(file, {}), expected);
}

TEST(SpliceJpegHead, DamageDoesNoHarm) {
    const Bytes added = AsBytes("Exif\0\0"s);
    std::vector<Bytes> files{AsBytes(WithPictures(true, kStart + kExif, kXmp + kTable))};
    for (const auto& path : test::TestFilesIn("jpg")) files.push_back(test::ReadWholeFile(path));
    for (const Bytes& whole : files) {
        for (std::uint32_t seed = 0; seed < 60; ++seed) {
            const Bytes file = test::Mutate(whole, seed);
            const JpegHead head = ReadJpegHead(file);
            const auto spliced =
                SpliceJpegHead(head, {.keepAll = seed % 2 == 0, .added = {{kApp1, added}}});
            EXPECT_EQ(static_cast<bool>(spliced), head.damage.empty());
        }
    }
}

}  // namespace
}  // namespace lumo::imaging::codecs
