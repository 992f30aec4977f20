#pragma once

#include "imaging/image.h"

namespace lumo::ops::colour {

/// Adds a number of levels to each channel; the sums are held between 0 and 255. In place.
void AddToChannels(imaging::ImageView image, int red, int green, int blue);

}  // namespace lumo::ops::colour
