#pragma once

// What the previews of this folder share.

#include <utility>

#include "imaging/image.h"

namespace lumo::ops::filters {

/// What `kernel(before, after)` makes of the scaled-down sample; empty without memory.
template <typename Kernel>
imaging::Image PreviewInto(imaging::ConstImageView before, const Kernel& kernel) {
    auto after = imaging::Image::TryCreate(before.Extent());
    if (!after || !kernel(before, after->View())) return {};
    return std::move(*after);
}

/// A radius in pixels of the sample, in pixels of its scaled-down copy.
inline double ScaleRadius(double radius, imaging::Size sample, imaging::Size preview) {
    return sample.width > 0 ? radius * preview.width / sample.width : radius;
}

}  // namespace lumo::ops::filters
