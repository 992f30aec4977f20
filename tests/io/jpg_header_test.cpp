#include "io/jpg_header.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "imaging/codecs/exif_tables.h"
#include "imaging/codecs/image_resources.h"
#include "imaging/codecs/iptc.h"
#include "imaging/codecs/stored_metadata.h"
#include "io/output.h"
#include "script/catalogue.h"
#include "support/failing_calls.h"
#include "support/jpeg_files.h"
#include "support/run_bench.h"
#include "support/test_files.h"

namespace lumo::io {
namespace {

using namespace std::string_literals;
namespace codecs = imaging::codecs;
using codecs::Bytes;
using codecs::JpegMarkers;
using engine::Outcome;
using test::AsBytes;
using test::FileText;
using test::PutFile;
using test::Segment;
using test::TextOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::StartsWith;

enum Field { kMode, kComments, kExif, kIptc, kAll, kPath, kAddComment, kComment, kAddIptc, kName };
constexpr int kDate = 10, kCity = 11, kHeadline = 15, kCaption = 17, kInstructions = 18,
              kByline = 19, kMark = 23, kTitle = 24, kSubject = 25;

/// A parameter string: everything off and empty but these fields.
std::string Params(const std::vector<std::pair<int, std::string>>& set) {
    std::array<std::string, 29> fields;
    for (const int flag : {1, 2, 3, 4, 5, 6, 8, 23}) fields[static_cast<std::size_t>(flag)] = "0";
    fields[kMode] = "1";
    for (const auto& [field, text] : set) fields[static_cast<std::size_t>(field)] = text;
    std::string params = "29,";
    for (const std::string& field : fields) params += "\"" + field + "\",";
    return params;
}

const std::string kScan = Segment(0xDA, "scan") + "data\xFF\xD9 and behind";
const std::string kOldExif = "Exif\0\0II*\0\x08\0\0\0\0\0\0\0\0\0"s;  // one empty table
const std::string kXmp = "http://ns.adobe.com/xap/1.0/\0<x/>"s;
const std::string kOldResources =
    "Photoshop 3.0\0"
    "8BIM\x04\x04\0\0\0\0\0\x08\x1C\x02\x05\0\x03old"s;

/// A run with a JPG in hand that holds a marker of every kind.
class JpgHeaderTest : public testing::Test {
  protected:
    JpgHeaderTest() {
        old_ = "\xFF\xD8" + Segment(0xE0, "JFIF\0\1\1"s) + Segment(0xE1, kOldExif) +
               Segment(0xE1, kXmp) + Segment(0xE2, "FPXR") + Segment(0xEC, "Ducky") +
               Segment(0xED, kOldResources) + Segment(0xEE, "Adobe") + Segment(0xFE, "first") +
               Segment(0xFE, "second") + Segment(0xDB, "table") + kScan;
        Take(bench.In("a.jpg"), old_);
    }

    void Take(const std::string& path, const std::string& file) {
        PutFile(path, file);
        bench.TakeInput(path);
        bench.view.metadata.Clear();
        bench.view.metadata.jpgInput = codecs::ReadJpegMarkers(AsBytes(file));
    }
    Outcome Run(const std::vector<std::pair<int, std::string>>& set) {
        return bench.Execute(kJpgHeaderCommand, Params(set));
    }
    std::string File() const { return FileText(bench.In("a.jpg")); }
    const JpegMarkers& Store() const { return bench.view.metadata.jpgOutput; }
    std::vector<std::pair<int, std::string>> StoreTexts() const {
        std::vector<std::pair<int, std::string>> texts;
        for (const auto& [code, payload] : Store()) texts.emplace_back(code, TextOf(payload));
        return texts;
    }
    std::string StoredIptc() const {
        return codecs::IptcText(codecs::IptcOf(codecs::JoinResources(Store())));
    }
    std::vector<std::string>& Reports() { return bench.ErrorLines(); }

    test::RunBench bench;
    std::string old_;
};

// ---- What the fields ask for ------------------------------------------------------------------

TEST_F(JpgHeaderTest, WithoutAnyFlagTheStoreIsEmptied) {
    bench.view.metadata.jpgOutput = {{0xFE, AsBytes("from before")}};
    EXPECT_EQ(Run({}), Outcome::Succeeded);
    EXPECT_THAT(Store(), IsEmpty());
    EXPECT_EQ(File(), old_);
    EXPECT_THAT(Reports(), IsEmpty());
}

TEST_F(JpgHeaderTest, EachKindIsRetainedByItsFlag) {
    Run({{kComments, "1"}});
    EXPECT_THAT(StoreTexts(), ElementsAre(Pair(0xFE, "first"), Pair(0xFE, "second")));
    Run({{kExif, "1"}});
    EXPECT_THAT(StoreTexts(), ElementsAre(Pair(0xE1, kOldExif), Pair(0xE1, kXmp)));
    Run({{kIptc, "1"}});
    EXPECT_THAT(StoreTexts(), ElementsAre(Pair(0xED, kOldResources)));
    Run({{kAll, "1"}});
    EXPECT_THAT(StoreTexts(),
                ElementsAre(Pair(0xE1, kOldExif), Pair(0xE1, kXmp), Pair(0xED, kOldResources),
                            Pair(0xFE, "first"), Pair(0xFE, "second")));
    Run({{kAll, "yes"}, {kComments, "T"}});
    EXPECT_THAT(Store(), IsEmpty());
}

TEST_F(JpgHeaderTest, PathAndCommentFollowTheRetainedComments) {
    Run({{kComments, "1"}, {kPath, "1"}, {kAddComment, "1"}, {kComment, "one, $xtwo $(width)"}});
    EXPECT_THAT(StoreTexts(), ElementsAre(Pair(0xFE, "first"), Pair(0xFE, "second"),
                                          Pair(0xFE, "LINK=" + bench.In("a.jpg")),
                                          Pair(0xFE, "one, \r\ntwo $(width)")));
    Run({{kAddComment, "1"}, {kComment, ""}});
    EXPECT_THAT(Store(), IsEmpty());
    Run({{kAddComment, "0"}, {kComment, "not asked for"}});
    EXPECT_THAT(Store(), IsEmpty());
}

TEST_F(JpgHeaderTest, ALongCommentIsSplit) {
    const std::string longest(65533, 'x');
    Run({{kAddComment, "1"}, {kComment, longest}});
    EXPECT_THAT(StoreTexts(), ElementsAre(Pair(0xFE, longest)));
    Run({{kMode, "2"}, {kAddComment, "1"}, {kComment, longest + "yz"}});
    EXPECT_THAT(StoreTexts(), ElementsAre(Pair(0xFE, longest), Pair(0xFE, "yz")));
    EXPECT_THAT(test::SegmentsOf(File()),
                testing::IsSupersetOf({Pair(0xFE, longest), Pair(0xFE, "yz"s)}));
    EXPECT_THAT(Reports(), IsEmpty());
}

TEST_F(JpgHeaderTest, NewIptcHoldsTheTagsInTheirOrder) {
    std::vector<std::pair<int, std::string>> set{{kAddIptc, "1"}};
    for (int field = 9; field <= 22; ++field) set.emplace_back(field, "f" + std::to_string(field));
    EXPECT_EQ(Run(set), Outcome::Succeeded);
    std::string block;
    int field = 9;
    for (const int dataset : {5, 55, 90, 95, 101, 116, 105, 122, 120, 40, 80, 85, 110, 115}) {
        const std::string text = "f" + std::to_string(field++);
        block += "\x1C\x02"s + static_cast<char>(dataset) + '\0' + static_cast<char>(text.size());
        block += text;
    }
    ASSERT_THAT(Store(), SizeIs(1));
    EXPECT_EQ(Store()[0].first, 0xED);
    EXPECT_EQ(TextOf(Store()[0].second),
              "Photoshop 3.0\0"
              "8BIM\x04\x04\0\0\0\0\0"s +
                  static_cast<char>(block.size()) + block + (block.size() % 2 != 0 ? "\0"s : ""));
}

TEST_F(JpgHeaderTest, DatesAreExpandedAndLinesBrokenWhereTheyMayBe) {
    bench.view.settings.dateFormat = "%d.%m.";
    Run({{kAddIptc, "1"},
         {kName, "$x$(width)"},
         {kDate, "$(width)-$(date%Y)"},
         {kCity, "a$xb"},
         {kHeadline, "a$xb"},
         {kCaption, "$x"},
         {kInstructions, "$x$xend"}});
    const std::string block = TextOf(codecs::IptcOf(codecs::JoinResources(Store())));
    EXPECT_THAT(block, HasSubstr("\x05\0\x0A$x$(width)"s));
    EXPECT_THAT(block, HasSubstr("\x37\0\x06"
                                 "8-20"s));
    EXPECT_THAT(block, HasSubstr("\x5A\0\x04"
                                 "a$xb"s));
    EXPECT_THAT(block, HasSubstr("\x69\0\x04"
                                 "a\r\nb"s));
    EXPECT_THAT(block, HasSubstr("\x78\0\x02\r\n"s));
    EXPECT_THAT(block, HasSubstr("\x28\0\x07\r\n\r\nend"s));
}

TEST_F(JpgHeaderTest, RetainedIptcLeavesNoPlaceForNew) {
    for (const int retain : {int{kIptc}, int{kAll}}) {
        Run({{retain, "1"}, {kAddIptc, "1"}, {kName, "new"}, {kMark, "1"}});
        EXPECT_EQ(StoredIptc(), "2:5 ObjectName: old\n");
        // Not even where the input has none.
        auto& input = bench.view.metadata.jpgInput;
        const JpegMarkers before = input;
        std::erase_if(input, [](const auto& marker) { return marker.first == 0xED; });
        Run({{retain, "1"}, {kAddIptc, "1"}, {kName, "new"}});
        EXPECT_EQ(StoredIptc(), "");
        // The mark is no IPTC.
        Run({{retain, "1"}, {kMark, "1"}});
        EXPECT_THAT(StoreTexts(), testing::Contains(Pair(0xED, EndsWith("\0\0\0\0\1\1\0"s))));
        input = before;
    }
}

TEST_F(JpgHeaderTest, TheMarkIsAResource) {
    const std::string mark = "8BIM\x04\x0A\x10Mark Copyrighted\0\0\0\0\1\1\0"s;
    Run({{kMark, "1"}});
    EXPECT_THAT(StoreTexts(), ElementsAre(Pair(0xED, "Photoshop 3.0\0"s + mark)));
    Run({{kMark, "1"}, {kAddIptc, "1"}, {kName, "N"}});
    EXPECT_THAT(StoreTexts(), ElementsAre(Pair(0xED,
                                               "Photoshop 3.0\0"
                                               "8BIM\x04\x04\0\0\0\0\0\6\x1C\2\5\0\1N"s +
                                                   mark)));
    Run({{kAddIptc, "1"}});  // all texts are empty
    EXPECT_THAT(Store(), IsEmpty());
}

TEST_F(JpgHeaderTest, ResourcesThatAreTooLongForAMarkerGoOnInTheNext) {
    const std::string text(32767, 'x');
    Run({{kAddIptc, "1"}, {kName, text}, {kCity, text}, {kCaption, text}, {kMode, "2"}});
    ASSERT_THAT(Store(), SizeIs(2));
    EXPECT_EQ(Store()[0].second.size(), 65533U);
    const Bytes block = codecs::JoinResources(codecs::ReadJpegMarkers(AsBytes(File())));
    ASSERT_THAT(codecs::ReadResources(block), SizeIs(1));
    EXPECT_EQ(codecs::ReadResources(block)[0].data.size(), 3 * (5 + 32767U));
}

TEST_F(JpgHeaderTest, PropertiesMakeAnExifOfTheirOwnOrJoinTheRetained) {
    Run({{kTitle, "Title"}, {kSubject, "Sub"}});
    ASSERT_THAT(Store(), SizeIs(1));
    EXPECT_THAT(TextOf(Store()[0].second), HasSubstr("T\0i\0t\0l\0e\0\0\0"s));
    Run({{kTitle, "Title"}, {kExif, "1"}});
    ASSERT_THAT(Store(), SizeIs(2));
    EXPECT_THAT(TextOf(Store()[0].second), StartsWith(kOldExif.substr(0, 10)));
    EXPECT_THAT(TextOf(Store()[0].second), HasSubstr("T\0i\0t\0l\0e\0\0\0"s));
    EXPECT_EQ(TextOf(Store()[1].second), kXmp);
    // A retained XMP alone is no EXIF.
    std::erase_if(bench.view.metadata.jpgInput,
                  [](const auto& marker) { return marker.second == AsBytes(kOldExif); });
    Run({{kTitle, "Title"}, {kExif, "1"}});
    ASSERT_THAT(Store(), SizeIs(2));
    EXPECT_THAT(TextOf(Store()[0].second), HasSubstr("T\0i\0t\0l\0e\0\0\0"s));
}

TEST_F(JpgHeaderTest, WithoutATitleTheTitleIsOneBlank) {
    Run({{kSubject, "Sub"}});
    ASSERT_THAT(Store(), SizeIs(1));
    EXPECT_THAT(TextOf(Store()[0].second), HasSubstr("\x9B\x9C\1\0\4\0\0\0 \0\0\0"s));
}

TEST_F(JpgHeaderTest, AnInputWithoutMarkersGivesEmptyCopiesAndNoError) {
    const std::string bare = "\xFF\xD8" + Segment(0xDB, "table") + kScan;
    Take(bench.In("a.jpg"), bare);
    EXPECT_EQ(Run({{kMode, "2"}, {kAll, "1"}, {kComments, "1"}, {kExif, "1"}, {kIptc, "1"}}),
              Outcome::Succeeded);
    EXPECT_THAT(Store(), IsEmpty());
    EXPECT_EQ(File(), bare);
    EXPECT_THAT(Reports(), IsEmpty());
}

// ---- Where they go ----------------------------------------------------------------------------

TEST_F(JpgHeaderTest, ModeOneFillsTheStoreAndModeZeroTheFile) {
    const std::vector<std::pair<int, std::string>> comment{{kAddComment, "1"}, {kComment, "new"}};
    const std::string rewritten = "\xFF\xD8" + Segment(0xE0, "JFIF\0\1\1"s) + Segment(0xFE, "new") +
                                  Segment(0xE2, "FPXR") + Segment(0xEE, "Adobe") +
                                  Segment(0xDB, "table") + kScan;
    Run({{kMode, "1"}, comment[0], comment[1]});
    EXPECT_THAT(StoreTexts(), ElementsAre(Pair(0xFE, "new")));
    EXPECT_EQ(File(), old_);
    Run({{kMode, "0"}, comment[0], comment[1]});
    EXPECT_THAT(Store(), IsEmpty());
    EXPECT_EQ(File(), rewritten);
    PutFile(bench.In("a.jpg"), old_);
    Run({{kMode, "2"}, comment[0], comment[1]});
    EXPECT_THAT(StoreTexts(), ElementsAre(Pair(0xFE, "new")));
    EXPECT_EQ(File(), rewritten);
    PutFile(bench.In("a.jpg"), old_);
    Run({{kMode, "both"}, comment[0], comment[1]});  // neither: the file, and the store stays
    EXPECT_THAT(StoreTexts(), ElementsAre(Pair(0xFE, "new")));
    EXPECT_EQ(File(), rewritten);
    EXPECT_THAT(test::NamesIn(bench.In()), ElementsAre("a.jpg"));
    EXPECT_THAT(Reports(), IsEmpty());
}

TEST_F(JpgHeaderTest, RetainedKindsComeBackInTheRewrite) {
    Run({{kMode, "0"}, {kComments, "1"}, {kExif, "1"}, {kIptc, "1"}});
    EXPECT_EQ(File(), "\xFF\xD8" + Segment(0xE0, "JFIF\0\1\1"s) + Segment(0xE1, kOldExif) +
                          Segment(0xE1, kXmp) + Segment(0xED, kOldResources) +
                          Segment(0xFE, "first") + Segment(0xFE, "second") + Segment(0xE2, "FPXR") +
                          Segment(0xEE, "Adobe") + Segment(0xDB, "table") + kScan);
}

TEST_F(JpgHeaderTest, KeepAllLeavesEveryMarkerAndHasNoneTwice) {
    Run({{kMode, "0"}, {kAll, "1"}, {kComments, "1"}, {kExif, "1"}, {kIptc, "1"}});
    EXPECT_EQ(File(), old_);
    Run({{kMode, "0"}, {kAll, "1"}, {kAddComment, "1"}, {kComment, "new"}});
    std::string expected = old_;
    const std::string front =
        "\xFF\xD8" + Segment(0xE0, "JFIF\0\1\1"s) + Segment(0xE1, kOldExif) + Segment(0xE1, kXmp);
    expected.insert(front.size(), Segment(0xFE, "new"));
    EXPECT_EQ(File(), expected);
}

TEST_F(JpgHeaderTest, KeepAllMergesPropertiesIntoTheFileAsItIsNow) {
    Run({{kMode, "0"}, {kAll, "1"}, {kTitle, "First"}});
    Run({{kMode, "0"}, {kAll, "1"}, {kSubject, "Second"}});
    int exifs = 0;
    for (const auto& [code, payload] : test::SegmentsOf(File()))
        exifs += code == 0xE1 && payload.starts_with("Exif") ? 1 : 0;
    EXPECT_EQ(exifs, 1);
    EXPECT_EQ(codecs::ReadExifTables(AsBytes(File()), 5).texts[0],
              "0x9c9b XPTitle: First\n0x9c9f XPSubject: Second\n");
    EXPECT_EQ(test::ScanDataOf(File()), kScan);
}

TEST_F(JpgHeaderTest, OtherInputsFillTheStoreAndStay) {
    for (const char* name : {"a.png", "a.tif", "jpg"}) {
        Take(bench.In(name), old_);
        Run({{kMode, "2"}, {kAddComment, "1"}, {kComment, "new"}});
        EXPECT_THAT(StoreTexts(), ElementsAre(Pair(0xFE, "new")));
        EXPECT_EQ(FileText(bench.In(name)), old_);
    }
    EXPECT_THAT(Reports(), IsEmpty());
}

TEST_F(JpgHeaderTest, TestsOnTheSampleLeaveFilesAlone) {
    bench.view.run.onLeftImage = true;
    Run({{kMode, "0"}});
    EXPECT_EQ(File(), old_);
    bench.view.run.onLeftImage = false;
    bench.view.run.batchRunning = bench.view.run.inRun = false;
    for (const engine::RunMode mode : {engine::RunMode::OneCommand, engine::RunMode::WholeScript}) {
        bench.view.run.mode = mode;
        Run({{kMode, "2"}, {kAddComment, "1"}, {kComment, "new"}});
        EXPECT_EQ(File(), old_);
        EXPECT_THAT(StoreTexts(), ElementsAre(Pair(0xFE, "new")));
    }
}

TEST_F(JpgHeaderTest, EveryJpgThatIsWrittenCarriesTheStore) {
    Run({{kAll, "1"}, {kAddComment, "1"}, {kComment, "new"}, {kTitle, "Title"}});
    for (const char* name : {"one.jpg", "two.JPG"}) {
        ASSERT_NE(WriteMainImage(bench.view, bench.Out(name)), 0);
        const JpegMarkers written = codecs::ReadJpegMarkers(AsBytes(FileText(bench.Out(name))));
        EXPECT_EQ(JpegMarkers(written.begin() + 1, written.end()), Store());
    }
    ASSERT_NE(WriteMainImage(bench.view, bench.Out("three.png")), 0);
    EXPECT_THAT(FileText(bench.Out("three.png")), Not(HasSubstr("first")));
}

TEST_F(JpgHeaderTest, TheCountersAreShown) {
    bench.view.run.statOutputs = 7;
    Run({});
    EXPECT_EQ(bench.ui.lastCounts.saved, 7);
}

TEST_F(JpgHeaderTest, NeedsAnImageAndIsNotSkippedInATest) {
    bench.view.test.ifFlag = 0;
    bench.view.run.batchRunning = bench.view.run.inRun = false;
    Run({{kComments, "1"}});
    EXPECT_THAT(Store(), SizeIs(2));
    bench.view.working.main.Reset();
    EXPECT_EQ(Run({}), Outcome::Failed);
    EXPECT_THAT(Store(), SizeIs(2));
}

// ---- Failures ---------------------------------------------------------------------------------

TEST_F(JpgHeaderTest, AnOriginalThatIsGoneIsReported) {
    std::filesystem::remove(bench.In("a.jpg"));
    EXPECT_EQ(Run({{kMode, "0"}}), Outcome::Succeeded);
    EXPECT_THAT(Reports(),
                ElementsAre(AllOf(StartsWith("Cmd_52 Original file not found (Deleted/Moved?) "
                                             "L17549:   IS_error "),
                                  EndsWith("No such file or directory"))));
    EXPECT_EQ(bench.view.run.failureReports, 1);
}

TEST_F(JpgHeaderTest, BrokenMarkersAreReportedAndStay) {
    const std::string broken = old_.substr(0, 30) + "garbage";
    PutFile(bench.In("a.jpg"), broken);
    EXPECT_EQ(Run({{kMode, "2"}, {kComments, "1"}}), Outcome::Succeeded);
    EXPECT_THAT(Reports(),
                ElementsAre(StartsWith("Cmd_52 JPGheader New Markers L17563:   IS_error ")));
    EXPECT_EQ(File(), broken);
    EXPECT_THAT(Store(), SizeIs(2));  // the other half of the command is done
}

TEST_F(JpgHeaderTest, EachFailureOfTheRewriteHasItsText) {
    const struct {
        test::Call call;
        int error;
        const char* report;
    } cases[] = {
        {test::Call::Fsync, ENOSPC, "Cmd_52 JPGheader New Markers L17563:   IS_error "},
        {test::Call::Access, EACCES, "Cmd_52 JPGheader DeleteFile L17567:   IS_error "},
        {test::Call::Rename, EACCES, "Cmd_52 Rename L17608: shell error 13  IS_error "},
    };
    for (const auto& [call, error, report] : cases) {
        Reports().clear();
        const test::ScopedFailure failing(call, error);
        EXPECT_EQ(Run({{kMode, "0"}}), Outcome::Succeeded);
        EXPECT_THAT(Reports(), ElementsAre(StartsWith(report)));
        EXPECT_EQ(File(), old_);
        EXPECT_THAT(test::NamesIn(bench.In()), ElementsAre("a.jpg"));
    }
}

TEST_F(JpgHeaderTest, AnIptcTextThatIsTooLongIsReportedUnderItsTag) {
    const std::string tooLong(32768, 'x');
    for (int field = 9; field <= 22; ++field) {
        Reports().clear();
        std::vector<std::pair<int, std::string>> set{{kAddIptc, "1"}};
        for (int other = 9; other <= 22; ++other) set.emplace_back(other, "x");
        set.emplace_back(field, tooLong);
        EXPECT_EQ(Run(set), Outcome::Succeeded);
        const std::string report = (field == kByline ? "c" : "C") + "md_52 JPGheader IPTC L"s +
                                   std::to_string(17415 + 7 * (field - 9)) + ":   IS_error IPTC: ";
        EXPECT_THAT(Reports(), ElementsAre(StartsWith(report)));
        const Bytes iptc = codecs::IptcOf(codecs::JoinResources(Store()));
        EXPECT_EQ(iptc.size(), 13 * 6U) << "the others are there";
    }
    EXPECT_EQ(17415 + 7 * 13, 17506);
}

TEST_F(JpgHeaderTest, ADamagedExifTakesNoPropertiesAndStays) {
    const std::string damaged = "Exif\0\0damaged beyond repair"s;
    bench.view.metadata.jpgInput = {{0xE1, AsBytes(damaged)}};
    PutFile(bench.In("a.jpg"), "\xFF\xD8" + Segment(0xE1, damaged) + kScan);
    const std::string before = File();
    Run({{kMode, "2"}, {kAll, "1"}, {kTitle, "T"}});
    EXPECT_THAT(Reports(), ElementsAre("Cmd_52 JPGheader EXIF L17371:   IS_error EXIF: the block "
                                       "is damaged"));
    EXPECT_THAT(StoreTexts(), ElementsAre(Pair(0xE1, damaged)));
    EXPECT_EQ(File(), before);
}

TEST_F(JpgHeaderTest, AnExifThatGrowsBeyondItsMarkerStays) {
    std::string full = kOldExif;
    full.resize(65533, 'x');
    bench.view.metadata.jpgInput = {{0xE1, AsBytes(full)}};
    PutFile(bench.In("a.jpg"), "\xFF\xD8" + Segment(0xE1, full) + kScan);
    const std::string before = File();
    Run({{kMode, "2"}, {kAll, "1"}, {kTitle, "T"}});
    EXPECT_THAT(Reports(), ElementsAre(AllOf(
                               StartsWith("Cmd_52 JPGheader EXIF L17375:   IS_error JPG: a marker"),
                               EndsWith("bytes is too long, 65533 is the most"))));
    EXPECT_THAT(StoreTexts(), ElementsAre(Pair(0xE1, full)));
    EXPECT_EQ(File(), before);
    // Long properties alone do not fit either.
    Reports().clear();
    Run({{kTitle, std::string(40000, 'x')}});
    EXPECT_THAT(Reports(), ElementsAre(StartsWith("Cmd_52 JPGheader EXIF L17375: ")));
    EXPECT_THAT(Store(), IsEmpty());
}

TEST_F(JpgHeaderTest, EveryStepAnswersForTheMemoryItLacks) {
    std::set<std::string> seen;
    const std::size_t inUse = imaging::MemoryInUse();
    for (std::size_t room = 0; room < 600; ++room) {
        const test::ScopedMemoryBudget budget(inUse + room);
        for (const bool retain : {false, true}) {
            Reports().clear();
            EXPECT_EQ(Run({{kAll, retain ? "1" : "0"},
                           {kAddIptc, "1"},
                           {kName, std::string(300, 'n')},
                           {kByline, "b"},
                           {kMark, "1"},
                           {kTitle, retain ? "" : "Title"}}),
                      Outcome::Succeeded);
            for (const std::string& report : Reports()) {
                EXPECT_THAT(report, EndsWith("  IS_error not enough memory"));
                seen.insert(report.substr(0, report.find(':') + 2));
            }
        }
    }
    EXPECT_THAT(seen,
                ElementsAre("Cmd_52 JPGheader EXIF L17375: ", "Cmd_52 JPGheader IPTC L17415: ",
                            "Cmd_52 JPGheader IPTC L17514: ", "Cmd_52 JPGheader L17339: ",
                            "Cmd_52 JPGheader PSD L17523: ", "Cmd_52 JPGheader PSD L17528: ",
                            "cmd_52 JPGheader IPTC L17485: "));
}

TEST_F(JpgHeaderTest, OutsideOfARunFailuresAreMessages) {
    bench.view.run.batchRunning = bench.view.run.inRun = false;
    Run({{kTitle, std::string(40000, 'x')}});
    EXPECT_THAT(bench.ui.messages, ElementsAre(StartsWith("Cmd_52 JPGheader EXIF L17375: ")));
    EXPECT_THAT(Reports(), IsEmpty());
}

// ---- Schema -----------------------------------------------------------------------------------

TEST(JpgHeaderSchema, FactoryStringIsTheCatalogues) {
    const auto* entry = script::FindByName("JPG file header");
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(script::FactoryString(kJpgHeaderCommand.spec.fields), entry->factory);
    const script::Fields fields = script::ParseParams(entry->factory);
    EXPECT_EQ(fields.Text(kComment).substr(0, 43), "Place your comments here (1,000 characters ");
    EXPECT_EQ(fields.Text(kDate), "$(date%Y%m%d)");
    EXPECT_EQ(fields.Text(kMark), "0");
}

TEST(JpgHeaderSchema, PanelSaysWhatIsOn) {
    const auto panel = [](const std::vector<std::pair<int, std::string>>& set) {
        return script::PanelText(kJpgHeaderCommand.spec, script::ParseParams(Params(set)));
    };
    EXPECT_EQ(panel({}), "When saving any JPG\n");
    EXPECT_EQ(panel({{kMode, "0"}, {kAll, "1"}, {kAddIptc, "1"}}),
              "Original file only\nRetain all file header information\nAdd IPTC\n");
    EXPECT_EQ(panel({{kMode, "2"}, {kMark, "1"}}),
              "Original file and when saving any JPG\nMark as copyrighted\n");
}

}  // namespace
}  // namespace lumo::io
