#include "imaging/codecs/rows.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "imaging/codecs/byte_reader.h"
#include "imaging/codecs/decoders.h"
#include "imaging/codecs/packbits.h"
#include "support/codec_files.h"

namespace lumo::imaging::codecs {
namespace {

using test::BytesOf, test::Joined;

constexpr int kWidths[] = {1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 33, 63, 64, 65, 127, 200, 1001};

Bytes Noise(int count, std::uint32_t seed) {
    std::mt19937 random(seed);
    Bytes bytes(static_cast<std::size_t>(count));
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random() >> 24);
    return bytes;
}

/// Runs a kernel with guard bytes behind its target, and compares with a plain loop over pixels.
template <class Kernel, class PixelOf>
void CheckRow(int width, const Kernel& kernel, const PixelOf& pixelOf) {
    Bytes rgb(static_cast<std::size_t>(width) * 3 + 16, 0xEE);
    kernel(rgb.data());
    for (int x = 0; x < width; ++x) {
        const Rgb expected = pixelOf(x);
        const auto* p = rgb.data() + x * 3;
        ASSERT_EQ((Rgb{p[0], p[1], p[2]}), expected) << "pixel " << x << " of " << width;
    }
    for (std::size_t i = static_cast<std::size_t>(width) * 3; i < rgb.size(); ++i)
        ASSERT_EQ(rgb[i], 0xEE) << "written behind a row of " << width;
}

TEST(Rows, ColourOrdersAgreeWithPlainLoops) {
    for (const int width : kWidths) {
        const Bytes s = Noise(width * 4, 1);
        const auto at = [&](int i) { return s[static_cast<std::size_t>(i)]; };
        CheckRow(
            width, [&](auto* rgb) { RgbFromBgr(s.data(), width, rgb); },
            [&](int x) { return Rgb{at(3 * x + 2), at(3 * x + 1), at(3 * x)}; });
        CheckRow(
            width, [&](auto* rgb) { RgbFromBgrx(s.data(), width, rgb); },
            [&](int x) { return Rgb{at(4 * x + 2), at(4 * x + 1), at(4 * x)}; });
        CheckRow(
            width, [&](auto* rgb) { RgbFromGreyAlpha(s.data(), width, rgb); },
            [&](int x) {
                const std::uint8_t grey = OverWhite(at(2 * x), at(2 * x + 1));
                return Rgb{grey, grey, grey};
            });
        CheckRow(
            width, [&](auto* rgb) { RgbFromGrey(s.data(), width, rgb); },
            [&](int x) { return Rgb{at(x), at(x), at(x)}; });
        CheckRow(
            width, [&](auto* rgb) { RgbFromBgra(s.data(), width, rgb); },
            [&](int x) {
                const std::uint8_t a = at(4 * x + 3);
                return Rgb{OverWhite(at(4 * x + 2), a), OverWhite(at(4 * x + 1), a),
                           OverWhite(at(4 * x), a)};
            });
        CheckRow(
            width,
            [&](auto* rgb) {
                RgbFromPlanes(s.data(), s.data() + width, s.data() + 2 * width, width, rgb);
            },
            [&](int x) { return Rgb{at(x), at(width + x), at(2 * width + x)}; });
    }
}

TEST(Rows, WordsOfFiveAndSixBitsAreRounded) {
    Bytes words;
    for (int v = 0; v < 65536; ++v) {
        words.push_back(static_cast<std::uint8_t>(v));
        words.push_back(static_cast<std::uint8_t>(v >> 8));
    }
    const auto scaled = [](int v, int max) {
        return static_cast<std::uint8_t>(std::lround(v * 255.0 / max));
    };
    CheckRow(
        65536, [&](auto* rgb) { RgbFrom555(words.data(), 65536, rgb); },
        [&](int v) {
            return Rgb{scaled(v >> 10 & 31, 31), scaled(v >> 5 & 31, 31), scaled(v & 31, 31)};
        });
    CheckRow(
        65536, [&](auto* rgb) { RgbFrom565(words.data(), 65536, rgb); },
        [&](int v) {
            return Rgb{scaled(v >> 11, 31), scaled(v >> 5 & 63, 63), scaled(v & 31, 31)};
        });
}

TEST(Rows, PlanesAndBack) {
    for (const int width : kWidths) {
        const Bytes rgb = Noise(width * 3, 2);
        const auto count = static_cast<std::size_t>(width);
        Bytes red(count), green(count), blue(count), back(count * 3);
        PlanesFromRgb(rgb.data(), width, red.data(), green.data(), blue.data());
        RgbFromPlanes(red.data(), green.data(), blue.data(), width, back.data());
        EXPECT_EQ(back, rgb);
        EXPECT_EQ(green[count - 1], rgb[count * 3 - 2]);
    }
}

TEST(Rows, PaletteWritesThreeBytesForEachIndex) {
    Palette palette;
    for (int i = 0; i < 256; ++i)
        palette.Set(i, {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(i * 7), 3});
    for (const int width : kWidths) {
        const Bytes indices = Noise(width, 3);
        CheckRow(
            width, [&](auto* rgb) { palette.Expand(indices.data(), width, rgb); },
            [&](int x) { return palette.At(indices[static_cast<std::size_t>(x)]); });
    }
}

TEST(Rows, IndicesComeFromTheTopmostBitsOn) {
    for (const int bits : {1, 2, 4, 8})
        for (const int width : kWidths) {
            const Bytes packed = Noise(static_cast<int>(PackedRowBytes(width, bits)), 4);
            Bytes indices(static_cast<std::size_t>(width) + 1, 0xEE);
            UnpackIndices(packed.data(), bits, width, indices.data());
            for (int x = 0; x < width; ++x) {
                int expected = 0;
                for (int bit = x * bits; bit < (x + 1) * bits; ++bit)
                    expected = expected << 1 |
                               (packed[static_cast<std::size_t>(bit / 8)] >> (7 - bit % 8) & 1);
                ASSERT_EQ(indices[static_cast<std::size_t>(x)], expected) << x << " of " << width;
            }
            ASSERT_EQ(indices.back(), 0xEE);
        }
}

TEST(Rows, All16BitSamplesAreRoundedAsOne) {
    Bytes samples, bytes(65536);
    for (int v = 0; v < 65536; ++v) {
        samples.push_back(static_cast<std::uint8_t>(v >> 8));
        samples.push_back(static_cast<std::uint8_t>(v));
    }
    Samples8From16(samples.data(), 65536, bytes.data());
    for (std::size_t v = 0; v < bytes.size(); ++v)
        ASSERT_EQ(bytes[v], Round16To8(static_cast<std::uint16_t>(v))) << v;
}

TEST(Rows, WholeRowsNeedNoPaddingBehindTheLast) {
    EXPECT_EQ(WholeRows(0, 5, 8, 10), 0);
    EXPECT_EQ(WholeRows(4, 5, 8, 10), 0);
    EXPECT_EQ(WholeRows(5, 5, 8, 10), 1);
    EXPECT_EQ(WholeRows(12, 5, 8, 10), 1);
    EXPECT_EQ(WholeRows(13, 5, 8, 10), 2);
    EXPECT_EQ(WholeRows(1000, 5, 8, 10), 10);
}

TEST(PackBits, UnpacksWhatItPacked) {
    std::mt19937 random(5);
    for (const int width : kWidths)
        for (const unsigned shift : {24U, 30U, 31U}) {  // 256, 4 and 2 different bytes
            Bytes row(static_cast<std::size_t>(width));
            for (auto& byte : row) byte = static_cast<std::uint8_t>(random() >> shift);
            Bytes codes;
            PackBits(row, codes);
            EXPECT_LE(codes.size(), row.size() + (row.size() + 127) / 128);
            Bytes back(row.size(), 0xEE);
            EXPECT_TRUE(UnpackBits(codes, back.data(), back.size()));
            EXPECT_EQ(back, row) << width;
        }
}

TEST(PackBits, RunsFromThreeOnAndNoLongerThan128) {
    const auto packed = [](const Bytes& row) {
        Bytes codes;
        PackBits(row, codes);
        return codes;
    };
    EXPECT_EQ(packed(BytesOf({5, 5})), BytesOf({1, 5, 5}));
    EXPECT_EQ(packed(BytesOf({5, 5, 5})), BytesOf({0xFE, 5}));
    EXPECT_EQ(packed(BytesOf({1, 2, 5, 5, 5, 5, 7})), BytesOf({1, 1, 2, 0xFD, 5, 0, 7}));
    EXPECT_EQ(packed(Bytes(130, 9)), BytesOf({0x81, 9, 1, 9, 9}));
    EXPECT_EQ(packed({}), Bytes{});
    // A run is found wherever it stands among literals.
    for (int before = 0; before < 40; ++before) {
        Bytes literals(static_cast<std::size_t>(before));
        std::iota(literals.begin(), literals.end(), std::uint8_t{0});
        const Bytes row = Joined({literals, Bytes(3, 200)});
        const Bytes head = before > 0 ? BytesOf({before - 1}) : Bytes{};
        const Bytes expected = Joined({head, literals, BytesOf({0xFE, 200})});
        EXPECT_EQ(packed(row), expected) << before;
    }
}

TEST(PackBits, CodesThatEndEarlyLeaveZeros) {
    for (const Bytes& codes :
         {BytesOf({}), BytesOf({3}), BytesOf({0x80}), BytesOf({1, 9}), BytesOf({0xFF})}) {
        Bytes bytes(4, 0xEE);
        EXPECT_FALSE(UnpackBits(codes, bytes.data(), bytes.size()));
        EXPECT_EQ(bytes.back(), 0);
    }
    Bytes bytes(2);
    EXPECT_TRUE(UnpackBits(BytesOf({0x81, 7}), bytes.data(), 2));  // and long runs are cut
    EXPECT_EQ(bytes, BytesOf({7, 7}));
}

TEST(ByteReader, ReadsBothOrdersAndNothingBehindTheEnd) {
    const Bytes bytes = BytesOf({1, 2, 3, 4, 5, 6, 7, 8, 9});
    ByteReader in(bytes);
    EXPECT_EQ(in.U16Le(), 0x0201);
    EXPECT_EQ(in.U16Be(), 0x0304);
    EXPECT_EQ(in.U8(), 5);
    EXPECT_EQ(in.U32Le(), 0x09080706U);
    EXPECT_FALSE(in.Failed());
    EXPECT_EQ(in.U8(), 0);
    EXPECT_TRUE(in.Failed());
    ByteReader half(bytes, 7);
    EXPECT_EQ(half.U32Be(), 0U);
    EXPECT_EQ(half.Left(), 0U);
    ByteReader large(bytes);
    EXPECT_EQ(large.Take(UINT64_MAX).size(), 9U);
    EXPECT_TRUE(large.Failed());
    EXPECT_EQ(ByteReader(bytes, 100).Left(), 0U);
    EXPECT_EQ(ByteReader(bytes, 1).U64Be(), 0x0203040506070809U);
}

}  // namespace
}  // namespace lumo::imaging::codecs
