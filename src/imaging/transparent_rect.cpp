#include "imaging/transparent_rect.h"

#include <algorithm>

#include "imaging/colour.h"
#include "imaging/last_error.h"
#include "imaging/parallel.h"

namespace lumo::imaging {
namespace {

Lut Blended(std::uint8_t colour, double opacity) {
    Lut lut{};
    for (std::size_t value = 0; value < lut.size(); ++value)
        lut[value] = static_cast<std::uint8_t>(colour * opacity +
                                               static_cast<double>(value) * (1.0 - opacity) + 0.5);
    return lut;
}

}  // namespace

bool FillTransparentRectOnImage(ImageView target, Rect rect, Rgb colour, double opacity) {
    if (target.IsEmpty()) {
        SetLastError("there is no picture to fill");
        return false;
    }
    const int left = std::max(rect.left, 0), right = std::min(rect.right, target.Width());
    const int top = std::max(rect.top, 0), bottom = std::min(rect.bottom, target.Height());
    if (left >= right || top >= bottom) return true;
    const Lut red = Blended(colour.red, opacity), green = Blended(colour.green, opacity),
              blue = Blended(colour.blue, opacity);
    ForRows(bottom - top, StrideOf({right - left, 1}), [&](int first, int last) {
        for (int y = top + first; y < top + last; ++y) {
            std::uint8_t* pixel = target.At(left, y);
            for (int x = left; x < right; ++x, pixel += kChannels) {
                pixel[0] = red[pixel[0]];
                pixel[1] = green[pixel[1]];
                pixel[2] = blue[pixel[2]];
            }
        }
    });
    return true;
}

}  // namespace lumo::imaging
