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

/// The size in which a dialog shows a picture that `sample` pixels are scaled to, where it shows
/// the sample itself in `shown` pixels: in the same proportion, but never larger than `shown`.
imaging::Size ShownSize(imaging::Size target, imaging::Size sample, imaging::Size shown);

extern const engine::Command kScaleCommand;

}  // namespace lumo::ops::geometry
