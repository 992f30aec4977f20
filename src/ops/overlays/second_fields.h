#pragma once

// What the commands share that read a second picture from a file.

#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "imaging/image.h"
#include "imaging/resample.h"
#include "io/panel_text.h"
#include "script/schema.h"

namespace lumo::ops::overlays {

constexpr script::FieldSpec SecondPicture(std::string_view label, std::string_view factory) {
    return script::Path(label, factory).Quoted(true);
}

/// A path as the narrow panel shows it.
inline std::string PanelPath(std::string_view path) {
    return io::ShortenPath(path, 29, 25);
}

/// Black everywhere: for a picture whose making failed, so that what the memory held before never
/// shows.
inline void Clear(imaging::ImageView picture) {
    const auto bytes = picture.Bytes();
    std::memset(bytes.data(), 0, bytes.size());
}

/// The picture at another size; none if it or the size is empty or the memory cannot be had.
inline std::optional<imaging::Image> Resized(imaging::ConstImageView picture, imaging::Size size,
                                             imaging::ResampleFilter filter) {
    if (picture.IsEmpty()) return std::nullopt;
    auto target = imaging::Image::TryCreate(size);
    if (!target || !imaging::ResizeImage(picture, target->View(), filter)) return std::nullopt;
    return target;
}

}  // namespace lumo::ops::overlays
