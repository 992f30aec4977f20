#pragma once

// What the tests of file formats share: pixels as lists, writers that lose nothing, and real files
// with known pictures.

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "imaging/codecs/codec.h"
#include "support/decoder_checks.h"

namespace lumo::test {

inline constexpr imaging::Rgb kBlack{0, 0, 0}, kWhite{255, 255, 255}, kRed{255, 0, 0},
    kGreen{0, 255, 0}, kBlue{0, 0, 255}, kYellow{255, 255, 0};

using Pixels = std::vector<imaging::Rgb>;
using Encoder = platform::Result<imaging::codecs::Bytes> (*)(imaging::ConstImageView);

/// The bytes one behind the other, each number cut to its low eight bits.
imaging::codecs::Bytes BytesOf(std::initializer_list<int> values);
imaging::codecs::Bytes Joined(std::initializer_list<imaging::codecs::Bytes> parts);

/// A PNG that ends where its pixels would begin: it tells the dimensions, and is no picture.
imaging::codecs::Bytes HeadOfPng(imaging::ConstImageView picture);

/// All pixels, row by row from the top. A refusal counts as a failed test and gives none.
Pixels PixelsOf(const platform::Result<imaging::codecs::Decoded>& result);

/// The warning of a picture, or the reason of a refusal with "refused: " before it.
std::string LineOf(const platform::Result<imaging::codecs::Decoded>& result);

/// Random and smooth pictures of all sizes from 1 x 1 to 9 x 9 and a few larger ones come back
/// byte for byte and without a warning.
void CheckRoundTrips(Encoder encode, Decoder decode);

/// A real file, and its picture as PixelHash states it.
struct KnownFile {
    std::string_view name;
    imaging::Size size;
    std::uint64_t hash;
};
/// Each file of the list decodes to its picture, and the list names every file of the folder.
void CheckKnownFiles(Decoder decode, std::string_view folder, const std::vector<KnownFile>& files);

}  // namespace lumo::test
