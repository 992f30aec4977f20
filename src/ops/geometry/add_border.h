#pragma once

// "Add border": a picture grown by a coloured band.

#include <cstdint>
#include <optional>

#include "imaging/image.h"

namespace lumo::ops::geometry {

/// Thickness of the band on each side: as stated, in pixels or percent.
struct BorderParams {
    int top = 0, bottom = 0, left = 0, right = 0;
    bool percent = false;
};

/// Thickness of the band on each side, in pixels; none is negative.
struct Bands {
    std::int64_t top = 0, bottom = 0, left = 0, right = 0;
    friend constexpr bool operator==(const Bands&, const Bands&) = default;
};

/// The bands around a picture; empty if one is negative. Percent are of the height on all four
/// sides, so that equal percent give bands of equal thickness.
std::optional<Bands> BandsOf(imaging::Size source, const BorderParams& params);

}  // namespace lumo::ops::geometry
