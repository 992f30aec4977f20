#include "imaging/codecs/image_resources.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "imaging/codecs/stored_metadata.h"
#include "support/jpeg_files.h"
#include "support/test_files.h"

namespace lumo::imaging::codecs {
namespace {

using namespace std::string_literals;
using test::AsBytes;
using test::TextOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

const std::string kPrefix = "Photoshop 3.0\0"s;

std::string Resource(std::uint16_t number, const std::string& name, const std::string& data) {
    Bytes block;
    AppendResource(block, number, name, AsBytes(data));
    return TextOf(block);
}

std::vector<std::pair<int, std::string>> Read(const std::string& block) {
    std::vector<std::pair<int, std::string>> list;
    const Bytes bytes = AsBytes(block);
    for (const auto& [number, data] : ReadResources(bytes)) list.emplace_back(number, TextOf(data));
    return list;
}

TEST(AppendResource, NamesAndDataAreEven) {
    EXPECT_EQ(Resource(0x404, "", "ab"), "8BIM\x04\x04\0\0\0\0\0\2ab"s);
    EXPECT_EQ(Resource(0x404, "n", "abc"), "8BIM\x04\x04\1n\0\0\0\3abc\0"s);
    EXPECT_EQ(Resource(0x40A, "Mark Copyrighted", "\1"),
              "8BIM\x04\x0A\x10Mark Copyrighted\0\0\0\0\1\1\0"s);
    EXPECT_EQ(Resource(1, std::string(300, 'n'), ""),
              "8BIM\0\1\xFF"s + std::string(255, 'n') + "\0\0\0\0"s);
}

TEST(ReadResources, GetsBackWhatWasAppended) {
    EXPECT_THAT(
        Read(Resource(0x404, "", "abc") + Resource(1, "odd", "") + Resource(2, "even", "x")),
        ElementsAre(Pair(0x404, "abc"), Pair(1, ""), Pair(2, "x")));
    EXPECT_THAT(Read("PHUT\0\1\0\0\0\0\0\1x"s), ElementsAre(Pair(1, "x")));  // unpadded at the end
    EXPECT_THAT(Read(""), IsEmpty());
}

TEST(ReadResources, DamageEndsTheList) {
    const std::string good = Resource(7, "", "data");
    for (const std::string& rest :
         {"8BI"s, "8BIX\0\1\0\0\0\0\0\0"s, "8BIM\0\1\xFF\0\0\0\0\0"s, "8BIM\0\1\0\0\0\0\0\1"s,
          "8BIM\0\1\0\0\xFF\xFF\xFF\xFFxx"s, std::string(20, '\0')})
        EXPECT_THAT(Read(good + rest), ElementsAre(Pair(7, "data")));
}

TEST(ResourcePayloads, ABlockGoesOnInTheNextMarker) {
    const auto sizes = [](std::size_t bytes) {
        std::vector<std::size_t> list;
        JpegMarkers markers;
        const Bytes block(bytes, 'b');
        for (Bytes& payload : ResourcePayloads(block)) {
            EXPECT_EQ(TextOf(payload).substr(0, kPrefix.size()), kPrefix);
            list.push_back(payload.size());
            markers.emplace_back(kApp13, std::move(payload));
        }
        EXPECT_EQ(JoinResources(markers), block);
        return list;
    };
    EXPECT_THAT(sizes(0), IsEmpty());
    EXPECT_THAT(sizes(1), ElementsAre(15));
    EXPECT_THAT(sizes(65519), ElementsAre(65533));
    EXPECT_THAT(sizes(65520), ElementsAre(65533, 15));
    EXPECT_THAT(sizes(200000), ElementsAre(65533, 65533, 65533, 3457));
}

TEST(JoinResources, LeavesOthersOutAndHasAnEnd) {
    EXPECT_EQ(TextOf(JoinResources({{kApp13, AsBytes(kPrefix + "one")},
                                    {kApp1, AsBytes(kPrefix + "no")},
                                    {kApp13, AsBytes("Adobe_CM")},
                                    {kApp13, AsBytes("Photoshop 3.0")},
                                    {kApp13, AsBytes(kPrefix + "two")}})),
              "onetwo");
    const JpegMarkers many(300, {kApp13, AsBytes(kPrefix + std::string(65519, 'x'))});
    const std::size_t joined = JoinResources(many).size();
    EXPECT_LE(joined, kMaxResourceBytes);
    EXPECT_GT(joined, kMaxResourceBytes - 65536);
}

TEST(IptcOf, JoinsTheDataOfAllItsResources) {
    const Bytes block =
        AsBytes(Resource(0x404, "", "abc") + Resource(0x40A, "", "\1") + Resource(0x404, "", "de"));
    EXPECT_EQ(TextOf(IptcOf(block)), "abcde");
    EXPECT_THAT(IptcOf(AsBytes(Resource(0x40A, "", "\1"))), IsEmpty());
}

TEST(ReadResources, RealFilesAreRead) {
    const auto markers = ReadJpegMarkers(test::ReadTestFile("jpg/me_withIptc.jpg"));
    const Bytes block = JoinResources(markers);
    EXPECT_THAT(ReadResources(block), SizeIs(testing::Gt(5U)));
    EXPECT_THAT(IptcOf(block), Not(IsEmpty()));
}

}  // namespace
}  // namespace lumo::imaging::codecs
