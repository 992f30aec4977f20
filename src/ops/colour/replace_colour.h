#pragma once

#include <array>

#include "imaging/image.h"

namespace lumo::ops::colour {

struct ReplaceColourParams {
    std::array<int, 3> wanted{};  // red, green, blue; may lie outside of 0 to 255
    imaging::Rgb inserted;
    int tolerance = 0;  // levels, see ToleranceLevels
};

/// (percent * 255) / 100, truncated, in 32 bits that wrap.
int ToleranceLevels(int percent);

/// Inserts a colour wherever each channel by itself is within the tolerance of the wanted one: a
/// box around that colour, not a distance. In place.
void ReplaceColour(imaging::ImageView image, const ReplaceColourParams& params);

}  // namespace lumo::ops::colour
