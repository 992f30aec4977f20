#include "ops/geometry/preview.h"

#include <utility>

#include "imaging/compose.h"
#include "ops/geometry/target.h"

namespace lumo::ops::geometry {

using imaging::ConstImageView;
using imaging::Image;
using imaging::ImageView;
using imaging::Rect;
using imaging::Size;

namespace {

constexpr std::int64_t kLargestSide = 16384;

// Half of its brightness for everything outside of the rectangle, and a line along its inside.
void Darken(ImageView picture, Rect keep) {
    for (int y = 0; y < picture.Height(); ++y)
        for (int x = 0; x < picture.Width(); ++x) {
            const bool stays = x >= keep.left && x < keep.right && y >= keep.top && y < keep.bottom;
            const bool rim = stays && (x == keep.left || x == keep.right - 1 || y == keep.top ||
                                       y == keep.bottom - 1);
            if (stays && !rim) continue;
            for (int c = 0; c < imaging::kChannels; ++c) {
                std::uint8_t& value = picture.At(x, y)[c];
                value = static_cast<std::uint8_t>(rim ? 255 - value : value / 2);
            }
        }
}

}  // namespace

int ScaleLength(int length, int shown, int sample) {
    return sample <= 0 ? length : ToInt(std::int64_t{length} * shown / sample);
}

Image OrUnchanged(std::optional<Image> preview, ConstImageView before) {
    if (!preview) preview = Image::TryCopy(before);
    return preview ? std::move(*preview) : Image();
}

std::optional<Image> TryCanvas(std::int64_t width, std::int64_t height, imaging::Rgb colour) {
    if (width <= 0 || height <= 0 || width > kLargestSide || height > kLargestSide)
        return std::nullopt;
    auto canvas = Image::TryCreate({static_cast<int>(width), static_cast<int>(height)});
    if (canvas &&
        !imaging::FillSolidRect(canvas->View(), {0, 0, canvas->Width(), canvas->Height()}, colour))
        canvas.reset();
    return canvas;
}

Image MarkCut(ConstImageView before, Size sample, Rect keep) {
    Image shown = OrUnchanged(std::nullopt, before);
    Darken(shown.View(), {ScaleLength(keep.left, before.Width(), sample.width),
                          ScaleLength(keep.top, before.Height(), sample.height),
                          ScaleLength(keep.right, before.Width(), sample.width),
                          ScaleLength(keep.bottom, before.Height(), sample.height)});
    return shown;
}

}  // namespace lumo::ops::geometry
