#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/colour.h"

namespace lumo::imaging {

/// Moves the luma y of each pixel of a run to moved[y], as AutoBrightnessRGB (tone.h) tells.
void MoveLuma(std::uint8_t* pixels, std::size_t count, const Lut& moved);

}  // namespace lumo::imaging
