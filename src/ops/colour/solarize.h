#pragma once

#include "imaging/image.h"

namespace lumo::ops::colour {

/// Inverts every pixel whose ComputeLuma exceeds the threshold; 255 changes nothing. In place.
void Solarize(imaging::ImageView image, int threshold);

}  // namespace lumo::ops::colour
