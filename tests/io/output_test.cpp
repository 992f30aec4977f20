#include "io/output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "imaging/codecs/stored_metadata.h"
#include "io/input.h"
#include "support/run_bench.h"

namespace lumo::io {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

struct OutputTest : testing::Test {
    OutputTest() { view.working.main = test::PhotoLikeImage({64, 48}); }
    std::string Write(const std::string& name) {
        EXPECT_NE(WriteMainImage(view, bench.Out(name)), 0) << name;
        return test::FileText(bench.Out(name));
    }
    std::vector<std::uint8_t> WriteBytes(const std::string& name) {
        const std::string text = Write(name);
        return {text.begin(), text.end()};
    }
    /// The 32-bit number, high byte first, behind a chunk's name.
    static std::uint32_t AfterChunk(const std::string& png, const std::string& chunk) {
        const std::size_t at = png.find(chunk) + 4;
        std::uint32_t number = 0;
        for (std::size_t i = at; i < at + 4; ++i)
            number = number << 8 | static_cast<std::uint8_t>(png[i]);
        return number;
    }
    test::RunBench bench;
    engine::CLumoscriptView& view = bench.view;
    settings::WriterSettings& writer = bench.view.settings.writer;
};

TEST_F(OutputTest, EveryExtensionHasItsFormat) {
    const struct {
        const char* name;
        const char* signature;
    } cases[] = {{"a.jpg", "\xFF\xD8\xFF"}, {"a.PNG", "\x89PNG"},  {"a.psd", "8BPS"},
                 {"a.tif", "II*"},          {"a.bmp", "BM"},       {"a.pcx", "\x0A"},
                 {"a.gif", "GIF8"},         {"a.apm", "\xD7\xCD"}, {"a.wmf", ""},
                 {"a.emf", "\x01"},         {"a.tga", ""}};
    for (const auto& tested : cases)
        EXPECT_THAT(Write(tested.name), testing::StartsWith(tested.signature)) << tested.name;
}

TEST_F(OutputTest, LosslessFormatsComeBackAsTheyWere) {
    for (const std::string name : {"a.png", "a.tif", "a.bmp", "a.tga", "a.pcx", "a.psd"}) {
        Write(name);
        const auto decoded = OpenImageFile(view, bench.Out(name));
        ASSERT_TRUE(decoded) << name;
        EXPECT_TRUE(test::SamePixels(decoded->image, view.working.main)) << name;
    }
}

TEST_F(OutputTest, FormatGoesByTheLastFourCharacters) {
    EXPECT_THAT(Write("jpg.png"), testing::StartsWith("\x89PNG"));
    EXPECT_EQ(WriteMainImage(view, bench.Out("a.jpeg")), 0);
    EXPECT_EQ(test::FileText(bench.Out("a.jpeg")), "");
    EXPECT_EQ(WriteMainImage(view, bench.Out("x")), 0);
    EXPECT_THAT(bench.BatchLines(), IsEmpty());  // the caller has the words
}

TEST_F(OutputTest, DepthOfTheWorkingImageReachesNoWriter) {
    const std::string full = Write("a.bmp");
    view.working.imageBits = 1;
    view.working.imageBitsForced = 1;
    EXPECT_EQ(Write("b.bmp"), full);
}

TEST_F(OutputTest, JpgTakesItsSettingsAndMarkers) {
    const std::string fine = Write("fine.jpg");
    writer.jpgQuality = "20";
    writer.jpgDpi = "96";
    writer.jpgEncoding = "1";
    view.metadata.jpgOutput = {{0xFE, {'h', 'i'}}};
    const std::string coarse = Write("coarse.jpg");
    EXPECT_LT(coarse.size(), fine.size());
    EXPECT_THAT(coarse, HasSubstr(std::string("JFIF\0\1\1\1\0\x60\0\x60", 12)));
    EXPECT_THAT(coarse, HasSubstr("\xFF\xC2"));
    EXPECT_THAT(coarse, HasSubstr(std::string("\xFF\xFE\0\4hi", 6)));
    EXPECT_THAT(fine, testing::Not(HasSubstr("\xFF\xC2")));
}

TEST_F(OutputTest, JpgSmoothingChangesThePicture) {
    const std::string sharp = Write("sharp.jpg");
    writer.jpgSmoothing = "100";
    EXPECT_NE(Write("smooth.jpg"), sharp);
}

TEST_F(OutputTest, PngTakesItsSettings) {
    writer.pngDotsPerMetre = "5906";
    const std::string plain = Write("plain.png");
    EXPECT_EQ(AfterChunk(plain, "pHYs"), 5906U);
    EXPECT_EQ(AfterChunk(plain, "gAMA"), 45455U);  // 100000 / 2.2
    EXPECT_EQ(plain[8 + 8 + 12], '\0');            // interlace byte of the header
    writer.pngInterlaced = true;
    writer.pngGamma = 0;
    const std::string other = Write("other.png");
    EXPECT_EQ(other[8 + 8 + 12], '\1');
    EXPECT_THAT(other, testing::Not(HasSubstr("gAMA")));
}

TEST_F(OutputTest, PngTextsAreThoseOfTheInputThenThoseOfTheSettings) {
    view.metadata.pngInput = {{"Author", "Jo"}, {"Title", "Cat"}};
    view.metadata.pngOutput = {{"old", "old"}};
    writer.pngKeys = {"Key", "", "Other", ""};
    writer.pngTexts = {"text", "unused", "words", ""};
    using imaging::codecs::ReadPngTexts;
    EXPECT_THAT(ReadPngTexts(WriteBytes("none.png")), IsEmpty());
    writer.pngCopyText = true;
    EXPECT_THAT(ReadPngTexts(WriteBytes("copied.png")),
                ElementsAre(Pair("Author", "Jo"), Pair("Title", "Cat")));
    writer.pngAddText = true;
    EXPECT_THAT(ReadPngTexts(WriteBytes("both.png")),
                ElementsAre(Pair("Author", "Jo"), Pair("Title", "Cat"), Pair("Key", "text"),
                            Pair("Other", "words")));
    writer.pngCopyText = false;
    EXPECT_THAT(ReadPngTexts(WriteBytes("added.png")),
                ElementsAre(Pair("Key", "text"), Pair("Other", "words")));
}

TEST_F(OutputTest, TifTakesItsCompression) {
    view.working.main = test::FlatImage({200, 200}, {9, 9, 9});
    const std::size_t plain = Write("plain.tif").size();
    EXPECT_GT(plain, 120000U);
    writer.tifCompression = 5;
    const std::size_t lzw = Write("lzw.tif").size();
    writer.tifCompression = 32773;
    const std::size_t packed = Write("packed.tif").size();
    EXPECT_LT(lzw, 20000U);
    EXPECT_LT(packed, 20000U);
    EXPECT_NE(lzw, packed);
}

TEST_F(OutputTest, GifTakesItsSettings) {
    std::vector<std::string> files;
    for (const int palette : {0, 1, 2}) {
        writer.gifPalette = palette;
        files.push_back(Write("a.gif"));
    }
    EXPECT_NE(files[0], files[1]);
    writer.gifDither = true;
    EXPECT_NE(Write("a.gif"), files[2]);
    writer.gifPalette = 99;  // beyond the radios of the page
    Write("a.gif");
}

TEST_F(OutputTest, TheSampleIsWrittenWithoutAWordInTheLogs) {
    const auto picture = test::CoordinateImage({5, 4});
    EXPECT_NE(WriteSampleImage(view, picture.View(), bench.Out("a.png")), 0);
    EXPECT_TRUE(test::SamePixels(OpenImageFile(view, bench.Out("a.png"))->image, picture));
    EXPECT_EQ(WriteSampleImage(view, picture.View(), bench.Out("gone/a.png")), 0);
    EXPECT_THAT(bench.BatchLines(), IsEmpty());
    EXPECT_EQ(bench.LogFile("Batch.log"), "<missing>");
}

TEST_F(OutputTest, AZeroByteNeverCutsAPathShort) {
    EXPECT_EQ(WriteMainImage(view, bench.Out("a.png") + std::string("\0.png", 5)), 0);
    EXPECT_THAT(test::NamesIn(bench.Out()), IsEmpty());
    EXPECT_THAT(bench.BatchLines(), Contains("Unable to open file."));
}

}  // namespace
}  // namespace lumo::io
