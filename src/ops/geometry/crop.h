#pragma once

// "Crop": what stays of a picture when something is cut away on each side.

#include <cstdint>
#include <optional>

#include "imaging/image.h"

namespace lumo::ops::geometry {

/// What to cut away on each side, in pixels or percent, from the edges; or, measured from the
/// centre, what to keep.
struct CropParams {
    int top = 0, bottom = 0, left = 0, right = 0;
    bool percent = false;
    bool fromCentre = false;
};

/// A rectangle of the source; right and bottom are exclusive.
struct CropFrame {
    std::int64_t left = 0, top = 0, right = 0, bottom = 0;

    constexpr std::int64_t Width() const { return right - left; }
    constexpr std::int64_t Height() const { return bottom - top; }
    friend constexpr bool operator==(const CropFrame&, const CropFrame&) = default;
};

/// The rectangle that a crop keeps; empty if fewer than five rows or columns would stay. It is not
/// limited to the source: a negative inset asks for more than there is, and CropImage refuses it.
std::optional<CropFrame> CropRect(imaging::Size source, const CropParams& params);

}  // namespace lumo::ops::geometry
