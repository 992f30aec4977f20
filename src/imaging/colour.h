#pragma once

// What the commands on colour and tone share: luminance, integer HSL, tables, conversion to grey.
// Floating-point formulas are evaluated in doubles in the written order, each step rounded.

#include <cstdint>

#include "imaging/image.h"

namespace lumo::imaging {

/// Luminance of a pixel, 0 to 255: weights 0.299, 0.587 and 0.114, rounded.
constexpr int ComputeLuma(int red, int green, int blue) {
    return static_cast<int>(0.299 * red + 0.587 * green + 0.114 * blue + 0.5);
}
constexpr std::uint8_t ComputeLuma(Rgb pixel) {
    return static_cast<std::uint8_t>(ComputeLuma(pixel.red, pixel.green, pixel.blue));
}

/// Hue in whole degrees, saturation and lightness in whole percent.
struct Hsl {
    int hue = 0;
    int saturation = 0;
    int lightness = 0;
    friend constexpr bool operator==(Hsl, Hsl) = default;
};

/// Integer HSL of a pixel: hue 0 to 359, saturation and lightness 0 to 100, each truncated, so
/// that a pixel which goes there and back may come out a little darker; old Scripts rely on it.
/// Where two channels share the maximum, the later of red, green, blue decides the hue.
/// Formula: the double hexcone of Joblove and Greenberg, "Color spaces for computer graphics",
/// 1978.
Hsl RgbToHsl(Rgb pixel);

/// Turns the hue by that many degrees, with one wrap at most (360 stays 360), and changes
/// saturation and lightness by percent of what they are, truncated, kept within 0 to 100.
Hsl AdjustHsl(Hsl colour, int hueDelta, int saturationPercent, int lightnessPercent);

/// The pixel of an integer HSL colour, each channel truncated. Values that no pixel has give
/// channels limited to 0 to 255.
Rgb HslToRgb(Hsl colour);

/// Replaces every channel by its table of 256 bytes; a null table leaves the channel alone.
void ApplyLuts(ImageView image, const std::uint8_t* red, const std::uint8_t* green,
               const std::uint8_t* blue);

/// Gives every pixel its ComputeLuma in all three channels; a grey pixel stays as it is.
void ImageToGrayScale(ImageView image);

}  // namespace lumo::imaging
