#pragma once

// Where the ink of a drawn text lies.

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "imaging/draw_text.h"
#include "support/test_images.h"

namespace lumo::test {

/// The smallest rectangle around the pixels in which the two pictures differ; empty if they agree.
inline imaging::Rect ChangedIn(imaging::ConstImageView before, imaging::ConstImageView after) {
    imaging::Rect box{before.Width(), before.Height(), 0, 0};
    for (int y = 0; y < before.Height(); ++y)
        for (int x = 0; x < before.Width(); ++x)
            if (before.Pixel(x, y) != after.Pixel(x, y))
                box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1),
                       std::max(box.bottom, y + 1)};
    return box.left < box.right ? box : imaging::Rect{};
}

inline constexpr imaging::Rgb kNoInk{0, 0, 0}, kFullInk{255, 255, 255};

/// The smallest rectangle around all pixels that are not black.
inline imaging::Rect InkBox(const imaging::Image& picture) {
    return ChangedIn(FlatImage(picture.Extent(), kNoInk).View(), picture.View());
}

/// The sum of the ink: of the red bytes.
inline std::size_t InkSum(const imaging::Image& picture) {
    std::size_t sum = 0;
    const auto bytes = picture.View().Bytes();
    for (std::size_t i = 0; i < bytes.size(); i += imaging::kChannels) sum += bytes[i];
    return sum;
}

/// The text in white on black, its first line's top left at (x, y).
inline imaging::Image WhiteOnBlack(imaging::Size size, std::string_view text,
                                   const imaging::TextFont& font, imaging::Smoothing smoothing,
                                   int x = 0, int y = 0) {
    imaging::Image picture = FlatImage(size, kNoInk);
    const auto draw = smoothing == imaging::Smoothing::Smooth ? imaging::DrawSmoothTextOnRGB2
                                                              : imaging::DrawTextOnRGB2;
    EXPECT_TRUE(draw(picture.View(), text, font, {x, y, size.width, size.height}, kFullInk, 1.0));
    return picture;
}

}  // namespace lumo::test
