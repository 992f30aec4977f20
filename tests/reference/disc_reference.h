#pragma once

// The disc filters step by step as their rules tell them, a window that slides along a row.

#include <vector>

#include "imaging/image.h"

namespace lumo::reference {

/// The disc as a mask of 0 and 1, row by row.
std::vector<std::vector<int>> DiscMask(double radius);

imaging::Image MaximumFilter(imaging::ConstImageView source, double radius);
imaging::Image MinimumFilter(imaging::ConstImageView source, double radius);
imaging::Image MedianFilter(imaging::ConstImageView source, double radius);
imaging::Image DustRemove(imaging::ConstImageView source, int threshold, double radius);

}  // namespace lumo::reference
