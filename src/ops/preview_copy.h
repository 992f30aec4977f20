#pragma once

// What previews share that work on a copy of the reduced sample.

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

#include "imaging/image.h"

namespace lumo::ops {

/// `change` applied to a copy of the sample; no image if the memory cannot be had.
template <typename Change>
imaging::Image PreviewOn(imaging::ConstImageView before, const Change& change) {
    auto after = imaging::Image::TryCopy(before);
    if (!after) return {};
    change(after->View());
    return std::move(*after);
}

/// A length in pixels of the sample as pixels of the preview, but never less than `least`.
inline int PreviewLength(int length, int shown, int sample, int least) {
    if (sample <= 0) return length;
    const std::int64_t scaled = std::int64_t{length} * shown / sample;
    return static_cast<int>(
        std::clamp<std::int64_t>(scaled, least, std::numeric_limits<int>::max()));
}

}  // namespace lumo::ops
