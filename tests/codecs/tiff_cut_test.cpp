// TIF files that end early.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiff.h>
#include <zlib.h>

#include <algorithm>
#include <string>

#include "imaging/codecs/decoders.h"
#include "support/decoder_checks.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using testing::StartsWith;

using Samples = std::vector<std::uint8_t>;

Decoded MustDecode(const Bytes& file) {
    return test::MustDecode(DecodeTiff, file);
}

/// A file with its directory in front and its strips at the end, as cameras write them.
class DirectoryFirst {
  public:
    bool bigEndian = false;
    int width = 1, height = 1, bits = 8, samples = 3, rowsPerStrip = 1;
    int compression = COMPRESSION_NONE, fillOrder = 1, predictor = 1;
    std::vector<Samples> strips;

    Bytes Write() const {
        Bytes file = bigEndian ? Bytes{'M', 'M'} : Bytes{'I', 'I'};
        Put(file, 42, 2);
        Put(file, 8, 4);
        constexpr std::size_t kEntries = 12;
        const std::size_t lists = 8 + 2 + kEntries * 12 + 4;
        const std::size_t data = lists + strips.size() * 8;
        Put(file, kEntries, 2);
        Entry(file, TIFFTAG_IMAGEWIDTH, width);
        Entry(file, TIFFTAG_IMAGELENGTH, height);
        Entry(file, TIFFTAG_BITSPERSAMPLE, bits);  // one value stands for all samples
        Entry(file, TIFFTAG_COMPRESSION, compression);
        Entry(file, TIFFTAG_PHOTOMETRIC, samples == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
        Entry(file, TIFFTAG_FILLORDER, fillOrder);
        List(file, TIFFTAG_STRIPOFFSETS, lists);
        Entry(file, TIFFTAG_SAMPLESPERPIXEL, samples);
        Entry(file, TIFFTAG_ROWSPERSTRIP, rowsPerStrip);
        List(file, TIFFTAG_STRIPBYTECOUNTS, lists + strips.size() * 4);
        Entry(file, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        Entry(file, TIFFTAG_PREDICTOR, predictor);
        Put(file, 0, 4);
        std::size_t offset = data;
        for (const Samples& strip : strips) Put(file, offset, 4), offset += strip.size();
        for (const Samples& strip : strips) Put(file, strip.size(), 4);
        for (const Samples& strip : strips) file.insert(file.end(), strip.begin(), strip.end());
        return file;
    }

  private:
    void Put(Bytes& file, std::size_t value, int count) const {
        for (int i = 0; i < count; ++i) {
            const int shift = 8 * (bigEndian ? count - 1 - i : i);
            file.push_back(static_cast<std::uint8_t>(value >> shift));
        }
    }
    void Entry(Bytes& file, int tag, int value) const {
        Put(file, static_cast<std::size_t>(tag), 2);
        Put(file, 3, 2);  // a 16-bit number, in the first half of the field
        Put(file, 1, 4);
        Put(file, static_cast<std::size_t>(value), 2);
        Put(file, 0, 2);
    }
    void List(Bytes& file, int tag, std::size_t at) const {
        Put(file, static_cast<std::size_t>(tag), 2);
        Put(file, 4, 2);
        Put(file, strips.size(), 4);
        // A single number stands in the field itself.
        const bool offsets = tag == TIFFTAG_STRIPOFFSETS;
        const std::size_t single = offsets ? at + 8 : strips.front().size();
        Put(file, strips.size() == 1 ? single : at, 4);
    }
};

void CheckCut(const Bytes& file, ConstImageView whole, int rows) {
    const Decoded cut = MustDecode(file);
    EXPECT_EQ(cut.warning, "the file ends early: " + std::to_string(rows) + " of " +
                               std::to_string(whole.Height()) + " rows of pixels are there");
    Image expected = test::FlatImage(whole.Extent(), {255, 255, 255});
    std::ranges::copy(whole.Bytes().first(static_cast<std::size_t>(rows) * whole.Stride()),
                      expected.View().Bytes().begin());
    EXPECT_TRUE(test::SamePixels(cut.image, expected));
}

TEST(DecodeTiff, StripsBehindTheEndOfTheFileAreWhite) {
    const Image image = test::RandomImage({20, 9}, 3);
    DirectoryFirst tiff{.width = 20, .height = 9, .rowsPerStrip = 2};
    for (int y = 0; y < 9; y += 2) {
        const auto rows =
            image.View().Bytes().subspan(static_cast<std::size_t>(y) * 60, y == 8 ? 60U : 120U);
        tiff.strips.emplace_back(rows.begin(), rows.end());
    }
    Bytes file = tiff.Write();
    EXPECT_TRUE(test::SamePixels(MustDecode(file).image, image));
    file.resize(file.size() - 60 - 120 - 61);  // a strip and a row are left, and 59 bytes
    CheckCut(file, image.View(), 4);
    file.resize(file.size() - 59);
    CheckCut(file, image.View(), 4);
    file.resize(file.size() - 1);
    CheckCut(file, image.View(), 3);
    file.resize(file.size() - 180);
    const auto refused = DecodeTiff(file, {});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.Message(), "the file ends before the end of the first row of pixels");
}

TEST(DecodeTiff, OneStripOfWideSamplesIsCutByRowsToo) {
    for (const bool bigEndian : {false, true}) {
        DirectoryFirst tiff{.bigEndian = bigEndian,
                            .width = 3,
                            .height = 4,
                            .bits = 16,
                            .samples = 1,
                            .rowsPerStrip = 4,
                            .strips = {{}}};
        for (int i = 0; i < 12; ++i) {
            const int value = i * 20 * 257;
            tiff.strips[0].push_back(static_cast<std::uint8_t>(bigEndian ? value >> 8 : value));
            tiff.strips[0].push_back(static_cast<std::uint8_t>(bigEndian ? value : value >> 8));
        }
        Bytes file = tiff.Write();
        const Decoded whole = MustDecode(file);
        EXPECT_EQ(whole.image.View().Pixel(2, 3), (Rgb{220, 220, 220}));
        file.resize(file.size() - 1);
        CheckCut(file, whole.image.View(), 3);
    }
}

TEST(DecodeTiff, CutRowsKeepTheirOrderOfBits) {
    DirectoryFirst tiff{.width = 8,
                        .height = 2,
                        .bits = 1,
                        .samples = 1,
                        .rowsPerStrip = 2,
                        .fillOrder = 2,
                        .strips = {{0b00000001, 0}}};
    Bytes file = tiff.Write();
    const Decoded whole = MustDecode(file);
    EXPECT_EQ(whole.image.View().Pixel(0, 0), (Rgb{255, 255, 255}));
    file.pop_back();
    CheckCut(file, whole.image.View(), 1);
}

TEST(DecodeTiff, DamageInsideTheFileIsNoCut) {
    const Image image = test::PhotoLikeImage({300, 200});
    const Bytes written = *EncodeTiff(image.View(), {.compression = TiffCompression::Lzw});
    Bytes damaged = written;
    std::fill(damaged.begin() + 2000, damaged.begin() + 2100, std::uint8_t{0xFF});
    const auto result = DecodeTiff(damaged, {});
    ASSERT_FALSE(result);
    EXPECT_THAT(result.Message(), StartsWith("TIF: "));
}

// Such data are forgiven, but a run that does not fit is left out as a whole.
TEST(DecodeTiff, DeflatedDataThatAreTooLongShowNothingOfTheMemory) {
    const Samples wanted(500'000, 7);
    Samples packed(compressBound(wanted.size()));
    uLongf length = packed.size();
    ASSERT_EQ(compress(packed.data(), &length, wanted.data(), wanted.size()), Z_OK);
    packed.resize(length);
    for (const int samples : {1, 3}) {
        const DirectoryFirst file{.width = 1000,
                                  .height = 30,
                                  .samples = samples,
                                  .rowsPerStrip = 30,
                                  .compression = COMPRESSION_ADOBE_DEFLATE,
                                  .strips = {packed}};
        const Bytes bytes = file.Write();
        for (const std::uint8_t litter : {std::uint8_t{50}, std::uint8_t{60}}) {
            {  // the blocks that the decoder is going to take have been used
                const Image first = test::FlatImage({1000, 30}, {litter, litter, litter});
                const Image second = test::FlatImage({1000, 10}, {litter, litter, litter});
            }
            const Decoded decoded = MustDecode(bytes);
            EXPECT_EQ(decoded.image.View().Pixel(0, 0), (Rgb{7, 7, 7}));
            EXPECT_THAT(decoded.image.View().Bytes(), testing::Each(testing::AnyOf(0, 7)));
        }
    }
}

}  // namespace
}  // namespace lumo::imaging::codecs
