#pragma once

// The picture into which a command of this family works, and its canvas.

#include <cstdint>
#include <optional>
#include <string_view>

#include "engine/command.h"
#include "imaging/image.h"

namespace lumo::ops::geometry {

/// A picture of that size with undefined pixels; none, after `failure` was reported with the
/// library's error, if the memory cannot be had. Sides beyond any picture count as that.
std::optional<imaging::Image> CreateTarget(engine::CLumoscriptView& view, std::int64_t width,
                                           std::int64_t height, std::string_view failure);

/// Gives the whole picture that colour.
void FillAll(imaging::ImageView picture, imaging::Rgb colour);

/// Gives every pixel outside of `inner`, which lies inside of the picture, that colour.
void FillAround(imaging::ImageView picture, imaging::Rect inner, imaging::Rgb colour);

/// Black everywhere: for a target that is taken over although the work on it failed, so that what
/// the memory held before never shows.
void Clear(imaging::ImageView target);

/// The nearest number that an int holds.
int ToInt(std::int64_t value);

}  // namespace lumo::ops::geometry
