#pragma once

// PackBits: a byte n from 0 to 127 stands before n + 1 bytes as they are, one from 129 to 255
// before a byte that is repeated 257 - n times.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

/// Unpacks into `count` bytes. False if the codes end early; the rest is 0 then.
bool UnpackBits(ByteView codes, std::uint8_t* bytes, std::size_t count);

/// Appends the codes of one row. At most `bytes.size()` and one more for each 128 of it.
void PackBits(ByteView bytes, std::vector<std::uint8_t>& codes);

}  // namespace lumo::imaging::codecs
