#pragma once

// Changing the size of a picture.

#include <optional>

#include "imaging/image.h"

namespace lumo::imaging {

/// The filters by which a picture changes its size. When shrinking, each but Nearest widens with
/// the ratio, so that nothing aliases.
enum class ResampleFilter {
    Nearest,   // the source pixel under the target pixel's centre
    Box,       // average of the source area ("decimate")
    Bilinear,  // triangle
    Bicubic,   // Keys' cubic convolution, a = -0.5
    Hermite,   // smoothstep, support 1
    CatmullRom,
    Lanczos3,
};

/// The filter behind a numeric resampling code of the stored Scripts: 16 and 0 bilinear, 17 and 3
/// bicubic, 18 and 1 nearest, 14 and 4 box, 8 Lanczos3, 11 Hermite, 13 Catmull-Rom; any other code
/// is bilinear.
ResampleFilter FilterOfCode(int code);

inline constexpr int kLongestSide = 1 << 26;

/// Resamples the whole source into the whole target. Edges are clamped; a flat picture stays
/// exactly flat; the same size gives the same bytes. The views must not overlap and not be empty.
/// False, with LastError() set, if the scratch memory cannot be had or a side has more than
/// kLongestSide pixels; the target's pixels are undefined then.
[[nodiscard]] bool ResizeImage(ConstImageView source, ImageView target, ResampleFilter filter);

}  // namespace lumo::imaging
