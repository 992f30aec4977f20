#pragma once

// The index of further pictures behind the first one of a JPG (large previews, gain maps): it
// counts from its own place, so it has to follow when the markers between it and them change.
// Source: CIPA DC-007, "Multi-Picture Format".

#include <cstddef>
#include <cstdint>
#include <optional>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

/// How the head of a JPG changes around an index.
struct MpfMove {
    std::size_t payloadAt = 0;     // of the index, in the old file
    std::size_t headLength = 0;    // bytes before the first scan of the old file
    std::int64_t grownHead = 0;    // bytes by which that grows
    std::int64_t grownBehind = 0;  // and by which the part behind the index does
};

/// The payload of an APP2 marker with the lengths and places put right. None if there is nothing
/// to change: another kind of payload, a damaged one, or one whose pictures are not where it says
/// (copies that were cut keep an index of what is gone).
std::optional<Bytes> CorrectMpfIndex(ByteView oldFile, ByteView payload, const MpfMove& move);

}  // namespace lumo::imaging::codecs
