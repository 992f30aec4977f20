#pragma once

#include "engine/command.h"
#include "imaging/geometry.h"

namespace lumo::ops::geometry {

enum class ScaleMethod { Absolute, Relative, Percentage };
enum class GivenSide { Width, Height, Both };

/// What "Scale: change image size" is asked for: pixels, a signed change of pixels or percent,
/// according to the method.
struct ScaleParams {
    bool keepAspect = true;
    ScaleMethod method = ScaleMethod::Absolute;
    int width = 0, height = 0;
    GivenSide given = GivenSide::Width;  // only with keepAspect; Both only with Absolute
};

/// The size asked for, by 32-bit arithmetic that truncates; it may be anything, also negative.
imaging::Size ScaledSize(imaging::Size current, const ScaleParams& params);

extern const engine::Command kScaleCommand;

}  // namespace lumo::ops::geometry
