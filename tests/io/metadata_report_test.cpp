#include "io/metadata_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "engine/view.h"
#include "support/jpeg_files.h"
#include "support/recording_ui.h"
#include "support/temp_folder.h"
#include "support/test_files.h"

namespace lumo::io {
namespace {

using namespace std::string_literals;
using test::FileText;
using test::PutFile;
using test::Segment;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Pair;
using testing::StartsWith;

const std::string kPictures = (test::DataFolder() / "jpg/").string();
const std::string kDashes = "--------------------------\n";
const std::string kScan = Segment(0xDA, "scan") + "data\xFF\xD9";

/// The report with the folder of the pictures taken out.
std::string WithoutFolder(std::string report) {
    if (const auto at = report.find(kPictures); at != std::string::npos)
        report.erase(at, kPictures.size());
    return report;
}

/// The texts that real files give, as tests/data/metadata holds them: NAME.exif.txt, NAME.iptc.txt.
TEST(MetadataReport, RealFilesGiveKnownTexts) {
    int compared = 0;
    for (const auto& entry : std::filesystem::directory_iterator(test::DataFolder() / "metadata")) {
        const std::string name = entry.path().filename();
        const bool exif = name.ends_with(".exif.txt");
        if (!exif && !name.ends_with(".iptc.txt")) continue;
        const std::string picture = kPictures + name.substr(0, name.size() - 9) + ".jpg";
        const std::string report = exif ? ExifReportText(picture) : IptcReportText(picture);
        EXPECT_EQ(WithoutFolder(report), FileText(entry.path())) << name;
        ++compared;
    }
    EXPECT_GE(compared, 12);
}

TEST(ExifReportText, WithoutTheMakerThereIsNone) {
    for (const char* name : {"imagemeta_NoExif.jpg", "serenity_grayscale_mcu.jpg", "SOURCES.md"})
        EXPECT_EQ(ExifReportText(kPictures + name),
                  kPictures + name + " did not contain any EXIF information");
    const std::string tif = (test::DataFolder() / "tif/exiftool_ExifTool.tif").string();
    EXPECT_EQ(ExifReportText(tif), tif + " did not contain any EXIF information");
    EXPECT_EQ(ExifReportText("/no/such\nfile.jpg"),
              "/no/such?file.jpg did not contain any EXIF information");
}

class IptcReportTest : public testing::Test {
  protected:
    std::string ReportOf(const std::string& segments) {
        PutFile(path_, "\xFF\xD8" + segments + kScan);
        return IptcReportText(path_);
    }
    std::string Heading() const {
        return "JPG comments and IPTC information for " + path_ + ":\n" + kDashes;
    }

    test::TempFolder folder_;
    std::string path_ = folder_ / "a.jpg";
    std::string iptc_ = Segment(0xED,
                                "Photoshop 3.0\0"
                                "8BIM\x04\x04\0\0\0\0\0\x07\x1C\x02\x05\0\x02it\0"s);
};

TEST_F(IptcReportTest, HasCommentsAndTags) {
    EXPECT_EQ(
        ReportOf(Segment(0xFE, "one") + iptc_ + Segment(0xFE, "two\r\nlines\r\xE9\x1B\t!\0\0"s)),
        Heading() + "JPG_COM comments:\none\ntwo\nlines\n\xC3\xA9? !\n" + kDashes +
            "\nIPTC information:\n" + kDashes + "2:5 ObjectName: it\n");
}

TEST_F(IptcReportTest, SaysWhatIsMissing) {
    EXPECT_EQ(ReportOf(Segment(0xFE, "one")),
              Heading() + "JPG_COM comments:\none\n" + kDashes + "\nNo IPTC information found.");
    EXPECT_EQ(ReportOf(iptc_),
              Heading() + "IPTC information:\n" + kDashes + "2:5 ObjectName: it\n");
    EXPECT_EQ(ReportOf(Segment(0xE1, "Exif")),
              path_ + " did not contain any JPG comments or IPTC information");
    EXPECT_EQ(ReportOf(Segment(0xFE, "")),
              Heading() + "JPG_COM comments:\n\n" + kDashes + "\nNo IPTC information found.");
}

TEST_F(IptcReportTest, OtherFilesHaveNone) {
    const std::string none = " did not contain any JPG comments or IPTC information";
    PutFile(path_, "\x89PNG\r\n\x1A\n");
    EXPECT_EQ(IptcReportText(path_), path_ + none);
    EXPECT_EQ(IptcReportText(folder_ / "missing.jpg"), folder_ / "missing.jpg" + none);
    EXPECT_EQ(IptcReportText(""), none);
}

TEST(MetadataReport, IsShownForTheSample) {
    test::RecordingInterface ui;
    engine::CLumoscriptView view(ui);
    view.sample.path = kPictures + "exiv2_exiv2-kodak-dc210.jpg";
    ShowExifReport(view);
    ShowIptcReport(view);
    EXPECT_THAT(ui.reports,
                ElementsAre(Pair("Metadata display", ExifReportText(view.sample.path)),
                            Pair("Metadata display", IptcReportText(view.sample.path))));
}

}  // namespace
}  // namespace lumo::io
