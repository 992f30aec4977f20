#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "imaging/image.h"

namespace lumo::ops::overlays {

enum class BlendMethod : std::uint8_t {
    Normal,
    Addition,
    Subtract,
    Difference,
    Multiply,
    Screen,
    Overlay,
    Darkest,
    Lightest,
    SoftDodge,
    SoftBurn,
    SoftLight,
    Glow,
    Freeze,
};

/// As stored, in the order of BlendMethod.
inline constexpr std::array<std::string_view, 14> kBlendNames{
    "Normal",  "Addition", "Subtract",   "Difference", "Multiply",   "Screen", "Overlay",
    "Darkest", "Lightest", "Soft dodge", "Soft burn",  "Soft light", "Glow",   "Freeze"};

/// The method of exactly that name; Normal for any other text.
BlendMethod BlendMethodOf(std::string_view name);

/// The divisor with which a method is at home: 2 for Addition, 255 for the products, else 1.
double UsualScale(BlendMethod method);

struct BlendParams {
    BlendMethod method = BlendMethod::Normal;
    int offset = 0;
    int opacity = 100;  // percent
    double scale = 1.0;
    bool invert = false;  // of the second picture
};

/// One byte by the definition, before the opacity. With a of the image and b of the second picture,
/// t = trunc(n / scale), where n is a + b, a - b, |a - b|, the larger, the smaller, or a * b;
/// Screen is 255 - trunc((255 - a) * (255 - b) / scale), and Overlay is Screen where a > b, else
/// Multiply (the pictures are compared with each other, not with a mid-grey). The result is t +
/// offset, limited to 0 to 255; a quotient that is infinite counts as very large and none at all as
/// 0.
///
/// The last five take neither scale nor offset. With 255 as 1, divisions truncated:
///   Soft dodge  a + b < 256: a * 128 / (255 - b), at most 255 (255 for b = 255);
///               else 255 - (255 - b) * 128 / a, at least 0
///   Soft burn   soft dodge with a and b exchanged
///   Soft light  (255 - a) * (a * b) + a * screen(a, b), rounded
///   Glow        b * b / (255 - a), at most 255 (255 for a = 255)
///   Freeze      255 - (255 - a) * (255 - a) / b, at least 0 (0 for b = 0)
/// Source: the formulas of these names that paint programs have shared since 2000.
std::uint8_t BlendByte(const BlendParams& params, int a, int b);

/// Blends every byte, then mixes the result with the second picture:
/// (blended * opacity) / 100 + (second * (100 - opacity)) / 100, of which the low 8 bits stay;
/// nothing is mixed at exactly 100. In place; the second picture has the same size, and it is
/// inverted first if the params say so (its own bytes stay).
void BlendImages(imaging::ImageView image, imaging::ConstImageView second,
                 const BlendParams& params);

}  // namespace lumo::ops::overlays
