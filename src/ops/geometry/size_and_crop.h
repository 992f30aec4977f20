#pragma once

#include <optional>

#include "engine/command.h"
#include "imaging/geometry.h"

namespace lumo::ops::geometry {

/// The largest centred part of a picture that has the proportions of the target. An odd pixel that
/// is cut falls to the right or the bottom.
struct ProportionalCut {
    imaging::Rect keep;     // right and bottom exclusive
    bool cutSides = false;  // else top and bottom
};

/// None if nothing would stay, or the target has no area.
std::optional<ProportionalCut> CutToProportions(imaging::Size source, imaging::Size target);

extern const engine::Command kSizeAndCropCommand;

}  // namespace lumo::ops::geometry
