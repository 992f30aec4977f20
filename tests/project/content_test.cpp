// The shipped pictures and filters: what the program's settings name exists, every file is sound,
// and the photographs are credited. The Scripts are looked at in content_scripts_test.cpp.

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <optional>

#include "support/content_files.h"

namespace lumo::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr, testing::StartsWith;

unsigned Byte(const std::string& bytes, std::size_t at) {
    return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0u;
}
unsigned Little16(const std::string& bytes, std::size_t at) {
    return Byte(bytes, at) | Byte(bytes, at + 1) << 8;
}
unsigned Little32(const std::string& bytes, std::size_t at) {
    return Little16(bytes, at) | Little16(bytes, at + 2) << 16;
}
unsigned Big16(const std::string& bytes, std::size_t at) {
    return Byte(bytes, at) << 8 | Byte(bytes, at + 1);
}

struct Colour {
    int r = 0, g = 0, b = 0;
    bool operator==(const Colour&) const = default;
};
constexpr Colour kWhite{255, 255, 255}, kBlue{0, 0, 255}, kCyan{0, 255, 255};

int Distance2(Colour a, Colour b) {
    return (a.r - b.r) * (a.r - b.r) + (a.g - b.g) * (a.g - b.g) + (a.b - b.b) * (a.b - b.b);
}

// The largest squared distance at which the overlay commands still take a pixel for the key.
constexpr int KeyReach(int tolerancePercent) {
    const int radius = tolerancePercent * 255 / 100;
    return 3 * radius * radius;
}

struct Bmp {
    int width = 0, height = 0;
    std::vector<Colour> palette;
    std::vector<std::uint8_t> indices;  // rows from the top

    Colour At(int x, int y) const {
        return palette[indices[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                               static_cast<std::size_t>(x)]];
    }
    std::vector<Colour> UsedColours() const {
        std::array<bool, 256> used{};
        for (const auto index : indices) used[index] = true;
        std::vector<Colour> colours;
        for (std::size_t i = 0; i < palette.size(); ++i)
            if (used[i]) colours.push_back(palette[i]);
        return colours;
    }
};

// Rows from the bottom; every row must be filled exactly. Empty at the first fault.
std::vector<std::uint8_t> UnpackRle8(const std::string& bytes, std::size_t at, std::size_t width,
                                     std::size_t height) {
    std::vector<std::uint8_t> out, row;
    while (at + 1 < bytes.size()) {
        const unsigned count = Byte(bytes, at), value = Byte(bytes, at + 1);
        at += 2;
        if (count > 0) {
            row.insert(row.end(), count, static_cast<std::uint8_t>(value));
        } else if (value <= 1) {  // end of a row, end of the picture
            if (row.size() != width) return {};
            out.insert(out.end(), row.begin(), row.end());
            row.clear();
            if (value == 1)
                return out.size() == width * height && at == bytes.size()
                           ? out
                           : std::vector<std::uint8_t>{};
        } else if (value == 2 || at + value > bytes.size()) {
            return {};
        } else {
            for (unsigned i = 0; i < value; ++i)
                row.push_back(static_cast<std::uint8_t>(Byte(bytes, at + i)));
            at += value + value % 2;
        }
    }
    return {};
}

// Reads a BMP of 8 bits a pixel strictly; the reason of a refusal becomes a test failure.
std::optional<Bmp> ReadBmp(const fs::path& path) {
    const std::string bytes = FileBytes(path);
    const auto refuse = [&](const char* why) {
        ADD_FAILURE() << path.filename() << ": " << why;
        return std::nullopt;
    };
    if (!bytes.starts_with("BM") || Little32(bytes, 2) != bytes.size())
        return refuse("file header");
    const unsigned start = Little32(bytes, 10), colours = Little32(bytes, 46);
    if (Little32(bytes, 14) != 40 || Little16(bytes, 26) != 1 || Little16(bytes, 28) != 8)
        return refuse("information header");
    if (colours < 1 || colours > 256 || start != 54 + 4 * colours) return refuse("palette");
    if (Little32(bytes, 34) != bytes.size() - start) return refuse("size of the pixels");
    Bmp bmp;
    const std::size_t width = Little32(bytes, 18), height = Little32(bytes, 22);
    if (width < 100 || width > 2000 || height < 100 || height > 2000) return refuse("extent");
    bmp.width = static_cast<int>(width);
    bmp.height = static_cast<int>(height);
    for (unsigned i = 0; i < colours; ++i) {
        const std::size_t at = 54 + 4 * i;
        bmp.palette.push_back({static_cast<int>(Byte(bytes, at + 2)),
                               static_cast<int>(Byte(bytes, at + 1)),
                               static_cast<int>(Byte(bytes, at))});
    }
    std::vector<std::uint8_t> upward;
    if (Little32(bytes, 30) == 1) {
        upward = UnpackRle8(bytes, start, width, height);
    } else if (Little32(bytes, 30) == 0) {
        const std::size_t stride = (width + 3) / 4 * 4;
        if (bytes.size() - start != stride * height) return refuse("length of the pixels");
        for (std::size_t y = 0; y < height; ++y)
            for (std::size_t x = 0; x < width; ++x)
                upward.push_back(static_cast<std::uint8_t>(Byte(bytes, start + y * stride + x)));
    }
    if (upward.size() != width * height) return refuse("pixels");
    for (std::size_t y = height; y-- > 0;)
        bmp.indices.insert(bmp.indices.end(),
                           upward.begin() + static_cast<std::ptrdiff_t>(y * width),
                           upward.begin() + static_cast<std::ptrdiff_t>((y + 1) * width));
    if (*std::ranges::max_element(bmp.indices) >= colours)
        return refuse("index beyond the palette");
    return bmp;
}

struct Extent {
    unsigned width = 0, height = 0;
};

// From the frame header of a baseline JPG.
Extent JpgExtent(const std::string& bytes) {
    for (std::size_t at = 2; at + 9 < bytes.size() && Byte(bytes, at) == 0xFF;) {
        if (Byte(bytes, at + 1) == 0xC0) return {Big16(bytes, at + 7), Big16(bytes, at + 5)};
        at += 2 + Big16(bytes, at + 2);
    }
    return {};
}

void ExpectSoundJpg(const fs::path& path) {
    const std::string bytes = FileBytes(path);
    EXPECT_THAT(bytes, StartsWith("\xFF\xD8\xFF")) << path;
    EXPECT_TRUE(bytes.ends_with("\xFF\xD9")) << path;
    EXPECT_GT(JpgExtent(bytes).width, 0u) << path << " is no baseline JPG";
}

TEST(Content, WhatTheSettingsAndDefaultsNameExists) {
    for (const char* name : {"Frame1.jpg", "Frame2.jpg", "Masks/Mask-1.bmp", "Frames/frame.bmp",
                             "Overlays/blue1.bmp", "Overlays/HalcyraWorks.bmp"})
        EXPECT_TRUE(fs::is_regular_file(ShareFolder() / name)) << name;
    for (const char* name : {"Scripts", "Subroutines", "Photos", "Masks", "Frames", "CustomFilters",
                             "Lists", "Overlays"})
        EXPECT_TRUE(fs::is_directory(ShareFolder() / name)) << name;
}

TEST(Content, IsSmall) {
    std::uintmax_t photos = 0, others = 0;
    for (const auto& entry : fs::recursive_directory_iterator(ShareFolder())) {
        if (!entry.is_regular_file()) continue;
        const bool isPhoto =
            entry.path().parent_path().filename() == "Photos" && entry.path().extension() == ".jpg";
        (isPhoto ? photos : others) += entry.file_size();
        if (isPhoto) {
            EXPECT_LE(entry.file_size(), 550'000u) << entry.path();
        }
    }
    EXPECT_LE(photos, 4'000'000u);
    EXPECT_LE(others, 4'000'000u);
}

TEST(Content, MasksAreGreyAndHoldBothWhiteAndDark) {
    const auto masks = ShippedFiles("Masks", ".bmp");
    ASSERT_GE(masks.size(), 8u);
    for (const auto& path : masks) {
        const auto mask = ReadBmp(path);
        ASSERT_TRUE(mask);
        int darkest = 255, brightest = 0;
        for (const Colour c : mask->UsedColours()) {
            EXPECT_TRUE(c.r == c.g && c.g == c.b) << path;
            darkest = std::min(darkest, c.r);
            brightest = std::max(brightest, c.r);
        }
        EXPECT_LT(darkest, 100) << path << " hides nothing";
        EXPECT_EQ(brightest, 255) << path << " keeps no pixel whole";
    }
}

TEST(Content, FramesAreOpenInTheMiddleAndNearlyWhiteNowhereElse) {
    const auto frames = ShippedFiles("Frames", ".bmp");
    ASSERT_GE(frames.size(), 6u);
    for (const auto& path : frames) {
        const auto frame = ReadBmp(path);
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->At(frame->width / 2, frame->height / 2), kWhite) << path;
        for (int x = 0; x < frame->width; ++x) {
            EXPECT_NE(frame->At(x, 0), kWhite) << path;
            EXPECT_NE(frame->At(x, frame->height - 1), kWhite) << path;
        }
        for (int y = 0; y < frame->height; ++y) {
            EXPECT_NE(frame->At(0, y), kWhite) << path;
            EXPECT_NE(frame->At(frame->width - 1, y), kWhite) << path;
        }
        for (const Colour c : frame->UsedColours())
            if (c != kWhite) {
                EXPECT_GT(Distance2(c, kWhite), KeyReach(4)) << path;
            }
    }
}

TEST(Content, StampsStandOnAKeyColourThatNoEdgeIsMixedWith) {
    for (const auto& path : ShippedFiles("Overlays", ".bmp")) {
        const auto stamp = ReadBmp(path);
        ASSERT_TRUE(stamp);
        if (path.filename() == "Old-paper.bmp") continue;  // a whole picture, to be blended
        const Colour key = path.filename() == "HalcyraWorks.bmp" ? kCyan : kBlue;
        EXPECT_EQ(stamp->At(0, 0), key) << path;
        EXPECT_EQ(stamp->At(stamp->width - 1, stamp->height - 1), key) << path;
        const auto used = stamp->UsedColours();
        EXPECT_GE(used.size(), 2u) << path;
        for (const Colour c : used)
            if (c != key) {
                EXPECT_GT(Distance2(c, key), KeyReach(10)) << path;
            }
    }
}

TEST(Content, PhotographsAreVariedAndOfTwoMegapixels) {
    const auto photos = ShippedFiles("Photos", ".jpg");
    EXPECT_GE(photos.size(), 6u);
    EXPECT_LE(photos.size(), 10u);
    int lying = 0, upright = 0, nearlySquare = 0;
    for (const auto& path : photos) {
        ExpectSoundJpg(path);
        const Extent extent = JpgExtent(FileBytes(path));
        const unsigned pixels = extent.width * extent.height;
        EXPECT_GT(pixels, 1'800'000u) << path;
        EXPECT_LT(pixels, 2'200'000u) << path;
        const double aspect = static_cast<double>(extent.width) / extent.height;
        ++(aspect > 1.1 ? lying : aspect < 0.9 ? upright : nearlySquare);
    }
    EXPECT_GE(lying, 2);
    EXPECT_GE(upright, 2);
    EXPECT_GE(nearlySquare, 1);
}

TEST(Content, TheTwoPicturesOfTheWindowAreSound) {
    ExpectSoundJpg(ShareFolder() / "Frame1.jpg");
    ExpectSoundJpg(ShareFolder() / "Frame2.jpg");
}

TEST(Content, EachPhotographIsCreditedUnderALicenceWhoseTextIsThere) {
    std::vector<std::string> rows;
    std::string credits = FileBytes(ShareFolder() / "Photos/CREDITS.md");
    for (std::size_t at = 0; at < credits.size();) {
        const std::size_t end = std::min(credits.find('\n', at), credits.size());
        if (std::string row = credits.substr(at, end - at); row.starts_with("| "))
            rows.push_back(std::move(row));
        at = end + 1;
    }
    auto photos = ShippedFiles("Photos", ".jpg");
    photos.push_back(ShareFolder() / "Frame1.jpg");
    for (const auto& path : photos) {
        const std::string name = path.lexically_relative(ShareFolder() / "Photos").generic_string();
        const auto row = std::ranges::find_if(rows, [&](std::string_view text) {
            text.remove_prefix(2);  // the bar of the table's first cell
            return text.starts_with(name) && text.substr(name.size()).starts_with(" |");
        });
        ASSERT_NE(row, rows.end()) << name << " is not credited";
        std::size_t texts = 0;
        for (const auto& licence : ShippedFiles("Photos/LICENSES", ".txt"))
            texts += row->find(fmt::format("[{}](https://", licence.stem().string())) !=
                     std::string::npos;
        EXPECT_EQ(texts, 1u) << *row;
        EXPECT_THAT(FileBytes(path), HasSubstr(". CC")) << name << " carries no credit itself";
    }
    for (const auto& licence : ShippedFiles("Photos/LICENSES", ".txt"))
        EXPECT_THAT(FileBytes(licence), HasSubstr("Creative Commons")) << licence;
}

TEST(Content, CustomFiltersTreatFlatAreasAsTheirNamesSay) {
    const auto filters = ShippedFiles("CustomFilters", ".acf");
    ASSERT_GE(filters.size(), 6u);
    for (const auto& path : filters) {
        const std::string bytes = FileBytes(path);
        ASSERT_EQ(bytes.size(), 54u) << path;
        const auto value = [&](std::size_t at) {
            return static_cast<int>(static_cast<std::int16_t>(Big16(bytes, 2 * at)));
        };
        int sum = 0;
        for (std::size_t i = 0; i < 25; ++i) sum += value(i);
        const int scale = value(25), offset = value(26);
        ASSERT_NE(scale, 0) << path;
        const int onGrey100 = sum * 100 / scale + offset;
        const auto title = path.stem();
        EXPECT_EQ(onGrey100, title == "Edges" ? 0 : title == "Pencil" ? 255 : 100) << path;
    }
}

}  // namespace
}  // namespace lumo::test
