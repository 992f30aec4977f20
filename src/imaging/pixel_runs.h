#pragma once

#include "imaging/image.h"
#include "imaging/parallel.h"

namespace lumo::imaging {

/// Calls `body(pixels, count)` for runs of pixels that together are the picture, for work that
/// takes each pixel by itself; on several threads where that is allowed.
template <typename Body>
void ForPixelRuns(ImageView image, const Body& body) {
    if (image.IsEmpty()) return;
    const auto width = static_cast<std::size_t>(image.Width());
    ForRows(image.Height(), image.Stride(), [&](int first, int last) {
        body(image.Row(first), static_cast<std::size_t>(last - first) * width);
    });
}

}  // namespace lumo::imaging
