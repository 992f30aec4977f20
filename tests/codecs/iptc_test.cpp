#include "imaging/codecs/iptc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "imaging/codecs/image_resources.h"
#include "imaging/codecs/stored_metadata.h"
#include "support/jpeg_files.h"
#include "support/mutate.h"
#include "support/test_files.h"

namespace lumo::imaging::codecs {
namespace {

using namespace std::string_literals;
using test::AsBytes;
using test::TextOf;

std::string Report(const std::string& block) {
    return IptcText(AsBytes(block));
}

TEST(IptcBlock, IsAListOfDatasetsInTheOrderOfAdding) {
    IptcBlock block;
    EXPECT_TRUE(block.IsEmpty());
    EXPECT_TRUE(block.Add(5, "Harbour"));
    EXPECT_TRUE(block.Add(55, "20240131"));
    EXPECT_TRUE(block.Add(90, ""));  // passed over
    EXPECT_TRUE(block.Add(40, "a\r\nb"));
    EXPECT_EQ(TextOf(block.Export()),
              "\x1C\x02\x05\0\x07Harbour\x1C\x02\x37\0\x08"
              "20240131\x1C\x02\x28\0\x04"
              "a\r\nb"s);
}

TEST(IptcBlock, AnEmptyOneIsEmpty) {
    IptcBlock block;
    EXPECT_TRUE(block.Add(5, ""));
    EXPECT_TRUE(block.IsEmpty());
    EXPECT_TRUE(block.Export().empty());
}

TEST(IptcBlock, SaysWhenItsTextsAreUtf8) {
    const std::string announced = "\x1C\x01\x5A\0\x03\x1B%G"s;
    IptcBlock utf8;
    EXPECT_TRUE(utf8.Add(5, "plain"));
    EXPECT_TRUE(utf8.Add(90, "K\xC3\xB6ln"));
    EXPECT_EQ(TextOf(utf8.Export()).substr(0, announced.size()), announced);
    IptcBlock western;  // one text of the old kind, and readers must not take the others for UTF-8
    EXPECT_TRUE(western.Add(5, "caf\xC3\xA9"));
    EXPECT_TRUE(western.Add(90, "K\xF6ln"));
    EXPECT_EQ(TextOf(western.Export()).substr(0, 2), "\x1C\x02");
}

TEST(IptcBlock, RefusesATextBeyondThePlainForm) {
    IptcBlock block;
    EXPECT_TRUE(block.Add(120, std::string(32767, 'x')));
    const auto refused = block.Add(122, std::string(32768, 'x'));
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.Message(), "IPTC: a text of 32768 bytes is too long, 32767 is the most");
    EXPECT_EQ(block.Export().size(), 32772U);
}

TEST(IptcText, HasOneLineForEachDataset) {
    EXPECT_EQ(
        Report("\x1C\x01\x5A\0\3\x1B%G\x1C\x02\0\0\2\0\4\x1C\x02\x05\0\4Name\x1C\x02\x96\0\1x"s
               "\x1C\x02\x78\0\x0Btwo\r\nlines\n\x1C\x02\x19\0\3one\x1C\x02\x19\0\3two"s),
        "1:90 CharacterSet: ?%G\n2:0 RecordVersion: 4\n2:5 ObjectName: Name\n2:150 "
        "AudioType: x\n2:120 Caption: two lines\n2:25 Keywords: one\n2:25 Keywords: two\n");
    EXPECT_EQ(Report("\x1C\x09\xFE\0\1x"s), "9:254: x\n");
    EXPECT_EQ(Report(""), "");
}

TEST(IptcText, ReadsBothCodingsAndCutsLongValues) {
    EXPECT_EQ(Report("\x1C\x02\x5A\0\4K\xF6ln"s), "2:90 City: K\xC3\xB6ln\n");
    EXPECT_EQ(Report("\x1C\x02\x5A\0\5K\xC3\xB6ln"s), "2:90 City: K\xC3\xB6ln\n");
    EXPECT_EQ(Report("\x1C\x02\x78\x20\0"s + std::string(8192, 'x')),
              "2:120 Caption: " + std::string(4000, 'x') + "...\n");
}

TEST(IptcText, ReadsTheLongForm) {
    EXPECT_EQ(Report("\x1C\x02\x05\x80\x04\0\0\0\3abc\x1C\x02\x05\0\1z"s),
              "2:5 ObjectName: abc\n2:5 ObjectName: z\n");
    EXPECT_EQ(Report("\x1C\x02\x05\x80\x08\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFFxx"s), "");
    EXPECT_EQ(Report("\x1C\x02\x05\x80\x09\0\0\0\0\0\0\0\0\1x"s), "");
}

TEST(IptcText, DamageEndsTheText) {
    const std::string good = "\x1C\x02\x05\0\1a"s;
    for (const std::string& rest : {""s, "\x1C"s, "\x1C\x02\x05\0"s, "\x1C\x02\x05\0\2x"s,
                                    "xxxxxxxxxx"s, "\x1C\x02\x05\xFF\xFFx"s})
        EXPECT_EQ(Report(good + rest), "2:5 ObjectName: a\n");
}

TEST(IptcText, MutatedBlocksDoNoHarm) {
    const Bytes block =
        IptcOf(JoinResources(ReadJpegMarkers(test::ReadTestFile("jpg/me_withIptc.jpg"))));
    ASSERT_FALSE(IptcText(block).empty());
    for (std::uint32_t seed = 0; seed < 2000; ++seed) {
        const std::string text = IptcText(test::Mutate(block, seed));
        EXPECT_TRUE(text.empty() || text.back() == '\n');
    }
}

}  // namespace
}  // namespace lumo::imaging::codecs
