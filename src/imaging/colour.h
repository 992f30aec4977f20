#pragma once

// Colour spaces and look-up tables: the arithmetic that the image commands share.

#include <array>
#include <cstdint>
#include <span>

#include "imaging/image.h"

namespace lumo::imaging {

/// Hue in whole degrees, saturation and lightness in whole percent. A pixel that passes through
/// this record is quantised to 101 levels of lightness and of saturation.
struct Hsl {
    int hue = 0;
    int saturation = 0;
    int lightness = 0;
    friend constexpr bool operator==(Hsl, Hsl) = default;
};

/// Hue 0 to 359, saturation and lightness 0 to 100, each truncated; all computed in doubles in a
/// fixed order, since a rounding at a whole number decides the result. On a tie for the largest
/// channel blue goes before green and green before red.
/// Formula: the double hexcone of Joblove and Greenberg, "Color spaces for computer graphics",
/// 1978.
Hsl RgbToHsl(Rgb pixel);

/// Adds to the hue, with at most one turn, so that 360 stays 360. Saturation and lightness change
/// by a percentage of what they are and end between 0 and 100: grey stays grey, black stays black.
/// Integers of 32 bits that wrap, divisions truncate.
Hsl AdjustHsl(Hsl colour, int hueDelta, int saturationPercent, int lightnessPercent);

/// Back to bytes, each truncated to a whole number of which the low 8 bits stay. No rounding: a
/// pixel that goes there and back comes out equal or a little darker, and Scripts rely on it.
Rgb HslToRgb(Hsl colour);

/// Luminance, 0 to 255: 0.299 red + 0.587 green + 0.114 blue + 0.5, truncated.
constexpr std::uint8_t ComputeLuma(int red, int green, int blue) {
    return static_cast<std::uint8_t>(0.299 * red + 0.587 * green + 0.114 * blue + 0.5);
}
constexpr std::uint8_t ComputeLuma(Rgb pixel) {
    return ComputeLuma(pixel.red, pixel.green, pixel.blue);
}

/// ComputeLuma of `luma.size()` pixels in a row.
void ComputeLumaOfRow(const std::uint8_t* pixels, std::span<std::uint8_t> luma);

/// Number of pixels with each ComputeLuma.
std::array<std::uint64_t, 256> LumaHistogram(ConstImageView image);

/// New value of a channel, indexed by the old one.
using Lut = std::array<std::uint8_t, 256>;

/// Tables for the three channels; a null one leaves its channel alone. The same table may stand
/// for several.
struct LutSet {
    const Lut* red = nullptr;
    const Lut* green = nullptr;
    const Lut* blue = nullptr;
};

/// The table that changes nothing.
constexpr Lut IdentityLut() {
    Lut lut{};
    for (std::size_t i = 0; i < lut.size(); ++i) lut[i] = static_cast<std::uint8_t>(i);
    return lut;
}

// The operations on whole pictures below work in place and fail, with LastError() set, on an empty
// picture only.

bool ApplyLUTsToImage(ImageView image, const LutSet& luts);

/// Each pixel becomes its ComputeLuma in all three channels; grey pixels stay as they are.
bool ImageToGrayScale(ImageView image);

/// As ImageToGrayScale and then ApplyLUTsToImage, in one pass; no table may be null.
bool ToneGrayScale(ImageView image, const LutSet& luts);

/// ComputeLuma of each pixel as one byte; `grey` holds width times height of them.
bool ImageToGrayScale8Bit(ConstImageView image, std::span<std::uint8_t> grey);

/// Exchanges the first and the third byte of each pixel.
bool RGBToBGR(ImageView image);

}  // namespace lumo::imaging
