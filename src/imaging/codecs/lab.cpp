#include "imaging/codecs/lab.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace lumo::imaging::codecs {
namespace {

// Fine enough that a step is less than a fifth of an 8-bit step where the curve is steepest.
constexpr int kCurveSteps = 16384;

/// The sRGB transfer curve from linear light, as bytes.
std::array<std::uint8_t, kCurveSteps + 1> MakeCurve() {
    std::array<std::uint8_t, kCurveSteps + 1> curve{};
    for (int i = 0; i <= kCurveSteps; ++i) {
        const double linear = static_cast<double>(i) / kCurveSteps;
        const double value =
            linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
        curve[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value * 255 + 0.5);
    }
    return curve;
}

double InverseF(double t) {
    constexpr double kDelta = 6.0 / 29.0;
    return t > kDelta ? t * t * t : 3 * kDelta * kDelta * (t - 4.0 / 29.0);
}

}  // namespace

std::uint8_t SrgbFromLinear(double linear) {
    static const auto curve = MakeCurve();
    if (!(linear > 0)) return 0;
    const double place = std::min(linear, 1.0) * kCurveSteps + 0.5;
    return curve[static_cast<std::size_t>(place)];
}

Rgb LabToRgb(double lightness, double a, double b) {
    const double fy = (lightness + 16) / 116;
    // Relative to white, so that the matrix below maps 1, 1, 1 to 1, 1, 1: the rows are those of
    // linear sRGB from XYZ under D50 times the white 0.96422, 1, 0.82521.
    const double x = InverseF(fy + a / 500);
    const double y = InverseF(fy);
    const double z = InverseF(fy - b / 200);
    const double red = 3.0217267 * x - 1.6168667 * y - 0.4048600 * z;
    const double green = -0.9437480 * x + 1.9161415 * y + 0.0276065 * z;
    const double blue = 0.0693711 * x - 0.2289914 * y + 1.1596203 * z;
    return {SrgbFromLinear(red), SrgbFromLinear(green), SrgbFromLinear(blue)};
}

}  // namespace lumo::imaging::codecs
