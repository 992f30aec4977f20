#pragma once

#include "imaging/image.h"

namespace lumo::ops::colour {

/// What the toners find: a picture in colour, which they make grey first, or one that a command
/// has marked as grey, which they take as it is.
enum class ToneSource { Colour, Grey };

/// Gives every pixel that hue (degrees) and saturation (percent) and keeps its HSL lightness, with
/// the losses of HslToRgb. In place; false, with LastError() set, if the picture is empty.
bool ToneImage(imaging::ImageView image, ToneSource source, int hue, int saturation);

/// Adds 24 levels of red and takes 10 of green and of blue: a fixed tint. Otherwise as ToneImage.
bool SepiaImage(imaging::ImageView image, ToneSource source);

}  // namespace lumo::ops::colour
