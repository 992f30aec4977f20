#pragma once

// Colours in parameter strings: three fields in a row, red, green, blue.

#include <string>
#include <string_view>

#include "imaging/image.h"
#include "script/fields.h"

namespace lumo::ops {

/// The colour whose red is field `first`; of each number the low 8 bits count.
inline imaging::Rgb ColourOf(const script::Fields& fields, int first) {
    const auto channel = [&](int index) {
        return static_cast<std::uint8_t>(fields.Integer(index));
    };
    return {channel(first), channel(first + 1), channel(first + 2)};
}

/// The three fields as they stand, for a panel line.
inline std::string JoinColour(const script::Fields& fields, int first, std::string_view separator) {
    std::string text = fields.Text(first);
    text.append(separator).append(fields.Text(first + 1));
    return text.append(separator).append(fields.Text(first + 2));
}

}  // namespace lumo::ops
