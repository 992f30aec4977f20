#pragma once

#include <cstddef>

namespace lumo::imaging {

/// Width and height of a picture, in pixels.
struct Size {
    int width = 0;
    int height = 0;

    /// True if there is no pixel in it.
    constexpr bool IsEmpty() const { return width <= 0 || height <= 0; }
    /// Number of pixels; 0 for an empty size.
    constexpr std::size_t Area() const {
        return IsEmpty() ? 0 : static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
    friend constexpr bool operator==(Size, Size) = default;
};

/// A rectangle of pixels; right and bottom are exclusive.
struct Rect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    constexpr Size Extent() const { return {right - left, bottom - top}; }
    friend constexpr bool operator==(Rect, Rect) = default;
};

}  // namespace lumo::imaging
