#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <jpeglib.h>  // needs <cstdio> before it

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>

#include "imaging/codecs/decoders.h"
#include "support/decoder_checks.h"
#include "support/test_files.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

// ---- The file by hand ------------------------------------------------------------------------

struct Segment {
    int code;
    Bytes payload;
};

/// The segments up to and with the first SOS.
std::vector<Segment> SegmentsOf(const Bytes& file) {
    std::vector<Segment> segments;
    for (std::size_t at = 2; at + 4 <= file.size() && file[at] == 0xFF;) {
        const std::size_t length = std::size_t{file[at + 2]} << 8 | file[at + 3];
        const auto begin = file.begin() + static_cast<std::ptrdiff_t>(at);
        segments.push_back(
            {file[at + 1], Bytes(begin + 4, begin + 2 + static_cast<std::ptrdiff_t>(length))});
        if (file[at + 1] == 0xDA) break;
        at += 2 + length;
    }
    return segments;
}

std::optional<Bytes> PayloadOf(const Bytes& file, int code) {
    for (const Segment& segment : SegmentsOf(file))
        if (segment.code == code) return segment.payload;
    return std::nullopt;
}

/// Writes a picture with settings that EncodeJpeg does not offer.
Bytes WriteWith(const std::vector<std::uint8_t>& samples, Size size, int components,
                J_COLOR_SPACE colours, const std::function<void(jpeg_compress_struct&)>& change) {
    jpeg_compress_struct codec{};
    jpeg_error_mgr errors{};
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    unsigned char* data = nullptr;
    unsigned long length = 0;
    jpeg_mem_dest(&codec, &data, &length);
    codec.image_width = static_cast<JDIMENSION>(size.width);
    codec.image_height = static_cast<JDIMENSION>(size.height);
    codec.input_components = components;
    codec.in_color_space = colours;
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, 100, TRUE);
    for (int i = 0; i < components; ++i)
        codec.comp_info[i].h_samp_factor = codec.comp_info[i].v_samp_factor = 1;
    change(codec);
    jpeg_start_compress(&codec, TRUE);
    const std::size_t stride = static_cast<std::size_t>(size.width * components);
    for (int y = 0; y < size.height; ++y) {
        auto* row = const_cast<JSAMPROW>(samples.data() + static_cast<std::size_t>(y) * stride);
        jpeg_write_scanlines(&codec, &row, 1);
    }
    jpeg_finish_compress(&codec);
    Bytes file(data, data + length);
    std::free(data);
    jpeg_destroy_compress(&codec);
    return file;
}

Bytes WriteRgb(ConstImageView image, const std::function<void(jpeg_compress_struct&)>& change) {
    const auto bytes = image.Bytes();
    return WriteWith({bytes.begin(), bytes.end()}, image.Extent(), 3, JCS_RGB, change);
}

Decoded MustDecode(const Bytes& file) {
    return test::MustDecode(DecodeJpeg, file);
}

double MeanDifference(ConstImageView a, ConstImageView b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.Bytes().size(); ++i) sum += std::abs(a.Bytes()[i] - b.Bytes()[i]);
    return sum / static_cast<double>(a.Bytes().size());
}

// ---- Reading ---------------------------------------------------------------------------------

TEST(DecodeJpeg, ReadsEveryCodingProcess) {
    const Image image = test::PhotoLikeImage({67, 43});
    const Bytes baseline = WriteRgb(image.View(), [](auto&) {});
    const Bytes progressive =
        WriteRgb(image.View(), [](auto& codec) { jpeg_simple_progression(&codec); });
    const Bytes arithmetic = WriteRgb(image.View(), [](auto& codec) { codec.arith_code = TRUE; });
    ASSERT_TRUE(PayloadOf(baseline, 0xC0));
    ASSERT_TRUE(PayloadOf(progressive, 0xC2));
    ASSERT_TRUE(PayloadOf(arithmetic, 0xC9));
    const Decoded decoded = MustDecode(baseline);
    EXPECT_TRUE(test::NearPixels(decoded.image.View(), image.View(), 4));
    EXPECT_EQ(decoded.bitsPerPixel, 24);
    EXPECT_EQ(decoded.warning, "");
    EXPECT_TRUE(test::SamePixels(MustDecode(progressive).image, decoded.image));
    EXPECT_TRUE(test::SamePixels(MustDecode(arithmetic).image, decoded.image));
}

TEST(DecodeJpeg, GreyHasThreeEqualChannels) {
    const Decoded decoded = MustDecode(
        WriteWith(std::vector<std::uint8_t>(99, 77), {11, 9}, 1, JCS_GRAYSCALE, [](auto&) {}));
    EXPECT_TRUE(test::SamePixels(decoded.image, test::FlatImage({11, 9}, {77, 77, 77})));
    EXPECT_EQ(decoded.bitsPerPixel, 8);
}

std::vector<std::uint8_t> FlatCmyk(Size size, std::array<std::uint8_t, 4> value) {
    std::vector<std::uint8_t> samples;
    for (std::size_t i = 0; i < size.Area(); ++i)
        samples.insert(samples.end(), value.begin(), value.end());
    return samples;
}

TEST(DecodeJpeg, AdobeInkIsStoredInverted) {
    const auto samples = FlatCmyk({8, 8}, {200, 100, 255, 128});  // 255 minus ink
    const auto adobe = [](J_COLOR_SPACE stored) {
        return [stored](jpeg_compress_struct& codec) {
            jpeg_set_colorspace(&codec, stored);
            codec.write_Adobe_marker = TRUE;
        };
    };
    // 200 * 128 / 255, 100 * 128 / 255, 255 * 128 / 255
    const Image expected = test::FlatImage({8, 8}, {100, 50, 128});
    const Decoded cmyk = MustDecode(WriteWith(samples, {8, 8}, 4, JCS_CMYK, adobe(JCS_CMYK)));
    EXPECT_TRUE(test::NearPixels(cmyk.image.View(), expected.View(), 1));
    EXPECT_EQ(cmyk.bitsPerPixel, 32);
    const Decoded ycck = MustDecode(WriteWith(samples, {8, 8}, 4, JCS_CMYK, adobe(JCS_YCCK)));
    EXPECT_TRUE(test::NearPixels(ycck.image.View(), expected.View(), 2));
}

TEST(DecodeJpeg, InkWithoutAdobeMarkerIsAsItStands) {
    const Decoded decoded =
        MustDecode(WriteWith(FlatCmyk({8, 8}, {55, 155, 0, 127}), {8, 8}, 4, JCS_CMYK,
                             [](auto& codec) { codec.write_Adobe_marker = FALSE; }));
    EXPECT_TRUE(
        test::NearPixels(decoded.image.View(), test::FlatImage({8, 8}, {100, 50, 128}).View(), 1));
}

TEST(DecodeJpeg, RefusesTwoComponents) {
    const auto result = DecodeJpeg(
        WriteWith(std::vector<std::uint8_t>(128, 9), {8, 8}, 2, JCS_UNKNOWN, [](auto&) {}), {});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.Message(), "JPG: 2 colour components are not supported");
}

TEST(DecodeJpeg, IsNotTurnedByItsOrientationTag) {
    EXPECT_EQ(MustDecode(test::ReadTestFile("jpg/exifr_f7t.jpg")).image.Extent(), (Size{80, 48}));
}

// Probes were compared with another decoder's picture.
TEST(DecodeJpeg, GivesKnownPicturesOfEveryKind) {
    const struct {
        const char* name;
        Size size;
        int x, y;
        Rgb colour;
    } known[] = {
        {"12m_app-marker-missing-null-term.jpg", {200, 150}, 100, 70, {27, 12, 15}},
        {"exifr_f2t.jpg", {48, 80}, 20, 40, {0, 0, 0}},
        {"serenity_grayscale_mcu.jpg", {320, 240}, 160, 120, {106, 106, 106}},
        {"image-rs_test.jpg", {32, 23}, 16, 11, {110, 20, 0}},
        {"serenity_ycck-2111.jpg", {592, 800}, 300, 400, {46, 30, 17}},
        {"gdkpix_icc-profile.jpeg", {48, 48}, 20, 20, {232, 255, 196}},
        {"wuffs_peacock.s-weird.jpeg", {100, 75}, 50, 40, {209, 217, 196}},
        {"wuffs_peacock.s-very-weird.jpeg", {100, 75}, 50, 40, {200, 198, 175}},
        {"wuffs_peacock.s1x3.jpeg", {100, 75}, 30, 60, {180, 137, 102}},
        {"mei_Issue_614.jpg", {100, 100}, 40, 40, {27, 175, 77}},
        {"ljt_testimgint.jpg", {227, 149}, 110, 70, {186, 36, 38}},
        {"mnet_8Bim.jpg", {1, 1}, 0, 0, {236, 238, 237}},
        {"ag-psd_kitty.jpg", {100, 111}, 50, 50, {250, 110, 31}},
    };
    for (const auto& [name, size, x, y, colour] : known) {
        const Decoded decoded = MustDecode(test::ReadTestFile(std::string("jpg/") + name));
        ASSERT_EQ(decoded.image.Extent(), size) << name;
        const Rgb pixel = decoded.image.View().Pixel(x, y);
        EXPECT_NEAR(pixel.red, colour.red, 2) << name;
        EXPECT_NEAR(pixel.green, colour.green, 2) << name;
        EXPECT_NEAR(pixel.blue, colour.blue, 2) << name;
        EXPECT_EQ(decoded.warning, "") << name;
    }
}

TEST(DecodeJpeg, TruncatedFileGivesItsUpperPartAndAWarning) {
    const Image image = test::PhotoLikeImage({200, 200});
    for (const bool progressive : {false, true}) {
        Bytes file = *EncodeJpeg(image.View(), {.progressive = progressive});
        const Decoded whole = MustDecode(file);
        file.resize(file.size() * 2 / 3);
        const Decoded cut = MustDecode(file);
        EXPECT_EQ(cut.warning, "JPG: Premature end of JPEG file");
        EXPECT_EQ(cut.image.Extent(), image.Extent());
        if (progressive) continue;  // there all rows are there, but coarse
        EXPECT_TRUE(std::ranges::equal(cut.image.View().Bytes().first(200 * 64 * 3),
                                       whole.image.View().Bytes().first(200 * 64 * 3)));
    }
}

TEST(DecodeJpeg, DataBehindThePictureIsNoDamage) {
    Bytes file = *EncodeJpeg(test::PhotoLikeImage({20, 20}).View(), {});
    const Bytes tail(1000, 0xFF);
    file.insert(file.end(), tail.begin(), tail.end());
    EXPECT_EQ(MustDecode(file).warning, "");
}

TEST(DecodeJpeg, CountsScans) {
    // Each component by itself: three scans without progression.
    const Bytes file = WriteRgb(test::PhotoLikeImage({64, 64}).View(), [](auto& codec) {
        static constexpr jpeg_scan_info scans[] = {
            {1, {0}, 0, 63, 0, 0}, {1, {1}, 0, 63, 0, 0}, {1, {2}, 0, 63, 0, 0}};
        codec.scan_info = scans;
        codec.num_scans = 3;
    });
    EXPECT_TRUE(DecodeJpeg(file, {.limits = {.maxScans = 3}}));
    const auto refused = DecodeJpeg(file, {.limits = {.maxScans = 2}});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.Message(), "JPG: more than 2 scans");
}

TEST(DecodeJpeg, RefusesThousandsOfEmptyScans) {
    Bytes file = *EncodeJpeg(test::PhotoLikeImage({400, 400}).View(), {.progressive = true});
    const auto segments = SegmentsOf(file);
    Bytes scan{0xFF, 0xDA, 0, 0};
    scan.insert(scan.end(), segments.back().payload.begin(), segments.back().payload.end());
    scan[3] = static_cast<std::uint8_t>(scan.size() - 2);
    file.resize(file.size() - 2);  // EOI
    for (int i = 0; i < 5000; ++i) file.insert(file.end(), scan.begin(), scan.end());
    const auto refused = DecodeJpeg(file, {});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.Message(), "JPG: more than 100 scans");
}

TEST(DecodeJpeg, RefusesSizesBeforeItReadsPixels) {
    const Image image = test::FlatImage({100, 50}, {1, 2, 3});
    const Bytes baseline = *EncodeJpeg(image.View(), {});
    EXPECT_TRUE(DecodeJpeg(baseline, {.limits = {.maxSide = 100, .maxPixels = 5000}}));
    EXPECT_FALSE(DecodeJpeg(baseline, {.limits = {.maxSide = 99}}));
    EXPECT_FALSE(DecodeJpeg(baseline, {.limits = {.maxPixels = 4999}}));
    // A progressive picture is held as coefficients besides.
    const DecodeOptions tight{.limits = {.maxMemory = 500'000}};
    const Image larger = test::FlatImage({400, 200}, {1, 2, 3});
    EXPECT_TRUE(DecodeJpeg(*EncodeJpeg(larger.View(), {}), tight));
    EXPECT_FALSE(DecodeJpeg(*EncodeJpeg(larger.View(), {.progressive = true}), tight));
    const auto bomb =
        DecodeJpeg(test::ReadTestFile("jpg/invalid/oiio-t_bomb-progressive-65500x65500.jpg"), {});
    ASSERT_FALSE(bomb);
    EXPECT_EQ(bomb.Message(), "a picture of 65500 x 65500 is larger than allowed");
}

TEST(DecodeJpeg, SpentMemoryIsAnError) {
    const Bytes file = *EncodeJpeg(test::FlatImage({200, 200}, {1, 2, 3}).View(), {});
    const test::ScopedMemoryBudget budget(1000);
    const auto result = DecodeJpeg(file, {});
    ASSERT_FALSE(result);
    EXPECT_THAT(result.Message(), HasSubstr("not enough memory"));
}

TEST(DecodeJpeg, EndsWellOnEveryFile) {
    test::CheckFilesEndWell(DecodeJpeg, "jpg");
    test::CheckFilesEndWell(DecodeJpeg, "jpg/invalid");
}

TEST(DecodeJpeg, EndsWellOnDamagedFiles) {
    test::CheckMutationsEndWell(DecodeJpeg, "jpg", 1000);
    test::CheckMutationsEndWell(DecodeJpeg, "jpg/invalid", 200);
}

// ---- Writing ---------------------------------------------------------------------------------

TEST(EncodeJpeg, RoundTripsNearlyAtFullQuality) {
    for (const Size size : {Size{1, 1}, {1, 17}, {16, 16}, {33, 7}, {250, 121}})
        EXPECT_EQ(MustDecode(*EncodeJpeg(test::RandomImage(size, 1).View(), {})).image.Extent(),
                  size);
    const Image image = test::PhotoLikeImage({250, 121});
    const auto difference = [&](int quality) {
        const Bytes file = *EncodeJpeg(image.View(), {.quality = quality});
        return MeanDifference(MustDecode(file).image.View(), image.View());
    };
    EXPECT_LT(difference(100), 3);
    EXPECT_LT(difference(100), difference(60));
}

TEST(EncodeJpeg, ProgressiveIsAnotherFrameTypeWithTheSamePixels) {
    const Image image = test::PhotoLikeImage({90, 60});
    const Bytes standard = *EncodeJpeg(image.View(), {});
    const Bytes progressive = *EncodeJpeg(image.View(), {.progressive = true});
    EXPECT_TRUE(PayloadOf(standard, 0xC0));
    EXPECT_FALSE(PayloadOf(standard, 0xC2));
    EXPECT_TRUE(PayloadOf(progressive, 0xC2));
    EXPECT_FALSE(PayloadOf(progressive, 0xC0));
    EXPECT_TRUE(test::SamePixels(MustDecode(standard).image, MustDecode(progressive).image));
}

TEST(EncodeJpeg, StoresResolutionInWholeDotsPerInch) {
    const Image image = test::FlatImage({8, 8}, {1, 2, 3});
    const auto density = [&](double dots) {
        const Bytes jfif =
            PayloadOf(*EncodeJpeg(image.View(), {.dotsPerInch = dots}), 0xE0).value();
        EXPECT_EQ(std::string(jfif.begin(), jfif.begin() + 5), std::string("JFIF\0", 5));
        EXPECT_EQ(jfif[7], 1);  // dots per inch
        EXPECT_EQ(jfif[8], jfif[10]);
        EXPECT_EQ(jfif[9], jfif[11]);
        return jfif[8] * 256 + jfif[9];
    };
    EXPECT_EQ(density(72), 72);
    EXPECT_EQ(density(299.6), 300);
    EXPECT_EQ(density(65535), 65535);
    EXPECT_EQ(density(1e9), 65535);
    EXPECT_EQ(density(0), 1);
    EXPECT_EQ(density(-5), 1);
    EXPECT_EQ(density(NAN), 1);
}

TEST(EncodeJpeg, QualityIsClampedAndShrinksTheFile) {
    const Image image = test::PhotoLikeImage({200, 150});
    const auto size = [&](int quality) {
        return EncodeJpeg(image.View(), {.quality = quality})->size();
    };
    EXPECT_LT(size(10), size(50));
    EXPECT_LT(size(50), size(95));
    EXPECT_EQ(*EncodeJpeg(image.View(), {.quality = -7}),
              *EncodeJpeg(image.View(), {.quality = 0}));
    EXPECT_EQ(*EncodeJpeg(image.View(), {.quality = 700}),
              *EncodeJpeg(image.View(), {.quality = 100}));
}

TEST(EncodeJpeg, SmoothingTakesGrainAway) {
    const Image image = test::RandomImage({100, 100}, 3);
    const auto size = [&](int smoothing) {
        return EncodeJpeg(image.View(), {.smoothing = smoothing})->size();
    };
    EXPECT_LT(size(50), size(0));
    EXPECT_LT(size(100), size(50));
    EXPECT_EQ(size(-1), size(0));
    EXPECT_EQ(size(101), size(100));
}

TEST(EncodeJpeg, MarkersFollowTheHeaderInTheirOrder) {
    const Image image = test::FlatImage({8, 8}, {1, 2, 3});
    const Bytes longest(65533, 7);
    const Bytes file = *EncodeJpeg(
        image.View(),
        {.markers = {{0xFE, {'h', 'i'}}, {0xE1, longest}, {0xFE, {}}, {0xED, {0, 0xFF}}}});
    const auto segments = SegmentsOf(file);
    ASSERT_GE(segments.size(), 5U);
    std::vector<int> codes;
    for (int i = 0; i < 5; ++i) codes.push_back(segments[static_cast<std::size_t>(i)].code);
    EXPECT_THAT(codes, ElementsAre(0xE0, 0xFE, 0xE1, 0xFE, 0xED));
    EXPECT_THAT(segments[1].payload, ElementsAre('h', 'i'));
    EXPECT_EQ(segments[2].payload, longest);
    EXPECT_TRUE(segments[3].payload.empty());
    EXPECT_THAT(segments[4].payload, ElementsAre(0, 0xFF));
    EXPECT_EQ(MustDecode(file).warning, "");
}

TEST(EncodeJpeg, RefusesMarkersThatNoFileCanHold) {
    const Image image = test::FlatImage({8, 8}, {1, 2, 3});
    const auto tooLong = EncodeJpeg(image.View(), {.markers = {{0xE1, Bytes(65534)}}});
    ASSERT_FALSE(tooLong);
    EXPECT_EQ(tooLong.Message(), "JPG: a marker of 65534 bytes is too long");
    const auto notOurs = EncodeJpeg(image.View(), {.markers = {{0xDA, {}}}});
    ASSERT_FALSE(notOurs);
    EXPECT_EQ(notOurs.Message(), "JPG: marker 0xda is none for application data");
}

TEST(EncodeJpeg, RefusesSidesThatNoFileCanHold) {
    EXPECT_TRUE(EncodeJpeg(test::FlatImage({65500, 1}, {1, 2, 3}).View(), {}));
    const auto refused = EncodeJpeg(test::FlatImage({1, 65501}, {1, 2, 3}).View(), {});
    ASSERT_FALSE(refused);
    EXPECT_THAT(refused.Message(), StartsWith("JPG: Maximum supported image dimension"));
}

}  // namespace
}  // namespace lumo::imaging::codecs
