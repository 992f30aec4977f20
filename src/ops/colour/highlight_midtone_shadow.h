#pragma once

#include <optional>

#include "imaging/colour.h"

namespace lumo::ops::colour {

/// All in percent: the level that becomes white, the place of the mid-tones (50 is neutral) and the
/// level that becomes black.
struct HmsParams {
    int highlight = 100;
    int midtone = 50;
    int shadow = 0;
};

/// The one table for all channels. Empty if the percentages lead outside of it, as some beyond 0 to
/// 100 do. Integers only, divisions truncate.
std::optional<imaging::Lut> HmsLut(const HmsParams& params);

}  // namespace lumo::ops::colour
