#include "imaging/colour.h"

#include <algorithm>

#include "imaging/wrapping.h"

namespace lumo::imaging {
namespace {

/// The low 8 bits of the truncated value. Fields far beyond their ranges lead past the integers;
/// there the nearest one stands in.
std::uint8_t LowByte(double value) {
    constexpr double kLimit = 2147483647.0;
    return static_cast<std::uint8_t>(static_cast<std::int32_t>(std::clamp(value, -kLimit, kLimit)));
}

/// One channel of HslToRgb.
double Channel(double p, double q, double t) {
    if (t < 0.0) t += 1.0;
    if (t > 1.0) t -= 1.0;
    if (6.0 * t < 1.0) return (q - p) * 6.0 * t + p;
    if (2.0 * t < 1.0) return q;
    if (3.0 * t < 2.0) return (q - p) * (0.6666666666666666 - t) * 6.0 + p;
    return p;
}

/// value + percent of it, held between 0 and 100.
int AdjustPercent(int value, int percent) {
    return std::clamp(WrappingSum(value, WrappingProduct(percent, value) / 100), 0, 100);
}

}  // namespace

Hsl RgbToHsl(Rgb pixel) {
    const double r = pixel.red / 255.0, g = pixel.green / 255.0, b = pixel.blue / 255.0;
    const double max = std::max({r, g, b}), min = std::min({r, g, b});
    const double l = (max + min) / 2.0;
    const int lightness = static_cast<int>(l * 100.0);
    if (max == min) return {0, 0, lightness};
    const double s = l < 0.5 ? (max - min) / (max + min) : (max - min) / (2.0 - max - min);
    double h = 0;
    if (r == max) h = (g - b) / (max - min);
    if (g == max) h = (b - r) / (max - min) + 2.0;
    if (b == max) h = (r - g) / (max - min) + 4.0;
    int hue = static_cast<int>(h * 60.0);
    if (hue < 0) hue += 360;
    return {hue, static_cast<int>(s * 100.0), lightness};
}

Hsl AdjustHsl(Hsl colour, int hueDelta, int saturationPercent, int lightnessPercent) {
    int hue = WrappingSum(colour.hue, hueDelta);
    if (hue < 0) hue += 360;
    if (hue > 360) hue -= 360;
    return {hue, AdjustPercent(colour.saturation, saturationPercent),
            AdjustPercent(colour.lightness, lightnessPercent)};
}

Rgb HslToRgb(Hsl colour) {
    const double l = colour.lightness / 100.0, s = colour.saturation / 100.0;
    const double h = colour.hue / 360.0;
    if (s == 0.0) {
        const std::uint8_t grey = LowByte(l * 255.0);
        return {grey, grey, grey};
    }
    const double q = l < 0.5 ? (1.0 + s) * l : (l + s) - (l * s);
    const double p = 2.0 * l - q;
    const double third = 0.3333333333333333;
    return {LowByte(Channel(p, q, h + third) * 255.0), LowByte(Channel(p, q, h) * 255.0),
            LowByte(Channel(p, q, h - third) * 255.0)};
}

}  // namespace lumo::imaging
