#include "ops/overlays/text_preview.h"

#include <cstdlib>

#include "ops/preview_copy.h"

namespace lumo::ops::overlays {

void ShrinkStyle(TextStyle& style, int shown, int sample) {
    const int height = style.font.height == 0 ? imaging::kDefaultTextHeight : style.font.height;
    const bool cell = height > 0;
    const int shrunk = PreviewLength(LimitPixels(std::abs(std::int64_t{height})), shown, sample, 1);
    style.font.height = cell ? shrunk : -shrunk;
    style.margin = PreviewLength(style.margin, shown, sample, 1);
}

}  // namespace lumo::ops::overlays
