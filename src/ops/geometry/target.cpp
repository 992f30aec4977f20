#include "ops/geometry/target.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "imaging/compose.h"
#include "imaging/last_error.h"

namespace lumo::ops::geometry {

using engine::CLumoscriptView;
using engine::LibraryError;
using imaging::Image;
using imaging::ImageView;
using imaging::Rect;
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

void FillAll(ImageView picture, Rgb colour) {
    (void)imaging::FillSolidRect(picture, {0, 0, picture.Width(), picture.Height()}, colour);
}

void FillAround(ImageView picture, Rect inner, Rgb colour) {
    const int width = picture.Width(), height = picture.Height();
    (void)imaging::FillSolidRect(picture, {0, 0, width, inner.top}, colour);
    (void)imaging::FillSolidRect(picture, {0, inner.top, inner.left, inner.bottom}, colour);
    (void)imaging::FillSolidRect(picture, {inner.right, inner.top, width, inner.bottom}, colour);
    (void)imaging::FillSolidRect(picture, {0, inner.bottom, width, height}, colour);
}

void Clear(ImageView target) {
    std::memset(target.Bytes().data(), 0, target.Bytes().size());
}

int ToInt(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

}  // namespace lumo::ops::geometry
