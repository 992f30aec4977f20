// Real files: their size, what they look like from afar, and what happens when they are damaged.

#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

#include "imaging/codecs/decoders.h"
#include "support/decoder_checks.h"
#include "support/test_files.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

// The mean lightness of eight by eight fields, each as a digit from 0 black to f white, row by row.
// Fonts differ between machines, so a field may be off by two.
std::string FromAfar(ConstImageView image) {
    std::string text;
    for (int row = 0; row < 8; ++row)
        for (int column = 0; column < 8; ++column) {
            double sum = 0;
            int count = 0;
            for (int y = row * image.Height() / 8; y < (row + 1) * image.Height() / 8; ++y)
                for (int x = column * image.Width() / 8; x < (column + 1) * image.Width() / 8;
                     ++x) {
                    const Rgb c = image.Pixel(x, y);
                    sum += (c.red + c.green + c.blue) / 3.0;
                    ++count;
                }
            text += "0123456789abcdef"[static_cast<int>(sum / std::max(count, 1)) / 16];
        }
    return text;
}

testing::AssertionResult LooksLike(ConstImageView image, const std::string& expected) {
    const std::string actual = FromAfar(image);
    const auto value = [](char c) { return c <= '9' ? c - '0' : c - 'a' + 10; };
    for (std::size_t i = 0; i < 64; ++i)
        if (i >= expected.size() || std::abs(value(actual[i]) - value(expected[i])) > 2)
            return testing::AssertionFailure() << "looks like " << actual << ", field " << i;
    return testing::AssertionSuccess();
}

struct Sample {
    const char* name;
    Size size;
    const char* fromAfar;
};

class Samples : public testing::TestWithParam<Sample> {};

TEST_P(Samples, HaveTheirSizeAndLook) {
    const Sample& sample = GetParam();
    const auto decoded = Decode(test::ReadTestFile(sample.name), Format::Unknown);
    ASSERT_TRUE(decoded) << decoded.Message();
    EXPECT_EQ(decoded->image.Extent(), sample.size);
    EXPECT_TRUE(LooksLike(decoded->image.View(), sample.fromAfar));
}

INSTANTIATE_TEST_SUITE_P(
    Metafiles, Samples,
    testing::Values(Sample{"wmf/gdiplus_test.wmf",
                           {770, 649},
                           "fffccfffeadcccbdaea77aea94655649c596695cf677776ff888878ffd6446df"},
                    Sample{"wmf/libwmf_2doorvan.wmf",
                           {318, 116},
                           "ffd9666bffecb669fa8996678555555645365535342556449369b26ce94ffe9e"},
                    Sample{"wmf/libwmf_formula1.wmf",
                           {222, 41},
                           "fffffffffffeffeeffdeffddeedeedcecdccdbddcfdcfbeeefefffeeffffffff"},
                    Sample{"wmf/libwmf_formula4.wmf",
                           {245, 70},
                           "ffffffffeeeeefdeddedcebdefffffffefffffffdeecddcddeeddeddefffffff"},
                    Sample{"wmf/libwmf_p0000016.wmf",
                           {400, 30},
                           "ffffffffffffffffeeeedeeeddccceddddccdeddeddcddddfffefefeffffffff"},
                    Sample{"wmf/libwmf_sample.wmf",
                           {302, 271},
                           "fffeaffffffc9affffa7beefebb6efdffecbafffdfeadbffffcffddfddffffdd"},
                    Sample{"wmf/libwmf_text.wmf",
                           {294, 400},
                           "ffffffeeffffffbffeeffbffedefbdffedefceffedefffffedefffffeedeffff"},
                    Sample{"wmf/pillow_drawing.wmf",
                           {110, 110},
                           "ffffffffffffcacfffd65556ff655555fb555555fa555555fc555555ff655555"},
                    Sample{"wmf/poi_60677.wmf",
                           {1693, 1143},
                           "99999999ffefffffffffffffffffffffffffffffffffffffddeeefffeeedeeee"},
                    Sample{"wmf/poi_64716_image1.wmf",
                           {61, 41},
                           "ffffffffffffcfffffffcffecedffecedddedbafffffddffffffdfffffffdfff"},
                    Sample{"wmf/poi_testException2.doc-2.wmf",
                           {400, 164},
                           "feeefcbffffffcdfebefebdfc66cdadffeefe9dffedfc6cffecdfdcfeaeefccf"},
                    Sample{"wmf/rtfjs_bm0.wmf",
                           {188, 282},
                           "eeedeedeea9999aefeddeefeffddeefffedeeeffffefffffffffffffefeefffe"},
                    Sample{"wmf/rtfjs_car-1-source.wmf",
                           {744, 657},
                           "cfffffffefffffffffedddffffebcbdffc888879fc677668fa3575bcffd997ff"},
                    Sample{"wmf/wmf2svg_fulltest.wmf",
                           {1056, 816},
                           "eeefffefeeeeeeceefdfddcdefefdeeffffefecdffffffffffffffffffffffff"},
                    Sample{"wmf/wmf2svg_symbol-font-tables.wmf",
                           {567, 503},
                           "eeffeeffeeeeeddeeedeeddeeeeeeddeedeeddeeeeeeeeeeeeeeeeeeeddeedde"},
                    Sample{"emf/pillow_drawing.emf",
                           {110, 110},
                           "fe8558efe555556f8555555955555557555555578555555ae655557ffe977aff"},
                    Sample{"emf/poi_63327.emf",
                           {42, 51},
                           "fffffffffffffffffffffffffffffffffffffffffffffffffb99e99fffffffff"},
                    Sample{"emf/poi_jack-sign.emf",
                           {272, 106},
                           "fffdfeffdcfffeffdadceeffeeedebbdddbfdcddcda9bdeffecccdcfffffffff"},
                    Sample{"emf/poi_vector_image.emf",
                           {706, 578},
                           "ffffffffedc66bdefedffcffd9efff7fd9efff7fffdffcffecc56bceffffffef"},
                    Sample{"emf/poi_wrench.emf",
                           {224, 136},
                           "ffffff99ffffe758fffd659fecb56cff6458efff443effff955fffffcaefffff"},
                    Sample{"emf/rtfjs_image-2-source.emf",
                           {136, 20},
                           "ffffffffffffefffccdcdfdedcdcccddcdddcbddcdedccdefefeffffffffffff"},
                    Sample{"emf/wmf2svg_fulltest.emf",
                           {1056, 792},
                           "eeffffffeeeeeeeeefcddecdefcdeeffceceeeffefeefeefffffffffffffffff"}),
    [](const auto& instance) {
        std::string name = instance.param.name;
        for (char& c : name)
            if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
        return name;
    });

TEST(Samples, EndWellHoweverTheyAreDamaged) {
    test::CheckFilesEndWell(DecodeWmf, "wmf");
    test::CheckMutationsEndWell(DecodeWmf, "wmf", 1000);
    test::CheckFilesEndWell(DecodeEmf, "emf");
    test::CheckMutationsEndWell(DecodeEmf, "emf", 1000);
}

TEST(Samples, ComeOutTheSameInSeveralThreads) {
    const Bytes file = test::ReadTestFile("wmf/libwmf_formula4.wmf");
    const auto expected = DecodeWmf(file, {});
    ASSERT_TRUE(expected);
    std::vector<std::uint64_t> hashes(4);
    {
        std::vector<std::jthread> threads;
        for (std::uint64_t& hash : hashes)
            threads.emplace_back(
                [&] { hash = test::PixelHash(DecodeWmf(file, {})->image.View()); });
    }
    for (const std::uint64_t hash : hashes)
        EXPECT_EQ(hash, test::PixelHash(expected->image.View()));
}

}  // namespace
}  // namespace lumo::imaging::codecs
