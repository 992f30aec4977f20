#pragma once

#include "imaging/image.h"

namespace lumo::imaging {

/// The median of each pixel and its eight neighbours, each channel by itself; beyond the edges
/// stand the pixels of the edge. Smooths noise and keeps edges. False, with LastError() set, if the
/// sizes differ or are empty; `source` and `target` must not overlap.
bool MedianFilterImage(ConstImageView source, ImageView target);

}  // namespace lumo::imaging
