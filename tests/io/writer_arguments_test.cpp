// What the writer settings of the view become as arguments of the writers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "imaging/codecs/codec.h"
#include "io/output.h"
#include "support/run_bench.h"

namespace lumo::io {
namespace {

namespace codecs = imaging::codecs;
using codecs::Bytes;

struct WriterArgumentsTest : testing::Test {
    WriterArgumentsTest() { view.working.main = test::PhotoLikeImage({90, 70}); }
    imaging::ConstImageView Picture() const { return view.working.main.View(); }
    Bytes Write(const std::string& name) {
        EXPECT_NE(WriteMainImage(view, bench.Out(name)), 0) << name;
        const std::string text = test::FileText(bench.Out(name));
        return {text.begin(), text.end()};
    }
    test::RunBench bench;
    engine::CLumoscriptView& view = bench.view;
    settings::WriterSettings& writer = bench.view.settings.writer;
};

TEST_F(WriterArgumentsTest, JpgAsItShips) {
    EXPECT_EQ(Write("a.jpg"),
              *codecs::EncodeJpeg(Picture(), {.quality = 85, .smoothing = 0, .dotsPerInch = 72}));
}

TEST_F(WriterArgumentsTest, JpgTakesEverySetting) {
    writer.jpgQuality = "33";
    writer.jpgSmoothing = "12";
    writer.jpgEncoding = "1";
    writer.jpgDpi = "240";
    view.metadata.jpgOutput = {{0xFE, {'h', 'i'}}};
    EXPECT_EQ(Write("a.jpg"), *codecs::EncodeJpeg(Picture(), {.quality = 33,
                                                              .smoothing = 12,
                                                              .progressive = true,
                                                              .dotsPerInch = 240,
                                                              .markers = {{0xFE, {'h', 'i'}}}}));
}

TEST_F(WriterArgumentsTest, SettingsBecomeIntegersAtEachWrite) {
    writer.jpgQuality = " 20 percent";
    writer.jpgDpi = "150.9";
    EXPECT_EQ(Write("a.jpg"), *codecs::EncodeJpeg(Picture(), {.quality = 20, .dotsPerInch = 150}));
    writer.jpgQuality = "good";
    writer.jpgEncoding = "progressive";
    EXPECT_EQ(Write("a.jpg"), *codecs::EncodeJpeg(Picture(), {.quality = 0, .dotsPerInch = 150}));
    // Unchecked by the store: the codec takes the nearest that there is.
    writer.jpgQuality = "250";
    EXPECT_EQ(Write("a.jpg"), *codecs::EncodeJpeg(Picture(), {.quality = 100, .dotsPerInch = 150}));
}

TEST_F(WriterArgumentsTest, PngTakesEverySetting) {
    EXPECT_EQ(Write("a.png"),
              *codecs::EncodePng(Picture(), {.gamma = 1 / 2.2, .dotsPerMetre = 11811}));
    writer.pngGamma = 1.5;
    writer.pngDotsPerMetre = "5906";
    writer.pngInterlaced = true;
    writer.pngAddText = true;
    writer.pngKeys = {"Author", "", "Title", ""};
    writer.pngTexts = {"Jo", "no key", "Cat", ""};
    EXPECT_EQ(Write("a.png"),
              *codecs::EncodePng(Picture(), {.gamma = 1 / 1.5,
                                             .dotsPerMetre = 5906,
                                             .interlaced = true,
                                             .texts = {{"Author", "Jo"}, {"Title", "Cat"}}}));
    // Without a gamma there is none in the file, and nothing is divided by it.
    writer = {};
    writer.pngGamma = 0;
    EXPECT_EQ(Write("a.png"), *codecs::EncodePng(Picture(), {.gamma = 0}));
}

TEST_F(WriterArgumentsTest, TifTakesCompressionAndResolution) {
    using codecs::TiffCompression;
    EXPECT_EQ(Write("a.tif"), *codecs::EncodeTiff(Picture(), {TiffCompression::None, 300}));
    writer.tifDpi = "123";
    const std::pair<int, TiffCompression> stored[] = {{1, TiffCompression::None},
                                                      {5, TiffCompression::Lzw},
                                                      {32773, TiffCompression::PackBits},
                                                      {7, TiffCompression::None}};
    for (const auto& [number, compression] : stored) {
        writer.tifCompression = number;
        EXPECT_EQ(Write("a.tif"), *codecs::EncodeTiff(Picture(), {compression, 123})) << number;
    }
}

TEST_F(WriterArgumentsTest, GifTakesPaletteDitherAndInterlace) {
    using codecs::GifPalette;
    EXPECT_EQ(Write("a.gif"), *codecs::EncodeGif(Picture(), {GifPalette::MedianCut, false, false}));
    const GifPalette palettes[] = {GifPalette::Uniform, GifPalette::MedianCut, GifPalette::Octree};
    std::vector<Bytes> different;
    for (int palette = 0; palette < 3; ++palette)
        for (const bool dither : {false, true})
            for (const bool interlaced : {false, true}) {
                writer.gifPalette = palette;
                writer.gifDither = dither;
                writer.gifInterlaced = interlaced;
                const Bytes file = Write("a.gif");
                EXPECT_EQ(file,
                          *codecs::EncodeGif(Picture(), {palettes[palette], dither, interlaced}));
                // The standard palette is mapped without dither.
                if (palette > 0 || !dither) {
                    EXPECT_THAT(different, testing::Not(testing::Contains(file)));
                }
                different.push_back(file);
            }
}

TEST_F(WriterArgumentsTest, TheOtherFormatsHaveNone) {
    using codecs::Format;
    EXPECT_EQ(Write("a.psd"), *codecs::EncodePsd(Picture()));
    EXPECT_EQ(Write("a.bmp"), *codecs::EncodeBmp(Picture()));
    EXPECT_EQ(Write("a.tga"), *codecs::EncodeTga(Picture()));
    EXPECT_EQ(Write("a.pcx"), *codecs::EncodePcx(Picture()));
    EXPECT_EQ(Write("a.wmf"), *codecs::EncodeMetafile(Picture(), Format::Wmf));
    EXPECT_EQ(Write("a.emf"), *codecs::EncodeMetafile(Picture(), Format::Emf));
    EXPECT_EQ(Write("a.apm"), *codecs::EncodeMetafile(Picture(), Format::Apm));
}

TEST_F(WriterArgumentsTest, NothingOfTheInputGoesIntoFormatsWithoutMetadata) {
    const std::vector<std::string> names{"a.bmp", "a.tif", "a.gif", "a.psd", "a.jpg"};
    std::vector<Bytes> plain;
    for (const std::string& name : names) plain.push_back(Write(name));
    view.metadata.jpgInput = {{0xFE, {'h', 'i'}}};
    view.metadata.pngInput = view.metadata.pngOutput = {{"Author", "Jo"}};
    writer.pngCopyText = true;
    for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(Write(names[i]), plain[i]) << names[i];
}

}  // namespace
}  // namespace lumo::io
