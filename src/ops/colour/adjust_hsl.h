#pragma once

#include "imaging/image.h"

namespace lumo::ops::colour {

/// Every pixel through RgbToHsl, AdjustHsl and HslToRgb (imaging/colour.h). In place. With all
/// amounts 0 the picture still darkens a little, as those routines truncate.
void AdjustHslOfImage(imaging::ImageView image, int hueDelta, int saturationPercent,
                      int lightnessPercent);

}  // namespace lumo::ops::colour
