#pragma once

#include <cstdint>
#include <optional>

#include "imaging/image.h"

namespace lumo::ops::overlays {

/// Where everything of a drop shadow lies, in pixels.
struct ShadowLayout {
    imaging::Size canvas;
    imaging::Rect shadow;
    int imageX = 0, imageY = 0;
};

/// The corner to which a shadow falls, as stored.
enum ShadowCorner : int { kBottomRight = 0, kBottomLeft = 1, kTopLeft = 2, kTopRight = 3 };

/// A shadow of `size` pixels beyond the image, and half of that, truncated, on the far side as room
/// for the blur. None where a side would leave 32 bits, or for a negative size. For a corner other
/// than the four the canvas alone means something.
std::optional<ShadowLayout> LayOutShadow(imaging::Size image, std::int64_t size, bool blurred,
                                         int corner);

/// The deviation of the blur for a shadow of that size: 0.48 of it at 100 percent.
double ShadowDeviation(std::int64_t size, int blurPercent);

}  // namespace lumo::ops::overlays
