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

/// Gives the whole target that colour; if that fails, reports `failure` with the library's error
/// and gives false.
bool FillTarget(engine::CLumoscriptView& view, imaging::ImageView target, imaging::Rgb colour,
                std::string_view failure);

/// Fills all of the target around the place of the source with that colour and lays the source
/// there. Each of the two reports its own failure; the second one decides the result.
struct PlaceFailures {
    std::string_view fill, overlay;
};
bool PlaceOnTarget(engine::CLumoscriptView& view, imaging::ConstImageView source, int x, int y,
                   imaging::Rgb colour, imaging::ImageView target, const PlaceFailures& failures);

/// Black everywhere: for a target that is taken over although the work on it failed, so that what
/// the memory held before never shows.
void Clear(imaging::ImageView target);

/// The nearest number that an int holds.
int ToInt(std::int64_t value);

}  // namespace lumo::ops::geometry
