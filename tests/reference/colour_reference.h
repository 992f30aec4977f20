#pragma once

// The colour commands once more, slow and plain: one pixel at a time, straight from the formulas.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "imaging/colour.h"
#include "imaging/image.h"

namespace lumo::test::reference {

using imaging::Hsl;
using imaging::Image;
using imaging::Lut;
using imaging::Rgb;

int Luma(Rgb p);
/// With the green weight 0.586.
int MeanLuma(Rgb p);

Hsl ToHsl(Rgb p);
Hsl Adjusted(Hsl colour, int dh, int ds, int dl);
Rgb ToRgb(Hsl colour);

Rgb Added(Rgb p, int red, int green, int blue);
Rgb Replaced(Rgb p, const std::array<int, 3>& wanted, Rgb inserted, int tolerance);
Rgb Solarized(Rgb p, int threshold);
Rgb Thresholded(Rgb p, int threshold);
Rgb CurvedBrightness(Rgb p, const Lut& curve);

/// Empty if an index leaves the tables.
std::optional<Lut> HmsTable(int highlight, int midtone, int shadow);
Lut CurveTable(const std::array<int, 17>& points);

Image Dithered(imaging::ConstImageView image);
/// The fifth of nine sorted samples; the edge repeats.
Image Median3x3(imaging::ConstImageView image);
int CountColours(imaging::ConstImageView image);

}  // namespace lumo::test::reference
