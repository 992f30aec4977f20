#pragma once

// JPG files put together by hand, and looked at without the code under test.

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "imaging/codecs/codec.h"

namespace lumo::test {

/// A marker segment: FF, code, length, payload.
std::string Segment(int code, std::string_view payload);

/// Bytes as text, and back.
std::string TextOf(imaging::codecs::ByteView bytes);
imaging::codecs::Bytes AsBytes(std::string_view text);

/// Everything of a sound JPG from its first SOS marker on. The test program ends if there is none.
std::string ScanDataOf(std::string_view file);

/// The segments of a sound JPG before that: code and payload.
std::vector<std::pair<int, std::string>> SegmentsOf(std::string_view file);

}  // namespace lumo::test
