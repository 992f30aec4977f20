#include "ui/display_picture.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "imaging/resample.h"

namespace lumo::ui {
namespace {

constexpr int kFrameMargin = 4;

}  // namespace

QImage ToQImage(imaging::ConstImageView picture) {
    if (picture.IsEmpty()) return {};
    QImage image(picture.Width(), picture.Height(), QImage::Format_RGB888);
    if (image.isNull()) return image;
    // Its rows are padded, those of the core are not.
    for (int y = 0; y < picture.Height(); ++y)
        std::memcpy(image.scanLine(y), picture.Row(y), picture.Stride());
    return image;
}

imaging::Size FitIntoFrame(imaging::Size picture, imaging::Size frame) {
    if (picture.IsEmpty() || frame.IsEmpty()) return {};
    const auto scaled = [](int side, int target, int of) {
        return std::max<std::int64_t>(0, std::int64_t{side} * target / of);
    };
    int width = std::max(1, frame.width - kFrameMargin);
    auto height = static_cast<int>(
        std::min<std::int64_t>(scaled(picture.height, width, picture.width), INT32_MAX));
    if (frame.height < height) {
        height = std::max(1, frame.height - kFrameMargin);
        width = static_cast<int>(
            std::min<std::int64_t>(scaled(picture.width, height, picture.height), width));
    }
    return {std::max(1, width), std::max(1, height)};
}

QImage ScaledPicture(imaging::ConstImageView picture, imaging::Size size) {
    if (picture.IsEmpty() || size.IsEmpty()) return {};
    if (size == picture.Extent()) return ToQImage(picture);
    auto target = imaging::Image::TryCreate(size);
    if (!target) return {};
    if (!imaging::ResizeImage(picture, target->View(), imaging::ResampleFilter::Bilinear))
        return {};
    return ToQImage(target->View());
}

DisplayPicture MakeDisplayPicture(imaging::ConstImageView picture, imaging::Size frame) {
    if (picture.IsEmpty()) return {.frame = frame};
    return {.pixels = ScaledPicture(picture, FitIntoFrame(picture.Extent(), frame)),
            .source = picture.Extent(),
            .frame = frame};
}

}  // namespace lumo::ui
