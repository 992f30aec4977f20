#pragma once

#include <cstdint>

#include "imaging/image.h"

namespace lumo::ops::overlays {

struct MaskParams {
    imaging::Rgb colour;
    bool hardEdge = false;  // any grey short of white is opaque colour
    bool invert = false;    // of the mask, first
};

/// Shows the image where the mask is white and the colour where it is black. Between them each
/// channel becomes (image * m + colour * (255 - m)) / 255, truncated. `grey` holds one byte for
/// each pixel. In place.
void ApplyMask(imaging::ImageView image, const std::uint8_t* grey, const MaskParams& params);

}  // namespace lumo::ops::overlays
