#include "ops/geometry/target.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "imaging/compose.h"
#include "imaging/last_error.h"

namespace lumo::ops::geometry {

using engine::CLumoscriptView;
using engine::LibraryError;
using imaging::ConstImageView;
using imaging::Image;
using imaging::ImageView;
using imaging::Rgb;

std::optional<Image> CreateTarget(CLumoscriptView& view, std::int64_t width, std::int64_t height,
                                  std::string_view failure) {
    constexpr std::int64_t kMost = std::numeric_limits<int>::max();
    std::optional<Image> target;
    if (width > kMost || height > kMost)
        imaging::SetLastError("no picture is that large");
    else
        target = Image::TryCreate({ToInt(width), ToInt(height)});
    if (!target) OnCommandFailure(view, failure, LibraryError::Append);
    return target;
}

bool FillTarget(CLumoscriptView& view, ImageView target, Rgb colour, std::string_view failure) {
    const bool ok = imaging::FillSolidRect(target, {0, 0, target.Width(), target.Height()}, colour);
    if (!ok) OnCommandFailure(view, failure, LibraryError::Append);
    return ok;
}

bool PlaceOnTarget(CLumoscriptView& view, ConstImageView source, int x, int y, Rgb colour,
                   ImageView target, const PlaceFailures& failures) {
    // Four bands rather than the whole target: what the source covers is written once.
    const int width = target.Width(), height = target.Height();
    const int right = x + source.Width(), bottom = y + source.Height();
    const bool filled = imaging::FillSolidRect(target, {0, 0, width, y}, colour) &&
                        imaging::FillSolidRect(target, {0, y, x, bottom}, colour) &&
                        imaging::FillSolidRect(target, {right, y, width, bottom}, colour) &&
                        imaging::FillSolidRect(target, {0, bottom, width, height}, colour);
    if (!filled) OnCommandFailure(view, failures.fill, LibraryError::Append);
    const bool ok = imaging::OverlayImage(target, source, x, y);
    if (!ok) OnCommandFailure(view, failures.overlay, LibraryError::Append);
    return ok;
}

void Clear(ImageView target) {
    std::memset(target.Bytes().data(), 0, target.Bytes().size());
}

int ToInt(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

}  // namespace lumo::ops::geometry
