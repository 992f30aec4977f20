#pragma once

#include "imaging/image.h"

namespace lumo::ops::colour {

// In place, each its own inverse.

/// Every byte becomes 255 minus itself.
void InvertImage(imaging::ImageView image);
void SwapRedGreen(imaging::ImageView image);
void SwapGreenBlue(imaging::ImageView image);

}  // namespace lumo::ops::colour
