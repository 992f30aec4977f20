#pragma once

// What holds for every decoder, whatever the bytes are.

#include <gtest/gtest.h>

#include <cstdint>
#include <string_view>

#include "imaging/codecs/codec.h"

namespace lumo::test {

using Decoder = platform::Result<imaging::codecs::Decoded> (*)(
    imaging::codecs::ByteView, const imaging::codecs::DecodeOptions&);

/// True for a picture with pixels, and for a refusal with one line of text.
testing::AssertionResult IsPictureOrReason(
    const platform::Result<imaging::codecs::Decoded>& result);

/// The picture of a file; a refusal counts as a failed test and gives one of a single pixel.
imaging::codecs::Decoded MustDecode(Decoder decode, imaging::codecs::ByteView file);

/// Decodes all files of the folder below tests/data, then each prefix of the smallest one:
/// each must end as a picture or a reason, and nothing may be printed.
void CheckFilesEndWell(Decoder decode, std::string_view folder);

/// The same for `count` seeded damages of the files of the folder.
void CheckMutationsEndWell(Decoder decode, std::string_view folder, std::uint32_t count);

/// A number that stands for all pixels and the size (FNV-1a over the bytes).
std::uint64_t PixelHash(imaging::ConstImageView image);

}  // namespace lumo::test
