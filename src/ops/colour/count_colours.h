#pragma once

#include "imaging/image.h"

namespace lumo::ops::colour {

/// What a picture holds; the numbers are the codes that Scripts compare with.
enum class DepthCode { BlackAndWhite = 0, Grey = 1, Colours256 = 2, FullColour = 3 };

/// The code of a picture with that number of different colours. Up to 256 of them, three pixels in
/// a row of the picture are looked at (all of a picture narrower than three): a coloured pixel
/// between them in a grey picture is missed.
DepthCode ColourDepthCode(imaging::ConstImageView image, int colours);

}  // namespace lumo::ops::colour
