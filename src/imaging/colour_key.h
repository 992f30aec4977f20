#pragma once

// A key colour: pixels of it, or near it, are left out when one picture is laid over another.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "imaging/image.h"

namespace lumo::imaging {

/// A colour and how far from it a pixel may be.
struct ColourKey {
    Rgb colour;
    int farthest = 0;  // greatest sum of the squared differences of the channels; 0: exact

    bool Matches(const std::uint8_t* pixel) const {
        const int red = pixel[0] - colour.red;
        const int green = pixel[1] - colour.green;
        const int blue = pixel[2] - colour.blue;
        return red * red + green * green + blue * blue <= farthest;
    }
};

/// The key with a tolerance in percent: t = tolerance * 255 / 100, truncated, and the farthest is
/// three times the square of t. 100 percent reach every colour; a negative tolerance acts as the
/// positive one.
constexpr ColourKey KeyWithin(Rgb colour, int tolerancePercent) {
    const std::int64_t t =
        std::clamp<std::int64_t>(std::int64_t{tolerancePercent} * 255 / 100, -255, 255);
    return {colour, static_cast<int>(t * 3 * t)};
}

/// For each pixel three bytes: 255 where the key matches, else 0.
void MaskKey(const std::uint8_t* pixels, std::size_t count, const ColourKey& key,
             std::uint8_t* mask);

/// Copies the bytes where the mask is 0 and keeps those of `to` where it is 255.
void CopyUnmasked(const std::uint8_t* from, const std::uint8_t* mask, std::size_t bytes,
                  std::uint8_t* to);

/// Gives pixels that match the key exactly its colour. In place.
void SnapToKey(ImageView image, const ColourKey& key);

/// Replaces the pixels of the image by those of the overlay, but for overlay pixels that match the
/// key. Both have the same size; they do not overlap in memory. False, with LastError() set, only
/// if the sizes differ or are empty.
[[nodiscard]] bool OverlayRGBTrans(ImageView image, ConstImageView overlay, const ColourKey& key);

}  // namespace lumo::imaging
