#pragma once

#include "imaging/image.h"

namespace lumo::ops::filters {

struct UnsharpParams {
    int amount = 100;           // percent
    int threshold = 0;          // 0: every pixel is an edge
    bool luminanceOnly = true;  // keep the colours
};

/// Drives the edges of the picture away from its blurred copy, which is replaced by the result.
/// A pixel is an edge if its luminance (in doubles) differs from that of a pixel to the left or
/// right, above or below by more than the threshold, the difference truncated; all others are
/// taken from the picture as they are. Views of the same size that do not overlap. False, with
/// LastError() set and the result untouched, if the scratch memory cannot be had.
[[nodiscard]] bool UnsharpMask(imaging::ConstImageView image, imaging::ImageView blurredAndResult,
                               const UnsharpParams& params);

}  // namespace lumo::ops::filters
