#pragma once

// The HSL adjustment of a run of pixels.
//
// Hue, saturation and lightness are whole numbers, and all that a command does with them depends on
// those alone. So the way back is looked up: by saturation and lightness the channel values at the
// top and at the bottom of the hexcone, and by hue which channel stands where, and how far up the
// slope the third one is. What is left per pixel is the hue, a division of doubles in the fixed
// order, and a product on the slope.

#include <array>
#include <cstddef>
#include <cstdint>

#include "imaging/colour.h"

namespace lumo::ops::colour::kernels {

/// The channel on the slope between the lower and the upper value: spread * first * second + low,
/// in that order, times 255. One of the factors is 6, which one depends on the side.
struct Slope {
    double first = 0, second = 0;
};

/// Places of the three channels in one byte, two bits each from red on.
enum Place : std::uint8_t { kSlope = 0, kHigh = 1, kLow = 2 };

/// What a pair of saturation and lightness becomes.
struct Tone {
    double spread = 0, low = 0;
    std::uint8_t highByte = 0, lowByte = 0;
};

struct HslTables {
    /// Index of the Tone, by the largest channel times 256 plus the smallest.
    std::array<std::uint16_t, 65536> toneOf;
    std::array<Tone, 101 * 101> tones;
    /// By the hue before the adjustment.
    std::array<Slope, 360> slopes;
    std::array<std::uint8_t, 360> places;
};

/// Fills the tables. False if the hues that come out are not all between 0 and 360, as a turn of
/// more than that can lead to: there the tables do not hold.
bool FillHslTables(int hueDelta, int saturationPercent, int lightnessPercent, HslTables& tables);

void AdjustHsl(std::uint8_t* pixels, std::size_t count, const HslTables& tables);

/// Each pixel becomes the entries of its lightness, 0 to 100, in the three tables.
void ToneByLightness(std::uint8_t* pixels, std::size_t count, const imaging::LutSet& luts);

}  // namespace lumo::ops::colour::kernels
