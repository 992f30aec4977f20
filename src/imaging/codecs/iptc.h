#pragma once

// IPTC data: what news agencies note of a picture, as a list of numbered texts.
// Source: IPTC-NAA Information Interchange Model, version 4.

#include <cstddef>
#include <string>
#include <string_view>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

/// The longest text of the plain form of a dataset. Few programs read the longer form.
inline constexpr std::size_t kMaxIptcText = 32767;

/// Builds a block of the application record, number 2.
class IptcBlock {
  public:
    /// Adds a text; an empty one is passed over. Refuses one that is too long.
    [[nodiscard]] platform::Status Add(int dataset, std::string_view text);

    bool IsEmpty() const { return datasets_.empty(); }
    /// The block. Where texts are UTF-8 beyond ASCII, a first dataset says so, since readers
    /// otherwise take them for Western European.
    Bytes Export() const;

  private:
    Bytes datasets_;
    bool allUtf8_ = true, allAscii_ = true;
};

/// One line for each dataset of a block, in its order, as "2:5 ObjectName: Harbour". Values are
/// UTF-8 without control characters; long ones are cut and end in "...". Damage ends the text.
std::string IptcText(ByteView block);

}  // namespace lumo::imaging::codecs
