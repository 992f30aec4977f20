#include <algorithm>

#include "imaging/colour.h"
#include "ops/colour/hsl_kernels.h"

namespace lumo::ops::colour::kernels {
namespace {

using imaging::Hsl;

constexpr int kLevels = 101;  // of saturation and of lightness

/// The values that HslToRgb works with.
Tone ToneOf(int saturation, int lightness) {
    const double l = lightness / 100.0, s = saturation / 100.0;
    const auto byte = [](double v) { return static_cast<std::uint8_t>(v * 255.0); };
    if (s == 0.0) return {0.0, l, byte(l), byte(l)};
    const double q = l < 0.5 ? (1.0 + s) * l : (l + s) - (l * s);
    const double p = 2.0 * l - q;
    return {q - p, p, byte(q), byte(p)};
}

/// The channel at `t` sixths of the hexcone; notes the slope if it stands there.
Place PlaceAt(double t, Slope& slope) {
    if (t < 0.0) t += 1.0;
    if (t > 1.0) t -= 1.0;
    if (6.0 * t < 1.0) {
        slope = {6.0, t};
        return kSlope;
    }
    if (2.0 * t < 1.0) return kHigh;
    if (3.0 * t < 2.0) {
        slope = {0.6666666666666666 - t, 6.0};
        return kSlope;
    }
    return kLow;
}

void FillTones(int saturationPercent, int lightnessPercent, HslTables& tables) {
    for (int lightness = 0; lightness < kLevels; ++lightness)
        for (int saturation = 0; saturation < kLevels; ++saturation) {
            const Hsl to = imaging::AdjustHsl({0, saturation, lightness}, 0, saturationPercent,
                                              lightnessPercent);
            tables.tones[static_cast<std::size_t>(lightness * kLevels + saturation)] =
                ToneOf(to.saturation, to.lightness);
        }
    for (int high = 0; high < 256; ++high)
        for (int low = 0; low <= high; ++low) {
            const auto max = static_cast<std::uint8_t>(high), min = static_cast<std::uint8_t>(low);
            const Hsl from = imaging::RgbToHsl({max, min, min});
            tables.toneOf[static_cast<std::size_t>(high * 256 + low)] =
                static_cast<std::uint16_t>(from.lightness * kLevels + from.saturation);
        }
}

}  // namespace

bool FillHslTables(int hueDelta, int saturationPercent, int lightnessPercent, HslTables& tables) {
    for (int from = 0; from < 360; ++from) {
        const int hue = imaging::AdjustHsl({from, 0, 0}, hueDelta, 0, 0).hue;
        if (hue < 0 || hue > 360) return false;
        const auto i = static_cast<std::size_t>(from);
        const double h = hue / 360.0;
        Slope& slope = tables.slopes[i];
        slope = {};
        // Never more than one of them is on the slope.
        const int red = PlaceAt(h + 0.3333333333333333, slope);
        const int green = PlaceAt(h, slope);
        const int blue = PlaceAt(h - 0.3333333333333333, slope);
        tables.places[i] = static_cast<std::uint8_t>(red | green << 2 | blue << 4);
    }
    FillTones(saturationPercent, lightnessPercent, tables);
    return true;
}

}  // namespace lumo::ops::colour::kernels
