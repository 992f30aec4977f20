#include "imaging/colour.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "imaging/parallel.h"
#include "imaging/simd.h"

namespace lumo::imaging {
namespace {

// A change by percent, truncated, limited to 0 to 100.
int ChangeByPercent(int value, int percent) {
    const std::int64_t changed = value + static_cast<std::int64_t>(percent) * value / 100;
    return static_cast<int>(std::clamp<std::int64_t>(changed, 0, 100));
}

// One channel of the double hexcone; t is the hue in turns, moved by a third for red and blue.
double HexconeChannel(double p, double q, double t) {
    if (t < 0.0) t += 1.0;
    if (t > 1.0) t -= 1.0;
    if (6.0 * t < 1.0) return (q - p) * 6.0 * t + p;
    if (2.0 * t < 1.0) return q;
    if (3.0 * t < 2.0) return (q - p) * (0.6666666666666666 - t) * 6.0 + p;
    return p;
}

std::uint8_t ByteOf(double channel) {
    return static_cast<std::uint8_t>(std::clamp(channel * 255.0, 0.0, 255.0));
}

LUMO_SIMD_CLONES
void GreyRow(std::uint8_t* row, std::size_t width) {
    for (std::size_t x = 0; x < width; ++x) {
        std::uint8_t* pixel = row + x * kChannels;
        const auto grey = static_cast<std::uint8_t>(ComputeLuma(pixel[0], pixel[1], pixel[2]));
        pixel[0] = pixel[1] = pixel[2] = grey;
    }
}

constexpr std::array<std::uint8_t, 256> kIdentity = [] {
    std::array<std::uint8_t, 256> table{};
    std::iota(table.begin(), table.end(), std::uint8_t{0});
    return table;
}();

}  // namespace

Hsl RgbToHsl(Rgb pixel) {
    const double r = pixel.red / 255.0;
    const double g = pixel.green / 255.0;
    const double b = pixel.blue / 255.0;
    const double max = std::max({r, g, b});
    const double min = std::min({r, g, b});
    const double l = (max + min) / 2.0;
    if (max == min) return {0, 0, static_cast<int>(l * 100.0)};
    const double s = l < 0.5 ? (max - min) / (max + min) : (max - min) / (2.0 - max - min);
    double h = 0;
    if (r == max) h = (g - b) / (max - min);
    if (g == max) h = (b - r) / (max - min) + 2.0;
    if (b == max) h = (r - g) / (max - min) + 4.0;
    const int hue = static_cast<int>(h * 60.0);
    return {hue < 0 ? hue + 360 : hue, static_cast<int>(s * 100.0), static_cast<int>(l * 100.0)};
}

Hsl AdjustHsl(Hsl colour, int hueDelta, int saturationPercent, int lightnessPercent) {
    std::int64_t hue = static_cast<std::int64_t>(colour.hue) + hueDelta;
    if (hue < 0) hue += 360;
    if (hue > 360) hue -= 360;
    constexpr std::int64_t kFar = 1'000'000'000;  // keeps absurd turns within an int
    return {static_cast<int>(std::clamp(hue, -kFar, kFar)),
            ChangeByPercent(colour.saturation, saturationPercent),
            ChangeByPercent(colour.lightness, lightnessPercent)};
}

Rgb HslToRgb(Hsl colour) {
    const double l = colour.lightness / 100.0;
    const double s = colour.saturation / 100.0;
    const double h = colour.hue / 360.0;
    if (s == 0.0) {
        const std::uint8_t grey = ByteOf(l);
        return {grey, grey, grey};
    }
    const double q = l < 0.5 ? (1.0 + s) * l : (l + s) - (l * s);
    const double p = 2.0 * l - q;
    constexpr double kThird = 0.3333333333333333;
    return {ByteOf(HexconeChannel(p, q, h + kThird)), ByteOf(HexconeChannel(p, q, h)),
            ByteOf(HexconeChannel(p, q, h - kThird))};
}

void ApplyLuts(ImageView image, const std::uint8_t* red, const std::uint8_t* green,
               const std::uint8_t* blue) {
    if (red == nullptr) red = kIdentity.data();
    if (green == nullptr) green = kIdentity.data();
    if (blue == nullptr) blue = kIdentity.data();
    const auto width = static_cast<std::size_t>(image.Width());
    ForRows(image.Height(), 2 * image.Stride(), [&](int first, int last) {
        std::uint8_t* pixel = image.Row(first);
        std::uint8_t* const end =
            pixel + width * kChannels * static_cast<std::size_t>(last - first);
        for (; pixel != end; pixel += kChannels) {
            pixel[0] = red[pixel[0]];
            pixel[1] = green[pixel[1]];
            pixel[2] = blue[pixel[2]];
        }
    });
}

void ImageToGrayScale(ImageView image) {
    const auto width = static_cast<std::size_t>(image.Width());
    ForRows(image.Height(), 2 * image.Stride(), [&](int first, int last) {
        for (int y = first; y < last; ++y) GreyRow(image.Row(y), width);
    });
}

}  // namespace lumo::imaging
