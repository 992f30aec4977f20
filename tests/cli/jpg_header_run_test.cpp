// "JPG file header" in whole runs: what a user's folders hold afterwards.

#include "support/jpeg_files.h"
#include "support/test_files.h"
#include "unattended_fixture.h"

namespace lumo {
namespace {

using test::FileText;
using test::SegmentsOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;
using testing::StartsWith;

class JpgHeaderRun : public Unattended {
  protected:
    void AddPhotos() {
        for (const char* name : {"exiv2_exiv2-kodak-dc210.jpg", "exiftool_JVC2.jpg"})
            std::filesystem::copy_file(test::DataFolder() / "jpg" / name,
                                       folder / ("in/" + std::string(name)));
        AddPictures(1);
    }
    std::string In(const std::string& name) { return FileText(folder / ("in/" + name)); }
    std::string Out(const std::string& name) { return FileText(folder / ("out/" + name)); }
    std::string ToJpg() {
        return "Output setup\r\n11,0,\"" + (folder / "out") + "\",0,jpg,0,0,,,0,0,1,\r\n";
    }
};

TEST_F(JpgHeaderRun, OriginalsAndOutputsCarryTheRemark) {
    AddPhotos();
    const std::string before = In("exiv2_exiv2-kodak-dc210.jpg");
    const std::string script = MakeScript(
        "JPG file header\r\n29,2,1,1,0,0,0,1,\"A remark, kept\",0,,,,,,,,,,,,,,,0,,,,,,"
        "\r\n",
        ToJpg());
    const auto result = test::RunProgram({kBatch, script});
    EXPECT_EQ(result.exitStatus, 0) << result.err;
    EXPECT_THAT(test::NamesIn(folder / "in"),
                ElementsAre("0.png", "exiftool_JVC2.jpg", "exiv2_exiv2-kodak-dc210.jpg"));
    EXPECT_THAT(test::NamesIn(folder / "out"),
                ElementsAre("0.jpg", "exiftool_JVC2.jpg", "exiv2_exiv2-kodak-dc210.jpg"));

    const std::string kodak = In("exiv2_exiv2-kodak-dc210.jpg");
    EXPECT_EQ(test::ScanDataOf(kodak), test::ScanDataOf(before));
    for (const std::string& file : {kodak, Out("exiv2_exiv2-kodak-dc210.jpg")}) {
        EXPECT_THAT(SegmentsOf(file), Contains(Pair(0xFE, "A remark, kept")));
        EXPECT_THAT(SegmentsOf(file), Contains(Pair(0xFE, StartsWith("Lovely smoke"))));
        EXPECT_THAT(SegmentsOf(file), Contains(Pair(0xE1, StartsWith("Exif"))));
    }
    // Nothing of one picture gets into another.
    EXPECT_THAT(Out("exiftool_JVC2.jpg"), Not(HasSubstr("Lovely smoke")));
    EXPECT_THAT(SegmentsOf(Out("0.jpg")), Contains(Pair(0xFE, "A remark, kept")));
    EXPECT_THAT(SegmentsOf(Out("0.jpg")), Not(Contains(Pair(0xE1, testing::_))));
}

TEST_F(JpgHeaderRun, WithoutTheCommandOutputsCarryNothing) {
    AddPhotos();
    EXPECT_EQ(test::RunProgram({kBatch, MakeScript("", ToJpg())}).exitStatus, 0);
    for (const std::string& name : test::NamesIn(folder / "out"))
        for (const auto& [code, payload] : SegmentsOf(Out(name)))
            EXPECT_TRUE(code < 0xE0 || (code == 0xE0 && payload.starts_with("JFIF"))) << name;
}

TEST_F(JpgHeaderRun, ADeletedOriginalIsReportedAndTheRunGoesOn) {
    AddPhotos();
    const std::string script = MakeScript(
        "Copy/Move\r\n6,0,\"" + (folder / "moved") +
            "\",0,,,1,\r\nJPG file header\r\n29,0,0,0,0,1,0,0,,0,,,,,,,,,,,,,,,0,,,,,,\r\n",
        ToJpg());
    const auto result = test::RunProgram({kBatch, script});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.err, HasSubstr("Cmd_52 Original file not found (Deleted/Moved?) L17549: "));
    EXPECT_THAT(Log("Error.log"),
                HasSubstr("Cmd_52 Original file not found (Deleted/Moved?) L17549: "));
    EXPECT_EQ(test::NamesIn(folder / "out").size(), 3U);
}

}  // namespace
}  // namespace lumo
